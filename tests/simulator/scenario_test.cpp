#include "support.h"

#include "base/json_reader.h"
#include "simulator/scenario.h"

#include <fstream>
#include <sstream>

namespace simulator_test
{

using tarn::simulator::Model;
using tarn::simulator::readScenario;

// A whole small scenario with the parts put in.
std::string scenario(const std::string& radio = "", const std::string& interface = "", const std::string& top = "")
{
    return R"({ "scenario": 1, "radios": [ { "name": "radio0", "band": "5GHz", "onModule": true, "interfaces": [)"
           R"({ "name": "wifi0", "bssid": "02:00:00:00:00:10")" +
           interface + " } ]" + radio + " } ]" + top + " }";
}

std::string errorOf(const std::string& text)
{
    Model model;
    try
    {
        readScenario(text, "f", model);
    }
    catch (const tarn::base::JsonError& error)
    {
        return error.what();
    }
    return "";
}

TEST(ScenarioTest, SmallestOneIsSound)
{
    Model model;
    readScenario(scenario(), "f", model);
    model.start();
    EXPECT_EQ(model.radios.size(), 1u);
    EXPECT_EQ(model.radio(1).settings.channel, 36u);
    EXPECT_EQ(model.interfaceOf(1, 1).name, "wifi0");
    EXPECT_TRUE(model.interfaceOf(1, 1).stations.empty());
}

TEST(ScenarioTest, ErrorsSayWhereAndWhatWasExpected)
{
    EXPECT_EQ(errorOf(R"({"scenario": 1, "radios": [{"name": "r", "band": "7GHz"}]})"),
              "f: /radios/0/band: \"7GHz\"; expected one of 2.4GHz, 5GHz, 6GHz");
    EXPECT_EQ(errorOf(scenario(R"(, "channel": 37)")),
              "f: /radios/0/channel: 37; expected one of 36 40 44 48 52 56 60 64 100 104 108 112, the channels of the 5GHz "
              "band at 80 MHz "
              "in country eu");
    EXPECT_EQ(errorOf(scenario(R"(, "bandwidth": 30)")), "f: /radios/0/bandwidth: 30; expected one of 20, 40, 80, 160");
    EXPECT_EQ(errorOf(scenario(R"(, "chains": 5)")), "f: /radios/0/chains: 5; expected an integer from 1 to 4");
    EXPECT_EQ(errorOf(scenario(R"(, "chains": "4")")), "f: /radios/0/chains: \"4\"; expected an integer from 1 to 4");
    EXPECT_EQ(errorOf(scenario(R"(, "chains": -1)")), "f: /radios/0/chains: -1; expected an integer from 1 to 4");
    EXPECT_EQ(errorOf(scenario(R"(, "maximumPower": 5)")), "f: /radios/0/maximumPower: 5; expected an integer from 10 to 36");
    EXPECT_EQ(errorOf(scenario(R"(, "supportsWds": 1)")), "f: /radios/0/supportsWds: 1; expected true or false");
    EXPECT_EQ(errorOf(scenario("", R"(, "ssid": "")")),
              "f: /radios/0/interfaces/0/ssid: \"\"; expected a text of 1 to 32 characters");
    EXPECT_EQ(errorOf(scenario("", R"(, "ssid": 7)")),
              "f: /radios/0/interfaces/0/ssid: 7; expected a text of 1 to 32 characters");
    EXPECT_EQ(errorOf(scenario("", "", R"(, "clients": [{}])")),
              "f: /clients/0/address: missing; expected a MAC address such as 02:00:00:00:01:05, no "
              "group address");
    EXPECT_EQ(errorOf(scenario("", "", R"(, "clients": [{ "address": "02-00" }])")),
              "f: /clients/0/address: \"02-00\"; expected a MAC address such as 02:00:00:00:01:05, no "
              "group address");
    EXPECT_EQ(errorOf(scenario("", R"(, "stations": 3)")),
              "f: /radios/0/interfaces/0/stations: 3; expected a list of at most 128 objects");
    EXPECT_EQ(errorOf(scenario("", R"(, "macFilter": ["02:00:00:00:00:01", "02:00:00:00:00:01"])")),
              "f: /radios/0/interfaces/0/macFilter/1: \"02:00:00:00:00:01\"; expected an address that is not in the list yet");
    EXPECT_EQ(errorOf(scenario("", R"(, "macFilter": [7])")),
              "f: /radios/0/interfaces/0/macFilter/0: 7; expected a MAC address such as 02:00:00:00:01:05, no group address");
    EXPECT_EQ(errorOf(scenario("", R"(, "macFilter": 7)")),
              "f: /radios/0/interfaces/0/macFilter: 7; expected a list of at most 32 elements");
    EXPECT_EQ(errorOf(scenario("", "", R"(, "timing": { "scanSeconds": -1 })")),
              "f: /timing/scanSeconds: -1; expected a number of seconds from 0 to 86400");
    EXPECT_EQ(errorOf(scenario("", "", R"(, "smartWiFi": { "domains": [{ "id": "xyz" }] })")),
              "f: /smartWiFi/domains/0/id: \"xyz\"; expected a mobility domain, four hexadecimal digits");
    EXPECT_EQ(errorOf(scenario("", "", R"(, "module": { "scripts": [1] })")),
              "f: /module/scripts/0: 1; expected a text of at most 32 characters");
    EXPECT_EQ(errorOf(scenario("", "", R"(, "module": { "bootParameters": { "a": 1 } })")),
              "f: /module/bootParameters/a: 1; expected a text of at most 1024 characters");
}

TEST(ScenarioTest, UnknownKeysAreErrors)
{
    const std::string error = errorOf(scenario(R"(, "chanel": 36)"));
    EXPECT_EQ(error.find("f: /radios/0/chanel: unknown key (did you mean channel?); expected one of name, band, "), 0u)
        << error;
    EXPECT_NE(error.find(", channel, "), std::string::npos) << error;
    EXPECT_EQ(errorOf(scenario("", "", R"(, "smartWifi": {})"))
                  .find("f: /smartWifi: unknown key (did you mean smartWiFi?); expected one of $schema, scenario, "),
              0u);
}

TEST(ScenarioTest, TextThatIsNoScenarioIsRefused)
{
    EXPECT_EQ(errorOf("{").find("f: line 1, byte 2: not JSON: "), 0u);
    EXPECT_EQ(errorOf("[]"), "f: []; expected an object");
    EXPECT_EQ(errorOf("{}"), "f: /scenario: missing; expected 1");
    EXPECT_EQ(errorOf(R"({"scenario": 2})"), "f: /scenario: 2; expected 1");
    EXPECT_EQ(errorOf(R"({"scenario": 1})"), "f: /radios: missing; expected a list of 1 to 8 objects");
    std::string without = scenario();
    without.replace(without.find("true"), 4, "false");
    EXPECT_EQ(
        errorOf(without),
        "f: /radios: [{\"name\":\"radio0\",\"band\":\"5GHz\",\"onModule\":false,\"interfaces...; expected at least one with "
        "\"onModule\": true");
    EXPECT_EQ(errorOf(R"({"scenario": 1, "scenario": 1})"), "f: /scenario: given twice; expected once");
    EXPECT_EQ(errorOf(R"({"scenario": 1, "radios": [{"name": "r", "band": "5GHz"}]})"),
              "f: /radios/0/interfaces: missing; expected a list of 1 to 8 objects");
}

TEST(ScenarioTest, NamesAndAddressesStandForOneThing)
{
    EXPECT_EQ(errorOf(scenario("", "", R"(, "clients": [{ "address": "02:00:00:00:00:10" }])")),
              "f: /clients/0/address: \"02:00:00:00:00:10\"; expected an address that nothing else in "
              "the scenario has");
    const std::string second = R"(, { "name": "wifi0", "bssid": "02:00:00:00:00:11" } ] } ] })";
    std::string twice = scenario();
    twice.replace(twice.rfind(" ] } ] }"), std::string::npos, second);
    EXPECT_EQ(errorOf(twice),
              "f: /radios/0/interfaces/1/name: \"wifi0\"; expected a name that no other interface of the gateway has");
}

TEST(ScenarioTest, WhatIsDueIsDueToSomethingThatIsThere)
{
    const auto due = [](const std::string& entry)
    { return errorOf(scenario("", "", R"(, "due": [{ "at": 5, )" + entry + "}]")); };
    EXPECT_EQ(due(R"("what": "scanEnds", "radio": 1)"), "");
    EXPECT_EQ(due(R"("what": "scanEnds", "radio": 2)"), "f: /due/0/radio: 2; expected the number of a radio, from 1 to 1");
    EXPECT_EQ(due(R"("what": "scanEnds")"), "f: /due/0/radio: missing; expected the number of a radio, from 1 to 1");
    EXPECT_EQ(due(R"("what": "wpsWindowCloses", "radio": 1, "interface": 3)"),
              "f: /due/0/interface: 3; expected the number of an interface of radio 1, from 1 to 1");
    EXPECT_EQ(due(R"("what": "downloadEnds")"), "");
}

TEST(ScenarioTest, WhatCannotBeIsRefused)
{
    EXPECT_EQ(errorOf(scenario("", R"(, "beaconType": "wpa3", "authenticationMode": "psk")")),
              "f: /radios/0/interfaces/0/authenticationMode: \"psk\"; expected one of sae, eap, with beaconType wpa3");
    EXPECT_EQ(errorOf(scenario("", R"(, "beaconType": "wpa3", "encryptionModes": "tkip")")),
              "f: /radios/0/interfaces/0/encryptionModes: \"tkip\"; expected one of aes, with beaconType wpa3");
    EXPECT_EQ(errorOf(scenario("", R"(, "beaconType": "open", "encryptionModes": "aes")")),
              "f: /radios/0/interfaces/0/encryptionModes: \"aes\"; expected one of none, with beaconType open");
    EXPECT_EQ(errorOf(scenario("", R"(, "authenticationMode": "sae")")),
              "f: /radios/0/interfaces/0/authenticationMode: \"sae\"; expected one of psk, eap, with beaconType wpa2");
    for (const char* kind : {"open", "wpa", "wpa2", "wpa-wpa2", "wpa3"}) // what is not said is what belongs to it
        EXPECT_EQ(errorOf(scenario("", std::string(R"(, "beaconType": ")") + kind + '"')), "") << kind;

    EXPECT_EQ(errorOf(scenario(R"(, "phyMode": "11g")")),
              "f: /radios/0/phyMode: \"11g\"; expected a PHY mode of the 5GHz band");
    const auto neighbour = [](const std::string& place)
    { return errorOf(scenario("", "", R"(, "air": { "neighbours": [{ "bssid": "02:00:00:00:02:01", )" + place + "}] }")); };
    EXPECT_EQ(neighbour(R"("band": "5GHz", "channel": 6)"),
              "f: /air/neighbours/0/channel: 6; expected a channel of the 5GHz band at 20 MHz");
    EXPECT_EQ(neighbour(R"("band": "2.4GHz", "channel": 6, "bandwidth": 80)"),
              "f: /air/neighbours/0/channel: 6; expected a channel of the 2.4GHz band at 80 MHz");
    EXPECT_EQ(neighbour(R"("band": "2.4GHz", "channel": 6)"), "");

    std::string named = scenario();
    named.replace(named.find("wifi0"), 5, "wi fi");
    EXPECT_EQ(errorOf(named),
              "f: /radios/0/interfaces/0/name: \"wi fi\"; expected a name of printable ASCII without spaces or slashes");
    EXPECT_EQ(errorOf(scenario("", R"(, "stations": [{ "address": "02:00:00:00:01:01", "since": 0 }])")),
              "f: /radios/0/interfaces/0/stations/0/address: \"02:00:00:00:01:01\"; expected the address of one of the "
              "clients, which is not associated yet");
    EXPECT_EQ(errorOf(scenario("", "", R"(, "due": [{ "at": 5, "what": "radarAppears", "channel": 36 }])")),
              "f: /due/0/channel: 36; expected a channel of 20 MHz at 5 GHz on which there can be radar, from 52 to 144");
}

// It is written by tarn-gateway --scenario-schema.
TEST(ScenarioTest, SchemaIsThatOfTheDescriptions)
{
    std::ifstream file(SCENARIO_SCHEMA);
    EXPECT_EQ(Json::parse(file), tarn::simulator::scenarioSchema());
}

TEST(ScenarioTest, FileThatCannotBeReadIsToldSo)
{
    Model model;
    const std::string missing = ::testing::TempDir() + "no-such-scenario.json";
    const std::pair<std::string, std::string> kReasons[] = {{missing, "No such file or directory"},
                                                            {::testing::TempDir(), "Is a directory"}};
    for (const auto& [path, reason] : kReasons)
        try
        {
            readScenarioFile(path, model);
            ADD_FAILURE() << path;
        }
        catch (const tarn::base::JsonError& error)
        {
            EXPECT_EQ(error.what(), path + ": cannot be read: " + reason + "; expected a scenario file");
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
    EXPECT_EQ(CALL(TarnGetRadioNum)(&number), kDone);
    EXPECT_EQ(number, 3u);
    EXPECT_EQ(stationCount(1, 1), 20u);
    EXPECT_EQ(stationCount(2, 1), 12u);
    EXPECT_EQ(CALL(TarnAddAccessPointMacFilter)(1, 1, kStranger.data()), kDone);
    EXPECT_EQ(CALL(TarnAddAccessPointMacFilter)(1, 1, kFirstStation.data()), kFull);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_create_bss_with_ifstate)("wifi7", 1), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_create_bss_with_ifstate)("wifi8", 1), kModuleFull);
    EXPECT_EQ(CALL(TarnScanRadioNeighborhood)(1), kDone);
    passSeconds(1);
    EXPECT_EQ(CALL(TarnGetRadioNeighboringResultNum)(1, &number), kDone);
    EXPECT_EQ(number, 30u);

    TarnRadioData raw;
    EXPECT_EQ(CALL(TarnGetRadio)(3, &raw), kDone);
    EXPECT_EQ(recordOf("TarnRadioData", raw).text("band"), "6GHz");
    EXPECT_EQ(recordOf("TarnRadioData", raw).number("channel"), 37u);
}

} // namespace simulator_test
