#include "quote.h"

#include "hexadecimal.h"

namespace tarn::base
{

namespace
{

// `special`: characters to put a backslash in front of. `prefix`: what the two digits of other bytes follow.
std::string escapedWith(std::string_view text, std::string_view special, std::string_view prefix)
{
    std::string result;
    for (const char character : text)
    {
        const auto byte = static_cast<unsigned char>(character);
        if (special.find(character) != std::string_view::npos)
            result += {'\\', character};
        else if (byte >= 0x20 && byte < 0x7f)
            result += character;
        else
            appendHex(result += prefix, &byte, 1);
    }
    return result;
}

constexpr std::string_view kQuoteAndBackslash = "\"\\";

} // namespace

std::string escaped(std::string_view text)
{
    return escapedWith(text, "\\", "\\x");
}

std::string quoted(std::string_view text)
{
    return '"' + escapedWith(text, kQuoteAndBackslash, "\\x") + '"';
}

std::string quotedForJson(std::string_view text)
{
    return '"' + escapedWith(text, kQuoteAndBackslash, "\\u00") + '"';
}

} // namespace tarn::base
