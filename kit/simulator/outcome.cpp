#include "outcome.h"

namespace tarn::simulator
{

namespace
{

// In the order of the enumeration.
const char* const kTexts[kOutcomeCount] = {
    "done", "no such object", "invalid value", "busy", "no room left", "already there", "not there", "switched off",
};

constexpr std::uint32_t kDeviceBase = 15;
constexpr std::uint32_t kModuleBase = 200;

} // namespace

std::uint32_t deviceStatus(Outcome outcome)
{
    return outcome == Outcome::kDone ? 0 : kDeviceBase + static_cast<std::uint32_t>(outcome);
}

std::uint32_t moduleStatus(Outcome outcome)
{
    return outcome == Outcome::kDone ? 0 : 0u - kModuleBase - static_cast<std::uint32_t>(outcome);
}

std::uint32_t errorMaskBit(Outcome outcome)
{
    return outcome == Outcome::kDone ? 0 : 1u << (static_cast<std::uint32_t>(outcome) - 1);
}

std::string moduleStatusText(std::uint32_t status)
{
    for (std::uint32_t i = 0; i < kOutcomeCount; ++i)
        if (moduleStatus(static_cast<Outcome>(i)) == status)
            return kTexts[i];
    throw Refused{Outcome::kNoSuchObject};
}

} // namespace tarn::simulator
