// A report as one HTML page that needs nothing else: no scripts, no fonts, no pictures from elsewhere.
#pragma once

#include "tarnctl/console.h"

#include <string>

namespace tarn::ctl
{

std::string reportPage(const Json& report);

} // namespace tarn::ctl
