// The fields of one command's message, without a gap: inputs, outputs, the reply status, and reserved bytes between them.
#pragma once

#include "catalogue.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::ctl
{

enum class FieldRole
{
    kInput,
    kOutput,
    kStatus,
    kReserved
};

struct MessageField
{
    std::uint32_t offset = 0;
    std::uint32_t size = 0;
    std::string name;
    FieldRole role = FieldRole::kReserved;
    const FunctionParameter* parameter = nullptr; // for inputs and outputs
    bool isUpperBound = false;                    // another argument says how much of it is read
};

// In the order of their offsets. For functions of FunctionKind::kCommand.
std::vector<MessageField> messageFields(const LibraryFunction& function);

const char* toString(FieldRole role);

} // namespace tarn::ctl
