// The radio keeper's unit test. The records of the replies are filled by the same functions that the component reads them with.
#include "radio_keeper.h"

#include "kor_iil_mock.hpp"
#include "tarn_gateway_records.h"

#include <cstdint>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace
{

constexpr std::uint32_t kGetRadio = 7;
constexpr std::uint32_t kSetRadioCfg = 9;
constexpr std::uint32_t kGetRadioStats = 11;
constexpr std::uint32_t kGetResultNum = 23;
constexpr std::uint32_t kGetResultAt = 24;
constexpr std::uint32_t kGetAssociatedNum = 66;
constexpr std::uint32_t kGetAssociatedAt = 67;
constexpr std::uint32_t kKickOut = 70;

constexpr std::uint32_t kRadioLength = 9584;
constexpr std::uint32_t kRadioOutput = 28;
constexpr std::uint32_t kCfgLength = 4444;
constexpr std::uint32_t kAccessPointLength = 140;

constexpr std::uint32_t kChannelEvent = 2;
constexpr std::uint32_t kAssociatedEvent = 4;
constexpr std::uint32_t kTimeout = 7;

class RadioKeeper : public testing::Test
{
protected:
    void start()
    {
        platform_.expectSubscribe("TARN", kChannelEvent).caller("radio_keeper");
        platform_.expectSubscribe("TARN", kAssociatedEvent);
        ASSERT_EQ(radioKeeperStart(1, 2), 0);
    }

    // Stations by the last byte of their address and their signal.
    void expectStations(const std::vector<std::pair<std::uint8_t, std::int32_t>>& stations)
    {
        platform_.expect("TARN", kGetAssociatedNum, kAccessPointLength)
            .word(0, 0)
            .word(4, 1)
            .replyWord(20, static_cast<std::uint32_t>(stations.size()));
        std::uint32_t index = 0;
        for (const auto& [last, rssi] : stations)
        {
            const std::uint8_t address[] = {2, 0, 0, 0, 1, last};
            TarnAccessPointAssociatedData data = {};
            tarn_access_point_associated_data_set_mac_address(&data, address);
            tarn_access_point_associated_data_set_rssi(&data, rssi);
            tarn_access_point_associated_data_set_seconds_associated(&data, 60u + last);
            platform_.expect("TARN", kGetAssociatedAt, kAccessPointLength).word(8, index++).replyBytes(24, &data, sizeof data);
        }
    }

    void expectLoad(std::uint32_t percent)
    {
        TarnRadioStats stats = {};
        tarn_radio_stats_set_channel_load(&stats, percent);
        platform_.expect("TARN", kGetRadioStats, kRadioLength).replyBytes(kRadioOutput, &stats, sizeof stats);
    }

    // A radio on channel 36 that may use 36, 40 and 44, and its neighbours' channels.
    void expectNeighbours(const std::vector<std::uint32_t>& channels)
    {
        TarnRadioData data = {};
        tarn_radio_data_set_channel(&data, 36);
        for (std::uint8_t i = 0; i < 3; ++i)
            tarn_radio_data_set_possible_channels(&data, i, static_cast<std::uint8_t>(36 + 4 * i));
        platform_.expect("TARN", kGetRadio, kRadioLength).replyBytes(kRadioOutput, &data, sizeof data);
        platform_.expect("TARN", kGetResultNum, kRadioLength)
            .replyWord(kRadioOutput, static_cast<std::uint32_t>(channels.size()));
        for (const std::uint32_t channel : channels)
        {
            TarnNeighborBss bss = {};
            tarn_neighbor_bss_set_channel(&bss, channel);
            platform_.expect("TARN", kGetResultAt, kRadioLength).replyBytes(kRadioOutput, &bss, sizeof bss);
        }
    }

    void associated(std::uint32_t apId, tarn_association what)
    {
        std::uint8_t data[TARN_EVT_AP_ASSOCIATED_CHANGED_SIZE] = {};
        tarn_evt_ap_associated_changed_set_radio_id(data, 1);
        tarn_evt_ap_associated_changed_set_ap_id(data, apId);
        tarn_evt_ap_associated_changed_set_associated(data, what);
        platform_.deliver("TARN", kAssociatedEvent, data, sizeof data);
    }

    tarn::mock::Platform platform_;
};

TEST_F(RadioKeeper, FollowsTheChannelOfItsRadio)
{
    start();
    std::uint8_t data[TARN_EVT_RADIO_OPR_CHANNEL_CHANGED_SIZE] = {};
    tarn_evt_radio_opr_channel_changed_set_radio_id(data, 1);
    tarn_evt_radio_opr_channel_changed_set_channel(data, 100);
    platform_.deliver("TARN", kChannelEvent, data, sizeof data);
    EXPECT_EQ(radioKeeperChannel(), 100u);

    tarn_evt_radio_opr_channel_changed_set_radio_id(data, 2);
    tarn_evt_radio_opr_channel_changed_set_channel(data, 1);
    platform_.deliver("TARN", kChannelEvent, data, sizeof data);
    platform_.deliver("TARN", kChannelEvent, data, 3);
    EXPECT_EQ(radioKeeperChannel(), 100u) << "of another radio, and of too few bytes";
}

TEST_F(RadioKeeper, CountsTheStationsOfItsAccessPoint)
{
    start();
    associated(2, TARN_ASSOCIATION_ASSOCIATED);
    associated(2, TARN_ASSOCIATION_ASSOCIATED);
    associated(2, TARN_ASSOCIATION_GONE);
    associated(1, TARN_ASSOCIATION_ASSOCIATED);
    EXPECT_EQ(radioKeeperArrivals(), 2u);
    EXPECT_EQ(radioKeeperDepartures(), 1u);
}

TEST_F(RadioKeeper, ListsStations)
{
    start();
    expectStations({{1, -40}, {2, -85}});
    RadioKeeperStation stations[4];
    ASSERT_EQ(radioKeeperStations(stations, 4), 2);
    EXPECT_EQ(stations[1].address[5], 2);
    EXPECT_EQ(stations[1].rssi, -85);
    EXPECT_EQ(stations[1].secondsAssociated, 62u);
}

TEST_F(RadioKeeper, SendsAwayWhoIsHeardWeakly)
{
    start();
    expectStations({{1, -40}, {2, -85}, {3, -80}});
    const std::uint8_t address[] = {2, 0, 0, 0, 1, 2};
    platform_.expect("TARN", kKickOut, kAccessPointLength).bytes(12, address, sizeof address);
    EXPECT_EQ(radioKeeperSendWeakAway(-80), 1);
}

TEST_F(RadioKeeper, MovesACrowdedRadioToTheEmptiestChannel)
{
    start();
    expectLoad(80);
    expectNeighbours({36, 36, 40});
    TarnRadioCfg cfg = {};
    tarn_radio_cfg_set_channel(&cfg, 44);
    platform_.expect("TARN", kSetRadioCfg, kCfgLength)
        .word(4, TARN_SET_RADIO_CFG_PARAM_CHANNEL)
        .bytes(8, &cfg, sizeof cfg)
        .restZero();
    EXPECT_EQ(radioKeeperRelieve(60), 44);
}

TEST_F(RadioKeeper, LeavesARadioWhereThereIsRoom)
{
    start();
    expectLoad(60);
    EXPECT_EQ(radioKeeperRelieve(60), 0);
}

TEST_F(RadioKeeper, LeavesARadioWhereOtherChannelsAreNoEmptier)
{
    start();
    expectLoad(80);
    expectNeighbours({40, 44});
    EXPECT_EQ(radioKeeperRelieve(60), 0);
}

TEST_F(RadioKeeper, SaysWhatDidNotWork)
{
    start();
    platform_.expect("TARN", kGetAssociatedNum, kAccessPointLength).fail(kTimeout);
    EXPECT_EQ(radioKeeperSendWeakAway(-80), -1);
    expectLoad(80);
    expectNeighbours({36});
    platform_.expect("TARN", kSetRadioCfg, kCfgLength).status(TARN_STATUS_TARN_BUSY);
    EXPECT_EQ(radioKeeperRelieve(60), -1);
}

TEST_F(RadioKeeper, KeepsNoSubscriptionIfTheOtherFails)
{
    platform_.expectSubscribe("TARN", kChannelEvent);
    platform_.expectSubscribe("TARN", kAssociatedEvent).fail(kTimeout);
    platform_.expectCancel("TARN", kChannelEvent);
    EXPECT_EQ(radioKeeperStart(1, 2), -1);
}

TEST_F(RadioKeeper, CancelsWhatItSubscribedTo)
{
    start();
    platform_.expectCancel("TARN", kChannelEvent);
    platform_.expectCancel("TARN", kAssociatedEvent);
    EXPECT_EQ(radioKeeperStop(), 0);
}

} // namespace
