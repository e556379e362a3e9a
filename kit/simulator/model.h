// The model of one gateway, which all its services read and change.
//
// Its functions throw Refused for what cannot be granted. They do not lock the model; their callers do.
#pragma once

#include "agenda.h"
#include "fault.h"
#include "objects.h"
#include "random.h"
#include "reply_status.h"

#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

namespace tarn::simulator
{

class Model
{
public:
    using Publish = std::function<void(const std::string& event, const Record& data)>;

    explicit Model(GatewayLayout layoutInUse = GatewayLayout());
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    const GatewayLayout layout;

    // What the gateway consists of. A scenario fills it, and calls start.
    std::string schema;        // where the scenario says that its JSON Schema is
    std::uint32_t version = 1; // of the scenario's format
    std::string description;
    Milliseconds time = 0;     // since the gateway was started, up to which it has advanced
    Milliseconds bootedAt = 0; // when it was last rebooted
    Random random;
    Agenda agenda;
    Air air;
    std::vector<Client> clients;
    std::vector<Fault> faults;
    bool supportsWfaAlliance = true;
    Timing timing;
    Service service;
    Module module;
    std::deque<Radio> radios;
    SmartWiFi smartWiFi;

    Publish publish; // called with every event; may be empty

    // Stations associate.
    void start();

    // Lets what is due until that time happen, each at its own time and in the order of the agenda.
    void advance(Milliseconds to);

    // To be called when something has changed that decides who may be associated or, of radios, what links carry.
    void settle(Interface& interface);
    void settle(Radio& radio);
    void settle();

    std::uint32_t secondsSinceStart() const; // or the last reboot

    // --- Finding -------------------------------------------------------------------------------------------------------------

    Radio& radio(std::uint32_t id);
    Interface& interfaceOf(std::uint32_t radioId, std::uint32_t interfaceId);
    Interface& moduleInterface(const std::string& name); // one that the proxy reaches
    bool hasInterface(const std::string& name) const;
    Radio& moduleRadio(); // the module's first
    SteeringDomain& steeringDomain(const MobilityDomain& id);

    // --- Changing ------------------------------------------------------------------------------------------------------------

    // Makes all of the changes, or none, and publishes their events.
    void change(Radio& radio, const Changes<RadioSettings>& changes);
    void change(const std::vector<Radio*>& changing, const Changes<RadioSettings>& changes);
    void change(Interface& interface, const Changes<InterfaceSettings>& changes);
    void change(const Changes<ModuleSettings>& changes);
    // Security settings made through the module: at once, or, while security is deferred, with the next applySecurity.
    void changeSecurity(Interface& interface, const Changes<InterfaceSettings>& changes);
    void applySecurity(Interface& interface);

    Interface& createInterface(const std::string& name, bool enabled);
    void kickOut(Interface& interface, const MacAddress& address);
    void stopPolling(Polling what, bool stop);

    // An address of one of the interface's lists.
    void add(Interface& interface, std::vector<MacAddress> Interface::*list, const MacAddress& address, std::size_t room);
    void remove(Interface& interface, std::vector<MacAddress> Interface::*list, const MacAddress& address);

    static void addAddress(std::vector<MacAddress>& list, const MacAddress& address, std::size_t room);
    static void removeAddress(std::vector<MacAddress>& list, const MacAddress& address);

    // --- By a tester's hand --------------------------------------------------------------------------------------------------

    // Takes the state of the other, which a scenario has filled, and publishes what changes with it.
    void replaceBy(const Model& other);
    // As after a reset of the gateway to `original`; the time, what is around the gateway and the faults stay as they are.
    void loseSettings(Model& original);
    // As after a loss of power: settings stay, stations leave and come again, and what was running has ended.
    void reboot();
    // It looks for its network anew there.
    void moveClient(const MacAddress& address, std::uint32_t pathLoss);
    void removeClient(const MacAddress& address);

    // The fault that happens to this request, or to this event, if one does; it is counted.
    std::optional<Fault> takeFault(const std::string& serviceId, const std::vector<std::string>& functions);
    std::optional<Fault> takeEventFault(const std::string& event);
    bool hangs(const std::string& serviceId, const std::vector<std::string>& functions) const;

