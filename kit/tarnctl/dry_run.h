// What a call would send, instead of sending it.
#pragma once

#include "call.h"
#include "console.h"

namespace tarn::ctl
{

// For a report of a call that was held back.
void writeMessage(const Console& console, const Report& report);

// The document of kind "dry-run".
Json messageDocument(const Report& report);

} // namespace tarn::ctl
