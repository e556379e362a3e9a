// What can complete a word of an order to the simulated gateway.
#pragma once

#include "offers.h"

#include <string>
#include <vector>

namespace tarn::ctl
{

// `given` are the words in front of it, the order's name the first of them.
Offers orderOffers(const std::vector<std::string>& given, const std::string& present);

} // namespace tarn::ctl
