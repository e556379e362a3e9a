#include "decode.h"

#include "base/format.h"
#include "base/hexadecimal.h"
#include "base/join.h"
#include "base/mac_address.h"
#include "base/quote.h"

#include <algorithm>
#include <cstring>

namespace tarn::layout
{

namespace
{

constexpr char kNone[] = "none";

template <typename Integer>
std::uint64_t loadAs(const std::uint8_t* from)
{
    Integer value;
    std::memcpy(&value, from, sizeof value);
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
}

template <typename Integer>
void storeAs(std::uint8_t* to, std::uint64_t value)
{
    const auto narrow = static_cast<Integer>(value);
    std::memcpy(to, &narrow, sizeof narrow);
}

std::vector<Decoded> decodeFields(const std::vector<Field>& fields, const std::uint8_t* bytes, std::size_t length);

std::uint64_t countOf(const Field& array, const std::vector<Decoded>& earlier)
{
    for (const Decoded& each : earlier)
        if (!array.countField.empty() && each.field->name == array.countField)
            return std::min<std::uint64_t>(array.count, static_cast<std::uint64_t>(each.number));
    return array.count;
}

void decodeArray(Decoded& array, const std::vector<Decoded>& earlier)
{
    const Field& field = *array.field;
    const std::uint64_t count = countOf(field, earlier);
    for (std::size_t i = 0; i < count; ++i)
    {
        const std::uint8_t* const element = array.bytes.data() + i * field.stride;
        const bool isZero = std::all_of(element, element + field.stride, [](std::uint8_t byte) { return byte == 0; });
        if (field.endsWithZero && isZero)
            break;
        array.elements.push_back(decodeFields(field.elementFields, element, field.stride));
    }
}

Decoded decodeField(const Field& field, const std::uint8_t* bytes, const std::vector<Decoded>& earlier)
{
    Decoded decoded;
    decoded.field = &field;
    decoded.bytes.assign(bytes, bytes + field.size);
    switch (field.type)
    {
    case FieldType::kNumber:
    case FieldType::kSigned:
        decoded.number = static_cast<std::int64_t>(loadNumber(bytes, field.size, field.type == FieldType::kSigned));
        decoded.meaning = explain(field.meaning, decoded.number);
        break;
    case FieldType::kText:
        decoded.text.assign(decoded.bytes.begin(), std::find(decoded.bytes.begin(), decoded.bytes.end(), 0));
        break;
    case FieldType::kMacAddress:
        decoded.text = base::hexText(decoded.bytes, ":");
        break;
    case FieldType::kArray:
        decodeArray(decoded, earlier);
        break;
    case FieldType::kBytes:
        break;
    }
    return decoded;
}

std::vector<Decoded> decodeFields(const std::vector<Field>& fields, const std::uint8_t* bytes, std::size_t length)
{
    std::vector<Decoded> result;
    for (const Field& field : fields)
        if (field.offset + field.size <= length)
            result.push_back(decodeField(field, bytes + field.offset, result));
    return result;
}

std::string valueText(const Decoded& decoded)
{
    switch (decoded.field->type)
    {
    case FieldType::kNumber:
    case FieldType::kSigned:
        return withName(decoded.numberText(), decoded.meaning);
    case FieldType::kText:
        return base::inQuotes(decoded.text);
    case FieldType::kMacAddress:
        return decoded.text;
    case FieldType::kBytes:
        return base::hexText(decoded.bytes);
    case FieldType::kArray:
        break;
    }
    if (decoded.elements.empty())
        return kNone;
    return base::join(decoded.elements, ", ", [](const std::vector<Decoded>& element) { return valueText(element.front()); });
}

void addLines(std::vector<FieldLine>& lines, const std::vector<Decoded>& fields, const std::string& prefix)
{
    for (const Decoded& decoded : fields)
    {
        const Field& field = *decoded.field;
        const std::string name = prefix + field.name;
        if (field.type != FieldType::kArray || field.hasPlainElements())
        {
            const bool isArray = field.type == FieldType::kArray;
            const std::string unit = isArray ? field.elementFields.front().meaning.unit : field.meaning.unit;
            lines.push_back({name, valueText(decoded), unit, field.meaning.description});
            continue;
        }
        if (decoded.elements.empty())
            lines.push_back({name, kNone, "", field.meaning.description});
        for (std::size_t i = 0; i < decoded.elements.size(); ++i)
            addLines(lines, decoded.elements[i], name + "[" + std::to_string(i) + "].");
    }
}

} // namespace

std::uint64_t loadNumber(const std::uint8_t* from, std::uint32_t size, bool isSigned)
{
    switch (size)
    {
    case 1:
        return isSigned ? loadAs<std::int8_t>(from) : loadAs<std::uint8_t>(from);
    case 2:
        return isSigned ? loadAs<std::int16_t>(from) : loadAs<std::uint16_t>(from);
    case 4:
        return isSigned ? loadAs<std::int32_t>(from) : loadAs<std::uint32_t>(from);
    default:
        return loadAs<std::uint64_t>(from);
    }
}

void storeNumber(std::uint8_t* to, std::uint32_t size, std::uint64_t value)
{
    switch (size)
    {
    case 1:
        return storeAs<std::uint8_t>(to, value);
    case 2:
        return storeAs<std::uint16_t>(to, value);
    case 4:
        return storeAs<std::uint32_t>(to, value);
    default:
        return storeAs<std::uint64_t>(to, value);
    }
}

NumberMeaning explain(const Meaning& meaning, std::int64_t number)
{
    NumberMeaning result;
    if (meaning.values != nullptr)
        if (const NamedValue* const named = meaning.values->find(number))
            result.valueName = named->name;
    if (meaning.flags.empty())
        return result;
    result.unnamedFlags = static_cast<std::uint64_t>(number);
    for (const Flag& flag : meaning.flags)
    {
        if ((result.unnamedFlags >> flag.bit & 1) == 0)
            continue;
        result.flags.push_back(flag.name);
        result.unnamedFlags &= ~(std::uint64_t{1} << flag.bit);
    }
    return result;
}

std::string Decoded::numberText() const
{
    return field->type == FieldType::kSigned ? std::to_string(number) : std::to_string(static_cast<std::uint64_t>(number));
}

std::vector<Decoded> decode(const Structure& structure, const std::uint8_t* bytes, std::size_t length)
{
    return decodeFields(structure.fields, bytes, length);
}

std::vector<Decoded> decode(const Structure& structure, const base::Bytes& bytes)
{
    return decode(structure, bytes.data(), bytes.size());
}

std::string withName(const std::string& number, const NumberMeaning& meaning)
{
    if (!meaning.valueName.empty())
        return meaning.valueName + " (" + number + ")";
    if (meaning.flags.empty())
        return number;
    std::vector<std::string> names = meaning.flags;
    if (meaning.unnamedFlags != 0)
        names.push_back(base::format("0x%llx", static_cast<unsigned long long>(meaning.unnamedFlags)));
    return base::join(names, "+") + " (" + number + ")";
}

std::vector<FieldLine> linesOf(const std::vector<Decoded>& fields)
{
    std::vector<FieldLine> lines;
    addLines(lines, fields, "");
    return lines;
}

} // namespace tarn::layout
