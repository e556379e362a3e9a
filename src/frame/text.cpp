#include "text.h"

#include <cstring>

namespace tarn
{

void copyText(char* to, std::size_t size, const char* from, std::size_t readable)
{
    if (size == 0)
        return;
    const std::size_t room = size - 1 < readable ? size - 1 : readable;
    const void* const end = std::memchr(from, '\0', room);
    const std::size_t length = end == nullptr ? room : static_cast<std::size_t>(static_cast<const char*>(end) - from);
    std::memcpy(to, from, length);
    to[length] = '\0';
}

} // namespace tarn
