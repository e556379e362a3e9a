// The words of the layout files, in the order of the enumerators.
#pragma once

namespace tarn::layout
{

inline constexpr const char* kFieldTypeWords[] = {"number", "signed", "text", "mac address", "bytes", "array"};

} // namespace tarn::layout
