// The messages of all functions, byte for byte, against what the contract says of them.
#include "base/byte_order.h"
#include "support.h"

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

namespace tarnctl_test
{

namespace
{

using tarn::contract::Argument;
using tarn::contract::Command;
using tarn::contract::Direction;
using tarn::contract::Encoding;
using tarn::contract::Row;
using tarn::contract::Type;

class DryRunTest : public TarnctlTest
{
};

void put(Bytes& message, std::size_t offset, const Bytes& bytes)
{
    ASSERT_LE(offset + bytes.size(), message.size());
    std::copy(bytes.begin(), bytes.end(), message.begin() + static_cast<std::ptrdiff_t>(offset));
}

void putInput(Bytes& message, const Argument& argument, const std::string& value)
{
    const std::uint32_t number = argument.isNumber() ? static_cast<std::uint32_t>(std::stoul(value)) : 0;
    switch (argument.encoding)
    {
    case Encoding::kId:
        return putWord(message, argument.offset, number - 1);
    case Encoding::kWord:
        return putWord(message, argument.offset, number);
    case Encoding::kInverted:
        return putWord(message, argument.offset, number == 0 ? 1 : 0);
    case Encoding::kByte:
        message.at(argument.offset) = static_cast<unsigned char>(number);
        return;
    case Encoding::kText:
        return put(
            message, argument.offset,
            Bytes(value.begin(), value.begin() + std::min<std::ptrdiff_t>(static_cast<std::ptrdiff_t>(value.size()),
                                                                          static_cast<std::ptrdiff_t>(argument.size) - 1)));
    case Encoding::kBlock:
    case Encoding::kRecord:
        return put(message, argument.offset, argument.type == Type::kText ? Bytes(value.begin(), value.end()) : fromHex(value));
    case Encoding::kSize:
    case Encoding::kNothing:
        return;
    case Encoding::kWords:
        FAIL() << argument.name << ": no input is made of words";
    }
}

// The message that the contract promises for these assignments.
Bytes promisedMessage(const Command& command, const Words& assignments)
{
    Bytes message(command.length);
    for (const std::string& assignment : assignments)
    {
        const std::size_t equals = assignment.find('=');
        const Argument* const argument = command.argument(assignment.substr(0, equals));
        putInput(message, *argument, assignment.substr(equals + 1));
    }
    return message;
}

Words dryRun(const Command& command, const Words& assignments)
{
    Words words = {"call", command.function, "--dry-run"};
    words.insert(words.end(), assignments.begin(), assignments.end());
    return words;
}

// What the table of a dry run says, put together again.
Bytes messageInText(const std::string& text, std::size_t length)
{
    Bytes message;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line) && line.rfind("offset", 0) != 0)
        continue;
    while (std::getline(lines, line))
    {
        EXPECT_EQ(std::stoul(line), message.size()) << line;
        std::string bytes = line.substr(line.find(' '));
        bytes = bytes.substr(bytes.find_first_not_of(' '));
        bytes = bytes.substr(0, bytes.find("  "));
        if (bytes.rfind("00 x ", 0) == 0)
        {
            message.resize(message.size() + std::stoul(bytes.substr(5)));
            continue;
        }
        bytes.erase(std::remove(bytes.begin(), bytes.end(), ' '), bytes.end());
        for (const unsigned char byte : fromHex(bytes))
            message.push_back(byte);
    }
    EXPECT_EQ(message.size(), length);
    return message;
}

