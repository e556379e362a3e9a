// A service: its socket, its callers, and the loop that serves them.
#pragma once

#include "descriptor.h"
#include "kor_iil_service.h"
#include "packet.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include <sys/types.h>

namespace koriil
{

class Service
{
public:
    Service(const char* serviceId, std::uint32_t eventCount, KorIilRequestHandler handler, void* context);
    ~Service();
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    std::uint32_t open();
    std::uint32_t run();
    void stop();
    std::uint32_t publish(std::uint32_t event, const void* data, std::uint32_t length, std::uint32_t* subscribers);

private:
    using Clock = std::chrono::steady_clock;

    struct Caller
    {
        Descriptor socket;
        std::uint32_t processId = 0;
        bool greeted = false;
        Clock::time_point greetBefore; // disconnected then if it has not said hello
        std::vector<bool> events;      // subscribed to, by number; empty before the first subscription
    };

    enum class Verdict
    {
        kKeep,
        kDisconnect
    };

    std::uint32_t takeName(const std::string& directory);
    std::uint32_t listen(const std::string& directory);
    bool watch(int descriptor, std::uint32_t number);
    std::uint32_t failed(const char* what);

    int nextTimeout() const;
    void disconnectSilent();
    void accept();
    void admit(Descriptor socket);
    void rejectOutOfDescriptors();
    void disconnect(std::uint32_t number);

    Verdict serve(std::uint32_t number, Caller& caller);
    Verdict greet(std::uint32_t number, Caller& caller);
    Verdict serveRequest(Caller& caller);
    Verdict serveSubscription(Caller& caller);
    std::uint32_t subscribe(const Caller& caller, const PacketHeader& request);
    Verdict answer(const Caller& caller, std::uint32_t status, std::uint32_t length);

    const std::string id_;
    const std::uint32_t eventCount_;
    const KorIilRequestHandler handler_;
    void* const context_;
    const pid_t owner_;

    std::string socketPath_; // empty until the socket is bound
    Descriptor lock_;
    Descriptor listener_;
    Descriptor poll_;
    Descriptor wake_;
    Descriptor spare_; // closed for a moment to reject a caller when descriptors run out

    std::mutex mutex_; // held by the loop to change callers_, and by any thread to publish
    std::unordered_map<std::uint32_t, Caller> callers_;
    std::uint32_t lastNumber_;
    std::size_t silent_ = 0; // callers that have not said hello yet

    std::unique_ptr<Packet> packet_; // the packet being served
};

} // namespace koriil
