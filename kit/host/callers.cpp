#include "callers.h"

#include "identifiers.h"
#include "trace.h"

#include <algorithm>
#include <cerrno>
#include <tuple>

#include <sys/epoll.h>
#include <sys/socket.h>

namespace koriil
{
namespace
{

using Clock = std::chrono::steady_clock;

constexpr std::size_t kMostCallers = 256;
constexpr std::chrono::seconds kGreetWithin{2};

// Unread events of one subscriber, in the kernel's accounting; the kernel grants less where net.core.wmem_max is lower.
constexpr int kEventQueueBytes = 4 * 1024 * 1024;

// Differs from run to run, so that a number that a client has from an earlier run of the service is not valid in this one.
std::uint32_t firstNumber()
{
    const auto now = Clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count());
}

bool isSubscriber(const Caller& caller)
{
    return !caller.interests.empty();
}

bool hasSentSomething(const Caller& caller)
{
    char byte;
    return recv(caller.socket.get(), &byte, 1, MSG_PEEK | MSG_DONTWAIT) > 0;
}

} // namespace

Callers::Callers(const char* serviceId, std::uint32_t eventCount)
    : serviceId_(serviceId), eventCount_(eventCount), lastNumber_(firstNumber())
{
}

// --- Coming and going --------------------------------------------------------------------------------------------------------

std::uint32_t Callers::admit(Descriptor& socket, std::uint32_t processId)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    if (callers_.size() - leaving_ >= kMostCallers && !makeRoom())
        return 0;
    do
        ++lastNumber_;
    while (lastNumber_ <= kTidyNumber || callers_.count(lastNumber_) != 0);
    Caller& caller = callers_[lastNumber_];
    caller.socket = std::move(socket);
    caller.processId = processId;
    caller.lastUsed = Clock::now();
    return lastNumber_;
}

// The idlest caller of the process that has the most loses its place: a client that finds its connection closed before it has
// sent anything opens another. False if there is none to spare.
bool Callers::makeRoom()
{
    const auto victim = idlest();
    if (victim == callers_.end())
        return false;
    victim->second.isLeaving = true;
    ++leaving_;
    shutdown(victim->second.socket.get(), SHUT_RD);
    return true;
}

Callers::Table::iterator Callers::idlest()
{
    std::unordered_map<std::uint32_t, std::size_t> ofProcess;
    for (const auto& [number, caller] : callers_)
        if (!caller.isLeaving)
            ++ofProcess[caller.processId];

    // Of a process with several, first those that have not said hello, last those that take events: an honest one has one of
    // these, which it cannot replace unnoticed.
    const auto order = [&](const Caller& caller) {
        return std::make_tuple(SIZE_MAX - ofProcess[caller.processId], isSubscriber(caller), caller.isGreeted, caller.lastUsed);
    };
    auto result = callers_.end();
    for (auto candidate = callers_.begin(); candidate != callers_.end(); ++candidate)
    {
        const Caller& caller = candidate->second;
        if (caller.isLeaving || (isSubscriber(caller) && ofProcess[caller.processId] == 1))
            continue;
        if (result == callers_.end() || order(caller) < order(result->second))
            result = candidate;
    }
    return result;
}

Caller* Callers::find(std::uint32_t number, Clock::time_point now)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    const auto found = callers_.find(number);
    if (found == callers_.end())
        return nullptr;
    found->second.lastUsed = now;
    return &found->second;
}

void Callers::remove(std::uint32_t number)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    const auto caller = callers_.find(number);
    if (caller->second.isLeaving)
        --leaving_;
    shutdown(caller->second.socket.get(), SHUT_RDWR); // ends the connection even if a child holds a copy
    callers_.erase(caller);
}

void Callers::passOn(int poll, std::uint32_t number)
{
    epoll_event event = {};
    event.events = EPOLLIN | EPOLLONESHOT;
    event.data.u32 = number;
    const std::lock_guard<std::mutex> guard(mutex_); // until then it cannot be removed
    epoll_ctl(poll, EPOLL_CTL_MOD, callers_.at(number).socket.get(), &event);
}

