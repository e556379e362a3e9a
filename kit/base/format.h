// printf to a string.
#pragma once

#include <cstdarg>
#include <string>

namespace tarn::base
{

// The format itself if it cannot be rendered. Both see the caller's errno, for %m.
__attribute__((format(printf, 1, 2))) std::string format(const char* format, ...);
__attribute__((format(printf, 1, 0))) std::string vformat(const char* format, std::va_list arguments);

} // namespace tarn::base
