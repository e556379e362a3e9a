// The proxy's calls about channels, radar checks, transmit power and scans of a radio of the Wi-Fi module.
#include "handlers.h"
#include "records.h"

#include <algorithm>

namespace tarn::simulator
{

namespace
{

bool contains(const std::vector<std::uint32_t>& channels, std::uint32_t channel)
{
    return std::find(channels.begin(), channels.end(), channel) != channels.end();
}

// Those of the radio's band in its country, 20 MHz each, the inactive ones included.
std::vector<std::uint32_t> channelsOf(const Radio& radio)
{
    ChannelRequest request;
    request.band = radio.band;
    request.country = radio.settings.text("country");
    request.withWeatherChannels = radio.settings.number("tdwrChannels") != 0;
    return channelsFor(request);
}

void requireChannel(const Radio& radio, std::uint32_t channel)
{
    if (!contains(channelsOf(radio), channel))
        throw Refused{Outcome::kInvalidValue};
}

// --- Channels ----------------------------------------------------------------------------------------------------------------

void getSecondaryChannel(Model& model, Exchange& exchange)
{
    const Radio& radio = radioOf(model, exchange);
    const std::uint32_t channel = exchange.number("channel");
    requireChannel(radio, channel);
    exchange.setNumber("secondary_channel", Model::secondaryChannel(radio, channel));
}

// A second value of 0 takes what has been set by hand back.
void setSecondaryChannel(Model& model, Exchange& exchange)
{
    Radio& radio = radioOf(model, exchange);
    const std::uint32_t channel = exchange.number("value1");
    const std::uint32_t secondary = exchange.number("value2");
    requireChannel(radio, channel);
    if (secondary == 0)
    {
        radio.secondaryChannels.erase(channel);
        return;
    }
    requireChannel(radio, secondary);
    if (secondary + 4 != channel && channel + 4 != secondary)
        throw Refused{Outcome::kInvalidValue};
    radio.secondaryChannels[channel] = secondary;
}

// The channel that the radio works on stays active.
void setChannelInactive(Model& model, Exchange& exchange)
{
    Radio& radio = radioOf(model, exchange);
    const std::uint32_t channel = exchange.number("value1");
    const std::uint32_t inactive = exchange.number("value2");
    requireChannel(radio, channel);
    if (inactive > 1)
        throw Refused{Outcome::kInvalidValue};
    if (inactive == 0)
        radio.inactiveChannels.erase(channel);
    else if (channel == radio.settings.number("channel"))
        throw Refused{Outcome::kBusy};
    else
        radio.inactiveChannels.insert(channel);
}

void getListChannels(Model& model, Exchange& exchange)
{
    exchange.setText("list_of_channels", channelText(Model::allowedChannels(radioOf(model, exchange))));
}

void answerRegulatory(const ChannelRequest& request, Exchange& exchange)
{
    ChannelRequest narrow = request;
    narrow.bandwidth = 20;
    if (channelsFor(narrow).empty())
        throw Refused{Outcome::kNoSuchObject}; // no such region
    const std::vector<std::uint32_t> channels = channelsFor(request);
    if (channels.empty())
        throw Refused{Outcome::kInvalidValue}; // no such bandwidth
    exchange.setText("list_of_channels", channelText(channels));
}

void getRegulatory(Model& model, Exchange& exchange)
{
    ChannelRequest request;
    request.band = model.moduleRadio().band;
    request.country = exchange.text("region_by_name");
    request.bandwidth = exchange.number("bandwidth");
    answerRegulatory(request, exchange);
}

// The value: 0 all channels, 1 those without radar protection.
void getRegulatoryOfInterface(Model& model, Exchange& exchange)
{
    if (exchange.number("value") > 1)
        throw Refused{Outcome::kInvalidValue};
    ChannelRequest request;
    request.band = radioOf(model, exchange).band;
    request.country = exchange.text("region_name");
    request.bandwidth = exchange.number("bandwidth");
    request.withRadarChannels = exchange.number("value") == 0;
    answerRegulatory(request, exchange);
}

void overwriteCountryCode(Model& model, Exchange& exchange)
{
    Radio& radio = radioOf(model, exchange);
    if (exchange.text("curr_country_name") != radio.settings.text("country"))
        throw Refused{Outcome::kInvalidValue};
    model.change(radio, {{"country", exchange.text("new_country_name")}});
}

// --- Radar checks ------------------------------------------------------------------------------------------------------------

void getDfsRadioStatus(Model& model, Exchange& exchange)
{
    exchange.setNumber("status", static_cast<std::uint32_t>(radioOf(model, exchange).dfsRadio.status));
}

void startDfsRadio(Model& model, Exchange& exchange)
{
    model.startDfsRadio(radioOf(model, exchange), exchange.number("value"));
}

void stopDfsRadio(Model& model, Exchange& exchange)
{
    model.stopDfsRadio(radioOf(model, exchange));
}

void getCacStatus(Model& model, Exchange& exchange)
{
    exchange.setNumber("cacstatus", radioOf(model, exchange).checking ? 1 : 0);
}

void getIcacStatus(Model& model, Exchange& exchange)
{
    exchange.setNumber("status", radioOf(model, exchange).dfsRadio.status == DfsRadioStatus::kChecking ? 1 : 0);
}

void getAvailability(Model& model, Exchange& exchange)
{
    enum Availability : std::uint8_t
    {
        kAvailable = 1,
        kNotChecked = 2,
        kBeingChecked = 3
    };
    const Radio& radio = radioOf(model, exchange);
    const auto isBeingChecked = [&](std::uint32_t channel)
    {
        return (radio.checking && channel == radio.settings.number("channel")) ||
               (radio.dfsRadio.status == DfsRadioStatus::kChecking && channel == radio.dfsRadio.channel);
    };
    const std::vector<std::uint32_t> channels = channelsOf(radio);
    std::vector<std::uint8_t> pairs;
    for (const std::uint32_t channel : channels)
    {
        const bool isFree = !isRadarChannel(radio.band, channel) || radio.checkedChannels.count(channel) != 0;
        pairs.push_back(static_cast<std::uint8_t>(channel));
        pairs.push_back(isFree ? kAvailable : isBeingChecked(channel) ? kBeingChecked : kNotChecked);
    }
    Record table = exchange.blank("chan_avail_status");
    table.setNumber("number", channels.size());
    table.setBlock("channels", pairs.data(), pairs.size());
    exchange.setRecord("chan_avail_status", table);
}

// --- Transmit power ----------------------------------------------------------------------------------------------------------

void getPowerLevels(Model& model, Exchange& exchange)
{
    radioOf(model, exchange);
    exchange.setText("available_percentages", "100,75,50,25,12");
}

// Channel, dB less, and the bandwidth that it holds for: 0 all, 1 to 4 for 20 to 160 MHz.
void setPowerBackoff(Model& model, Exchange& exchange)
{
    constexpr std::uint32_t kMostBackoff = 20;
    Radio& radio = radioOf(model, exchange);
    const std::uint32_t channel = exchange.number("value1");
    const std::uint32_t backoff = exchange.number("value2");
    const std::uint32_t bandwidth = exchange.number("value3");
    requireChannel(radio, channel);
    if (backoff > kMostBackoff || bandwidth > 4)
        throw Refused{Outcome::kInvalidValue};
    radio.powerBackoffs[channel] = {backoff, bandwidth};
}

void getTransmitPower(Model& model, Exchange& exchange)
{
    const Radio& radio = model.moduleRadio();
    std::uint32_t chain = 0;
    for (const char* name : {"pwr0", "pwr1", "pwr2", "pwr3"})
        exchange.setSigned(name, model.chainPower(radio, chain++));
}

// --- Scans -------------------------------------------------------------------------------------------------------------------

void startScan(Model& model, Exchange& exchange)
{
    constexpr std::uint32_t kMostFlags = 0xff;
    Radio& radio = radioOf(model, exchange);
    const std::uint32_t flags = exchange.number("value");
    if (flags > kMostFlags)
        throw Refused{Outcome::kInvalidValue};
    model.startScan(radio, flags);
}

void getScanStatus(Model& model, Exchange& exchange)
{
    exchange.setNumber("scanstatus", radioOf(model, exchange).scan.status == ScanStatus::kRunning ? 1 : 0);
}

void getScanResults(Model& model, Exchange& exchange)
{
    exchange.setNumber("count_APs", count(radioOf(model, exchange).scan.results));
}

void getScanResult(Model& model, Exchange& exchange)
{
    Record properties = exchange.blank("ap_property");
    fillNeighbour(properties, elementAt(radioOf(model, exchange).scan.results, exchange.number("index")));
    exchange.setRecord("ap_property", properties);
}

} // namespace

void addProxyChannelHandlers(HandlerTable& table)
{
    table.add("tarn_qcsapi_wifi_get_sec_chan", getSecondaryChannel);
    table.add("tarn_qcsapi_wifi_set_sec_chan", setSecondaryChannel);
    table.add("tarn_qcsapi_wifi_set_chan_pri_inactive", setChannelInactive);
    table.add("tarn_qcsapi_wifi_get_list_channels", getListChannels);
    table.add("tarn_qcsapi_regulatory_get_list_regulatory_channels", getRegulatory);
    table.add("tarn_qcsapi_regulatory_get_list_regulatory_channels_if", getRegulatoryOfInterface);
    table.add("tarn_qcsapi_regulatory_overwrite_country_code", overwriteCountryCode);
    table.add("tarn_qcsapi_wifi_get_dfs_s_radio_status", getDfsRadioStatus);
    table.add("tarn_qcsapi_wifi_start_dfs_s_radio", startDfsRadio);
    table.add("tarn_qcsapi_wifi_stop_dfs_s_radio", stopDfsRadio);
    table.add("tarn_qcsapi_wifi_get_cac_status", getCacStatus);
    table.add("tarn_qcsapi_wifi_get_icac_status", getIcacStatus);
    table.add("tarn_qcsapi_wifi_get_chan_avail_status", getAvailability);
    table.add("tarn_qcsapi_wifi_get_supported_tx_power_levels", getPowerLevels);
    table.add("tarn_qcsapi_reg_chan_txpower_backoff_set", setPowerBackoff);
    table.add("tarn_qcsapi_calcmd_get_tx_power", getTransmitPower);
    table.add("tarn_qcsapi_wifi_start_scan_ext", startScan);
    table.add("tarn_qcsapi_wifi_get_scan_status", getScanStatus);
    table.add("tarn_qcsapi_wifi_get_results_AP_scan", getScanResults);
    table.add("tarn_qcsapi_wifi_get_properties_AP", getScanResult);
}

} // namespace tarn::simulator
