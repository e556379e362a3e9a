// The bytes of one command's message, without a gap: inputs, outputs, the reply status, and what is reserved between them.
#pragma once

#include "catalogue.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::ctl
{

enum class Role
{
    kInput,
    kOutput,
    kStatus,
    kReserved
};

struct Field
{
    std::uint32_t offset = 0;
    std::uint32_t size = 0;
    std::string name;
    Role role = Role::kReserved;
    const Parameter* parameter = nullptr; // for inputs and outputs
    bool isUpperBound = false;            // another argument says how much of it is read
};

// In the order of their offsets. For functions of Kind::kCommand.
std::vector<Field> layoutOf(const Function& function);

const char* toString(Role role);

} // namespace tarn::ctl
