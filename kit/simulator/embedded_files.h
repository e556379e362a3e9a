// The data files of this directory, as the build compiled them in.
#pragma once

#include <string_view>

namespace tarn::simulator
{

// Throws std::logic_error if none was compiled in under that name.
std::string_view embeddedFile(std::string_view name);

} // namespace tarn::simulator
