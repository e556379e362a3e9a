// Which values of a gateway are secrets: passphrases, PINs, keys.
#pragma once

#include <string_view>

namespace tarn::ctl
{

// By the words in its name, "wpsApPin" or "radius_secret". A number is one only if the last word says so: wpsApPinEnabled is
// none.
bool isSecret(std::string_view name, bool isNumber);

} // namespace tarn::ctl
