// A check of JSON documents against a JSON Schema.
#pragma once

#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

namespace tarnctl_test
{

class Schema
{
public:
    explicit Schema(const nlohmann::json& schema);
    ~Schema();
    Schema(const Schema&) = delete;
    Schema& operator=(const Schema&) = delete;

    // What the document violates, one line each; none if it is as the schema says.
    std::vector<std::string> violations(nlohmann::json document) const;

private:
    struct Parsed;
    std::unique_ptr<Parsed> parsed_;
};

} // namespace tarnctl_test
