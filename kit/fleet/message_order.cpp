#include "message_order.h"

#include "base/mac_address.h"
#include "contract/contract.h"
#include "contract/message.h"

#include <algorithm>

namespace tarn::fleet
{

namespace
{

using contract::Argument;
using contract::Command;
using contract::Direction;
using contract::Encoding;
using contract::Type;

constexpr std::uint32_t kWord = 4;

class TableMaker
{
public:
    explicit TableMaker(const layout::Layout* layout) : layout_(layout)
    {
    }

    void add(const Command& command)
    {
        for (const Argument& argument : command.arguments)
            add(command, argument);
        addNumber(command.statusOffset(), kWord);
    }

    void add(const contract::Event& event)
    {
        const layout::Structure* const structure = layout_ == nullptr ? nullptr : layout_->event(event.name);
        if (structure == nullptr)
            table_.unknownOutputs.push_back(event.name);
        else
            addFields(structure->fields, 0);
    }

    OrderTable take()
    {
        return std::move(table_);
    }

private:
    // Functions that share a command have some of their numbers in common.
    void addNumber(std::uint32_t offset, std::uint32_t size)
    {
        const auto isSame = [&](const NumberPlace& place) { return place.offset == offset; };
        if (size > 1 && std::none_of(table_.numbers.begin(), table_.numbers.end(), isSame))
            table_.numbers.push_back({offset, size});
    }

    void add(const Command& command, const Argument& argument)
    {
        switch (argument.encoding)
        {
        case Encoding::kId:
        case Encoding::kWord:
        case Encoding::kInverted:
            return addNumber(argument.offset, kWord);
        case Encoding::kWords:
            for (std::uint32_t at = 0; at < argument.size; at += kWord)
                addNumber(argument.offset + at, kWord);
            return;
        case Encoding::kRecord:
        case Encoding::kBlock:
            return addInside(command, argument);
        case Encoding::kByte:
        case Encoding::kText:
        case Encoding::kSize:
        case Encoding::kNothing:
            return;
        }
    }

    void addInside(const Command& command, const Argument& argument)
    {
        if (argument.type == Type::kText)
            return;
        if (const auto* const structure = layout_ == nullptr ? nullptr : layout_->structureOf(command, argument))
            return addFields(structure->fields, argument.offset);
        const std::string name = command.function + "." + argument.name;
        if (argument.direction == Direction::kIn && argument.type == Type::kRecord)
            table_.unknownInputs.push_back(name);
        else if (argument.direction == Direction::kOut && argument.size != base::kMacAddressSize) // an address has no numbers
            table_.unknownOutputs.push_back(name);
    }

    void addFields(const std::vector<layout::Field>& fields, std::uint32_t start)
    {
        for (const layout::Field& field : fields)
        {
            if (field.isNumber())
                addNumber(start + field.offset, field.size);
            for (std::uint32_t element = 0; element < field.count; ++element)
                addFields(field.elementFields, start + field.offset + element * field.stride);
        }
    }

    const layout::Layout* layout_;
    OrderTable table_;
};

} // namespace

OrderTable orderTableOf(std::string_view service, std::uint32_t command, const layout::Layout* layout)
{
    TableMaker maker(layout);
    if (const contract::Contract* const known = contract::findService(service))
        for (const Command& each : known->commands)
            if (each.command == command)
                maker.add(each);
    return maker.take();
}

OrderTable orderTableOfEvent(std::string_view service, std::uint32_t event, const layout::Layout* layout)
{
    TableMaker maker(layout);
    if (const contract::Contract* const known = contract::findService(service))
        for (const contract::Event& each : known->events)
            if (each.event == event)
                maker.add(each);
    return maker.take();
}

void turnRound(const OrderTable& table, void* bytes, std::size_t length)
{
    auto* const first = static_cast<std::uint8_t*>(bytes);
    for (const NumberPlace& place : table.numbers)
        if (place.offset + place.size <= length)
            std::reverse(first + place.offset, first + place.offset + place.size);
}

} // namespace tarn::fleet
