/* How many calls in how long a time: a bucket that holds as many as the rate allows at once, and fills evenly. */
#pragma once

#include <cstdint>

namespace tarn::fleet
{

struct Rate
{
    std::uint32_t calls = 0; // 0: no limit
    std::uint32_t milliseconds = 0;
};

class Bucket
{
public:
    // Whether a call is left, at a time in milliseconds that never goes back.
    bool hasOne(const Rate& rate, std::uint64_t now)
    {
        if (rate.calls == 0)
            return true;
        // What is in the bucket is counted in milliseconds of filling: a call takes milliseconds / calls of them. All is
        // multiplied by `calls`, so that nothing is rounded.
        const std::uint64_t full = std::uint64_t{rate.milliseconds} * rate.calls;
        const std::uint64_t passed = now - filledAt_;
        filledAt_ = now;
        if (!isFilled_ || passed >= rate.milliseconds || level_ + passed * rate.calls > full)
            level_ = full;
        else
            level_ += passed * rate.calls;
        isFilled_ = true;
        return level_ >= rate.milliseconds;
    }
    // Takes one out of the bucket. False if there is none left.
    bool take(const Rate& rate, std::uint64_t now)
    {
        if (!hasOne(rate, now))
            return false;
        if (rate.calls != 0)
            level_ -= rate.milliseconds;
        return true;
    }

private:
    bool isFilled_ = false;
    std::uint64_t filledAt_ = 0;
    std::uint64_t level_ = 0;
};

} // namespace tarn::fleet
