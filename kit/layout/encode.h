// From fields, as people write them, to bytes. Numbers are stored in the host's byte order.
#pragma once

#include "base/bytes.h"
#include "layout.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn::layout
{

// The text says what was expected and what was given. `suggestions` are names that may have been meant, the closest first.
class EncodeError : public std::runtime_error
{
public:
    explicit EncodeError(const std::string& text, std::vector<std::string> near = {})
        : std::runtime_error(text), suggestions(std::move(near))
    {
    }

    const std::vector<std::string> suggestions;
};

// Sets the field of that path, "channel", "rates[2]" or "entries[0].name", to the value, and returns where it is; all other
// bytes stay as they are. `bytes` has the size of the structure. Throws EncodeError for a field that the structure does not
// have, and for a value that does not fit.
//
// A number is decimal or 0x..., or one of its names; one of flags also names with + between them; a text as it is, with room
// for a NUL behind it; a MAC address 02:00:00:00:01:05; bytes two hexadecimal digits each, all of them.
FieldPlace encode(const Structure& structure, std::string_view path, std::string_view value, base::Bytes& bytes);

// The same with bytes as they are, as many as the field has.
FieldPlace encodeBytes(const Structure& structure, std::string_view path, const base::Bytes& value, base::Bytes& bytes);

// A number, or a name of one, for an argument of that meaning and that many bytes. `subject` names the argument in errors.
std::uint64_t numberOf(const std::string& subject, const Meaning& meaning, std::uint32_t size, bool isSigned,
                       std::string_view value);

} // namespace tarn::layout
