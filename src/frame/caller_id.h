// The caller id: the first argument of every function but the local utilities.
#pragma once

#include <cstddef>
#include <cstring>

namespace tarn
{

// A text of 1 to 31 characters, the first from 0x20 to 0x7F. Reads no byte behind the NUL, and at most 32. `id` is not null.
inline bool isCallerId(const char* id)
{
    constexpr std::size_t kLongest = 31;
    const auto first = static_cast<signed char>(id[0]); // plain char is unsigned on some targets
    return first >= ' ' && std::memchr(id + 1, '\0', kLongest) != nullptr;
}

} // namespace tarn
