// What is inside the records, blocks, events, words and statuses of one make of gateway, as a layout file describes it.
//
//     const layout::Layout layout = layout::read("layout.json");
//     const layout::Structure* const data = layout.record("TarnRadioData");
//     for (const layout::Decoded& field : layout::decode(*data, bytes))    // decode.h
//         ...
//     layout::encode(*data, "channel", "44", bytes);                      // encode.h
//
// README.md describes the files.
#pragma once

#include "contract/contract.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::layout
{

enum class FieldType
{
    kNumber,
    kSigned,
    kText,
    kMacAddress,
    kBytes,
    kArray
};

struct NamedValue
{
    std::string name;
    std::int64_t value = 0;
};

// The names of a number's values. Several fields and arguments may share one set.
struct ValueSet
{
    std::string name; // empty if it belongs to one field or argument alone
    std::vector<NamedValue> values;

    // Null if the set has no such value, or no such name.
    const NamedValue* find(std::int64_t value) const;
    const NamedValue* find(std::string_view valueName) const;
};

struct Flag
{
    std::string name;
    std::uint32_t bit = 0; // 0 is the lowest
};

// What a number or a text tells.
struct Meaning
{
    std::string unit;                       // such as "MHz"; may be empty
    std::string description;                // what else there is to say; may be empty
    std::shared_ptr<const ValueSet> values; // null if they have no names
    std::vector<Flag> flags;                // the bits of a number that is a set of flags
    std::vector<std::string> texts;         // the words that a text is one of, as far as they are known
};

struct Field
{
    std::string name;
    FieldType type = FieldType::kNumber;
    std::uint32_t offset = 0; // in the structure, or in the element of an array
    std::uint32_t size = 0;   // of the whole field, in bytes
    Meaning meaning;

    // Of an array. Its elements are structures, or each is one field without a name, at offset 0.
    std::uint32_t count = 0;
    std::uint32_t stride = 0; // from one element to the next
    std::vector<Field> elementFields;
    std::string countField;    // the number, earlier in the structure, that says how many elements are in use; or empty
    bool endsWithZero = false; // the first element that is all zeros, and those behind it, are not in use

    bool isNumber() const
    {
        return type == FieldType::kNumber || type == FieldType::kSigned;
    }

    bool hasPlainElements() const
    {
        return elementFields.size() == 1 && elementFields.front().name.empty();
    }
};

// A field and where it is, counted from the start of the structure.
struct FieldPlace
{
    const Field* field = nullptr;
    std::uint32_t offset = 0;
};

// A run of bytes with fields in it: a record, a block, or the data of an event.
struct Structure
{
    std::string name; // of the record's type, FUNCTION.ARGUMENT, or the event's
    std::uint32_t size = 0;
    std::vector<Field> fields; // in the order of their offsets

    // Null if there is none of that name.
    const Field* field(std::string_view fieldName) const;

    // The same for a path that may lead into an array, "channels[2]" or "entries[0].name"; no place if there is none.
    std::optional<FieldPlace> place(std::string_view path) const;
};

// An argument whose bits select the fields of another one that count.
struct Selection
{
    std::string function;
    std::string argument;
    std::string selected;     // the argument whose fields are selected
    std::vector<Flag> fields; // name and bit of each field that can be selected
    bool zeroIsAll = false;   // no bit at all selects all of the fields

    std::optional<std::uint32_t> bit(std::string_view field) const;
};

struct Status
{
    std::vector<std::string> services; // that answer it; none for all
    std::uint32_t number = 0;          // as it is in the reply, a negative one in two's complement
    std::string name;                  // such as "INVALID_VALUE"
    std::string text;                  // what it means, in words

    bool isOf(std::string_view service) const;
};

struct Layout
{
    std::string name;
    std::string version;
    std::string owner; // whose gateway it describes
    std::vector<Structure> records;
    std::vector<Structure> blocks;
    std::vector<Structure> events;
    std::map<std::string, Meaning, std::less<>> arguments; // by FUNCTION.ARGUMENT
    std::vector<Selection> selections;
    std::vector<Status> statuses;

    // Each of these is null if the layout does not tell.
    const Structure* record(std::string_view recordName) const;
    const Structure* block(std::string_view functionAndArgument) const;
    const Structure* event(std::string_view eventName) const;
    const Structure* structureOf(const contract::Command& command, const contract::Argument& argument) const;
    const Meaning* meaningOf(std::string_view function, std::string_view argument) const;
    const Selection* selectionOf(std::string_view function, std::string_view selected) const;
    const Status* status(std::string_view service, std::uint32_t number) const;
    const Status* statusNamed(std::string_view service, std::string_view statusName) const;

    // One line for people: "tarn-gateway 1 (the simulated gateway)".
    std::string title() const;
};

// Reads one layout. `fileName` is only for the text of errors. Throws base::JsonError, which says where and what was expected,
// for a text that is not sound JSON, is not as README.md says, or contradicts the contract.
Layout parse(std::string_view text, const std::string& fileName);

// The same of the file at that path.
Layout read(const std::string& path);

// The layout of the simulated gateway, which is compiled in, and its text.
const Layout& simulated();
std::string_view simulatedText();

// The words for the types in the files.
const char* toString(FieldType type);

} // namespace tarn::layout
