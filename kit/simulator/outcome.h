// What becomes of a request, and the statuses that say so on the wire.
#pragma once

#include <cstdint>
#include <string>

namespace tarn::simulator
{

enum class Outcome : std::uint32_t
{
    kDone,
    kNoSuchObject, // no radio, interface, station, entry ... of that id, name or index
    kInvalidValue,
    kBusy, // what is running has to end first
    kFull, // a list has no room for another entry
    kAlreadyThere,
    kNotThere,   // what is to be taken away, cancelled or read has never been put there
    kSwitchedOff // what this needs is switched off
};

constexpr std::uint32_t kOutcomeCount = 8;

// Thrown wherever a request cannot be granted. Whoever serves the request answers with the outcome.
struct Refused
{
    Outcome outcome;
};

// The reply status of the wireless device service and of the control identifier: 0, or 16 and up.
std::uint32_t deviceStatus(Outcome outcome);

// The reply status of the proxy and the mirror, as the word that carries it: 0, or -201 and down.
std::uint32_t moduleStatus(Outcome outcome);

// The bit that stands for a failure in the device service's error mask; 0 for kDone.
std::uint32_t errorMaskBit(Outcome outcome);

// What a status of the proxy or the mirror means, in words. Throws Refused for one that they never answer.
std::string moduleStatusText(std::uint32_t status);

} // namespace tarn::simulator
