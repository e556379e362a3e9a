// The device service's associated stations and MAC address filters.
#include "handlers.h"
#include "records.h"

namespace tarn::simulator
{

namespace
{

void getAssociatedNum(Model& model, CommandRequest& request)
{
    request.setNumber("number", count(interfaceOf(model, request).stations));
}

void answerStation(const Model& model, const Interface& interface, const Station& station, CommandRequest& request)
{
    Record associated = request.blank("associated");
    fillStation(associated, model, interface, station);
    associated.setText("name", interface.name);
    request.setRecord("associated", associated);
}

void getAssociatedAt(Model& model, CommandRequest& request)
{
    Interface& interface = interfaceOf(model, request);
    answerStation(model, interface, elementAt(interface.stations, request.number("index")), request);
}

void getAssociated(Model& model, CommandRequest& request)
{
    Interface& interface = interfaceOf(model, request);
    answerStation(model, interface, interface.station(request.address("macAddress")), request);
}

void getAssociatedStats(Model& model, CommandRequest& request)
{
    const Station& station = interfaceOf(model, request).station(request.address("macAddress"));
    Record stats = request.blank("stats");
    fill(stats, station);
    fill(stats, model.polled(station));
    stats.setNumber("secondsAssociated", model.secondsAssociated(station));
    request.setRecord("stats", stats);
}

void kickOut(Model& model, CommandRequest& request)
{
    model.kickOut(interfaceOf(model, request), request.address("macAddress"));
}

void addMacFilter(Model& model, CommandRequest& request)
{
    Model::addAddress(interfaceOf(model, request).macFilter, request.address("macAddress"), kMacFilterRoom);
}

void delMacFilter(Model& model, CommandRequest& request)
{
    Model::removeAddress(interfaceOf(model, request).macFilter, request.address("macAddress"));
}

void getMacFilterNum(Model& model, CommandRequest& request)
{
    request.setNumber("number", count(interfaceOf(model, request).macFilter));
}

void getMacFilterAt(Model& model, CommandRequest& request)
{
    request.setAddress("macAddress", elementAt(interfaceOf(model, request).macFilter, request.number("index")));
}

} // namespace

void addStationHandlers(HandlerTable& table)
{
    table.add("TarnGetAccessPointAssociatedNum", getAssociatedNum);
    table.add("TarnGetAccessPointAssociatedAt", getAssociatedAt);
    table.add("TarnGetAccessPointAssociated", getAssociated);
    table.add("TarnGetAccessPointAssociatedStats", getAssociatedStats);
    table.add("TarnKickOutAccessPointAssociated", kickOut);
    table.add("TarnAddAccessPointMacFilter", addMacFilter);
    table.add("TarnDelAccessPointMacFilter", delMacFilter);
    table.add("TarnGetAccessPointMacFilterNum", getMacFilterNum);
    table.add("TarnGetAccessPointMacFilterAt", getMacFilterAt);
}

} // namespace tarn::simulator
