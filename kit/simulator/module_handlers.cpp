// The device service's control of the Wi-Fi module.
#include "handlers.h"
#include "records.h"

namespace tarn::simulator
{

namespace
{

void getCurrentTransmitPower(Model& model, Exchange& exchange)
{
    const Radio& radio = moduleRadioOf(model, exchange);
    Record power = exchange.blank("power");
    std::uint32_t chain = 0;
    for (const char* name : {"chain0", "chain1", "chain2", "chain3"})
        power.setSigned(name, model.chainPower(radio, chain++));
    exchange.setRecord("power", power);
}

void getMauiVersion(Model& model, Exchange& exchange)
{
    exchange.setText("version", model.module.mauiVersion);
}

void downloadWirelessConf(Model& model, Exchange& exchange)
{
    const std::string path = exchange.text("path");
    if (path.empty() || path[0] != '/')
        throw Refused{Outcome::kInvalidValue};
    model.startDownload(path);
}

void updatePasswordFile(Model& model, Exchange&)
{
    model.startDownload("");
}

void getDownloadState(Model& model, Exchange& exchange)
{
    exchange.setNumber("state", static_cast<std::uint32_t>(model.module.download.state));
}

// --- Current associations: the stations of all radios, in the order of the radios and their interfaces -----------------------

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

void answerAssociation(const Model& model, const Association& association, Exchange& exchange)
{
    const Station& station = *association.station;
    const Interface& interface = *association.interface;
    Record data = exchange.blank("data");
    data.setAddress("macAddress", station.address);
    data.setAddress("bssid", interface.bssid);
    data.setText("ssid", interface.settings.text("ssid"));
    data.setText("name", interface.name);
    data.setText("band", toString(interface.radio->band));
    data.setNumber("channel", interface.radio->settings.number("channel"));
    data.setSigned("rssi", station.rssi);
    data.setNumber("txRate", station.txRate);
    data.setNumber("rxRate", station.rxRate);
    data.setNumber("secondsAssociated", model.secondsAssociated(station));
    exchange.setRecord("data", data);
}

void getCurrentAssociationNumber(Model& model, Exchange& exchange)
{
    exchange.setNumber("number", count(associations(model)));
}

void getCurrentAssociationAt(Model& model, Exchange& exchange)
{
    const std::vector<Association> all = associations(model);
    answerAssociation(model, elementAt(all, exchange.number("index")), exchange);
}

void getCurrentAssociation(Model& model, Exchange& exchange)
{
    const MacAddress address = exchange.address("mac_addr");
    for (const Association& each : associations(model))
        if (each.station->address == address)
            return answerAssociation(model, each, exchange);
    throw Refused{Outcome::kNoSuchObject};
}

} // namespace

void addModuleHandlers(HandlerTable& table)
{
    table.add("TarnGetRadioQuantennaCurrentTransmitPower", getCurrentTransmitPower);
    table.add("TarnGetQuantennaMauiVersion", getMauiVersion);
    table.add("TarnDownloadQuantennaWirelessConf", downloadWirelessConf);
    table.add("TarnUpdateQuantennaPasswordFile", updatePasswordFile);
    table.add("TarnGetQuantennaDownloadState", getDownloadState);
    table.add("TarnGetQuantennaSoniqCurrentAssociationNumber", getCurrentAssociationNumber);
    table.add("TarnGetQuantennaSoniqCurrentAssociationAt", getCurrentAssociationAt);
    table.add("TarnGetQuantennaSoniqCurrentAssociation", getCurrentAssociation);
}

} // namespace tarn::simulator
