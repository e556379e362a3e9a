#include "program.h"

#include "base/join.h"
#include "base/option_checks.h"
#include "base/suggestions.h"
#include "call_output.h"
#include "layout_in_use.h"
#include "usage_error.h"
#include "values.h"
#include "verbs/verbs.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <exception>

namespace tarn::ctl
{

namespace
{

CLI::Option* addChoice(CLI::App& parser, const char* name, const std::vector<std::string>& words, const char* description,
                       const std::function<void(const std::string&)>& choose)
{
    return parser.add_option_function<std::string>(name, choose, description)->check(base::oneOf(words))->type_name("WHICH");
}

// For errors, which the parser may have found before it came to this.
bool asksForJson(const std::vector<std::string>& arguments)
{
    for (auto word = arguments.begin(); word != arguments.end(); ++word)
        if (*word == "--json" || *word == "--format=json" ||
            (*word == "--format" && word + 1 != arguments.end() && *(word + 1) == "json"))
            return true;
    return false;
}

// Names the first unknown option or verb: the parser reports only the last consequence of one, for instance that a verb is
// missing. All other errors are the parser's own.
UsageError usageError(const CLI::App& parser, const CLI::ParseError& error, const std::vector<std::string>& arguments)
{
    const std::vector<CLI::App*> chosen = parser.get_subcommands();
    const std::string verb = chosen.empty() ? "" : chosen.front()->get_name();
    const std::string help =
        "; " + parser.get_name() + " " + verb + (verb.empty() ? "" : " ") + "--help shows what is expected";
    const std::vector<std::string> unknown = parser.remaining(true);
    const std::string word = unknown.empty() ? "" : unknown.front();

    if (word.size() > 1 && word.front() == '-' && word != "--")
    {
        const std::string option = word.substr(0, word.find('='));
        std::vector<std::string> known = verb.empty() ? std::vector<std::string>() : optionNames(*chosen.front());
        for (const std::string& name : optionNames(parser))
            known.push_back(name);
        return UsageError("there is no option " + inQuotes(option) + help, base::suggestions(option, known));
    }
    const auto place = [&](const std::string& text) { return std::find(arguments.begin(), arguments.end(), text); };
    if (!unknown.empty() && place(word) < place(verb))
        return UsageError("there is no command " + inQuotes(word) + "; expected one of " + base::join(verbNames(parser)),
                          base::suggestions(word, verbNames(parser)));
    return UsageError((verb.empty() && error.get_name() == "RequiredError" ? "a command is missing" : error.what()) + help);
}

// The parser's order. It would give the next word to an option that ends in '=', so that one gets its empty value as a word;
// and it would take "[a,b]" for several words.
std::vector<std::string> reversed(const std::vector<std::string>& arguments)
{
    std::vector<std::string> words;
    for (const std::string& argument : arguments)
    {
        const bool hasEmptyValue = argument.rfind("--", 0) == 0 && argument.find('=') == argument.size() - 1;
        const bool isOfOption = !words.empty() && words.back().rfind("--", 0) == 0;
        const bool isList = !argument.empty() && argument.front() == '[' && argument.back() == ']' && !isOfOption;
        words.push_back(hasEmptyValue ? argument.substr(0, argument.size() - 1)
                                      : argument + (isList ? std::string(1, kWhole) : ""));
        if (hasEmptyValue)
            words.emplace_back();
    }
    std::reverse(words.begin(), words.end());
    return words;
}

} // namespace

void addCommonOptions(CLI::App& parser, Console& console, std::optional<std::string>& layout, const char* version)
{
    parser.fallthrough(); // these options are also allowed after a verb
    Syntax(parser).text(
        "--layout", layout,
        "Layout file that says what is inside records; else TARN_LAYOUT, the simulated gateway's, /etc/tarn/layout.json",
        "FILE");
    CLI::Option* const json =
        parser.add_flag("--json", console.json, "Write JSON documents (schema tarnctl/1), as --format json does");
    addChoice(parser, "--format", {"table", "csv", "json"}, "How results are written",
              [&console](const std::string& format)
              {
                  console.json = format == "json";
                  console.csv = format == "csv";
              })
        ->excludes(json);
    addChoice(parser, "--color", {"auto", "always", "never"},
              "Whether tables are coloured; auto: on a terminal, unless NO_COLOR is set",
              [&console](const std::string& when)
              { console.colours = when == "always" || (when == "auto" && console.colours); });
    parser.set_version_flag("--version", parser.get_name() + " " + version);
    parser.get_formatter()->label("SUBCOMMAND", "COMMAND");
    parser.require_subcommand(1);
}

ExitCode carryOut(CLI::App& parser, const Verbs& verbs, Console& console, const std::optional<std::string>& layout,
                  const std::vector<std::string>& arguments, const std::function<void()>& prepare)
try
{
    parser.parse(reversed(arguments));
    prepare();
    chooseLayout(layout, [&console](const std::string& text) { console.remark(text); });
    const ExitCode exit = verbs.carryOut();
    if (console.out.flush())
        return exit;
    return console.fail(ExitCode::kOther, "the output could not be written in full");
}
catch (const CLI::Success& request) // for help, or the version
{
    parser.exit(request, console.out, console.err);
    return ExitCode::kSuccess;
}
catch (const CLI::ParseError& error)
{
    console.json = asksForJson(arguments);
    return console.fail(usageError(parser, error, arguments));
}
catch (const UsageError& error)
{
    return console.fail(error);
}
catch (const CallFailure& failure)
{
    console.remark(failure.what());
    if (console.json)
        console.write(reportDocument(failure.report));
    return exitCodeOf(failure.report.outcome);
}
catch (const std::exception& error)
{
    return console.fail(ExitCode::kOther, error.what());
}

} // namespace tarn::ctl
