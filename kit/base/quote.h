// Texts whose bytes may be anything, shown in ASCII.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarn::base
{

// What is not printable ASCII as \xNN, and a backslash as two.
std::string escaped(std::string_view text);

// The text that was escaped so; none for a backslash that is followed by anything else.
std::optional<std::string> unescaped(std::string_view text);

// The same between quotation marks; one in the text has a backslash in front of it.
std::string inQuotes(std::string_view text);

// As a string of JSON. The bytes need not be UTF-8: what is not printable ASCII, a quotation mark or a backslash becomes
// \u00NN, the character of its number.
std::string inJsonQuotes(std::string_view text);

} // namespace tarn::base
