#include "service.h"

#include "deadline.h"
#include "forks.h"
#include "identifiers.h"
#include "thread_guards.h"
#include "trace.h"

#include <cerrno>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/timerfd.h>

namespace koriil
{
namespace
{

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t kMostEvents = 1024;
constexpr std::uint32_t kMostThreads = 64;
constexpr int kAcceptedAtOnce = 64; // before the connected ones are served again
constexpr int kServedAtOnce = 32;
constexpr time_t kTidyEvery = 1;               // seconds
constexpr std::chrono::milliseconds kFresh{1}; // how long it counts that a caller had not hung up

bool hasHungUp(const Caller& caller)
{
    pollfd socket = {caller.socket.get(), 0, 0};
    return poll(&socket, 1, 0) > 0 && (socket.revents & POLLHUP) != 0;
}

} // namespace

// --- Opening and closing -----------------------------------------------------------------------------------------------------

Service::Service(const char* serviceId, std::uint32_t eventCount, KorIilRequestHandler handler, void* context)
    : id_(serviceId),
      eventCount_(eventCount),
      handler_(handler),
      context_(context),
      owner_(getpid()),
      openedAt_(std::time(nullptr)),
      name_(serviceId),
      callers_(id_.c_str(), eventCount)
{
    addToForks(*this);
}

Service::~Service()
{
    removeFromForks(*this);
    if (owner_ != getpid())
        return; // a child has closed its copies
    name_.withdraw();
    while (const Descriptor waiting{accept4(name_.listener(), nullptr, nullptr, SOCK_CLOEXEC)})
        reject(waiting.get(), KOR_IIL_UNKNOWN_DST_ID);
    callers_.end();
}

void Service::beforeFork()
{
    callers_.beforeFork();
}

void Service::afterFork()
{
    callers_.afterFork();
}

void Service::abandon()
{
    name_.abandon();
    callers_.abandon();
    for (Descriptor* descriptor : {&poll_, &helpersPoll_, &wake_, &tidyTimer_, &spare_})
        *descriptor = Descriptor();
}

std::uint32_t Service::failed(const char* what) const
{
    const std::uint32_t status = statusOfErrno();
    KORIIL_REPORT(kTraceWarning, "service %s: %s failed: %s", id_.c_str(), what, std::strerror(errno));
    return status;
}

std::uint32_t Service::open()
{
    if (const std::uint32_t status = name_.take())
        return status;
    poll_ = Descriptor(epoll_create1(EPOLL_CLOEXEC));
    wake_ = Descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    // A timer of its own, because a time-out of each wait would be set and taken back for every request.
    tidyTimer_ = Descriptor(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK));
    spare_ = Descriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    if (!poll_ || !wake_ || !tidyTimer_ || !spare_)
        return failed("opening its descriptors");
    const itimerspec period = {{kTidyEvery, 0}, {kTidyEvery, 0}};
    if (timerfd_settime(tidyTimer_.get(), 0, &period, nullptr) != 0)
        return failed("setting its timer");
    if (!watch(name_.listener(), kListenerNumber) || !watch(wake_.get(), kWakeNumber) || !watch(tidyTimer_.get(), kTidyNumber))
        return failed("watching its descriptors");
    return KOR_IIL_OK;
}

std::uint32_t Service::setThreads(std::uint32_t threads)
{
    if (threads == 0 || threads > kMostThreads || hasRun_)
        return KOR_IIL_BAD_PARAM;
    threads_ = threads;
    return KOR_IIL_OK;
}

int Service::callersPoll() const
{
    return helpersPoll_ ? helpersPoll_.get() : poll_.get();
}

// Of several threads, only one is told of a caller, until it has served it.
bool Service::watch(int descriptor, std::uint32_t number)
{
    const bool isCaller = number > kTidyNumber;
    epoll_event event = {};
    event.events = EPOLLIN;
    if (isCaller && helpersPoll_)
        event.events |= EPOLLONESHOT;
    event.data.u32 = number;
    return epoll_ctl(isCaller ? callersPoll() : poll_.get(), EPOLL_CTL_ADD, descriptor, &event) == 0;
}

// --- The loop ----------------------------------------------------------------------------------------------------------------

