#include "tarnctl/verbs/verbs.h"

#include "base/join.h"
#include "base/suggestions.h"
#include "tarnctl/fields.h"
#include "tarnctl/listing.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/values.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace tarn::ctl
{

ExitCode Verbs::carryOut() const
{
    const std::string name = parser_.get_subcommands().front()->get_name();
    if (console_.csv && csvVerbs_.count(name) == 0)
        throw UsageError("--format csv: " + name + " has no table; expected --format json");
    return verbs_.at(name).act();
}

std::string Verbs::help(const std::string& name) const
{
    const std::vector<std::string> names = verbNames(parser_);
    if (name.empty())
        return parser_.help();
    if (std::find(names.begin(), names.end(), name) == names.end())
        throw UsageError("there is no command " + inQuotes(name) + "; expected one of " + base::join(names),
                         base::suggestions(name, names));
    return parser_.get_subcommand(name)->help(parser_.get_name());
}

std::vector<std::string> Verbs::completionWords(const std::string& name) const
{
    const CompletionWords words = verbs_.at(name).words;
    return words == nullptr ? std::vector<std::string>() : words();
}

CLI::App& Verbs::newVerb(const char* name, const char* description)
{
    if (writesCsv_)
        csvVerbs_.insert(name);
    return *parser_.add_subcommand(name, description)->group(group_);
}

void declareTargets(Syntax& syntax, std::vector<std::string>& targets)
{
    syntax.texts("TARGET", targets, "Radios by id or name, interfaces by name or RADIO.INTERFACE; all if none is given");
}

void declareWatch(Syntax& syntax, WatchOptions& options)
{
    constexpr double kShortest = 0.1;
    constexpr double kLongest = 1e6;
    syntax.seconds("--watch", options.seconds, kShortest, kLongest, "Show it again so many seconds later, until interrupted");
    syntax.count("--count", options.count, "With --watch: show it so many times");
}

void requireAction(const char* verb, const std::string& word, const std::vector<std::string>& actions)
{
    if (std::find(actions.begin(), actions.end(), word) == actions.end())
        throw UsageError(std::string(verb) + ": expected one of " + base::join(actions) + "; got " + inQuotes(word),
                         base::suggestions(word, actions));
}

void declareSort(Syntax& syntax, std::optional<std::string>& column, const std::vector<Column>& columns)
{
    std::vector<std::string> keys;
    keys.reserve(columns.size());
    for (const Column& each : columns)
        keys.emplace_back(each.key);
    syntax.word("--sort", column, keys, "A column to sort by, numbers with the largest first");
}

std::vector<const CLI::App*> subcommands(const CLI::App& parser)
{
    return parser.get_subcommands([](const CLI::App* verb) { return !verb->get_group().empty(); });
}

std::vector<std::string> verbNames(const CLI::App& parser)
{
    std::vector<std::string> names;
    for (const CLI::App* verb : subcommands(parser))
        names.push_back(verb->get_name());
    return names;
}

std::vector<const CLI::Option*> namedOptions(const CLI::App& parser)
{
    return parser.get_options([](const CLI::Option* option) { return !option->get_lnames().empty(); });
}

std::vector<std::string> optionNames(const CLI::App& parser)
{
    std::vector<std::string> names;
    for (const CLI::Option* option : namedOptions(parser))
        names.push_back("--" + option->get_lnames().front());
    return names;
}

std::string switchAssignment(const char* function, const char* argument, const std::string& state)
{
    if (state != "on" && state != "off")
        throw UsageError("expected on or off; got " + inQuotes(state));
    const LibraryFunction& called = functionNamed(function);
    const layout::Meaning* const meaning = meaningOf(called, *called.parameter(argument));
    const bool isNamed = meaning != nullptr && meaning->values != nullptr;
    const std::string number = state == "on" ? "1" : "0";
    return std::string(argument) + "=" + (isNamed ? state : number);
}

std::vector<std::string> switchStates()
{
    return {"on", "off"};
}

} // namespace tarn::ctl
