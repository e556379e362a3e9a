// Records, words and statuses by name: against a simulated gateway with its own layout, with a second gateway's, and without
// one.
#include "support.h"
#include "support/second_gateway.h"

#include <cstdlib>
#include <fstream>
#include <memory>

#include <gmock/gmock.h>

namespace tarnctl_test
{

namespace
{

using testing::HasSubstr;
using testing::Not;

constexpr char kOwnTitle[] = "layout: tarn-gateway 1 (the simulated gateway of this kit)\n";

class FieldsTest : public TarnctlTest
{
protected:
    void start(const Words& arguments = {})
    {
        gateway_ = std::make_unique<Program>(arguments, TARN_GATEWAY_PROGRAM);
        ASSERT_EQ(gateway_->nextLine(), "ready");
    }

    void startSecond()
    {
        std::ofstream(path("attic.json")) << tarn_test::secondGatewayText();
        start({"--layout", path("attic.json")});
    }

private:
    std::unique_ptr<Program> gateway_;
};

TEST_F(FieldsTest, OfARecordAreShownWithUnitsAndNames)
{
    start();
    const Ran ran = run({"call", "TarnGetRadio", "radioId=1"});
    EXPECT_EQ(ran.exit, 0);
    EXPECT_THAT(ran.out, HasSubstr("  channel             36\n"));
    EXPECT_THAT(ran.out, HasSubstr("  bandwidth           80 MHz\n"));
    EXPECT_THAT(ran.out, HasSubstr("  enabled             on (1)\n"));
    EXPECT_THAT(ran.out, HasSubstr("  possibleChannels    36, 40, 44, 48"));
    EXPECT_THAT(ran.out, HasSubstr(kOwnTitle));
}

TEST_F(FieldsTest, StandBesideTheHexadecimalOfADocument)
{
    start();
    const Json document = runJson({"call", "TarnGetRadioStats", "radioId=1"}).document;
    const Json& stats = document["outputs"]["stats"];
    EXPECT_EQ(stats["hex"].get<std::string>().size(), 2 * 96u);
    EXPECT_EQ(stats["fields"]["noise"], (Json{{"value", -96}, {"unit", "dBm"}}));
    EXPECT_EQ(document["layout"]["name"], "tarn-gateway");
    EXPECT_EQ(document["status_name"], nullptr);
}

TEST_F(FieldsTest, OfWordsAreTheirNamesAndUnits)
{
    start();
    EXPECT_EQ(run({"call", "TarnGetRadioNeighboringStatus", "radioId=1"}).out,
              std::string("status: 0 (0x00000000), none\nreply status: 0\n") + kOwnTitle);
    const Json word = runJson({"call", "TarnGetRadioChipTemperature", "radioId=1"}).document["outputs"]["temperature"];
    EXPECT_EQ(word["unit"], "degrees Celsius");
}

TEST_F(FieldsTest, ChangeARecordAndSelectThemselves)
{
    start();
    EXPECT_EQ(run({"call", "TarnSetRadioCfg", "radioId=1", "cfg.channel=44", "cfg.country=us"}).exit, 0);
    const Json fields = runJson({"call", "TarnGetRadio", "radioId=1"}).document["outputs"]["data"]["fields"];
    EXPECT_EQ(fields["channel"]["value"], 44);
    EXPECT_EQ(fields["country"]["value"], "us");
    EXPECT_EQ(fields["bandwidth"]["value"], 80) << "it was not selected, and is not changed";
}

TEST_F(FieldsTest, AreSentAsAWholeWhereNothingSelectsThem)
{
    start();
    const Ran ran = run({"call", "TarnSetAccessPointCfg", "radioId=1", "apId=1", "cfg.enabled=on"});
    EXPECT_EQ(ran.exit, 7); // a beacon interval of 0
    EXPECT_THAT(ran.err, HasSubstr("note: cfg is taken as a whole; fields that are not given are sent as zero\n"));
    EXPECT_THAT(ran.err, HasSubstr("with status 17 (INVALID_VALUE: invalid value, by the layout tarn-gateway 1)\n"));
    EXPECT_THAT(ran.out, HasSubstr("reply status: 17, INVALID_VALUE: invalid value\n"));
}

TEST_F(FieldsTest, AreSetOverBytesThatAreGiven)
{
    start();
    const Json dump = runJson({"call", "TarnSetRadioExCfg", "radioId=1", "param=1", "cfg=" + std::string(120, 'f'),
                               "cfg.stbc=off", "--dry-run"})
                          .document;
    const Json& cfg = dump["fields"].at(2);
    EXPECT_EQ(cfg["name"], "cfg");
    EXPECT_EQ(cfg["fields"]["stbc"], (Json{{"value", 0}, {"name", "off"}}));
    EXPECT_EQ(cfg["fields"]["ldpc"]["value"], 0xFFFFFFFFu);
    EXPECT_EQ(dump["layout"]["version"], "1");
}

TEST_F(FieldsTest, AreShownInTheDumpOfADryRun)
{
    start();
    const Ran ran = run({"call", "TarnSetRadioCfg", "radioId=1", "cfg.channel=44", "--dry-run"});
    EXPECT_THAT(ran.out, HasSubstr("cfg.channel             44\n"));
    EXPECT_THAT(ran.out, HasSubstr("param                   2\n"));
    EXPECT_THAT(ran.out, HasSubstr("cfg                     in no field\n"));
    EXPECT_THAT(ran.out, HasSubstr(kOwnTitle));
}

TEST_F(FieldsTest, ThatAreWrongAreRefused)
{
    start();
    const auto errorOf = [](const std::string& field) { return run({"call", "TarnSetRadioCfg", "radioId=1", field}).err; };
    EXPECT_THAT(errorOf("cfg.chanel=44"),
                HasSubstr("tarnctl: cfg: TarnRadioCfg has no field \"chanel\"; it has enabled, channel"));
    EXPECT_THAT(errorOf("cfg.chanel=44"), HasSubstr("Did you mean channel?"));
    EXPECT_THAT(errorOf("cfg.channel=x"), HasSubstr("cfg.channel: expected a number from 0 to 4294967295; got \"x\""));
    EXPECT_THAT(errorOf("radioId.x=1"), HasSubstr("radioId.x: radioId has no fields to set; expected a number"));
    EXPECT_THAT(errorOf("data.x=1"), HasSubstr("TarnSetRadioCfg has no argument \"data\""));
    const Ran name = run({"call", "TarnTriggerAccessPointWpsWindow", "radioId=1", "apId=1", "value1=buton", "value2=0"});
    EXPECT_THAT(name.err, HasSubstr("value1: expected a number from 0 to 4294967295, or one of none, button, pin"));
    EXPECT_THAT(name.err, HasSubstr("Did you mean button?"));
}

TEST_F(FieldsTest, NeedALayout)
{
    start();
    const Ran none = run({"--layout", "", "call", "TarnSetRadioCfg", "radioId=1", "cfg.channel=44"});
    EXPECT_EQ(none.exit, 2);
    EXPECT_THAT(none.err, HasSubstr("cfg.channel: there is no layout that says where this field is; expected a layout by"));
    const Ran hex = run({"--layout", "", "call", "TarnGetRadio", "radioId=1"});
    EXPECT_THAT(hex.out, HasSubstr("data: 9552 bytes (TarnRadioData)\n  0 "));
    EXPECT_THAT(hex.out, Not(HasSubstr("layout:")));
    const Json document = runJson({"--layout", "", "call", "TarnGetRadio", "radioId=1"}).document;
    EXPECT_FALSE(document["outputs"]["data"].contains("fields"));
    EXPECT_EQ(document["layout"], nullptr);
}

TEST_F(FieldsTest, AreReadByTheFileThatIsNamed)
{
    start();
    std::ofstream(path("shed.json")) << R"({ "layout": 1, "name": "shed", "version": "7", "owner": "nobody",
        "records": { "TarnRadioData": { "size": 9552, "fields": [
          { "name": "firstByte", "offset": 0, "size": 1, "type": "number" } ] } } })";
    const Ran named = run({"--layout", path("shed.json"), "call", "TarnGetRadio", "radioId=1"});
    EXPECT_THAT(named.out, HasSubstr("firstByte"));
    EXPECT_THAT(named.out, HasSubstr("and bytes that the layout does not name:\n"));
    EXPECT_THAT(named.out, HasSubstr("layout: shed 7 (nobody)\n"));

