#include "command_line.h"

#include "base/join.h"
#include "base/suggestions.h"
#include "call.h"
#include "call_output.h"
#include "completion.h"
#include "console.h"
#include "describe.h"
#include "dry_run.h"
#include "events.h"
#include "list.h"
#include "saving.h"
#include "usage_error.h"
#include "values.h"
#include "verbs.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <functional>
#include <memory>
#include <utility>

namespace tarn::ctl
{

namespace
{

constexpr char kExitCodes[] = R"(Exit codes:
  0  success
  1  anything else: nothing found, a file not written, the "no" of a local utility
  2  usage: the command line cannot be carried out as it stands
  3  the library refused an argument; nothing was sent
  4  no such service is running
  5  time-out: no reply, or fewer events than asked for, in time
  6  another IPC failure
  7  the service answered with a status other than 0

Environment:
  KORIIL_DIR    directory of the services' sockets; --directory sets it
  KORIIL_TRACE  highest level of the trace lines on standard error, or off)";

constexpr char kCallHelp[] = R"(Values:
  number       decimal or 0x...; a negative one stands for its two's complement
  text         as it stands; null is a null pointer (--text for the word itself)
  bytes        two hexadecimal digits a byte, @file, or zero
  six bytes    also a MAC address, 02:00:00:00:00:01 or 02-00-00-00-00-01
  record       like bytes, in its full size
  null         a null pointer, wherever the library checks it or allows it

Outputs are left out, or null. So may be optional inputs, and the size of an
output's buffer, which is 1024 bytes then.

Examples:
  tarnctl call TarnGetRadio radioId=1
  tarnctl call tarn_qcsapi_wifi_set_SSID ifname=wifi0 ssid='my network' --dry-run
  tarnctl call TarnGetRadio radioId=1 data=null          (to see it refused))";

// One command line on its way: the commands fill in what is to be done, and it is done when the whole line has been understood.
struct Session
{
    Session(std::ostream& out, std::ostream& err) : console(out, err)
    {
    }

    Console console;
    std::string directory;
    std::function<ExitCode()> action;
};

// Options of one command, kept for as long as the parser may write to them.
template <typename Options>
std::shared_ptr<Options> keep()
{
    return std::make_shared<Options>();
}

std::optional<std::string> ifGiven(const CLI::Option& option, const std::string& value)
{
    return option.count() == 0 ? std::nullopt : std::optional<std::string>(value);
}

// --- list, describe, completion ---------------------------------------------------------------------------------------------

void addList(CLI::App& app, Session& session)
{
    CLI::App* const command = app.add_subcommand("list", "Lists the functions of the library");
    const auto selection = keep<Selection>();
    command->add_option("--service", selection->service, "Only those of a service: TARN, QTN_RPC_PROXY, QTN_MIRROR");
    command->add_option("--group", selection->group, "Only those of a group");
    command->add_option("TEXT", selection->text, "Only those with this text in name, group or description");
    command->footer("Columns: service, command, group, function, description.");
    command->callback([&session, selection]
                      { session.action = [&session, selection] { return list(session.console, *selection); }; });
}

void addDescribe(CLI::App& app, Session& session)
{
    CLI::App* const command = app.add_subcommand("describe", "Shows what a function takes, checks, sends and gives back");
    const auto name = keep<std::string>();
    command->add_option("NAME", *name, "The function's name")->required();
    command->callback([&session, name] { session.action = [&session, name] { return describe(session.console, *name); }; });
}

ExitCode completion(const Console& console, const CLI::App& app, const std::string& shell)
{
    if (shell != "bash")
        throw UsageError("completion: expected bash; got " + inQuotes(shell));
    const std::string script = bashCompletion(app);
    if (!console.json)
    {
        console.out << script;
        return ExitCode::kSuccess;
    }
    Json document = Console::document("completion");
    document["shell"] = shell;
    document["script"] = script;
    console.write(document);
    return ExitCode::kSuccess;
}

