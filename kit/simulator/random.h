// Random numbers that are the same on every machine, and whose state is a number that can be saved.
#pragma once

#include <cstdint>

namespace tarn::simulator
{

// The minimal standard generator of Park and Miller, revised: x <- 48271 x mod (2^31 - 1).
struct Random
{
    static constexpr std::uint32_t kModulus = 0x7fffffff;

    std::uint32_t state = 1; // from 1 to kModulus - 1

    // From 0 to `most`, which is far below kModulus.
    std::uint32_t upTo(std::uint32_t most)
    {
        state = static_cast<std::uint32_t>(std::uint64_t{state} * 48271 % kModulus);
        return state % (most + 1);
    }
};

} // namespace tarn::simulator
