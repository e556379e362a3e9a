// The bridge between a real broker and a platform of the test's own.
#include "broker.h"
#include "commands.h"
#include "link.h"
#include "operator.h"
#include "relay.h"

#include "fleet/bridge.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fleet_test
{
namespace
{

using namespace tarn::fleet;
using ::testing::Contains;
using ::testing::HasSubstr;

// The platform: turns the first byte of a message round and keeps what it was asked.
class Platform
{
public:
    struct Asked
    {
        std::string callerId, service;
        std::uint32_t wait, command, length;
    };

    BridgePlatform functions()
    {
        return {this, execute, log};
    }

    // Calls do not return before this is undone.
    void hold(bool isHeld)
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        isHeld_ = isHeld;
        changed_.notify_all();
    }
    void setStatus(std::uint32_t status)
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        status_ = status;
    }
    std::vector<Asked> asked() const
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        return asked_;
    }
    std::vector<std::string> lines() const
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        return lines_;
    }

private:
    static std::uint32_t execute(void* self, const char* callerId, const char* service, std::uint32_t wait,
                                 std::uint32_t command, std::uint32_t length, void* message)
    {
        auto* that = static_cast<Platform*>(self);
        std::unique_lock<std::mutex> lock(that->mutex_);
        that->asked_.push_back({callerId, service, wait, command, length});
        that->changed_.wait(lock, [that] { return !that->isHeld_; });
        auto* bytes = static_cast<std::uint8_t*>(message);
        bytes[0] = static_cast<std::uint8_t>(~bytes[0]);
        bytes[length - 1] = 0x77;
        return that->status_;
    }
    static void log(void* self, int priority, const char* line)
    {
        auto* that = static_cast<Platform*>(self);
        const std::lock_guard<std::mutex> guard(that->mutex_);
        that->lines_.push_back("<" + std::to_string(priority) + "> " + line);
    }

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    bool isHeld_ = false;
    std::uint32_t status_ = 0;
    std::vector<Asked> asked_;
    std::vector<std::string> lines_;
};

BridgeSettings settingsOf(const std::string& gateway, std::initializer_list<std::uint16_t> ports)
{
    BridgeSettings settings;
    settings.link = linkOf(gateway, ports);
    std::snprintf(settings.programVersion, sizeof settings.programVersion, "7.8.9");
    return settings;
}

class BridgeTest : public ::testing::Test
{
protected:
    void start(const Policy& policy = Policy::ofReading())
    {
        bridge_ = std::make_unique<Bridge>(settings_, platform_.functions(), policy);
        ASSERT_TRUE(bridge_->start());
        ASSERT_TRUE(operator_.ping("home-1"));
    }

    // Behind the relay, which holds what the broker says to the subscription.
    void startUnconfirmed(Relay& relay)
    {
        relay.setConfirmations(Relay::Confirmations::kWait);
        settings_ = settingsOf("home-1", {relay.port()});
        bridge_ = std::make_unique<Bridge>(settings_, platform_.functions(), Policy::ofReading());
        ASSERT_TRUE(bridge_->start());
        ASSERT_TRUE(operator_.await([&] { return relay.confirmationsWaiting() == 1; }));
    }

    static Policy policyOf(std::initializer_list<const char*> lines)
    {
        Policy policy;
        char problem[256];
        for (const char* line : lines)
            EXPECT_TRUE(policy.add(line, problem, sizeof problem)) << problem;
        return policy;
    }

    // Sends the request and returns why it was refused.
    Refusal refusalOf(const Envelope& request)
    {
        const auto reply = operator_.call("home-1", request);
        EXPECT_TRUE(reply);
        if (!reply)
            return Refusal::kNone;
        EXPECT_EQ(reply->envelope.status == 0, reply->envelope.refusal == Refusal::kNone);
        return reply->envelope.refusal;
    }

    bool asksSoon(std::size_t calls)
    {
        return operator_.await([&] { return platform_.asked().size() >= calls; });
    }

    // The platform holds one call, and as many as may wait are behind it.
    void fillQueue()
    {
        platform_.hold(true);
        operator_.send("home-1", operator_.request("TARN", kGetRadioNum, kLong));
        ASSERT_TRUE(asksSoon(1));
        for (std::uint32_t waiting = 0; waiting < Bridge::kMostWaiting; ++waiting)
            operator_.send("home-1", operator_.request("TARN", kGetRadioNum, kLong));
    }

