// A gateway's side that says what a test wants it to say, on a thread of its own.
#pragma once

#include "samples.h"

#include "fleet/broker_link.h"

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace fleet_test
{

class ScriptedGateway
{
public:
    // What it sends for one request or ping; for a ping there is a default.
    using Script = std::function<std::vector<tarn::fleet::Envelope>(const tarn::fleet::Envelope& asked)>;

    // The byte order is that of all it sends. `speaksAs` is the gateway whose topics it sends to.
    ScriptedGateway(std::uint16_t port, std::string name, tarn::fleet::ByteOrder byteOrder, Script script,
                    std::string speaksAs = "");
    ~ScriptedGateway();
    ScriptedGateway(const ScriptedGateway&) = delete;
    ScriptedGateway& operator=(const ScriptedGateway&) = delete;

    // The reply to a request: status 0 with this message, or another one without.
    tarn::fleet::Envelope reply(const tarn::fleet::Envelope& asked, std::uint32_t status, const Bytes& message = {});
    void publish(const std::string& topic, tarn::fleet::Envelope envelope);
    std::uint64_t run() const
    {
        return kRun;
    }

    static constexpr std::uint64_t kRun = 0x5C21970000000001u;

private:
    tarn::fleet::Envelope answer(const tarn::fleet::Envelope& asked, tarn::fleet::Kind kind) const;
    tarn::fleet::Envelope pong(const tarn::fleet::Envelope& ping) const;
    void receive(const void* payload, std::size_t size);
    void sendQueued();

    const std::string name_, speaksAs_;
    const tarn::fleet::ByteOrder byteOrder_;
    const Script script_;
    tarn::fleet::LinkSettings settings_;
    tarn::fleet::BrokerLink link_;
    std::mutex mutex_;
    std::vector<std::pair<std::string, Bytes>> queue_;
    std::vector<Bytes> kept_; // messages of replies
    std::atomic<bool> isUp_{false}, isStopping_{false};
    std::thread thread_;
};

} // namespace fleet_test
