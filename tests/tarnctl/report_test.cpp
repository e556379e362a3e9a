// Reports: what is asked and told, what is left out, and what becomes of one where a gateway does not answer in full.
#include "report_support.h"
#include "support/second_gateway.h"
#include "tarnctl/command_line.h"

#include <algorithm>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <sys/stat.h>

namespace tarnctl_test
{

namespace
{

using testing::HasSubstr;
using testing::Not;

const Json kRadio1 = {{"radio", 1}, {"name", "radio0"}};
const Json kWifi0 = {{"radio", 1}, {"interface", 1}, {"name", "wifi0"}};

// --- What is asked ----------------------------------------------------------------------------------------------------------

std::set<std::string> functionsIn(const Json& list)
{
    std::set<std::string> names;
    for (const Json& each : list)
        names.insert(each["function"]);
    return names;
}

bool hasOutput(const tarn::contract::Command& command)
{
    return std::any_of(command.arguments.begin(), command.arguments.end(),
                       [](const auto& argument) { return argument.direction == tarn::contract::Direction::kOut; });
}

// "TarnGetRadioChainNumber" for "TarnGetRadioChainRssiAt": what a list's own function for the number told, of any object.
bool isToldToBeEmpty(const Json& report, const std::string& function)
{
    const std::string list = function.substr(0, function.size() - 2);
    for (const char* const ending : {"Num", "Number"})
        for (const Json& answer : report["answers"])
            if (answer["function"] == list + ending && answer["fields"]["number"]["value"] == 0)
                return true;
    return false;
}

TEST_F(ReportTest, AsksEverythingThatCanBeReadOrSaysWhatItWouldHaveToBeTold)
{
    start();
    const Json document = report();
    const std::set<std::string> answers = functionsIn(document["answers"]);
    const std::set<std::string> refused = functionsIn(document["refused"]);
    const std::set<std::string> unasked = functionsIn(document["unasked"]);
    std::size_t functions = 0;
    for (const tarn::contract::Contract& contract : tarn::contract::all())
        for (const tarn::contract::Command& command : contract.commands)
        {
            if (!hasOutput(command))
            {
                EXPECT_EQ(answers.count(command.function) + unasked.count(command.function), 0u) << command.function;
                continue;
            }
            ++functions;
            const bool isTold =
                answers.count(command.function) + refused.count(command.function) + unasked.count(command.function) != 0;
            EXPECT_TRUE(isTold || isToldToBeEmpty(document, command.function)) << command.function;
        }
    EXPECT_EQ(functions, 117u);
    EXPECT_GT(answers.size(), 80u);
}

TEST_F(ReportTest, AsksOfEachRadioInterfaceStationAndEntry)
{
    start();
    run({"scan", "--wait"});
    const Json document = report();
    EXPECT_EQ(answerOf(document, "TarnGetRadio", kRadio1)["data.channel"], (Json{{"value", 36}}));
    EXPECT_EQ(answerOf(document, "TarnGetRadio", kRadio1)["data.bandwidth"], (Json{{"value", 80}, {"unit", "MHz"}}));
    EXPECT_EQ(answerOf(document, "TarnGetRadio", kRadio1)["data.enabled"], (Json{{"value", 1}, {"name", "on"}}));
    EXPECT_EQ(answerOf(document, "TarnGetSsidIntf", kWifi0)["data.ssid"]["value"], "home");
    EXPECT_EQ(answerOf(document, "tarn_qcsapi_wifi_get_channel", kWifi0)["channel"]["value"], 36);
    EXPECT_EQ(answerOf(document, "tarn_qcsapi_firmware_get_version")["firmware_version"]["value"], "5.3.1-sim");
    Json station = kWifi0;
    station["station"] = "02:00:00:00:01:01";
    EXPECT_EQ(answerOf(document, "TarnGetAccessPointAssociated", station)["associated.rssi"],
              (Json{{"value", -48}, {"unit", "dBm"}, {"volatile", true}}));
    Json neighbour = kRadio1;
    neighbour["index"] = 3;
    EXPECT_EQ(answerOf(document, "TarnGetRadioNeighboringResultAt", neighbour).count("bss.bssid"), 1u);
}

TEST_F(ReportTest, SetsNothing)
{
    start();
    const Json before = report();
    const Json after = report();
    EXPECT_EQ(answerOf(after, "TarnGetRadioNeighboringStatus", kRadio1),
              answerOf(before, "TarnGetRadioNeighboringStatus", kRadio1));
    EXPECT_EQ(answerOf(after, "TarnGetRadio", kRadio1), answerOf(before, "TarnGetRadio", kRadio1));
}

TEST_F(ReportTest, WatchesCountersOverItsTime)
{
    start();
    const Json document = report({"--seconds", "0.5"});
    bool isFound = false;
    for (const Json& series : document["counters"])
        if (series["function"] == "TarnGetSsidIntfStats" && series["subject"] == kWifi0)
        {
            isFound = true;
            const Json& bytes = series["fields"]["stats.txBytes"];
            EXPECT_EQ(bytes["unit"], "bytes");
            EXPECT_EQ(bytes["values"].size(), series["seconds"].size());
            EXPECT_GT(bytes["values"].back(), bytes["values"].front());
            EXPECT_GE(series["seconds"].back(), 0.5);
        }
    EXPECT_TRUE(isFound);
    EXPECT_EQ(report()["counters"], Json::array());
}

TEST_F(ReportTest, NamesTheRadiosInterfacesAndFieldsOfAnotherMakeOfGateway)
{
    write("attic.json", tarn_test::secondGatewayText());
    start({"--layout", path("attic.json")});
    const Json document = report();
    EXPECT_NE(document["layout"]["name"], "tarn-gateway");
    EXPECT_EQ(answerOf(document, "TarnGetRadio", kRadio1)["data.channel"]["value"], 36);
}

// --- Secrets ----------------------------------------------------------------------------------------------------------------

TEST_F(ReportTest, LeavesSecretsOutUnlessTheyAreAskedFor)
{
    start();
    ASSERT_EQ(run({"call", "TarnSetAccessPointSecurityCfg", "radioId=1", "apId=1", "cfg.beaconType=wpa2",
                   "cfg.authenticationMode=psk", "cfg.encryptionModes=aes", "cfg.passphrase=correct horse",
                   "cfg.radiusSecret=between us"})
                  .exit,
              0);
    run({"report", "--seconds", "0", "--html", path("page"), "--json", path("document")});
    run({"report", "--seconds", "0", "--html", path("full page"), "--json", path("full document"), "--secrets"});
    for (const char* const secret : {"correct horse", "between us", "12345670"})
    {
        EXPECT_THAT(read("page"), Not(HasSubstr(secret)));
        EXPECT_THAT(read("document"), Not(HasSubstr(secret)));
        EXPECT_THAT(read("full page"), HasSubstr(secret));
        EXPECT_THAT(read("full document"), HasSubstr(secret));
    }
    EXPECT_THAT(read("full page"), HasSubstr("INCLUDED"));
    const Json fields = answerOf(checkedDocument(read("document")), "TarnGetAccessPointSecurity", kWifi0);
    EXPECT_EQ(fields["data.passphrase"], (Json{{"value", nullptr}, {"hidden", true}}));
    EXPECT_EQ(fields["data.beaconType"]["value"], "wpa2");
}

TEST_F(ReportTest, FilesWithSecretsAreForTheirOwnerAlone)
{
    start();
    run({"report", "--seconds", "0", "--html", path("page"), "--json", path("document"), "--secrets"});
    for (const char* const file : {"page", "document"})
    {
        struct stat status = {};
        ASSERT_EQ(stat(path(file).c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777u, 0600u);
    }
}

// --- Less than everything ---------------------------------------------------------------------------------------------------

TEST_F(ReportTest, WithoutALayoutTellsWhatNeedsNone)
{
    start();
    const Ran ran = run({"--layout", "", "report", "--seconds", "0", "--json", path("document"), "--html", path("page")});
    EXPECT_EQ(ran.exit, 0);
    EXPECT_THAT(ran.err, HasSubstr("without a layout, what is inside of records is left out"));
    EXPECT_THAT(read("page"), HasSubstr("There was no layout"));
    const Json document = checkedDocument(read("document"));
    EXPECT_EQ(document["layout"], nullptr);
    EXPECT_EQ(answerOf(document, "TarnGetRadioNum")["number"]["value"], 2);
    EXPECT_EQ(answerOf(document, "TarnGetRadio", {{"radio", 1}, {"name", ""}})["data"],
              (Json{{"value", nullptr}, {"bytes", 9552}, {"hidden", true}}));
    EXPECT_EQ(answerOf(document, "TarnGetAccessPointAssociatedNum",
                       {{"radio", 1}, {"interface", 2}, {"name", "1.2"}})["number"]["value"],
              1);
    EXPECT_EQ(functionsIn(document["answers"]).count("tarn_qcsapi_wifi_get_channel"), 0u)
        << "no name of an interface is guessed";
}

TEST_F(ReportTest, IsWrittenOfAGatewayOnWhichNothingRuns)
{
    const Ran ran = run({"report", "--json", path("document"), "--html", path("page")});
    EXPECT_EQ(ran.exit, 4);
    EXPECT_THAT(ran.err, HasSubstr("no service TARN is running in " + directory));
    const Json document = checkedDocument(read("document"));
    EXPECT_EQ(document["answers"], Json::array());
    for (const Json& service : document["services"])
        EXPECT_EQ(service["answered"], false);
    EXPECT_THAT(read("page"), HasSubstr("TARN does not answer"));
}

TEST_F(ReportTest, OfAGatewayThatFailsInTheMiddleHasWhatItToldBefore)
{
    constexpr std::size_t kAnswers = 7;
    std::size_t asked = 0;
    const Service service("TARN",
                          [&asked](const KorIilRequest&, Bytes&) -> std::uint32_t
                          { return asked++ < kAnswers ? KOR_IIL_OK : KOR_IIL_BUSY; });
    const Ran ran = run({"report", "--seconds", "0", "--json", path("document")});
    EXPECT_EQ(ran.exit, 6);
    const Json document = checkedDocument(read("document"));
    EXPECT_GT(document["answers"].size(), 2u);
    EXPECT_EQ(document["services"][0]["answered"], true);
    EXPECT_THAT(document["services"][0]["message"].get<std::string>(), HasSubstr("TARN"));
    const auto failures = std::count_if(document["refused"].begin(), document["refused"].end(),
                                        [](const Json& each) { return each["outcome"] == "ipc-failed"; });
    EXPECT_EQ(failures, 3) << "after so many a service is given up";
    EXPECT_LT(asked, kAnswers + 5);
}

TEST_F(ReportTest, OfAServiceThatClaimsWhatCannotBeSaysSo)
{
    const Service service("TARN",
                          [](const KorIilRequest&, Bytes& message) -> std::uint32_t
                          {
                              std::fill(message.begin(), message.end(), std::uint8_t{0xFF});
                              putWord(message, message.size() - 4, 0);
                              return KOR_IIL_OK;
                          });
    const Ran ran = run({"report", "--seconds", "0", "--json", path("document"), "--html", path("page")});
    EXPECT_EQ(ran.exit, 4) << "the other services are missing";
    EXPECT_THAT(ran.err, HasSubstr("the service claims 4294967295 radios; expected at most 64"));
    EXPECT_EQ(checkedDocument(read("document"))["notes"].size(), 1u);
    EXPECT_THAT(read("page"), HasSubstr("the service claims 4294967295 radios"));
}

TEST_F(ReportTest, OfAServiceThatAnswersNonsenseIsAReportOfNonsense)
{
    const Service service("TARN",
                          [](const KorIilRequest&, Bytes& message) -> std::uint32_t
                          {
                              for (std::size_t offset = 0; offset + 8 <= message.size(); offset += 4)
                                  putWord(message, offset, 2);
                              putWord(message, message.size() - 4, 0);
                              return KOR_IIL_OK;
                          });
    const Ran ran = run(
        {"--layout", TARN_GATEWAY_LAYOUT, "report", "--seconds", "0.1", "--json", path("document"), "--html", path("page")});
    EXPECT_EQ(ran.exit, 4) << "the other services are missing";
    const Json document = checkedDocument(read("document"));
    EXPECT_EQ(document["radios"].size(), 2u);
    EXPECT_EQ(document["radios"][1]["interfaces"].size(), 2u);
    EXPECT_EQ(answerOf(document, "TarnGetRadio", {{"radio", 1}, {"name", "\\x02"}})["data.channel"]["value"], 2);
    EXPECT_THAT(read("page"), HasSubstr("radio 1 (\\x02)"));
}

TEST_F(ReportTest, ListsWhatWasRefusedByTheStatusName)
{
    start();
    const Json document = report();
    ASSERT_FALSE(document["refused"].empty());
    EXPECT_EQ(document["refused"][0]["outcome"], "service-status");
    EXPECT_EQ(document["refused"][0]["status_name"], "NO_SUCH_OBJECT");
}

// --- Names that strangers choose --------------------------------------------------------------------------------------------

TEST_F(ReportTest, ANameThatIsNoUtf8IsToldByItsBytesToo)
{
    start();
    const std::string name = "caf\xe9\x01\"'&<b>";
    ASSERT_EQ(run({"call", "TarnSetSsidIntfCfg", "radioId=1", "ssidId=1", "cfg.ssid=" + name}).exit, 0);
    run({"report", "--seconds", "0", "--html", path("page"), "--json", path("document")});
    const Json ssid = answerOf(checkedDocument(read("document")), "TarnGetSsidIntf", kWifi0)["data.ssid"];
    EXPECT_EQ(ssid["hex"], hexText(Bytes(name.begin(), name.end())));
    EXPECT_EQ(ssid["value"], "caf\xef\xbf\xbd\x01\"'&<b>");
    EXPECT_THAT(read("page"), HasSubstr("caf\xef\xbf\xbd\\x01&quot;&#39;&amp;&lt;b&gt; (636166e901"));
    EXPECT_THAT(read("page"), Not(HasSubstr("<b>")));
}

// --- Files and options ------------------------------------------------------------------------------------------------------

TEST_F(ReportTest, AFileThatCannotBeWrittenIsSaidBeforeAnythingIsAsked)
{
    const Service service("TARN", statusAnswer(0));
    for (const char* const option : {"--html", "--json"})
    {
        const Ran ran = run({"report", option, path("missing/file")});
        EXPECT_EQ(ran.exit, 1);
        EXPECT_EQ(ran.out, "");
        EXPECT_EQ(ran.err, "tarnctl: file " + path("missing/file") + " cannot be written: No such file or directory\n");
    }
    EXPECT_TRUE(service.requests().empty());
}

TEST_F(ReportTest, TellsInOneLineAFileWhatItWrote)
{
    start();
    const Ran ran = run({"report", "--seconds", "0", "--html", path("page")});
    EXPECT_EQ(ran.exit, 0) << ran.err;
    EXPECT_THAT(ran.out, testing::MatchesRegex(path("page") + ": 2 radios, 3 interfaces, [0-9]+ answers, [0-9]+ refusals\n"));
}

TEST_F(ReportTest, RefusesWhatCannotBeCarriedOut)
{
    EXPECT_THAT(run({"report"}).err, HasSubstr("expected --html FILE, --json FILE, or --json for standard output"));
    EXPECT_THAT(run({"report", "--html", path("same"), "--json", path("same")}).err, HasSubstr("expected two files"));
    for (const Words& words :
         {Words{"report"}, Words{"report", "--json", "--seconds", "-1"}, Words{"report", "--json", "--seconds", "soon"},
          Words{"report", "--html"}, Words{"report", "--format", "csv", "--json"}})
        EXPECT_EQ(run(words).exit, 2) << ::testing::PrintToString(words);
}

TEST_F(ReportTest, ShowsOnATerminalHowFarItIs)
{
    start();
    std::ostringstream out;
    std::ostringstream err;
    tarn::ctl::Terminal terminal;
    terminal.showsRemarks = true;
    EXPECT_EQ(tarn::ctl::run({"report", "--seconds", "0.2", "--html", path("page")}, out, err, terminal), 0);
    EXPECT_THAT(err.str(), HasSubstr("asking the gateway  [####"));
    EXPECT_THAT(err.str(), HasSubstr("watching its counters  ["));
    EXPECT_THAT(err.str(), HasSubstr("\r\x1b[K")) << "nothing of it stays";
}

} // namespace

} // namespace tarnctl_test