void Service::stop()
{
    const int interruptedErrno = errno; // of the code that a signal handler interrupted
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(wake_.get(), &one, sizeof one); // fails only if it has been signalled
    errno = interruptedErrno;
}

std::uint32_t Service::run()
{
    hasRun_ = true;
    const std::unique_ptr<Packet> packet(new Packet);
    const std::uint32_t status = threads_ > 1 ? serveWithHelpers(*packet) : serveUntilStopped(poll_.get(), *packet);
    if (status == KOR_IIL_OK)
        drain(*packet);
    std::uint64_t signals;
    [[maybe_unused]] const ssize_t taken = read(wake_.get(), &signals, sizeof signals); // cleared for the next run
    return status;
}

// This thread accepts the callers, the helpers serve them.
std::uint32_t Service::serveWithHelpers(Packet& packet)
{
    if (!helpersPoll_)
        helpersPoll_ = Descriptor(epoll_create1(EPOLL_CLOEXEC));
    epoll_event wake = {};
    wake.events = EPOLLIN;
    wake.data.u32 = kWakeNumber;
    if (!helpersPoll_ || (epoll_ctl(helpersPoll_.get(), EPOLL_CTL_ADD, wake_.get(), &wake) != 0 && errno != EEXIST))
        return failed("watching its callers");

    std::vector<std::thread> helpers;
    std::uint32_t status = KOR_IIL_OK;
    try
    {
        const SignalsBlocked blocked;
        helpers.reserve(threads_);
        while (helpers.size() < threads_)
        {
            const std::shared_ptr<Packet> own(new Packet);
            helpers.emplace_back([this, own] { serveUntilStopped(helpersPoll_.get(), *own); });
        }
    }
    catch (const std::exception& error) // no memory, or no thread
    {
        KORIIL_REPORT(kTraceWarning, "service %s: starting %lu threads failed: %s", id_.c_str(),
                      static_cast<unsigned long>(threads_), error.what());
        status = KOR_IIL_NO_MEM;
    }
    if (status == KOR_IIL_OK)
        status = serveUntilStopped(poll_.get(), packet);
    stop(); // the helpers, too
    for (std::thread& helper : helpers)
        helper.join();
    return status;
}

std::uint32_t Service::serveUntilStopped(int poll, Packet& packet)
{
    const bool isHelper = poll == helpersPoll_.get();
    for (;;)
    {
        epoll_event events[kServedAtOnce];
        const int count = epoll_wait(poll, events, isHelper ? 1 : kServedAtOnce, -1);
        if (count < 0 && errno != EINTR)
            return failed("waiting for requests");

        const Clock::time_point polled = Clock::now();
        bool stopping = false;
        bool tidying = false;
        for (int i = 0; i < count; ++i)
        {
            const std::uint32_t number = events[i].data.u32;
            if (number == kWakeNumber)
                stopping = true;
            else if (number == kTidyNumber)
                tidying = true;
            else if (number == kListenerNumber)
                accept();
            else
                serve(number, packet, (events[i].events & EPOLLHUP) != 0, polled, i == 0 ? polled : Clock::now());
        }
        if (stopping)
            return KOR_IIL_OK;
        if (!tidying)
            continue;
        if (const std::uint32_t status = tidy())
            return status;
    }
}

// Answers what has arrived; callers find the connection closed before they send more.
void Service::drain(Packet& packet)
{
    callers_.stopReceiving();
    while (callers_.isAnyLeaving())
    {
        epoll_event events[kServedAtOnce];
        const int count = epoll_wait(callersPoll(), events, kServedAtOnce, -1);
        const Clock::time_point polled = Clock::now();
        for (int i = 0; i < count; ++i)
            if (events[i].data.u32 > kTidyNumber)
                serve(events[i].data.u32, packet, (events[i].events & EPOLLHUP) != 0, polled, Clock::now());
    }
}

