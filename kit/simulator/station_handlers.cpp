// The device service's associated stations and MAC address filters.
#include "handlers.h"
#include "records.h"

namespace tarn::simulator
{

namespace
{

void getAssociatedNum(Model& model, Exchange& exchange)
{
    exchange.setNumber("number", count(interfaceOf(model, exchange).stations));
}

void answerStation(const Model& model, const Interface& interface, const Station& station, Exchange& exchange)
{
    Record associated = exchange.blank("associated");
    fillStation(associated, model, interface, station);
    associated.setText("name", interface.name);
    exchange.setRecord("associated", associated);
}

void getAssociatedAt(Model& model, Exchange& exchange)
{
    Interface& interface = interfaceOf(model, exchange);
    answerStation(model, interface, model.stationAt(interface, exchange.number("index")), exchange);
}

void getAssociated(Model& model, Exchange& exchange)
{
    Interface& interface = interfaceOf(model, exchange);
    answerStation(model, interface, model.station(interface, exchange.address("macAddress")), exchange);
}

void getAssociatedStats(Model& model, Exchange& exchange)
{
    const Station& station = model.station(interfaceOf(model, exchange), exchange.address("macAddress"));
    Record stats = exchange.blank("stats");
    model.polled(station).fill(stats);
    stats.setSigned("rssi", station.rssi);
    stats.setNumber("secondsAssociated", model.secondsAssociated(station));
    exchange.setRecord("stats", stats);
}

void kickOut(Model& model, Exchange& exchange)
{
    model.kickOut(interfaceOf(model, exchange), exchange.address("macAddress"));
}

void addMacFilter(Model& model, Exchange& exchange)
{
    Model::addAddress(interfaceOf(model, exchange).macFilter, exchange.address("macAddress"), kMacFilterRoom);
}

void delMacFilter(Model& model, Exchange& exchange)
{
    Model::removeAddress(interfaceOf(model, exchange).macFilter, exchange.address("macAddress"));
}

void getMacFilterNum(Model& model, Exchange& exchange)
{
    exchange.setNumber("number", count(interfaceOf(model, exchange).macFilter));
}

void getMacFilterAt(Model& model, Exchange& exchange)
{
    exchange.setAddress("macAddress", elementAt(interfaceOf(model, exchange).macFilter, exchange.number("index")));
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
