#include "hexadecimal.h"

namespace tarn::base
{

int hexDigitValue(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    return -1;
}

void appendHex(std::string& text, const void* bytes, std::size_t size, std::string_view separator)
{
    const auto* const from = static_cast<const std::uint8_t*>(bytes);
    for (std::size_t i = 0; i < size; ++i)
    {
        if (i != 0)
            text += separator;
        text += kHexDigits[from[i] >> 4];
        text += kHexDigits[from[i] & 15];
    }
}

std::string hexText(const void* bytes, std::size_t size, std::string_view separator)
{
    std::string text;
    appendHex(text, bytes, size, separator);
    return text;
}

std::optional<Bytes> parseHex(std::string_view text, std::string_view separator)
{
    Bytes bytes;
    while (!text.empty())
    {
        if (!bytes.empty())
        {
            if (text.substr(0, separator.size()) != separator)
                return std::nullopt;
            text.remove_prefix(separator.size());
        }
        const int high = text.empty() ? -1 : hexDigitValue(text[0]);
        const int low = text.size() < 2 ? -1 : hexDigitValue(text[1]);
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
        text.remove_prefix(2);
    }
    return bytes;
}

} // namespace tarn::base
