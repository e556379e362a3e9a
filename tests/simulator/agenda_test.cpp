// What is due happens in order of time, and in a stated order at the same instant; time goes as a test wants it.
#include "support.h"

#include "kor_iil.h"
#include "simulator/agenda.h"
#include "simulator/scenario.h"

namespace simulator_test
{

using tarn::simulator::Agenda;
using tarn::simulator::Due;
using tarn::simulator::Milliseconds;
using tarn::simulator::Model;
using tarn::simulator::Occurrence;

TEST(AgendaTest, KeepsTheOrderOfTime)
{
    Agenda agenda;
    EXPECT_EQ(agenda.next(), std::nullopt);
    agenda.set({Occurrence::kScanEnds, 1}, 110);
    agenda.set({Occurrence::kClientReturns, 1, 1, kFirstStation}, 100);
    EXPECT_EQ(agenda.next(), 100u);
    EXPECT_EQ(agenda.take().what, Occurrence::kClientReturns); // 10 ms before the other
    EXPECT_EQ(agenda.take().what, Occurrence::kScanEnds);
    EXPECT_EQ(agenda.next(), std::nullopt);
}

TEST(AgendaTest, HasAStatedOrderForTheSameInstant)
{
    const std::vector<Due> inOrder = {{Occurrence::kDownloadEnds},
                                      {Occurrence::kProductionEnds},
                                      {Occurrence::kScanEnds, 1},
                                      {Occurrence::kScanEnds, 2},
                                      {Occurrence::kRadarCheckEnds, 1},
                                      {Occurrence::kDfsRadioEnds, 1},
                                      {Occurrence::kWpsWindowCloses, 1, 2},
                                      {Occurrence::kWpsWindowCloses, 2, 1},
                                      {Occurrence::kNonOccupancyEnds, 1},
                                      {Occurrence::kRadarAppears},
                                      {Occurrence::kClientReturns, 1, 1, kFirstStation},
                                      {Occurrence::kClientReturns, 1, 1, kSecondStation}};
    Agenda agenda;
    for (auto due = inOrder.rbegin(); due != inOrder.rend(); ++due)
        agenda.set(*due, 100);
    for (const Due& due : inOrder)
    {
        const Due taken = agenda.take();
        EXPECT_FALSE(taken < due || due < taken) << static_cast<int>(due.what);
    }
}

TEST(AgendaTest, HasOneTimeForEachThing)
{
    Agenda agenda;
    agenda.set({Occurrence::kScanEnds, 1}, 100);
    agenda.set({Occurrence::kScanEnds, 1}, 200);
    EXPECT_EQ(agenda.next(), 200u);
    EXPECT_EQ(agenda.time({Occurrence::kScanEnds, 1}), 200u);
    agenda.cancel({Occurrence::kScanEnds, 1});
    EXPECT_FALSE(agenda.has({Occurrence::kScanEnds, 1}));
    EXPECT_EQ(agenda.next(), std::nullopt);
}

// --- Time as a test wants it -------------------------------------------------------------------------------------------------

using TimeTest = SimulatorTest;

TEST_F(TimeTest, StandsUntilItIsStepped)
{
    EXPECT_EQ(order("speed"), Json::parse(R"({"seconds": 0.0, "speed": 0.0})"));
    EXPECT_EQ(order("step 61.234")["seconds"], 61.234);
    std::uint32_t elapsed = 0;
    EXPECT_EQ(CALL(tarn_qcsapi_system_get_time_since_start)(&elapsed), kDone);
    EXPECT_EQ(elapsed, 61u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_time_associated_per_association)("wifi0", 0, &elapsed), kDone);
    EXPECT_EQ(elapsed, 61u);
}

TEST_F(TimeTest, StepsToWhatIsDueNext)
{
    EXPECT_EQ(refusal("step next"), "21: nothing is due");
    EXPECT_EQ(CALL(TarnScanRadioNeighborhood)(1), kDone);
    EXPECT_EQ(CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 1, 0), kDone);
    EXPECT_EQ(order("step next")["seconds"], 4);
    std::uint32_t status = 0;
    EXPECT_EQ(CALL(TarnGetRadioNeighboringStatus)(1, &status), kDone);
    EXPECT_EQ(status, 2u);
    EXPECT_EQ(order("step next")["seconds"], 120);
    EXPECT_EQ(refusal("step next"), "21: nothing is due");
}

// A thousand times as fast, a scan of 4 seconds ends by itself, and the process that waits for its event is told.
TEST_F(TimeTest, GoesAsFastAsItIsTold)
{
    subscribe(TARN_EVT_AP_WPS_WIN_STATUS_CHANGED);
    EXPECT_EQ(CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 1, 0), kDone);
    EXPECT_EQ(order("speed 1000")["speed"], 1000);
    EXPECT_EQ(nextEvent(TARN_EVT_AP_WPS_WIN_STATUS_CHANGED, "EVT_AP_WPS_WIN_STATUS_CHANGED").number("status"), 1u);
    EXPECT_EQ(nextEvent(TARN_EVT_AP_WPS_WIN_STATUS_CHANGED, "EVT_AP_WPS_WIN_STATUS_CHANGED").number("status"), 2u);
    EXPECT_GE(order("speed 0")["seconds"], 120);
}

// --- Chance ------------------------------------------------------------------------------------------------------------------

// What a gateway publishes, in order, with the time; its stations return within five seconds of one another.
std::vector<std::string> playedWith(std::uint32_t seed)
{
    Model model;
    tarn::simulator::readDefaultScenario(model);
    model.random.state = seed;
    model.timing.returnSpread = 5000;
    std::vector<std::string> events;
    model.publish = [&](const std::string& event, const Record& data)
    { events.push_back(std::to_string(model.time) + event + std::string(data.bytes().begin(), data.bytes().end())); };
    model.start();
    for (int round = 0; round < 3; ++round)
    {
        for (tarn::simulator::Interface& interface : model.radio(1).interfaces)
            while (!interface.stations.empty())
                model.kickOut(interface, interface.stations.front().address);
        model.advance(model.time + 20000);
    }
    events.push_back(tarn::simulator::scenarioOf(model).dump());
    return events;
}

TEST(SeedTest, MakesTheSameGatewayDoTheSame)
{
    EXPECT_EQ(playedWith(7), playedWith(7));
    EXPECT_NE(playedWith(7), playedWith(8));
}

} // namespace simulator_test
