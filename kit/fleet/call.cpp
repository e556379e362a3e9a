// `tarn-fleet call`: one call on many gateways, so many at the same time, with a result for each of them.
#include "exchange.h"
#include "fleet_verbs.h"
#include "journal.h"
#include "roll.h"

#include "base/join.h"
#include "tarnctl/call_output.h"
#include "tarnctl/dry_run.h"
#include "tarnctl/fields.h"
#include "tarnctl/listing.h"
#include "tarnctl/progress.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/values.h"
#include "tarnctl/wakeup.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <deque>
#include <mutex>

#include <nlohmann/json.hpp>

namespace tarn::fleet
{

namespace
{

constexpr std::uint32_t kUsualWindow = 64;
constexpr std::uint32_t kLargestWindow = 1000;
// For the way there and back, beside the wait of the gateway's IPC.
constexpr std::chrono::seconds kWay{2};
constexpr char kInterrupted[] = "the run was interrupted";

constexpr char kCallHelp[] = R"(The call is made on each gateway that FILTER means, never as one broadcast, and
the arguments are written as for tarnctl call. Each gateway has a result:
  done             the service has answered with status 0
  service-status   it has answered with another one
  refused          the gateway did not make the call: its policy, its load
  ipc-failed       the gateway's own IPC failed; the service has not answered
  outcome-unknown  timed out: it was sent, and no answer came. Whether the call
                   was made is unknown, and it is not sent again
  not-sent         the gateway is not there, or the run has ended before
With --json one document a line and gateway as they answer, and a last one that
sums up. --resume FILE keeps in FILE what was sent; where FILE is there
already, only the gateways that nothing was sent to are asked.

Exit code: that of the first of these that some gateway had: 5 outcome-unknown,
6 refused or ipc-failed, 4 not there, 7 service-status, 1 not sent for another
reason; 0 if all are done.

Examples:
  tarn-fleet call 'home-*' TarnGetRadioNum
  tarn-fleet call @attic TarnSetLogLevel level=4 --stop-after 3 --resume run.txt
  tarn-fleet call 'home-*' TarnGetRadio radioId=1 --format csv)";

struct CallOptions
{
    std::string filter;
    std::string name;
    std::vector<std::string> arguments;
    std::vector<std::string> texts;
    std::optional<std::uint32_t> window;
    std::optional<std::uint32_t> stopAfter;
    std::optional<std::string> journal;
    bool isDryRun = false;
};

void declareCall(ctl::Syntax& syntax, CallOptions& options)
{
    syntax.text("FILTER", options.filter, "A gateway's name, a pattern with * and ?, or @FILE with a name a line");
    syntax.text("NAME", options.name, "The function's name");
    syntax.texts("ARGUMENT=VALUE", options.arguments, "The function's arguments, in any order");
    syntax.each("--text", options.texts, "ARGUMENT=VALUE, a text as given, even the word null");
    syntax.count("--window", options.window, "Calls under way at the same time, at most 1000; else 64");
    syntax.count("--stop-after", options.stopAfter, "Send nothing more after so many gateways that are not done");
    syntax.text("--resume", options.journal, "Keep in FILE what was sent, and go on where it ends", "FILE");
    syntax.flag("--dry-run", options.isDryRun, "Show the message and the gateways instead of sending it");
    syntax.footer(kCallHelp);
}

enum class What
{
    kDone,
    kServiceStatus,
    kRefused,
    kIpcFailed,
    kUnknown,
    kNotThere,
    kNotSent
};

struct WhatText
{
    const char* name;
    const char* shown;
    ctl::ExitCode exit;
};

// In the order of What.
constexpr std::array<WhatText, 7> kWhats = {{
    {"done", "done", ctl::ExitCode::kSuccess},
    {"service-status", "service status", ctl::ExitCode::kServiceStatus},
    {"refused", "refused", ctl::ExitCode::kIpcFailed},
    {"ipc-failed", "IPC failed", ctl::ExitCode::kIpcFailed},
    {"outcome-unknown", "timed out: outcome unknown", ctl::ExitCode::kTimedOut},
    {"not-sent", "not sent", ctl::ExitCode::kNoService},
    {"not-sent", "not sent", ctl::ExitCode::kOther},
}};

// The exit code is that of the first of these that some gateway had.
constexpr std::array<What, 6> kWorstFirst = {What::kUnknown,  What::kRefused,       What::kIpcFailed,
                                             What::kNotThere, What::kServiceStatus, What::kNotSent};

const WhatText& textOf(What what)
{
    return kWhats.at(static_cast<std::size_t>(what));
}

struct Result
{
    What what = What::kNotSent;
    std::string why;
    std::optional<ctl::Report> report; // of a call that was tried
};

What whatOf(const Outcome& outcome, const ctl::Report& report)
{
    switch (outcome.fate)
    {
    case Fate::kRefused:
        return What::kRefused;
    case Fate::kUnknown:
        return What::kUnknown;
    case Fate::kNotSent:
        return outcome.status == KOR_IIL_UNKNOWN_DST_ID ? What::kNotThere : What::kNotSent;
    case Fate::kAnswered:
        break;
    }
    // The gateway's IPC does not know either what became of these.
    if (outcome.status == KOR_IIL_TIMEOUT || outcome.status == KOR_IIL_RX_FAIL)
        return What::kUnknown;
    if (outcome.status != KOR_IIL_OK)
        return What::kIpcFailed;
    return report.outcome == ctl::CallOutcome::kDone ? What::kDone : What::kServiceStatus;
}

// --- The run ----------------------------------------------------------------------------------------------------------------

class Run
{
public:
    Run(const ctl::Console& console, const CallOptions& options, const ctl::LibraryFunction& function,
        const ctl::PreparedArguments& arguments, std::vector<std::string> gateways)
        : console_(console),
          options_(options),
          function_(function),
          arguments_(arguments),
          gateways_(std::move(gateways)),
          results_(gateways_.size()),
          progress_(console, "calling")
    {
    }

