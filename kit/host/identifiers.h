// Names of callers and services.
#pragma once

#include "packet.h"

#include <cstddef>
#include <cstring>

namespace koriil
{

// 1 to 31 characters of which the first is ASCII and not a control character; what follows is the caller's own business.
inline bool isCallerId(const char* id)
{
    const auto first = static_cast<unsigned char>(id[0]);
    return first >= 0x20 && first <= 0x7F && strnlen(id, kIdentifierSize) < kIdentifierSize;
}

// 1 to 31 letters, digits, '_', '-' and '.', no '.' in front: each is a file name, and none leaves its directory.
inline bool isServiceId(const char* id)
{
    static constexpr char kAllowed[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-.";
    const std::size_t length = strnlen(id, kIdentifierSize);
    return length > 0 && length < kIdentifierSize && id[0] != '.' && std::strspn(id, kAllowed) == length;
}

// For a valid `id`.
inline void copyIdentifier(char (&field)[kIdentifierSize], const char* id)
{
    std::memcpy(field, id, strnlen(id, kIdentifierSize - 1));
}

} // namespace koriil
