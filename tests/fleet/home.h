// A gateway in this process: a bridge, and the IPC behind it, which does as a test says.
#pragma once

#include "ledger.h"

#include "fleet/bridge.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

namespace fleet_test
{

class Home
{
public:
    // The gateway `home-<number>`, where everything is allowed. The ledger has its numbered calls (numbered_call.h).
    Home(std::uint16_t port, unsigned number, const Ledger* ledger = nullptr);
    // The same with all settings of its connection.
    Home(const tarn::fleet::LinkSettings& link, unsigned number, const Ledger* ledger);

    // Returns when it is connected.
    void awaitConnection() const;
    // The policy from now on, one line.
    void allow(const char* line);
    void stop();
    void publish(std::uint32_t event);
    tarn::fleet::BridgeCounters counters() const
    {
        return bridge_->counters();
    }

    static std::string nameOf(unsigned number);

    // Of all calls to come. Each is answered with the gateway's number in front of the reply status.
    std::atomic<std::uint32_t> ipcStatus{0}, replyStatus{0};
    std::atomic<std::uint32_t> milliseconds{0}; // that a call takes
    std::atomic<std::uint32_t> calls{0};        // so far

private:
    std::uint32_t execute(std::uint32_t command, std::uint32_t length, void* message);

    const std::uint32_t number_;
    const Ledger* const ledger_;
    tarn::fleet::BridgeSettings settings_;
    std::unique_ptr<tarn::fleet::Bridge> bridge_;
};

} // namespace fleet_test
