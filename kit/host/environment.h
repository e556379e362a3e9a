// What the environment says.
#pragma once

#include <cstdlib>
#include <cstring>

namespace koriil
{

// NULL if the variable is not set or empty.
inline const char* setting(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0' ? value : nullptr;
}

inline bool isSwitchedOn(const char* variable)
{
    const char* const value = setting(variable);
    return value != nullptr && std::strcmp(value, "on") == 0;
}

} // namespace koriil
