// The device service's associated stations and MAC address filters.
#include "handlers.h"
#include "records.h"

namespace tarn::simulator
{

namespace
{

void answerStation(const Model& model, const Interface& interface, const Station& station, CommandRequest& request)
{
    Record associated = request.blank("associated");
    fillStation(associated, model, interface, station);
    associated.setText("name", interface.name);
    request.setRecord("associated", associated);
}

} // namespace

void addStationHandlers(HandlerTable& table)
{
    table.add({
        {"TarnGetAccessPointAssociatedNum", [](Model& model, CommandRequest& request)
         { request.setNumber("number", count(interfaceOf(model, request).stations)); }},
        {"TarnGetAccessPointAssociatedAt",
         [](Model& model, CommandRequest& request)
         {
             Interface& interface = interfaceOf(model, request);
             answerStation(model, interface, elementAt(interface.stations, request.number("index")), request);
         }},
        {"TarnGetAccessPointAssociated",
         [](Model& model, CommandRequest& request)
         {
             Interface& interface = interfaceOf(model, request);
             answerStation(model, interface, interface.station(request.address("macAddress")), request);
         }},
        {"TarnGetAccessPointAssociatedStats",
         [](Model& model, CommandRequest& request)
         {
             const Station& station = interfaceOf(model, request).station(request.address("macAddress"));
             Record stats = request.blank("stats");
             fill(stats, station);
             fill(stats, model.polled(station));
             stats.setNumber("secondsAssociated", model.secondsAssociated(station));
             request.setRecord("stats", stats);
         }},
        {"TarnKickOutAccessPointAssociated", [](Model& model, CommandRequest& request)
         { model.kickOut(interfaceOf(model, request), request.address("macAddress")); }},
        {"TarnAddAccessPointMacFilter", [](Model& model, CommandRequest& request)
         { model.add(interfaceOf(model, request), &Interface::macFilter, request.address("macAddress"), kMacFilterRoom); }},
        {"TarnDelAccessPointMacFilter", [](Model& model, CommandRequest& request)
         { model.remove(interfaceOf(model, request), &Interface::macFilter, request.address("macAddress")); }},
        {"TarnGetAccessPointMacFilterNum", [](Model& model, CommandRequest& request)
         { request.setNumber("number", count(interfaceOf(model, request).macFilter)); }},
        {"TarnGetAccessPointMacFilterAt", [](Model& model, CommandRequest& request)
         { request.setAddress("macAddress", elementAt(interfaceOf(model, request).macFilter, request.number("index"))); }},
    });
}

} // namespace tarn::simulator
