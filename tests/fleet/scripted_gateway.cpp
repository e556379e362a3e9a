#include "scripted_gateway.h"

#include "fleet/contract_table.h"
#include "link.h"

#include <cstdio>
#include <utility>

#include <gtest/gtest.h>

namespace fleet_test
{

using namespace tarn::fleet;

ScriptedGateway::ScriptedGateway(std::uint16_t port, std::string name, ByteOrder byteOrder, Script script, std::string speaksAs)
    : name_(std::move(name)),
      speaksAs_(speaksAs.empty() ? name_ : std::move(speaksAs)),
      byteOrder_(byteOrder),
      script_(std::move(script)),
      settings_(linkOf(name_ + "-scripted", {port})),
      link_(settings_, LinkHandlers{this, nullptr,
                                    [](void* self)
                                    {
                                        auto* that = static_cast<ScriptedGateway*>(self);
                                        that->link_.subscribe(requestTopic(that->name_.c_str()).text);
                                    },
                                    [](void* self) { static_cast<ScriptedGateway*>(self)->isUp_ = true; },
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
    Envelope reply = answer(asked, Kind::kReply);
    reply.command = asked.command;
    reply.status = status;
    std::snprintf(reply.service, sizeof reply.service, "%s", asked.service);
    if (status == 0)
        setMessage(reply, reinterpret_cast<const char*>(kept_.back().data()), static_cast<std::uint32_t>(kept_.back().size()),
                   asked.length);
    return reply;
}

Envelope ScriptedGateway::answer(const Envelope& asked, Kind kind) const
{
    Envelope answer;
    answer.kind = kind;
    answer.byteOrder = byteOrder_;
    answer.session = asked.session;
    answer.sequence = asked.sequence;
    answer.run = kRun;
    answer.clock = 1;
    answer.contract = kContractHash;
    return answer;
}

Envelope ScriptedGateway::pong(const Envelope& ping) const
{
    Envelope pong = answer(ping, Kind::kPong);
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
