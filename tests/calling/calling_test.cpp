// The list of functions and their signatures; that calls arrive as they should is the conformance test's matter.
#include "calling/calling.h"
#include "contract/contract.h"
#include "kor_iil_mock.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <stdexcept>
#include <string>

namespace calling = tarn::calling;
namespace contract = tarn::contract;

namespace
{

TEST(Functions, AreThoseOfTheContract)
{
    std::set<std::string> inContract;
    for (const contract::Row& row : contract::rows())
        inContract.insert(row.command->function);
    std::set<std::string> callable;
    for (const calling::Callable& function : calling::all())
        callable.insert(function.name);

    EXPECT_EQ(callable, inContract);
    EXPECT_EQ(calling::all().size(), contract::rows().size());
}

TEST(Functions, AreFoundByTheirNames)
{
    for (const calling::Callable& function : calling::all())
        EXPECT_EQ(calling::find(function.name), &function);
    EXPECT_EQ(calling::find("TarnGetNothing"), nullptr);
    EXPECT_EQ(calling::find(""), nullptr);
}

TEST(Functions, HaveDistinctAddresses)
{
    std::set<calling::AnyFunction> addresses;
    for (const calling::Callable& function : calling::all())
        EXPECT_TRUE(addresses.insert(function.address).second) << function.name;
}

TEST(Signature, DescribesNumbersPointersAndRecords)
{
    const calling::Callable* const set = calling::find("TarnSetRadioExCfg");
    ASSERT_NE(set, nullptr);
    EXPECT_FALSE(set->signedResult);
    ASSERT_EQ(set->parameters->size(), 3u);
    EXPECT_EQ((*set->parameters)[0].kind, calling::ParameterKind::kNumber);
    EXPECT_EQ((*set->parameters)[0].size, 4u);
    EXPECT_EQ((*set->parameters)[2].kind, calling::ParameterKind::kRecord);
    EXPECT_EQ((*set->parameters)[2].size, 60u);

    const calling::Callable* const get = calling::find("tarn_qcsapi_wifi_get_channel");
    ASSERT_NE(get, nullptr);
    EXPECT_TRUE(get->signedResult);
    ASSERT_EQ(get->parameters->size(), 2u);
    EXPECT_EQ((*get->parameters)[0].kind, calling::ParameterKind::kPointer);
    EXPECT_TRUE((*get->parameters)[0].isConst);
    EXPECT_TRUE((*get->parameters)[0].isCharacter);
    EXPECT_FALSE((*get->parameters)[1].isConst);
    EXPECT_EQ((*get->parameters)[1].size, 4u);
}

TEST(Call, HandsNumbersOnAndReturnsTheResult)
{
    tarn::mock::Platform platform;
    platform.expect("TARN", 1, 12).caller("web").word(0, 7).restZero().status(0xFFFFFFFFu);

    const calling::ArgumentValue level{7, nullptr};
    EXPECT_EQ(calling::find("TarnSetLogLevel")->call("web", &level, 1), 0xFFFFFFFFll);
}

TEST(Call, CutsANumberToTheWidthOfItsParameter)
{
    tarn::mock::Platform platform;
    platform.expect("QTN_RPC_PROXY", 63, 9376).text(0, 65, "wifi0").byte(68, 0x2A).restZero();

    char name[] = "wifi0";
    const calling::ArgumentValue values[] = {{0, name}, {0x12A, nullptr}};
    EXPECT_EQ(calling::find("tarn_qcsapi_wifi_set_priority")->call("web", values, 2), 0);
}

TEST(Call, KeepsTheSignOfTheResult)
{
    tarn::mock::Platform platform;
    platform.expect("QTN_RPC_PROXY", 1, 9376).restZero().status(0xFFFFFFFFu);
    EXPECT_EQ(calling::find("tarn_qcsapi_init")->call("web", nullptr, 0), -1);
}

TEST(Call, TakesARecordAtAnyAlignment)
{
    tarn::mock::Platform platform;
    unsigned char bytes[61];
    for (std::size_t i = 0; i < sizeof bytes; ++i)
        bytes[i] = static_cast<unsigned char>(i + 1);
    platform.expect("TARN", 10, 4444).word(4, 9).bytes(8, bytes + 1, 60).restZero();

    const calling::ArgumentValue values[] = {{1, nullptr}, {9, nullptr}, {0, bytes + 1}};
    EXPECT_EQ(calling::find("TarnSetRadioExCfg")->call("web", values, 3), 0);
}

TEST(Call, RefusesAnotherNumberOfArguments)
{
    const calling::ArgumentValue values[2] = {};
    const auto call = [&] { calling::find("TarnSetLogLevel")->call("web", values, 2); };
    try
    {
        call();
        FAIL() << "the call was made";
    }
    catch (const std::invalid_argument& error)
    {
        EXPECT_STREQ(error.what(), "TarnSetLogLevel takes 1 arguments behind the caller id, not 2");
    }
}

TEST(Call, RefusesANullRecord)
{
    const calling::ArgumentValue values[3] = {};
    EXPECT_THROW(calling::find("TarnSetRadioExCfg")->call("web", values, 3), std::invalid_argument);
}

} // namespace
