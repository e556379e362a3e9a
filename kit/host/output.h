// Writing lines to a file, a pipe or a terminal of the host program: it never waits for a reader, and never raises a signal.
#pragma once

#include <cstddef>

#include <sys/types.h>

namespace koriil
{

// For a file that the environment names. Creates a missing one for its owner alone. -1 and errno on failure.
int openForAppending(const char* path);

// Writes what there is room for. Returns the bytes written; -1 and errno on failure, EAGAIN where the reader does not read.
ssize_t writeAtOnce(int file, const char* line, std::size_t length);

} // namespace koriil
