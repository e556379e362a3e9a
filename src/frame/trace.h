// The trace record that every failure writes.
#pragma once

#include <cstdint>

namespace tarn
{

constexpr std::uint32_t kTraceLevel = 1;

// Writes a text that takes no arguments.
void trace(const char* tag, std::uint32_t line, const char* text);

} // namespace tarn
