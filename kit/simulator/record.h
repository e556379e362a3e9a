// The bytes of one record, reached by the names that the model has for its fields.
#pragma once

#include "base/bytes.h"
#include "base/mac_address.h"
#include "gateway_layout.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::simulator
{

using base::MacAddress;

// A name that the simulator's own layout does not have, or that is of another kind there, throws std::logic_error. A field that
// only the layout in use lacks is read as zero, and not written. Names may lead into arrays: "entries[2].name".
class Record
{
public:
    // All zeros.
    explicit Record(const RecordLayout& layout);
    // `bytes` must be as many as the layout says.
    Record(const RecordLayout& layout, base::Bytes bytes);

    const base::Bytes& bytes() const
    {
        return bytes_;
    }

    // As the model knows it.
    const layout::Structure& own() const
    {
        return *layout_.own;
    }

    // Whether the layout in use has a field of this name that is alike.
    bool has(std::string_view name) const;

    std::uint32_t number(std::string_view name) const; // throws Refused for a named value that the model does not know
    std::int32_t signedNumber(std::string_view name) const;
    std::string text(std::string_view name) const;
    base::Bytes block(std::string_view name) const;
    MacAddress address(std::string_view name) const;

    void setNumber(std::string_view name, std::uint64_t value); // what is over the field's width is cut off
    void setSigned(std::string_view name, std::int32_t value);
    void setText(std::string_view name, std::string_view value);                        // cut to what fits with a NUL behind it
    void setBlock(std::string_view name, const std::uint8_t* data, std::size_t length); // cut to the field
    void setAddress(std::string_view name, const MacAddress& address);

    // The elements of an array, as many as it has room for.
    void setNumbers(std::string_view name, const std::vector<std::uint32_t>& numbers);
    void setAddresses(std::string_view name, const std::vector<MacAddress>& addresses);

private:
    // The field as the model knows it, and where it is; null and nothing if the layout in use does not have it.
    struct Place
    {
        const layout::Field* own;
        const layout::Field* used;
        std::uint32_t offset;
    };

    Place place(std::string_view name, layout::FieldType type) const;
    std::uint64_t load(const Place& place) const;
    void store(const Place& place, std::uint64_t value);
    std::uint32_t roomOf(std::string_view array) const;

    RecordLayout layout_;
    base::Bytes bytes_;
};

} // namespace tarn::simulator
