#include "event_stream.h"

#include "identifiers.h"
#include "round_trip.h"
#include "thread_guards.h"
#include "trace.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <exception>
#include <new>
#include <thread>

#include <sys/socket.h>

namespace koriil
{
namespace
{

using std::chrono::milliseconds;

constexpr std::uint32_t kWait = 3; // seconds, for all that one subscription or cancellation takes
thread_local EventStream* deliveredByThisThread = nullptr;

} // namespace

EventStream::EventStream(const char* serviceId, StreamLock& lock) : serviceId_(serviceId), lock_(lock)
{
}

// --- Subscribing and cancelling ----------------------------------------------------------------------------------------------

std::uint32_t EventStream::subscribe(const Subscriber& subscriber, const std::optional<Keeping>& keeping)
{
    const Deadline deadline(kWait);
    Lock lock(lock_.mutex);
    loseIfDead();
    if (find(subscriber) != nullptr)
        return KOR_IIL_CONFLICT_ID;

    const std::uint64_t number = ++lastNumber_;
    Subscription subscription;
    subscription.number = number;
    subscription.subscriber = subscriber;
    subscription.keeping = keeping;
    subscriptions_.push_back(subscription);
    const std::uint32_t status = join(lock, number, deadline);
    if (status != KOR_IIL_OK)
    {
        erase(number);
        hangUpIfUnused();
        waitForEnd(lock, subscriber); // an event may have come already
    }
    return status;
}

std::uint32_t EventStream::cancel(const Subscriber& subscriber)
{
    const Deadline deadline(kWait);
    Lock lock(lock_.mutex);
    loseIfDead();
    std::uint32_t status = KOR_IIL_BAD_EVT;
    if (const Subscription* const found = find(subscriber))
    {
        status = KOR_IIL_OK;
        erase(found->number);
        hangUpIfUnused();
        if (connection_ != nullptr && !wants(subscriber.event))
        {
            const std::uint32_t revision = ++lastRevision_, number = connection_->number();
            lock.unlock();
            if (const std::uint32_t answer = ask(PacketKind::kCancel, subscriber, revision, number, deadline))
                KORIIL_REPORT(kTraceNotice, "service %s has not confirmed the end of a subscription (status %lu)",
                              serviceId_.c_str(), static_cast<unsigned long>(answer));
            lock.lock();
        }
    }
    // Whatever the status: the handler may be running even where the subscription has ended with the service.
    waitForEnd(lock, subscriber);
    return status;
}

EventStream::Subscription* EventStream::find(std::uint64_t number)
{
    for (Subscription& subscription : subscriptions_)
        if (subscription.number == number)
            return &subscription;
    return nullptr;
}

EventStream::Subscription* EventStream::find(const Subscriber& subscriber)
{
    for (Subscription& subscription : subscriptions_)
        if (subscription.subscriber == subscriber)
            return &subscription;
    return nullptr;
}

void EventStream::erase(std::uint64_t number)
{
    if (Subscription* const found = find(number))
        subscriptions_.erase(subscriptions_.begin() + (found - subscriptions_.data()));
}

bool EventStream::wants(std::uint32_t event) const
{
    return std::any_of(subscriptions_.begin(), subscriptions_.end(),
                       [&](const Subscription& subscription) { return subscription.subscriber.event == event; });
}

bool EventStream::isToRenew() const
{
    return std::any_of(subscriptions_.begin(), subscriptions_.end(),
                       [](const Subscription& subscription) { return subscription.state == State::kLost; });
}

// --- The connection ----------------------------------------------------------------------------------------------------------

// Opens the connection unless there is one, and sees to it that a thread reads it.
std::uint32_t EventStream::connect(Lock& lock, const Deadline& deadline)
{
    while (connection_ == nullptr && isConnecting_)
        if (lock_.changed.wait_until(lock, deadline.end()) == std::cv_status::timeout)
            return KOR_IIL_TIMEOUT;
    if (connection_ != nullptr)
        return KOR_IIL_OK;

    isConnecting_ = true;
    lock.unlock();
    std::shared_ptr<Connection> fresh;
    std::uint32_t status = openConnection(deadline, fresh);
    lock.lock();
    isConnecting_ = false;
    if (status == KOR_IIL_OK)
        status = startThread();
    if (status == KOR_IIL_OK)
    {
        connection_ = std::move(fresh);
        ++connectionCount_;
    }
    lock_.changed.notify_all();
    return status;
}

std::uint32_t EventStream::openConnection(const Deadline& deadline, std::shared_ptr<Connection>& connection) const
try
{
    std::unique_ptr<Connection> fresh;
    if (const std::uint32_t status = Connection::open(serviceId_.c_str(), deadline, fresh))
        return status;
    connection = std::move(fresh);
    return connection->setLookout() ? KOR_IIL_OK : KOR_IIL_ERR;
}
catch (const std::bad_alloc&)
{
    return KOR_IIL_NO_MEM;
}

// Makes the subscription known to the service; once more where the service was restarted meanwhile.
std::uint32_t EventStream::join(Lock& lock, std::uint64_t number, const Deadline& deadline)
{
    const std::uint32_t status = joinOnce(lock, number, deadline);
    return status == KOR_IIL_BAD_EVT ? joinOnce(lock, number, deadline) : status;
}

std::uint32_t EventStream::joinOnce(Lock& lock, std::uint64_t number, const Deadline& deadline)
{
    if (const std::uint32_t status = connect(lock, deadline))
        return status;
    Subscription* subscription = find(number);
    if (subscription == nullptr) // cancelled meanwhile
        return KOR_IIL_OK;
    const std::uint64_t connection = subscription->connection = connectionCount_; // before asking, so that no event is missed
    const Subscriber subscriber = subscription->subscriber;
    const std::uint32_t revision = ++lastRevision_, connectionNumber = connection_->number();
    lock.unlock();
    const std::uint32_t status = ask(PacketKind::kSubscribe, subscriber, revision, connectionNumber, deadline);
    lock.lock();

    const bool isSameConnection = connection_ != nullptr && connectionCount_ == connection;
    if (status == KOR_IIL_BAD_EVT && isSameConnection)
        lose(); // it led to an earlier run of the service
    if (status != KOR_IIL_OK)
        return status;
    if (!isSameConnection)
        return KOR_IIL_BAD_EVT;
    subscription = find(number);
    if (subscription != nullptr)
        subscription->state = State::kActive;
    return KOR_IIL_OK;
}

std::uint32_t EventStream::ask(PacketKind kind, const Subscriber& subscriber, std::uint32_t revision, std::uint32_t connection,
                               const Deadline& deadline) const
try
{
    PacketHeader request;
    request.kind = kind;
    request.command = subscriber.event;
    request.connection = connection;
    request.revision = revision;
    copyIdentifier(request.name, subscriber.callerId);
    return roundTrip(serviceId_.c_str(), request, nullptr, deadline);
}
catch (const std::bad_alloc&)
{
    return KOR_IIL_NO_MEM;
}

void EventStream::loseIfDead()
{
    if (connection_ != nullptr && !connection_->isAlive())
        lose();
}

// The connection has ended, and with it the subscriptions, but for those that are being made or are to be renewed.
void EventStream::lose()
{
    connection_->hangUp(); // for a thread that is reading it
    connection_.reset();
    std::size_t gone = 0;
    for (std::size_t i = subscriptions_.size(); i-- > 0;)
    {
        Subscription& subscription = subscriptions_[i];
        if (subscription.state != State::kActive)
            continue;
        ++gone;
        subscription.state = State::kLost;
        subscription.owesLoss = true;
        if (!subscription.keeping)
            subscriptions_.erase(subscriptions_.begin() + static_cast<std::ptrdiff_t>(i));
    }
    if (gone > 0)
        KORIIL_REPORT(kTraceWarning, "service %s has hung up, %zu subscriptions with it are gone", serviceId_.c_str(), gone);
    lock_.changed.notify_all();
}

void EventStream::hangUpIfUnused()
{
    if (!subscriptions_.empty() || connection_ == nullptr)
        return;
    connection_->hangUp();
    connection_.reset();
}

// Waits until the handler of the subscriber, whose subscription has ended, is not running: not if that handler itself cancels
// it, or waits, through handlers of other services, for the one that does.
void EventStream::waitForEnd(Lock& lock, const Subscriber& subscriber)
{
    if (run_ == 0 || !(runningFor_ == subscriber))
        return;
    EventStream* const own = deliveredByThisThread;
    if (own != nullptr)
        for (const EventStream* stream = this; stream != nullptr; stream = stream->awaited_)
            if (stream == own)
                return;

    if (own != nullptr)
        own->awaited_ = this;
    lock_.changed.wait(lock, [this, run = run_] { return run_ != run; });
    if (own != nullptr)
        own->awaited_ = nullptr;
}

// --- The thread --------------------------------------------------------------------------------------------------------------

std::uint32_t EventStream::startThread()
try
{
    if (hasThread_)
        return KOR_IIL_OK;
    if (packet_ == nullptr)
        packet_.reset(new Packet);
    // Detached: it ends with the connection, and needs no cleaning up at the end of the process.
    const SignalsBlocked blocked;
    std::thread([this] { deliverAll(); }).detach();
    hasThread_ = true;
    return KOR_IIL_OK;
}
catch (const std::exception& error) // no memory, or no thread
{
    KORIIL_REPORT(kTraceWarning, "event thread for service %s: %s", serviceId_.c_str(), error.what());
    return KOR_IIL_NO_MEM;
}

void EventStream::deliverAll()
{
    deliveredByThisThread = this;
    Lock lock(lock_.mutex);
    while (connection_ != nullptr || isToRenew())
    {
        if (tellWatcher(lock))
            continue;
        if (isToRenew())
        {
            renew(lock);
            continue;
        }

        const std::shared_ptr<Connection> connection = connection_;
        const std::uint64_t count = connectionCount_;
        bool isEvent = false;
        lock.unlock();
        const bool goesOn = receive(*connection, isEvent);
        lock.lock();
        if (connection_ != connection)
            continue; // replaced, or no longer wanted
        if (!goesOn)
            lose();
        else if (isEvent)
            deliver(lock, count);
    }
    hasThread_ = false;
}

// False when the connection has ended.
bool EventStream::receive(Connection& connection, bool& isEvent)
{
    if (!connection.isStillOurSocket())
        return false;
    const ssize_t received = recv(connection.descriptor(), packet_.get(), sizeof(Packet), MSG_TRUNC);
    if (received < 0)
    {
        if (errno == ENOMEM || errno == ENOBUFS)
            std::this_thread::sleep_for(milliseconds(10));
        else if (errno != EINTR && errno != EAGAIN && errno != ECONNRESET) // a reset comes once, ahead of packets to be read
            return false;
        return true;
    }
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
        isEvent = true;
    return true;
}

// A handler may subscribe and cancel: the next subscription is looked up after every call, and those made meanwhile get the
// next event.
void EventStream::deliver(Lock& lock, std::uint64_t connection)
{
    const PacketHeader& header = packet_->header;
    const void* const data = header.length > 0 ? packet_->message : nullptr;
    const std::uint64_t last = lastNumber_;
    std::uint64_t current = 0;
    const auto isNext = [&](const Subscription& subscription)
    {
        return subscription.number > current && subscription.number <= last && subscription.connection == connection &&
               subscription.subscriber.event == header.command;
    };
    for (;;)
    {
        const auto next = std::find_if(subscriptions_.begin(), subscriptions_.end(), isNext);
        if (next == subscriptions_.end())
            return;
        current = next->number;
        const Subscriber subscriber = next->subscriber;
        run(lock, subscriber, [&] { subscriber.handler(serviceId_.c_str(), header.command, data, header.length); });
    }
}

// Calls a handler, or a watcher, which cancelling the subscription waits for.
template <typename Call>
void EventStream::run(Lock& lock, const Subscriber& subscriber, Call call)
{
    run_ = ++lastRun_;
    runningFor_ = subscriber;
    lock.unlock();
    call();
    lock.lock();
    run_ = 0;
    lock_.changed.notify_all();
}

// Tells one watcher of a loss, or of what renewing came to. False if there is nothing to tell.
bool EventStream::tellWatcher(Lock& lock)
{
    const auto owes = [](const Subscription& subscription) { return subscription.owesLoss || subscription.owesStatus; };
    const auto found = std::find_if(subscriptions_.begin(), subscriptions_.end(), owes);
    if (found == subscriptions_.end())
        return false;

    const Subscriber subscriber = found->subscriber;
    const Keeping keeping = found->keeping.value_or(Keeping());
    std::uint32_t status = found->owesStatus.value_or(KOR_IIL_OK);
    if (found->owesLoss)
    {
        status = KOR_IIL_RX_FAIL;
        found->owesLoss = false;
    }
    else if (found->state == State::kRefused)
        subscriptions_.erase(found);
    else
        found->owesStatus.reset();
    if (keeping.watcher != nullptr)
        run(lock, subscriber,
            [&] { keeping.watcher(keeping.context, subscriber.callerId, serviceId_.c_str(), subscriber.event, status); });
    return true;
}

// One attempt to renew the lost subscriptions; after one in vain, a pause, which grows.
void EventStream::renew(Lock& lock)
{
    const Deadline deadline(kWait);
    std::uint64_t current = 0;
    const auto isNext = [&](const Subscription& subscription)
    { return subscription.number > current && subscription.state == State::kLost; };
    for (;;)
    {
        const auto next = std::find_if(subscriptions_.begin(), subscriptions_.end(), isNext);
        if (next == subscriptions_.end())
            break;
        current = next->number;
        const std::uint32_t status = join(lock, current, deadline);
        if (status != KOR_IIL_OK && status != KOR_IIL_UNKNOWN_EVT)
        {
            if (connection_ != nullptr)
                lose(); // it serves some and not others: all over again
            lock_.changed.wait_for(lock, pause_, [this] { return connection_ != nullptr || !isToRenew(); });
            pause_ = std::min(2 * pause_, kLongestPause);
            return;
        }
        Subscription* const subscription = find(current); // unless it was cancelled
        if (subscription == nullptr)
            continue;
        if (status != KOR_IIL_OK)
            subscription->state = State::kRefused;
        subscription->owesStatus = status;
    }
    pause_ = kFirstPause;
}

} // namespace koriil
