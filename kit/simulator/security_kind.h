// What of an access point's security belongs together.
#pragma once

#include <string>
#include <vector>

namespace tarn::simulator
{

// What belongs to one kind of beacons: how stations authenticate, and what is sent encrypted with. The first is the usual one.
struct SecurityKind
{
    const char* beaconType;
    std::vector<std::string> authentication;
    std::vector<std::string> encryption;
};

const SecurityKind& securityKind(const std::string& beaconType);

} // namespace tarn::simulator
