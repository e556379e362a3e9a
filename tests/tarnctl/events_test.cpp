// Watching events: what is shown, and how it ends.
#include "support.h"

#include <csignal>
#include <memory>
#include <regex>

namespace tarnctl_test
{

namespace
{

class EventsTest : public TarnctlTest
{
protected:
    // The program has subscribed when it says so.
    static void waitUntilWatching(Program& program)
    {
        const std::string line = program.nextErrorLine();
        EXPECT_EQ(line.rfind("tarnctl: watching EVT_", 0), 0u) << line;
    }
};

constexpr char kTime[] = "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}[.][0-9]{3}Z";

TEST_F(EventsTest, EachEventIsALine)
{
    Service device("TARN", statusAnswer(0), 5);
    Program program({"events"});
    waitUntilWatching(program);
    EXPECT_EQ(device.publish(1, {0x00, 0x01, 0xFE}), 1u);
    // Each line is there at once, with the program still running.
    EXPECT_TRUE(std::regex_match(program.nextLine(),
                                 std::regex(std::string(kTime) + " TARN 1 EVT_RADIO_STATUS_CHANGED 3 bytes 0001fe")));
    EXPECT_EQ(device.publish(5, {}), 1u);
    EXPECT_TRUE(
        std::regex_match(program.nextLine(), std::regex(std::string(kTime) + " TARN 5 EVT_AP_WPS_WIN_STATUS_CHANGED 0 bytes")));
    program.signal(SIGTERM);
    EXPECT_EQ(program.exitCode(), 0);
}

TEST_F(EventsTest, SignalsEndIt)
{
    Service device("TARN", statusAnswer(0), 5);
    for (const int number : {SIGINT, SIGTERM})
    {
        Program program({"events", "--count", "3"});
        waitUntilWatching(program);
        program.signal(number);
        EXPECT_EQ(program.nextLine(), "");
        EXPECT_EQ(program.nextErrorLine(), "");
        EXPECT_EQ(program.exitCode(), 0);
    }
    EXPECT_EQ(device.publish(1, {}), 0u) << "the subscriptions were taken back";
}

TEST_F(EventsTest, DocumentsAreOneALine)
{
    Service device("TARN", statusAnswer(0), 5);
    Program program({"events", "--json", "--count", "2"});
    waitUntilWatching(program);
    device.publish(4, {0xAB});
    device.publish(2, {});
    const Json first = checkedDocument(program.nextLine());
    EXPECT_EQ(first.at("kind"), "event");
    EXPECT_EQ(first.at("event"), 4);
    EXPECT_EQ(first.at("name"), "EVT_AP_ASSOCIATED_CHANGED");
    EXPECT_EQ(first.at("service"), "TARN");
    EXPECT_EQ(first.at("data"), "ab");
    EXPECT_EQ(checkedDocument(program.nextLine()).at("event"), 2);
    EXPECT_EQ(program.nextLine(), "");
    EXPECT_EQ(program.exitCode(), 0);
}

TEST_F(EventsTest, OnlyTheChosenOnesAreSubscribed)
{
    Service device("TARN", statusAnswer(0), 5);
    Program program({"events", "EVT_RADIO_OPR_CHANNEL_CHANGED", "3", "--count", "1"});
    EXPECT_EQ(program.nextErrorLine(), "tarnctl: watching EVT_RADIO_OPR_CHANNEL_CHANGED, EVT_RADIO_OPR_BANDWIDTH_CHANGED");
    EXPECT_EQ(device.publish(1, {}), 0u);
    EXPECT_EQ(device.publish(3, {}), 1u);
    EXPECT_NE(program.nextLine().find(" 3 EVT_RADIO_OPR_BANDWIDTH_CHANGED"), std::string::npos);
    EXPECT_EQ(program.exitCode(), 0);
}

TEST_F(EventsTest, TheTimeMayBeUp)
{
    const Service device("TARN", statusAnswer(0), 5);
    EXPECT_EQ(run({"events", "--timeout", "0.05"}).exit, 0);
    const Ran tooFew = run({"events", "--timeout", "0.05", "--count", "2"});
    EXPECT_EQ(tooFew.exit, 5);
    EXPECT_NE(tooFew.err.find("expected 2 events; 0 came in time"), std::string::npos) << tooFew.err;
    const RanJson document = runJson({"events", "--timeout", "0", "--count", "1"});
    EXPECT_EQ(document.exit, 5);
    EXPECT_EQ(document.document.at("kind"), "error");
}

TEST_F(EventsTest, UntilThenItWaits)
{
    Service device("TARN", statusAnswer(0), 5);
    Program program({"events", "--timeout", "600", "--count", "1"});
    waitUntilWatching(program);
    device.publish(1, {});
    EXPECT_NE(program.nextLine(), "");
    EXPECT_EQ(program.exitCode(), 0);
}

TEST_F(EventsTest, NoService)
{
    const Ran ran = run({"events", "1"});
    EXPECT_EQ(ran.exit, 4);
    EXPECT_EQ(ran.err, "tarnctl: no service TARN is running in " + directory + ": UNKNOWN_DST_ID (IPC status 9; result 1)\n");
}

TEST_F(EventsTest, AServiceWithoutTheEvent)
{
    const Service device("TARN", statusAnswer(0), 2);
    const RanJson ran = runJson({"events"});
    EXPECT_EQ(ran.exit, 6);
    EXPECT_NE(ran.document.at("message").get<std::string>().find("UNKNOWN_EVT"), std::string::npos) << ran.document;
    EXPECT_EQ(run({"events", "1", "2", "--timeout", "0"}).exit, 0)
        << "what had been subscribed before the failure was taken back";
}

TEST_F(EventsTest, ARefusedCaller)
{
    const Service device("TARN", statusAnswer(0), 5);
    const Ran ran = run({"events", "--caller", ""});
    EXPECT_EQ(ran.exit, 3);
    EXPECT_EQ(ran.err, "tarnctl: tarnSubscribeEvent refused an argument: id is invalid (result 3; nothing was sent)\n");
    EXPECT_EQ(run({"events", "--null-caller"}).exit, 3);
}

TEST_F(EventsTest, ItGoesOnWhenTheServiceHasBeenRestartedAndSaysSo)
{
    auto device = std::make_unique<Service>("TARN", statusAnswer(0), 5);
    Program program({"events", "1", "2", "--count", "2"});
    waitUntilWatching(program);
    EXPECT_EQ(device->publish(1, {0x01}), 1u);
    EXPECT_NE(program.nextLine().find(" EVT_RADIO_STATUS_CHANGED 1 bytes 01"), std::string::npos);
    device.reset();
    EXPECT_EQ(program.nextErrorLine(), "tarnctl: TARN has ended; its events are missed until it is back");
    device = std::make_unique<Service>("TARN", statusAnswer(0), 5);
    EXPECT_EQ(program.nextErrorLine(),
              "tarnctl: TARN is back; watching EVT_RADIO_STATUS_CHANGED, EVT_RADIO_OPR_CHANNEL_CHANGED again");
    EXPECT_EQ(device->publish(2, {0x02}), 1u);
    EXPECT_NE(program.nextLine().find(" EVT_RADIO_OPR_CHANNEL_CHANGED 1 bytes 02"), std::string::npos);
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_EQ(device->publish(1, {}), 0u) << "renewed subscriptions are taken back as well";
}

TEST_F(EventsTest, ARestartIsADocumentForEachSubscription)
{
    auto device = std::make_unique<Service>("TARN", statusAnswer(0), 5);
    Program program({"events", "--json", "1", "2", "--count", "1"});
    waitUntilWatching(program);
    device.reset();
    const Words names = {"EVT_RADIO_STATUS_CHANGED", "EVT_RADIO_OPR_CHANNEL_CHANGED"};
    for (const char* state : {"lost", "renewed"})
    {
        if (state == std::string("renewed"))
            device = std::make_unique<Service>("TARN", statusAnswer(0), 5);
        for (std::size_t i = 0; i < names.size(); ++i)
        {
            const Json document = checkedDocument(program.nextLine());
            EXPECT_EQ(document.at("kind"), "subscription");
            EXPECT_EQ(document.at("service"), "TARN");
            EXPECT_EQ(document.at("event"), i + 1);
            EXPECT_EQ(document.at("name"), names[i]);
            EXPECT_EQ(document.at("state"), state);
        }
    }
    EXPECT_EQ(device->publish(1, {}), 1u);
    EXPECT_EQ(checkedDocument(program.nextLine()).at("kind"), "event");
    EXPECT_EQ(program.exitCode(), 0);
}

TEST_F(EventsTest, EventsThatAreGoneAfterARestartAreNotWaitedFor)
{
    auto device = std::make_unique<Service>("TARN", statusAnswer(0), 5);
    Program some({"events", "1", "5"});
    waitUntilWatching(some);
    Program none({"events", "4", "5"});
    waitUntilWatching(none);
    device.reset();
    device = std::make_unique<Service>("TARN", statusAnswer(0), 2);
    some.nextErrorLine();
    EXPECT_EQ(some.nextErrorLine(),
              "tarnctl: TARN is back without EVT_AP_WPS_WIN_STATUS_CHANGED, which is not watched any more; "
              "watching EVT_RADIO_STATUS_CHANGED again");
    some.signal(SIGTERM);
    EXPECT_EQ(some.exitCode(), 0);
    none.nextErrorLine();
    none.nextErrorLine();
    none.nextErrorLine();
    EXPECT_EQ(none.nextErrorLine(), "tarnctl: none of the events is left to watch");
    EXPECT_EQ(none.exitCode(), 6);
}

TEST_F(EventsTest, AServiceThatIsNotBackAtTheEndIsNoticed)
{
    auto device = std::make_unique<Service>("TARN", statusAnswer(0), 5);
    Program program({"events"});
    waitUntilWatching(program);
    device.reset();
    EXPECT_EQ(program.nextErrorLine(), "tarnctl: TARN has ended; its events are missed until it is back");
    program.signal(SIGTERM);
    EXPECT_EQ(program.nextErrorLine(), "tarnctl: events may have been missed, the service was not back at the end");
    EXPECT_EQ(program.exitCode(), 6);
}

TEST_F(EventsTest, ItEndsWithTheServiceIfAskedTo)
{
    auto device = std::make_unique<Service>("TARN", statusAnswer(0), 5);
    Program program({"events", "--no-reconnect"});
    waitUntilWatching(program);
    device.reset();
    EXPECT_EQ(program.nextErrorLine(), "tarnctl: the service has ended, and with it the subscriptions");
    EXPECT_EQ(program.exitCode(), 6);
    EXPECT_EQ(run({"events", "--reconnect", "1"}).exit, 4) << "there must be a service at the start";
}

} // namespace

} // namespace tarnctl_test
