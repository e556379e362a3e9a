// Writing lines to a file, a pipe or a terminal of the host program: it never waits for a reader, and never raises a signal.
#pragma once

#include <atomic>
#include <climits>
#include <cstddef>

#include <sys/types.h>

namespace koriil
{

// A file that the environment names, and lines are appended to. A missing one is created for its owner alone.
class OutputFile
{
public:
    explicit OutputFile(const char* path);

    // Its descriptor; -1 and errno on failure. A program may close all descriptors, and the number may then be that of another
    // file: so it is looked at each time, and the file is opened again where it is not this one's.
    int descriptor() const;

private:
    bool isAt(int number) const;

    char path_[PATH_MAX]; // absolute: the program may change its directory
    mutable std::atomic<int> number_{-1};
    mutable std::atomic<unsigned long> identity_{0}; // of the file, as far as a word can tell
};

// Writes what there is room for. Returns the bytes written; -1 and errno on failure, EAGAIN where the reader does not read.
ssize_t writeAtOnce(int file, const char* line, std::size_t length);

} // namespace koriil
