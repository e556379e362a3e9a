// The names of the IPC statuses.
#include "tarn_frame.h"

#include <gtest/gtest.h>

#include <iterator>

namespace
{

TEST(IpcStatusName, EachStatusOfTheTableHasItsName)
{
    const char* const names[] = {
        "OK",
        "ERR",
        "OVERSIZE",
        "BAD_PARAM",
        "NO_MEM",
        "TX_FAIL",
        "RX_FAIL",
        "TIMEOUT",
        "UNKNOWN_SRC_ID",
        "UNKNOWN_DST_ID",
        "UNKNOWN_COMM",
        "MISMATCH_COMM",
        "UNSUPPORT",
        "UNKNOWN_CMD",
        "BAD_CMD",
        "BAD_RET",
        "MISMATCH_CMD_LEN",
        "UNKNOWN_EVT",
        "BAD_EVT",
        "MISMATCH_EVT_LEN",
        "CONFLICT_ID",
        "BUSY",
    };
    ASSERT_EQ(std::size(names), 22u);
    for (uint32_t status = 0; status != std::size(names); ++status)
        EXPECT_STREQ(tarnIpcStatusName(status), names[status]) << status;
}

TEST(IpcStatusName, AnyOtherStatusIsUnknown)
{
    for (const uint32_t status : {22u, 23u, 24u, 31u, 32u, 255u, 256u, 263u, 0x10000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
        EXPECT_STREQ(tarnIpcStatusName(status), "Unknown") << status;
}

TEST(IpcStatusName, StaysWhatItIsWhenAnotherIsAskedFor)
{
    const char* const timeOut = tarnIpcStatusName(7);
    const char* const unknown = tarnIpcStatusName(22);
    EXPECT_STREQ(tarnIpcStatusName(21), "BUSY");
    EXPECT_STREQ(timeOut, "TIMEOUT");
    EXPECT_STREQ(unknown, "Unknown");
}

} // namespace
