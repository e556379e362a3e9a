#include "dry_run.h"

#include "base/byte_order.h"
#include "message_fields.h"
#include "values.h"

namespace tarn::ctl
{

namespace
{

std::string numberMeaning(const PreparedArgument& argument)
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

std::string inputMeaning(const PreparedArgument& argument)
{
    if (argument.isNull)
        return "left out";
    switch (argument.parameter->form)
    {
    case Form::kNumber:
        return numberMeaning(argument);
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
        return inputMeaning(report.argument(field.name));
    case FieldRole::kOutput:
    case FieldRole::kStatus:
        return "the service's to fill";
    case FieldRole::kReserved:
        break;
    }
    return "zero";
}

Json messageDocument(const Report& report, const Request& request)
{
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
        document["fields"].push_back({{"offset", field.offset},
                                      {"size", field.size},
                                      {"name", field.name},
                                      {"role", toString(field.role)},
                                      {"meaning", meaningOf(field, report)}});
    document["notes"] = report.arguments.notes;
    return document;
}

void writeText(const Console& console, const Report& report, const Request& request)
{
    console.out << "service " << request.service << ", command " << request.command << ", wait " << request.wait << ", length "
                << request.message.size() << ", " << base::kByteOrder << " endian, caller "
                << inQuotes(report.callerId.value_or("")) << "\n\n";

    Table table;
    table.add({"offset", "bytes", "field", "meaning"});
    for (const MessageField& field : messageFields(*report.function))
    {
        std::string name = field.name;
        std::string meaning = meaningOf(field, report);
        for (const DumpLine& line : dump(request.message.data() + field.offset, field.size))
        {
            table.add({std::to_string(field.offset + line.offset), line.text, name, meaning});
            name.clear();
            meaning.clear();
        }
    }
    table.write(console.out);
}

} // namespace

void writeMessage(const Console& console, const Report& report)
{
    if (!report.seen.request)
        throw std::logic_error(report.function->name + " has sent no message that could be shown");
    for (const std::string& note : report.arguments.notes)
        console.remark("note: " + note);
    if (console.json)
        console.write(messageDocument(report, *report.seen.request));
    else
        writeText(console, report, *report.seen.request);
}

} // namespace tarn::ctl
