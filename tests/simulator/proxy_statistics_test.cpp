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
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_rssi_in_dbm_per_association)("wifi0", 1, &word));
    EXPECT_EQ(-63, static_cast<std::int32_t>(word));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_tx_mcs_per_association)("wifi0", 1, &word));
    EXPECT_EQ(7U, word);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_rx_mcs_per_association)("wifi0", 1, &word));
    EXPECT_EQ(6U, word);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_time_associated_per_association)("wifi0", 1, &word));
    EXPECT_EQ(30U, word);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_associated_device_mac_addr)("wifi1", 0, mac));
    EXPECT_EQ(0, std::memcmp(kGuestStation.data(), mac, sizeof mac));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_connection_mode)("wifi0", 1, mode, sizeof mode));
    EXPECT_STREQ("11ac", mode);

    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_wifi_get_rssi_in_dbm_per_association)("wifi0", 3, &word));
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_wifi_get_tx_mcs_per_association)("wifi9", 0, &word));
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_wifi_get_associated_device_mac_addr)("wifi1", 1, mac));
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_wifi_get_connection_mode)("wifi0", 3, mode, sizeof mode));
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
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_node_stats)("wifi0", 1, &rssi, &txRate, &rxRate, &txMcs, &rxMcs, counters));
    EXPECT_EQ(-63, static_cast<std::int32_t>(rssi));
    EXPECT_EQ(585U, txRate);
    EXPECT_EQ(526U, rxRate);
    EXPECT_EQ(7U, txMcs);
    EXPECT_EQ(6U, rxMcs);
    EXPECT_EQ(600U, counters[0]);
    EXPECT_EQ(600000U, counters[3]);
}

TEST_F(ProxyStatisticsTest, NodeInfosetIsFoundByAddressOrIndex)
{
    std::uint8_t byAddress[536];
    std::uint8_t byIndex[536];
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_node_infoset)(kWifi0, 99, kSecondStation.data(), byAddress));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_node_infoset)(kWifi0, 1, MacAddress{}.data(), byIndex));
    EXPECT_EQ(0, std::memcmp(byAddress, byIndex, sizeof byIndex));
    const Record nis = recordOf("tarn_qcsapi_wifi_get_node_infoset.nis", byAddress);
    EXPECT_EQ(kSecondStation, nis.address("macAddress"));
    EXPECT_EQ(-63, nis.signedNumber("rssi"));
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_wifi_get_node_infoset)(kWifi0, 1, kStranger.data(), byAddress));
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_wifi_get_node_infoset)(kNobody, 1, kSecondStation.data(), byAddress));
}

TEST_F(ProxyStatisticsTest, RssiByChainIsTheDeviceServicesToo)
{
    std::uint32_t chains[4] = {};
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_rssi_by_chain)("wifi0", &chains[0], &chains[1], &chains[2], &chains[3]));
    for (std::uint32_t i = 0; i < 4; ++i)
    {
        std::uint32_t device = 0;
        EXPECT_EQ(kDone, CALL(TarnGetRadioChainRssiAt)(1, i, &device));
        EXPECT_EQ(device, chains[i]);
    }
}

TEST_F(ProxyStatisticsTest, InterfaceCountsComingsAndGoings)
{
    std::uint8_t raw[24];
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_get_vap_extstats)(kWifi0, raw));
    EXPECT_EQ(3U, recordOf("tarn_qcsapi_get_vap_extstats.stats", raw).number("associations"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_disassociate_sta)("wifi0", kFirstStation.data()));
    passSeconds(10);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_get_vap_extstats)(kWifi0, raw));
    const Record stats = recordOf("tarn_qcsapi_get_vap_extstats.stats", raw);
    EXPECT_EQ(4U, stats.number("associations"));
    EXPECT_EQ(1U, stats.number("disassociations"));
    EXPECT_EQ(3U, stats.number("stations"));

    std::uint8_t interfaceStats[84];
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_get_interface_stats)("wifi0", interfaceStats));
    EXPECT_EQ(3U, recordOf("tarn_qcsapi_get_interface_stats.stats", interfaceStats).number("stations"));
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_get_interface_stats)("wifi9", interfaceStats));
}

TEST_F(ProxyStatisticsTest, RatesAreListed)
{
    char rates[64] = {};
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_rates)(kWifi0, 0, rates, sizeof rates));
    EXPECT_STREQ("6,12,24", rates);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_rates)(kWifi0, 2, rates, sizeof rates));
    EXPECT_STREQ("1,2,5.5,6,9,11,12,18,24,36,48,54", rates);
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_wifi_get_rates)(kWifi0, 3, rates, sizeof rates));

    char bitrate[16];
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_get_max_bitrate)(kWifi0, bitrate, sizeof bitrate));
    EXPECT_STREQ("1728", bitrate); // 108 Mbit/s for each of 4 streams and 4 times 20 MHz
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_bw)("wifi0", 20));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_get_max_bitrate)(kWifi0, bitrate, sizeof bitrate));
    EXPECT_STREQ("432", bitrate);
}

TEST_F(ProxyStatisticsTest, AirIsMeasured)
{
    std::uint8_t raw[20];
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_get_cca_stats)("wifi0", raw));
    const Record stats = recordOf("tarn_qcsapi_get_cca_stats.stats", raw);
    EXPECT_EQ(18U, stats.number("channelLoad"));
    EXPECT_EQ(stats.number("channelLoad"), stats.number("transmitting") + stats.number("receiving") + stats.number("others"));
    EXPECT_EQ(-96, stats.signedNumber("noise"));
    TarnRadioStats radioStats;
    EXPECT_EQ(kDone, CALL(TarnGetRadioStats)(1, &radioStats));
    EXPECT_EQ(18U, recordOf("TarnRadioStats", radioStats).number("channelLoad"));

    passSeconds(120);
    std::uint32_t errors[2] = {};
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_get_preamble_error)("wifi0", errors));
    EXPECT_EQ(12U, errors[0]);
    EXPECT_EQ(2U, errors[1]);
}

} // namespace simulator_test
