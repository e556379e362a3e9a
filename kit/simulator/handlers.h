// What a command does to the model and what it answers: one handler for each function of the contract.
#pragma once

#include "command_request.h"
#include "lists.h"
#include "model.h"

#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <utility>

namespace tarn::simulator
{

// Reads the request's arguments and writes the outputs of the reply, but not its status. Throws Refused for what cannot be
// granted.
using Handler = std::function<void(Model&, CommandRequest&)>;

class HandlerTable
{
public:
    // Throws std::logic_error if the contract does not know the function, or if it has a handler already.
    void add(const char* function, Handler handler);
    void add(std::initializer_list<std::pair<const char*, Handler>> handlers);

    // Null if there is none.
    const Handler* find(const std::string& function) const;

private:
    std::map<std::string, Handler> handlers_;
};

// Those of every function.
const HandlerTable& handlers();

// The groups that make up that table.
void addStoredSettings(HandlerTable& table);
void addRadioHandlers(HandlerTable& table);
void addInterfaceHandlers(HandlerTable& table);
void addStationHandlers(HandlerTable& table);
void addModuleHandlers(HandlerTable& table);
void addSmartWiFiHandlers(HandlerTable& table);
void addProxySystemHandlers(HandlerTable& table);
void addProxyChannelHandlers(HandlerTable& table);
void addProxyInterfaceHandlers(HandlerTable& table);
void addProxyStatisticsHandlers(HandlerTable& table);
void addMirrorHandlers(HandlerTable& table);

// The objects that a request names, by its ids or its interface name. Throws Refused if there is no such object.
Radio& radioOf(Model& model, const CommandRequest& request);       // "radioId", or the radio of the interface name
Radio& moduleRadioOf(Model& model, const CommandRequest& request); // the same, and it is one of the Wi-Fi module's
Interface& interfaceOf(Model& model, const CommandRequest& request);

// Sets the value of a key in a table. Throws Refused for one that the table does not take.
template <typename Object, typename Key, typename Value>
void put(Object& object, std::map<Key, Value> Object::*table, const Key& key, Value value)
{
    std::map<Key, Value> changed = object.*table;
    changed[key] = std::move(value);
    assign(object, table, std::move(changed));
}

// Throws Refused if the key would be one more than a table has room for.
template <typename Table>
void requireRoom(const Table& table, const typename Table::key_type& key)
{
    if (table.count(key) == 0 && table.size() >= kTableRoom)
        throw Refused{ReplyStatus::kFull, "the table has room for " + std::to_string(kTableRoom)};
}

} // namespace tarn::simulator
