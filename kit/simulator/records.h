// The record of a station, which tells of its association as well.
#pragma once

#include "command_request.h"
#include "model.h"

namespace tarn::simulator
{

void fillStation(Record& record, const Model& model, const Interface& interface, const Station& station);

} // namespace tarn::simulator
