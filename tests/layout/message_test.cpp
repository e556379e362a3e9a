// A function's message by the names of its arguments and of their fields.
#include "layout/message.h"

#include "layout/encode.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using tarn::base::Bytes;
using tarn::contract::Command;
using tarn::contract::Direction;
using tarn::layout::Encoded;
using tarn::layout::simulated;
using testing::ElementsAre;

namespace
{

const Command& commandOf(const char* function)
{
    return *tarn::contract::find(function).command;
}

Encoded input(const char* function, const char* name, const char* value)
{
    return encode(simulated(), commandOf(function), Direction::kIn, name, value);
}

Encoded output(const char* function, const char* name, const char* value)
{
    return encode(simulated(), commandOf(function), Direction::kOut, name, value);
}

// "name value" of every input in the message.
std::vector<std::string> inputsIn(const char* function, const std::vector<Encoded>& parts)
{
    Bytes message(commandOf(function).length);
    for (const Encoded& part : parts)
        std::copy(part.bytes.begin(), part.bytes.end(), message.begin() + part.offset);
    std::vector<std::string> texts;
    for (const tarn::layout::NamedPart& part : inputsOf(simulated(), commandOf(function)))
        texts.push_back(part.name + " " + part.valueIn(message.data()));
    return texts;
}

std::string refusal(const char* function, Direction direction, const char* name, const char* value)
{
    try
    {
        encode(simulated(), commandOf(function), direction, name, value);
    }
    catch (const tarn::layout::EncodeError& error)
    {
        return error.what();
    }
    return "taken";
}

TEST(NamedMessage, GivesBackWhatWasPutIntoIt)
{
    EXPECT_THAT(inputsIn("TarnKickOutAccessPointAssociated",
                         {input("TarnKickOutAccessPointAssociated", "radioId", "3"),
                          input("TarnKickOutAccessPointAssociated", "apId", "0"),
                          input("TarnKickOutAccessPointAssociated", "macAddress", "02:00:00:00:01:05")}),
                ElementsAre("radioId 3", "apId 0", "macAddress 02:00:00:00:01:05"));
    EXPECT_THAT(inputsIn("tarn_qcsapi_wifi_disable_wps", {input("tarn_qcsapi_wifi_disable_wps", "ifname", "wifi0"),
                                                          input("tarn_qcsapi_wifi_disable_wps", "disable", "1")}),
                ElementsAre("ifname \"wifi0\"", "disable yes (1)"));
}

TEST(NamedMessage, NamesTheFieldsOfARecordAndWhatSelectsThem)
{
    const std::vector<std::string> inputs =
        inputsIn("TarnSetRadioCfg",
                 {input("TarnSetRadioCfg", "param", "channel+bandwidth"), input("TarnSetRadioCfg", "cfg.channel", "44"),
                  input("TarnSetRadioCfg", "cfg.enabled", "on"), input("TarnSetRadioCfg", "cfg.country", "eu")});
    EXPECT_THAT(inputs, testing::IsSupersetOf({"radioId 1", "param channel+bandwidth (10)", "cfg.channel 44",
                                               "cfg.enabled on (1)", "cfg.country \"eu\"", "cfg.bandwidth 0"}));
}

TEST(NamedMessage, NamesEveryElementOfAnArray)
{
    const std::vector<tarn::layout::NamedPart> parts = inputsOf(simulated(), commandOf("tarn_qcsapi_wifi_set_dscp_ac_table"));
    const auto isLast = [](const tarn::layout::NamedPart& part) { return part.name == "dscp_list.categories[63]"; };
    EXPECT_TRUE(std::any_of(parts.begin(), parts.end(), isLast));
}

TEST(NamedMessage, HasAFieldAtItsOffsetInTheArgument)
{
    const Encoded field = input("TarnSetRadioCfg", "cfg.channel", "44");
    EXPECT_EQ(field.offset, 12u);
    std::uint32_t channel = 0;
    ASSERT_EQ(field.bytes.size(), sizeof channel);
    std::memcpy(&channel, field.bytes.data(), sizeof channel);
    EXPECT_EQ(channel, 44u);
}

TEST(NamedMessage, PadsATextAsItsSenderDoes)
{
    EXPECT_EQ(input("tarn_qcsapi_wifi_get_channel", "intf_name", "wifi0").bytes.size(), 65u);
    EXPECT_EQ(input("tarn_qcsapi_wifi_get_rates", "ifname", "wifi0").bytes.size(), 6u) << "a block ends as the caller's does";
    EXPECT_EQ(input("tarn_qcsapi_wifi_get_rates", "ifname", std::string(65, 'x').c_str()).bytes.size(), 65u);
    EXPECT_EQ(output("tarn_qcsapi_firmware_get_version", "firmware_version", "9").bytes, (Bytes{'9', 0}));
    EXPECT_EQ(output("TarnGetRadioDriverVersion", "version", "9").bytes.size(), 65u);
}

TEST(NamedMessage, TakesAWholeRecordInHexadecimalDigitsAndAsBytes)
{
    const std::string digits = "01" + std::string(190, '0');
    EXPECT_EQ(output("TarnGetRadioStats", "stats", digits.c_str()).bytes[0], 1);
    const Encoded whole = encodeBytes(simulated(), commandOf("TarnGetRadioStats"), Direction::kOut, "stats", Bytes(96, 7));
    EXPECT_EQ(whole.offset, 28u);
    EXPECT_EQ(whole.bytes, Bytes(96, 7));
}

TEST(NamedMessage, RefusesWhatItDoesNotHave)
{
    EXPECT_EQ(refusal("TarnGetRadio", Direction::kIn, "radio", "1"), "there is no argument \"radio\"; the inputs are radioId");
    EXPECT_EQ(refusal("TarnGetRadio", Direction::kIn, "data", "1"),
              "data: expected an input, and this is an output; the inputs are radioId");
    EXPECT_EQ(refusal("TarnGetRadioNum", Direction::kIn, "radio", "1"), "there is no argument \"radio\"; it has no inputs");
    EXPECT_EQ(refusal("TarnSetRadioCfg", Direction::kIn, "cfg.channel", "blue"),
              "cfg: channel: expected a number from 0 to 4294967295; got \"blue\"");
    EXPECT_EQ(refusal("TarnSetRadioCfg", Direction::kIn, "cfg", "0g"),
              "cfg: expected 4432 bytes as hexadecimal digits; got \"0g\"");
}

} // namespace
