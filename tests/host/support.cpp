#include "support.h"

#include "host/deadline.h"
#include "host/identifiers.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace host_test
{

namespace
{

sockaddr_un addressOf(const char* serviceId)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, socketOf(serviceId).c_str(), sizeof address.sun_path - 1);
    return address;
}

} // namespace

std::uint32_t addOne(const KorIilRequest& request, unsigned char* message)
{
    if (request.command != 1)
        return KOR_IIL_UNKNOWN_CMD;
    for (std::uint32_t i = 0; i < request.length; ++i)
        message[i] = static_cast<unsigned char>(message[i] + 1);
    return KOR_IIL_OK;
}

std::uint32_t refuseRequest(void*, const KorIilRequest*, void*)
{
    return KOR_IIL_UNSUPPORT;
}

void ignoreEvent(const char*, std::uint32_t, const void*, std::uint32_t)
{
}

// --- Services ----------------------------------------------------------------------------------------------------------------

RunningService::RunningService(Handler handler, const char* serviceId, std::uint32_t eventCount)
    : handler_(std::move(handler)), service_(serviceId, eventCount, call, this)
{
}

std::uint32_t RunningService::publish(std::uint32_t event, const std::string& data)
{
    return service_.publish(event, data.data(), data.size());
}

std::uint32_t RunningService::call(void* context, const KorIilRequest* request, void* message)
{
    return static_cast<RunningService*>(context)->handler_(*request, static_cast<unsigned char*>(message));
}

Publishing::Publishing(RunningService& service)
    : thread_(
          [this, &service]
          {
              while (!done_)
              {
                  for (int i = 0; i < 5; ++i)
                      service.publish(1, "event");
                  sleepMilliseconds(1);
              }
          })
{
}

Publishing::~Publishing()
{
    done_ = true;
    thread_.join();
}

Child::Child(const std::function<int()>& body) : processId_(fork())
{
    if (processId_ == 0)
        _exit(body());
}

Child::~Child()
{
    if (processId_ > 0)
    {
        kill(SIGKILL);
        wait();
    }
}

void Child::kill(int signal)
{
    ::kill(processId_, signal);
}

int Child::wait()
{
    int status = 0;
    while (waitpid(processId_, &status, 0) < 0 && errno == EINTR)
    {
    }
    processId_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

ServiceProcess::ServiceProcess(const Handler& handler)
{
    int ends[2];
    if (pipe(ends) != 0)
        throw std::runtime_error("no pipe");
    child_ = std::make_unique<Child>([&] { return serve(handler, ends[1]); });
    close(ends[1]);
    char ready = 0;
    if (read(ends[0], &ready, 1) != 1)
        throw std::runtime_error("the service's process cannot open the service");
    close(ends[0]);
}

int ServiceProcess::serve(const Handler& handler, int ready)
{
    const auto call = [](void* context, const KorIilRequest* request, void* message)
    { return (*static_cast<const Handler*>(context))(*request, static_cast<unsigned char*>(message)); };
    KorIilService* service = nullptr;
    if (KorIilServiceOpen(kService, 5, call, const_cast<Handler*>(&handler), &service) != KOR_IIL_OK ||
        write(ready, "!", 1) != 1)
        return 1;
    close(ready);
    return static_cast<int>(KorIilServiceRun(service));
}

void ServiceProcess::kill()
{
    child_->kill(SIGKILL);
    child_->wait();
}

// --- Peers -------------------------------------------------------------------------------------------------------------------

std::string socketOf(const char* serviceId)
{
    return std::string(std::getenv("KORIIL_DIR")) + "/" + serviceId + ".socket";
}

koriil::Descriptor listenAs(const char* serviceId, int type, int backlog)
{
    koriil::Descriptor listener(socket(AF_UNIX, type | SOCK_CLOEXEC, 0));
    const sockaddr_un address = addressOf(serviceId);
    if (bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener.get(), backlog) != 0)
        throw std::runtime_error("no socket can listen as " + std::string(serviceId));
    return listener;
}

