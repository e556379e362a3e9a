// The caller's table of rates.
#include "support/samples.h"
#include "tarn_frame.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

using testing::Each;

namespace tarn::test
{
namespace
{

constexpr std::size_t kTableSize = 4336;
constexpr std::size_t kSlotSize = 17;

// A text in the 17 readable bytes that the functions ask for, the rest of them zero.
struct Rate
{
    explicit Rate(const std::string& text)
    {
        text.copy(bytes, sizeof bytes - 1);
    }

    char bytes[64] = {};
};

// On the heap, so that an address sanitizer sees an access outside of it.
class RateTable : public testing::Test
{
protected:
    std::uint32_t add(const std::string& text)
    {
        return tarnAddRateEntries(table.get(), Rate(text).bytes);
    }

    std::uint32_t del(const std::string& text)
    {
        return tarnDelRatesEntries(table.get(), Rate(text).bytes);
    }

    // The rates "1" to "255".
    void fill()
    {
        for (int rate = 1; rate <= 255; ++rate)
            ASSERT_EQ(add(std::to_string(rate)), TARN_RATE_ADDED);
        ASSERT_EQ(table->count, 255);
    }

    std::vector<std::uint8_t> bytes() const
    {
        const auto* const first = reinterpret_cast<const std::uint8_t*>(table.get());
        return {first, first + sizeof(TarnRateTable)};
    }

    std::vector<char> slot(std::size_t index) const
    {
        return {table->rates[index], table->rates[index] + kSlotSize};
    }

