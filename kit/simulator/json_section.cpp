#include "json_section.h"

#include "base/join.h"
#include "reply_status.h"
#include "scenario.h"

#include <algorithm>
#include <set>

namespace tarn::simulator
{

namespace
{

// Long values are cut: the error has to be readable.
std::string shown(const Json& value)
{
    constexpr std::size_t kLongest = 60;
    const std::string text = value.dump(-1, ' ', true, Json::error_handler_t::replace);
    return text.size() <= kLongest ? text : text.substr(0, kLongest) + "...";
}

} // namespace

Json parseJson(std::string_view text, const std::string& fileName)
{
    std::vector<std::set<std::string>> keys;
    const auto watch = [&](int, Json::parse_event_t event, Json& parsed)
    {
        if (event == Json::parse_event_t::object_start)
            keys.emplace_back();
        else if (event == Json::parse_event_t::object_end)
            keys.pop_back();
        else if (event == Json::parse_event_t::key && !keys.back().insert(parsed.get<std::string>()).second)
            throw ScenarioError(fileName + ": the key " + shown(parsed) + " stands twice in one object; expected it once");
        return true;
    };
    try
    {
        return Json::parse(text, watch);
    }
    catch (const Json::parse_error& error)
    {
        throw ScenarioError(fileName + ": byte " + std::to_string(error.byte) + ": expected JSON text; " + error.what());
    }
}

JsonSection::JsonSection(const Json& value, std::string place) : object_(&value), place_(std::move(place))
{
    if (!value.is_object())
        throw ScenarioError(place_ + ": " + shown(value) + "; expected an object");
}

bool JsonSection::has(const std::string& key) const
{
    return object_->contains(key);
}

const Json* JsonSection::take(const std::string& key)
{
    known_.push_back(key);
    const auto found = object_->find(key);
    return found == object_->end() ? nullptr : &*found;
}

void JsonSection::reject(const std::string& key, const std::string& expected) const
{
    const auto found = object_->find(key);
    throw ScenarioError(place_ + "/" + key + ": " + (found == object_->end() ? "missing" : shown(*found)) + "; expected " +
                        expected);
}

void JsonSection::require(const std::string& key) const
{
    if (!has(key))
        reject(key, "it to be there");
}

void JsonSection::read(const std::string& key, std::uint32_t& target, std::uint32_t minimum, std::uint32_t maximum)
{
    const Json* value = take(key);
    if (value == nullptr)
        return;
    if (!value->is_number_unsigned() || value->get<std::uint64_t>() < minimum || value->get<std::uint64_t>() > maximum)
        reject(key, "a number from " + std::to_string(minimum) + " to " + std::to_string(maximum));
    target = value->get<std::uint32_t>();
}

void JsonSection::readSigned(const std::string& key, std::int32_t& target, std::int32_t minimum, std::int32_t maximum)
{
    const Json* value = take(key);
    if (value == nullptr)
        return;
    if (!value->is_number_integer() || value->get<std::int64_t>() < minimum || value->get<std::int64_t>() > maximum)
        reject(key, "a number from " + std::to_string(minimum) + " to " + std::to_string(maximum));
    target = value->get<std::int32_t>();
}

void JsonSection::read(const std::string& key, bool& target)
{
    const Json* value = take(key);
    if (value == nullptr)
        return;
    if (!value->is_boolean())
        reject(key, "true or false");
    target = value->get<bool>();
}

void JsonSection::read(const std::string& key, std::string& target, std::size_t longest)
{
    const Json* value = take(key);
    if (value == nullptr)
        return;
    if (!value->is_string() || value->get_ref<const std::string&>().size() > longest)
        reject(key, "a text of at most " + std::to_string(longest) + " characters");
    target = value->get<std::string>();
}

void JsonSection::read(const std::string& key, MacAddress& target)
{
    const Json* value = take(key);
    if (value == nullptr)
        return;
    const auto address = value->is_string() ? base::parseMacAddress(value->get_ref<const std::string&>()) : std::nullopt;
    if (!address || !base::isIndividual(*address))
        reject(key, "a MAC address such as 02:00:00:00:01:05, no group address");
    target = *address;
}

void JsonSection::read(const std::string& key, std::vector<MacAddress>& target, std::size_t most)
{
    const Json* value = take(key);
    if (value == nullptr)
        return;
    const std::string expected =
        "a list of at most " + std::to_string(most) + " MAC addresses such as 02:00:00:00:01:05, each once";
    if (!value->is_array() || value->size() > most)
        reject(key, expected);
    for (const Json& each : *value)
    {
        const auto address = each.is_string() ? base::parseMacAddress(each.get_ref<const std::string&>()) : std::nullopt;
        if (!address || !base::isIndividual(*address) || std::find(target.begin(), target.end(), *address) != target.end())
            reject(key, expected);
        target.push_back(*address);
    }
}

void JsonSection::read(const std::string& key, std::vector<std::string>& target, std::size_t longest)
{
    const Json* value = take(key);
    if (value == nullptr)
        return;
    const std::string expected = "a list of texts of at most " + std::to_string(longest) + " characters";
    if (!value->is_array())
        reject(key, expected);
    for (const Json& each : *value)
    {
        if (!each.is_string() || each.get_ref<const std::string&>().size() > longest)
            reject(key, expected);
        target.push_back(each.get<std::string>());
    }
}

void JsonSection::readSeconds(const std::string& key, std::uint64_t& milliseconds)
{
    constexpr double kMost = 86400;
    const Json* value = take(key);
    if (value == nullptr)
        return;
    if (!value->is_number() || value->get<double>() < 0 || value->get<double>() > kMost)
        reject(key, "a number of seconds from 0 to 86400");
    milliseconds = static_cast<std::uint64_t>(value->get<double>() * 1000);
}

std::vector<JsonSection> JsonSection::sections(const std::string& key)
{
    std::vector<JsonSection> result;
    const Json* value = take(key);
    if (value == nullptr)
        return result;
    if (!value->is_array())
        reject(key, "a list of objects");
    for (std::size_t i = 0; i < value->size(); ++i)
        result.emplace_back((*value)[i], place_ + "/" + key + "/" + std::to_string(i));
    return result;
}

std::optional<JsonSection> JsonSection::section(const std::string& key)
{
    const Json* value = take(key);
    return value == nullptr ? std::nullopt : std::optional<JsonSection>(JsonSection(*value, place_ + "/" + key));
}

void JsonSection::readTexts(const std::string& key, std::map<std::string, std::string>& target, std::size_t longest)
{
    const Json* value = take(key);
    if (value == nullptr)
        return;
    JsonSection texts(*value, place_ + "/" + key);
    for (const auto& each : value->items())
        texts.read(each.key(), target[each.key()], longest);
}

void JsonSection::readSettings(Settings& settings)
{
    for (const auto& each : object_->items())
    {
        if (std::find(known_.begin(), known_.end(), each.key()) != known_.end())
            continue;
        const Property* property = settings.property(each.key());
        if (property == nullptr)
            rejectUnknown(each.key(), &settings);
        Value value;
        if (property->isText() && each.value().is_string())
            value = each.value().get<std::string>();
        else if (!property->isText() && each.value().is_number_unsigned() && each.value().get<std::uint64_t>() <= UINT32_MAX)
            value = each.value().get<std::uint32_t>();
        else
            reject(each.key(), property->expected);
        if (!property->accepts(value))
            reject(each.key(), property->expected);
        settings.set(each.key(), value);
    }
}

void JsonSection::finish() const
{
    for (const auto& each : object_->items())
        if (std::find(known_.begin(), known_.end(), each.key()) == known_.end())
            rejectUnknown(each.key(), nullptr);
}

void JsonSection::rejectUnknown(const std::string& key, const Settings* settings) const
{
    std::vector<std::string> names = known_;
    if (settings != nullptr)
        for (const Property& property : settings->properties())
            names.push_back(property.name);
    throw ScenarioError(place_ + "/" + key + ": unknown key; expected one of " + base::join(names));
}

} // namespace tarn::simulator
