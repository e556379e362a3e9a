// A JSON document, read value by value.
//
// Whatever is not as expected is a JsonError that says in which file and where in it (as a JSON pointer), what was found and
// what was expected: "lamps.json: /rooms/0/level: 12; expected an integer from 0 to 10".
//
//     const base::JsonDocument document = base::parseJson(text, "lamps.json");
//     base::JsonObject lamp = document.root().object();
//     const std::string name = lamp["name"].text(1, 15);      // missing is an error
//     lamp.read("level", level, 0u, 10u);                     // missing leaves `level` as it is
//     if (const base::JsonValue rooms = lamp["rooms"])        // missing is false
//         for (base::JsonObject& room : rooms.objects(0, 8))
//             ...
//     lamp.finish();                                          // any other key is an error
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace tarn::base
{

class JsonError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

class JsonObject;

// Whether it is a name as in C: letters, digits and underscores, no digit in front.
bool isIdentifier(std::string_view text);

// Where a value is in its document, for the text of errors. The way to it is looked for when there is an error, and not before:
// almost no value has one.
class JsonPlace
{
public:
    // Of the whole document. Both arguments must outlive the place.
    JsonPlace(const nlohmann::ordered_json& document, const std::string& fileName);

    // Of what an object or a list of the document has there, or lacks. The key must outlive the place.
    JsonPlace member(const nlohmann::ordered_json& object, std::string_view key) const;
    JsonPlace element(const nlohmann::ordered_json& list, std::size_t index) const;

    // The same place with a name for what it belongs to, which must outlive it: "lamps.json: kitchen: /rooms/0".
    JsonPlace of(const std::string& subject) const;

    [[noreturn]] void fail(const std::string& found, const std::string& expected) const;

private:
    const nlohmann::ordered_json* document_;
    const std::string* fileName_;
    const std::string* subject_ = nullptr;              // none
    const nlohmann::ordered_json* container_ = nullptr; // what it is in; null for the whole document
    std::string_view key_;                              // in that, if it is an object,
    std::size_t index_ = 0;                             // or else this
};

// A value of a document, which it must not outlive; or the place of one that is missing.
class JsonValue
{
public:
    static constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();

    JsonValue(const nlohmann::ordered_json* json, const JsonPlace& place) : json_(json), place_(place)
    {
    }

    // Whether it is there.
    explicit operator bool() const
    {
        return json_ != nullptr;
    }

    [[noreturn]] void fail(const std::string& expected) const;
    // The same with words for what was found, where its value does not show what is wrong.
    [[noreturn]] void fail(const std::string& found, const std::string& expected) const;

    // Whether it is there and null.
    bool isNull() const;

    // All of these fail if the value is missing, of another kind or out of range. Lengths are in bytes.
    bool boolean() const;
    std::int64_t integer(std::int64_t least, std::int64_t most) const;
    double real(double least, double most, const std::string& unit) const;
    std::string text(std::size_t most = kNoLimit) const;
    std::string text(std::size_t least, std::size_t most) const;
    std::string identifier() const;
    std::vector<JsonValue> elements(std::size_t most = kNoLimit) const;
    std::vector<std::pair<std::string, JsonValue>> members() const;
    JsonObject object() const;
    std::vector<JsonObject> objects(std::size_t least = 0, std::size_t most = kNoLimit) const;

    // An integer that may have every value of its type, or those of a narrower range.
    template <typename Integer>
    Integer number(Integer least = std::numeric_limits<Integer>::min(),
                   Integer most = std::numeric_limits<Integer>::max()) const
    {
        static_assert(sizeof(Integer) < sizeof(std::int64_t));
        return static_cast<Integer>(integer(least, most));
    }

    // The enumerator whose word is the text. The words are in the order of the enumerators, from 0.
    template <typename Enumeration, std::size_t count>
    Enumeration oneOf(const char* const (&words)[count]) const
    {
        return static_cast<Enumeration>(indexIn({words, words + count}));
    }

    // What `parse` makes of the text; it returns a std::optional, empty for one that it refuses.
    template <typename Parse>
    auto parsed(Parse parse, const std::string& expected) const
    {
        const std::string* const text = textOrNull();
        auto result = text == nullptr ? std::nullopt : parse(*text);
        if (!result)
            fail(expected);
        return *result;
    }

    // Null if it is missing or of another kind.
    const std::string* textOrNull() const;
    std::optional<std::int64_t> integerOrNull() const;

private:
    std::size_t indexIn(const std::vector<std::string_view>& words) const;

    const nlohmann::ordered_json* json_;
    JsonPlace place_;
};

// An object, read key by key. It remembers the keys asked for, which must outlive it.
class JsonObject
{
public:
    JsonObject(const nlohmann::ordered_json& json, const JsonPlace& place);

    JsonValue operator[](std::string_view key);

    // Leaves the target as it is if the key is missing. The limits are those of JsonValue's function for its type.
    template <typename Target, typename... Limits>
    void read(std::string_view key, Target& target, const Limits&... limits)
    {
        const JsonValue value = (*this)[key];
        if (!value)
            return;
        if constexpr (std::is_same_v<Target, bool>)
            target = value.boolean(limits...);
        else if constexpr (std::is_integral_v<Target>)
            target = value.number<Target>(limits...);
        else
            target = value.text(limits...);
    }

    // A key for people, such as a comment: it may be there, and hold anything.
    void ignore(std::string_view key);

    // The value, if it is a text, names what the object describes, for errors in what is read from it later.
    void setSubject(const JsonValue& name);

    [[noreturn]] void fail(const std::string& expected) const;

    // To be called last: fails if there is a key that was not asked for.
    void finish() const;

private:
    const nlohmann::ordered_json* json_;
    JsonPlace place_;
    std::vector<std::string_view> known_;
};

class JsonDocument
{
public:
    JsonDocument(nlohmann::ordered_json json, std::string fileName);
    ~JsonDocument();
    JsonDocument(JsonDocument&&) noexcept;
    JsonDocument& operator=(JsonDocument&&) noexcept;

    JsonValue root() const;

private:
    struct Contents; // which values and places refer to, wherever the document is moved

    std::unique_ptr<const Contents> contents_;
};

// Fails for a text that is not JSON, has a key twice in one object or is nested absurdly deep. The name is only for the text of
// errors.
JsonDocument parseJson(std::string_view text, const std::string& fileName);

// The text of the file at that path. Fails if it cannot be read. `expected` says what it is to be, such as "a list of lamps".
std::string readText(const std::string& path, const std::string& expected);

// Both together.
JsonDocument readJson(const std::string& path, const std::string& expected);

} // namespace tarn::base
