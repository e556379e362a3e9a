// A layout as a header for C99 and C++98: enumerations, and functions that read and write fields.
#pragma once

#include "layout.h"

#include <string>

namespace tarn::layout
{

std::string cHeader(const Layout& layout);

// A name of the contract or of a layout as C has it: "tarn_radio_data" of "TarnRadioData", "tx_mcs" of "txMcs".
std::string cName(const std::string& name);

} // namespace tarn::layout
