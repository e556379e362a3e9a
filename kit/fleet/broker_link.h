/* A client's connection to a message broker: to one of several, and again whenever it is lost. Both sides of the fleet use it.
 * Needs libmosquitto and no C++ run-time library.
 *
 * All functions belong to one thread, and handlers run on it. libmosquitto is used without threads of its own and with a new
 * client for each connection, since its client keeps too much over a lost one. */
#pragma once

#include "names.h"

#include <cstddef>
#include <cstdint>

struct mosquitto;
struct mosquitto_message; // NOLINT(readability-identifier-naming): of mosquitto.h

namespace tarn::fleet
{

struct Broker
{
    char host[256] = {};
    std::uint16_t port = 0;
};

struct LinkSettings
{
    static constexpr std::size_t kMostBrokers = 8;
    static constexpr std::size_t kPathSize = 512;

    char clientId[kIdSize] = {};
    Broker brokers[kMostBrokers]; // tried in turn
    std::size_t brokerCount = 0;
    char authorities[kPathSize] = {}; // file of the certificates that the broker's is checked with; empty: no TLS
    char certificate[kPathSize] = {}; // files of the client's own, or empty
    char key[kPathSize] = {};
    std::uint16_t keepAlive = 30;       // seconds without traffic after which the connection is tried
    std::uint32_t firstPause = 1000;    // milliseconds at most before the second attempt; doubled for each one more
    std::uint32_t longestPause = 64000; // up to this
};

// What is left with the broker for when the connection breaks.
struct Will
{
    Topic topic = {};
    std::uint8_t payload[256] = {};
    std::size_t size = 0; // 0: there is none
};

// Told what happens. `context` is passed to all.
struct LinkHandlers
{
    void* context = nullptr;
    // Before each connection, whose number counts from 1: fills in the will; may be null.
    void (*prepare)(void* context, std::uint32_t connection, Will& will) = nullptr;
    // The broker has accepted the connection: subscribe.
    void (*connected)(void* context) = nullptr;
    // It has confirmed all that was subscribed to in `connected`, so that nothing sent from now on is missed: publish.
    void (*subscribed)(void* context) = nullptr;
    void (*received)(void* context, const char* topic, const void* payload, std::size_t size) = nullptr;
    // An attempt failed, or the connection is lost, for this reason.
    void (*lost)(void* context, const char* broker, const char* reason) = nullptr;
    // Renew the subscriptions unless something was heard through them; may be null. A cluster that clears up after a node it
    // has lost may take those of a client that has moved to another one already. Called 4 s after each connection, 8 s, 16 s
    // and so on.
    void (*renew)(void* context) = nullptr;
};

class BrokerLink
{
public:
    // The settings have to stay where they are.
    BrokerLink(const LinkSettings& settings, const LinkHandlers& handlers);
    ~BrokerLink();
    BrokerLink(const BrokerLink&) = delete;
    BrokerLink& operator=(const BrokerLink&) = delete;

    // Waits for at most so long for something to happen, on the connection or on `wakeup` (a descriptor that becomes readable,
    // or -1), and does it; connects if it is time to.
    void turn(int wakeup, int milliseconds);

    // There is a connection, and its subscriptions are confirmed.
    bool isUp() const
    {
        return state_ == State::kUp;
    }
    // Whether what is published now goes out at once, and is not kept in memory behind something else.
    bool isClear() const;

    // Does nothing without a connection. A connection on which the broker refuses a subscription is lost: a client that does
    // not hear what it depends on tries the next broker.
    void subscribe(const char* filter);
    // Ends the subscription and subscribes: RabbitMQ takes a second one for the first, even if it has lost that by half.
    void renew(const char* filter);
    // False unless the connection is up.
    bool publish(const char* topic, const void* payload, std::size_t size, bool isRetained);

    // Takes leave of the broker, which then does not publish the will. Does not connect again.
    void close();

private:
    enum class State
    {
        kDown,        // until attemptAt_
        kConnecting,  // until attemptAt_, the name is resolved and TCP is on its way
        kGreeting,    // until attemptAt_, TCP is connected, and the broker has not accepted the client yet
        kSubscribing, // until attemptAt_, it has accepted the client, and not confirmed all subscriptions yet
        kUp,
        kClosed
    };

    // A subscription that the broker has not confirmed yet.
    struct Asked
    {
        int message = 0; // its number, 0: a free place
        Topic filter = {};
    };
    static constexpr std::size_t kMostAsked = 8;

    bool isAccepted() const
    {
        return state_ == State::kSubscribing || state_ == State::kUp;
    }
    void attempt();
    bool prepareClient();
    bool prepareTls();
    void work(short happened);
    int converse(short happened);
    void comeUpIfConfirmed();
    void confirm(int message, bool isRefused);
    const char* reasonOf(int result) const;
    const char* connectFailure() const;
    void lose(const char* reason);
    void drop();
    std::uint32_t pause() const;

    // For libmosquitto.
    static void onConnect(mosquitto* client, void* self, int code);
    static void onSubscribe(mosquitto* client, void* self, int message, int count, const int* granted);
    static void onDisconnect(mosquitto* client, void* self, int code);
    static void onMessage(mosquitto* client, void* self, const mosquitto_message* message);
    static void onLog(mosquitto* client, void* self, int level, const char* text);

    const Broker& broker() const
    {
        return settings_.brokers[next_];
    }

    const LinkSettings& settings_;
    const LinkHandlers handlers_;
    mosquitto* client_ = nullptr;
    State state_ = State::kDown;
    std::uint64_t attemptAt_ = 0; // when to try again, or to give this attempt up
    std::uint64_t upSince_ = 0;
    std::uint64_t tendedAt_ = 0;
    std::uint64_t renewAge_ = 0; // of the connection, when to renew subscriptions
    std::uint32_t failures_ = 0; // in a row
    std::uint32_t connections_ = 0;
    std::size_t next_ = 0;                  // broker of this attempt, or of the next
    Asked asked_[kMostAsked];               // on this connection
    const char* ended_ = nullptr;           // why the connection is to end
    char tlsProblem_[160] = {};             // what the TLS library has against it, or the broker's
    char refusal_[64 + sizeof(Topic)] = {}; // of a subscription, by the broker
};

} // namespace tarn::fleet
