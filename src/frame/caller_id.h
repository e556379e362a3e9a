// The caller id that every function takes first, and the trace records that every failure writes.
#pragma once

#include <cstdint>

namespace tarn
{

inline constexpr std::uint32_t kTraceLevel = 1;

// A text of 1 to 31 characters, the first of them printable ASCII. Reads no byte behind the NUL, and at most 32. Not for null.
bool isCallerId(const char* id);

} // namespace tarn
