// How tests connect to a broker on the loopback interface: again soon after a loss.
#pragma once

#include "fleet/broker_link.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace fleet_test
{

inline tarn::fleet::LinkSettings linkOf(const std::string& name, const std::vector<std::uint16_t>& ports)
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

// With TLS: the file of the broker's authority, and the client's own certificate and key without the ends of their names.
inline void secure(tarn::fleet::LinkSettings& link, const std::string& authority, const std::string& own)
{
    std::snprintf(link.authorities, sizeof link.authorities, "%s", authority.c_str());
    std::snprintf(link.certificate, sizeof link.certificate, "%s.pem", own.c_str());
    std::snprintf(link.key, sizeof link.key, "%s.key", own.c_str());
}

} // namespace fleet_test
