// The proxy's calls that read statistics and properties of interfaces of the Wi-Fi module and of their stations.
#include "handlers.h"
#include "records.h"

namespace tarn::simulator
{

namespace
{

Station& stationOf(Model& model, const CommandRequest& request)
{
    return elementAt(interfaceOf(model, request).stations, request.number("association_index"));
}

} // namespace

void addProxyStatisticsHandlers(HandlerTable& table)
{
    table.add({
        {"tarn_qcsapi_get_interface_stats",
         [](Model& model, CommandRequest& request)
         {
             const Interface& interface = interfaceOf(model, request);
             request.answer("stats", model.counters(interface), interface);
         }},
        {"tarn_qcsapi_wifi_get_rssi_by_chain",
         [](Model& model, CommandRequest& request)
         {
             const Radio& radio = radioOf(model, request);
             std::uint32_t chain = 0;
             for (const char* name : {"rssi0", "rssi1", "rssi2", "rssi3"})
                 request.setSigned(name, radio.chainRssi(chain++));
         }},
        {"tarn_qcsapi_wifi_get_connection_mode",
         [](Model& model, CommandRequest& request)
         {
             request.setText("p_wifi_phy_mode",
                             elementAt(interfaceOf(model, request).stations, request.number("value")).phyModeName());
         }},
        {"tarn_qcsapi_wifi_get_rssi_in_dbm_per_association",
         [](Model& model, CommandRequest& request) { request.setSigned("rssi", stationOf(model, request).rssi); }},
        {"tarn_qcsapi_wifi_get_tx_mcs_per_association",
         [](Model& model, CommandRequest& request) { request.setNumber("tx_mcs", stationOf(model, request).txMcs); }},
        {"tarn_qcsapi_wifi_get_rx_mcs_per_association",
         [](Model& model, CommandRequest& request) { request.setNumber("rx_mcs", stationOf(model, request).rxMcs); }},
        {"tarn_qcsapi_wifi_get_time_associated_per_association", [](Model& model, CommandRequest& request)
         { request.setNumber("time_in_second", model.secondsAssociated(stationOf(model, request))); }},
        {"tarn_qcsapi_wifi_get_node_stats",
         [](Model& model, CommandRequest& request)
         {
             const Station& station = stationOf(model, request);
             request.setSigned("out0", station.rssi);
             request.setNumber("out1", station.txRate);
             request.setNumber("out2", station.rxRate);
             request.setNumber("out3", station.txMcs);
             request.setNumber("out4", station.rxMcs);
             request.answer("node_stats", model.counters(station));
         }},
        {"tarn_qcsapi_wifi_get_associated_device_mac_addr",
         [](Model& model, CommandRequest& request) { request.setAddress("mac_addr", stationOf(model, request).address); }},
        // By the address, or by the index if the address is all zeros.
        {"tarn_qcsapi_wifi_get_node_infoset",
         [](Model& model, CommandRequest& request)
         {
             Interface& interface = interfaceOf(model, request);
             const MacAddress address = request.address("mac_addr");
             const Station& station =
                 address == MacAddress{} ? elementAt(interface.stations, request.number("index")) : interface.station(address);
             Record nis = request.blank("nis");
             fillStation(nis, model, interface, station);
             fill(nis, model.counters(station));
             request.setRecord("nis", nis);
         }},
        {"tarn_qcsapi_wifi_get_rates",
         [](Model& model, CommandRequest& request)
         {
             const Radio& radio = radioOf(model, request);
             const bool hasDsss = radio.band == Band::k2 && radio.settings.disable11b == 0;
             const std::string ofdm = "6,9,12,18,24,36,48,54";
             const std::string all = hasDsss ? "1,2,5.5,6,9,11,12,18,24,36,48,54" : ofdm;
             const std::string kinds[] = {"6,12,24", ofdm, all};
             const std::string& rates = elementAt(kinds, request.number("rate_type"));
             request.setBlock("rates", {rates.begin(), rates.end()});
         }},
        {"tarn_qcsapi_get_vap_extstats",
         [](Model& model, CommandRequest& request)
         {
             const Interface& interface = interfaceOf(model, request);
             request.answer("stats", model.counters(interface), interface);
         }},
        {"tarn_qcsapi_get_max_bitrate", [](Model& model, CommandRequest& request)
         { request.setText("max_bitrate", std::to_string(radioOf(model, request).maximumRate())); }},
        {"tarn_qcsapi_get_cca_stats",
         [](Model& model, CommandRequest& request)
         {
             const Radio& radio = radioOf(model, request);
             const std::uint32_t transmitting = radio.ownLoad - radio.ownLoad / 2;
             const std::uint32_t receiving = radio.ownLoad / 2;
             Record stats = request.blank("stats");
             fill(stats, radio);
             stats.setNumber("transmitting", transmitting);
             stats.setNumber("receiving", receiving);
             stats.setNumber("others", radio.channelLoad - transmitting - receiving);
             request.setRecord("stats", stats);
         }},
        // Errors of short and of long preambles: in the simulation one every 10 and one every 60 seconds.
        {"tarn_qcsapi_get_preamble_error",
         [](Model& model, CommandRequest& request)
         {
             radioOf(model, request);
             Record errors = request.blank("preamble_error");
             errors.setNumber("shortPreambles", model.secondsSinceStart() / 10);
             errors.setNumber("longPreambles", model.secondsSinceStart() / 60);
             request.setRecord("preamble_error", errors);
         }},
    });
}

} // namespace tarn::simulator
