#pragma once

#include <string>
#include <string_view>

namespace tarn::base
{

// ASCII letters in lower case, everything else as it is.
std::string lowerCase(std::string_view text);

} // namespace tarn::base
