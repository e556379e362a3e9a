// The gateway in its environment: clients, other networks and radar, and what the gateway makes of them.
#include "support.h"

#include "simulator/model.h"
#include "simulator/rates.h"

#include <sstream>

namespace simulator_test
{

using namespace tarn::simulator; // NOLINT(google-build-using-namespace): the names of its objects

constexpr char kWlan0[65] = "wlan0";
constexpr MacAddress kPhone = {0x02, 0, 0, 0, 1, 1};

// Two bands of one network; a phone that can do both, and an old printer of 802.11b. Channel 36 is crowded.
constexpr char kTwoBands[] = R"({ "scenario": 1,
  "radios": [
    { "name": "radio0", "band": "5GHz", "onModule": true, "channel": 36, "bandwidth": 20, "interfaces": [
      { "name": "wifi0", "bssid": "02:00:00:00:00:10", "ssid": "home", "passphrase": "correct horse" },
      { "name": "wifi1", "bssid": "02:00:00:00:00:11", "ssid": "guests", "ssidGroupId": 1 } ] },
    { "name": "radio1", "band": "2.4GHz", "onModule": true, "phyMode": "11ax", "channel": 1, "bandwidth": 20, "interfaces": [
      { "name": "wlan0", "bssid": "02:00:00:00:00:20", "ssid": "home", "passphrase": "correct horse" } ] } ],
  "air": { "neighbours": [
    { "bssid": "02:00:00:00:02:01", "band": "5GHz", "channel": 36, "rssi": -60, "load": 80 },
    { "bssid": "02:00:00:00:02:02", "band": "5GHz", "channel": 44, "rssi": -90, "load": 80 },
    { "bssid": "02:00:00:00:02:03", "band": "2.4GHz", "channel": 3, "rssi": -60, "load": 30 } ] },
  "clients": [
    { "address": "02:00:00:00:01:01", "phyMode": "11ax", "pathLoss": 60, "ssid": "home", "passphrase": "correct horse",
      "packetRate": 0 },
    { "address": "02:00:00:00:01:02", "phyMode": "11b", "bands": ["2.4GHz"], "streams": 1, "ssid": "home",
      "passphrase": "correct horse", "packetRate": 0 },
    { "address": "02:00:00:00:01:03", "ssid": "home", "passphrase": "wrong horse", "packetRate": 0 },
    { "address": "02:00:00:00:01:04", "ssid": "guests", "packetRate": 0 },
    { "address": "02:00:00:00:01:05", "ssid": "guests", "packetRate": 0, "patienceSeconds": 0 } ] })";

class EnvironmentTest : public SimulatorTest
{
protected:
    void SetUp() override
    {
        useScenario(kTwoBands);
        SimulatorTest::SetUp();
    }

    static std::uint32_t isReady()
    {
        std::uint32_t ready = 99;
        EXPECT_EQ(CALL(TarnGetRadioIsReady)(1, &ready), kDone);
        return ready;
    }

    static Record phone(std::uint32_t radioId)
    {
        TarnAccessPointAssociatedData raw;
        EXPECT_EQ(CALL(TarnGetAccessPointAssociated)(radioId, 1, kPhone.data(), &raw), kDone);
        return recordOf("TarnAccessPointAssociatedData", raw);
    }

    static std::uint32_t load(std::uint32_t radioId)
    {
        TarnRadioStats raw;
        EXPECT_EQ(CALL(TarnGetRadioStats)(radioId, &raw), kDone);
        return recordOf("TarnRadioStats", raw).number("channelLoad");
    }
};

// --- Clients -----------------------------------------------------------------------------------------------------------------

TEST_F(EnvironmentTest, ClientChoosesTheBandItHearsBetterAndComesBackElsewhere)
{
    EXPECT_EQ(stationCount(1, 1), 1u);
    EXPECT_EQ(stationCount(2, 1), 1u); // the printer
    EXPECT_EQ(CALL(TarnKickOutAccessPointAssociated)(1, 1, kPhone.data()), kDone);
    EXPECT_EQ(stationCount(1, 1), 0u);
    EXPECT_EQ(stationCount(2, 1), 2u); // the same network in the other band
    passSeconds(11);
    EXPECT_EQ(CALL(TarnKickOutAccessPointAssociated)(2, 1, kPhone.data()), kDone);
    EXPECT_EQ(stationCount(1, 1), 1u); // steered back
}

