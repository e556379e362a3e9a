#include "base/join.h"
#include "base/json_reader.h"
#include "base/letter_case.h"
#include "base/mac_address.h"
#include "base/suggestions.h"
#include "layout.h"
#include "words.h"

#include <algorithm>
#include <limits>
#include <set>
#include <tuple>

namespace tarn::layout
{

namespace
{

using base::JsonObject;
using base::JsonValue;

constexpr std::uint32_t kLargest = 65536; // bytes of a structure
constexpr std::uint32_t kWordBits = 32;

using ValueSets = std::map<std::string, std::shared_ptr<const ValueSet>>;

// Names that become the same one in the C header, where letter case and underscores do not tell them apart.
std::string folded(std::string_view name)
{
    std::string result = base::lowerCase(name);
    result.erase(std::remove(result.begin(), result.end(), '_'), result.end());
    return result;
}

template <typename Named>
bool isTaken(const std::vector<Named>& earlier, std::string_view name)
{
    const std::string wanted = folded(name);
    return std::any_of(earlier.begin(), earlier.end(), [&](const Named& each) { return folded(each.name) == wanted; });
}

// The name of a member, which the file has as a key.
template <typename Named>
void checkMemberName(const std::vector<Named>& earlier, const std::string& name, const JsonValue& value)
{
    if (!base::isIdentifier(name))
        value.fail("the name " + name, "a name of letters, digits and underscores");
    if (isTaken(earlier, name))
        value.fail("the name " + name, "one that differs from the earlier ones in more than letter case and underscores");
}

[[noreturn]] void refuseUnknown(const JsonValue& value, const std::string& kind, const std::string& name,
                                const std::vector<std::string>& known)
{
    const std::vector<std::string> closest = base::suggestions(name, known, 1);
    value.fail("unknown " + kind + (closest.empty() ? "" : " (did you mean " + closest.front() + "?)"),
               "one of the contract's");
}

void refuse(JsonObject& object, const char* key, const char* reason)
{
    if (const JsonValue value = object[key])
        value.fail("no such key, as " + std::string(reason));
}

// A key that is there and true, or not there.
bool readMark(const JsonValue& value)
{
    if (value && !value.boolean())
        value.fail("true, or no such key");
    return static_cast<bool>(value);
}

// --- Meanings ---------------------------------------------------------------------------------------------------------------

// What values the bytes of a number can have.
struct Range
{
    std::int64_t least = 0;
    std::int64_t most = 0;
    std::uint32_t bits = kWordBits;
};

Range rangeOf(bool isSigned, std::uint32_t size)
{
    const std::uint32_t bits = 8 * size;
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    if (isSigned)
        return {-(kMost >> (64 - bits)) - 1, kMost >> (64 - bits), bits};
    return {0, bits == 64 ? kMost : (std::int64_t{1} << bits) - 1, bits};
}

std::shared_ptr<const ValueSet> readValueSet(const std::string& name, const JsonValue& members, std::int64_t least,
                                             std::int64_t most)
{
    ValueSet set;
    set.name = name;
    for (const auto& [valueName, value] : members.members())
    {
        checkMemberName(set.values, valueName, value);
        const std::int64_t number = value.integer(least, most);
        if (const NamedValue* const earlier = set.find(number))
            value.fail("a number that is not already named " + earlier->name);
        set.values.push_back({valueName, number});
    }
    if (set.values.empty())
        members.fail("at least one name with its number");
    return std::make_shared<const ValueSet>(std::move(set));
}

std::shared_ptr<const ValueSet> readValues(const JsonValue& value, const ValueSets& sets, const Range& range)
{
    const std::string* const name = value.textOrNull();
    if (name == nullptr)
        return readValueSet("", value, range.least, range.most);
    const auto known = sets.find(*name);
    if (known == sets.end())
        value.fail("an object of names and numbers, or one of \"values\": " +
                   base::join(sets, ", ", [](const auto& set) { return set.first; }));
    for (const NamedValue& each : known->second->values)
        if (each.value < range.least || each.value > range.most)
            value.fail("values from " + std::to_string(range.least) + " to " + std::to_string(range.most) + ", and " +
                       each.name + " is " + std::to_string(each.value));
    return known->second;
}

std::vector<Flag> readFlags(const JsonValue& members, std::uint32_t bits)
{
    std::vector<Flag> flags;
    for (const auto& [name, value] : members.members())
    {
        checkMemberName(flags, name, value);
        const auto bit = value.number<std::uint32_t>(0, bits - 1);
        const auto isSame = [&](const Flag& earlier) { return earlier.bit == bit; };
        if (const auto earlier = std::find_if(flags.begin(), flags.end(), isSame); earlier != flags.end())
            value.fail("a bit that is not already named " + earlier->name);
        flags.push_back({name, bit});
    }
    if (flags.empty())
        members.fail("at least one name with its bit");
    return flags;
}

std::vector<std::string> readTexts(const JsonValue& list)
{
    std::vector<std::string> texts;
    for (const JsonValue& element : list.elements())
    {
        std::string text = element.text(1, JsonValue::kNoLimit);
        if (std::find(texts.begin(), texts.end(), text) != texts.end())
            element.fail("a text that is not already in the list");
        texts.push_back(std::move(text));
    }
    if (texts.empty())
        list.fail("a list of at least one text");
    return texts;
}

// `range` is that of a number, null for anything else.
Meaning readMeaning(JsonObject& object, const ValueSets& sets, const Range* range, bool isText)
{
    Meaning meaning;
    if (const JsonValue description = object["description"])
        meaning.description = description.text(1, JsonValue::kNoLimit);
    if (range == nullptr)
        for (const char* key : {"unit", "values", "flags"})
            refuse(object, key, "this is no number");
    if (!isText)
        refuse(object, "texts", "this is no text");
    if (const JsonValue unit = object["unit"])
        meaning.unit = unit.text(1, JsonValue::kNoLimit);
    if (const JsonValue values = object["values"])
        meaning.values = readValues(values, sets, *range);
    if (const JsonValue flags = object["flags"])
    {
        if (meaning.values != nullptr)
            flags.fail("no such key, as \"values\" names the numbers");
        meaning.flags = readFlags(flags, range->bits);
    }
    if (const JsonValue texts = object["texts"])
        meaning.texts = readTexts(texts);
    return meaning;
}

// --- Structures -------------------------------------------------------------------------------------------------------------

std::uint32_t readSize(JsonObject& object, FieldType type)
{
    if (type == FieldType::kMacAddress)
    {
        refuse(object, "size", "a MAC address always has 6 bytes");
        return base::kMacAddressSize;
    }
    const JsonValue value = object["size"];
    const auto size = value.number<std::uint32_t>(1, kLargest);
    const bool isNumber = type == FieldType::kNumber || type == FieldType::kSigned;
    if (isNumber && size != 1 && size != 2 && size != 4 && size != 8)
        value.fail("a number of 1, 2, 4 or 8 bytes");
    return size;
}

// Type, size and meaning; the name and the offset have been read.
void readContent(JsonObject& object, Field& field, const ValueSets& sets)
{
    field.size = readSize(object, field.type);
    const Range range = field.isNumber() ? rangeOf(field.type == FieldType::kSigned, field.size) : Range();
    field.meaning = readMeaning(object, sets, field.isNumber() ? &range : nullptr, field.type == FieldType::kText);
}

FieldType readType(const JsonValue& value, bool isInArray)
{
    const auto type = value.oneOf<FieldType>(kFieldTypeWords);
    if (isInArray && type == FieldType::kArray)
        value.fail("a type other than array within an array");
    return type;
}

std::vector<Field> readFields(const JsonValue& list, std::uint32_t size, const ValueSets& sets, bool isInArray);

void readElements(JsonObject& object, Field& field, const ValueSets& sets)
{
    if (const JsonValue value = object["element"])
    {
        refuse(object, "fields", "\"element\" says what the array is of");
        JsonObject element = value.object();
        Field plain;
        plain.type = readType(element["type"], true);
        readContent(element, plain, sets);
        element.finish();
        field.stride = plain.size;
        if (const JsonValue stride = object["stride"])
            field.stride = stride.number<std::uint32_t>(plain.size, kLargest);
        field.elementFields.push_back(std::move(plain));
    }
    else
    {
        field.stride = object["stride"].number<std::uint32_t>(1, kLargest);
        field.elementFields = readFields(object["fields"], field.stride, sets, true);
    }
}

void readArray(JsonObject& object, Field& field, const ValueSets& sets, const std::vector<Field>& earlier)
{
    refuse(object, "size", "\"count\" and the size of the elements say it");
    field.count = object["count"].number<std::uint32_t>(1, kLargest);
    readElements(object, field, sets);
    if (std::uint64_t{field.count} * field.stride > kLargest)
        object["count"].fail("elements of " + std::to_string(field.stride) + " bytes that take at most " +
                             std::to_string(kLargest));
    field.size = field.count * field.stride;
    field.meaning = readMeaning(object, sets, nullptr, false);
    field.endsWithZero = readMark(object["ends_with_zero"]);
    if (const JsonValue value = object["count_field"])
    {
        if (field.endsWithZero)
            value.fail("no such key, as \"ends_with_zero\" says how many elements are in use");
        field.countField = value.text();
        const auto isIt = [&](const Field& each) { return each.name == field.countField && each.type == FieldType::kNumber; };
        if (std::none_of(earlier.begin(), earlier.end(), isIt))
            value.fail("the name of an earlier field that is a number");
    }
}

Field readField(JsonObject& object, const ValueSets& sets, const std::vector<Field>& earlier, bool isInArray)
{
    Field field;
    const JsonValue name = object["name"];
    field.name = name.identifier();
    if (isTaken(earlier, field.name))
        name.fail("a name that differs from those of the earlier fields in more than letter case and underscores");
    field.type = readType(object["type"], isInArray);
    field.offset = object["offset"].number<std::uint32_t>(0, kLargest);
    if (field.type == FieldType::kArray)
        readArray(object, field, sets, earlier);
    else
        readContent(object, field, sets);
    object.finish();
    return field;
}

std::vector<Field> readFields(const JsonValue& list, std::uint32_t size, const ValueSets& sets, bool isInArray)
{
    std::vector<Field> fields;
    std::uint32_t end = 0;
    for (JsonObject& object : list.objects(1))
    {
        Field field = readField(object, sets, fields, isInArray);
        if (field.offset < end || field.offset + field.size > size)
            object["offset"].fail("a field of " + std::to_string(field.size) + " bytes that begins at " + std::to_string(end) +
                                  " or later, behind the one before it, and ends within the " + std::to_string(size) +
                                  " bytes");
        end = field.offset + field.size;
        fields.push_back(std::move(field));
    }
    return fields;
}

// `expectedSize` is the contract's; none where it has none.
Structure readStructure(const std::string& name, const JsonValue& value, std::optional<std::uint32_t> expectedSize,
                        const ValueSets& sets)
{
    Structure structure;
    structure.name = name;
    JsonObject object = value.object();
    const JsonValue size = object["size"];
    structure.size = size.number<std::uint32_t>(1, kLargest);
    if (expectedSize && structure.size != *expectedSize)
        size.fail(std::to_string(*expectedSize) + ", the contract's size of " + name);
    structure.fields = readFields(object["fields"], structure.size, sets, false);
    object.finish();
    return structure;
}

// --- What the contract names ------------------------------------------------------------------------------------------------

const contract::Contract& deviceContract()
{
    return *contract::findService("TARN");
}

std::vector<std::string> recordNames()
{
    std::vector<std::string> names;
    for (const contract::Contract& contract : contract::all())
        for (const contract::RecordType& record : contract.records)
            names.push_back(record.name);
    return names;
}

std::vector<std::string> argumentNames()
{
    std::vector<std::string> names;
    for (const contract::Row& row : contract::rows())
        for (const contract::Argument& argument : row.command->arguments)
            names.push_back(row.command->function + "." + argument.name);
    return names;
}

std::uint32_t recordSize(const std::string& name, const JsonValue& value)
{
    for (const contract::Contract& contract : contract::all())
        if (const contract::RecordType* const record = contract.record(name))
            return record->size;
    refuseUnknown(value, "record", name, recordNames());
}

// A function and one of its arguments.
struct Place
{
    const contract::Command* command = nullptr;
    const contract::Argument* argument = nullptr;
};

Place placeOf(const std::string& functionAndArgument, const JsonValue& value)
{
    const std::size_t point = functionAndArgument.find('.');
    if (point == std::string::npos)
        value.fail("the name " + functionAndArgument, "FUNCTION.ARGUMENT");
    const contract::Row row = contract::find(std::string_view(functionAndArgument).substr(0, point));
    const contract::Argument* const argument =
        row ? row.command->argument(std::string_view(functionAndArgument).substr(point + 1)) : nullptr;
    if (argument == nullptr)
        refuseUnknown(value, row ? "argument" : "function", functionAndArgument, argumentNames());
    return {row.command, argument};
}

// 0 for what is no number.
std::uint32_t wordSize(contract::Type type)
{
    switch (type)
    {
    case contract::Type::kU32:
        return 4;
    case contract::Type::kU16:
        return 2;
    case contract::Type::kU8:
        return 1;
    default:
        return 0;
    }
}

bool isWord(const contract::Argument& argument)
{
    return wordSize(argument.type) != 0;
}

std::uint32_t blockSize(const std::string& name, const JsonValue& value)
{
    const contract::Argument& argument = *placeOf(name, value).argument;
    const bool isBlock = argument.type == contract::Type::kBytes || argument.encoding == contract::Encoding::kWords;
    if (!isBlock || argument.size == 0)
        value.fail("an argument of bytes, or of several words, whose size the contract says");
    return argument.size;
}

Meaning readArgument(const std::string& name, const JsonValue& value, const ValueSets& sets)
{
    const contract::Argument& argument = *placeOf(name, value).argument;
    const bool isText = argument.type == contract::Type::kText;
    if ((!isText && !isWord(argument)) || argument.encoding == contract::Encoding::kSize)
        value.fail("an argument that is a number or a text");
    JsonObject object = value.object();
    const Range range = rangeOf(argument.isSigned, std::max(wordSize(argument.type), 1u));
    Meaning meaning = readMeaning(object, sets, isText ? nullptr : &range, isText);
    object.finish();
    return meaning;
}

Selection readSelection(const std::string& name, const JsonValue& value, const Layout& layout)
{
    const Place place = placeOf(name, value);
    if (!isWord(*place.argument) || place.argument->direction != contract::Direction::kIn)
        value.fail("an input that is a number");
    JsonObject object = value.object();
    const JsonValue selects = object["selects"];
    const contract::Argument* const selected = place.command->argument(selects.text());
    const Structure* const structure = selected == nullptr ? nullptr : layout.structureOf(*place.command, *selected);
    if (structure == nullptr || selected->direction != contract::Direction::kIn)
        selects.fail("an input of " + place.command->function + " whose fields this layout describes");

    Selection selection;
    selection.function = place.command->function;
    selection.argument = place.argument->name;
    selection.selected = selected->name;
    if (layout.selectionOf(selection.function, selection.selected) != nullptr)
        selects.fail("an argument whose fields no other one selects");
    const JsonValue bits = object["bits"];
    selection.fields = readFlags(bits, kWordBits);
    for (const auto& [field, bit] : bits.members())
        if (structure->field(field) == nullptr)
            bit.fail("no field " + field,
                     "one of " + base::join(structure->fields, ", ", [](const Field& each) { return each.name; }));
    selection.zeroIsAll = readMark(object["zero_is_all"]);
    object.finish();
    return selection;
}

std::vector<std::string> serviceNames()
{
    std::vector<std::string> names;
    for (const contract::Contract& contract : contract::all())
        names.push_back(contract.service);
    return names;
}

// --- Statuses ---------------------------------------------------------------------------------------------------------------

std::vector<std::string> readServices(const JsonValue& list)
{
    const std::vector<std::string> known = serviceNames();
    std::vector<std::string> services;
    for (const JsonValue& element : list.elements())
    {
        const std::string service = element.text();
        if (std::find(known.begin(), known.end(), service) == known.end() ||
            std::find(services.begin(), services.end(), service) != services.end())
            element.fail("one of " + base::join(known) + ", and each once");
        services.push_back(service);
    }
    if (services.empty())
        list.fail("at least one of " + base::join(known) + ", or no such key for all of them");
    return services;
}

Status readStatus(JsonObject& object, const Layout& layout)
{
    Status status;
    const JsonValue number = object["number"];
    status.number = static_cast<std::uint32_t>(
        number.integer(std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::uint32_t>::max()));
    const JsonValue name = object["name"];
    status.name = name.identifier();
    status.text = object["text"].text(1, JsonValue::kNoLimit);
    if (const JsonValue services = object["services"])
        status.services = readServices(services);
    object.finish();
    for (const std::string& service : serviceNames())
    {
        if (!status.isOf(service))
            continue;
        if (const Status* const earlier = layout.status(service, status.number))
            number.fail("a number that " + service + " does not already have, for " + earlier->name);
        if (layout.statusNamed(service, status.name) != nullptr)
            name.fail("a name that " + service + " does not already have");
    }
    return status;
}

// --- The file ---------------------------------------------------------------------------------------------------------------

template <typename Read>
void forMembers(const JsonValue& object, Read read)
{
    if (object)
        for (const auto& [name, value] : object.members())
            read(name, value);
}

ValueSets readValueSets(const JsonValue& object)
{
    ValueSets sets;
    forMembers(object,
               [&](const std::string& name, const JsonValue& value)
               {
                   if (!base::isIdentifier(name))
                       value.fail("the name " + name, "a name of letters, digits and underscores");
                   // Those of an int, which they are in a header for C.
                   using Int = std::numeric_limits<std::int32_t>;
                   sets[name] = readValueSet(name, value, Int::min(), Int::max());
               });
    return sets;
}

Layout readLayout(JsonObject file)
{
    Layout layout;
    file.ignore("$schema");
    file["layout"].number(1, 1);
    layout.name = file["name"].text(1, 64);
    layout.version = file["version"].text(1, 64);
    layout.owner = file["owner"].text(1, 256);
    if (const JsonValue description = file["description"])
        description.text(1, JsonValue::kNoLimit);
    const ValueSets sets = readValueSets(file["values"]);
    forMembers(file["records"], [&](const std::string& name, const JsonValue& value)
               { layout.records.push_back(readStructure(name, value, recordSize(name, value), sets)); });
    forMembers(file["blocks"], [&](const std::string& name, const JsonValue& value)
               { layout.blocks.push_back(readStructure(name, value, blockSize(name, value), sets)); });
    forMembers(file["events"],
               [&](const std::string& name, const JsonValue& value)
               {
                   std::vector<std::string> names;
                   for (const contract::Event& event : deviceContract().events)
                       names.push_back(event.name);
                   if (std::find(names.begin(), names.end(), name) == names.end())
                       refuseUnknown(value, "event", name, names);
                   layout.events.push_back(readStructure(name, value, std::nullopt, sets));
               });
    forMembers(file["arguments"], [&](const std::string& name, const JsonValue& value)
               { layout.arguments.emplace(name, readArgument(name, value, sets)); });
    forMembers(file["selections"], [&](const std::string& name, const JsonValue& value)
               { layout.selections.push_back(readSelection(name, value, layout)); });
    if (const JsonValue statuses = file["statuses"])
        for (JsonObject& status : statuses.objects())
            layout.statuses.push_back(readStatus(status, layout));
    file.finish();
    return layout;
}

} // namespace

Layout parse(std::string_view text, const std::string& fileName)
{
    return readLayout(base::parseJson(text, fileName).root().object());
}

Layout read(const std::string& path)
{
    return readLayout(base::readJson(path, "a layout file").root().object());
}

} // namespace tarn::layout
