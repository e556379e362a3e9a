#include "dry_run.h"

#include "base/byte_order.h"
#include "base/join.h"
#include "fields.h"
#include "message_fields.h"
#include "values.h"

#include <algorithm>

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

std::string sentNumber(const PreparedArgument& argument)
{
    std::string number = std::to_string(argument.number);
    switch (argument.parameter->wire->encoding)
    {
    case contract::Encoding::kId:
        return number + ", sent less one";
    case contract::Encoding::kInverted:
        return number + ", sent turned round";
    case contract::Encoding::kByte:
        return number + ", a single byte";
    default:
        return number;
    }
}

std::string numberMeaning(const LibraryFunction& function, const PreparedArgument& argument)
{
    const layout::Meaning* const meaning = meaningOf(function, *argument.parameter);
    const std::string number = sentNumber(argument);
    return meaning == nullptr ? number : withMeaning(number, argument.number, *meaning);
}

std::string inputMeaning(const LibraryFunction& function, const PreparedArgument& argument)
{
    if (argument.isNull)
        return "left out";
    switch (argument.parameter->form)
    {
    case Form::kNumber:
        return numberMeaning(function, argument);
    case Form::kText:
        return inQuotes(textOf(argument.content()));
    case Form::kBytes:
        if (argument.length == kMacAddressSize)
            return hexText(argument.content(), ":");
        return std::to_string(argument.length) + " bytes";
    case Form::kRecord:
        return argument.parameter->record;
    case Form::kAddress:
        break;
    }
    return "";
}

std::string meaningOf(const MessageField& field, const Report& report)
{
    switch (field.role)
    {
    case FieldRole::kInput:
        return inputMeaning(*report.function, report.argument(field.name));
    case FieldRole::kOutput:
    case FieldRole::kStatus:
        return "the service's to fill";
    case FieldRole::kReserved:
        break;
    }
    return "zero";
}

// What the layout says of an input's bytes; null for any other field of the message.
const layout::Structure* structureOfField(const MessageField& field, const Report& report)
{
    return field.role == FieldRole::kInput ? structureOf(*report.function, *field.parameter) : nullptr;
}

bool isRequestDecoded(const Report& report)
{
    const auto isKnown = [&](const PreparedArgument& argument)
    {
        const FunctionParameter& parameter = *argument.parameter;
        return parameter.isInput && !argument.isNull &&
               (structureOf(*report.function, parameter) != nullptr || meaningOf(*report.function, parameter) != nullptr);
    };
    return std::any_of(report.arguments.all.begin(), report.arguments.all.end(), isKnown);
}

const Request& requestOf(const Report& report)
{
    if (!report.seen.request)
        throw std::logic_error(report.function->name + " has sent no message that could be shown");
    return *report.seen.request;
}

// Rows of the dump: the bytes of one field, in as many lines as they need.
void addRows(Table& table, const Bytes& message, std::uint32_t offset, std::uint32_t size, std::string name,
             std::string meaning)
{
    for (const DumpLine& line : dump(message.data() + offset, size))
    {
        table.add({std::to_string(offset + line.offset), line.text, name, meaning});
        name.clear();
        meaning.clear();
    }
}

std::string meaningOf(const layout::Decoded& decoded)
{
    const auto textOf = [&](const layout::FieldLine& line)
    {
        const std::string name = line.name == decoded.field->name ? "" : line.name + " ";
        return name + line.value + (line.unit.empty() ? "" : " " + line.unit);
    };
    return base::join(layout::linesOf({decoded}), ", ", textOf);
}

// The same of an input whose inside the layout describes: field by field, and the bytes between them.
void addFieldRows(Table& table, const Bytes& message, const MessageField& input, const layout::Structure& structure)
{
    std::uint32_t end = 0;
    const auto addBytesUpTo = [&](std::uint32_t offset)
    {
        if (offset > end)
            addRows(table, message, input.offset + end, offset - end, input.name, "in no field");
    };
    for (const layout::Decoded& decoded : layout::decode(structure, message.data() + input.offset, input.size))
    {
        const layout::Field& field = *decoded.field;
        addBytesUpTo(field.offset);
        addRows(table, message, input.offset + field.offset, field.size, input.name + "." + field.name, meaningOf(decoded));
        end = field.offset + field.size;
    }
    addBytesUpTo(input.size);
}

void writeText(const Console& console, const Report& report, const Request& request)
{
    console.out << "service " << request.service << ", command " << request.command << ", wait " << request.wait
                << " s, length " << request.message.size() << ", " << base::kByteOrder << " endian, caller "
                << inQuotes(report.callerId.value_or("")) << "\n\n";

    Table table;
    table.add({"offset", "bytes", "field", "meaning"});
    for (const MessageField& field : messageFields(*report.function))
    {
        if (const layout::Structure* const structure = structureOfField(field, report))
            addFieldRows(table, request.message, field, *structure);
        else
            addRows(table, request.message, field.offset, field.size, field.name, meaningOf(field, report));
    }
    table.write(console.out);
    if (isRequestDecoded(report))
        console.out << "layout: " << layoutInUse()->layout.title() << '\n';
}

} // namespace

void writeMessage(const Console& console, const Report& report)
{
    for (const std::string& note : report.arguments.notes)
        console.remark("note: " + note);
    if (console.json)
        console.write(messageDocument(report));
    else
        writeText(console, report, requestOf(report));
}

Json messageDocument(const Report& report)
{
    const Request& request = requestOf(report);
    Json document = Console::document("dry-run");
    document["function"] = report.function->name;
    document["caller"] = report.callerId.value_or("");
    document["service"] = request.service;
    document["command"] = request.command;
    document["wait"] = request.wait;
    document["length"] = request.message.size();
    document["byte_order"] = base::kByteOrder;
    document["message"] = hexText(request.message);
    document["fields"] = Json::array();
    for (const MessageField& field : messageFields(*report.function))
    {
        Json each = {{"offset", field.offset},
                     {"size", field.size},
                     {"name", field.name},
                     {"role", toString(field.role)},
                     {"meaning", meaningOf(field, report)}};
        if (const layout::Structure* const structure = structureOfField(field, report))
            each["fields"] = fieldsDocument(layout::decode(*structure, request.message.data() + field.offset, field.size));
        document["fields"].push_back(std::move(each));
    }
    document["notes"] = report.arguments.notes;
    document["layout"] = layoutDocument(isRequestDecoded(report) ? layoutInUse() : nullptr);
    return document;
}

} // namespace tarn::ctl
