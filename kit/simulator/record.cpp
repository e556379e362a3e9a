#include "record.h"

#include "layout/decode.h"
#include "reply_status.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace tarn::simulator
{

namespace
{

using layout::FieldType;

bool isOf(const layout::Field& field, FieldType type)
{
    return field.type == type || (type == FieldType::kNumber && field.isNumber());
}

std::string elementName(std::string_view array, std::size_t index)
{
    return std::string(array) + "[" + std::to_string(index) + "]";
}

} // namespace

Record::Record(const RecordLayout& layout) : layout_(layout), bytes_(layout.size)
{
}

Record::Record(const RecordLayout& layout, base::Bytes bytes) : layout_(layout), bytes_(std::move(bytes))
{
    if (bytes_.size() != layout.size)
        throw std::logic_error(layout.own->name + " is not of " + std::to_string(bytes_.size()) + " bytes");
}

bool Record::has(std::string_view name) const
{
    const layout::Field* const field = layout_.own->field(name);
    return field != nullptr && place(name, field->type).used != nullptr;
}

Record::Place Record::place(std::string_view name, FieldType type) const
{
    const std::optional<layout::FieldPlace> own = layout_.own->place(name);
    if (!own || !isOf(*own->field, type))
        throw std::logic_error(layout_.own->name + " has no such field: " + std::string(name));
    if (layout_.used == layout_.own)
        return {own->field, own->field, own->offset};
    const std::optional<layout::FieldPlace> used = layout_.used == nullptr ? std::nullopt : layout_.used->place(name);
    if (!used || !isAlike(*own->field, *used->field))
        return {own->field, nullptr, 0};
    return {own->field, used->field, used->offset};
}

std::uint64_t Record::load(const Place& place) const
{
    if (place.used == nullptr)
        return 0;
    const bool isSigned = place.used->type == FieldType::kSigned;
    const std::uint64_t value = layout::loadNumber(bytes_.data() + place.offset, place.used->size, isSigned);
    return fromWire(place.own->meaning, place.used->meaning, value);
}

void Record::store(const Place& place, std::uint64_t value)
{
    if (place.used != nullptr)
        layout::storeNumber(bytes_.data() + place.offset, place.used->size,
                            toWire(place.own->meaning, place.used->meaning, value));
}

std::uint32_t Record::number(std::string_view name) const
{
    return static_cast<std::uint32_t>(load(place(name, FieldType::kNumber)));
}

std::int32_t Record::signedNumber(std::string_view name) const
{
    return static_cast<std::int32_t>(load(place(name, FieldType::kSigned)));
}

std::string Record::text(std::string_view name) const
{
    const Place field = place(name, FieldType::kText);
    if (field.used == nullptr)
        return "";
    const char* from = reinterpret_cast<const char*>(bytes_.data()) + field.offset;
    return {from, strnlen(from, field.used->size)};
}

base::Bytes Record::block(std::string_view name) const
{
    const Place field = place(name, FieldType::kBytes);
    if (field.used == nullptr)
        return base::Bytes(field.own->size);
    const auto from = bytes_.begin() + static_cast<std::ptrdiff_t>(field.offset);
    return {from, from + static_cast<std::ptrdiff_t>(field.used->size)};
}

MacAddress Record::address(std::string_view name) const
{
    const Place field = place(name, FieldType::kMacAddress);
    MacAddress result{};
    if (field.used != nullptr)
        std::memcpy(result.data(), bytes_.data() + field.offset, result.size());
    return result;
}

void Record::setNumber(std::string_view name, std::uint64_t value)
{
    store(place(name, FieldType::kNumber), value);
}

void Record::setSigned(std::string_view name, std::int32_t value)
{
    store(place(name, FieldType::kSigned), static_cast<std::uint64_t>(std::int64_t{value}));
}

void Record::setText(std::string_view name, std::string_view value)
{
    const Place field = place(name, FieldType::kText);
    if (field.used == nullptr)
        return;
    std::uint8_t* to = bytes_.data() + field.offset;
    std::memset(to, 0, field.used->size);
    std::memcpy(to, value.data(), std::min<std::size_t>(value.size(), field.used->size - 1));
}

void Record::setBlock(std::string_view name, const std::uint8_t* data, std::size_t length)
{
    const Place field = place(name, FieldType::kBytes);
    const std::size_t room = field.used == nullptr ? 0 : field.used->size;
    if (const std::size_t count = std::min(length, room); count > 0)
        std::memcpy(bytes_.data() + field.offset, data, count);
}

void Record::setAddress(std::string_view name, const MacAddress& address)
{
    const Place field = place(name, FieldType::kMacAddress);
    if (field.used != nullptr)
        std::memcpy(bytes_.data() + field.offset, address.data(), address.size());
}

// As many elements as the model's own array and the one in use have both.
std::uint32_t Record::roomOf(std::string_view array) const
{
    const Place field = place(array, FieldType::kArray);
    return field.used == nullptr ? 0 : std::min(field.own->count, field.used->count);
}

void Record::setNumbers(std::string_view name, const std::vector<std::uint32_t>& numbers)
{
    for (std::size_t i = 0; i < std::min<std::size_t>(numbers.size(), roomOf(name)); ++i)
        setNumber(elementName(name, i), numbers[i]);
}

void Record::setAddresses(std::string_view name, const std::vector<MacAddress>& addresses)
{
    for (std::size_t i = 0; i < std::min<std::size_t>(addresses.size(), roomOf(name)); ++i)
        setAddress(elementName(name, i), addresses[i]);
}

} // namespace tarn::simulator
