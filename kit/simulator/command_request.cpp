#include "command_request.h"

#include "contract/message.h"
#include "reply_status.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace tarn::simulator
{

using contract::Argument;
using contract::Direction;

CommandRequest::CommandRequest(const contract::Command& command, const GatewayLayout& layout, void* message)
    : command_(command), layout_(layout), message_(static_cast<std::uint8_t*>(message))
{
}

const Argument& CommandRequest::find(std::string_view argument, Direction direction) const
{
    const Argument* found = command_.argument(argument);
    if (found == nullptr || found->direction != direction)
        throw std::logic_error(command_.function + " has no such argument: " + std::string(argument));
    return *found;
}

std::size_t CommandRequest::room(const Argument& argument) const
{
    return contract::roomOf(command_, argument);
}

void CommandRequest::copyIn(const Argument& argument, void* to, std::size_t length) const
{
    if (room(argument) != length)
        throw std::logic_error(command_.function + ": " + argument.name + " is not of " + std::to_string(length) + " bytes");
    std::memcpy(to, message_ + argument.offset, length);
}

void CommandRequest::copyOut(const Argument& argument, const void* from, std::size_t length)
{
    if (length > room(argument))
        throw std::logic_error(command_.function + ": " + argument.name + " has no room for " + std::to_string(length) +
                               " bytes");
    if (length > 0)
        std::memcpy(message_ + argument.offset, from, length);
}

// --- Inputs ------------------------------------------------------------------------------------------------------------------

std::uint32_t CommandRequest::number(std::string_view argument) const
{
    return layout_.numberFromWire(command_.function, argument, sentNumber(find(argument, Direction::kIn)));
}

std::uint32_t CommandRequest::sentNumber(const Argument& place) const
{
    return contract::loadNumber(place, message_ + place.offset);
}

bool CommandRequest::flag(std::string_view argument) const
{
    const std::uint32_t value = number(argument);
    if (value > 1)
        throw Refused{ReplyStatus::kInvalidValue, std::string(argument) + " " + std::to_string(value) + "; expected 0 or 1"};
    return value != 0;
}

std::string CommandRequest::text(std::string_view argument) const
{
    const Argument& place = find(argument, Direction::kIn);
    const char* from = reinterpret_cast<const char*>(message_) + place.offset;
    return {from, strnlen(from, room(place))};
}

std::vector<std::uint8_t> CommandRequest::block(std::string_view argument) const
{
    const Argument& place = find(argument, Direction::kIn);
    return {message_ + place.offset, message_ + place.offset + room(place)};
}

MacAddress CommandRequest::address(std::string_view argument) const
{
    MacAddress result;
    copyIn(find(argument, Direction::kIn), result.data(), result.size());
    return result;
}

MobilityDomain CommandRequest::mobilityDomain(std::string_view argument) const
{
    MobilityDomain result;
    copyIn(find(argument, Direction::kIn), result.data(), result.size());
    return result;
}

RecordLayout CommandRequest::layoutOf(const Argument& argument) const
{
    return layout_.record(argument.record.empty() ? command_.function + "." + argument.name : argument.record);
}

Record CommandRequest::record(std::string_view argument) const
{
    return Record(layoutOf(find(argument, Direction::kIn)), block(argument));
}

std::vector<std::string> CommandRequest::selectedFields(std::string_view argument) const
{
    const RecordLayout fields = layoutOf(find(argument, Direction::kIn));
    const layout::Selection* const selection = layout_.used().selectionOf(command_.function, argument);
    const std::uint32_t bits = selection == nullptr ? 0 : sentNumber(find(selection->argument, Direction::kIn));
    const bool isWhole = selection == nullptr || (bits == 0 && selection->zeroIsAll);
    std::vector<std::string> names;
    if (isWhole)
        for (const layout::Field& field : fields.own->fields)
            names.push_back(field.name);
    std::uint32_t unknown = bits;
    for (const layout::Flag& field : isWhole ? std::vector<layout::Flag>() : selection->fields)
    {
        if ((bits >> field.bit & 1) != 0)
            names.push_back(field.name);
        unknown &= ~(1u << field.bit);
    }
    if (unknown != 0)
        throw Refused{ReplyStatus::kInvalidValue, "a bit of " + selection->argument + " selects nothing"};
    return names;
}

Record CommandRequest::blank(std::string_view argument) const
{
    return Record(layoutOf(find(argument, Direction::kOut)));
}

// --- Outputs -----------------------------------------------------------------------------------------------------------------

void CommandRequest::setNumber(std::string_view argument, std::uint32_t value)
{
    const Argument& place = find(argument, Direction::kOut);
    contract::storeNumber(place, layout_.numberToWire(command_.function, argument, value), message_ + place.offset);
}

void CommandRequest::setSigned(std::string_view argument, std::int32_t value)
{
    setNumber(argument, static_cast<std::uint32_t>(value));
}

void CommandRequest::setText(std::string_view argument, std::string_view value)
{
    const Argument& place = find(argument, Direction::kOut);
    const std::size_t length = std::min(value.size(), room(place) - 1);
    copyOut(place, value.data(), length);
    message_[place.offset + length] = '\0';
}

void CommandRequest::setBlock(std::string_view argument, const std::vector<std::uint8_t>& bytes)
{
    copyOut(find(argument, Direction::kOut), bytes.data(), bytes.size());
}

void CommandRequest::setAddress(std::string_view argument, const MacAddress& address)
{
    copyOut(find(argument, Direction::kOut), address.data(), address.size());
}

void CommandRequest::setMobilityDomain(std::string_view argument, const MobilityDomain& domain)
{
    copyOut(find(argument, Direction::kOut), domain.data(), domain.size());
}

void CommandRequest::setRecord(std::string_view argument, const Record& record)
{
    setBlock(argument, record.bytes());
}

void CommandRequest::setAddressWhere(const char* other, std::string_view argument, const MacAddress& address)
{
    const contract::Row row = contract::find(other);
    const Argument* place = row ? row.command->argument(argument) : nullptr;
    if (place == nullptr || place->size != address.size() || row.command->length != command_.length)
        throw std::logic_error(std::string(other) + " has no such address in the same message: " + std::string(argument));
    std::memcpy(message_ + place->offset, address.data(), address.size());
}

void CommandRequest::setStatus(std::uint32_t status)
{
    std::memcpy(message_ + command_.statusOffset(), &status, sizeof status);
}

} // namespace tarn::simulator
