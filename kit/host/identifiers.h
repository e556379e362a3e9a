// Names of callers and services.
#pragma once

#include "packet.h"

#include <algorithm>
#include <cstring>

namespace koriil
{

// 1 to 31 characters, the first in 0x20 to 0x7F; the others are not checked.
inline bool isCallerId(const char* id)
{
    const auto first = static_cast<unsigned char>(id[0]);
    return first >= 0x20 && first <= 0x7F && strnlen(id, kIdentifierSize) < kIdentifierSize;
}

// 1 to 31 letters, digits, '_', '-' and '.', the first not '.': every such name is a file name within its directory.
inline bool isServiceId(const char* id)
{
    const auto isAllowed = [](char c)
    { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-' || c == '.'; };
    const std::size_t length = strnlen(id, kIdentifierSize);
    return length > 0 && length < kIdentifierSize && id[0] != '.' && std::all_of(id, id + length, isAllowed);
}

// For a valid `id`, into a field of zeros.
inline void copyIdentifier(char (&field)[kIdentifierSize], const char* id)
{
    std::memcpy(field, id, strnlen(id, kIdentifierSize - 1));
}

} // namespace koriil
