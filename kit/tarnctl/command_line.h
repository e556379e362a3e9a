// All of tarnctl but its main function.
#pragma once

#include "terminal.h"

#include <ostream>
#include <string>
#include <vector>

namespace tarn::ctl
{

// Carries out one command line, without the program's name, and returns the exit code.
int run(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err, const Terminal& terminal = {});

} // namespace tarn::ctl
