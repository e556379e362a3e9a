// How tests connect to a broker on the loopback interface: again soon after a loss.
#pragma once

#include "fleet/broker_link.h"

#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string>

namespace fleet_test
{

inline tarn::fleet::LinkSettings linkOf(const std::string& name, std::initializer_list<std::uint16_t> ports)
{
    tarn::fleet::LinkSettings link;
    std::snprintf(link.clientId, sizeof link.clientId, "%s", name.c_str());
    for (const std::uint16_t port : ports)
    {
        tarn::fleet::Broker& broker = link.brokers[link.brokerCount++];
        std::snprintf(broker.host, sizeof broker.host, "127.0.0.1");
        broker.port = port;
    }
    link.firstPause = 50; // milliseconds
    link.longestPause = 200;
    return link;
}

} // namespace fleet_test
