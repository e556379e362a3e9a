#include "message.h"

#include <cstring>
#include <stdexcept>

namespace tarn::contract
{

namespace
{

[[noreturn]] void refuse(const Argument& argument)
{
    throw std::logic_error(argument.name + " is no number in the message: its encoding is " + toString(argument.encoding));
}

// Words are at multiples of 4 within the message, but the message itself need not be aligned.
void storeWord(std::uint32_t word, std::uint8_t* bytes)
{
    std::memcpy(bytes, &word, sizeof word);
}

std::uint32_t loadWord(const std::uint8_t* bytes)
{
    std::uint32_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

} // namespace

std::uint32_t roomOf(const Command& command, const Argument& argument)
{
    return argument.size != 0 ? argument.size : command.statusOffset() - argument.offset;
}

bool isOneNumber(const Argument& argument)
{
    return impliedSize(argument.encoding) != 0;
}

void storeNumber(const Argument& argument, std::uint32_t number, std::uint8_t* bytes)
{
    switch (argument.encoding)
    {
    case Encoding::kId:
        return storeWord(number - 1, bytes);
    case Encoding::kWord:
        return storeWord(number, bytes);
    case Encoding::kInverted:
        return storeWord(number == 0 ? 1 : 0, bytes);
    case Encoding::kByte:
        *bytes = static_cast<std::uint8_t>(number);
        return;
    default:
        refuse(argument);
    }
}

std::uint32_t loadNumber(const Argument& argument, const std::uint8_t* bytes)
{
    switch (argument.encoding)
    {
    case Encoding::kId:
        return loadWord(bytes) + 1;
    case Encoding::kWord:
        return loadWord(bytes);
    case Encoding::kInverted:
        return loadWord(bytes) == 0 ? 1 : 0;
    case Encoding::kByte:
        return *bytes;
    default:
        refuse(argument);
    }
}

} // namespace tarn::contract
