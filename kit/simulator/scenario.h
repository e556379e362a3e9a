// Scenario files: what a simulated gateway consists of when it starts.
#pragma once

#include "model.h"

#include <stdexcept>
#include <string>
#include <string_view>

namespace tarn::simulator
{

// What is wrong with a scenario: file, place, what stands there and what was expected.
class ScenarioError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

// Fills a model that nothing has been put into yet. `fileName` only goes into the text of errors.
void readScenario(std::string_view text, const std::string& fileName, Model& model);

// Reads the file at that path.
void readScenarioFile(const std::string& path, Model& model);

// The scenario compiled in, scenarios/default.json.
void readDefaultScenario(Model& model);

} // namespace tarn::simulator
