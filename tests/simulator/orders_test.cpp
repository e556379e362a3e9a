// What a tester orders while the gateway runs, at once and by a script.
#include "support.h"

#include "simulator/gateway.h"
#include "simulator/order_words.h"
#include "simulator/scenario.h"

#include <cstdlib>
#include <fstream>

namespace simulator_test
{

namespace simulator = tarn::simulator;
using Words = std::vector<std::string>;

TEST(OrderWordsTest, AreThoseOfAShell)
{
    EXPECT_EQ(simulator::wordsOf(""), Words{});
    EXPECT_EQ(simulator::wordsOf("  radar \t 52\n"), (Words{"radar", "52"}));
    EXPECT_EQ(simulator::wordsOf(R"(set /a '"two words"')"), (Words{"set", "/a", "\"two words\""}));
    EXPECT_EQ(simulator::wordsOf(R"(a\ b "c d"e '' \\)"), (Words{"a b", "c de", "", "\\"}));
    EXPECT_THROW(simulator::wordsOf("set /a 'b"), simulator::Refused);
}

using OrdersTest = SimulatorTest;

TEST_F(OrdersTest, ThatAreNoneAreToldWhatIsExpected)
{
    EXPECT_EQ(refusal(""), "17: expected one of state, set, station, neighbour, radar, reboot, faults, speed, step, save, log, "
                           "shutdown; got \"\"");
    EXPECT_EQ(refusal("radar"), "17: expected radar CHANNEL; got \"radar\"");
    EXPECT_EQ(refusal("radar 36"), "17: expected a channel of 20 MHz on which there can be radar, from 52 to 144; got 36");
    EXPECT_EQ(refusal("radar 52x"),
              "17: expected a channel of 20 MHz on which there can be radar, from 52 to 144; got \"52x\"");
    EXPECT_EQ(refusal("radar 53"), "17: expected a channel of 20 MHz on which there can be radar, from 52 to 144; got 53");
    EXPECT_EQ(refusal("state radios"), "17: expected a JSON pointer such as /radios/0/channel; got \"radios\"");
    EXPECT_EQ(refusal("state /radios/2"), "16: the state has no /radios/2");
    EXPECT_EQ(refusal("state /radios/x"), "16: the state has no /radios/x");
    EXPECT_EQ(refusal("set /air 'x"), "17: expected another ' behind the one that is there");
    EXPECT_EQ(refusal("log maybe"), "17: expected log or log on|off; got \"log maybe\"");
    EXPECT_EQ(refusal("step -1"), "17: expected a number of seconds, or next; got \"-1\"");
    EXPECT_EQ(refusal("step 0x10"), "17: expected a number of seconds, or next; got \"0x10\"");
    EXPECT_EQ(refusal("step ' 5'"), "17: expected a number of seconds, or next; got \" 5\"");
    EXPECT_EQ(refusal("step next"), "21: nothing is due");
    EXPECT_EQ(refusal("station fly 1"),
              "17: expected station add address=MAC ssid=TEXT passphrase=TEXT pathLoss=DB KEY=VALUE or station move ADDRESS "
              "PATHLOSS or station remove ADDRESS; got \"station fly 1\"");
}

TEST_F(OrdersTest, ChangeWhateverTheStateHas)
{
    order("set /radios/0/channel 44");
    std::uint32_t channel = 0;
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_channel)("wifi0", &channel), kDone);
    EXPECT_EQ(channel, 44u);
    EXPECT_EQ(refusal("set /radios/0/channel 37").find("17: the state: /radios/0/channel: 37; expected one of 36 40 "), 0u);
    EXPECT_EQ(refusal("set /radios/0/chanel 36").find("17: the state: /radios/0/chanel: unknown key"), 0u);
    EXPECT_EQ(refusal("set /radios/7/channel 36"), "16: the state has no /radios/7/channel");
    EXPECT_EQ(state("/radios/0/channel"), 44) << "what is refused changes nothing";
    order(R"(set /due/- '{"at": 60000, "what": "radarAppears", "channel": 52}')");
    EXPECT_EQ(state("/due").size(), 1u);
}

