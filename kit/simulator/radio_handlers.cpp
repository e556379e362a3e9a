// The device service's own settings, its radios and the scan of their neighbourhood.
#include "base/quote.h"
#include "handlers.h"

#include <algorithm>

namespace tarn::simulator
{

namespace
{

void answerRadio(const Radio& radio, CommandRequest& request)
{
    request.answer("data", radio);
}

// Both configurations come with a selection of the fields to take.
void setRadioCfg(Model& model, CommandRequest& request)
{
    Radio& radio = radioOf(model, request);
    model.change(radio, request.changes<RadioSettings>("cfg"));
}

} // namespace

void addRadioHandlers(HandlerTable& table)
{
    table.add({
        {"TarnGetLastErrorMask",
         [](Model& model, CommandRequest& request) { request.setNumber("mask", std::exchange(model.service.errorMask, 0)); }},
        {"TarnSetStopPollingEnable",
         [](Model& model, CommandRequest& request)
         {
             const std::uint32_t what = request.number("value1");
             if (what > static_cast<std::uint32_t>(Polling::kStations))
                 throw Refused{ReplyStatus::kInvalidValue, "value1 " + std::to_string(what) +
                                                               "; expected 0 all, 1 radios, 2 SSID interfaces or 3 stations"};
             model.stopPolling(static_cast<Polling>(what), request.flag("value2"));
         }},
        {"TarnGetRadioIsSupportedWFAAlliance",
         [](Model& model, CommandRequest& request) { request.setNumber("isSupported", model.supportsWfaAlliance ? 1 : 0); }},
        {"TarnGetRadioNum", [](Model& model, CommandRequest& request) { request.setNumber("number", count(model.radios)); }},
        {"TarnGetRadioAt",
         [](Model& model, CommandRequest& request) { answerRadio(elementAt(model.radios, request.number("index")), request); }},
        {"TarnGetRadio", [](Model& model, CommandRequest& request) { answerRadio(radioOf(model, request), request); }},
        {"TarnGetRadioIsReady", [](Model& model, CommandRequest& request)
         { request.setNumber("isReady", radioOf(model, request).isReady() ? 1 : 0); }},
        // Both configurations come with a selection of the fields to take.
        {"TarnSetRadioCfg", setRadioCfg},
        {"TarnSetRadioExCfg", setRadioCfg},
        {"TarnGetRadioStats",
         [](Model& model, CommandRequest& request)
         {
             const Radio& radio = radioOf(model, request);
             request.answer("stats", model.polled(radio), radio);
         }},
        {"TarnGetRadioDriverVersion",
         [](Model& model, CommandRequest& request) { request.setText("version", radioOf(model, request).driverVersion); }},
        {"TarnGetRadioIsSupportedWdsInterface", [](Model& model, CommandRequest& request)
         { request.setNumber("isSupported", radioOf(model, request).supportsWds ? 1 : 0); }},
        {"TarnGetRadioPossibleChannels",
         [](Model& model, CommandRequest& request)
         {
             const Radio& radio = radioOf(model, request);
             const Record query = request.record("query");
             RadioSettings asked = radio.settings;
             if (query.number("bandwidth") != 0)
                 asked.bandwidth = query.number("bandwidth");
             if (!query.text("country").empty())
                 asked.country = query.text("country");
             std::vector<std::uint32_t> channels = radio.channelsWith(asked);
             const auto needsRadarProtection = [&](std::uint32_t channel)
             {
                 const std::vector<std::uint32_t> block = blockOf(radio.band, channel, asked.bandwidth);
                 return std::any_of(block.begin(), block.end(),
                                    [&](std::uint32_t each) { return isRadarChannel(radio.band, each); });
             };
             if (query.number("withoutRadarChannels") != 0)
                 channels.erase(std::remove_if(channels.begin(), channels.end(), needsRadarProtection), channels.end());
             if (channels.empty())
                 throw Refused{ReplyStatus::kInvalidValue, "country " + base::inQuotes(asked.country) +
                                                               " has no such channels of " + std::to_string(asked.bandwidth) +
                                                               " MHz for radio " + radio.name};
             Record list = request.blank("channels");
             list.setNumbers("channels", channels);
             request.setRecord("channels", list);
         }},
        {"TarnGetRadioChainNumber",
         [](Model& model, CommandRequest& request) { request.setNumber("number", radioOf(model, request).chains); }},
        {"TarnGetRadioChainRssiAt",
         [](Model& model, CommandRequest& request)
         {
             const Radio& radio = radioOf(model, request);
             const std::uint32_t chain = request.number("chainIndex");
             if (chain >= radio.chains)
                 throw Refused{ReplyStatus::kNoSuchObject, "chain " + std::to_string(chain) + "; radio " + radio.name +
                                                               " has " + std::to_string(radio.chains) + ", from 0"};
             request.setSigned("rssi", radio.chainRssi(chain));
         }},
        {"TarnGetRadioChipTemperature",
         [](Model& model, CommandRequest& request) { request.setNumber("temperature", radioOf(model, request).temperature); }},
        {"TarnGetRadioPrimarySSIDIntfId", [](Model& model, CommandRequest& request)
         { request.setNumber("ssid_id", radioOf(model, request).interfaces.front().id); }},
        {"TarnGetRadioNeighboringStatus", [](Model& model, CommandRequest& request)
         { request.setNumber("status", static_cast<std::uint32_t>(radioOf(model, request).scan.status)); }},
        {"TarnScanRadioNeighborhood",
         [](Model& model, CommandRequest& request) { model.startScan(radioOf(model, request), 0); }},
        {"TarnCancelRadioNeighborhoodScanning",
         [](Model& model, CommandRequest& request) { model.cancelScan(radioOf(model, request)); }},
        {"TarnGetRadioNeighboringResultNum", [](Model& model, CommandRequest& request)
         { request.setNumber("number", count(radioOf(model, request).scan.results)); }},
        {"TarnGetRadioNeighboringResultAt", [](Model& model, CommandRequest& request)
         { request.answer("bss", elementAt(radioOf(model, request).scan.results, request.number("index"))); }},
        {"TarnGetRadioIsSupportedOPXRoaming", [](Model& model, CommandRequest& request)
         { request.setNumber("isSupported", radioOf(model, request).supportsRoaming ? 1 : 0); }},
    });
}

} // namespace tarn::simulator
