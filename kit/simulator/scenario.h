// Scenarios: JSON that says what a gateway consists of. Its state is one, too, and a gateway that plays it goes on where that
// one was. README.md describes the keys.
#pragma once

#include "model.h"

#include <string>
#include <string_view>

namespace tarn::simulator
{

// Fills a model that nothing has been put into. They throw base::JsonError for what is not a scenario or cannot be;
// `fileName` is only for the text of errors.
void readScenario(std::string_view text, const std::string& fileName, Model& model);
void readScenarioFile(const std::string& path, Model& model);
// The one that is compiled in.
void readDefaultScenario(Model& model);

// The state of the gateway.
Json scenarioOf(const Model& model);

// A large one: so many radios, interfaces of each, and stations of each of these, at most as many as there is room for.
Json generatedScenario(std::size_t radios, std::size_t interfaces, std::size_t stations);

// The JSON Schema of scenarios.
Json scenarioSchema();

} // namespace tarn::simulator
