// The end of a wait, on the monotonic clock.
#pragma once

#include <chrono>
#include <cstdint>

namespace koriil
{

class Deadline
{
public:
    explicit Deadline(std::uint32_t seconds) : end_(std::chrono::steady_clock::now() + std::chrono::seconds(seconds))
    {
    }

    // Zero or less when it has passed.
    std::chrono::microseconds remaining() const
    {
        return std::chrono::duration_cast<std::chrono::microseconds>(end_ - std::chrono::steady_clock::now());
    }

private:
    std::chrono::steady_clock::time_point end_;
};

} // namespace koriil
