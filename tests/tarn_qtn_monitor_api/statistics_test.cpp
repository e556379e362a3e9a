// Statistics of interfaces and of associated stations.
#include "proxy_test.h"

using testing::ElementsAre;

namespace tarn::test
{
namespace
{

using Statistics = ProxyTest;

TEST_F(Statistics, AssociationGettersReadAPlaceEach)
{
    expectWordsFrom({9352}, 90, tarn_qcsapi_wifi_get_rssi_in_dbm_per_association);
    expectWordsFrom({9356}, 91, tarn_qcsapi_wifi_get_tx_mcs_per_association);
    expectWordsFrom({9360}, 92, tarn_qcsapi_wifi_get_rx_mcs_per_association);
    expectWordsFrom({1152}, 93, tarn_qcsapi_wifi_get_time_associated_per_association);
}

// The words do not come in the order of the arguments.
TEST_F(Statistics, NodeStatisticsCrossTheirWords)
{
    mock::Call call = expectOnWifi0(94).word(kParam1, 11).status(6);
    replyOffsets(call);

    std::uint32_t words[5] = {};
    std::uint32_t block[6] = {0, 0, 0, 0, 0, kUntouched};
    EXPECT_EQ(tarn_qcsapi_wifi_get_node_stats("ledd", kWifi0, 11, &words[0], &words[1], &words[2], &words[3], &words[4], block),
              6);
    EXPECT_THAT(words, ElementsAre(9352, 9364, 9368, 9356, 9360));
    EXPECT_THAT(block, ElementsAre(1152, 1156, 1160, 1164, 1168, kUntouched));
}

TEST_F(Statistics, EachOutputOfTheNodeStatisticsMayBeLeftOut)
{
    const std::uint32_t expected[] = {9352, 9364, 9368, 9356, 9360, 1152, kUntouched};
    for (std::size_t only = 0; only != std::size(expected); ++only) // the last time without any output
    {
        mock::Call call = expectOnWifi0(94);
        replyOffsets(call);

        std::uint32_t written[5] = {kUntouched};
        const auto at = [&](std::size_t index) { return index == only ? written : nullptr; };
        EXPECT_EQ(tarn_qcsapi_wifi_get_node_stats("ledd", kWifi0, 0, at(0), at(1), at(2), at(3), at(4), at(5)), 0);
        EXPECT_EQ(written[0], expected[only]);
    }
}

TEST_F(Statistics, RssiOfEachChainMayBeLeftOut)
{
    expectWordsFrom({1152, 1156, 1160, 1164}, 87, tarn_qcsapi_wifi_get_rssi_by_chain);

    const std::uint32_t expected[] = {1152, 1156, 1160, 1164, kUntouched};
    for (std::size_t only = 0; only != std::size(expected); ++only) // the last time without any output
    {
        mock::Call call = expectOnWifi0(87);
        replyOffsets(call);

        std::uint32_t word = kUntouched;
        const auto at = [&](std::size_t index) { return index == only ? &word : nullptr; };
        EXPECT_EQ(tarn_qcsapi_wifi_get_rssi_by_chain("ledd", kWifi0, at(0), at(1), at(2), at(3)), 0);
        EXPECT_EQ(word, expected[only]);
    }
}

TEST_F(Statistics, TransmitPowerNamesNoInterface)
{
    expectWordsFrom({1152, 1156, 1160, 1164}, 88, tarn_qcsapi_calcmd_get_tx_power);
}

TEST_F(Statistics, TransmitPowerNeedsAllItsOutputs)
{
    EXPECT_EQ(missing(tarn_qcsapi_calcmd_get_tx_power), "pwr, pwr, pwr, pwr");

    std::uint32_t power = kUntouched;
    for (std::size_t absent = 0; absent != 4; ++absent)
    {
        const auto at = [&](std::size_t index) { return index == absent ? nullptr : &power; };
        EXPECT_EQ(tarn_qcsapi_calcmd_get_tx_power("ledd", at(0), at(1), at(2), at(3)), -1);
        EXPECT_EQ(platform.traceTexts().back(), "pwr is NULL");
    }
    EXPECT_EQ(power, kUntouched);
}

TEST_F(Statistics, ConnectionModeIsATextOfAnAssociation)
{
    expectOnWifi0(89).word(kParam1, 11).replyText(kOut, "11ac");

    char mode[8] = "";
    EXPECT_EQ(tarn_qcsapi_wifi_get_connection_mode("ledd", kWifi0, 11, mode, sizeof mode), 0);
    EXPECT_STREQ(mode, "11ac");
}

TEST_F(Statistics, NodeInformationIsAskedForByIndexAndAddress)
{
    const std::uint8_t mac[6] = {0x02, 0x00, 0xFF, 0x00, 0x80, 0x09};
    expectOnWifi0(105).word(kParam1, 0xFFFF).bytes(kParam2, mac, sizeof mac);

    std::uint8_t information[536] = {};
    EXPECT_EQ(tarn_qcsapi_wifi_get_node_infoset("ledd", kWifi0, 0xFFFF, mac, information), 0);
}

TEST_F(Statistics, NodeIndexHas16Bits)
{
    const std::uint32_t wide = 65537;
    const std::uint8_t mac[6] = {};
    expectOnWifi0(105).word(kParam1, 1);

    std::uint8_t information[536] = {};
    EXPECT_EQ(tarn_qcsapi_wifi_get_node_infoset("ledd", kWifi0, static_cast<std::uint16_t>(wide), mac, information), 0);
}

TEST_F(Statistics, AddressOfAStationIsAskedForByItsIndex)
{
    const std::uint8_t mac[6] = {0x02, 0x00, 0xFF, 0x00, 0x80, 0x09};
    expectOnWifi0(96).word(kParam1, 11).replyBytes(kOut, mac, sizeof mac);

    std::uint8_t address[6] = {};
    EXPECT_EQ(tarn_qcsapi_wifi_get_associated_device_mac_addr("ledd", kWifi0, 11, address), 0);
    EXPECT_THAT(address, testing::ElementsAreArray(mac));
}

TEST_F(Statistics, AccessPointIsAskedForByItsIndex)
{
    expectOnWifi0(104).word(kParam1, 3);

    std::uint8_t properties[632] = {};
    EXPECT_EQ(tarn_qcsapi_wifi_get_properties_AP("ledd", kWifi0, 3, properties), 0);
}

TEST_F(Statistics, EachMissingArgumentIsNamed)
{
    EXPECT_EQ(missing(tarn_qcsapi_get_interface_stats), "ifname, stats");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_connection_mode), "intf_name, p_wifi_phy_mode");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_rssi_in_dbm_per_association), "intf_name, rssi");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_tx_mcs_per_association), "intf_name, tx_mcs");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_rx_mcs_per_association), "intf_name, rx_mcs");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_time_associated_per_association), "intf_name, time_in_second");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_associated_device_mac_addr), "intf_name, mac_addr");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_properties_AP), "intf_name, ap_property");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_node_infoset), "ifname, mac_addr, nis");
    EXPECT_EQ(missing(tarn_qcsapi_get_vap_extstats), "ifname, stats");
    EXPECT_EQ(missing(tarn_qcsapi_get_max_bitrate), "ifname, max_bitrate");
    EXPECT_EQ(missing(tarn_qcsapi_get_cca_stats), "ifname, stats");
    EXPECT_EQ(missing(tarn_qcsapi_get_preamble_error), "ifname, preamble_error");
}

// All outputs of these may be left out.
TEST_F(Statistics, OnlyTheInterfaceIsRequiredWhereOutputsMayBeLeftOut)
{
    EXPECT_EQ(tarn_qcsapi_wifi_get_rssi_by_chain("ledd", nullptr, nullptr, nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_node_stats("ledd", nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), -1);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("ifname is NULL", "intf_name is NULL"));
}

} // namespace
} // namespace tarn::test
