// What the library adds to a call: a function of the library against the bare memset, IPC and memcpy of the same bytes.
//
// The platform is a function that does nothing, so that only the library is timed. The two of a pair alternate, and the pair's
// result is the median of the rounds' differences and ratios. Allocations are counted in one call of either function.
#include <algorithm>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

#include "tarn_api.h"

namespace
{

std::size_t allocations = 0;

} // namespace

void* operator new(std::size_t size)
{
    ++allocations;
    if (void* memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

// Not inlined into the bare calls, as it is not into the library's.
extern "C" [[gnu::noinline]] std::uint32_t KorIilExecute(const char*, const char*, std::uint32_t, std::uint32_t, std::uint32_t,
                                                         void* message)
{
    asm volatile("" : : "r"(message) : "memory");
    return 0;
}

extern "C" void KorIilTrace(std::uint32_t, const char*, std::uint32_t, const char*, ...)
{
    std::abort();
}

extern "C" std::uint32_t KorIilSubscribeEvent(const char*, const char*, std::uint32_t, KorIilEventHandler)
{
    return 0;
}

extern "C" std::uint32_t KorIilCancelEvent(const char*, const char*, std::uint32_t, KorIilEventHandler)
{
    return 0;
}

namespace
{

TarnRadioData radio;
std::uint32_t level;

std::uint32_t bareLongest()
{
    alignas(std::uint32_t) unsigned char message[9584];
    std::memset(message, 0, sizeof message);
    KorIilExecute("bench", "TARN", 3, 7, sizeof message, message);
    std::memcpy(&radio, message + 28, sizeof radio);
    std::uint32_t status;
    std::memcpy(&status, message + 9580, sizeof status);
    return status;
}

std::uint32_t bareShortest()
{
    alignas(std::uint32_t) unsigned char message[8];
    std::memset(message, 0, sizeof message);
    KorIilExecute("bench", "TARN", 3, 2, sizeof message, message);
    std::memcpy(&level, message, sizeof level);
    std::uint32_t status;
    std::memcpy(&status, message + 4, sizeof status);
    return status;
}

std::uint32_t libraryLongest()
{
    return TarnGetRadio("bench", 1, &radio);
}

std::uint32_t libraryShortest()
{
    return TarnGetLastErrorMask("bench", &level);
}

using TimedCall = std::uint32_t (*)();

double nanosecondsPerCall(TimedCall call)
{
    constexpr int kCalls = 20000;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < kCalls; ++i)
    {
        const std::uint32_t status = call();
        asm volatile("" : : "r"(status) : "memory");
    }
    const std::chrono::duration<double, std::nano> elapsed = std::chrono::steady_clock::now() - start;
    return elapsed.count() / kCalls;
}

double median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

void compare(const char* name, TimedCall library, TimedCall bare)
{
    constexpr int kRounds = 101;
    std::vector<double> differences;
    std::vector<double> ratios;
    std::vector<double> times;
    for (int round = 0; round < kRounds; ++round)
    {
        const double withLibrary = nanosecondsPerCall(library);
        const double without = nanosecondsPerCall(bare);
        times.push_back(without);
        differences.push_back(withLibrary - without);
        ratios.push_back(withLibrary / without);
    }
    std::printf("%-22s bare %7.1f ns, library %+6.1f ns, ratio %.3f\n", name, median(times), median(differences),
                median(ratios));
}

} // namespace

int main()
{
    const std::size_t before = allocations;
    libraryLongest();
    libraryShortest();
    const std::size_t inCalls = allocations - before;
    compare("longest (9584 bytes)", libraryLongest, bareLongest);
    compare("shortest (8 bytes)", libraryShortest, bareShortest);
    std::printf("allocations in a call: %zu\n", inCalls);
}
