#pragma once

#include "base/embedded_files.h"

namespace tarn::simulator
{

// default.json.
const std::vector<base::EmbeddedFile>& embeddedFiles();

} // namespace tarn::simulator
