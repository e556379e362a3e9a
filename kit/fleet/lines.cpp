#include "lines.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>

namespace tarn::fleet
{

namespace
{

// The file's next line without its line feed, or as much of it as there is room for. False at the end.
bool readLine(std::FILE* file, char* line, std::size_t size, std::size_t& length)
{
    length = 0;
    int character = std::getc(file);
    const bool isThere = character != EOF;
    for (; character != EOF && character != '\n' && length + 1 < size; character = std::getc(file))
        line[length++] = static_cast<char>(character);
    line[length] = '\0';
    return isThere;
}

} // namespace

bool Problem::say(const char* format, ...) const
{
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, size, format, arguments);
    va_end(arguments);
    return false;
}

bool readLines(const char* fileName, const char* expected, std::size_t longest,
               bool (*take)(void* context, char* line, const Problem& problem), void* context, const Problem& problem)
{
    std::FILE* file = std::fopen(fileName, "re");
    if (file == nullptr)
        return problem.say("%s: %s; expected %s", fileName, std::strerror(errno), expected);
    bool isGood = true;
    char line[kLongestLine + 2]; // a line that is too long shows by one character more
    std::size_t length = 0;
    for (unsigned number = 1; isGood && readLine(file, line, sizeof line, length); ++number)
    {
        char wrongText[512];
        const Problem wrong = {wrongText, sizeof wrongText};
        if (length > longest)
            isGood = wrong.say("expected at most %u characters in a line", static_cast<unsigned>(longest));
        else if (std::strlen(line) != length) // as flash has it where the power was lost: rules may be missing
            isGood = wrong.say("expected text, not a byte of 0");
        else
            isGood = take(context, line, wrong);
        if (!isGood)
            problem.say("%s:%u: %s", fileName, number, wrongText);
    }
    if (isGood && std::ferror(file) != 0)
        isGood = problem.say("%s: %s; expected %s", fileName, std::strerror(errno), expected);
    std::fclose(file);
    return isGood;
}

} // namespace tarn::fleet
