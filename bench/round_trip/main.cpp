// A message to another process and back, by libkoriil and by its peers.
//
//   tarn_bench_round_trip DIRECTORY CALLS OPTION...
//
// The services' sockets are in the directory, and what is shared of memory; CALLS are made in each repetition, by all callers
// together; the options are those of Google Benchmark. A benchmark is peer/length/callers; its time is that of all calls, its
// counters are nanoseconds of a call. All processes run on the processors that this one may use.
#include "round_trip/callers.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include <benchmark/benchmark.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace round_trip
{

void fail(const std::string& what)
{
    throw std::runtime_error(what);
}

void failWithReason(const std::string& what)
{
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

namespace
{

const Peer* const kPeers[] = {&kSharedMemory, &kStream, &kSeqpacket, &kSeqpacketEpoll, &kKoriil,
                              &kOncRpc,       &kSdBus,  &kZeroMq,    &kDBusDaemon,     &kGrpc};
constexpr std::size_t kLengths[] = {12, 144, 9584}; // the shortest of a kind, a common one, the longest
constexpr int kCallers[] = {1, 2, 4, 8, 64};

// In a process that ends with this one.
void startService(const Peer& peer, const std::string& directory)
{
    int ready[2];
    if (pipe(ready) != 0)
        failWithReason("a pipe");
    const pid_t child = fork();
    if (child < 0)
        failWithReason("a process");
    if (child == 0)
    {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        try
        {
            peer.serve(directory,
                       [&]
                       {
                           if (write(ready[1], "!", 1) != 1)
                               failWithReason("a pipe");
                       });
        }
        catch (const std::exception& error)
        {
            std::fprintf(stderr, "%s: %s\n", peer.name, error.what());
        }
        _exit(1);
    }
    close(ready[1]);
    char byte;
    const bool isReady = read(ready[0], &byte, 1) == 1;
    close(ready[0]);
    if (!isReady)
        fail(std::string("the service of ") + peer.name + " has not started");
}

void measure(benchmark::State& state, const Peer& peer, const std::string& directory, std::size_t length, int callers,
             int calls)
{
    for (auto _ : state)
    {
        const Calls made = callTogether(peer, directory, length, callers, calls);
        const auto at = [&](double share)
        { return made.nanoseconds[static_cast<std::size_t>(share * static_cast<double>(made.nanoseconds.size() - 1))]; };
        state.SetIterationTime(made.seconds);
        state.counters["p50"] = at(0.5);
        state.counters["p99"] = at(0.99);
        state.counters["p999"] = at(0.999);
        state.counters["callsPerSecond"] = static_cast<double>(made.nanoseconds.size()) / made.seconds;
    }
}

void registerAll(const std::string& directory, int calls)
{
    for (const Peer* const peer : kPeers)
        for (const std::size_t length : kLengths)
            for (const int callers : kCallers)
            {
                const std::string name = std::string(peer->name) + "/" + std::to_string(length) + "/" + std::to_string(callers);
                benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state)
                                             { measure(state, *peer, directory, length, callers, calls); })
                    ->UseManualTime()
                    ->Iterations(1);
            }
}

} // namespace
} // namespace round_trip

int main(int argc, char** argv)
try
{
    benchmark::Initialize(&argc, argv);
    const int calls = argc == 3 ? std::atoi(argv[2]) : 0;
    if (calls <= 0)
    {
        std::fprintf(stderr, "usage: tarn_bench_round_trip DIRECTORY CALLS OPTION...\n"
                             "CALLS is a number, and the options are those of Google Benchmark\n");
        return 2;
    }
    const std::string directory = argv[1];
    setenv("KORIIL_DIR", argv[1], 1);
    for (const round_trip::Peer* const peer : round_trip::kPeers)
        round_trip::startService(*peer, directory);
    round_trip::registerAll(directory, calls);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
catch (const std::exception& error)
{
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
