// Faults that are ordered: which requests and events they happen to, how often, and that they end.
#include "support.h"

#include "simulator/gateway.h"
#include "tarn_frame.h"

#include <algorithm>
#include <ostream>
#include <thread>

namespace simulator_test
{

using FaultTest = SimulatorTest;

// The number of radios, or the status of the refusal.
std::int64_t radioNumber()
{
    std::uint32_t number = 0;
    const std::int64_t status = CALL(TarnGetRadioNum)(&number);
    return status == kDone ? number : -status;
}

TEST_F(FaultTest, HappensAsOftenAsItIsTold)
{
    order("faults add status status=77 count=2");
    EXPECT_EQ(radioNumber(), -77);
    EXPECT_EQ(state("/faults/0/count"), 1);
    EXPECT_EQ(radioNumber(), -77);
    EXPECT_EQ(radioNumber(), 2);
    EXPECT_EQ(order("faults"), Json::array());
}

TEST_F(FaultTest, HappensToOneFunctionOrService)
{
    order("faults add ipcStatus status=21 function=TarnGetLogLevel");
    order("faults add status status=-5 service=QTN_RPC_PROXY");
    EXPECT_EQ(radioNumber(), 2);
    std::uint32_t level = 0;
    EXPECT_EQ(CALL(TarnGetLogLevel)(&level), 1);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_channel)("wifi0", &level), -5);
    order("faults clear");
    EXPECT_EQ(CALL(TarnGetLogLevel)(&level), kDone);
}

// The same seed, the same requests: the same of them fail.
TEST_F(FaultTest, HappensByChanceThatIsTheSameEachTime)
{
    std::vector<std::string> runs;
    for (int run = 0; run < 2; ++run)
    {
        order("set /random/state 7");
        order("set /faults '[{\"kind\":\"status\",\"status\":77,\"probability\":30}]'");
        std::string outcome;
        for (int i = 0; i < 100; ++i)
            outcome += radioNumber() == 2 ? '.' : 'x';
        runs.push_back(outcome);
    }
    EXPECT_EQ(runs[0], runs[1]);
    const auto failed = std::count(runs[0].begin(), runs[0].end(), 'x');
    EXPECT_GT(failed, 15);
    EXPECT_LT(failed, 45);
}

TEST_F(FaultTest, ThatCannotBeIsRefused)
{
    const auto why = [](const std::string& fault) { return refusal("faults add " + fault); };
    EXPECT_EQ(why("nonsense").find("17: the state: /faults/0/kind: \"nonsense\"; expected one of delay, "), 0u);
    EXPECT_EQ(why("status function=TarnGetRadio"), "17: the state: /faults/0/status: missing; expected a status");
    EXPECT_EQ(
        why("status status=1 function=TarnGetNothing"),
        "17: the state: /faults/0/function: \"TarnGetNothing\"; expected the name of a function, with a fault of requests");
    EXPECT_EQ(why("eventLost function=TarnGetRadio"),
              "17: the state: /faults/0/function: \"TarnGetRadio\"; expected the name of a function, with a fault of requests");
    EXPECT_EQ(why("ipcStatus status=7"),
              "17: the state: /faults/0/status: 7; expected an IPC status from 1 to 21, but 7, which is noAnswer");
    EXPECT_EQ(why("eventLost event=EVT_NONE"),
              "17: the state: /faults/0/event: \"EVT_NONE\"; expected the name of an event, with a fault of events");
    EXPECT_EQ(why("eventLost service=TARN"),
              "17: the state: /faults/0/service: \"TARN\"; expected the key event with a fault of events");
    EXPECT_EQ(why("hang count=1"), "17: the state: /faults/0/count: 1; expected the key count with what does not last only");
    EXPECT_EQ(why("hang probability=5"),
              "17: the state: /faults/0/probability: 5; expected 100, as a service hangs until the fault is taken away");
    EXPECT_EQ(why("garbage milliseconds=5"),
              "17: the state: /faults/0/milliseconds: 5; expected the key milliseconds with delay and eventLate only");
    EXPECT_EQ(why("delay milliseconds=soon"),
              "17: milliseconds: expected a JSON value, in which texts are in quotation marks; got \"soon\"");
    EXPECT_EQ(order("faults"), Json::array());
}

// A hung service does not carry out what came meanwhile, unless its caller still waits.
TEST_F(FaultTest, HungServiceGoesOnWhenTheFaultIsTakenAway)
{
    order("faults add hang service=TARN");
    std::int64_t number = 0;
    std::thread caller(
        [&]
        {
            std::uint32_t counted = 0;
            EXPECT_EQ(TarnGetRadioNum(kCaller, &counted), TARN_OK);
            number = counted;
        });
    std::uint32_t channel = 0;
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_channel)("wifi0", &channel), kDone) << "the other services go on";
    order("faults clear");
    caller.join();
    EXPECT_EQ(number, 2);
}

