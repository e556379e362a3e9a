// The radio keeper against a simulated gateway: what comes of what it does, which its unit tests on the mock cannot tell.
// Radio 1 of the family's gateway works in the 5 GHz band, radio 2 in the 2.4 GHz band.
#include "radio_keeper.h"

#include "tarn_frame.h"
#include "tarn_gateway.hpp"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace
{

constexpr std::uint32_t kRadio = 1;
constexpr std::uint32_t kSlowRadio = 2;
constexpr std::uint32_t kAccessPoint = 1; // the first of either radio
constexpr std::uint32_t kMostLoad = 50;   // percent
constexpr std::int32_t kStrong = -70;     // dBm

// What the keeper's functions returned in a minute.
struct Turn
{
    int scan = 0;
    int channel = 0; // moved to, 0 if it stayed
    int steered = 0;
};

class RadioKeeperAtHome : public testing::Test
{
protected:
    RadioKeeperAtHome()
    {
        setenv("KORIIL_TRACE", "off", 1);
        setenv("KORIIL_WAIT_FOR_SERVICE", "on", 1); // a service that restarts is away for some milliseconds
        setenv("TARN_GATEWAY", TARN_GATEWAY_PROGRAM, 1);
        arrive();
    }

    ~RadioKeeperAtHome() override
    {
        radioKeeperStop();
    }

    void arrive()
    {
        if (gateway_ != nullptr)
            radioKeeperStop();
        gateway_ = nullptr;
        const std::vector<std::string> options = {"--scenario", HOME_SCENARIO, "--seed", "7"};
        gateway_ = std::make_unique<tarn::gateway::SimulatedGateway>(options);
        EXPECT_EQ(radioKeeperStart(kRadio, kAccessPoint), 0);
    }

    std::string order(const std::string& words)
    {
        return gateway_->order(words);
    }

    std::string channel()
    {
        return order("state /radios/0/channel");
    }

    // More traffic than there is room for, where the radio is.
    void crowdTheChannel()
    {
        order("neighbour add bssid=02:00:00:00:0a:01 band=5GHz channel=36 bandwidth=80 rssi=-50 load=80");
    }

    // The keeper's loop: a scan, and then whatever is to be done, once a minute.
    Turn minute()
    {
        Turn turn;
        turn.scan = radioKeeperScan();
        order("step 10");
        turn.channel = radioKeeperRelieve(kMostLoad);
        turn.steered = radioKeeperSteer(kSlowRadio, kAccessPoint, kStrong);
        order("step 50");
        gateway_->handleEvents();
        return turn;
    }

    // Minutes until the keeper has had nothing to do for three of them; at most 30.
    int minutesUntilQuiet()
    {
        int minutes = 0;
        for (int quiet = 0; quiet != 3 && minutes != 30; ++minutes)
        {
            const Turn turn = minute();
            quiet = turn.channel == 0 && turn.steered == 0 ? quiet + 1 : 0;
        }
        return minutes - 3;
    }

    static int stations()
    {
        return radioKeeperStations(nullptr, 0);
    }

    std::unique_ptr<tarn::gateway::SimulatedGateway> gateway_;
};

TEST_F(RadioKeeperAtHome, TriesEachStationOnceWhereAllIsWell)
{
    const Turn turn = minute();
    EXPECT_EQ(turn.channel, 0);
    EXPECT_EQ(turn.steered, 2) << "they are for the slow band alone, which only trying shows";
    EXPECT_EQ(minutesUntilQuiet(), 0);
    EXPECT_EQ(channel(), "36");
    EXPECT_EQ(stations(), 3);
}

TEST_F(RadioKeeperAtHome, MovesToAnEmptyChannelAndBringsTheStationsBack)
{
    crowdTheChannel();
    const Turn turn = minute();
    EXPECT_EQ(turn.channel, 52);
    EXPECT_EQ(turn.steered, 0) << "nobody can come while the radio checks for radar";
    EXPECT_LE(minutesUntilQuiet(), 2);
    EXPECT_EQ(channel(), "52");
    EXPECT_EQ(radioKeeperChannel(), 52u);
    EXPECT_EQ(stations(), 3);
}

TEST_F(RadioKeeperAtHome, FindsAnotherChannelWhenThereIsRadar)
{
    crowdTheChannel();
    minutesUntilQuiet();
    order("radar 60"); // of the block that begins with 52; the gateway returns to 36
    EXPECT_EQ(channel(), "36");
    EXPECT_EQ(minute().channel, 100) << "one network less than there, and no block is empty any more";
    EXPECT_LE(minutesUntilQuiet(), 2);
    EXPECT_EQ(channel(), "100");
    EXPECT_EQ(stations(), 3);
}

TEST_F(RadioKeeperAtHome, SendsAWeakStationToTheBandThatReachesIt)
{
    EXPECT_EQ(radioKeeperSendWeakAway(-70), 1);
    order("step 1");
    EXPECT_EQ(stations(), 2);
    EXPECT_NE(order("state /radios/1/interfaces/0/stations").find("02:00:00:00:01:04"), std::string::npos);
    gateway_->handleEvents();
    EXPECT_EQ(radioKeeperDepartures(), 1u);
}

TEST_F(RadioKeeperAtHome, FollowsAStationThatWalksThroughTheHouse)
{
    order("station move 02:00:00:00:01:02 110"); // out of reach
    order("step 1");
    EXPECT_EQ(stations(), 2);
    order("station move 02:00:00:00:01:02 60");
    order("step 60");
    EXPECT_EQ(stations(), 3);
    gateway_->handleEvents();
    EXPECT_EQ(radioKeeperArrivals(), 1u);
    EXPECT_EQ(radioKeeperDepartures(), 1u);
}

// --- What goes wrong ---------------------------------------------------------------------------------------------------------

TEST_F(RadioKeeperAtHome, MovesAMinuteLaterWhenTheGatewayIsBusy)
{
    crowdTheChannel();
    order("faults add status status=18 function=TarnSetRadioCfg count=1");
    EXPECT_EQ(minute().channel, -1);
    EXPECT_EQ(channel(), "36");
    EXPECT_EQ(minute().channel, 52);
}

// The only case that takes longer than moments: the library waits for the answer in real time.
TEST_F(RadioKeeperAtHome, MovesAMinuteLaterWhenOneAnswerIsMissing)
{
    crowdTheChannel();
    order("faults add noAnswer function=TarnGetRadioStats count=1");
    EXPECT_EQ(minute().channel, -1);
    EXPECT_EQ(minute().channel, 52);
}

TEST_F(RadioKeeperAtHome, TakesAnAnswerThatIsLate)
{
    crowdTheChannel();
    order("faults add delay milliseconds=100 function=TarnGetRadioStats count=1");
    EXPECT_EQ(minute().channel, 52);
}

TEST_F(RadioKeeperAtHome, SteersOnAfterAnAnswerOfAnotherLength)
{
    order("faults add length function=TarnGetAccessPointAssociatedAt count=1");
    EXPECT_EQ(minute().steered, -1);
    EXPECT_EQ(minute().steered, 2);
}

TEST_F(RadioKeeperAtHome, GoesOnWhenAServiceHasBeenRestarted)
{
    crowdTheChannel();
    order("faults add restart function=TarnGetRadio count=1");
    EXPECT_EQ(minute().channel, 52);
    EXPECT_LE(minutesUntilQuiet(), 2);
    EXPECT_EQ(stations(), 3);
    EXPECT_EQ(radioKeeperChannel(), 0u) << "its subscriptions have ended with the service";

    EXPECT_EQ(radioKeeperStop(), -1);
    EXPECT_EQ(radioKeeperStart(kRadio, kAccessPoint), 0);
    order("radar 52");
    gateway_->handleEvents();
    EXPECT_EQ(radioKeeperChannel(), 36u);
}

// --- Once more ---------------------------------------------------------------------------------------------------------------

// An evening of an hour: what was done, every request with its arguments and status, and the state at the end.
TEST_F(RadioKeeperAtHome, HasTheSameEveningTwice)
{
    std::string evenings[2];
    for (std::string& evening : evenings)
    {
        arrive();
        crowdTheChannel();
        order("faults add status status=18 probability=5");
        order("faults add eventLost probability=20");
        for (int minutes = 0; minutes != 60; ++minutes)
        {
            if (minutes == 20)
                order("radar 52");
            const Turn turn = minute();
            evening += std::to_string(turn.scan) + ' ' + std::to_string(turn.channel) + ' ' + std::to_string(turn.steered) +
                       ' ' + std::to_string(radioKeeperArrivals()) + ' ' + std::to_string(radioKeeperDepartures()) + '\n';
        }
        evening += gateway_->log() + order("state");
    }
    EXPECT_NE(evenings[0].find("(BUSY)"), std::string::npos);
    EXPECT_NE(evenings[0].find("cfg.channel=100"), std::string::npos);
    EXPECT_EQ(evenings[0], evenings[1]);
}

TEST_F(RadioKeeperAtHome, IsAloneInItsProcess)
{
    EXPECT_THROW(const tarn::gateway::SimulatedGateway second, std::runtime_error);
    EXPECT_EQ(order("state /radios/0/channel"), "36");
}

} // namespace
