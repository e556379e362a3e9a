// What the build takes from the contract's files, against what the contract's own reader finds in them.
#include "fleet/contract_table.h"

#include "contract/contract.h"

#include <iterator>
#include <set>
#include <string>
#include <utility>

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

TEST(ContractTableTest, EveryCommandIsThereOnceWithItsLength)
{
    std::set<std::pair<std::string, std::uint32_t>> commands;
    for (const contract::Row& row : contract::rows())
    {
        const std::string& service = row.contract->service;
        commands.emplace(service, row.command->command);
        const ContractCommand* found = findCommand(service.c_str(), row.command->command);
        ASSERT_NE(found, nullptr) << row.command->function;
        EXPECT_EQ(found->length, row.command->length) << row.command->function;
        EXPECT_STREQ(kContractServices[found->service].name, service.c_str());
    }
    EXPECT_EQ(kContractCommandCount, commands.size());
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
    EXPECT_EQ(findCommand("OTHER", 0), nullptr);
    EXPECT_EQ(findCommand("QTN_RPC_PROXY", 9), nullptr) << "no function has it";
}

} // namespace
