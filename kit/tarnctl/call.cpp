#include "call.h"

#include "fields.h"
#include "host/runtime_path.h"
#include "kor_iil_service.h"
#include "tarn_frame.h"

#include <array>
#include <utility>

// Only libkoriil has such a directory: the gateway's own IPC library need not have the function.
#pragma weak KorIilRuntimeDirectory

namespace tarn::ctl
{

namespace
{

struct OutcomeText
{
    const char* name;
    ExitCode exitCode;
};

// In the order of CallOutcome.
constexpr std::array<OutcomeText, 7> kOutcomes = {{
    {"done", ExitCode::kSuccess},
    {"rejected", ExitCode::kRejected},
    {"no-service", ExitCode::kNoService},
    {"timed-out", ExitCode::kTimedOut},
    {"ipc-failed", ExitCode::kIpcFailed},
    {"service-status", ExitCode::kServiceStatus},
    {"no", ExitCode::kOther},
}};

LocalResult invoke(const LibraryFunction& function, const char* callerId, const std::vector<calling::ArgumentValue>& values)
{
    if (function.local != nullptr)
        return function.local(callerId, values);
    const calling::Callable* const exported = calling::find(function.name);
    if (exported == nullptr)
        throw std::logic_error(function.name + " is in the contract, but the library has no such function");
    LocalResult result;
    result.number = exported->call(callerId, values.data(), values.size());
    return result;
}

std::string ipcFailure(const Report& report, const std::string& what)
{
    const std::uint32_t status = report.seen.ipcStatus.value_or(KOR_IIL_OK);
    return what + ": " + tarnIpcStatusName(status) + " (IPC status " + std::to_string(status) + "; result " +
           std::to_string(report.result.number) + ")";
}

// " (BUSY: a scan is running, by the layout attic 3)", where there is a layout that knows the status.
std::string statusMeaning(const Report& report)
{
    const layout::Status* const status = statusOf(*report.function, report.result.number);
    if (status == nullptr)
        return "";
    const layout::Layout& layout = layoutInUse()->layout;
    return " (" + status->name + ": " + status->text + ", by the layout " + layout.name + " " + layout.version + ")";
}

std::string rejection(const Report& report)
{
    std::string text = "it did not say which";
    std::string nothingSent = "; nothing was sent";
    if (report.function->kind == FunctionKind::kLocal)
    {
        text = report.result.meaning;
        nothingSent.clear();
    }
    else if (!report.seen.traces.empty())
        text = report.seen.traces.back().text;
    return report.function->name + " refused an argument: " + text + " (result " + std::to_string(report.result.number) +
           nothingSent + ")";
}

} // namespace

bool Report::hasReply() const
{
    return function->kind == FunctionKind::kLocal ? outcome != CallOutcome::kRejected
                                                  : outcome == CallOutcome::kDone || outcome == CallOutcome::kServiceStatus;
}

const PreparedArgument& Report::argument(const std::string& name) const
{
    for (const PreparedArgument& argument : arguments.all)
        if (argument.parameter->name == name)
            return argument;
    throw std::logic_error(function->name + " has no argument " + name);
}

std::int64_t Report::number(const std::string& output) const
{
    return argument(output).numbers().at(0);
}

std::string Report::text(const std::string& output) const
{
    return textOf(argument(output).content());
}

CallFailure::CallFailure(Report failed) : std::runtime_error(failureText(failed)), report(std::move(failed))
{
}

namespace
{

Report perform(const LibraryFunction& function, PreparedArguments arguments, const CallerId& callerId, Observer& observer)
{
    checkNamedLayout();
    Report report;
    report.function = &function;
    report.callerId = callerId;
    report.arguments = std::move(arguments);

    report.result = invoke(function, callerId ? callerId->c_str() : nullptr, report.arguments.values());
    report.seen = observer.seen;
    report.outcome = outcomeOf(report);
    return report;
}

} // namespace

Report perform(const LibraryFunction& function, PreparedArguments arguments, const CallerId& callerId, Passage passage)
{
    Observer observer(passage);
    return perform(function, std::move(arguments), callerId, observer);
}

Report perform(const LibraryFunction& function, PreparedArguments arguments, const CallerId& callerId, Sender sender)
{
    Observer observer(Passage::kSend);
    observer.sender = std::move(sender);
    return perform(function, std::move(arguments), callerId, observer);
}

Report perform(const std::string& function, const std::vector<std::string>& assignments)
{
    const LibraryFunction& named = functionNamed(function);
    std::vector<Assignment> given;
    given.reserve(assignments.size());
    for (const std::string& text : assignments)
        given.push_back(assignment(text, false));
    return perform(named, prepare(named, given));
}

Report performOrFail(const std::string& function, const std::vector<std::string>& assignments)
{
    Report report = perform(function, assignments);
    if (report.outcome != CallOutcome::kDone)
        throw CallFailure(std::move(report));
    return report;
}

CallOutcome outcomeOf(std::uint32_t ipcStatus)
{
    switch (ipcStatus)
    {
    case KOR_IIL_OK:
        return CallOutcome::kDone;
    case KOR_IIL_TIMEOUT:
        return CallOutcome::kTimedOut;
    case KOR_IIL_UNKNOWN_DST_ID:
        return CallOutcome::kNoService;
    default:
        return CallOutcome::kIpcFailed;
    }
}

CallOutcome outcomeOf(const Report& report)
{
    if (report.function->kind == FunctionKind::kLocal)
    {
        if (report.result.answer == Answer::kRefused)
            return CallOutcome::kRejected;
        return report.result.answer == Answer::kYes ? CallOutcome::kDone : CallOutcome::kNo;
    }
    if (!report.seen.request)
        return CallOutcome::kRejected;
    const CallOutcome outcome = outcomeOf(report.seen.ipcStatus.value_or(KOR_IIL_OK));
    if (outcome == CallOutcome::kDone && report.result.number != 0)
        return CallOutcome::kServiceStatus;
    return outcome;
}

ExitCode exitCodeOf(CallOutcome outcome)
{
    return kOutcomes.at(static_cast<std::size_t>(outcome)).exitCode;
}

const char* toString(CallOutcome outcome)
{
    return kOutcomes.at(static_cast<std::size_t>(outcome)).name;
}

std::string runtimeDirectory()
{
    return KorIilRuntimeDirectory == nullptr ? "" : koriil::runtimePath();
}

std::string inRuntimeDirectory()
{
    const std::string directory = runtimeDirectory();
    return directory.empty() ? "" : " in " + directory;
}

std::string failureText(const Report& report)
{
    const std::string service = report.function->service;
    switch (report.outcome)
    {
    case CallOutcome::kDone:
        return "";
    case CallOutcome::kRejected:
        return rejection(report);
    case CallOutcome::kNoService:
        return ipcFailure(report, "no service " + service + " is running" + inRuntimeDirectory());
    case CallOutcome::kTimedOut:
        return ipcFailure(report, report.function->kind == FunctionKind::kEvent
                                      ? "service " + service + " did not confirm in time"
                                      : "service " + service + " did not reply within " +
                                            std::to_string(report.seen.request->wait) + " s");
    case CallOutcome::kIpcFailed:
        return ipcFailure(report, "the IPC call to service " + service + " failed");
    case CallOutcome::kServiceStatus:
        return "service " + service + " answered " + report.function->name + " with status " +
               std::to_string(report.result.number) + statusMeaning(report);
    case CallOutcome::kNo:
        return report.function->name + ": " + report.result.meaning + " (result " + std::to_string(report.result.number) + ")";
    }
    return "";
}

} // namespace tarn::ctl
