// The time of day, as traces, recordings and event lists show it.
#pragma once

#include <cstdio>
#include <ctime>

namespace tarn::base
{

// UTC with milliseconds, such as 2026-11-21T02:50:11.123Z. Allocates nothing.
struct Timestamp
{
    Timestamp() : Timestamp(now())
    {
    }

    explicit Timestamp(const timespec& time)
    {
        tm utc = {};
        gmtime_r(&time.tv_sec, &utc);
        const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &utc);
        std::snprintf(text + length, sizeof text - length, ".%03uZ", static_cast<unsigned>(time.tv_nsec / 1000000));
    }

    char text[48];

private:
    static timespec now()
    {
        timespec time = {};
        clock_gettime(CLOCK_REALTIME, &time);
        return time;
    }
};

} // namespace tarn::base
