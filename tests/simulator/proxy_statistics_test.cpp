#include "support.h"

namespace simulator_test
{

using ProxyStatisticsTest = SimulatorTest;

TEST_F(ProxyStatisticsTest, StationIsReadByItsIndex)
{
    passSeconds(30);
    std::uint32_t word = 0;
    std::uint8_t mac[6];
    char mode[16];
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_rssi_in_dbm_per_association)("wifi0", 1, &word), kDone);
    EXPECT_EQ(static_cast<std::int32_t>(word), -63);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_tx_mcs_per_association)("wifi0", 1, &word), kDone);
    EXPECT_EQ(word, 9u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_rx_mcs_per_association)("wifi0", 1, &word), kDone);
    EXPECT_EQ(word, 8u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_time_associated_per_association)("wifi0", 1, &word), kDone);
    EXPECT_EQ(word, 30u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_associated_device_mac_addr)("wifi1", 0, mac), kDone);
    EXPECT_EQ(std::memcmp(kGuestStation.data(), mac, sizeof mac), 0);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_connection_mode)("wifi0", 1, mode, sizeof mode), kDone);
    EXPECT_STREQ(mode, "11ac");

    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_rssi_in_dbm_per_association)("wifi0", 3, &word), kModuleNoSuchObject);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_tx_mcs_per_association)("wifi9", 0, &word), kModuleNoSuchObject);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_associated_device_mac_addr)("wifi1", 1, mac), kModuleNoSuchObject);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_connection_mode)("wifi0", 3, mode, sizeof mode), kModuleNoSuchObject);
}

TEST_F(ProxyStatisticsTest, NodeStatsHaveTheirFiveWordsAndTheirBlock)
{
    passSeconds(30);
    std::uint32_t rssi = 0;
    std::uint32_t txRate = 0;
    std::uint32_t rxRate = 0;
    std::uint32_t txMcs = 0;
    std::uint32_t rxMcs = 0;
    std::uint32_t counters[5] = {};
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_node_stats)("wifi0", 1, &rssi, &txRate, &rxRate, &txMcs, &rxMcs, counters), kDone);
    EXPECT_EQ(static_cast<std::int32_t>(rssi), -63);
    EXPECT_EQ(txRate, 866u);
    EXPECT_EQ(rxRate, 780u);
    EXPECT_EQ(txMcs, 9u);
    EXPECT_EQ(rxMcs, 8u);
    EXPECT_EQ(counters[0], 600u);
    EXPECT_EQ(counters[3], 600000u);
}

TEST_F(ProxyStatisticsTest, NodeInfosetIsFoundByAddressOrIndex)
{
    std::uint8_t byAddress[536];
    std::uint8_t byIndex[536];
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_node_infoset)(kWifi0, 99, kSecondStation.data(), byAddress), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_node_infoset)(kWifi0, 1, MacAddress{}.data(), byIndex), kDone);
    EXPECT_EQ(std::memcmp(byAddress, byIndex, sizeof byIndex), 0);
    const Record nis = recordOf("tarn_qcsapi_wifi_get_node_infoset.nis", byAddress);
    EXPECT_EQ(nis.address("macAddress"), kSecondStation);
    EXPECT_EQ(nis.signedNumber("rssi"), -63);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_node_infoset)(kWifi0, 1, kStranger.data(), byAddress), kModuleNoSuchObject);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_node_infoset)(kNobody, 1, kSecondStation.data(), byAddress), kModuleNoSuchObject);
}

TEST_F(ProxyStatisticsTest, RssiByChainIsTheDeviceServicesToo)
{
    std::uint32_t chains[4] = {};
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_rssi_by_chain)("wifi0", &chains[0], &chains[1], &chains[2], &chains[3]), kDone);
    for (std::uint32_t i = 0; i < 4; ++i)
    {
        std::uint32_t device = 0;
        EXPECT_EQ(CALL(TarnGetRadioChainRssiAt)(1, i, &device), kDone);
        EXPECT_EQ(device, chains[i]);
    }
}

TEST_F(ProxyStatisticsTest, InterfaceCountsComingsAndGoings)
{
    std::uint8_t raw[24];
    EXPECT_EQ(CALL(tarn_qcsapi_get_vap_extstats)(kWifi0, raw), kDone);
    EXPECT_EQ(recordOf("tarn_qcsapi_get_vap_extstats.stats", raw).number("associations"), 3u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_disassociate_sta)("wifi0", kFirstStation.data()), kDone);
    passSeconds(10);
    EXPECT_EQ(CALL(tarn_qcsapi_get_vap_extstats)(kWifi0, raw), kDone);
    const Record stats = recordOf("tarn_qcsapi_get_vap_extstats.stats", raw);
    EXPECT_EQ(stats.number("associations"), 4u);
    EXPECT_EQ(stats.number("disassociations"), 1u);
    EXPECT_EQ(stats.number("stations"), 3u);

    std::uint8_t interfaceStats[84];
    EXPECT_EQ(CALL(tarn_qcsapi_get_interface_stats)("wifi0", interfaceStats), kDone);
    EXPECT_EQ(recordOf("tarn_qcsapi_get_interface_stats.stats", interfaceStats).number("stations"), 3u);
    EXPECT_EQ(CALL(tarn_qcsapi_get_interface_stats)("wifi9", interfaceStats), kModuleNoSuchObject);
}

TEST_F(ProxyStatisticsTest, RatesAreListed)
{
    char rates[64] = {};
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_rates)(kWifi0, 0, rates, sizeof rates), kDone);
    EXPECT_STREQ(rates, "6,12,24");
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_rates)(kWifi0, 2, rates, sizeof rates), kDone);
    EXPECT_STREQ(rates, "6,9,12,18,24,36,48,54"); // 5 GHz has none of 802.11b
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_rates)(kWifi0, 3, rates, sizeof rates), kModuleNoSuchObject);

    char bitrate[16];
    EXPECT_EQ(CALL(tarn_qcsapi_get_max_bitrate)(kWifi0, bitrate, sizeof bitrate), kDone);
    EXPECT_STREQ(bitrate, "1733"); // four streams of 433.3 Mbit/s at 80 MHz
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_bw)("wifi0", 20), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_get_max_bitrate)(kWifi0, bitrate, sizeof bitrate), kDone);
    EXPECT_STREQ(bitrate, "385");
}

TEST_F(ProxyStatisticsTest, AirIsMeasured)
{
    std::uint8_t raw[20];
    EXPECT_EQ(CALL(tarn_qcsapi_get_cca_stats)("wifi0", raw), kDone);
    const Record stats = recordOf("tarn_qcsapi_get_cca_stats.stats", raw);
    EXPECT_EQ(stats.number("channelLoad"), 12u); // two neighbours of 5 %, and its own stations
    EXPECT_EQ(stats.number("channelLoad"), stats.number("transmitting") + stats.number("receiving") + stats.number("others"));
    EXPECT_EQ(stats.signedNumber("noise"), -96);
    TarnRadioStats radioStats;
    EXPECT_EQ(CALL(TarnGetRadioStats)(1, &radioStats), kDone);
    EXPECT_EQ(recordOf("TarnRadioStats", radioStats).number("channelLoad"), 12u);

    passSeconds(120);
    std::uint32_t errors[2] = {};
    EXPECT_EQ(CALL(tarn_qcsapi_get_preamble_error)("wifi0", errors), kDone);
    EXPECT_EQ(errors[0], 12u);
    EXPECT_EQ(errors[1], 2u);
}

} // namespace simulator_test
