// `tarnctl call`: calls any function by its name, or many one after another, or shows what it would send.
#include "tarnctl/call_lines.h"
#include "tarnctl/call_output.h"
#include "tarnctl/dry_run.h"
#include "tarnctl/saving.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/verbs/verbs.h"

#include <iostream>

namespace tarn::ctl
{

namespace
{

constexpr char kCallHelp[] = R"(Values:
  number       decimal or 0x...; of a negative one the two's complement is taken
  text         as given; null is a null pointer (--text for the word itself)
  bytes        two hexadecimal digits a byte, @file, or zero
  six bytes    also a MAC address, 02:00:00:00:00:01 or 02-00-00-00-00-01
  record       like bytes, in its full size
  null         a null pointer, wherever the library checks it or allows it

Outputs are left out, or null. So may be optional inputs, and the size of an
output's buffer, which is 1024 bytes then.

Lines of standard input:
  {"function": NAME, "arguments": {ARGUMENT: VALUE, ...}, "caller": ID}

With --stdin each line is such a JSON object, and is answered by one line, a
JSON document as with --json, before the next one is read. Of its keys only
"function" has to be there. A value is an integer, null for a null pointer, or
a text, which is written as above; a caller is a text or null. Each document
has the number of its line as "line". A line that cannot be carried out gets a
document of kind "error" that says what was expected. The exit code is that of
the first line that failed.

Examples:
  tarnctl call TarnGetRadio radioId=1
  tarnctl call --stdin < calls.jsonl
  tarnctl call tarn_qcsapi_wifi_set_SSID ifname=wifi0 ssid='my network' --dry-run
  tarnctl call TarnGetRadio radioId=1 data=null          (to see it refused))";

struct CallOptions
{
    std::optional<std::string> name;
    bool isStdin = false;
    std::vector<std::string> arguments;
    std::vector<std::string> texts;
    std::vector<std::string> savings;
    CallerId callerId = kOwnCallerId;
    bool isDryRun = false;
};

void declareCall(Syntax& syntax, CallOptions& options)
{
    syntax.text("NAME", options.name, "The function's name");
    syntax.flag("--stdin", options.isStdin, "Make a call for each line of standard input");
    syntax.texts("ARGUMENT=VALUE", options.arguments, "The function's arguments, in any order");
    syntax.each("--text", options.texts, "ARGUMENT=VALUE, a text as given, even the word null");
    syntax.caller(options.callerId);
    syntax.flag("--dry-run", options.isDryRun, "Show the message instead of sending it");
    syntax.each("--save", options.savings, "ARGUMENT=FILE, write an output's bytes into a file");
    syntax.exclude("--save", "--dry-run");
    for (const char* name : {"NAME", "--text", "--save"})
        syntax.exclude(name, "--stdin");
    syntax.footer(kCallHelp);
}

PreparedArguments argumentsOf(const LibraryFunction& function, const CallOptions& options)
{
    std::vector<Assignment> assignments;
    assignments.reserve(options.arguments.size() + options.texts.size());
    for (const std::string& text : options.arguments)
        assignments.push_back(assignment(text, false));
    for (const std::string& text : options.texts)
        assignments.push_back(assignment(text, true));
    return prepare(function, assignments);
}

ExitCode call(const Console& console, const CallOptions& options)
{
    const Passage passage = options.isDryRun ? Passage::kHold : Passage::kSend;
    if (options.isStdin)
        return callLines(console, std::cin, options.callerId, passage);
    if (!options.name)
        throw UsageError("NAME is required, or --stdin; tarnctl call --help shows what is expected");
    const LibraryFunction& function = functionNamed(*options.name);
    if (options.isDryRun && function.kind != FunctionKind::kCommand)
        throw UsageError("--dry-run: " + function.name + " sends no message");
    PreparedArguments arguments = argumentsOf(function, options);
    std::vector<Saving> savings;
    savings.reserve(options.savings.size());
    for (const std::string& text : options.savings)
        savings.push_back(savingOf(function, arguments, text));

    const Report report = perform(function, std::move(arguments), options.callerId, passage);
    if (report.hasReply())
        save(report, savings); // first, so that a failure is the only output
    if (options.isDryRun && report.outcome == CallOutcome::kDone)
        writeMessage(console, report);
    else
        writeReport(console, report);
    return exitCodeOf(report.outcome);
}

} // namespace

void addCall(Verbs& verbs)
{
    verbs.add("call", "Calls functions, or shows what they would send", &declareCall, &call, &functionNames);
}

} // namespace tarn::ctl
