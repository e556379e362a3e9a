#include "records.h"

#include "base/join.h"

namespace tarn::simulator
{

MobilityDomain mobilityDomainOf(const Interface& interface)
{
    // NOLINTNEXTLINE(bugprone-unchecked-optional-access): the setting accepts nothing but mobility domains
    return *parseMobilityDomain(interface.settings.text("mobilityDomain"));
}

std::string channelText(const std::vector<std::uint32_t>& channels)
{
    return base::join(channels, ",");
}

void fillRadio(Record& record, const Radio& radio)
{
    record.fill(radio.settings);
    record.setNumber("radioId", radio.id);
    record.setText("name", radio.name);
    record.setText("band", toString(radio.band));
    record.setText("driverVersion", radio.driverVersion);
    record.setNumber("ready", Model::isReady(radio) ? 1 : 0);
    record.setNumber("secondaryChannel", Model::secondaryChannel(radio, radio.settings.number("channel")));
    record.setNumber("chains", radio.chains);
    record.setNumber("temperature", radio.temperature);
    record.setNumber("ssidNumber", radio.interfaces.size());
    record.setNumber("onModule", radio.onModule ? 1 : 0);
    record.setNumber("neighboringStatus", static_cast<std::uint32_t>(radio.scan.status));
    record.setNumbers("possibleChannels", Model::allowedChannels(radio));
}

void fillNeighbour(Record& record, const Neighbour& neighbour)
{
    record.setAddress("bssid", neighbour.bssid);
    record.setText("ssid", neighbour.ssid);
    record.setText("band", toString(neighbour.band));
    record.setNumber("channel", neighbour.channel);
    record.setNumber("bandwidth", neighbour.bandwidth);
    record.setSigned("rssi", neighbour.rssi);
    record.setText("security", neighbour.security);
}

void fillInterface(Record& record, const Interface& interface)
{
    record.fill(interface.settings);
    record.setNumber("radioId", interface.radio->id);
    record.setNumber("ssidId", interface.id);
    record.setText("name", interface.name);
    record.setAddress("bssid", interface.bssid);
    record.setNumber("primary", interface.id == 1 ? 1 : 0);
    const MobilityDomain domain = mobilityDomainOf(interface);
    record.setBlock("mobilityDomain", domain.data(), domain.size());
}

void fillAccessPoint(Record& record, const Interface& interface)
{
    record.fill(interface.settings);
    record.setNumber("stations", interface.stations.size());
}

void fillWps(Record& record, const Model& model, const Interface& interface)
{
    const WpsWindow& window = interface.window;
    const bool isOpen = window.status == WpsStatus::kOpen;
    record.fill(interface.settings);
    record.setNumber("windowStatus", static_cast<std::uint32_t>(window.status));
    record.setNumber("windowSecondsLeft", isOpen ? (window.closes - model.now() + 999) / 1000 : 0);
    record.setNumber("windowMethod", static_cast<std::uint32_t>(window.method));
    record.setText("savedApPin", interface.savedApPin);
}

void fillStation(Record& record, const Model& model, const Interface& interface, const Station& station)
{
    record.setAddress("macAddress", station.address);
    record.setNumber("associationIndex", static_cast<std::uint64_t>(&station - interface.stations.data()));
    record.setSigned("rssi", station.rssi);
    record.setNumber("txMcs", station.txMcs);
    record.setNumber("rxMcs", station.rxMcs);
    record.setNumber("txRate", station.txRate);
    record.setNumber("rxRate", station.rxRate);
    record.setNumber("secondsAssociated", model.secondsAssociated(station));
    record.setNumber("chains", station.chains);
    record.setText("phyMode", station.phyMode);
}

} // namespace tarn::simulator