    void answerQueue()
    {
        platform_.hold(false);
        for (std::uint32_t reply = 0; reply <= Bridge::kMostWaiting; ++reply)
            EXPECT_TRUE(operator_.take(Kind::kReply)) << reply;
    }

    MosquittoBroker broker_;
    BridgeSettings settings_ = settingsOf("home-1", {broker_.port()});
    Platform platform_;
    Operator operator_{broker_.port()};
    std::unique_ptr<Bridge> bridge_;
};

TEST_F(BridgeTest, ACallIsMadeWithThePlatformAndAnswered)
{
    start();
    const auto reply = operator_.call("home-1", operator_.request("TARN", kGetRadioNum, kLong, {0x0F, 0, 3}));
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->topic, "tarn/1/op/noc-1/re/home-1");
    EXPECT_EQ(reply->envelope.status, 0u);
    EXPECT_EQ(reply->envelope.refusal, Refusal::kNone);
    EXPECT_EQ(reply->envelope.command, kGetRadioNum);
    EXPECT_STREQ(reply->envelope.service, "TARN");
    EXPECT_EQ(reply->envelope.run, bridge_->run());
    Bytes expected(kLong);
    expected[0] = 0xF0;
    expected[2] = 3;
    expected[kLong - 1] = 0x77;
    EXPECT_EQ(unpacked(reply->envelope), expected);

    const auto asked = platform_.asked();
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].callerId, "tarn-bridge");
    EXPECT_EQ(asked[0].service, "TARN");
    EXPECT_EQ(asked[0].wait, 3u);
    EXPECT_EQ(asked[0].command, kGetRadioNum);
    EXPECT_EQ(asked[0].length, kLong);
}

TEST_F(BridgeTest, EveryOneOfManyCallsIsAnswered)
{
    start();
    constexpr std::uint32_t kCalls = 5000;
    std::size_t waiting = 0;
    for (std::uint32_t call = 0; call < kCalls; ++call)
    {
        operator_.send("home-1",
                       operator_.request(call % 2 == 0 ? "TARN" : "QTN_RPC_PROXY", call % 2 == 0 ? kGetRadioNum : kGetChannel,
                                         call % 2 == 0 ? kLong : kOfProxy));
        for (++waiting; waiting >= 8 || (waiting > 0 && call + 1 == kCalls); --waiting)
            ASSERT_TRUE(operator_.take(Kind::kReply)) << call;
    }
    EXPECT_EQ(platform_.asked().size(), kCalls);
    EXPECT_EQ(bridge_->counters().executed, kCalls);
    EXPECT_EQ(bridge_->counters().unanswered, 0u);
}

TEST_F(BridgeTest, AFailureOfThePlatformIsPassedOnWithoutAMessage)
{
    start();
    platform_.setStatus(9);
    const auto reply = operator_.call("home-1", operator_.request("QTN_RPC_PROXY", kGetChannel, kOfProxy));
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->envelope.status, 9u);
    EXPECT_EQ(reply->envelope.refusal, Refusal::kNone);
    EXPECT_EQ(reply->envelope.length, 0u);
}

TEST_F(BridgeTest, APingIsAnsweredWithRunClockAndVersion)
{
    start();
    const auto pong = operator_.ping("home-1");
    ASSERT_TRUE(pong);
    EXPECT_EQ(pong->topic, "tarn/1/op/noc-1/re/home-1");
    EXPECT_EQ(pong->envelope.run, bridge_->run());
    EXPECT_EQ(pong->envelope.byteOrder, kOwnByteOrder);
    EXPECT_EQ(pong->envelope.contract, kContractHash);
    EXPECT_EQ(unpacked(pong->envelope), (Bytes{'7', '.', '8', '.', '9'}));
}

TEST_F(BridgeTest, WhatThePolicyDoesNotAllowIsRefusedAndLogged)
{
    start();
    EXPECT_EQ(refusalOf(operator_.request("TARN", kSetLogLevel, kShort)), Refusal::kPolicy);
    EXPECT_EQ(refusalOf(operator_.request("TARN", 115, 12)), Refusal::kPolicy) << "the contract does not have it";
    EXPECT_EQ(refusalOf(operator_.request("OTHER", 1, 12)), Refusal::kPolicy);
    EXPECT_TRUE(platform_.asked().empty());
    EXPECT_THAT(platform_.lines(),
                Contains("<4> refused noc-1 a call of TarnSetLogLevel (TARN 1): the gateway's policy does not "
                         "allow it"));
}

