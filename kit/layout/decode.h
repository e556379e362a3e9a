// From bytes to fields. Numbers are in the host's byte order, as the library hands records over.
#pragma once

#include "base/bytes.h"
#include "layout.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tarn::layout
{

// What a number says besides itself.
struct NumberMeaning
{
    std::string valueName;          // empty if the value has no name
    std::vector<std::string> flags; // the names of the bits that are set
    std::uint64_t unnamedFlags = 0; // the bits that are set and have no name; 0 where the number is no set of flags
};

NumberMeaning explain(const Meaning& meaning, std::int64_t number);

// A field with what it holds.
struct Decoded
{
    const Field* field = nullptr; // of the layout, which has to outlive this
    base::Bytes bytes;            // those of the field
    std::int64_t number = 0;      // of a number; one of 8 bytes that is above the range comes out negative, see numberText
    NumberMeaning meaning;        // of a number
    std::string text;             // of a text, up to its first NUL; of a MAC address, "02:00:00:00:01:05"

    // Of an array, what the elements that are in use hold: fields, or the one without a name that it is an array of.
    std::vector<std::vector<Decoded>> elements;

    // The number as it is, "-61" or "18446744073709551615".
    std::string numberText() const;
};

// `bytes` are those of the structure. If there are fewer, the fields that are not there in full are left out.
std::vector<Decoded> decode(const Structure& structure, const std::uint8_t* bytes, std::size_t length);
std::vector<Decoded> decode(const Structure& structure, const base::Bytes& bytes);

// One line a field, for people: its name, "entries[2].name" in an array, its value, and what that means.
struct FieldLine
{
    std::string name;
    std::string value;   // "36", "running (1)", "\"wifi0\"", "02:00:00:00:01:05", "a1b2"
    std::string unit;    // "MHz"
    std::string meaning; // the field's description
};

std::vector<FieldLine> linesOf(const std::vector<Decoded>& fields);

// "running (1)", "busy, full (0xc)", "36": a number with its name, or with the names of its flags.
std::string withName(const std::string& number, const NumberMeaning& meaning);

// A number at an offset, sign-extended if it is signed; only its lowest bytes are stored.
std::uint64_t loadNumber(const std::uint8_t* from, std::uint32_t size, bool isSigned);
void storeNumber(std::uint8_t* to, std::uint32_t size, std::uint64_t value);

} // namespace tarn::layout
