// Numbers, bytes and texts as a command line gives them, and the way back.
#pragma once

#include "base/hexadecimal.h"
#include "base/quote.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::ctl
{

using base::Bytes;
using base::hexText;
using base::inQuotes;

inline constexpr std::size_t kMacAddressSize = 6;

// All of these throw UsageError, which names the argument and says what was expected.

// A number in decimal or, behind 0x, hexadecimal digits. Of a negative one the two's complement in `width` bytes is taken.
std::uint32_t parseNumber(const std::string& argument, std::string_view text, std::uint32_t width);

// Bytes in hexadecimal, @file for a file's contents, or zero. Six bytes may be a MAC address, aa:bb:cc:dd:ee:ff. Exactly
// `size` bytes.
Bytes parseBytes(const std::string& argument, std::string_view text, std::size_t size);

// Any number of bytes in hexadecimal.
Bytes parseHex(const std::string& argument, std::string_view text);

// "5 (0x00000005)" or "-5 (0xFFFFFFFB)". A large word has the negative number that it may be as well.
std::string numberText(std::int64_t number, std::uint32_t width);

// The characters up to the first NUL, or all of them.
std::string textOf(const Bytes& bytes);

bool isZero(const unsigned char* bytes, std::size_t size);

// One line of a dump: up to 16 bytes, or a longer run of zeros.
struct DumpLine
{
    std::size_t offset = 0;
    std::string text;
};

std::vector<DumpLine> dump(const unsigned char* bytes, std::size_t size);

} // namespace tarn::ctl
