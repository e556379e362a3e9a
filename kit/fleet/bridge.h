/* The gateway's side: takes requests for one gateway from a broker, makes the calls with the platform's IPC, and answers.
 * Carries events, and says when it comes and goes. docs/fleet-envelope.md has what travels.
 *
 * An object has a thread for the broker and, from the first request on, one for each service. There is nothing global, so that
 * one process can have many. Memory is bounded: so many requests wait, so many answers and events, so many sessions are
 * remembered. Needs libmosquitto, threads, and no C++ run-time library. */
#pragma once

#include "bridge_log.h"
#include "broker_link.h"
#include "contract_table.h"
#include "envelope.h"
#include "outbox.h"
#include "policy.h"
#include "queue.h"
#include "rate.h"
#include "seen_requests.h"

#include <cstddef>
#include <cstdint>

#include <pthread.h>

namespace tarn::fleet
{

// What a bridge is told to use. `context` is passed to all functions, which may be called from several threads at once.
struct BridgePlatform
{
    void* context = nullptr;
    // KorIilExecute.
    std::uint32_t (*execute)(void* context, const char* callerId, const char* service, std::uint32_t wait,
                             std::uint32_t command, std::uint32_t length, void* message) = nullptr;
    BridgeLog::Write log = nullptr;
};

struct BridgeSettings
{
    LinkSettings link; // its clientId is the gateway's name
    char programVersion[kLongestProgramVersion + 1] = {};
};

// All since the start.
struct BridgeCounters : OutboxCounters
{
    std::uint32_t requests = 0; // envelopes that were requests
    std::uint32_t pings = 0;
    std::uint32_t executed = 0;  // calls that the platform has made
    std::uint32_t refused = 0;   // requests that were refused
    std::uint32_t repeated = 0;  // requests that had been here before, dropped
    std::uint32_t malformed = 0; // what was no envelope, or of a kind that is not for gateways, dropped
    std::uint32_t births = 0;    // connections to a broker
};

class Bridge
{
public:
    // The caller id of all calls.
    static constexpr char kCallerId[] = "tarn-bridge";
    // Requests that wait for a service, at most.
    static constexpr std::uint32_t kMostWaiting = 16;

    // The settings have to stay where they are.
    Bridge(const BridgeSettings& settings, const BridgePlatform& platform, const Policy& policy);
    // Ends what was started, see stop.
    ~Bridge();
    Bridge(const Bridge&) = delete;
    Bridge& operator=(const Bridge&) = delete;

    // Connects to the broker, and goes on until stop. False if the system has no thread, descriptor or random number left.
    bool start();
    // Refuses what waits, lets calls that are under way end and answers them, takes leave of the broker. Returns when all is
    // done: soon after the longest call has ended, even if the broker takes nothing.
    void stop();

    // From now on, also for requests that wait.
    void setPolicy(const Policy& policy);

    // An event of the platform, with `length` bytes of data. From any thread.
    void publishEvent(const char* service, std::uint32_t event, const void* data, std::uint32_t length);

    BridgeCounters counters() const;
    // Of this object: the number that its envelopes carry.
    std::uint64_t run() const
    {
        return run_;
    }

private:
    struct Call;

    struct Worker
    {
        Bridge* bridge = nullptr;
        Queue<Call> calls;
        pthread_cond_t changed;
        pthread_t thread;
        bool isRunning = false;
    };

    static void* brokerThread(void* self);
    static void* workerThread(void* worker);
    static void prepare(void* self, std::uint32_t connection, Will& will);
    static void renew(void* self);
    static void connected(void* self);
    static void subscribed(void* self);
    static void received(void* self, const char* topic, const void* payload, std::size_t size);
    static void lost(void* self, const char* broker, const char* reason);

    void serveBroker();
    void takeLeave();
    void announce(Kind kind);
    Envelope presence(Kind kind) const;
    std::uint64_t clock() const;

    void receive(const void* payload, std::size_t size);
    void answerPing(const Envelope& ping);
    void admit(const Envelope& request);
    Refusal judge(const Envelope& request, std::size_t function, std::uint64_t now) const;
    Refusal queue(Call* call, std::uint64_t now);
    void serve(Worker& worker);
    void carryOut(Call* call, void* message);
    void refuse(Call* call, Refusal refusal);
    void answer(const Call& call, Refusal refusal, std::uint32_t status, const void* message);

    void wake() const;

    const BridgeSettings& settings_;
    const BridgePlatform platform_;
    const std::uint64_t startedAt_;
    std::uint64_t run_ = 0;
    int wakeup_ = -1; // an eventfd, which the broker's thread waits at
    pthread_t thread_ = {};
    bool isRunning_ = false;

    // Of the broker's thread alone.
    BrokerLink link_;
    SeenRequests seen_;
    std::uint32_t connection_ = 0;
    bool hasHeard_ = false; // through the subscription of this connection

    // Of all threads, under the mutex.
    mutable pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
    bool isStopping_ = false;
    std::uint64_t leaveAt_ = 0; // when the broker's thread takes leave at the latest; 0: not yet
    Policy policy_;
    Bucket calls_, changes_;
    Worker workers_[kContractServiceCount];
    BridgeCounters counters_; // without the outbox's

    // Of all threads, each with a mutex of its own.
    Outbox outbox_;
    BridgeLog log_;
    std::uint32_t eventNumbers_[kContractServiceCount] = {}; // the latest; under the outbox's
};

} // namespace tarn::fleet
