// `tarnctl list`: which functions there are.
#pragma once

#include "console.h"

#include <string>

namespace tarn::ctl
{

// Empty texts select everything.
struct Selection
{
    std::string service;
    std::string group;
    std::string text; // in the name, group or description, in letters of either case
};

ExitCode list(const Console& console, const Selection& selection);

} // namespace tarn::ctl
