// The device service's SSID interfaces and the access points on them: configuration, security, WPS, roaming, block list.
#include "handlers.h"

namespace tarn::simulator
{

namespace
{

// --- SSID interfaces ---------------------------------------------------------------------------------------------------------

void getSsidIntfNum(Model& model, CommandRequest& request)
{
    request.setNumber("number", count(radioOf(model, request).interfaces));
}

void answerSsidIntf(const Interface& interface, CommandRequest& request)
{
    request.answer("data", interface);
}

void getSsidIntfAt(Model& model, CommandRequest& request)
{
    answerSsidIntf(elementAt(radioOf(model, request).interfaces, request.number("index")), request);
}

void getSsidIntf(Model& model, CommandRequest& request)
{
    answerSsidIntf(interfaceOf(model, request), request);
}

void setCfg(Model& model, CommandRequest& request)
{
    interfaceOf(model, request).change(request.changes<InterfaceSettings>("cfg"));
}

void getSsidIntfStats(Model& model, CommandRequest& request)
{
    const Interface& interface = interfaceOf(model, request);
    request.answer("stats", model.polled(interface), interface);
}

void getIsPrimary(Model& model, CommandRequest& request)
{
    request.setNumber("isPrimary", interfaceOf(model, request).id == 1 ? 1 : 0);
}

void setRoamingEnable(Model& model, CommandRequest& request)
{
    Interface& interface = interfaceOf(model, request);
    if (request.number("enable") != 0 && !interface.radio->supportsRoaming)
        throw Refused{ReplyStatus::kSwitchedOff};
    assign(interface.settings, &InterfaceSettings::roaming, request.number("enable"));
}

void getRoamingMdid(Model& model, CommandRequest& request)
{
    request.setMobilityDomain("mdid", interfaceOf(model, request).settings.mobilityDomain);
}

void setRoamingMdid(Model& model, CommandRequest& request)
{
    interfaceOf(model, request).settings.mobilityDomain = request.mobilityDomain("mdid");
}

void getBlockAddrNum(Model& model, CommandRequest& request)
{
    request.setNumber("number", count(interfaceOf(model, request).blocked));
}

// The message carries the address, although the library does not return it.
void getBlockAddrAt(Model& model, CommandRequest& request)
{
    const MacAddress& address = elementAt(interfaceOf(model, request).blocked, request.number("index"));
    request.setAddressWhere("TarnAddSsidOPXShgwBlockAddr", "mac", address);
}

void addBlockAddr(Model& model, CommandRequest& request)
{
    Model::addAddress(interfaceOf(model, request).blocked, request.address("mac"), kBlockListRoom);
}

void delBlockAddr(Model& model, CommandRequest& request)
{
    Model::removeAddress(interfaceOf(model, request).blocked, request.address("mac"));
}

// --- Access points -----------------------------------------------------------------------------------------------------------

void getAccessPoint(Model& model, CommandRequest& request)
{
    request.answer("data", interfaceOf(model, request));
}

void getSecurity(Model& model, CommandRequest& request)
{
    request.answer("data", interfaceOf(model, request));
}

void getWps(Model& model, CommandRequest& request)
{
    const Interface& interface = interfaceOf(model, request);
    Record data = request.blank("data");
    fill(data, interface);
    if (interface.window.status == WpsStatus::kOpen)
        data.setNumber("windowSecondsLeft", (interface.window.closes - model.time + 999) / 1000);
    request.setRecord("data", data);
}

void getWpsWindowStatus(Model& model, CommandRequest& request)
{
    request.setNumber("status", static_cast<std::uint32_t>(interfaceOf(model, request).window.status));
}

// The PIN comes as a number, its leading zeros lost on the way.
std::string pinText(std::uint32_t pin)
{
    const std::string digits = std::to_string(pin);
    return digits.size() < 8 ? std::string(8 - digits.size(), '0') + digits : digits;
}

void triggerWpsWindow(Model& model, CommandRequest& request)
{
    Interface& interface = interfaceOf(model, request);
    const auto method = static_cast<WpsMethod>(request.number("value1"));
    if (method != WpsMethod::kButton && method != WpsMethod::kPin)
        throw Refused{ReplyStatus::kInvalidValue};
    model.openWpsWindow(interface, method, pinText(request.number("value2")));
}

void cancelWpsWindow(Model& model, CommandRequest& request)
{
    model.cancelWpsWindow(interfaceOf(model, request));
}

} // namespace

void addInterfaceHandlers(HandlerTable& table)
{
    table.add("TarnGetSsidIntfNum", getSsidIntfNum);
    table.add("TarnGetSsidIntfAt", getSsidIntfAt);
    table.add("TarnGetSsidIntf", getSsidIntf);
    table.add("TarnSetSsidIntfCfg", setCfg);
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
    table.add("TarnSetAccessPointCfg", setCfg);
    table.add("TarnGetAccessPointSecurity", getSecurity);
    table.add("TarnSetAccessPointSecurityCfg", setCfg);
    table.add("TarnGetAccessPointWps", getWps);
    table.add("TarnSetAccessPointWpsCfg", setCfg);
    table.add("TarnGetAccessPointWpsWindowStatus", getWpsWindowStatus);
    table.add("TarnTriggerAccessPointWpsWindow", triggerWpsWindow);
    table.add("TarnCancelAccessPointWpsWindow", cancelWpsWindow);
}

} // namespace tarn::simulator