TEST_F(FaultTest, RestartKeepsOrLosesSettings)
{
    EXPECT_EQ(CALL(TarnSetLogLevel)(1), kDone);
    order("faults add restart service=TARN count=1");
    EXPECT_EQ(radioNumber(), 2) << "it is answered before";
    std::uint32_t level = 0;
    std::int64_t status = 1;
    while (status == 1) // while the service is not there again
        status = CALL(TarnGetLogLevel)(&level);
    EXPECT_EQ(level, 1u);
    order("faults add die losesSettings=true count=1");
    EXPECT_EQ(radioNumber(), -1);
    status = 1;
    while (status == 1)
        status = CALL(TarnGetLogLevel)(&level);
    EXPECT_EQ(level, 3u);
}

// Each of the five events with each fault that events have.
struct EventCase
{
    const char* name;
    std::uint32_t event;
    std::vector<std::string> causes; // three orders, each of which publishes it once
};

std::ostream& operator<<(std::ostream& stream, const EventCase& each)
{
    return stream << each.name;
}

class EventFaultTest : public SimulatorTest, public ::testing::WithParamInterface<EventCase>
{
};

TEST_P(EventFaultTest, IsLostDoubledAndLate)
{
    const EventCase& each = GetParam();
    subscribe(each.event);
    const std::string ofIt = " count=1 event=" + std::string(each.name);
    if (each.event == TARN_EVT_AP_WPS_WIN_STATUS_CHANGED) // a window that closes
        for (const auto& [radio, interface] : {std::pair{1u, 1u}, std::pair{1u, 2u}, std::pair{2u, 1u}})
        {
            EXPECT_EQ(CALL(TarnTriggerAccessPointWpsWindow)(radio, interface, 1, 0), kDone);
            EXPECT_EQ(nextEvent().event, each.event);
        }
    order("faults add eventLost" + ofIt);
    order(each.causes[0]);
    EXPECT_TRUE(noMoreEvents());

    order("faults add eventDoubled" + ofIt);
    order(each.causes[1]);
    const ReceivedEvent first = nextEvent();
    const ReceivedEvent second = nextEvent();
    EXPECT_EQ(first.event, each.event);
    EXPECT_EQ(second.event, each.event);
    EXPECT_EQ(first.data, second.data);
    EXPECT_TRUE(noMoreEvents());

    order("faults add eventLate milliseconds=5000" + ofIt);
    order(each.causes[2]);
    passSeconds(4.999);
    EXPECT_TRUE(noMoreEvents());
    passSeconds(0.001);
    EXPECT_EQ(nextEvent().event, each.event);
    EXPECT_TRUE(noMoreEvents());
    EXPECT_EQ(order("faults"), Json::array());
}

INSTANTIATE_TEST_SUITE_P(
    All, EventFaultTest,
    ::testing::Values(EventCase{"EVT_RADIO_STATUS_CHANGED",
                                TARN_EVT_RADIO_STATUS_CHANGED,
                                {"set /radios/1/enabled 0", "set /radios/1/enabled 1", "set /radios/1/enabled 0"}},
                      EventCase{"EVT_RADIO_OPR_CHANNEL_CHANGED",
                                TARN_EVT_RADIO_OPR_CHANNEL_CHANGED,
                                {"set /radios/0/channel 40", "set /radios/0/channel 44", "set /radios/0/channel 48"}},
                      EventCase{"EVT_RADIO_OPR_BANDWIDTH_CHANGED",
                                TARN_EVT_RADIO_OPR_BANDWIDTH_CHANGED,
                                {"set /radios/0/bandwidth 40", "set /radios/0/bandwidth 20", "set /radios/0/bandwidth 80"}},
                      EventCase{"EVT_AP_ASSOCIATED_CHANGED",
                                TARN_EVT_AP_ASSOCIATED_CHANGED,
                                {"station remove 02:00:00:00:01:01", "station remove 02:00:00:00:01:02",
                                 "station remove 02:00:00:00:01:04"}},
                      EventCase{"EVT_AP_WPS_WIN_STATUS_CHANGED",
                                TARN_EVT_AP_WPS_WIN_STATUS_CHANGED,
                                {"set /radios/0/interfaces/0/wpsEnabled 0", "set /radios/0/interfaces/1/wpsEnabled 0",
                                 "set /radios/1/interfaces/0/wpsEnabled 0"}}),
    [](const auto& instance) { return std::string(instance.param.name); });

} // namespace simulator_test
