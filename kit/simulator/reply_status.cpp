#include "reply_status.h"

#include <cstddef>

namespace tarn::simulator
{

namespace
{

// In the order of the enumeration.
const char* const kNames[kReplyStatusCount] = {"DONE", "NO_SUCH_OBJECT", "INVALID_VALUE", "BUSY",
                                               "FULL", "ALREADY_THERE",  "NOT_THERE",     "SWITCHED_OFF"};

} // namespace

const char* toString(ReplyStatus status)
{
    return kNames[static_cast<std::size_t>(status)];
}

std::uint32_t errorMaskBit(ReplyStatus status)
{
    return status == ReplyStatus::kDone ? 0 : 1u << (static_cast<std::uint32_t>(status) - 1);
}

} // namespace tarn::simulator
