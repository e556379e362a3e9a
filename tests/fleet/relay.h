// Stands between clients and a broker, and does to what passes what networks and brokers do: holds it up, drops connections,
// lets a message arrive twice, late, or behind a later one, and keeps or changes what the broker says of subscriptions.
#pragma once

#include "samples.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace fleet_test
{

class Relay
{
public:
    struct Message
    {
        bool isToBroker = false;
        std::string topic;
        Bytes payload;
    };
    // When copies of a message go on, after it has come: {0} is the usual way. On the relay's thread.
    using Way = std::function<std::vector<std::chrono::milliseconds>(const Message& message)>;

    explicit Relay(std::uint16_t broker, Way way = nullptr);
    ~Relay();
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;

    std::uint16_t port() const
    {
        return port_;
    }

    // From now on nothing passes, and no connection ends. Returns when that is so.
    void hold();
    void release();
    // From now on the broker's confirmations of subscriptions (SUBACK) wait here, pass, or say that it refuses them.
    enum class Confirmations
    {
        kPass,
        kWait,
        kRefuse
    };
    void setConfirmations(Confirmations confirmations);
    // How many wait.
    std::size_t confirmationsWaiting() const
    {
        return confirmationsWaiting_;
    }
    // Ends all connections that there are.
    void cut();
    // Whether nothing is on its way that came before.
    bool isEmpty() const
    {
        return underWay_ == 0;
    }

private:
    using Clock = std::chrono::steady_clock;

    // One direction of a connection.
    struct Stream
    {
        int from = -1;
        int to = -1;
        bool isToBroker = false;
        bool hasEnded = false;            // nothing more comes
        bool isShut = false;              // and nothing more goes
        Bytes arrived;                    // the beginning of a packet
        std::vector<Bytes> confirmations; // that wait
        std::multimap<Clock::time_point, Bytes> packets;
        Bytes leaving;
    };
    struct Connection
    {
        Stream streams[2];
    };

    void serve();
    void accept();
    void read(Stream& stream);
    void takePackets(Stream& stream);
    void passConfirmations(Stream& stream) const;
    std::vector<std::chrono::milliseconds> wayOf(const Stream& stream, const Bytes& packet, std::size_t headerSize) const;
    static void write(Stream& stream);
    static void drop(const Connection& connection);

    const std::uint16_t broker_;
    const Way way_;
    int listener_ = -1;
    std::uint16_t port_ = 0;
    std::list<Connection> connections_; // of the thread alone
    std::atomic<bool> isHeld_{false}, isHolding_{false}, isCut_{false}, isStopping_{false};
    std::atomic<std::size_t> underWay_{0}, confirmationsWaiting_{0};
    std::atomic<Confirmations> confirmations_{Confirmations::kPass};
    std::thread thread_;
};

} // namespace fleet_test
