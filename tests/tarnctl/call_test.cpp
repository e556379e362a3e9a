// Calls that reach a service, calls that do not, and what is said of each.
#include "support.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>

namespace tarnctl_test
{

namespace
{

using tarn::contract::Argument;
using tarn::contract::Check;
using tarn::contract::Command;
using tarn::contract::Direction;
using tarn::contract::Encoding;
using tarn::contract::Row;
using tarn::contract::Type;
using tarn::contract::When;

class CallTest : public TarnctlTest
{
};

// A reply without a NUL: letters, a different one in each place of a word.
unsigned char letterAt(std::size_t offset)
{
    return static_cast<unsigned char>('A' + offset % 26);
}

std::uint32_t answerWithLetters(const KorIilRequest&, Bytes& message)
{
    for (std::size_t i = 0; i < message.size(); ++i)
        message[i] = letterAt(i);
    putWord(message, message.size() - 4, 0);
    return KOR_IIL_OK;
}

Bytes letters(std::size_t offset, std::size_t size)
{
    Bytes bytes;
    for (std::size_t i = 0; i < size; ++i)
        bytes.push_back(letterAt(offset + i));
    return bytes;
}

constexpr std::size_t kUsualSize = 1024;

void expectOutput(const Json& output, const Argument& argument)
{
    SCOPED_TRACE(argument.name + " " + output.dump().substr(0, 200));
    if (argument.encoding == Encoding::kNothing)
    {
        EXPECT_EQ(output.at("written"), false);
        return;
    }
    EXPECT_EQ(output.at("written"), true);
    const std::size_t size = argument.sizeArgument.empty() ? argument.size : kUsualSize;
    switch (argument.encoding)
    {
    case Encoding::kByte:
        EXPECT_EQ(output.at("value"), letterAt(argument.offset));
        return;
    case Encoding::kWord:
        EXPECT_EQ(output.at("value"), wordAt(letters(argument.offset, 4), 0));
        return;
    case Encoding::kWords:
        for (std::size_t i = 0; i < size / 4; ++i)
            EXPECT_EQ(output.at("values").at(i), wordAt(letters(argument.offset, size), 4 * i));
        return;
    case Encoding::kText:
        EXPECT_EQ(output.at("hex"), hexText(letters(argument.offset, size - 1)));
        return;
    default:
        EXPECT_EQ(output.at("hex"), hexText(letters(argument.offset, size)));
    }
}

TEST_F(CallTest, EveryFunctionHandsOverWhatTheServiceAnswers)
{
    const Service device("TARN", &answerWithLetters, 5);
    const Service proxy("QTN_RPC_PROXY", &answerWithLetters);
    const Service mirror("QTN_MIRROR", &answerWithLetters);
    for (const Row& row : tarn::contract::rows())
    {
        SCOPED_TRACE(row.command->function);
        Words words = {"call", row.command->function};
        for (const std::string& assignment : validArguments(*row.command))
            words.push_back(assignment);
        const RanJson ran = runJson(words);
        EXPECT_EQ(ran.exit, 0) << ran.err;
        EXPECT_EQ(ran.document.at("outcome"), "done");
        EXPECT_EQ(ran.document.at("result"), 0);
        EXPECT_EQ(ran.document.at("status"), 0);
        EXPECT_EQ(ran.document.at("ipc_status").at("name"), "OK");
        EXPECT_TRUE(ran.document.at("traces").empty());
        std::size_t outputs = 0;
        for (const Argument& argument : row.command->arguments)
        {
            if (argument.direction != Direction::kOut)
                continue;
            ++outputs;
            ASSERT_TRUE(ran.document.at("outputs").contains(argument.name));
            expectOutput(ran.document.at("outputs").at(argument.name), argument);
        }
        EXPECT_EQ(ran.document.at("outputs").size(), outputs);
        EXPECT_EQ(run(words).exit, 0);
    }
}

TEST_F(CallTest, EveryCheckOfEveryFunctionCanBeProvoked)
{
    std::size_t provoked = 0;
    for (const Row& row : tarn::contract::rows())
    {
        for (const Check& check : row.command->checks)
        {
            SCOPED_TRACE(row.command->function + " " + check.argument);
            Words words = {"call", row.command->function, check.argument + (check.when == When::kZero ? "=0" : "=null")};
            for (const std::string& assignment : validArguments(*row.command))
                if (assignment.rfind(check.argument + "=", 0) != 0)
                    words.push_back(assignment);
            const RanJson ran = runJson(words);
            EXPECT_EQ(ran.exit, 3);
            EXPECT_EQ(ran.document.at("outcome"), "rejected");
            EXPECT_EQ(ran.document.at("result"), row.contract->result.rejected);
            EXPECT_TRUE(ran.document.at("ipc_status").is_null());
            EXPECT_TRUE(ran.document.at("status").is_null());
            EXPECT_TRUE(ran.document.at("outputs").empty());
            ASSERT_EQ(ran.document.at("traces").size(), 1u);
            EXPECT_EQ(ran.document.at("traces")[0].at("text"), check.message);
            EXPECT_EQ(ran.document.at("traces")[0].at("tag"), row.contract->traceTag);
            EXPECT_NE(ran.err.find(row.command->function + " refused an argument: " + check.message), std::string::npos)
                << ran.err;
            ++provoked;
        }
    }
    EXPECT_GT(provoked, 200u);
}

TEST_F(CallTest, AnEmptyPathIsRefusedToo)
{
    const RanJson ran = runJson({"call", "TarnDownloadQuantennaWirelessConf", "path="});
    EXPECT_EQ(ran.exit, 3) << ran.err;
    EXPECT_EQ(ran.document.at("traces")[0].at("text"), "path is invalid");
}

TEST_F(CallTest, CallerIdsThatAreRefused)
{
    const auto trace = [](Words words)
    {
        const RanJson ran = runJson(std::move(words));
        EXPECT_EQ(ran.exit, 3);
        return ran.document.at("traces").at(0).at("text").get<std::string>();
    };
    const std::string tooLong(32, 'c');
    EXPECT_EQ(trace({"call", "TarnGetLogLevel", "--caller", tooLong}), "invalid id is " + tooLong);
    EXPECT_EQ(trace({"call", "TarnGetLogLevel", "--caller", ""}), "invalid id is ");
    EXPECT_EQ(trace({"call", "TarnGetLogLevel", "--caller="}), "invalid id is ");
    EXPECT_EQ(trace({"call", "--caller=", "TarnGetLogLevel"}), "invalid id is ");
    EXPECT_EQ(trace({"call", "TarnGetLogLevel", "--null-caller"}), "handle is NULL");
    EXPECT_EQ(trace({"call", "tarn_qcsapi_init", "--caller", tooLong}), "handle is invalid");
    EXPECT_EQ(trace({"call", "tarn_qcsapi_init", "--null-caller"}), "handle is NULL");
    EXPECT_EQ(trace({"call", "tarnSubscribeEvent", "evt=1", "--caller", tooLong}), "id is invalid");
    EXPECT_EQ(trace({"call", "tarnSubscribeEvent", "evt=1", "--null-caller"}), "handle is NULL");
}

TEST_F(CallTest, TheCallerIdIsPassedOn)
{
    const Service service("TARN", statusAnswer(0));
    run({"call", "TarnGetLogLevel"});
    run({"call", "TarnGetLogLevel", "--caller", std::string(31, 'c')});
    ASSERT_EQ(service.requests().size(), 2u);
    EXPECT_EQ(service.requests()[0].callerId, "tarnctl");
    EXPECT_EQ(service.requests()[1].callerId, std::string(31, 'c'));
}

// --- The same number from three sides ---------------------------------------------------------------------------------------

TEST_F(CallTest, AServicesThreeIsNoRejection)
{
    const Service service("TARN", statusAnswer(3));
    const RanJson answered = runJson({"call", "TarnGetLogLevel"});
    EXPECT_EQ(answered.exit, 7);
    EXPECT_EQ(answered.document.at("outcome"), "service-status");
    EXPECT_EQ(answered.document.at("result"), 3);
    EXPECT_EQ(answered.document.at("status"), 3);
    EXPECT_TRUE(answered.document.at("outputs").contains("level")) << "outputs are handed over whatever the status";

    const RanJson rejected = runJson({"call", "TarnGetLogLevel", "level=null"});
    EXPECT_EQ(rejected.exit, 3);
    EXPECT_EQ(rejected.document.at("result"), 3);
    EXPECT_TRUE(rejected.document.at("status").is_null());
}

TEST_F(CallTest, AServicesOneAndTwoAreNoIpcFailures)
{
    for (const std::uint32_t status : {1u, 2u})
    {
        const Service service("TARN", statusAnswer(status));
        const Ran ran = run({"call", "TarnGetLogLevel"});
        EXPECT_EQ(ran.exit, 7);
        EXPECT_EQ(ran.out, "level: 0 (0x00000000)\nreply status: " + std::to_string(status) + "\n");
        EXPECT_EQ(ran.err, "tarnctl: service TARN answered TarnGetLogLevel with status " + std::to_string(status) + "\n");
    }
}

TEST_F(CallTest, AProxysMinusOneIsNoLocalFailure)
{
    const Service service("QTN_RPC_PROXY", statusAnswer(0xFFFFFFFFu));
    const RanJson answered = runJson({"call", "tarn_qcsapi_init"});
    EXPECT_EQ(answered.exit, 7);
    EXPECT_EQ(answered.document.at("status"), -1);

    const RanJson rejected = runJson({"call", "tarn_qcsapi_init", "--caller", ""});
    EXPECT_EQ(rejected.exit, 3);
    EXPECT_EQ(rejected.document.at("result"), -1);
}

TEST_F(CallTest, NoService)
{
    for (const char* function : {"TarnGetLogLevel", "tarn_qcsapi_init", "tarn_qtn_mirror_get_mirror_status"})
    {
        const RanJson ran = runJson({"call", function});
        EXPECT_EQ(ran.exit, 4);
        EXPECT_EQ(ran.document.at("outcome"), "no-service");
        EXPECT_EQ(ran.document.at("ipc_status").at("name"), "UNKNOWN_DST_ID");
        EXPECT_TRUE(ran.document.at("outputs").empty());
    }
    const Ran ran = run({"call", "TarnGetLogLevel"});
    EXPECT_EQ(ran.out, "");
    EXPECT_EQ(ran.err, "tarnctl: no service TARN is running in " + directory + ": UNKNOWN_DST_ID (IPC status 9; result 1)\n");
}

TEST_F(CallTest, TimeOut)
{
    const Service service("TARN", ipcAnswer(KOR_IIL_TIMEOUT));
    const RanJson ran = runJson({"call", "TarnGetLogLevel"});
    EXPECT_EQ(ran.exit, 5);
    EXPECT_EQ(ran.document.at("outcome"), "timed-out");
    EXPECT_EQ(ran.document.at("result"), 2);
    EXPECT_EQ(ran.err, "tarnctl: service TARN did not reply within 3 s: TIMEOUT (IPC status 7; result 2)\n");
}

TEST_F(CallTest, OtherIpcFailures)
{
    for (const std::uint32_t status : {1u, 12u, 13u, 16u, 21u})
    {
        const Service service("QTN_RPC_PROXY", ipcAnswer(status));
        const RanJson ran = runJson({"call", "tarn_qcsapi_init"});
        EXPECT_EQ(ran.exit, 6);
        EXPECT_EQ(ran.document.at("outcome"), "ipc-failed");
        EXPECT_EQ(ran.document.at("ipc_status").at("number"), status);
        EXPECT_EQ(ran.document.at("result"), -1);
        EXPECT_EQ(ran.document.at("traces").size(), 1u);
    }
}

// --- Outputs ----------------------------------------------------------------------------------------------------------------

TEST_F(CallTest, OutputsInText)
{
    const Service device("TARN", &answerWithLetters, 5);
    const Service proxy("QTN_RPC_PROXY", &answerWithLetters);
    const std::uint32_t word = wordAt(letters(4, 4), 0);
    std::ostringstream number;
    number << "level: " << word << " (0x" << std::hex << std::uppercase << word << ")\nreply status: 0\n";
    EXPECT_EQ(run({"call", "TarnGetLogLevel"}).out, number.str());
    EXPECT_EQ(run({"call", "TarnGetRadioCurrentTransmitPowerLevel", "radioId=1"}).out, "power: 67 (0x43)\nreply status: 0\n");
    EXPECT_EQ(run({"call", "tarn_qcsapi_firmware_get_version", "size=5"}).out, "firmware_version: \"IJKL\"\nreply status: 0\n");
    EXPECT_EQ(run({"call", "tarn_qcsapi_firmware_get_version", "size=1"}).out, "firmware_version: \"\"\nreply status: 0\n");
    EXPECT_EQ(run({"call", "tarn_qcsapi_firmware_get_version", "size=0"}).out,
              "firmware_version: untouched, its size is 0\nreply status: 0\n");

    const Ran block = run({"call", "TarnGetSsidOPXShgwBlockAddrAt", "radioId=1", "ssidId=1", "index=0"});
    EXPECT_NE(block.out.find("never written by the library\n"), std::string::npos) << block.out << block.err;
    const Ran record = run({"call", "TarnGetRadio", "radioId=1"});
    EXPECT_NE(record.out.find("data: 9552 bytes (TarnRadioData)\n  0     43 44 45 46"), std::string::npos)
        << record.out.substr(0, 200);
}

TEST_F(CallTest, EveryLineOfTheTextHasATitleOfItsOwn)
{
    const Service device("TARN", &answerWithLetters, 5);
    const Service proxy("QTN_RPC_PROXY", &answerWithLetters);
    const Service mirror("QTN_MIRROR", &answerWithLetters);
    for (const Row& row : tarn::contract::rows())
    {
        SCOPED_TRACE(row.command->function);
        Words words = {"call", row.command->function};
        for (const std::string& argument : validArguments(*row.command))
            words.push_back(argument);
        std::istringstream lines(run(words).out);
        std::set<std::string> titles;
        for (std::string line; std::getline(lines, line);)
        {
            const bool isLineOfADump = line.front() == ' ';
            EXPECT_TRUE(isLineOfADump || titles.insert(line.substr(0, line.find(':'))).second) << line;
        }
        EXPECT_EQ(titles.count("reply status"), 1u);
    }
}

TEST_F(CallTest, NegativeNumbersZerosAndMacAddressesInText)
{
    const Service device("TARN",
                         [](const KorIilRequest& request, Bytes& message)
                         {
                             const Row& row = tarn::contract::find("TarnGetRadioChipTemperature");
                             if (request.command == row.command->command)
                                 putWord(message, row.command->argument("temperature")->offset, 0xFFFFFFFBu);
                             return std::uint32_t{KOR_IIL_OK};
                         });
    EXPECT_EQ(run({"call", "TarnGetRadioChipTemperature", "radioId=1"}).out, "temperature: -5 (0xFFFFFFFB)\nreply status: 0\n");
    EXPECT_EQ(run({"call", "TarnGetRadio", "radioId=1"}).out,
              "data: 9552 bytes (TarnRadioData)\n  0  00 x 9552\nreply status: 0\n");
    const Ran address = run({"call", "TarnGetAccessPointMacFilterAt", "radioId=1", "apId=1", "index=0"});
    EXPECT_NE(address.out.find(": 00:00:00:00:00:00\n"), std::string::npos) << address.out << address.err;
}

TEST_F(CallTest, NumbersThatMayBeNegativeAre)
{
    const auto answer = [](const KorIilRequest&, Bytes& message)
    {
        std::fill(message.begin(), message.end(), 0xFF);
        putWord(message, message.size() - 4, 0);
        return std::uint32_t{KOR_IIL_OK};
    };
    const Service device("TARN", answer);
    const Service proxy("QTN_RPC_PROXY", answer);
    const Service mirror("QTN_MIRROR", answer);
    std::set<std::string> negative;
    for (const Row& row : tarn::contract::rows())
    {
        Words words = {"call", row.command->function};
        for (const std::string& argument : validArguments(*row.command))
            words.push_back(argument);
        const RanJson ran = runJson(words);
        for (const auto& [name, output] : ran.document.at("outputs").items())
        {
            const Json& value = output.value("value", Json());
            if (value == -1)
                negative.insert(row.command->function + " " + name);
            else
                EXPECT_TRUE(value.is_null() || value == 0xFF || value == 0xFFFFFFFF) << row.command->function << " " << output;
        }
    }
    const std::set<std::string> expected = {
        "TarnGetRadioChainRssiAt rssi",
        "TarnGetRadioChipTemperature temperature",
        "tarn_qcsapi_calcmd_get_tx_power pwr0",
        "tarn_qcsapi_calcmd_get_tx_power pwr1",
        "tarn_qcsapi_calcmd_get_tx_power pwr2",
        "tarn_qcsapi_calcmd_get_tx_power pwr3",
        "tarn_qcsapi_get_temperature_info temsens_bbic",
        "tarn_qcsapi_get_temperature_info tempsens_ex",
        "tarn_qcsapi_get_temperature_info tempsens_in",
        "tarn_qcsapi_wifi_get_node_stats out0",
        "tarn_qcsapi_wifi_get_rssi_by_chain rssi0",
        "tarn_qcsapi_wifi_get_rssi_by_chain rssi1",
        "tarn_qcsapi_wifi_get_rssi_by_chain rssi2",
        "tarn_qcsapi_wifi_get_rssi_by_chain rssi3",
        "tarn_qcsapi_wifi_get_rssi_in_dbm_per_association rssi",
    };
    EXPECT_EQ(negative, expected);
    EXPECT_EQ(run({"call", "TarnGetLogLevel"}).out, "level: 4294967295 (0xFFFFFFFF, -1)\nreply status: 0\n");
}

TEST_F(CallTest, TextsAreEscaped)
{
    const Service proxy("QTN_RPC_PROXY",
                        [](const KorIilRequest&, Bytes& message)
                        {
                            const std::string text = "a\"\\\n\xFF";
                            std::copy(text.begin(), text.end(), message.begin() + 1152);
                            return std::uint32_t{KOR_IIL_OK};
                        });
    EXPECT_EQ(run({"call", "tarn_qcsapi_firmware_get_version"}).out,
              "firmware_version: \"a\\\"\\\\\\x0a\\xff\"\nreply status: 0\n");
    const RanJson ran = runJson({"call", "tarn_qcsapi_firmware_get_version"});
    EXPECT_EQ(ran.document.at("outputs").at("firmware_version").at("hex"), "61225c0aff");
    EXPECT_EQ(ran.document.at("outputs").at("firmware_version").at("text"), "a\"\\\n\xEF\xBF\xBD");
}

TEST_F(CallTest, RatesAreReadIntoABufferOfTheSizeAskedFor)
{
    const Service proxy("QTN_RPC_PROXY", &answerWithLetters);
    for (const std::size_t length : {0u, 1u, 8224u, 70000u, 1048576u})
    {
        const RanJson ran =
            runJson({"call", "tarn_qcsapi_wifi_get_rates", "ifname=wifi0", "rate_type=1", "length=" + std::to_string(length)});
        EXPECT_EQ(ran.exit, 0);
        const Json& rates = ran.document.at("outputs").at("rates");
        EXPECT_EQ(rates.at("written"), length != 0);
        if (length == 0)
            continue;
        const std::string bytes = rates.at("hex");
        EXPECT_EQ(bytes.size(), 2 * length);
        const std::size_t known = std::min<std::size_t>(length, 8220);
        EXPECT_EQ(bytes.substr(0, 2 * known), hexText(letters(1152, known)));
        EXPECT_EQ(bytes.find_first_not_of('0', 2 * 8220), std::string::npos)
            << "the status, then what is behind the message's end";
    }
}

TEST_F(CallTest, OptionalOutputsMayBeLeftOut)
{
    const Service proxy("QTN_RPC_PROXY", &answerWithLetters);
    const RanJson ran = runJson({"call", "tarn_qcsapi_wifi_get_rssi_by_chain", "ifname=wifi0", "rssi1=null", "rssi3=null"});
    EXPECT_EQ(ran.exit, 0) << ran.err;
    EXPECT_EQ(ran.document.at("outputs")["rssi0"].at("value"), wordAt(letters(1152, 4), 0));
    EXPECT_EQ(ran.document.at("outputs")["rssi1"].at("written"), false);
    EXPECT_EQ(ran.document.at("outputs")["rssi2"].at("value"), wordAt(letters(1160, 4), 0));
    EXPECT_EQ(ran.document.at("outputs")["rssi3"].at("written"), false);
}

TEST_F(CallTest, AnOutputCanBeSavedAndGivenBack)
{
    const Service device("TARN", &answerWithLetters, 5);
    EXPECT_EQ(run({"call", "TarnGetRadioStats", "radioId=1", "--save", "stats=" + path("stats")}).exit, 0);
    std::ifstream file(path("stats"), std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    EXPECT_EQ(content.str().size(), 96u);
    EXPECT_EQ(content.str().substr(0, 3),
              std::string({static_cast<char>(letterAt(28)), static_cast<char>(letterAt(29)), static_cast<char>(letterAt(30))}));

    const RanJson unwritable = runJson({"call", "TarnGetRadioStats", "radioId=1", "--save", "stats=" + path("none/stats")});
    EXPECT_EQ(unwritable.exit, 1);
    EXPECT_EQ(unwritable.document.at("message"),
              "the call was made, but file " + path("none/stats") + " cannot be written: No such file or directory");
}

// --- Functions without a command --------------------------------------------------------------------------------------------

TEST_F(CallTest, Pins)
{
    const Ran right = run({"call", "tarnValidatePinCode", "pin=12345670"});
    EXPECT_EQ(right.exit, 0);
    EXPECT_EQ(right.out, "result: 1, the check digit is right\n");
    const Ran wrong = run({"call", "tarnValidatePinCode", "pin=12345678"});
    EXPECT_EQ(wrong.exit, 1);
    EXPECT_EQ(wrong.out, "result: 0, the check digit is wrong\n");
    EXPECT_EQ(runJson({"call", "tarnValidatePinCode", "pin=12345678"}).document.at("outcome"), "no");
}

TEST_F(CallTest, StatusNames)
{
    EXPECT_EQ(run({"call", "tarnIpcStatusName", "status=7"}).out, "result: \"TIMEOUT\"\n");
    EXPECT_EQ(runJson({"call", "tarnIpcStatusName", "status=21"}).document.at("result"), "BUSY");
    EXPECT_EQ(runJson({"call", "tarnIpcStatusName", "status=22"}).document.at("result"), "Unknown");
}

TEST_F(CallTest, RateTables)
{
    const std::string table = path("rates");
    EXPECT_EQ(run({"call", "tarnAddRateEntries", "table=zero", "rate=54", "--save", "table=" + table}).exit, 0);
    const RanJson added = runJson({"call", "tarnAddRateEntries", "table=@" + table, "rate=5.5", "--save", "table=" + table});
    EXPECT_EQ(added.exit, 0);
    EXPECT_EQ(added.document.at("outputs").at("table").at("rates"), Json({"54", "5.5"}));
    EXPECT_EQ(added.document.at("outputs").at("table").at("hex").get<std::string>().size(), 2u * 4336);

    const Ran deleted = run({"call", "tarnDelRatesEntries", "table=@" + table, "rate=54.0"});
    EXPECT_EQ(deleted.exit, 0);
    EXPECT_NE(deleted.out.find("rates: 1: \"5.5\"\nresult: 1, the rate is deleted\n"), std::string::npos) << deleted.out;
    EXPECT_EQ(run({"call", "tarnDelRatesEntries", "table=@" + table, "rate=11"}).exit, 1);
    EXPECT_EQ(run({"call", "tarnAddRateEntries", "table=ff" + std::string(2 * 4335, '0'), "rate=11"}).exit, 1);

    for (const Words& refused :
         {Words{"table=null", "rate=1"}, Words{"table=zero", "rate=null"}, Words{"table=zero", "rate=-1"}})
    {
        Words words = {"call", "tarnAddRateEntries"};
        words.insert(words.end(), refused.begin(), refused.end());
        const Ran ran = run(words);
        EXPECT_EQ(ran.exit, 3);
        EXPECT_EQ(ran.err,
                  "tarnctl: tarnAddRateEntries refused an argument: expected a table and a rate above zero (result 3)\n");
    }
}

TEST_F(CallTest, EventFunctions)
{
    EXPECT_EQ(run({"call", "tarnSubscribeEvent", "evt=1"}).exit, 4);
    const Service device("TARN", statusAnswer(0), 5);
    EXPECT_EQ(run({"call", "tarnSubscribeEvent", "evt=1"}).exit, 0);
    EXPECT_EQ(run({"call", "tarnSubscribeEvent", "evt=1"}).exit, 6) << "this process has subscribed already";
    EXPECT_EQ(run({"call", "tarnCancelEvent", "evt=1"}).exit, 0);
    const RanJson again = runJson({"call", "tarnCancelEvent", "evt=1"});
    EXPECT_EQ(again.exit, 6);
    EXPECT_EQ(again.document.at("ipc_status").at("name"), "BAD_EVT");

    for (const char* evt : {"evt=0", "evt=6"})
    {
        const RanJson refused = runJson({"call", "tarnSubscribeEvent", evt});
        EXPECT_EQ(refused.exit, 3);
        EXPECT_EQ(refused.document.at("traces")[0].at("text"), "evt is invalid");
    }
    const RanJson null = runJson({"call", "tarnSubscribeEvent", "evt=2", "handler=null"});
    EXPECT_EQ(null.exit, 6);
    EXPECT_EQ(null.document.at("ipc_status").at("name"), "BAD_PARAM");
}

} // namespace

} // namespace tarnctl_test
