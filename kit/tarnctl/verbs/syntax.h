// How a verb says what it takes. The parser's own header is slow to compile; this is all that verbs need of it.
#pragma once

#include "tarnctl/call.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace CLI // NOLINT(readability-identifier-naming)
{
class App;
}

namespace tarn::ctl
{

// Behind a word that the parser is not to take for a list; no argument of a program has it.
constexpr char kWhole = '\0';

// Names in capitals are arguments by their position, names with -- are options. Texts are taken as they are given, even empty;
// the help calls one by the word in `value`.
class Syntax
{
public:
    explicit Syntax(CLI::App& verb) : verb_(verb)
    {
    }

    void text(const char* name, std::string& text, const char* description); // has to be given
    void text(const char* name, std::optional<std::string>& text, const char* description, const char* value = "TEXT");
    // The text may be left out.
    void text(const char* name, bool& isGiven, std::optional<std::string>& text, const char* description, const char* value);
    // One of these words, if it is known here which; the help shows them and a shell completes them, the verb refuses others.
    void word(const char* name, std::optional<std::string>& word, const std::vector<std::string>& words,
              const char* description);
    void texts(const char* name, std::vector<std::string>& texts, const char* description); // any number
    void each(const char* name, std::vector<std::string>& texts, const char* description);  // one a time, any number of times
    void flag(const char* name, bool& isGiven, const char* description);
    void seconds(const char* name, std::optional<double>& seconds, double least, double most, const char* description);
    void seconds(const char* name, double& seconds, double least, double most, const char* description); // with a default
    void count(const char* name, std::optional<std::uint32_t>& number, const char* description);         // 1 and above
    void caller(CallerId& callerId); // --caller and --null-caller
    // The first cannot be given with the second.
    void exclude(const char* name, const char* other);
    void footer(const char* text);

private:
    CLI::App& verb_;
};

} // namespace tarn::ctl
