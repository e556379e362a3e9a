// The objects that the model of the gateway is made of.
#pragma once

#include "counters.h"
#include "environment.h"

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tarn::simulator
{

struct Radio;

// The room in lists and tables.
constexpr std::size_t kRadioRoom = 8;
constexpr std::size_t kInterfaceRoom = 8; // of one radio
constexpr std::size_t kStationRoom = 128; // of one interface
constexpr std::size_t kNeighbourRoom = 255;
constexpr std::size_t kClientRoom = kRadioRoom * kInterfaceRoom * kStationRoom;
constexpr std::size_t kMacFilterRoom = 32;
constexpr std::size_t kBlockListRoom = 16;
constexpr std::size_t kDomainRoom = 8;
constexpr std::size_t kNonSteerRoom = 32;
constexpr std::size_t kSlaveRoom = 32;
constexpr std::size_t kFaultRoom = 64;
constexpr std::size_t kHistoryRoom = 64;
constexpr std::size_t kTableRoom = 64; // custom values, boot parameters, files, entries of the security agent ...

// Eight digits, the last of which is the check digit.
bool isWpsPin(const std::string& text);

// Printable ASCII without spaces and slashes, at most 15 characters.
bool isInterfaceName(const std::string& name);

// "auto", or "MCS0" to "MCS11".
bool isMcsRate(const std::string& text);

// Numbers stored under a number.
using NumberTable = std::map<std::uint32_t, std::uint32_t>;

// Settings are what commands change while the gateway runs. Switches are 0 or 1.

struct ServiceSettings
{
    std::uint32_t logLevel = 3;
};

struct ModuleSettings
{
    std::uint32_t carrierId = 1;
    std::uint32_t carrierIdKept = 0;
    std::uint32_t debug = 0;
    std::uint32_t powerMode = 0;
    std::uint32_t atm = 0;
    std::uint32_t atmActuate = 0;
    std::uint32_t dfsDaemon = 1;
    std::uint32_t mauiEnabled = 1;
    std::uint32_t webServer = 1;
    std::uint32_t mirror = 0;
    std::uint32_t transmitPowerCap = 0;
    std::uint32_t thermalLevel = 0;
    std::uint32_t smartWiFiEnabled = 1;
    std::string smartWiFiInterface; // empty if it is bound to none
    std::uint32_t qslCfgSyncing = 0;
    std::uint32_t qcommEnabled = 1;
    std::uint32_t qcommRole = 0;
    std::uint32_t qcommPort = 7777;
    std::uint32_t qcommIntervalSeconds = 10;
    std::string qcommKey;
};

struct RadioSettings
{
    std::uint32_t enabled = 1;
    std::uint32_t channel = 36;
    std::uint32_t autoChannel = 0;
    std::uint32_t bandwidth = 80;      // MHz
    std::uint32_t transmitPower = 100; // percent of the highest
    std::string country = "eu";
    std::string phyMode = "11ac";
    std::uint32_t shortGuardInterval = 1;
    std::uint32_t beamforming = 1;
    std::uint32_t multiUser = 1;
    std::uint32_t stbc = 1;
    std::uint32_t ldpc = 1;
    std::uint32_t legacyBaseband = 0;
    std::uint32_t disable11b = 0;
    std::uint32_t qhop = 0;
    std::uint32_t tdwrChannels = 0; // those of terminal weather radars
    std::uint32_t scs = 0;
    std::uint32_t nacMonitor = 0;
    std::uint32_t nacMonitorPeriod = 1000; // ms
    std::uint32_t nacMonitorOnTime = 10;   // percent
    std::uint32_t weatherCac = 1;
};

struct InterfaceSettings
{
    std::uint32_t enabled = 1;
    std::string ssid = "tarn";
    std::uint32_t hidden = 0;
    std::uint32_t priority = 0;
    std::uint32_t ssidGroupId = 0;
    std::uint32_t assocLimit = 0; // 0: no limit
    std::uint32_t intraBssIsolate = 0;
    std::uint32_t bssIsolate = 0;
    std::uint32_t beaconInterval = 100; // time units of 1024 us
    std::uint32_t dtim = 2;
    std::uint32_t rtsThreshold = 2347;
    std::uint32_t txAmsdu = 1;
    std::uint32_t airfair = 0;
    std::string mcsRate = "auto";
    std::uint32_t macFilterMode = 0; // MacFilterMode
    std::string beaconType = "wpa2";
    std::string authenticationMode = "psk";
    std::string encryptionModes = "aes";
    std::string passphrase = "passphrase";
    std::uint32_t groupKeyInterval = 3600; // seconds
    std::uint32_t pmf = 1;
    std::uint32_t securityDeferMode = 0;
    std::string radiusAddress;
    std::uint32_t radiusPort = 1812;
    std::string radiusSecret;
    std::uint32_t wpsEnabled = 1;
    std::uint32_t wpsConfigured = 2;
    std::uint32_t wpsUpnp = 0;
    std::uint32_t wpsApPinEnabled = 0;
    std::string wpsApPin = "12345670";
    std::uint32_t roaming = 0;
    MobilityDomain mobilityDomain = {0xa1, 0xb2};
    std::uint32_t vlanCommand = 0;
    std::uint32_t vlanId = 0;
    std::uint32_t thermalStart = 0; // degrees Celsius
    std::uint32_t thermalStop = 0;
};

// Of one mobility domain of Smart WiFi.
struct SteeringSettings
{
    std::uint32_t steering = 1;
    std::uint32_t rssiThreshold = 75; // dBm below zero
    std::uint32_t rssiHysteresis = 5;
    std::uint32_t loadThreshold = 60;
    std::uint32_t holdSeconds = 30;
    std::string name = "home";
    std::uint32_t bandSteering = 1;
    std::uint32_t bandThreshold = 65; // dBm below zero
    std::uint32_t kickSeconds = 10;
    std::uint32_t retryLimit = 3;
    std::string uplink;
};

// --- Stations and interfaces -------------------------------------------------------------------------------------------------

// A client that is associated. What follows from the link is kept up to date by the model.
struct Station
{
    MacAddress address{};
    Milliseconds since = 0;
    std::optional<Counters> frozen;

    std::int32_t rssi = 0; // dBm
    std::uint32_t txMcs = 0;
    std::uint32_t rxMcs = 0;
    std::uint32_t txRate = 0; // Mbit/s
    std::uint32_t rxRate = 0;
    std::uint32_t chains = 1;
    PhyMode phyMode = PhyMode::k11ac;
    std::uint32_t packetRate = 0; // packets a second, each way

    std::string phyModeName() const;
};

enum class WpsStatus : std::uint32_t
{
    kNever,
    kOpen,
    kExpired,
    kCancelled
};

inline constexpr const char* kWpsStatusNames[] = {"never", "open", "expired", "cancelled"};

enum class WpsMethod : std::uint32_t
{
    kNone,
    kButton,
    kPin
};

inline constexpr const char* kWpsMethodNames[] = {"none", "button", "pin"};

struct WpsWindow
{
    WpsStatus status = WpsStatus::kNever;
    WpsMethod method = WpsMethod::kNone;
    std::string pin;
};

// The access category, 0 to 3, of each of the 64 code points.
struct DscpMap
{
    std::array<std::uint8_t, 64> list{};
    std::uint32_t valueA = 0;
    std::uint32_t valueB = 0;
};

enum class MacFilterMode : std::uint32_t
{
    kOff,
    kAllow, // only listed addresses
    kDeny
};

// An SSID interface and the access point on it: the interface's id is the access point's as well.
struct Interface
{
    std::uint32_t id = 0;   // from 1, in the order of the radio's list
    Radio* radio = nullptr; // that it belongs to
    std::string name;       // "wifi0"
    MacAddress bssid{};
    InterfaceSettings settings;

    std::vector<Station> stations; // in the order of their association
    std::vector<MacAddress> macFilter;
    std::vector<MacAddress> blocked; // the block list of the SSID interface

    WpsWindow window;
    std::string savedApPin;
    std::map<std::uint32_t, std::string> wpsParameters;
    Changes<InterfaceSettings> deferredSecurity; // set while security is deferred, and not yet applied

    // Stored without further effect.
    NumberTable options;
    NumberTable parameters;
    NumberTable extenderParameters;
    NumberTable aggregationHoldTimes;
    std::optional<DscpMap> dscpMap;

    Counters departed; // of the stations that are gone
    std::uint32_t associations = 0;
    std::uint32_t disassociations = 0;
    std::optional<Counters> frozen;

    bool isUp() const;
    bool isPrimary() const;
    bool admits(const MacAddress& address, std::size_t associated) const; // with so many stations that are there already
    std::uint32_t radioId() const;
    std::uint32_t ssidId() const;
    std::uint32_t stationNumber() const;
    WpsStatus windowStatus() const;
    WpsMethod windowMethod() const;
    Station& station(const MacAddress& address); // throws Refused if it is not associated
};

// --- Radios ------------------------------------------------------------------------------------------------------------------

enum class ScanStatus : std::uint32_t
{
    kNever,
    kRunning,
    kDone,
    kCancelled
};

inline constexpr const char* kScanStatusNames[] = {"never", "running", "done", "cancelled"};

struct Scan
{
    ScanStatus status = ScanStatus::kNever;
    std::uint32_t flags = 0;        // as the caller of the proxy gave them
    std::vector<Neighbour> results; // of the last completed scan
};

// The second receiver, which checks radar channels while the radio works on another one.
enum class DfsRadioStatus : std::uint32_t
{
    kStopped,
    kChecking,
    kReady
};

inline constexpr const char* kDfsRadioStatusNames[] = {"stopped", "checking", "ready"};

struct DfsRadio
{
    DfsRadioStatus status = DfsRadioStatus::kStopped;
    std::uint32_t channel = 0;
};

// A reduction of the power on a channel.
struct PowerBackoff
{
    std::uint32_t decibels = 0;
    std::uint32_t bandwidth = 0; // that it applies to: 0 all, 1 to 4 for 20 to 160 MHz
};

struct Radio
{
    std::uint32_t id = 0; // from 1, in the order of the gateway's list
    std::string name;
    Band band = Band::k5;
    bool onModule = false; // of the Wi-Fi module, and so reached by the proxy
    bool supportsWds = true;
    bool supportsRoaming = true;
    std::uint32_t chains = 4;
    std::uint32_t temperature = 55; // degrees Celsius
    std::int32_t maximumPower = 23; // dBm
    std::string driverVersion;
    RadioSettings settings;

    std::deque<Interface> interfaces; // whose addresses stay valid when one is added
    Scan scan;
    bool checking = false;                    // its channel for radar, before it is used
    std::set<std::uint32_t> checkedChannels;  // those of 20 MHz that were found free of radar
    std::set<std::uint32_t> occupiedChannels; // by radar, until their non-occupancy period ends
    bool silenced = false;                    // by radar, with no channel left to go to
    DfsRadio dfsRadio;
    std::set<std::uint32_t> inactiveChannels;
    std::map<std::uint32_t, std::uint32_t> secondaryChannels; // where they are not the default ones
    std::map<std::uint32_t, PowerBackoff> powerBackoffs;
    std::optional<Counters> frozen;

    // What follows from the air and the stations, kept up to date by the model.
    std::int32_t noise = 0;        // dBm
    std::uint32_t channelLoad = 0; // percent of the time in which the channel is busy
    std::uint32_t ownLoad = 0;     // of that, percent for its own stations
    bool isStale = true;           // whether these, and the links of its stations, have to be brought up to date

    std::uint32_t radioId() const;
    bool isReady() const;
    bool needsRadarCheck(std::uint32_t channel) const; // one of 20 MHz, before its first use
    bool needsRadarCheckWith(const RadioSettings& other) const;
    ChannelCriteria channelCriteria() const;
    ChannelCriteria criteriaWith(const RadioSettings& other) const;
    std::vector<std::uint32_t> allowedChannels() const;
    // With other settings than it has.
    std::vector<std::uint32_t> channelsWith(const RadioSettings& other) const;
    std::uint32_t secondaryChannelOf(std::uint32_t channel) const;
    std::uint32_t secondaryChannel() const;
    std::int32_t chainRssi(std::uint32_t chain) const; // dBm; the noise where there is no station or chain
    std::uint32_t maximumRate() const;                 // Mbit/s
    std::uint32_t interfaceNumber() const;
    std::uint32_t stationNumber() const;
    ScanStatus scanStatus() const;
};

// --- The module and the services on it ---------------------------------------------------------------------------------------

enum class DownloadState : std::uint32_t
{
    kNone,
    kRunning,
    kDone,
    kFailed
};

inline constexpr const char* kDownloadStateNames[] = {"none", "running", "done", "failed"};

struct Download
{
    DownloadState state = DownloadState::kNone;
    std::string path; // empty for the password file
};

// The Wi-Fi module.
struct Module
{
    std::string firmwareVersion = "1.0.0";
    std::string mauiVersion = "1.0.0";
    std::string smartWiFiVersion = "1.0.0";
    std::string smartWiFiDaemonVersion = "1.0.0";
    std::uint32_t temperatureExternal = 45; // degrees Celsius
    std::uint32_t temperatureInternal = 55;
    std::uint32_t temperatureBaseband = 60;
    std::map<std::string, std::string> bootParameters;
    std::vector<std::string> scripts;
    std::vector<std::string> missingFiles; // downloads of these fail
    ModuleSettings settings;

    bool initialised = false;
    std::map<std::string, std::string> customValues;
    std::string lastScript;
    std::string lastScriptParameter;
    std::set<std::uint32_t> telnetHolders; // process ids; 0 for the proxy's own switch
    Download download;
    bool productionStarted = false;
    std::map<std::string, std::uint32_t> securityAgent;
    std::map<std::uint32_t, DscpMap> dscpTables;
    NumberTable groupLimits; // stations of an SSID group
    bool thermalInitialised = false;
    std::set<std::string> thermalInterfaces;  // those with mitigation running
    std::map<std::string, std::string> files; // written by commands, by path
};

// One mobility domain of Smart WiFi.
struct SteeringDomain
{
    MobilityDomain id{};
    SteeringSettings settings;
    std::vector<MacAddress> nonSteer;
};

// What the Smart WiFi tables have of a network, of a station, and of an association that came or went.
struct BssEntry
{
    MacAddress bssid{};
    std::string ssid;
    std::string name; // empty for a slave device's
    Band band = Band::k5;
    std::uint32_t channel = 0;
    std::uint32_t bandwidth = 0;
    std::uint32_t stations = 0;
    bool own = true;
    MobilityDomain mobilityDomain{};
};

struct StationEntry
{
    MacAddress macAddress{};
    MacAddress bssid{};
    std::string ssid;
    Band band = Band::k5;
    std::int32_t rssi = 0;
    std::uint32_t txRate = 0;
    std::uint32_t rxRate = 0;
    std::uint32_t secondsAssociated = 0;
};

struct HistoryEntry
{
    std::uint32_t secondsSinceStart = 0;
    std::uint32_t status = 0; // 1 a station associated, 0 one left
    std::string text;
};

// Copies of the Smart WiFi tables, taken at the caller's request.
struct Snapshots
{
    std::vector<BssEntry> bssEntries;
    std::vector<StationEntry> stations;
    std::deque<HistoryEntry> history;
    std::vector<MacAddress> slaves;
};

struct SmartWiFi
{
    std::vector<SteeringDomain> domains;
    std::vector<MacAddress> slaves;
    std::uint32_t propagations = 0;
    Snapshots snapshots;
    std::deque<HistoryEntry> history; // the last ones
};

// --- The device service ------------------------------------------------------------------------------------------------------

// The objects whose statistics the device service can stop polling.
enum class Polling : std::uint32_t
{
    kAll,
    kRadios,
    kInterfaces,
    kStations
};

inline constexpr const char* kPollingNames[] = {"all", "radios", "interfaces", "stations"};

struct Service
{
    ServiceSettings settings;
    std::uint32_t errorMask = 0;
    std::set<Polling> stoppedPolling;
};

struct Timing
{
    Milliseconds scan = 4000;
    Milliseconds wpsWindow = 120000;
    Milliseconds download = 5000;
    Milliseconds radarCheck = 60000;
    Milliseconds production = 3000;
    Milliseconds weatherRadarCheck = 600000;
    Milliseconds nonOccupancy = 1800000;
    Milliseconds returnSpread = 0; // clients return up to so much later than they would, at random
};

// --- Their descriptions ------------------------------------------------------------------------------------------------------

template <>
const Description<ServiceSettings>& descriptionOf();
template <>
const Description<ModuleSettings>& descriptionOf();
template <>
const Description<RadioSettings>& descriptionOf();
template <>
const Description<InterfaceSettings>& descriptionOf();
template <>
const Description<SteeringSettings>& descriptionOf();
template <>
const Description<Counters>& descriptionOf();
template <>
const Description<Station>& descriptionOf();
template <>
const Description<WpsWindow>& descriptionOf();
template <>
const Description<DscpMap>& descriptionOf();
template <>
const Description<Interface>& descriptionOf();
template <>
const Description<Scan>& descriptionOf();
template <>
const Description<DfsRadio>& descriptionOf();
template <>
const Description<PowerBackoff>& descriptionOf();
template <>
const Description<Radio>& descriptionOf();
template <>
const Description<Download>& descriptionOf();
template <>
const Description<Module>& descriptionOf();
template <>
const Description<SteeringDomain>& descriptionOf();
template <>
const Description<BssEntry>& descriptionOf();
template <>
const Description<StationEntry>& descriptionOf();
template <>
const Description<HistoryEntry>& descriptionOf();
template <>
const Description<Snapshots>& descriptionOf();
template <>
const Description<SmartWiFi>& descriptionOf();
template <>
const Description<Service>& descriptionOf();
template <>
const Description<Timing>& descriptionOf();

} // namespace tarn::simulator
