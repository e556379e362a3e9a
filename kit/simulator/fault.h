// What goes wrong on request: the answers of the services, and the events.
#pragma once

#include "fault_kind.h"
#include "fields.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tarn::simulator
{

constexpr std::uint32_t kFaultMilliseconds = 1000; // unless said otherwise

struct Fault
{
    FaultKind kind = FaultKind::kDelay;
    std::optional<std::string> service;        // all three if left out
    std::optional<std::string> function;       // all if left out
    std::optional<std::string> event;          // of the faults of events; all if left out
    std::optional<std::uint32_t> count;        // how often it still happens; for ever if left out
    std::uint32_t probability = 100;           // percent
    std::optional<std::uint32_t> milliseconds; // of kDelay, in real time; of kEventLate, in the gateway's
    std::optional<std::int32_t> status;        // of kStatus and kIpcStatus, which always have it
    std::optional<bool> losesSettings;         // of kDie and kRestart: the gateway begins again with its scenario

    bool isOfEvents() const
    {
        return kind >= FaultKind::kEventLost;
    }
};

template <>
const Description<Fault>& descriptionOf();

} // namespace tarn::simulator
