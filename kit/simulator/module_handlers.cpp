// The device service's control of the Wi-Fi module.
#include "base/mac_address.h"
#include "base/quote.h"
#include "handlers.h"
#include "records.h"

namespace tarn::simulator
{

namespace
{

struct Association
{
    const Interface* interface;
    const Station* station;
};

std::vector<Association> associations(const Model& model)
{
    std::vector<Association> result;
    for (const Radio& radio : model.radios)
        for (const Interface& interface : radio.interfaces)
            for (const Station& station : interface.stations)
                result.push_back({&interface, &station});
    return result;
}

void answerAssociation(const Model& model, const Association& association, CommandRequest& request)
{
    const Station& station = *association.station;
    const Interface& interface = *association.interface;
    Record data = request.blank("data");
    data.setAddress("macAddress", station.address);
    data.setAddress("bssid", interface.bssid);
    data.setText("ssid", interface.settings.ssid);
    data.setText("name", interface.name);
    data.setText("band", toString(interface.radio->band));
    data.setNumber("channel", interface.radio->settings.channel);
    data.setSigned("rssi", station.rssi);
    data.setNumber("txRate", station.txRate);
    data.setNumber("rxRate", station.rxRate);
    data.setNumber("secondsAssociated", model.secondsAssociated(station));
    request.setRecord("data", data);
}

} // namespace

void addModuleHandlers(HandlerTable& table)
{
    table.add({
        {"TarnGetRadioQuantennaCurrentTransmitPower",
         [](Model& model, CommandRequest& request)
         {
             const Radio& radio = moduleRadioOf(model, request);
             Record power = request.blank("power");
             std::uint32_t chain = 0;
             for (const char* name : {"chain0", "chain1", "chain2", "chain3"})
                 power.setSigned(name, model.chainPower(radio, chain++));
             request.setRecord("power", power);
         }},
        {"TarnGetQuantennaMauiVersion",
         [](Model& model, CommandRequest& request) { request.setText("version", model.module.mauiVersion); }},
        {"TarnDownloadQuantennaWirelessConf",
         [](Model& model, CommandRequest& request)
         {
             const std::string path = request.text("path");
             if (path.empty() || path[0] != '/')
                 throw Refused{ReplyStatus::kInvalidValue, "path " + base::inQuotes(path) + "; expected one from the root, /"};
             model.startDownload(path);
         }},
        {"TarnUpdateQuantennaPasswordFile", [](Model& model, CommandRequest&) { model.startDownload(""); }},
        {"TarnGetQuantennaDownloadState", [](Model& model, CommandRequest& request)
         { request.setNumber("state", static_cast<std::uint32_t>(model.module.download.state)); }},

        // Current associations: the stations of all radios, in the order of the radios and their interfaces.
        {"TarnGetQuantennaSoniqCurrentAssociationNumber",
         [](Model& model, CommandRequest& request) { request.setNumber("number", count(associations(model))); }},
        {"TarnGetQuantennaSoniqCurrentAssociationAt",
         [](Model& model, CommandRequest& request)
         {
             const std::vector<Association> all = associations(model);
             answerAssociation(model, elementAt(all, request.number("index")), request);
         }},
        {"TarnGetQuantennaSoniqCurrentAssociation",
         [](Model& model, CommandRequest& request)
         {
             const MacAddress address = request.address("mac_addr");
             for (const Association& association : associations(model))
                 if (association.station->address == address)
                     return answerAssociation(model, association, request);
             throw Refused{ReplyStatus::kNoSuchObject, base::macText(address) + " is not associated with the module"};
         }},
    });
}

} // namespace tarn::simulator
