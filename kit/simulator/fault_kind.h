// The kinds of what can go wrong on request.
#pragma once

#include <cstdint>

namespace tarn::simulator
{

enum class FaultKind : std::uint32_t
{
    kDelay,     // carried out, and answered later
    kNoAnswer,  // carried out, and never answered
    kLength,    // carried out; the answer is refused for its length
    kGarbage,   // carried out; every byte of the answer is random
    kStatus,    // not carried out, answered with that status
    kIpcStatus, // not carried out, refused by the IPC with that status
    kHang,      // not carried out until the fault is taken away
    kDie,       // carried out; the service ends without an answer, and comes back
    kRestart,   // carried out and answered; then the service ends and comes back
    kEventLost,
    kEventDoubled,
    kEventLate
};

inline constexpr const char* kFaultKindNames[] = {"delay", "noAnswer", "length",  "garbage",   "status",       "ipcStatus",
                                                  "hang",  "die",      "restart", "eventLost", "eventDoubled", "eventLate"};

} // namespace tarn::simulator
