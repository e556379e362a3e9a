// A function's message by the names of its arguments, "radioId", and of the fields of these, "cfg.channel".
//
// The contract says where an argument is and how it is encoded, and the layout what is inside it and what its numbers mean.
#pragma once

#include "base/bytes.h"
#include "layout.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::layout
{

// A part of the message that has a name: a whole argument, a field of one, or an element of an array in it.
struct NamedPart
{
    std::string name;
    const contract::Argument* argument = nullptr;
    Field field; // no array; its offset is counted from the start of the message

    // What it holds, for people: "36", "done (2)", "\"wifi0\"", "02:00:00:00:01:05", "a1b2".
    std::string valueIn(const std::uint8_t* message) const;
};

// Everything that is named in the message, in the order of the arguments and, within one, of the fields. Bytes between the
// fields have no name, and an argument that the layout tells nothing of is one part. Every element of an array is there.
std::vector<NamedPart> inputsOf(const Layout& layout, const contract::Command& command);

// Bytes of a message.
struct Encoded
{
    std::uint32_t offset = 0;
    base::Bytes bytes;
};

// What an argument, or the field of one, is in the message. A value is written as encode.h says it; a number of 32 bits may be
// negative, for its two's complement; the name of an argument alone takes a whole record or block in hexadecimal digits. Throws
// EncodeError for a name that the function does not have in that direction, and for a value that does not fit.
Encoded encode(const Layout& layout, const contract::Command& command, contract::Direction direction, std::string_view name,
               std::string_view value);

// The same for bytes as they are: all of an argument's or a field's, unless the caller says the argument's size.
Encoded encodeBytes(const Layout& layout, const contract::Command& command, contract::Direction direction,
                    std::string_view name, const base::Bytes& bytes);

} // namespace tarn::layout
