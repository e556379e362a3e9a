#include "event_channel.h"

#include "trace.h"

#include <algorithm>
#include <cerrno>
#include <csignal>

#include <poll.h>
#include <sys/socket.h>

namespace koriil
{
namespace
{

constexpr std::uint32_t kConnectWithin = 3; // seconds

// Signals to the process are handled by the application's threads, not by the delivering thread.
class SignalsBlocked
{
public:
    SignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~SignalsBlocked()
    {
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t before_;
};

} // namespace

EventChannel::EventChannel(const char* serviceId) : serviceId_(serviceId), packet_(new Packet)
{
}

std::uint32_t EventChannel::open(const char* serviceId, std::shared_ptr<EventChannel>& channel)
{
    std::shared_ptr<EventChannel> fresh(new EventChannel(serviceId));
    if (const std::uint32_t status = Connection::open(serviceId, Deadline(kConnectWithin), fresh->connection_))
        return status;
    if (!fresh->connection_->clearTimeout())
        return KOR_IIL_ERR;

    // Detached: it ends with the connection, and needs no cleaning up at the end of the process.
    const SignalsBlocked blocked;
    std::thread([fresh] { fresh->deliverAll(); }).detach();
    channel = std::move(fresh);
    return KOR_IIL_OK;
}

bool EventChannel::isAlive() const
{
    pollfd socket = {connection_->descriptor(), POLLRDHUP, 0};
    return poll(&socket, 1, 0) == 0;
}

bool EventChannel::add(const Subscriber& subscriber)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    for (const Subscription& subscription : subscriptions_)
        if (subscription.subscriber == subscriber)
            return false;
    subscriptions_.push_back({++lastNumber_, subscriber});
    return true;
}

bool EventChannel::remove(const Subscriber& subscriber)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    const auto found = std::find_if(subscriptions_.begin(), subscriptions_.end(),
                                    [&](const Subscription& subscription) { return subscription.subscriber == subscriber; });
    if (found == subscriptions_.end())
        return false;
    subscriptions_.erase(found);
    return true;
}

void EventChannel::waitForEnd(const Subscriber& subscriber)
{
    std::unique_lock<std::mutex> lock(mutex_);
    if (run_ == 0 || !(runningFor_ == subscriber) || thread_ == std::this_thread::get_id())
        return;
    ended_.wait(lock, [this, run = run_] { return run_ != run; });
}

bool EventChannel::wants(std::uint32_t event)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    return std::any_of(subscriptions_.begin(), subscriptions_.end(),
                       [&](const Subscription& subscription) { return subscription.subscriber.event == event; });
}

bool EventChannel::isUnused()
{
    const std::lock_guard<std::mutex> guard(mutex_);
    return subscriptions_.empty();
}

void EventChannel::close()
{
    reportLoss();
    shutdown(connection_->descriptor(), SHUT_RDWR);
}

void EventChannel::reportLoss()
{
    const std::lock_guard<std::mutex> guard(mutex_);
    if (!subscriptions_.empty())
        KORIIL_REPORT(kTraceWarning, "service %s has hung up, %zu subscriptions with it are gone", serviceId_.c_str(),
                      subscriptions_.size());
    subscriptions_.clear();
}

// --- The thread --------------------------------------------------------------------------------------------------------------

void EventChannel::deliverAll()
{
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        thread_ = std::this_thread::get_id();
    }
    while (receive())
    {
    }
    reportLoss();
}

// False when the connection has ended.
bool EventChannel::receive()
{
    const ssize_t received = recv(connection_->descriptor(), packet_.get(), sizeof(Packet), MSG_TRUNC);
    if (received < 0)
        return errno == EINTR || errno == ECONNRESET; // a reset comes once, ahead of the packets that can still be read
    if (received == 0)
        return false;

    const PacketHeader& header = packet_->header;
    const auto length = static_cast<std::size_t>(received);
    if (validityOf(header, length) != PacketValidity::kValid || header.kind != PacketKind::kEvent)
        KORIIL_REPORT(kTraceWarning, "service %s sent a packet of %zu bytes that is no event, dropped", serviceId_.c_str(),
                      length);
    else if (length > sizeof(Packet) || header.length != length - sizeof(PacketHeader))
        KORIIL_REPORT(kTraceWarning, "event %lu of service %s dropped: MISMATCH_EVT_LEN, %lu bytes announced, %zu came",
                      static_cast<unsigned long>(header.command), serviceId_.c_str(), static_cast<unsigned long>(header.length),
                      length - sizeof(PacketHeader));
    else
        deliver(header.length > 0 ? packet_->message : nullptr);
    return true;
}

// A handler may subscribe and cancel: the next subscription is looked up after every call, and those made meanwhile get the
// next event.
void EventChannel::deliver(const void* data)
{
    const PacketHeader& header = packet_->header;
    const std::uint64_t last = newestSubscription();
    std::uint64_t current = 0;
    while (const KorIilEventHandler handler = begin(current, last))
    {
        handler(serviceId_.c_str(), header.command, data, header.length);
        end();
    }
}

std::uint64_t EventChannel::newestSubscription()
{
    const std::lock_guard<std::mutex> guard(mutex_);
    return lastNumber_;
}

// Marks the next subscription to the event, after number `current` and up to `last`, as running, and returns its handler; NULL
// if there is none.
KorIilEventHandler EventChannel::begin(std::uint64_t& current, std::uint64_t last)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    for (const Subscription& subscription : subscriptions_)
        if (subscription.number > current && subscription.number <= last &&
            subscription.subscriber.event == packet_->header.command)
        {
            current = subscription.number;
            run_ = ++lastRun_;
            runningFor_ = subscription.subscriber;
            return runningFor_.handler;
        }
    return nullptr;
}

void EventChannel::end()
{
    const std::lock_guard<std::mutex> guard(mutex_);
    run_ = 0;
    ended_.notify_all();
}

} // namespace koriil
