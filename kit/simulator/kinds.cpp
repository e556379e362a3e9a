#include "kinds.h"

#include "base/hexadecimal.h"
#include "base/join.h"

#include <cmath>
#include <limits>

namespace tarn::simulator
{

namespace
{

constexpr std::int64_t kMostCount = std::int64_t{1} << 53;

// --- Values in JSON: empty if the value is of another kind -------------------------------------------------------------------

template <typename Integer>
std::optional<Integer> integerIn(const base::JsonValue& from)
{
    const std::optional<std::int64_t> integer = from.integerOrNull();
    if (!integer || (std::is_unsigned_v<Integer> && *integer < 0) ||
        (sizeof(Integer) < sizeof(std::int64_t) && *integer > std::int64_t{std::numeric_limits<std::uint32_t>::max()}))
        return std::nullopt;
    if (*integer != static_cast<std::int64_t>(static_cast<Integer>(*integer)))
        return std::nullopt;
    return static_cast<Integer>(*integer);
}

template <typename Value>
std::optional<Value> valueIn(const base::JsonValue& from)
{
    return integerIn<Value>(from);
}

template <>
std::optional<std::string> valueIn(const base::JsonValue& from)
{
    const std::string* const text = from.textOrNull();
    if (text == nullptr)
        return std::nullopt;
    std::optional<std::string> value = base::unescaped(*text);
    if (!value)
        from.fail("a text in which a backslash is written as two, or begins a byte such as \\xe4");
    return value;
}

template <>
std::optional<MacAddress> valueIn(const base::JsonValue& from)
{
    const std::string* const text = from.textOrNull();
    return text == nullptr ? std::nullopt : base::parseMacAddress(*text);
}

template <>
std::optional<MobilityDomain> valueIn(const base::JsonValue& from)
{
    const std::string* const text = from.textOrNull();
    return text == nullptr ? std::nullopt : parseMobilityDomain(*text);
}

template <typename Integer>
Json jsonOf(const Integer& value)
{
    return value;
}

Json jsonOf(const std::string& value)
{
    return base::escaped(value);
}

Json jsonOf(const MacAddress& value)
{
    return base::macText(value);
}

Json jsonOf(const MobilityDomain& value)
{
    return base::hexText(value);
}

// --- The kinds ---------------------------------------------------------------------------------------------------------------

template <typename Value>
class Scalar : public Kind<Value>
{
public:
    using Accepts = std::function<bool(const Value&)>;

    Scalar(Accepts accepts, std::string expected, Json schema)
        : accepts_(std::move(accepts)), expected_(std::move(expected)), schema_(std::move(schema))
    {
    }

    void read(const base::JsonValue& from, Value& to) const override
    {
        std::optional<Value> value = valueIn<Value>(from);
        if (!value || !accepts_(*value))
            from.fail(expected_);
        to = std::move(*value);
    }

    Json write(const Value& from) const override
    {
        return jsonOf(from);
    }

    Json schema() const override
    {
        return schema_;
    }

    bool accepts(const Value& value) const override
    {
        return accepts_(value);
    }

private:
    Accepts accepts_;
    std::string expected_;
    Json schema_;
};

template <typename Integer>
KindOf<Integer> integer(Integer least, Integer most)
{
    return std::make_shared<Scalar<Integer>>(
        [=](Integer value) { return value >= least && value <= most; },
        least == most ? std::to_string(least) : "an integer from " + std::to_string(least) + " to " + std::to_string(most),
        Json{{"type", "integer"}, {"minimum", least}, {"maximum", most}});
}

template <typename Value>
KindOf<Value> choice(std::vector<Value> choices)
{
    std::string expected = "one of " + base::join(choices);
    Json schema = {{"enum", choices}};
    const auto accepts = [choices = std::move(choices)](const Value& value)
    { return std::find(choices.begin(), choices.end(), value) != choices.end(); };
    return std::make_shared<Scalar<Value>>(accepts, std::move(expected), std::move(schema));
}

class SecondsKind : public Kind<Milliseconds>
{
public:
    void read(const base::JsonValue& from, Milliseconds& to) const override
    {
        to = static_cast<Milliseconds>(std::llround(from.real(0, kMost, "seconds") * 1000));
    }

