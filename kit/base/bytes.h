#pragma once

#include <cstdint>
#include <vector>

namespace tarn::base
{

using Bytes = std::vector<std::uint8_t>;

} // namespace tarn::base
