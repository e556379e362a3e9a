#include "mobility_domain.h"

#include "base/hexadecimal.h"

namespace tarn::simulator
{

std::optional<MobilityDomain> parseMobilityDomain(std::string_view text)
{
    const std::optional<base::Bytes> bytes = base::parseHex(text);
    if (!bytes || bytes->size() != std::tuple_size_v<MobilityDomain>)
        return std::nullopt;
    return MobilityDomain{(*bytes)[0], (*bytes)[1]};
}

} // namespace tarn::simulator
