#include "description.h"

namespace tarn::simulator
{

void fill(Record& record, const layout::Field& field, std::uint32_t value)
{
    record.setNumber(field.name, value);
}

void fill(Record& record, const layout::Field& field, std::uint64_t value)
{
    record.setNumber(field.name, value);
}

void fill(Record& record, const layout::Field& field, std::int32_t value)
{
    record.setSigned(field.name, value);
}

void fill(Record& record, const layout::Field& field, bool value)
{
    record.setNumber(field.name, value ? 1 : 0);
}

void fill(Record& record, const layout::Field& field, const std::string& value)
{
    record.setText(field.name, value);
}

void fill(Record& record, const layout::Field& field, const MacAddress& value)
{
    record.setAddress(field.name, value);
}

void fill(Record& record, const layout::Field& field, const MobilityDomain& value)
{
    record.setBlock(field.name, value.data(), value.size());
}

void fill(Record& record, const layout::Field& field, const std::vector<std::uint32_t>& value)
{
    record.setNumbers(field.name, value);
}

void fill(Record& record, const layout::Field& field, const std::vector<MacAddress>& value)
{
    record.setAddresses(field.name, value);
}

void take(const Record& record, const std::string& name, std::uint32_t& value)
{
    value = record.number(name);
}

void take(const Record& record, const std::string& name, std::string& value)
{
    value = record.text(name);
}

} // namespace tarn::simulator
