#include "completion.h"

#include "base/join.h"
#include "catalogue.h"
#include "event_names.h"

#include <set>
#include <sstream>
#include <vector>

namespace tarn::ctl
{

namespace
{

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
    else
        words="$(_tarnctl_words "$command" "$function")"
    fi
    COMPREPLY=($(compgen -W "$words" -- "$word"))
    if [[ ${COMPREPLY[0]} == *= ]]; then
        compopt -o nospace 2> /dev/null
    fi
}
complete -o default -F _tarnctl tarnctl
)bash";

std::vector<const CLI::App*> commandsOf(const CLI::App& app)
{
    return app.get_subcommands([](const CLI::App*) { return true; });
}

std::vector<const CLI::Option*> optionsOf(const CLI::App& app)
{
    return app.get_options([](const CLI::Option* option) { return !option->get_lnames().empty(); });
}

std::vector<std::string> commandNames(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::App* command : commandsOf(app))
        names.push_back(command->get_name());
    return names;
}

std::vector<std::string> optionNames(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::Option* option : optionsOf(app))
        names.push_back("--" + option->get_lnames().front());
    return names;
}

// Options that take the next word.
std::set<std::string> valueOptions(const CLI::App& app)
{
    std::set<std::string> names;
    for (const CLI::Option* option : optionsOf(app))
        if (option->get_items_expected_max() > 0)
            names.insert("--" + option->get_lnames().front());
    for (const CLI::App* command : commandsOf(app))
        names.merge(valueOptions(*command));
    return names;
}

std::vector<std::string> functionNames()
{
    std::vector<std::string> names;
    for (const Function& function : catalogue())
        names.push_back(function.name);
    return names;
}

// Inputs wait for their value; of outputs only null can be given.
std::vector<std::string> argumentWords(const Function& function)
{
    std::vector<std::string> words;
    for (const Parameter& parameter : function.parameters)
        words.push_back(parameter.name + (parameter.isInput && parameter.form != Form::kAddress ? "=" : "=null"));
    return words;
}

std::vector<std::string> eventWords()
{
    std::vector<std::string> names;
    for (const contract::Event& event : knownEvents())
        names.push_back(event.name);
    return names;
}

void writeCase(std::ostream& script, const std::string& pattern, const std::vector<std::string>& words)
{
    script << "        " << pattern << ") echo '" << base::join(words, " ") << "' ;;\n";
}

} // namespace

std::string bashCompletion(const CLI::App& app)
{
    std::ostringstream script;
    script << "# bash completion for tarnctl, written by `tarnctl completion bash`\n"
           << "\n"
           << "_tarnctl_options()\n{\n    case \"$1\" in\n";
    for (const CLI::App* command : commandsOf(app))
        writeCase(script, command->get_name(), optionNames(*command));
    script << "    esac\n    echo '" << base::join(optionNames(app), " ") << "'\n}\n"
           << "\n"
           << "_tarnctl_arguments()\n{\n    case \"$1\" in\n";
    for (const Function& function : catalogue())
        writeCase(script, function.name, argumentWords(function));
    script << "    esac\n}\n"
           << "\n"
           << "_tarnctl_words()\n{\n    case \"$1\" in\n";
    writeCase(script, "''", commandNames(app));
    writeCase(script, "describe", functionNames());
    script << "        call) if [[ -n $2 ]]; then _tarnctl_arguments \"$2\"; else echo '" << base::join(functionNames(), " ")
           << "'; fi ;;\n";
    writeCase(script, "events|publish", eventWords());
    writeCase(script, "mirror|telnet", {"on", "off"});
    writeCase(script, "completion", {"bash"});
    script << "    esac\n}\n";

    script << "\n_tarnctl_takes_value()\n{\n    [[ $1 =~ ^(" << base::join(valueOptions(app), "|") << ")$ ]]\n}\n"
           << kCompletion;
    return script.str();
}

} // namespace tarn::ctl
