// `tarnctl describe`: what one function takes, sends, checks and gives back.
#pragma once

#include "console.h"

#include <string>

namespace tarn::ctl
{

ExitCode describe(const Console& console, const std::string& function);

} // namespace tarn::ctl
