#include "prepared_call.h"

#include "base/hexadecimal.h"
#include "contract/message.h"

#include <algorithm>
#include <stdexcept>

namespace conformance
{

using tarn::contract::Argument;
using tarn::contract::Check;
using tarn::contract::Direction;
using tarn::contract::Encoding;
using tarn::contract::Type;
using tarn::contract::When;

namespace
{

// Bytes given to an output of which nothing is written.
constexpr std::uint32_t kUnwrittenBytes = 32;

// The proxy's reply has its result area in front of five more words and the status. A text without a NUL ends with that area.
constexpr std::uint32_t kProxyResultEnd = 9352;

std::uint32_t numberFor(const Style& style, std::size_t index)
{
    const auto base = static_cast<std::uint32_t>(index);
    switch (style.numbers)
    {
    case Numbers::kZero:
        return 0;
    case Numbers::kOne:
        return 1;
    case Numbers::kHighest:
        return 0xFFFFFFFFu;
    case Numbers::kDistinct:
        break;
    }
    return 0x81A1C1E1u + base * 0x04030201u;
}

std::size_t textLength(const Style& style, std::uint32_t size)
{
    switch (style.texts)
    {
    case Texts::kEmpty:
        return 0;
    case Texts::kFull:
        return size - 1;
    case Texts::kTooLong:
        return size;
    case Texts::kMuchTooLong:
        return size + 30;
    case Texts::kShort:
        break;
    }
    return std::min<std::size_t>(size / 2, 12);
}

} // namespace

PreparedCall::PreparedCall(const tarn::contract::Contract& contract, const tarn::contract::Command& command, const Style& style,
                           Placement placement, std::uint32_t callerSize, std::uint32_t bufferSize)
    : contract_(contract), command_(command), callerSize_(callerSize), bufferSize_(bufferSize)
{
    for (std::size_t i = 0; i < command_.arguments.size(); ++i)
    {
        const Argument& argument = command_.arguments[i];
        Slot slot;
        slot.argument = &argument;
        tarn::calling::ArgumentValue value;
        if (argument.isNumber())
        {
            value.number = argument.encoding == Encoding::kSize ? callerSize : numberFor(style, i);
            const bool mustNotBeZero =
                std::any_of(command_.checks.begin(), command_.checks.end(),
                            [&](const Check& check) { return check.argument == argument.name && check.when == When::kZero; });
            if (mustNotBeZero && value.number == 0)
                value.number = 1;
        }
        else
        {
            slot.area = &sharedArea(i);
            if (argument.direction == Direction::kIn)
                slot.input = inputBytes(argument, i, style);
            std::size_t size = slot.input.size();
            if (argument.direction == Direction::kOut)
                size = argument.encoding == Encoding::kNothing ? kUnwrittenBytes
                       : argument.sizeArgument.empty()         ? argument.size
                                                               : bufferSize_;
            value.pointer = slot.area->place(size, placement);
            slot.area->put(slot.input.data(), slot.input.size());
        }
        slots_.push_back(slot);
        passed_.push_back(value);
    }
}

PreparedCall::Slot& PreparedCall::slotOf(const std::string& argument)
{
    for (Slot& slot : slots_)
        if (slot.argument->name == argument)
            return slot;
    throw std::runtime_error("no argument " + argument);
}

void PreparedCall::omit(const std::string& argument)
{
    Slot& slot = slotOf(argument);
    slot.omitted = true;
    passed_[static_cast<std::size_t>(&slot - slots_.data())].pointer = nullptr;
}

void PreparedCall::violate(const Check& check, bool empty)
{
    Slot& slot = slotOf(check.argument);
    if (check.when == When::kZero)
    {
        passed_[static_cast<std::size_t>(&slot - slots_.data())].number = 0;
    }
    else if (check.when == When::kNullOrEmpty && empty)
    {
        slot.input[0] = 0;
        slot.area->put(slot.input.data(), 1);
    }
    else
    {
        omit(check.argument);
    }
}

// A text comes with its NUL, unless it is to go out as a block.
std::vector<std::uint8_t> PreparedCall::inputBytes(const Argument& argument, std::size_t index, const Style& style) const
{
    if (argument.encoding == Encoding::kText)
    {
        std::size_t length = textLength(style, argument.size);
        const bool mustNotBeEmpty = std::any_of(
            command_.checks.begin(), command_.checks.end(),
            [&](const Check& check) { return check.argument == argument.name && check.when == When::kNullOrEmpty; });
        if (mustNotBeEmpty && length == 0)
            length = 1;
        std::vector<std::uint8_t> text(length + 1);
        // Starts with a conversion, which must go out as it is, and goes on with any characters there are.
        for (std::size_t i = 0; i < length; ++i)
            text[i] = static_cast<std::uint8_t>(i == 0 ? '%' : i == 1 ? 's' : 1 + (i * 7 + index * 29) % 255);
        return text;
    }

    std::vector<std::uint8_t> block(argument.size);
    for (std::size_t i = 0; i < block.size(); ++i)
        block[i] = static_cast<std::uint8_t>(style.blocks == Blocks::kZeros     ? 0
                                             : style.blocks == Blocks::kHighest ? 0xFF
                                                                                : 1 + (i * 11 + i / 251 + index * 53) % 255);
    if (style.blocks == Blocks::kZeroInside)
        block[block.size() / 2] = 0;
    return block;
}

void PreparedCall::fill(const Slot& slot, std::size_t index, std::vector<std::uint8_t>& message) const
{
    const Argument& argument = *slot.argument;
    std::uint32_t number = passed_[index].number;
    if (argument.type == Type::kU8)
        number &= 0xFF;
    else if (argument.type == Type::kU16)
        number &= 0xFFFF;

    switch (argument.encoding)
    {
    case Encoding::kId:
    case Encoding::kWord:
    case Encoding::kInverted:
    case Encoding::kByte:
        tarn::contract::storeNumber(argument, number, message.data() + argument.offset);
        break;
    case Encoding::kText:
        std::copy_n(slot.input.begin(), std::min<std::size_t>(slot.input.size() - 1, argument.size - 1),
                    message.begin() + argument.offset);
        break;
    case Encoding::kBlock:
    case Encoding::kRecord:
        std::copy_n(slot.input.begin(), argument.size, message.begin() + argument.offset);
        break;
    case Encoding::kWords:
    case Encoding::kSize:
    case Encoding::kNothing:
        break;
    }
}

std::vector<std::uint8_t> PreparedCall::expectedMessage() const
{
    std::vector<std::uint8_t> message(command_.length);
    for (std::size_t i = 0; i < slots_.size(); ++i)
        if (slots_[i].argument->direction == Direction::kIn && !slots_[i].omitted)
            fill(slots_[i], i, message);
    return message;
}

// The bytes that are written, from the start of the caller's buffer.
std::vector<std::uint8_t> PreparedCall::expectedOutput(const Slot& slot, const std::vector<std::uint8_t>& reply) const
{
    const Argument& argument = *slot.argument;
    if (argument.encoding == Encoding::kNothing)
        return {};
    const std::uint32_t size = argument.sizeArgument.empty() ? argument.size : callerSize_;
    if (argument.encoding == Encoding::kText)
    {
        if (size == 0)
            return {};
        const std::uint32_t end = contract_.service == "QTN_RPC_PROXY" ? kProxyResultEnd : command_.statusOffset();
        const std::uint32_t most = std::min(end - argument.offset, size - 1);
        const auto from = reply.begin() + argument.offset;
        std::vector<std::uint8_t> text(from, std::find(from, from + most, std::uint8_t{0}));
        text.push_back(0);
        return text;
    }
    std::vector<std::uint8_t> bytes(size);
    std::copy_n(reply.begin() + argument.offset, std::min<std::size_t>(size, reply.size() - argument.offset), bytes.begin());
    return bytes;
}

std::string PreparedCall::memoryDeviation(const std::vector<std::uint8_t>* reply) const
{
    for (const Slot& slot : slots_)
    {
        if (slot.area == nullptr)
            continue;
        std::vector<std::uint8_t> expected = slot.input;
        if (slot.argument->direction == Direction::kOut && reply != nullptr && !slot.omitted)
            expected = expectedOutput(slot, *reply);
        GuardedArea::Difference difference{};
        if (slot.area->differs(expected.data(), expected.size(), difference))
            return slot.argument->name + "[" + std::to_string(difference.offset) + "]: expected " +
                   tarn::base::hexText(&difference.expected, 1) + ", got " + tarn::base::hexText(&difference.got, 1) + " (of " +
                   std::to_string(slot.area->runSize()) + " bytes, of which " +
                   std::to_string(slot.argument->direction == Direction::kOut ? expected.size() : 0) + " are to be written)";
    }
    return "";
}

std::string PreparedCall::describeAddress(const void* address) const
{
    for (const Slot& slot : slots_)
    {
        std::ptrdiff_t offset = 0;
        if (slot.area != nullptr && slot.area->covers(address, offset))
            return slot.argument->name + "[" + std::to_string(offset) + "] of " + std::to_string(slot.area->runSize()) +
                   " bytes";
    }
    return "";
}

} // namespace conformance