TEST_F(EnvironmentTest, ClientIsRefusedForAWrongPassphraseAndLeavesWhenTheNetworkChanges)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_key_passphrase)("wifi0", "wrong horse"), kDone);
    EXPECT_EQ(stationCount(1, 1), 1u); // the one that knows it has taken the phone's place
    EXPECT_EQ(stationCount(2, 1), 2u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_SSID)("wifi0", "nobody knows"), kDone);
    EXPECT_EQ(stationCount(1, 1), 0u);
}

TEST_F(EnvironmentTest, ClientWithoutPatienceStaysAway)
{
    EXPECT_EQ(stationCount(1, 2), 2u);
    for (const std::uint8_t last : {std::uint8_t{4}, std::uint8_t{5}})
        EXPECT_EQ(CALL(TarnKickOutAccessPointAssociated)(1, 2, MacAddress{0x02, 0, 0, 0, 1, last}.data()), kDone);
    passSeconds(1000);
    EXPECT_EQ(stationCount(1, 2), 1u);
}

TEST_F(EnvironmentTest, BlockListAndGroupLimitAreKept)
{
    EXPECT_EQ(CALL(TarnAddSsidOPXShgwBlockAddr)(1, 1, kPhone.data()), kDone);
    EXPECT_EQ(stationCount(1, 1), 0u);
    EXPECT_EQ(CALL(TarnDelSsidOPXShgwBlockAddr)(1, 1, kPhone.data()), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_bss_assoc_limit)(1, 1), kDone);
    EXPECT_EQ(stationCount(1, 2), 1u);
    passSeconds(100);
    EXPECT_EQ(stationCount(1, 2), 1u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_bss_assoc_limit)(1, 0), kDone);
    EXPECT_EQ(stationCount(1, 2), 1u); // the one without patience is gone
}

TEST_F(EnvironmentTest, AGroupsLimitIsOneOfAllItsInterfacesInTheirOrder)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_SSID_group_id)("wifi0", 1), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_bss_assoc_limit)(1, 3), kDone);
    EXPECT_EQ(stationCount(1, 1), 1u);
    EXPECT_EQ(stationCount(1, 2), 2u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_bss_assoc_limit)(1, 2), kDone);
    EXPECT_EQ(stationCount(1, 1), 1u);
    EXPECT_EQ(stationCount(1, 2), 1u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_bss_assoc_limit)(1, 1), kDone);
    EXPECT_EQ(stationCount(1, 1), 1u);
    EXPECT_EQ(stationCount(1, 2), 0u);
    // One of those that wait takes the place of one that leaves, and no more.
    EXPECT_EQ(CALL(TarnKickOutAccessPointAssociated)(1, 1, kPhone.data()), kDone);
    passSeconds(100);
    EXPECT_EQ(stationCount(1, 1) + stationCount(1, 2), 1u);
}

TEST_F(EnvironmentTest, OldClientsNeedTheirOldRates)
{
    char rates[64] = {};
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_rates)(kWlan0, 2, rates, sizeof rates), kDone);
    EXPECT_EQ(std::string(rates).find("1,2,5.5"), 0u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_disable_11b)(kWlan0, 1), kDone);
    EXPECT_EQ(stationCount(2, 1), 0u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_rates)(kWlan0, 2, rates, sizeof rates), kDone);
    EXPECT_EQ(std::string(rates).find("6,9,12"), 0u);
}

// --- Links -------------------------------------------------------------------------------------------------------------------

