// What the program's streams are connected to.
#pragma once

#include <cstddef>

namespace tarn::ctl
{

struct Terminal
{
    bool showsResults = false; // standard output is a terminal
    bool showsRemarks = false; // standard error is one
    bool obeysColours = false; // and neither NO_COLOR nor TERM=dumb says that it should get none
    bool knowsUtf8 = false;    // by the locale's name
    std::size_t width = 80;    // columns
};

// Those of this process.
Terminal terminalOfProcess();

} // namespace tarn::ctl
