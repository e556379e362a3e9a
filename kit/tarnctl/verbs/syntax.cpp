#include "tarnctl/verbs/syntax.h"

#include "base/join.h"
#include "tarnctl/verbs/verbs.h"

#include <CLI/CLI.hpp>

#include <sstream>

namespace tarn::ctl
{

void Syntax::text(const char* name, std::string& text, const char* description)
{
    verb_
        .add_option_function<std::string>(
            name, [&text](const std::string& given) { text = given; }, description)
        ->required();
}

void Syntax::text(const char* name, std::optional<std::string>& text, const char* description)
{
    addText(verb_, name, text, description);
}

void Syntax::word(const char* name, std::optional<std::string>& word, const std::vector<std::string>& words,
                  const char* description)
{
    addText(verb_, name, word, description)->type_name(words.empty() ? "WHICH" : "WHICH:{" + base::join(words, ",") + "}");
}

void Syntax::texts(const char* name, std::vector<std::string>& texts, const char* description)
{
    addTexts(verb_, name, texts, description);
}

void Syntax::flag(const char* name, bool& isGiven, const char* description)
{
    verb_.add_flag(name, isGiven, description);
}

void Syntax::seconds(const char* name, std::optional<double>& seconds, double least, const char* description)
{
    constexpr double kMost = 1e6;
    std::ostringstream range;
    range << least << " to 1e6";
    verb_.add_option(name, seconds, description)->check(CLI::Range(least, kMost, range.str()))->type_name("SECONDS");
}

void Syntax::count(const char* name, std::optional<std::uint32_t>& number, const char* description)
{
    verb_.add_option(name, number, description)->check(CLI::Range(1u, 0xFFFFFFFFu, "1 to 4294967295"))->type_name("NUMBER");
}

void Syntax::footer(const char* text)
{
    verb_.footer(text);
}

} // namespace tarn::ctl
