#include "gateway_layout.h"

#include "base/json_reader.h"

#include <algorithm>
#include <stdexcept>

namespace tarn::simulator
{

namespace
{

using layout::Flag;
using layout::Layout;
using layout::Meaning;
using layout::NamedValue;
using layout::Structure;

const Structure* structureNamed(const Layout& layout, std::string_view name)
{
    if (const Structure* const record = layout.record(name))
        return record;
    if (const Structure* const block = layout.block(name))
        return block;
    return layout.event(name);
}

bool hasFlag(const Meaning& meaning, const std::string& name)
{
    return std::any_of(meaning.flags.begin(), meaning.flags.end(), [&](const Flag& flag) { return flag.name == name; });
}

std::uint64_t flagsTo(const Meaning& from, const Meaning& to, std::uint64_t number)
{
    std::uint64_t result = 0;
    for (const Flag& flag : from.flags)
        for (const Flag& other : to.flags)
            if (flag.name == other.name && (number >> flag.bit & 1) != 0)
                result |= std::uint64_t{1} << other.bit;
    return result;
}

// --- What is missing --------------------------------------------------------------------------------------------------------

void addMissing(std::vector<std::string>& lines, const std::string& place, const Meaning& own, const Meaning& used)
{
    if (own.values != nullptr && used.values != nullptr)
        for (const NamedValue& value : own.values->values)
            if (used.values->find(value.name) == nullptr)
                lines.push_back("value " + value.name + " of " + place);
    if (!used.flags.empty())
        for (const Flag& flag : own.flags)
            if (!hasFlag(used, flag.name))
                lines.push_back("flag " + flag.name + " of " + place);
}

void addMissing(std::vector<std::string>& lines, const std::string& place, const std::vector<layout::Field>& own,
                const std::vector<layout::Field>& used)
{
    for (const layout::Field& field : own)
    {
        const std::string path = field.name.empty() ? place : place + "." + field.name;
        const auto other =
            std::find_if(used.begin(), used.end(), [&](const layout::Field& each) { return each.name == field.name; });
        if (other == used.end())
            lines.push_back("field " + path);
        else if (!isAlike(field, *other))
            lines.push_back("field " + path + ", which is " + toString(other->type) + " and not " + toString(field.type));
        else
        {
            addMissing(lines, path, field.meaning, other->meaning);
            addMissing(lines, path, field.elementFields, other->elementFields);
        }
    }
}

void addMissing(std::vector<std::string>& lines, const char* kind, const std::vector<Structure>& own, const Layout& used)
{
    for (const Structure& structure : own)
        if (const Structure* const other = structureNamed(used, structure.name))
            addMissing(lines, structure.name, structure.fields, other->fields);
        else
            lines.push_back(std::string(kind) + " " + structure.name);
}

} // namespace

bool isAlike(const layout::Field& own, const layout::Field& used)
{
    if (own.type == layout::FieldType::kArray)
        return used.type == own.type && used.hasPlainElements() == own.hasPlainElements();
    return own.type == used.type || (own.isNumber() && used.isNumber());
}

std::uint64_t toWire(const Meaning& own, const Meaning& used, std::uint64_t number)
{
    if (!own.flags.empty() && !used.flags.empty())
        return flagsTo(own, used, number);
    if (own.values == nullptr || used.values == nullptr)
        return number;
    const NamedValue* const known = own.values->find(static_cast<std::int64_t>(number));
    const NamedValue* const other = known == nullptr ? nullptr : used.values->find(known->name);
    return other == nullptr ? number : static_cast<std::uint64_t>(other->value);
}

std::uint64_t fromWire(const Meaning& own, const Meaning& used, std::uint64_t number)
{
    if (!own.flags.empty() && !used.flags.empty())
        return flagsTo(used, own, number);
    if (own.values == nullptr || used.values == nullptr)
        return number;
    const NamedValue* const named = used.values->find(static_cast<std::int64_t>(number));
    if (named == nullptr)
        return number;
    const NamedValue* const known = own.values->find(named->name);
    if (known == nullptr)
        throw Refused{ReplyStatus::kInvalidValue, "the model does not know " + named->name};
    return static_cast<std::uint64_t>(known->value);
}

GatewayLayout::GatewayLayout()
    : text_(layout::simulatedText()), used_(std::shared_ptr<const Layout>(std::shared_ptr<void>(), &layout::simulated()))
{
    findRecords();
    findStatuses();
}

GatewayLayout::GatewayLayout(const std::string& path)
    : text_(base::readText(path, "a layout file")), used_(std::make_shared<const Layout>(layout::parse(text_, path)))
{
    findRecords();
    findStatuses();
}

void GatewayLayout::findRecords()
{
    const Layout& own = layout::simulated();
    for (const std::vector<Structure>* const kind : {&own.records, &own.blocks, &own.events})
        for (const Structure& structure : *kind)
        {
            const Structure* const used = structureNamed(*used_, structure.name);
            const std::uint32_t size = kind == &own.events ? 0 : structure.size; // the data of an event may be of any size
            records_[structure.name] = {&structure, used, used == nullptr ? size : used->size};
        }
}

void GatewayLayout::findStatuses()
{
    for (const contract::Contract& contract : contract::all())
    {
        std::uint32_t unused = 0;
        for (std::uint32_t i = 0; i < kReplyStatusCount; ++i)
        {
            const auto status = static_cast<ReplyStatus>(i);
            const layout::Status* const named = used_->statusNamed(contract.service, toString(status));
            while (named == nullptr && status != ReplyStatus::kDone && used_->status(contract.service, --unused) != nullptr)
            {
            }
            statuses_[{contract.service, status}] = named == nullptr ? unused : named->number;
        }
        statuses_[{contract.service, ReplyStatus::kDone}] = 0;
    }
}

RecordLayout GatewayLayout::record(std::string_view name) const
{
    const auto found = records_.find(name);
    if (found == records_.end())
        throw std::logic_error("the model knows no record " + std::string(name));
    return found->second;
}

std::uint32_t GatewayLayout::numberToWire(std::string_view function, std::string_view argument, std::uint32_t number) const
{
    const Meaning* const own = layout::simulated().meaningOf(function, argument);
    const Meaning* const used = used_->meaningOf(function, argument);
    return own == nullptr || used == nullptr ? number : static_cast<std::uint32_t>(toWire(*own, *used, number));
}

std::uint32_t GatewayLayout::numberFromWire(std::string_view function, std::string_view argument, std::uint32_t number) const
{
    const Meaning* const own = layout::simulated().meaningOf(function, argument);
    const Meaning* const used = used_->meaningOf(function, argument);
    return own == nullptr || used == nullptr ? number : static_cast<std::uint32_t>(fromWire(*own, *used, number));
}

std::uint32_t GatewayLayout::status(std::string_view service, ReplyStatus status) const
{
    return statuses_.at({std::string(service), status});
}

std::vector<std::string> GatewayLayout::missing() const
{
    const Layout& own = layout::simulated();
    std::vector<std::string> lines;
    addMissing(lines, "record", own.records, *used_);
    addMissing(lines, "block", own.blocks, *used_);
    addMissing(lines, "event", own.events, *used_);
    for (const auto& [place, meaning] : own.arguments)
        if (const auto used = used_->arguments.find(place); used != used_->arguments.end())
            addMissing(lines, place, meaning, used->second);
    for (const layout::Selection& selection : own.selections)
    {
        const layout::Selection* const used = used_->selectionOf(selection.function, selection.selected);
        const std::string place = selection.function + "." + selection.selected;
        if (used == nullptr)
            lines.push_back("selection of " + place);
        else
            for (const Flag& field : selection.fields)
                if (!used->bit(field.name))
                    lines.push_back("bit that selects " + place + "." + field.name);
    }
    for (const auto& [serviceAndStatus, number] : statuses_)
        if (const auto& [service, status] = serviceAndStatus;
            status != ReplyStatus::kDone && used_->statusNamed(service, toString(status)) == nullptr)
            lines.push_back(std::string("status ") + toString(status) + " of " + service);
    return lines;
}

} // namespace tarn::simulator
