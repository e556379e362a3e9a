// The command functions of the device service, in sections of one subject and, within a section, in command order.
//
// Each function reads the same way: refuse, fill, send, copy out, return. What looks irregular (a slot, an order, a text, a
// name) is that way on the wire or in callers' code; a comment says that it is meant.
//
// A trace record shows the unit's tag and a line of this file, which is how a reader of a log finds the function that failed.
// All command functions are therefore in this one file, below the lines that events.cpp takes up under the same tag.
//
// Ids of radios, SSID interfaces and access points count from 1 for the caller and from 0 on the wire: an id is sent less one,
// and 0 wraps round. An index is sent as it is. Neither is checked for its range, which the service defines.
#include "tarn_api.h"

#include <cstring>

#include "call.h"
#include "messages.h"
#include "text.h"

namespace
{

using namespace tarn;

template <class Message>
using Call = BasicCall<Family::kDevice, std::uint32_t, Message>;

// Some commands have a longer wait than most; which ones is fixed.
constexpr std::uint32_t kLongWait = 4;

// The longest of all: propagating a configuration.
constexpr std::uint32_t kPropagationWait = 10;

void copyAddress(std::uint8_t (&to)[kMacAddressSize], const std::uint8_t* from)
{
    std::memcpy(to, from, kMacAddressSize);
}

void copyAddress(std::uint8_t* to, const std::uint8_t (&from)[kMacAddressSize])
{
    std::memcpy(to, from, kMacAddressSize);
}

// A mobility domain id (IEEE 802.11, fast BSS transition) is two bytes, moved one by one and never read as an integer.
void copyMobilityDomain(std::uint8_t* to, const std::uint8_t* from)
{
    to[0] = from[0];
    to[1] = from[1];
}

// A version's text may fill its field without a NUL; the caller's buffer holds 64 characters of it and a NUL.
void copyVersion(char* to, const char (&from)[68])
{
    constexpr std::size_t kBufferSize = 65;
    copyText(to, kBufferSize, from, sizeof from);
}

} // namespace

// ----------------------------------------------------------------------------------------------------------------------------
// Service settings: commands 0 to 3
// ----------------------------------------------------------------------------------------------------------------------------