    void make(Exchange& exchange, Journal* journal, const ctl::StopSignals& signals)
    {
        leaveOutEarlier(journal);
        forEach(gateways_, options_.window.value_or(kUsualWindow),
                [&](std::size_t index)
                {
                    if (signals.haveCome())
                        return stop(kInterrupted);
                    if (!isEarlier_[index])
                        finish(index, ask(exchange, journal, signals, gateways_[index]), journal);
                    return !isStopped_;
                });
        for (std::size_t index = 0; index < results_.size(); ++index)
            if (!isFinished_[index] && !isEarlier_[index])
            {
                results_[index].why = stopReason_;
                write(index);
            }
    }

    ctl::ExitCode summarise() const
    {
        std::array<std::size_t, kWhats.size()> counts = {};
        std::size_t earlier = 0;
        for (std::size_t index = 0; index < results_.size(); ++index)
            if (isEarlier_[index] && results_[index].what != What::kUnknown)
                ++earlier;
            else
                ++counts.at(static_cast<std::size_t>(results_[index].what));
        writeSummary(counts, earlier);
        for (const What what : kWorstFirst)
            if (counts.at(static_cast<std::size_t>(what)) > 0)
                return textOf(what).exit;
        return ctl::ExitCode::kSuccess;
    }

    void writeTable() const;

private:
    bool stop(const std::string& reason)
    {
        const std::lock_guard guard(mutex_);
        if (!isStopped_)
            stopReason_ = reason;
        isStopped_ = true;
        return false;
    }

