// The radio keeper's unit test. What is inside records is named as the simulated gateway's layout names it.
#include "radio_keeper.h"

#include "kor_iil_mock.hpp"
#include "tarn_frame.h"

#include <cstdint>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace
{

constexpr char kChannelEvent[] = "EVT_RADIO_OPR_CHANNEL_CHANGED";
constexpr char kAssociatedEvent[] = "EVT_AP_ASSOCIATED_CHANGED";
constexpr std::uint32_t kTimeout = 7;

class RadioKeeper : public testing::Test
{
protected:
    void start()
    {
        platform_.expectSubscribe(kChannelEvent).caller("radio_keeper");
        platform_.expectSubscribe(kAssociatedEvent);
        ASSERT_EQ(radioKeeperStart(1, 2), 0);
    }

    // Stations by the last byte of their address and their signal.
    void expectStations(const std::vector<std::pair<std::uint8_t, std::int32_t>>& stations, std::uint32_t radioId = 1,
                        std::uint32_t apId = 2)
    {
        platform_.expect("TarnGetAccessPointAssociatedNum")
            .with("radioId", radioId)
            .with("apId", apId)
            .reply("number", stations.size());
        std::uint32_t index = 0;
        for (const auto& [last, rssi] : stations)
        {
            const std::uint8_t address[] = {2, 0, 0, 0, 1, last};
            platform_.expect("TarnGetAccessPointAssociatedAt")
                .with("index", index++)
                .reply("associated.macAddress", address)
                .reply("associated.rssi", rssi)
                .reply("associated.secondsAssociated", 60 + last);
        }
    }

    void expectLoad(std::uint32_t percent)
    {
        platform_.expect("TarnGetRadioStats").with("radioId", 1).reply("stats.channelLoad", percent);
    }

    // A radio on channel 36 that may use 36, 40 and 44, and its neighbours' channels.
    void expectNeighbours(const std::vector<std::uint32_t>& channels, std::uint32_t bandwidth = 20)
    {
        platform_.expect("TarnGetRadio")
            .with("radioId", 1)
            .reply("data.channel", 36)
            .reply("data.bandwidth", bandwidth)
            .reply("data.possibleChannels[0]", 36)
            .reply("data.possibleChannels[1]", 40)
            .reply("data.possibleChannels[2]", 44);
        platform_.expect("TarnGetRadioNeighboringResultNum").reply("number", channels.size());
        for (const std::uint32_t channel : channels)
            platform_.expect("TarnGetRadioNeighboringResultAt").reply("bss.channel", channel);
    }

    void associated(std::uint32_t apId, const char* what)
    {
        platform_.event(kAssociatedEvent).with("radioId", 1).with("apId", apId).with("associated", what).deliver();
    }

    tarn::mock::Platform platform_;
};

TEST_F(RadioKeeper, FollowsTheChannelOfItsRadio)
{
    start();
    platform_.event(kChannelEvent).with("radioId", 1).with("channel", 100).deliver();
    EXPECT_EQ(radioKeeperChannel(), 100u);

    platform_.event(kChannelEvent).with("radioId", 2).with("channel", 1).deliver();
    platform_.deliver("TARN", TARN_EVT_RADIO_OPR_CHANNEL_CHANGED, "\1\2\3", 3);
    EXPECT_EQ(radioKeeperChannel(), 100u) << "of another radio, and of too few bytes";
}

TEST_F(RadioKeeper, CountsTheStationsOfItsAccessPoint)
{
    start();
    associated(2, "associated");
    associated(2, "associated");
    associated(2, "gone");
    associated(1, "associated");
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
    platform_.expect("TarnKickOutAccessPointAssociated").with("apId", 2).with("macAddress", "02:00:00:00:01:02");
    EXPECT_EQ(radioKeeperSendWeakAway(-80), 1);
}

TEST_F(RadioKeeper, SteersAStationOfTheOtherRadioOnceUntilItHasComeOver)
{
    start();
    platform_.expect("TarnGetRadioIsReady").with("radioId", 1).reply("isReady", 1).anyTimes();
    expectStations({});
    expectStations({{1, -40}, {2, -70}}, 2, 1);
    platform_.expect("TarnKickOutAccessPointAssociated")
        .with("radioId", 2)
        .with("apId", 1)
        .with("macAddress", "02:00:00:00:01:01");
    EXPECT_EQ(radioKeeperSteer(2, 1, -60), 1);

    expectStations({});
    expectStations({{1, -40}}, 2, 1);
    EXPECT_EQ(radioKeeperSteer(2, 1, -60), 0) << "it came back to where it was";

    expectStations({{1, -50}});
    expectStations({}, 2, 1);
    EXPECT_EQ(radioKeeperSteer(2, 1, -60), 0);
    expectStations({});
    expectStations({{1, -40}}, 2, 1);
    platform_.expect("TarnKickOutAccessPointAssociated").with("radioId", 2);
    EXPECT_EQ(radioKeeperSteer(2, 1, -60), 1) << "it has been here meanwhile";
}

TEST_F(RadioKeeper, SteersNobodyToARadioThatIsNotReady)
{
    start();
    platform_.expect("TarnGetRadioIsReady").with("radioId", 1).reply("isReady", 0);
    EXPECT_EQ(radioKeeperSteer(2, 1, -60), 0);
}

TEST_F(RadioKeeper, StartsAScan)
{
    start();
    platform_.expect("TarnScanRadioNeighborhood").with("radioId", 1);
    EXPECT_EQ(radioKeeperScan(), 0);
    platform_.expect("TarnScanRadioNeighborhood").status("BUSY");
    EXPECT_EQ(radioKeeperScan(), -1);
}

TEST_F(RadioKeeper, MovesACrowdedRadioToTheEmptiestChannel)
{
    start();
    expectLoad(80);
    expectNeighbours({36, 36, 40});
    platform_.expect("TarnSetRadioCfg").with("radioId", 1).with("param", "channel").with("cfg.channel", 44).restZero();
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

TEST_F(RadioKeeper, LeavesARadioWhereTheEmptierChannelIsOneOfItsOwn)
{
    start();
    expectLoad(80);
    expectNeighbours({36, 36}, 40);
    platform_.expect("TarnSetRadioCfg").with("cfg.channel", 44);
    EXPECT_EQ(radioKeeperRelieve(60), 44) << "it works on 36 and 40";
    expectLoad(80);
    expectNeighbours({36, 36}, 80);
    EXPECT_EQ(radioKeeperRelieve(60), 0) << "it works on all of them";
}

TEST_F(RadioKeeper, SaysWhatDidNotWork)
{
    start();
    platform_.expect("TarnGetAccessPointAssociatedNum").fail(kTimeout);
    EXPECT_EQ(radioKeeperSendWeakAway(-80), -1);
    expectLoad(80);
    expectNeighbours({36});
    platform_.expect("TarnSetRadioCfg").status("BUSY");
    EXPECT_EQ(radioKeeperRelieve(60), -1);
}

TEST_F(RadioKeeper, KeepsNoSubscriptionIfTheOtherFails)
{
    platform_.expectSubscribe(kChannelEvent);
    platform_.expectSubscribe(kAssociatedEvent).fail(kTimeout);
    platform_.expectCancel(kChannelEvent);
    EXPECT_EQ(radioKeeperStart(1, 2), -1);
}

TEST_F(RadioKeeper, CancelsWhatItSubscribedTo)
{
    start();
    platform_.expectCancel(kChannelEvent);
    platform_.expectCancel(kAssociatedEvent);
    EXPECT_EQ(radioKeeperStop(), 0);
}

} // namespace
