// Trace levels, and this library's own trace lines.
#pragma once

#include "kor_iil.h"

#include <cstdint>

namespace koriil
{

constexpr std::uint32_t kTraceError = 1; // what a component reports: a failed call, a rejected argument
constexpr std::uint32_t kTraceWarning = 2;
constexpr std::uint32_t kTraceNotice = 3;
constexpr std::uint32_t kTraceDebug = 4;

} // namespace koriil

// This library's tag is "koriil", its levels are 2 and above: level 1 is left to the components.
#define KORIIL_REPORT(level, ...) KorIilTrace(level, "koriil", __LINE__, __VA_ARGS__)