TEST_F(OrdersTest, SayWhichValueIsNone)
{
    EXPECT_EQ(refusal("station add bands=5GHz"),
              "17: bands: expected a JSON value, in which texts are in quotation marks; got \"5GHz\"");
    EXPECT_EQ(refusal("faults add delay count=1 count=2"), "17: expected each key once; got \"count=2\"");
    EXPECT_EQ(refusal("set /radios/0/interfaces/0/ssid caf\xe9"),
              "17: expected UTF-8, in which any other byte is written as \\xe4; got \"caf\\xe9\"");
    EXPECT_EQ(refusal(R"(set /description 'a\b')").find("17: the state: /description: "), 0u);
    order(R"(set /radios/0/interfaces/0/ssid 'caf\xe9')");
    EXPECT_EQ(state("/radios/0/interfaces/0/ssid"), "caf\\xe9");
}

TEST_F(OrdersTest, PublishWhatChanges)
{
    subscribe(TARN_EVT_RADIO_OPR_CHANNEL_CHANGED);
    order("set /radios/0/channel 44");
    EXPECT_EQ(nextEvent(TARN_EVT_RADIO_OPR_CHANNEL_CHANGED, "EVT_RADIO_OPR_CHANNEL_CHANGED").number("channel"), 44u);
    EXPECT_TRUE(noMoreEvents());
}

TEST_F(OrdersTest, LetStationsComeMoveAndGo)
{
    const std::size_t before = stationCount();
    order("station add address=02:00:00:00:07:01 ssid=home 'passphrase=correct horse' pathLoss=60");
    EXPECT_EQ(stationCount(), before + 1);
    EXPECT_NE(refusal("station add address=02:00:00:00:07:01").find("an address that nothing else in the scenario has"),
              std::string::npos);
    EXPECT_EQ(
        refusal("station add adress=02:00:00:00:07:01").find("17: expected KEY=VALUE, with one of the keys address, bands"),
        0u);
    order("station move 02:00:00:00:07:01 125"); // too far
    EXPECT_EQ(stationCount(), before);
    order("station move 02:00:00:00:07:01 60");
    EXPECT_EQ(stationCount(), before + 1);
    order("station remove 02:00:00:00:07:01");
    EXPECT_EQ(stationCount(), before);
    EXPECT_EQ(refusal("station remove 02:00:00:00:07:01"), "16: 02:00:00:00:07:01 is the address of no client");
    EXPECT_EQ(refusal("station move 02:00:00:00:07:01 60"), "16: 02:00:00:00:07:01 is the address of no client");
}

TEST_F(OrdersTest, LetNeighboursComeAndGo)
{
    const std::size_t before = state("/air/neighbours").size();
    gateway().withModel([](simulator::Model& model) { EXPECT_LT(model.radio(1).channelLoad, 70u); });
    order("neighbour add bssid=02:00:00:00:0a:01 band=5GHz channel=36 bandwidth=80 rssi=-50 load=70");
    EXPECT_EQ(state("/air/neighbours").size(), before + 1);
    gateway().withModel([](simulator::Model& model) { EXPECT_GE(model.radio(1).channelLoad, 70u); });
    order("neighbour remove 02:00:00:00:0a:01");
    EXPECT_EQ(state("/air/neighbours").size(), before);
    EXPECT_EQ(refusal("neighbour remove 02:00:00:00:0a:01"), "16: there is no neighbour 02:00:00:00:0a:01");
}

TEST_F(OrdersTest, LetRadarAppear)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 52), kDone);
    order("step 61");
    order("radar 52");
    EXPECT_EQ(state("/radios/0/occupiedChannels"), Json({52, 56, 60, 64}));
}

TEST_F(OrdersTest, RebootTheGateway)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_SSID)("wifi1", "changed"), kDone);
    EXPECT_EQ(CALL(TarnScanRadioNeighborhood)(1), kDone);
    order("step 100");
    const std::size_t stations = stationCount();
    order("reboot");
    std::uint32_t elapsed = 1;
    std::int64_t status = -1;
    while (status == -1) // while the service is not there again
        status = CALL(tarn_qcsapi_system_get_time_since_start)(&elapsed);
    EXPECT_EQ(status, kDone);
    EXPECT_EQ(elapsed, 0u);
    EXPECT_EQ(state("/radios/0/interfaces/1/ssid"), "changed");
    EXPECT_EQ(state("/radios/0/scan/status"), "never");
    EXPECT_EQ(state("/radios/0/interfaces/0/stations").size(), stations) << "they have come again";
    order("reboot without-settings");
    EXPECT_NE(state("/radios/0/interfaces/1/ssid"), "changed");
}

