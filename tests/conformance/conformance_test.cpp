// The library held against the contract, function by function and byte by byte.
#include "checker.h"
#include "function_lines.h"

#include "kor_iil_mock.hpp"
#include "tarn_frame.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace calling = tarn::calling;
namespace contract = tarn::contract;
using conformance::Checker;

namespace
{

class Conformance : public testing::TestWithParam<contract::Row>
{
protected:
    void SetUp() override
    {
        const calling::Callable* const function = calling::find(GetParam().command->function);
        ASSERT_NE(function, nullptr) << "the library has no function of this name";
        checker = std::make_unique<Checker>(*GetParam().contract, *GetParam().command, *function);
    }

    std::unique_ptr<Checker> checker;
};

TEST_P(Conformance, OfTheFunction)
{
    EXPECT_EQ(checker->everything(), "");
}

INSTANTIATE_TEST_SUITE_P(Every, Conformance, testing::ValuesIn(contract::rows()),
                         [](const auto& test) { return test.param.command->function; });

// A trace record shows a source unit's tag and a line, and nothing else tells which function failed.
TEST(FailureTraces, TellEveryFunctionFromEveryOther)
{
    std::map<std::pair<std::string, std::uint32_t>, std::string> functionsBySite;
    const auto add = [&](const std::string& tag, std::uint32_t line, const std::string& function)
    {
        const auto [other, isNew] = functionsBySite.insert({{tag, line}, function});
        EXPECT_TRUE(isNew) << function << " and " << other->second << " both trace " << tag << " line " << line;
    };

    for (const contract::Row& row : contract::rows())
    {
        const calling::Callable* const function = calling::find(row.command->function);
        ASSERT_NE(function, nullptr) << row.command->function;
        const Checker::Site site = Checker(*row.contract, *row.command, *function).failureSite();
        add(site.tag, site.line, row.command->function);
    }

    const auto handler = [](const char*, std::uint32_t, const void*, std::uint32_t) {};
    tarn::mock::Platform platform;
    platform.expectSubscribe("TARN", 1).fail(1);
    platform.expectCancel("TARN", 1).fail(1);
    tarnSubscribeEvent("conformance", 1, nullptr, handler);
    tarnCancelEvent("conformance", 1, nullptr, handler);
    ASSERT_EQ(platform.traces().size(), 2u);
    add(platform.traces()[0].fileTag, platform.traces()[0].line, "tarnSubscribeEvent");
    add(platform.traces()[1].fileTag, platform.traces()[1].line, "tarnCancelEvent");
    EXPECT_EQ(functionsBySite.size(), contract::rows().size() + 2);
}

// The checker holds the command functions to the same.
TEST(FailureTraces, OfTheEventFunctionsCarryALineOfTheFunction)
{
    const auto handler = [](const char*, std::uint32_t, const void*, std::uint32_t) {};
    tarn::mock::Platform platform;
    platform.expectSubscribe("TARN", 1).fail(1);
    platform.expectCancel("TARN", 1).fail(1);
    for (const auto& [name, function] :
         {std::pair("tarnSubscribeEvent", &tarnSubscribeEvent), std::pair("tarnCancelEvent", &tarnCancelEvent)})
    {
        const std::size_t before = platform.traces().size();
        function(nullptr, 1, nullptr, handler);
        function("", 1, nullptr, handler);
        function("conformance", 0, nullptr, handler);
        function("conformance", 1, nullptr, handler);

        const std::vector<tarn::mock::Trace> traces = platform.traces();
        ASSERT_EQ(traces.size(), before + 4) << name;
        for (std::size_t i = before; i < traces.size(); ++i)
            EXPECT_TRUE(conformance::linesOf(name).contain(traces[i].line)) << name << ": " << traces[i].text;
    }
}

} // namespace
