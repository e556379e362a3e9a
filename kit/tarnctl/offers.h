// What can complete a word of a command line: of the arguments of a call, and of what the gateway has.
#pragma once

#include "catalogue.h"

#include <string>
#include <vector>

namespace tarn::ctl
{

// Another word may follow at once where it ends in '=', '.' or '['.
struct Offer
{
    std::string word;
    std::string description; // one line; may be empty
};

using Offers = std::vector<Offer>;

// The names of arguments and fields that are not among the given assignments; behind a '=' what the argument's, or the field's,
// value may be, as far as the layout in use tells, or the gateway if it is asked.
Offers argumentOffers(const LibraryFunction& function, const std::vector<std::string>& given, const std::string& present,
                      bool asksGateway);

// Radios and interfaces, as Survey takes them.
Offers targetOffers();

// The addresses of all stations.
Offers stationOffers();

} // namespace tarn::ctl
