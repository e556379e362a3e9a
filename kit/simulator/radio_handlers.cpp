// The device service's own settings, its radios and the scan of their neighbourhood.
#include "handlers.h"

namespace tarn::simulator
{

namespace
{

void getLastErrorMask(Model& model, CommandRequest& request)
{
    request.setNumber("mask", std::exchange(model.service.errorMask, 0));
}

void setStopPollingEnable(Model& model, CommandRequest& request)
{
    const std::uint32_t what = request.number("value1");
    if (what > static_cast<std::uint32_t>(Polling::kStations))
        throw Refused{ReplyStatus::kInvalidValue};
    model.stopPolling(static_cast<Polling>(what), request.flag("value2"));
}

void getIsSupportedWfaAlliance(Model& model, CommandRequest& request)
{
    request.setNumber("isSupported", model.supportsWfaAlliance ? 1 : 0);
}

void getNum(Model& model, CommandRequest& request)
{
    request.setNumber("number", count(model.radios));
}

void answerRadio(const Radio& radio, CommandRequest& request)
{
    request.answer("data", radio);
}

void getAt(Model& model, CommandRequest& request)
{
    answerRadio(elementAt(model.radios, request.number("index")), request);
}

void get(Model& model, CommandRequest& request)
{
    answerRadio(radioOf(model, request), request);
}

void getIsReady(Model& model, CommandRequest& request)
{
    request.setNumber("isReady", radioOf(model, request).isReady() ? 1 : 0);
}

// Both configurations come with a selection of the fields to take.
void setCfg(Model& model, CommandRequest& request)
{
    Radio& radio = radioOf(model, request);
    model.change(radio, request.changes<RadioSettings>("cfg"));
}

void getStats(Model& model, CommandRequest& request)
{
    const Radio& radio = radioOf(model, request);
    request.answer("stats", model.polled(radio), radio);
}

void getDriverVersion(Model& model, CommandRequest& request)
{
    request.setText("version", radioOf(model, request).driverVersion);
}

void getIsSupportedWdsInterface(Model& model, CommandRequest& request)
{
    request.setNumber("isSupported", radioOf(model, request).supportsWds ? 1 : 0);
}

void getPossibleChannels(Model& model, CommandRequest& request)
{
    const Radio& radio = radioOf(model, request);
    const Record query = request.record("query");
    ChannelCriteria criteria = radio.channelCriteria();
    if (query.number("bandwidth") != 0)
        criteria.bandwidth = query.number("bandwidth");
    if (!query.text("country").empty())
        criteria.country = query.text("country");
    criteria.withRadarChannels = query.number("withoutRadarChannels") == 0;
    const std::vector<std::uint32_t> channels = channelsFor(criteria);
    if (channels.empty())
        throw Refused{ReplyStatus::kInvalidValue};
    Record list = request.blank("channels");
    list.setNumbers("channels", channels);
    request.setRecord("channels", list);
}

void getChainNumber(Model& model, CommandRequest& request)
{
    request.setNumber("number", radioOf(model, request).chains);
}

void getChainRssiAt(Model& model, CommandRequest& request)
{
    const Radio& radio = radioOf(model, request);
    const std::uint32_t chain = request.number("chainIndex");
    if (chain >= radio.chains)
        throw Refused{ReplyStatus::kNoSuchObject};
    request.setSigned("rssi", radio.chainRssi(chain));
}

void getChipTemperature(Model& model, CommandRequest& request)
{
    request.setNumber("temperature", radioOf(model, request).temperature);
}

void getPrimarySsidIntfId(Model& model, CommandRequest& request)
{
    request.setNumber("ssid_id", radioOf(model, request).interfaces.front().id);
}

void getNeighboringStatus(Model& model, CommandRequest& request)
{
    request.setNumber("status", static_cast<std::uint32_t>(radioOf(model, request).scan.status));
}

void scanNeighborhood(Model& model, CommandRequest& request)
{
    model.startScan(radioOf(model, request), 0);
}

void cancelNeighborhoodScanning(Model& model, CommandRequest& request)
{
    radioOf(model, request).cancelScan();
}

void getNeighboringResultNum(Model& model, CommandRequest& request)
{
    request.setNumber("number", count(radioOf(model, request).scan.results));
}

void getNeighboringResultAt(Model& model, CommandRequest& request)
{
    request.answer("bss", elementAt(radioOf(model, request).scan.results, request.number("index")));
}

void getIsSupportedOpxRoaming(Model& model, CommandRequest& request)
{
    request.setNumber("isSupported", radioOf(model, request).supportsRoaming ? 1 : 0);
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
