// The connections of a service: who has one, who has to give it up when there are too many, and who gets which event.
#pragma once

#include "descriptor.h"
#include "packet.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace koriil
{

// Numbers in a service's poll set; callers have greater ones.
constexpr std::uint32_t kListenerNumber = 0;
constexpr std::uint32_t kWakeNumber = 1;
constexpr std::uint32_t kTidyNumber = 2;

// Whether an event goes to a connection. The request of the highest revision holds, so that it does not matter in which order
// they arrive over the connections of a process's threads.
struct Interest
{
    std::uint32_t revision = 0;
    bool isWanted = false;
};

struct Caller
{
    Descriptor socket;
    std::uint32_t processId = 0;
    bool isGreeted = false;
    bool isLeaving = false; // nothing more can be sent to it; what has arrived is still served
    std::chrono::steady_clock::time_point lastUsed;
    std::vector<Interest> interests; // by event; empty before the first subscription
};

// A connection is served, and removed, by the thread that the poll set has given it to. All others only shut it down, and its
// thread then finds it ended. So a Caller stays where it is while it is served, and only what others look at needs the lock.
class Callers
{
public:
    // Natural words: a count costs one instruction, and on 32-bit machines begins again at 2 to the power of 32.
    struct Counts
    {
        std::atomic<std::size_t> calls{0}, refusals{0}, drops{0};
    };

    Callers(const char* serviceId, std::uint32_t eventCount);

    // A number for a new connection, which may cost the idlest one its place; 0 if there is no room. May throw std::bad_alloc.
    std::uint32_t admit(Descriptor& socket, std::uint32_t processId);
    // NULL if it has been removed. It counts as used now.
    Caller* find(std::uint32_t number, std::chrono::steady_clock::time_point now);
    void remove(std::uint32_t number);
    // The next thread may have it: `poll` tells of it once more.
    void passOn(int poll, std::uint32_t number);
    void greet(Caller& caller);

    // Ends those that have not said hello in time.
    void endSilent();
    // Nobody can send any more; what has arrived can still be read. Those that only take events go on.
    void stopReceiving();
    // Whether there is still one that may have sent something before stopReceiving.
    bool isAnyLeaving();
    // Ends all.
    void end();

    // For the request of another connection of the same process.
    std::uint32_t setInterest(const Caller& caller, const PacketHeader& request);
    std::uint32_t publish(std::uint32_t event, const void* data, std::uint32_t length);

    void count(std::uint64_t& connections, std::uint64_t& subscriptions);
    Counts counts;

    // Around a fork, so that the child, which closes its copies of the sockets, finds the table whole.
    void beforeFork();
    void afterFork();
    void abandon();

private:
    using Table = std::unordered_map<std::uint32_t, Caller>;

    bool makeRoom();
    Table::iterator idlest();

    const char* const serviceId_;
    const std::uint32_t eventCount_;
    std::mutex mutex_;
    Table callers_;
    std::size_t leaving_ = 0;
    std::uint32_t lastNumber_;
};

} // namespace koriil