void Callers::greet(Caller& caller)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    caller.isGreeted = true;
}

void Callers::endSilent()
{
    const std::lock_guard<std::mutex> guard(mutex_);
    const auto latest = Clock::now() - kGreetWithin;
    for (auto& [number, caller] : callers_)
        // Its hello may be there, unread because another caller's request took long.
        if (!caller.isGreeted && caller.lastUsed <= latest && !hasSentSomething(caller))
            shutdown(caller.socket.get(), SHUT_RDWR);
}

void Callers::stopReceiving()
{
    const std::lock_guard<std::mutex> guard(mutex_);
    for (auto& [number, caller] : callers_)
    {
        if (caller.isLeaving || isSubscriber(caller))
            continue;
        caller.isLeaving = shutdown(caller.socket.get(), SHUT_RD) == 0;
        leaving_ += caller.isLeaving;
    }
}

bool Callers::isAnyLeaving()
{
    const std::lock_guard<std::mutex> guard(mutex_);
    return leaving_ > 0;
}

void Callers::end()
{
    const std::lock_guard<std::mutex> guard(mutex_);
    for (const auto& [number, caller] : callers_)
        shutdown(caller.socket.get(), SHUT_RDWR);
}

// --- Events ------------------------------------------------------------------------------------------------------------------

std::uint32_t Callers::setInterest(const Caller& caller, const PacketHeader& request)
{
    if (request.command == 0 || request.command > eventCount_)
        return KOR_IIL_UNKNOWN_EVT;

    const std::lock_guard<std::mutex> guard(mutex_);
    const auto found = callers_.find(request.connection);
    if (found == callers_.end() || !found->second.isGreeted || found->second.processId != caller.processId)
        return KOR_IIL_BAD_EVT;

    Caller& subscriber = found->second;
    if (subscriber.interests.empty())
    {
        subscriber.interests.resize(eventCount_ + 1);
        setsockopt(subscriber.socket.get(), SOL_SOCKET, SO_SNDBUF, &kEventQueueBytes, sizeof kEventQueueBytes);
    }
    Interest& interest = subscriber.interests[request.command];
    if (request.revision >= interest.revision)
        interest = {request.revision, request.kind == PacketKind::kSubscribe};
    return KOR_IIL_OK;
}

std::uint32_t Callers::publish(std::uint32_t event, const void* data, std::uint32_t length)
{
    PacketHeader header;
    header.kind = PacketKind::kEvent;
    header.command = event;
    header.length = length;
    copyIdentifier(header.name, serviceId_);

    std::uint32_t sent = 0;
    const std::lock_guard<std::mutex> guard(mutex_);
    for (auto& [number, caller] : callers_)
    {
        if (!isSubscriber(caller) || !caller.interests[event].isWanted)
            continue;
        if (sendPacket(caller.socket.get(), header, data))
        {
            ++sent;
            continue;
        }
        if (errno == EAGAIN) // any other error: it has closed the connection
        {
            ++counts.drops;
            KORIIL_REPORT(kTraceWarning, "service %s: process %lu does not take its events, disconnected", serviceId_,
                          static_cast<unsigned long>(caller.processId));
        }
        // The subscriber can still read its queue. Its thread finds the connection ended, and removes the caller.
        shutdown(caller.socket.get(), SHUT_RDWR);
    }
    return sent;
}

void Callers::count(std::uint64_t& connections, std::uint64_t& subscriptions)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    connections = callers_.size();
    subscriptions = 0;
    for (const auto& [number, caller] : callers_)
        subscriptions += static_cast<std::uint64_t>(std::count_if(caller.interests.begin(), caller.interests.end(),
                                                                  [](const Interest& interest) { return interest.isWanted; }));
}

// --- Forks -------------------------------------------------------------------------------------------------------------------

void Callers::beforeFork()
{
    mutex_.lock();
}

void Callers::afterFork()
{
    mutex_.unlock();
}

void Callers::abandon()
{
    for (auto& [number, caller] : callers_)
        caller.socket = Descriptor();
}

} // namespace koriil
