// Fills the opaque records from the model.
#pragma once

#include "command_request.h"
#include "model.h"

namespace tarn::simulator
{

// They fill every field of the record, whose layout they expect.
void fillRadio(Record& record, const Radio& radio);
void fillNeighbour(Record& record, const Neighbour& neighbour);
void fillInterface(Record& record, const Interface& interface);
void fillAccessPoint(Record& record, const Interface& interface);
void fillWps(Record& record, const Model& model, const Interface& interface);
void fillStation(Record& record, const Model& model, const Interface& interface, const Station& station);

MobilityDomain mobilityDomainOf(const Interface& interface);

// One byte for each channel.
// "36,40,44".
std::string channelText(const std::vector<std::uint32_t>& channels);

} // namespace tarn::simulator
