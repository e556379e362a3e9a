// When a wait began and when it ends, on the monotonic clock, which all processes of the machine share.
#pragma once

#include <chrono>
#include <cstdint>

namespace koriil
{

class Deadline
{
public:
    explicit Deadline(std::uint32_t seconds) : wait_(seconds), begin_(Clock::now())
    {
    }

    // The whole wait, in seconds.
    std::uint32_t wait() const
    {
        return wait_;
    }

    std::chrono::steady_clock::time_point end() const
    {
        return begin_ + std::chrono::seconds(wait_);
    }

    // Zero or less when it has passed.
    std::chrono::microseconds remaining() const
    {
        return std::chrono::duration_cast<std::chrono::microseconds>(end() - Clock::now());
    }

    // When the wait began, as a packet says it: milliseconds, modulo 2 to the power of 32.
    std::uint32_t began() const
    {
        return milliseconds(begin_);
    }

    // Whether a wait of so many seconds that began then has passed, which the other process finds out.
    static bool hasPassed(std::uint32_t began, std::uint32_t wait, std::chrono::steady_clock::time_point now)
    {
        const std::uint32_t age = milliseconds(now) - began;
        return age >= std::uint64_t{wait} * 1000;
    }

private:
    using Clock = std::chrono::steady_clock;

    static std::uint32_t milliseconds(Clock::time_point time)
    {
        return static_cast<std::uint32_t>(
            std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count());
    }

    std::uint32_t wait_;
    Clock::time_point begin_;
};

} // namespace koriil
