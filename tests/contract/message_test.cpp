// Numbers in a message, by their encodings.
#include "contract/message.h"

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

using tarn::contract::Argument;
using tarn::contract::Encoding;
using tarn::contract::loadNumber;
using tarn::contract::storeNumber;

namespace
{

Argument encoded(Encoding encoding)
{
    Argument argument;
    argument.name = "given";
    argument.encoding = encoding;
    return argument;
}

std::uint32_t storedWord(Encoding encoding, std::uint32_t number)
{
    std::uint8_t bytes[4] = {9, 9, 9, 9};
    storeNumber(encoded(encoding), number, bytes);
    std::uint32_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

std::uint32_t loadedFrom(Encoding encoding, std::uint32_t word)
{
    std::uint8_t bytes[4];
    std::memcpy(bytes, &word, sizeof bytes);
    return loadNumber(encoded(encoding), bytes);
}

TEST(NumberInAMessage, IsTheWordItself)
{
    EXPECT_EQ(storedWord(Encoding::kWord, 0x01020304u), 0x01020304u);
    EXPECT_EQ(loadedFrom(Encoding::kWord, 0x01020304u), 0x01020304u);
}

TEST(NumberInAMessage, IsOneLessForAnId)
{
    EXPECT_EQ(storedWord(Encoding::kId, 1), 0u);
    EXPECT_EQ(storedWord(Encoding::kId, 0), 0xFFFFFFFFu);
    EXPECT_EQ(loadedFrom(Encoding::kId, 0), 1u);
    EXPECT_EQ(loadedFrom(Encoding::kId, 0xFFFFFFFFu), 0u);
}

TEST(NumberInAMessage, IsTurnedRoundForAnInvertedFlag)
{
    EXPECT_EQ(storedWord(Encoding::kInverted, 0), 1u);
    EXPECT_EQ(storedWord(Encoding::kInverted, 5), 0u);
    EXPECT_EQ(loadedFrom(Encoding::kInverted, 0), 1u);
    EXPECT_EQ(loadedFrom(Encoding::kInverted, 7), 0u);
}

TEST(NumberInAMessage, IsASingleByteAndLeavesThoseBehindIt)
{
    std::uint8_t bytes[2] = {9, 9};
    storeNumber(encoded(Encoding::kByte), 0x107, bytes);
    EXPECT_EQ(bytes[0], 7);
    EXPECT_EQ(bytes[1], 9);
    EXPECT_EQ(loadNumber(encoded(Encoding::kByte), bytes), 7u);
}

TEST(NumberInAMessage, IsNoneForOtherEncodings)
{
    std::uint8_t bytes[4] = {};
    EXPECT_TRUE(tarn::contract::isOneNumber(encoded(Encoding::kInverted)));
    for (const Encoding encoding : {Encoding::kText, Encoding::kBlock, Encoding::kWords, Encoding::kRecord, Encoding::kSize})
    {
        EXPECT_FALSE(tarn::contract::isOneNumber(encoded(encoding)));
        EXPECT_THROW(storeNumber(encoded(encoding), 1, bytes), std::logic_error);
        EXPECT_THROW(loadNumber(encoded(encoding), bytes), std::logic_error);
    }
}

TEST(RoomInAMessage, ReachesToTheStatusWhereTheCallerSaysTheSize)
{
    const tarn::contract::Row rates = tarn::contract::find("tarn_qcsapi_wifi_get_rates");
    EXPECT_EQ(tarn::contract::roomOf(*rates.command, *rates.command->argument("rates")), 9372u - 1152u);
    EXPECT_EQ(tarn::contract::roomOf(*rates.command, *rates.command->argument("ifname")), 65u);
}

} // namespace
