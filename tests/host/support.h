// What the tests of the IPC library share: a runtime directory of their own, services in threads and in processes, and peers
// made by hand.
#pragma once

#include "host/descriptor.h"
#include "host/packet.h"
#include "kor_iil.h"
#include "kor_iil_service.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include <gtest/gtest.h>

namespace host_test
{

// Long enough for a loaded machine under emulation. Nothing waits that long unless it fails.
constexpr std::uint32_t kAmple = 60;

constexpr const char* kCaller = "test";
constexpr const char* kService = "SERVICE";

// Each test has an empty runtime directory.
class HostTest : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    const std::string& directory() const
    {
        return directory_;
    }

private:
    std::string directory_;
};

using Handler = std::function<std::uint32_t(const KorIilRequest&, unsigned char*)>;

// What the services of most tests do: command 1 adds one to every byte, other commands are unknown.
std::uint32_t addOne(const KorIilRequest& request, unsigned char* message);

// A service, and the thread that runs it.
class RunningService
{
public:
    explicit RunningService(Handler handler = addOne, const char* serviceId = kService, std::uint32_t eventCount = 5);
    ~RunningService();
    RunningService(const RunningService&) = delete;
    RunningService& operator=(const RunningService&) = delete;

    // Returns how many processes the event was sent to.
    std::uint32_t publish(std::uint32_t event, const std::string& data = "");

private:
    static std::uint32_t call(void* context, const KorIilRequest* request, void* message);

    Handler handler_;
    KorIilService* service_ = nullptr;
    std::thread thread_;
};

// Publishes event 1 in bursts, for as long as it lives, at a pace that every subscriber keeps up with.
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

// A child process that runs `body` and exits with what it returns. It is killed if the test leaves it running.
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

// A service in a process of its own, up when the constructor returns.
class ServiceProcess
{
public:
    explicit ServiceProcess(const Handler& handler = addOne);

    // Ends it at once: nothing is closed or cleared away.
    void kill();

private:
    static int serve(const Handler& handler, int ready);

    std::unique_ptr<Child> child_;
};

std::string socketOf(const char* serviceId);

// A connection made by hand, on either end.
class Peer
{
public:
    static Peer connectTo(const char* serviceId);
    explicit Peer(int socket) : socket_(socket)
    {
    }

    bool send(const koriil::PacketHeader& header, const std::string& message = "");
    bool sendBytes(const void* bytes, std::size_t length);
    // Waits for one packet, and returns its length; 0 at the end of the connection, -1 if nothing comes.
    ssize_t receive(koriil::Packet& packet);

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

// A service made by hand: listens, and lets `behave` have its way with the first connection.
class ScriptedService
{
public:
    explicit ScriptedService(std::function<void(Peer&)> behave);
    ~ScriptedService();
    ScriptedService(const ScriptedService&) = delete;
    ScriptedService& operator=(const ScriptedService&) = delete;

private:
    koriil::Descriptor listener_;
    std::thread thread_;
};

// Answers the hello as a service does.
void welcome(Peer& peer);

// One call of command 1. On success the message must have been answered by addOne, on failure it must be untouched.
std::uint32_t callOnce(std::uint32_t length = 12, std::uint32_t wait = kAmple, const char* serviceId = kService,
                       const char* callerId = kCaller);

// Waits, amply, until the condition holds. False if it never does.
bool eventually(const std::function<bool()>& condition);

void sleepMilliseconds(int milliseconds);

} // namespace host_test
