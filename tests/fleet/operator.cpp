#include "operator.h"

#include "link.h"

#include <cstdio>

#include <gtest/gtest.h>

namespace fleet_test
{

using namespace tarn::fleet;

namespace
{

// Each a session of its own.
std::uint64_t nextSession()
{
    static std::uint64_t last = 0x5E55104E00000000u;
    return ++last;
}

} // namespace

Operator::Operator(std::uint16_t port, const std::string& name) : Operator(linkOf(name, {port}))
{
    EXPECT_TRUE(await([this] { return isConnected(); })) << reason_;
}

Operator::Operator(const LinkSettings& settings, Hearing hearing)
    : settings_(settings), hearing_(hearing), session_(nextSession())
{
    LinkHandlers handlers;
    handlers.context = this;
    handlers.connected = [](void* self)
    {
        auto* that = static_cast<Operator*>(self);
        if (that->hearing_ == Hearing::kNothing)
            return;
        that->link_->subscribe(kAllStates);
        that->link_->subscribe(kAllEvents);
        that->link_->subscribe(allReplies(that->name_.c_str()).text);
    };
    handlers.received = [](void* self, const char* topic, const void* payload, std::size_t size)
    {
        const auto* bytes = static_cast<const std::uint8_t*>(payload);
        Arrived arrived{topic, Bytes(bytes, bytes + size), Envelope()};
        EXPECT_EQ(decode(arrived.bytes.data(), size, arrived.envelope), Fault::kNone) << topic;
        static_cast<Operator*>(self)->arrived_.push_back(std::move(arrived));
    };
    handlers.lost = [](void* self, const char* /*broker*/, const char* reason)
    { static_cast<Operator*>(self)->reason_ = reason; };
    link_.emplace(settings_, handlers);
}

Operator::~Operator()
{
    link_->close();
}

bool Operator::await(const std::function<bool()>& condition, std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition())
    {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        link_->turn(-1, 5);
    }
    return true;
}

std::optional<Arrived> Operator::take(const std::function<bool(const Arrived&)>& condition, std::chrono::milliseconds limit)
{
    std::optional<Arrived> found;
    const auto look = [&]
    {
        for (auto each = arrived_.begin(); each != arrived_.end(); ++each)
            if (condition(*each))
            {
                found = std::move(*each);
                arrived_.erase(each);
                return true;
            }
        return false;
    };
    await(look, limit);
    return found;
}

std::optional<Arrived> Operator::take(Kind kind, std::chrono::milliseconds limit)
{
    return take([kind](const Arrived& each) { return each.envelope.kind == kind; }, limit);
}

std::optional<Arrived> Operator::ping(const std::string& gateway)
{
    Envelope ping;
    ping.kind = Kind::kPing;
    ping.session = session_;
    std::snprintf(ping.operatorId, sizeof ping.operatorId, "%s", name_.c_str());
    std::optional<Arrived> pong;
    for (int attempt = 0; attempt < 100 && !pong; ++attempt) // the gateway may not be there yet
    {
        ping.sequence = ++sequence_;
        send(gateway, ping);
        pong = take(Kind::kPong, std::chrono::milliseconds(200));
    }
    if (pong)
    {
        run_ = pong->envelope.run;
        clock_ = pong->envelope.clock;
        clockAt_ = std::chrono::steady_clock::now();
    }
    return pong;
}

Envelope Operator::request(const std::string& service, std::uint32_t command, std::uint32_t length, const Bytes& message)
{
    kept_.push_back(message);
    const auto passed =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - clockAt_).count();
    Envelope request;
    request.kind = Kind::kRequest;
    request.byteOrder = kOwnByteOrder;
    request.session = session_;
    request.sequence = ++sequence_;
    request.run = run_;
    request.clock = run_ == 0 ? 0 : clock_ + static_cast<std::uint64_t>(passed);
    request.live = 10000;
    request.command = command;
    request.wait = 3;
    request.contract = kContractHash;
    std::snprintf(request.operatorId, sizeof request.operatorId, "%s", name_.c_str());
    std::snprintf(request.service, sizeof request.service, "%s", service.c_str());
    request.length = length;
    request.message = kept_.back().data();
    request.present = static_cast<std::uint32_t>(kept_.back().size());
    return request;
}

void Operator::send(const std::string& gateway, const Envelope& envelope)
{
    const Bytes bytes = encoded(envelope);
    EXPECT_FALSE(bytes.empty()) << describe(check(envelope));
    sendBytes(requestTopic(gateway.c_str()).text, bytes);
}

void Operator::subscribe(const std::string& filter)
{
    EXPECT_TRUE(isConnected());
    link_->subscribe(filter.c_str());
}

void Operator::sendBytes(const std::string& topic, const Bytes& bytes)
{
    // Also where the broker has just ended the connection.
    EXPECT_TRUE(await([&] { return link_->publish(topic.c_str(), bytes.data(), bytes.size(), false); }));
}

std::optional<Arrived> Operator::call(const std::string& gateway, const Envelope& envelope)
{
    send(gateway, envelope);
    return take([&](const Arrived& each)
                { return each.envelope.kind == Kind::kReply && each.envelope.sequence == envelope.sequence; });
}

} // namespace fleet_test
