// tarn-fleet calls many gateways while brokers, gateways, services and connections fail: what it tells of each call is what
// happened, no call is executed twice, and none when nobody waits for it any more. How long, and with which random numbers,
// says campaign/support.h.
#include "commands.h"
#include "device.h"
#include "operator.h"
#include "trial.h"

#include <algorithm>
#include <csignal>
#include <fstream>
#include <sstream>

namespace fleet_test
{
namespace
{

using namespace tarn::fleet;
using campaign::eventually;
using campaign::HangGuard;
using campaign::sleepMilliseconds;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr unsigned kGateways = 40;
constexpr std::uint32_t kTaken = 20;  // milliseconds that a gateway takes
constexpr milliseconds kLife{5000};   // the wait of the call, and the way
constexpr milliseconds kMargin{2000}; // what is later than that is late

// Its queue for a client is shorter than the window.
constexpr char kNarrowBroker[] = "listener @PORT@ 127.0.0.1\n"
                                 "allow_anonymous true\n"
                                 "set_tcp_nodelay true\n"
                                 "max_queued_messages 5\n";

class FleetTrialsTest : public FleetTrial
{
protected:
    const HangGuard guard_{campaign::duration() + seconds(campaign::kAmple), [] { return "a trial of the fleet"; }};
    MosquittoBroker broker_;
    Relay tool_{broker_.port(), recording()};
};

TEST_F(FleetTrialsTest, AThousandGatewaysHaveAThousandRightResultsInOneCall)
{
    nameGateways(1000, false);
    for (unsigned number = 10; number <= 1000; number += 100)
        habits_[Home::nameOf(number)] = number % 200 == 10 ? Habit::kServiceStatus : Habit::kRefused;
    startHomes(broker_.port());
    callUndisturbed(tool_.port());
    EXPECT_EQ(runs_.size(), 1u);
    judge("1,000 gateways");
    EXPECT_EQ(count("done"), 990u);
}

TEST_F(FleetTrialsTest, ABrokerThatIsKilledAndRestartedInMidRunLeavesEachResultRight)
{
    nameGateways(kGateways, true);
    startHomes(broker_.port(), kTaken);
    callUndisturbed(tool_.port());
    repeat(
        [&]
        {
            callThrough(tool_.port(), {"--window", "4"}, random(kGateways / 2),
                        [&]
                        {
                            broker_.kill();
                            sleepMilliseconds(static_cast<int>(random(100)));
                            broker_.start();
                        });
        });
    callUndisturbed(tool_.port());
    judge("broker killed");
    EXPECT_GT(count("outcome-unknown") + count("not-sent"), 0u);
}

TEST_F(FleetTrialsTest, WhatAPartitionHeldUpIsNotExecutedWhenNobodyWaitsForItAnyMore)
{
    nameGateways(kGateways, true);
    Relay gateways(broker_.port(), slow(milliseconds(300)));
    startHomes(gateways.port());
    callUndisturbed(tool_.port());
    repeatUntilOneIsUnknown(
        [&]
        {
            const bool isFirst = runs_.size() == 1;
            const bool isLong = isFirst || random(2) == 0;
            Relay& held = isFirst || random(3) > 0 ? gateways : tool_;
            callThrough(tool_.port(), {"--window", isFirst ? "40" : "20"}, isFirst ? 1 : 1 + random(kGateways / 4),
                        [&]
                        {
                            held.hold();
                            sleepMilliseconds(static_cast<int>(random(static_cast<std::uint32_t>(kLife.count()))));
                            if (isLong)
                                sleepMilliseconds(static_cast<int>((kLife + kMargin).count()));
                            if (random(4) == 0)
                                held.cut();
                            held.release();
                        });
        });
    callUndisturbed(tool_.port());
    EXPECT_TRUE(eventually([&] { return gateways.isEmpty(); }));
    judge("partition");
    EXPECT_GT(count("outcome-unknown"), executedUnknown());
}

TEST_F(FleetTrialsTest, RequestsAndAnswersThatComeTwiceOrLateOrInAnotherOrderDoNoHarm)
{
    nameGateways(kGateways, true);
    Relay gateways(broker_.port(), disorderly(20, kLife + kMargin));
    Relay tool(broker_.port(), recording(disorderly(20, kLife + kMargin)));
    startHomes(gateways.port());
    repeat(
        [&]
        {
            FleetCall first = begin(tool.port()), second = begin(tool.port());
            end(first);
            end(second);
        });
    EXPECT_TRUE(eventually([&] { return gateways.isEmpty() && tool.isEmpty(); }));
    judge("doubled, late, reordered");
    EXPECT_GT(count("done"), 0u);
    std::size_t repeated = 0;
    for (const auto& home : homes_)
        repeated += home->counters().repeated;
    EXPECT_GT(repeated, 0u);
}

TEST_F(FleetTrialsTest, ABridgeOrServiceThatIsKilledInMidCallLeavesEachResultRight)
{
    constexpr unsigned kDevices = 8;
    nameGateways(kDevices, false);
    std::vector<std::unique_ptr<Device>> devices;
    for (unsigned number = 1; number <= kDevices; ++number)
        devices.push_back(std::make_unique<Device>(broker_.port(), number, directory(), ledger_.path(), kTaken));
    callUndisturbed(tool_.port());
    std::size_t bridges = 0, services = 0;
    repeat(
        [&]
        {
            FleetCall call = begin(tool_.port(), {"--window", "2"});
            while (!call.hasEnded())
            {
                sleepMilliseconds(static_cast<int>(random(60)));
                Device& device = *devices.at(random(kDevices));
                const bool isBridge = random(2) == 0;
                isBridge ? device.killBridge() : device.killService();
                ++(isBridge ? bridges : services);
                sleepMilliseconds(static_cast<int>(random(60)));
                device.restart();
            }
            end(call, 2); // once more for the bridge that came after the one that was known
        });
    callUndisturbed(tool_.port());
    judge(std::to_string(bridges) + " bridges and " + std::to_string(services) + " services killed");
    EXPECT_GT(count("done"), 0u);
}

TEST_F(FleetTrialsTest, AnswersThatABrokerDropsForASlowOperatorAreUnknownOutcomes)
{
    const MosquittoBroker narrow(kNarrowBroker);
    Relay tool(narrow.port(), recording());
    nameGateways(5 * kGateways, false);
    constexpr std::uint32_t kSlow = 500;
    startHomes(narrow.port(), kSlow);
    repeatUntilOneIsUnknown(
        [&]
        {
            const std::size_t before = ledger_.executions().size();
            FleetCall call = begin(tool.port(), {"--window", "200"});
            EXPECT_TRUE(eventually([&] { return ledger_.executions().size() >= before + 100 + random(100); }));
            tool.hold(); // what they answer finds nobody who reads
            sleepMilliseconds(static_cast<int>(kSlow + random(500)));
            tool.release();
            end(call);
        });
    judge("operator too slow for the broker's queue");
    EXPECT_GT(executedUnknown(), 0u);
}

TEST_F(FleetTrialsTest, RequestsThatABrokerDropsForASlowGatewayAreNotExecuted)
{
    const MosquittoBroker narrow(kNarrowBroker);
    Relay gateways(narrow.port()), tool(narrow.port(), recording(slow(milliseconds(500))));
    nameGateways(kGateways / 4, true);
    startHomes(gateways.port());
    Operator other(narrow.port());
    const auto pings = [&]
    {
        std::size_t sum = 0;
        for (const auto& home : homes_)
            sum += home->counters().pings;
        return sum;
    };
    const Bytes flood = encoded(other.request("TARN", kGetRadioNum, kLong, Bytes(9000, 1)));
    repeatUntilOneIsUnknown(
        [&]
        {
            gateways.cut(); // what the system keeps of a connection grows with its age
            callUndisturbed(tool.port());
            const std::size_t before = pings();
            FleetCall call = begin(tool.port());
            EXPECT_TRUE(eventually([&] { return pings() >= before + homes_.size(); }));
            sleepMilliseconds(static_cast<int>(random(200)));
            gateways.hold();
            for (unsigned turns = 15 + random(15); turns > 0; --turns)
            {
                for (const auto& [gateway, habit] : habits_)
                    for (unsigned count = 0; count < 10; ++count)
                        other.sendBytes(requestTopic(gateway.c_str()).text, flood);
                other.await([] { return false; }, milliseconds(20)); // until they are sent
            }
            gateways.release();
            end(call);
        });
    judge("gateway too slow for the broker's queue");
    EXPECT_GT(count("outcome-unknown"), executedUnknown());
}

TEST_F(FleetTrialsTest, ARunThatIsInterruptedAndResumedAsksEachGatewayOnceAndForgetsNone)
{
    nameGateways(kGateways, true);
    startHomes(broker_.port(), kTaken);
    callUndisturbed(tool_.port());
    std::size_t interruptions = 0;
    repeat(
        [&]
        {
            const std::string journal = directory() + "/journal-" + std::to_string(runs_.size());
            const std::uint32_t number = nextNumber();
            Run run = {number, {}, 1};
            for (bool isLast = false; !isLast;)
            {
                FleetCall call(tool_.port(), number, namesFilter(), {"--window", "4", "--resume", journal});
                isLast = random(3) == 0;
                if (!isLast)
                {
                    const std::size_t before = random(kGateways / 4);
                    EXPECT_TRUE(eventually([&] { return call.resultCount() >= before || call.hasEnded(); }));
                    call.signal(random(2) == 0 ? SIGKILL : SIGINT);
                    ++interruptions;
                }
                for (const auto& [gateway, told] : call.finish())
                    run.told[gateway] = told;
            }
            // What a run that was killed had written down, and could not tell any more.
            std::ifstream lines(journal);
            std::string word, result, gateway;
            while (std::getline(lines, word))
                if (std::istringstream(word) >> word >> result >> gateway && word == "result")
                    run.told.emplace(gateway, Told{result, "from the journal", microsecondsNow()});
            runs_.push_back(run);
        });
    judge(std::to_string(interruptions) + " interruptions");
    EXPECT_GT(count("done"), 0u);
}

} // namespace
} // namespace fleet_test
