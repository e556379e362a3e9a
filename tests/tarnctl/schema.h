// A check of JSON documents against a JSON Schema.
#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace tarnctl_test
{

// What the document violates, one line each; none if it is as the schema says.
std::vector<std::string> schemaViolations(nlohmann::json document, const nlohmann::json& schema);

} // namespace tarnctl_test
