#include "values.h"

#include "base/format.h"
#include "base/mac_address.h"
#include "usage_error.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <optional>

namespace tarn::ctl
{

namespace
{

constexpr std::size_t kBytesPerLine = 16;

std::uint64_t highestOf(std::uint32_t width)
{
    return (std::uint64_t{1} << (8 * width)) - 1;
}

[[noreturn]] void refuseNumber(const std::string& argument, std::string_view text, std::uint32_t width)
{
    const std::uint64_t highest = highestOf(width);
    throw UsageError(argument + ": expected a number from -" + std::to_string(highest / 2 + 1) + " to " +
                     std::to_string(highest) + ", in decimal or, behind 0x, hexadecimal digits; got " + inQuotes(text));
}

// At most `most` bytes of it.
Bytes readFile(const std::string& argument, const std::string& path, std::size_t most)
{
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw UsageError(argument + ": file " + path + " cannot be read: " + std::strerror(errno));
    std::string characters(most, '\0');
    file.read(characters.data(), static_cast<std::streamsize>(most));
    if (file.bad())
        throw UsageError(argument + ": file " + path + " cannot be read: " + std::strerror(errno));
    return Bytes(characters.begin(), characters.begin() + file.gcount());
}

// With colons or with dashes, the same throughout.
Bytes parseMacAddress(const std::string& argument, std::string_view text)
{
    const bool hasDashes = text.find('-') != std::string_view::npos;
    const std::optional<base::MacAddress> address = base::parseMacAddress(text, hasDashes ? '-' : ':');
    if (!address)
        throw UsageError(argument + ": expected a MAC address such as 02:00:00:00:00:01, or 12 hexadecimal digits; got " +
                         inQuotes(text));
    return Bytes(address->begin(), address->end());
}

Bytes bytesOf(const std::string& argument, std::string_view text, std::size_t size)
{
    if (text == "zero")
        return Bytes(size);
    if (!text.empty() && text.front() == '@')
        return readFile(argument, std::string(text.substr(1)), size + 1); // one more shows that it is too long
    if (size == kMacAddressSize && text.find_first_of(":-") != std::string_view::npos)
        return parseMacAddress(argument, text);
    return parseHex(argument, text);
}

} // namespace

std::uint32_t parseNumber(const std::string& argument, std::string_view text, std::uint32_t width)
{
    std::string_view digits = text;
    const bool isNegative = !digits.empty() && digits.front() == '-';
    if (isNegative)
        digits.remove_prefix(1);
    const bool isHexadecimal = digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X');
    if (isHexadecimal)
        digits.remove_prefix(2);
    const int base = isHexadecimal ? 16 : 10;

    const std::uint64_t highest = isNegative ? highestOf(width) / 2 + 1 : highestOf(width);
    std::uint64_t number = 0;
    if (digits.empty())
        refuseNumber(argument, text, width);
    for (const char digit : digits)
    {
        const int value = base::hexDigitValue(digit);
        if (value < 0 || value >= base)
            refuseNumber(argument, text, width);
        number = number * static_cast<std::uint64_t>(base) + static_cast<std::uint64_t>(value);
        if (number > highest)
            refuseNumber(argument, text, width);
    }
    return static_cast<std::uint32_t>((isNegative ? std::uint64_t{0} - number : number) & highestOf(width));
}

Bytes parseHex(const std::string& argument, std::string_view text)
{
    if (text.size() % 2 != 0)
        throw UsageError(argument + ": expected hexadecimal digits, two for each byte; got " + std::to_string(text.size()) +
                         " characters");
    const std::optional<Bytes> bytes = base::parseHex(text);
    if (!bytes)
    {
        const std::size_t pair = text.find_first_not_of(base::kHexDigits) / 2 * 2;
        throw UsageError(argument + ": expected hexadecimal digits, two for each byte; got " + inQuotes(text.substr(pair, 2)) +
                         " at character " + std::to_string(pair + 1));
    }
    return *bytes;
}

Bytes parseBytes(const std::string& argument, std::string_view text, std::size_t size)
{
    Bytes bytes = bytesOf(argument, text, size);
    if (bytes.size() != size)
    {
        const bool isCutShort = bytes.size() > size && text.front() == '@';
        throw UsageError(argument + ": expected " + std::to_string(size) + " bytes, as " + std::to_string(2 * size) +
                         " hexadecimal digits, @file or zero; got " +
                         (isCutShort ? "more" : std::to_string(bytes.size()) + " bytes"));
    }
    return bytes;
}

std::string numberText(std::int64_t number, std::uint32_t width)
{
    const auto word = static_cast<std::uint32_t>(number);
    std::string result =
        std::to_string(number) + base::format(" (0x%0*lX)", static_cast<int>(2 * width), static_cast<unsigned long>(word));
    if (width == 4 && number > INT32_MAX)
        result.insert(result.size() - 1, ", " + std::to_string(static_cast<std::int32_t>(word)));
    return result;
}

std::string textOf(const Bytes& bytes)
{
    return std::string(bytes.begin(), std::find(bytes.begin(), bytes.end(), static_cast<unsigned char>(0)));
}

bool isZero(const unsigned char* bytes, std::size_t size)
{
    return std::all_of(bytes, bytes + size, [](unsigned char byte) { return byte == 0; });
}

std::vector<DumpLine> dump(const unsigned char* bytes, std::size_t size)
{
    std::vector<DumpLine> lines;
    for (std::size_t offset = 0; offset < size;)
    {
        std::size_t end = std::min(offset + kBytesPerLine, size);
        const bool maybeRun = isZero(bytes + offset, end - offset);
        while (maybeRun && end < size && isZero(bytes + end, std::min(kBytesPerLine, size - end)))
            end = std::min(end + kBytesPerLine, size);

        const std::size_t length = end - offset;
        lines.push_back(
            {offset, length > kBytesPerLine ? "00 x " + std::to_string(length) : hexText(bytes + offset, length, " ")});
        offset = end;
    }
    return lines;
}

} // namespace tarn::ctl
