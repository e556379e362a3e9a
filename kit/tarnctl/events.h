// `tarnctl events`: watches what the device service publishes.
#pragma once

#include "call.h"
#include "console.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarn::ctl
{

struct Watch
{
    std::vector<std::string> events; // names or numbers; none for all of them
    std::optional<std::uint32_t> count;
    std::optional<double> seconds;
    CallerId callerId = kOwnCallerId;
};

// Until the count is reached, the time is up, or SIGINT or SIGTERM comes. Once in a process at a time.
ExitCode watchEvents(const Console& console, const Watch& watch);

} // namespace tarn::ctl
