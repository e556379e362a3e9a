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

constexpr std::size_t kMacFilterRoom = 32;
constexpr std::size_t kBlockListRoom = 16;
constexpr std::size_t kNonSteerRoom = 32;
constexpr std::size_t kDomainRoom = 8;
constexpr std::size_t kInterfaceRoom = 8; // of one radio
constexpr std::size_t kHistoryRoom = 64;
constexpr std::size_t kTableRoom = 64; // custom values, boot parameters, files, entries of the security agent ...

// The objects whose statistics the device service can stop polling.
enum class Polling : std::uint32_t
{
    kAll,
    kRadios,
    kInterfaces,
    kStations
};

class Model
{
public:
    using Publish = std::function<void(const std::string& event, const Record& data)>;

    explicit Model(const Clock& clock, GatewayLayout layoutInUse = GatewayLayout());
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    const GatewayLayout layout;

    // What the gateway consists of. A scenario fills it, and calls start.
    Settings service{serviceProperties()};
    std::deque<Radio> radios;
    Module module;
    SmartWiFi smartWiFi;
    Timing timing;
    bool supportsWfaAlliance = true;
    std::deque<HistoryEntry> history;
    std::set<Polling> stoppedPolling;
    std::uint32_t errorMask = 0;
    Publish publish; // called with every event; may be empty

    // Stations associate, and time starts to count.
    void start();

    // Carries out what is due by now. To be called before the model is read and after it has been changed.
    void advance();

    Milliseconds now() const;
    std::uint32_t secondsSinceStart() const;

    // --- Finding -------------------------------------------------------------------------------------------------------------

    Radio& radio(std::uint32_t id);
    Interface& interfaceOf(std::uint32_t radioId, std::uint32_t interfaceId);
    Interface& moduleInterface(const std::string& name); // one that the proxy reaches
    bool hasInterface(const std::string& name) const;
    Radio& moduleRadio(); // the module's first
    static Station& station(Interface& interface, const MacAddress& address);
    SteeringDomain& steeringDomain(const MobilityDomain& id);

    // --- Changing ------------------------------------------------------------------------------------------------------------

    // Makes all of the changes, or none, and publishes their events.
    void change(Radio& radio, const Changes& changes);
    static void change(Interface& interface, const Changes& changes);
    static void change(Settings& settings, const Changes& changes);

    // Security settings made through the module: at once, or, while security is deferred, with the next applySecurity.
    static void changeSecurity(Interface& interface, const Changes& changes);
    static void applySecurity(Interface& interface);

    Interface& createInterface(const std::string& name, bool enabled);
    void kickOut(Interface& interface, const MacAddress& address);
    void stopPolling(Polling what, bool stop);

    static void addAddress(std::vector<MacAddress>& list, const MacAddress& address, std::size_t room);
    static void removeAddress(std::vector<MacAddress>& list, const MacAddress& address);

    // --- What takes time -----------------------------------------------------------------------------------------------------

    void startScan(Radio& radio, std::uint32_t flags);
    static void cancelScan(Radio& radio);
    void openWpsWindow(Interface& interface, WpsMethod method, const std::string& pin);
    void cancelWpsWindow(Interface& interface);
    void startDownload(const std::string& path);
    void startProduction();
    void startDfsRadio(Radio& radio, std::uint32_t channel);
    static void stopDfsRadio(Radio& radio);

    // --- What follows from the state -----------------------------------------------------------------------------------------

    static bool isReady(const Radio& radio);
    static bool isUp(const Interface& interface);
    static bool needsRadarCheck(const Radio& radio, std::uint32_t channel); // before its first use
    static ChannelCriteria channelCriteria(const Radio& radio, const Settings& settings);
    static std::vector<std::uint32_t> allowedChannels(const Radio& radio);
    static std::uint32_t secondaryChannel(const Radio& radio, std::uint32_t channel);
    std::int32_t chainPower(const Radio& radio, std::uint32_t chain) const; // dBm; 0 where there is no such chain
    static std::int32_t chainRssi(const Radio& radio, std::uint32_t chain); // dBm; the noise where there is no station or chain
    static std::uint32_t maximumRate(const Radio& radio);                   // Mbit/s
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
    void settle(Radio& radio);
    void settle(Interface& interface);
    static bool admits(const Interface& interface, const Station& station, std::size_t associated);
    void associate(Interface& interface, Station station);
    void part(Interface& interface, std::size_t index);
    void setWpsWindow(Interface& interface, WpsStatus status);
    void beginRadarCheck(Radio& radio);
    void publishEvent(const char* event, const Record& data) const;
    // Adds it to the history and publishes its event.
    void reportAssociation(const Interface& interface, const Station& station, bool associated);
    static std::uint32_t quietestChannel(const Radio& radio, const Settings& settings);

    const Clock& clock_;
    Milliseconds started_;
};

} // namespace tarn::simulator