TEST_F(OrdersTest, SteerTime)
{
    EXPECT_EQ(order("speed")["speed"], 0);
    EXPECT_EQ(order("step 1.5")["seconds"], 1.5);
    EXPECT_EQ(CALL(TarnScanRadioNeighborhood)(1), kDone);
    EXPECT_EQ(order("step next")["seconds"], 5.5);
    EXPECT_EQ(order("speed 60")["speed"], 60);
    EXPECT_EQ(order("speed 0")["speed"], 0);
}

// What is saved is a scenario.
TEST_F(OrdersTest, SaveTheState)
{
    const std::string path = std::string(std::getenv("KORIIL_DIR")) + "/saved state.json";
    order("step 10");
    order("save '" + path + "'");
    simulator::Model other;
    simulator::readScenarioFile(path, other);
    EXPECT_EQ(simulator::scenarioOf(other), order("state"));
    EXPECT_EQ(refusal("save /no/such/file"), "17: file /no/such/file cannot be written: No such file or directory");
}

TEST_F(OrdersTest, SwitchTheLog)
{
    std::vector<std::string> lines;
    gateway().setLogWriter([&](const std::string& line) { lines.push_back(line); });
    std::uint32_t number = 0;
    EXPECT_EQ(CALL(TarnGetRadioNum)(&number), kDone);
    order("log on");
    EXPECT_EQ(CALL(TarnGetRadioNum)(&number), kDone);
    order("log off");
    EXPECT_EQ(CALL(TarnGetRadioNum)(&number), kDone);
    EXPECT_EQ(lines.size(), 1u);
}

// --- Scripts -----------------------------------------------------------------------------------------------------------------

TEST(ScriptTest, IsReadInOrderOfTime)
{
    const std::vector<simulator::ScriptLine> lines =
        simulator::parseScript("# an evening\n\n60 radar 52\n  1.5\tstation remove x\n1.5 log on", "evening");
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0].at, 1500u);
    EXPECT_EQ(lines[0].order, "station remove x");
    EXPECT_EQ(lines[0].place, "evening:4");
    EXPECT_EQ(lines[1].order, "log on");
    EXPECT_EQ(lines[2].order, "radar 52");
    for (const char* wrong : {"radar 52", "60", "60radar 52", "-1 radar 52", "nan radar 52"})
        EXPECT_THROW(simulator::parseScript(wrong, "evening"), std::runtime_error) << wrong;
}

TEST_F(OrdersTest, OfAScriptAreCarriedOutAtTheirTimes)
{
    gateway().play(simulator::parseScript("10 set /air/noise5GHz -80\n20 set /air/noise5GHz -70\n15 nonsense\n", "script"));
    order("step 9.999");
    EXPECT_EQ(state("/air/noise5GHz"), -96);
    order("step 0.001");
    EXPECT_EQ(state("/air/noise5GHz"), -80);
    order("step 100");
    EXPECT_EQ(state("/air/noise5GHz"), -70);
    EXPECT_EQ(order("speed")["seconds"], 110);
}

// The indented block behind the comment that it begins with.
std::string scriptOfTheReadme()
{
    std::ifstream readme(SIMULATOR_README);
    std::string script;
    for (std::string line; std::getline(readme, line) && (script.empty() || !line.empty());)
        if (!script.empty() || line.rfind("    # The neighbours", 0) == 0)
            script += line.substr(4) + "\n";
    return script;
}

TEST_F(OrdersTest, OfTheScriptInTheReadmeAreCarriedOut)
{
    const std::vector<simulator::ScriptLine> script = simulator::parseScript(scriptOfTheReadme(), "README.md");
    EXPECT_EQ(script.size(), 5u);
    gateway().play(script);
    ::testing::internal::CaptureStderr();
    order("step 100");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "") << "none of them is refused";
    EXPECT_EQ(state("/clients/0/pathLoss"), 95);
    EXPECT_EQ(state("/faults/0/kind"), "noAnswer");
    EXPECT_EQ(state("/radios/0/interfaces/0/ssid"), "good night");
    EXPECT_EQ(state("/air/neighbours").back().at("load"), 60);
}

// A state that is read and written again is the same state.
TEST_F(OrdersTest, ChangeNothingElse)
{
    EXPECT_EQ(CALL(TarnScanRadioNeighborhood)(1), kDone);
    EXPECT_EQ(CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 1, 0), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 52), kDone);
    order("step 2");
    Json before = state("");
    subscribe(TARN_EVT_AP_ASSOCIATED_CHANGED);
    order("set /description another");
    before["description"] = "another";
    EXPECT_EQ(state(""), before);
    EXPECT_TRUE(noMoreEvents());
}

} // namespace simulator_test
