// The device service's events by name and number.
#pragma once

#include "contract/contract.h"

#include <string>
#include <vector>

namespace tarn::ctl
{

const std::vector<contract::Event>& knownEvents();
std::vector<std::string> eventNames();

// By its name or number. Throws UsageError.
const contract::Event& eventNamed(const std::string& text);

} // namespace tarn::ctl
