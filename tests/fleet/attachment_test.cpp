// Programs of this machine, which know nothing of a broker, and a gateway behind one.
#include "broker.h"
#include "commands.h"
#include "link.h"
#include "operator.h"
#include "scripted_gateway.h"

#include "fleet/attachment.h"
#include "fleet/bridge.h"
#include "layout/decode.h"
#include "support/services.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <functional>
#include <memory>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fleet_test
{
namespace
{

using namespace tarn::fleet;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr ByteOrder kOther = kOwnByteOrder == ByteOrder::kBig ? ByteOrder::kLittle : ByteOrder::kBig;

bool comesTrue(const std::function<bool()>& condition)
{
    const auto end = std::chrono::steady_clock::now() + kAmple;
    while (!condition())
    {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(milliseconds(5));
    }
    return true;
}

// What the gateway's IPC does: turns the first byte round, may wait first.
class Platform
{
public:
    BridgePlatform functions()
    {
        return {this, execute, nullptr};
    }
    void hold(bool isHeld)
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        isHeld_ = isHeld;
        changed_.notify_all();
    }

    std::atomic<std::uint32_t> status{0}, calls{0};

private:
    static std::uint32_t execute(void* self, const char* /*callerId*/, const char* /*service*/, std::uint32_t /*wait*/,
                                 std::uint32_t /*command*/, std::uint32_t length, void* message)
    {
        auto* that = static_cast<Platform*>(self);
        std::unique_lock<std::mutex> lock(that->mutex_);
        ++that->calls;
        that->changed_.wait(lock, [that] { return !that->isHeld_; });
        auto* bytes = static_cast<std::uint8_t*>(message);
        bytes[0] = static_cast<std::uint8_t>(~bytes[0]);
        bytes[length - 1] = 0x77;
        return that->status;
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    bool isHeld_ = false;
};

class AttachmentTest : public ::testing::Test
{
protected:
    void startBridge(const char* policyLine = "allow *")
    {
        bridgeSettings_.link = linkOf("home-1", {broker_.port()});
        std::snprintf(bridgeSettings_.programVersion, sizeof bridgeSettings_.programVersion, "1.2.3");
        Policy policy;
        char problem[256];
        ASSERT_TRUE(policy.add("allow *", problem, sizeof problem));
        ASSERT_TRUE(policy.add(policyLine, problem, sizeof problem)) << problem;
        bridge_ = std::make_unique<Bridge>(bridgeSettings_, platform_.functions(), policy);
        ASSERT_TRUE(bridge_->start());
        ASSERT_TRUE(comesTrue([this] { return bridge_->counters().births > 0; }));
    }
    void attach(bool isThere = true, const tarn::layout::Layout* layout = nullptr)
    {
        attachment_ = std::make_unique<Attachment>(link_, "home-1", layout);
        EXPECT_EQ(attachment_->awaitGateway(isThere ? milliseconds(kAmple) : milliseconds(200)), isThere);
    }
    // A ping that is sent again at the gateway's birth has two answers; behind a call's both have arrived.
    std::uint64_t unaskedAfterACall()
    {
        startBridge();
        attach();
        Bytes message(kShort, 0);
        EXPECT_EQ(call(kGetLogLevel, message), std::uint32_t{KOR_IIL_OK});
        return attachment_->counters().unasked;
    }
    static std::uint32_t call(std::uint32_t command, Bytes& message, std::uint32_t wait = 5, const char* service = "TARN")
    {
        return KorIilExecute("test", service, wait, command, static_cast<std::uint32_t>(message.size()), message.data());
    }

    tarn::test::TemporaryRuntimeDirectory directory_;
    MosquittoBroker broker_;
    LinkSettings link_ = linkOf("noc-1", {broker_.port()});
    Platform platform_;
    BridgeSettings bridgeSettings_;
    std::unique_ptr<Bridge> bridge_;
    std::unique_ptr<Attachment> attachment_;
};

TEST_F(AttachmentTest, ACallReachesTheGatewayAndItsReplyComesBack)
{
    startBridge();
    attach();
    Bytes message(kLong, 0);
    message[0] = 0x21;
    message[100] = 0x42;
    EXPECT_EQ(call(kGetRadioNum, message), std::uint32_t{KOR_IIL_OK});
    Bytes expected(kLong, 0);
    expected[0] = 0xDE;
    expected[100] = 0x42;
    expected[kLong - 1] = 0x77;
    EXPECT_EQ(message, expected);
}

TEST_F(AttachmentTest, CallersInParallelEachGetTheirOwnReply)
{
    const std::uint64_t unasked = unaskedAfterACall();
    std::atomic<int> good{0};
    std::vector<std::thread> callers;
    for (std::uint8_t caller = 0; caller < 6; ++caller)
        callers.emplace_back(
            [caller, &good]
            {
                for (std::uint8_t round = 0; round < 20; ++round)
                {
                    Bytes message(kLong, 0);
                    message[0] = caller;
                    message[1] = round;
                    if (call(kGetRadioNum, message) == KOR_IIL_OK && message[0] == static_cast<std::uint8_t>(~caller) &&
                        message[1] == round)
                        ++good;
                }
            });
    for (std::thread& caller : callers)
        caller.join();
    EXPECT_EQ(good, 120);
    EXPECT_EQ(platform_.calls, 121u);
    EXPECT_EQ(attachment_->counters().unasked, unasked);
}

TEST_F(AttachmentTest, AFailureOfTheGatewaysOwnIpcIsPassedOnAndTheMessageStaysAsItWas)
{
    startBridge();
    attach();
    for (const std::uint32_t status : {KOR_IIL_UNKNOWN_DST_ID, KOR_IIL_RX_FAIL, KOR_IIL_BUSY})
    {
        platform_.status = status;
        Bytes message(kShort, 1);
        EXPECT_EQ(call(kGetLogLevel, message), status);
        EXPECT_EQ(message, Bytes(kShort, 1));
    }
}

TEST_F(AttachmentTest, AGatewayThatIsNotThereIsAServiceThatIsNotThereUntilItComes)
{
    attach(false);
    Bytes message(kShort, 0);
    EXPECT_EQ(call(kGetLogLevel, message, 1), std::uint32_t{KOR_IIL_UNKNOWN_DST_ID});
    startBridge();
    EXPECT_EQ(call(kGetLogLevel, message), std::uint32_t{KOR_IIL_OK});
}

TEST_F(AttachmentTest, WithoutABrokerNothingIsSentAndWithOneAgainItIs)
{
    startBridge();
    attach();
    broker_.kill();
    Bytes message(kShort, 0);
    EXPECT_TRUE(comesTrue([&] { return call(kGetLogLevel, message) == KOR_IIL_TX_FAIL; }));
    EXPECT_EQ(platform_.calls, 0u);
    broker_.start();
    EXPECT_TRUE(comesTrue([&] { return call(kGetLogLevel, message) == KOR_IIL_OK; }));
}

TEST_F(AttachmentTest, WhatThePolicyRefusesIsUnsupportedAndWhatIsTooMuchIsBusy)
{
    startBridge("deny TARN TarnSetLogLevel");
    attach();
    Bytes message(kShort, 0);
    EXPECT_EQ(call(kSetLogLevel, message), std::uint32_t{KOR_IIL_UNSUPPORT});
    Policy policy = Policy::ofReading();
    char problem[256];
    ASSERT_TRUE(policy.add("rate 1/min", problem, sizeof problem)) << problem;
    bridge_->setPolicy(policy);
    EXPECT_TRUE(comesTrue([&] { return call(kGetLogLevel, message) == KOR_IIL_BUSY; }));
}

TEST_F(AttachmentTest, AWaitThatIsOverIsATimeOutAndTheLateReplyIsDropped)
{
    const std::uint64_t unasked = unaskedAfterACall();
    platform_.hold(true);
    Bytes message(kShort, 0);
    EXPECT_EQ(call(kGetLogLevel, message, 1), std::uint32_t{KOR_IIL_TIMEOUT});
    platform_.hold(false);
    EXPECT_TRUE(comesTrue([&] { return attachment_->counters().unasked == unasked + 1; }));
    EXPECT_EQ(call(kGetLogLevel, message), std::uint32_t{KOR_IIL_OK});
    EXPECT_EQ(platform_.calls, 3u);
}

TEST_F(AttachmentTest, AConnectionThatBreaksInACallLeavesItsOutcomeUnknown)
{
    startBridge();
    attach();
    platform_.hold(true);
    std::uint32_t status = KOR_IIL_OK;
    std::thread caller(
        [&]
        {
            Bytes message(kShort, 0);
            status = call(kGetLogLevel, message, 20);
        });
    EXPECT_TRUE(comesTrue([&] { return platform_.calls == 1; }));
    broker_.kill();
    caller.join();
    EXPECT_EQ(status, std::uint32_t{KOR_IIL_RX_FAIL});
    platform_.hold(false);
}

TEST_F(AttachmentTest, AGatewayThatLosesItsConnectionInACallLeavesItsOutcomeUnknown)
{
    ScriptedGateway gateway(broker_.port(), "home-1", kOwnByteOrder,
                            [&](const Envelope&)
                            {
                                Envelope will = sample(Kind::kWill);
                                will.byteOrder = kOwnByteOrder;
                                will.run = ScriptedGateway::kRun;
                                gateway.publish("tarn/1/gw/home-1/st", will);
                                return std::vector<Envelope>{};
                            });
    attach();
    Bytes message(kShort, 0);
    EXPECT_EQ(call(kGetLogLevel, message, 20), std::uint32_t{KOR_IIL_RX_FAIL});
}

TEST_F(AttachmentTest, ABridgeThatWasRestartedMakesTheNextCallAllTheSame)
{
    startBridge();
    attach();
    Bytes message(kShort, 0);
    EXPECT_EQ(call(kSetLogLevel, message), std::uint32_t{KOR_IIL_OK});
    bridge_.reset();
    startBridge();
    setenv("KORIIL_WAIT_FOR_SERVICE", "on", 1); // the services are opened anew, so that subscribers learn of the loss
    EXPECT_EQ(call(kSetLogLevel, message), std::uint32_t{KOR_IIL_OK});
    unsetenv("KORIIL_WAIT_FOR_SERVICE");
    EXPECT_EQ(platform_.calls, 2u);
}

TEST_F(AttachmentTest, RepliesThatNobodyWaitsForDoNoHarm)
{
    ScriptedGateway gateway(broker_.port(), "home-1", kOwnByteOrder,
                            [&](const Envelope& asked)
                            {
                                Envelope earlier = gateway.reply(asked, 0, {1}), foreign = gateway.reply(asked, 0, {2});
                                earlier.sequence += 100;
                                foreign.session += 1;
                                const Envelope right = gateway.reply(asked, 0, {3});
                                return std::vector<Envelope>{earlier, foreign, right, right, right};
                            });
    attach();
    Bytes message(kShort, 0);
    EXPECT_EQ(call(kGetLogLevel, message), std::uint32_t{KOR_IIL_OK});
    EXPECT_EQ(message[0], 3);
    EXPECT_TRUE(comesTrue([&] { return attachment_->counters().unasked == 4; }));
}

TEST_F(AttachmentTest, AReplyOfAnotherGatewayIsDropped)
{
    ScriptedGateway gateway(broker_.port(), "home-1", kOwnByteOrder,
                            [&](const Envelope& asked)
                            {
                                gateway.publish("tarn/1/op/noc-1/re/home-2", gateway.reply(asked, 0, {9}));
                                return std::vector<Envelope>{};
                            });
    attach();
    Bytes message(kShort, 0);
    EXPECT_EQ(call(kGetLogLevel, message, 1), std::uint32_t{KOR_IIL_TIMEOUT});
    EXPECT_EQ(attachment_->counters().unasked, 1u);
}

TEST_F(AttachmentTest, ARepliesLengthHasToBeTheRequests)
{
    ScriptedGateway gateway(broker_.port(), "home-1", kOwnByteOrder,
                            [&](const Envelope& asked)
                            {
                                Envelope reply = gateway.reply(asked, 0, {1});
                                reply.length = 16;
                                return std::vector<Envelope>{reply};
                            });
    attach();
    Bytes message(kShort, 0);
    EXPECT_EQ(call(kGetLogLevel, message), std::uint32_t{KOR_IIL_MISMATCH_CMD_LEN});
}

TEST_F(AttachmentTest, WhatIsTooLongForTheWayIsNotSent)
{
    startBridge();
    attach();
    Bytes message(kLongestMessage + 1, 0);
    EXPECT_EQ(call(kGetLogLevel, message), std::uint32_t{KOR_IIL_OVERSIZE});
    EXPECT_EQ(bridge_->counters().requests, 0u);
}

TEST_F(AttachmentTest, TheOtherServicesAreThereToo)
{
    startBridge();
    attach();
    Bytes module(9376, 0), mirror(24, 0);
    EXPECT_EQ(call(2, module, 5, "QTN_RPC_PROXY"), std::uint32_t{KOR_IIL_OK});
    EXPECT_EQ(call(0, mirror, 5, "QTN_MIRROR"), std::uint32_t{KOR_IIL_OK});
}

// --- Events -----------------------------------------------------------------------------------------------------------------

struct Heard
{
    std::mutex mutex;
    std::vector<Bytes> events;
    std::vector<std::uint32_t> changes;
};

Heard& heard()
{
    static Heard only;
    return only;
}

void onEvent(const char* /*serviceId*/, std::uint32_t /*evt*/, const void* data, std::uint32_t length)
{
    const std::lock_guard<std::mutex> guard(heard().mutex);
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    heard().events.emplace_back(bytes, bytes + length);
}

void onChange(void* /*context*/, const char* /*callerId*/, const char* /*serviceId*/, std::uint32_t /*evt*/,
              std::uint32_t status)
{
    const std::lock_guard<std::mutex> guard(heard().mutex);
    heard().changes.push_back(status);
}

TEST_F(AttachmentTest, EventsArriveAndSubscribersAreToldWhenSomeMayHaveBeenMissed)
{
    startBridge();
    attach();
    const auto count = [](auto& list)
    {
        const std::lock_guard<std::mutex> guard(heard().mutex);
        return list.size();
    };
    ASSERT_EQ(KorIilKeepSubscription("test", "TARN", 2, onEvent, onChange, nullptr), std::uint32_t{KOR_IIL_OK});
    const std::uint8_t data[] = {1, 2, 3, 4};
    bridge_->publishEvent("TARN", 2, data, sizeof data);
    bridge_->publishEvent("TARN", 1, data, sizeof data); // not subscribed to
    ASSERT_TRUE(comesTrue([&] { return count(heard().events) == 1; }));
    EXPECT_EQ(heard().events[0], (Bytes{1, 2, 3, 4}));
    broker_.kill();
    broker_.start();
    ASSERT_TRUE(comesTrue([&] { return count(heard().changes) >= 2; }));
    EXPECT_EQ(heard().changes[0], std::uint32_t{KOR_IIL_RX_FAIL});
    EXPECT_EQ(heard().changes[1], std::uint32_t{KOR_IIL_OK});
    Bytes message(kShort, 0);
    ASSERT_TRUE(comesTrue([&] { return call(kGetLogLevel, message) == KOR_IIL_OK; }));
    ASSERT_TRUE(comesTrue(
        [&]
        {
            bridge_->publishEvent("TARN", 2, data, sizeof data);
            return count(heard().events) > 1;
        }));
    EXPECT_EQ(KorIilCancelEvent("test", "TARN", 2, onEvent), std::uint32_t{KOR_IIL_OK});
}

// --- A gateway of the other byte order --------------------------------------------------------------------------------------

TEST_F(AttachmentTest, NumbersReachAGatewayOfTheOtherByteOrderTurnedRound)
{
    Bytes asked;
    ScriptedGateway gateway(broker_.port(), "home-1", kOther,
                            [&](const Envelope& request)
                            {
                                EXPECT_EQ(request.byteOrder, kOther);
                                asked = unpacked(request);
                                return std::vector<Envelope>{gateway.reply(request, 0, {5, 6, 7, 8, 9, 10, 11, 12})};
                            });
    attach();
    Bytes message{1, 2, 3, 4, 0, 0, 0, 0, 0, 0, 0, 0}; // word at 0 in, word at 4 out, status at 8
    EXPECT_EQ(call(kSetLogLevel, message), std::uint32_t{KOR_IIL_OK});
    EXPECT_EQ(asked, (Bytes{4, 3, 2, 1, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(AttachmentTest, ARecordIsNotSentToTheOtherByteOrderUnlessALayoutTellsOfIt)
{
    Bytes asked;
    ScriptedGateway gateway(broker_.port(), "home-1", kOther,
                            [&](const Envelope& request)
                            {
                                asked = unpacked(request);
                                return std::vector<Envelope>{gateway.reply(request, 0, asked)};
                            });
    const tarn::contract::Command& command = *tarn::contract::find("TarnSetRadioCfg").command;
    const tarn::contract::Argument& record = *command.argument("cfg");
    const tarn::layout::Field& channel = *tarn::layout::simulated().record("TarnRadioCfg")->field("channel");
    Bytes message(command.length, 0);
    tarn::layout::storeNumber(message.data() + record.offset + channel.offset, channel.size, 36);
    attach();
    EXPECT_EQ(call(command.command, message), std::uint32_t{KOR_IIL_UNSUPPORT});
    EXPECT_TRUE(asked.empty());
    attachment_.reset();
    attach(true, &tarn::layout::simulated());
    const Bytes before = message;
    EXPECT_EQ(call(command.command, message), std::uint32_t{KOR_IIL_OK});
    EXPECT_EQ(message, before) << "the gateway's reply was the request";
    EXPECT_EQ(asked[record.offset + channel.offset + (kOther == ByteOrder::kBig ? channel.size - 1 : 0)], 36);
}

} // namespace
} // namespace fleet_test
