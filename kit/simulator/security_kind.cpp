#include "security_kind.h"

#include <algorithm>
#include <iterator>

namespace tarn::simulator
{

const SecurityKind& securityKind(const std::string& beaconType)
{
    static const SecurityKind kKinds[] = {{"open", {"open"}, {"none"}},
                                          {"wpa3", {"sae", "eap"}, {"aes"}},
                                          {"", {"psk", "eap"}, {"aes", "tkip", "tkip-aes"}}}; // all others
    return *std::find_if(std::begin(kKinds), std::end(kKinds) - 1,
                         [&](const SecurityKind& kind) { return kind.beaconType == beaconType; });
}

} // namespace tarn::simulator
