// Files that are there in full or not at all.
#pragma once

#include <string>

namespace tarn::base
{

enum class Readers
{
    kAsUsual, // by the process's umask
    kOwnerOnly
};

// Writes the text into a new file beside the one at that path, and renames it. Behind a symbolic link, what it leads to is
// replaced. Throws std::runtime_error if that cannot be done, for instance because the path names a directory or a device; what
// was there stays then.
void replaceFile(const std::string& path, const std::string& text, Readers readers);

// Throws what replaceFile would, as far as that can be known before.
void checkReplaceable(const std::string& path);

} // namespace tarn::base