TEST_F(BridgeTest, WhatChangesSomethingIsLoggedAndHasToNameItsRun)
{
    start(policyOf({"allow *"}));
    EXPECT_EQ(refusalOf(operator_.request("TARN", kSetLogLevel, kShort)), Refusal::kNone);
    EXPECT_THAT(platform_.lines(), Contains("<5> noc-1 called TarnSetLogLevel: IPC status 0"));
    Envelope anyRun = operator_.request("TARN", kSetLogLevel, kShort);
    anyRun.run = anyRun.clock = 0;
    EXPECT_EQ(refusalOf(anyRun), Refusal::kNoRun);
    Envelope reads = operator_.request("TARN", kGetRadioNum, kLong);
    reads.run = reads.clock = 0;
    EXPECT_EQ(refusalOf(reads), Refusal::kNone) << "what only reads need not";
    EXPECT_EQ(platform_.asked().size(), 2u);
}

TEST_F(BridgeTest, AnotherPolicyHoldsAtOnceAlsoForWhatWaits)
{
    start(policyOf({"allow *"}));
    platform_.hold(true);
    const Envelope first = operator_.request("TARN", kSetLogLevel, kShort),
                   second = operator_.request("TARN", kSetLogLevel, kShort);
    operator_.send("home-1", first);
    operator_.send("home-1", second);
    ASSERT_TRUE(asksSoon(1));
    ASSERT_TRUE(operator_.await([&] { return bridge_->counters().requests == 2; }));
    bridge_->setPolicy(Policy::ofReading());
    platform_.hold(false);
    const auto reply = operator_.take([&](const Arrived& each) { return each.envelope.sequence == second.sequence; });
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->envelope.refusal, Refusal::kPolicy);
    EXPECT_EQ(platform_.asked().size(), 1u);
}

TEST_F(BridgeTest, ARateIsKept)
{
    start(policyOf({"allow *", "rate 4/h", "rate changes 1/h"}));
    EXPECT_EQ(refusalOf(operator_.request("TARN", kSetLogLevel, kShort)), Refusal::kNone);
    EXPECT_EQ(refusalOf(operator_.request("TARN", kSetLogLevel, kShort)), Refusal::kRate);
    for (int call = 0; call < 3; ++call)
        EXPECT_EQ(refusalOf(operator_.request("TARN", kGetRadioNum, kLong)), Refusal::kNone);
    EXPECT_EQ(refusalOf(operator_.request("TARN", kGetRadioNum, kLong)), Refusal::kRate);
    EXPECT_EQ(platform_.asked().size(), 4u);
}

TEST_F(BridgeTest, WhatOneRateRefusesUsesUpNothingOfTheOther)
{
    start(policyOf({"allow *", "rate 1/h", "rate changes 1/h"}));
    EXPECT_EQ(refusalOf(operator_.request("TARN", kGetRadioNum, kLong)), Refusal::kNone);
    EXPECT_EQ(refusalOf(operator_.request("TARN", kSetLogLevel, kShort)), Refusal::kRate) << "the rate of all calls";
    bridge_->setPolicy(policyOf({"allow *", "rate changes 1/h"}));
    EXPECT_EQ(refusalOf(operator_.request("TARN", kSetLogLevel, kShort)), Refusal::kNone);
}

TEST_F(BridgeTest, WhatIsRefusedBecauseTooManyWaitUsesUpNothingOfARate)
{
    start(policyOf({"allow *", "rate changes 1/h"}));
    fillQueue();
    EXPECT_EQ(refusalOf(operator_.request("TARN", kSetLogLevel, kShort)), Refusal::kBusy);
    answerQueue();
    EXPECT_EQ(refusalOf(operator_.request("TARN", kSetLogLevel, kShort)), Refusal::kNone);
}

