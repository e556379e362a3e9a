// The objects of the gateway, field by field.
#include "description.h"
#include "model.h"

#include <limits>

namespace tarn::simulator
{

namespace
{

constexpr std::size_t kNameLength = 15;
constexpr std::size_t kVersionLength = 64;
constexpr std::size_t kSsidLength = 32;
constexpr std::size_t kValueLength = 1024; // of parameters and custom values
constexpr std::size_t kPathLength = 1024;
constexpr std::size_t kFileLength = 65536;
constexpr std::size_t kHistoryLength = 80;
constexpr std::uint32_t kAnyNumber = 0xffffffff;
constexpr std::size_t kNoLimit = base::JsonValue::kNoLimit;

KindOf<std::uint32_t> percent()
{
    return number(0, 100);
}

KindOf<std::uint32_t> celsius()
{
    return number(0, 150);
}

KindOf<std::uint32_t> channel()
{
    return number(1, 233);
}

KindOf<std::uint32_t> anyNumber()
{
    return number(0, kAnyNumber);
}

KindOf<std::vector<MacAddress>> addresses(std::size_t room)
{
    return distinct<std::vector<MacAddress>>(address(), room, "an address that is not in the list yet");
}

KindOf<std::set<std::uint32_t>> channels()
{
    return list<std::set<std::uint32_t>>(channel(), kNoLimit);
}

KindOf<NumberTable> numbers(std::uint32_t lowestKey, std::uint32_t highestKey)
{
    return table(number(lowestKey, highestKey), anyNumber());
}

KindOf<std::map<std::string, std::string>> texts(std::size_t longestKey, std::size_t longest)
{
    return table(text(1, longestKey), text(0, longest), kTableRoom);
}

template <typename Object>
KindOf<std::vector<Object>> objects(std::size_t most = kNoLimit)
{
    return list<std::vector<Object>>(object<Object>(), most);
}

} // namespace

// --- Settings ----------------------------------------------------------------------------------------------------------------

template <>
const Description<ServiceSettings>& descriptionOf()
{
    using It = ServiceSettings;
    static const Description<It> kDescription = Fields<It>().field("logLevel", &It::logLevel, number(0, 7));
    return kDescription;
}

template <>
const Description<ModuleSettings>& descriptionOf()
{
    using It = ModuleSettings;
    static const Description<It> kDescription = Fields<It>()
                                                    .field("carrierId", &It::carrierId, number(0, 255))
                                                    .field("carrierIdKept", &It::carrierIdKept, flag())
                                                    .field("debug", &It::debug, flag())
                                                    .field("powerMode", &It::powerMode, number(0, 4))
                                                    .field("atm", &It::atm, flag())
                                                    .field("atmActuate", &It::atmActuate, flag())
                                                    .field("dfsDaemon", &It::dfsDaemon, flag())
                                                    .field("mauiEnabled", &It::mauiEnabled, flag())
                                                    .field("webServer", &It::webServer, flag())
                                                    .field("mirror", &It::mirror, flag())
                                                    .field("transmitPowerCap", &It::transmitPowerCap, flag())
                                                    .field("thermalLevel", &It::thermalLevel, number(0, 3))
                                                    .field("smartWiFiEnabled", &It::smartWiFiEnabled, flag())
                                                    .field("smartWiFiInterface", &It::smartWiFiInterface, text(0, 64))
                                                    .field("qslCfgSyncing", &It::qslCfgSyncing, flag())
                                                    .field("qcommEnabled", &It::qcommEnabled, flag())
                                                    .field("qcommRole", &It::qcommRole, number(0, 2))
                                                    .field("qcommPort", &It::qcommPort, number(1, 65535))
                                                    .field("qcommIntervalSeconds", &It::qcommIntervalSeconds, number(1, 3600))
                                                    .field("qcommKey", &It::qcommKey, text(0, 32));
    return kDescription;
}

template <>
const Description<RadioSettings>& descriptionOf()
{
    using It = RadioSettings;
    static const Description<It> kDescription =
        Fields<It>()
            .field("enabled", &It::enabled, flag())
            .field("channel", &It::channel, channel())
            .field("autoChannel", &It::autoChannel, flag())
            .field("bandwidth", &It::bandwidth, oneOf(std::vector<std::uint32_t>{20, 40, 80, 160}))
            .field("transmitPower", &It::transmitPower, oneOf(std::vector<std::uint32_t>{100, 75, 50, 25, 12}))
            .field("country", &It::country, oneOf(std::vector<std::string>{"us", "eu", "jp"}))
            .field("phyMode", &It::phyMode, oneOf(std::vector<std::string>{"11a", "11b", "11g", "11n", "11ac", "11ax"}))
            .field("shortGuardInterval", &It::shortGuardInterval, flag())
            .field("beamforming", &It::beamforming, flag())
            .field("multiUser", &It::multiUser, flag())
            .field("stbc", &It::stbc, flag())
            .field("ldpc", &It::ldpc, flag())
            .field("legacyBaseband", &It::legacyBaseband, flag())
            .field("disable11b", &It::disable11b, flag())
            .field("qhop", &It::qhop, flag())
            .field("tdwrChannels", &It::tdwrChannels, flag())
            .field("scs", &It::scs, flag())
            .field("nacMonitor", &It::nacMonitor, flag())
            .field("nacMonitorPeriod", &It::nacMonitorPeriod, number(0, 60000))
            .field("nacMonitorOnTime", &It::nacMonitorOnTime, percent())
            .field("weatherCac", &It::weatherCac, flag());
    return kDescription;
}

template <>
const Description<InterfaceSettings>& descriptionOf()
{
    using It = InterfaceSettings;
    static const Description<It> kDescription =
        Fields<It>()
            .field("enabled", &It::enabled, flag())
            .field("ssid", &It::ssid, text(1, kSsidLength))
            .field("hidden", &It::hidden, flag())
            .field("priority", &It::priority, number(0, 3))
            .field("ssidGroupId", &It::ssidGroupId, number(0, 15))
            .field("assocLimit", &It::assocLimit, number(0, 128))
            .field("intraBssIsolate", &It::intraBssIsolate, flag())
            .field("bssIsolate", &It::bssIsolate, flag())
            .field("beaconInterval", &It::beaconInterval, number(20, 1000))
            .field("dtim", &It::dtim, number(1, 255))
            .field("rtsThreshold", &It::rtsThreshold, number(0, 2347))
            .field("txAmsdu", &It::txAmsdu, flag())
            .field("airfair", &It::airfair, flag())
            .field("mcsRate", &It::mcsRate, textThat(isMcsRate, "auto, or MCS0 to MCS11", "^(auto|MCS([0-9]|1[01]))$"))
            .field("macFilterMode", &It::macFilterMode, number(0, 2))
            .field("beaconType", &It::beaconType, oneOf(std::vector<std::string>{"open", "wpa", "wpa2", "wpa-wpa2", "wpa3"}))
            .field("authenticationMode", &It::authenticationMode, oneOf(std::vector<std::string>{"open", "psk", "sae", "eap"}))
            .field("encryptionModes", &It::encryptionModes, oneOf(std::vector<std::string>{"none", "tkip", "aes", "tkip-aes"}))
            .field("passphrase", &It::passphrase, text(8, 63))
            .field("groupKeyInterval", &It::groupKeyInterval, number(0, 86400))
            .field("pmf", &It::pmf, number(0, 2))
            .field("securityDeferMode", &It::securityDeferMode, flag())
            .field("radiusAddress", &It::radiusAddress, text(0, 63))
            .field("radiusPort", &It::radiusPort, number(0, 65535))
            .field("radiusSecret", &It::radiusSecret, text(0, 63))
            .field("wpsEnabled", &It::wpsEnabled, flag())
            .field("wpsConfigured", &It::wpsConfigured, number(0, 2))
            .field("wpsUpnp", &It::wpsUpnp, flag())
            .field("wpsApPinEnabled", &It::wpsApPinEnabled, flag())
            .field("wpsApPin", &It::wpsApPin,
                   textThat(isWpsPin, "a WPS PIN: eight digits, the last of which is the check digit", "^[0-9]{8}$"))
            .field("roaming", &It::roaming, flag())
            .field("mobilityDomain", &It::mobilityDomain, mobilityDomain())
            .field("vlanCommand", &It::vlanCommand, number(0, 2))
            .field("vlanId", &It::vlanId, number(0, 4094))
            .field("thermalStart", &It::thermalStart, celsius())
            .field("thermalStop", &It::thermalStop, celsius());
    return kDescription;
}

template <>
const Description<SteeringSettings>& descriptionOf()
{
    using It = SteeringSettings;
    static const Description<It> kDescription = Fields<It>()
                                                    .field("steering", &It::steering, flag())
                                                    .field("rssiThreshold", &It::rssiThreshold, percent())
                                                    .field("rssiHysteresis", &It::rssiHysteresis, number(0, 40))
                                                    .field("loadThreshold", &It::loadThreshold, percent())
                                                    .field("holdSeconds", &It::holdSeconds, number(0, 3600))
                                                    .field("name", &It::name, text(0, 32))
                                                    .field("bandSteering", &It::bandSteering, flag())
                                                    .field("bandThreshold", &It::bandThreshold, percent())
                                                    .field("kickSeconds", &It::kickSeconds, number(0, 3600))
                                                    .field("retryLimit", &It::retryLimit, number(0, 10))
                                                    .field("uplink", &It::uplink, text(0, 32));
    return kDescription;
}

// --- The environment ---------------------------------------------------------------------------------------------------------

template <>
const Description<Neighbour>& descriptionOf()
{
    using It = Neighbour;
    static const Description<It> kDescription =
        Fields<It>()
            .required("bssid", &It::bssid, address())
            .field("ssid", &It::ssid, text(0, kSsidLength))
            .required("band", &It::band, word<Band>(kBandNames))
            .required("channel", &It::channel, channel())
            .field("bandwidth", &It::bandwidth, oneOf(std::vector<std::uint32_t>{20, 40, 80, 160}))
            .field("rssi", &It::rssi, signedNumber(-100, 0))
            .field("security", &It::security, oneOf(std::vector<std::string>{"open", "wpa", "wpa2", "wpa-wpa2", "wpa3"}))
            .field("load", &It::load, percent());
    return kDescription;
}

template <>
const Description<Air>& descriptionOf()
{
    using It = Air;
    static const Description<It> kDescription = Fields<It>()
                                                    .field("noise2GHz", &It::noise2GHz, signedNumber(-110, -50))
                                                    .field("noise5GHz", &It::noise5GHz, signedNumber(-110, -50))
                                                    .field("noise6GHz", &It::noise6GHz, signedNumber(-110, -50))
                                                    .field("neighbours", &It::neighbours, objects<Neighbour>(kNeighbourRoom));
    return kDescription;
}

template <>
const Description<Client>& descriptionOf()
{
    using It = Client;
    static const Description<It> kDescription =
        Fields<It>()
            .required("address", &It::address, address())
            .field("bands", &It::bands, list<std::set<Band>>(word<Band>(kBandNames), 3, 1))
            .field("phyMode", &It::phyMode, word<PhyMode>(kPhyModeNames))
            .field("streams", &It::streams, number(1, 4))
            .field("pathLoss", &It::pathLoss, number(30, 130))
            .field("ssid", &It::ssid, text(1, kSsidLength))
            .field("passphrase", &It::passphrase, text(0, 63))
            .field("packetRate", &It::packetRate, number(0, 100000))
            .field("patienceSeconds", &It::patience, seconds())
            .field("gone", &It::gone, boolean());
    return kDescription;
}

// --- Stations and interfaces -------------------------------------------------------------------------------------------------

template <>
const Description<Counters>& descriptionOf()
{
    using It = Counters;
    static const Description<It> kDescription = Fields<It>()
                                                    .field("txPackets", &It::txPackets, counter())
                                                    .field("rxPackets", &It::rxPackets, counter())
                                                    .field("txBytes", &It::txBytes, counter())
                                                    .field("rxBytes", &It::rxBytes, counter())
                                                    .field("txErrors", &It::txErrors, counter())
                                                    .field("rxErrors", &It::rxErrors, counter())
                                                    .field("txRetries", &It::txRetries, counter());
    return kDescription;
}

template <>
const Description<Station>& descriptionOf()
{
    using It = Station;
    static const Description<It> kDescription = Fields<It>()
                                                    .required("address", &It::address, address())
                                                    .required("since", &It::since, counter())
                                                    .field("frozen", &It::frozen, maybe(object<Counters>()))
                                                    .derived("macAddress", &It::address)
                                                    .derived("rssi", &It::rssi)
                                                    .derived("txMcs", &It::txMcs)
                                                    .derived("rxMcs", &It::rxMcs)
                                                    .derived("txRate", &It::txRate)
                                                    .derived("rxRate", &It::rxRate)
                                                    .derived("chains", &It::chains)
                                                    .derived("phyMode", &It::phyModeName);
    return kDescription;
}

template <>
const Description<WpsWindow>& descriptionOf()
{
    using It = WpsWindow;
    static const Description<It> kDescription = Fields<It>()
                                                    .field("status", &It::status, word<WpsStatus>(kWpsStatusNames))
                                                    .field("method", &It::method, word<WpsMethod>(kWpsMethodNames))
                                                    .field("pin", &It::pin, text(0, 8));
    return kDescription;
}

template <>
const Description<DscpMap>& descriptionOf()
{
    using It = DscpMap;
    static const Description<It> kDescription = Fields<It>()
                                                    .required("list", &It::list, bytes<64>(3))
                                                    .field("valueA", &It::valueA, anyNumber())
                                                    .field("valueB", &It::valueB, anyNumber());
    return kDescription;
}

template <>
const Description<Interface>& descriptionOf()
{
    using It = Interface;
    static const Description<It> kDescription =
        Fields<It>()
            .required("name", &It::name, text(1, kNameLength))
            .required("bssid", &It::bssid, address())
            .part(&It::settings)
            .field("stations", &It::stations, objects<Station>(kStationRoom))
            .field("macFilter", &It::macFilter, addresses(kMacFilterRoom))
            .field("blocked", &It::blocked, addresses(kBlockListRoom))
            .field("wpsWindow", &It::window, object<WpsWindow>())
            .field("savedApPin", &It::savedApPin, text(0, 8))
            .field("wpsParameters", &It::wpsParameters, table(number(1, 32), text(0, kValueLength)))
            .field("deferredSecurity", &It::deferredSecurity, changesOf<InterfaceSettings>())
            .field("options", &It::options, numbers(1, 32))
            .field("parameters", &It::parameters, numbers(1, 64))
            .field("extenderParameters", &It::extenderParameters, numbers(1, 32))
            .field("aggregationHoldTimes", &It::aggregationHoldTimes, numbers(0, 3))
            .field("dscpMap", &It::dscpMap, maybe(object<DscpMap>()))
            .field("departed", &It::departed, object<Counters>())
            .field("associations", &It::associations, anyNumber())
            .field("disassociations", &It::disassociations, anyNumber())
            .field("frozen", &It::frozen, maybe(object<Counters>()))
            .derived("radioId", &It::radioId)
            .derived("ssidId", &It::ssidId)
            .derived("apId", &It::ssidId)
            .derived("stations", &It::stationNumber)
            .derived("windowStatus", &It::windowStatus)
            .derived("windowMethod", &It::windowMethod)
            .derived("primary", &It::isPrimary);
    return kDescription;
}

// --- Radios ------------------------------------------------------------------------------------------------------------------

template <>
const Description<Scan>& descriptionOf()
{
    using It = Scan;
    static const Description<It> kDescription = Fields<It>()
                                                    .field("status", &It::status, word<ScanStatus>(kScanStatusNames))
                                                    .field("flags", &It::flags, number(0, 255))
                                                    .field("results", &It::results, objects<Neighbour>());
    return kDescription;
}

template <>
const Description<DfsRadio>& descriptionOf()
{
    using It = DfsRadio;
    static const Description<It> kDescription = Fields<It>()
                                                    .field("status", &It::status, word<DfsRadioStatus>(kDfsRadioStatusNames))
                                                    .field("channel", &It::channel, number(0, 233));
    return kDescription;
}

template <>
const Description<PowerBackoff>& descriptionOf()
{
    using It = PowerBackoff;
    static const Description<It> kDescription =
        Fields<It>().required("decibels", &It::decibels, number(0, 20)).field("bandwidth", &It::bandwidth, number(0, 4));
    return kDescription;
}

template <>
const Description<Radio>& descriptionOf()
{
    using It = Radio;
    static const Description<It> kDescription =
        Fields<It>()
            .required("name", &It::name, text(0, kNameLength))
            .required("band", &It::band, word<Band>(kBandNames))
            .field("onModule", &It::onModule, boolean())
            .field("supportsWds", &It::supportsWds, boolean())
            .field("supportsRoaming", &It::supportsRoaming, boolean())
            .field("chains", &It::chains, number(1, 4))
            .field("temperature", &It::temperature, celsius())
            .field("maximumPower", &It::maximumPower, signedNumber(10, 36))
            .field("driverVersion", &It::driverVersion, text(0, kVersionLength))
            .part(&It::settings)
            .required("interfaces", &It::interfaces, list<std::deque<Interface>>(object<Interface>(), kInterfaceRoom, 1))
            .field("scan", &It::scan, object<Scan>())
            .field("checking", &It::checking, boolean())
            .field("checkedChannels", &It::checkedChannels, channels())
            .field("occupiedChannels", &It::occupiedChannels, channels())
            .field("silenced", &It::silenced, boolean())
            .field("dfsRadio", &It::dfsRadio, object<DfsRadio>())
            .field("inactiveChannels", &It::inactiveChannels, channels())
            .field("secondaryChannels", &It::secondaryChannels, table(channel(), channel()))
            .field("powerBackoffs", &It::powerBackoffs, table(channel(), object<PowerBackoff>()))
            .field("frozen", &It::frozen, maybe(object<Counters>()))
            .derived("radioId", &It::radioId)
            .derived("ready", &It::isReady)
            .derived("secondaryChannel", &It::secondaryChannel)
            .derived("stations", &It::stationNumber)
            .derived("ssidNumber", &It::interfaceNumber)
            .derived("neighboringStatus", &It::scanStatus)
            .derived("noise", &It::noise)
            .derived("channelLoad", &It::channelLoad)
            .derived("possibleChannels", &It::allowedChannels);
    return kDescription;
}

// --- The module and the services on it ---------------------------------------------------------------------------------------

template <>
const Description<Download>& descriptionOf()
{
    using It = Download;
    static const Description<It> kDescription = Fields<It>()
                                                    .field("state", &It::state, word<DownloadState>(kDownloadStateNames))
                                                    .field("path", &It::path, text(0, kPathLength));
    return kDescription;
}

template <>
const Description<Module>& descriptionOf()
{
    using It = Module;
    static const Description<It> kDescription =
        Fields<It>()
            .field("firmwareVersion", &It::firmwareVersion, text(0, kVersionLength))
            .field("mauiVersion", &It::mauiVersion, text(0, kVersionLength))
            .field("smartWiFiVersion", &It::smartWiFiVersion, text(0, kVersionLength))
            .field("smartWiFiDaemonVersion", &It::smartWiFiDaemonVersion, text(0, kVersionLength))
            .field("temperatureExternal", &It::temperatureExternal, celsius())
            .field("temperatureInternal", &It::temperatureInternal, celsius())
            .field("temperatureBaseband", &It::temperatureBaseband, celsius())
            .field("bootParameters", &It::bootParameters, texts(kPathLength, kValueLength))
            .field("scripts", &It::scripts, list<std::vector<std::string>>(text(0, kSsidLength), kTableRoom))
            .field("missingFiles", &It::missingFiles, list<std::vector<std::string>>(text(0, kPathLength), kTableRoom))
            .part(&It::settings)
            .field("initialised", &It::initialised, boolean())
            .field("customValues", &It::customValues, texts(kPathLength, kValueLength))
            .field("lastScript", &It::lastScript, text(0, kPathLength))
            .field("lastScriptParameter", &It::lastScriptParameter, text(0, kPathLength))
            .field("telnetHolders", &It::telnetHolders, list<std::set<std::uint32_t>>(anyNumber(), kTableRoom + 1))
            .field("download", &It::download, object<Download>())
            .field("productionStarted", &It::productionStarted, boolean())
            .field("securityAgent", &It::securityAgent, table(text(1, kPathLength), anyNumber(), kTableRoom))
            .field("dscpTables", &It::dscpTables, table(number(0, 7), object<DscpMap>()))
            .field("groupLimits", &It::groupLimits, table(number(0, 15), number(0, 128)))
            .field("thermalInitialised", &It::thermalInitialised, boolean())
            .field("thermalInterfaces", &It::thermalInterfaces, list<std::set<std::string>>(text(1, kNameLength), kNoLimit))
            .field("files", &It::files, texts(kPathLength, kFileLength));
    return kDescription;
}

template <>
const Description<SteeringDomain>& descriptionOf()
{
    using It = SteeringDomain;
    static const Description<It> kDescription = Fields<It>()
                                                    .required("id", &It::id, mobilityDomain())
                                                    .part(&It::settings)
                                                    .field("nonSteer", &It::nonSteer, addresses(kNonSteerRoom));
    return kDescription;
}

template <>
const Description<BssEntry>& descriptionOf()
{
    using It = BssEntry;
    static const Description<It> kDescription = Fields<It>()
                                                    .field("bssid", &It::bssid, address())
                                                    .field("ssid", &It::ssid, text(0, kSsidLength))
                                                    .field("name", &It::name, text(0, kNameLength))
                                                    .field("band", &It::band, word<Band>(kBandNames))
                                                    .field("channel", &It::channel, channel())
                                                    .field("bandwidth", &It::bandwidth, anyNumber())
                                                    .field("stations", &It::stations, anyNumber())
                                                    .field("own", &It::own, boolean())
                                                    .field("mobilityDomain", &It::mobilityDomain, mobilityDomain());
    return kDescription;
}

template <>
const Description<StationEntry>& descriptionOf()
{
    using It = StationEntry;
    static const Description<It> kDescription = Fields<It>()
                                                    .field("macAddress", &It::macAddress, address())
                                                    .field("bssid", &It::bssid, address())
                                                    .field("ssid", &It::ssid, text(0, kSsidLength))
                                                    .field("band", &It::band, word<Band>(kBandNames))
                                                    .field("rssi", &It::rssi, signedNumber(-200, 100))
                                                    .field("txRate", &It::txRate, anyNumber())
                                                    .field("rxRate", &It::rxRate, anyNumber())
                                                    .field("secondsAssociated", &It::secondsAssociated, anyNumber());
    return kDescription;
}

template <>
const Description<HistoryEntry>& descriptionOf()
{
    using It = HistoryEntry;
    static const Description<It> kDescription = Fields<It>()
                                                    .field("secondsSinceStart", &It::secondsSinceStart, anyNumber())
                                                    .field("status", &It::status, flag())
                                                    .field("text", &It::text, text(0, kHistoryLength));
    return kDescription;
}

template <>
const Description<Snapshots>& descriptionOf()
{
    using It = Snapshots;
    static const Description<It> kDescription =
        Fields<It>()
            .field("bssEntries", &It::bssEntries, objects<BssEntry>())
            .field("stations", &It::stations, objects<StationEntry>())
            .field("history", &It::history, list<std::deque<HistoryEntry>>(object<HistoryEntry>(), kHistoryRoom))
            .field("slaves", &It::slaves, addresses(kSlaveRoom));
    return kDescription;
}

template <>
const Description<SmartWiFi>& descriptionOf()
{
    using It = SmartWiFi;
    static const Description<It> kDescription =
        Fields<It>()
            .field("domains", &It::domains, objects<SteeringDomain>(kDomainRoom))
            .field("slaves", &It::slaves, addresses(kSlaveRoom))
            .field("propagations", &It::propagations, anyNumber())
            .field("snapshots", &It::snapshots, object<Snapshots>())
            .field("history", &It::history, list<std::deque<HistoryEntry>>(object<HistoryEntry>(), kHistoryRoom));
    return kDescription;
}

// --- The gateway -------------------------------------------------------------------------------------------------------------

template <>
const Description<Service>& descriptionOf()
{
    using It = Service;
    static const Description<It> kDescription =
        Fields<It>()
            .part(&It::settings)
            .field("errorMask", &It::errorMask, anyNumber())
            .field("stoppedPolling", &It::stoppedPolling, list<std::set<Polling>>(word<Polling>(kPollingNames), kNoLimit));
    return kDescription;
}

template <>
const Description<Timing>& descriptionOf()
{
    using It = Timing;
    static const Description<It> kDescription = Fields<It>()
                                                    .field("scanSeconds", &It::scan, seconds())
                                                    .field("wpsWindowSeconds", &It::wpsWindow, seconds())
                                                    .field("downloadSeconds", &It::download, seconds())
                                                    .field("radarCheckSeconds", &It::radarCheck, seconds())
                                                    .field("productionSeconds", &It::production, seconds())
                                                    .field("weatherRadarCheckSeconds", &It::weatherRadarCheck, seconds())
                                                    .field("nonOccupancySeconds", &It::nonOccupancy, seconds())
                                                    .field("returnSpreadSeconds", &It::returnSpread, seconds());
    return kDescription;
}

template <>
const Description<Random>& descriptionOf()
{
    using It = Random;
    static const Description<It> kDescription = Fields<It>().field("state", &It::state, number(1, Random::kModulus - 1));
    return kDescription;
}

namespace
{

struct DueEntry
{
    Milliseconds at = 0;
    Due due;
};

} // namespace

template <>
const Description<Due>& descriptionOf()
{
    using It = Due;
    static const Description<It> kDescription = Fields<It>()
                                                    .required("what", &It::what, word<Occurrence>(kOccurrenceNames))
                                                    .field("radio", &It::radioId, number(0, kRadioRoom))
                                                    .field("interface", &It::interfaceId, number(0, kInterfaceRoom))
                                                    .field("address", &It::address, anyAddress())
                                                    .field("channel", &It::channel, number(0, 233));
    return kDescription;
}

template <>
const Description<DueEntry>& descriptionOf()
{
    using It = DueEntry;
    static const Description<It> kDescription = Fields<It>().required("at", &It::at, counter()).part(&It::due);
    return kDescription;
}

namespace
{

class AgendaKind : public Kind<Agenda>
{
public:
    void read(const base::JsonValue& from, Agenda& to) const override
    {
        std::vector<DueEntry> entries;
        entries_->read(from, entries);
        for (const DueEntry& entry : entries)
            to.set(entry.due, entry.at);
    }

