// A gateway of two processes, tarn-bridge and a service behind it, which can be killed.
#pragma once

#include "campaign/support.h"
#include "support/process.h"

#include <cstdint>
#include <optional>
#include <string>

namespace fleet_test
{

class Device
{
public:
    // The gateway `home-<number>`, with its files in a directory of its own below this one. A call takes so many milliseconds.
    Device(std::uint16_t port, unsigned number, const std::string& directory, const std::string& ledger, int taken);

    void killBridge();
    void killService();
    // What was killed.
    void restart();

private:
    const std::string directory_;
    const std::vector<std::string> bridgeWords_, serviceWords_;
    std::optional<tarn::test::Process> bridge_;
    std::optional<campaign::Peer> service_;
};

} // namespace fleet_test