TEST_F(DryRunTest, EveryFunctionSendsWhatTheContractPromises)
{
    for (const Row& row : tarn::contract::rows())
    {
        SCOPED_TRACE(row.command->function);
        const Words assignments = validArguments(*row.command);
        const RanJson ran = runJson(dryRun(*row.command, assignments));
        EXPECT_EQ(ran.exit, 0) << ran.err;
        ASSERT_EQ(ran.document.value("kind", ""), "dry-run");
        EXPECT_EQ(ran.document.at("service"), row.contract->service);
        EXPECT_EQ(ran.document.at("command"), row.command->command);
        EXPECT_EQ(ran.document.at("wait"), row.command->wait);
        EXPECT_EQ(ran.document.at("length"), row.command->length);
        EXPECT_EQ(ran.document.at("caller"), "tarnctl");
        EXPECT_EQ(ran.document.at("message"), hexText(promisedMessage(*row.command, assignments)));
    }
}

TEST_F(DryRunTest, EveryTableShowsTheWholeMessage)
{
    for (const Row& row : tarn::contract::rows())
    {
        SCOPED_TRACE(row.command->function);
        const Words assignments = validArguments(*row.command);
        const Ran ran = run(dryRun(*row.command, assignments));
        ASSERT_EQ(ran.exit, 0) << ran.err;
        EXPECT_EQ(hexText(messageInText(ran.out, row.command->length)), hexText(promisedMessage(*row.command, assignments)));
    }
}

TEST_F(DryRunTest, FieldsCoverEveryMessageWithoutGapOrOverlap)
{
    for (const Row& row : tarn::contract::rows())
    {
        SCOPED_TRACE(row.command->function);
        const RanJson ran = runJson(dryRun(*row.command, validArguments(*row.command)));
        std::size_t end = 0;
        std::map<std::string, std::size_t> offsets;
        for (const Json& field : ran.document.at("fields"))
        {
            EXPECT_EQ(field.at("offset"), end);
            end += field.at("size").get<std::size_t>();
            if (field.at("role") != "reserved")
                offsets[field.at("name")] = field.at("offset");
        }
        EXPECT_EQ(end, row.command->length);
        EXPECT_EQ(offsets["(reply status)"], row.command->statusOffset());
        for (const Argument& argument : row.command->arguments)
        {
            const bool isInMessage = argument.encoding != Encoding::kSize && argument.encoding != Encoding::kNothing;
            EXPECT_EQ(offsets.count(argument.name), isInMessage ? 1u : 0u);
            EXPECT_EQ(offsets[argument.name], argument.offset);
        }
    }
}

TEST_F(DryRunTest, LongTextsAreCutAndSaidToBe)
{
    std::size_t cut = 0;
    for (const Row& row : tarn::contract::rows())
    {
        for (const Argument& argument : row.command->arguments)
        {
            if (argument.direction != Direction::kIn || argument.encoding != Encoding::kText)
                continue;
            SCOPED_TRACE(row.command->function + " " + argument.name);
            Words assignments = validArguments(*row.command);
            for (std::string& assignment : assignments)
                if (assignment.rfind(argument.name + "=", 0) == 0)
                    assignment = argument.name + "=" + std::string(argument.size, 'x') + "yz";
            const RanJson ran = runJson(dryRun(*row.command, assignments));
            EXPECT_EQ(ran.document.at("message"), hexText(promisedMessage(*row.command, assignments)));
            ASSERT_EQ(ran.document.at("notes").size(), 1u);
            EXPECT_EQ(ran.document.at("notes")[0], argument.name + " is cut to " + std::to_string(argument.size - 1) +
                                                       " characters; it has " + std::to_string(argument.size + 2));
            EXPECT_NE(ran.err.find("is cut to"), std::string::npos);
            ++cut;
        }
    }
    EXPECT_EQ(cut, 114u);
}

TEST_F(DryRunTest, TextsOfTheFullLengthAreNotCut)
{
    const RanJson ran =
        runJson({"call", "tarn_qcsapi_radio_rfenable", "--dry-run", "ifname=" + std::string(64, 'x'), "value=1"});
    EXPECT_TRUE(ran.document.at("notes").empty());
    EXPECT_EQ(ran.document.at("message").get<std::string>().substr(2 * 63, 4), "7800");
}