void addCompletion(CLI::App& app, Session& session)
{
    CLI::App* const command = app.add_subcommand("completion", "Writes a script that completes command lines");
    const auto shell = keep<std::string>();
    command->add_option("SHELL", *shell, "bash")->required();
    command->footer("To use it:  source <(tarnctl completion bash)");
    command->callback([&app, &session, shell]
                      { session.action = [&app, &session, shell] { return completion(session.console, app, *shell); }; });
}

// --- call -------------------------------------------------------------------------------------------------------------------

struct CallOptions
{
    std::string name;
    std::vector<std::string> arguments;
    std::vector<std::string> texts;
    std::vector<std::string> savings;
    std::string callerId = kOwnCallerId;
    bool isNullCaller = false;
    bool isDryRun = false;

    CallerId caller() const
    {
        return isNullCaller ? CallerId() : CallerId(callerId);
    }
};

Arguments argumentsOf(const Function& function, const CallOptions& options)
{
    std::vector<Assignment> assignments;
    for (const std::string& text : options.arguments)
        assignments.push_back(assignment(text, false));
    for (const std::string& text : options.texts)
        assignments.push_back(assignment(text, true));
    return prepare(function, assignments);
}

ExitCode call(const Console& console, const CallOptions& options)
{
    const Function& function = functionNamed(options.name);
    if (options.isDryRun && function.kind != Kind::kCommand)
        throw UsageError("--dry-run: " + function.name + " sends no message");
    Arguments arguments = argumentsOf(function, options);
    std::vector<Saving> savings;
    for (const std::string& text : options.savings)
        savings.push_back(savingOf(function, arguments, text));

    const Report report =
        perform(function, std::move(arguments), options.caller(), options.isDryRun ? Passage::kHold : Passage::kSend);
    if (report.hasReply())
        save(report, savings); // first, so that a failure is all that is said
    if (options.isDryRun && report.outcome == Outcome::kDone)
        writeMessage(console, report);
    else
        writeReport(console, report);
    return exitCodeOf(report.outcome);
}

void addCaller(CLI::App& command, std::string& callerId, bool& isNull)
{
    CLI::Option* const caller =
        command.add_option("--caller", callerId, "The caller id, passed on as it stands")->capture_default_str();
    command.add_flag("--null-caller", isNull, "A null pointer for the caller id")->excludes(caller);
}

void addCall(CLI::App& app, Session& session)
{
    CLI::App* const command = app.add_subcommand("call", "Calls a function, or shows what it would send");
    const auto options = keep<CallOptions>();
    command->add_option("NAME", options->name, "The function's name")->required();
    CLI::Option* const arguments =
        command->add_option("ARGUMENT=VALUE", options->arguments, "The function's arguments, in any order");
    CLI::Option* const texts =
        command->add_option("--text", options->texts, "ARGUMENT=VALUE, a text as it stands, even the word null")
            ->expected(1)
            ->take_all();
    addCaller(*command, options->callerId, options->isNullCaller);
    CLI::Option* const dryRun = command->add_flag("--dry-run", options->isDryRun, "Show the message instead of sending it");
    CLI::Option* const savings =
        command->add_option("--save", options->savings, "ARGUMENT=FILE, write an output's bytes into a file")
            ->expected(1)
            ->take_all();
    savings->excludes(dryRun);
    command->footer(kCallHelp);
    command->callback(
        [=, &session]
        {
            // As they were given: the parser's lists make something else of braces.
            options->arguments = arguments->results();
            options->texts = texts->results();
            options->savings = savings->results();
            session.action = [&session, options] { return call(session.console, *options); };
        });
}

// --- events -----------------------------------------------------------------------------------------------------------------

struct EventOptions
{
    std::vector<std::string> names;
    std::string callerId = kOwnCallerId;
    bool isNullCaller = false;
    std::uint32_t count = 0;
    double seconds = 0;
};

