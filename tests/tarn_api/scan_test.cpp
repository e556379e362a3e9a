// Scanning a radio's neighbourhood.
#include "device_test.h"

namespace tarn::test
{
namespace
{

constexpr std::uint32_t kQuery = 9584;
constexpr std::uint32_t kAction = 4444;
constexpr std::uint32_t kOut = 28;

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
    expectWordAt(kOut, 20, kQuery, TarnGetRadioNeighboringStatus);
    expectWordAt(kOut, 23, kQuery, TarnGetRadioNeighboringResultNum);
}

// The radio's id goes less one, the index does not.
TEST_F(Scan, ResultIsAskedForByAnIndexThatIsSentAsItIs)
{
    replyNonZero(expectCommand(24, kQuery).word(0, 0).word(4, 0), kQuery);
    expectCommand(24, kQuery).word(0, 1).word(4, 5);

    RecordOutput<TarnNeighborBss, 88> bss;
    EXPECT_EQ(TarnGetRadioNeighboringResultAt("ledd", 1, 0, bss.record()), 0u);
    bss.expectFrom(kOut);
    EXPECT_EQ(TarnGetRadioNeighboringResultAt("ledd", 2, 5, bss.record()), 0u);
}

TEST_F(Scan, EachMissingOutputIsNamed)
{
    EXPECT_EQ(missing(TarnGetRadioNeighboringStatus), "status");
    EXPECT_EQ(missing(TarnGetRadioNeighboringResultNum), "number");
    EXPECT_EQ(missing(TarnGetRadioNeighboringResultAt), "bss");
}

} // namespace
} // namespace tarn::test