TEST_F(DryRunTest, NumbersMayBeHexadecimalOrNegative)
{
    const auto firstWord = [](const std::string& value)
    {
        const RanJson ran = runJson({"call", "TarnSetLogLevel", "--dry-run", "level=" + value});
        return wordAt(fromHex(ran.document.at("message")), 0);
    };
    EXPECT_EQ(firstWord("0x1F"), 31u);
    EXPECT_EQ(firstWord("0XfFfFfFfF"), 0xFFFFFFFFu);
    EXPECT_EQ(firstWord("4294967295"), 0xFFFFFFFFu);
    EXPECT_EQ(firstWord("-1"), 0xFFFFFFFFu);
    EXPECT_EQ(firstWord("-2147483648"), 0x80000000u);
    EXPECT_EQ(firstWord("-0x10"), 0xFFFFFFF0u);
    EXPECT_EQ(firstWord("012"), 12u);
}

TEST_F(DryRunTest, AFlagIsSentTurnedRound)
{
    const auto sent = [](const std::string& value)
    {
        const RanJson ran = runJson({"call", "tarn_qcsapi_wifi_disable_wps", "--dry-run", "ifname=wifi0", "disable=" + value});
        const Argument& flag = *tarn::contract::find("tarn_qcsapi_wifi_disable_wps").command->argument("disable");
        return wordAt(fromHex(ran.document.at("message")), flag.offset);
    };
    EXPECT_EQ(sent("0"), 1u);
    EXPECT_EQ(sent("1"), 0u);
    EXPECT_EQ(sent("7"), 0u);
}

TEST_F(DryRunTest, AnOptionalTextLeftOutIsZero)
{
    for (const Words& more : {Words{}, Words{"param_name=null"}})
    {
        Words words = {"call", "tarn_qcsapi_set_params", "--dry-run", "ifname=wifi0", "set_params=zero"};
        words.insert(words.end(), more.begin(), more.end());
        const RanJson ran = runJson(words);
        EXPECT_EQ(ran.exit, 0);
        EXPECT_EQ(ran.document.at("message").get<std::string>().substr(2 * 68, 2 * 36), std::string(2 * 36, '0'));
    }
}

TEST_F(DryRunTest, NothingIsSent)
{
    Service service("TARN", statusAnswer(0));
    EXPECT_EQ(run({"call", "TarnSetLogLevel", "level=1", "--dry-run"}).exit, 0);
    EXPECT_TRUE(service.requests().empty());
    EXPECT_EQ(run({"call", "TarnSetLogLevel", "level=1"}).exit, 0);
    EXPECT_EQ(service.requests().size(), 1u);
}

TEST_F(DryRunTest, TheLibrarysChecksAreMade)
{
    const RanJson ran = runJson({"call", "TarnGetLogLevel", "level=null", "--dry-run"});
    EXPECT_EQ(ran.exit, 3);
    EXPECT_EQ(ran.document.at("outcome"), "rejected");
    EXPECT_EQ(run({"call", "TarnGetLogLevel", "--dry-run", "--caller", ""}).exit, 3);
}

TEST_F(DryRunTest, TheTextNamesFieldsAndMeanings)
{
    const Ran ran = run({"call", "tarn_qcsapi_radio_rfenable", "ifname=wifi0", "value=2", "--dry-run", "--caller", "button"});
    EXPECT_EQ(ran.out.substr(0, ran.out.find('\n')), "service QTN_RPC_PROXY, command 13, wait 5 s, length 9376, " +
                                                         std::string(tarn::base::kByteOrder) + " endian, caller \"button\"");
    EXPECT_NE(ran.out.find("ifname          \"wifi0\""), std::string::npos) << ran.out;
    EXPECT_NE(ran.out.find("the service's to fill"), std::string::npos);
    EXPECT_NE(ran.out.find("00 x "), std::string::npos);
}

} // namespace

} // namespace tarnctl_test