TEST_F(BridgeTest, ARequestThatComesAgainIsNotCarriedOutAgain)
{
    start(policyOf({"allow *"}));
    const Envelope once = operator_.request("TARN", kSetLogLevel, kShort);
    const Envelope later = operator_.request("TARN", kSetLogLevel, kShort);
    for (int copy = 0; copy < 3; ++copy)
        operator_.send("home-1", once);
    EXPECT_EQ(refusalOf(later), Refusal::kNone);
    for (const Envelope& again : {once, later})
        operator_.send("home-1", again);
    ASSERT_TRUE(operator_.ping("home-1")) << "all before it has been seen";
    EXPECT_EQ(platform_.asked().size(), 2u);
    EXPECT_EQ(bridge_->counters().repeated, 4u);
    EXPECT_THAT(platform_.lines(), Contains("<4> dropped a request of noc-1: it has been here before"));
}

TEST_F(BridgeTest, ARequestThatIsOvertakenIsCarriedOutOnce)
{
    start();
    const Envelope early = operator_.request("TARN", kGetRadioNum, kLong),
                   late = operator_.request("TARN", kGetRadioNum, kLong);
    EXPECT_EQ(refusalOf(late), Refusal::kNone);
    EXPECT_EQ(refusalOf(early), Refusal::kNone);
    operator_.send("home-1", early);
    ASSERT_TRUE(operator_.ping("home-1"));
    EXPECT_EQ(platform_.asked().size(), 2u);
}

TEST_F(BridgeTest, ARequestThatWasHeldUpOnItsWayIsNotCarriedOut)
{
    start(policyOf({"allow *"}));
    operator_.send("home-1", operator_.request("TARN", kSetLogLevel, kShort));
    ASSERT_TRUE(asksSoon(1)) << "in time, it is";
    Envelope held = operator_.request("TARN", kSetLogLevel, kShort);
    held.live = 300;
    broker_.pause();
    operator_.send("home-1", held);
    operator_.await([] { return false; }, std::chrono::milliseconds(600));
    broker_.resume();
    const auto reply = operator_.take([&](const Arrived& each) { return each.envelope.sequence == held.sequence; });
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->envelope.refusal, Refusal::kLate);
    EXPECT_EQ(reply->envelope.status, 7u);
    EXPECT_EQ(platform_.asked().size(), 1u);
}

TEST_F(BridgeTest, ARequestWhoseTurnComesTooLateIsNotCarriedOut)
{
    start();
    platform_.hold(true);
    operator_.send("home-1", operator_.request("TARN", kGetRadioNum, kLong));
    ASSERT_TRUE(asksSoon(1));
    Envelope waits = operator_.request("TARN", kGetRadioNum, kLong);
    waits.live = 200;
    operator_.send("home-1", waits);
    operator_.await([] { return false; }, std::chrono::milliseconds(400));
    platform_.hold(false);
    const auto reply = operator_.take([&](const Arrived& each) { return each.envelope.sequence == waits.sequence; });
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->envelope.refusal, Refusal::kLate);
    EXPECT_EQ(platform_.asked().size(), 1u);
}

TEST_F(BridgeTest, ServicesDoNotWaitForOneAnother)
{
    start();
    platform_.hold(true);
    operator_.send("home-1", operator_.request("TARN", kGetRadioNum, kLong));
    operator_.send("home-1", operator_.request("QTN_RPC_PROXY", kGetChannel, kOfProxy));
    EXPECT_TRUE(asksSoon(2));
    EXPECT_TRUE(operator_.ping("home-1"));
    platform_.hold(false);
}

TEST_F(BridgeTest, WhenTooManyWaitFurtherOnesAreRefused)
{
    start();
    fillQueue();
    EXPECT_EQ(refusalOf(operator_.request("TARN", kGetRadioNum, kLong)), Refusal::kBusy);
    answerQueue();
    EXPECT_EQ(platform_.asked().size(), std::size_t{Bridge::kMostWaiting} + 1);
}

