#include "call_output.h"

#include "base/join.h"
#include "fields.h"
#include "tarn_frame.h"
#include "values.h"

#include <algorithm>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

bool isWritten(const PreparedArgument& output)
{
    const contract::Argument* const wire = output.parameter->wire;
    return wire == nullptr || wire->encoding != contract::Encoding::kNothing;
}

bool isMacAddress(const PreparedArgument& argument)
{
    return argument.parameter->form == Form::kBytes && argument.length == kMacAddressSize;
}

// The table's texts; a slot that is full has no NUL.
std::vector<std::string> ratesOf(const Bytes& table)
{
    std::vector<std::string> rates;
    for (std::size_t i = 0; i < table.at(0); ++i)
    {
        const auto slot = table.begin() + 1 + static_cast<std::ptrdiff_t>(i * TARN_RATE_TEXT_SIZE);
        rates.push_back(textOf(Bytes(slot, slot + TARN_RATE_TEXT_SIZE)));
    }
    return rates;
}

bool hasFields(const LibraryFunction& function, const PreparedArgument& argument)
{
    return structureOf(function, *argument.parameter) != nullptr;
}

bool isRateTable(const PreparedArgument& argument)
{
    return argument.parameter->record == "TarnRateTable";
}

// Whether anything of the reply is shown by the layout.
bool isReplyDecoded(const Report& report)
{
    if (!report.hasReply() || report.function->kind != FunctionKind::kCommand)
        return false;
    const auto isKnown = [&](const PreparedArgument& argument)
    {
        return argument.parameter->isOutput && !argument.isNull &&
               (meaningOf(*report.function, *argument.parameter) != nullptr || hasFields(*report.function, argument));
    };
    const std::vector<PreparedArgument>& all = report.arguments.all;
    return statusOf(*report.function, report.result.number) != nullptr || std::any_of(all.begin(), all.end(), isKnown);
}

// --- For a person -----------------------------------------------------------------------------------------------------------

void writeNumbers(const Console& console, const LibraryFunction& function, const PreparedArgument& output)
{
    const std::uint32_t width = output.parameter->width;
    const layout::Meaning* const meaning = meaningOf(function, *output.parameter);
    const auto text = [&](std::int64_t number)
    {
        const std::string plain = numberText(number, width);
        return meaning == nullptr ? plain : withMeaning(plain, number, *meaning);
    };
    console.out << base::join(output.numbers(), ", ", text) << '\n';
}

void writeBytes(const Console& console, const LibraryFunction& function, const PreparedArgument& output)
{
    const Bytes bytes = output.content();
    console.out << bytes.size() << " bytes";
    if (!output.parameter->record.empty())
        console.out << " (" << output.parameter->record << ")";
    console.out << '\n';
    if (const layout::Structure* const structure = structureOf(function, *output.parameter);
        structure != nullptr && !isZero(bytes.data(), bytes.size()))
        return writeFields(console, *structure, bytes);
    Table table("  ");
    for (const DumpLine& line : dump(bytes.data(), bytes.size()))
        table.add({std::to_string(line.offset), line.text});
    table.write(console.out);
}

void writeRates(const Console& console, const PreparedArgument& output)
{
    const std::vector<std::string> rates = ratesOf(output.buffer);
    console.out << "rates: " << rates.size();
    for (std::size_t i = 0; i < rates.size(); ++i)
        console.out << (i == 0 ? ": " : ", ") << inQuotes(rates[i]);
    console.out << '\n';
}

void writeOutput(const Console& console, const LibraryFunction& function, const PreparedArgument& output)
{
    console.out << output.parameter->name << ": ";
    if (output.isNull)
        console.out << "left out\n";
    else if (!isWritten(output))
        console.out << "never written by the library\n";
    else if (output.parameter->form == Form::kNumber && !hasFields(function, output))
        writeNumbers(console, function, output);
    else if (output.parameter->form == Form::kText)
        console.out << (output.length == 0 ? "untouched, its size is 0" : inQuotes(textOf(output.content()))) << '\n';
    else if (isMacAddress(output))
        console.out << hexText(output.content(), ":") << '\n';
    else
        writeBytes(console, function, output);
    if (isRateTable(output) && !output.isNull)
        writeRates(console, output);
}

std::string statusText(const Report& report)
{
    const layout::Status* const status = statusOf(*report.function, report.result.number);
    return status == nullptr ? "" : ", " + status->name + ": " + status->text;
}

void writeResult(const Console& console, const Report& report)
{
    if (!report.result.text.empty())
        console.out << "result: " << inQuotes(report.result.text) << '\n';
    else if (report.function->kind == FunctionKind::kCommand)
        console.out << "reply status: " << report.result.number << statusText(report) << '\n';
    else
        console.out << "result: " << report.result.number << (report.result.meaning.empty() ? "" : ", " + report.result.meaning)
                    << '\n';
}

