// Statistics of interfaces and of associated stations.
#include "proxy_test.h"

using testing::Each;
using testing::ElementsAre;

namespace tarn::test
{
namespace
{

using Statistics = ProxyTest;

// Fills every result word with its own offset.
mock::Call& replyOffsets(mock::Call& call)
{
    for (const std::uint32_t offset : {1152u, 1156u, 1160u, 1164u, 1168u, 9352u, 9356u, 9360u, 9364u, 9368u})
        call.replyWord(offset, offset);
    return call;
}

TEST_F(Statistics, AssociationGettersReadAPlaceEach)
{
    for (const std::uint32_t command : {90u, 91u, 92u, 93u})
    {
        mock::Call call = expectOnWifi0(command).word(kParam1, 11);
        replyOffsets(call);
    }

    std::uint32_t rssi = 0;
    std::uint32_t transmitMcs = 0;
    std::uint32_t receiveMcs = 0;
    std::uint32_t seconds = 0;
    EXPECT_EQ(tarn_qcsapi_wifi_get_rssi_in_dbm_per_association("ledd", "wifi0", 11, &rssi), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_get_tx_mcs_per_association("ledd", "wifi0", 11, &transmitMcs), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_get_rx_mcs_per_association("ledd", "wifi0", 11, &receiveMcs), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_get_time_associated_per_association("ledd", "wifi0", 11, &seconds), 0);
    EXPECT_EQ(rssi, 9352u);
    EXPECT_EQ(transmitMcs, 9356u);
    EXPECT_EQ(receiveMcs, 9360u);
    EXPECT_EQ(seconds, 1152u);
}

// The words do not come in the order of the arguments.
TEST_F(Statistics, NodeStatisticsCrossTheirWords)
{
    mock::Call call = expectOnWifi0(94).word(kParam1, 11).status(6);
    replyOffsets(call);

    std::uint32_t words[5] = {};
    std::uint32_t block[6] = {0, 0, 0, 0, 0, kUntouched};
    EXPECT_EQ(
        tarn_qcsapi_wifi_get_node_stats("ledd", "wifi0", 11, &words[0], &words[1], &words[2], &words[3], &words[4], block), 6);
    EXPECT_THAT(words, ElementsAre(9352, 9364, 9368, 9356, 9360));
    EXPECT_THAT(block, ElementsAre(1152, 1156, 1160, 1164, 1168, kUntouched));
}

TEST_F(Statistics, NodeStatisticsWithoutAnyOutputAreStillAskedFor)
{
    mock::Call call = expectOnWifi0(94).word(kParam1, 11).status(6);
    replyOffsets(call);
    EXPECT_EQ(tarn_qcsapi_wifi_get_node_stats("ledd", "wifi0", 11, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), 6);
}

TEST_F(Statistics, EachOutputOfTheNodeStatisticsMayBeLeftOut)
{
    const std::uint32_t expected[] = {9352, 9364, 9368, 9356, 9360, 1152};
    for (std::size_t only = 0; only != std::size(expected); ++only)
    {
        mock::Call call = expectOnWifi0(94);
        replyOffsets(call);

        std::uint32_t written[5] = {};
        const auto at = [&](std::size_t index) { return index == only ? written : nullptr; };
        EXPECT_EQ(tarn_qcsapi_wifi_get_node_stats("ledd", "wifi0", 0, at(0), at(1), at(2), at(3), at(4), at(5)), 0);
        EXPECT_EQ(written[0], expected[only]);
    }
}

TEST_F(Statistics, FailureLeavesTheNodeStatistics)
{
    expectOnWifi0(94).fail(7);

    std::uint32_t words[10];
    for (std::uint32_t& word : words)
        word = kUntouched;
    EXPECT_EQ(
        tarn_qcsapi_wifi_get_node_stats("ledd", "wifi0", 0, &words[0], &words[1], &words[2], &words[3], &words[4], &words[5]),
        -1);
    EXPECT_THAT(words, Each(kUntouched));
}

TEST_F(Statistics, RssiOfEachChainMayBeLeftOut)
{
    mock::Call all = expectOnWifi0(87);
    replyOffsets(all);
    std::uint32_t rssi[4] = {};
    EXPECT_EQ(tarn_qcsapi_wifi_get_rssi_by_chain("ledd", "wifi0", &rssi[0], &rssi[1], &rssi[2], &rssi[3]), 0);
    EXPECT_THAT(rssi, ElementsAre(1152, 1156, 1160, 1164));

    for (std::size_t only = 0; only != std::size(rssi); ++only)
    {
        mock::Call call = expectOnWifi0(87);
        replyOffsets(call);
        std::uint32_t word = 0;
        const auto at = [&](std::size_t index) { return index == only ? &word : nullptr; };
        EXPECT_EQ(tarn_qcsapi_wifi_get_rssi_by_chain("ledd", "wifi0", at(0), at(1), at(2), at(3)), 0);
        EXPECT_EQ(word, rssi[only]);
    }

    expectOnWifi0(87).status(6);
    EXPECT_EQ(tarn_qcsapi_wifi_get_rssi_by_chain("ledd", "wifi0", nullptr, nullptr, nullptr, nullptr), 6);
}

TEST_F(Statistics, TransmitPowerNamesNoInterface)
{
    mock::Call call = expectCommand(88);
    replyOffsets(call);

    std::uint32_t power[4] = {};
    EXPECT_EQ(tarn_qcsapi_calcmd_get_tx_power("ledd", &power[0], &power[1], &power[2], &power[3]), 0);
    EXPECT_THAT(power, ElementsAre(1152, 1156, 1160, 1164));
}

TEST_F(Statistics, TransmitPowerNeedsAllItsOutputs)
{
    std::uint32_t power = kUntouched;
    for (std::size_t missing = 0; missing != 4; ++missing)
    {
        const auto at = [&](std::size_t index) { return index == missing ? nullptr : &power; };
        EXPECT_EQ(tarn_qcsapi_calcmd_get_tx_power("ledd", at(0), at(1), at(2), at(3)), -1);
    }
    EXPECT_EQ(tarn_qcsapi_calcmd_get_tx_power("ledd", nullptr, nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(platform.traceTexts(), std::vector<std::string>(5, "pwr is NULL"));
    EXPECT_EQ(power, kUntouched);
}

TEST_F(Statistics, ConnectionModeIsATextOfAnAssociation)
{
    expectOnWifi0(89).word(kParam1, 11).replyText(kOut, "11ac");

    char mode[8] = "";
    EXPECT_EQ(tarn_qcsapi_wifi_get_connection_mode("ledd", "wifi0", 11, mode, sizeof mode), 0);
    EXPECT_STREQ(mode, "11ac");
}

TEST_F(Statistics, NodeInformationIsAskedForByIndexAndAddress)
{
    const std::vector<std::uint8_t> name = nonZeroBytes(65);
    const std::uint8_t mac[6] = {0x02, 0x00, 0xFF, 0x00, 0x80, 0x09};
    expectCommand(105).bytes(kIfname, name.data(), 65).word(kParam1, 0xFFFF).bytes(kParam2, mac, sizeof mac);

    std::uint8_t information[536] = {};
    EXPECT_EQ(tarn_qcsapi_wifi_get_node_infoset("ledd", reinterpret_cast<const char*>(name.data()), 0xFFFF, mac, information),
              0);
}

TEST_F(Statistics, NodeIndexHas16Bits)
{
    const std::uint32_t wide = 65537;
    const std::uint8_t mac[6] = {};
    const char name[65] = "wifi0";
    expectOnWifi0(105).word(kParam1, 1);

    std::uint8_t information[536] = {};
    EXPECT_EQ(tarn_qcsapi_wifi_get_node_infoset("ledd", name, static_cast<std::uint16_t>(wide), mac, information), 0);
}

TEST_F(Statistics, AddressOfAStationIsAskedForByItsIndex)
{
    const std::uint8_t mac[6] = {0x02, 0x00, 0xFF, 0x00, 0x80, 0x09};
    expectOnWifi0(96).word(kParam1, 11).replyBytes(kOut, mac, sizeof mac);

    std::uint8_t address[6] = {};
    EXPECT_EQ(tarn_qcsapi_wifi_get_associated_device_mac_addr("ledd", "wifi0", 11, address), 0);
    EXPECT_THAT(address, testing::ElementsAreArray(mac));
}

TEST_F(Statistics, EachMissingWordOfAnAssociationIsNamed)
{
    EXPECT_EQ(tarn_qcsapi_wifi_get_rssi_in_dbm_per_association("ledd", "wifi0", 11, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_tx_mcs_per_association("ledd", "wifi0", 11, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_rx_mcs_per_association("ledd", "wifi0", 11, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_time_associated_per_association("ledd", "wifi0", 11, nullptr), -1);
    EXPECT_THAT(platform.traceTexts(),
                ElementsAre("rssi is NULL", "tx_mcs is NULL", "rx_mcs is NULL", "time_in_second is NULL"));
}

TEST_F(Statistics, AccessPointIsAskedForByItsIndex)
{
    expectOnWifi0(104).word(kParam1, 3);

    std::uint8_t properties[632] = {};
    EXPECT_EQ(tarn_qcsapi_wifi_get_properties_AP("ledd", "wifi0", 3, properties), 0);
}

TEST_F(Statistics, EachMissingArgumentIsNamed)
{
    const std::uint8_t mac[6] = {};
    EXPECT_EQ(tarn_qcsapi_get_interface_stats("ledd", nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_get_interface_stats("ledd", "wifi0", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_rssi_by_chain("ledd", nullptr, nullptr, nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_node_stats("ledd", nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_node_infoset("ledd", nullptr, 0, nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_node_infoset("ledd", "wifi0", 0, nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_node_infoset("ledd", "wifi0", 0, mac, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_associated_device_mac_addr("ledd", "wifi0", 0, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_get_preamble_error("ledd", "wifi0", nullptr), -1);
    EXPECT_THAT(platform.traceTexts(),
                ElementsAre("ifname is NULL", "stats is NULL", "ifname is NULL", "intf_name is NULL", "ifname is NULL",
                            "mac_addr is NULL", "nis is NULL", "mac_addr is NULL", "preamble_error is NULL"));
}

} // namespace
} // namespace tarn::test
