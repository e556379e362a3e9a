// The proxy's calls about channels, radar checks, transmit power and scans of a radio of the Wi-Fi module.
#include "base/join.h"
#include "base/quote.h"
#include "handlers.h"

namespace tarn::simulator
{

namespace
{

// The 20 MHz channels of the radio's band in its country, the inactive ones included.
std::vector<std::uint32_t> channelsOf(const Radio& radio)
{
    ChannelCriteria criteria = radio.channelCriteria();
    criteria.bandwidth = 20;
    return channelsFor(criteria);
}

void requireChannel(const Radio& radio, std::uint32_t channel)
{
    if (!contains(channelsOf(radio), channel))
        throw Refused{ReplyStatus::kInvalidValue, "channel " + std::to_string(channel) + "; radio " + radio.name + " has " +
                                                      base::join(channelsOf(radio), " ")};
}

// "36,40,44".
std::string channelText(const std::vector<std::uint32_t>& channels)
{
    return base::join(channels, ",");
}

void answerRegulatory(const ChannelCriteria& criteria, CommandRequest& request)
{
    ChannelCriteria narrow = criteria;
    narrow.bandwidth = 20;
    if (channelsFor(narrow).empty())
        throw Refused{ReplyStatus::kNoSuchObject, "region " + base::inQuotes(criteria.country) + "; there are us, eu and jp"};
    const std::vector<std::uint32_t> channels = channelsFor(criteria);
    if (channels.empty())
        throw Refused{ReplyStatus::kInvalidValue,
                      "region " + criteria.country + " has no channels of " + std::to_string(criteria.bandwidth) + " MHz"};
    request.setText("list_of_channels", channelText(channels));
}

} // namespace

void addProxyChannelHandlers(HandlerTable& table)
{
    table.add({

        // Channels.
        {"tarn_qcsapi_wifi_get_sec_chan",
         [](Model& model, CommandRequest& request)
         {
             const Radio& radio = radioOf(model, request);
             const std::uint32_t channel = request.number("channel");
             requireChannel(radio, channel);
             request.setNumber("secondary_channel", radio.secondaryChannelOf(channel));
         }},
        // A second value of 0 restores the default.
        {"tarn_qcsapi_wifi_set_sec_chan",
         [](Model& model, CommandRequest& request)
         {
             Radio& radio = radioOf(model, request);
             const std::uint32_t channel = request.number("value1");
             const std::uint32_t secondary = request.number("value2");
             requireChannel(radio, channel);
             if (secondary == 0)
             {
                 radio.secondaryChannels.erase(channel);
                 return;
             }
             requireChannel(radio, secondary);
             if (secondary + 4 != channel && channel + 4 != secondary)
                 throw Refused{ReplyStatus::kInvalidValue, "secondary channel " + std::to_string(secondary) +
                                                               "; expected a neighbour of channel " + std::to_string(channel)};
             radio.secondaryChannels[channel] = secondary;
         }},
        // The radio's own channel cannot be made inactive.
        {"tarn_qcsapi_wifi_set_chan_pri_inactive",
         [](Model& model, CommandRequest& request)
         {
             Radio& radio = radioOf(model, request);
             const std::uint32_t channel = request.number("value1");
             requireChannel(radio, channel);
             if (!request.flag("value2"))
                 radio.inactiveChannels.erase(channel);
             else if (channel == radio.settings.channel)
                 throw Refused{ReplyStatus::kBusy, "radio " + radio.name + " works on channel " + std::to_string(channel)};
             else
                 radio.inactiveChannels.insert(channel);
         }},
        {"tarn_qcsapi_wifi_get_list_channels", [](Model& model, CommandRequest& request)
         { request.setText("list_of_channels", channelText(radioOf(model, request).allowedChannels())); }},
        {"tarn_qcsapi_regulatory_get_list_regulatory_channels",
         [](Model& model, CommandRequest& request)
         {
             ChannelCriteria criteria;
             criteria.band = model.moduleRadio().band;
             criteria.country = request.text("region_by_name");
             criteria.bandwidth = request.number("bandwidth");
             answerRegulatory(criteria, request);
         }},
        // The value: 0 all channels, 1 those without radar protection.
        {"tarn_qcsapi_regulatory_get_list_regulatory_channels_if",
         [](Model& model, CommandRequest& request)
         {
             const bool withoutRadarChannels = request.flag("value");
             ChannelCriteria criteria;
             criteria.band = radioOf(model, request).band;
             criteria.country = request.text("region_name");
             criteria.bandwidth = request.number("bandwidth");
             criteria.withRadarChannels = !withoutRadarChannels;
             answerRegulatory(criteria, request);
         }},
        {"tarn_qcsapi_regulatory_overwrite_country_code",
         [](Model& model, CommandRequest& request)
         {
             Radio& radio = radioOf(model, request);
             if (request.text("curr_country_name") != radio.settings.country)
                 throw Refused{ReplyStatus::kInvalidValue, "current country " +
                                                               base::inQuotes(request.text("curr_country_name")) + "; it is " +
                                                               radio.settings.country};
             model.change(radio, Changes<RadioSettings>().set(&RadioSettings::country, request.text("new_country_name")));
         }},

        // Radar checks.
        {"tarn_qcsapi_wifi_get_dfs_s_radio_status", [](Model& model, CommandRequest& request)
         { request.setNumber("status", static_cast<std::uint32_t>(radioOf(model, request).dfsRadio.status)); }},
        {"tarn_qcsapi_wifi_start_dfs_s_radio",
         [](Model& model, CommandRequest& request) { model.startDfsRadio(radioOf(model, request), request.number("value")); }},
        {"tarn_qcsapi_wifi_stop_dfs_s_radio",
         [](Model& model, CommandRequest& request) { model.stopDfsRadio(radioOf(model, request)); }},
        {"tarn_qcsapi_wifi_get_cac_status", [](Model& model, CommandRequest& request)
         { request.setNumber("cacstatus", radioOf(model, request).checking ? 1 : 0); }},
        {"tarn_qcsapi_wifi_get_icac_status", [](Model& model, CommandRequest& request)
         { request.setNumber("status", radioOf(model, request).dfsRadio.status == DfsRadioStatus::kChecking ? 1 : 0); }},
        {"tarn_qcsapi_wifi_get_chan_avail_status",
         [](Model& model, CommandRequest& request)
         {
             enum Availability : std::uint32_t
             {
                 kAvailable = 1,
                 kNotChecked = 2,
                 kBeingChecked = 3
             };
             const Radio& radio = radioOf(model, request);
             const auto availabilityOf = [&](std::uint32_t channel)
             {
                 if (!radio.needsRadarCheck(channel))
                     return kAvailable;
                 const bool isBeingChecked =
                     (radio.checking &&
                      contains(blockOf(radio.band, radio.settings.channel, radio.settings.bandwidth), channel)) ||
                     (radio.dfsRadio.status == DfsRadioStatus::kChecking &&
                      contains(blockOf(radio.band, radio.dfsRadio.channel, radio.settings.bandwidth), channel));
                 return isBeingChecked ? kBeingChecked : kNotChecked;
             };
             const std::vector<std::uint32_t> channels = channelsOf(radio);
             Record list = request.blank("chan_avail_status");
             list.setNumber("number", channels.size());
             for (std::size_t i = 0; i < channels.size(); ++i)
             {
                 const std::string entry = "channels[" + std::to_string(i) + "].";
                 list.setNumber(entry + "channel", channels[i]);
                 list.setNumber(entry + "availability", availabilityOf(channels[i]));
             }
             request.setRecord("chan_avail_status", list);
         }},

        // Transmit power.
        {"tarn_qcsapi_wifi_get_supported_tx_power_levels",
         [](Model& model, CommandRequest& request)
         {
             radioOf(model, request);
             request.setText("available_percentages", "100,75,50,25,12");
         }},
        // The channel, the reduction in dB, and the bandwidth it applies to: 0 all, 1 to 4 for 20 to 160 MHz.
        {"tarn_qcsapi_reg_chan_txpower_backoff_set",
         [](Model& model, CommandRequest& request)
         {
             Radio& radio = radioOf(model, request);
             const std::uint32_t channel = request.number("value1");
             requireChannel(radio, channel);
             PowerBackoff backoff;
             assign(backoff, &PowerBackoff::decibels, request.number("value2"));
             assign(backoff, &PowerBackoff::bandwidth, request.number("value3"));
             radio.powerBackoffs[channel] = backoff;
             model.settle(radio);
         }},
        {"tarn_qcsapi_calcmd_get_tx_power",
         [](Model& model, CommandRequest& request)
         {
             const Radio& radio = model.moduleRadio();
             std::uint32_t chain = 0;
             for (const char* name : {"pwr0", "pwr1", "pwr2", "pwr3"})
                 request.setSigned(name, model.chainPower(radio, chain++));
         }},

        // Scans.
        {"tarn_qcsapi_wifi_start_scan_ext",
         [](Model& model, CommandRequest& request)
         {
             constexpr std::uint32_t kMostFlags = 0xff;
             Radio& radio = radioOf(model, request);
             const std::uint32_t flags = request.number("value");
             if (flags > kMostFlags)
                 throw Refused{ReplyStatus::kInvalidValue,
                               "scan flags " + std::to_string(flags) + "; expected 0 to " + std::to_string(kMostFlags)};
             model.startScan(radio, flags);
         }},
        {"tarn_qcsapi_wifi_get_scan_status", [](Model& model, CommandRequest& request)
         { request.setNumber("scanstatus", radioOf(model, request).scan.status == ScanStatus::kRunning ? 1 : 0); }},
        {"tarn_qcsapi_wifi_get_results_AP_scan", [](Model& model, CommandRequest& request)
         { request.setNumber("count_APs", count(radioOf(model, request).scan.results)); }},
        {"tarn_qcsapi_wifi_get_properties_AP", [](Model& model, CommandRequest& request)
         { request.answer("ap_property", elementAt(radioOf(model, request).scan.results, request.number("index"))); }},
    });
}

} // namespace tarn::simulator
