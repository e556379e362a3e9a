// The three contracts that are compiled in, and finding one's way in them.
#include "contract/contract.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace contract = tarn::contract;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace
{

TEST(Contracts, AreTheThreeServicesInOrder)
{
    ASSERT_THAT(contract::all(), SizeIs(3));
    EXPECT_EQ(contract::all()[0].service, "TARN");
    EXPECT_EQ(contract::all()[1].service, "QTN_RPC_PROXY");
    EXPECT_EQ(contract::all()[2].service, "QTN_MIRROR");
}

TEST(Contracts, AreSound)
{
    for (const contract::Contract& service : contract::all())
        EXPECT_THAT(contract::problems(service), IsEmpty()) << service.service;
}

TEST(Contracts, NameTheEventsOfTheDeviceService)
{
    std::vector<std::string> names;
    for (const contract::Event& event : contract::all()[0].events)
        names.push_back(std::to_string(event.event) + " " + event.name);
    EXPECT_THAT(names, ElementsAre("1 EVT_RADIO_STATUS_CHANGED", "2 EVT_RADIO_OPR_CHANNEL_CHANGED",
                                   "3 EVT_RADIO_OPR_BANDWIDTH_CHANGED", "4 EVT_AP_ASSOCIATED_CHANGED",
                                   "5 EVT_AP_WPS_WIN_STATUS_CHANGED"));
}

TEST(Contracts, LeaveOneProxyCommandOutAndUseOneTwice)
{
    std::multiset<std::uint32_t> numbers;
    for (const contract::Command& command : contract::findService("QTN_RPC_PROXY")->commands)
        numbers.insert(command.command);
    for (std::uint32_t number = 0; number < 128; ++number)
    {
        const std::size_t uses = number == 9 ? 0 : number == 27 ? 2 : 1;
        EXPECT_EQ(numbers.count(number), uses) << number;
    }
}

// What may be asked from afar goes by this, so a name that says otherwise needs a reason.
TEST(Contracts, ReasonWhereAnEffectIsNotWhatTheNameSays)
{
    for (const contract::Row& row : contract::rows())
    {
        const std::string& name = row.command->function;
        const bool isGetter = name.rfind("TarnGet", 0) == 0 || name.find("get_") != std::string::npos;
        if (isGetter != (row.command->effect == contract::Effect::kReads))
        {
            EXPECT_NE(row.command->effectReason, "") << name;
        }
        if (name.rfind("TarnSet", 0) == 0 || name.find("_set_") != std::string::npos)
        {
            EXPECT_EQ(row.command->effect, contract::Effect::kChanges) << name;
        }
    }
    EXPECT_EQ(contract::find("TarnGetQuantennaSmartWiFiCfgToFile").command->effect, contract::Effect::kChanges);
}

TEST(Contracts, TellResultsApart)
{
    const contract::Result& device = contract::findService("TARN")->result;
    EXPECT_FALSE(device.isSigned);
    EXPECT_EQ(device.rejected, 3);
    EXPECT_EQ(device.failed, 1);
    EXPECT_EQ(device.timedOut, 2);
    for (const char* service : {"QTN_RPC_PROXY", "QTN_MIRROR"})
    {
        const contract::Result& module = contract::findService(service)->result;
        EXPECT_TRUE(module.isSigned);
        EXPECT_EQ(module.rejected, -1);
        EXPECT_EQ(module.failed, -1);
        EXPECT_EQ(module.timedOut, -1);
    }
}

TEST(Find, GivesTheFunctionAndItsService)
{
    const contract::Row row = contract::find("TarnGetRadioChainRssiAt");
    ASSERT_TRUE(row);
    EXPECT_EQ(row.contract->service, "TARN");
    EXPECT_EQ(row.command->command, 17u);
    EXPECT_EQ(row.command->wait, 4u);
    EXPECT_EQ(row.command->length, 9584u);
    EXPECT_EQ(row.command->statusOffset(), 9580u);
    ASSERT_THAT(row.command->arguments, SizeIs(3));

    const contract::Argument* const radioId = row.command->argument("radioId");
    ASSERT_NE(radioId, nullptr);
    EXPECT_EQ(radioId->encoding, contract::Encoding::kId);
    EXPECT_EQ(radioId->size, 4u);
    EXPECT_TRUE(radioId->isNumber());
    EXPECT_FALSE(radioId->isPointer());

    const contract::Argument* const rssi = row.command->argument("rssi");
    ASSERT_NE(rssi, nullptr);
    EXPECT_EQ(rssi->direction, contract::Direction::kOut);
    EXPECT_EQ(rssi->offset, 28u);
    EXPECT_TRUE(rssi->isPointer());
    EXPECT_EQ(row.command->argument("no such argument"), nullptr);
}

TEST(Find, IsExact)
{
    EXPECT_FALSE(contract::find("tarngetradio"));
    EXPECT_FALSE(contract::find("TarnGetRadio "));
    EXPECT_FALSE(contract::find(""));
    EXPECT_EQ(contract::findService("tarn"), nullptr);
}

TEST(Find, FindsEveryRow)
{
    for (const contract::Row& row : contract::rows())
        EXPECT_EQ(contract::find(row.command->function).command, row.command);
}

TEST(Words, AreThoseOfTheFiles)
{
    EXPECT_STREQ(contract::toString(contract::Type::kRecord), "record");
    EXPECT_STREQ(contract::toString(contract::Direction::kOut), "out");
    EXPECT_STREQ(contract::toString(contract::Encoding::kNothing), "nothing");
    EXPECT_STREQ(contract::toString(contract::When::kNullOrEmpty), "null or empty");
    EXPECT_STREQ(contract::toString(contract::Effect::kReads), "reads");
}

} // namespace