uint32_t TarnGetLogLevel(const char* callerId, uint32_t* level)
{
    Call<LogLevelMessage> call;
    if (const uint32_t refusal = call.open(callerId, {level, "level is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(0))
        return failure;

    *level = call.message.levelReported; // the second word: the first is the one to set
    return call.message.status;
}

uint32_t TarnSetLogLevel(const char* callerId, uint32_t level)
{
    Call<LogLevelMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.levelToSet = level;

    return call.finish(1);
}

uint32_t TarnGetLastErrorMask(const char* callerId, uint32_t* mask)
{
    Call<LastErrorMaskMessage> call;
    if (const uint32_t refusal = call.open(callerId, {mask, "mask is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(2))
        return failure;

    *mask = call.message.mask;
    return call.message.status;
}

uint32_t TarnSetStopPollingEnable(const char* callerId, uint32_t value1, uint32_t value2)
{
    Call<StopPollingMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.value1 = value1;
    call.message.value2 = value2;

    return call.finish(3);
}

// ----------------------------------------------------------------------------------------------------------------------------
// Radios: commands 4 to 19 and 25
// ----------------------------------------------------------------------------------------------------------------------------

uint32_t TarnGetRadioIsSupportedWFAAlliance(const char* callerId, uint32_t* isSupported)
{
    Call<RadioQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {isSupported, "isSupported is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(4))
        return failure;

    *isSupported = call.message.word;
    return call.message.status;
}

uint32_t TarnGetRadioNum(const char* callerId, uint32_t* number)
{
    Call<RadioQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {number, "number is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(5))
        return failure;

    *number = call.message.word;
    return call.message.status;
}

uint32_t TarnGetRadioAt(const char* callerId, uint32_t index, TarnRadioData* data)
{
    Call<RadioQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {data, "number is NULL"})) // meant: the text does not name the argument
        return refusal;

    call.message.index = index; // meant: in the index word, as it is; the radio word stays zero

    if (const uint32_t failure = call.execute(6))
        return failure;

    *data = call.message.data;
    return call.message.status;
}

uint32_t TarnGetRadio(const char* callerId, uint32_t radioId, TarnRadioData* data)
{
    Call<RadioQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {data, "data is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;

    if (const uint32_t failure = call.execute(7))
        return failure;

    *data = call.message.data;
    return call.message.status;
}

uint32_t TarnGetRadioIsReady(const char* callerId, uint32_t radioId, uint32_t* isReady)
{
    Call<RadioQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {isReady, "isReady is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;

    if (const uint32_t failure = call.execute(8))
        return failure;

    *isReady = call.message.word;
    return call.message.status;
}

uint32_t TarnSetRadioCfg(const char* callerId, uint32_t radioId, uint32_t param, TarnRadioCfg cfg)
{
    Call<RadioCommandMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.param = param;
    call.message.configuration = cfg;

    return call.finish(9);
}

uint32_t TarnSetRadioExCfg(const char* callerId, uint32_t radioId, uint32_t param, TarnRadioExCfg cfg)
{
    Call<RadioCommandMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.param = param;
    call.message.extendedConfiguration = cfg; // 60 bytes of the same long message

    return call.finish(10);
}

uint32_t TarnGetRadioStats(const char* callerId, uint32_t radioId, TarnRadioStats* stats)
{
    Call<RadioQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {stats, "stats is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;

    if (const uint32_t failure = call.execute(11, kLongWait))
        return failure;

    *stats = call.message.stats;
    return call.message.status;
}

uint32_t TarnGetRadioDriverVersion(const char* callerId, uint32_t radioId, char* version)
{
    Call<RadioQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {version, "version is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;

    if (const uint32_t failure = call.execute(12))
        return failure;

    std::memcpy(version, call.message.driverVersion, sizeof call.message.driverVersion); // all 65 bytes, unchanged
    return call.message.status;
}

uint32_t TarnGetRadioIsSupportedWdsInterface(const char* callerId, uint32_t radioId, uint32_t* isSupported)
{
    Call<RadioQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {isSupported, "isSupported is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;

    if (const uint32_t failure = call.execute(13))
        return failure;

    *isSupported = call.message.word;
    return call.message.status;
}

uint32_t TarnGetRadioPossibleChannels(const char* callerId, uint32_t radioId, TarnChannelQuery query, uint8_t* channels)
{
    Call<RadioQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {channels, "channels is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.query = query;

    if (const uint32_t failure = call.execute(14))
        return failure;

    std::memcpy(channels, call.message.channels, sizeof call.message.channels);
    return call.message.status;
}

uint32_t TarnGetRadioCurrentTransmitPowerLevel(const char* callerId, uint32_t radioId, uint8_t* power)
{
    Call<RadioQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {power, "power is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;

    if (const uint32_t failure = call.execute(15))
        return failure;

    *power = call.message.byte; // meant: the first byte of the area, not the low byte of a word
    return call.message.status;
}

uint32_t TarnGetRadioChainNumber(const char* callerId, uint32_t radioId, uint32_t* number)
{
    Call<RadioQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {number, "number is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;

    if (const uint32_t failure = call.execute(16))
        return failure;

    *number = call.message.word;
    return call.message.status;
}

uint32_t TarnGetRadioChainRssiAt(const char* callerId, uint32_t radioId, uint32_t chainIndex, uint32_t* rssi)
{
    Call<RadioQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {rssi, "rssi is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.index = chainIndex;

    if (const uint32_t failure = call.execute(17, kLongWait))
        return failure;

    *rssi = call.message.word;
    return call.message.status;
}

uint32_t TarnGetRadioChipTemperature(const char* callerId, uint32_t radioId, uint32_t* temperature)
{
    Call<RadioQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {temperature, "temperature is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;

    if (const uint32_t failure = call.execute(18, kLongWait))
        return failure;

    *temperature = call.message.word;
    return call.message.status;
}

uint32_t TarnGetRadioPrimarySSIDIntfId(const char* callerId, uint32_t radioId, uint32_t* ssid_id)
{
    Call<RadioQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {ssid_id, "ssid_id is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;

    if (const uint32_t failure = call.execute(19))
        return failure;

    *ssid_id = call.message.word; // as the service gives it: nothing is added
    return call.message.status;
}

uint32_t TarnGetRadioIsSupportedOPXRoaming(const char* callerId, uint32_t radioId, uint32_t* isSupported)
{
    Call<ModuleStateMessage> call; // meant: the short message, unlike the other radio queries
    if (const uint32_t refusal = call.open(callerId, {isSupported, "isSupported is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;

    if (const uint32_t failure = call.execute(25))
        return failure;

    *isSupported = call.message.word;
    return call.message.status;
}

// ----------------------------------------------------------------------------------------------------------------------------
// Neighbourhood scanning: commands 20 to 24
// ----------------------------------------------------------------------------------------------------------------------------

uint32_t TarnGetRadioNeighboringStatus(const char* callerId, uint32_t radioId, uint32_t* status)
{
    Call<RadioQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {status, "status is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;

    if (const uint32_t failure = call.execute(20))
        return failure;

    *status = call.message.word;
    return call.message.status;
}

uint32_t TarnScanRadioNeighborhood(const char* callerId, uint32_t radioId)
{
    Call<RadioCommandMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.radio = radioId - 1;

    return call.finish(21);
}

uint32_t TarnCancelRadioNeighborhoodScanning(const char* callerId, uint32_t radioId)
{
    Call<RadioCommandMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.radio = radioId - 1;

    return call.finish(22);
}

uint32_t TarnGetRadioNeighboringResultNum(const char* callerId, uint32_t radioId, uint32_t* number)
{
    Call<RadioQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {number, "number is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;

    if (const uint32_t failure = call.execute(23))
        return failure;

    *number = call.message.word;
    return call.message.status;
}

uint32_t TarnGetRadioNeighboringResultAt(const char* callerId, uint32_t radioId, uint32_t index, TarnNeighborBss* bss)
{
    Call<RadioQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {bss, "bss is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.index = index;

    if (const uint32_t failure = call.execute(24))
        return failure;

    *bss = call.message.neighbor;
    return call.message.status;
}

// ----------------------------------------------------------------------------------------------------------------------------
// Chip module: commands 26 to 41, 77 and 111 to 114. Only some of them are about one radio; the others leave
// its word zero.
// ----------------------------------------------------------------------------------------------------------------------------

uint32_t TarnGetRadioQuantennaQhopState(const char* callerId, uint32_t radioId, uint32_t* enable)
{
    Call<ModuleStateMessage> call;
    if (const uint32_t refusal = call.open(callerId, {enable, "enable is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;

    if (const uint32_t failure = call.execute(26))
        return failure;

    *enable = call.message.word;
    return call.message.status;
}

uint32_t TarnSetRadioQuantennaQhopEnable(const char* callerId, uint32_t radioId, uint32_t enable)
{
    Call<ModuleControlMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.value = enable;

    return call.finish(27);
}

uint32_t TarnGetRadioQuantennaCurrentTransmitPower(const char* callerId, uint32_t radioId, uint8_t* power)
{
    Call<ModuleStateMessage> call;
    if (const uint32_t refusal = call.open(callerId, {power, "power is invalid"})) // meant: not "is NULL"
        return refusal;

    call.message.radio = radioId - 1;

    if (const uint32_t failure = call.execute(28, kLongWait))
        return failure;

    std::memcpy(power, call.message.transmitPower, sizeof call.message.transmitPower);
    return call.message.status;
}

uint32_t TarnGetRadioQuantennaCarrierId(const char* callerId, uint32_t* id)
{
    Call<ModuleStateMessage> call;
    if (const uint32_t refusal = call.open(callerId, {id, "id is invalid"})) // meant: not "is NULL"
        return refusal;

    if (const uint32_t failure = call.execute(29, kLongWait))
        return failure;

    *id = call.message.word;
    return call.message.status;
}

uint32_t TarnSetQuantennaATM(const char* callerId, uint32_t value)
{
    Call<ModuleControlMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.value = value;

    return call.finish(30);
}

uint32_t TarnGetQuantennaATMState(const char* callerId, uint32_t* state)
{
    Call<ModuleStateMessage> call;
    if (const uint32_t refusal = call.open(callerId, {state, "state is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(31))
        return failure;

    *state = call.message.word;
    return call.message.status;
}

uint32_t TarnSetQuantennaAtmActuate(const char* callerId, uint32_t value)
{
    Call<ModuleControlMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.value = value;

    return call.finish(32);
}

uint32_t TarnGetQuantennaAtmActuateState(const char* callerId, uint32_t* state)
{
    Call<ModuleStateMessage> call;
    if (const uint32_t refusal = call.open(callerId, {state, "state is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(33))
        return failure;

    *state = call.message.word;
    return call.message.status;
}

uint32_t TarnSetQuantennaDFSDaemon(const char* callerId, uint32_t value)
{
    Call<ModuleControlMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.value = value;

    return call.finish(34);
}

uint32_t TarnGetQuantennaDFSDaemonState(const char* callerId, uint32_t* state)
{
    Call<ModuleStateMessage> call;
    if (const uint32_t refusal = call.open(callerId, {state, "state is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(35))
        return failure;

    *state = call.message.word;
    return call.message.status;
}

uint32_t TarnGetQuantennaMauiState(const char* callerId, uint32_t* enable)
{
    Call<ModuleStateMessage> call;
    if (const uint32_t refusal = call.open(callerId, {enable, "enable is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(36))
        return failure;

    *enable = call.message.word;
    return call.message.status;
}

uint32_t TarnSetQuantennaMauiEnable(const char* callerId, uint32_t enable)
{
    Call<ModuleControlMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.value = enable;

    return call.finish(37);
}

uint32_t TarnGetQuantennaMauiVersion(const char* callerId, char* version)
{
    Call<ModuleStateMessage> call;
    if (const uint32_t refusal = call.open(callerId, {version, "version is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(38))
        return failure;

    copyVersion(version, call.message.version);
    return call.message.status;
}

uint32_t TarnDownloadQuantennaWirelessConf(const char* callerId, const char* path)
{
    Call<ModuleControlMessage> call;
    if (const uint32_t refusal = call.open(callerId, {path, "path is invalid"}))
        return refusal;
    if (*path == '\0')
        return call.reject("path is invalid"); // meant: the same text as for a NULL path

    copyText(call.message.path.text, path);

    return call.finish(39);
}

uint32_t TarnUpdateQuantennaPasswordFile(const char* callerId)
{
    Call<ModuleControlMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    return call.finish(40);
}

uint32_t TarnGetQuantennaDownloadState(const char* callerId, uint32_t* state)
{
    Call<ModuleStateMessage> call;
    if (const uint32_t refusal = call.open(callerId, {state, "state is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(41))
        return failure;

    *state = call.message.word;
    return call.message.status;
}

uint32_t TarnSetQuantennaRPCDebugEnable(const char* callerId, uint32_t enable)
{
    Call<ModuleControlMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.value = enable;

    return call.finish(77);
}

uint32_t TarnGetQuantennaSoniqCurrentAssociationNumber(const char* callerId, uint32_t* number)
{
    Call<SoniqAssociationMessage> call;
    if (const uint32_t refusal = call.open(callerId, {number, "number is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(111))
        return failure;

    *number = call.message.number;
    return call.message.status;
}

uint32_t TarnGetQuantennaSoniqCurrentAssociationAt(const char* callerId, uint32_t index,
                                                   TarnQuantennaSoniqCurrentAssociationData* data)
{
    Call<SoniqAssociationMessage> call;
    if (const uint32_t refusal = call.open(callerId, {data, "data is NULL"}))
        return refusal;

    call.message.index = index;

    if (const uint32_t failure = call.execute(112))
        return failure;

    *data = call.message.association;
    return call.message.status;
}

uint32_t TarnGetQuantennaSoniqCurrentAssociation(const char* callerId, const uint8_t* mac_addr,
                                                 TarnQuantennaSoniqCurrentAssociationData* data)
{
    Call<SoniqAssociationMessage> call;
    if (const uint32_t refusal = call.open(callerId, {mac_addr, "mac_addr is NULL"}, {data, "data is NULL"}))
        return refusal;

    copyAddress(call.message.macAddress, mac_addr);

    if (const uint32_t failure = call.execute(113))
        return failure;

    *data = call.message.association;
    return call.message.status;
}

uint32_t TarnSetQuantennaTdwrChannelsEnable(const char* callerId, uint32_t radioId, uint32_t enable)
{
    Call<ModuleControlMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.value = enable;

    return call.finish(114);
}

// ----------------------------------------------------------------------------------------------------------------------------
// SSID interfaces: commands 42 to 55
// ----------------------------------------------------------------------------------------------------------------------------

uint32_t TarnGetSsidIntfNum(const char* callerId, uint32_t radioId, uint32_t* number)
{
    Call<SsidQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {number, "number is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;

    if (const uint32_t failure = call.execute(42))
        return failure;

    *number = call.message.word;
    return call.message.status;
}

uint32_t TarnGetSsidIntfAt(const char* callerId, uint32_t radioId, uint32_t index, TarnSsidIntfData* data)
{
    Call<SsidQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {data, "data is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.index = index; // the SSID word stays zero

    if (const uint32_t failure = call.execute(43))
        return failure;

    *data = call.message.data;
    return call.message.status;
}

uint32_t TarnGetSsidIntf(const char* callerId, uint32_t radioId, uint32_t ssidId, TarnSsidIntfData* data)
{
    Call<SsidQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {data, "data is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.ssid = ssidId - 1;

    if (const uint32_t failure = call.execute(44))
        return failure;

    *data = call.message.data;
    return call.message.status;
}

uint32_t TarnSetSsidIntfCfg(const char* callerId, uint32_t radioId, uint32_t ssidId, uint32_t param, TarnSsidIntfCfg cfg)
{
    Call<SsidCommandMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.ssid = ssidId - 1;
    call.message.param = param;
    call.message.configuration = cfg;

    return call.finish(45);
}

uint32_t TarnGetSsidIntfStats(const char* callerId, uint32_t radioId, uint32_t ssidId, TarnSsidIntfStats* stats)
{
    Call<SsidQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {stats, "stats is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.ssid = ssidId - 1;

    if (const uint32_t failure = call.execute(46, kLongWait))
        return failure;

    *stats = call.message.stats;
    return call.message.status;
}

uint32_t TarnGetSsidIntfIsPrimarySSIDIntf(const char* callerId, uint32_t radioId, uint32_t ssidId, uint32_t* isPrimary)
{
    Call<SsidQueryMessage> call;
    if (const uint32_t refusal = call.open(callerId, {isPrimary, "isPrimary is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.ssid = ssidId - 1;

    if (const uint32_t failure = call.execute(47))
        return failure;

    *isPrimary = call.message.word;
    return call.message.status;
}

uint32_t TarnGetSsidOPXRoamingState(const char* callerId, uint32_t radioId, uint32_t ssidId, uint32_t* enable)
{
    Call<RoamingMessage> call;
    if (const uint32_t refusal = call.open(callerId, {enable, "enable is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.ssid = ssidId - 1;

    if (const uint32_t failure = call.execute(48))
        return failure;

    *enable = call.message.enabled;
    return call.message.status;
}

uint32_t TarnSetSsidOPXRoamingEnable(const char* callerId, uint32_t radioId, uint32_t ssidId, uint32_t enable)
{
    Call<RoamingMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.ssid = ssidId - 1;
    call.message.enabled = enable;

    return call.finish(49);
}

uint32_t TarnGetSsidOPXRoamingMdid(const char* callerId, uint32_t radioId, uint32_t ssidId, uint8_t* mdid)
{
    Call<RoamingMessage> call;
    if (const uint32_t refusal = call.open(callerId, {mdid, "mdid is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.ssid = ssidId - 1;

    if (const uint32_t failure = call.execute(50))
        return failure;

    copyMobilityDomain(mdid, call.message.mobilityDomain);
    return call.message.status;
}

uint32_t TarnSetSsidOPXRoamingMdid(const char* callerId, uint32_t radioId, uint32_t ssidId, const uint8_t* mdid)
{
    Call<RoamingMessage> call;
    if (const uint32_t refusal = call.open(callerId, {mdid, "mdid is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.ssid = ssidId - 1;
    copyMobilityDomain(call.message.mobilityDomain, mdid);

    return call.finish(51);
}

uint32_t TarnGetSsidOPXShgwBlockAddrNum(const char* callerId, uint32_t radioId, uint32_t ssidId, uint32_t* number)
{
    Call<BlockAddressMessage> call;
    if (const uint32_t refusal = call.open(callerId, {number, "number is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.ssid = ssidId - 1;

    if (const uint32_t failure = call.execute(52))
        return failure;

    *number = call.message.number;
    return call.message.status;
}

// NOLINTNEXTLINE(readability-non-const-parameter): meant, the address in the reply is not copied out, mac is left unchanged
uint32_t TarnGetSsidOPXShgwBlockAddrAt(const char* callerId, uint32_t radioId, uint32_t ssidId, uint32_t index, uint8_t* mac)
{
    Call<BlockAddressMessage> call;
    if (const uint32_t refusal = call.open(callerId, {mac, "mac is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.ssid = ssidId - 1;
    call.message.index = index;

    return call.finish(53);
}

uint32_t TarnAddSsidOPXShgwBlockAddr(const char* callerId, uint32_t radioId, uint32_t ssidId, const uint8_t* mac)
{
    Call<BlockAddressMessage> call;
    if (const uint32_t refusal = call.open(callerId, {mac, "mac is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.ssid = ssidId - 1;
    copyAddress(call.message.macAddress, mac);

    return call.finish(54);
}

uint32_t TarnDelSsidOPXShgwBlockAddr(const char* callerId, uint32_t radioId, uint32_t ssidId, const uint8_t* mac)
{
    Call<BlockAddressMessage> call;
    if (const uint32_t refusal = call.open(callerId, {mac, "mac is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.ssid = ssidId - 1;
    copyAddress(call.message.macAddress, mac);

    return call.finish(55);
}

// ----------------------------------------------------------------------------------------------------------------------------
// Access points and security: commands 56 to 62
// ----------------------------------------------------------------------------------------------------------------------------

uint32_t TarnGetAccessPoint(const char* callerId, uint32_t radioId, uint32_t apId, TarnAccessPointData* data)
{
    Call<AccessPointReadMessage> call;
    if (const uint32_t refusal = call.open(callerId, {data, "data is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;

    if (const uint32_t failure = call.execute(56))
        return failure;

    *data = call.message.data; // 32 bytes, while the configuration to set has 28
    return call.message.status;
}

uint32_t TarnSetAccessPointCfg(const char* callerId, uint32_t radioId, uint32_t apId, TarnAccessPointCfg cfg)
{
    Call<AccessPointWriteMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;
    call.message.configuration = cfg;

    return call.finish(57);
}

uint32_t TarnGetAccessPointSecurity(const char* callerId, uint32_t radioId, uint32_t apId, TarnAccessPointSecurityData* data)
{
    Call<AccessPointReadMessage> call;
    if (const uint32_t refusal = call.open(callerId, {data, "data is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;

    if (const uint32_t failure = call.execute(58))
        return failure;

    *data = call.message.security; // 332 bytes, while the configuration to set has 324
    return call.message.status;
}

uint32_t TarnSetAccessPointSecurityCfg(const char* callerId, uint32_t radioId, uint32_t apId, TarnAccessPointSecurityCfg cfg)
{
    Call<AccessPointWriteMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;
    call.message.securityConfiguration = cfg;

    return call.finish(59);
}

uint32_t TarnSetAccessPointSecurityExCfg(const char* callerId, uint32_t radioId, uint32_t apId, uint32_t value1,
                                         uint32_t value2)
{
    Call<AccessPointWriteMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;
    call.message.securityExtension[0] = value1;
    call.message.securityExtension[1] = value2;

    return call.finish(60);
}

uint32_t TarnGetAccessPointWps(const char* callerId, uint32_t radioId, uint32_t apId, TarnAccessPointWpsData* data)
{
    Call<WpsMessage> call;
    if (const uint32_t refusal = call.open(callerId, {data, "data is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;

    if (const uint32_t failure = call.execute(61))
        return failure;

    *data = call.message.data;
    return call.message.status;
}

uint32_t TarnSetAccessPointWpsCfg(const char* callerId, uint32_t radioId, uint32_t apId, uint32_t value,
                                  TarnAccessPointWpsCfg cfg)
{
    Call<WpsMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;
    call.message.configuration = cfg;
    call.message.configurationValue = value; // meant: behind the record on the wire, in front of it as an argument

    return call.finish(62);
}

// ----------------------------------------------------------------------------------------------------------------------------
// WPS window and associated stations: commands 63 to 70
// ----------------------------------------------------------------------------------------------------------------------------

uint32_t TarnGetAccessPointWpsWindowStatus(const char* callerId, uint32_t radioId, uint32_t apId, uint32_t* status)
{
    Call<WpsMessage> call;
    if (const uint32_t refusal = call.open(callerId, {status, "status is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;

    if (const uint32_t failure = call.execute(63))
        return failure;

    *status = call.message.windowStatus;
    return call.message.status;
}

uint32_t TarnTriggerAccessPointWpsWindow(const char* callerId, uint32_t radioId, uint32_t apId, uint32_t value1,
                                         uint32_t value2)
{
    Call<WpsMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;
    call.message.triggerValue1 = value1;
    call.message.triggerValue2 = value2;

    return call.finish(64, kLongWait);
}

uint32_t TarnCancelAccessPointWpsWindow(const char* callerId, uint32_t radioId, uint32_t apId)
{
    Call<WpsMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;

    return call.finish(65, kLongWait);
}

uint32_t TarnGetAccessPointAssociatedNum(const char* callerId, uint32_t radioId, uint32_t apId, uint32_t* number)
{
    Call<StationMessage> call;
    if (const uint32_t refusal = call.open(callerId, {number, "number is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;

    if (const uint32_t failure = call.execute(66)) // meant: the short wait, unlike the other station commands
        return failure;

    *number = call.message.number;
    return call.message.status;
}

uint32_t TarnGetAccessPointAssociatedAt(const char* callerId, uint32_t radioId, uint32_t apId, uint32_t index,
                                        TarnAccessPointAssociatedData* associated)
{
    Call<StationMessage> call;
    if (const uint32_t refusal = call.open(callerId, {associated, "associated is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;
    call.message.index = index;

    if (const uint32_t failure = call.execute(67, kLongWait))
        return failure;

    *associated = call.message.associated;
    return call.message.status;
}

uint32_t TarnGetAccessPointAssociated(const char* callerId, uint32_t radioId, uint32_t apId, const uint8_t* macAddress,
                                      TarnAccessPointAssociatedData* associated)
{
    Call<StationMessage> call;
    if (const uint32_t refusal = call.open(callerId, {macAddress, "macAddress is NULL"}, {associated, "associated is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;
    copyAddress(call.message.macAddress, macAddress);

    if (const uint32_t failure = call.execute(68, kLongWait))
        return failure;

    *associated = call.message.associated;
    return call.message.status;
}

uint32_t TarnGetAccessPointAssociatedStats(const char* callerId, uint32_t radioId, uint32_t apId, const uint8_t* macAddress,
                                           TarnAccessPointAssociatedStats* stats)
{
    Call<StationMessage> call;
    if (const uint32_t refusal = call.open(callerId, {macAddress, "macAddress is NULL"}, {stats, "stats is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;
    copyAddress(call.message.macAddress, macAddress);

    if (const uint32_t failure = call.execute(69, kLongWait))
        return failure;

    *stats = call.message.stats;
    return call.message.status;
}

uint32_t TarnKickOutAccessPointAssociated(const char* callerId, uint32_t radioId, uint32_t apId, const uint8_t* macAddress)
{
    Call<StationMessage> call;
    if (const uint32_t refusal = call.open(callerId, {macAddress, "macAddress is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;
    copyAddress(call.message.macAddress, macAddress);

    return call.finish(70, kLongWait);
}

// ----------------------------------------------------------------------------------------------------------------------------
// MAC address filter: commands 71 to 76
// ----------------------------------------------------------------------------------------------------------------------------

uint32_t TarnGetAccessPointMacFilterMode(const char* callerId, uint32_t radioId, uint32_t apId, uint32_t* mode)
{
    Call<MacFilterMessage> call;
    if (const uint32_t refusal = call.open(callerId, {mode, "mode is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;

    if (const uint32_t failure = call.execute(71))
        return failure;

    *mode = call.message.modeReported; // meant: not the word of the mode to set
    return call.message.status;
}

uint32_t TarnSetAccessPointMacFilterMode(const char* callerId, uint32_t radioId, uint32_t apId, uint32_t mode)
{
    Call<MacFilterMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;
    call.message.modeToSet = mode;

    return call.finish(72);
}

uint32_t TarnAddAccessPointMacFilter(const char* callerId, uint32_t radioId, uint32_t apId, const uint8_t* macAddress)
{
    Call<MacFilterMessage> call;
    if (const uint32_t refusal = call.open(callerId, {macAddress, "macAddress is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;
    copyAddress(call.message.macAddress, macAddress);

    return call.finish(73);
}

uint32_t TarnDelAccessPointMacFilter(const char* callerId, uint32_t radioId, uint32_t apId, const uint8_t* macAddress)
{
    Call<MacFilterMessage> call;
    if (const uint32_t refusal = call.open(callerId, {macAddress, "macAddress is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;
    copyAddress(call.message.macAddress, macAddress);

    return call.finish(74);
}

uint32_t TarnGetAccessPointMacFilterNum(const char* callerId, uint32_t radioId, uint32_t apId, uint32_t* number)
{
    Call<MacFilterMessage> call;
    if (const uint32_t refusal = call.open(callerId, {number, "number is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;

    if (const uint32_t failure = call.execute(75))
        return failure;

    *number = call.message.number;
    return call.message.status;
}

uint32_t TarnGetAccessPointMacFilterAt(const char* callerId, uint32_t radioId, uint32_t apId, uint32_t index,
                                       uint8_t* macAddress)
{
    Call<MacFilterMessage> call;
    if (const uint32_t refusal = call.open(callerId, {macAddress, "macAddress is NULL"}))
        return refusal;

    call.message.radio = radioId - 1;
    call.message.accessPoint = apId - 1;
    call.message.index = index;

    if (const uint32_t failure = call.execute(76))
        return failure;

    copyAddress(macAddress, call.message.macAddressReported);
    return call.message.status;
}

// ----------------------------------------------------------------------------------------------------------------------------
// Smart WiFi: commands 78 to 110
//
// The tables (BSS entries, associated stations, record info, slave devices) are read in three steps: Sync has the service take
// a snapshot, Number counts its entries, At reads one. A mobility domain id passed in is not checked: it must not be NULL.
// ----------------------------------------------------------------------------------------------------------------------------

uint32_t TarnResetQuantennaSmartWiFiDaemon(const char* callerId)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    return call.finish(78);
}

uint32_t TarnGetQuantennaSmartWiFiState(const char* callerId, uint32_t* enable)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId, {enable, "enable is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(79))
        return failure;

    *enable = call.message.word;
    return call.message.status;
}

uint32_t TarnSetQuantennaSmartWiFiEnable(const char* callerId, uint32_t enable)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.enabled = enable;

    return call.finish(80);
}

uint32_t TarnGetQuantennaSmartWiFiVersion(const char* callerId, char* version)
{
    Call<ModuleStateMessage> call; // meant: the chip module's message, for both versions
    if (const uint32_t refusal = call.open(callerId, {version, "version is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(81))
        return failure;

    copyVersion(version, call.message.version);
    return call.message.status;
}

uint32_t TarnGetQuantennaSmartWiFiDaemonVersion(const char* callerId, char* version)
{
    Call<ModuleStateMessage> call;
    if (const uint32_t refusal = call.open(callerId, {version, "version is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(82))
        return failure;

    copyVersion(version, call.message.version);
    return call.message.status;
}

uint32_t TarnSetQuantennaSmartWiFiBindingInterface(const char* callerId, const char* intf_name)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId, {intf_name, "intf_name is NULL"}))
        return refusal;

    copyText(call.message.interfaceName, intf_name);

    return call.finish(83);
}

uint32_t TarnGetQuantennaSmartWiFiQcomm(const char* callerId, TarnQuantennaSmartWiFiQcommData* data)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId, {data, "data is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(84))
        return failure;

    *data = call.message.qcomm;
    return call.message.status;
}

uint32_t TarnSetQuantennaSmartWiFiQcommCfg(const char* callerId, uint32_t value, TarnQuantennaSmartWiFiQcommCfg cfg)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.value = value;
    call.message.qcommConfiguration = cfg;

    return call.finish(85);
}

uint32_t TarnGetQuantennaSmartWiFiQslCfgSyncing(const char* callerId, uint32_t* state)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId, {state, "state is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(86))
        return failure;

    *state = call.message.word;
    return call.message.status;
}

uint32_t TarnSetQuantennaSmartWiFiQslCfgSyncing(const char* callerId, uint32_t value)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    call.message.enabled = value; // meant: the switch's word, not the value's

    return call.finish(87);
}

uint32_t TarnGetQuantennaSmartWiFiQslMdidNumber(const char* callerId, uint32_t* number)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId, {number, "number is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(88))
        return failure;

    *number = call.message.word;
    return call.message.status;
}

uint32_t TarnGetQuantennaSmartWiFiQslMdidAt(const char* callerId, uint32_t index, uint8_t* mdid)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId, {mdid, "mdid is NULL"}))
        return refusal;

    call.message.index = index;

    if (const uint32_t failure = call.execute(89))
        return failure;

    copyMobilityDomain(mdid, call.message.mobilityDomainReported);
    return call.message.status;
}

uint32_t TarnGetQuantennaSmartWiFiQsl(const char* callerId, const uint8_t* mdid, TarnQuantennaSmartWiFiQslData* data)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId, {data, "data is NULL"}))
        return refusal;

    copyMobilityDomain(call.message.mobilityDomain, mdid);

    if (const uint32_t failure = call.execute(90))
        return failure;

    *data = call.message.qsl; // in one piece, while it is set in two
    return call.message.status;
}

uint32_t TarnSetQuantennaSmartWiFiQslPart1Cfg(const char* callerId, const uint8_t* mdid, uint32_t value,
                                              TarnQuantennaSmartWiFiQslPart1Cfg cfg)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    copyMobilityDomain(call.message.mobilityDomain, mdid);
    call.message.value = value;
    call.message.qslPart1 = cfg;

    return call.finish(91);
}

uint32_t TarnSetQuantennaSmartWiFiQslPart2Cfg(const char* callerId, const uint8_t* mdid, uint32_t value,
                                              TarnQuantennaSmartWiFiQslPart2Cfg cfg)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    copyMobilityDomain(call.message.mobilityDomain, mdid);
    call.message.value = value;
    call.message.qslPart2 = cfg;

    return call.finish(92);
}

uint32_t TarnGetQuantennaSmartWiFiNonSteerNumber(const char* callerId, const uint8_t* mdid, uint32_t* number)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId, {number, "number is NULL"}))
        return refusal;

    copyMobilityDomain(call.message.mobilityDomain, mdid);

    if (const uint32_t failure = call.execute(93))
        return failure;

    *number = call.message.word;
    return call.message.status;
}

uint32_t TarnGetQuantennaSmartWiFiNonSteerAt(const char* callerId, const uint8_t* mdid, uint32_t index, uint8_t* mac_addr)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId, {mac_addr, "mac_addr is NULL"}))
        return refusal;

    copyMobilityDomain(call.message.mobilityDomain, mdid);
    call.message.index = index;

    if (const uint32_t failure = call.execute(94))
        return failure;

    copyAddress(mac_addr, call.message.macAddressReported);
    return call.message.status;
}

uint32_t TarnAddQuantennaSmartWiFiNonSteer(const char* callerId, const uint8_t* mdid, const uint8_t* mac_addr)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId, {mac_addr, "mac_addr is NULL"}))
        return refusal;

    copyMobilityDomain(call.message.mobilityDomain, mdid);
    copyAddress(call.message.macAddress, mac_addr);

    return call.finish(95);
}

uint32_t TarnDelQuantennaSmartWiFiNonSteer(const char* callerId, const uint8_t* mdid, const uint8_t* mac_addr)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId, {mac_addr, "mac_addr is NULL"}))
        return refusal;

    copyMobilityDomain(call.message.mobilityDomain, mdid);
    copyAddress(call.message.macAddress, mac_addr);

    return call.finish(96);
}

uint32_t TarnSyncQuantennaSmartWiFiBSSTable(const char* callerId)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    return call.finish(97);
}

uint32_t TarnGetQuantennaSmartWiFiBSSEntryNumber(const char* callerId, uint32_t* number)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId, {number, "number is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(98))
        return failure;

    *number = call.message.word;
    return call.message.status;
}

uint32_t TarnGetQuantennaSmartWiFiBSSEntryAt(const char* callerId, uint32_t index, TarnQuantennaSmartWiFiBSSEntryData* data)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId, {data, "data is NULL"}))
        return refusal;

    call.message.index = index;

    if (const uint32_t failure = call.execute(99))
        return failure;

    *data = call.message.bssEntry;
    return call.message.status;
}

// "Assoiated" is how callers link against the next three.

uint32_t TarnSyncQuantennaSmartWiFiAssoiated(const char* callerId)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    return call.finish(100);
}

uint32_t TarnGetQuantennaSmartWiFiAssoiatedNumber(const char* callerId, uint32_t* number)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId, {number, "number is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(101))
        return failure;

    *number = call.message.word;
    return call.message.status;
}

uint32_t TarnGetQuantennaSmartWiFiAssoiatedAt(const char* callerId, uint32_t index, TarnQuantennaSmartWiFiAssoiatedData* data)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId, {data, "data is NULL"}))
        return refusal;

    call.message.index = index;

    if (const uint32_t failure = call.execute(102))
        return failure;

    *data = call.message.associated;
    return call.message.status;
}

uint32_t TarnSyncQuantennaSmartWiFiRecordInfo(const char* callerId)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    return call.finish(103);
}

uint32_t TarnGetQuantennaSmartWiFiRecordInfoNumber(const char* callerId, uint32_t* number)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId, {number, "number is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(104))
        return failure;

    *number = call.message.word;
    return call.message.status;
}

uint32_t TarnGetQuantennaSmartWiFiRecordInfoAt(const char* callerId, uint32_t index, uint32_t* status,
                                               TarnQuantennaSmartWiFiRecordInfoData* data)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal =
            call.open(callerId, {data, "data is NULL"}, {status, "status is NULL"})) // meant: data before status
        return refusal;

    call.message.index = index;

    if (const uint32_t failure = call.execute(105))
        return failure;

    *status = call.message.recordStatus; // the record's own, not the reply's
    *data = call.message.recordInfo;
    return call.message.status;
}

uint32_t TarnSyncQuantennaSmartWiFiSlaveDevice(const char* callerId)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    return call.finish(106);
}

uint32_t TarnGetQuantennaSmartWiFiSlaveDeviceNumber(const char* callerId, uint32_t* number)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId, {number, "number is NULL"}))
        return refusal;

    if (const uint32_t failure = call.execute(107))
        return failure;

    *number = call.message.word;
    return call.message.status;
}

uint32_t TarnGetQuantennaSmartWiFiSlaveDeviceAt(const char* callerId, uint32_t index, uint8_t* data)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId, {data, "data is NULL"}))
        return refusal;

    call.message.index = index;

    if (const uint32_t failure = call.execute(108))
        return failure;

    copyAddress(data, call.message.macAddressReported);
    return call.message.status;
}

uint32_t TarnDoQuantennaSmartWiFiCfgPropagation(const char* callerId)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId))
        return refusal;

    return call.finish(109, kPropagationWait);
}

uint32_t TarnGetQuantennaSmartWiFiCfgToFile(const char* callerId, const char* path)
{
    Call<SmartWiFiMessage> call;
    if (const uint32_t refusal = call.open(callerId, {path, "path is NULL"}))
        return refusal;

    copyText(call.message.path.text, path);

    return call.finish(110);
}
