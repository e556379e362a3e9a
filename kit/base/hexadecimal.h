// Bytes as hexadecimal digits, two for each byte, and back.
#pragma once

#include "bytes.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tarn::base
{

// Every character that can be a digit.
inline constexpr char kHexDigits[] = "0123456789abcdefABCDEF";

// 0 to 15, or -1 for any other character.
int hexDigitValue(char digit);

// Allocates nothing if `text` has reserved the room.
void appendHex(std::string& text, const void* bytes, std::size_t size, std::string_view separator = "");

std::string hexText(const void* bytes, std::size_t size, std::string_view separator = "");

template <typename Container>
std::string hexText(const Container& bytes, std::string_view separator = "")
{
    return hexText(bytes.data(), bytes.size(), separator);
}

// Takes digits of both cases. Null if the text is anything but pairs of digits with the separator between them.
std::optional<Bytes> parseHex(std::string_view text, std::string_view separator = "");

} // namespace tarn::base