    setenv("TARN_LAYOUT", path("shed.json").c_str(), 1);
    EXPECT_THAT(run({"call", "TarnGetRadio", "radioId=1"}).out, HasSubstr("layout: shed 7 (nobody)\n"));
    setenv("TARN_LAYOUT", path("nothing.json").c_str(), 1);
    const Ran broken = run({"call", "TarnSetRadioQuantennaQhopEnable", "radioId=1", "enable=1"});
    unsetenv("TARN_LAYOUT");
    EXPECT_EQ(broken.exit, 2);
    EXPECT_THAT(broken.err, HasSubstr("nothing.json: cannot be read: No such file or directory; expected a layout file"));
    EXPECT_EQ(runJson({"call", "TarnGetRadioQuantennaQhopState", "radioId=1"}).document["outputs"]["enable"]["value"], 0)
        << "nothing was sent";
}

TEST_F(FieldsTest, OfEventsAreShown)
{
    start();
    Program program({"events", "--count", "2"});
    EXPECT_THAT(program.nextErrorLine(), HasSubstr("; layout: tarn-gateway 1 (the simulated gateway of this kit)"));
    EXPECT_EQ(run({"call", "TarnSetRadioCfg", "radioId=1", "cfg.channel=44"}).exit, 0);
    EXPECT_THAT(program.nextLine(), HasSubstr(" radioId=1 channel=44"));
    EXPECT_EQ(run({"call", "TarnKickOutAccessPointAssociated", "radioId=1", "apId=1", "macAddress=02:00:00:00:01:01"}).exit, 0);
    EXPECT_THAT(program.nextLine(), HasSubstr(" radioId=1 apId=1 macAddress=02:00:00:00:01:01 associated=gone (0)"));
    EXPECT_EQ(program.exitCode(), 0);
}

