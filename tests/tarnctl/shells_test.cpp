// The completion scripts in the shells that they are for: each is typed a command line, and says what it makes of it.
#include "support.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>

namespace tarnctl_test
{

namespace
{

using Offers = std::set<std::string>;

struct Shell
{
    const char* name;
    const char* command; // runs the script shells/complete.NAME
};

class ShellTest : public TarnctlTest, public ::testing::WithParamInterface<Shell>
{
protected:
    void SetUp() override
    {
        setenv("HOME", directory.c_str(), 1); // no settings of whoever runs the test
        std::string programs;
        for (const char* const program : {TARNCTL_PROGRAM, TARN_FLEET_PROGRAM})
            programs += std::filesystem::path(program).parent_path().string() + ":";
        setenv("PATH", (programs + path_).c_str(), 1);
        std::ofstream(path("script")) << run({"completion", GetParam().name}).out;
        gateway_ = std::make_unique<Program>(Words{}, TARN_GATEWAY_PROGRAM);
        for (std::string line; line.rfind("ready", 0) != 0;)
            ASSERT_NE(line = gateway_->nextLine(), "");
    }

    Offers offered(const std::string& line) const
    {
        const std::string driver = std::string(SHELLS "/complete.") + GetParam().name;
        std::istringstream lines(
            shellOutput(std::string(GetParam().command) + " " + driver + " " + path("script") + " '" + line + "'"));
        Offers offers;
        for (std::string offer; std::getline(lines, offer);)
            offers.insert(offer);
        return offers;
    }

private:
    const std::string path_ = std::getenv("PATH");
    std::unique_ptr<Program> gateway_;
};

TEST_P(ShellTest, CompletesACommand)
{
    EXPECT_EQ(offered("tarnctl rad"), Offers{"radios"});
    EXPECT_EQ(offered("tarnctl mirror o"), (Offers{"off", "on"}));
}

TEST_P(ShellTest, CompletesAnOptionAndItsValue)
{
    EXPECT_EQ(offered("tarnctl call --dr"), Offers{"--dry-run"});
    EXPECT_EQ(offered("tarnctl --format "), (Offers{"csv", "json", "table"}));
    EXPECT_EQ(offered("tarnctl --format=js"), Offers{"--format=json"});
    EXPECT_EQ(offered("tarnctl stations --sort s"), Offers{"signal"});
}

TEST_P(ShellTest, CompletesAFunction)
{
    EXPECT_EQ(offered("tarnctl call tarnVal"), Offers{"tarnValidatePinCode"});
    EXPECT_EQ(offered("tarnctl describe TarnGetRadioNeighboringResult"),
              (Offers{"TarnGetRadioNeighboringResultAt", "TarnGetRadioNeighboringResultNum"}));
}

TEST_P(ShellTest, CompletesAnArgument)
{
    EXPECT_EQ(offered("tarnctl call TarnGetRadio ra"), Offers{"radioId="});
    EXPECT_EQ(offered("tarnctl call TarnGetRadio radioId=1 d"), Offers{"data=null"});
}

TEST_P(ShellTest, CompletesAFieldAndItsValue)
{
    EXPECT_EQ(offered("tarnctl call TarnSetRadioCfg radioId=1 cfg.ch"), Offers{"cfg.channel="});
    EXPECT_EQ(offered("tarnctl call TarnSetRadioCfg radioId=1 cfg.enabled=of"), Offers{"cfg.enabled=off"});
}

TEST_P(ShellTest, CompletesWhatTheGatewayHas)
{
    EXPECT_EQ(offered("tarnctl radios wi"), (Offers{"wifi0", "wifi1"}));
    EXPECT_EQ(offered("tarnctl call TarnGetSsidIntf radioId=2 ssidId="), Offers{"ssidId=1"});
    EXPECT_EQ(offered("tarnctl call TarnKickOutAccessPointAssociated radioId=2 apId=1 macAddress=02:0"),
              Offers{"macAddress=02:00:00:00:01:05"});
}

TEST_P(ShellTest, CompletesCallsOnManyGateways)
{
    EXPECT_EQ(offered("tarn-fleet ev"), Offers{"events"});
    EXPECT_EQ(offered("tarn-fleet call --st"), Offers{"--stop-after"});
    EXPECT_EQ(offered("tarn-fleet call home-1 TarnGetRadioNu"), Offers{"TarnGetRadioNum"});
    EXPECT_EQ(offered("tarn-fleet call home-1 TarnGetRadio ra"), Offers{"radioId="});
}

TEST_P(ShellTest, CompletesTheNameOfAFile)
{
    std::ofstream(path("gateway.json")) << "{}";
    const Offers offers = offered("tarnctl --layout " + path("gate"));
    // zsh leaves out the directory.
    const bool isOffered = offers.count(path("gateway.json")) + offers.count("gateway.json") > 0;
    EXPECT_TRUE(isOffered);
}

TEST_P(ShellTest, SaysNothingWhereNothingFits)
{
    const Offers offers = offered("tarnctl call NoSuchFunction x");
    EXPECT_TRUE(offers.empty() || offers == Offers{"x"}); // bash leaves the word as it is
}

INSTANTIATE_TEST_SUITE_P(, ShellTest,
                         ::testing::Values(Shell{"bash", "bash"}, Shell{"zsh", "zsh -f"}, Shell{"fish", "fish --no-config"}),
                         [](const ::testing::TestParamInfo<Shell>& shell) { return std::string(shell.param.name); });

} // namespace

} // namespace tarnctl_test
