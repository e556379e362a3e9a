#include "message.h"

#include "base/hexadecimal.h"
#include "base/join.h"
#include "base/mac_address.h"
#include "base/quote.h"
#include "base/suggestions.h"
#include "contract/message.h"
#include "decode.h"
#include "encode.h"

#include <algorithm>
#include <optional>

namespace tarn::layout
{

using contract::Argument;
using contract::Command;
using contract::Direction;
using contract::Encoding;
using contract::Type;

namespace
{

bool isInMessage(const Argument& argument)
{
    return argument.encoding != Encoding::kSize && argument.encoding != Encoding::kNothing;
}

// Bytes of the number itself, which may be sent in more.
std::uint32_t numberSize(const Argument& argument)
{
    if (argument.type == Type::kU8)
        return 1;
    return argument.type == Type::kU16 ? 2 : 4;
}

// Null for an argument whose inside the layout does not tell.
const Structure* structureOf(const Layout& layout, const Command& command, const Argument& argument)
{
    return contract::isOneNumber(argument) || argument.type == Type::kText ? nullptr : layout.structureOf(command, argument);
}

// Of a number; that of an argument which selects fields is the names of these.
Meaning meaningOf(const Layout& layout, const Command& command, const Argument& argument)
{
    const Meaning* const told = layout.meaningOf(command.function, argument.name);
    Meaning meaning = told == nullptr ? Meaning() : *told;
    for (const Selection& selection : layout.selections)
        if (selection.function == command.function && selection.argument == argument.name)
            meaning.flags = selection.fields;
    return meaning;
}

// --- Names -----------------------------------------------------------------------------------------------------------------

void addPlainParts(std::vector<NamedPart>& parts, const Argument& argument, const std::string& prefix,
                   const std::vector<Field>& fields, std::uint32_t start)
{
    for (const Field& field : fields)
    {
        const std::string name = prefix + field.name;
        if (field.type != FieldType::kArray)
        {
            NamedPart part{name, &argument, field};
            part.field.offset += start;
            parts.push_back(std::move(part));
            continue;
        }
        for (std::uint32_t i = 0; i < field.count; ++i)
        {
            const std::string element = name + "[" + std::to_string(i) + "]";
            addPlainParts(parts, argument, field.hasPlainElements() ? element : element + ".", field.elementFields,
                          start + field.offset + i * field.stride);
        }
    }
}

NamedPart wholePart(const Layout& layout, const Command& command, const Argument& argument)
{
    NamedPart part;
    part.name = argument.name;
    part.argument = &argument;
    part.field.name = argument.name;
    part.field.offset = argument.offset;
    part.field.size = contract::roomOf(command, argument);
    if (contract::isOneNumber(argument))
    {
        part.field.type = argument.isSigned ? FieldType::kSigned : FieldType::kNumber;
        part.field.meaning = meaningOf(layout, command, argument);
    }
    else if (argument.type == Type::kText)
        part.field.type = FieldType::kText;
    else
        part.field.type = argument.size == base::kMacAddressSize ? FieldType::kMacAddress : FieldType::kBytes;
    return part;
}

// --- Arguments -------------------------------------------------------------------------------------------------------------

std::string withArticle(Direction direction)
{
    return direction == Direction::kIn ? "an input" : "an output";
}

std::vector<std::string> namesOf(const Command& command, Direction direction)
{
    std::vector<std::string> names;
    for (const Argument& argument : command.arguments)
        if (argument.direction == direction && isInMessage(argument))
            names.push_back(argument.name);
    return names;
}

std::string expectedNames(const Command& command, Direction direction)
{
    const std::string plural = direction == Direction::kIn ? "inputs" : "outputs";
    const std::vector<std::string> names = namesOf(command, direction);
    return names.empty() ? "it has no " + plural : "the " + plural + " are " + base::join(names);
}

const Argument& argumentNamed(const Command& command, Direction direction, std::string_view name)
{
    const Argument* const argument = command.argument(name);
    const std::string expected = "; " + expectedNames(command, direction);
    if (argument == nullptr)
        throw EncodeError("there is no argument " + base::inQuotes(name) + expected,
                          base::suggestions(name, namesOf(command, direction)));
    if (argument->direction != direction)
        throw EncodeError(argument->name + ": expected " + withArticle(direction) + ", and this is " +
                          withArticle(argument->direction) + expected);
    if (argument->encoding == Encoding::kSize)
        throw EncodeError(argument->name + ": the size of the caller's buffer is not sent" + expected);
    if (argument->encoding == Encoding::kNothing)
        throw EncodeError(argument->name + ": the function never writes it" + expected);
    return *argument;
}

// An argument, and the path of a field in it: empty for the whole argument.
struct Target
{
    const Argument* argument;
    std::string path;
    const Structure* structure;
};

Target targetNamed(const Layout& layout, const Command& command, Direction direction, std::string_view name)
{
    const std::size_t point = std::min(name.find('.'), name.size());
    const Argument& argument = argumentNamed(command, direction, name.substr(0, point));
    Target target{&argument, "", structureOf(layout, command, argument)};
    if (point == name.size())
        return target;
    target.path = name.substr(point + 1);
    if (target.structure == nullptr)
        throw EncodeError(std::string(name) + ": expected " + argument.name + " as a whole, as " +
                          (argument.isNumber() || argument.type == Type::kText
                               ? "it has no fields"
                               : "the layout " + layout.title() + " does not tell what is in it"));
    return target;
}

// --- Values ----------------------------------------------------------------------------------------------------------------

base::Bytes encodedNumber(const Layout& layout, const Command& command, const Argument& argument, std::string_view value)
{
    const bool isSigned = argument.isSigned || (!value.empty() && value.front() == '-');
    const std::uint64_t number =
        numberOf(argument.name, meaningOf(layout, command, argument), numberSize(argument), isSigned, value);
    base::Bytes bytes(argument.size);
    contract::storeNumber(argument, static_cast<std::uint32_t>(number), bytes.data());
    return bytes;
}

// As a text ends in the message: padded with zeros as far as the sender or the reader pads it, and otherwise with its NUL.
base::Bytes encodedText(const Command& command, const Argument& argument, std::string_view value)
{
    const std::uint32_t room = contract::roomOf(command, argument);
    const std::uint32_t most = argument.encoding == Encoding::kText ? room - 1 : room;
    if (value.size() > most)
        throw EncodeError(argument.name + ": expected a text of at most " + std::to_string(most) + " bytes; got " +
                          std::to_string(value.size()));
    base::Bytes bytes(value.begin(), value.end());
    const bool isPadded = (argument.encoding == Encoding::kText) == (argument.direction == Direction::kIn);
    if (isPadded && argument.sizeArgument.empty())
        bytes.resize(room);
    else if (value.size() < room)
        bytes.push_back(0);
    return bytes;
}

[[noreturn]] void refuseBytes(const std::string& name, const std::string& expected, std::size_t got)
{
    throw EncodeError(name + ": expected " + expected + "; got " + std::to_string(got) + " bytes");
}

void checkSize(const Command& command, const Argument& argument, const base::Bytes& bytes)
{
    const std::uint32_t room = contract::roomOf(command, argument);
    const bool mayBeShorter = !argument.sizeArgument.empty() || argument.type == Type::kText;
    if (bytes.size() > room || (bytes.size() < room && !mayBeShorter))
        refuseBytes(argument.name, (mayBeShorter ? "at most " : "") + std::to_string(room) + " bytes", bytes.size());
}

base::Bytes bytesOf(const Command& command, const Argument& argument, std::string_view value)
{
    const std::uint32_t room = contract::roomOf(command, argument);
    if (argument.size == base::kMacAddressSize)
        if (const std::optional<base::MacAddress> address = base::parseMacAddress(value))
            return base::Bytes(address->begin(), address->end());
    const std::optional<base::Bytes> bytes = base::parseHex(value);
    if (!bytes)
        throw EncodeError(argument.name + ": expected " + (argument.size == base::kMacAddressSize ? "a MAC address, or " : "") +
                          std::to_string(room) + " bytes as hexadecimal digits; got " + base::inQuotes(value));
    checkSize(command, argument, *bytes);
    return *bytes;
}

// `encodeInto` sets the field in the bytes of the whole argument, of which only the field's are taken.
template <typename EncodeInto>
Encoded encodedField(const Target& target, EncodeInto encodeInto)
{
    try
    {
        base::Bytes bytes(target.structure->size);
        const FieldPlace place = encodeInto(bytes);
        const auto begin = bytes.begin() + place.offset;
        return {target.argument->offset + place.offset, base::Bytes(begin, begin + place.field->size)};
    }
    catch (const EncodeError& error)
    {
        throw EncodeError(target.argument->name + ": " + error.what(), error.suggestions);
    }
}

} // namespace

std::string NamedPart::valueIn(const std::uint8_t* message) const
{
    const std::uint8_t* const bytes = message + field.offset;
    if (contract::isOneNumber(*argument))
    {
        const std::uint32_t word = contract::loadNumber(*argument, bytes);
        const std::int64_t number = argument->isSigned ? std::int64_t{static_cast<std::int32_t>(word)} : word;
        return withName(std::to_string(number), explain(field.meaning, number));
    }
    Structure alone{name, field.size, {field}};
    alone.fields.front().offset = 0;
    return linesOf(decode(alone, bytes, field.size)).front().value;
}

std::vector<NamedPart> inputsOf(const Layout& layout, const Command& command)
{
    std::vector<NamedPart> parts;
    for (const Argument& argument : command.arguments)
    {
        if (argument.direction != Direction::kIn || !isInMessage(argument))
            continue;
        if (const Structure* const structure = structureOf(layout, command, argument))
            addPlainParts(parts, argument, argument.name + ".", structure->fields, argument.offset);
        else
            parts.push_back(wholePart(layout, command, argument));
    }
    return parts;
}

Encoded encode(const Layout& layout, const Command& command, Direction direction, std::string_view name, std::string_view value)
{
    const Target target = targetNamed(layout, command, direction, name);
    if (!target.path.empty())
        return encodedField(target, [&](base::Bytes& whole) { return encode(*target.structure, target.path, value, whole); });
    const Argument& argument = *target.argument;
    if (contract::isOneNumber(argument))
        return {argument.offset, encodedNumber(layout, command, argument, value)};
    if (argument.type == Type::kText)
        return {argument.offset, encodedText(command, argument, value)};
    return {argument.offset, bytesOf(command, argument, value)};
}

Encoded encodeBytes(const Layout& layout, const Command& command, Direction direction, std::string_view name,
                    const base::Bytes& bytes)
{
    const Target target = targetNamed(layout, command, direction, name);
    if (!target.path.empty())
        return encodedField(target,
                            [&](base::Bytes& whole) { return encodeBytes(*target.structure, target.path, bytes, whole); });
    const Argument& argument = *target.argument;
    if (contract::isOneNumber(argument))
        refuseBytes(argument.name, "a number", bytes.size());
    checkSize(command, argument, bytes);
    return {argument.offset, bytes};
}

} // namespace tarn::layout
