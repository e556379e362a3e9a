#include "tarnctl/verbs/verbs.h"

#include "tarnctl/usage_error.h"
#include "tarnctl/values.h"

namespace tarn::ctl
{

std::vector<const CLI::App*> subcommands(const CLI::App& parser)
{
    return parser.get_subcommands([](const CLI::App*) { return true; });
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

CLI::Option* addText(CLI::App& verb, const char* name, std::optional<std::string>& text, const char* description)
{
    return verb.add_option_function<std::string>(
        name, [&text](const std::string& given) { text = given; }, description);
}

CLI::Option* addTexts(CLI::App& verb, const char* name, std::vector<std::string>& texts, const char* description)
{
    const auto store = [&texts](const CLI::results_t& given)
    {
        texts = given;
        return true;
    };
    return verb.add_option(name, store, description)->type_name("TEXT")->expected(CLI::detail::expected_max_vector_size);
}

void addCaller(CLI::App& verb, CallerId& callerId)
{
    const auto store = [&callerId](const std::string& given) { callerId = given; };
    CLI::Option* const caller = verb.add_option_function<std::string>("--caller", store, "The caller id, passed on as given")
                                    ->default_str(kOwnCallerId);
    verb.add_flag_callback(
            "--null-caller", [&callerId] { callerId = std::nullopt; }, "A null pointer for the caller id")
        ->excludes(caller);
}

std::string switchValue(const std::string& state)
{
    if (state != "on" && state != "off")
        throw UsageError("expected on or off; got " + inQuotes(state));
    return state == "on" ? "1" : "0";
}

std::vector<std::string> switchStates()
{
    return {"on", "off"};
}

ExitCode writeResult(const Console& console, const char* kind, const std::vector<ResultLine>& lines)
{
    Json document = Console::document(kind);
    for (const ResultLine& line : lines)
    {
        document[line.key] = line.value;
        if (!console.json)
            console.out << line.title << ": " << (line.value.is_string() ? line.value.get<std::string>() : line.value.dump())
                        << '\n';
    }
    if (console.json)
        console.write(document);
    return ExitCode::kSuccess;
}

} // namespace tarn::ctl
