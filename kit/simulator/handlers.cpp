#include "handlers.h"

#include <stdexcept>

namespace tarn::simulator
{

namespace
{

// The names that the functions have for the interface's name, and for its id.
constexpr const char* kInterfaceNames[] = {"ifname", "intf_name", "name"};
constexpr const char* kInterfaceIds[] = {"ssidId", "apId"};

HandlerTable makeTable()
{
    HandlerTable table;
    addStoredSettings(table);
    addRadioHandlers(table);
    addInterfaceHandlers(table);
    addStationHandlers(table);
    addModuleHandlers(table);
    addSmartWiFiHandlers(table);
    addProxySystemHandlers(table);
    addProxyChannelHandlers(table);
    addProxyInterfaceHandlers(table);
    addProxyStatisticsHandlers(table);
    addMirrorHandlers(table);
    return table;
}

} // namespace

void HandlerTable::add(const char* function, Handler handler)
{
    if (!contract::find(function))
        throw std::logic_error(std::string("no function ") + function);
    if (!handlers_.emplace(function, std::move(handler)).second)
        throw std::logic_error(std::string(function) + " has a handler already");
}

void HandlerTable::add(std::initializer_list<std::pair<const char*, Handler>> handlers)
{
    for (const auto& [function, handler] : handlers)
        add(function, handler);
}

const Handler* HandlerTable::find(const std::string& function) const
{
    const auto found = handlers_.find(function);
    return found == handlers_.end() ? nullptr : &found->second;
}

const HandlerTable& handlers()
{
    static const HandlerTable kTable = makeTable();
    return kTable;
}

Interface& interfaceOf(Model& model, const CommandRequest& request)
{
    for (const char* name : kInterfaceIds)
        if (request.command().argument(name) != nullptr)
            return model.interfaceOf(request.number("radioId"), request.number(name));
    for (const char* name : kInterfaceNames)
        if (request.command().argument(name) != nullptr)
            return model.moduleInterface(request.text(name));
    throw std::logic_error(request.command().function + " names no interface");
}

Radio& radioOf(Model& model, const CommandRequest& request)
{
    if (request.command().argument("radioId") != nullptr)
        return model.radio(request.number("radioId"));
    return *interfaceOf(model, request).radio;
}

Radio& moduleRadioOf(Model& model, const CommandRequest& request)
{
    Radio& radio = radioOf(model, request);
    if (!radio.onModule)
        throw Refused{ReplyStatus::kNoSuchObject, "radio " + radio.name + " is none of the Wi-Fi module's"};
    return radio;
}

} // namespace tarn::simulator
