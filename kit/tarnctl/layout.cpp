#include "layout.h"

#include <algorithm>

namespace tarn::ctl
{

namespace
{

constexpr std::uint32_t kStatusSize = 4;

std::vector<Field> namedFields(const Function& function)
{
    std::vector<Field> fields;
    for (const Parameter& parameter : function.parameters)
    {
        const contract::Encoding encoding = parameter.wire->encoding;
        if (encoding == contract::Encoding::kSize || encoding == contract::Encoding::kNothing)
            continue;
        Field field;
        field.offset = parameter.wire->offset;
        field.size = parameter.size;
        field.name = parameter.name;
        field.role = parameter.isInput ? Role::kInput : Role::kOutput;
        field.parameter = &parameter;
        field.isUpperBound = !parameter.sizeArgument.empty();
        fields.push_back(field);
    }
    fields.push_back({function.row.command->status, kStatusSize, "(reply status)", Role::kStatus, nullptr, false});
    std::stable_sort(fields.begin(), fields.end(),
                     [](const Field& left, const Field& right) { return left.offset < right.offset; });
    return fields;
}

} // namespace

std::vector<Field> layoutOf(const Function& function)
{
    std::vector<Field> whole;
    std::uint32_t end = 0;
    const auto reserveUpTo = [&](std::uint32_t offset)
    {
        if (offset > end)
            whole.push_back({end, offset - end, "(reserved)", Role::kReserved, nullptr, false});
    };

    std::vector<Field> fields = namedFields(function);
    for (std::size_t i = 0; i < fields.size(); ++i)
    {
        Field& field = fields[i];
        if (field.isUpperBound) // up to the next field; the status always follows
            field.size = fields[i + 1].offset - field.offset;
        reserveUpTo(field.offset);
        end = std::max(end, field.offset + field.size);
        whole.push_back(field);
    }
    reserveUpTo(function.row.command->length);
    return whole;
}

const char* toString(Role role)
{
    switch (role)
    {
    case Role::kInput:
        return "in";
    case Role::kOutput:
        return "out";
    case Role::kStatus:
        return "status";
    case Role::kReserved:
        break;
    }
    return "reserved";
}

} // namespace tarn::ctl
