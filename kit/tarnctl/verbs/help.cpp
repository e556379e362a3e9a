// `tarnctl help`: what the program, or a command, takes.
#include "tarnctl/verbs/verbs.h"

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

struct HelpOptions
{
    std::optional<std::string> command;
};

void declareHelp(Syntax& syntax, HelpOptions& options)
{
    syntax.text("COMMAND", options.command, "The command to explain");
}

ExitCode help(const Console& console, const Verbs& verbs, const std::string& command)
{
    const std::string text = verbs.help(command);
    if (!console.json)
    {
        console.out << text;
        return ExitCode::kSuccess;
    }
    Json document = Console::document("help");
    document["command"] = command.empty() ? Json(nullptr) : Json(command);
    document["text"] = text;
    console.write(document);
    return ExitCode::kSuccess;
}

} // namespace

void addHelp(Verbs& verbs)
{
    const auto act = [&verbs](const Console& console, const HelpOptions& options)
    { return help(console, verbs, options.command.value_or("")); };
    verbs.add("help", "Explains a command", &declareHelp, act);
}

} // namespace tarn::ctl
