#include "harness/cases.h"

#include "harness/allocations.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <random>

#include <alloca.h>
#include <benchmark/benchmark.h>
#include <valgrind/callgrind.h>

namespace bench
{
namespace
{

// One pair of addresses can be lucky or unlucky: message and record then share a set of the cache, or a line more or less. So
// every case is called with all of these, the same for all.
struct Placement
{
    std::size_t stackShift, recordShift; // bytes
};

constexpr std::size_t kPlacements = 64, kCallsOfEach = 16, kShifts = 4096;

std::array<Placement, kPlacements> placements()
{
    std::array<Placement, kPlacements> result = {};
    std::minstd_rand random(1); // NOLINT: the same in every run
    for (Placement& each : result)
        each = {16 + random() % kShifts / 16 * 16, random() % kShifts / 4 * 4};
    return result;
}

alignas(4096) unsigned char records[kRecordSize + kShifts];

[[gnu::noinline]] void callAt(const Placement& placement, Call call)
{
    auto* const shift = static_cast<volatile unsigned char*>(alloca(placement.stackShift));
    shift[0] = 0;
    for (std::size_t i = 0; i < kCallsOfEach; ++i)
        benchmark::DoNotOptimize(call(records + placement.recordShift));
}

void timeCase(benchmark::State& state, Call call)
{
    static const std::array<Placement, kPlacements> kAll = placements();
    while (state.KeepRunningBatch(kPlacements * kCallsOfEach))
        for (const Placement& each : kAll)
            callAt(each, call);
}

void countCase(const Case& counted)
{
    counted.call(records); // what is done once, by the dynamic linker for example, does not count
    const std::size_t before = allocations();
    counted.call(records);
    const std::size_t after = allocations();
    CALLGRIND_ZERO_STATS;
    CALLGRIND_TOGGLE_COLLECT;
    counted.call(records);
    CALLGRIND_TOGGLE_COLLECT;
    CALLGRIND_DUMP_STATS_AT(counted.name.c_str());
    std::printf("%s %zu\n", counted.name.c_str(), after - before);
}

} // namespace

int runCases(int argc, char** argv, const std::vector<Case>& cases)
{
    if (argc == 2 && std::strcmp(argv[1], "--count") == 0)
    {
        for (const Case& each : cases)
            countCase(each);
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    for (const Case& each : cases)
        benchmark::RegisterBenchmark(each.name.c_str(), timeCase, each.call);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

} // namespace bench
