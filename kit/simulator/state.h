// The state of the model as JSON, for reading.
#pragma once

#include "model.h"

#include <nlohmann/json.hpp>

namespace tarn::simulator
{

nlohmann::ordered_json stateOf(const Model& model);

} // namespace tarn::simulator
