#include "base/mac_address.h"

#include <gtest/gtest.h>

namespace
{

using tarn::base::isIndividual;
using tarn::base::MacAddress;
using tarn::base::macText;
using tarn::base::parseMacAddress;

constexpr MacAddress kAddress = {0x02, 0x0a, 0xb0, 0x00, 0x01, 0xff};

TEST(MacAddress, IsWrittenInLowerCaseWithColons)
{
    EXPECT_EQ(macText(kAddress), "02:0a:b0:00:01:ff");
}

TEST(MacAddress, IsReadInBothCases)
{
    EXPECT_EQ(parseMacAddress("02:0a:b0:00:01:ff"), kAddress);
    EXPECT_EQ(parseMacAddress("02:0A:B0:00:01:FF"), kAddress);
}

TEST(MacAddress, IsReadWithAnotherSeparatorIfToldSo)
{
    EXPECT_EQ(parseMacAddress("02-0a-b0-00-01-ff", '-'), kAddress);
    EXPECT_EQ(parseMacAddress("02-0a-b0-00-01-ff"), std::nullopt);
    EXPECT_EQ(parseMacAddress("02:0a:b0:00:01:ff", '-'), std::nullopt);
}

TEST(MacAddress, IsSixPairsOfDigits)
{
    for (const char* text : {"", "02:0a:b0:00:01", "02:0a:b0:00:01:ff:00", "020ab00001ff", "2:a:b0:0:1:ff", "02:0a:b0:00:01:fg",
                             "02:0a:b0:00:01-ff", "02:0a:b0:00:01:ff "})
        EXPECT_EQ(parseMacAddress(text), std::nullopt) << text;
}

TEST(MacAddress, IsIndividualUnlessAGroupAddressOrAllZeros)
{
    EXPECT_TRUE(isIndividual(kAddress));
    EXPECT_TRUE(isIndividual({0, 0, 0, 0, 0, 1}));
    EXPECT_FALSE(isIndividual({0x01, 0, 0x5e, 0, 0, 1}));
    EXPECT_FALSE(isIndividual({0xff, 0xff, 0xff, 0xff, 0xff, 0xff}));
    EXPECT_FALSE(isIndividual({}));
}

} // namespace
