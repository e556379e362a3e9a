// Scanning a radio's neighbourhood.
#include "device_test.h"

namespace tarn::test
{
namespace
{

constexpr std::uint32_t kScanQuery = 9584;
constexpr std::uint32_t kAction = 4444;
constexpr std::uint32_t kScanOut = 28;

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
    expectWordAt(kScanOut, 20, kScanQuery, TarnGetRadioNeighboringStatus);
    expectWordAt(kScanOut, 23, kScanQuery, TarnGetRadioNeighboringResultNum);
}

// The radio's id goes less one, the index does not.
TEST_F(Scan, ResultIsAskedForByAnIndexThatIsSentAsItIs)
{
    replyNonZero(expectCommand(24, kScanQuery).word(0, 0).word(4, 0), kScanQuery);
    expectCommand(24, kScanQuery).word(0, 1).word(4, 5);

    RecordOutput<TarnNeighborBss, 88> bss;
    EXPECT_EQ(TarnGetRadioNeighboringResultAt("ledd", 1, 0, bss.record()), 0u);
    bss.expectFrom(kScanOut);
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
