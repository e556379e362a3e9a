#include "base/hexadecimal.h"

#include <gtest/gtest.h>

namespace
{

using tarn::base::appendHex;
using tarn::base::Bytes;
using tarn::base::hexDigitValue;
using tarn::base::hexText;
using tarn::base::parseHex;

TEST(HexDigit, HasItsValueInBothCases)
{
    const std::string digits = tarn::base::kHexDigits;
    for (std::size_t i = 0; i < digits.size(); ++i)
        EXPECT_EQ(hexDigitValue(digits[i]), static_cast<int>(i < 16 ? i : i - 6)) << digits[i];
}

TEST(HexDigit, IsNoOtherCharacter)
{
    const std::string digits = tarn::base::kHexDigits;
    for (int character = 0; character < 256; ++character)
    {
        const bool isDigit = digits.find(static_cast<char>(character)) != std::string::npos;
        EXPECT_EQ(hexDigitValue(static_cast<char>(character)) >= 0, isDigit) << character;
    }
}

TEST(HexText, HasTwoDigitsForEachByte)
{
    EXPECT_EQ(hexText(Bytes{0x00, 0x0a, 0xb0, 0xff}), "000ab0ff");
    EXPECT_EQ(hexText(Bytes{}), "");
    EXPECT_EQ(hexText("az", 2), "617a");
}

TEST(HexText, TakesASeparator)
{
    EXPECT_EQ(hexText(Bytes{1, 2, 3}, " "), "01 02 03");
    EXPECT_EQ(hexText(Bytes{1}, ", "), "01");
}

TEST(HexText, CanBeAppended)
{
    std::string text = "bytes ";
    appendHex(text, "\x01\x02", 2, "-");
    EXPECT_EQ(text, "bytes 01-02");
}

TEST(ParseHex, ReadsWhatHexTextWrites)
{
    Bytes bytes;
    for (int i = 0; i < 256; ++i)
        bytes.push_back(static_cast<std::uint8_t>(i));
    EXPECT_EQ(parseHex(hexText(bytes)), bytes);
    EXPECT_EQ(parseHex(hexText(bytes, ":"), ":"), bytes);
    EXPECT_EQ(parseHex(""), Bytes{});
}

TEST(ParseHex, TakesBothCases)
{
    EXPECT_EQ(parseHex("aBCd"), (Bytes{0xab, 0xcd}));
}

TEST(ParseHex, RefusesWhatIsNoPairsOfDigits)
{
    for (const char* text : {"0", "012", "0g", "g0", " 01", "01 ", "01 02", "0x01", "-1"})
        EXPECT_EQ(parseHex(text), std::nullopt) << text;
}

TEST(ParseHex, RefusesAMissingOrOtherSeparator)
{
    for (const char* text : {"0102", "01-02", "01:", ":01", "01::02", "01:0", "01:2:03", ":"})
        EXPECT_EQ(parseHex(text, ":"), std::nullopt) << text;
}

} // namespace
