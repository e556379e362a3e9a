#include "mac_address.h"

namespace tarn::simulator
{

namespace
{

int digitValue(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    return -1;
}

// Pairs of digits, each but the first behind a separator of so many characters.
template <std::size_t Count>
std::optional<std::array<std::uint8_t, Count>> parseBytes(std::string_view text, std::string_view separator)
{
    if (text.size() != Count * 2 + (Count - 1) * separator.size())
        return std::nullopt;
    std::array<std::uint8_t, Count> bytes{};
    std::size_t position = 0;
    for (std::size_t i = 0; i < Count; ++i)
    {
        if (i > 0 && text.substr(position, separator.size()) != separator)
            return std::nullopt;
        position += i > 0 ? separator.size() : 0;
        const int high = digitValue(text[position]);
        const int low = digitValue(text[position + 1]);
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes[i] = static_cast<std::uint8_t>(high * 16 + low);
        position += 2;
    }
    return bytes;
}

template <std::size_t Count>
std::string formatBytes(const std::array<std::uint8_t, Count>& bytes, std::string_view separator)
{
    static const char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : bytes)
    {
        if (!text.empty())
            text += separator;
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

} // namespace

std::optional<MacAddress> parseMacAddress(std::string_view text)
{
    return parseBytes<6>(text, ":");
}

std::string toString(const MacAddress& address)
{
    return formatBytes(address, ":");
}

bool isStationAddress(const MacAddress& address)
{
    return address != MacAddress{} && (address[0] & 1) == 0;
}

std::optional<MobilityDomain> parseMobilityDomain(std::string_view text)
{
    return parseBytes<2>(text, "");
}

std::string toString(const MobilityDomain& domain)
{
    return formatBytes(domain, "");
}

} // namespace tarn::simulator