    Json write(const Milliseconds& from) const override
    {
        return from % 1000 == 0 ? Json(from / 1000) : Json(static_cast<double>(from) / 1000);
    }

    Json schema() const override
    {
        return {{"type", "number"}, {"minimum", 0}, {"maximum", kMost}};
    }

    bool accepts(const Milliseconds& value) const override
    {
        return value <= Milliseconds{kMost} * 1000;
    }

private:
    static constexpr int kMost = 86400;
};

class BooleanKind : public Kind<bool>
{
public:
    void read(const base::JsonValue& from, bool& to) const override
    {
        to = from.boolean();
    }

    Json write(const bool& from) const override
    {
        return from;
    }

    Json schema() const override
    {
        return {{"type", "boolean"}};
    }

    bool accepts(const bool& /*value*/) const override
    {
        return true;
    }
};

} // namespace

KindOf<std::uint32_t> number(std::uint32_t least, std::uint32_t most)
{
    return integer(least, most);
}

KindOf<std::uint32_t> flag()
{
    return number(0, 1);
}

KindOf<std::uint32_t> oneOf(std::vector<std::uint32_t> choices)
{
    return choice(std::move(choices));
}

KindOf<std::int32_t> signedNumber(std::int32_t least, std::int32_t most)
{
    return integer(least, most);
}

KindOf<std::uint64_t> counter()
{
    return integer<std::uint64_t>(0, kMostCount);
}

KindOf<Milliseconds> seconds()
{
    return std::make_shared<SecondsKind>();
}

KindOf<std::uint8_t> smallNumber(std::uint8_t most)
{
    return integer<std::uint8_t>(0, most);
}

KindOf<bool> boolean()
{
    return std::make_shared<BooleanKind>();
}

KindOf<MacAddress> address()
{
    return std::make_shared<Scalar<MacAddress>>(
        base::isIndividual, "a MAC address such as 02:00:00:00:01:05, no group address",
        Json{{"type", "string"}, {"pattern", "^[0-9A-Fa-f][02468ACEace](:[0-9A-Fa-f]{2}){5}$"}});
}

KindOf<MacAddress> anyAddress()
{
    return std::make_shared<Scalar<MacAddress>>([](const MacAddress&) { return true; }, "a MAC address",
                                                Json{{"type", "string"}, {"pattern", "^[0-9A-Fa-f]{2}(:[0-9A-Fa-f]{2}){5}$"}});
}

KindOf<MobilityDomain> mobilityDomain()
{
    return std::make_shared<Scalar<MobilityDomain>>([](const MobilityDomain&) { return true; },
                                                    "a mobility domain, four hexadecimal digits",
                                                    Json{{"type", "string"}, {"pattern", "^[0-9A-Fa-f]{4}$"}});
}

KindOf<std::string> text(std::size_t least, std::size_t most)
{
    const std::string range = least == 0 ? "at most " : std::to_string(least) + " to ";
    constexpr std::size_t kEscapeLength = 4; // of one byte
    return std::make_shared<Scalar<std::string>>(
        [=](const std::string& value) { return value.size() >= least && value.size() <= most; },
        "a text of " + range + std::to_string(most) + " characters",
        Json{{"type", "string"}, {"minLength", least}, {"maxLength", most * kEscapeLength}});
}

KindOf<std::string> oneOf(std::vector<std::string> choices)
{
    return choice(std::move(choices));
}

KindOf<std::string> textThat(bool (*accepts)(const std::string&), std::string expected, std::string pattern)
{
    return std::make_shared<Scalar<std::string>>(accepts, std::move(expected),
                                                 Json{{"type", "string"}, {"pattern", std::move(pattern)}});
}

} // namespace tarn::simulator