// --- For a program ----------------------------------------------------------------------------------------------------------

Json outputDocument(const LibraryFunction& function, const PreparedArgument& output)
{
    static const char* const kTypes[] = {"number", "text", "bytes", "record", "address"};
    Json document = {{"type", kTypes[static_cast<std::size_t>(output.parameter->form)]}};
    if (output.isNull || !isWritten(output) || output.length == 0)
    {
        document["written"] = false;
        return document;
    }

    document["written"] = true;
    if (output.parameter->form == Form::kNumber)
    {
        const std::vector<std::int64_t> numbers = output.numbers();
        const layout::Meaning* const meaning = meaningOf(function, *output.parameter);
        if (numbers.size() == 1)
            document["value"] = numbers[0];
        else
            document["values"] = numbers;
        if (meaning != nullptr)
            addMeaning(document, numbers[0], *meaning);
        if (const layout::Structure* const structure = structureOf(function, *output.parameter))
            document["fields"] = fieldsDocument(layout::decode(*structure, output.content()));
        return document;
    }
    if (output.parameter->form == Form::kText)
    {
        const std::string text = textOf(output.content());
        document["text"] = text;
        document["hex"] = hexText(Bytes(text.begin(), text.end()));
        return document;
    }
    if (!output.parameter->record.empty())
        document["record"] = output.parameter->record;
    document["hex"] = hexText(output.content());
    if (const layout::Structure* const structure = structureOf(function, *output.parameter))
        document["fields"] = fieldsDocument(layout::decode(*structure, output.content()));
    if (isMacAddress(output))
        document["mac"] = hexText(output.content(), ":");
    if (isRateTable(output))
        document["rates"] = ratesOf(output.buffer);
    return document;
}

Json outputDocuments(const Report& report)
{
    Json outputs = Json::object();
    if (report.hasReply())
        for (const PreparedArgument& argument : report.arguments.all)
            if (argument.parameter->isOutput)
                outputs[argument.parameter->name] = outputDocument(*report.function, argument);
    return outputs;
}

Json traceDocuments(const Report& report)
{
    Json traces = Json::array();
    for (const TraceRecord& trace : report.seen.traces)
        traces.push_back({{"level", trace.level}, {"tag", trace.tag}, {"line", trace.line}, {"text", trace.text}});
    return traces;
}

Json ipcStatusDocument(const Report& report)
{
    if (!report.seen.ipcStatus)
        return nullptr;
    return {{"number", *report.seen.ipcStatus}, {"name", tarnIpcStatusName(*report.seen.ipcStatus)}};
}

} // namespace

void writeReport(const Console& console, const Report& report)
{
    for (const std::string& note : report.arguments.notes)
        console.remark("note: " + note);
    if (console.json)
    {
        console.write(reportDocument(report));
    }
    else if (report.hasReply())
    {
        for (const PreparedArgument& argument : report.arguments.all)
            if (argument.parameter->isOutput)
                writeOutput(console, *report.function, argument);
        writeResult(console, report);
        if (isReplyDecoded(report))
            console.out << "layout: " << layoutInUse()->layout.title() << '\n';
    }
    if (report.outcome != CallOutcome::kDone)
        console.remark(failureText(report));
}

Json reportDocument(const Report& report)
{
    const bool isCommand = report.function->kind == FunctionKind::kCommand;
    Json document = Console::document("call");
    document["function"] = report.function->name;
    document["service"] = report.function->service.empty() ? Json(nullptr) : Json(report.function->service);
    document["command"] = isCommand ? Json(report.function->row.command->command) : Json(nullptr);
    document["caller"] = report.callerId ? Json(*report.callerId) : Json(nullptr);
    document["outcome"] = toString(report.outcome);
    document["exit"] = static_cast<int>(exitCodeOf(report.outcome));
    document["message"] = failureText(report);
    document["result"] = report.result.text.empty() ? Json(report.result.number) : Json(report.result.text);
    document["status"] = isCommand && report.hasReply() ? Json(report.result.number) : Json(nullptr);
    const layout::Status* const status =
        isCommand && report.hasReply() ? statusOf(*report.function, report.result.number) : nullptr;
    document["status_name"] = status == nullptr ? Json(nullptr) : Json(status->name);
    document["status_text"] = status == nullptr ? Json(nullptr) : Json(status->text);
    document["ipc_status"] = ipcStatusDocument(report);
    document["outputs"] = outputDocuments(report);
    document["notes"] = report.arguments.notes;
    document["traces"] = traceDocuments(report);
    document["layout"] = layoutDocument(isReplyDecoded(report) ? layoutInUse() : nullptr);
    return document;
}

} // namespace tarn::ctl
