// What the layout in use says of a function's arguments and of statuses, for people and for programs.
#pragma once

#include "call.h"
#include "console.h"
#include "layout/decode.h"
#include "layout_in_use.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::ctl
{

// Null if there is no layout, or if it does not tell.
const layout::Structure* structureOf(const LibraryFunction& function, const FunctionParameter& parameter);
const layout::Structure* structureOf(const contract::Event& event);
const layout::Meaning* meaningOf(const LibraryFunction& function, const FunctionParameter& parameter); // of a number
const layout::Status* statusOf(const LibraryFunction& function, std::int64_t result);

// The fields of an output; none if the layout does not tell. They are of the layout in use.
std::vector<layout::Decoded> fieldsOf(const Report& report, const std::string& output);

// "36 (0x00000024)" with what it means: ", running", ", dBm".
std::string withMeaning(const std::string& number, std::int64_t value, const layout::Meaning& meaning);

// One line a field, and the bytes that are no field's where they are not zero.
void writeFields(const Console& console, const layout::Structure& structure, const Bytes& bytes);

// By the fields' names, each with its value, name, flags and unit as far as it has them.
Json fieldsDocument(const std::vector<layout::Decoded>& fields);

// Adds name, flags and unit to a document that has the number.
void addMeaning(Json& document, std::int64_t number, const layout::Meaning& meaning);

// Name, version and owner of the layout in use, or null.
Json layoutDocument(const LayoutInUse* inUse);

// What an event carries: " radioId=1 channel=44" where there is a layout, and in hexadecimal where none tells of all the bytes.
std::string eventDataText(const contract::Event& event, const Bytes& data);
// The document of kind "event".
Json eventDocument(const std::string& time, const std::string& service, const contract::Event& event, const Bytes& data);

} // namespace tarn::ctl
