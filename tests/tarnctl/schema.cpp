#include "schema.h"

#include <algorithm>
#include <regex>
#include <set>

namespace tarnctl_test
{

namespace
{

using Json = nlohmann::json;

bool isOfType(const Json& value, const std::string& type)
{
    if (type == "object")
        return value.is_object();
    if (type == "array")
        return value.is_array();
    if (type == "string")
        return value.is_string();
    if (type == "integer")
        return value.is_number_integer();
    if (type == "boolean")
        return value.is_boolean();
    return type == "null" && value.is_null();
}

class Checker
{
public:
    explicit Checker(const Json& schema) : root(schema)
    {
    }

    std::vector<std::string> complaints;

    void check(const Json& value, const Json& schema, const std::string& where)
    {
        for (const auto& [keyword, demand] : schema.items())
            checkKeyword(keyword, demand, value, schema, where);
    }

private:
    void complain(const std::string& where, const std::string& what)
    {
        complaints.push_back(where + ": " + what);
    }

    void checkKeyword(const std::string& keyword, const Json& demand, const Json& value, const Json& schema,
                      const std::string& where)
    {
        static const std::set<std::string> silent = {"$schema", "title", "description", "definitions"};
        if (silent.count(keyword) != 0)
            return;
        if (keyword == "$ref")
            check(value, root.at(Json::json_pointer(demand.get<std::string>().substr(1))), where);
        else if (keyword == "oneOf")
            checkOneOf(demand, value, where);
        else if (keyword == "type")
            checkType(demand, value, where);
        else if (keyword == "const")
            require(value == demand, where, "expected " + demand.dump() + ", got " + value.dump());
        else if (keyword == "enum")
            require(std::find(demand.begin(), demand.end(), value) != demand.end(), where,
                    value.dump() + " is none of " + demand.dump());
        else if (keyword == "minimum")
            require(!value.is_number() || value >= demand, where, value.dump() + " is below " + demand.dump());
        else if (keyword == "maximum")
            require(!value.is_number() || value <= demand, where, value.dump() + " is above " + demand.dump());
        else if (keyword == "pattern")
            checkPattern(demand, value, where);
        else if (keyword == "items")
            checkItems(demand, value, where);
        else if (keyword == "required")
            checkRequired(demand, value, where);
        else if (keyword == "properties")
            checkProperties(demand, value, where);
        else if (keyword == "additionalProperties")
            checkOthers(demand, value, schema, where);
        else
            complain(where, "the schema has the keyword " + keyword + ", which this check does not know");
    }

    void require(bool holds, const std::string& where, const std::string& what)
    {
        if (!holds)
            complain(where, what);
    }

    void checkType(const Json& demand, const Json& value, const std::string& where)
    {
        bool fits = false;
        for (const Json& type : demand.is_array() ? demand : Json::array({demand}))
            fits = fits || isOfType(value, type);
        require(fits, where, "expected type " + demand.dump() + ", got " + value.dump().substr(0, 100));
    }

    // Long runs of hexadecimal digits exhaust the stack of std::regex, so the pattern for those is known here.
    void checkPattern(const Json& demand, const Json& value, const std::string& where)
    {
        if (!value.is_string())
            return;
        const std::string text = value;
        const bool fits = demand == "^([0-9a-f][0-9a-f])*$"
                              ? text.size() % 2 == 0 && text.find_first_not_of("0123456789abcdef") == std::string::npos
                              : std::regex_search(text, std::regex(demand.get<std::string>()));
        require(fits, where, "does not match " + demand.dump() + ": " + text.substr(0, 100));
    }

    void checkOneOf(const Json& demand, const Json& value, const std::string& where)
    {
        std::size_t fitting = 0;
        std::string why;
        for (const Json& choice : demand)
        {
            Checker attempt(root);
            attempt.check(value, choice, where);
            fitting += attempt.complaints.empty() ? 1 : 0;
            // Of those that do not fit, the one that the document wants to be is worth reading about.
            const bool isMeant = value.is_object() && value.contains("kind") && value["kind"].is_string() &&
                                 choice.value("$ref", "") == "#/definitions/" + value["kind"].get<std::string>();
            if (isMeant && !attempt.complaints.empty())
                why = attempt.complaints.front();
        }
        require(fitting == 1, where, std::to_string(fitting) + " of the choices fit; " + why);
    }

    void checkItems(const Json& demand, const Json& value, const std::string& where)
    {
        if (!value.is_array())
            return;
        for (std::size_t i = 0; i < value.size(); ++i)
            check(value[i], demand, where + "/" + std::to_string(i));
    }

    void checkRequired(const Json& demand, const Json& value, const std::string& where)
    {
        if (!value.is_object())
            return;
        for (const Json& key : demand)
            require(value.contains(key.get<std::string>()), where, "key " + key.dump() + " is missing");
    }

    void checkProperties(const Json& demand, const Json& value, const std::string& where)
    {
        if (!value.is_object())
            return;
        for (const auto& [key, schema] : demand.items())
            if (value.contains(key))
                check(value.at(key), schema, where + "/" + key);
    }

    void checkOthers(const Json& demand, const Json& value, const Json& schema, const std::string& where)
    {
        if (!value.is_object())
            return;
        const Json known = schema.value("properties", Json::object());
        for (const auto& [key, member] : value.items())
        {
            if (known.contains(key))
                continue;
            if (demand == false)
                complain(where, "key " + key + " is not expected");
            else
                check(member, demand, where + "/" + key);
        }
    }

    const Json& root;
};

} // namespace

std::vector<std::string> schemaComplaints(const nlohmann::json& document, const nlohmann::json& schema)
{
    Checker checker(schema);
    checker.check(document, schema, "");
    return checker.complaints;
}

} // namespace tarnctl_test
