#include "records.h"

namespace tarn::simulator
{

void fillStation(Record& record, const Model& model, const Interface& interface, const Station& station)
{
    fill(record, station);
    record.setAddress("macAddress", station.address);
    record.setNumber("associationIndex", static_cast<std::uint64_t>(&station - interface.stations.data()));
    record.setNumber("secondsAssociated", model.secondsAssociated(station));
}

} // namespace tarn::simulator
