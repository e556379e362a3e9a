// The temperature sensors of the Wi-Fi module, all of which one function reads.
#pragma once

#include <array>

namespace tarn::ctl
{

struct ModuleSensor
{
    const char* name;
    const char* output; // of tarn_qcsapi_get_temperature_info
};

inline constexpr std::array<ModuleSensor, 3> kModuleSensors = {{
    {"outside", "tempsens_ex"},
    {"inside", "tempsens_in"},
    {"baseband", "temsens_bbic"},
}};

} // namespace tarn::ctl
