// A value of the gateway as programs get it: nothing, a number, a text, or a list of these. Files that only pass values on need
// no JSON library for it.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace tarn::ctl
{

// Keys stay in the order in which they are put in.
using Json = nlohmann::ordered_json;

class Datum
{
public:
    using List = std::vector<Datum>;

    Datum() = default;
    Datum(int number) : value_(std::int64_t{number})
    {
    }
    Datum(std::int64_t number) : value_(number)
    {
    }
    Datum(double number) : value_(number)
    {
    }
    Datum(std::string text) : value_(std::move(text))
    {
    }
    Datum(List list) : value_(std::move(list))
    {
    }

    bool isNothing() const
    {
        return std::holds_alternative<std::monostate>(value_);
    }

    bool isNumber() const
    {
        return std::holds_alternative<std::int64_t>(value_) || std::holds_alternative<double>(value_);
    }

    // 0 if it is no number; without what follows the point.
    std::int64_t number() const;

    // Null if it is no text.
    const std::string* text() const
    {
        return std::get_if<std::string>(&value_);
    }

    // Null if it is no list.
    const List* list() const
    {
        return std::get_if<List>(&value_);
    }

    // The text, or what it is in JSON.
    std::string plain() const;

    Json json() const;

private:
    std::variant<std::monostate, std::int64_t, double, std::string, List> value_;
};

// Of JSON: null, a number, a text, or an array of these.
Datum datumOf(const Json& json);

} // namespace tarn::ctl
