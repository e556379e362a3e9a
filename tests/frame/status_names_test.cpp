// The names of the IPC statuses.
#include "support/ipc_status_names.h"
#include "tarn_frame.h"

#include <gtest/gtest.h>

namespace
{

TEST(IpcStatusName, EachStatusOfTheTableHasItsName)
{
    ASSERT_EQ(tarn::test::kIpcStatusCount, 22u);
    for (std::uint32_t status = 0; status != tarn::test::kIpcStatusCount; ++status)
        EXPECT_STREQ(tarnIpcStatusName(status), tarn::test::kIpcStatusNames[status]) << status;
}

TEST(IpcStatusName, AnyOtherStatusIsUnknown)
{
    for (const std::uint32_t status :
         {22u, 23u, 24u, 31u, 32u, 255u, 256u, 263u, 0x10000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
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
