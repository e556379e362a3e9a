// Callers that call one service at the same time, and how long each call took them.
#pragma once

#include "round_trip/peer.h"

#include <vector>

namespace round_trip
{

struct Calls
{
    std::vector<double> nanoseconds; // of each call of each caller, sorted
    double seconds = 0;              // from the first call to the end of the last
};

// Lets so many threads, each with a connection of its own, call until together they have made `calls` calls.
Calls callTogether(const Peer& peer, const std::string& directory, std::size_t length, int callers, int calls);

} // namespace round_trip
