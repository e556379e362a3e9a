// A service: the loop that accepts callers and serves what they send.
#pragma once

#include "callers.h"
#include "descriptor.h"
#include "kor_iil_service.h"
#include "packet.h"
#include "service_name.h"

#include <chrono>
#include <cstdint>
#include <ctime>
#include <string>

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
    std::uint32_t setThreads(std::uint32_t threads);
    std::uint32_t run();
    void stop();
    std::uint32_t publish(std::uint32_t event, const void* data, std::uint32_t length, std::uint32_t* subscribers);

    // Around a fork. A child closes its copies of all descriptors: otherwise one that outlives the service would keep its name
    // taken and its callers waiting.
    void beforeFork();
    void afterFork();
    void abandon();

private:
    enum class Verdict
    {
        kKeep,
        kDisconnect
    };

    std::uint32_t failed(const char* what) const;
    bool watch(int descriptor, std::uint32_t number);
    int callersPoll() const;

    std::uint32_t serveWithHelpers(Packet& packet);
    std::uint32_t serveUntilStopped(int poll, Packet& packet);
    void drain(Packet& packet);
    std::uint32_t tidy();

    void accept();
    void admit(Descriptor socket);
    void reject(int socket, std::uint32_t status);
    void rejectOutOfDescriptors();

    using TimePoint = std::chrono::steady_clock::time_point;

    void serve(std::uint32_t number, Packet& packet, bool isGone, TimePoint polled, TimePoint now);
    Verdict serveCaller(std::uint32_t number, Caller& caller, Packet& packet, bool isGone, TimePoint now);
    Verdict servePacket(std::uint32_t number, Caller& caller, Packet& packet, std::size_t length, TimePoint now);
    Verdict greet(std::uint32_t number, Caller& caller, Packet& packet);
    Verdict serveRequest(const Caller& caller, Packet& packet);
    Verdict serveSubscription(const Caller& caller, Packet& packet);
    Verdict serveCounters(const Caller& caller, Packet& packet);
    Verdict refuse(const Caller& caller, Packet& packet, std::uint32_t status);
    Verdict dismiss(const Caller& caller, Packet& packet, std::uint32_t status);
    Verdict answer(const Caller& caller, Packet& packet, std::uint32_t status, std::uint32_t length);

    const std::string id_;
    const std::uint32_t eventCount_;
    const KorIilRequestHandler handler_;
    void* const context_;
    const pid_t owner_;
    const std::time_t openedAt_;
    std::uint32_t threads_ = 1;
    bool hasRun_ = false;

    ServiceName name_;
    Callers callers_;
    Descriptor poll_;
    Descriptor helpersPoll_; // the callers, where several threads serve them
    Descriptor wake_;
    Descriptor tidyTimer_;
    Descriptor spare_; // closed for a moment to reject a caller when descriptors run out
};

} // namespace koriil
