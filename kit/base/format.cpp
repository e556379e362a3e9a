#include "format.h"

#include <cerrno>
#include <cstdio>

namespace tarn::base
{

std::string format(const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    std::string text = vformat(format, arguments);
    va_end(arguments);
    return text;
}

std::string vformat(const char* format, std::va_list arguments)
{
    const int callersErrno = errno;
    std::va_list again;
    va_copy(again, arguments);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): the copy is taken right above.
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    if (length < 0)
        return format;
    std::string text(static_cast<std::size_t>(length), '\0');
    errno = callersErrno;
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

} // namespace tarn::base
