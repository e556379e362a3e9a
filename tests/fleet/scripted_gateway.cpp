#include "scripted_gateway.h"

#include "fleet/contract_table.h"

#include <cstdio>
#include <utility>

#include <gtest/gtest.h>

namespace fleet_test
{

using namespace tarn::fleet;

namespace
{

LinkSettings settingsOf(const std::string& name, std::uint16_t port)
{
    LinkSettings settings;
    std::snprintf(settings.clientId, sizeof settings.clientId, "%s", name.c_str());
    std::snprintf(settings.brokers[0].host, sizeof settings.brokers[0].host, "127.0.0.1");
    settings.brokers[0].port = port;
    settings.brokerCount = 1;
    settings.firstPause = 50;
    settings.longestPause = 200;
    return settings;
}

} // namespace

ScriptedGateway::ScriptedGateway(std::uint16_t port, std::string name, ByteOrder byteOrder, Script script, std::string speaksAs)
    : name_(std::move(name)),
      speaksAs_(speaksAs.empty() ? name_ : std::move(speaksAs)),
      byteOrder_(byteOrder),
      script_(std::move(script)),
      settings_(settingsOf(name_ + "-scripted", port)),
      link_(settings_, LinkHandlers{this, nullptr,
                                    [](void* self)
                                    {
                                        auto* that = static_cast<ScriptedGateway*>(self);
                                        that->link_.subscribe(requestTopic(that->name_.c_str()).text);
                                        that->isUp_ = true;
                                    },
                                    [](void* self, const char* /*topic*/, const void* payload, std::size_t size)
                                    { static_cast<ScriptedGateway*>(self)->receive(payload, size); },
                                    nullptr})
{
    thread_ = std::thread(
        [this]
        {
            while (!isStopping_)
            {
                link_.turn(-1, 2);
                sendQueued();
            }
            link_.close();
        });
    for (int look = 0; look < 5000 && !isUp_; ++look)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    EXPECT_TRUE(isUp_);
}

ScriptedGateway::~ScriptedGateway()
{
    isStopping_ = true;
    thread_.join();
}

Envelope ScriptedGateway::reply(const Envelope& asked, std::uint32_t status, const Bytes& message)
{
    kept_.push_back(message);
    Envelope reply;
    reply.kind = Kind::kReply;
    reply.byteOrder = byteOrder_;
    reply.session = asked.session;
    reply.sequence = asked.sequence;
    reply.run = kRun;
    reply.clock = 1;
    reply.command = asked.command;
    reply.status = status;
    reply.contract = kContractHash;
    std::snprintf(reply.service, sizeof reply.service, "%s", asked.service);
    if (status == 0)
        setMessage(reply, reinterpret_cast<const char*>(kept_.back().data()), static_cast<std::uint32_t>(kept_.back().size()),
                   asked.length);
    return reply;
}

Envelope ScriptedGateway::pong(const Envelope& ping) const
{
    Envelope pong;
    pong.kind = Kind::kPong;
    pong.byteOrder = byteOrder_;
    pong.session = ping.session;
    pong.sequence = ping.sequence;
    pong.run = kRun;
    pong.clock = 1;
    pong.contract = kContractHash;
    setMessage(pong, "1.2.3", 5, 5);
    return pong;
}

void ScriptedGateway::receive(const void* payload, std::size_t size)
{
    Envelope asked;
    ASSERT_EQ(decode(payload, size, asked), Fault::kNone);
    const std::vector<Envelope> answers = asked.kind == Kind::kPing ? std::vector<Envelope>{pong(asked)} : script_(asked);
    for (const Envelope& answer : answers)
        publish(replyTopic(asked.operatorId, speaksAs_.c_str()).text, answer);
}

void ScriptedGateway::publish(const std::string& topic, Envelope envelope)
{
    const Bytes bytes = encoded(envelope);
    EXPECT_FALSE(bytes.empty()) << describe(check(envelope));
    const std::lock_guard<std::mutex> guard(mutex_);
    queue_.emplace_back(topic, bytes);
}

void ScriptedGateway::sendQueued()
{
    const std::lock_guard<std::mutex> guard(mutex_);
    for (const auto& [topic, bytes] : queue_)
        EXPECT_TRUE(link_.publish(topic.c_str(), bytes.data(), bytes.size(), false));
    queue_.clear();
}

} // namespace fleet_test