TEST_F(BridgeTest, WhatIsNotMeantForThisGatewayAsItIsIsRefused)
{
    start();
    Envelope request = operator_.request("TARN", kGetRadioNum, kLong);
    request.run ^= 1u;
    EXPECT_EQ(refusalOf(request), Refusal::kOtherRun);
    request = operator_.request("TARN", kGetRadioNum, kLong);
    request.clock += 100000;
    EXPECT_EQ(refusalOf(request), Refusal::kOtherRun) << "a clock that this run has not reached";
    request = operator_.request("TARN", kGetRadioNum, kLong);
    request.contract ^= 1u;
    EXPECT_EQ(refusalOf(request), Refusal::kOtherContract);
    request = operator_.request("TARN", kGetRadioNum, kLong);
    request.byteOrder = kOwnByteOrder == ByteOrder::kBig ? ByteOrder::kLittle : ByteOrder::kBig;
    EXPECT_EQ(refusalOf(request), Refusal::kOtherByteOrder);
    EXPECT_EQ(refusalOf(operator_.request("TARN", kGetRadioNum, kLong - 4)), Refusal::kLength);
    EXPECT_TRUE(platform_.asked().empty());
}

TEST_F(BridgeTest, WhatIsNoRequestIsDroppedAndTheNextOneIsServed)
{
    start();
    const std::string topic = requestTopic("home-1").text;
    Bytes cut = encoded(operator_.request("TARN", kGetRadioNum, kLong));
    cut.pop_back();
    operator_.sendBytes(topic, {});
    operator_.sendBytes(topic, Bytes(100000, 0xFF));
    operator_.sendBytes(topic, cut);
    operator_.sendBytes(topic, encoded(sample(Kind::kReply)));
    EXPECT_EQ(refusalOf(operator_.request("TARN", kGetRadioNum, kLong)), Refusal::kNone);
    EXPECT_EQ(bridge_->counters().malformed, 4u);
    EXPECT_EQ(bridge_->counters().requests, 1u);
}

TEST_F(BridgeTest, LogLinesAreBoundedAndSayHowManyAreLeftOut)
{
    start();
    for (int line = 0; line < 300; ++line)
        operator_.sendBytes(requestTopic("home-1").text, {1, 2, 3});
    ASSERT_TRUE(operator_.await([&] { return bridge_->counters().malformed == 300; }));
    EXPECT_LT(platform_.lines().size(), 250u);
    operator_.await([] { return false; }, std::chrono::milliseconds(50));
    operator_.sendBytes(requestTopic("home-1").text, {1, 2, 3});
    ASSERT_TRUE(operator_.await([&] { return bridge_->counters().malformed == 301; }));
    EXPECT_THAT(platform_.lines(), Contains(HasSubstr("lines are left out here")));
}

TEST_F(BridgeTest, EventsAreCarriedInOrderWithTheirNumbers)
{
    start();
    for (std::uint32_t number = 1; number <= 3; ++number)
    {
        const std::uint8_t data[] = {static_cast<std::uint8_t>(number), 0, 0, 0};
        bridge_->publishEvent("TARN", number, number == 3 ? nullptr : data, number == 3 ? 0 : sizeof data);
        const auto event = operator_.take(Kind::kEvent);
        ASSERT_TRUE(event);
        EXPECT_EQ(event->topic, "tarn/1/gw/home-1/ev/TARN");
        EXPECT_EQ(event->envelope.command, number);
        EXPECT_EQ(event->envelope.sequence, number);
        EXPECT_EQ(unpacked(event->envelope), number == 3 ? Bytes() : Bytes(data, data + sizeof data));
    }
}

TEST_F(BridgeTest, EventsOfSeveralThreadsLeaveInTheOrderOfTheirNumbers)
{
    constexpr std::uint32_t kThreads = 4, kEach = 15, kRounds = 50;
    start();
    for (std::uint32_t round = 0; round < kRounds; ++round)
    {
        std::vector<std::thread> threads;
        for (std::uint32_t thread = 0; thread < kThreads; ++thread)
            threads.emplace_back(
                [this]
                {
                    const Bytes data(1000, 1);
                    for (std::uint32_t event = 0; event < kEach; ++event)
                        bridge_->publishEvent("TARN", 1, data.data(), static_cast<std::uint32_t>(data.size()));
                });
        for (std::thread& thread : threads)
            thread.join();
        for (std::uint32_t number = round * kThreads * kEach + 1; number <= (round + 1) * kThreads * kEach; ++number)
        {
            const auto event = operator_.take(Kind::kEvent);
            ASSERT_TRUE(event);
            ASSERT_EQ(event->envelope.sequence, number);
        }
    }
    EXPECT_EQ(bridge_->counters().lostEvents, 0u);
}

