// Scanning a radio's neighbourhood.
#include "device_test.h"

using testing::ElementsAre;

namespace tarn::test
{
namespace
{

constexpr std::uint32_t kQuery = 9584;
constexpr std::uint32_t kAction = 4444;

using Scan = DeviceTest;

TEST_F(Scan, IsStartedAndCancelledByTheRadioAlone)
{
    expectCommand(21, kAction).word(0, 1).status(5);
    expectCommand(22, kAction).word(0, 1).status(6);
    EXPECT_EQ(TarnScanRadioNeighborhood("ledd", 2), 5u);
    EXPECT_EQ(TarnCancelRadioNeighborhoodScanning("ledd", 2), 6u);
}

TEST_F(Scan, StatusAndNumberOfResultsAreWords)
{
    expectCommand(20, kQuery).word(0, 1).replyWord(28, 1).status(5);
    expectCommand(23, kQuery).word(0, 2).replyWord(28, 17);

    std::uint32_t status = kUntouched;
    std::uint32_t number = kUntouched;
    EXPECT_EQ(TarnGetRadioNeighboringStatus("ledd", 2, &status), 5u);
    EXPECT_EQ(TarnGetRadioNeighboringResultNum("ledd", 3, &number), 0u);
    EXPECT_EQ(status, 1u);
    EXPECT_EQ(number, 17u);
}

// The radio's id goes less one, the index does not.
TEST_F(Scan, ResultIsAskedForByAnIndexThatIsSentAsItIs)
{
    replyNonZero(expectCommand(24, kQuery).word(0, 0).word(4, 0), kQuery);
    expectCommand(24, kQuery).word(0, 1).word(4, 5);

    RecordOutput<TarnNeighborBss> bss;
    EXPECT_EQ(TarnGetRadioNeighboringResultAt("ledd", 1, 0, bss.record()), 0u);
    bss.expectFrom(28);
    EXPECT_EQ(TarnGetRadioNeighboringResultAt("ledd", 2, 5, bss.record()), 0u);
}

// The order in which the steps of a scan make sense is the caller's business.
TEST_F(Scan, ResultMayBeAskedForWithoutAScan)
{
    expectCommand(24, kQuery).word(0, 0).word(4, 1).status(9);

    RecordOutput<TarnNeighborBss> bss;
    EXPECT_EQ(TarnGetRadioNeighboringResultAt("ledd", 1, 1, bss.record()), 9u);
}

TEST_F(Scan, TimeOutLeavesTheResult)
{
    expectCommand(24, kQuery).word(0, 0).word(4, 1).fail(7);

    RecordOutput<TarnNeighborBss> bss;
    EXPECT_EQ(TarnGetRadioNeighboringResultAt("ledd", 1, 1, bss.record()), TARN_TIMED_OUT);
    bss.expectUntouched();
}

TEST_F(Scan, EachMissingOutputIsNamed)
{
    EXPECT_EQ(TarnGetRadioNeighboringStatus("ledd", 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetRadioNeighboringResultNum("ledd", 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetRadioNeighboringResultAt("ledd", 1, 0, nullptr), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("status is NULL", "number is NULL", "bss is NULL"));
}

} // namespace
} // namespace tarn::test
