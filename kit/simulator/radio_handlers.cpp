// The device service's own settings, its radios and the scan of their neighbourhood.
#include "handlers.h"
#include "records.h"

namespace tarn::simulator
{

namespace
{

void getLastErrorMask(Model& model, Exchange& exchange)
{
    exchange.setNumber("mask", std::exchange(model.errorMask, 0));
}

void setStopPollingEnable(Model& model, Exchange& exchange)
{
    const std::uint32_t what = exchange.number("value1");
    const std::uint32_t stop = exchange.number("value2");
    if (what > static_cast<std::uint32_t>(Polling::kStations) || stop > 1)
        throw Refused{Outcome::kInvalidValue};
    model.stopPolling(static_cast<Polling>(what), stop != 0);
}

void getIsSupportedWfaAlliance(Model& model, Exchange& exchange)
{
    exchange.setNumber("isSupported", model.supportsWfaAlliance ? 1 : 0);
}

void getNum(Model& model, Exchange& exchange)
{
    exchange.setNumber("number", count(model.radios));
}

void answerRadio(const Radio& radio, Exchange& exchange)
{
    Record data = exchange.blank("data");
    fillRadio(data, radio);
    exchange.setRecord("data", data);
}

void getAt(Model& model, Exchange& exchange)
{
    answerRadio(elementAt(model.radios, exchange.number("index")), exchange);
}

void get(Model& model, Exchange& exchange)
{
    answerRadio(radioOf(model, exchange), exchange);
}

void getIsReady(Model& model, Exchange& exchange)
{
    exchange.setNumber("isReady", Model::isReady(radioOf(model, exchange)) ? 1 : 0);
}

// The parameter of both configurations selects the fields to take.
void setCfg(Model& model, Exchange& exchange)
{
    Radio& radio = radioOf(model, exchange);
    model.change(radio, exchange.record("cfg").changes(exchange.number("param")));
}

void getStats(Model& model, Exchange& exchange)
{
    const Radio& radio = radioOf(model, exchange);
    Record stats = exchange.blank("stats");
    model.polled(radio).fill(stats);
    std::size_t stations = 0;
    for (const Interface& interface : radio.interfaces)
        stations += interface.stations.size();
    stats.setNumber("stations", stations);
    stats.setSigned("noise", radio.noise);
    stats.setNumber("channelLoad", radio.channelLoad);
    exchange.setRecord("stats", stats);
}

void getDriverVersion(Model& model, Exchange& exchange)
{
    exchange.setText("version", radioOf(model, exchange).driverVersion);
}

void getIsSupportedWdsInterface(Model& model, Exchange& exchange)
{
    exchange.setNumber("isSupported", radioOf(model, exchange).supportsWds ? 1 : 0);
}

void getPossibleChannels(Model& model, Exchange& exchange)
{
    const Radio& radio = radioOf(model, exchange);
    const Record query = exchange.record("query");
    ChannelRequest request;
    request.band = radio.band;
    request.bandwidth = query.number("bandwidth") != 0 ? query.number("bandwidth") : radio.settings.number("bandwidth");
    request.country = !query.text("country").empty() ? query.text("country") : radio.settings.text("country");
    request.withRadarChannels = query.number("withoutRadarChannels") == 0;
    request.withWeatherChannels = radio.settings.number("tdwrChannels") != 0;
    const std::vector<std::uint8_t> channels = channelBytes(channelsFor(request));
    if (channels.empty())
        throw Refused{Outcome::kInvalidValue};
    Record list = exchange.blank("channels");
    list.setBlock("channels", channels.data(), channels.size());
    exchange.setRecord("channels", list);
}

void getChainNumber(Model& model, Exchange& exchange)
{
    exchange.setNumber("number", radioOf(model, exchange).chains);
}

void getChainRssiAt(Model& model, Exchange& exchange)
{
    const Radio& radio = radioOf(model, exchange);
    const std::uint32_t chain = exchange.number("chainIndex");
    if (chain >= radio.chains)
        throw Refused{Outcome::kNoSuchObject};
    exchange.setSigned("rssi", model.chainRssi(radio, chain));
}

void getChipTemperature(Model& model, Exchange& exchange)
{
    exchange.setNumber("temperature", radioOf(model, exchange).temperature);
}

void getPrimarySsidIntfId(Model& model, Exchange& exchange)
{
    exchange.setNumber("ssid_id", radioOf(model, exchange).interfaces.front().id);
}

void getNeighboringStatus(Model& model, Exchange& exchange)
{
    exchange.setNumber("status", static_cast<std::uint32_t>(radioOf(model, exchange).scan.status));
}

void scanNeighborhood(Model& model, Exchange& exchange)
{
    model.startScan(radioOf(model, exchange), 0);
}

void cancelNeighborhoodScanning(Model& model, Exchange& exchange)
{
    model.cancelScan(radioOf(model, exchange));
}

void getNeighboringResultNum(Model& model, Exchange& exchange)
{
    exchange.setNumber("number", count(radioOf(model, exchange).scan.results));
}

void getNeighboringResultAt(Model& model, Exchange& exchange)
{
    Record bss = exchange.blank("bss");
    fillNeighbour(bss, elementAt(radioOf(model, exchange).scan.results, exchange.number("index")));
    exchange.setRecord("bss", bss);
}

void getIsSupportedOpxRoaming(Model& model, Exchange& exchange)
{
    exchange.setNumber("isSupported", radioOf(model, exchange).supportsRoaming ? 1 : 0);
}

} // namespace

void addRadioHandlers(HandlerTable& table)
{
    table.add("TarnGetLastErrorMask", getLastErrorMask);
    table.add("TarnSetStopPollingEnable", setStopPollingEnable);
    table.add("TarnGetRadioIsSupportedWFAAlliance", getIsSupportedWfaAlliance);
    table.add("TarnGetRadioNum", getNum);
    table.add("TarnGetRadioAt", getAt);
    table.add("TarnGetRadio", get);
    table.add("TarnGetRadioIsReady", getIsReady);
    table.add("TarnSetRadioCfg", setCfg);
    table.add("TarnSetRadioExCfg", setCfg);
    table.add("TarnGetRadioStats", getStats);
    table.add("TarnGetRadioDriverVersion", getDriverVersion);
    table.add("TarnGetRadioIsSupportedWdsInterface", getIsSupportedWdsInterface);
    table.add("TarnGetRadioPossibleChannels", getPossibleChannels);
    table.add("TarnGetRadioChainNumber", getChainNumber);
    table.add("TarnGetRadioChainRssiAt", getChainRssiAt);
    table.add("TarnGetRadioChipTemperature", getChipTemperature);
    table.add("TarnGetRadioPrimarySSIDIntfId", getPrimarySsidIntfId);
    table.add("TarnGetRadioNeighboringStatus", getNeighboringStatus);
    table.add("TarnScanRadioNeighborhood", scanNeighborhood);
    table.add("TarnCancelRadioNeighborhoodScanning", cancelNeighborhoodScanning);
    table.add("TarnGetRadioNeighboringResultNum", getNeighboringResultNum);
    table.add("TarnGetRadioNeighboringResultAt", getNeighboringResultAt);
    table.add("TarnGetRadioIsSupportedOPXRoaming", getIsSupportedOpxRoaming);
}

} // namespace tarn::simulator
