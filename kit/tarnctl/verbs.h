// The everyday commands: each a call or a few, with what matters of the answer.
#pragma once

#include "console.h"

#include <optional>
#include <string>

namespace tarn::ctl
{

ExitCode logLevel(const Console& console, const std::optional<std::string>& level);
ExitCode radios(const Console& console);
ExitCode firmware(const Console& console);

// "on" or "off"; nothing to read the state.
ExitCode mirror(const Console& console, const std::optional<std::string>& state);
ExitCode telnet(const Console& console, const std::optional<std::string>& state, const std::optional<std::string>& processId);

// The simulated gateway publishes an event.
ExitCode publish(const Console& console, const std::string& event, const std::string& data);

} // namespace tarn::ctl