// What is looked after now and then.
std::uint32_t Service::tidy()
{
    std::uint64_t periods;
    [[maybe_unused]] const ssize_t taken = read(tidyTimer_.get(), &periods, sizeof periods);
    callers_.endSilent();
    const int before = name_.listener();
    const std::uint32_t status = name_.keep();
    if (status == KOR_IIL_CONFLICT_ID)
    {
        KORIIL_REPORT(kTraceWarning, "service %s: its files were removed, and another service has taken the name", id_.c_str());
        return status;
    }
    if (name_.listener() == before)
        return KOR_IIL_OK; // or a failure, which has been traced: the next time may be better
    KORIIL_REPORT(kTraceWarning, "service %s: its socket was removed, and has been made again", id_.c_str());
    return watch(name_.listener(), kListenerNumber) ? static_cast<std::uint32_t>(KOR_IIL_OK) : failed("watching its socket");
}

// --- Accepting ---------------------------------------------------------------------------------------------------------------

void Service::accept()
{
    for (int i = 0; i < kAcceptedAtOnce; ++i)
    {
        Descriptor socket(accept4(name_.listener(), nullptr, nullptr, SOCK_CLOEXEC));
        if (socket)
            admit(std::move(socket));
        else if (errno == EMFILE || errno == ENFILE)
            return rejectOutOfDescriptors();
        else
            return;
    }
}

void Service::admit(Descriptor socket)
try
{
    ucred peer = {};
    socklen_t size = sizeof peer;
    if (getsockopt(socket.get(), SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0)
        return reject(socket.get(), failed("asking for a caller's process"));
    if (peer.uid != geteuid() && peer.uid != 0 && !name_.isShared()) // the kernel lets only the group's members connect
    {
        KORIIL_REPORT(kTraceWarning, "service %s: process %ld of another user (%lu) rejected", id_.c_str(),
                      static_cast<long>(peer.pid), static_cast<unsigned long>(peer.uid));
        return reject(socket.get(), KOR_IIL_UNKNOWN_SRC_ID);
    }

    const int descriptor = socket.get();
    const std::uint32_t number = callers_.admit(socket, static_cast<std::uint32_t>(peer.pid));
    if (number == 0)
        return reject(descriptor, KOR_IIL_BUSY);
    if (watch(descriptor, number))
        return;
    reject(descriptor, KOR_IIL_BUSY);
    callers_.remove(number);
}
catch (const std::bad_alloc&)
{
    ++callers_.counts.refusals; // the connection is closed
}

void Service::reject(int socket, std::uint32_t status)
{
    PacketHeader reply;
    reply.kind = PacketKind::kReply;
    reply.sequence = 1; // of every connection's hello
    reply.status = status;
    ++callers_.counts.refusals;
    sendPacket(socket, reply, nullptr); // if that fails, the caller still finds the connection closed
}

// A connection that is not accepted would stay ready, and the loop would never wait again.
void Service::rejectOutOfDescriptors()
{
    spare_ = Descriptor();
    {
        const Descriptor socket(accept4(name_.listener(), nullptr, nullptr, SOCK_CLOEXEC));
        if (socket)
            reject(socket.get(), KOR_IIL_BUSY);
        else
            std::this_thread::sleep_for(
                std::chrono::milliseconds(10)); // another thread took the descriptor, and may give it back
    }
    spare_ = Descriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC));
}

// --- One packet --------------------------------------------------------------------------------------------------------------

// `isGone`: whether the caller had hung up when the poll set was looked at.
void Service::serve(std::uint32_t number, Packet& packet, bool isGone, Clock::time_point polled, Clock::time_point now)
{
    Caller* const caller = callers_.find(number, now);
    if (caller == nullptr)
        return;
    if (now - polled > kFresh)
        isGone = hasHungUp(*caller);

    const int socket = caller->socket.get();
    if (serveCaller(number, *caller, packet, isGone, now) == Verdict::kDisconnect)
    {
        epoll_ctl(callersPoll(), EPOLL_CTL_DEL, socket, nullptr); // closing alone would not while a child holds a copy
        callers_.remove(number);
    }
    else if (helpersPoll_)
        callers_.passOn(helpersPoll_.get(), number);
}

