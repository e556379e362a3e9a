#include "reply_status.h"

namespace tarn::simulator
{

namespace
{

// In the order of the enumeration.
const char* const kTexts[kReplyStatusCount] = {
    "done", "no such object", "invalid value", "busy", "no room left", "already there", "not there", "switched off",
};

constexpr std::uint32_t kDeviceBase = 15;
constexpr std::uint32_t kModuleBase = 200;

} // namespace

std::uint32_t deviceStatus(ReplyStatus status)
{
    return status == ReplyStatus::kDone ? 0 : kDeviceBase + static_cast<std::uint32_t>(status);
}

std::uint32_t moduleStatus(ReplyStatus status)
{
    return status == ReplyStatus::kDone ? 0 : 0u - kModuleBase - static_cast<std::uint32_t>(status);
}

std::uint32_t errorMaskBit(ReplyStatus status)
{
    return status == ReplyStatus::kDone ? 0 : 1u << (static_cast<std::uint32_t>(status) - 1);
}

std::string moduleStatusText(std::uint32_t number)
{
    for (std::uint32_t i = 0; i < kReplyStatusCount; ++i)
        if (moduleStatus(static_cast<ReplyStatus>(i)) == number)
            return kTexts[i];
    throw Refused{ReplyStatus::kNoSuchObject};
}

} // namespace tarn::simulator
