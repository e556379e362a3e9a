// The round trip of a message: a call through libkoriil to a service in another process, against the same bytes sent back and
// forth over a bare socket. All processes run on one processor, so that the scheduler's choice of processors does not matter;
// the repetitions are interleaved, so that other load on the machine affects all alike.
#include "kor_iil.h"
#include "kor_iil_service.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr std::size_t kLengths[] = {12, 144, 9584}; // the shortest, a common and the longest message of the Wi-Fi services
constexpr std::size_t kGoalLength = 9584;
constexpr double kGoal = 1.05; // at most, relative to the bare stream socket

void stayOnOneProcessor()
{
    cpu_set_t allowed;
    if (sched_getaffinity(0, sizeof allowed, &allowed) != 0)
        throw std::runtime_error("the processors cannot be asked for");
    int processor = 0;
    while (!CPU_ISSET(processor, &allowed))
        ++processor;
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(processor, &one);
    if (sched_setaffinity(0, sizeof one, &one) != 0)
        throw std::runtime_error("the process cannot be bound to one processor");
}

template <typename Body>
void inChildProcess(Body body)
{
    const pid_t child = fork();
    if (child < 0)
        throw std::runtime_error("no process");
    if (child > 0)
        return;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    body();
    _exit(0);
}

bool sendAll(int socket, const char* bytes, std::size_t length)
{
    for (std::size_t done = 0; done < length;)
    {
        const ssize_t sent = send(socket, bytes + done, length - done, MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        done += static_cast<std::size_t>(sent);
    }
    return true;
}

bool receiveAll(int socket, char* bytes, std::size_t length)
{
    for (std::size_t done = 0; done < length;)
    {
        const ssize_t received = recv(socket, bytes + done, length - done, 0);
        if (received <= 0)
            return false;
        done += static_cast<std::size_t>(received);
    }
    return true;
}

// Returns one end of a socket pair; a child process sends back whatever it receives on the other.
int echoOver(int type, std::size_t length)
{
    int ends[2];
    if (socketpair(AF_UNIX, type, 0, ends) != 0)
        throw std::runtime_error("no sockets");
    inChildProcess(
        [&]
        {
            close(ends[0]);
            std::vector<char> message(length);
            while (receiveAll(ends[1], message.data(), length) && sendAll(ends[1], message.data(), length))
            {
            }
        });
    close(ends[1]);
    return ends[0];
}

void bareSocket(benchmark::State& state, int socket, std::size_t length)
{
    std::vector<char> message(length, 'x');
    for (auto _ : state)
        if (!sendAll(socket, message.data(), length) || !receiveAll(socket, message.data(), length))
            state.SkipWithError("the echo process has ended");
}

std::uint32_t echo(void*, const KorIilRequest*, void*)
{
    return KOR_IIL_OK;
}

void startService()
{
    int ready[2];
    if (pipe(ready) != 0)
        throw std::runtime_error("no pipe");
    inChildProcess(
        [&]
        {
            KorIilService* service = nullptr;
            if (KorIilServiceOpen("ECHO", 0, echo, nullptr, &service) == KOR_IIL_OK && write(ready[1], "!", 1) == 1)
            {
                close(ready[1]);
                KorIilServiceRun(service);
            }
        });
    close(ready[1]);
    char byte;
    if (read(ready[0], &byte, 1) != 1)
        throw std::runtime_error("the service has not started");
    close(ready[0]);
}

void call(benchmark::State& state, std::size_t length)
{
    std::vector<char> message(length, 'x');
    for (auto _ : state)
        if (KorIilExecute("benchmark", "ECHO", 10, 1, static_cast<std::uint32_t>(length), message.data()) != KOR_IIL_OK)
            state.SkipWithError("the call failed");
}

// Prints the usual table, and keeps the medians.
class Medians : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs)
            if (run.aggregate_name == "median" && !run.error_occurred)
                values[run.run_name.function_name] = run.GetAdjustedRealTime();
        ConsoleReporter::ReportRuns(runs);
    }

    std::map<std::string, double> values;
};

std::string nameOf(const char* what, std::size_t length)
{
    return std::string(what) + "/" + std::to_string(length);
}

void registerAll()
{
    for (const std::size_t length : kLengths)
    {
        const int stream = echoOver(SOCK_STREAM, length);
        const int packets = echoOver(SOCK_SEQPACKET, length);
        benchmark::RegisterBenchmark(nameOf("stream", length).c_str(), bareSocket, stream, length)->UseRealTime();
        benchmark::RegisterBenchmark(nameOf("seqpacket", length).c_str(), bareSocket, packets, length)->UseRealTime();
        benchmark::RegisterBenchmark(nameOf("koriil", length).c_str(), call, length)->UseRealTime();
    }
}

// False if the goal is missed.
bool reportRatios(const std::map<std::string, double>& medians)
{
    bool met = true;
    std::printf("\nratio of medians   koriil : stream   koriil : seqpacket\n");
    for (const std::size_t length : kLengths)
    {
        const auto own = medians.find(nameOf("koriil", length));
        const auto stream = medians.find(nameOf("stream", length));
        const auto packets = medians.find(nameOf("seqpacket", length));
        if (own == medians.end() || stream == medians.end() || packets == medians.end())
        {
            std::printf("%10zu bytes   not all measured\n", length);
            continue;
        }
        const double toStream = own->second / stream->second;
        std::printf("%10zu bytes   %15.3f   %18.3f\n", length, toStream, own->second / packets->second);
        if (length == kGoalLength)
        {
            met = toStream <= kGoal;
            std::printf("goal at %zu bytes: koriil : stream <= %.2f: %s\n", length, kGoal, met ? "met" : "MISSED");
        }
    }
    return met;
}

} // namespace

int main(int argc, char** argv)
{
    // Options on the command line come later, and take precedence.
    std::vector<std::string> words = {argv[0], "--benchmark_repetitions=21", "--benchmark_min_time=0.05",
                                      "--benchmark_enable_random_interleaving=true", "--benchmark_report_aggregates_only=true"};
    words.insert(words.end(), argv + 1, argv + argc);
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;

    char directory[] = "/tmp/host_round_trip-XXXXXX";
    if (mkdtemp(directory) == nullptr || setenv("KORIIL_DIR", directory, 1) != 0)
    {
        std::perror("no runtime directory");
        return 2;
    }
    stayOnOneProcessor();
    startService();
    registerAll();
    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians);
    const bool met = reportRatios(medians.values);

    std::filesystem::remove_all(directory);
    return met ? 0 : 1;
}