Service::Verdict Service::serveCaller(std::uint32_t number, Caller& caller, Packet& packet, bool isGone, Clock::time_point now)
try
{
    const ssize_t received = recv(caller.socket.get(), &packet, sizeof packet, MSG_DONTWAIT | MSG_TRUNC);
    if (received < 0)
        return errno == EAGAIN || errno == EINTR || errno == ENOMEM || errno == ENOBUFS ? Verdict::kKeep : Verdict::kDisconnect;
    if (received == 0)
        return Verdict::kDisconnect;
    if (isGone)
    {
        ++callers_.counts.drops;
        return Verdict::kDisconnect;
    }
    return servePacket(number, caller, packet, static_cast<std::size_t>(received), now);
}
catch (const std::bad_alloc&)
{
    return refuse(caller, packet, KOR_IIL_NO_MEM);
}

Service::Verdict Service::servePacket(std::uint32_t number, Caller& caller, Packet& packet, std::size_t length,
                                      Clock::time_point now)
{
    const PacketHeader& header = packet.header;
    switch (validityOf(header, length))
    {
    case PacketValidity::kForeign:
        reject(caller.socket.get(), KOR_IIL_MISMATCH_COMM);
        return Verdict::kDisconnect;
    case PacketValidity::kMalformed:
        reject(caller.socket.get(), KOR_IIL_BAD_CMD);
        return Verdict::kDisconnect;
    case PacketValidity::kValid:
        break;
    }

    if (length > sizeof(Packet))
        return refuse(caller, packet, KOR_IIL_OVERSIZE);
    if (header.length != length - sizeof(PacketHeader) || header.name[kIdentifierSize - 1] != '\0')
        return dismiss(caller, packet, KOR_IIL_BAD_CMD);
    if (!caller.isGreeted)
        return greet(number, caller, packet);
    switch (header.kind)
    {
    case PacketKind::kRequest:
    case PacketKind::kSubscribe:
    case PacketKind::kCancel:
    case PacketKind::kCounters:
        break;
    default:
        return dismiss(caller, packet, KOR_IIL_BAD_CMD);
    }

    if (!isCallerId(header.name))
        return refuse(caller, packet, KOR_IIL_UNKNOWN_SRC_ID);
    if (Deadline::hasPassed(header.began, header.wait, now))
    {
        ++callers_.counts.drops;
        return Verdict::kKeep;
    }
    if (header.kind == PacketKind::kRequest)
    {
        // A program that closes all descriptors makes its threads send over one another's connections.
        if (header.connection != 0 && header.connection != number)
            return dismiss(caller, packet, KOR_IIL_BAD_CMD);
        return serveRequest(caller, packet);
    }
    return header.kind == PacketKind::kCounters ? serveCounters(caller, packet) : serveSubscription(caller, packet);
}

Service::Verdict Service::greet(std::uint32_t number, Caller& caller, Packet& packet)
{
    PacketHeader& header = packet.header;
    if (header.kind != PacketKind::kHello || header.length != 0)
        return dismiss(caller, packet, KOR_IIL_BAD_CMD);
    if (id_ != header.name)
        return dismiss(caller, packet, KOR_IIL_UNKNOWN_DST_ID);
    callers_.greet(caller);
    header.connection = number;
    return answer(caller, packet, KOR_IIL_OK, 0);
}

Service::Verdict Service::serveRequest(const Caller& caller, Packet& packet)
{
    const PacketHeader& header = packet.header;
    KorIilRequest request = {};
    request.callerId = header.name;
    request.processId = caller.processId;
    request.wait = header.wait;
    request.command = header.command;
    request.length = header.length;
    const std::uint32_t status = handler_(context_, &request, packet.message);
    ++callers_.counts.calls;
    if (status == KOR_IIL_TIMEOUT)
        return Verdict::kKeep;
    return answer(caller, packet, status, status == KOR_IIL_OK ? header.length : 0);
}

Service::Verdict Service::serveSubscription(const Caller& caller, Packet& packet)
{
    if (packet.header.length != 0)
        return refuse(caller, packet, KOR_IIL_MISMATCH_CMD_LEN);
    const std::uint32_t status = callers_.setInterest(caller, packet.header);
    return status == KOR_IIL_OK ? answer(caller, packet, status, 0) : refuse(caller, packet, status);
}

