// A finished call, for a person and for a program.
#pragma once

#include "call.h"
#include "console.h"

namespace tarn::ctl
{

void writeReport(const Console& console, const Report& report);

// The document of kind "call".
Json reportDocument(const Report& report);

} // namespace tarn::ctl
