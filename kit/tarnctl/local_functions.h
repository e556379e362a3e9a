// The functions of the library's frame: event subscription, and what works without any service.
#pragma once

#include "catalogue.h"

#include <vector>

namespace tarn::ctl
{

std::vector<LibraryFunction> localFunctions();

} // namespace tarn::ctl
