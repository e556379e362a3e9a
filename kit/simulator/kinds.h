// The kinds of values that the fields of the gateway's objects have: which values one accepts, and how it is written in a
// scenario, in the state and in the scenario's JSON Schema.
#pragma once

#include "base/json_reader.h"
#include "base/mac_address.h"
#include "base/quote.h"
#include "clock.h"
#include "mobility_domain.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

namespace tarn::simulator
{

using base::MacAddress;
using Json = nlohmann::ordered_json;

template <typename Value>
class Kind
{
public:
    Kind() = default;
    Kind(const Kind&) = delete;
    Kind& operator=(const Kind&) = delete;
    virtual ~Kind() = default;

    // Throws base::JsonError for what it does not accept.
    virtual void read(const base::JsonValue& from, Value& to) const = 0;
    virtual Json write(const Value& from) const = 0;
    virtual Json schema() const = 0;
    virtual bool accepts(const Value& value) const = 0;
};

template <typename Value>
using KindOf = std::shared_ptr<const Kind<Value>>;

// --- Single values -----------------------------------------------------------------------------------------------------------

KindOf<std::uint32_t> number(std::uint32_t least, std::uint32_t most);
KindOf<std::uint32_t> flag(); // 0 or 1
KindOf<std::uint32_t> oneOf(std::vector<std::uint32_t> choices);
KindOf<std::int32_t> signedNumber(std::int32_t least, std::int32_t most);
KindOf<std::uint64_t> counter(); // from 0 to 2^53, which every reader of JSON can keep
KindOf<Milliseconds> seconds();  // in JSON: seconds, which may have a fraction
KindOf<std::uint8_t> smallNumber(std::uint8_t most);
KindOf<bool> boolean();
KindOf<MacAddress> address();    // of one device
KindOf<MacAddress> anyAddress(); // all zeros too
KindOf<MobilityDomain> mobilityDomain();

// Lengths are in bytes. In JSON a byte that is not ASCII may be escaped, \xe4, and a backslash is.
KindOf<std::string> text(std::size_t least, std::size_t most);
KindOf<std::string> oneOf(std::vector<std::string> choices);
// `pattern` is for the schema, and the same in other words.
KindOf<std::string> textThat(bool (*accepts)(const std::string&), std::string expected, std::string pattern);

// An enumeration from 0, by the words of its enumerators.
template <typename Enumeration, std::size_t size>
class WordKind : public Kind<Enumeration>
{
public:
    using Words = const char* const[size];

    explicit WordKind(const Words& words) : words_(words)
    {
    }

    void read(const base::JsonValue& from, Enumeration& to) const override
    {
        to = from.oneOf<Enumeration>(words_);
    }

    Json write(const Enumeration& from) const override
    {
        return words_[static_cast<std::size_t>(from)];
    }

    Json schema() const override
    {
        return {{"enum", std::vector<std::string>(words_, words_ + size)}};
    }

    bool accepts(const Enumeration& value) const override
    {
        return static_cast<std::size_t>(value) < size;
    }

private:
    const Words& words_;
};

template <typename Enumeration, std::size_t size>
KindOf<Enumeration> word(const char* const (&words)[size])
{
    return std::make_shared<WordKind<Enumeration, size>>(words);
}

// --- Several values ----------------------------------------------------------------------------------------------------------

// Not written while there is none.
template <typename Value>
class OptionalKind : public Kind<std::optional<Value>>
{
public:
    explicit OptionalKind(KindOf<Value> kind) : kind_(std::move(kind))
    {
    }

    void read(const base::JsonValue& from, std::optional<Value>& to) const override
    {
        kind_->read(from, to.emplace());
    }

    Json write(const std::optional<Value>& from) const override
    {
        return from ? kind_->write(*from) : Json();
    }

    Json schema() const override
    {
        return kind_->schema();
    }

    bool accepts(const std::optional<Value>& value) const override
    {
        return !value || kind_->accepts(*value);
    }

private:
    KindOf<Value> kind_;
};

template <typename Value>
KindOf<std::optional<Value>> maybe(KindOf<Value> kind)
{
    return std::make_shared<OptionalKind<Value>>(std::move(kind));
}

template <typename Value>
constexpr bool kIsObject = std::is_class_v<Value> && !std::is_same_v<Value, std::string> && !std::is_same_v<Value, MacAddress>;

template <typename List>
class ListKind : public Kind<List>
{
public:
    using Value = typename List::value_type;

    ListKind(KindOf<Value> kind, std::size_t least, std::size_t most, const char* distinct)
        : kind_(std::move(kind)), least_(least), most_(most), distinct_(distinct)
    {
    }

    void read(const base::JsonValue& from, List& to) const override
    {
        List list;
        for (const base::JsonValue& element : elementsOf(from))
        {
            Value value{};
            kind_->read(element, value);
            if (distinct_ != nullptr && has(list, value))
                element.fail(distinct_);
            list.insert(list.end(), std::move(value));
        }
        to = std::move(list);
    }

    Json write(const List& from) const override
    {
        Json array = Json::array();
        for (const Value& value : from)
            array.push_back(kind_->write(value));
        return array;
    }

    Json schema() const override
    {
        Json schema = {{"type", "array"}, {"items", kind_->schema()}};
        if (least_ > 0)
            schema["minItems"] = least_;
        if (most_ != base::JsonValue::kNoLimit)
            schema["maxItems"] = most_;
        if (distinct_ != nullptr)
            schema["uniqueItems"] = true;
        return schema;
    }

