// MAC addresses, and texts of hexadecimal digits.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarn::simulator
{

using MacAddress = std::array<std::uint8_t, 6>;

// Six pairs of hexadecimal digits with colons between them.
std::optional<MacAddress> parseMacAddress(std::string_view text);
std::string toString(const MacAddress& address);

// Neither all zeros nor a group address.
bool isStationAddress(const MacAddress& address);

// A mobility domain id: two bytes, written as four hexadecimal digits.
using MobilityDomain = std::array<std::uint8_t, 2>;
std::optional<MobilityDomain> parseMobilityDomain(std::string_view text);
std::string toString(const MobilityDomain& domain);

} // namespace tarn::simulator
