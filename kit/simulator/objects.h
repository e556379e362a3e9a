// The objects that the model of the gateway is made of.
#pragma once

#include "base/mac_address.h"
#include "channels.h"
#include "clock.h"
#include "counters.h"
#include "mobility_domain.h"
#include "settings.h"

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

using base::MacAddress;

struct Radio;

// Numbers stored under a number, without further effect: options, driver parameters ...
using NumberTable = std::map<std::uint32_t, std::uint32_t>;

struct Station
{
    MacAddress address{};
    std::int32_t rssi = -60; // dBm
    std::uint32_t txMcs = 7;
    std::uint32_t rxMcs = 7;
    std::uint32_t txRate = 300; // Mbit/s
    std::uint32_t rxRate = 300;
    std::uint32_t chains = 2;
    std::string phyMode = "11ac";
    std::uint32_t packetRate = 20; // packets a second, each way

    Milliseconds since = 0; // while associated
    Milliseconds due = 0;   // while away: when it may return
    std::optional<Counters> frozen;
};

enum class WpsStatus : std::uint32_t
{
    kNever,
    kOpen,
    kExpired,
    kCancelled
};

enum class WpsMethod : std::uint32_t
{
    kNone,
    kButton,
    kPin
};

struct WpsWindow
{
    WpsStatus status = WpsStatus::kNever;
    WpsMethod method = WpsMethod::kNone;
    std::string pin;
    Milliseconds closes = 0;
};

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
    std::uint32_t id = 0; // from 1
    std::string name;     // "wifi0"
    MacAddress bssid{};
    Radio* radio = nullptr;
    Settings settings{interfaceProperties()};

    std::vector<Station> stations; // associated, in the order of their association
    std::vector<Station> away;
    std::vector<MacAddress> macFilter;
    std::vector<MacAddress> blocked; // the block list of the SSID interface

    WpsWindow window;
    std::string savedApPin;
    std::map<std::uint32_t, std::string> wpsParameters;
    Changes deferredSecurity; // set while security is deferred, and not yet applied

    std::map<std::string, NumberTable, std::less<>> tables;
    std::optional<DscpMap> dscpMap;

    Counters departed; // of the stations that are gone
    std::uint32_t associations = 0;
    std::uint32_t disassociations = 0;
    std::optional<Counters> frozen;
};

struct Neighbour
{
    MacAddress bssid{};
    std::string ssid;
    Band band = Band::k5;
    std::uint32_t channel = 0;
    std::uint32_t bandwidth = 20;
    std::int32_t rssi = -80;
    std::string security = "wpa2";
};

enum class ScanStatus : std::uint32_t
{
    kNever,
    kRunning,
    kDone,
    kCancelled
};

struct Scan
{
    ScanStatus status = ScanStatus::kNever;
    Milliseconds ends = 0;
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

struct DfsRadio
{
    DfsRadioStatus status = DfsRadioStatus::kStopped;
    std::uint32_t channel = 0;
    Milliseconds ends = 0;
};

struct Radio
{
    std::uint32_t id = 0; // from 1
    std::string name;
    Band band = Band::k5;
    bool onModule = false; // of the Wi-Fi module, and so reached by the proxy
    bool supportsWds = true;
    bool supportsRoaming = true;
    std::uint32_t chains = 4;
    std::uint32_t temperature = 55; // degrees Celsius
    std::int32_t noise = -95;       // dBm
    std::int32_t maximumPower = 23; // dBm
    std::uint32_t channelLoad = 20; // percent
    std::string driverVersion;
    Settings settings{radioProperties()};

    std::deque<Interface> interfaces; // whose addresses stay valid when one is added
    std::vector<Neighbour> neighbours;
    Scan scan;
    bool checking = false; // its channel for radar, before it is used
    Milliseconds checkEnds = 0;
    std::set<std::uint32_t> checkedChannels;
    DfsRadio dfsRadio;
    std::set<std::uint32_t> inactiveChannels;
    std::map<std::uint32_t, std::uint32_t> secondaryChannels; // where they are not the default ones
    std::map<std::uint32_t, std::array<std::uint32_t, 2>> powerBackoffs;
    std::optional<Counters> frozen;
};

enum class DownloadState : std::uint32_t
{
    kNone,
    kRunning,
    kDone,
    kFailed
};

struct Download
{
    DownloadState state = DownloadState::kNone;
    std::string path; // empty for the password file
    Milliseconds ends = 0;
};

struct SecurityAgentEntry
{
    std::string action;
    std::uint32_t value = 0;
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

    Settings settings{moduleProperties()};
    bool initialised = false;
    std::map<std::string, std::string> customValues;
    std::string lastScript;
    std::string lastScriptParameter;
    std::set<std::uint32_t> telnetHolders; // process ids; 0 for the proxy's own switch
    Download download;
    bool productionStarted = false;
    Milliseconds productionDone = 0;
    std::map<std::string, SecurityAgentEntry> securityAgent;
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
    Settings settings{steeringProperties()};
    std::vector<MacAddress> nonSteer;
};

struct HistoryEntry
{
    Milliseconds time = 0;
    std::uint32_t status = 0; // 1 a station associated, 0 one left
    std::string text;
};

// Copies of the Smart WiFi tables, taken at the caller's request.
struct Snapshots
{
    std::vector<Record> bssEntries;
    std::vector<Record> stations;
    std::vector<std::pair<std::uint32_t, Record>> history; // status, entry
    std::vector<MacAddress> slaves;
};

struct SmartWiFi
{
    std::vector<SteeringDomain> domains;
    std::vector<MacAddress> slaves;
    std::uint32_t propagations = 0;
    Snapshots snapshots;
};

// Durations, in milliseconds.
struct Timing
{
    Milliseconds scan = 4000;
    Milliseconds wpsWindow = 120000;
    Milliseconds download = 5000;
    Milliseconds radarCheck = 60000;
    Milliseconds production = 3000;
    Milliseconds reassociation = 10000; // 0: stations do not return
};

} // namespace tarn::simulator
