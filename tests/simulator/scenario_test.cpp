#include "support.h"

#include "simulator/scenario.h"

#include <fstream>
#include <sstream>

namespace simulator_test
{

using tarn::simulator::Model;
using tarn::simulator::readScenario;
using tarn::simulator::ScenarioError;

// A whole small scenario with the parts put in.
std::string scenario(const std::string& radio = "", const std::string& interface = "", const std::string& top = "")
{
    return R"({ "scenario": 1, "radios": [ { "name": "radio0", "band": "5GHz", "onModule": true, "interfaces": [)"
           R"({ "name": "wifi0", "bssid": "02:00:00:00:00:10")" +
           interface + " } ]" + radio + " } ]" + top + " }";
}

std::string errorOf(const std::string& text)
{
    const ManualClock clock;
    Model model(clock);
    try
    {
        readScenario(text, "f", model);
    }
    catch (const ScenarioError& error)
    {
        return error.what();
    }
    return "";
}

TEST(ScenarioTest, SmallestOneIsSound)
{
    const ManualClock clock;
    Model model(clock);
    readScenario(scenario(), "f", model);
    model.start();
    EXPECT_EQ(1U, model.radios.size());
    EXPECT_EQ(36U, model.radio(1).settings.number("channel"));
    EXPECT_EQ("wifi0", model.interfaceOf(1, 1).name);
    EXPECT_TRUE(model.interfaceOf(1, 1).stations.empty());
}

TEST(ScenarioTest, ErrorsSayWhereAndWhatWasExpected)
{
    EXPECT_EQ("f: /radios/0/band: \"7GHz\"; expected one of 2.4GHz, 5GHz, 6GHz",
              errorOf(R"({"scenario": 1, "radios": [{"name": "r", "band": "7GHz"}]})"));
    EXPECT_EQ("f: /radios/0/channel: 37; expected one of 36 40 44 48 52 56 60 64 100 104 108 112, the channels of the 5GHz "
              "band at 80 MHz "
              "in country eu",
              errorOf(scenario(R"(, "channel": 37)")));
    EXPECT_EQ("f: /radios/0/bandwidth: 30; expected one of 20, 40, 80, 160", errorOf(scenario(R"(, "bandwidth": 30)")));
    EXPECT_EQ("f: /radios/0/chains: 5; expected a number from 1 to 4", errorOf(scenario(R"(, "chains": 5)")));
    EXPECT_EQ("f: /radios/0/chains: \"4\"; expected a number from 1 to 4", errorOf(scenario(R"(, "chains": "4")")));
    EXPECT_EQ("f: /radios/0/chains: -1; expected a number from 1 to 4", errorOf(scenario(R"(, "chains": -1)")));
    EXPECT_EQ("f: /radios/0/noise: 5; expected a number from -110 to -50", errorOf(scenario(R"(, "noise": 5)")));
    EXPECT_EQ("f: /radios/0/supportsWds: 1; expected true or false", errorOf(scenario(R"(, "supportsWds": 1)")));
    EXPECT_EQ("f: /radios/0/interfaces/0/ssid: \"\"; expected a text of 1 to 32 characters",
              errorOf(scenario("", R"(, "ssid": "")")));
    EXPECT_EQ("f: /radios/0/interfaces/0/ssid: 7; expected a text of 1 to 32 characters",
              errorOf(scenario("", R"(, "ssid": 7)")));
    EXPECT_EQ("f: /radios/0/interfaces/0/stations/0/address: missing; expected it to be there",
              errorOf(scenario("", R"(, "stations": [{}])")));
    EXPECT_EQ("f: /radios/0/interfaces/0/stations/0/address: \"02-00\"; expected a MAC address such as 02:00:00:00:01:05, no "
              "group address",
              errorOf(scenario("", R"(, "stations": [{ "address": "02-00" }])")));
    EXPECT_EQ("f: /radios/0/interfaces/0/stations: 3; expected a list of objects", errorOf(scenario("", R"(, "stations": 3)")));
    EXPECT_EQ(
        "f: /radios/0/interfaces/0/macFilter: [\"02:00:00:00:00:01\",\"02:00:00:00:00:01\"]; expected a list of at most 32 MAC "
        "addresses such as 02:00:00:00:01:05, each once",
        errorOf(scenario("", R"(, "macFilter": ["02:00:00:00:00:01", "02:00:00:00:00:01"])")));
    EXPECT_EQ("f: /timing/scanSeconds: -1; expected a number of seconds from 0 to 86400",
              errorOf(scenario("", "", R"(, "timing": { "scanSeconds": -1 })")));
    EXPECT_EQ(
        "f: /smartWiFi/domains/0/id: \"xyz\"; expected a mobility domain, four hexadecimal digits, that no other domain has",
        errorOf(scenario("", "", R"(, "smartWiFi": { "domains": [{ "id": "xyz" }] })")));
    EXPECT_EQ("f: /module/scripts: [1]; expected a list of texts of at most 32 characters",
              errorOf(scenario("", "", R"(, "module": { "scripts": [1] })")));
    EXPECT_EQ("f: /module/bootParameters/a: 1; expected a text of at most 128 characters",
              errorOf(scenario("", "", R"(, "module": { "bootParameters": { "a": 1 } })")));
}

TEST(ScenarioTest, UnknownKeysAreErrors)
{
    const std::string error = errorOf(scenario(R"(, "chanel": 36)"));
    EXPECT_EQ(0U, error.find("f: /radios/0/chanel: unknown key; expected one of name, band, ")) << error;
    EXPECT_NE(std::string::npos, error.find(", channel, ")) << error;
    EXPECT_EQ("f: /smartWifi: unknown key; expected one of scenario, description, supportsWfaAlliance, timing, service, "
              "module, radios, "
              "smartWiFi",
              errorOf(scenario("", "", R"(, "smartWifi": {})")));
}

TEST(ScenarioTest, TextThatIsNoScenarioIsRefused)
{
    EXPECT_EQ(0U, errorOf("{").find("f: byte "));
    EXPECT_EQ("f: expected an object, { ... }", errorOf("[]"));
    EXPECT_EQ("f: /scenario: missing; expected it to be there", errorOf("{}"));
    EXPECT_EQ("f: /scenario: 2; expected a number from 1 to 1", errorOf(R"({"scenario": 2})"));
    EXPECT_EQ("f: /radios: missing; expected 1 to 8 of them, at least one with \"onModule\": true",
              errorOf(R"({"scenario": 1})"));
    EXPECT_EQ("f: the key \"scenario\" stands twice in one object; expected it once",
              errorOf(R"({"scenario": 1, "scenario": 1})"));
    EXPECT_EQ("f: /radios/0/interfaces: missing; expected 1 to 8 of them",
              errorOf(R"({"scenario": 1, "radios": [{"name": "r", "band": "5GHz"}]})"));
}

TEST(ScenarioTest, NamesAndAddressesStandForOneThing)
{
    EXPECT_EQ("f: the address 02:00:00:00:00:10 stands there twice; expected it once in the whole gateway",
              errorOf(scenario("", R"(, "stations": [{ "address": "02:00:00:00:00:10" }])")));
    const std::string second = R"(, { "name": "wifi0", "bssid": "02:00:00:00:00:11" } ] } ] })";
    std::string twice = scenario();
    twice.replace(twice.rfind(" ] } ] }"), std::string::npos, second);
    EXPECT_EQ("f: the interface name wifi0 stands there twice; expected it once in the whole gateway", errorOf(twice));
}

TEST(ScenarioTest, FileThatCannotBeReadIsToldSo)
{
    const ManualClock clock;
    Model model(clock);
    for (const std::string& path : {::testing::TempDir() + "no-such-scenario.json", ::testing::TempDir()})
        try
        {
            readScenarioFile(path, model);
            ADD_FAILURE() << path;
        }
        catch (const ScenarioError& error)
        {
            EXPECT_EQ(path + ": cannot be read, or is empty; expected a scenario file", error.what());
        }
}

// The second scenario that is shipped: three radios, lists nearly full.
class CrowdedTest : public SimulatorTest
{
protected:
    void SetUp() override
    {
        std::ostringstream text;
        text << std::ifstream(CROWDED_SCENARIO).rdbuf();
        useScenario(text.str());
        SimulatorTest::SetUp();
    }
};

TEST_F(CrowdedTest, IsPlayed)
{
    std::uint32_t number = 0;
    EXPECT_EQ(kDone, CALL(TarnGetRadioNum)(&number));
    EXPECT_EQ(3U, number);
    EXPECT_EQ(20U, stationCount(1, 1));
    EXPECT_EQ(12U, stationCount(2, 1));
    EXPECT_EQ(kDone, CALL(TarnAddAccessPointMacFilter)(1, 1, kStranger.data()));
    EXPECT_EQ(kFull, CALL(TarnAddAccessPointMacFilter)(1, 1, kFirstStation.data()));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_create_bss_with_ifstate)("wifi7", 1));
    EXPECT_EQ(kModuleFull, CALL(tarn_qcsapi_wifi_create_bss_with_ifstate)("wifi8", 1));
    EXPECT_EQ(kDone, CALL(TarnScanRadioNeighborhood)(1));
    passSeconds(1);
    EXPECT_EQ(kDone, CALL(TarnGetRadioNeighboringResultNum)(1, &number));
    EXPECT_EQ(30U, number);

    TarnRadioData raw;
    EXPECT_EQ(kDone, CALL(TarnGetRadio)(3, &raw));
    EXPECT_EQ("6GHz", recordOf("TarnRadioData", raw).text("band"));
    EXPECT_EQ(37U, recordOf("TarnRadioData", raw).number("channel"));
}

} // namespace simulator_test
