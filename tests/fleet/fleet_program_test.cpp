// tarn-fleet itself, with a real broker and a fleet of bridges in this process.
#include "broker.h"
#include "home.h"

#include "support/services.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/wait.h>
#include <unistd.h>

namespace fleet_test
{
namespace
{

using namespace tarn::fleet;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr int kNoService = 4, kTimedOut = 5, kRefused = 6, kServiceStatus = 7;

struct Ended
{
    int exit = -1;
    std::string out, err;
};

std::string contents(const std::string& path)
{
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::size_t linesIn(const std::string& text)
{
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

class FleetProgramTest : public ::testing::Test
{
protected:
    void start(unsigned count)
    {
        for (unsigned number = 1; number <= count; ++number)
            homes_.push_back(std::make_unique<Home>(broker_.port(), number));
        for (const auto& home : homes_)
            home->awaitConnection();
    }
    pid_t begin(std::vector<std::string> words, const std::string& program = TARN_FLEET_PROGRAM)
    {
        const pid_t process = fork();
        if (process != 0)
            return process;
        const std::string out = path("out"), err = path("err");
        std::freopen(out.c_str(), "w", stdout);
        std::freopen(err.c_str(), "w", stderr);
        setenv("TARN_FLEET", path("fleet.conf").c_str(), 1);
        setenv("TARN_LAYOUT", "", 1);
        words.insert(words.begin(), program);
        std::vector<char*> pointers;
        for (std::string& word : words)
            pointers.push_back(word.data());
        pointers.push_back(nullptr);
        execv(program.c_str(), pointers.data());
        _exit(127);
    }
    Ended end(pid_t process)
    {
        int state = 0;
        waitpid(process, &state, 0);
        return {WIFEXITED(state) ? WEXITSTATUS(state) : -1, contents(path("out")), contents(path("err"))};
    }
    Ended run(const std::vector<std::string>& words)
    {
        std::ofstream(path("fleet.conf")) << "broker 127.0.0.1:" << broker_.port() << "\n";
        return end(begin(words));
    }
    std::string path(const std::string& name) const
    {
        return directory_.path() + "/" + name;
    }
    std::uint32_t calls() const
    {
        std::uint32_t sum = 0;
        for (const auto& home : homes_)
            sum += home->calls;
        return sum;
    }

    tarn::test::TemporaryRuntimeDirectory directory_;
    MosquittoBroker broker_;
    std::vector<std::unique_ptr<Home>> homes_;
};

TEST_F(FleetProgramTest, ListAsksWhoIsThereAndDoesNotTrustWhatIsRetained)
{
    start(20);
    homes_[4]->stop(); // takes leave
    const Ended ended = run({"list", "--format", "csv"});
    EXPECT_EQ(ended.exit, 0) << ended.err;
    EXPECT_EQ(linesIn(ended.out), 21u);
    EXPECT_THAT(ended.out, HasSubstr("home-03,there,"));
    EXPECT_THAT(ended.out, HasSubstr("home-05,gone,"));
    EXPECT_THAT(ended.out, HasSubstr(",1.2.3,"));
    const Ended none = run({"list", "attic-*"});
    EXPECT_EQ(none.exit, kNoService);
}

TEST_F(FleetProgramTest, OneCallOnTwentyGatewaysHasTwentyResults)
{
    start(20);
    const Ended ended = run({"call", "home-*", "TarnGetLogLevel", "--format", "csv", "--window", "8"});
    EXPECT_EQ(ended.exit, 0) << ended.err;
    EXPECT_EQ(linesIn(ended.out), 21u);
    for (unsigned number = 1; number <= 20; ++number)
    {
        char line[64];
        std::snprintf(line, sizeof line, "home-%02u,done,,%u\n", number, number);
        EXPECT_THAT(ended.out, HasSubstr(line));
    }
    EXPECT_EQ(calls(), 20u);
    EXPECT_THAT(ended.err, HasSubstr("20 gateways: 20 done"));
}

TEST_F(FleetProgramTest, EachGatewayHasTheResultThatIsItsOwn)
{
    start(5);
    homes_[1]->allow("deny *");
    homes_[2]->replyStatus = 9;
    homes_[3]->ipcStatus = 9;
    homes_[4]->ipcStatus = 7;
    std::ofstream(path("names")) << "home-01\nhome-02\n# a remark\nhome-03\nhome-04\nhome-05\nhome-06\n";
    const Ended ended = run({"call", "@" + path("names"), "TarnGetLogLevel", "--json"});
    EXPECT_EQ(ended.exit, kTimedOut);
    std::map<std::string, std::string> results;
    std::istringstream lines(ended.out);
    nlohmann::json document;
    for (std::string line; std::getline(lines, line);)
    {
        document = nlohmann::json::parse(line);
        if (document["kind"] == "fleet-result")
            results[document["gateway"]] = document["result"];
    }
    EXPECT_EQ(results, (std::map<std::string, std::string>{{"home-01", "done"},
                                                           {"home-02", "refused"},
                                                           {"home-03", "service-status"},
                                                           {"home-04", "ipc-failed"},
                                                           {"home-05", "outcome-unknown"},
                                                           {"home-06", "not-sent"}}));
    EXPECT_EQ(document["kind"], "fleet-summary");
    EXPECT_EQ(document["gateways"], 6);
    EXPECT_EQ(document["results"]["done"], 1);
    EXPECT_EQ(run({"call", "home-03", "TarnGetLogLevel"}).exit, kServiceStatus);
    EXPECT_EQ(run({"call", "home-02", "TarnGetLogLevel"}).exit, kRefused);
    EXPECT_EQ(run({"call", "home-06", "TarnGetLogLevel"}).exit, kNoService);
}

TEST_F(FleetProgramTest, ARunStopsAfterSoManyFailuresAndIsResumedWithWhatWasNotSent)
{
    start(6);
    for (const auto& home : homes_)
        home->replyStatus = 5;
    const std::vector<std::string> words{"call",         "home-*", "TarnSetLogLevel", "level=4",      "--window", "1",
                                         "--stop-after", "2",      "--resume",        path("journal")};
    const Ended stopped = run(words);
    EXPECT_EQ(stopped.exit, kServiceStatus);
    EXPECT_EQ(calls(), 2u);
    EXPECT_THAT(stopped.err, HasSubstr("6 gateways: 2 service status, 4 not sent"));
    for (const auto& home : homes_)
        home->replyStatus = 0;
    const Ended resumed = run(words);
    EXPECT_EQ(resumed.exit, 0) << resumed.err;
    EXPECT_EQ(calls(), 6u);
    EXPECT_THAT(resumed.err, HasSubstr("6 gateways: 4 done, 2 in earlier runs"));
    for (const auto& home : homes_)
        EXPECT_EQ(home->calls, 1u);
    const Ended other = run({"call", "home-*", "TarnSetLogLevel", "level=5", "--resume", path("journal")});
    EXPECT_EQ(other.exit, 2);
    EXPECT_THAT(other.err, HasSubstr("expected a run of TarnSetLogLevel level=5; it is one of TarnSetLogLevel level=4"));
}

TEST_F(FleetProgramTest, WhatWasSentInARunThatWasKilledIsNotSentAgain)
{
    start(3);
    std::ofstream(path("journal"))
        << "call TarnSetLogLevel level=4\nsending home-01\nresult done home-01\nsending home-02\nsendi";
    const Ended ended = run({"call", "home-*", "TarnSetLogLevel", "level=4", "--resume", path("journal")});
    EXPECT_EQ(ended.exit, kTimedOut);
    EXPECT_THAT(ended.out, HasSubstr("home-02  timed out: outcome unknown  it was sent in an earlier run"));
    EXPECT_THAT(ended.err, HasSubstr("3 gateways: 1 done, 1 timed out: outcome unknown, 1 in earlier runs"));
    EXPECT_EQ(homes_[0]->calls, 0u);
    EXPECT_EQ(homes_[1]->calls, 0u);
    EXPECT_EQ(homes_[2]->calls, 1u);
}

TEST_F(FleetProgramTest, ADryRunShowsTheMessageAndTheGatewaysAndSendsNothing)
{
    start(2);
    const Ended ended = run({"call", "home-*", "TarnSetLogLevel", "level=4", "--dry-run"});
    EXPECT_EQ(ended.exit, 0) << ended.err;
    EXPECT_THAT(ended.out, HasSubstr("command 1"));
    EXPECT_THAT(ended.out, HasSubstr("to 2 gateways: home-01 home-02"));
    EXPECT_EQ(calls(), 0u);
}

TEST_F(FleetProgramTest, WhatTheLibraryOrTheCommandLineRefusesIsNotSent)
{
    start(1);
    EXPECT_EQ(run({"call", "home-*", "TarnGetRadio", "radioId=1", "data=null"}).exit, 3);
    const Ended unknown = run({"call", "home-*", "TarnGetLogLevl"});
    EXPECT_EQ(unknown.exit, 2);
    EXPECT_THAT(unknown.err, HasSubstr("Did you mean TarnGetLogLevel"));
    EXPECT_EQ(run({"call", "home/1", "TarnGetLogLevel"}).exit, 2);
    EXPECT_EQ(run({"call", "home-*", "tarnValidatePinCode", "pin=1"}).exit, 2);
    EXPECT_EQ(run({"lst"}).exit, 2);
    EXPECT_EQ(run({"--broker", "127.0.0.1:0", "list"}).exit, 2);
    EXPECT_EQ(calls(), 0u);
}

TEST_F(FleetProgramTest, EventsOfGatewaysAreShownWithTheGatewaysName)
{
    start(3);
    std::ofstream(path("fleet.conf")) << "broker 127.0.0.1:" << broker_.port() << "\n";
    const pid_t process = begin({"events", "home-02", "--count", "1", "--timeout", "20"});
    int state = 0;
    for (int round = 0; round < 400 && waitpid(process, &state, WNOHANG) == 0; ++round)
    {
        homes_[0]->publish(1); // not asked for
        homes_[1]->publish(2);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    EXPECT_TRUE(WIFEXITED(state) && WEXITSTATUS(state) == 0) << contents(path("err"));
    EXPECT_THAT(contents(path("out")), HasSubstr(" home-02 TARN 2 EVT_RADIO_OPR_CHANNEL_CHANGED"));
    EXPECT_THAT(contents(path("out")), Not(HasSubstr("home-01")));
}

TEST_F(FleetProgramTest, TarnctlReachesOneGatewayForOneCommand)
{
    start(2);
    std::ofstream(path("fleet.conf")) << "broker 127.0.0.1:" << broker_.port() << "\n";
    setenv(
        "PATH",
        (std::string(TARN_FLEET_PROGRAM).substr(0, std::string(TARN_FLEET_PROGRAM).rfind('/')) + ":" + getenv("PATH")).c_str(),
        1);
    const Ended ended = end(begin({"--gateway", "home-02", "call", "TarnGetLogLevel"}, TARNCTL_PROGRAM));
    EXPECT_EQ(ended.exit, 0) << ended.err;
    EXPECT_EQ(ended.out, "level: 2 (0x00000002)\nreply status: 0\n");
    homes_[1]->stop();
    const Ended gone = end(begin({"--gateway", "home-02", "call", "TarnGetLogLevel"}, TARNCTL_PROGRAM));
    EXPECT_EQ(gone.exit, kNoService);
    EXPECT_THAT(gone.err, HasSubstr("home-02 does not answer: it is not connected to the broker"));
}

} // namespace
} // namespace fleet_test
