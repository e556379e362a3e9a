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

// The same as a file of settings has them.
inline std::string settingsText(const tarn::fleet::LinkSettings& link)
{
    std::string lines;
    for (std::size_t at = 0; at < link.brokerCount; ++at)
        lines += std::string("broker ") + link.brokers[at].host + ":" + std::to_string(link.brokers[at].port) + "\n";
    const auto add = [&lines](const char* word, const char* value)
    {
        if (*value != '\0')
            lines += std::string(word) + " " + value + "\n";
    };
    add("id", link.clientId);
    add("cafile", link.authorities);
    add("cert", link.certificate);
    add("key", link.key);
    return lines;
}

} // namespace fleet_test
