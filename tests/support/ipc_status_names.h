// The names of the IPC statuses as the tests know them: a statement of their own, not the library's.
#pragma once

#include <cstdint>
#include <iterator>

namespace tarn::test
{

inline constexpr const char* kIpcStatusNames[] = {
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
inline constexpr std::uint32_t kIpcStatusCount = static_cast<std::uint32_t>(std::size(kIpcStatusNames));

// "Unknown" for every other status.
constexpr const char* ipcStatusName(std::uint32_t status)
{
    return status < kIpcStatusCount ? kIpcStatusNames[status] : "Unknown";
}

} // namespace tarn::test
