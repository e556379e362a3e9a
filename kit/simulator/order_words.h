// An order as one line, and as the words of it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn::simulator
{

// As a shell has them: separated by blanks; what is between ' and ', or between " and ", is as it is, and so is the character
// behind a backslash. Throws Refused where a quotation mark is missing.
std::vector<std::string> wordsOf(std::string_view line);

} // namespace tarn::simulator
