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

const Handler* HandlerTable::find(const std::string& function) const
{
    const auto found = handlers_.find(function);
    return found == handlers_.end() ? nullptr : &found->second;
}

const HandlerTable& handlers()
{
    static const HandlerTable table = makeTable();
    return table;
}

Interface& interfaceOf(Model& model, const Exchange& exchange)
{
    for (const char* name : kInterfaceIds)
        if (exchange.command().argument(name) != nullptr)
            return model.interfaceOf(exchange.number("radioId"), exchange.number(name));
    for (const char* name : kInterfaceNames)
        if (exchange.command().argument(name) != nullptr)
            return model.moduleInterface(exchange.text(name));
    throw std::logic_error(exchange.command().function + " names no interface");
}

Radio& radioOf(Model& model, const Exchange& exchange)
{
    if (exchange.command().argument("radioId") != nullptr)
        return model.radio(exchange.number("radioId"));
    return *interfaceOf(model, exchange).radio;
}

Radio& moduleRadioOf(Model& model, const Exchange& exchange)
{
    Radio& radio = radioOf(model, exchange);
    if (!radio.onModule)
        throw Refused{Outcome::kNoSuchObject};
    return radio;
}

} // namespace tarn::simulator
