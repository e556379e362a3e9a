// Shared by the tests of the IPC library: an empty runtime directory, services in threads and in processes, and peers that send
// and receive single packets.
#pragma once

#include "host/descriptor.h"
#include "host/packet.h"
#include "support/services.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include <sys/socket.h>

namespace host_test
{

// Seconds; enough for emulation on a loaded machine. Only a test that fails waits that long.
constexpr std::uint32_t kAmple = 60;

constexpr const char* kCaller = "test";
constexpr const char* kService = "SERVICE";

// The number that a ScriptedService gives to every connection.
constexpr std::uint32_t kScriptedChannel = 1000;

// Every test has an empty runtime directory.
class HostTest : public ::testing::Test
{
protected:
    const std::string& directory() const
    {
        return directory_.path();
    }

private:
    tarn::test::TemporaryRuntimeDirectory directory_;
};

using Handler = std::function<std::uint32_t(const KorIilRequest&, unsigned char*)>;

// The handler of most tests: command 1 adds one to every byte, other commands are unknown.
std::uint32_t addOne(const KorIilRequest& request, unsigned char* message);

// For a service whose requests do not matter.
std::uint32_t refuseRequest(void*, const KorIilRequest*, void*);

void ignoreEvent(const char*, std::uint32_t, const void*, std::uint32_t);

// A service, and the thread that runs it.
class RunningService
{
public:
    explicit RunningService(Handler handler = addOne, const char* serviceId = kService, std::uint32_t eventCount = 5);

    // Returns how many processes the event was sent to.
    std::uint32_t publish(std::uint32_t event, const std::string& data = "");

private:
    static std::uint32_t call(void* context, const KorIilRequest* request, void* message);

    Handler handler_;
    tarn::test::ServiceThread service_;
};

// Publishes event 1 in bursts until it is destroyed, at a pace that every subscriber can keep up with.
class Publishing
{
public:
    explicit Publishing(RunningService& service);
    ~Publishing();
    Publishing(const Publishing&) = delete;
    Publishing& operator=(const Publishing&) = delete;

private:
    std::atomic<bool> done_{false};
    std::thread thread_;
};

// A child process that runs `body` and exits with what that returns. The destructor kills it if it is still running.
class Child
{
public:
    explicit Child(const std::function<int()>& body);
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    int processId() const
    {
        return processId_;
    }
    void kill(int signal);
    // Its exit code; -1 if a signal ended it.
    int wait();

private:
    int processId_ = -1;
};

// A service in a process of its own, running when the constructor returns.
class ServiceProcess
{
public:
    explicit ServiceProcess(const Handler& handler = addOne);

    // Ends it at once: nothing is closed or removed.
    void kill();

private:
    static int serve(const Handler& handler, int ready);

    std::unique_ptr<Child> child_;
};

std::string socketOf(const char* serviceId);

// A listening socket in the service's place.
koriil::Descriptor listenAs(const char* serviceId, int type = SOCK_SEQPACKET, int backlog = 8);

// One end of a connection, without the library's client or service.
class Peer
{
public:
    static Peer connectTo(const char* serviceId);
    explicit Peer(int socket) : socket_(socket)
    {
    }

    bool tryToConnect(const char* serviceId);
    bool send(const koriil::PacketHeader& header, const std::string& message = "");
    bool sendBytes(const void* bytes, std::size_t length);
    // Waits for one packet, and returns its length; 0 at the end of the connection, -1 if nothing comes.
    ssize_t receive(koriil::Packet& packet);
    // Waits for one packet, which must come, and returns its header.
    koriil::PacketHeader receiveHeader();

    koriil::PacketHeader greet(const char* serviceId = kService);
    bool hasEnded();
    int descriptor() const
    {
        return socket_.get();
    }

private:
    koriil::Descriptor socket_;
};

koriil::PacketHeader requestHeader(std::uint32_t command, std::uint32_t length);
koriil::PacketHeader replyTo(const koriil::PacketHeader& request, std::uint32_t length);
koriil::PacketHeader inOtherByteOrder(koriil::PacketHeader header);

// Takes the place of a service: listens, and runs `behave` on a thread of its own.
class ScriptedService
{
public:
    explicit ScriptedService(std::function<void(ScriptedService&)> behave);
    ~ScriptedService();
    ScriptedService(const ScriptedService&) = delete;
    ScriptedService& operator=(const ScriptedService&) = delete;

    // The next connection.
    Peer accept();
    // The next connection, its hello answered.
    Peer welcome();

private:
    koriil::Descriptor listener_;
    std::thread thread_;
};

// One call of command 1. On success the message must be as addOne leaves it, on failure unchanged.
std::uint32_t callOnce(std::uint32_t length = 12, std::uint32_t wait = kAmple, const char* serviceId = kService,
                       const char* callerId = kCaller);

// Waits until the condition holds. False if it does not within kAmple.
bool eventually(const std::function<bool()>& condition);

void sleepMilliseconds(int milliseconds);

} // namespace host_test
