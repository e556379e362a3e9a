/* The JSON files of this directory as the build compiled them in. */
#pragma once

#include <cstddef>

namespace tarn::contract
{

struct EmbeddedFile
{
    const char* name;
    const char* text;
    std::size_t length;
};

extern const EmbeddedFile kEmbeddedFiles[];
extern const std::size_t kEmbeddedFileCount;

} // namespace tarn::contract
