// `tarnctl completion bash`: what a shell needs to complete command lines.
#include "base/join.h"
#include "tarnctl/catalogue.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/values.h"
#include "tarnctl/verbs/verbs.h"

#include <CLI/CLI.hpp>

#include <set>
#include <sstream>
#include <vector>

namespace tarn::ctl
{

namespace
{

struct CompletionOptions
{
    std::string shell;
};

void declare(CLI::App& verb, CompletionOptions& options)
{
    verb.add_option("SHELL", options.shell, "bash")->required();
    verb.footer("To use it:  source <(tarnctl completion bash)");
}

std::vector<std::string> shells()
{
    return {"bash"};
}

// The part that is the same for every version. Bash takes a '=' for a word of its own.
constexpr char kCompletion[] = R"bash(
_tarnctl()
{
    local word="${COMP_WORDS[COMP_CWORD]}" before="${COMP_WORDS[COMP_CWORD-1]}" command='' function='' words index
    COMPREPLY=()
    # What the user has to think of: the value of an option or of an argument.
    if [[ $word == = || $before == = ]] || _tarnctl_takes_value "$before"; then
        return
    fi
    for ((index = 1; index < COMP_CWORD; ++index)); do
        if _tarnctl_takes_value "${COMP_WORDS[index]}"; then
            ((++index))
        elif [[ ${COMP_WORDS[index]} == -* ]]; then
            continue
        elif [[ -z $command ]]; then
            command="${COMP_WORDS[index]}"
        elif [[ -z $function ]]; then
            function="${COMP_WORDS[index]}"
        fi
    done
    if [[ $word == -* ]]; then
        words="$(_tarnctl_options "$command")"
    elif [[ $command == call && -n $function ]]; then
        words="$(_tarnctl_arguments "$function")"
    else
        words="$(_tarnctl_words "$command")"
    fi
    COMPREPLY=($(compgen -W "$words" -- "$word"))
    if [[ ${COMPREPLY[0]} == *= ]]; then
        compopt -o nospace 2> /dev/null
    fi
}
complete -o default -F _tarnctl tarnctl
)bash";

// Options that take the next word.
std::set<std::string> valueOptions(const CLI::App& parser)
{
    std::set<std::string> names;
    for (const CLI::Option* option : namedOptions(parser))
        if (option->get_items_expected_max() > 0)
            names.insert("--" + option->get_lnames().front());
    for (const CLI::App* verb : subcommands(parser))
        names.merge(valueOptions(*verb));
    return names;
}

// Inputs wait for their value; of outputs only null can be given.
std::vector<std::string> argumentWords(const LibraryFunction& function)
{
    std::vector<std::string> words;
    words.reserve(function.parameters.size());
    for (const FunctionParameter& parameter : function.parameters)
        words.push_back(parameter.name + (parameter.isInput && parameter.form != Form::kAddress ? "=" : "=null"));
    return words;
}

// Words are made of letters, digits, '_', '-' and '='; they need no quoting.
void writeCase(std::ostream& script, const std::string& pattern, const std::vector<std::string>& words)
{
    script << "        " << pattern << ") echo '" << base::join(words, " ") << "' ;;\n";
}

// Verbs and options as the parser has them, functions and their arguments as the catalogue does.
std::string bashCompletion(const Verbs& verbs)
{
    const CLI::App& parser = verbs.parser();
    std::ostringstream script;
    script << "# bash completion for tarnctl, written by `tarnctl completion bash`\n"
           << "\n"
           << "_tarnctl_options()\n{\n    case \"$1\" in\n";
    for (const CLI::App* verb : subcommands(parser))
        writeCase(script, verb->get_name(), optionNames(*verb));
    script << "    esac\n    echo '" << base::join(optionNames(parser), " ") << "'\n}\n"
           << "\n"
           << "_tarnctl_arguments()\n{\n    case \"$1\" in\n";
    for (const LibraryFunction& function : catalogue())
        writeCase(script, function.name, argumentWords(function));
    script << "    esac\n}\n"
           << "\n"
           << "_tarnctl_words()\n{\n    case \"$1\" in\n";
    writeCase(script, "''", verbNames(parser));
    for (const CLI::App* verb : subcommands(parser))
        writeCase(script, verb->get_name(), verbs.completionWords(verb->get_name()));
    script << "    esac\n}\n";

    script << "\n_tarnctl_takes_value()\n{\n    [[ $1 =~ ^(" << base::join(valueOptions(parser), "|") << ")$ ]]\n}\n"
           << kCompletion;
    return script.str();
}

ExitCode completion(const Console& console, const Verbs& verbs, const std::string& shell)
{
    if (shell != "bash")
        throw UsageError("completion: expected bash; got " + inQuotes(shell));
    const std::string script = bashCompletion(verbs);
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

} // namespace

void addCompletion(Verbs& verbs)
{
    const auto act = [&verbs](const Console& console, const CompletionOptions& options)
    { return completion(console, verbs, options.shell); };
    verbs.add("completion", "Writes a script that completes command lines", &declare, act, &shells);
}

} // namespace tarn::ctl
