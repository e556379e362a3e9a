// The model of one gateway: what all its services read and change.
//
// Everything that can be asked of it and that it cannot grant throws Refused. The model is not locked: who uses it sees to
// that.
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

// What the device service may stop reading for its statistics.
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

    explicit Model(const Clock& clock);
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

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
    Publish publish; // called for each change that an event tells of; may be empty

    // Stations associate, times begin to run.
    void start();

    // Lets happen what is due by now. To be called before the model is read, and after it has been changed.
    void advance();

    Milliseconds now() const;
    std::uint32_t secondsSinceStart() const;

    // --- Finding -------------------------------------------------------------------------------------------------------------

    Radio& radio(std::uint32_t id);
    Interface& interfaceOf(std::uint32_t radioId, std::uint32_t interfaceId);
    Interface& moduleInterface(const std::string& name); // one that the proxy reaches
    Radio& moduleRadio();                                // the module's first
    Station& station(Interface& interface, const MacAddress& address);
    Station& stationAt(Interface& interface, std::uint32_t index);
    SteeringDomain& steeringDomain(const MobilityDomain& id);

    // --- Changing ------------------------------------------------------------------------------------------------------------

    // All of the changes, or none. With the events that they lead to.
    void change(Radio& radio, const Changes& changes);
    void change(Interface& interface, const Changes& changes);
    static void change(Settings& settings, const Changes& changes);

    // Security settings made through the module: at once, or, while security is deferred, with the next applySecurity.
    void changeSecurity(Interface& interface, const Changes& changes);
    void applySecurity(Interface& interface);

    Interface& createInterface(const std::string& name, bool enabled);
    void kickOut(Interface& interface, const MacAddress& address);
    void stopPolling(Polling what, bool stop);

    static void addAddress(std::vector<MacAddress>& list, const MacAddress& address, std::size_t room);
    static void removeAddress(std::vector<MacAddress>& list, const MacAddress& address);

    // --- What takes time -----------------------------------------------------------------------------------------------------

    void startScan(Radio& radio, std::uint32_t flags);
    void cancelScan(Radio& radio);
    void openWpsWindow(Interface& interface, WpsMethod method, const std::string& pin);
    void cancelWpsWindow(Interface& interface);
    void startDownload(const std::string& path);
    void startProduction();
    void startDfsRadio(Radio& radio, std::uint32_t channel);
    void stopDfsRadio(Radio& radio);

    // --- What follows from the state -----------------------------------------------------------------------------------------

    static bool isReady(const Radio& radio);
    static std::vector<std::uint32_t> allowedChannels(const Radio& radio);
    static std::uint32_t secondaryChannel(const Radio& radio, std::uint32_t channel);
    std::int32_t chainPower(const Radio& radio, std::uint32_t chain) const; // dBm; 0 where there is no such chain
    std::int32_t chainRssi(const Radio& radio, std::uint32_t chain) const;  // dBm; the noise where there is no station or chain
    std::uint32_t maximumRate(const Radio& radio) const;                    // Mbit/s
    std::uint32_t secondsAssociated(const Station& station) const;

    // As the device service sees them: those at the time its polling was stopped, if it is.
    Counters polled(const Radio& radio) const;
    Counters polled(const Interface& interface) const;
    Counters polled(const Station& station) const;
    // As they are.
    Counters counters(const Radio& radio) const;
    Counters counters(const Interface& interface) const;
    Counters counters(const Station& station) const;

private:
    void settle(Radio& radio);
    void settle(Interface& interface);
    bool admits(const Interface& interface, const Station& station, std::size_t associated) const;
    void associate(Interface& interface, Station station);
    void part(Interface& interface, std::size_t index);
    void setWpsWindow(Interface& interface, WpsStatus status);
    void beginRadarCheck(Radio& radio);
    void tell(const char* event, const Record& data) const;
    void tellStation(const Interface& interface, const Station& station, bool associated);
    static std::uint32_t quietestChannel(const Radio& radio, const Settings& settings);

    const Clock& clock_;
    Milliseconds started_;
};

} // namespace tarn::simulator
