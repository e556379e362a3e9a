#include "encode.h"

#include "base/hexadecimal.h"
#include "base/join.h"
#include "base/mac_address.h"
#include "base/quote.h"
#include "base/suggestions.h"
#include "decode.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace tarn::layout
{

namespace
{

[[noreturn]] void refuse(const std::string& subject, const std::string& expected, std::string_view value,
                         std::vector<std::string> suggestions = {})
{
    throw EncodeError(subject + ": expected " + expected + "; got " + base::inQuotes(value), std::move(suggestions));
}

// --- Numbers ----------------------------------------------------------------------------------------------------------------

// What is written, with its sign apart; null for what is no number of 64 bits.
struct Written
{
    bool isNegative = false;
    std::uint64_t magnitude = 0;
};

std::optional<Written> written(std::string_view text)
{
    Written number;
    number.isNegative = !text.empty() && text.front() == '-';
    if (number.isNegative)
        text.remove_prefix(1);
    const bool isHexadecimal = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    if (isHexadecimal)
        text.remove_prefix(2);
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    const auto [rest, error] = std::from_chars(begin, end, number.magnitude, isHexadecimal ? 16 : 10);
    if (text.empty() || rest != end || error != std::errc())
        return std::nullopt;
    return number;
}

std::uint64_t highest(std::uint32_t size, bool isSigned)
{
    return ~std::uint64_t{0} >> (64 - 8 * size + (isSigned ? 1 : 0));
}

std::optional<std::uint64_t> plainNumber(std::string_view text, std::uint32_t size, bool isSigned)
{
    const std::optional<Written> number = written(text);
    if (!number)
        return std::nullopt;
    const std::uint64_t most = highest(size, isSigned);
    if (!number->isNegative)
        return number->magnitude <= most ? std::optional<std::uint64_t>(number->magnitude) : std::nullopt;
    const std::uint64_t mostNegative = isSigned ? most + 1 : 0;
    return number->magnitude <= mostNegative ? std::optional<std::uint64_t>(0 - number->magnitude) : std::nullopt;
}

std::optional<std::uint64_t> flagsNumber(const std::vector<Flag>& flags, std::string_view text, std::uint32_t size)
{
    std::uint64_t bits = 0;
    for (;;)
    {
        const std::size_t plus = std::min(text.find('+'), text.size());
        const std::string_view word = text.substr(0, plus);
        const auto flag = std::find_if(flags.begin(), flags.end(), [&](const Flag& each) { return each.name == word; });
        if (flag != flags.end())
            bits |= std::uint64_t{1} << flag->bit;
        else if (const std::optional<std::uint64_t> number = plainNumber(word, size, false))
            bits |= *number;
        else
            return std::nullopt;
        if (plus == text.size())
            return bits;
        text.remove_prefix(plus + 1);
    }
}

template <typename Named>
std::vector<std::string> namesOf(const std::vector<Named>& all)
{
    std::vector<std::string> names;
    names.reserve(all.size());
    for (const Named& each : all)
        names.push_back(each.name);
    return names;
}

std::string expectedNumber(const Meaning& meaning, std::uint32_t size, bool isSigned)
{
    const std::uint64_t most = highest(size, isSigned);
    std::string text =
        "a number from " + (isSigned ? "-" + std::to_string(most + 1) : std::string("0")) + " to " + std::to_string(most);
    if (meaning.values != nullptr)
        text += ", or one of " + base::join(namesOf(meaning.values->values));
    if (!meaning.flags.empty())
        text += ", or some of " + base::join(namesOf(meaning.flags)) + " with + between them";
    return text;
}

// --- Fields -----------------------------------------------------------------------------------------------------------------

void setText(const std::string& subject, const Field& field, std::string_view value, std::uint8_t* to)
{
    if (value.size() >= field.size)
        throw EncodeError(subject + ": expected a text of at most " + std::to_string(field.size - 1) + " bytes; got " +
                          std::to_string(value.size()));
    if (value.find('\0') != std::string_view::npos)
        refuse(subject, "a text without a NUL", value);
    std::fill_n(to, field.size, std::uint8_t{0});
    std::copy(value.begin(), value.end(), to);
}

void setMacAddress(const std::string& subject, std::string_view value, std::uint8_t* to)
{
    const std::optional<base::MacAddress> address = base::parseMacAddress(value);
    if (!address)
        refuse(subject, "a MAC address such as 02:00:00:00:00:01", value);
    std::copy(address->begin(), address->end(), to);
}

void setBytes(const std::string& subject, const Field& field, std::string_view value, std::uint8_t* to)
{
    const std::optional<base::Bytes> bytes = base::parseHex(value);
    if (!bytes || bytes->size() != field.size)
        refuse(subject, std::to_string(field.size) + " bytes, as " + std::to_string(2 * field.size) + " hexadecimal digits",
               value);
    std::copy(bytes->begin(), bytes->end(), to);
}

// "entries[0].name", the way to name an element.
std::string elementOf(const Field& array, const std::string& index)
{
    const std::string element = array.name + "[" + index + "]";
    return array.hasPlainElements() ? element : element + "." + array.elementFields.front().name;
}

void setField(const std::string& subject, const Field& field, std::string_view value, std::uint8_t* to)
{
    switch (field.type)
    {
    case FieldType::kNumber:
    case FieldType::kSigned:
        return storeNumber(to, field.size,
                           numberOf(subject, field.meaning, field.size, field.type == FieldType::kSigned, value));
    case FieldType::kText:
        return setText(subject, field, value, to);
    case FieldType::kMacAddress:
        return setMacAddress(subject, value, to);
    case FieldType::kBytes:
        return setBytes(subject, field, value, to);
    case FieldType::kArray:
        refuse(subject, "an element, such as " + elementOf(field, "0"), value);
    }
}

// Throws EncodeError if there is none of that name.
const Field& fieldNamed(const std::vector<Field>& fields, std::string_view name, const std::string& owner)
{
    for (const Field& field : fields)
        if (field.name == name)
            return field;
    const std::vector<std::string> names = namesOf(fields);
    throw EncodeError(owner + " has no field " + base::inQuotes(name) + "; it has " + base::join(names),
                      base::suggestions(name, names));
}

// Why the path leads to no field.
[[noreturn]] void refusePath(const Structure& structure, std::string_view path)
{
    const std::size_t bracket = std::min(path.find('['), path.size());
    const Field& field = fieldNamed(structure.fields, path.substr(0, bracket), structure.name);
    const std::size_t point = path.find("].", bracket);
    if (field.type == FieldType::kArray && !field.hasPlainElements() && point != std::string_view::npos)
        fieldNamed(field.elementFields, path.substr(point + 2), field.name);
    if (field.type != FieldType::kArray)
        throw EncodeError(std::string(path) + ": expected " + field.name + " without an index, as it is no array");
    throw EncodeError(std::string(path) + ": expected " + elementOf(field, "INDEX") + ", with an index from 0 to " +
                      std::to_string(field.count - 1));
}

FieldPlace placeOf(const Structure& structure, std::string_view path)
{
    const std::optional<FieldPlace> place = structure.place(path);
    if (!place)
        refusePath(structure, path);
    return *place;
}

} // namespace

std::uint64_t numberOf(const std::string& subject, const Meaning& meaning, std::uint32_t size, bool isSigned,
                       std::string_view value)
{
    if (meaning.values != nullptr)
        if (const NamedValue* const named = meaning.values->find(value))
            return static_cast<std::uint64_t>(named->value);
    if (const std::optional<std::uint64_t> number = plainNumber(value, size, isSigned))
        return *number;
    if (!meaning.flags.empty())
        if (const std::optional<std::uint64_t> bits = flagsNumber(meaning.flags, value, size))
            return *bits;
    std::vector<std::string> names = namesOf(meaning.flags);
    if (meaning.values != nullptr)
        names = namesOf(meaning.values->values);
    refuse(subject, expectedNumber(meaning, size, isSigned), value, base::suggestions(value, names));
}

FieldPlace encode(const Structure& structure, std::string_view path, std::string_view value, base::Bytes& bytes)
{
    const FieldPlace place = placeOf(structure, path);
    setField(std::string(path), *place.field, value, bytes.data() + place.offset);
    return place;
}

FieldPlace encodeBytes(const Structure& structure, std::string_view path, const base::Bytes& value, base::Bytes& bytes)
{
    const FieldPlace place = placeOf(structure, path);
    if (value.size() != place.field->size)
        throw EncodeError(std::string(path) + ": expected " + std::to_string(place.field->size) + " bytes; got " +
                          std::to_string(value.size()));
    std::copy(value.begin(), value.end(), bytes.begin() + place.offset);
    return place;
}

} // namespace tarn::layout
