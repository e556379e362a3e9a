#include "tarnctl/verbs/syntax.h"

#include "base/join.h"
#include "base/option_checks.h"

#include <CLI/CLI.hpp>

namespace tarn::ctl
{

namespace
{

std::string textOf(const std::string& word)
{
    return !word.empty() && word.back() == kWhole ? word.substr(0, word.size() - 1) : word;
}

// Texts as they are given: the parser's own conversion takes an empty one for none, and braces for an empty list.
template <typename Text>
auto storeText(Text& text)
{
    return [&text](const std::string& given) { text = textOf(given); };
}

CLI::Option* addTexts(CLI::App& verb, const char* name, std::vector<std::string>& texts, const char* description)
{
    const auto store = [&texts](const CLI::results_t& given)
    {
        texts.clear();
        for (const std::string& word : given)
            texts.push_back(textOf(word));
        return true;
    };
    return verb.add_option(name, store, description)->type_name("TEXT");
}

} // namespace

void Syntax::text(const char* name, std::string& text, const char* description)
{
    verb_.add_option_function<std::string>(name, storeText(text), description)->required();
}

void Syntax::text(const char* name, std::optional<std::string>& text, const char* description, const char* value)
{
    verb_.add_option_function<std::string>(name, storeText(text), description)->type_name(value);
}

void Syntax::text(const char* name, bool& isGiven, std::optional<std::string>& text, const char* description, const char* value)
{
    const auto store = [&isGiven, &text](const CLI::results_t& given)
    {
        isGiven = true;
        if (!given.front().empty())
            text = textOf(given.front());
        return true;
    };
    verb_.add_option(name, store, description)->expected(0, 1)->type_name(value);
}

void Syntax::word(const char* name, std::optional<std::string>& word, const std::vector<std::string>& words,
                  const char* description)
{
    text(name, word, description, (words.empty() ? "WHICH" : "WHICH:{" + base::join(words, ",") + "}").c_str());
}

void Syntax::texts(const char* name, std::vector<std::string>& texts, const char* description)
{
    addTexts(verb_, name, texts, description)->expected(CLI::detail::expected_max_vector_size);
}

void Syntax::each(const char* name, std::vector<std::string>& texts, const char* description)
{
    addTexts(verb_, name, texts, description)->expected(1)->take_all();
}

void Syntax::flag(const char* name, bool& isGiven, const char* description)
{
    verb_.add_flag(name, isGiven, description);
}

void Syntax::seconds(const char* name, std::optional<double>& seconds, double least, double most, const char* description)
{
    verb_.add_option(name, seconds, description)->check(base::between(least, most))->type_name("SECONDS");
}

void Syntax::seconds(const char* name, double& seconds, double least, double most, const char* description)
{
    verb_.add_option(name, seconds, description)
        ->check(base::between(least, most))
        ->capture_default_str()
        ->type_name("SECONDS");
}

void Syntax::count(const char* name, std::optional<std::uint32_t>& number, const char* description)
{
    verb_.add_option(name, number, description)->check(base::between(1u, 0xFFFFFFFFu))->type_name("NUMBER");
}

void Syntax::caller(CallerId& callerId)
{
    const auto store = [&callerId](const std::string& given) { callerId = given; };
    CLI::Option* const caller = verb_.add_option_function<std::string>("--caller", store, "The caller id, passed on as given")
                                    ->default_str(kOwnCallerId);
    verb_
        .add_flag_callback(
            "--null-caller", [&callerId] { callerId = std::nullopt; }, "A null pointer for the caller id")
        ->excludes(caller);
}

void Syntax::exclude(const char* name, const char* other)
{
    verb_.get_option(name)->excludes(verb_.get_option(other));
}

void Syntax::footer(const char* text)
{
    verb_.footer(text);
}

} // namespace tarn::ctl
