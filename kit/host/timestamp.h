// The time of day, as traces and recordings show it.
#pragma once

#include <cstdio>
#include <ctime>

namespace koriil
{

// UTC with milliseconds, such as 2026-11-21T02:50:11.123Z. Allocates nothing.
struct Timestamp
{
    Timestamp()
    {
        timespec now = {};
        clock_gettime(CLOCK_REALTIME, &now);
        tm utc = {};
        gmtime_r(&now.tv_sec, &utc);
        const size_t length = strftime(text, sizeof(text), "%Y-%m-%dT%H:%M:%S", &utc);
        snprintf(text + length, sizeof(text) - length, ".%03uZ", static_cast<unsigned>(now.tv_nsec / 1000000));
    }

    char text[48];
};

} // namespace koriil
