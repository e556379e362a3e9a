// The configuration of mosquitto that packaging has, for a broker of a test's own.
#pragma once

#include "text_files.h"

#include <string>

namespace fleet_test
{

// With the directory of the broker's certificate and its authority's, and the file of the access list.
inline std::string shippedConfiguration(const std::string& certificates,
                                        const std::string& accessList = PACKAGING "/mosquitto/access-list")
{
    std::string text = contents(PACKAGING "/mosquitto/tarn.conf");
    text = replaced(text, "/etc/mosquitto/tarn/access-list", accessList);
    text = replaced(text, "/etc/mosquitto/tarn", certificates);
    return replaced(text, "listener 8883", "listener @PORT@ 127.0.0.1");
}

} // namespace fleet_test
