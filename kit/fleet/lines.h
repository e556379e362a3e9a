/* Files that people write a line at a time: settings and policies. What is wrong with one is said with its file and line. Needs
 * no C++ run-time library, as it is part of the program on the gateway. */
#pragma once

#include <cstddef>
#include <cstring>

namespace tarn::fleet
{

inline bool isEqual(const char* one, const char* other)
{
    return std::strcmp(one, other) == 0;
}

// Where to write what was expected.
struct Problem
{
    char* text;
    std::size_t size;

    // Always false.
    __attribute__((format(printf, 2, 3))) bool say(const char* format, ...) const;
};

// The most that a file's lines may be said to have, in characters.
inline constexpr std::size_t kLongestLine = 1023;

// Gives each line to `take`, without its line feed and to be changed at will, up to the first that is wrong. One with more than
// `longest` characters is. False if not all of it is good: with file and line, or, where the file cannot be read, with the
// system's reason and what was expected, "a file of settings".
bool readLines(const char* fileName, const char* expected, std::size_t longest,
               bool (*take)(void* context, char* line, const Problem& problem), void* context, const Problem& problem);

} // namespace tarn::fleet
