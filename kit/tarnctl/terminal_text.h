// Text for a terminal: colours, widths, and nothing in it that a terminal would obey.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn::ctl
{

enum class Tone
{
    kPlain,
    kStrong,
    kFaint,
    kGood,
    kWarning,
    kBad
};

// The text in that tone, by the colours that every terminal has.
std::string toned(const std::string& text, Tone tone);

// The text as it is where it is UTF-8; what is not, and control characters, as \xNN. Names of networks are chosen by strangers.
std::string printable(std::string_view text);

// Columns of a text in UTF-8, counted one a character.
std::size_t columnsOf(std::string_view text);

} // namespace tarn::ctl
