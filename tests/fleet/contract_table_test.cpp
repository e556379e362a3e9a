// What the build takes from the contract's files, against what the contract's own reader finds in them.
#include "fleet/contract_table.h"

#include "contract/contract.h"

#include <string>

#include <gtest/gtest.h>

namespace
{

using namespace tarn::fleet;
namespace contract = tarn::contract;

bool hasOffset(contract::Encoding encoding)
{
    return encoding != contract::Encoding::kSize && encoding != contract::Encoding::kNothing;
}

// The size that the file gives, or that of the record.
std::string sizeIn(const contract::Argument& argument)
{
    const bool isGiven = hasOffset(argument.encoding) && contract::impliedSize(argument.encoding) == 0 && argument.size != 0;
    return isGiven ? std::to_string(argument.size) : "-";
}

TEST(ContractTableTest, TheHashIsOfAllThatIsOnTheWire)
{
    std::string wire;
    for (const contract::Row& row : contract::rows())
    {
        wire += row.contract->service + ' ' + std::to_string(row.command->command) + ' ' + std::to_string(row.command->length);
        for (const contract::Argument& argument : row.command->arguments)
            wire += std::string(" ") + toString(argument.direction) + ' ' + toString(argument.encoding) + ' ' +
                    (hasOffset(argument.encoding) ? std::to_string(argument.offset) : "-") + ' ' + sizeIn(argument);
        wire += '\n';
    }
    EXPECT_EQ(kContractHash, hashOf(wire.data(), wire.size()));
    EXPECT_NE(kContractHash, hashOf(wire.data(), wire.size() - 2)) << "a change of the last number changes it";
}

TEST(ContractTableTest, TheHashIsTheOneThatOthersCanCompute)
{
    EXPECT_EQ(hashOf("", 0), 0xCBF29CE484222325u);
    EXPECT_EQ(hashOf("a", 1), 0xAF63DC4C8601EC8Cu);
    EXPECT_EQ(hashOf("foobar", 6), 0x85944171F73967E8u);
    EXPECT_EQ(hashOf("bar", 3, hashOf("foo", 3)), hashOf("foobar", 6));
}

TEST(ContractTableTest, EveryFunctionIsThereInTheContractsOrder)
{
    ASSERT_EQ(kContractFunctionCount, contract::rows().size());
    for (std::size_t at = 0; at < kContractFunctionCount; ++at)
    {
        const ContractFunction& function = kContractFunctions[at];
        const contract::Row& row = contract::rows()[at];
        EXPECT_EQ(function.name, row.command->function);
        EXPECT_EQ(function.command, row.command->command) << function.name;
        EXPECT_EQ(function.length, row.command->length) << function.name;
        EXPECT_EQ(function.reads, row.command->effect == contract::Effect::kReads) << function.name;
        EXPECT_EQ(kContractServices[function.service].name, row.contract->service) << function.name;
    }
}

TEST(ContractTableTest, EveryCommandIsFoundWithTheFirstFunctionThatHasIt)
{
    for (const contract::Row& row : contract::rows())
    {
        const std::size_t found = findCommand(row.contract->service.c_str(), row.command->command);
        ASSERT_LT(found, kContractFunctionCount) << row.command->function;
        EXPECT_EQ(kContractFunctions[found].command, row.command->command);
        EXPECT_EQ(kContractFunctions[found].length, row.command->length) << "all functions of a command agree";
        EXPECT_EQ(kContractFunctions[found].reads, row.command->effect == contract::Effect::kReads);
        EXPECT_EQ(kContractServices[kContractFunctions[found].service].name, row.contract->service);
    }
    EXPECT_STREQ(kContractFunctions[findCommand("QTN_MIRROR", 0)].name, "tarn_qtn_mirror_get_mirror_status");
}

TEST(ContractTableTest, EveryServiceIsThereWithItsEvents)
{
    ASSERT_EQ(kContractServiceCount, contract::all().size());
    for (std::size_t index = 0; index < kContractServiceCount; ++index)
    {
        const contract::Contract& expected = contract::all()[index];
        EXPECT_EQ(kContractServices[index].name, expected.service);
        ASSERT_EQ(kContractServices[index].events, expected.events.size());
        for (std::size_t at = 0; at < expected.events.size(); ++at)
            EXPECT_EQ(expected.events[at].event, at + 1) << "they count from 1";
        EXPECT_EQ(findService(expected.service.c_str()), index);
    }
    EXPECT_EQ(findService("OTHER"), kContractServiceCount);
    EXPECT_EQ(findCommand("OTHER", 0), kContractFunctionCount);
    EXPECT_EQ(findCommand("QTN_RPC_PROXY", 9), kContractFunctionCount) << "no function has it";
}

} // namespace
