// Many calls in one process: each line that is read is a JSON object that says which, and gets one document on one line.
#pragma once

#include "call.h"
#include "console.h"

#include <istream>

namespace tarn::ctl
{

// To the end of the lines, in their order; each document is written before the next line is read. A line that is no such object
// gets one of kind "error". Returns the exit code of the first line that failed. Callers are that one where a line names none;
// messages that are held are shown instead of sent.
ExitCode callLines(const Console& console, std::istream& lines, const CallerId& callerId, Passage passage);

} // namespace tarn::ctl
