#include "call.h"

#include "kor_iil_service.h"
#include "tarn_frame.h"

#include <stdexcept>
#include <utility>

namespace tarn::ctl
{

namespace
{

LocalResult invoke(const Function& function, const char* callerId, const std::vector<calling::ArgumentValue>& values)
{
    if (function.local != nullptr)
        return function.local(callerId, values);
    const calling::Callable* const exported = calling::find(function.name);
    if (exported == nullptr)
        throw std::logic_error(function.name + " stands in the contract, but the library has no such function");
    LocalResult result;
    result.number = exported->call(callerId, values.data(), values.size());
    return result;
}

std::string ipcFailure(const Report& report, const std::string& what)
{
    const std::uint32_t status = *report.seen.ipcStatus;
    return what + ": " + tarnIpcStatusName(status) + " (IPC status " + std::to_string(status) + "; result " +
           std::to_string(report.result.number) + ")";
}

std::string rejection(const Report& report)
{
    const std::string text = report.function->kind == Kind::kLocal ? report.result.meaning
                             : report.seen.traces.empty()          ? "it did not say which"
                                                                   : report.seen.traces.back().text;
    const std::string nothingSent = report.function->kind == Kind::kLocal ? "" : "; nothing was sent";
    return report.function->name + " refused an argument: " + text + " (result " + std::to_string(report.result.number) +
           nothingSent + ")";
}

} // namespace

bool Report::hasReply() const
{
    return function->kind == Kind::kLocal ? outcome != Outcome::kRejected
                                          : outcome == Outcome::kDone || outcome == Outcome::kServiceStatus;
}

const Argument& Report::argument(const std::string& name) const
{
    for (const Argument& each : arguments.all)
        if (each.parameter->name == name)
            return each;
    throw std::logic_error(function->name + " has no argument " + name);
}

Report perform(const Function& function, Arguments arguments, const CallerId& callerId, Passage passage)
{
    Report report;
    report.function = &function;
    report.callerId = callerId;
    report.arguments = std::move(arguments);

    Observer observer(passage);
    report.result = invoke(function, callerId ? callerId->c_str() : nullptr, report.arguments.values());
    report.seen = observer.seen;
    report.outcome = outcomeOf(report);
    return report;
}

Report perform(const std::string& function, const std::vector<std::string>& assignments)
{
    const Function& named = functionNamed(function);
    std::vector<Assignment> given;
    for (const std::string& each : assignments)
        given.push_back(assignment(each, false));
    return perform(named, prepare(named, given));
}

Outcome outcomeOf(std::uint32_t ipcStatus)
{
    switch (ipcStatus)
    {
    case KOR_IIL_OK:
        return Outcome::kDone;
    case KOR_IIL_TIMEOUT:
        return Outcome::kTimedOut;
    case KOR_IIL_UNKNOWN_DST_ID:
        return Outcome::kNoService;
    default:
        return Outcome::kIpcFailed;
    }
}

Outcome outcomeOf(const Report& report)
{
    if (report.function->kind == Kind::kLocal)
    {
        if (report.result.answer == Answer::kRefused)
            return Outcome::kRejected;
        return report.result.answer == Answer::kYes ? Outcome::kDone : Outcome::kNo;
    }
    if (!report.seen.request)
        return Outcome::kRejected;
    const Outcome outcome = outcomeOf(report.seen.ipcStatus.value_or(KOR_IIL_OK));
    if (outcome == Outcome::kDone && report.result.number != 0)
        return Outcome::kServiceStatus;
    return outcome;
}

ExitCode exitCodeOf(Outcome outcome)
{
    switch (outcome)
    {
    case Outcome::kDone:
        return ExitCode::kSuccess;
    case Outcome::kRejected:
        return ExitCode::kRejected;
    case Outcome::kNoService:
        return ExitCode::kNoService;
    case Outcome::kTimedOut:
        return ExitCode::kTimedOut;
    case Outcome::kIpcFailed:
        return ExitCode::kIpcFailed;
    case Outcome::kServiceStatus:
        return ExitCode::kServiceStatus;
    case Outcome::kNo:
        break;
    }
    return ExitCode::kOther;
}

const char* toString(Outcome outcome)
{
    switch (outcome)
    {
    case Outcome::kDone:
        return "done";
    case Outcome::kRejected:
        return "rejected";
    case Outcome::kNoService:
        return "no-service";
    case Outcome::kTimedOut:
        return "timed-out";
    case Outcome::kIpcFailed:
        return "ipc-failed";
    case Outcome::kServiceStatus:
        return "service-status";
    case Outcome::kNo:
        break;
    }
    return "no";
}

std::string failureText(const Report& report)
{
    const std::string service = report.function->service;
    switch (report.outcome)
    {
    case Outcome::kDone:
        return "";
    case Outcome::kRejected:
        return rejection(report);
    case Outcome::kNoService:
        return ipcFailure(report, "no service " + service + " is running");
    case Outcome::kTimedOut:
        return ipcFailure(report, report.function->kind == Kind::kEvent
                                      ? "service " + service + " did not confirm in time"
                                      : "service " + service + " did not reply within a wait of " +
                                            std::to_string(report.seen.request->wait));
    case Outcome::kIpcFailed:
        return ipcFailure(report, "the IPC call to service " + service + " failed");
    case Outcome::kServiceStatus:
        return "service " + service + " answered " + report.function->name + " with status " +
               std::to_string(report.result.number);
    case Outcome::kNo:
        return report.function->name + ": " + report.result.meaning + " (result " + std::to_string(report.result.number) + ")";
    }
    return "";
}

} // namespace tarn::ctl
