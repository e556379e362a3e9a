// The device service's messages, byte by byte. One struct a layout; which commands speak it stands above each.
//
// Words are 32 bits in the host's byte order. A service reads and writes these very bytes, so every field's offset is asserted.
#pragma once

#include <cstddef>
#include <cstdint>

#include "tarn_api.h"

namespace tarn
{

inline constexpr std::size_t kMacAddressSize = 6;
inline constexpr std::size_t kMobilityDomainSize = 2;

// Commands 0 and 1. The level is set in one word and read in another.
struct LogLevelMessage
{
    std::uint32_t levelToSet;
    std::uint32_t levelReported;
    std::uint32_t status;
};
static_assert(sizeof(LogLevelMessage) == 12);
static_assert(offsetof(LogLevelMessage, levelToSet) == 0);
static_assert(offsetof(LogLevelMessage, levelReported) == 4);
static_assert(offsetof(LogLevelMessage, status) == 8);

// Command 2.
struct LastErrorMaskMessage
{
    std::uint32_t mask;
    std::uint32_t status;
};
static_assert(sizeof(LastErrorMaskMessage) == 8);
static_assert(offsetof(LastErrorMaskMessage, mask) == 0);
static_assert(offsetof(LastErrorMaskMessage, status) == 4);

// Command 3.
struct StopPollingMessage
{
    std::uint32_t value1;
    std::uint32_t value2;
    std::uint32_t status;
};
static_assert(sizeof(StopPollingMessage) == 12);
static_assert(offsetof(StopPollingMessage, value1) == 0);
static_assert(offsetof(StopPollingMessage, value2) == 4);
static_assert(offsetof(StopPollingMessage, status) == 8);

// Commands 4 to 8, 11 to 20, 23 and 24: everything that is read from a radio.
struct RadioQueryMessage
{
    std::uint32_t radio;
    std::uint32_t index; // of a radio, a chain or a neighbour
    TarnChannelQuery query;
    union
    {
        std::uint32_t word;
        std::uint8_t byte;
        char driverVersion[65];
        std::uint8_t channels[256];
        TarnRadioStats stats;
        TarnNeighborBss neighbor;
        TarnRadioData data; // the longest: it fills the area
    };
    std::uint32_t status;
};
static_assert(sizeof(RadioQueryMessage) == 9584);
static_assert(offsetof(RadioQueryMessage, radio) == 0);
static_assert(offsetof(RadioQueryMessage, index) == 4);
static_assert(offsetof(RadioQueryMessage, query) == 8 && sizeof(RadioQueryMessage::query) == 20);
static_assert(offsetof(RadioQueryMessage, word) == 28);
static_assert(offsetof(RadioQueryMessage, byte) == 28);
static_assert(offsetof(RadioQueryMessage, driverVersion) == 28 && sizeof(RadioQueryMessage::driverVersion) == 65);
static_assert(offsetof(RadioQueryMessage, channels) == 28 && sizeof(RadioQueryMessage::channels) == 256);
static_assert(offsetof(RadioQueryMessage, stats) == 28 && sizeof(RadioQueryMessage::stats) == 96);
static_assert(offsetof(RadioQueryMessage, neighbor) == 28 && sizeof(RadioQueryMessage::neighbor) == 88);
static_assert(offsetof(RadioQueryMessage, data) == 28 && sizeof(RadioQueryMessage::data) == 9552);
static_assert(offsetof(RadioQueryMessage, status) == 9580);

// Commands 9, 10, 21 and 22: what is set or started on a radio.
struct RadioCommandMessage
{
    std::uint32_t radio;
    std::uint32_t param;
    union
    {
        TarnRadioExCfg extendedConfiguration;
        TarnRadioCfg configuration; // the longer: it fills the area
    };
    std::uint32_t status;
};
static_assert(sizeof(RadioCommandMessage) == 4444);
static_assert(offsetof(RadioCommandMessage, radio) == 0);
static_assert(offsetof(RadioCommandMessage, param) == 4);
static_assert(offsetof(RadioCommandMessage, extendedConfiguration) == 8);
static_assert(sizeof(RadioCommandMessage::extendedConfiguration) == 60);
static_assert(offsetof(RadioCommandMessage, configuration) == 8 && sizeof(RadioCommandMessage::configuration) == 4432);
static_assert(offsetof(RadioCommandMessage, status) == 4440);

// Commands 25, 26, 28, 29, 31, 33, 35, 36, 38, 41, 81 and 82: short reads, of a word or a text, most of the chip module.
struct ModuleStateMessage
{
    std::uint32_t radio;
    union
    {
        std::uint32_t word;
        std::uint8_t transmitPower[8];
        char version[68];
    };
    std::uint32_t status;
};
static_assert(sizeof(ModuleStateMessage) == 76);
static_assert(offsetof(ModuleStateMessage, radio) == 0);
static_assert(offsetof(ModuleStateMessage, word) == 4);
static_assert(offsetof(ModuleStateMessage, transmitPower) == 4 && sizeof(ModuleStateMessage::transmitPower) == 8);
static_assert(offsetof(ModuleStateMessage, version) == 4 && sizeof(ModuleStateMessage::version) == 68);
static_assert(offsetof(ModuleStateMessage, status) == 72);

// The path of a configuration to download, at most 256 characters and a NUL.
struct ConfigurationPath
{
    char text[257];
    std::uint8_t reserved[3];
};

// Commands 27, 30, 32, 34, 37, 39, 40, 77 and 114: what is switched or started on the chip module.
struct ModuleControlMessage
{
    std::uint32_t radio;
    union
    {
        std::uint32_t value;
        ConfigurationPath path;
    };
    std::uint32_t status;
};
static_assert(sizeof(ModuleControlMessage) == 268);
static_assert(offsetof(ModuleControlMessage, radio) == 0);
static_assert(offsetof(ModuleControlMessage, value) == 4);
static_assert(offsetof(ModuleControlMessage, path) == 4);
static_assert(offsetof(ModuleControlMessage, path.reserved) == 261);
static_assert(offsetof(ModuleControlMessage, status) == 264);

// Commands 111 to 113.
struct SoniqAssociationMessage
{
    std::uint32_t index;
    std::uint8_t macAddress[kMacAddressSize];
    std::uint8_t reserved[2];
    std::uint32_t number;
    TarnQuantennaSoniqCurrentAssociationData association;
    std::uint32_t status;
};
static_assert(sizeof(SoniqAssociationMessage) == 148);
static_assert(offsetof(SoniqAssociationMessage, index) == 0);
static_assert(offsetof(SoniqAssociationMessage, macAddress) == 4);
static_assert(offsetof(SoniqAssociationMessage, reserved) == 10);
static_assert(offsetof(SoniqAssociationMessage, number) == 12);
static_assert(offsetof(SoniqAssociationMessage, association) == 16 && sizeof(SoniqAssociationMessage::association) == 128);
static_assert(offsetof(SoniqAssociationMessage, status) == 144);

// Commands 42 to 44, 46 and 47: everything that is read from an SSID interface.
struct SsidQueryMessage
{
    std::uint32_t radio;
    std::uint32_t ssid;
    std::uint32_t index;
    union
    {
        std::uint32_t word;
        TarnSsidIntfStats stats;
        TarnSsidIntfData data; // the longest: it fills the area
    };
    std::uint32_t status;
};
static_assert(sizeof(SsidQueryMessage) == 144);
static_assert(offsetof(SsidQueryMessage, radio) == 0);
static_assert(offsetof(SsidQueryMessage, ssid) == 4);
static_assert(offsetof(SsidQueryMessage, index) == 8);
static_assert(offsetof(SsidQueryMessage, word) == 12);
static_assert(offsetof(SsidQueryMessage, stats) == 12 && sizeof(SsidQueryMessage::stats) == 84);
static_assert(offsetof(SsidQueryMessage, data) == 12 && sizeof(SsidQueryMessage::data) == 128);
static_assert(offsetof(SsidQueryMessage, status) == 140);

// Command 45.
struct SsidCommandMessage
{
    std::uint32_t radio;
    std::uint32_t ssid;
    std::uint32_t param;
    TarnSsidIntfCfg configuration;
    std::uint32_t status;
};
static_assert(sizeof(SsidCommandMessage) == 56);
static_assert(offsetof(SsidCommandMessage, radio) == 0);
static_assert(offsetof(SsidCommandMessage, ssid) == 4);
static_assert(offsetof(SsidCommandMessage, param) == 8);
static_assert(offsetof(SsidCommandMessage, configuration) == 12 && sizeof(SsidCommandMessage::configuration) == 40);
static_assert(offsetof(SsidCommandMessage, status) == 52);

// Commands 48 to 51.
struct RoamingMessage
{
    std::uint32_t radio;
    std::uint32_t ssid;
    union
    {
        std::uint32_t enabled;
        std::uint8_t mobilityDomain[kMobilityDomainSize]; // two bytes, never an integer; the two behind them stay zero
    };
    std::uint32_t status;
};
static_assert(sizeof(RoamingMessage) == 16);
static_assert(offsetof(RoamingMessage, radio) == 0);
static_assert(offsetof(RoamingMessage, ssid) == 4);
static_assert(offsetof(RoamingMessage, enabled) == 8);
static_assert(offsetof(RoamingMessage, mobilityDomain) == 8);
static_assert(offsetof(RoamingMessage, status) == 12);

// Commands 52 to 55. The count is not where the address stands.
struct BlockAddressMessage
{
    std::uint32_t radio;
    std::uint32_t ssid;
    std::uint32_t index;
    std::uint8_t macAddress[kMacAddressSize];
    std::uint8_t reserved[2];
    std::uint32_t number;
    std::uint8_t reservedBehindNumber[8];
    std::uint32_t status;
};
static_assert(sizeof(BlockAddressMessage) == 36);
static_assert(offsetof(BlockAddressMessage, radio) == 0);
static_assert(offsetof(BlockAddressMessage, ssid) == 4);
static_assert(offsetof(BlockAddressMessage, index) == 8);
static_assert(offsetof(BlockAddressMessage, macAddress) == 12);
static_assert(offsetof(BlockAddressMessage, reserved) == 18);
static_assert(offsetof(BlockAddressMessage, number) == 20);
static_assert(offsetof(BlockAddressMessage, reservedBehindNumber) == 24);
static_assert(offsetof(BlockAddressMessage, status) == 32);

// Commands 56 and 58. Reads and writes of an access point share their head but not their length: they are two layouts.
struct AccessPointReadMessage
{
    std::uint32_t radio;
    std::uint32_t accessPoint;
    union
    {
        TarnAccessPointData data;
        TarnAccessPointSecurityData security; // the longer: it fills the area
    };
    std::uint32_t status;
};
static_assert(sizeof(AccessPointReadMessage) == 344);
static_assert(offsetof(AccessPointReadMessage, radio) == 0);
static_assert(offsetof(AccessPointReadMessage, accessPoint) == 4);
static_assert(offsetof(AccessPointReadMessage, data) == 8 && sizeof(AccessPointReadMessage::data) == 32);
static_assert(offsetof(AccessPointReadMessage, security) == 8 && sizeof(AccessPointReadMessage::security) == 332);
static_assert(offsetof(AccessPointReadMessage, status) == 340);

// Commands 57, 59 and 60.
struct AccessPointWriteMessage
{
    std::uint32_t radio;
    std::uint32_t accessPoint;
    union
    {
        TarnAccessPointCfg configuration;
        std::uint32_t securityExtension[2];
        TarnAccessPointSecurityCfg securityConfiguration; // the longest: it fills the area
    };
    std::uint32_t status;
};
static_assert(sizeof(AccessPointWriteMessage) == 336);
static_assert(offsetof(AccessPointWriteMessage, radio) == 0);
static_assert(offsetof(AccessPointWriteMessage, accessPoint) == 4);
static_assert(offsetof(AccessPointWriteMessage, configuration) == 8 && sizeof(AccessPointWriteMessage::configuration) == 28);
static_assert(offsetof(AccessPointWriteMessage, securityExtension) == 8);
static_assert(offsetof(AccessPointWriteMessage, securityConfiguration) == 8);
static_assert(sizeof(AccessPointWriteMessage::securityConfiguration) == 324);
static_assert(offsetof(AccessPointWriteMessage, status) == 332);

// Commands 61 to 65: an access point's WPS configuration and its WPS window.
struct WpsMessage
{
    std::uint32_t radio;
    std::uint32_t accessPoint;
    std::uint32_t triggerValue1;
    std::uint32_t triggerValue2;
    TarnAccessPointWpsCfg configuration;
    std::uint32_t configurationValue;
    std::uint32_t windowStatus;
    TarnAccessPointWpsData data;
    std::uint32_t status;
};
static_assert(sizeof(WpsMessage) == 220);
static_assert(offsetof(WpsMessage, radio) == 0);
static_assert(offsetof(WpsMessage, accessPoint) == 4);
static_assert(offsetof(WpsMessage, triggerValue1) == 8);
static_assert(offsetof(WpsMessage, triggerValue2) == 12);
static_assert(offsetof(WpsMessage, configuration) == 16 && sizeof(WpsMessage::configuration) == 28);
static_assert(offsetof(WpsMessage, configurationValue) == 44);
static_assert(offsetof(WpsMessage, windowStatus) == 48);
static_assert(offsetof(WpsMessage, data) == 52 && sizeof(WpsMessage::data) == 164);
static_assert(offsetof(WpsMessage, status) == 216);

// Commands 66 to 70.
struct StationMessage
{
    std::uint32_t radio;
    std::uint32_t accessPoint;
    std::uint32_t index;
    std::uint8_t macAddress[kMacAddressSize];
    std::uint8_t reserved[2];
    std::uint32_t number;
    TarnAccessPointAssociatedData associated;
    TarnAccessPointAssociatedStats stats;
    std::uint32_t status;
};
static_assert(sizeof(StationMessage) == 140);
static_assert(offsetof(StationMessage, radio) == 0);
static_assert(offsetof(StationMessage, accessPoint) == 4);
static_assert(offsetof(StationMessage, index) == 8);
static_assert(offsetof(StationMessage, macAddress) == 12);
static_assert(offsetof(StationMessage, reserved) == 18);
static_assert(offsetof(StationMessage, number) == 20);
static_assert(offsetof(StationMessage, associated) == 24 && sizeof(StationMessage::associated) == 76);
static_assert(offsetof(StationMessage, stats) == 100 && sizeof(StationMessage::stats) == 36);
static_assert(offsetof(StationMessage, status) == 136);

// Commands 71 to 76. Mode and address are set in one place and read in another.
struct MacFilterMessage
{
    std::uint32_t radio;
    std::uint32_t accessPoint;
    std::uint32_t index;
    std::uint32_t modeToSet;
    std::uint8_t macAddress[kMacAddressSize];
    std::uint8_t reserved[2];
    std::uint32_t modeReported;
    std::uint32_t number;
    std::uint8_t macAddressReported[kMacAddressSize];
    std::uint8_t reservedBehindAddress[2];
    std::uint32_t status;
};
static_assert(sizeof(MacFilterMessage) == 44);
static_assert(offsetof(MacFilterMessage, radio) == 0);
static_assert(offsetof(MacFilterMessage, accessPoint) == 4);
static_assert(offsetof(MacFilterMessage, index) == 8);
static_assert(offsetof(MacFilterMessage, modeToSet) == 12);
static_assert(offsetof(MacFilterMessage, macAddress) == 16);
static_assert(offsetof(MacFilterMessage, reserved) == 22);
static_assert(offsetof(MacFilterMessage, modeReported) == 24);
static_assert(offsetof(MacFilterMessage, number) == 28);
static_assert(offsetof(MacFilterMessage, macAddressReported) == 32);
static_assert(offsetof(MacFilterMessage, reservedBehindAddress) == 38);
static_assert(offsetof(MacFilterMessage, status) == 40);

// The path of a file to write, at most 512 characters and a NUL.
struct FilePath
{
    char text[513];
    std::uint8_t reserved[3];
};

// Commands 78 to 80 and 83 to 110.
struct SmartWiFiMessage
{
    std::uint32_t enabled; // or the syncing switch
    std::uint32_t index;
    std::uint8_t mobilityDomain[kMobilityDomainSize];
    std::uint8_t reserved[2];
    std::uint32_t value;
    union
    {
        std::uint8_t macAddress[kMacAddressSize];
        char interfaceName[65];
        TarnQuantennaSmartWiFiQcommCfg qcommConfiguration;
        TarnQuantennaSmartWiFiQslPart1Cfg qslPart1;
        TarnQuantennaSmartWiFiQslPart2Cfg qslPart2;
        FilePath path; // the longest: it fills the area
    };
    std::uint32_t recordStatus;
    union
    {
        std::uint32_t word;
        std::uint8_t mobilityDomainReported[kMobilityDomainSize];
        std::uint8_t macAddressReported[kMacAddressSize];
        TarnQuantennaSmartWiFiAssoiatedData associated;
        TarnQuantennaSmartWiFiQslData qsl;
        TarnQuantennaSmartWiFiBSSEntryData bssEntry;
        TarnQuantennaSmartWiFiRecordInfoData recordInfo;
        TarnQuantennaSmartWiFiQcommData qcomm; // the longest: it fills the area
    };
    std::uint32_t status;
};
static_assert(sizeof(SmartWiFiMessage) == 2240);
static_assert(offsetof(SmartWiFiMessage, enabled) == 0);
static_assert(offsetof(SmartWiFiMessage, index) == 4);
static_assert(offsetof(SmartWiFiMessage, mobilityDomain) == 8);
static_assert(offsetof(SmartWiFiMessage, reserved) == 10);
static_assert(offsetof(SmartWiFiMessage, value) == 12);
static_assert(offsetof(SmartWiFiMessage, macAddress) == 16);
static_assert(offsetof(SmartWiFiMessage, interfaceName) == 16);
static_assert(offsetof(SmartWiFiMessage, qcommConfiguration) == 16 && sizeof(SmartWiFiMessage::qcommConfiguration) == 64);
static_assert(offsetof(SmartWiFiMessage, qslPart1) == 16 && sizeof(SmartWiFiMessage::qslPart1) == 120);
static_assert(offsetof(SmartWiFiMessage, qslPart2) == 16 && sizeof(SmartWiFiMessage::qslPart2) == 112);
static_assert(offsetof(SmartWiFiMessage, path) == 16);
static_assert(offsetof(SmartWiFiMessage, path.reserved) == 529);
static_assert(offsetof(SmartWiFiMessage, recordStatus) == 532);
static_assert(offsetof(SmartWiFiMessage, word) == 536);
static_assert(offsetof(SmartWiFiMessage, mobilityDomainReported) == 536);
static_assert(offsetof(SmartWiFiMessage, macAddressReported) == 536);
static_assert(offsetof(SmartWiFiMessage, associated) == 536 && sizeof(SmartWiFiMessage::associated) == 88);
static_assert(offsetof(SmartWiFiMessage, qsl) == 536 && sizeof(SmartWiFiMessage::qsl) == 232);
static_assert(offsetof(SmartWiFiMessage, bssEntry) == 536 && sizeof(SmartWiFiMessage::bssEntry) == 256);
static_assert(offsetof(SmartWiFiMessage, recordInfo) == 536 && sizeof(SmartWiFiMessage::recordInfo) == 257);
static_assert(offsetof(SmartWiFiMessage, qcomm) == 536 && sizeof(SmartWiFiMessage::qcomm) == 1700);
static_assert(offsetof(SmartWiFiMessage, status) == 2236);

} // namespace tarn