    // Those that were sent something in an earlier run have their result, or nobody will ever know it.
    void leaveOutEarlier(const Journal* journal)
    {
        isEarlier_.assign(gateways_.size(), 0);
        isFinished_.assign(gateways_.size(), 0);
        for (std::size_t index = 0; journal != nullptr && index < gateways_.size(); ++index)
        {
            const auto found = journal->earlier().find(gateways_[index]);
            if (found == journal->earlier().end())
                continue;
            isEarlier_[index] = 1;
            results_[index].what = What::kDone;
            if (!found->second.empty() && found->second != textOf(What::kUnknown).name)
                continue;
            results_[index].what = What::kUnknown;
            results_[index].why = "it was sent in an earlier run";
            write(index);
        }
    }

    Result ask(Exchange& exchange, Journal* journal, const ctl::StopSignals& signals, const std::string& gateway)
    {
        if (!exchange.awaitAnyBroker(signals))
            return {What::kNotSent, signals.haveCome() ? kInterrupted : exchange.lastLoss(), std::nullopt};
        const auto writeDown = [&]
        {
            if (journal != nullptr)
                journal->sending(gateway);
        };
        Outcome outcome;
        const auto send = [&](const ctl::Request& request, void* message)
        {
            outcome = exchange.call(
                gateway,
                {request.service, request.command, request.wait, static_cast<std::uint32_t>(request.message.size()), writeDown},
                message, std::chrono::seconds(request.wait) + kWay);
            return outcome.status;
        };
        Result result;
        result.report = ctl::perform(function_, arguments_, std::string(ctl::kOwnCallerId), send);
        result.what = whatOf(outcome, *result.report);
        result.why = outcome.reason;
        if (result.what == What::kServiceStatus)
            result.why = ctl::failureText(*result.report);
        for (const std::string& note : outcome.notes)
            result.why += (result.why.empty() ? "" : "; ") + note;
        return result;
    }

    void finish(std::size_t index, Result result, Journal* journal)
    {
        if (journal != nullptr)
            journal->result(gateways_[index], textOf(result.what).name);
        const std::lock_guard guard(mutex_);
        results_[index] = std::move(result);
        isFinished_[index] = 1;
        write(index);
        if (console_.json)
            results_[index].report.reset(); // a table needs it until the end
        progress_.show(++finished_, gateways_.size(), "gateways");
        if (results_[index].what != What::kDone && ++failures_ == options_.stopAfter && !isStopped_)
        {
            stopReason_ = "the run was stopped after " + std::to_string(failures_) + " gateways that are not done";
            isStopped_ = true;
        }
    }

    // With JSON, as it comes.
    void write(std::size_t index) const
    {
        if (!console_.json)
            return;
        const Result& result = results_[index];
        ctl::Json document = ctl::Console::document("fleet-result");
        document["gateway"] = gateways_[index];
        document["result"] = textOf(result.what).name;
        document["why"] = result.why;
        document["call"] = result.report ? ctl::reportDocument(*result.report) : ctl::Json(nullptr);
        console_.write(document);
    }

    void writeSummary(const std::array<std::size_t, kWhats.size()>& counts, std::size_t earlier) const;

    const ctl::Console& console_;
    const CallOptions& options_;
    const ctl::LibraryFunction& function_;
    const ctl::PreparedArguments& arguments_;
    const std::vector<std::string> gateways_;
    std::vector<Result> results_;
    std::vector<char> isEarlier_, isFinished_; // bytes, which threads may write beside one another

