// What is compiled in is what the contract files say, down to the last note.
#include "base/json_reader.h"
#include "contract/contract.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace contract = tarn::contract;

namespace
{

using Lines = std::vector<std::string>;

template <typename... Values>
std::string lineOf(const Values&... values)
{
    std::ostringstream line;
    ((line << values << " | "), ...);
    return line.str();
}

// Everything that a contract holds; records by their names, since nothing goes by their order.
Lines linesOf(const contract::Contract& whole)
{
    const contract::Result& result = whole.result;
    Lines lines;
    for (const contract::RecordType& record : whole.records)
        lines.push_back(lineOf(record.name, record.size));
    std::sort(lines.begin(), lines.end());
    lines.push_back(lineOf(whole.service, whole.traceTag, whole.invalidCaller));
    lines.push_back(lineOf(result.isSigned, result.rejected, result.failed, result.timedOut));
    for (const contract::Event& event : whole.events)
        lines.push_back(lineOf(event.event, event.name));
    for (const contract::Command& command : whole.commands)
    {
        lines.push_back(lineOf(command.command, command.function, command.group, command.description, command.note,
                               toString(command.effect), command.effectReason, command.wait, command.length));
        for (const contract::Argument& argument : command.arguments)
            lines.push_back(lineOf(argument.name, toString(argument.type), argument.record, toString(argument.direction),
                                   toString(argument.encoding), argument.offset, argument.size, argument.sizeArgument,
                                   argument.isSigned, argument.optional));
        for (const contract::Check& check : command.checks)
            lines.push_back(lineOf(check.argument, toString(check.when), check.message));
    }
    return lines;
}

class CompiledInContract : public testing::TestWithParam<const char*>
{
};

TEST_P(CompiledInContract, IsWhatItsFileSays)
{
    const std::string path = CONTRACT_DIRECTORY "/" + std::string(GetParam()) + ".json";
    const contract::Contract read = contract::parse(tarn::base::readText(path, "a contract file"), path);
    const contract::Contract* const compiledIn = contract::findService(read.service);
    ASSERT_NE(compiledIn, nullptr);
    EXPECT_THAT(linesOf(*compiledIn), testing::ContainerEq(linesOf(read)));
}

INSTANTIATE_TEST_SUITE_P(, CompiledInContract, testing::Values("tarn", "qtn_rpc_proxy", "qtn_mirror"),
                         [](const auto& file) { return std::string(file.param); });

} // namespace
