// Two reports, field by field.
#pragma once

#include "tarnctl/cell.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tarn::ctl
{

struct Difference
{
    std::string subject;  // radio, interface, entry, or service
    std::string field;    // empty where a whole answer, or service, is on one side alone
    std::string function; // empty for a service
    Cell a;
    Cell b;
};

struct Comparison
{
    std::vector<Difference> differences;
    std::size_t compared = 0; // fields
    std::size_t measured = 0; // fields that were left out because they are measured, and differ at any time
    std::size_t hidden = 0;   // fields that one side does not show
};

// Entries of a list that have an address are compared by that, others by their number.
Comparison compare(const Json& a, const Json& b, bool withMeasured);

} // namespace tarn::ctl
