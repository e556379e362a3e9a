// The reply status of a command: its meaning.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

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

// Thrown where a request cannot be granted; the reply carries the status. The reason is for the log: what was asked for, and
// what there is or was expected instead.
struct Refused
{
    Refused(ReplyStatus why, std::string what) : status(why), reason(std::move(what))
    {
    }

    ReplyStatus status;
    std::string reason;
};

// Its name in layout files, "BUSY". These have its number in the replies of each service, and its text.
const char* toString(ReplyStatus status);

// The bit of a failure in the device service's error mask; 0 for kDone.
std::uint32_t errorMaskBit(ReplyStatus status);

} // namespace tarn::simulator