    std::unique_ptr<TarnRateTable> table = std::make_unique<TarnRateTable>();
};

TEST_F(RateTable, HasACountAnd255SlotsOf17Bytes)
{
    EXPECT_EQ(sizeof(TarnRateTable), kTableSize);
    EXPECT_EQ(reinterpret_cast<std::uint8_t*>(&table->count) - reinterpret_cast<std::uint8_t*>(table.get()), 0);
    EXPECT_EQ(table->rates[0] - reinterpret_cast<char*>(table.get()), 1);
    EXPECT_EQ(table->rates[254] - reinterpret_cast<char*>(table.get()), 1 + 17 * 254);
}

TEST_F(RateTable, AddedRatesStandInTheirOrder)
{
    EXPECT_EQ(add("54"), TARN_RATE_ADDED);
    EXPECT_EQ(add("5.5"), TARN_RATE_ADDED);
    EXPECT_EQ(add("11"), TARN_RATE_ADDED);

    std::vector<std::uint8_t> expected(kTableSize, 0);
    expected[0] = 3;
    std::memcpy(&expected[1], "54", 2);
    std::memcpy(&expected[18], "5.5", 3);
    std::memcpy(&expected[35], "11", 2);
    EXPECT_EQ(bytes(), expected);
}

TEST_F(RateTable, ResultsHaveTheirNumbers)
{
    EXPECT_EQ(add("54"), 0u);
    EXPECT_EQ(del("54"), 1u);
    EXPECT_EQ(add("0"), 3u);
    EXPECT_EQ(del("54"), 4u);
    fill();
    EXPECT_EQ(add("256"), 5u);
}

TEST_F(RateTable, RateAddedTwiceStandsOnce)
{
    EXPECT_EQ(add("54"), TARN_RATE_ADDED);
    EXPECT_EQ(add("54"), TARN_RATE_ADDED);
    EXPECT_EQ(table->count, 1);
    EXPECT_THAT(slot(1), Each('\0'));
}

TEST_F(RateTable, RatesAreComparedByValueAndTheFirstTextStays)
{
    EXPECT_EQ(add("5.5"), TARN_RATE_ADDED);
    for (const char* same : {"5.50", " 5.5", "+5.5", "55e-1", "5.5 Mbit/s", "05.5", "0x1.6p2"})
        EXPECT_EQ(add(same), TARN_RATE_ADDED);
    EXPECT_EQ(table->count, 1);
    EXPECT_STREQ(table->rates[0], "5.5");
}

TEST_F(RateTable, EveryUsedSlotIsComparedWithANewRate)
{
    fill();
    EXPECT_EQ(del("1"), TARN_RATE_DELETED);
    EXPECT_EQ(add("2.0"), TARN_RATE_ADDED);   // in the first slot
    EXPECT_EQ(add("255.0"), TARN_RATE_ADDED); // in the last one in use
    EXPECT_EQ(table->count, 254);
}

TEST_F(RateTable, UnusedSlotsAreNotCompared)
{
    std::strcpy(table->rates[0], "54");
    EXPECT_EQ(del("54"), TARN_RATE_NOT_FOUND);
    EXPECT_EQ(add("54"), TARN_RATE_ADDED);
    EXPECT_EQ(table->count, 1);
}

TEST_F(RateTable, RateNotAboveZeroIsRejected)
{
    ASSERT_EQ(add("54"), TARN_RATE_ADDED);
    const std::vector<std::uint8_t> before = bytes();
    for (const char* rate : {"0", "0.0", "-0", "-1", "-54", "abc", "", "-inf", "1e-400", "Mbit/s 54"})
        EXPECT_EQ(add(rate), TARN_RATE_REJECTED) << rate;
    EXPECT_EQ(bytes(), before);
}

TEST_F(RateTable, SmallestAndLargestRatesAreLetIn)
{
    EXPECT_EQ(add("1e-300"), TARN_RATE_ADDED);
    EXPECT_EQ(add("inf"), TARN_RATE_ADDED);
    EXPECT_EQ(add("1e999"), TARN_RATE_ADDED); // infinite
    EXPECT_EQ(table->count, 2);
}

// Not a number is neither zero nor below, and equals nothing, itself included.
TEST_F(RateTable, NanIsLetInEachTimeAndNeverFound)
{
    EXPECT_EQ(add("nan"), TARN_RATE_ADDED);
    EXPECT_EQ(add("nan"), TARN_RATE_ADDED);
    EXPECT_EQ(table->count, 2);
    EXPECT_STREQ(table->rates[1], "nan");
    EXPECT_EQ(del("nan"), TARN_RATE_NOT_FOUND);
    EXPECT_EQ(table->count, 2);
}

TEST_F(RateTable, NullIsRejected)
{
    EXPECT_EQ(tarnAddRateEntries(nullptr, "54"), TARN_RATE_REJECTED);
    EXPECT_EQ(tarnAddRateEntries(table.get(), nullptr), TARN_RATE_REJECTED);
    EXPECT_EQ(tarnDelRatesEntries(nullptr, "54"), TARN_RATE_REJECTED);
    EXPECT_EQ(tarnDelRatesEntries(table.get(), nullptr), TARN_RATE_REJECTED);
    EXPECT_THAT(bytes(), Each(0));
}

TEST_F(RateTable, NullIsRejectedOfAFullTableToo)
{
    fill();
    EXPECT_EQ(tarnAddRateEntries(table.get(), nullptr), TARN_RATE_REJECTED);
}

TEST_F(RateTable, LastSlotIsUsed)
{
    for (int rate = 1; rate <= 254; ++rate)
        ASSERT_EQ(add(std::to_string(rate)), TARN_RATE_ADDED);
    EXPECT_EQ(add("5000000.000000001"), TARN_RATE_ADDED); // 17 characters, up to the table's last byte
    EXPECT_EQ(table->count, 255);
    EXPECT_EQ(std::string(table->rates[254], kSlotSize), "5000000.000000001");
    EXPECT_EQ(del("5000000.000000001"), TARN_RATE_DELETED);
    EXPECT_THAT(slot(254), Each('\0'));
}

TEST_F(RateTable, FullTableIsFullForDuplicatesAndInvalidTextsToo)
{
    fill();
    const std::vector<std::uint8_t> before = bytes();
    for (const char* rate : {"256", "54", "0", "-1", "abc", "nan"})
        EXPECT_EQ(add(rate), TARN_RATE_TABLE_FULL) << rate;
    EXPECT_EQ(bytes(), before);
}

TEST_F(RateTable, AllOf17BytesAreCopied)
{
    const char rate[kSlotSize] = {'5', '4', '\0', 'l', 'e', 'f', 't', ' ', 'o', 'v', 'e', 'r', ' ', 'h', 'e', 'r', 'e'};
    EXPECT_EQ(tarnAddRateEntries(table.get(), rate), TARN_RATE_ADDED);
    EXPECT_THAT(slot(0), testing::ElementsAreArray(rate));
    EXPECT_THAT(slot(1), Each('\0'));
}

TEST_F(RateTable, TextOf16CharactersKeepsItsNul)
{
    EXPECT_EQ(add("54.0000000000000"), TARN_RATE_ADDED);
    EXPECT_STREQ(table->rates[0], "54.0000000000000");
    EXPECT_EQ(add("54"), TARN_RATE_ADDED);
    EXPECT_EQ(table->count, 1);
}

TEST_F(RateTable, LongTextIsCutTo17CharactersWithoutNul)
{
    EXPECT_EQ(add("54.00000000000000000000"), TARN_RATE_ADDED);
    EXPECT_EQ(std::string(table->rates[0], kSlotSize), "54.00000000000000");
    EXPECT_THAT(slot(1), Each('\0'));
    EXPECT_EQ(add("54"), TARN_RATE_ADDED);
    EXPECT_EQ(table->count, 1);
}

// The value that is kept is that of the text that is kept.
TEST_F(RateTable, CutTextHasTheValueOfItsFirst17Characters)
{
    EXPECT_EQ(add("12345678901234567890"), TARN_RATE_ADDED);
    EXPECT_EQ(del("12345678901234567890"), TARN_RATE_NOT_FOUND);
    EXPECT_EQ(del("12345678901234567"), TARN_RATE_DELETED);
}

// Such a slot has no NUL, and the next rate's text follows it directly.
TEST_F(RateTable, FullSlotIsNotReadOnIntoTheNext)
{
    EXPECT_EQ(add("10000000000000000"), TARN_RATE_ADDED);
    EXPECT_EQ(add("54"), TARN_RATE_ADDED);
    EXPECT_EQ(add("1e16"), TARN_RATE_ADDED);
    EXPECT_EQ(table->count, 2);
    EXPECT_EQ(del("1e16"), TARN_RATE_DELETED);
    EXPECT_STREQ(table->rates[0], "54");
}

TEST_F(RateTable, DeletingTheOnlyRateEmptiesTheTable)
{
    ASSERT_EQ(add("54"), TARN_RATE_ADDED);
    EXPECT_EQ(del("54"), TARN_RATE_DELETED);
    EXPECT_THAT(bytes(), Each(0));
}

TEST_F(RateTable, DeletingComparesByValue)
{
    ASSERT_EQ(add("54"), TARN_RATE_ADDED);
    EXPECT_EQ(del("54.0"), TARN_RATE_DELETED);
    EXPECT_EQ(table->count, 0);
}

TEST_F(RateTable, DeletingClosesTheGap)
{
    for (const char* rate : {"6", "9", "12", "18"})
        ASSERT_EQ(add(rate), TARN_RATE_ADDED);
    EXPECT_EQ(del("9"), TARN_RATE_DELETED);

    std::vector<std::uint8_t> expected(kTableSize, 0);
    expected[0] = 3;
    std::memcpy(&expected[1], "6", 1);
    std::memcpy(&expected[18], "12", 2);
    std::memcpy(&expected[35], "18", 2);
    EXPECT_EQ(bytes(), expected);
}

TEST_F(RateTable, DeletingTheLastOfSeveralLeavesTheOthers)
{
    for (const char* rate : {"6", "9", "12"})
        ASSERT_EQ(add(rate), TARN_RATE_ADDED);
    EXPECT_EQ(del("12"), TARN_RATE_DELETED);
    EXPECT_EQ(table->count, 2);
    EXPECT_STREQ(table->rates[0], "6");
    EXPECT_STREQ(table->rates[1], "9");
    EXPECT_THAT(slot(2), Each('\0'));
}

// Only a table that was not built here can have two texts of one value.
TEST_F(RateTable, DeletingTakesTheFirstOfSeveralEqualRates)
{
    table->count = 3;
    std::strcpy(table->rates[0], "6");
    std::strcpy(table->rates[1], "9");
    std::strcpy(table->rates[2], "6.0");
    EXPECT_EQ(del("6"), TARN_RATE_DELETED);
    EXPECT_EQ(table->count, 2);
    EXPECT_STREQ(table->rates[0], "9");
    EXPECT_STREQ(table->rates[1], "6.0");
}

TEST_F(RateTable, DeletingFromAFullTableShiftsTheRestDown)
{
    fill();
    EXPECT_EQ(del("1"), TARN_RATE_DELETED);
    EXPECT_EQ(table->count, 254);
    for (std::size_t i = 0; i != 254; ++i)
        EXPECT_EQ(table->rates[i], std::to_string(i + 2));
    EXPECT_THAT(slot(254), Each('\0'));
}

TEST_F(RateTable, DeletingTheLastOfAFullTableTouchesNothingElse)
{
    fill();
    std::vector<std::uint8_t> expected = bytes();
    expected[0] = 254;
    std::fill(expected.end() - kSlotSize, expected.end(), std::uint8_t{0});
    EXPECT_EQ(del("255"), TARN_RATE_DELETED);
    EXPECT_EQ(bytes(), expected);
}

TEST_F(RateTable, DeletingWhatIsNotThereChangesNothing)
{
    EXPECT_EQ(del("54"), TARN_RATE_NOT_FOUND);
    EXPECT_THAT(bytes(), Each(0));

    for (const char* rate : {"6", "9"})
        ASSERT_EQ(add(rate), TARN_RATE_ADDED);
    const std::vector<std::uint8_t> before = bytes();
    for (const char* rate : {"54", "0", "-6", "abc", "", "nan"})
        EXPECT_EQ(del(rate), TARN_RATE_NOT_FOUND) << rate;
    EXPECT_EQ(bytes(), before);
}

// The range is checked where a rate is added, and nowhere else.
TEST_F(RateTable, RateOfZeroThatStandsInTheTableCanBeDeleted)
{
    table->count = 2;
    std::strcpy(table->rates[0], "abc");
    std::strcpy(table->rates[1], "-1");
    EXPECT_EQ(del("0"), TARN_RATE_DELETED);
    EXPECT_EQ(del("-1"), TARN_RATE_DELETED);
    EXPECT_THAT(bytes(), Each(0));
}

// A table that was not built here may hold anything behind its last rate; the slot that becomes free is zero.
TEST_F(RateTable, FreedSlotIsZeroWhateverStandsBehindIt)
{
    std::memset(table->rates, '7', sizeof table->rates);
    table->count = 2;
    std::strcpy(table->rates[0], "6");
    std::strcpy(table->rates[1], "9");
    std::vector<std::uint8_t> expected = bytes();
    expected[0] = 1;
    std::copy_n(expected.begin() + 18, kSlotSize, expected.begin() + 1);
    std::fill_n(expected.begin() + 18, kSlotSize, std::uint8_t{0});

    EXPECT_EQ(del("6"), TARN_RATE_DELETED);
    EXPECT_EQ(bytes(), expected);
}

TEST_F(RateTable, RateCanBeDeletedByItsOwnSlot)
{
    for (const char* rate : {"6", "9", "12"})
        ASSERT_EQ(add(rate), TARN_RATE_ADDED);
    EXPECT_EQ(tarnDelRatesEntries(table.get(), table->rates[1]), TARN_RATE_DELETED);
    EXPECT_STREQ(table->rates[1], "12");
}

// Text for del needs its NUL and no more.
TEST_F(RateTable, DeletingReadsNoFurtherThanTheNul)
{
    ASSERT_EQ(add("6"), TARN_RATE_ADDED);
    const std::vector<char> rate = {'6', '\0'};
    EXPECT_EQ(tarnDelRatesEntries(table.get(), rate.data()), TARN_RATE_DELETED);
}

} // namespace
} // namespace tarn::test
