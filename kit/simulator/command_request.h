// A request of one command: the message, which becomes the reply, read and written by the names of the function's arguments.
//
// The contract says where in the message an argument is, and how it is encoded.
#pragma once

#include "contract/contract.h"
#include "fields.h"
#include "mobility_domain.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::simulator
{

// An argument's name that the function does not have, or that is not of the kind asked for, throws std::logic_error.
class CommandRequest
{
public:
    // `message` has the length that the contract says.
    CommandRequest(const contract::Command& command, const GatewayLayout& layout, void* message);

    const contract::Command& command() const
    {
        return command_;
    }

    // As the caller of the function passed it: ids count from 1, and an inverted flag is inverted again. Throws Refused for a
    // value that has a name in the layout and is unknown to the model.
    std::uint32_t number(std::string_view argument) const;
    bool flag(std::string_view argument) const;        // throws Refused for a number over 1
    std::string text(std::string_view argument) const; // ends before the first NUL, or with the field
    std::vector<std::uint8_t> block(std::string_view argument) const;
    MacAddress address(std::string_view argument) const;
    MobilityDomain mobilityDomain(std::string_view argument) const;
    // Its layout is that of the record's name, or else that of FUNCTION.ARGUMENT.
    Record record(std::string_view argument) const;
    // The record's fields as changes of settings: those that the layout says are selected, or all of them if it has no
    // selection. Throws Refused if a bit selects nothing.
    template <typename Settings>
    Changes<Settings> changes(std::string_view argument) const
    {
        Changes<Settings> result;
        result.take(record(argument), selectedFields(argument));
        return result;
    }
    // All zeros, for an output.
    Record blank(std::string_view argument) const;

    void setNumber(std::string_view argument, std::uint32_t value);
    void setSigned(std::string_view argument, std::int32_t value);
    void setText(std::string_view argument, std::string_view value); // cut to the field
    void setBlock(std::string_view argument, const std::vector<std::uint8_t>& bytes);
    void setAddress(std::string_view argument, const MacAddress& address);
    void setMobilityDomain(std::string_view argument, const MobilityDomain& domain);
    void setRecord(std::string_view argument, const Record& record);

    // The record that is filled from these objects, each of its fields from the last one that has it.
    template <typename... Objects>
    void answer(std::string_view argument, const Objects&... objects)
    {
        Record record = blank(argument);
        (fill(record, objects), ...);
        setRecord(argument, record);
    }

    // For the one argument that the library never takes out of the reply: the address goes where `other` takes one in.
    void setAddressWhere(const char* other, std::string_view argument, const MacAddress& address);

    void setStatus(std::uint32_t status);

private:
    const contract::Argument& find(std::string_view argument, contract::Direction direction) const;
    std::vector<std::string> selectedFields(std::string_view argument) const;
    std::size_t room(const contract::Argument& argument) const; // bytes that its field has in the message
    RecordLayout layoutOf(const contract::Argument& argument) const;
    std::uint32_t sentNumber(const contract::Argument& place) const;
    void copyIn(const contract::Argument& argument, void* to, std::size_t length) const;
    void copyOut(const contract::Argument& argument, const void* from, std::size_t length);

    const contract::Command& command_;
    const GatewayLayout& layout_;
    std::uint8_t* message_;
};

} // namespace tarn::simulator
