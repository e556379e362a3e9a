// tarn-fleet itself, with a real broker and a fleet of bridges in this process.
#include "broker.h"
#include "fleet_process.h"
#include "home.h"
#include "link.h"
#include "relay.h"
#include "text_files.h"

#include "base/timestamp.h"
#include "support/temporary_directory.h"
#include "tarnctl/schema.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace fleet_test
{
namespace
{

using namespace tarn::fleet;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr int kNoService = 4, kTimedOut = 5, kRefused = 6, kServiceStatus = 7;

std::size_t linesIn(const std::string& text)
{
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

// What was written with --json, as the schema has it.
nlohmann::json documentIn(const std::string& text)
{
    static const tarnctl_test::Schema schema(nlohmann::json::parse(contents(TARNCTL_SCHEMA)));
    nlohmann::json document = nlohmann::json::parse(text);
    EXPECT_THAT(schema.violations(document), ::testing::IsEmpty()) << text;
    return document;
}

// A document a line.
std::vector<nlohmann::json> documentsIn(const std::string& out)
{
    std::vector<nlohmann::json> documents;
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);)
        documents.push_back(documentIn(line));
    return documents;
}

// False if the condition does not hold in time.
bool await(const std::function<bool()>& condition)
{
    for (int look = 0; look < 4000 && !condition(); ++look)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return condition();
}

bool awaitOut(const FleetProcess& process, const std::string& text)
{
    return await([&] { return process.out().find(text) != std::string::npos; });
}

bool awaitErr(const FleetProcess& process, const std::string& text)
{
    return await([&] { return process.err().find(text) != std::string::npos; });
}

class FleetProgramTest : public ::testing::Test
{
protected:
    FleetProgramTest()
    {
        std::ofstream(path("fleet.conf")) << settingsText(linkOf("", {broker_.port()}));
    }
    void start(unsigned count)
    {
        for (unsigned number = 1; number <= count; ++number)
            homes_.push_back(std::make_unique<Home>(broker_.port(), number));
        for (const auto& home : homes_)
            home->awaitConnection();
    }
    FleetProcess begin(const std::vector<std::string>& words, const std::string& program = TARN_FLEET_PROGRAM) const
    {
        return FleetProcess(directory_, words, program);
    }
    FleetRun run(const std::vector<std::string>& words, const std::string& program = TARN_FLEET_PROGRAM) const
    {
        return begin(words, program).finish();
    }
    std::string path(const std::string& name) const
    {
        return directory_.path(name);
    }
    std::uint32_t calls() const
    {
        std::uint32_t sum = 0;
        for (const auto& home : homes_)
            sum += home->calls;
        return sum;
    }

    const tarn::test::TemporaryDirectory directory_;
    MosquittoBroker broker_;
    std::vector<std::unique_ptr<Home>> homes_;
};

TEST_F(FleetProgramTest, ListAsksWhoIsThereAndDoesNotTrustWhatIsRetained)
{
    start(20);
    homes_[4]->stop(); // takes leave
    const FleetRun ended = run({"list", "--format", "csv"});
    EXPECT_EQ(ended.exit, 0) << ended.err;
    EXPECT_EQ(linesIn(ended.out), 21u);
    EXPECT_THAT(ended.out, HasSubstr("home-03,there,"));
    EXPECT_THAT(ended.out, HasSubstr("home-05,gone,"));
    EXPECT_THAT(ended.out, HasSubstr(",1.2.3,"));
    const FleetRun none = run({"list", "attic-*"});
    EXPECT_EQ(none.exit, kNoService);
}

TEST_F(FleetProgramTest, ListTellsSinceWhenAGatewayIsThereThoughAnotherIsWaitedFor)
{
    start(1);
    timespec connected = {};
    clock_gettime(CLOCK_REALTIME, &connected);
    connected.tv_sec += 1; // a tolerance; the other one is waited for twice as long
    std::ofstream(path("names")) << "home-01\nhome-02\n";
    const nlohmann::json gateways = documentIn(run({"list", "@" + path("names"), "--json"}).out)["gateways"];
    ASSERT_EQ(gateways.size(), 2u);
    EXPECT_EQ(gateways[0]["state"], "there");
    EXPECT_EQ(gateways[1]["state"], "gone");
    EXPECT_LT(gateways[0]["since"].get<std::string>(), tarn::base::Timestamp(connected).text);
}

TEST_F(FleetProgramTest, ListGoesOnToShowWhoGoesAndWhoComes)
{
    start(2);
    FleetProcess process = begin({"list", "home-*", "--watch"});
    EXPECT_TRUE(awaitOut(process, "home-02  there")) << process.err();
    homes_[0]->stop();
    EXPECT_TRUE(awaitOut(process, " home-01 gone\n"));
    Home(broker_.port(), 3).awaitConnection(); // and goes again
    EXPECT_TRUE(awaitOut(process, " home-03 gone\n"));
    const Home back(broker_.port(), 1);
    EXPECT_TRUE(awaitOut(process, " home-01 there 1.2.3\n"));
    process.signal(SIGINT);
    EXPECT_EQ(process.finish().exit, 0);
}

TEST_F(FleetProgramTest, ListShowsSoonThatManyHaveGoneAtATime)
{
    start(20);
    FleetProcess process = begin({"list", "--watch"});
    EXPECT_TRUE(awaitOut(process, "home-20  there")) << process.err();
    for (const auto& home : homes_)
        home->stop();
    const auto shown = [&]
    {
        const std::string out = process.out();
        std::size_t gone = 0;
        for (std::size_t at = out.find(" gone\n"); at != std::string::npos; at = out.find(" gone\n", at + 1))
            ++gone;
        return gone;
    };
    EXPECT_TRUE(await([&] { return shown() == 20; })) << "each is waited for 2 s, and this for 20: " << shown();
    process.signal(SIGINT);
    EXPECT_EQ(process.finish().exit, 0);
}

TEST_F(FleetProgramTest, ListShowsNoNamedGatewayAgainBeforeItChanges)
{
    start(2);
    std::ofstream(path("names")) << "home-01\nhome-02\nhome-03\n";
    FleetProcess process = begin({"list", "@" + path("names"), "--watch", "--json"});
    EXPECT_TRUE(awaitOut(process, "home-03"));
    homes_[0]->stop();
    EXPECT_TRUE(awaitOut(process, "presence"));
    process.signal(SIGINT);
    const std::vector<nlohmann::json> documents = documentsIn(process.finish().out);
    ASSERT_EQ(documents.size(), 2u);
    EXPECT_EQ(documents[1]["gateway"], "home-01");
    EXPECT_EQ(documents[1]["state"], "gone");
}

TEST_F(FleetProgramTest, ListWatchesForScriptsToo)
{
    start(2);
    FleetProcess process = begin({"list", "--watch", "--json"});
    EXPECT_TRUE(awaitOut(process, "home-02"));
    homes_[1]->stop();
    EXPECT_TRUE(awaitOut(process, "presence"));
    process.signal(SIGTERM);
    const FleetRun ended = process.finish();
    EXPECT_EQ(ended.exit, 0) << ended.err;
    const std::vector<nlohmann::json> documents = documentsIn(ended.out);
    ASSERT_EQ(documents.size(), 2u);
    EXPECT_EQ(documents[0]["kind"], "gateways");
    EXPECT_EQ(documents[1]["gateway"], "home-02");
    EXPECT_EQ(documents[1]["state"], "gone");
}

TEST_F(FleetProgramTest, OneCallOnTwentyGatewaysHasTwentyResults)
{
    start(20);
    const FleetRun ended = run({"call", "home-*", "TarnGetLogLevel", "--format", "csv", "--window", "8"});
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
    const FleetRun ended = run({"call", "@" + path("names"), "TarnGetLogLevel", "--json"});
    EXPECT_EQ(ended.exit, kTimedOut);
    std::map<std::string, std::string> results;
    const std::vector<nlohmann::json> documents = documentsIn(ended.out);
    ASSERT_EQ(documents.size(), 7u);
    for (const nlohmann::json& document : documents)
        if (document["kind"] == "fleet-result")
            results[document["gateway"]] = document["result"];
    EXPECT_EQ(results, (std::map<std::string, std::string>{{"home-01", "done"},
                                                           {"home-02", "refused"},
                                                           {"home-03", "service-status"},
                                                           {"home-04", "ipc-failed"},
                                                           {"home-05", "outcome-unknown"},
                                                           {"home-06", "not-sent"}}));
    EXPECT_EQ(documents.back()["kind"], "fleet-summary");
    EXPECT_EQ(documents.back()["gateways"], 6);
    EXPECT_EQ(documents.back()["results"]["done"], 1);
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
    const FleetRun stopped = run(words);
    EXPECT_EQ(stopped.exit, kServiceStatus);
    EXPECT_EQ(calls(), 2u);
    EXPECT_THAT(stopped.err, HasSubstr("6 gateways: 2 service status, 4 not sent"));
    for (const auto& home : homes_)
        home->replyStatus = 0;
    const FleetRun resumed = run(words);
    EXPECT_EQ(resumed.exit, 0) << resumed.err;
    EXPECT_EQ(calls(), 6u);
    EXPECT_THAT(resumed.err, HasSubstr("6 gateways: 4 done, 2 in earlier runs"));
    for (const auto& home : homes_)
        EXPECT_EQ(home->calls, 1u);
    const FleetRun other = run({"call", "home-*", "TarnSetLogLevel", "level=5", "--resume", path("journal")});
    EXPECT_EQ(other.exit, 2);
    EXPECT_THAT(other.err, HasSubstr("expected a run of TarnSetLogLevel level=5; it is one of TarnSetLogLevel level=4"));
}

TEST_F(FleetProgramTest, WhatWasSentInARunThatWasKilledIsNotSentAgain)
{
    start(3);
    std::ofstream(path("journal"))
        << "call TarnSetLogLevel level=4\nsending home-01\nresult done home-01\nsending home-02\nsendi";
    const FleetRun ended = run({"call", "home-*", "TarnSetLogLevel", "level=4", "--resume", path("journal")});
    EXPECT_EQ(ended.exit, kTimedOut);
    EXPECT_THAT(ended.out, HasSubstr("home-02  timed out: outcome unknown  it was sent in an earlier run"));
    EXPECT_THAT(ended.err, HasSubstr("3 gateways: 1 done, 1 timed out: outcome unknown, 1 in earlier runs"));
    EXPECT_EQ(homes_[0]->calls, 0u);
    EXPECT_EQ(homes_[1]->calls, 0u);
    EXPECT_EQ(homes_[2]->calls, 1u);
}

TEST_F(FleetProgramTest, AnInterruptedRunLetsEndWhatIsUnderWayAndIsResumedWithTheRest)
{
    start(6);
    for (const auto& home : homes_)
        home->milliseconds = 1500;
    const std::vector<std::string> words{"call", "home-*",   "TarnSetLogLevel", "level=4", "--window",
                                         "2",    "--resume", path("journal"),   "--json"};
    FleetProcess process = begin(words);
    EXPECT_TRUE(await([&] { return calls() == 2; }));
    process.signal(SIGINT);
    const FleetRun ended = process.finish();
    EXPECT_EQ(ended.exit, 1) << ended.err;
    EXPECT_EQ(calls(), 2u);
    std::map<std::string, std::string> results;
    for (const nlohmann::json& document : documentsIn(ended.out))
        if (document["kind"] == "fleet-result")
            results[document["gateway"]] = document["result"].get<std::string>() + ": " + document["why"].get<std::string>();
    EXPECT_EQ(results, (std::map<std::string, std::string>{{"home-01", "done: "},
                                                           {"home-02", "done: "},
                                                           {"home-03", "not-sent: the run was interrupted"},
                                                           {"home-04", "not-sent: the run was interrupted"},
                                                           {"home-05", "not-sent: the run was interrupted"},
                                                           {"home-06", "not-sent: the run was interrupted"}}));
    for (const auto& home : homes_)
        home->milliseconds = 0;
    const FleetRun resumed = run(words);
    EXPECT_EQ(resumed.exit, 0) << resumed.err;
    EXPECT_EQ(documentsIn(resumed.out).back()["earlier"], 2);
    for (const auto& home : homes_)
        EXPECT_EQ(home->calls, 1u);
}

TEST_F(FleetProgramTest, ARunWithoutABrokerIsInterruptedAtOnce)
{
    start(3);
    homes_[1]->milliseconds = 1500;
    FleetProcess process = begin({"call", "home-*", "TarnGetLogLevel", "--window", "1", "--json"});
    EXPECT_TRUE(await([&] { return calls() == 2; }));
    broker_.kill();
    EXPECT_TRUE(awaitOut(process, "home-02"));
    process.signal(SIGINT);
    const std::vector<nlohmann::json> documents = documentsIn(process.finish().out);
    ASSERT_EQ(documents.size(), 4u);
    EXPECT_EQ(documents[2]["gateway"], "home-03");
    EXPECT_EQ(documents[2]["result"], "not-sent");
    EXPECT_EQ(documents[2]["why"], "the run was interrupted");
}

TEST_F(FleetProgramTest, EventsNeedNoBrokerToBeInterrupted)
{
    broker_.kill();
    FleetProcess process = begin({"events"});
    EXPECT_TRUE(awaitErr(process, "no connection to the broker")); // and goes on to look for it
    process.signal(SIGINT);
    EXPECT_EQ(process.finish().exit, 0);
}

TEST_F(FleetProgramTest, AnAttachmentEndsAtOnceThoughItsGatewayOrItsBrokerHasNotAnswered)
{
    std::filesystem::create_directory(path("home"));
    std::filesystem::permissions(path("home"), std::filesystem::perms::owner_all);
    const auto endedWhileItWaits = [this]
    {
        FleetProcess process = begin({"attach", "home-01", "--directory", path("home")});
        EXPECT_TRUE(await([&] { return std::filesystem::exists(path("home") + "/QTN_MIRROR.socket"); }));
        process.signal(SIGINT);
        return process.finish();
    };
    for (const bool isBrokerThere : {true, false})
    {
        if (!isBrokerThere)
            broker_.pause();
        const FleetRun ended = endedWhileItWaits();
        EXPECT_EQ(ended.exit, 0);
        EXPECT_EQ(ended.err, "") << "it says so after 3 s that nobody answers";
    }
    broker_.resume();
}

TEST_F(FleetProgramTest, AGatewayThatHadNotAnsweredWhenTheRunWasKilledIsAskedAgain)
{
    start(1);
    std::ofstream(path("names")) << "home-01\nhome-02\n";
    const std::vector<std::string> words{"call",    "@" + path("names"), "TarnSetLogLevel",
                                         "level=4", "--resume",          path("journal")};
    FleetProcess process = begin(words);
    EXPECT_TRUE(await([&] { return contents(path("journal")).find("result done home-01") != std::string::npos; }));
    process.signal(SIGKILL);
    process.finish();
    homes_.push_back(std::make_unique<Home>(broker_.port(), 2));
    homes_[1]->awaitConnection();
    const FleetRun resumed = run(words);
    EXPECT_EQ(resumed.exit, 0) << resumed.out;
    EXPECT_THAT(resumed.err, HasSubstr("2 gateways: 1 done, 1 in earlier runs"));
    EXPECT_EQ(homes_[0]->calls, 1u);
    EXPECT_EQ(homes_[1]->calls, 1u);
}

TEST_F(FleetProgramTest, ADryRunShowsTheMessageAndTheGatewaysAndSendsNothing)
{
    start(2);
    const FleetRun ended = run({"call", "home-*", "TarnSetLogLevel", "level=4", "--dry-run"});
    EXPECT_EQ(ended.exit, 0) << ended.err;
    EXPECT_THAT(ended.out, HasSubstr("command 1"));
    EXPECT_THAT(ended.out, HasSubstr("to 2 gateways: home-01 home-02"));
    const std::vector<nlohmann::json> documents =
        documentsIn(run({"call", "home-*", "TarnSetLogLevel", "level=4", "--dry-run", "--json"}).out);
    ASSERT_EQ(documents.size(), 2u);
    EXPECT_EQ(documents[1]["kind"], "fleet-plan");
    EXPECT_EQ(documents[1]["gateways"], (std::vector<std::string>{"home-01", "home-02"}));
    EXPECT_EQ(calls(), 0u);
}

TEST_F(FleetProgramTest, WhatTheLibraryOrTheCommandLineRefusesIsNotSent)
{
    start(1);
    EXPECT_EQ(run({"call", "home-*", "TarnGetRadio", "radioId=1", "data=null"}).exit, 3);
    const FleetRun unknown = run({"call", "home-*", "TarnGetLogLevl"});
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
    FleetProcess process = begin({"events", "home-02", "--count", "1", "--timeout", "20"});
    EXPECT_TRUE(awaitErr(process, "watching the events of home-02"));
    homes_[0]->publish(1); // not asked for
    homes_[1]->publish(2);
    const FleetRun ended = process.finish();
    EXPECT_EQ(ended.exit, 0) << ended.err;
    EXPECT_THAT(ended.out, HasSubstr(" home-02 TARN 2 EVT_RADIO_OPR_CHANNEL_CHANGED"));
    EXPECT_THAT(ended.out, Not(HasSubstr("home-01")));
}

TEST_F(FleetProgramTest, EventsAreShownAgainOnceTheBrokerIsBack)
{
    start(1);
    FleetProcess process = begin({"events", "--json"});
    EXPECT_TRUE(awaitErr(process, "watching the events of *\n"));
    homes_[0]->publish(1);
    EXPECT_TRUE(awaitOut(process, "\"event\":1"));
    broker_.kill();
    EXPECT_TRUE(awaitErr(process, "events are missed until there is one"));
    broker_.start();
    EXPECT_TRUE(awaitErr(process, "until there is one\ntarn-fleet: watching the events of *\n"));
    EXPECT_TRUE(await([&] { return homes_[0]->counters().births == 2; }));
    homes_[0]->publish(2);
    EXPECT_TRUE(awaitOut(process, "\"event\":2"));
    process.signal(SIGINT);
    const FleetRun ended = process.finish();
    EXPECT_EQ(ended.exit, 0) << ended.err;
    EXPECT_EQ(documentsIn(ended.out).size(), 2u);
}

TEST_F(FleetProgramTest, EventsThatNobodyReadsAreNotKeptForEverButCounted)
{
    constexpr std::uint32_t kSent = 14000; // more than the program keeps and than fit into the pipe
    start(1);
    tarn::test::Pipe out, err;
    const tarn::test::Process process({TARN_FLEET_PROGRAM, "events", "--json"}, {STDIN_FILENO, out.writing(), err.writing()},
                                      {{"TARN_FLEET", path("fleet.conf")}, {"TARN_LAYOUT", ""}});
    out.closeWriting();
    err.closeWriting();
    EXPECT_THAT(err.line(), HasSubstr("watching"));
    BridgeCounters counters;
    while (counters.events - counters.lostEvents < kSent)
    {
        homes_[0]->publish(1);
        const std::uint32_t lostBefore = counters.lostEvents;
        counters = homes_[0]->counters();
        if (counters.lostEvents > lostBefore) // what a bridge keeps is bounded too
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    std::uint32_t shown = 0, lost = 0;
    while (shown + lost < counters.events)
    {
        if (shown == kSent / 2)
            homes_[0]->publish(1); // shows by its number what is lost in front of it
        const nlohmann::json event = nlohmann::json::parse(out.line());
        ++shown;
        lost += event["lost"].get<std::uint32_t>();
        ASSERT_EQ(event["sequence"].get<std::uint32_t>(), shown + lost);
    }
    EXPECT_GT(lost, counters.lostEvents);
}

TEST_F(FleetProgramTest, EventsAreSaidToBeWatchedOnceTheBrokerHasConfirmedEverySubscription)
{
    start(1);
    Relay relay(broker_.port());
    relay.setConfirmations(Relay::Confirmations::kWait);
    std::ofstream(path("fleet.conf")) << settingsText(linkOf("", {relay.port()}));
    FleetProcess process = begin({"events", "--count", "1"});
    EXPECT_TRUE(await([&] { return relay.confirmationsWaiting() == 2; })) << "of replies and of events";
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_EQ(process.err(), "");
    relay.setConfirmations(Relay::Confirmations::kPass);
    EXPECT_TRUE(awaitErr(process, "watching the events of *\n"));
    homes_[0]->publish(1);
    EXPECT_EQ(process.finish().exit, 0);
}

TEST_F(FleetProgramTest, ASubscriptionThatTheBrokerRefusesIsSaidAndNothingIsWatched)
{
    Relay relay(broker_.port());
    relay.setConfirmations(Relay::Confirmations::kRefuse);
    std::ofstream(path("fleet.conf")) << settingsText(linkOf("noc-1", {relay.port()}));
    FleetProcess process = begin({"events"});
    EXPECT_TRUE(awaitErr(process, "no connection to the broker 127.0.0.1: the broker refuses the subscription to tarn/1/"));
    process.signal(SIGINT);
    EXPECT_THAT(process.finish().err, Not(HasSubstr("watching")));
}

TEST_F(FleetProgramTest, OffersWhatCanCompleteItsCommandLineWithoutABroker)
{
    broker_.kill();
    const auto offered = [this](std::vector<std::string> words)
    {
        words.insert(words.begin(), {"complete", "--"});
        const FleetRun ended = run(words);
        EXPECT_EQ(ended.exit, 0);
        EXPECT_EQ(ended.err, "");
        std::set<std::string> offers;
        std::istringstream lines(ended.out);
        for (std::string line; std::getline(lines, line);)
            offers.insert(line.substr(0, line.find('\t')));
        return offers;
    };
    using Offers = std::set<std::string>;
    EXPECT_EQ(offered({""}), (Offers{"attach", "call", "events", "list"}));
    EXPECT_EQ(offered({"list", "--wa"}), Offers{"--watch"});
    EXPECT_EQ(offered({"--cafile", "call", "ev"}), Offers{"events"}) << "a value is no command";
    EXPECT_EQ(offered({"--caf"}), Offers{"--cafile"});
    EXPECT_EQ(offered({"--cafile", ""}), Offers{"<file>"});
    EXPECT_EQ(offered({"call", ""}), Offers{}) << "gateways are known to the broker alone";
    EXPECT_EQ(offered({"attach", "home"}), Offers{});
    EXPECT_EQ(offered({"call", "home-*", ""}).size(), 247u) << "those that are no calls on a gateway are left out";
    EXPECT_EQ(offered({"call", "home-*", "TarnGetRadioIsR"}), Offers{"TarnGetRadioIsReady"});
    EXPECT_EQ(offered({"call", "home-*", "TarnGetRadioChainRssiAt", "radioId=1", ""}), (Offers{"chainIndex=", "rssi=null"}));
    EXPECT_EQ(offered({"call", "home-*", "TarnGetRadio", "radioId="}), Offers{}) << "no other gateway is asked";
}

TEST_F(FleetProgramTest, TarnctlReachesOneGatewayForOneCommand)
{
    start(2);
    setenv(
        "PATH",
        (std::string(TARN_FLEET_PROGRAM).substr(0, std::string(TARN_FLEET_PROGRAM).rfind('/')) + ":" + getenv("PATH")).c_str(),
        1);
    const FleetRun ended = run({"--gateway", "home-02", "call", "TarnGetLogLevel"}, TARNCTL_PROGRAM);
    EXPECT_EQ(ended.exit, 0) << ended.err;
    EXPECT_EQ(ended.out, "level: 2 (0x00000002)\nreply status: 0\n");
    const std::string line = R"('{"function": "TarnGetLogLevel"}' )";
    const std::string manyCalls = "printf '%s\\n' " + line + line + "| " TARNCTL_PROGRAM " --gateway home-02 call --stdin";
    const FleetRun many = run({"-c", manyCalls}, "/bin/sh");
    EXPECT_EQ(many.exit, 0) << many.err;
    EXPECT_EQ(documentsIn(many.out).size(), 2u);
    for (const nlohmann::json& document : documentsIn(many.out))
        EXPECT_EQ(document["outputs"]["level"]["value"], 2);
    homes_[1]->stop();
    const FleetRun gone = run({"--gateway", "home-02", "call", "TarnGetLogLevel"}, TARNCTL_PROGRAM);
    EXPECT_EQ(gone.exit, kNoService);
    EXPECT_THAT(gone.err, HasSubstr("home-02 does not answer: it is not connected to the broker"));
}

} // namespace
} // namespace fleet_test
