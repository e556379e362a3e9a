// The inside of the opaque records, as layouts.json describes it.
#pragma once

#include "base/mac_address.h"
#include "settings.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::simulator
{

using base::MacAddress;

enum class FieldType
{
    kNumber,
    kSigned,
    kText,
    kBytes,
    kAddress
};

struct Field
{
    std::string name;
    FieldType type = FieldType::kNumber;
    std::uint32_t offset = 0;
    std::uint32_t size = 0;
};

struct Layout
{
    std::string name;
    std::uint32_t size = 0;
    std::vector<Field> fields;

    // The field of that name, or null.
    const Field* field(std::string_view fieldName) const;
};

// Reads the text of a layouts file. `fileName` is only for the text of errors. Throws base::JsonError for one that is not
// sound.
std::vector<Layout> parseLayouts(std::string_view text, const std::string& fileName);

// The layouts compiled in.
const std::vector<Layout>& layouts();
// Throws std::logic_error if there is none of that name.
const Layout& layout(std::string_view name);

// The bytes of one record, reached by the names of its fields.
class Record
{
public:
    // All zeros.
    explicit Record(const Layout& layout);
    // `bytes` must be as many as the layout says.
    Record(const Layout& layout, std::vector<std::uint8_t> bytes);

    const std::vector<std::uint8_t>& bytes() const
    {
        return bytes_;
    }

    std::uint32_t number(std::string_view name) const;
    std::int32_t signedNumber(std::string_view name) const;
    std::string text(std::string_view name) const;
    std::vector<std::uint8_t> block(std::string_view name) const;
    MacAddress address(std::string_view name) const;

    void setNumber(std::string_view name, std::uint64_t value); // what is over the field's width is cut off
    void setSigned(std::string_view name, std::int32_t value);
    void setText(std::string_view name, std::string_view value);                        // cut to what fits with a NUL behind it
    void setBlock(std::string_view name, const std::uint8_t* data, std::size_t length); // cut to the field
    void setAddress(std::string_view name, const MacAddress& address);

    // Fills each field that the settings have a value of the same name and kind for.
    void fill(const Settings& settings);

    // The fields as changes of settings: those whose bit is set in `selection`, bit 0 for the first; all of them if it is 0.
    // Throws Refused if a bit stands for no field.
    Changes changes(std::uint32_t selection) const;

    // Names of fields that have not been set yet.
    std::vector<std::string> untouched() const;

private:
    const Field& field(std::string_view name, FieldType type) const;
    std::uint32_t load(const Field& field) const;
    void store(const Field& field, std::uint32_t value);

    const Layout* layout_;
    std::vector<std::uint8_t> bytes_;
    std::set<std::string, std::less<>> touched_;
};

} // namespace tarn::simulator
