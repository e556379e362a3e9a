#include "embedded_files.h"

#include <stdexcept>
#include <string>

namespace tarn::base
{

std::string_view embeddedText(const std::vector<EmbeddedFile>& files, std::string_view name)
{
    for (const EmbeddedFile& file : files)
        if (file.name == name)
            return file.text;
    throw std::logic_error("there is no embedded file " + std::string(name));
}

} // namespace tarn::base
