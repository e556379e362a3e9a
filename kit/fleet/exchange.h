// The operator's side: a connection to the broker on a thread of its own, through which any number of threads make calls on any
// number of gateways. docs/fleet-envelope.md has what travels.
//
//     Exchange exchange(settings, {kAllStates}, watcher, nullptr);
//     if (exchange.awaitUp(seconds(10)))
//         const Outcome outcome = exchange.call("home-1", {"TARN", 7, 3, sizeof message}, &message, seconds(3));
//
// An answer belongs to a call by session and sequence. One that nobody waits for, because it is late, comes twice or was never
// asked for, is dropped and counted.
#pragma once

#include "broker_link.h"
#include "envelope.h"
#include "layout/layout.h"
#include "tarnctl/wakeup.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tarn::fleet
{

struct CallRequest
{
    std::string service;
    std::uint32_t command = 0;
    std::uint32_t wait = 0; // in the unit of the gateway's IPC
    std::uint32_t length = 0;
    // Called before each request that is sent, when the gateway has answered a ping; may be empty. If it throws, nothing is
    // sent.
    std::function<void()> beforeSending = nullptr;
};

enum class Fate
{
    kAnswered, // the gateway has made the call
    kRefused,  // the gateway has not made it, and says why
    kNotSent,  // nothing was sent that a service could have seen
    kUnknown   // it was sent, and there is no answer
};

struct Outcome
{
    Fate fate = Fate::kNotSent;
    std::uint32_t status = 0;       // IPC status
    std::string reason;             // of a status other than 0, for people
    std::vector<std::string> notes; // on a reply that is there, for people
};

// A gateway that has answered.
struct Presence
{
    std::uint64_t run = 0;
    std::uint64_t clock = 0; // milliseconds since its run began
    ByteOrder byteOrder = ByteOrder::kNone;
    bool isSameContract = false;
    std::string version; // of its bridge
    std::chrono::microseconds roundTrip{0};
};

// Told on the thread of the broker. Each may be empty.
struct ExchangeWatcher
{
    // Births and wills, as they arrive: what was retained is old.
    std::function<void(const std::string& gateway, const Envelope& envelope)> state;
    std::function<void(const std::string& gateway, const Envelope& envelope)> event;
    std::function<void()> connected; // and all that is subscribed to is heard from now on
    // No connection, or not any more.
    std::function<void(const std::string& broker, const std::string& reason)> lost;
};

// All since the start.
struct ExchangeCounters
{
    std::uint64_t requests = 0;
    std::uint64_t pings = 0;
    std::uint64_t answers = 0;   // that somebody waited for
    std::uint64_t unasked = 0;   // late, doubled or never asked for: dropped
    std::uint64_t malformed = 0; // no envelope, or not for this topic: dropped
};

class Exchange
{
public:
    using Milliseconds = std::chrono::milliseconds;

    // `filters` are topics to subscribe to beside that of the replies. `layout` tells of the inside of records where a gateway
    // has the other byte order; it may be null. Settings and layout have to stay where they are. Throws std::system_error if
    // the system has no thread, descriptor or random number left.
    Exchange(const LinkSettings& settings, std::vector<std::string> filters, ExchangeWatcher watcher,
             const layout::Layout* layout);
    // Not while a call is under way: giveUp ends them.
    ~Exchange();
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;

    // False if there is no connection within the limit, or if it is given up.
    bool awaitUp(Milliseconds limit);
    // Waits until there is a connection, at least 10 s, and until each broker has been tried: one that does not answer takes 10
    // s. Ends soon after a signal has come.
    bool awaitAnyBroker(const ctl::StopSignals& signals);
    bool isUp() const;
    // Why there is no connection: a sentence.
    std::string lastLoss() const;

    // Asks a gateway whether it is there.
    std::optional<Presence> ping(const std::string& gateway, Milliseconds limit);

    // Makes a call. On status 0 the reply has taken the message's place, otherwise the message is unchanged. Returns when the
    // answer is there, when it is certain that none can be awaited, or when the wait is over.
    Outcome call(const std::string& gateway, const CallRequest& request, void* message, Milliseconds wait);

    // Ends all calls that are under way, and those to come, as if the connection were lost for good.
    void giveUp();

    ExchangeCounters counters() const;

private:
    using Clock = std::chrono::steady_clock;

    enum class Stage
    {
        kQueued,
        kSent,
        kAnswered,
        kBroken // it was sent, and then the connection or the gateway was gone
    };

    // A ping or a request whose sender waits.
    struct Waiting
    {
        const std::string* gateway = nullptr;
        Envelope asked;
        std::vector<std::uint8_t> bytes; // of the envelope, until it is sent
        Stage stage = Stage::kQueued;
        std::condition_variable changed;
        Envelope answer;
        std::vector<std::uint8_t> answerBytes;
        std::string loss; // why it is broken, or was not sent
    };

    // What is known of a gateway that has answered.
    struct Acquaintance
    {
        Presence presence;
        Clock::time_point heardAt;
        std::uint32_t connection = 0; // the latest of which there was a birth in this run
    };

    void serveBroker();
    void sendQueued();
    void subscribe();
    void comeUp();
    void renew();
    void receive(const char* topic, const void* payload, std::size_t size);
    void receiveAnswer(const std::string& gateway, const Envelope& envelope);
    void receiveState(const std::string& gateway, const Envelope& envelope);
    void lose(const std::string& reason);
    void breakAll(const std::string& reason);
    static void breakOff(Waiting& waiting, const std::string& reason);
    void wake() const;

    Stage exchange(Waiting& waiting, Clock::time_point end);
    std::optional<Presence> pingUntil(const std::string& gateway, Clock::time_point end);
    std::optional<Acquaintance> acquaintance(const std::string& gateway, Clock::time_point end);
    void forget(const std::string& gateway);
    Outcome callOnce(const std::string& gateway, const CallRequest& request, void* message, Clock::time_point end,
                     bool& isOtherRun);
    Outcome finish(const Waiting& waiting, const CallRequest& request, void* message) const;
    Outcome broken(const Waiting& waiting, Stage stage);
    Outcome unreachable(const std::string& gateway) const;

    const LinkSettings& settings_;
    const std::vector<std::string> filters_;
    const ExchangeWatcher watcher_;
    const layout::Layout* const layout_;
    const std::uint64_t session_;
    int wakeup_ = -1; // an eventfd

    BrokerLink link_;       // of the broker's thread alone
    bool hasHeard_ = false; // through the subscriptions of this connection; of that thread too

    mutable std::mutex mutex_;
    std::condition_variable upChanged_;
    bool isStopping_ = false;
    bool isUp_ = false;
    std::string lastLoss_ = "there is no connection to a broker yet";
    std::size_t failures_ = 0; // of connections since the latest that could be made
    std::uint32_t sequence_ = 0;
    std::map<std::uint32_t, Waiting*> waiting_; // by sequence
    std::deque<std::uint32_t> queue_;           // sequences of what is to be sent
    std::map<std::string, Acquaintance> known_;
    ExchangeCounters counters_;

    std::thread thread_;
};

} // namespace tarn::fleet