void addEvents(CLI::App& app, Session& session)
{
    CLI::App* const command = app.add_subcommand("events", "Watches events of the device service");
    const auto options = keep<EventOptions>();
    CLI::Option* const names =
        command->add_option("EVENT", options->names, "Names or numbers of events; all five if none is given");
    CLI::Option* const count = command->add_option("--count", options->count, "End after so many events")
                                   ->check(CLI::Range(1u, 0xFFFFFFFFu, "1 to 4294967295"));
    CLI::Option* const seconds = command->add_option("--timeout", options->seconds, "End after so many seconds")
                                     ->check(CLI::Range(0.0, 1e9, "0 to 1e9 seconds"));
    addCaller(*command, options->callerId, options->isNullCaller);
    command->footer("One line an event, until the count is reached, the time is up, or SIGINT or SIGTERM comes (exit code 0).\n"
                    "Fewer events than --count when the time is up: exit code 5.");
    command->callback(
        [=, &session]
        {
            Watch watch;
            watch.events = names->results();
            if (count->count() != 0)
                watch.count = options->count;
            if (seconds->count() != 0)
                watch.seconds = options->seconds;
            watch.callerId = options->isNullCaller ? CallerId() : CallerId(options->callerId);
            session.action = [&session, watch] { return watchEvents(session.console, watch); };
        });
}

// --- Everyday commands ------------------------------------------------------------------------------------------------------

void addLogLevel(CLI::App& app, Session& session)
{
    CLI::App* const command = app.add_subcommand("log-level", "Reads or sets the device service's log level");
    const auto level = keep<std::string>();
    const CLI::Option* const option = command->add_option("LEVEL", *level, "The level to set");
    command->callback([=, &session]
                      { session.action = [=, &session] { return logLevel(session.console, ifGiven(*option, *level)); }; });
}

void addRadios(CLI::App& app, Session& session)
{
    app.add_subcommand("radios", "Shows the gateway's radios")
        ->callback([&session] { session.action = [&session] { return radios(session.console); }; });
}

void addFirmware(CLI::App& app, Session& session)
{
    app.add_subcommand("firmware", "Shows the version of the Wi-Fi module's firmware")
        ->callback([&session] { session.action = [&session] { return firmware(session.console); }; });
}

void addMirror(CLI::App& app, Session& session)
{
    CLI::App* const command = app.add_subcommand("mirror", "Reads or switches the Wi-Fi module's port mirroring");
    const auto state = keep<std::string>();
    const CLI::Option* const option = command->add_option("STATE", *state, "on or off");
    command->callback([=, &session]
                      { session.action = [=, &session] { return mirror(session.console, ifGiven(*option, *state)); }; });
}

void addTelnet(CLI::App& app, Session& session)
{
    CLI::App* const command = app.add_subcommand("telnet", "Reads or switches the Wi-Fi module's telnet access");
    const auto state = keep<std::string>();
    const auto processId = keep<std::string>();
    const CLI::Option* const stateOption = command->add_option("STATE", *state, "on or off");
    const CLI::Option* const pidOption =
        command->add_option("--pid", *processId, "The process on whose behalf it is switched; needed to switch");
    command->callback(
        [=, &session]
        {
            session.action = [=, &session]
            { return telnet(session.console, ifGiven(*stateOption, *state), ifGiven(*pidOption, *processId)); };
        });
}

void addPublish(CLI::App& app, Session& session)
{
    CLI::App* const command = app.add_subcommand("publish", "Lets the simulated gateway publish an event");
    const auto event = keep<std::string>();
    const auto data = keep<std::string>();
    command->add_option("EVENT", *event, "Name or number of the event")->required();
    command->add_option("--data", *data, "The event's data, two hexadecimal digits a byte");
    command->callback([=, &session] { session.action = [=, &session] { return publish(session.console, *event, *data); }; });
}

// ----------------------------------------------------------------------------------------------------------------------------

