#include "call_lines.h"

#include "base/json_reader.h"
#include "call_output.h"
#include "dry_run.h"
#include "field_arguments.h"
#include "layout_in_use.h"

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

struct CallLine
{
    const LibraryFunction* function = nullptr;
    std::vector<Assignment> arguments;
    CallerId callerId;
};

// Texts are what the command line takes, but null is null, so that the word is a text like any other. Of an argument that is
// unknown here, the interface's name by its other name is a text, and all else is refused.
Assignment assignmentOf(const LibraryFunction& function, const std::string& name, const base::JsonValue& value)
{
    if (value.isNull())
        return {name, kNullWord, false};
    if (const std::optional<std::int64_t> number = value.integerOrNull())
        return {name, std::to_string(*number), false};
    const std::string* const text = value.textOrNull();
    if (text == nullptr)
        value.fail("an integer, a text or null");
    const FunctionParameter* const parameter = function.parameter(argumentOf(name));
    return {name, *text, parameter == nullptr || parameter->form == Form::kText};
}

CallLine readLine(const std::string& text, const CallerId& usualCallerId)
{
    const base::JsonDocument document = base::parseJson(text, "the call");
    base::JsonObject object = document.root().object();
    CallLine line;
    line.function = &functionNamed(object["function"].text());
    if (const base::JsonValue arguments = object["arguments"])
        for (const auto& [name, value] : arguments.members())
            line.arguments.push_back(assignmentOf(*line.function, name, value));
    line.callerId = usualCallerId;
    if (const base::JsonValue caller = object["caller"])
        line.callerId = caller.isNull() ? std::nullopt : CallerId(caller.text());
    object.finish();
    return line;
}

struct LineAnswer
{
    Json document;
    ExitCode exit = ExitCode::kSuccess;
};

LineAnswer answerTo(const std::string& text, const CallerId& callerId, Passage passage)
try
{
    const CallLine line = readLine(text, callerId);
    const bool isHeld = passage == Passage::kHold;
    if (isHeld && line.function->kind != FunctionKind::kCommand)
        throw UsageError("--dry-run: " + line.function->name + " sends no message");
    const Report report = perform(*line.function, prepare(*line.function, line.arguments), line.callerId, passage);
    const bool isMessage = isHeld && report.outcome == CallOutcome::kDone;
    return {isMessage ? messageDocument(report) : reportDocument(report), exitCodeOf(report.outcome)};
}
catch (const UsageError& error)
{
    return {Console::errorDocument(ExitCode::kUsage, error.what(), error.suggestions), ExitCode::kUsage};
}
catch (const base::JsonError& error)
{
    return {Console::errorDocument(ExitCode::kUsage, error.what(), {}), ExitCode::kUsage};
}

} // namespace

ExitCode callLines(const Console& console, std::istream& lines, const CallerId& callerId, Passage passage)
{
    layoutInUse(); // read once, not searched for what each line names
    Console answers = console;
    answers.oneLine = true;
    ExitCode exit = ExitCode::kSuccess;
    std::string text;
    for (std::uint64_t number = 1; answers.out && std::getline(lines, text); ++number)
    {
        LineAnswer answer = answerTo(text, callerId, passage);
        answer.document["line"] = number;
        answers.write(answer.document);
        if (exit == ExitCode::kSuccess)
            exit = answer.exit;
    }
    if (lines.bad())
        return console.fail(ExitCode::kOther, "standard input could not be read to its end");
    return exit;
}

} // namespace tarn::ctl
