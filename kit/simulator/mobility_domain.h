#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tarn::simulator
{

// The id of a mobility domain. Its text is four hexadecimal digits.
using MobilityDomain = std::array<std::uint8_t, 2>;

std::optional<MobilityDomain> parseMobilityDomain(std::string_view text);

} // namespace tarn::simulator