Service::Verdict Service::serveCounters(const Caller& caller, Packet& packet)
{
    KorIilServiceCounters counters = {};
    if (packet.header.length != sizeof counters)
        return refuse(caller, packet, KOR_IIL_MISMATCH_CMD_LEN);
    counters.processId = static_cast<std::uint64_t>(getpid());
    counters.openedAt = static_cast<std::uint64_t>(openedAt_);
    callers_.count(counters.connections, counters.subscriptions);
    counters.calls = callers_.counts.calls;
    counters.refusals = callers_.counts.refusals;
    counters.drops = callers_.counts.drops;
    std::memcpy(packet.message, &counters, sizeof counters);
    return answer(caller, packet, KOR_IIL_OK, sizeof counters);
}

Service::Verdict Service::refuse(const Caller& caller, Packet& packet, std::uint32_t status)
{
    ++callers_.counts.refusals;
    return answer(caller, packet, status, 0);
}

// Refuses a packet of a peer that cannot be trusted to send valid ones.
Service::Verdict Service::dismiss(const Caller& caller, Packet& packet, std::uint32_t status)
{
    refuse(caller, packet, status);
    return Verdict::kDisconnect;
}

// Turns the packet being served into its reply, and sends it.
Service::Verdict Service::answer(const Caller& caller, Packet& packet, std::uint32_t status, std::uint32_t length)
{
    PacketHeader& header = packet.header;
    header.kind = PacketKind::kReply;
    header.status = status;
    header.length = length;
    if (sendPacket(caller.socket.get(), header, packet.message))
        return Verdict::kKeep;
    if (errno == EAGAIN)
    {
        ++callers_.counts.drops;
        KORIIL_REPORT(kTraceWarning, "service %s: process %lu does not read its replies, disconnected", id_.c_str(),
                      static_cast<unsigned long>(caller.processId));
    }
    return Verdict::kDisconnect;
}

std::uint32_t Service::publish(std::uint32_t event, const void* data, std::uint32_t length, std::uint32_t* subscribers)
{
    if (event == 0 || event > eventCount_)
        return KOR_IIL_UNKNOWN_EVT;
    if (length > KOR_IIL_MAX_LENGTH)
        return KOR_IIL_OVERSIZE;
    const std::uint32_t sent = callers_.publish(event, data, length);
    if (subscribers != nullptr)
        *subscribers = sent;
    return KOR_IIL_OK;
}

} // namespace koriil

// --- The exported functions --------------------------------------------------------------------------------------------------

struct KorIilService : koriil::Service
{
    using koriil::Service::Service;
};

extern "C" uint32_t KorIilServiceOpen(const char* serviceId, uint32_t eventCount, KorIilRequestHandler handler, void* context,
                                      KorIilService** service)
try
{
    if (service == nullptr)
        return KOR_IIL_BAD_PARAM;
    *service = nullptr;
    if (serviceId == nullptr || !koriil::isServiceId(serviceId) || handler == nullptr || eventCount > koriil::kMostEvents)
        return KOR_IIL_BAD_PARAM;

    auto opened = std::make_unique<KorIilService>(serviceId, eventCount, handler, context);
    const std::uint32_t status = opened->open();
    if (status == KOR_IIL_OK)
        *service = opened.release();
    return status;
}
catch (const std::bad_alloc&)
{
    return KOR_IIL_NO_MEM;
}

extern "C" uint32_t KorIilServiceSetThreads(KorIilService* service, uint32_t threads)
{
    return service != nullptr ? service->setThreads(threads) : static_cast<std::uint32_t>(KOR_IIL_BAD_PARAM);
}

extern "C" uint32_t KorIilServiceRun(KorIilService* service)
try
{
    return service != nullptr ? service->run() : static_cast<std::uint32_t>(KOR_IIL_BAD_PARAM);
}
catch (const std::bad_alloc&)
{
    return KOR_IIL_NO_MEM;
}

extern "C" void KorIilServiceStop(KorIilService* service)
{
    if (service != nullptr)
        service->stop();
}

extern "C" uint32_t KorIilServicePublish(KorIilService* service, uint32_t evt, const void* data, uint32_t length,
                                         uint32_t* subscribers)
{
    if (service == nullptr || (data == nullptr && length > 0))
        return KOR_IIL_BAD_PARAM;
    const koriil::CancellationDeferred deferred;
    return service->publish(evt, data, length, subscribers);
}

extern "C" void KorIilServiceClose(KorIilService* service)
{
    delete service;
}
