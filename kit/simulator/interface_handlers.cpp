// The device service's SSID interfaces and the access points on them: configuration, security, WPS, roaming, block list.
#include "base/hexadecimal.h"
#include "handlers.h"
#include "records.h"

namespace tarn::simulator
{

namespace
{

// --- SSID interfaces ---------------------------------------------------------------------------------------------------------

void getSsidIntfNum(Model& model, Exchange& exchange)
{
    exchange.setNumber("number", count(radioOf(model, exchange).interfaces));
}

void answerSsidIntf(const Interface& interface, Exchange& exchange)
{
    Record data = exchange.blank("data");
    fillInterface(data, interface);
    exchange.setRecord("data", data);
}

void getSsidIntfAt(Model& model, Exchange& exchange)
{
    answerSsidIntf(elementAt(radioOf(model, exchange).interfaces, exchange.number("index")), exchange);
}

void getSsidIntf(Model& model, Exchange& exchange)
{
    answerSsidIntf(interfaceOf(model, exchange), exchange);
}

void setSsidIntfCfg(Model& model, Exchange& exchange)
{
    Interface& interface = interfaceOf(model, exchange);
    model.change(interface, exchange.record("cfg").changes(exchange.number("param")));
}

void getSsidIntfStats(Model& model, Exchange& exchange)
{
    const Interface& interface = interfaceOf(model, exchange);
    Record stats = exchange.blank("stats");
    model.polled(interface).fill(stats);
    stats.setNumber("stations", interface.stations.size());
    exchange.setRecord("stats", stats);
}

void getIsPrimary(Model& model, Exchange& exchange)
{
    exchange.setNumber("isPrimary", interfaceOf(model, exchange).id == 1 ? 1 : 0);
}

void setRoamingEnable(Model& model, Exchange& exchange)
{
    Interface& interface = interfaceOf(model, exchange);
    if (exchange.number("enable") != 0 && !interface.radio->supportsRoaming)
        throw Refused{Outcome::kSwitchedOff};
    model.change(interface, {{"roaming", exchange.number("enable")}});
}

void getRoamingMdid(Model& model, Exchange& exchange)
{
    exchange.setMobilityDomain("mdid", *parseMobilityDomain(interfaceOf(model, exchange).settings.text("mobilityDomain")));
}

void setRoamingMdid(Model& model, Exchange& exchange)
{
    model.change(interfaceOf(model, exchange), {{"mobilityDomain", base::hexText(exchange.mobilityDomain("mdid"))}});
}

void getBlockAddrNum(Model& model, Exchange& exchange)
{
    exchange.setNumber("number", count(interfaceOf(model, exchange).blocked));
}

// The caller does not get it, but the message carries it.
void getBlockAddrAt(Model& model, Exchange& exchange)
{
    const MacAddress& address = elementAt(interfaceOf(model, exchange).blocked, exchange.number("index"));
    exchange.setAddressWhere("TarnAddSsidOPXShgwBlockAddr", "mac", address);
}

void addBlockAddr(Model& model, Exchange& exchange)
{
    Model::addAddress(interfaceOf(model, exchange).blocked, exchange.address("mac"), kBlockListRoom);
}

void delBlockAddr(Model& model, Exchange& exchange)
{
    Model::removeAddress(interfaceOf(model, exchange).blocked, exchange.address("mac"));
}

// --- Access points -----------------------------------------------------------------------------------------------------------

void getAccessPoint(Model& model, Exchange& exchange)
{
    Record data = exchange.blank("data");
    fillAccessPoint(data, interfaceOf(model, exchange));
    exchange.setRecord("data", data);
}

void setWholeCfg(Model& model, Exchange& exchange)
{
    Interface& interface = interfaceOf(model, exchange);
    model.change(interface, exchange.record("cfg").changes(0));
}

void getSecurity(Model& model, Exchange& exchange)
{
    Record data = exchange.blank("data");
    data.fill(interfaceOf(model, exchange).settings);
    exchange.setRecord("data", data);
}

void getWps(Model& model, Exchange& exchange)
{
    Record data = exchange.blank("data");
    fillWps(data, model, interfaceOf(model, exchange));
    exchange.setRecord("data", data);
}

void setWpsCfg(Model& model, Exchange& exchange)
{
    Interface& interface = interfaceOf(model, exchange);
    model.change(interface, exchange.record("cfg").changes(exchange.number("value")));
}

void getWpsWindowStatus(Model& model, Exchange& exchange)
{
    exchange.setNumber("status", static_cast<std::uint32_t>(interfaceOf(model, exchange).window.status));
}

// The PIN comes as a number, its leading zeros lost on the way.
std::string pinText(std::uint32_t pin)
{
    const std::string digits = std::to_string(pin);
    return digits.size() < 8 ? std::string(8 - digits.size(), '0') + digits : digits;
}

void triggerWpsWindow(Model& model, Exchange& exchange)
{
    Interface& interface = interfaceOf(model, exchange);
    const auto method = static_cast<WpsMethod>(exchange.number("value1"));
    if (method != WpsMethod::kButton && method != WpsMethod::kPin)
        throw Refused{Outcome::kInvalidValue};
    model.openWpsWindow(interface, method, pinText(exchange.number("value2")));
}

void cancelWpsWindow(Model& model, Exchange& exchange)
{
    model.cancelWpsWindow(interfaceOf(model, exchange));
}

} // namespace

void addInterfaceHandlers(HandlerTable& table)
{
    table.add("TarnGetSsidIntfNum", getSsidIntfNum);
    table.add("TarnGetSsidIntfAt", getSsidIntfAt);
    table.add("TarnGetSsidIntf", getSsidIntf);
    table.add("TarnSetSsidIntfCfg", setSsidIntfCfg);
    table.add("TarnGetSsidIntfStats", getSsidIntfStats);
    table.add("TarnGetSsidIntfIsPrimarySSIDIntf", getIsPrimary);
    table.add("TarnSetSsidOPXRoamingEnable", setRoamingEnable);
    table.add("TarnGetSsidOPXRoamingMdid", getRoamingMdid);
    table.add("TarnSetSsidOPXRoamingMdid", setRoamingMdid);
    table.add("TarnGetSsidOPXShgwBlockAddrNum", getBlockAddrNum);
    table.add("TarnGetSsidOPXShgwBlockAddrAt", getBlockAddrAt);
    table.add("TarnAddSsidOPXShgwBlockAddr", addBlockAddr);
    table.add("TarnDelSsidOPXShgwBlockAddr", delBlockAddr);
    table.add("TarnGetAccessPoint", getAccessPoint);
    table.add("TarnSetAccessPointCfg", setWholeCfg);
    table.add("TarnGetAccessPointSecurity", getSecurity);
    table.add("TarnSetAccessPointSecurityCfg", setWholeCfg);
    table.add("TarnGetAccessPointWps", getWps);
    table.add("TarnSetAccessPointWpsCfg", setWpsCfg);
    table.add("TarnGetAccessPointWpsWindowStatus", getWpsWindowStatus);
    table.add("TarnTriggerAccessPointWpsWindow", triggerWpsWindow);
    table.add("TarnCancelAccessPointWpsWindow", cancelWpsWindow);
}

} // namespace tarn::simulator
