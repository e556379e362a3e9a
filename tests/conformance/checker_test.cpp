// The conformance checks must notice every mistake in a row of the contract. Each row is altered here in every way that leaves
// it a sound one, and held against the library, which is right.
#include "checker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace calling = tarn::calling;
namespace contract = tarn::contract;
using conformance::Checker;

namespace
{

// One service with one command, to be altered.
contract::Contract only(const contract::Row& row)
{
    const contract::Contract& whole = *row.contract;
    return {whole.service, whole.traceTag, whole.result, whole.invalidCaller, whole.records, whole.events, {*row.command}};
}

// A number of 8 bits in a word and in the word's first byte are then the same bytes.
bool lowByteComesFirst()
{
    const std::uint32_t one = 1;
    std::uint8_t first = 0;
    std::memcpy(&first, &one, sizeof first);
    return first == 1;
}

bool sendsTheSame(const contract::Argument& argument, contract::Encoding encoding)
{
    return argument.type == contract::Type::kU8 && argument.direction == contract::Direction::kIn && lowByteComesFirst() &&
           (encoding == contract::Encoding::kWord || encoding == contract::Encoding::kByte);
}

struct Alteration
{
    std::string what;
    std::function<void(contract::Contract&)> apply;
};

void addAlterationsOfTheFrame(std::vector<Alteration>& alterations)
{
    alterations.push_back({"service", [](contract::Contract& it) { it.service += "_"; }});
    alterations.push_back({"trace tag", [](contract::Contract& it) { it.traceTag += "_"; }});
    alterations.push_back({"invalid caller", [](contract::Contract& it) { it.invalidCaller += "."; }});
    alterations.push_back({"rejected", [](contract::Contract& it) { --it.result.rejected; }});
    alterations.push_back({"failed", [](contract::Contract& it) { --it.result.failed; }});
    alterations.push_back({"timed out", [](contract::Contract& it) { --it.result.timedOut; }});
    alterations.push_back({"sign of the result", [](contract::Contract& it) { it.result.isSigned = !it.result.isSigned; }});
    alterations.push_back({"command", [](contract::Contract& it) { ++it.commands[0].command; }});
    alterations.push_back({"wait", [](contract::Contract& it) { ++it.commands[0].wait; }});
    alterations.push_back({"length", [](contract::Contract& it) { it.commands[0].length += 4; }});
}

void addAlterationsOfArguments(const contract::Command& command, std::vector<Alteration>& alterations)
{
    for (std::size_t i = 0; i < command.arguments.size(); ++i)
    {
        const contract::Argument& argument = command.arguments[i];
        const auto add = [&](const std::string& what, const std::function<void(contract::Argument&)>& alter)
        {
            alterations.push_back(
                {argument.name + ": " + what, [i, alter](contract::Contract& it) { alter(it.commands[0].arguments[i]); }});
        };
        const bool isInMessage =
            argument.encoding != contract::Encoding::kSize && argument.encoding != contract::Encoding::kNothing;
        if (isInMessage)
        {
            add("offset + 4", [](contract::Argument& it) { it.offset += 4; });
            add("offset + 1", [](contract::Argument& it) { it.offset += 1; });
            add("offset - 1", [](contract::Argument& it) { it.offset -= 1; }); // 0 wraps to what the reader refuses
            add("offset - 4", [](contract::Argument& it) { it.offset -= 4; });
        }
        if (isInMessage && argument.sizeArgument.empty())
        {
            add("size + 1", [](contract::Argument& it) { it.size += 1; });
            add("size - 1", [](contract::Argument& it) { it.size -= 1; });
            add("size + 4", [](contract::Argument& it) { it.size += 4; });
            add("size - 4", [](contract::Argument& it) { it.size -= 4; });
        }
        for (const contract::Encoding encoding :
             {contract::Encoding::kId, contract::Encoding::kWord, contract::Encoding::kInverted, contract::Encoding::kByte,
              contract::Encoding::kText, contract::Encoding::kBlock, contract::Encoding::kNothing})
            if (encoding != argument.encoding && isInMessage && !sendsTheSame(argument, encoding))
                add(std::string("encoding ") + toString(encoding),
                    [encoding](contract::Argument& it)
                    {
                        it.encoding = encoding;
                        it.size = tarn::contract::impliedSize(encoding) == 0 ? it.size : tarn::contract::impliedSize(encoding);
                    });
        for (const contract::Type type :
             {contract::Type::kU32, contract::Type::kU16, contract::Type::kU8, contract::Type::kText, contract::Type::kBytes})
            // A pointer to one byte is a pointer to bytes, and of nothing there is no more to be seen.
            if (type != argument.type && (isInMessage || type != contract::Type::kU8))
                add(std::string("type ") + toString(type), [type](contract::Argument& it) { it.type = type; });
    }
    for (std::size_t i = 0; i + 1 < command.arguments.size(); ++i)
        alterations.push_back({command.arguments[i].name + ": changed places with the next", [i](contract::Contract& it)
                               {
                                   std::swap(it.commands[0].arguments[i].offset, it.commands[0].arguments[i + 1].offset);
                                   std::swap(it.commands[0].arguments[i].size, it.commands[0].arguments[i + 1].size);
                               }});
}

void addAlterationsOfChecks(const contract::Command& command, std::vector<Alteration>& alterations)
{
    for (std::size_t i = 0; i < command.checks.size(); ++i)
    {
        const std::string& name = command.checks[i].argument;
        alterations.push_back(
            {"check of " + name + ": message", [i](contract::Contract& it) { it.commands[0].checks[i].message += "."; }});
        if (i + 1 < command.checks.size() && command.checks[i].message != command.checks[i + 1].message)
            alterations.push_back({"check of " + name + ": order", [i](contract::Contract& it)
                                   { std::swap(it.commands[0].checks[i], it.commands[0].checks[i + 1]); }});
        if (command.checks[i].when == contract::When::kNullOrEmpty)
            alterations.push_back({"check of " + name + ": null only",
                                   [i](contract::Contract& it) { it.commands[0].checks[i].when = contract::When::kNull; }});
        else if (command.argument(name)->type == contract::Type::kText)
            alterations.push_back({"check of " + name + ": empty as well", [i](contract::Contract& it)
                                   { it.commands[0].checks[i].when = contract::When::kNullOrEmpty; }});
        if (command.argument(name)->isPointer())
            alterations.push_back({"check of " + name + ": optional instead", [i](contract::Contract& it)
                                   {
                                       contract::Command& altered = it.commands[0];
                                       for (contract::Argument& argument : altered.arguments)
                                           argument.optional |= argument.name == altered.checks[i].argument;
                                       altered.checks.erase(altered.checks.begin() + static_cast<std::ptrdiff_t>(i));
                                   }});
        else
            alterations.push_back(
                {"check of " + name + ": none", [i](contract::Contract& it)
                 { it.commands[0].checks.erase(it.commands[0].checks.begin() + static_cast<std::ptrdiff_t>(i)); }});
    }
    for (const contract::Argument& argument : command.arguments)
        if (argument.optional)
            alterations.push_back({argument.name + ": refused instead of optional",
                                   [name = argument.name](contract::Contract& it)
                                   {
                                       contract::Command& altered = it.commands[0];
                                       for (contract::Argument& other : altered.arguments)
                                           other.optional = other.optional && other.name != name;
                                       altered.checks.push_back({name, contract::When::kNull, name + " is NULL"});
                                   }});
}

std::vector<Alteration> alterationsOf(const contract::Command& command)
{
    std::vector<Alteration> alterations;
    addAlterationsOfTheFrame(alterations);
    addAlterationsOfArguments(command, alterations);
    addAlterationsOfChecks(command, alterations);
    return alterations;
}

class AlteredRow : public testing::TestWithParam<contract::Row>
{
};

TEST_P(AlteredRow, IsNoticed)
{
    const calling::Callable* const function = calling::find(GetParam().command->function);
    ASSERT_NE(function, nullptr);
    unsigned noticed = 0;
    for (const Alteration& alteration : alterationsOf(*GetParam().command))
    {
        contract::Contract altered = only(GetParam());
        alteration.apply(altered);
        // What the reader refuses never comes to be held against anything.
        if (!contract::problems(altered).empty())
            continue;
        if (Checker(altered, altered.commands[0], *function).everything().empty())
            ADD_FAILURE() << "not noticed: " << alteration.what;
        ++noticed;
    }
    EXPECT_GE(noticed, 10u) << "the alterations of the frame alone are ten";
}

INSTANTIATE_TEST_SUITE_P(Every, AlteredRow, testing::ValuesIn(contract::rows()),
                         [](const auto& test) { return test.param.command->function; });

TEST(AlteredRow, ReportNamesFunctionOffsetExpectedAndGot)
{
    contract::Contract altered = only(contract::find("TarnSetLogLevel"));
    altered.commands[0].arguments[0].offset = 4;
    const std::string report = Checker(altered, altered.commands[0], *calling::find("TarnSetLogLevel")).everything();
    EXPECT_THAT(report, testing::StartsWith("TarnSetLogLevel (numbers 0"));
    EXPECT_THAT(report, testing::HasSubstr("the message differs at offset 0: expected 0, got "));
}

TEST(AlteredRow, ReportNamesTheOutput)
{
    contract::Contract altered = only(contract::find("TarnGetLogLevel"));
    altered.commands[0].arguments[0].offset = 0;
    const std::string report = Checker(altered, altered.commands[0], *calling::find("TarnGetLogLevel")).everything();
    EXPECT_THAT(report, testing::HasSubstr("TarnGetLogLevel (a reply without a zero for buffers of 48): level[0]: expected "));
}

} // namespace
