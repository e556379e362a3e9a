// Files whose text the build compiles in: see tarn_embed in embed.cmake. The room that has them declares their function,
//
//     const std::vector<base::EmbeddedFile>& embeddedFiles();
#pragma once

#include <string_view>
#include <vector>

namespace tarn::base
{

struct EmbeddedFile
{
    std::string_view name; // without its directory
    std::string_view text;
};

// Throws std::logic_error if there is no file of that name.
std::string_view embeddedText(const std::vector<EmbeddedFile>& files, std::string_view name);

} // namespace tarn::base