Peer Peer::connectTo(const char* serviceId)
{
    Peer peer(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    EXPECT_TRUE(peer.tryToConnect(serviceId)) << strerror(errno);
    return peer;
}

bool Peer::tryToConnect(const char* serviceId)
{
    const sockaddr_un address = addressOf(serviceId);
    return connect(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

bool Peer::send(const koriil::PacketHeader& header, const std::string& message)
{
    std::string packet(reinterpret_cast<const char*>(&header), sizeof header);
    packet += message;
    return sendBytes(packet.data(), packet.size());
}

bool Peer::sendBytes(const void* bytes, std::size_t length)
{
    return ::send(socket_.get(), bytes, length, MSG_NOSIGNAL | MSG_DONTWAIT) == static_cast<ssize_t>(length);
}

ssize_t Peer::receive(koriil::Packet& packet)
{
    for (int attempt = 0; attempt < 2; ++attempt)
    {
        pollfd readable = {socket_.get(), POLLIN, 0};
        if (poll(&readable, 1, static_cast<int>(kAmple) * 1000) != 1)
            return -1;
        const ssize_t received = recv(socket_.get(), &packet, sizeof packet, MSG_TRUNC | MSG_DONTWAIT);
        if (received >= 0)
            return received;
        if (errno != ECONNRESET) // comes once, ahead of the packets that can still be read
            return -1;
    }
    return -1;
}

koriil::PacketHeader Peer::receiveHeader()
{
    auto packet = std::make_unique<koriil::Packet>();
    const ssize_t received = receive(*packet);
    EXPECT_EQ(received, static_cast<ssize_t>(sizeof(koriil::PacketHeader) + packet->header.length));
    return packet->header;
}

koriil::PacketHeader Peer::greet(const char* serviceId)
{
    koriil::PacketHeader hello;
    hello.kind = koriil::PacketKind::kHello;
    hello.sequence = 1;
    koriil::copyIdentifier(hello.name, serviceId);
    EXPECT_TRUE(send(hello));

    const koriil::PacketHeader answer = receiveHeader();
    EXPECT_EQ(answer.length, 0u);
    EXPECT_EQ(answer.status, KOR_IIL_OK);
    return answer;
}

bool Peer::hasEnded()
{
    auto packet = std::make_unique<koriil::Packet>();
    return receive(*packet) == 0;
}

koriil::PacketHeader requestHeader(std::uint32_t command, std::uint32_t length)
{
    koriil::PacketHeader header;
    header.kind = koriil::PacketKind::kRequest;
    header.sequence = 2;
    header.command = command;
    header.length = length;
    header.wait = kAmple;
    header.began = koriil::Deadline(kAmple).began();
    koriil::copyIdentifier(header.name, kCaller);
    return header;
}

koriil::PacketHeader replyTo(const koriil::PacketHeader& request, std::uint32_t length)
{
    koriil::PacketHeader header;
    header.kind = koriil::PacketKind::kReply;
    header.sequence = request.sequence;
    header.command = request.command;
    header.length = length;
    return header;
}

koriil::PacketHeader inOtherByteOrder(koriil::PacketHeader header)
{
    header.magic = __builtin_bswap32(header.magic);
    header.version = __builtin_bswap16(header.version);
    header.kind = static_cast<koriil::PacketKind>(__builtin_bswap16(static_cast<std::uint16_t>(header.kind)));
    for (std::uint32_t* word : {&header.sequence, &header.status, &header.command, &header.length, &header.wait, &header.began,
                                &header.connection, &header.revision})
        *word = __builtin_bswap32(*word);
    return header;
}

ScriptedService::ScriptedService(std::function<void(ScriptedService&)> behave)
    : listener_(listenAs(kService)), thread_([this, behave = std::move(behave)] { behave(*this); })
{
}

ScriptedService::~ScriptedService()
{
    shutdown(listener_.get(), SHUT_RDWR); // in case nobody connects
    thread_.join();
    unlink(socketOf(kService).c_str());
}

Peer ScriptedService::accept()
{
    return Peer(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
}

Peer ScriptedService::welcome()
{
    Peer peer = accept();
    const koriil::PacketHeader hello = peer.receiveHeader();
    EXPECT_EQ(hello.kind, koriil::PacketKind::kHello);
    koriil::PacketHeader reply = replyTo(hello, 0);
    reply.connection = kScriptedChannel;
    EXPECT_TRUE(peer.send(reply));
    return peer;
}

// --- Calls -------------------------------------------------------------------------------------------------------------------

std::uint32_t callOnce(std::uint32_t length, std::uint32_t wait, const char* serviceId, const char* callerId)
{
    std::string message(length, '\0');
    for (std::uint32_t i = 0; i < length; ++i)
        message[i] = static_cast<char>(i * 7);
    std::string expected = message;

    const std::uint32_t status = KorIilExecute(callerId, serviceId, wait, 1, length, message.data());
    if (status == KOR_IIL_OK)
        for (char& byte : expected)
            byte = static_cast<char>(byte + 1);
    EXPECT_TRUE(message == expected) << "status " << status << ", length " << length;
    return status;
}

bool eventually(const std::function<bool()>& condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(kAmple);
    while (!condition())
    {
        if (std::chrono::steady_clock::now() > end)
            return false;
        sleepMilliseconds(2);
    }
    return true;
}

void sleepMilliseconds(int milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

} // namespace host_test
