#include "round_trip/callers.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <thread>

#include <pthread.h>

namespace round_trip
{
namespace
{

using Clock = std::chrono::steady_clock;

constexpr int kCallsBefore = 20; // that are not timed: the connection is made, memory is touched

// The bytes of a message, which begin with its length.
std::vector<unsigned char> messageOf(std::size_t length)
{
    std::vector<unsigned char> message(length);
    for (std::size_t i = 0; i < length; ++i)
        message[i] = static_cast<unsigned char>(i * 7 + 1);
    const auto first = static_cast<std::uint32_t>(length);
    std::memcpy(message.data(), &first, sizeof first);
    return message;
}

// What one caller measures.
struct Times
{
    Clock::time_point began, ended;
    std::vector<double> nanoseconds;
};

void callAlone(const Peer& peer, const std::string& directory, std::size_t length, int calls, pthread_barrier_t& start,
               Times& times)
try
{
    const std::unique_ptr<Connection> connection = peer.connect(directory);
    const std::vector<unsigned char> sent = messageOf(length);
    std::vector<unsigned char> message = sent;
    for (int i = 0; i < kCallsBefore; ++i)
        connection->call(message.data(), length);
    times.nanoseconds.reserve(static_cast<std::size_t>(calls));

    pthread_barrier_wait(&start);
    times.began = times.ended = Clock::now();
    for (int i = 0; i < calls; ++i)
    {
        const Clock::time_point began = Clock::now();
        connection->call(message.data(), length);
        times.ended = Clock::now();
        times.nanoseconds.push_back(std::chrono::duration<double, std::nano>(times.ended - began).count());
    }
    if (message != sent)
        fail("what came back is not what was sent");
}
catch (const std::exception& error)
{
    std::fprintf(stderr, "%s: %s\n", peer.name, error.what());
    std::exit(1);
}

} // namespace

Calls callTogether(const Peer& peer, const std::string& directory, std::size_t length, int callers, int calls)
{
    pthread_barrier_t start;
    pthread_barrier_init(&start, nullptr, static_cast<unsigned>(callers));
    std::vector<Times> all(static_cast<std::size_t>(callers));
    std::vector<std::thread> threads;
    threads.reserve(all.size());
    for (Times& each : all)
        threads.emplace_back([&] { callAlone(peer, directory, length, std::max(1, calls / callers), start, each); });
    for (std::thread& each : threads)
        each.join();
    pthread_barrier_destroy(&start);

    Calls result;
    Times whole = all.front();
    for (const Times& each : all)
    {
        whole.began = std::min(whole.began, each.began);
        whole.ended = std::max(whole.ended, each.ended);
        result.nanoseconds.insert(result.nanoseconds.end(), each.nanoseconds.begin(), each.nanoseconds.end());
    }
    result.seconds = std::chrono::duration<double>(whole.ended - whole.began).count();
    std::sort(result.nanoseconds.begin(), result.nanoseconds.end());
    return result;
}

} // namespace round_trip