void addEverything(CLI::App& app, Session& session)
{
    app.fallthrough(); // the options here may stand behind a command too
    app.add_flag("--json", session.console.json, "Write JSON documents (schema tarnctl/1)");
    app.add_option("--directory", session.directory, "Directory of the services' sockets, instead of KORIIL_DIR");
    app.set_version_flag("--version", "tarnctl " TARNCTL_VERSION);
    app.require_subcommand(1);
    app.footer(kExitCodes);
    addList(app, session);
    addDescribe(app, session);
    addCall(app, session);
    addEvents(app, session);
    addLogLevel(app, session);
    addRadios(app, session);
    addFirmware(app, session);
    addMirror(app, session);
    addTelnet(app, session);
    addPublish(app, session);
    addCompletion(app, session);
}

std::vector<std::string> commandNames(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(command->get_name());
    return names;
}

// The first word that is neither an option nor an option's value, or nothing.
std::string commandWord(const std::vector<std::string>& arguments)
{
    for (auto word = arguments.begin(); word != arguments.end(); ++word)
    {
        if (word->empty() || word->front() != '-')
            return *word;
        if (*word == "--directory" && ++word == arguments.end())
            break;
    }
    return "";
}

// For a command that does not exist those that do, else what the parser said.
ExitCode failParsing(const Console& console, const CLI::App& app, const CLI::ParseError& error,
                     const std::vector<std::string>& arguments)
{
    const std::vector<std::string> names = commandNames(app);
    const std::string word = commandWord(arguments);
    const bool isCommand = std::find(names.begin(), names.end(), word) != names.end();
    if (isCommand || word.empty())
        return console.fail(ExitCode::kUsage, std::string(error.what()) + "; tarnctl " + (isCommand ? word + " " : "") +
                                                  "--help shows what is expected");
    return console.fail(ExitCode::kUsage, "there is no command " + inQuotes(word) + "; expected one of " + base::join(names),
                        base::suggestions(word, names));
}

ExitCode act(const Session& session)
try
{
    if (!session.directory.empty())
        setenv("KORIIL_DIR", session.directory.c_str(), 1);
    const ExitCode exit = session.action();
    if (session.console.out.flush())
        return exit;
    return session.console.fail(ExitCode::kOther, "the output could not be written in full");
}
catch (const UsageError& error)
{
    return session.console.fail(ExitCode::kUsage, error.what(), error.suggestions);
}
catch (const std::exception& error)
{
    return session.console.fail(ExitCode::kOther, error.what());
}

// The parser's order. It would give the next word to an option that ends in '=', so that one gets its empty value as a word.
std::vector<std::string> reversed(const std::vector<std::string>& arguments)
{
    std::vector<std::string> words;
    for (const std::string& argument : arguments)
    {
        const bool hasEmptyValue = argument.rfind("--", 0) == 0 && argument.find('=') == argument.size() - 1;
        words.push_back(hasEmptyValue ? argument.substr(0, argument.size() - 1) : argument);
        if (hasEmptyValue)
            words.emplace_back();
    }
    std::reverse(words.begin(), words.end());
    return words;
}

ExitCode parseAndAct(CLI::App& app, Session& session, const std::vector<std::string>& arguments)
{
    try
    {
        app.parse(reversed(arguments));
    }
    catch (const CLI::Success& request) // for help, or the version
    {
        app.exit(request, session.console.out, session.console.err);
        return ExitCode::kSuccess;
    }
    catch (const CLI::ParseError& error)
    {
        // It may have been found before --json was.
        session.console.json = std::find(arguments.begin(), arguments.end(), "--json") != arguments.end();
        return failParsing(session.console, app, error, arguments);
    }
    return act(session);
}

} // namespace

int run(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err)
{
    CLI::App app("Calls every function of the Wi-Fi client library by its name, and watches events.", "tarnctl");
    Session session(out, err);
    addEverything(app, session);
    return static_cast<int>(parseAndAct(app, session, arguments));
}

} // namespace tarn::ctl
