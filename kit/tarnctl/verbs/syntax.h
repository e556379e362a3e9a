// How a verb says what it takes. The parser's own header is slow to compile; this is all that most verbs need of it.
#pragma once

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

// Names in capitals are arguments by their position, names with -- are options. Texts are taken as they are given, even empty.
class Syntax
{
public:
    explicit Syntax(CLI::App& verb) : verb_(verb)
    {
    }

    void text(const char* name, std::string& text, const char* description); // has to be given
    void text(const char* name, std::optional<std::string>& text, const char* description);
    // One of these words, if it is known here which; the help shows them and a shell completes them, the verb refuses others.
    void word(const char* name, std::optional<std::string>& word, const std::vector<std::string>& words,
              const char* description);
    void texts(const char* name, std::vector<std::string>& texts, const char* description); // any number
    void flag(const char* name, bool& isGiven, const char* description);
    void seconds(const char* name, std::optional<double>& seconds, double least, const char* description);
    void count(const char* name, std::optional<std::uint32_t>& number, const char* description); // 1 and above
    void footer(const char* text);

private:
    CLI::App& verb_;
};

} // namespace tarn::ctl
