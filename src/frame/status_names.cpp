#include <cstdint>

#include "tarn_frame.h"

namespace
{

// Slots of one size instead of pointers: the table then needs no relocation and stays in read-only memory.
constexpr char kNames[][17] = {
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
constexpr std::uint32_t kCount = sizeof kNames / sizeof kNames[0];
static_assert(kCount == 22, "statuses 0 to 21");

} // namespace

const char* tarnIpcStatusName(uint32_t status)
{
    return status < kCount ? kNames[status] : "Unknown";
}
