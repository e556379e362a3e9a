// Comparing two reports, or two running gateways.
#include "report_support.h"

#include <filesystem>

#include <gmock/gmock.h>

namespace tarnctl_test
{

namespace
{

using testing::HasSubstr;
using testing::Not;

class DiffTest : public ReportTest
{
protected:
    void save(const std::string& file)
    {
        EXPECT_EQ(run({"report", "--seconds", "0", "--json", path(file)}).exit, 0);
    }

    Ran diff(const std::string& a, const std::string& b, Words more = {})
    {
        more.insert(more.begin(), {"diff", path(a), path(b)});
        return run(more);
    }

    Json diffDocument(const std::string& a, const std::string& b, const Words& more = {})
    {
        Words words = {"--json"};
        words.insert(words.end(), more.begin(), more.end());
        return checkedDocument(diff(a, b, words).out);
    }
};

// Those of one field, by function.
Json differencesIn(const Json& document, const std::string& function)
{
    Json found = Json::array();
    for (const Json& each : document["differences"])
        if (each["function"] == function)
            found.push_back(each);
    return found;
}

TEST_F(DiffTest, TheSameGatewayDoesNotDifferFromItself)
{
    start();
    save("before");
    save("after");
    const Ran ran = diff("before", "after");
    EXPECT_EQ(ran.exit, 0) << ran.out;
    EXPECT_THAT(ran.out, HasSubstr("different: 0\n"));
    const Json document = diffDocument("before", "after");
    EXPECT_EQ(document["differences"], Json::array());
    EXPECT_GT(document["compared"], 300);
}

TEST_F(DiffTest, WhatHasChangedIsShownFieldByField)
{
    start();
    save("before");
    ASSERT_EQ(run({"channel", "radio0", "44"}).exit, 0);
    save("after");
    EXPECT_EQ(diff("before", "after").exit, 1);
    const Json document = diffDocument("before", "after");
    EXPECT_EQ(document["different"], document["differences"].size());
    EXPECT_EQ(document["a"], path("before"));
    const Json channel = differencesIn(document, "tarn_qcsapi_wifi_get_channel");
    ASSERT_EQ(channel.size(), 2u) << "of each of the radio's interfaces";
    EXPECT_EQ(channel[0], (Json{{"subject", "wifi0"},
                                {"field", "channel"},
                                {"a", 36},
                                {"a_name", nullptr},
                                {"b", 44},
                                {"b_name", nullptr},
                                {"function", "tarn_qcsapi_wifi_get_channel"}}));
    for (const Json& each : document["differences"])
        EXPECT_THAT(each["subject"].get<std::string>(),
                    testing::AnyOf("radio 1 (radio0)", "wifi0", "wifi1", HasSubstr(", entry "), HasSubstr(", station ")))
            << each;
}

TEST_F(DiffTest, ComparesTwoRunningGateways)
{
    for (const char* const each : {"one", "two"})
    {
        std::filesystem::create_directory(path(each));
        start({"--directory", path(each)});
    }
    EXPECT_EQ(diff("one", "two").exit, 0);
    ASSERT_EQ(run({"--directory", path("two"), "power", "1", "50"}).exit, 0);
    const Ran ran = diff("one", "two");
    EXPECT_EQ(ran.exit, 1);
    EXPECT_THAT(ran.out, testing::ContainsRegex("radio 1 \\(radio0\\)  data.transmitPower +100 % +50 % +TarnGetRadio\n"));
}

TEST_F(DiffTest, ComparesARunningGatewayWithAReportOfItFromBefore)
{
    std::filesystem::create_directory(path("gateway"));
    start({"--directory", path("gateway"), "--speed", "0"}); // the station is not to come back in the meantime
    EXPECT_EQ(run({"--directory", path("gateway"), "report", "--seconds", "0", "--json", path("before")}).exit, 0);
    EXPECT_EQ(diff("before", "gateway").exit, 0);
    ASSERT_EQ(run({"--directory", path("gateway"), "kick", "02:00:00:00:01:04"}).exit, 0);
    const Json document = diffDocument("before", "gateway");
    const Json associated = differencesIn(document, "TarnGetAccessPointAssociated");
    ASSERT_EQ(associated.size(), 1u);
    EXPECT_EQ(associated[0]["subject"], "wifi1, station 02:00:00:00:01:04");
    EXPECT_EQ(associated[0]["field"], nullptr);
    EXPECT_EQ(associated[0]["a"], "answered");
    EXPECT_EQ(associated[0]["b"], nullptr);
}

TEST_F(DiffTest, WhatIsMeasuredIsComparedOnlyOnRequest)
{
    start();
    run({"report", "--seconds", "0.3", "--json", path("before")});
    save("after");
    const Ran ran = diff("before", "after");
    EXPECT_EQ(ran.exit, 0) << ran.out;
    EXPECT_THAT(ran.err, HasSubstr("measured, so not compared without --all: "));
    const Json document = diffDocument("before", "after", {"--all"});
    EXPECT_FALSE(differencesIn(document, "TarnGetSsidIntfStats").empty());
}

TEST_F(DiffTest, SecretsAreComparedAndNotShown)
{
    for (const char* const each : {"one", "two"})
    {
        std::filesystem::create_directory(path(each));
        start({"--directory", path(each)});
    }
    ASSERT_EQ(
        run({"--directory", path("two"), "call", "TarnSetAccessPointSecurityCfg", "radioId=1", "apId=1", "cfg.beaconType=wpa2",
             "cfg.authenticationMode=psk", "cfg.encryptionModes=aes", "cfg.passphrase=staple battery"})
            .exit,
        0);
    for (const char* const each : {"one", "two"})
    {
        Program program({"--directory", path(each), "report", "--seconds", "0", "--secrets", "--json", path(each) + ".json"});
        EXPECT_EQ(program.exitCode(), 0); // in a process of its own, since a thread keeps its connections
    }
    for (const auto& [a, b] : {std::pair("one", "two"), {"one.json", "two.json"}, {"one.json", "two"}})
        for (const char* const format : {"table", "csv", "json"})
        {
            const Ran ran = diff(a, b, {"--format", format});
            EXPECT_EQ(ran.exit, 1);
            EXPECT_THAT(ran.out, HasSubstr("data.passphrase"));
            for (const char* const secret : {"correct horse", "staple battery"})
                EXPECT_THAT(ran.out + ran.err, Not(HasSubstr(secret)));
        }
}

TEST_F(DiffTest, SecretsThatOneSideLeavesOutAreSaidToBeNotCompared)
{
    start();
    save("without");
    run({"report", "--seconds", "0", "--secrets", "--json", path("with")});
    const Ran ran = diff("without", "with");
    EXPECT_EQ(ran.exit, 0) << ran.out;
    EXPECT_THAT(ran.err, HasSubstr("hidden, so not compared: "));
}

TEST_F(DiffTest, AServiceThatIsOnOneSideOnlyIsOneDifference)
{
    start();
    save("both");
    Json without = Json::parse(read("both"));
    for (Json& service : without["services"])
        if (service["service"] == "QTN_MIRROR")
            service["answered"] = false;
    Json answers = Json::array();
    for (const Json& answer : without["answers"])
        if (answer["function"].get<std::string>().rfind("tarn_qtn_mirror", 0) != 0)
            answers.push_back(answer);
    without["answers"] = answers;
    write("without", without.dump());
    const Json document = diffDocument("both", "without");
    ASSERT_EQ(document["differences"].size(), 1u) << document;
    EXPECT_EQ(document["differences"][0]["subject"], "service QTN_MIRROR");
    EXPECT_EQ(document["differences"][0]["b"], "does not answer");
}

TEST_F(DiffTest, EntriesAreComparedByTheirAddressesNotTheirPlaces)
{
    start();
    for (const char* const address : {"02:00:00:00:09:01", "02:00:00:00:09:02"})
        ASSERT_EQ(run({"filter", "add", "wifi0", address}).exit, 0);
    save("before");
    ASSERT_EQ(run({"filter", "remove", "wifi0", "02:00:00:00:09:01"}).exit, 0);
    save("after");
    const Json entries = differencesIn(diffDocument("before", "after"), "TarnGetAccessPointMacFilterAt");
    ASSERT_EQ(entries.size(), 1u) << entries;
    EXPECT_EQ(entries[0]["subject"], "wifi0, entry 02:00:00:00:09:01");
}

TEST_F(DiffTest, CsvHasARowADifference)
{
    start();
    save("before");
    ASSERT_EQ(run({"mirror", "on"}).exit, 0);
    save("after");
    EXPECT_EQ(diff("before", "after", {"--format", "csv"}).out,
              "subject,field,a,a_name,b,b_name,function\n"
              "gateway,status,0,off,1,on,tarn_qtn_mirror_get_mirror_status\n");
}

TEST_F(DiffTest, WhatIsNoReportIsRefusedWithItsPlace)
{
    start();
    save("good");
    const Json good = Json::parse(read("good"));
    const auto with = [&good](const Json::json_pointer& place, const Json& value)
    {
        Json document = good;
        document[place] = value;
        return document.dump();
    };
    const auto without = [&good](const char* key)
    {
        Json document = good;
        document.erase(key);
        return document.dump();
    };
    const std::vector<std::pair<std::string, std::string>> kBad = {
        {"", "bad"},
        {"no document", "bad"},
        {"[]", "bad"},
        {run({"--json", "radios"}).out, "/kind: \"radios\""},
        {with("/schema"_json_pointer, "tarnctl/2"), "/schema: \"tarnctl/2\""},
        {without("time"), "/time"},
        {without("services"), "/services"},
        {without("answers"), "/answers"},
        {with("/services/0/answered"_json_pointer, 1), "/services/0/answered"},
        {with("/answers/3/subject"_json_pointer, 1), "/answers/3/subject"},
        {with("/answers/3/fields"_json_pointer, Json::array()), "/answers/3/fields"},
        {with("/answers/0/fields/level"_json_pointer, Json::object()), "/answers/0/fields/level"},
        {with("/answers/0/fields/level/hidden"_json_pointer, "yes"), "/answers/0/fields/level/hidden"},
        {with("/answers/0/fields/level/unit"_json_pointer, 1), "/answers/0/fields/level/unit"},
        {with("/refused/0/message"_json_pointer, nullptr), "/refused/0/message"},
    };
    for (const auto& [text, place] : kBad)
    {
        write("bad", text);
        const Ran ran = diff("good", "bad");
        EXPECT_EQ(ran.exit, 2) << place;
        EXPECT_EQ(ran.out, "");
        EXPECT_THAT(ran.err, HasSubstr(place));
        EXPECT_THAT(ran.err, testing::AnyOf(HasSubstr("expected"), HasSubstr("not JSON")));
    }
    EXPECT_THAT(diff("good", "missing").err,
                HasSubstr("is not there; expected a report's file, or the directory of a gateway's sockets"));
}

TEST_F(DiffTest, AGatewayOnWhichNothingRunsCannotBeCompared)
{
    std::filesystem::create_directory(path("empty"));
    start();
    save("report");
    const Ran ran = diff("report", "empty");
    EXPECT_EQ(ran.exit, 4);
    EXPECT_EQ(ran.out, "");
    EXPECT_THAT(ran.err, HasSubstr("no service TARN is running in " + path("empty")));
}

} // namespace

} // namespace tarnctl_test
