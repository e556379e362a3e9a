// The check digit of a WPS PIN.
#include "tarn_frame.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>

namespace
{

// The rule as one checks it on paper: write the last eight digits down, add every other one three times from the left.
std::uint32_t validByHand(std::uint32_t pin)
{
    std::string digits = std::string(8, '0') + std::to_string(pin);
    digits = digits.substr(digits.size() - 8);
    int sum = 0;
    for (std::size_t i = 0; i != digits.size(); ++i)
        sum += (digits[i] - '0') * (i % 2 == 0 ? 3 : 1);
    return sum % 10 == 0 ? 1 : 0;
}

TEST(PinCode, ValidCheckDigitGivesOne)
{
    EXPECT_EQ(tarnValidatePinCode(12345670), 1u);
    EXPECT_EQ(tarnValidatePinCode(0), 1u);
}

TEST(PinCode, WrongCheckDigitGivesZero)
{
    EXPECT_EQ(tarnValidatePinCode(12345678), 0u);
    EXPECT_EQ(tarnValidatePinCode(1), 0u);
}

TEST(PinCode, LeadingZerosCount)
{
    EXPECT_EQ(tarnValidatePinCode(17), 1u); // 00000017: 3 * 1 + 7 = 10, the digit in front of the check digit weighs 3
    EXPECT_EQ(tarnValidatePinCode(71), 0u);
}

TEST(PinCode, DigitsAboveTheEighthAreIgnored)
{
    EXPECT_EQ(tarnValidatePinCode(112345670), 1u);
    EXPECT_EQ(tarnValidatePinCode(4212345670u), 1u);
    EXPECT_EQ(tarnValidatePinCode(112345678), 0u);
    EXPECT_EQ(tarnValidatePinCode(4294967295u), 0u); // 94967295: 3 * (9 + 9 + 7 + 9) + (4 + 6 + 2 + 5) = 119
    EXPECT_EQ(tarnValidatePinCode(4294967289u), 1u); // 94967289: 3 * (9 + 9 + 7 + 8) + (4 + 6 + 2 + 9) = 120
}

TEST(PinCode, ExactlyOneCheckDigitFitsTheOtherSeven)
{
    for (std::uint32_t front = 0; front < 10000000; front += 1237)
    {
        std::uint32_t valid = 0;
        for (std::uint32_t check = 0; check != 10; ++check)
            valid += tarnValidatePinCode(front * 10 + check);
        EXPECT_EQ(valid, 1u) << front;
    }
}

TEST(PinCode, AgreesWithTheRuleOnSmallAndOnBoundaryValues)
{
    for (std::uint32_t pin = 0; pin != 20000; ++pin)
        ASSERT_EQ(tarnValidatePinCode(pin), validByHand(pin)) << pin;
    for (const std::uint32_t middle : {10000000u, 99999999u, 100000000u, 1000000000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFF000u})
        for (std::uint32_t pin = middle - 500; pin != middle + 500; ++pin)
            ASSERT_EQ(tarnValidatePinCode(pin), validByHand(pin)) << pin;
}

TEST(PinCode, AgreesWithTheRuleAllOverTheRange)
{
    std::mt19937 random(20210611); // a fixed seed: the same values in every run
    for (int i = 0; i != 100000; ++i)
    {
        const auto pin = static_cast<std::uint32_t>(random());
        ASSERT_EQ(tarnValidatePinCode(pin), validByHand(pin)) << pin;
    }
}

} // namespace
