// The model of one gateway, which all its services read and change.
//
// Its functions throw Refused for what cannot be granted. They do not lock the model; their callers do.
#pragma once

#include "objects.h"
#include "reply_status.h"

#include <functional>
#include <string>

namespace tarn::simulator
{

class Model
{
public:
    using Publish = std::function<void(const std::string& event, const Record& data)>;

    explicit Model(const Clock& clock, GatewayLayout layoutInUse = GatewayLayout());
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    const GatewayLayout layout;

    // What the gateway consists of. A scenario fills it, and calls start.
    std::string schema;        // where the scenario says that its JSON Schema is
    std::uint32_t version = 1; // of the scenario's format
    std::string description;
    Milliseconds time = 0; // since the gateway was started, up to which it has advanced
    bool supportsWfaAlliance = true;
    Timing timing;
    Service service;
    Module module;
    std::deque<Radio> radios;
    SmartWiFi smartWiFi;

    Publish publish; // called with every event; may be empty

    // Stations associate, and time starts to count.
    void start();

    // Carries out what is due by now. To be called before the model is read and after it has been changed.
    void advance();

    std::uint32_t secondsSinceStart() const;

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

    Interface& createInterface(const std::string& name, bool enabled);
    void kickOut(Interface& interface, const MacAddress& address);
    void stopPolling(Polling what, bool stop);

    static void addAddress(std::vector<MacAddress>& list, const MacAddress& address, std::size_t room);
    static void removeAddress(std::vector<MacAddress>& list, const MacAddress& address);

    // --- What takes time -----------------------------------------------------------------------------------------------------

    void startScan(Radio& radio, std::uint32_t flags);
    void openWpsWindow(Interface& interface, WpsMethod method, const std::string& pin);
    void cancelWpsWindow(Interface& interface);
    void startDownload(const std::string& path);
    void startProduction();
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
    static void bringIn(Interface& interface);
    void settle(Radio& radio);
    void settle(Interface& interface);
    void associate(Interface& interface, Station station);
    void part(Interface& interface, std::size_t index);
    void setWpsWindow(Interface& interface, WpsStatus status);
    void beginRadarCheck(Radio& radio);
    void publishEvent(const char* event, const Record& data) const;
    // Adds it to the history and publishes its event.
    void reportAssociation(const Interface& interface, const Station& station, bool associated);

    const Clock& clock_;
    Milliseconds started_ = 0; // when the time was 0, by the clock
};

template <>
const Description<Model>& descriptionOf();

} // namespace tarn::simulator
