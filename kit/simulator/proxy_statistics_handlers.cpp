// The proxy's calls that read statistics and properties of interfaces of the Wi-Fi module and of their stations.
#include "handlers.h"
#include "records.h"

namespace tarn::simulator
{

namespace
{

Station& stationOf(Model& model, const Exchange& exchange)
{
    return model.stationAt(interfaceOf(model, exchange), exchange.number("association_index"));
}

void getInterfaceStats(Model& model, Exchange& exchange)
{
    const Interface& interface = interfaceOf(model, exchange);
    Record stats = exchange.blank("stats");
    model.counters(interface).fill(stats);
    stats.setNumber("stations", interface.stations.size());
    exchange.setRecord("stats", stats);
}

void getRssiByChain(Model& model, Exchange& exchange)
{
    const Radio& radio = radioOf(model, exchange);
    std::uint32_t chain = 0;
    for (const char* name : {"rssi0", "rssi1", "rssi2", "rssi3"})
        exchange.setSigned(name, model.chainRssi(radio, chain++));
}

void getConnectionMode(Model& model, Exchange& exchange)
{
    exchange.setText("p_wifi_phy_mode", model.stationAt(interfaceOf(model, exchange), exchange.number("value")).phyMode);
}

void getRssi(Model& model, Exchange& exchange)
{
    exchange.setSigned("rssi", stationOf(model, exchange).rssi);
}

void getTxMcs(Model& model, Exchange& exchange)
{
    exchange.setNumber("tx_mcs", stationOf(model, exchange).txMcs);
}

void getRxMcs(Model& model, Exchange& exchange)
{
    exchange.setNumber("rx_mcs", stationOf(model, exchange).rxMcs);
}

void getTimeAssociated(Model& model, Exchange& exchange)
{
    exchange.setNumber("time_in_second", model.secondsAssociated(stationOf(model, exchange)));
}

void getNodeStats(Model& model, Exchange& exchange)
{
    const Station& station = stationOf(model, exchange);
    const Counters counters = model.counters(station);
    exchange.setSigned("out0", station.rssi);
    exchange.setNumber("out1", station.txRate);
    exchange.setNumber("out2", station.rxRate);
    exchange.setNumber("out3", station.txMcs);
    exchange.setNumber("out4", station.rxMcs);
    exchange.setWords("node_stats",
                      {static_cast<std::uint32_t>(counters.txPackets), static_cast<std::uint32_t>(counters.rxPackets),
                       static_cast<std::uint32_t>(counters.txBytes), static_cast<std::uint32_t>(counters.rxBytes),
                       static_cast<std::uint32_t>(counters.txErrors)});
}

void getDeviceAddress(Model& model, Exchange& exchange)
{
    exchange.setAddress("mac_addr", stationOf(model, exchange).address);
}

// By its address; by its index where the address is all zeros.
void getNodeInfoset(Model& model, Exchange& exchange)
{
    Interface& interface = interfaceOf(model, exchange);
    const MacAddress address = exchange.address("mac_addr");
    const Station& station =
        address == MacAddress{} ? model.stationAt(interface, exchange.number("index")) : model.station(interface, address);
    Record nis = exchange.blank("nis");
    fillStation(nis, model, interface, station);
    model.counters(station).fill(nis);
    exchange.setRecord("nis", nis);
}

void getRates(Model& model, Exchange& exchange)
{
    static const char* const kRates[] = {"6,12,24", "6,9,12,18,24,36,48,54", "1,2,5.5,6,9,11,12,18,24,36,48,54"};
    interfaceOf(model, exchange);
    const std::string rates = elementAt(kRates, exchange.number("rate_type"));
    exchange.setBlock("rates", {rates.begin(), rates.end()});
}

void getVapExtStats(Model& model, Exchange& exchange)
{
    const Interface& interface = interfaceOf(model, exchange);
    const Counters counters = model.counters(interface);
    Record stats = exchange.blank("stats");
    stats.setNumber("stations", interface.stations.size());
    stats.setNumber("associations", interface.associations);
    stats.setNumber("disassociations", interface.disassociations);
    stats.setNumber("txErrors", counters.txErrors);
    stats.setNumber("rxErrors", counters.rxErrors);
    stats.setNumber("txRetries", counters.txRetries);
    exchange.setRecord("stats", stats);
}

void getMaxBitrate(Model& model, Exchange& exchange)
{
    exchange.setText("max_bitrate", std::to_string(model.maximumRate(radioOf(model, exchange))));
}

void getCcaStats(Model& model, Exchange& exchange)
{
    const Radio& radio = radioOf(model, exchange);
    const std::uint32_t transmitting = radio.channelLoad / 2;
    const std::uint32_t receiving = radio.channelLoad / 4;
    Record stats = exchange.blank("stats");
    stats.setNumber("channelLoad", radio.channelLoad);
    stats.setNumber("transmitting", transmitting);
    stats.setNumber("receiving", receiving);
    stats.setNumber("others", radio.channelLoad - transmitting - receiving);
    stats.setSigned("noise", radio.noise);
    exchange.setRecord("stats", stats);
}

// Errors of short and of long preambles: the simulated radio has one of each for every so many seconds.
void getPreambleError(Model& model, Exchange& exchange)
{
    radioOf(model, exchange);
    exchange.setWords("preamble_error", {model.secondsSinceStart() / 10, model.secondsSinceStart() / 60});
}

} // namespace

void addProxyStatisticsHandlers(HandlerTable& table)
{
    table.add("tarn_qcsapi_get_interface_stats", getInterfaceStats);
    table.add("tarn_qcsapi_wifi_get_rssi_by_chain", getRssiByChain);
    table.add("tarn_qcsapi_wifi_get_connection_mode", getConnectionMode);
    table.add("tarn_qcsapi_wifi_get_rssi_in_dbm_per_association", getRssi);
    table.add("tarn_qcsapi_wifi_get_tx_mcs_per_association", getTxMcs);
    table.add("tarn_qcsapi_wifi_get_rx_mcs_per_association", getRxMcs);
    table.add("tarn_qcsapi_wifi_get_time_associated_per_association", getTimeAssociated);
    table.add("tarn_qcsapi_wifi_get_node_stats", getNodeStats);
    table.add("tarn_qcsapi_wifi_get_associated_device_mac_addr", getDeviceAddress);
    table.add("tarn_qcsapi_wifi_get_node_infoset", getNodeInfoset);
    table.add("tarn_qcsapi_wifi_get_rates", getRates);
    table.add("tarn_qcsapi_get_vap_extstats", getVapExtStats);
    table.add("tarn_qcsapi_get_max_bitrate", getMaxBitrate);
    table.add("tarn_qcsapi_get_cca_stats", getCcaStats);
    table.add("tarn_qcsapi_get_preamble_error", getPreambleError);
}

} // namespace tarn::simulator