TEST_F(BridgeTest, EventsThatAreTooManyAreDroppedAndLeaveAGap)
{
    start();
    broker_.kill();
    ASSERT_TRUE(operator_.await([&] { return platform_.lines().size() > 1; }));
    for (std::uint32_t event = 0; event < Outbox::kMostEvents + 10; ++event)
        bridge_->publishEvent("TARN", 1, nullptr, 0);
    EXPECT_EQ(bridge_->counters().lostEvents, 10u);
    broker_.start();
    ASSERT_TRUE(operator_.ping("home-1"));
    bridge_->publishEvent("TARN", 1, nullptr, 0);
    const auto last = operator_.take(
        [](const Arrived& each) { return each.envelope.kind == Kind::kEvent && each.envelope.sequence > Outbox::kMostEvents; });
    ASSERT_TRUE(last);
    EXPECT_EQ(last->envelope.sequence, Outbox::kMostEvents + 11);
}

TEST_F(BridgeTest, ABirthIsRetainedAndAWillFollowsWhenItStops)
{
    start();
    Operator second(broker_.port(), "noc-2");
    const auto birth = second.take(Kind::kBirth);
    ASSERT_TRUE(birth);
    EXPECT_EQ(birth->topic, "tarn/1/gw/home-1/st");
    EXPECT_EQ(birth->envelope.run, bridge_->run());
    EXPECT_EQ(birth->envelope.sequence, 1u);
    EXPECT_EQ(unpacked(birth->envelope), (Bytes{'7', '.', '8', '.', '9'}));
    bridge_->stop();
    const auto will = second.take(Kind::kWill);
    ASSERT_TRUE(will);
    EXPECT_EQ(will->envelope.run, bridge_->run());
    Operator third(broker_.port(), "noc-3");
    EXPECT_TRUE(third.take(Kind::kWill)) << "it is retained in the birth's place";
}

TEST_F(BridgeTest, AGatewayIsBornOnceItsSubscriptionIsConfirmed)
{
    Relay relay(broker_.port());
    startUnconfirmed(relay);
    EXPECT_FALSE(operator_.take(Kind::kBirth, std::chrono::milliseconds(200)));
    relay.setConfirmations(Relay::Confirmations::kPass);
    EXPECT_TRUE(operator_.take(Kind::kBirth));
    EXPECT_TRUE(operator_.ping("home-1"));
}

TEST_F(BridgeTest, AConnectionThatEndsBeforeItsSubscriptionIsConfirmedIsMadeAgain)
{
    Relay relay(broker_.port());
    startUnconfirmed(relay);
    relay.cut();
    relay.setConfirmations(Relay::Confirmations::kPass);
    ASSERT_TRUE(operator_.ping("home-1"));
    EXPECT_EQ(bridge_->counters().births, 1u);
    EXPECT_THAT(platform_.lines(), Contains(HasSubstr("the broker ended the connection, as RabbitMQ does if it does not allow "
                                                      "the subscriptions")));
}

TEST_F(BridgeTest, ABrokerThatRefusesTheSubscriptionIsLeftForTheNextOne)
{
    Relay refusing(broker_.port());
    refusing.setConfirmations(Relay::Confirmations::kRefuse);
    settings_ = settingsOf("home-1", {refusing.port(), broker_.port()});
    start();
    EXPECT_THAT(platform_.lines(), Contains("<4> no connection to the broker 127.0.0.1: the broker refuses the subscription to "
                                            "tarn/1/gw/home-1/rq"));
    EXPECT_EQ(operator_.take(Kind::kBirth)->envelope.sequence, 2u) << "there was none on the first connection";
}

TEST_F(BridgeTest, ABrokerThatComesBackFindsTheGatewayAgain)
{
    start();
    for (std::uint32_t connection = 2; connection <= 4; ++connection)
    {
        broker_.kill();
        broker_.start();
        ASSERT_TRUE(operator_.ping("home-1"));
        EXPECT_EQ(refusalOf(operator_.request("TARN", kGetRadioNum, kLong)), Refusal::kNone);
        EXPECT_EQ(bridge_->counters().births, connection);
    }
}

