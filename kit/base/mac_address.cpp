#include "mac_address.h"

#include "hexadecimal.h"

#include <algorithm>

namespace tarn::base
{

std::string macText(const MacAddress& address)
{
    return hexText(address, ":");
}

std::optional<MacAddress> parseMacAddress(std::string_view text, char separator)
{
    const std::optional<Bytes> bytes = parseHex(text, std::string_view(&separator, 1));
    MacAddress address{};
    if (!bytes || bytes->size() != address.size())
        return std::nullopt;
    std::copy(bytes->begin(), bytes->end(), address.begin());
    return address;
}

bool isIndividual(const MacAddress& address)
{
    return address != MacAddress{} && (address[0] & 1) == 0;
}

} // namespace tarn::base
