// The path of the runtime directory as a text, for programs in C++.
#pragma once

#include "kor_iil_service.h"

#include <cstdint>
#include <string>

namespace koriil
{

inline std::string runtimePath()
{
    std::string path(KorIilRuntimeDirectory(nullptr, 0) + 1, '\0');
    KorIilRuntimeDirectory(path.data(), static_cast<std::uint32_t>(path.size()));
    path.pop_back();
    return path;
}

} // namespace koriil