    Json write(const Agenda& from) const override
    {
        std::vector<DueEntry> entries;
        for (const auto& [time, due] : from.all())
            entries.push_back({time, due});
        return entries_->write(entries);
    }

    Json schema() const override
    {
        return entries_->schema();
    }

    bool accepts(const Agenda& /*value*/) const override
    {
        return true;
    }

private:
    KindOf<std::vector<DueEntry>> entries_ = objects<DueEntry>();
};

} // namespace

template <>
const Description<Fault>& descriptionOf()
{
    using It = Fault;
    static const Description<It> kDescription =
        Fields<It>()
            .required("kind", &It::kind, word<FaultKind>(kFaultKindNames))
            .field("service", &It::service, maybe(oneOf(std::vector<std::string>{"TARN", "QTN_RPC_PROXY", "QTN_MIRROR"})))
            .field("function", &It::function, maybe(text(1, 64)))
            .field("event", &It::event, maybe(text(1, 64)))
            .field("count", &It::count, maybe(number(1, 1000000)))
            .field("probability", &It::probability, number(1, 100))
            .field("milliseconds", &It::milliseconds, maybe(number(1, 3600000)))
            .field("status", &It::status,
                   maybe(signedNumber(std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max())))
            .field("losesSettings", &It::losesSettings, maybe(boolean()));
    return kDescription;
}

template <>
const Description<Model>& descriptionOf()
{
    using It = Model;
    static const Description<It> kDescription =
        Fields<It>()
            .field("$schema", &It::schema, text(0, 256))
            .required("scenario", &It::version, number(1, 1))
            .field("description", &It::description, text(0, 1000))
            .field("time", &It::time, counter())
            .field("bootedAt", &It::bootedAt, counter())
            .field("random", &It::random, object<Random>())
            .field("due", &It::agenda, std::make_shared<AgendaKind>())
            .field("supportsWfaAlliance", &It::supportsWfaAlliance, boolean())
            .field("air", &It::air, object<Air>())
            .field("clients", &It::clients, objects<Client>(kClientRoom))
            .field("faults", &It::faults, objects<Fault>(kFaultRoom))
            .field("timing", &It::timing, object<Timing>())
            .field("service", &It::service, object<Service>())
            .field("module", &It::module, object<Module>())
            .required("radios", &It::radios, list<std::deque<Radio>>(object<Radio>(), kRadioRoom, 1))
            .field("smartWiFi", &It::smartWiFi, object<SmartWiFi>());
    return kDescription;
}

} // namespace tarn::simulator
