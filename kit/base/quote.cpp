#include "quote.h"

#include "hexadecimal.h"

namespace tarn::base
{

namespace
{

bool isPrintable(char character)
{
    return character >= 0x20 && character < 0x7f;
}

std::string escapedWith(std::string_view text, std::string_view backslashed)
{
    std::string result;
    for (const char character : text)
        if (backslashed.find(character) != std::string_view::npos)
            result += {'\\', character};
        else if (isPrintable(character))
            result += character;
        else
            appendHex(result += "\\x", &character, 1);
    return result;
}

} // namespace

std::string escaped(std::string_view text)
{
    return escapedWith(text, "\\");
}

std::string inQuotes(std::string_view text)
{
    return '"' + escapedWith(text, "\"\\") + '"';
}

std::string inJsonQuotes(std::string_view text)
{
    std::string result = "\"";
    for (const char character : text)
        if (isPrintable(character) && character != '"' && character != '\\')
            result += character;
        else
            appendHex(result += "\\u00", &character, 1);
    return result + '"';
}

} // namespace tarn::base
