// `tarnctl completion`: the script by which a shell completes command lines. What it offers, it asks of `tarnctl complete`.
#include "base/embedded_files.h"
#include "base/join.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/values.h"
#include "tarnctl/verbs/verbs.h"

#include <algorithm>
#include <array>

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

// The files of the directory `completion`.
const std::vector<base::EmbeddedFile>& embeddedFiles();

namespace
{

struct CompletionOptions
{
    std::string shell;
};

struct Shell
{
    const char* name;
    const char* script;
};

constexpr std::array<Shell, 3> kShells = {{
    {"bash", "tarnctl.bash"},
    {"zsh", "_tarnctl"},
    {"fish", "tarnctl.fish"},
}};

void declareCompletion(Syntax& syntax, CompletionOptions& options)
{
    syntax.text("SHELL", options.shell, "bash, zsh or fish");
    syntax.footer("To use it:  source <(tarnctl completion bash)    or zsh\n"
                  "            tarnctl completion fish | source\n"
                  "The Debian packages have the scripts where the shells look for them.");
}

std::vector<std::string> shellNames()
{
    std::vector<std::string> names;
    names.reserve(kShells.size());
    for (const Shell& shell : kShells)
        names.emplace_back(shell.name);
    return names;
}

std::string_view scriptFor(const std::string& name)
{
    const Shell* const shell =
        std::find_if(kShells.begin(), kShells.end(), [&](const Shell& known) { return known.name == name; });
    if (shell == kShells.end())
        throw UsageError("completion: expected " + base::join(shellNames(), " or ") + "; got " + inQuotes(name));
    return base::embeddedText(embeddedFiles(), shell->script);
}

ExitCode completion(const Console& console, const CompletionOptions& options)
{
    const std::string_view script = scriptFor(options.shell);
    if (!console.json)
    {
        console.out << script;
        return ExitCode::kSuccess;
    }
    Json document = Console::document("completion");
    document["shell"] = options.shell;
    document["script"] = script;
    console.write(document);
    return ExitCode::kSuccess;
}

} // namespace

void addCompletion(Verbs& verbs)
{
    verbs.add("completion", "Writes a script that completes command lines", &declareCompletion, &completion, &shellNames);
}

} // namespace tarn::ctl
