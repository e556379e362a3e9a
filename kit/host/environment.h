// What the environment says, and the files it names that lines are appended to.
#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace koriil
{

// NULL if the variable is not set or empty.
inline const char* setting(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0' ? value : nullptr;
}

// Creates a missing file for its owner alone. -1 and errno on failure.
inline int openForAppending(const char* path)
{
    return open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
}

// One write per line, so that lines of several threads and processes never mix. Returns the bytes written; -1 and errno on
// failure.
inline ssize_t writeLine(int file, const char* line, std::size_t length)
{
    ssize_t written;
    do
        written = write(file, line, length);
    while (written < 0 && errno == EINTR);
    return written;
}

} // namespace koriil
