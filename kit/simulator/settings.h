// The settings of the gateway's objects: named values, each with the range that it accepts.
//
// A setting is reached in several ways (a field of a configuration record, a proxy call, the scenario); its name and its range
// are given once, in the tables of settings.cpp.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace tarn::simulator
{

using Value = std::variant<std::uint32_t, std::string>;
using Changes = std::vector<std::pair<std::string, Value>>;

struct Property
{
    std::string name;
    Value initial; // its kind is the property's
    std::function<bool(const Value&)> accepts;
    std::string expected; // what is accepted, in words

    bool isText() const
    {
        return std::holds_alternative<std::string>(initial);
    }
};

using Properties = std::vector<Property>;

const Properties& serviceProperties();
const Properties& moduleProperties();
const Properties& radioProperties();
const Properties& interfaceProperties();
const Properties& steeringProperties(); // of one mobility domain of Smart WiFi

class Settings
{
public:
    explicit Settings(const Properties& properties);

    const Properties& properties() const
    {
        return *properties_;
    }

    // The property of that name, or null.
    const Property* property(std::string_view name) const;

    // The names must be those of properties, and of the right kind.
    std::uint32_t number(std::string_view name) const;
    const std::string& text(std::string_view name) const;
    const Value& value(std::string_view name) const;

    // Throws Refused for a value that the property does not accept.
    void set(std::string_view name, const Value& value);

private:
    const Properties* properties_;
    std::map<std::string, Value, std::less<>> values_;
};

// Eight digits, the last of which is the check digit.
bool isWpsPin(const std::string& text);

} // namespace tarn::simulator
