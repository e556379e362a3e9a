// Turns a memory fault inside a call into a report, so that the test can name the function and go on.
#pragma once

namespace conformance
{

// Runs action(context). Returns true if it came to its end, false if it touched memory that it must not; *address then says
// which.
bool runTrapped(void (*action)(void* context), void* context, const void** address);

} // namespace conformance