    std::mutex mutex_;
    std::atomic<bool> isStopped_{false};
    std::string stopReason_;
    std::uint32_t failures_ = 0;
    std::size_t finished_ = 0;
    ctl::Progress progress_;
};

std::string countOf(std::size_t gateways)
{
    return std::to_string(gateways) + (gateways == 1 ? " gateway" : " gateways");
}

// --- What is shown ----------------------------------------------------------------------------------------------------------

// The outputs by name: numbers, texts, and the fields of records as far as a layout tells of them.
ctl::Fields shownOutputs(const ctl::Report& report)
{
    ctl::Fields fields;
    for (const ctl::PreparedArgument& argument : report.arguments.all)
    {
        const ctl::FunctionParameter& parameter = *argument.parameter;
        if (!parameter.isOutput || argument.isNull)
            continue;
        if (const auto* const structure = ctl::structureOf(*report.function, parameter))
            for (const layout::FieldLine& line : layout::linesOf(layout::decode(*structure, argument.content())))
                fields.set(parameter.name + "." + line.name, ctl::textCell(line.value));
        else if (parameter.form == ctl::Form::kNumber && argument.numbers().size() == 1)
            fields.set(parameter.name, ctl::cellOf(argument.numbers().front(), ctl::meaningOf(*report.function, parameter)));
        else if (parameter.form == ctl::Form::kText)
            fields.set(parameter.name, ctl::textCell(ctl::textOf(argument.content())));
        else
            fields.set(parameter.name, ctl::textCell(ctl::hexText(argument.content())));
    }
    return fields;
}

// A gateway a row; the columns of the outputs are those of all that have answered.
void Run::writeTable() const
{
    ctl::Page page("fleet-results");
    std::deque<std::string> keys; // stay where they are
    std::vector<ctl::Column> columns = {{"gateway", "gateway"}, {"result", "result"}, {"why", "why"}};
    std::vector<ctl::Fields> rows;
    for (std::size_t index = 0; index < results_.size(); ++index)
    {
        const Result& result = results_[index];
        if (isEarlier_[index] && result.what != What::kUnknown)
            continue;
        ctl::Fields row;
        row.set("gateway", ctl::textCell(gateways_[index]));
        row.set("result", ctl::textCell(console_.csv ? textOf(result.what).name : textOf(result.what).shown));
        if (!result.why.empty())
            row.set("why", ctl::textCell(result.why));
        if (result.report && result.report->hasReply())
            row.add(shownOutputs(*result.report));
        for (const auto& [name, cell] : row.all())
            if (std::none_of(columns.begin(), columns.end(),
                             [&key = name](const ctl::Column& each) { return key == each.key; }))
            {
                keys.push_back(name);
                columns.push_back({keys.back().c_str(), keys.back().c_str()});
            }
        rows.push_back(std::move(row));
    }
    const bool isAnyWhy = std::any_of(rows.begin(), rows.end(), [](const ctl::Fields& row) { return row["why"].isKnown(); });
    if (!isAnyWhy && !console_.csv)
        columns.erase(columns.begin() + 2);
    page.list("gateways", columns).rows = std::move(rows);
    page.writeUndecoded(console_);
}

void Run::writeSummary(const std::array<std::size_t, kWhats.size()>& counts, std::size_t earlier) const
{
    if (console_.json)
    {
        ctl::Json document = ctl::Console::document("fleet-summary");
        document["function"] = function_.name;
        document["gateways"] = gateways_.size();
        ctl::Json results = ctl::Json::object();
        for (std::size_t what = 0; what < kWhats.size(); ++what)
            results[kWhats.at(what).name] = results.value(kWhats.at(what).name, std::size_t{0}) + counts.at(what);
        document["results"] = results;
        document["earlier"] = earlier;
        console_.write(document);
        return;
    }
    std::vector<std::string> parts;
    for (std::size_t what = 0; what < kWhats.size(); ++what)
        if (counts.at(what) > 0)
            parts.push_back(std::to_string(counts.at(what)) + " " + kWhats.at(what).shown +
                            (static_cast<What>(what) == What::kNotThere ? " (not there)" : ""));
    if (earlier > 0)
        parts.push_back(std::to_string(earlier) + " in earlier runs");
    console_.remark(countOf(gateways_.size()) + ": " + base::join(parts));
}

// --- The verb ---------------------------------------------------------------------------------------------------------------

ctl::PreparedArguments argumentsOf(const ctl::LibraryFunction& function, const CallOptions& options)
{
    std::vector<ctl::Assignment> assignments;
    assignments.reserve(options.arguments.size() + options.texts.size());
    for (const std::string& text : options.arguments)
        assignments.push_back(ctl::assignment(text, false));
    for (const std::string& text : options.texts)
        assignments.push_back(ctl::assignment(text, true));
    return ctl::prepare(function, assignments);
}

// What is called, in one line.
std::string lineOf(const CallOptions& options)
{
    std::string line = options.name;
    for (const std::string& argument : options.arguments)
        line += " " + argument;
    for (const std::string& text : options.texts)
        line += " --text " + text;
    return line;
}

ctl::ExitCode showDryRun(const ctl::Console& console, const ctl::Report& report, const std::vector<std::string>& gateways)
{
    ctl::writeMessage(console, report);
    if (console.json)
    {
        ctl::Json document = ctl::Console::document("fleet-plan");
        document["gateways"] = gateways;
        console.write(document);
    }
    else
        console.out << "\nto " << countOf(gateways.size()) << ": " << base::join(gateways, " ") << '\n';
    return ctl::ExitCode::kSuccess;
}

ctl::ExitCode call(const ctl::Console& plain, const CallOptions& options, const LinkSettings& link)
{
    ctl::Console console = plain;
    console.oneLine = true;
    const ctl::LibraryFunction& function = ctl::functionNamed(options.name);
    if (function.kind != ctl::FunctionKind::kCommand)
        throw ctl::UsageError(function.name + " makes no call on a gateway; expected a function with a command");
    if (options.window.value_or(1) > kLargestWindow)
        throw ctl::UsageError("--window: expected 1 to " + std::to_string(kLargestWindow));
    const GatewayFilter filter(options.filter);
    const ctl::PreparedArguments arguments = argumentsOf(function, options);
    for (const std::string& note : arguments.notes)
        console.remark("note: " + note);
    const ctl::Report held = ctl::perform(function, arguments, std::string(ctl::kOwnCallerId), ctl::Passage::kHold);
    if (held.outcome == ctl::CallOutcome::kRejected)
    {
        ctl::writeReport(console, held);
        return ctl::exitCodeOf(held.outcome);
    }
    std::optional<Journal> journal;
    if (options.journal && !options.isDryRun)
        journal.emplace(*options.journal, lineOf(options));

    const ctl::Wakeup wakeup;
    const ctl::StopSignals signals(wakeup);
    Roll roll;
    ExchangeWatcher watcher;
    watcher.state = [&roll](const std::string& gateway, const Envelope& envelope) { roll.hear(gateway, envelope); };
    Exchange exchange(link, {kAllStates}, watcher, layoutOrNull());
    if (!exchange.awaitAnyBroker(signals))
        return console.fail(ctl::ExitCode::kIpcFailed, exchange.lastLoss());
    const std::vector<std::string> gateways = gatewaysOf(filter, roll);
    if (gateways.empty())
        return console.fail(ctl::ExitCode::kOther, "the broker knows no gateway that " + options.filter + " means");
    if (options.isDryRun)
        return showDryRun(console, held, gateways);

    Run run(console, options, function, arguments, gateways);
    run.make(exchange, journal ? &*journal : nullptr, signals);
    if (!console.json)
        run.writeTable();
    return run.summarise();
}

std::vector<std::string> commandNames()
{
    std::vector<std::string> names;
    for (const ctl::LibraryFunction& function : ctl::catalogue())
        if (function.kind == ctl::FunctionKind::kCommand)
            names.push_back(function.name);
    return names;
}

} // namespace

void addCall(ctl::Verbs& verbs, const SettingsSource& settings)
{
    verbs.add<CallOptions>(
        "call", "Calls a function on many gateways", declareCall,
        [settings](const ctl::Console& console, const CallOptions& options) { return call(console, options, settings()); },
        &commandNames);
}

} // namespace tarn::fleet
