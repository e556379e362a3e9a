// What KorIilLastStatus tells.
#pragma once

#include <cstdint>

namespace koriil
{

// Returns the status, which is from now on that of this thread's latest call.
std::uint32_t remembered(std::uint32_t status);

} // namespace koriil
