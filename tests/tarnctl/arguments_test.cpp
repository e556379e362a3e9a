// What is wrong with a command line, and how it is said.
#include "support.h"

#include <algorithm>
#include <fstream>

namespace tarnctl_test
{

namespace
{

using tarn::contract::Argument;
using tarn::contract::Direction;
using tarn::contract::Encoding;
using tarn::contract::Row;

class ArgumentsTest : public TarnctlTest
{
protected:
    std::string file(const std::string& name, std::size_t size) const
    {
        std::ofstream(path(name), std::ios::binary) << std::string(size, 'f');
        return "@" + path(name);
    }
};

// Exit code 2, and this on standard error. The JSON form says the same.
void expectUsageError(const Words& words, const std::string& message, const std::string& suggestion = "")
{
    SCOPED_TRACE(message);
    const Ran ran = run(words);
    EXPECT_EQ(ran.exit, 2);
    EXPECT_EQ(ran.out, "");
    EXPECT_EQ(ran.err, "tarnctl: " + message + "\n" + (suggestion.empty() ? "" : "Did you mean " + suggestion + "?\n"));

    const RanJson json = runJson(words);
    EXPECT_EQ(json.exit, 2);
    EXPECT_EQ(json.document.at("kind"), "error");
    EXPECT_EQ(json.document.at("exit"), 2);
    EXPECT_EQ(json.document.at("message"), message);
    EXPECT_EQ(json.document.at("suggestions").empty(), suggestion.empty());
}

constexpr char kNumberExpected[] =
    "level: expected a number from -2147483648 to 4294967295, in decimal or, behind 0x, hexadecimal digits; got ";

TEST_F(ArgumentsTest, Names)
{
    expectUsageError({"call", "TarnGetLogLevels"}, "there is no function \"TarnGetLogLevels\"; tarnctl list shows them all",
                     "TarnGetLogLevel or TarnSetLogLevel");
    expectUsageError({"describe", "tarnValidatePin"}, "there is no function \"tarnValidatePin\"; tarnctl list shows them all",
                     "tarnValidatePinCode");
    expectUsageError({"call", "qqqqqqqq"}, "there is no function \"qqqqqqqq\"; tarnctl list shows them all");
    expectUsageError({"call", "TarnGetRadio", "radoId=1"}, "TarnGetRadio has no argument \"radoId\"; it has radioId, data",
                     "radioId");
    expectUsageError({"call", "tarn_qcsapi_init", "x=1"}, "tarn_qcsapi_init has no argument \"x\"; it has none");
    expectUsageError({"call", "TarnGetRadio", "radioId=1", "radioId=2"}, "radioId: given twice; expected once");
    expectUsageError({"call", "TarnGetRadio", "radioId"}, "expected argument=value; got \"radioId\"");
    expectUsageError({"call", "TarnGetRadio", "=1"}, "expected argument=value; got \"=1\"");
    expectUsageError({"call", "TarnGetRadio", "{}"}, "expected argument=value; got \"{}\"");
}

TEST_F(ArgumentsTest, Missing)
{
    expectUsageError({"call", "TarnGetRadio"}, "radioId is missing; expected a number of 32 bits, decimal or 0x...");
    expectUsageError({"call", "tarn_qcsapi_set_custom_value", "custom_key=a"}, "custom_value is missing; expected a text");
    expectUsageError({"call", "tarn_qcsapi_set_params", "ifname=wifi0"},
                     "set_params is missing; expected 1040 bytes as hexadecimal digits, @file or zero");
    expectUsageError({"call", "TarnSetRadioExCfg", "radioId=1", "param=1"},
                     "cfg is missing; expected the 60 bytes of a TarnRadioExCfg as hexadecimal digits, @file or zero");
}

TEST_F(ArgumentsTest, EveryInputIsNeededUnlessOptional)
{
    std::size_t needed = 0;
    for (const Row& row : tarn::contract::rows())
    {
        const Words all = validArguments(*row.command);
        for (std::size_t left = 0; left < all.size(); ++left)
        {
            SCOPED_TRACE(row.command->function + " without " + all[left].substr(0, 40));
            Words words = {"call", row.command->function, "--dry-run"};
            for (std::size_t i = 0; i < all.size(); ++i)
                if (i != left)
                    words.push_back(all[i]);
            const bool isOptional = row.command->argument(all[left].substr(0, all[left].find('=')))->optional;
            EXPECT_EQ(run(words).exit, isOptional ? 0 : 2);
            needed += isOptional ? 0 : 1;
        }
    }
    EXPECT_GT(needed, 300u);
}

TEST_F(ArgumentsTest, Numbers)
{
    for (const char* wrong :
         {"", "-", "0x", "five", "5x", "0xG", "4294967296", "-2147483649", "1.5", " 5", "+5", "99999999999999999999"})
        expectUsageError({"call", "TarnSetLogLevel", std::string("level=") + wrong},
                         std::string(kNumberExpected) + "\"" + wrong + "\"");
}

TEST_F(ArgumentsTest, NumbersOfEightAndSixteenBits)
{
    std::size_t narrow = 0;
    for (const Row& row : tarn::contract::rows())
    {
        for (const Argument& argument : row.command->arguments)
        {
            const bool isByte = argument.type == tarn::contract::Type::kU8;
            if (argument.direction != Direction::kIn || !(isByte || argument.type == tarn::contract::Type::kU16))
                continue;
            SCOPED_TRACE(row.command->function + " " + argument.name);
            ++narrow;
            const auto with = [&](const std::string& value)
            {
                Words words = {"call", row.command->function, "--dry-run"};
                for (const std::string& assignment : validArguments(*row.command))
                    words.push_back(assignment.rfind(argument.name + "=", 0) == 0 ? argument.name + "=" + value : assignment);
                return words;
            };
            EXPECT_EQ(run(with(isByte ? "255" : "65535")).exit, 0);
            EXPECT_EQ(run(with(isByte ? "-128" : "-32768")).exit, 0);
            EXPECT_EQ(run(with(isByte ? "-129" : "-32769")).exit, 2);
            const Ran ran = run(with(isByte ? "256" : "65536"));
            EXPECT_EQ(ran.exit, 2);
            EXPECT_NE(ran.err.find(isByte ? "from -128 to 255" : "from -32768 to 65535"), std::string::npos) << ran.err;
        }
    }
    EXPECT_EQ(narrow, 9u);
}

TEST_F(ArgumentsTest, MacAddresses)
{
    const Words kick = {"call", "TarnKickOutAccessPointAssociated", "radioId=1", "apId=1", "--dry-run"};
    const Argument& mac = *std::find_if(tarn::contract::find(kick[1]).command->arguments.begin(),
                                        tarn::contract::find(kick[1]).command->arguments.end(),
                                        [](const Argument& argument) { return argument.size == 6; });
    const auto with = [&](const std::string& value)
    {
        Words words = kick;
        words.push_back(mac.name + "=" + value);
        return words;
    };
    for (const char* right : {"02:0a:0B:00:00:01", "02-0a-0B-00-00-01", "020a0B000001"})
        EXPECT_EQ(runJson(with(right)).document.at("message").get<std::string>().substr(2 * mac.offset, 12), "020a0b000001")
            << right;

    for (const char* wrong :
         {"02:0a:0b:00:00", "02:0a:0b:00:00:0", "02:0a-0b:00:00:01", "02:0a:0b:00:00:0g", "02:0a:0b:00:00:01:02", ":"})
        expectUsageError(with(wrong),
                         mac.name + ": expected a MAC address such as 02:00:00:00:00:01, or 12 hexadecimal digits; got \"" +
                             wrong + "\"");
    expectUsageError(with("020a0b0000"), mac.name + ": expected 6 bytes, as 12 hexadecimal digits, @file or zero; got 5 bytes");
}

TEST_F(ArgumentsTest, BytesAndRecords)
{
    const auto with = [](const std::string& value)
    { return Words{"call", "TarnSetRadioExCfg", "radioId=1", "param=1", "cfg=" + value, "--dry-run"}; };
    const std::string expected = "cfg: expected 60 bytes, as 120 hexadecimal digits, @file or zero; got ";
    expectUsageError(with("0102"), expected + "2 bytes");
    expectUsageError(with(""), expected + "0 bytes");
    expectUsageError(with(std::string(122, '0')), expected + "61 bytes");
    expectUsageError(with("012"), "cfg: expected hexadecimal digits, two for each byte; got 3 characters");
    expectUsageError(with("01xy"), "cfg: expected hexadecimal digits, two for each byte; got \"xy\" at character 3");
    expectUsageError(with(file("short", 59)), expected + "59 bytes");
    expectUsageError(with(file("long", 1000)), expected + "more");
    expectUsageError(with("@" + path("none")), "cfg: file " + path("none") + " cannot be read: No such file or directory");
    expectUsageError(with("@" + directory), "cfg: file " + directory + " cannot be read: Is a directory");

    EXPECT_EQ(run(with("zero")).exit, 0);
    const RanJson fromFile = runJson(with(file("right", 60)));
    EXPECT_EQ(fromFile.exit, 0);
    EXPECT_NE(fromFile.document.at("message").get<std::string>().find(hexText(Bytes(60, 'f'))), std::string::npos);
}

TEST_F(ArgumentsTest, TextsThatTheLibraryCopiesAsBlocks)
{
    const auto with = [](const std::string& name) {
        return Words{"call", "tarn_qcsapi_thermal_mitig_stop", "name=" + name, "--dry-run"};
    };
    EXPECT_EQ(run(with("")).exit, 0);
    EXPECT_EQ(runJson(with(std::string(65, 'n'))).document.at("message").get<std::string>().substr(0, 132),
              hexText(Bytes(65, 'n')) + "00");
    expectUsageError(with(std::string(66, 'n')), "name: expected a text of at most 65 bytes; got 66 bytes");
}

TEST_F(ArgumentsTest, OutputsAreNotGiven)
{
    expectUsageError({"call", "TarnGetLogLevel", "level=5"},
                     "level is an output; expected that it is left out, or null; got \"5\"");
    expectUsageError({"call", "tarn_qcsapi_firmware_get_version", "size=1048577"},
                     "size: expected a size of at most 1048576 bytes; got 1048577");
    EXPECT_EQ(run({"call", "tarn_qcsapi_firmware_get_version", "size=1048576", "--dry-run"}).exit, 0);
}

TEST_F(ArgumentsTest, NullIsForPointers)
{
    expectUsageError(
        {"call", "TarnSetLogLevel", "level=null"},
        "level: null is for pointers, and this is passed by value; expected a number of 32 bits, decimal or 0x...");
    expectUsageError({"call", "TarnSetRadioExCfg", "radioId=1", "param=1", "cfg=null"},
                     "cfg: null is for pointers, and this is passed by value; "
                     "expected the 60 bytes of a TarnRadioExCfg as hexadecimal digits, @file or zero");
}

TEST_F(ArgumentsTest, PointersThatTheLibraryUsesUncheckedCannotBeNull)
{
    std::size_t unguarded = 0;
    for (const Row& row : tarn::contract::rows())
    {
        for (const Argument& argument : row.command->arguments)
        {
            const bool isChecked = std::any_of(row.command->checks.begin(), row.command->checks.end(),
                                               [&](const auto& check) { return check.argument == argument.name; });
            if (!argument.isPointer() || argument.optional || isChecked)
                continue;
            SCOPED_TRACE(row.command->function + " " + argument.name);
            ++unguarded;
            Words words = {"call", row.command->function};
            for (const std::string& assignment : validArguments(*row.command))
                words.push_back(assignment.rfind(argument.name + "=", 0) == 0 ? argument.name + "=null" : assignment);
            const Ran ran = run(words);
            EXPECT_EQ(ran.exit, 2);
            EXPECT_NE(ran.err.find(argument.name + ": the library uses this pointer unchecked, so null cannot be passed"),
                      std::string::npos)
                << ran.err;
        }
    }
    EXPECT_EQ(unguarded, 9u);
}

TEST_F(ArgumentsTest, TheWordNullAsAText)
{
    const RanJson ran =
        runJson({"call", "tarn_qcsapi_set_custom_value", "--text", "custom_key=null", "custom_value=x", "--dry-run"});
    EXPECT_EQ(ran.exit, 0);
    EXPECT_EQ(ran.document.at("message").get<std::string>().substr(2 * 68, 10), "6e756c6c00");
    expectUsageError({"call", "TarnSetLogLevel", "--text", "level=5"},
                     "level: --text is for texts; expected a number of 32 bits, decimal or 0x...");
    expectUsageError({"call", "tarn_qcsapi_set_custom_value", "--text", "custom_key=a", "custom_key=b", "custom_value=x"},
                     "custom_key: given twice; expected once");
}

TEST_F(ArgumentsTest, TextsAreTakenAsTheyStand)
{
    for (const std::string text : {"", "=", "a=b", "@file", "zero", "[a,b]", "{}", "--json", "\xC3\xBC \"x\" \\"})
    {
        const RanJson ran =
            runJson({"call", "tarn_qcsapi_set_custom_value", "custom_key=" + text, "custom_value=x", "--dry-run"});
        EXPECT_EQ(ran.exit, 0) << text;
        EXPECT_EQ(ran.document.at("message").get<std::string>().substr(2 * 68, 2 * text.size() + 2),
                  hexText(Bytes(text.begin(), text.end())) + "00")
            << text;
    }
}

TEST_F(ArgumentsTest, LocalFunctions)
{
    expectUsageError({"call", "tarnAddRateEntries", "table=00", "rate=1"},
                     "table: expected 4336 bytes, as 8672 hexadecimal digits, @file or zero; got 1 bytes");
    expectUsageError({"call", "tarnAddRateEntries", "table=zero", "rate=12345678901234567"},
                     "rate: expected a text of at most 16 bytes; got 17 bytes");
    expectUsageError({"call", "tarnSubscribeEvent", "evt=1", "handler=x"},
                     "handler: expected null, or that it is left out; got \"x\"");
    expectUsageError({"call", "tarnValidatePinCode", "pin=1", "--dry-run"}, "--dry-run: tarnValidatePinCode sends no message");
    expectUsageError({"call", "tarnSubscribeEvent", "evt=1", "--dry-run"}, "--dry-run: tarnSubscribeEvent sends no message");
}

TEST_F(ArgumentsTest, Savings)
{
    expectUsageError({"call", "TarnGetRadio", "radioId=1", "--save", "dat=file"},
                     "--save: expected data=FILE; got \"dat=file\"", "data");
    expectUsageError({"call", "TarnGetRadio", "radioId=1", "--save", "radioId=file"},
                     "--save: expected data=FILE; got \"radioId=file\"");
    expectUsageError({"call", "TarnGetRadio", "radioId=1", "--save", "data="}, "--save: expected data=FILE; got \"data=\"",
                     "data");
    expectUsageError({"call", "TarnGetLogLevel", "--save", "level=file"},
                     "--save: expected nothing, TarnGetLogLevel has no output but numbers; got \"level=file\"");
    expectUsageError({"call", "TarnGetRadio", "radioId=1", "data=null", "--save", "data=file"},
                     "--save: data is left out of the call");
    expectUsageError({"call", "TarnGetRadio", "radioId=1", "--save", "data"}, "expected argument=value; got \"data\"");
}

const std::string kCommands =
    "status, radios, ssids, stations, scan, channel, bandwidth, power, security, filter, kick, wps, dfs, "
    "counters, boot, smart-wifi, temperature, versions, firmware, mirror, telnet, log-level, ipc, list, "
    "describe, call, events, layout, metrics, report, diff, publish, gateway, completion, help";

TEST_F(ArgumentsTest, CommandsAndOptions)
{
    const std::string unknown = "there is no command \"lst\"; expected one of " + kCommands;
    expectUsageError({"lst"}, unknown, "list");
    expectUsageError({"--directory", "call", "lst", "--more"}, unknown, "list");
    expectUsageError({"--directory=call", "lst"}, unknown, "list");
    expectUsageError({}, "a command is missing; tarnctl --help shows what is expected");
    EXPECT_NE(run({"--help"}).out.find("Usage: tarnctl [OPTIONS] COMMAND\n"), std::string::npos);

    for (const Words& wrong :
         {Words{}, Words{"--nothing"}, Words{"call"}, Words{"describe"}, Words{"call", "TarnGetRadio", "-x"},
          Words{"list", "--service"}, Words{"call", "TarnGetLogLevel", "--caller", "a", "--null-caller"},
          Words{"call", "TarnGetRadio", "radioId=1", "--save", "data=x", "--dry-run"}, Words{"events", "--count", "0"},
          Words{"events", "--count", "x"}, Words{"events", "--timeout", "-1"}, Words{"describe", "a", "b"}})
    {
        SCOPED_TRACE(::testing::PrintToString(wrong));
        const Ran ran = run(wrong);
        EXPECT_EQ(ran.exit, 2);
        EXPECT_EQ(ran.out, "");
        EXPECT_NE(ran.err.find("--help shows what is expected"), std::string::npos) << ran.err;
        EXPECT_EQ(runJson(wrong).document.at("exit"), 2);
    }
}

TEST_F(ArgumentsTest, OptionsThatDoNotExistAreNamed)
{
    const auto unknown = [](const std::string& option, const std::string& verb = "")
    { return "there is no option \"" + option + "\"; tarnctl " + verb + "--help shows what is expected"; };
    expectUsageError({"--bogus"}, unknown("--bogus"));
    expectUsageError({"--bogus", "list"}, unknown("--bogus", "list "));
    expectUsageError({"--bogus", "lst"}, unknown("--bogus"));
    expectUsageError({"--jsn", "list"}, unknown("--jsn", "list "), "--json");
    expectUsageError({"describe", "--bogus=x"}, unknown("--bogus", "describe "));
    expectUsageError({"describe", "TarnGetRadio", "--directoy", "x"}, unknown("--directoy", "describe "), "--directory");
    expectUsageError({"call", "TarnGetRadio", "--dryrun"}, unknown("--dryrun", "call "), "--dry-run");
    expectUsageError({"call", "TarnGetRadio", "-x"}, unknown("-x", "call "));
}

TEST_F(ArgumentsTest, CommandsThatDoNotExistAreNamed)
{
    const std::string expected = "; expected one of " + kCommands;
    expectUsageError({"evnts"}, "there is no command \"evnts\"" + expected, "events");
    expectUsageError({"raidos"}, "there is no command \"raidos\"" + expected, "radios");
    expectUsageError({"lst", "list"}, "there is no command \"lst\"" + expected, "list");
    expectUsageError({"-"}, "there is no command \"-\"" + expected);
}

TEST_F(ArgumentsTest, OtherCommands)
{
    expectUsageError({"list", "--service", "TARM"},
                     "--service: expected one of \"TARN\", \"QTN_RPC_PROXY\", \"QTN_MIRROR\"; got \"TARM\"", "TARN");
    const Ran group = run({"list", "--group", "Radioz"});
    EXPECT_EQ(group.exit, 2);
    EXPECT_NE(group.err.find("--group: expected one of \"Service settings\", \"Radios\""), std::string::npos) << group.err;
    expectUsageError({"mirror", "maybe"}, "expected on or off; got \"maybe\"");
    expectUsageError({"telnet", "on"},
                     "telnet: expected a state and --pid, the process on whose behalf it is switched, or neither");
    expectUsageError({"telnet", "--pid", "1"},
                     "telnet: expected a state and --pid, the process on whose behalf it is switched, or neither");
    expectUsageError({"log-level", "x"}, std::string(kNumberExpected) + "\"x\"");
    expectUsageError({"completion", "powershell"}, "completion: expected bash or zsh or fish; got \"powershell\"");
    expectUsageError({"publish", "1", "--data", "0"},
                     "--data: expected hexadecimal digits, two for each byte; got 1 characters");
    expectUsageError({"publish", "1", "--data", std::string(2050, '0')}, "--data: expected at most 1024 bytes; got 1025");
    const std::string events =
        "; expected one of 1 EVT_RADIO_STATUS_CHANGED, 2 EVT_RADIO_OPR_CHANNEL_CHANGED, "
        "3 EVT_RADIO_OPR_BANDWIDTH_CHANGED, 4 EVT_AP_ASSOCIATED_CHANGED, 5 EVT_AP_WPS_WIN_STATUS_CHANGED";
    expectUsageError({"publish", "6"}, "there is no event \"6\"" + events);
    expectUsageError({"events", "EVT_RADIO_STATUS_CHANGE"}, "there is no event \"EVT_RADIO_STATUS_CHANGE\"" + events,
                     "EVT_RADIO_STATUS_CHANGED");
    expectUsageError({"events", "1", "EVT_RADIO_STATUS_CHANGED"}, "event EVT_RADIO_STATUS_CHANGED: given twice; expected once");
}

} // namespace

} // namespace tarnctl_test
