// Scenario files: what a simulated gateway consists of when it starts.
#pragma once

#include "model.h"

#include <string>
#include <string_view>

namespace tarn::simulator
{

// All of these throw base::JsonError for a scenario that is not sound.

// Fills a model that is still empty. `fileName` is only for the text of errors.
void readScenario(std::string_view text, const std::string& fileName, Model& model);

// Reads the file at that path.
void readScenarioFile(const std::string& path, Model& model);

// The scenario compiled in, scenarios/default.json.
void readDefaultScenario(Model& model);

} // namespace tarn::simulator
