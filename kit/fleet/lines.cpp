#include "lines.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>

namespace tarn::fleet
{

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
    char line[kLongestLine + 3]; // a line that is too long shows by one character more
    for (unsigned number = 1; isGood && std::fgets(line, sizeof line, file) != nullptr; ++number)
    {
        char wrongText[512];
        const Problem wrong = {wrongText, sizeof wrongText};
        line[std::strcspn(line, "\n")] = '\0';
        isGood = std::strlen(line) <= longest
                     ? take(context, line, wrong)
                     : wrong.say("expected at most %u characters in a line", static_cast<unsigned>(longest));
        if (!isGood)
            problem.say("%s:%u: %s", fileName, number, wrongText);
    }
    if (isGood && std::ferror(file) != 0)
        isGood = problem.say("%s: %s; expected %s", fileName, std::strerror(errno), expected);
    std::fclose(file);
    return isGood;
}

} // namespace tarn::fleet
