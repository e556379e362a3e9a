// The opaque records, filled from the model.
#pragma once

#include "command_request.h"
#include "model.h"

namespace tarn::simulator
{

// Each fills every field of its record, whose layout it expects.
void fillRadio(Record& record, const Radio& radio);
void fillNeighbour(Record& record, const Neighbour& neighbour);
void fillInterface(Record& record, const Interface& interface);
void fillAccessPoint(Record& record, const Interface& interface);
void fillWps(Record& record, const Model& model, const Interface& interface);
void fillStation(Record& record, const Model& model, const Interface& interface, const Station& station);

// One byte a channel; ended by 0 where there is room.
std::vector<std::uint8_t> channelBytes(const std::vector<std::uint32_t>& channels);
// "36,40,44".
std::string channelText(const std::vector<std::uint32_t>& channels);

} // namespace tarn::simulator
