// tarn-bridge itself, with the workstation's IPC.
#include "broker.h"
#include "commands.h"
#include "operator.h"

#include "support/process.h"
#include "support/services.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

namespace fleet_test
{
namespace
{

using namespace tarn::fleet;
using ::testing::HasSubstr;

// The program, and what it writes.
class BridgeProgram
{
public:
    explicit BridgeProgram(const std::vector<std::string>& arguments)
    {
        std::vector<std::string> words = arguments;
        words.insert(words.begin(), TARN_BRIDGE_PROGRAM);
        process_ = tarn::test::Process(words, {STDIN_FILENO, output_.writing(), output_.writing()});
        output_.closeWriting();
    }

    void signal(int number) const
    {
        process_.signal(number);
    }
    // Its exit code, or 128 and the signal that ended it.
    int finish()
    {
        return process_.finish();
    }
    std::string line() const
    {
        return output_.line();
    }
    // The first line from now on that has this in it; empty if there is none.
    std::string lineWith(const std::string& piece) const
    {
        std::string text = line();
        while (!text.empty() && text.find(piece) == std::string::npos)
            text = line();
        return text;
    }
    std::string rest() const
    {
        return output_.rest();
    }

private:
    tarn::test::Pipe output_;
    tarn::test::Process process_;
};

// Log level: command 1 sets it, command 0 reads it.
std::uint32_t answerLogLevel(void* context, const KorIilRequest* request, void* message)
{
    auto* level = static_cast<std::uint8_t*>(context);
    auto* bytes = static_cast<std::uint8_t*>(message);
    EXPECT_STREQ(request->callerId, "tarn-bridge");
    if (request->command == kSetLogLevel)
        *level = bytes[0];
    bytes[4] = *level;
    return KOR_IIL_OK;
}

class BridgeProgramTest : public ::testing::Test
{
protected:
    std::vector<std::string> arguments(std::initializer_list<std::string> more = {}) const
    {
        std::vector<std::string> all{"--id", "home-1", "--broker", "127.0.0.1:" + std::to_string(broker_.port())};
        all.insert(all.end(), more);
        return all;
    }
    void startService()
    {
        service_ = std::make_unique<tarn::test::ServiceThread>("TARN", 5u, answerLogLevel, &level_);
    }
    std::string file(const std::string& name, const std::string& text) const
    {
        std::string path = directory_.path() + "/" + name;
        std::ofstream(path) << text;
        return path;
    }

