// What the programs with verbs have in common: the options that every verb has, and what becomes of a command line that is
// wrong and of a call that fails.
#pragma once

#include "console.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace CLI // NOLINT(readability-identifier-naming)
{
class App;
}

namespace tarn::ctl
{

class Verbs;

// --layout, --json, --format, --color and --version.
void addCommonOptions(CLI::App& parser, Console& console, std::optional<std::string>& layout, const char* version);

// Parses the command line, calls `prepare`, and carries out the verb that was given.
ExitCode carryOut(CLI::App& parser, const Verbs& verbs, Console& console, const std::optional<std::string>& layout,
                  const std::vector<std::string>& arguments, const std::function<void()>& prepare);

} // namespace tarn::ctl
