#include "service.h"

#include "identifiers.h"
#include "runtime_directory.h"
#include "trace.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <thread>

#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/socket.h>

namespace koriil
{
namespace
{

constexpr std::size_t kMostCallers = 256;
constexpr std::uint32_t kMostEvents = 1024;
constexpr int kBacklog = 128;
constexpr std::chrono::seconds kGreetWithin{2};
constexpr int kAcceptedAtOnce = 64; // before the connected ones are served again

// Unread events of one subscriber, in the kernel's accounting; the kernel grants less where net.core.wmem_max is lower.
constexpr int kEventQueueBytes = 4 * 1024 * 1024;

// Numbers in the poll set. Callers have greater ones.
constexpr std::uint32_t kListenerNumber = 0;
constexpr std::uint32_t kWakeNumber = 1;

void reject(int socket, std::uint32_t status)
{
    PacketHeader reply;
    reply.kind = PacketKind::kReply;
    reply.sequence = 1; // of every connection's hello
    reply.status = status;
    sendPacket(socket, reply, nullptr); // if that fails, the caller still finds the connection closed
}

// Differs from run to run, so that a number that a client has from an earlier run of the service is not valid in this one.
std::uint32_t firstNumber()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count());
}

} // namespace

// --- Opening and closing -----------------------------------------------------------------------------------------------------

Service::Service(const char* serviceId, std::uint32_t eventCount, KorIilRequestHandler handler, void* context)
    : id_(serviceId),
      eventCount_(eventCount),
      handler_(handler),
      context_(context),
      owner_(getpid()),
      lastNumber_(firstNumber()),
      packet_(new Packet)
{
}

Service::~Service()
{
    if (owner_ != getpid())
        return; // a child closes its copies, and leaves what its parent owns
    if (!socketPath_.empty())
        unlink(socketPath_.c_str());
    for (const auto& [number, caller] : callers_)
        shutdown(caller.socket.get(), SHUT_RDWR);
    if (lock_)
        flock(lock_.get(), LOCK_UN); // closing alone would not release it while a child holds a copy
}

std::uint32_t Service::failed(const char* what)
{
    const std::uint32_t status = statusOfErrno();
    KORIIL_REPORT(kTraceWarning, "service %s: %s failed: %s", id_.c_str(), what, std::strerror(errno));
    return status;
}

std::uint32_t Service::open()
{
    std::string directory;
    if (const std::uint32_t status = findRuntimeDirectory(directory))
        return status;
    if (const std::uint32_t status = takeName(directory))
        return status;

    poll_ = Descriptor(epoll_create1(EPOLL_CLOEXEC));
    wake_ = Descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    spare_ = Descriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    if (!poll_ || !wake_ || !spare_)
        return failed("opening its descriptors");
    if (const std::uint32_t status = listen(directory))
        return status;
    if (!watch(listener_.get(), kListenerNumber) || !watch(wake_.get(), kWakeNumber))
        return failed("watching its descriptors");
    return KOR_IIL_OK;
}

// Whoever has the lock on the lock file has the name. The kernel releases the lock of a dead process. The file is never
// removed: otherwise two services could hold locks on two files of one name.
std::uint32_t Service::takeName(const std::string& directory)
{
    const std::string path = lockPath(directory, id_.c_str());
    lock_ = Descriptor(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!lock_)
        return failed("opening its lock file");
    if (flock(lock_.get(), LOCK_EX | LOCK_NB) == 0)
        return KOR_IIL_OK;

    const bool taken = errno == EWOULDBLOCK;
    lock_ = Descriptor(); // the destructor must not unlock it
    return taken ? static_cast<std::uint32_t>(KOR_IIL_CONFLICT_ID) : failed("locking its lock file");
}