TEST_F(BridgeTest, AnotherBrokerTakesThePlaceOfOneThatIsGone)
{
    MosquittoBroker second;
    settings_ = settingsOf("home-1", {1, broker_.port(), second.port()}); // nobody listens on port 1
    start();
    broker_.kill();
    Operator there(second.port(), "noc-2");
    EXPECT_TRUE(there.ping("home-1"));
    EXPECT_EQ(there.take(Kind::kBirth)->envelope.run, bridge_->run()) << "it is the same run, and has seen what it has seen";
}

TEST_F(BridgeTest, AtItsEndWhatWaitsIsRefusedAndWhatIsUnderWayIsAnswered)
{
    start();
    platform_.hold(true);
    const Envelope underWay = operator_.request("TARN", kGetRadioNum, kLong);
    const Envelope waits = operator_.request("TARN", kGetRadioNum, kLong);
    operator_.send("home-1", underWay);
    operator_.send("home-1", waits);
    ASSERT_TRUE(operator_.await([&] { return bridge_->counters().requests == 2 && platform_.asked().size() == 1; }));
    std::thread stopping([&] { bridge_->stop(); });
    // What its policy does not allow is refused for that until it stops.
    EXPECT_TRUE(
        operator_.await([&] { return refusalOf(operator_.request("TARN", kSetLogLevel, kShort)) == Refusal::kStopping; }));
    platform_.hold(false);
    stopping.join();
    const auto bySequence = [&](const Envelope& request)
    { return operator_.take([&](const Arrived& each) { return each.envelope.sequence == request.sequence; }); };
    const auto first = bySequence(underWay), second = bySequence(waits);
    ASSERT_TRUE(first);
    ASSERT_TRUE(second);
    EXPECT_EQ(first->envelope.status, 0u);
    EXPECT_EQ(second->envelope.refusal, Refusal::kStopping);
    EXPECT_EQ(platform_.asked().size(), 1u);
}

TEST_F(BridgeTest, ABrokerThatTakesNothingDoesNotKeepItFromEnding)
{
    Relay relay(broker_.port());
    settings_ = settingsOf("home-1", {relay.port()});
    start();
    relay.hold();
    const Bytes data(kLongestMessage, 1);
    ASSERT_TRUE(operator_.await(
        [&]
        {
            bridge_->publishEvent("TARN", 1, data.data(), kLongestMessage);
            return bridge_->counters().lostEvents > 0;
        }));
    const auto start = std::chrono::steady_clock::now();
    bridge_->stop();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(15));
    relay.release();
}

TEST_F(BridgeTest, AnswersGoToWhoAsked)
{
    start();
    Operator other(broker_.port(), "noc-2");
    ASSERT_TRUE(other.ping("home-1"));
    ASSERT_TRUE(other.call("home-1", other.request("TARN", kGetRadioNum, kLong)));
    operator_.await([] { return false; }, std::chrono::milliseconds(50));
    EXPECT_FALSE(operator_.take(Kind::kReply, std::chrono::milliseconds(0)));
}

TEST_F(BridgeTest, OneProcessCanHaveManyBridges)
{
    constexpr int kBridges = 100;
    struct One
    {
        BridgeSettings settings;
        Platform platform;
        std::unique_ptr<Bridge> bridge;
    };
    std::vector<std::unique_ptr<One>> all;
    for (int number = 0; number < kBridges; ++number)
    {
        auto one = std::make_unique<One>();
        one->settings = settingsOf("many-" + std::to_string(number), {broker_.port()});
        one->bridge = std::make_unique<Bridge>(one->settings, one->platform.functions(), Policy::ofReading());
        ASSERT_TRUE(one->bridge->start());
        all.push_back(std::move(one));
    }
    for (int number = 0; number < kBridges; ++number)
    {
        const std::string gateway = "many-" + std::to_string(number);
        ASSERT_TRUE(operator_.ping(gateway)) << gateway;
        const auto reply = operator_.call(gateway, operator_.request("TARN", kGetRadioNum, kLong));
        ASSERT_TRUE(reply);
        EXPECT_EQ(reply->envelope.run, all[static_cast<std::size_t>(number)]->bridge->run());
        EXPECT_EQ(all[static_cast<std::size_t>(number)]->platform.asked().size(), 1u);
    }
}

} // namespace
} // namespace fleet_test
