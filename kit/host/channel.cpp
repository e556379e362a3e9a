#include "channel.h"

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

// The delivering thread is the library's own: it takes no signal from the application.
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

Channel::Channel(const char* serviceId) : serviceId_(serviceId), packet_(new Packet)
{
}

std::uint32_t Channel::open(const char* serviceId, std::shared_ptr<Channel>& channel)
{
    std::shared_ptr<Channel> fresh(new Channel(serviceId));
    if (const std::uint32_t status = Connection::open(serviceId, Deadline(kConnectWithin), fresh->connection_))
        return status;
    if (!fresh->connection_->waitForEver())
        return KOR_IIL_ERR;

    // Detached: it ends with the connection, and at the end of the process it has nothing to put away.
    const SignalsBlocked blocked;
    std::thread([fresh] { fresh->deliverAll(); }).detach();
    channel = std::move(fresh);
    return KOR_IIL_OK;
}

bool Channel::isAlive() const
{
    pollfd socket = {connection_->descriptor(), POLLRDHUP, 0};
    return poll(&socket, 1, 0) == 0;
}

bool Channel::add(const Subscriber& subscriber)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    for (const Subscription& subscription : subscriptions_)
        if (subscription.subscriber == subscriber)
            return false;
    subscriptions_.push_back({++lastNumber_, subscriber});
    return true;
}

bool Channel::remove(const Subscriber& subscriber)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    const auto found = std::find_if(subscriptions_.begin(), subscriptions_.end(),
                                    [&](const Subscription& subscription) { return subscription.subscriber == subscriber; });
    if (found == subscriptions_.end())
        return false;
    subscriptions_.erase(found);
    return true;
}

void Channel::waitForEnd(const Subscriber& subscriber)
{
    std::unique_lock<std::mutex> lock(mutex_);
    if (run_ == 0 || !(runningAs_ == subscriber) || thread_ == std::this_thread::get_id())
        return;
    ended_.wait(lock, [this, run = run_] { return run_ != run; });
}

bool Channel::wants(std::uint32_t event)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    return std::any_of(subscriptions_.begin(), subscriptions_.end(),
                       [&](const Subscription& subscription) { return subscription.subscriber.event == event; });
}

bool Channel::isUnused()
{
    const std::lock_guard<std::mutex> guard(mutex_);
    return subscriptions_.empty();
}

void Channel::close()
{
    reportLoss();
    shutdown(connection_->descriptor(), SHUT_RDWR);
}

void Channel::reportLoss()
{
    const std::lock_guard<std::mutex> guard(mutex_);
    if (!subscriptions_.empty())
        KORIIL_REPORT(kTraceWarning, "service %s has hung up, %zu subscriptions with it are gone", serviceId_.c_str(),
                      subscriptions_.size());
    subscriptions_.clear();
}

// --- The thread --------------------------------------------------------------------------------------------------------------

void Channel::deliverAll()
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
bool Channel::receive()
{
    const ssize_t received = recv(connection_->descriptor(), packet_.get(), sizeof(Packet), MSG_TRUNC);
    if (received < 0)
        return errno == EINTR || errno == ECONNRESET; // a reset is reported once, before what came ahead of it
    if (received == 0)
        return false;

    const PacketHeader& header = packet_->header;
    const auto length = static_cast<std::size_t>(received);
    if (originOf(header, length) != PacketOrigin::Sound || header.kind != PacketKind::Event)
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

// Handlers subscribe and cancel: each subscription is looked up when its turn comes, and those made meanwhile wait for the next
// event.
void Channel::deliver(const void* data)
{
    const PacketHeader& header = packet_->header;
    const std::uint64_t last = newestSubscription();
    std::uint64_t turn = 0;
    while (const KorIilEventHandler handler = begin(turn, last))
    {
        handler(serviceId_.c_str(), header.command, data, header.length);
        end();
    }
}

std::uint64_t Channel::newestSubscription()
{
    const std::lock_guard<std::mutex> guard(mutex_);
    return lastNumber_;
}

// The handler of the next subscription to the event, after `turn` and up to `last`, now counted as running; NULL if there is
// none.
KorIilEventHandler Channel::begin(std::uint64_t& turn, std::uint64_t last)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    for (const Subscription& subscription : subscriptions_)
        if (subscription.number > turn && subscription.number <= last &&
            subscription.subscriber.event == packet_->header.command)
        {
            turn = subscription.number;
            run_ = ++lastRun_;
            runningAs_ = subscription.subscriber;
            return runningAs_.handler;
        }
    return nullptr;
}

void Channel::end()
{
    const std::lock_guard<std::mutex> guard(mutex_);
    run_ = 0;
    ended_.notify_all();
}

} // namespace koriil
