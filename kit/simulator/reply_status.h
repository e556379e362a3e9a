// The reply status of a command: its meaning, and its numbers on the wire.
#pragma once

#include <cstdint>
#include <string>

namespace tarn::simulator
{

enum class ReplyStatus : std::uint32_t
{
    kDone,
    kNoSuchObject, // no radio, interface, station, entry ... of that id, name or index
    kInvalidValue,
    kBusy, // what is running has to end first
    kFull, // a list has no room for another entry
    kAlreadyThere,
    kNotThere,   // nothing to remove, cancel or read
    kSwitchedOff // what this needs is switched off
};

constexpr std::uint32_t kReplyStatusCount = 8;

// Thrown where a request cannot be granted; the reply carries the status.
struct Refused
{
    ReplyStatus status;
};

// Its number in replies of the wireless device service and of the control identifier: 0, or 16 and up.
std::uint32_t deviceStatus(ReplyStatus status);

// Its number in replies of the proxy and the mirror: 0, or -201 and down, as an unsigned word.
std::uint32_t moduleStatus(ReplyStatus status);

// The bit of a failure in the device service's error mask; 0 for kDone.
std::uint32_t errorMaskBit(ReplyStatus status);

// The text for a number of the proxy or the mirror. Throws Refused for one that they never answer.
std::string moduleStatusText(std::uint32_t number);

} // namespace tarn::simulator
