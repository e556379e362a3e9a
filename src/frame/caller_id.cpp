#include "caller_id.h"

#include <cstring>

namespace tarn
{

bool isCallerId(const char* id)
{
    constexpr std::size_t kLongest = 31;
    const auto first = static_cast<signed char>(id[0]); // plain char is unsigned on some targets
    return first >= ' ' && std::memchr(id + 1, '\0', kLongest) != nullptr;
}

} // namespace tarn