TEST_F(EnvironmentTest, RateFollowsWidthPowerAndMode)
{
    const std::uint32_t narrow = phone(1).number("txRate");
    EXPECT_EQ(phone(1).text("phyMode"), "11ac"); // the radio's
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_bw)("wifi0", 80), kDone);
    EXPECT_GT(phone(1).number("txRate"), 4 * narrow);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_phy_mode)("wifi0", "11ax"), kDone);
    EXPECT_EQ(phone(1).text("phyMode"), "11ax");
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_mcs_rate)("wifi0", "MCS3"), kDone);
    EXPECT_EQ(phone(1).number("txMcs"), 3u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_mcs_rate)("wifi0", "MCS12"), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_mcs_rate)("wifi0", "auto"), kDone);

    const std::uint32_t mcs = phone(1).number("txMcs");
    EXPECT_EQ(CALL(tarn_qcsapi_reg_chan_txpower_backoff_set)("wifi0", 36, 20, 0), kDone);
    EXPECT_LT(phone(1).number("txMcs"), mcs);
    std::uint32_t power[4];
    EXPECT_EQ(CALL(tarn_qcsapi_calcmd_get_tx_power)(&power[0], &power[1], &power[2], &power[3]), kDone);
    EXPECT_EQ(power[0], 3u);
}

TEST(RatesTest, AreThoseOfTheStandard)
{
    const auto rate = [](PhyMode mode, std::uint32_t bandwidth, std::uint32_t streams) {
        return rateOf({mode, bandwidth, streams, true, 100, 11}).rate;
    };
    EXPECT_EQ(rate(PhyMode::k11b, 20, 1), 11u);
    EXPECT_EQ(rate(PhyMode::k11a, 20, 4), 54u);
    EXPECT_EQ(rate(PhyMode::k11n, 20, 1), 72u);
    EXPECT_EQ(rate(PhyMode::k11n, 40, 4), 600u);
    EXPECT_EQ(rate(PhyMode::k11n, 160, 4), 600u); // it is no wider
    EXPECT_EQ(rate(PhyMode::k11ac, 80, 1), 433u);
    EXPECT_EQ(rate(PhyMode::k11ac, 160, 4), 3466u);
    EXPECT_EQ(rate(PhyMode::k11ax, 80, 2), 1200u);
    EXPECT_EQ(rate(PhyMode::k11ax, 160, 4), 4803u);
    LinkRate before = rateOf({PhyMode::k11ax, 80, 2, true, -10, 11});
    EXPECT_EQ(before.mcs, 0u);
    for (std::int32_t signal = -10; signal < 60; ++signal)
    {
        const LinkRate next = rateOf({PhyMode::k11ax, 80, 2, true, signal, 11});
        EXPECT_GE(next.rate, before.rate); // a better signal is never slower
        before = next;
    }
}

TEST_F(EnvironmentTest, PhyModeIsOneOfTheBand)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_phy_mode)("wifi0", "11g"), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_phy_mode)("wlan0", "11ac"), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_phy_mode)("wlan0", "11g"), kDone);
}

// --- Channels ----------------------------------------------------------------------------------------------------------------

TEST_F(EnvironmentTest, LoadIsThatOfTheChannel)
{
    EXPECT_EQ(load(1), 80u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 44), kDone);
    EXPECT_EQ(load(1), 0u); // who is there is too weak to be heard
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_bw)("wifi0", 80), kDone);
    EXPECT_EQ(load(1), 80u); // 36 is part of it
    EXPECT_EQ(load(2), 30u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wlan0", 11), kDone);
    EXPECT_EQ(load(2), 0u);
}

TEST_F(EnvironmentTest, InactiveChannelIsNotPossible)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_chan_pri_inactive)("wifi0", 40, 1), kDone);
    std::uint8_t channels[256];
    EXPECT_EQ(CALL(TarnGetRadioPossibleChannels)(1, rawOf<TarnChannelQuery>(blank("TarnChannelQuery")), channels), kDone);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(channels)).find('\x28'), std::string::npos);
}

TEST_F(EnvironmentTest, NewBssHasAnAddressOfItsOwn)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_create_bss_with_ifstate)("wifi2", 1), kDone);
    EXPECT_EQ(state("/radios/0/interfaces/2/bssid"), "02:00:00:00:00:12"); // 10 and 11 are taken
}

// --- Radar -------------------------------------------------------------------------------------------------------------------

