// The device service's messages, byte by byte. One struct for each layout, with the commands that use it.
//
// Words are 32 bits in the host's byte order. A service reads and writes these very bytes, so every field's offset and size is
// asserted.
#pragma once

#include <cstddef>
#include <cstdint>

#include "layout.h"
#include "tarn_api.h"

namespace tarn
{

constexpr std::size_t kMacAddressSize = 6;
constexpr std::size_t kMobilityDomainSize = 2;

// Commands 0 and 1. The level is set in one word and read in another.
struct LogLevelMessage
{
    std::uint32_t levelToSet;
    std::uint32_t levelReported;
    std::uint32_t status;
};
TARN_LENGTH(LogLevelMessage, 12);
TARN_FIELD(LogLevelMessage, levelToSet, 0, 4);
TARN_FIELD(LogLevelMessage, levelReported, 4, 4);
TARN_FIELD(LogLevelMessage, status, 8, 4);

// Command 2.
struct LastErrorMaskMessage
{
    std::uint32_t mask;
    std::uint32_t status;
};
TARN_LENGTH(LastErrorMaskMessage, 8);
TARN_FIELD(LastErrorMaskMessage, mask, 0, 4);
TARN_FIELD(LastErrorMaskMessage, status, 4, 4);

// Command 3.
struct StopPollingMessage
{
    std::uint32_t value1;
    std::uint32_t value2;
    std::uint32_t status;
};
TARN_LENGTH(StopPollingMessage, 12);
TARN_FIELD(StopPollingMessage, value1, 0, 4);
TARN_FIELD(StopPollingMessage, value2, 4, 4);
TARN_FIELD(StopPollingMessage, status, 8, 4);

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
TARN_LENGTH(RadioQueryMessage, 9584);
TARN_FIELD(RadioQueryMessage, radio, 0, 4);
TARN_FIELD(RadioQueryMessage, index, 4, 4);
TARN_FIELD(RadioQueryMessage, query, 8, 20);
TARN_FIELD(RadioQueryMessage, word, 28, 4);
TARN_FIELD(RadioQueryMessage, byte, 28, 1);
TARN_FIELD(RadioQueryMessage, driverVersion, 28, 65);
TARN_FIELD(RadioQueryMessage, channels, 28, 256);
TARN_FIELD(RadioQueryMessage, stats, 28, 96);
TARN_FIELD(RadioQueryMessage, neighbor, 28, 88);
TARN_FIELD(RadioQueryMessage, data, 28, 9552);
TARN_FIELD(RadioQueryMessage, status, 9580, 4);

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
TARN_LENGTH(RadioCommandMessage, 4444);
TARN_FIELD(RadioCommandMessage, radio, 0, 4);
TARN_FIELD(RadioCommandMessage, param, 4, 4);
TARN_FIELD(RadioCommandMessage, extendedConfiguration, 8, 60);
TARN_FIELD(RadioCommandMessage, configuration, 8, 4432);
TARN_FIELD(RadioCommandMessage, status, 4440, 4);

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
TARN_LENGTH(ModuleStateMessage, 76);
TARN_FIELD(ModuleStateMessage, radio, 0, 4);
TARN_FIELD(ModuleStateMessage, word, 4, 4);
TARN_FIELD(ModuleStateMessage, transmitPower, 4, 8);
TARN_FIELD(ModuleStateMessage, version, 4, 68);
TARN_FIELD(ModuleStateMessage, status, 72, 4);

// The path of a configuration to download, at most 256 characters and a NUL.
struct ConfigurationPath
{
    char text[257];
    std::uint8_t reserved[3];
};
TARN_FIELD(ConfigurationPath, text, 0, 257);
TARN_FIELD(ConfigurationPath, reserved, 257, 3);

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
TARN_LENGTH(ModuleControlMessage, 268);
TARN_FIELD(ModuleControlMessage, radio, 0, 4);
TARN_FIELD(ModuleControlMessage, value, 4, 4);
TARN_FIELD(ModuleControlMessage, path, 4, 260);
TARN_FIELD(ModuleControlMessage, status, 264, 4);

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
TARN_LENGTH(SoniqAssociationMessage, 148);
TARN_FIELD(SoniqAssociationMessage, index, 0, 4);
TARN_FIELD(SoniqAssociationMessage, macAddress, 4, 6);
TARN_FIELD(SoniqAssociationMessage, reserved, 10, 2);
TARN_FIELD(SoniqAssociationMessage, number, 12, 4);
TARN_FIELD(SoniqAssociationMessage, association, 16, 128);
TARN_FIELD(SoniqAssociationMessage, status, 144, 4);

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
TARN_LENGTH(SsidQueryMessage, 144);
TARN_FIELD(SsidQueryMessage, radio, 0, 4);
TARN_FIELD(SsidQueryMessage, ssid, 4, 4);
TARN_FIELD(SsidQueryMessage, index, 8, 4);
TARN_FIELD(SsidQueryMessage, word, 12, 4);
TARN_FIELD(SsidQueryMessage, stats, 12, 84);
TARN_FIELD(SsidQueryMessage, data, 12, 128);
TARN_FIELD(SsidQueryMessage, status, 140, 4);

// Command 45.
struct SsidCommandMessage
{
    std::uint32_t radio;
    std::uint32_t ssid;
    std::uint32_t param;
    TarnSsidIntfCfg configuration;
    std::uint32_t status;
};
TARN_LENGTH(SsidCommandMessage, 56);
TARN_FIELD(SsidCommandMessage, radio, 0, 4);
TARN_FIELD(SsidCommandMessage, ssid, 4, 4);
TARN_FIELD(SsidCommandMessage, param, 8, 4);
TARN_FIELD(SsidCommandMessage, configuration, 12, 40);
TARN_FIELD(SsidCommandMessage, status, 52, 4);

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
TARN_LENGTH(RoamingMessage, 16);
TARN_FIELD(RoamingMessage, radio, 0, 4);
TARN_FIELD(RoamingMessage, ssid, 4, 4);
TARN_FIELD(RoamingMessage, enabled, 8, 4);
TARN_FIELD(RoamingMessage, mobilityDomain, 8, 2);
TARN_FIELD(RoamingMessage, status, 12, 4);

// Commands 52 to 55. The count does not share the address's bytes.
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
TARN_LENGTH(BlockAddressMessage, 36);
TARN_FIELD(BlockAddressMessage, radio, 0, 4);
TARN_FIELD(BlockAddressMessage, ssid, 4, 4);
TARN_FIELD(BlockAddressMessage, index, 8, 4);
TARN_FIELD(BlockAddressMessage, macAddress, 12, 6);
TARN_FIELD(BlockAddressMessage, reserved, 18, 2);
TARN_FIELD(BlockAddressMessage, number, 20, 4);
TARN_FIELD(BlockAddressMessage, reservedBehindNumber, 24, 8);
TARN_FIELD(BlockAddressMessage, status, 32, 4);

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
TARN_LENGTH(AccessPointReadMessage, 344);
TARN_FIELD(AccessPointReadMessage, radio, 0, 4);
TARN_FIELD(AccessPointReadMessage, accessPoint, 4, 4);
TARN_FIELD(AccessPointReadMessage, data, 8, 32);
TARN_FIELD(AccessPointReadMessage, security, 8, 332);
TARN_FIELD(AccessPointReadMessage, status, 340, 4);

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
TARN_LENGTH(AccessPointWriteMessage, 336);
TARN_FIELD(AccessPointWriteMessage, radio, 0, 4);
TARN_FIELD(AccessPointWriteMessage, accessPoint, 4, 4);
TARN_FIELD(AccessPointWriteMessage, configuration, 8, 28);
TARN_FIELD(AccessPointWriteMessage, securityExtension, 8, 8);
TARN_FIELD(AccessPointWriteMessage, securityConfiguration, 8, 324);
TARN_FIELD(AccessPointWriteMessage, status, 332, 4);

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
TARN_LENGTH(WpsMessage, 220);
TARN_FIELD(WpsMessage, radio, 0, 4);
TARN_FIELD(WpsMessage, accessPoint, 4, 4);
TARN_FIELD(WpsMessage, triggerValue1, 8, 4);
TARN_FIELD(WpsMessage, triggerValue2, 12, 4);
TARN_FIELD(WpsMessage, configuration, 16, 28);
TARN_FIELD(WpsMessage, configurationValue, 44, 4);
TARN_FIELD(WpsMessage, windowStatus, 48, 4);
TARN_FIELD(WpsMessage, data, 52, 164);
TARN_FIELD(WpsMessage, status, 216, 4);

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
TARN_LENGTH(StationMessage, 140);
TARN_FIELD(StationMessage, radio, 0, 4);
TARN_FIELD(StationMessage, accessPoint, 4, 4);
TARN_FIELD(StationMessage, index, 8, 4);
TARN_FIELD(StationMessage, macAddress, 12, 6);
TARN_FIELD(StationMessage, reserved, 18, 2);
TARN_FIELD(StationMessage, number, 20, 4);
TARN_FIELD(StationMessage, associated, 24, 76);
TARN_FIELD(StationMessage, stats, 100, 36);
TARN_FIELD(StationMessage, status, 136, 4);

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
TARN_LENGTH(MacFilterMessage, 44);
TARN_FIELD(MacFilterMessage, radio, 0, 4);
TARN_FIELD(MacFilterMessage, accessPoint, 4, 4);
TARN_FIELD(MacFilterMessage, index, 8, 4);
TARN_FIELD(MacFilterMessage, modeToSet, 12, 4);
TARN_FIELD(MacFilterMessage, macAddress, 16, 6);
TARN_FIELD(MacFilterMessage, reserved, 22, 2);
TARN_FIELD(MacFilterMessage, modeReported, 24, 4);
TARN_FIELD(MacFilterMessage, number, 28, 4);
TARN_FIELD(MacFilterMessage, macAddressReported, 32, 6);
TARN_FIELD(MacFilterMessage, reservedBehindAddress, 38, 2);
TARN_FIELD(MacFilterMessage, status, 40, 4);

// The path of a file to write, at most 512 characters and a NUL.
struct FilePath
{
    char text[513];
    std::uint8_t reserved[3];
};
TARN_FIELD(FilePath, text, 0, 513);
TARN_FIELD(FilePath, reserved, 513, 3);

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
TARN_LENGTH(SmartWiFiMessage, 2240);
TARN_FIELD(SmartWiFiMessage, enabled, 0, 4);
TARN_FIELD(SmartWiFiMessage, index, 4, 4);
TARN_FIELD(SmartWiFiMessage, mobilityDomain, 8, 2);
TARN_FIELD(SmartWiFiMessage, reserved, 10, 2);
TARN_FIELD(SmartWiFiMessage, value, 12, 4);
TARN_FIELD(SmartWiFiMessage, macAddress, 16, 6);
TARN_FIELD(SmartWiFiMessage, interfaceName, 16, 65);
TARN_FIELD(SmartWiFiMessage, qcommConfiguration, 16, 64);
TARN_FIELD(SmartWiFiMessage, qslPart1, 16, 120);
TARN_FIELD(SmartWiFiMessage, qslPart2, 16, 112);
TARN_FIELD(SmartWiFiMessage, path, 16, 516);
TARN_FIELD(SmartWiFiMessage, recordStatus, 532, 4);
TARN_FIELD(SmartWiFiMessage, word, 536, 4);
TARN_FIELD(SmartWiFiMessage, mobilityDomainReported, 536, 2);
TARN_FIELD(SmartWiFiMessage, macAddressReported, 536, 6);
TARN_FIELD(SmartWiFiMessage, associated, 536, 88);
TARN_FIELD(SmartWiFiMessage, qsl, 536, 232);
TARN_FIELD(SmartWiFiMessage, bssEntry, 536, 256);
TARN_FIELD(SmartWiFiMessage, recordInfo, 536, 257);
TARN_FIELD(SmartWiFiMessage, qcomm, 536, 1700);
TARN_FIELD(SmartWiFiMessage, status, 2236, 4);

} // namespace tarn
