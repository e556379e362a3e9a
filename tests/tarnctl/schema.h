// A check of JSON documents against the part of JSON Schema that tarnctl's schema uses.
#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace tarnctl_test
{

// What the document violates, one line each; none if it is as the schema says. A keyword that is not known here is a
// complaint too, so that nothing in the schema goes unchecked.
std::vector<std::string> schemaComplaints(const nlohmann::json& document, const nlohmann::json& schema);

} // namespace tarnctl_test
