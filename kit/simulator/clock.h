// The time that the gateway lives by: real time, faster or slower, or none but that of steps.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace tarn::simulator
{

using Milliseconds = std::uint64_t;

class Clock
{
public:
    // Gateway seconds for each second of real time; at 0 the clock stands.
    explicit Clock(double speed = 1) : speed_(speed)
    {
    }

    double speed() const
    {
        return speed_;
    }

    Milliseconds now() const
    {
        return base_ + static_cast<Milliseconds>(realMilliseconds() * speed_);
    }

    void setSpeed(double speed)
    {
        set(now());
        speed_ = speed;
    }

    void set(Milliseconds time)
    {
        base_ = time;
        since_ = std::chrono::steady_clock::now();
    }

    // How long it takes until that time, in real time; none if the clock stands.
    std::optional<std::chrono::duration<double, std::milli>> until(Milliseconds time) const
    {
        if (speed_ == 0)
            return std::nullopt;
        const Milliseconds present = now();
        return std::chrono::duration<double, std::milli>(time > present ? static_cast<double>(time - present) / speed_ : 0);
    }

private:
    double realMilliseconds() const
    {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - since_).count();
    }

    double speed_;
    Milliseconds base_ = 0; // at `since_`
    std::chrono::steady_clock::time_point since_ = std::chrono::steady_clock::now();
};

} // namespace tarn::simulator
