#pragma once

#include <cstddef>

namespace bench
{

// How often this process has allocated memory.
std::size_t allocations();

} // namespace bench
