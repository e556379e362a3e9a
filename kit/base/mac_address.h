#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tarn::base
{

using MacAddress = std::array<std::uint8_t, 6>;
inline constexpr std::uint32_t kMacAddressSize = std::tuple_size<MacAddress>::value;

struct MacAddressHash
{
    std::size_t operator()(const MacAddress& address) const
    {
        std::uint64_t number = 0;
        for (const std::uint8_t byte : address)
            number = number << 8 | byte;
        return std::hash<std::uint64_t>()(number);
    }
};

// "02:00:00:00:01:05".
std::string macText(const MacAddress& address);

// Six pairs of hexadecimal digits of either case with the separator between them; null for anything else.
std::optional<MacAddress> parseMacAddress(std::string_view text, char separator = ':');

// Whether it can be the address of one device: neither all zeros nor a group address.
bool isIndividual(const MacAddress& address);

} // namespace tarn::base