    // --- What takes time -----------------------------------------------------------------------------------------------------

    void cancelScan(Radio& radio);
    void stopDfsRadio(Radio& radio);
    bool isProductionDone() const;
    std::uint32_t wpsSecondsLeft(const Interface& interface) const;
    void startScan(Radio& radio, std::uint32_t flags);
    void openWpsWindow(Interface& interface, WpsMethod method, const std::string& pin);
    void cancelWpsWindow(Interface& interface);
    void startDownload(const std::string& path);
    void startProduction();
    void radarAppears(std::uint32_t channel); // one of 20 MHz, at 5 GHz
    void startDfsRadio(Radio& radio, std::uint32_t channel);

    // --- What follows from the state -----------------------------------------------------------------------------------------

    std::int32_t chainPower(const Radio& radio, std::uint32_t chain) const; // dBm; 0 where there is no such chain
    std::uint32_t secondsAssociated(const Station& station) const;

    // The counters that the device service sees: those of the time its polling was stopped, if it is.
    template <typename Object>
    Counters polled(const Object& object) const
    {
        return object.frozen ? *object.frozen : counters(object);
    }

    // The actual counters.
    Counters counters(const Radio& radio) const;
    Counters counters(const Interface& interface) const;
    Counters counters(const Station& station) const;

private:
    void happen(const Due& due);
    void link();
    void indexClients();
    std::size_t clientNumbered(const MacAddress& address) const;
    void cancelReturns(const MacAddress& address);
    void restart(Radio& radio);
    void restart(Interface& interface);
    template <typename Matches>
    std::optional<Fault> takeFaultThat(Matches matches);

    // Radios.
    RadioSettings changed(const Radio& radio, const Changes<RadioSettings>& changes) const;
    void apply(Radio& radio, RadioSettings changed);
    void takeOver(Radio& radio, RadioSettings changed);
    void settle(const std::vector<Radio*>& changed);
    void endWhatCannotGoOn(Radio& radio);
    std::uint32_t quietestChannel(const Radio& radio, const RadioSettings& settings) const;
    void publishRadio(const char* event, const Radio& radio) const;
    void reportReadiness(Radio& radio, bool isSwitched);
    Milliseconds checkDuration(const Radio& radio, std::uint32_t channel, std::uint32_t bandwidth) const;
    void leaveChannel(Radio& radio);
    void endNonOccupancy(Radio& radio, std::uint32_t channel);
    void endScan(Radio& radio) const;
    static void endDfsRadioCheck(Radio& radio);
    void endRadarCheck(Radio& radio);

    // Clients.
    bool suits(const Interface& interface, const Client& client) const;
    std::int32_t signalAt(const Radio& radio, const Client& client) const; // dBm
    bool admits(const Interface& interface, const MacAddress& address, std::size_t associated) const;
    bool isGroupFull(const Interface& interface, std::size_t associated) const;
    std::vector<Interface*> allInterfaces();
    void seek(std::size_t index, const std::vector<Interface*>& candidates);
    void seekAll();
    void dismiss(Interface& interface);
    void refreshStale();
    void refresh(Radio& radio) const;
    void refresh(const Interface& interface, const LinkConditions& best, Station& station) const;
    MacAddress freeAddress(MacAddress address) const;
    void associate(Interface& interface, const Client& client);
    bool release(Interface& interface, const MacAddress& address);
    void releaseAll(Interface& interface);
    void part(Interface& interface, const Station& station);
    void setWpsWindow(Interface& interface, WpsStatus status);
    void beginRadarCheck(Radio& radio);
    void publishEvent(const char* event, const Record& data) const;
    // Adds it to the history and publishes its event.
    void reportAssociation(const Interface& interface, const MacAddress& address, bool associated);

    std::unordered_map<MacAddress, std::size_t, base::MacAddressHash> clientIndex_; // in `clients`
    std::vector<bool> isIdle_;                                                      // whether each of them is not associated
    std::vector<bool> ready_;                                                       // the radios, as last reported
};

template <>
const Description<Random>& descriptionOf();
template <>
const Description<Due>& descriptionOf();
template <>
const Description<Model>& descriptionOf();

} // namespace tarn::simulator
