/* The verbs of the command line: `tarnctl VERB ...`.
 *
 * Each verb has one file here, with its options, its help and what it does. A new one is a file more, its name in
 * CMakeLists.txt, its declaration below, and its line in command_line.cpp, whose order is that of the help. */
#pragma once

#include "tarnctl/call.h"
#include "tarnctl/console.h"
#include "tarnctl/verbs/syntax.h"
#include "tarnctl/watch.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace CLI
{
class Option;
}

namespace tarn::ctl
{

struct Column;

// Words that a shell can complete after a verb.
using CompletionWords = std::vector<std::string> (*)();

class Verbs
{
public:
    Verbs(CLI::App& parser, const Console& console) : parser_(parser), console_(console)
    {
    }

    // The verbs that follow are under this heading in the help, or hidden if it is empty, and write CSV if they are asked for
    // it, or cannot.
    void group(const char* heading, bool writesCsv)
    {
        group_ = heading;
        writesCsv_ = writesCsv;
    }

    // Adds a verb. `declare` gives it its arguments and its help; the parser writes what is given into the options, and
    // `act` carries the verb out with them.
    template <typename Options, typename Action>
    void add(const char* name, const char* description, void (*declare)(Syntax& syntax, Options& options), Action act,
             CompletionWords words = nullptr)
    {
        Syntax syntax(newVerb(name, description));
        add(name, syntax, declare, act, words);
    }

    // The same with a declaration that knows more than a function can.
    template <typename Options, typename Action>
    void add(const char* name, const char* description, const std::function<void(Syntax& syntax, Options& options)>& declare,
             Action act)
    {
        Syntax syntax(newVerb(name, description));
        const auto options = std::make_shared<Options>();
        declare(syntax, *options);
        verbs_[name] = {[this, options, act] { return act(console_, *options); }, nullptr};
    }

    // Adds a verb without options.
    void add(const char* name, const char* description, ExitCode (*act)(const Console& console))
    {
        newVerb(name, description);
        verbs_[name] = {[this, act] { return act(console_); }, nullptr};
    }

    const CLI::App& parser() const
    {
        return parser_;
    }

    // Carries out the verb that the parser has found.
    ExitCode carryOut() const;

    // What `--help` says of a verb, or of the program if it is empty. Throws UsageError.
    std::string help(const std::string& name) const;

    std::vector<std::string> completionWords(const std::string& name) const;

private:
    struct Verb
    {
        std::function<ExitCode()> act;
        CompletionWords words = nullptr;
    };

    CLI::App& newVerb(const char* name, const char* description);

    template <typename Declared, typename Options, typename Action>
    void add(const char* name, Declared& declared, void (*declare)(Declared& declared, Options& options), Action act,
             CompletionWords words)
    {
        const auto options = std::make_shared<Options>();
        declare(declared, *options);
        verbs_[name] = {[this, options, act] { return act(console_, *options); }, words};
    }

    CLI::App& parser_;
    const Console& console_;
    std::string group_ = "Commands";
    bool writesCsv_ = false;
    std::set<std::string> csvVerbs_;
    std::map<std::string, Verb> verbs_;
};

// --- What several verbs take ---

// Radios and interfaces, as Survey understands them.
void declareTargets(Syntax& syntax, std::vector<std::string>& targets);
// --watch and --count.
void declareWatch(Syntax& syntax, WatchOptions& options);
// --sort.
void declareSort(Syntax& syntax, std::optional<std::string>& column, const std::vector<Column>& columns);

// Throws UsageError if the word is none of the actions of that verb.
void requireAction(const char* verb, const std::string& word, const std::vector<std::string>& actions);

// Those that the help shows.
std::vector<const CLI::App*> subcommands(const CLI::App& parser);
std::vector<std::string> verbNames(const CLI::App& parser);

// The options that have a long name, and these names, "--" included.
std::vector<const CLI::Option*> namedOptions(const CLI::App& parser);
std::vector<std::string> optionNames(const CLI::App& parser);

// "enable=on" where the layout names the argument's values, "enable=1" where none does. Throws UsageError for a state that is
// neither on nor off.
std::string switchAssignment(const char* function, const char* argument, const std::string& state);
std::vector<std::string> switchStates();

// Ends in failure, as the control identifier of a simulated gateway gave that IPC status. "(only that one PURPOSE)"
ExitCode simulatorFailure(const Console& console, std::uint32_t status, const std::string& purpose);

void addList(Verbs& verbs);
void addDescribe(Verbs& verbs);
void addCall(Verbs& verbs);
void addEvents(Verbs& verbs);
void addLogLevel(Verbs& verbs);
void addRadios(Verbs& verbs);
void addStatus(Verbs& verbs);
void addSsids(Verbs& verbs);
void addStations(Verbs& verbs);
void addScan(Verbs& verbs);
void addChannel(Verbs& verbs);
void addBandwidth(Verbs& verbs);
void addPower(Verbs& verbs);
void addSecurity(Verbs& verbs);
void addFilter(Verbs& verbs);
void addKick(Verbs& verbs);
void addWps(Verbs& verbs);
void addDfs(Verbs& verbs);
void addCounters(Verbs& verbs);
void addBoot(Verbs& verbs);
void addSmartWifi(Verbs& verbs);
void addTemperature(Verbs& verbs);
void addVersions(Verbs& verbs);
void addFirmware(Verbs& verbs);
void addMirror(Verbs& verbs);
void addTelnet(Verbs& verbs);
void addIpc(Verbs& verbs);
void addLayout(Verbs& verbs);
void addMetrics(Verbs& verbs);
void addReport(Verbs& verbs);
void addDiff(Verbs& verbs);
void addPublish(Verbs& verbs);
void addGateway(Verbs& verbs);
void addComplete(Verbs& verbs, bool isRemote = false); // of gateways behind a broker
void addCompletion(Verbs& verbs);
void addHelp(Verbs& verbs);

} // namespace tarn::ctl
