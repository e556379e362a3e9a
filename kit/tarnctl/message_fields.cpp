#include "message_fields.h"

#include <algorithm>

namespace tarn::ctl
{

namespace
{

constexpr std::uint32_t kStatusSize = 4;

std::vector<MessageField> namedFields(const LibraryFunction& function)
{
    std::vector<MessageField> fields;
    for (const FunctionParameter& parameter : function.parameters)
    {
        const contract::Encoding encoding = parameter.wire->encoding;
        if (encoding == contract::Encoding::kSize || encoding == contract::Encoding::kNothing)
            continue;
        MessageField field;
        field.offset = parameter.wire->offset;
        field.size = parameter.size;
        field.name = parameter.name;
        field.role = parameter.isInput ? FieldRole::kInput : FieldRole::kOutput;
        field.parameter = &parameter;
        field.isUpperBound = !parameter.sizeArgument.empty();
        fields.push_back(field);
    }
    fields.push_back({function.row.command->statusOffset(), kStatusSize, "(reply status)", FieldRole::kStatus, nullptr, false});
    std::stable_sort(fields.begin(), fields.end(),
                     [](const MessageField& left, const MessageField& right) { return left.offset < right.offset; });
    return fields;
}

} // namespace

std::vector<MessageField> messageFields(const LibraryFunction& function)
{
    std::vector<MessageField> whole;
    std::uint32_t end = 0;
    const auto reserveUpTo = [&](std::uint32_t offset)
    {
        if (offset > end)
            whole.push_back({end, offset - end, "(reserved)", FieldRole::kReserved, nullptr, false});
    };

    std::vector<MessageField> fields = namedFields(function);
    for (std::size_t i = 0; i < fields.size(); ++i)
    {
        MessageField& field = fields[i];
        if (field.isUpperBound) // up to the next field; the status always follows
            field.size = fields[i + 1].offset - field.offset;
        reserveUpTo(field.offset);
        end = std::max(end, field.offset + field.size);
        whole.push_back(field);
    }
    reserveUpTo(function.row.command->length);
    return whole;
}

const char* toString(FieldRole role)
{
    switch (role)
    {
    case FieldRole::kInput:
        return "in";
    case FieldRole::kOutput:
        return "out";
    case FieldRole::kStatus:
        return "status";
    case FieldRole::kReserved:
        break;
    }
    return "reserved";
}

} // namespace tarn::ctl
