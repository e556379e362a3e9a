// The library as callers and the gateway's linker see it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "calling/calling.h"
#include "contract/contract.h"
#include "facts.h"

namespace
{

using ::testing::ContainerEq;

const std::set<std::string> kFrameNames = {
    "tarnSubscribeEvent",  "tarnCancelEvent",    "tarnIpcStatusName",
    "tarnValidatePinCode", "tarnAddRateEntries", "tarnDelRatesEntries",
};

std::set<std::string> contractNames()
{
    std::set<std::string> names;
    for (const tarn::contract::Contract& contract : tarn::contract::all())
        for (const tarn::contract::Command& command : contract.commands)
            names.insert(command.function);
    return names;
}

std::set<std::string> contractAndFrameNames()
{
    std::set<std::string> names = contractNames();
    names.insert(kFrameNames.begin(), kFrameNames.end());
    return names;
}

std::size_t commandsOf(const std::string& service)
{
    for (const tarn::contract::Contract& contract : tarn::contract::all())
        if (contract.service == service)
            return contract.commands.size();
    return 0;
}

TEST(Names, AreCountedInEveryList)
{
    EXPECT_EQ(commandsOf("TARN"), 115u);
    EXPECT_EQ(commandsOf("QTN_RPC_PROXY"), 128u);
    EXPECT_EQ(commandsOf("QTN_MIRROR"), 4u);
    EXPECT_EQ(contractNames().size(), 247u);
    EXPECT_EQ(facts::declaredNames().size(), 253u);
    EXPECT_EQ(facts::scriptedNames().size(), 253u);
    EXPECT_EQ(facts::exportedNames().size(), 253u);
}

TEST(Names, OfTheHeadersAreThoseOfTheContract)
{
    EXPECT_THAT(facts::declaredNames(), ContainerEq(contractAndFrameNames()));
}

TEST(Names, OfTheVersionScriptAreThoseOfTheContract)
{
    EXPECT_THAT(facts::scriptedNames(), ContainerEq(contractAndFrameNames()));
}

TEST(Names, ThatTheSharedLibraryExportsAreThoseOfTheContract)
{
    EXPECT_THAT(facts::exportedNames(), ContainerEq(contractAndFrameNames()));
}

TEST(Names, CanAllBeCalledByName)
{
    for (const std::string& name : contractNames())
        EXPECT_NE(tarn::calling::find(name), nullptr) << name;
}

TEST(Needs, AreTheCLibraryAlone)
{
    const std::set<std::string> needed = facts::neededLibraries();
    ASSERT_EQ(needed.size(), 1u);
    EXPECT_EQ(needed.begin()->compare(0, 7, "libc.so"), 0) << *needed.begin();
}

TEST(Needs, AreMemoryTextAndNumberFunctionsAndThePlatform)
{
    const std::set<std::string> allowed = {
        "KorIilExecute", "KorIilTrace", "KorIilSubscribeEvent", "KorIilCancelEvent", "memchr", "memcpy", "memmove",
        "memset",        "strtod",
    };
    for (const std::string& name : facts::undefinedNames())
        EXPECT_EQ(allowed.count(name), 1u) << name;
}

TEST(Memory, HoldsNoWritableDataAndNoInitialisers)
{
    for (const char* section : {".data", ".bss", ".tdata", ".tbss", ".sdata", ".sbss", ".init_array", ".ctors"})
        EXPECT_EQ(facts::sizeOfSections(section), 0u) << section;
    EXPECT_GT(facts::sizeOfSections(".text"), 0u); // the file was read at all
}

} // namespace
