// A minimal operator's side: sends envelopes and keeps what arrives. All happens on the test's own thread.
#pragma once

#include "samples.h"

#include "fleet/broker_link.h"
#include "fleet/contract_table.h"

#include <chrono>
#include <deque>
#include <functional>
#include <optional>
#include <string>

namespace fleet_test
{

inline constexpr std::chrono::seconds kAmple{20};

// An envelope, together with the bytes that its message is in.
struct Arrived
{
    std::string topic;
    Bytes bytes;
    tarn::fleet::Envelope envelope;
};

// What a client subscribes to as soon as it is connected.
enum class Hearing
{
    kAsOperator,
    kNothing
};

class Operator
{
public:
    explicit Operator(std::uint16_t port, const std::string& name = "noc-1");
    // With all settings: where they do not lead to a connection there is none.
    explicit Operator(const tarn::fleet::LinkSettings& settings, Hearing hearing = Hearing::kAsOperator);
    ~Operator();
    Operator(const Operator&) = delete;
    Operator& operator=(const Operator&) = delete;

    // Lets the link work until the condition holds. False if it does not in time.
    bool await(const std::function<bool()>& condition, std::chrono::milliseconds limit = kAmple);
    // Takes the first envelope that has arrived for which the condition holds.
    std::optional<Arrived> take(const std::function<bool(const Arrived&)>& condition, std::chrono::milliseconds limit = kAmple);
    std::optional<Arrived> take(tarn::fleet::Kind kind, std::chrono::milliseconds limit = kAmple);

    // A ping and its pong: afterwards the gateway's run and clock are known.
    std::optional<Arrived> ping(const std::string& gateway);
    // A request for that run: `length` bytes of message, all of them zero but the first ones.
    tarn::fleet::Envelope request(const std::string& service, std::uint32_t command, std::uint32_t length,
                                  const Bytes& message = {});
    void send(const std::string& gateway, const tarn::fleet::Envelope& envelope);
    void subscribe(const std::string& filter);
    void sendBytes(const std::string& topic, const Bytes& bytes);
    // Sends it and takes its reply.
    std::optional<Arrived> call(const std::string& gateway, const tarn::fleet::Envelope& envelope);

    bool isConnected() const
    {
        return link_->isUp();
    }
    // Why the connection was lost or could not be made, the latest reason.
    const std::string& reason() const
    {
        return reason_;
    }

private:
    const tarn::fleet::LinkSettings settings_;
    const std::string name_{settings_.clientId};
    const Hearing hearing_;
    const std::uint64_t session_;
    std::string reason_;
    std::optional<tarn::fleet::BrokerLink> link_;
    std::deque<Arrived> arrived_;
    std::deque<Bytes> kept_; // the messages of requests
    std::uint32_t sequence_ = 0;
    std::uint64_t run_ = 0;
    std::uint64_t clock_ = 0;
    std::chrono::steady_clock::time_point clockAt_;
};

} // namespace fleet_test