// Nothing of the first gateway's numbers: the same questions have the same answers by name, and others in bytes.
TEST_F(FieldsTest, OfASecondGatewayAreItsOwn)
{
    startSecond();
    const Json before = runJson({"call", "TarnGetRadio", "radioId=1"}).document;
    EXPECT_EQ(before["layout"], (Json{{"name", "attic"}, {"version", "2b"}, {"owner", "nobody"}}));
    EXPECT_EQ(before["outputs"]["data"]["fields"]["channel"]["value"], 36);
    EXPECT_EQ(before["outputs"]["data"]["fields"]["enabled"], (Json{{"value", 41}, {"name", "on"}}));

    const Json dump =
        runJson({"call", "TarnSetRadioCfg", "radioId=1", "cfg.channel=44", "cfg.enabled=on", "--dry-run"}).document;
    EXPECT_EQ(dump["fields"][1]["meaning"], std::to_string((1u << 28) | (1u << 29)));
    EXPECT_EQ(run({"call", "TarnSetRadioCfg", "radioId=1", "cfg.channel=44", "cfg.enabled=on"}).exit, 0);
    EXPECT_EQ(runJson({"call", "TarnGetRadio", "radioId=1"}).document["outputs"]["data"]["fields"]["channel"]["value"], 44);

    const Json refused = runJson({"call", "TarnGetRadio", "radioId=9"}).document;
    EXPECT_EQ(refused["status"], 516);
    EXPECT_EQ(refused["status_name"], "NO_SUCH_OBJECT");
    const Json module = runJson({"call", "tarn_qcsapi_wifi_get_channel", "intf_name=nobody"}).document;
    EXPECT_EQ(module["status"], -701);
    EXPECT_EQ(module["status_text"], "no such object");

    EXPECT_EQ(run({"call", "TarnSetAccessPointMacFilterMode", "radioId=1", "apId=1", "mode=deny"}).exit, 0);
    EXPECT_THAT(run({"call", "TarnGetAccessPointMacFilterMode", "radioId=1", "apId=1"}).out,
                HasSubstr("mode: 42 (0x0000002A), deny\n"));

    const Json first = runJson({"--layout", TARN_GATEWAY_LAYOUT, "call", "TarnGetRadio", "radioId=1"}).document;
    EXPECT_NE(first["outputs"]["data"]["fields"]["channel"]["value"], 44) << "by the first one's layout it is wrong";
}

// --- The verb ----------------------------------------------------------------------------------------------------------------

using LayoutVerbTest = FieldsTest;

TEST_F(LayoutVerbTest, ShowsWhatIsDescribed)
{
    start();
    EXPECT_THAT(run({"layout", "show"}).out, HasSubstr("9552   29      TarnRadioData\n"));
    const Ran record = run({"layout", "show", "TarnNeighborBss"});
    EXPECT_THAT(record.out, HasSubstr("TarnNeighborBss, 88 bytes\n"));
    EXPECT_THAT(record.out, HasSubstr("  60      4      rssi       signed       dBm; received signal strength\n"));
    EXPECT_EQ(runJson({"layout", "show"}).document["file"]["name"], "tarn-gateway");
    EXPECT_THAT(run({"layout", "show", "TarnNeighbourBss"}).err, HasSubstr("Did you mean TarnNeighborBss"));
}

TEST_F(LayoutVerbTest, ChecksAFile)
{
    EXPECT_EQ(run({"layout", "check", TARN_GATEWAY_LAYOUT}).out,
              TARN_GATEWAY_LAYOUT ": sound: tarn-gateway 1 (the simulated gateway of this kit)\n");
    std::ofstream(path("broken.json")) << R"({ "layout": 1, "name": "x", "version": "1" })";
    const RanJson broken = runJson({"layout", "check", path("broken.json")});
    EXPECT_EQ(broken.exit, 1);
    EXPECT_EQ(broken.document["message"], path("broken.json") + ": /owner: missing; expected a text of 1 to 256 characters");
}

TEST_F(LayoutVerbTest, SaysWhatItExpects)
{
    EXPECT_THAT(run({"layout", "check"}).err, HasSubstr("expected the name of a layout file"));
    EXPECT_THAT(run({"layout", "shwo"}).err,
                HasSubstr("expected one of show, check, header; got \"shwo\"\nDid you mean show?"));
    EXPECT_THAT(run({"layout", "header", "x"}).err, HasSubstr("expected no name, and the file by --layout"));
    EXPECT_THAT(run({"--layout", "", "layout", "header"}).err, HasSubstr("there is no layout; expected a layout by"));
}

TEST_F(LayoutVerbTest, WritesAHeader)
{
    const Ran ran = run({"--layout", TARN_GATEWAY_LAYOUT, "layout", "header"});
    EXPECT_EQ(ran.exit, 0);
    EXPECT_THAT(ran.out, HasSubstr("static inline uint32_t tarn_radio_data_channel(const TarnRadioData* record)\n"));
    EXPECT_EQ(runJson({"--layout", TARN_GATEWAY_LAYOUT, "layout", "header"}).document["header"], ran.out);
}

} // namespace

} // namespace tarnctl_test