std::uint32_t Service::listen(const std::string& directory)
{
    const std::string path = socketPath(directory, id_.c_str());
    sockaddr_un address;
    if (const std::uint32_t status = socketAddress(path, address))
        return status;

    listener_ = Descriptor(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!listener_)
        return failed("opening its socket");
    if (unlink(path.c_str()) != 0 && errno != ENOENT)
        return failed("clearing away the socket of a predecessor");
    if (bind(listener_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        return failed("naming its socket");
    socketPath_ = path;
    if (::listen(listener_.get(), kBacklog) != 0)
        return failed("listening");
    return KOR_IIL_OK;
}

bool Service::watch(int descriptor, std::uint32_t number)
{
    epoll_event event = {};
    event.events = EPOLLIN;
    event.data.u32 = number;
    return epoll_ctl(poll_.get(), EPOLL_CTL_ADD, descriptor, &event) == 0;
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
    for (;;)
    {
        epoll_event events[32];
        const int count = epoll_wait(poll_.get(), events, 32, nextTimeout());
        if (count < 0 && errno != EINTR)
            return failed("waiting for requests");

        bool stopping = false;
        for (int i = 0; i < count; ++i)
        {
            const std::uint32_t number = events[i].data.u32;
            if (number == kWakeNumber)
                stopping = true;
            else if (number == kListenerNumber)
                accept();
            else if (const auto caller = callers_.find(number); caller != callers_.end())
                if (serve(number, caller->second) == Verdict::kDisconnect)
                    disconnect(number);
        }
        if (silent_ > 0)
            disconnectSilent();
        if (stopping)
        {
            std::uint64_t signals;
            [[maybe_unused]] const ssize_t taken = read(wake_.get(), &signals, sizeof signals); // cleared for the next run
            return KOR_IIL_OK;
        }
    }
}

// Milliseconds; no limit (-1) unless a caller has yet to say hello.
int Service::nextTimeout() const
{
    if (silent_ == 0)
        return -1;
    Clock::time_point next = Clock::time_point::max();
    for (const auto& [number, caller] : callers_)
        if (!caller.greeted)
            next = std::min(next, caller.greetBefore);
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(next - Clock::now());
    return std::max(0, static_cast<int>(left.count()) + 1);
}

void Service::disconnectSilent()
{
    const Clock::time_point now = Clock::now();
    std::vector<std::uint32_t> silent;
    for (const auto& [number, caller] : callers_)
        if (!caller.greeted && caller.greetBefore <= now)
            silent.push_back(number);
    for (const std::uint32_t number : silent)
    {
        // Its hello may be there, unread because another caller's request took long.
        Caller& caller = callers_.at(number);
        if (serve(number, caller) == Verdict::kDisconnect || !caller.greeted)
            disconnect(number);
    }
}

void Service::accept()
{
    for (int i = 0; i < kAcceptedAtOnce; ++i)
    {
        Descriptor socket(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (socket)
            admit(std::move(socket));
        else if (errno == EMFILE || errno == ENFILE)
            return rejectOutOfDescriptors();
        else
            return;
    }
}

void Service::admit(Descriptor socket)
{
    if (callers_.size() >= kMostCallers)
        return reject(socket.get(), KOR_IIL_BUSY);

    Caller caller;
    ucred peer = {};
    socklen_t size = sizeof peer;
    if (getsockopt(socket.get(), SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0)
    {
        caller.processId = static_cast<std::uint32_t>(peer.pid);
        if (peer.uid != geteuid() && peer.uid != 0)
        {
            KORIIL_REPORT(kTraceWarning, "service %s: process %ld of another user (%lu) rejected", id_.c_str(),
                          static_cast<long>(peer.pid), static_cast<unsigned long>(peer.uid));
            return reject(socket.get(), KOR_IIL_UNKNOWN_SRC_ID);
        }
    }

    std::uint32_t number = lastNumber_;
    do
        ++number;
    while (number <= kWakeNumber || callers_.count(number) != 0);
    lastNumber_ = number;

    if (!watch(socket.get(), number))
        return reject(socket.get(), KOR_IIL_BUSY);
    caller.socket = std::move(socket);
    caller.greetBefore = Clock::now() + kGreetWithin;
    const std::lock_guard<std::mutex> guard(mutex_);
    callers_.emplace(number, std::move(caller));
    ++silent_;
}

// A connection that is not accepted would stay ready, and the loop would never wait again.
void Service::rejectOutOfDescriptors()
{
    spare_ = Descriptor();
    {
        const Descriptor socket(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (socket)
            reject(socket.get(), KOR_IIL_BUSY);
        else
            std::this_thread::sleep_for(
                std::chrono::milliseconds(10)); // another thread took the descriptor, and may give it back
    }
    spare_ = Descriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC));
}

void Service::disconnect(std::uint32_t number)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    const auto caller = callers_.find(number);
    if (!caller->second.greeted)
        --silent_;
    shutdown(caller->second.socket.get(), SHUT_RDWR); // ends the connection even if a child holds a copy
    callers_.erase(caller);
}

// --- One packet --------------------------------------------------------------------------------------------------------------

Service::Verdict Service::serve(std::uint32_t number, Caller& caller)
{
    const ssize_t received = recv(caller.socket.get(), packet_.get(), sizeof(Packet), MSG_DONTWAIT | MSG_TRUNC);
    if (received < 0)
        return errno == EAGAIN || errno == EINTR ? Verdict::kKeep : Verdict::kDisconnect;
    if (received == 0)
        return Verdict::kDisconnect;

    const PacketHeader& header = packet_->header;
    const auto length = static_cast<std::size_t>(received);
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
        return answer(caller, KOR_IIL_OVERSIZE, 0);
    if (header.length != length - sizeof(PacketHeader) || header.name[kIdentifierSize - 1] != '\0')
    {
        answer(caller, KOR_IIL_BAD_CMD, 0);
        return Verdict::kDisconnect;
    }
    if (!caller.greeted)
        return greet(number, caller);
    switch (header.kind)
    {
    case PacketKind::kRequest:
        return serveRequest(caller);
    case PacketKind::kSubscribe:
    case PacketKind::kCancel:
        return serveSubscription(caller);
    default:
        answer(caller, KOR_IIL_BAD_CMD, 0);
        return Verdict::kDisconnect;
    }
}

Service::Verdict Service::greet(std::uint32_t number, Caller& caller)
{
    PacketHeader& header = packet_->header;
    if (header.kind != PacketKind::kHello || header.length != 0)
    {
        answer(caller, KOR_IIL_BAD_CMD, 0);
        return Verdict::kDisconnect;
    }
    if (id_ != header.name)
    {
        answer(caller, KOR_IIL_UNKNOWN_DST_ID, 0);
        return Verdict::kDisconnect;
    }
    caller.greeted = true;
    --silent_;
    header.channel = number;
    return answer(caller, KOR_IIL_OK, 0);
}

Service::Verdict Service::serveRequest(Caller& caller)
{
    const PacketHeader& header = packet_->header;
    if (!isCallerId(header.name))
        return answer(caller, KOR_IIL_UNKNOWN_SRC_ID, 0);

    KorIilRequest request = {};
    request.callerId = header.name;
    request.processId = caller.processId;
    request.wait = header.wait;
    request.command = header.command;
    request.length = header.length;
    const std::uint32_t status = handler_(context_, &request, packet_->message);
    if (status == KOR_IIL_TIMEOUT)
        return Verdict::kKeep;
    return answer(caller, status, status == KOR_IIL_OK ? header.length : 0);
}

Service::Verdict Service::serveSubscription(Caller& caller)
{
    const PacketHeader& header = packet_->header;
    if (!isCallerId(header.name))
        return answer(caller, KOR_IIL_UNKNOWN_SRC_ID, 0);
    if (header.length != 0)
        return answer(caller, KOR_IIL_MISMATCH_CMD_LEN, 0);
    return answer(caller, subscribe(caller, header), 0);
}

std::uint32_t Service::subscribe(const Caller& caller, const PacketHeader& request)
{
    if (request.command == 0 || request.command > eventCount_)
        return KOR_IIL_UNKNOWN_EVT;

    const std::lock_guard<std::mutex> guard(mutex_);
    const auto found = callers_.find(request.channel);
    if (found == callers_.end() || !found->second.greeted || found->second.processId != caller.processId)
        return KOR_IIL_BAD_EVT;

    Caller& subscriber = found->second;
    const bool wanted = request.kind == PacketKind::kSubscribe;
    if (subscriber.events.empty())
    {
        subscriber.events.resize(eventCount_ + 1);
        setsockopt(subscriber.socket.get(), SOL_SOCKET, SO_SNDBUF, &kEventQueueBytes, sizeof kEventQueueBytes);
    }
    if (!wanted && !subscriber.events[request.command])
        return KOR_IIL_BAD_EVT;
    subscriber.events[request.command] = wanted;
    return KOR_IIL_OK;
}

// Turns the packet being served into its reply, and sends it.
Service::Verdict Service::answer(const Caller& caller, std::uint32_t status, std::uint32_t length)
{
    PacketHeader& header = packet_->header;
    header.kind = PacketKind::kReply;
    header.status = status;
    header.length = length;
    if (sendPacket(caller.socket.get(), header, packet_->message))
        return Verdict::kKeep;
    if (errno == EAGAIN)
        KORIIL_REPORT(kTraceWarning, "service %s: process %lu does not read its replies, disconnected", id_.c_str(),
                      static_cast<unsigned long>(caller.processId));
    return Verdict::kDisconnect;
}

// --- Events ------------------------------------------------------------------------------------------------------------------

std::uint32_t Service::publish(std::uint32_t event, const void* data, std::uint32_t length, std::uint32_t* subscribers)
{
    if (event == 0 || event > eventCount_)
        return KOR_IIL_UNKNOWN_EVT;
    if (length > KOR_IIL_MAX_LENGTH)
        return KOR_IIL_OVERSIZE;

    PacketHeader header;
    header.kind = PacketKind::kEvent;
    header.command = event;
    header.length = length;
    copyIdentifier(header.name, id_.c_str());

    std::uint32_t sent = 0;
    const std::lock_guard<std::mutex> guard(mutex_);
    for (auto& [number, caller] : callers_)
    {
        if (caller.events.empty() || !caller.events[event])
            continue;
        if (sendPacket(caller.socket.get(), header, data))
        {
            ++sent;
            continue;
        }
        if (errno == EAGAIN) // any other error: it has closed the connection
            KORIIL_REPORT(kTraceWarning, "service %s: process %lu does not take its events, disconnected", id_.c_str(),
                          static_cast<unsigned long>(caller.processId));
        // The subscriber can still read its queue. The loop finds the connection ended, and removes the caller.
        shutdown(caller.socket.get(), SHUT_RDWR);
    }
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

extern "C" uint32_t KorIilServiceRun(KorIilService* service)
try
{
    return service != nullptr ? service->run() : static_cast<std::uint32_t>(KOR_IIL_BAD_PARAM);
}
catch (const std::bad_alloc&)
{
    return KOR_IIL_ERR;
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
    return service->publish(evt, data, length, subscribers);
}

extern "C" void KorIilServiceClose(KorIilService* service)
{
    delete service;
}