    bool accepts(const List& value) const override
    {
        return value.size() >= least_ && value.size() <= most_ &&
               std::all_of(value.begin(), value.end(), [&](const Value& each) { return kind_->accepts(each); });
    }

private:
    std::vector<base::JsonValue> elementsOf(const base::JsonValue& from) const
    {
        if constexpr (kIsObject<Value>)
            from.objects(least_, most_); // says what it expects in these words
        return from.elements(most_);
    }

    static bool has(const List& list, const Value& value)
    {
        if constexpr (kIsObject<Value>)
            return false;
        else
            return std::find(list.begin(), list.end(), value) != list.end();
    }

    KindOf<Value> kind_;
    std::size_t least_;
    std::size_t most_;
    const char* distinct_; // what is expected of one that is not like any before it, or null
};

template <typename List>
KindOf<List> list(KindOf<typename List::value_type> kind, std::size_t most, std::size_t least = 0)
{
    return std::make_shared<ListKind<List>>(std::move(kind), least, most, nullptr);
}

// None of them twice.
template <typename List>
KindOf<List> distinct(KindOf<typename List::value_type> kind, std::size_t most, const char* expected)
{
    return std::make_shared<ListKind<List>>(std::move(kind), 0, most, expected);
}

// As many as the array has.
template <std::size_t size>
class BytesKind : public Kind<std::array<std::uint8_t, size>>
{
public:
    using Bytes = std::array<std::uint8_t, size>;

    explicit BytesKind(std::uint8_t most) : kind_(smallNumber(most))
    {
    }

    void read(const base::JsonValue& from, Bytes& to) const override
    {
        const std::vector<base::JsonValue> elements = from.elements(size);
        if (elements.size() != size)
            from.fail("a list of " + std::to_string(size) + " elements");
        for (std::size_t i = 0; i < size; ++i)
            kind_->read(elements[i], to.at(i));
    }

    Json write(const Bytes& from) const override
    {
        return from;
    }

    Json schema() const override
    {
        return {{"type", "array"}, {"items", kind_->schema()}, {"minItems", size}, {"maxItems", size}};
    }

    bool accepts(const Bytes& value) const override
    {
        return std::all_of(value.begin(), value.end(), [&](std::uint8_t each) { return kind_->accepts(each); });
    }

private:
    KindOf<std::uint8_t> kind_;
};

template <std::size_t size>
KindOf<std::array<std::uint8_t, size>> bytes(std::uint8_t most)
{
    return std::make_shared<BytesKind<size>>(most);
}

// Keys are numbers or texts; in JSON they are texts.
template <typename Key, typename Value>
class MapKind : public Kind<std::map<Key, Value>>
{
public:
    using Map = std::map<Key, Value>;

    MapKind(KindOf<Key> keys, KindOf<Value> values, std::size_t most)
        : keys_(std::move(keys)), values_(std::move(values)), most_(most)
    {
    }

    void read(const base::JsonValue& from, Map& to) const override
    {
        Map map;
        const auto members = from.members();
        if (members.size() > most_)
            from.fail(std::to_string(members.size()) + " members", "at most " + std::to_string(most_));
        for (const auto& [name, value] : members)
        {
            const std::optional<Key> key = keyOf(name);
            if (!key || !keys_->accepts(*key))
                value.fail("the key " + base::inQuotes(name), "a key that is " + schemaText(keys_->schema()));
            values_->read(value, map[*key]);
        }
        to = std::move(map);
    }

    Json write(const Map& from) const override
    {
        Json object = Json::object();
        for (const auto& [key, value] : from)
            object[nameOf(key)] = values_->write(value);
        return object;
    }

    Json schema() const override
    {
        Json schema = {{"type", "object"}, {"additionalProperties", values_->schema()}};
        if (most_ != base::JsonValue::kNoLimit)
            schema["maxProperties"] = most_;
        if constexpr (!std::is_same_v<Key, std::string>)
            schema["propertyNames"] = {{"pattern", "^[0-9]+$"}};
        return schema;
    }

    bool accepts(const Map& value) const override
    {
        const auto isAccepted = [&](const auto& entry)
        { return keys_->accepts(entry.first) && values_->accepts(entry.second); };
        return value.size() <= most_ && std::all_of(value.begin(), value.end(), isAccepted);
    }

private:
    static std::string nameOf(const Key& key)
    {
        if constexpr (std::is_same_v<Key, std::string>)
            return base::escaped(key);
        else
            return std::to_string(key);
    }

    static std::optional<Key> keyOf(const std::string& name)
    {
        if constexpr (std::is_same_v<Key, std::string>)
            return base::unescaped(name);
        else if (name.empty() || name.size() > 9 || name.find_first_not_of("0123456789") != std::string::npos)
            return std::nullopt;
        else
            return static_cast<Key>(std::stoul(name));
    }

    static std::string schemaText(const Json& schema)
    {
        return schema.dump();
    }

    KindOf<Key> keys_;
    KindOf<Value> values_;
    std::size_t most_;
};

template <typename Key, typename Value>
KindOf<std::map<Key, Value>> table(KindOf<Key> keys, KindOf<Value> values, std::size_t most = base::JsonValue::kNoLimit)
{
    return std::make_shared<MapKind<Key, Value>>(std::move(keys), std::move(values), most);
}

} // namespace tarn::simulator
