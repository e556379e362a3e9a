#include "layout.h"

#include "base/json_reader.h"
#include "embedded_files.h"
#include "reply_status.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace tarn::simulator
{

namespace
{

using base::JsonObject;

constexpr std::uint32_t kLargest = 65536; // bytes of a record, and of a field

constexpr const char* kFieldTypes[] = {"number", "signed", "text", "bytes", "address"};

bool fits(const Field& field)
{
    switch (field.type)
    {
    case FieldType::kNumber:
    case FieldType::kSigned:
        return (field.size == 1 || field.size == 2 || field.size == 4) && field.offset % field.size == 0;
    case FieldType::kAddress:
        return field.size == std::tuple_size<MacAddress>::value;
    case FieldType::kText:
    case FieldType::kBytes:
        return field.size > 0;
    }
    return false;
}

Field readField(JsonObject& object)
{
    Field field;
    field.name = object["name"].text(1, 64);
    field.type = object["type"].oneOf<FieldType>(kFieldTypes);
    field.offset = object["offset"].number(0u, kLargest);
    field.size = object["size"].number(0u, kLargest);
    object.ignore("unit");
    object.finish();
    if (!fits(field))
        object.fail("a number of 1, 2 or 4 bytes at a multiple of its size, an address of 6 bytes, or a text or bytes of at "
                    "least 1");
    return field;
}

Layout readLayout(const std::string& name, JsonObject object)
{
    Layout layout;
    layout.name = name;
    layout.size = object["size"].number(0u, kLargest);
    std::uint32_t end = 0;
    for (JsonObject& element : object["fields"].objects())
    {
        const Field field = readField(element);
        if (layout.field(field.name) != nullptr)
            element["name"].fail("a name that no earlier field has");
        if (field.offset < end || field.offset + field.size > layout.size)
            element["offset"].fail("a field after the one before it and within the record's " + std::to_string(layout.size) +
                                   " bytes");
        end = field.offset + field.size;
        layout.fields.push_back(field);
    }
    object.finish();
    return layout;
}

} // namespace

const Field* Layout::field(std::string_view fieldName) const
{
    const auto found = std::find_if(fields.begin(), fields.end(), [&](const Field& each) { return each.name == fieldName; });
    return found == fields.end() ? nullptr : &*found;
}

std::vector<Layout> parseLayouts(std::string_view text, const std::string& fileName)
{
    const base::JsonDocument document = base::parseJson(text, fileName);
    JsonObject file = document.root().object();
    file["layouts"].number(1, 1);
    file.ignore("comment");
    std::vector<Layout> result;
    for (const auto& [name, layout] : file["records"].members())
        result.push_back(readLayout(name, layout.object()));
    file.finish();
    return result;
}

const std::vector<Layout>& layouts()
{
    static const std::vector<Layout> kLayouts =
        parseLayouts(base::embeddedText(embeddedFiles(), "layouts.json"), "layouts.json");
    return kLayouts;
}

const Layout& layout(std::string_view name)
{
    const std::vector<Layout>& all = layouts();
    const auto found = std::find_if(all.begin(), all.end(), [&](const Layout& candidate) { return candidate.name == name; });
    if (found == all.end())
        throw std::logic_error("no layout " + std::string(name));
    return *found;
}

Record::Record(const Layout& layout) : layout_(&layout), bytes_(layout.size)
{
}

Record::Record(const Layout& layout, std::vector<std::uint8_t> bytes) : layout_(&layout), bytes_(std::move(bytes))
{
    if (bytes_.size() != layout.size)
        throw std::logic_error(layout.name + " is not of " + std::to_string(bytes_.size()) + " bytes");
}

const Field& Record::field(std::string_view name, FieldType type) const
{
    const Field* found = layout_->field(name);
    if (found == nullptr || found->type != type)
        throw std::logic_error(layout_->name + " has no such field: " + std::string(name));
    return *found;
}

// The width decides which of the bytes count, in the host's order.
std::uint32_t Record::load(const Field& field) const
{
    const std::uint8_t* from = bytes_.data() + field.offset;
    if (field.size == 1)
        return *from;
    if (field.size == 2)
    {
        std::uint16_t half;
        std::memcpy(&half, from, sizeof half);
        return half;
    }
    std::uint32_t word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

void Record::store(const Field& field, std::uint32_t value)
{
    touched_.insert(field.name);
    std::uint8_t* to = bytes_.data() + field.offset;
    const auto byte = static_cast<std::uint8_t>(value);
    const auto half = static_cast<std::uint16_t>(value);
    if (field.size == 1)
        *to = byte;
    else if (field.size == 2)
        std::memcpy(to, &half, sizeof half);
    else
        std::memcpy(to, &value, sizeof value);
}

std::uint32_t Record::number(std::string_view name) const
{
    return load(field(name, FieldType::kNumber));
}

std::int32_t Record::signedNumber(std::string_view name) const
{
    const Field& place = field(name, FieldType::kSigned);
    const std::uint32_t value = load(place);
    if (place.size == 1)
        return static_cast<std::int8_t>(value);
    if (place.size == 2)
        return static_cast<std::int16_t>(value);
    return static_cast<std::int32_t>(value);
}

std::string Record::text(std::string_view name) const
{
    const Field& place = field(name, FieldType::kText);
    const char* from = reinterpret_cast<const char*>(bytes_.data()) + place.offset;
    return {from, strnlen(from, place.size)};
}

std::vector<std::uint8_t> Record::block(std::string_view name) const
{
    const Field& place = field(name, FieldType::kBytes);
    const auto from = bytes_.begin() + static_cast<std::ptrdiff_t>(place.offset);
    return {from, from + static_cast<std::ptrdiff_t>(place.size)};
}

MacAddress Record::address(std::string_view name) const
{
    MacAddress result;
    std::memcpy(result.data(), bytes_.data() + field(name, FieldType::kAddress).offset, result.size());
    return result;
}

void Record::setNumber(std::string_view name, std::uint64_t value)
{
    store(field(name, FieldType::kNumber), static_cast<std::uint32_t>(value));
}

void Record::setSigned(std::string_view name, std::int32_t value)
{
    store(field(name, FieldType::kSigned), static_cast<std::uint32_t>(value));
}

void Record::setText(std::string_view name, std::string_view value)
{
    const Field& place = field(name, FieldType::kText);
    touched_.insert(place.name);
    std::uint8_t* to = bytes_.data() + place.offset;
    std::memset(to, 0, place.size);
    std::memcpy(to, value.data(), std::min<std::size_t>(value.size(), place.size - 1));
}

void Record::setBlock(std::string_view name, const std::uint8_t* data, std::size_t length)
{
    const Field& place = field(name, FieldType::kBytes);
    touched_.insert(place.name);
    if (const std::size_t count = std::min<std::size_t>(length, place.size); count > 0)
        std::memcpy(bytes_.data() + place.offset, data, count);
}

void Record::setAddress(std::string_view name, const MacAddress& address)
{
    const Field& place = field(name, FieldType::kAddress);
    touched_.insert(place.name);
    std::memcpy(bytes_.data() + place.offset, address.data(), address.size());
}

void Record::fill(const Settings& settings)
{
    for (const Field& each : layout_->fields)
    {
        const Property* property = settings.property(each.name);
        if (property == nullptr)
            continue;
        if (property->isText() && each.type == FieldType::kText)
            setText(each.name, settings.text(each.name));
        else if (!property->isText() && each.type == FieldType::kNumber)
            setNumber(each.name, settings.number(each.name));
    }
}

Changes Record::changes(std::uint32_t selection) const
{
    if (selection >> layout_->fields.size() != 0)
        throw Refused{ReplyStatus::kInvalidValue};
    Changes result;
    for (std::size_t i = 0; i < layout_->fields.size(); ++i)
    {
        const Field& each = layout_->fields[i];
        if (selection != 0 && (selection >> i & 1) == 0)
            continue;
        if (each.type == FieldType::kText)
            result.emplace_back(each.name, text(each.name));
        else
            result.emplace_back(each.name, number(each.name));
    }
    return result;
}

std::vector<std::string> Record::untouched() const
{
    std::vector<std::string> names;
    for (const Field& each : layout_->fields)
        if (touched_.find(each.name) == touched_.end())
            names.push_back(each.name);
    return names;
}

} // namespace tarn::simulator
