#include "contract.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <set>
#include <utility>

namespace tarn::contract
{

namespace
{

using Json = nlohmann::json;

// JSON lets a key stand twice in one object and the parser would keep the last one without a word.
class DuplicateKeys
{
public:
    bool operator()(int, Json::parse_event_t event, Json& parsed)
    {
        if (event == Json::parse_event_t::object_start)
            keys.emplace_back();
        else if (event == Json::parse_event_t::object_end)
            keys.pop_back();
        else if (event == Json::parse_event_t::key && !keys.back().insert(parsed.get<std::string>()).second)
            throw ContractError("the key \"" + parsed.get<std::string>() + "\" stands twice in one object");
        return true;
    }

private:
    std::vector<std::set<std::string>> keys;
};

// One value of the file together with where it stands, for the text of errors.
class Node
{
public:
    Node(const Json& json, std::string place) : value(json), where(std::move(place))
    {
    }

    [[noreturn]] void fail(const std::string& expected) const
    {
        throw ContractError(where + ": expected " + expected);
    }

    void onlyKeys(std::initializer_list<const char*> known) const
    {
        if (!value.is_object())
            fail("an object");
        for (const auto& item : value.items())
            if (std::find(known.begin(), known.end(), item.key()) == known.end())
                throw ContractError(where + ": unknown key \"" + item.key() + "\", expected one of " + listed(known));
    }

    bool has(const char* key) const
    {
        return value.contains(key);
    }

    Node member(const char* key) const
    {
        if (!value.is_object())
            fail("an object");
        if (!value.contains(key))
            fail(std::string("the key \"") + key + "\"");
        return Node(value.at(key), where + ": " + key);
    }

    std::vector<Node> items() const
    {
        if (!value.is_array())
            fail("an array");
        std::vector<Node> result;
        for (std::size_t i = 0; i < value.size(); ++i)
            result.emplace_back(value[i], where + "[" + std::to_string(i) + "]");
        return result;
    }

    std::vector<std::pair<std::string, Node>> members() const
    {
        if (!value.is_object())
            fail("an object");
        std::vector<std::pair<std::string, Node>> result;
        for (const auto& item : value.items())
            result.emplace_back(item.key(), Node(item.value(), where + ": " + item.key()));
        return result;
    }

    // The same value, told by a better name than its index.
    Node called(const std::string& place) const
    {
        return Node(value, place);
    }

    std::string text() const
    {
        if (!value.is_string())
            fail("a text");
        return value.get<std::string>();
    }

    std::string someText() const
    {
        if (!value.is_string() || value.get_ref<const std::string&>().empty())
            fail("a text that is not empty");
        return value.get<std::string>();
    }

    // A name as C has them.
    std::string identifier() const
    {
        const auto isLetter = [](char each)
        { return (each >= 'a' && each <= 'z') || (each >= 'A' && each <= 'Z') || each == '_'; };
        const auto isDigit = [](char each) { return each >= '0' && each <= '9'; };
        std::string name = someText();
        if (!isLetter(name[0]) ||
            !std::all_of(name.begin(), name.end(), [&](char each) { return isLetter(each) || isDigit(each); }))
            fail("a name of letters, digits and underscores");
        return name;
    }

    std::int64_t integer(std::int64_t least, std::int64_t most) const
    {
        const std::string expected = "an integer from " + std::to_string(least) + " to " + std::to_string(most);
        if (!value.is_number_integer())
            fail(expected);
        // A number above the signed range would come back negative.
        if (value.is_number_unsigned() && value.get<std::uint64_t>() > static_cast<std::uint64_t>(most))
            fail(expected);
        const auto number = value.get<std::int64_t>();
        if (number < least || number > most)
            fail(expected);
        return number;
    }

    std::uint32_t number(std::uint32_t least = 0, std::uint32_t most = std::numeric_limits<std::uint32_t>::max()) const
    {
        return static_cast<std::uint32_t>(integer(least, most));
    }

    bool alwaysTrue() const
    {
        if (!value.is_boolean() || !value.get<bool>())
            fail("true, or no such key");
        return true;
    }

    // The value of an enumeration whose words `toString` gives, the last of them being `last`.
    template <typename Enumeration>
    Enumeration oneOf(Enumeration last) const
    {
        const std::string word = text();
        std::string words;
        for (int i = 0; i <= static_cast<int>(last); ++i)
        {
            const auto candidate = static_cast<Enumeration>(i);
            if (word == toString(candidate))
                return candidate;
            words += std::string(words.empty() ? "" : ", ") + toString(candidate);
        }
        fail("one of " + words + ", not \"" + word + "\"");
    }

private:
    static std::string listed(std::initializer_list<const char*> known)
    {
        std::string text;
        for (const char* key : known)
            text += std::string(text.empty() ? "" : ", ") + key;
        return text;
    }

