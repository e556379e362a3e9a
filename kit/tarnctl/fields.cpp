#include "fields.h"

#include "values.h"

#include <algorithm>

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

Json valueDocument(const layout::Decoded& decoded)
{
    switch (decoded.field->type)
    {
    case layout::FieldType::kNumber:
        return static_cast<std::uint64_t>(decoded.number);
    case layout::FieldType::kSigned:
        return decoded.number;
    case layout::FieldType::kText:
    case layout::FieldType::kMacAddress:
        return decoded.text;
    case layout::FieldType::kBytes:
        return hexText(decoded.bytes);
    case layout::FieldType::kArray:
        break;
    }
    Json list = Json::array();
    for (const std::vector<layout::Decoded>& element : decoded.elements)
        list.push_back(decoded.field->hasPlainElements() ? valueDocument(element.front()) : fieldsDocument(element));
    return list;
}

// The bytes that no field names: those of all fields are zero.
Bytes unnamed(const layout::Structure& structure, Bytes bytes)
{
    for (const layout::Field& field : structure.fields)
    {
        const std::size_t end = std::min<std::size_t>(field.offset + field.size, bytes.size());
        for (std::size_t i = field.offset; i < end; ++i)
            bytes[i] = 0;
    }
    return bytes;
}

// As layouts name an argument.
std::string qualified(const LibraryFunction& function, const FunctionParameter& parameter)
{
    return function.name + "." + parameter.name;
}

} // namespace

const layout::Structure* structureOf(const LibraryFunction& function, const FunctionParameter& parameter)
{
    const bool mayHaveFields = parameter.wire != nullptr && (parameter.form == Form::kRecord || parameter.size > 0) &&
                               parameter.form != Form::kText && parameter.size != kMacAddressSize;
    const std::string name = parameter.record.empty() ? qualified(function, parameter) : parameter.record;
    const LayoutInUse* const inUse = mayHaveFields ? layoutThatTellsOf(name) : nullptr;
    return inUse == nullptr ? nullptr : inUse->layout.structureOf(*function.row.command, *parameter.wire);
}

const layout::Structure* structureOf(const contract::Event& event)
{
    const LayoutInUse* const inUse = layoutInUse();
    return inUse == nullptr ? nullptr : inUse->layout.event(event.name);
}

const layout::Meaning* meaningOf(const LibraryFunction& function, const FunctionParameter& parameter)
{
    const bool isNumber = parameter.wire != nullptr && parameter.form == Form::kNumber;
    const LayoutInUse* const inUse = isNumber ? layoutThatTellsOf(qualified(function, parameter)) : nullptr;
    return inUse == nullptr ? nullptr : inUse->layout.meaningOf(function.name, parameter.name);
}

const layout::Status* statusOf(const LibraryFunction& function, std::int64_t result)
{
    const LayoutInUse* const inUse = result == 0 ? nullptr : layoutInUse();
    return inUse == nullptr ? nullptr : inUse->layout.status(function.service, static_cast<std::uint32_t>(result));
}

std::vector<layout::Decoded> fieldsOf(const Report& report, const std::string& output)
{
    const PreparedArgument& argument = report.argument(output);
    const layout::Structure* const structure = structureOf(*report.function, *argument.parameter);
    return structure == nullptr ? std::vector<layout::Decoded>() : layout::decode(*structure, argument.content());
}

std::string withMeaning(const std::string& number, std::int64_t value, const layout::Meaning& meaning)
{
    const layout::NumberMeaning said = layout::explain(meaning, value);
    std::string text = number;
    if (!said.valueName.empty())
        text += ", " + said.valueName;
    for (const std::string& flag : said.flags)
        text += ", " + flag;
    if (!meaning.unit.empty())
        text += ", " + meaning.unit;
    return text;
}

void writeFields(const Console& console, const layout::Structure& structure, const Bytes& bytes)
{
    Table table("  ");
    for (const layout::FieldLine& line : layout::linesOf(layout::decode(structure, bytes)))
        table.add({line.name, line.value + (line.unit.empty() ? "" : " " + line.unit), line.meaning});
    table.write(console.out);

    const Bytes rest = unnamed(structure, bytes);
    if (isZero(rest.data(), rest.size()))
        return;
    console.out << "  and bytes that the layout does not name:\n";
    Table others("  ");
    for (const DumpLine& line : dump(rest.data(), rest.size()))
        others.add({std::to_string(line.offset), line.text});
    others.write(console.out);
}

void addMeaning(Json& document, std::int64_t number, const layout::Meaning& meaning)
{
    const layout::NumberMeaning said = layout::explain(meaning, number);
    if (!said.valueName.empty())
        document["name"] = said.valueName;
    if (!meaning.flags.empty())
        document["flags"] = said.flags;
    if (!meaning.unit.empty())
        document["unit"] = meaning.unit;
}

Json fieldsDocument(const std::vector<layout::Decoded>& fields)
{
    Json document = Json::object();
    for (const layout::Decoded& decoded : fields)
    {
        Json each = {{"value", valueDocument(decoded)}};
        if (decoded.field->isNumber())
            addMeaning(each, decoded.number, decoded.field->meaning);
        else if (decoded.field->hasPlainElements() && !decoded.field->elementFields.front().meaning.unit.empty())
            each["unit"] = decoded.field->elementFields.front().meaning.unit;
        document[decoded.field->name] = std::move(each);
    }
    return document;
}

Json layoutDocument(const LayoutInUse* inUse)
{
    if (inUse == nullptr)
        return nullptr;
    return {{"name", inUse->layout.name}, {"version", inUse->layout.version}, {"owner", inUse->layout.owner}};
}

std::string eventDataText(const contract::Event& event, const Bytes& data)
{
    const layout::Structure* const structure = structureOf(event);
    const bool isExplained = structure != nullptr && data.size() == structure->size;
    std::string text = isExplained || data.empty() ? "" : " " + hexText(data);
    if (structure == nullptr)
        return text;
    for (const layout::FieldLine& line : layout::linesOf(layout::decode(*structure, data)))
        text += " " + line.name + "=" + line.value + (line.unit.empty() ? "" : " " + line.unit);
    return text;
}

Json eventDocument(const std::string& time, const std::string& service, const contract::Event& event, const Bytes& data)
{
    const layout::Structure* const structure = structureOf(event);
    Json document = Console::document("event");
    document["time"] = time;
    document["service"] = service;
    document["event"] = event.event;
    document["name"] = event.name;
    document["data"] = hexText(data);
    if (structure != nullptr)
        document["fields"] = fieldsDocument(layout::decode(*structure, data));
    document["layout"] = layoutDocument(structure == nullptr ? nullptr : layoutInUse());
    return document;
}

} // namespace tarn::ctl
