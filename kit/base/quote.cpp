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

std::optional<std::string> unescaped(std::string_view text)
{
    std::string result;
    while (!text.empty())
    {
        std::size_t length = 1;
        if (text[0] != '\\')
        {
            result += text[0];
        }
        else if (text.substr(0, 2) == "\\\\")
        {
            result += '\\';
            length = 2;
        }
        else
        {
            length = 4;
            const std::optional<Bytes> byte = text.substr(0, 2) == "\\x" ? parseHex(text.substr(2, 2)) : std::nullopt;
            if (!byte || byte->size() != 1)
                return std::nullopt;
            result += static_cast<char>(byte->front());
        }
        text.remove_prefix(length);
    }
    return result;
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
