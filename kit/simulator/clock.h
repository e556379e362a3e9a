// The gateway's time, in milliseconds from an arbitrary start. Tests set a clock of their own.
#pragma once

#include <chrono>
#include <cstdint>

namespace tarn::simulator
{

using Milliseconds = std::uint64_t;

// A time that does not come.
constexpr Milliseconds kEndOfTime = Milliseconds{1} << 53;

class Clock
{
public:
    Clock() = default;
    Clock(const Clock&) = delete;
    Clock& operator=(const Clock&) = delete;
    virtual ~Clock() = default;

    // From any thread.
    virtual Milliseconds now() const = 0;
};

class SystemClock : public Clock
{
public:
    Milliseconds now() const override
    {
        const auto since = std::chrono::steady_clock::now().time_since_epoch();
        return static_cast<Milliseconds>(std::chrono::duration_cast<std::chrono::milliseconds>(since).count());
    }
};

} // namespace tarn::simulator
