#include "terminal_text.h"

#include "base/quote.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace tarn::ctl
{

namespace
{

// Select Graphic Rendition parameters, in the order of Tone.
constexpr std::array<const char*, 6> kRenditions = {"0", "1", "2", "32", "33", "31"};

std::uint8_t byteAt(std::string_view text, std::size_t position)
{
    return static_cast<std::uint8_t>(text[position]);
}

bool isContinuation(std::uint8_t byte)
{
    return (byte & 0xC0u) == 0x80u;
}

// Bytes of the sequence that this byte begins; 0 if it begins none.
std::size_t sequenceLength(std::uint8_t first)
{
    if (first < 0x80u)
        return 1;
    if (first >= 0xC2u && first <= 0xDFu)
        return 2;
    if (first >= 0xE0u && first <= 0xEFu)
        return 3;
    return first >= 0xF0u && first <= 0xF4u ? 4 : 0;
}

std::uint32_t characterOf(std::string_view sequence)
{
    constexpr std::array<std::uint32_t, 5> kFirstBits = {0, 0x7F, 0x1F, 0x0F, 0x07};
    std::uint32_t character = byteAt(sequence, 0) & kFirstBits.at(sequence.size());
    for (std::size_t i = 1; i < sequence.size(); ++i)
        character = (character << 6u) | (byteAt(sequence, i) & 0x3Fu);
    return character;
}

// Controls, and what changes the direction or the place of the text around it.
bool isUnsafe(std::uint32_t character)
{
    const auto isIn = [character](std::uint32_t first, std::uint32_t last) { return character >= first && character <= last; };
    return isIn(0, 0x1F) || isIn(0x7F, 0x9F) || isIn(0x200B, 0x200F) || isIn(0x2028, 0x202E) || isIn(0x2060, 0x206F) ||
           isIn(0xD800, 0xDFFF) || character == 0xFEFF || character > 0x10FFFF;
}

// The sequence at the start of the text; empty if there is none that may be shown.
std::string_view showable(std::string_view text)
{
    constexpr std::array<std::uint32_t, 5> kLeast = {0, 0, 0x80, 0x800, 0x10000};
    const std::size_t length = sequenceLength(byteAt(text, 0));
    if (length == 0 || length > text.size())
        return {};
    for (std::size_t i = 1; i < length; ++i)
        if (!isContinuation(byteAt(text, i)))
            return {};
    const std::uint32_t character = characterOf(text.substr(0, length));
    return isUnsafe(character) || character < kLeast.at(length) ? std::string_view() : text.substr(0, length);
}

} // namespace

std::string toned(const std::string& text, Tone tone)
{
    if (tone == Tone::kPlain || text.empty())
        return text;
    return std::string("\x1b[") + kRenditions.at(static_cast<std::size_t>(tone)) + "m" + text + "\x1b[0m";
}

std::string printable(std::string_view text)
{
    std::string result;
    while (!text.empty())
    {
        const std::string_view sequence = showable(text);
        result += sequence.empty() ? base::escaped(text.substr(0, 1)) : std::string(sequence);
        text.remove_prefix(std::max<std::size_t>(sequence.size(), 1));
    }
    return result;
}

std::size_t columnsOf(std::string_view text)
{
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return !isContinuation(static_cast<std::uint8_t>(byte)); }));
}

} // namespace tarn::ctl
