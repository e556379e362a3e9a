// Shows something again and again.
#pragma once

#include "console.h"
#include "exit_code.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace tarn::ctl
{

struct WatchOptions
{
    std::optional<double> seconds; // between two times; none: once only
    std::optional<std::uint32_t> count;
    bool waitsFirst = false; // before the first time
};

// Without seconds shows once. Else until it has been shown so many times, SIGINT or SIGTERM comes, or it fails. A terminal
// shows the latest in place; else one follows the other, in JSON one a line.
ExitCode watch(const Console& console, const WatchOptions& options, const std::function<ExitCode(const Console&)>& show);

} // namespace tarn::ctl
