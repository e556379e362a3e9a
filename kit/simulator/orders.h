// What a tester orders while the gateway runs, by words such as "radar 52": in messages of the control identifier, and in
// scripts.
#pragma once

#include "model.h"
#include "request_log.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tarn::simulator
{

// What orders need of the gateway beside its model.
struct Surroundings
{
    Clock& clock;
    RequestLog& log;
    std::function<void()> shutDown;
    std::function<void()> restartServices;
    std::function<void()> loseSettings; // back to the scenario
    std::function<void(Milliseconds time)> passTo;
    std::function<std::optional<Milliseconds>()> nextDue;
};

// Carries it out. Returns the answer. Throws Refused, with its reason, for what is no order or cannot be.
Json carryOut(Model& model, const Surroundings& surroundings, std::string_view order);

} // namespace tarn::simulator