    tarn::test::TemporaryRuntimeDirectory directory_;
    MosquittoBroker broker_;
    Operator operator_{broker_.port()};
    std::uint8_t level_ = 3;
    std::unique_ptr<tarn::test::ServiceThread> service_;
};

TEST_F(BridgeProgramTest, MakesCallsWithTheIpcOfItsMachine)
{
    startService();
    const BridgeProgram bridge(arguments({"--policy", file("policy", "allow *\n")}));
    ASSERT_TRUE(operator_.ping("home-1"));
    ASSERT_TRUE(operator_.call("home-1", operator_.request("TARN", kSetLogLevel, kShort, {6})));
    EXPECT_EQ(level_, 6);
    const auto reply = operator_.call("home-1", operator_.request("TARN", kGetLogLevel, kShort));
    ASSERT_TRUE(reply);
    EXPECT_EQ(unpacked(reply->envelope), (Bytes{0, 0, 0, 0, 6, 0, 0, 0, 0, 0, 0, 0}));
    service_.reset();
    const auto none = operator_.call("home-1", operator_.request("TARN", kGetLogLevel, kShort));
    ASSERT_TRUE(none);
    EXPECT_EQ(none->envelope.status, std::uint32_t{KOR_IIL_UNKNOWN_DST_ID});
    EXPECT_EQ(none->envelope.refusal, Refusal::kNone);
}

TEST_F(BridgeProgramTest, CarriesEventsAlsoAfterTheServiceWasRestarted)
{
    startService();
    const BridgeProgram bridge(arguments({"--renew", "1"}));
    ASSERT_TRUE(operator_.ping("home-1"));
    for (std::uint32_t round = 1; round <= 3; ++round)
    {
        const std::uint32_t radio = round;
        ASSERT_TRUE(operator_.await([&] { return service_->publish(2, &radio, sizeof radio) == 1; }));
        const auto event = operator_.take(Kind::kEvent);
        ASSERT_TRUE(event);
        EXPECT_EQ(event->envelope.command, 2u);
        EXPECT_EQ(event->envelope.sequence, round);
        EXPECT_EQ(unpacked(event->envelope)[kOwnByteOrder == ByteOrder::kBig ? 3 : 0], round);
        operator_.await([] { return false; }, std::chrono::milliseconds(round == 1 ? 1500 : 0)); // renewed, and not doubled
        EXPECT_FALSE(operator_.take(Kind::kEvent, std::chrono::milliseconds(20)));
        service_.reset();
        startService();
    }
}

TEST_F(BridgeProgramTest, CarriesNoEventsIfToldSo)
{
    startService();
    const BridgeProgram bridge(arguments({"--no-events"}));
    ASSERT_TRUE(operator_.ping("home-1"));
    EXPECT_EQ(service_->publish(1, nullptr, 0), 0u);
}

TEST_F(BridgeProgramTest, LeavesItsWillWhenItIsKilled)
{
    const BridgeProgram bridge(arguments());
    const auto birth = operator_.take(Kind::kBirth);
    ASSERT_TRUE(birth);
    bridge.signal(SIGKILL);
    const auto will = operator_.take(Kind::kWill);
    ASSERT_TRUE(will);
    EXPECT_EQ(will->envelope.run, birth->envelope.run);
    EXPECT_EQ(will->envelope.sequence, birth->envelope.sequence);
}

TEST_F(BridgeProgramTest, AnotherRunDoesNotCarryOutWhatWasMeantForTheOneBefore)
{
    startService();
    const std::string policy = file("policy", "allow *\n");
    auto bridge = std::make_unique<BridgeProgram>(arguments({"--policy", policy}));
    ASSERT_TRUE(operator_.ping("home-1"));
    const Envelope once = operator_.request("TARN", kSetLogLevel, kShort, {6});
    ASSERT_TRUE(operator_.call("home-1", once));
    bridge = std::make_unique<BridgeProgram>(arguments({"--policy", policy}));
    ASSERT_TRUE(operator_.ping("home-1"));
    level_ = 1;
    const auto reply = operator_.call("home-1", once);
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->envelope.refusal, Refusal::kOtherRun);
    EXPECT_EQ(level_, 1);
}

TEST_F(BridgeProgramTest, ReadsItsPolicyAgainAtSighupAndKeepsItIfTheNewOneIsWrong)
{
    startService();
    const std::string policy = file("policy", "allow reads\n");
    const BridgeProgram bridge(arguments({"--policy", policy}));
    ASSERT_TRUE(operator_.ping("home-1"));
    const auto refusal = [&]
    { return operator_.call("home-1", operator_.request("TARN", kSetLogLevel, kShort, {6}))->envelope.refusal; };
    EXPECT_EQ(refusal(), Refusal::kPolicy);
    file("policy", "allow reads\nallow TARN TarnSetLogLevel\n");
    bridge.signal(SIGHUP);
    EXPECT_EQ(bridge.lineWith("policy has been"), "<5>tarn-bridge: the policy has been read again");
    EXPECT_EQ(refusal(), Refusal::kNone);
    file("policy", "deny *\nforbid all\n");
    bridge.signal(SIGHUP);
    EXPECT_EQ(bridge.lineWith("<3>"), "<3>tarn-bridge: " + policy + ":2: expected allow, deny or rate, not forbid");
    EXPECT_EQ(bridge.lineWith("policy"), "<4>tarn-bridge: the policy stays as it was");
    EXPECT_EQ(refusal(), Refusal::kNone);
}

TEST_F(BridgeProgramTest, DoesNotStartWithAWrongPolicy)
{
    const std::string policy = file("policy", "allow TARN TarnGetRadios\n");
    BridgeProgram bridge(arguments({"--policy", policy}));
    EXPECT_EQ(bridge.line(),
              "<3>tarn-bridge: " + policy + ":1: expected reads, changes, * or a function of TARN, not TarnGetRadios");
    EXPECT_EQ(bridge.finish(), 2);
}

TEST_F(BridgeProgramTest, SaysWhenABrokerIsReachedAndEndsInOrder)
{
    BridgeProgram bridge(arguments({"--ready-descriptor", "1"}));
    EXPECT_EQ(bridge.lineWith("ready"), "ready");
    bridge.signal(SIGTERM);
    EXPECT_EQ(bridge.finish(), 0);
    EXPECT_TRUE(operator_.take(Kind::kWill));
}

TEST_F(BridgeProgramTest, EndsAtOnceAlsoWhereNoBrokerIsReached)
{
    BridgeProgram bridge({"--id", "home-1", "--broker", "127.0.0.1:1"});
    EXPECT_THAT(bridge.line(), HasSubstr("no connection to the broker 127.0.0.1: "));
    bridge.signal(SIGTERM);
    EXPECT_EQ(bridge.finish(), 0);
}

TEST(BridgeProgramOptionsTest, HelpVersionAndWrongOptionsEndAtOnce)
{
    BridgeProgram help({"--help"});
    EXPECT_THAT(help.rest(), HasSubstr("Usage: tarn-bridge [OPTIONS]\n"));
    EXPECT_EQ(help.finish(), 0);
    BridgeProgram version({"--version"});
    EXPECT_THAT(version.rest(), ::testing::MatchesRegex("[0-9.]+\n"));
    EXPECT_EQ(version.finish(), 0);
    BridgeProgram wrong({"--bogus", "1"});
    EXPECT_EQ(wrong.rest(), "<3>tarn-bridge: expected a setting of tarn-bridge --help, not bogus\n");
    EXPECT_EQ(wrong.finish(), 2);
}

} // namespace
} // namespace fleet_test