TEST_F(EnvironmentTest, WideChannelAcrossRadarChannelsIsCheckedAndReadinessIsTold)
{
    subscribe(TARN_EVT_RADIO_STATUS_CHANGED);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_bw)("wifi0", 160), kDone); // 36 to 64
    EXPECT_EQ(nextEvent(TARN_EVT_RADIO_STATUS_CHANGED, "EVT_RADIO_STATUS_CHANGED").number("enabled"), 1u);
    EXPECT_EQ(isReady(), 0u);
    passSeconds(59.9);
    EXPECT_EQ(isReady(), 0u);
    passSeconds(0.1);
    EXPECT_EQ(isReady(), 1u);
    EXPECT_EQ(nextEvent(TARN_EVT_RADIO_STATUS_CHANGED, "EVT_RADIO_STATUS_CHANGED").number("radioId"), 1u);
    EXPECT_TRUE(noMoreEvents());
}

TEST_F(EnvironmentTest, WeatherChannelIsCheckedForTenMinutesOrNotAtAll)
{
    EXPECT_EQ(CALL(TarnSetQuantennaTdwrChannelsEnable)(1, 1), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 124), kDone);
    passSeconds(599);
    EXPECT_EQ(isReady(), 0u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_wea_cac_en)("wifi0", 0), kDone);
    EXPECT_EQ(isReady(), 1u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 120), kDone);
    EXPECT_EQ(isReady(), 1u);
}

TEST_F(EnvironmentTest, RadarMakesTheRadioLeaveTheWholeBlockForHalfAnHour)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_bw)("wifi0", 80), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 52), kDone);
    passSeconds(60);
    EXPECT_EQ(isReady(), 1u);
    subscribe(TARN_EVT_RADIO_OPR_CHANNEL_CHANGED);
    appearRadar(60);
    EXPECT_EQ(nextEvent(TARN_EVT_RADIO_OPR_CHANNEL_CHANGED, "EVT_RADIO_OPR_CHANNEL_CHANGED").number("channel"), 36u);
    EXPECT_EQ(isReady(), 1u); // where no check is needed
    for (const std::uint32_t channel : {52u, 56u, 60u, 64u})
        EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", channel), kModuleInvalidValue);
    passSeconds(1799);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 52), kModuleInvalidValue);
    passSeconds(1);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 52), kDone);
    EXPECT_EQ(isReady(), 0u); // and is checked again
}

TEST_F(EnvironmentTest, RadarSilencesARadioThatHasNoChannelLeft)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 52), kDone);
    passSeconds(70);
    EXPECT_EQ(stationCount(1, 2), 1u);
    char list[256];
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_list_channels)("wifi0", list, sizeof list), kDone);
    std::istringstream channels(list);
    for (std::string channel; std::getline(channels, channel, ',');)
        if (channel != "52")
        {
            const auto number = static_cast<std::uint32_t>(std::stoul(channel));
            EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_chan_pri_inactive)("wifi0", number, 1), kDone);
        }
    appearRadar(52);
    EXPECT_EQ(isReady(), 0u);
    EXPECT_EQ(stationCount(1, 2), 0u);
    passSeconds(1800);
    EXPECT_EQ(isReady(), 0u); // it may listen again
    passSeconds(60);
    EXPECT_EQ(isReady(), 1u);
    EXPECT_EQ(stationCount(1, 2), 1u);
}

TEST_F(EnvironmentTest, RadarIsHeardByTheSecondReceiverToo)
{
    std::uint32_t status = 99;
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_bw)("wifi0", 80), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_start_dfs_s_radio)("wifi0", 100), kDone);
    appearRadar(108); // of the same block
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_dfs_s_radio_status)("wifi0", &status), kDone);
    EXPECT_EQ(status, 0u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 100), kModuleInvalidValue);
    EXPECT_EQ(isReady(), 1u); // where the radio works there was none
    EXPECT_EQ(state("/radios/0/channel"), 36);
}

TEST_F(EnvironmentTest, RadarWhereTheRadioIsNotChangesNothing)
{
    appearRadar(60);
    EXPECT_EQ(isReady(), 1u);
    EXPECT_EQ(state("/radios/0/occupiedChannels"), Json::array());
    EXPECT_EQ(state("/radios/0/channel"), 36);
}

} // namespace simulator_test