    const Json& value;
    std::string where;
};

Argument readArgument(const Node& node)
{
    node.onlyKeys({"name", "type", "record", "direction", "encoding", "offset", "size", "size_argument", "signed", "optional"});

    Argument argument;
    argument.name = node.member("name").identifier();
    argument.type = node.member("type").oneOf(Type::kRecord);
    argument.direction = node.member("direction").oneOf(Direction::kOut);
    argument.encoding = node.member("encoding").oneOf(Encoding::kNothing);
    argument.isSigned = node.has("signed") && node.member("signed").alwaysTrue();
    argument.optional = node.has("optional") && node.member("optional").alwaysTrue();

    if (argument.type == Type::kRecord)
        argument.record = node.member("record").identifier();
    else if (node.has("record"))
        node.member("record").fail("no such key, as the type is no record");

    if (argument.encoding == Encoding::kSize || argument.encoding == Encoding::kNothing)
    {
        for (const char* key : {"offset", "size", "size_argument"})
            if (node.has(key))
                node.member(key).fail("no such key, as nothing of this argument stands in the message");
        return argument;
    }

    argument.offset = node.member("offset").number();
    const std::uint32_t implied = impliedSize(argument.encoding);
    if (node.has("size") && node.has("size_argument"))
        node.member("size_argument").fail("no such key, as \"size\" says it");
    if (node.has("size_argument"))
        argument.sizeArgument = node.member("size_argument").identifier();
    else if (implied == 0 || node.has("size"))
        argument.size = node.member("size").number(1);
    else
        argument.size = implied;
    return argument;
}

Check readCheck(const Node& node)
{
    node.onlyKeys({"argument", "when", "message"});
    return {node.member("argument").identifier(), node.member("when").oneOf(When::kZero), node.member("message").someText()};
}

Command readCommand(const Node& unnamed, const std::string& fileName)
{
    Command command;
    command.function = unnamed.member("function").identifier();
    const Node node = unnamed.called(fileName + ": " + command.function);
    node.onlyKeys({"command", "function", "group", "description", "wait", "length", "status", "arguments", "checks", "note"});
    command.command = node.member("command").number(0, 127);
    command.group = node.member("group").someText();
    command.description = node.member("description").someText();
    command.note = node.has("note") ? node.member("note").someText() : std::string();
    command.wait = node.member("wait").number(1);
    command.length = node.member("length").number(8);
    command.status = node.member("status").number(4);
    for (const Node& argument : node.member("arguments").items())
        command.arguments.push_back(readArgument(argument));
    for (const Node& check : node.member("checks").items())
        command.checks.push_back(readCheck(check));
    return command;
}

Result readResult(const Node& node)
{
    node.onlyKeys({"type", "rejected", "failed", "timed_out"});

    const std::string type = node.member("type").text();
    if (type != "i32" && type != "u32")
        node.member("type").fail("one of u32, i32, not \"" + type + "\"");
    Result result;
    result.isSigned = type == "i32";
    const std::int64_t least = result.isSigned ? std::numeric_limits<std::int32_t>::min() : 0;
    const std::int64_t most =
        result.isSigned ? std::numeric_limits<std::int32_t>::max() : std::numeric_limits<std::uint32_t>::max();
    result.rejected = node.member("rejected").integer(least, most);
    result.failed = node.member("failed").integer(least, most);
    result.timedOut = node.member("timed_out").integer(least, most);
    return result;
}

Event readEvent(const Node& node)
{
    node.onlyKeys({"event", "name"});
    return {node.member("event").number(1), node.member("name").identifier()};
}

Contract readContract(const Json& json, const std::string& fileName)
{
    const Node node(json, fileName);
    node.onlyKeys({"$schema", "contract", "service", "trace_tag", "result", "invalid_caller", "records", "events", "commands"});
    node.member("contract").integer(1, 1);

    Contract contract;
    contract.service = node.member("service").someText();
    contract.traceTag = node.member("trace_tag").someText();
    contract.result = readResult(node.member("result"));
    contract.invalidCaller = node.member("invalid_caller").someText();
    if (node.has("records"))
        for (const auto& [name, size] : node.member("records").members())
            contract.records.push_back({name, size.number(1)});
    if (node.has("events"))
        for (const Node& event : node.member("events").items())
            contract.events.push_back(readEvent(event));
    for (const Node& command : node.member("commands").items())
        contract.commands.push_back(readCommand(command, fileName));
    return contract;
}

} // namespace

Contract parse(std::string_view text, const std::string& fileName)
{
    Json json;
    try
    {
        json = Json::parse(text.begin(), text.end(), DuplicateKeys());
    }
    catch (const Json::exception& error)
    {
        throw ContractError(fileName + ": not JSON: " + error.what());
    }
    catch (const ContractError& error)
    {
        throw ContractError(fileName + ": " + error.what());
    }

    Contract contract = readContract(json, fileName);
    std::string complaints;
    for (const std::string& problem : problems(contract))
        complaints.append(complaints.empty() ? "" : "\n").append(fileName).append(": ").append(problem);
    if (!complaints.empty())
        throw ContractError(complaints);
    return contract;
}

} // namespace tarn::contract
