// The verbs of tarn-fleet, one file each.
#pragma once

#include "broker_link.h"
#include "layout/layout.h"
#include "tarnctl/verbs/verbs.h"

#include <chrono>
#include <functional>

namespace tarn::fleet
{

// Reads the settings when a verb needs them: what is wrong with them is the verb's failure.
using SettingsSource = std::function<LinkSettings()>;

void addAttach(ctl::Verbs& verbs, const SettingsSource& settings);
void addList(ctl::Verbs& verbs, const SettingsSource& settings);
void addEvents(ctl::Verbs& verbs, const SettingsSource& settings);
void addCall(ctl::Verbs& verbs, const SettingsSource& settings);

// The layout in use, or null.
const layout::Layout* layoutOrNull();

} // namespace tarn::fleet
