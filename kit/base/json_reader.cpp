#include "json_reader.h"

#include "format.h"
#include "join.h"
#include "suggestions.h"

#include <algorithm>

#include <nlohmann/json.hpp>

namespace tarn::base
{

namespace
{

using Json = nlohmann::ordered_json;

// Long values are cut: the error has to be readable.
std::string shown(const Json* json)
{
    constexpr std::size_t kLongest = 60;
    if (json == nullptr)
        return "missing";
    const std::string text = json->dump(-1, ' ', true, Json::error_handler_t::replace);
    return text.size() <= kLongest ? text : text.substr(0, kLongest) + "...";
}

// "a list of 1 to 8 objects", as far as there are limits.
std::string limited(const std::string& whole, std::size_t least, std::size_t most, const std::string& parts)
{
    if (most == JsonValue::kNoLimit)
        return least == 0 ? whole : whole + " of at least " + std::to_string(least) + " " + parts;
    const std::string range = least == 0 ? "at most " : std::to_string(least) + " to ";
    return whole + " of " + range + std::to_string(most) + " " + parts;
}

// Leads the pointer on to the value, if this one is it or has it inside.
bool appendWay(Json::json_pointer& pointer, const Json& from, const Json& value)
{
    if (&from == &value)
        return true;
    if (!from.is_structured())
        return false;
    for (const auto& [key, inside] : from.items())
    {
        pointer.push_back(key);
        if (appendWay(pointer, inside, value))
            return true;
        pointer.pop_back();
    }
    return false;
}

bool isLetter(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') || character == '_';
}

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

} // namespace

bool isIdentifier(std::string_view text)
{
    const auto isInside = [](char character) { return isLetter(character) || isDigit(character); };
    return !text.empty() && !isDigit(text.front()) && std::all_of(text.begin(), text.end(), isInside);
}

// --- JsonPlace --------------------------------------------------------------------------------------------------------------

JsonPlace::JsonPlace(const Json& document, const std::string& fileName) : document_(&document), fileName_(&fileName)
{
}

JsonPlace JsonPlace::member(const Json& object, std::string_view key) const
{
    JsonPlace place(*document_, *fileName_);
    place.subject_ = subject_;
    place.container_ = &object;
    place.key_ = key;
    return place;
}

JsonPlace JsonPlace::element(const Json& list, std::size_t index) const
{
    JsonPlace place = member(list, {});
    place.index_ = index;
    return place;
}

JsonPlace JsonPlace::of(const std::string& subject) const
{
    JsonPlace place = *this;
    place.subject_ = &subject;
    return place;
}

void JsonPlace::fail(const std::string& found, const std::string& expected) const
{
    std::string text = *fileName_ + ": ";
    if (subject_ != nullptr)
        text += *subject_ + ": ";
    if (container_ != nullptr)
    {
        Json::json_pointer pointer;
        appendWay(pointer, *document_, *container_);
        pointer.push_back(container_->is_array() ? std::to_string(index_) : std::string(key_));
        text += pointer.to_string() + ": ";
    }
    throw JsonError(text + found + "; expected " + expected);
}

// --- JsonValue --------------------------------------------------------------------------------------------------------------

void JsonValue::fail(const std::string& expected) const
{
    place_.fail(shown(json_), expected);
}

void JsonValue::fail(const std::string& found, const std::string& expected) const
{
    place_.fail(found, expected);
}

bool JsonValue::isNull() const
{
    return json_ != nullptr && json_->is_null();
}

bool JsonValue::boolean() const
{
    if (json_ == nullptr || !json_->is_boolean())
        fail("true or false");
    return json_->get<bool>();
}

std::int64_t JsonValue::integer(std::int64_t least, std::int64_t most) const
{
    const std::optional<std::int64_t> number = integerOrNull();
    if (!number || *number < least || *number > most)
        fail(least == most ? std::to_string(least)
                           : "an integer from " + std::to_string(least) + " to " + std::to_string(most));
    return *number;
}

double JsonValue::real(double least, double most, const std::string& unit) const
{
    if (json_ == nullptr || !json_->is_number() || json_->get<double>() < least || json_->get<double>() > most)
        fail("a number of " + unit + format(" from %g to %g", least, most));
    return json_->get<double>();
}

std::string JsonValue::text(std::size_t most) const
{
    return text(0, most);
}

std::string JsonValue::text(std::size_t least, std::size_t most) const
{
    const std::string* const text = textOrNull();
    if (text == nullptr || text->size() < least || text->size() > most)
        fail(least == 1 && most == kNoLimit ? "a text that is not empty" : limited("a text", least, most, "characters"));
    return *text;
}

std::string JsonValue::identifier() const
{
    const std::string* const text = textOrNull();
    if (text == nullptr || !isIdentifier(*text))
        fail("a name of letters, digits and underscores");
    return *text;
}

std::vector<JsonValue> JsonValue::elements(std::size_t most) const
{
    if (json_ == nullptr || !json_->is_array() || json_->size() > most)
        fail(limited("a list", 0, most, "elements"));
    std::vector<JsonValue> elements;
    elements.reserve(json_->size());
    for (std::size_t i = 0; i < json_->size(); ++i)
        elements.emplace_back(&(*json_)[i], place_.element(*json_, i));
    return elements;
}

std::vector<std::pair<std::string, JsonValue>> JsonValue::members() const
{
    if (json_ == nullptr || !json_->is_object())
        fail("an object");
    std::vector<std::pair<std::string, JsonValue>> members;
    for (const auto& [key, value] : json_->items())
        members.emplace_back(key, JsonValue(&value, place_.member(*json_, key)));
    return members;
}

JsonObject JsonValue::object() const
{
    if (json_ == nullptr || !json_->is_object())
        fail("an object");
    return JsonObject(*json_, place_);
}

std::vector<JsonObject> JsonValue::objects(std::size_t least, std::size_t most) const
{
    if (json_ == nullptr || !json_->is_array() || json_->size() < least || json_->size() > most)
        fail(least == 0 && most == kNoLimit ? "a list of objects" : limited("a list", least, most, "objects"));
    std::vector<JsonObject> objects;
    objects.reserve(json_->size());
    for (std::size_t i = 0; i < json_->size(); ++i)
        objects.push_back(JsonValue(&(*json_)[i], place_.element(*json_, i)).object());
    return objects;
}

const std::string* JsonValue::textOrNull() const
{
    return json_ == nullptr ? nullptr : json_->get_ptr<const std::string*>();
}

std::optional<std::int64_t> JsonValue::integerOrNull() const
{
    constexpr std::uint64_t kHighest = std::numeric_limits<std::int64_t>::max();
    if (json_ == nullptr || !json_->is_number_integer())
        return std::nullopt;
    // What is above the signed range would come back negative.
    if (json_->is_number_unsigned() && json_->get<std::uint64_t>() > kHighest)
        return std::nullopt;
    return json_->get<std::int64_t>();
}

std::size_t JsonValue::indexIn(const std::vector<std::string_view>& words) const
{
    const std::string* const text = textOrNull();
    const auto word = text == nullptr ? words.end() : std::find(words.begin(), words.end(), *text);
    if (word == words.end())
        fail("one of " + join(words));
    return static_cast<std::size_t>(word - words.begin());
}

// --- JsonObject -------------------------------------------------------------------------------------------------------------

JsonObject::JsonObject(const Json& json, const JsonPlace& place) : json_(&json), place_(place)
{
    constexpr std::size_t kUsualKeys = 12;
    known_.reserve(kUsualKeys);
}

JsonValue JsonObject::operator[](std::string_view key)
{
    ignore(key);
    const auto found = json_->find(key);
    return JsonValue(found == json_->end() ? nullptr : &*found, place_.member(*json_, key));
}

void JsonObject::ignore(std::string_view key)
{
    if (std::find(known_.begin(), known_.end(), key) == known_.end())
        known_.push_back(key);
}

void JsonObject::setSubject(const JsonValue& name)
{
    if (const std::string* const subject = name.textOrNull())
        place_ = place_.of(*subject);
}

void JsonObject::fail(const std::string& expected) const
{
    place_.fail(shown(json_), expected);
}

void JsonObject::finish() const
{
    for (const auto& [key, value] : json_->items())
    {
        if (std::find(known_.begin(), known_.end(), key) != known_.end())
            continue;
        const std::vector<std::string> closest = suggestions(key, {known_.begin(), known_.end()}, 1);
        const std::string question = closest.empty() ? "" : " (did you mean " + closest.front() + "?)";
        place_.member(*json_, key).fail("unknown key" + question, "one of " + join(known_));
    }
}

} // namespace tarn::base
