// The device service's SSID interfaces and the access points on them: configuration, security, WPS, roaming, block list.
#include "handlers.h"

namespace tarn::simulator
{

namespace
{

void answerSsidIntf(const Interface& interface, CommandRequest& request)
{
    request.answer("data", interface);
}

void setInterfaceCfg(Model& model, CommandRequest& request)
{
    Interface& interface = interfaceOf(model, request);
    model.change(interface, request.changes<InterfaceSettings>("cfg"));
}

// The PIN comes as a number, its leading zeros lost on the way.
std::string pinText(std::uint32_t pin)
{
    const std::string digits = std::to_string(pin);
    return digits.size() < 8 ? std::string(8 - digits.size(), '0') + digits : digits;
}

} // namespace

void addInterfaceHandlers(HandlerTable& table)
{
    table.add({

        // SSID interfaces.
        {"TarnGetSsidIntfNum",
         [](Model& model, CommandRequest& request) { request.setNumber("number", count(radioOf(model, request).interfaces)); }},
        {"TarnGetSsidIntfAt", [](Model& model, CommandRequest& request)
         { answerSsidIntf(elementAt(radioOf(model, request).interfaces, request.number("index")), request); }},
        {"TarnGetSsidIntf",
         [](Model& model, CommandRequest& request) { answerSsidIntf(interfaceOf(model, request), request); }},
        {"TarnSetSsidIntfCfg", setInterfaceCfg},
        {"TarnSetAccessPointCfg", setInterfaceCfg},
        {"TarnSetAccessPointSecurityCfg", setInterfaceCfg},
        {"TarnSetAccessPointWpsCfg", setInterfaceCfg},
        {"TarnGetSsidIntfStats",
         [](Model& model, CommandRequest& request)
         {
             const Interface& interface = interfaceOf(model, request);
             request.answer("stats", model.polled(interface), interface);
         }},
        {"TarnGetSsidIntfIsPrimarySSIDIntf", [](Model& model, CommandRequest& request)
         { request.setNumber("isPrimary", interfaceOf(model, request).id == 1 ? 1 : 0); }},
        {"TarnGetSsidOPXRoamingMdid", [](Model& model, CommandRequest& request)
         { request.setMobilityDomain("mdid", interfaceOf(model, request).settings.mobilityDomain); }},
        {"TarnSetSsidOPXRoamingMdid", [](Model& model, CommandRequest& request)
         { interfaceOf(model, request).settings.mobilityDomain = request.mobilityDomain("mdid"); }},
        {"TarnGetSsidOPXShgwBlockAddrNum", [](Model& model, CommandRequest& request)
         { request.setNumber("number", count(interfaceOf(model, request).blocked)); }},
        // The message carries the address, although the library does not return it.
        {"TarnGetSsidOPXShgwBlockAddrAt",
         [](Model& model, CommandRequest& request)
         {
             const MacAddress& address = elementAt(interfaceOf(model, request).blocked, request.number("index"));
             request.setAddressWhere("TarnAddSsidOPXShgwBlockAddr", "mac", address);
         }},
        {"TarnAddSsidOPXShgwBlockAddr", [](Model& model, CommandRequest& request)
         { model.add(interfaceOf(model, request), &Interface::blocked, request.address("mac"), kBlockListRoom); }},
        {"TarnDelSsidOPXShgwBlockAddr", [](Model& model, CommandRequest& request)
         { model.remove(interfaceOf(model, request), &Interface::blocked, request.address("mac")); }},

        // Access points.
        {"TarnGetAccessPoint",
         [](Model& model, CommandRequest& request) { request.answer("data", interfaceOf(model, request)); }},
        {"TarnGetAccessPointSecurity",
         [](Model& model, CommandRequest& request) { request.answer("data", interfaceOf(model, request)); }},
        {"TarnGetAccessPointWps",
         [](Model& model, CommandRequest& request)
         {
             const Interface& interface = interfaceOf(model, request);
             Record data = request.blank("data");
             fill(data, interface);
             data.setNumber("windowSecondsLeft", model.wpsSecondsLeft(interface));
             request.setRecord("data", data);
         }},
        {"TarnGetAccessPointWpsWindowStatus", [](Model& model, CommandRequest& request)
         { request.setNumber("status", static_cast<std::uint32_t>(interfaceOf(model, request).window.status)); }},
        {"TarnTriggerAccessPointWpsWindow",
         [](Model& model, CommandRequest& request)
         {
             Interface& interface = interfaceOf(model, request);
             const auto method = static_cast<WpsMethod>(request.number("value1"));
             if (method != WpsMethod::kButton && method != WpsMethod::kPin)
                 throw Refused{ReplyStatus::kInvalidValue,
                               "method " + std::to_string(request.number("value1")) + "; expected 1, button, or 2, PIN"};
             model.openWpsWindow(interface, method, pinText(request.number("value2")));
         }},
        {"TarnCancelAccessPointWpsWindow",
         [](Model& model, CommandRequest& request) { model.cancelWpsWindow(interfaceOf(model, request)); }},
    });
}

} // namespace tarn::simulator
