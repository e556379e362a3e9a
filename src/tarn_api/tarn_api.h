/* The wireless device service, IPC identifier "TARN": one function per command, commands 0 to 114.
 *
 * Every function sends one request and waits for its reply. `tarn_frame.h` describes what they all share: the caller id, the
 * results, the traces, ids and indices. The description of a function says what is particular to it.
 *
 * Reading a description
 *   in, out      the caller's own storage either way; no pointer is kept after the call
 *   NULL         the arguments listed behind TARN_REJECTED are checked, in the order listed; the first that is NULL ends the
 *                call with one trace, and nothing is sent. A listed pointer must not be NULL; one that is not listed is not
 *                checked
 *   wait         passed to the IPC library, which knows its unit and ends the call when it is over (TARN_TIMED_OUT)
 *   outputs      written after every IPC call that succeeded, whatever the reply status says: look at the result first
 *   ids          counted from 1 and sent less 1; an id of 0 is not refused, it is sent as 0xFFFFFFFF
 *   values       words, flags and bytes are sent and returned unchanged. Where it says "as the service defines it", the
 *                service alone knows the values, their unit and their range; none of these is checked here
 *   MAC address  6 raw bytes (IEEE 802), never parsed or checked
 *   mdid         mobility domain identifier (IEEE 802.11, fast BSS transition): 2 bytes, copied in order, never a number */
#ifndef TARN_API_H
#define TARN_API_H

#include <stdint.h>

#include "tarn_frame.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Records
 *
 * The inside of a record belongs to the service: this library copies a record as one block and looks at none of its bytes. All
 * that counts here is the size. A record holds bytes only and needs no alignment. A record to be read is passed by pointer, and
 * all of it is written; a record to be written is passed by value, and the caller's copy stays as it is. */

/* A radio's full description, read. 9552 bytes. */
typedef struct TarnRadioData
{
    uint8_t bytes[9552];
} TarnRadioData;

/* A radio's statistics, read. 96 bytes. */
typedef struct TarnRadioStats
{
    uint8_t bytes[96];
} TarnRadioStats;

/* A radio's configuration, written. 4432 bytes. */
typedef struct TarnRadioCfg
{
    uint8_t bytes[4432];
} TarnRadioCfg;

/* A radio's extended configuration, written. 60 bytes. */
typedef struct TarnRadioExCfg
{
    uint8_t bytes[60];
} TarnRadioExCfg;

/* Selects which channels TarnGetRadioPossibleChannels lists. 20 bytes. */
typedef struct TarnChannelQuery
{
    uint8_t bytes[20];
} TarnChannelQuery;

/* One result of a neighbourhood scan (a BSS, IEEE 802.11), read. 88 bytes. */
typedef struct TarnNeighborBss
{
    uint8_t bytes[88];
} TarnNeighborBss;

/* One entry of the module's Soniq table of current associations, read. 128 bytes. */
typedef struct TarnQuantennaSoniqCurrentAssociationData
{
    uint8_t bytes[128];
} TarnQuantennaSoniqCurrentAssociationData;

/* An SSID interface's description, read. 128 bytes. */
typedef struct TarnSsidIntfData
{
    uint8_t bytes[128];
} TarnSsidIntfData;

/* An SSID interface's statistics, read. 84 bytes. */
typedef struct TarnSsidIntfStats
{
    uint8_t bytes[84];
} TarnSsidIntfStats;

/* An SSID interface's configuration, written. 40 bytes. */
typedef struct TarnSsidIntfCfg
{
    uint8_t bytes[40];
} TarnSsidIntfCfg;

/* An access point's description, read; longer than the record written. 32 bytes. */
typedef struct TarnAccessPointData
{
    uint8_t bytes[32];
} TarnAccessPointData;

/* An access point's configuration, written. 28 bytes. */
typedef struct TarnAccessPointCfg
{
    uint8_t bytes[28];
} TarnAccessPointCfg;

/* An access point's security settings, read; longer than the record written. 332 bytes. */
typedef struct TarnAccessPointSecurityData
{
    uint8_t bytes[332];
} TarnAccessPointSecurityData;

/* An access point's security configuration, written. 324 bytes. */
typedef struct TarnAccessPointSecurityCfg
{
    uint8_t bytes[324];
} TarnAccessPointSecurityCfg;

/* An access point's WPS settings, read; longer than the record written. 164 bytes. */
typedef struct TarnAccessPointWpsData
{
    uint8_t bytes[164];
} TarnAccessPointWpsData;

/* An access point's WPS configuration, written together with one separate 32-bit value. 28 bytes. */
typedef struct TarnAccessPointWpsCfg
{
    uint8_t bytes[28];
} TarnAccessPointWpsCfg;

/* A station associated with an access point, read. 76 bytes. */
typedef struct TarnAccessPointAssociatedData
{
    uint8_t bytes[76];
} TarnAccessPointAssociatedData;

/* The statistics of one associated station, read. 36 bytes. */
typedef struct TarnAccessPointAssociatedStats
{
    uint8_t bytes[36];
} TarnAccessPointAssociatedStats;

/* The Smart WiFi daemon's Qcomm data, read. 1700 bytes. */
typedef struct TarnQuantennaSmartWiFiQcommData
{
    uint8_t bytes[1700];
} TarnQuantennaSmartWiFiQcommData;

/* The Smart WiFi daemon's Qcomm configuration, written. 64 bytes. */
typedef struct TarnQuantennaSmartWiFiQcommCfg
{
    uint8_t bytes[64];
} TarnQuantennaSmartWiFiQcommCfg;

/* The QSL configuration of one mobility domain, read in one piece. 232 bytes. */
typedef struct TarnQuantennaSmartWiFiQslData
{
    uint8_t bytes[232];
} TarnQuantennaSmartWiFiQslData;

/* First part of the QSL configuration of one mobility domain, written. 120 bytes. */
typedef struct TarnQuantennaSmartWiFiQslPart1Cfg
{
    uint8_t bytes[120];
} TarnQuantennaSmartWiFiQslPart1Cfg;

/* Second part of the QSL configuration of one mobility domain, written. 112 bytes. */
typedef struct TarnQuantennaSmartWiFiQslPart2Cfg
{
    uint8_t bytes[112];
} TarnQuantennaSmartWiFiQslPart2Cfg;

/* One entry of the Smart WiFi BSS table, read. 256 bytes. */
typedef struct TarnQuantennaSmartWiFiBSSEntryData
{
    uint8_t bytes[256];
} TarnQuantennaSmartWiFiBSSEntryData;

/* One entry of the Smart WiFi table of associated stations, read. 88 bytes. */
typedef struct TarnQuantennaSmartWiFiAssoiatedData
{
    uint8_t bytes[88];
} TarnQuantennaSmartWiFiAssoiatedData;

/* One entry of the Smart WiFi record info table, read. 257 bytes. */
typedef struct TarnQuantennaSmartWiFiRecordInfoData
{
    uint8_t bytes[257];
} TarnQuantennaSmartWiFiRecordInfoData;

/* A record must have exactly its size on the wire. Checked where the language can check it. */
#if defined(__cplusplus) && __cplusplus >= 201103L
#define TARN_RECORD_SIZE(record, size) static_assert(sizeof(record) == (size), #record " must be " #size " bytes");
#elif !defined(__cplusplus) && defined(__STDC_VERSION__) && __STDC_VERSION__ >= 201112L
#define TARN_RECORD_SIZE(record, size) _Static_assert(sizeof(record) == (size), #record " must be " #size " bytes");
#else
#define TARN_RECORD_SIZE(record, size)
#endif

TARN_RECORD_SIZE(TarnRadioData, 9552)
TARN_RECORD_SIZE(TarnRadioStats, 96)
TARN_RECORD_SIZE(TarnRadioCfg, 4432)
TARN_RECORD_SIZE(TarnRadioExCfg, 60)
TARN_RECORD_SIZE(TarnChannelQuery, 20)
TARN_RECORD_SIZE(TarnNeighborBss, 88)
TARN_RECORD_SIZE(TarnQuantennaSoniqCurrentAssociationData, 128)
TARN_RECORD_SIZE(TarnSsidIntfData, 128)
TARN_RECORD_SIZE(TarnSsidIntfStats, 84)
TARN_RECORD_SIZE(TarnSsidIntfCfg, 40)
TARN_RECORD_SIZE(TarnAccessPointData, 32)
TARN_RECORD_SIZE(TarnAccessPointCfg, 28)
TARN_RECORD_SIZE(TarnAccessPointSecurityData, 332)
TARN_RECORD_SIZE(TarnAccessPointSecurityCfg, 324)
TARN_RECORD_SIZE(TarnAccessPointWpsData, 164)
TARN_RECORD_SIZE(TarnAccessPointWpsCfg, 28)
TARN_RECORD_SIZE(TarnAccessPointAssociatedData, 76)
TARN_RECORD_SIZE(TarnAccessPointAssociatedStats, 36)
TARN_RECORD_SIZE(TarnQuantennaSmartWiFiQcommData, 1700)
TARN_RECORD_SIZE(TarnQuantennaSmartWiFiQcommCfg, 64)
TARN_RECORD_SIZE(TarnQuantennaSmartWiFiQslData, 232)
TARN_RECORD_SIZE(TarnQuantennaSmartWiFiQslPart1Cfg, 120)
TARN_RECORD_SIZE(TarnQuantennaSmartWiFiQslPart2Cfg, 112)
TARN_RECORD_SIZE(TarnQuantennaSmartWiFiBSSEntryData, 256)
TARN_RECORD_SIZE(TarnQuantennaSmartWiFiAssoiatedData, 88)
TARN_RECORD_SIZE(TarnQuantennaSmartWiFiRecordInfoData, 257)

#undef TARN_RECORD_SIZE

/* Service settings (commands 0 to 3)
 *
 * The service's own settings rather than those of a Wi-Fi object. */

/* Reads the service's log level.
 *
 *   callerId  in: the caller id
 *   level     out: log level, 32-bit word as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, level). */
TARN_EXPORT uint32_t TarnGetLogLevel(const char* callerId, uint32_t* level);

/* Sets the service's log level.
 *
 *   callerId  in: the caller id
 *   level     in: log level, as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetLogLevel(const char* callerId, uint32_t level);

/* Reads the mask of the service's last errors.
 *
 *   callerId  in: the caller id
 *   mask      out: 32 bits, as the service defines them
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, mask). */
TARN_EXPORT uint32_t TarnGetLastErrorMask(const char* callerId, uint32_t* mask);

/* Stops the service's polling, or lets it run again. The service defines which of the two values selects what is stopped and
 * which one switches it.
 *
 *   callerId  in: the caller id
 *   value1    in: first value, as the service defines it, sent as it is
 *   value2    in: second value, likewise
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetStopPollingEnable(const char* callerId, uint32_t value1, uint32_t value2);

/* Radios (commands 4 to 19 and 25)
 *
 * Enumerate with TarnGetRadioNum and TarnGetRadioAt, or address a radio by its id. */

/* Tells whether the gateway supports what the service calls WFA alliance. Takes no radio id, in spite of its name.
 *
 *   callerId     in: the caller id
 *   isSupported  out: whether it is supported, 32-bit word as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, isSupported). */
TARN_EXPORT uint32_t TarnGetRadioIsSupportedWFAAlliance(const char* callerId, uint32_t* isSupported);

/* Reads the number of radios.
 *
 *   callerId  in: the caller id
 *   number    out: number of radios, 32-bit word
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, number). */
TARN_EXPORT uint32_t TarnGetRadioNum(const char* callerId, uint32_t* number);

/* Reads a radio's description by its index, not by its id: index 1 and radio id 1 need not be the same radio.
 *
 *   callerId  in: the caller id
 *   index     in: index, sent as it is; the service defines whether the first is 0 or 1
 *   data      out: the radio's description, 9552 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, data). The trace when data is
 * NULL reads "number is NULL"; this is meant. */
TARN_EXPORT uint32_t TarnGetRadioAt(const char* callerId, uint32_t index, TarnRadioData* data);

/* Reads a radio's description.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   data      out: the radio's description, 9552 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, data). */
TARN_EXPORT uint32_t TarnGetRadio(const char* callerId, uint32_t radioId, TarnRadioData* data);

/* Tells whether a radio is ready.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   isReady   out: whether it is ready, 32-bit word as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, isReady). */
TARN_EXPORT uint32_t TarnGetRadioIsReady(const char* callerId, uint32_t radioId, uint32_t* isReady);

/* Configures a radio.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   param     in: 32-bit value that goes with the record, as the service defines it
 *   cfg       in: configuration, 4432 bytes, passed by value
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetRadioCfg(const char* callerId, uint32_t radioId, uint32_t param, TarnRadioCfg cfg);

/* Sets a radio's extended configuration.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   param     in: 32-bit value that goes with the record, as the service defines it
 *   cfg       in: extended configuration, 60 bytes, passed by value
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetRadioExCfg(const char* callerId, uint32_t radioId, uint32_t param, TarnRadioExCfg cfg);

/* Reads a radio's statistics.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   stats     out: statistics, 96 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 4), TARN_REJECTED (callerId, stats). */
TARN_EXPORT uint32_t TarnGetRadioStats(const char* callerId, uint32_t radioId, TarnRadioStats* stats);

/* Reads the version of a radio's driver.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   version   out: text, must be writable for 65 bytes. All 65 are copied as they come: the text ends at the service's own
 *             NUL, and none is added when the service sent none
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, version). */
TARN_EXPORT uint32_t TarnGetRadioDriverVersion(const char* callerId, uint32_t radioId, char* version);

/* Tells whether a radio supports a WDS (wireless distribution system) interface.
 *
 *   callerId     in: the caller id
 *   radioId      in: radio, counted from 1
 *   isSupported  out: whether it is supported, 32-bit word as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, isSupported). */
TARN_EXPORT uint32_t TarnGetRadioIsSupportedWdsInterface(const char* callerId, uint32_t radioId, uint32_t* isSupported);

/* Lists the channels that a radio can use.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   query     in: selects which channels are listed, 20 bytes, passed by value
 *   channels  out: channel list as the service defines it, must be writable for 256 bytes; all 256 are written
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, channels). */
TARN_EXPORT uint32_t TarnGetRadioPossibleChannels(const char* callerId, uint32_t radioId, TarnChannelQuery query,
                                                  uint8_t* channels);

/* Reads the level at which a radio transmits at present.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   power     out: level as the service defines it, one byte only: the first of the reply's 32-bit word, which is the most
 *             significant one on a big-endian gateway
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, power). */
TARN_EXPORT uint32_t TarnGetRadioCurrentTransmitPowerLevel(const char* callerId, uint32_t radioId, uint8_t* power);

/* Reads the number of a radio's chains.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   number    out: number of chains, 32-bit word
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, number). */
TARN_EXPORT uint32_t TarnGetRadioChainNumber(const char* callerId, uint32_t radioId, uint32_t* number);

/* Reads the signal strength of one chain of a radio.
 *
 *   callerId    in: the caller id
 *   radioId     in: radio, counted from 1
 *   chainIndex  in: chain, sent as it is; the service defines whether the first is 0 or 1
 *   rssi        out: signal strength as the service gives it, 32-bit word
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 4), TARN_REJECTED (callerId, rssi). */
TARN_EXPORT uint32_t TarnGetRadioChainRssiAt(const char* callerId, uint32_t radioId, uint32_t chainIndex, uint32_t* rssi);

/* Reads the temperature of a radio's chip.
 *
 *   callerId     in: the caller id
 *   radioId      in: radio, counted from 1
 *   temperature  out: temperature, 32-bit word in the unit of the service
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 4), TARN_REJECTED (callerId, temperature). */
TARN_EXPORT uint32_t TarnGetRadioChipTemperature(const char* callerId, uint32_t radioId, uint32_t* temperature);

/* Reads the id of a radio's primary SSID interface.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   ssid_id   out: id, 32-bit word exactly as the service gives it. Nothing is added to it: the service defines whether it
 *             counts from 1, as ids that are passed in do
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, ssid_id). */
TARN_EXPORT uint32_t TarnGetRadioPrimarySSIDIntfId(const char* callerId, uint32_t radioId, uint32_t* ssid_id);

/* Tells whether a radio supports the operator's roaming (OPX).
 *
 *   callerId     in: the caller id
 *   radioId      in: radio, counted from 1
 *   isSupported  out: whether it is supported, 32-bit word as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, isSupported). */
TARN_EXPORT uint32_t TarnGetRadioIsSupportedOPXRoaming(const char* callerId, uint32_t radioId, uint32_t* isSupported);

/* Neighbourhood scanning (commands 20 to 24)
 *
 * The scan runs in the service. Start it, ask for its status until the service reports it done, read the number of results,
 * then each result. This order is not enforced here. */

/* Reads how far a radio's scan of its neighbourhood has come.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   status    out: status of the scan, 32-bit word as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, status). */
TARN_EXPORT uint32_t TarnGetRadioNeighboringStatus(const char* callerId, uint32_t radioId, uint32_t* status);

/* Starts a scan of a radio's neighbourhood and returns without waiting for its end.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnScanRadioNeighborhood(const char* callerId, uint32_t radioId);

/* Stops a radio's scan of its neighbourhood.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnCancelRadioNeighborhoodScanning(const char* callerId, uint32_t radioId);

/* Reads how many neighbours a radio's scan has found.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   number    out: number of results, 32-bit word
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, number). */
TARN_EXPORT uint32_t TarnGetRadioNeighboringResultNum(const char* callerId, uint32_t radioId, uint32_t* number);

/* Reads one result of a radio's scan.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   index     in: index, sent as it is; the service defines whether the first is 0 or 1
 *   bss       out: the neighbour found, 88 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, bss). */
TARN_EXPORT uint32_t TarnGetRadioNeighboringResultAt(const char* callerId, uint32_t radioId, uint32_t index,
                                                     TarnNeighborBss* bss);

/* Chip module (commands 26 to 41, 77 and 111 to 114)
 *
 * The Quantenna Wi-Fi module and the daemons around it. Only some of these take a radio id; the others concern the module as a
 * whole. Nothing is cached: each read asks the service. */

/* Tells whether Qhop is enabled on a radio.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   enable    out: 32-bit flag, as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, enable). */
TARN_EXPORT uint32_t TarnGetRadioQuantennaQhopState(const char* callerId, uint32_t radioId, uint32_t* enable);

/* Enables or disables Qhop on a radio.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   enable    in: 32-bit flag, as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetRadioQuantennaQhopEnable(const char* callerId, uint32_t radioId, uint32_t enable);

/* Reads the power at which the module transmits at present on a radio.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   power     out: power as the service encodes it, must be writable for 8 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 4), TARN_REJECTED (callerId, power). The trace when power
 * is NULL reads "power is invalid", not "is NULL". */
TARN_EXPORT uint32_t TarnGetRadioQuantennaCurrentTransmitPower(const char* callerId, uint32_t radioId, uint8_t* power);

/* Reads the module's carrier id. Takes no radio id, in spite of its name.
 *
 *   callerId  in: the caller id
 *   id        out: carrier id, 32-bit word as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 4), TARN_REJECTED (callerId, id). The trace when id is
 * NULL reads "id is invalid", not "is NULL". */
TARN_EXPORT uint32_t TarnGetRadioQuantennaCarrierId(const char* callerId, uint32_t* id);

/* Sets the module's ATM (airtime management).
 *
 *   callerId  in: the caller id
 *   value     in: 32-bit value, as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetQuantennaATM(const char* callerId, uint32_t value);

/* Reads the state of the module's ATM (airtime management).
 *
 *   callerId  in: the caller id
 *   state     out: state, 32-bit word as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, state). */
TARN_EXPORT uint32_t TarnGetQuantennaATMState(const char* callerId, uint32_t* state);

/* Sets the actuation of the module's ATM (airtime management).
 *
 *   callerId  in: the caller id
 *   value     in: 32-bit value, as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetQuantennaAtmActuate(const char* callerId, uint32_t value);

/* Reads the state of the actuation of the module's ATM (airtime management).
 *
 *   callerId  in: the caller id
 *   state     out: state, 32-bit word as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, state). */
TARN_EXPORT uint32_t TarnGetQuantennaAtmActuateState(const char* callerId, uint32_t* state);

/* Controls the module's DFS (dynamic frequency selection, IEEE 802.11) daemon.
 *
 *   callerId  in: the caller id
 *   value     in: 32-bit value, as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetQuantennaDFSDaemon(const char* callerId, uint32_t value);

/* Reads the state of the module's DFS (dynamic frequency selection, IEEE 802.11) daemon.
 *
 *   callerId  in: the caller id
 *   state     out: state, 32-bit word as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, state). */
TARN_EXPORT uint32_t TarnGetQuantennaDFSDaemonState(const char* callerId, uint32_t* state);

/* Tells whether the Maui agent is enabled.
 *
 *   callerId  in: the caller id
 *   enable    out: 32-bit flag, as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, enable). */
TARN_EXPORT uint32_t TarnGetQuantennaMauiState(const char* callerId, uint32_t* enable);

/* Enables or disables the Maui agent.
 *
 *   callerId  in: the caller id
 *   enable    in: 32-bit flag, as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetQuantennaMauiEnable(const char* callerId, uint32_t enable);

/* Reads the version of the Maui agent.
 *
 *   callerId  in: the caller id
 *   version   out: text, NUL-terminated, cut to 64 characters; must be writable for 65 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, version). */
TARN_EXPORT uint32_t TarnGetQuantennaMauiVersion(const char* callerId, char* version);

/* Has the service download the module's wireless configuration. How far it has come: TarnGetQuantennaDownloadState.
 *
 *   callerId  in: the caller id
 *   path      in: NUL-terminated text, cut to 256 characters; neither NULL nor empty. Not checked further: the service defines
 *             what it leads to
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, path). The trace for a NULL
 * or an empty path reads "path is invalid". */
TARN_EXPORT uint32_t TarnDownloadQuantennaWirelessConf(const char* callerId, const char* path);

/* Has the service write the module's password file anew. No password and no file name go with it: the service decides what is
 * written.
 *
 *   callerId  in: the caller id
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnUpdateQuantennaPasswordFile(const char* callerId);

/* Reads how far the download of the module's wireless configuration has come.
 *
 *   callerId  in: the caller id
 *   state     out: state, 32-bit word as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, state). */
TARN_EXPORT uint32_t TarnGetQuantennaDownloadState(const char* callerId, uint32_t* state);

/* Enables or disables debugging of the remote calls to the module.
 *
 *   callerId  in: the caller id
 *   enable    in: 32-bit flag, as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetQuantennaRPCDebugEnable(const char* callerId, uint32_t enable);

/* Reads the number of entries in the Soniq table of current associations.
 *
 *   callerId  in: the caller id
 *   number    out: number of entries, 32-bit word
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, number). */
TARN_EXPORT uint32_t TarnGetQuantennaSoniqCurrentAssociationNumber(const char* callerId, uint32_t* number);

/* Reads one entry of the Soniq table of current associations.
 *
 *   callerId  in: the caller id
 *   index     in: index, sent as it is; the service defines whether the first is 0 or 1
 *   data      out: the entry, 128 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, data). */
TARN_EXPORT uint32_t TarnGetQuantennaSoniqCurrentAssociationAt(const char* callerId, uint32_t index,
                                                               TarnQuantennaSoniqCurrentAssociationData* data);

/* Reads a station's entry in the Soniq table of current associations.
 *
 *   callerId  in: the caller id
 *   mac_addr  in: the station's MAC address, readable for 6 bytes
 *   data      out: the entry, 128 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, mac_addr, data). */
TARN_EXPORT uint32_t TarnGetQuantennaSoniqCurrentAssociation(const char* callerId, const uint8_t* mac_addr,
                                                             TarnQuantennaSoniqCurrentAssociationData* data);

/* Enables or disables the TDWR (terminal Doppler weather radar) channels on a radio.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   enable    in: 32-bit flag, as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetQuantennaTdwrChannelsEnable(const char* callerId, uint32_t radioId, uint32_t enable);

/* SSID interfaces (commands 42 to 55)
 *
 * An SSID interface is addressed by its radio's id and its own id, both counted from 1. */

/* Reads the number of a radio's SSID interfaces.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   number    out: number of SSID interfaces, 32-bit word
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, number). */
TARN_EXPORT uint32_t TarnGetSsidIntfNum(const char* callerId, uint32_t radioId, uint32_t* number);

/* Reads the description of an SSID interface by its index, not by its id.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   index     in: index, sent as it is; the service defines whether the first is 0 or 1
 *   data      out: the interface's description, 128 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, data). */
TARN_EXPORT uint32_t TarnGetSsidIntfAt(const char* callerId, uint32_t radioId, uint32_t index, TarnSsidIntfData* data);

/* Reads the description of an SSID interface.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   ssidId    in: SSID interface of the radio, counted from 1
 *   data      out: the interface's description, 128 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, data). */
TARN_EXPORT uint32_t TarnGetSsidIntf(const char* callerId, uint32_t radioId, uint32_t ssidId, TarnSsidIntfData* data);

/* Configures an SSID interface.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   ssidId    in: SSID interface of the radio, counted from 1
 *   param     in: 32-bit value that goes with the record, as the service defines it
 *   cfg       in: configuration, 40 bytes, passed by value
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetSsidIntfCfg(const char* callerId, uint32_t radioId, uint32_t ssidId, uint32_t param,
                                        TarnSsidIntfCfg cfg);

/* Reads the statistics of an SSID interface.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   ssidId    in: SSID interface of the radio, counted from 1
 *   stats     out: statistics, 84 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 4), TARN_REJECTED (callerId, stats). */
TARN_EXPORT uint32_t TarnGetSsidIntfStats(const char* callerId, uint32_t radioId, uint32_t ssidId, TarnSsidIntfStats* stats);

/* Tells whether an SSID interface is its radio's primary one.
 *
 *   callerId   in: the caller id
 *   radioId    in: radio, counted from 1
 *   ssidId     in: SSID interface of the radio, counted from 1
 *   isPrimary  out: whether it is the primary one, 32-bit word as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, isPrimary). */
TARN_EXPORT uint32_t TarnGetSsidIntfIsPrimarySSIDIntf(const char* callerId, uint32_t radioId, uint32_t ssidId,
                                                      uint32_t* isPrimary);

/* Tells whether the operator's roaming (OPX) is enabled on an SSID interface.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   ssidId    in: SSID interface of the radio, counted from 1
 *   enable    out: 32-bit flag, as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, enable). */
TARN_EXPORT uint32_t TarnGetSsidOPXRoamingState(const char* callerId, uint32_t radioId, uint32_t ssidId, uint32_t* enable);

/* Enables or disables the operator's roaming (OPX) on an SSID interface.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   ssidId    in: SSID interface of the radio, counted from 1
 *   enable    in: 32-bit flag, as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetSsidOPXRoamingEnable(const char* callerId, uint32_t radioId, uint32_t ssidId, uint32_t enable);

/* Reads the mobility domain that an SSID interface uses for the operator's roaming (OPX).
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   ssidId    in: SSID interface of the radio, counted from 1
 *   mdid      out: mobility domain identifier, writable for 2 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, mdid). */
TARN_EXPORT uint32_t TarnGetSsidOPXRoamingMdid(const char* callerId, uint32_t radioId, uint32_t ssidId, uint8_t* mdid);

/* Sets the mobility domain that an SSID interface uses for the operator's roaming (OPX).
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   ssidId    in: SSID interface of the radio, counted from 1
 *   mdid      in: mobility domain identifier, readable for 2 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, mdid). */
TARN_EXPORT uint32_t TarnSetSsidOPXRoamingMdid(const char* callerId, uint32_t radioId, uint32_t ssidId, const uint8_t* mdid);

/* Reads the number of MAC addresses in the Shgw block list of an SSID interface.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   ssidId    in: SSID interface of the radio, counted from 1
 *   number    out: number of addresses, 32-bit word
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, number). */
TARN_EXPORT uint32_t TarnGetSsidOPXShgwBlockAddrNum(const char* callerId, uint32_t radioId, uint32_t ssidId, uint32_t* number);

/* Asks for one MAC address of the Shgw block list of an SSID interface.
 *
 * The address is never returned: mac has to be given and is left untouched, also when the call succeeds. All that the
 * caller learns is the reply status.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   ssidId    in: SSID interface of the radio, counted from 1
 *   index     in: index, sent as it is; the service defines whether the first is 0 or 1
 *   mac       out: never written; must not be NULL all the same
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, mac). */
TARN_EXPORT uint32_t TarnGetSsidOPXShgwBlockAddrAt(const char* callerId, uint32_t radioId, uint32_t ssidId, uint32_t index,
                                                   uint8_t* mac);

/* Adds a MAC address to the Shgw block list of an SSID interface.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   ssidId    in: SSID interface of the radio, counted from 1
 *   mac       in: MAC address, readable for 6 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, mac). */
TARN_EXPORT uint32_t TarnAddSsidOPXShgwBlockAddr(const char* callerId, uint32_t radioId, uint32_t ssidId, const uint8_t* mac);

/* Removes a MAC address from the Shgw block list of an SSID interface.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   ssidId    in: SSID interface of the radio, counted from 1
 *   mac       in: MAC address, readable for 6 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, mac). */
TARN_EXPORT uint32_t TarnDelSsidOPXShgwBlockAddr(const char* callerId, uint32_t radioId, uint32_t ssidId, const uint8_t* mac);

/* Access points and security (commands 56 to 62)
 *
 * An access point is addressed by its radio's id and its own id, both counted from 1. What is read and what is written are
 * different records of different sizes: a record that was read cannot be written back as it is. */

/* Reads the description of an access point.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   apId      in: access point of the radio, counted from 1
 *   data      out: the access point's description, 32 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, data). */
TARN_EXPORT uint32_t TarnGetAccessPoint(const char* callerId, uint32_t radioId, uint32_t apId, TarnAccessPointData* data);

/* Configures an access point.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   apId      in: access point of the radio, counted from 1
 *   cfg       in: configuration, 28 bytes, passed by value
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetAccessPointCfg(const char* callerId, uint32_t radioId, uint32_t apId, TarnAccessPointCfg cfg);

/* Reads the security settings of an access point.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   apId      in: access point of the radio, counted from 1
 *   data      out: security settings, 332 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, data). */
TARN_EXPORT uint32_t TarnGetAccessPointSecurity(const char* callerId, uint32_t radioId, uint32_t apId,
                                                TarnAccessPointSecurityData* data);

/* Sets the security configuration of an access point.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   apId      in: access point of the radio, counted from 1
 *   cfg       in: security configuration, 324 bytes, passed by value
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetAccessPointSecurityCfg(const char* callerId, uint32_t radioId, uint32_t apId,
                                                   TarnAccessPointSecurityCfg cfg);

/* Sets the extended security configuration of an access point: two values and no record.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   apId      in: access point of the radio, counted from 1
 *   value1    in: first 32-bit value, as the service defines it
 *   value2    in: second 32-bit value, as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetAccessPointSecurityExCfg(const char* callerId, uint32_t radioId, uint32_t apId, uint32_t value1,
                                                     uint32_t value2);

/* Reads the WPS (Wi-Fi Simple Configuration) settings of an access point.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   apId      in: access point of the radio, counted from 1
 *   data      out: WPS settings, 164 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, data). */
TARN_EXPORT uint32_t TarnGetAccessPointWps(const char* callerId, uint32_t radioId, uint32_t apId, TarnAccessPointWpsData* data);

/* Sets the WPS (Wi-Fi Simple Configuration) configuration of an access point.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   apId      in: access point of the radio, counted from 1
 *   value     in: 32-bit value that goes with the record, as the service defines it
 *   cfg       in: WPS configuration, 28 bytes, passed by value
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetAccessPointWpsCfg(const char* callerId, uint32_t radioId, uint32_t apId, uint32_t value,
                                              TarnAccessPointWpsCfg cfg);

/* WPS window and associated stations (commands 63 to 70)
 *
 * The WPS window is the time in which an access point lets a station register by Wi-Fi Simple Configuration. Stations are
 * enumerated with TarnGetAccessPointAssociatedNum and TarnGetAccessPointAssociatedAt, or looked up by MAC address. */

/* Reads the status of an access point's WPS window.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   apId      in: access point of the radio, counted from 1
 *   status    out: status, 32-bit word as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, status). */
TARN_EXPORT uint32_t TarnGetAccessPointWpsWindowStatus(const char* callerId, uint32_t radioId, uint32_t apId, uint32_t* status);

/* Opens an access point's WPS window.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   apId      in: access point of the radio, counted from 1
 *   value1    in: first 32-bit value, as the service defines it
 *   value2    in: second 32-bit value, as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 4), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnTriggerAccessPointWpsWindow(const char* callerId, uint32_t radioId, uint32_t apId, uint32_t value1,
                                                     uint32_t value2);

/* Closes an access point's WPS window.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   apId      in: access point of the radio, counted from 1
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 4), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnCancelAccessPointWpsWindow(const char* callerId, uint32_t radioId, uint32_t apId);

/* Reads the number of stations associated with an access point.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   apId      in: access point of the radio, counted from 1
 *   number    out: number of stations, 32-bit word
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, number). */
TARN_EXPORT uint32_t TarnGetAccessPointAssociatedNum(const char* callerId, uint32_t radioId, uint32_t apId, uint32_t* number);

/* Reads one of the stations associated with an access point.
 *
 *   callerId    in: the caller id
 *   radioId     in: radio, counted from 1
 *   apId        in: access point of the radio, counted from 1
 *   index       in: index, sent as it is; the service defines whether the first is 0 or 1
 *   associated  out: the station, 76 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 4), TARN_REJECTED (callerId, associated). */
TARN_EXPORT uint32_t TarnGetAccessPointAssociatedAt(const char* callerId, uint32_t radioId, uint32_t apId, uint32_t index,
                                                    TarnAccessPointAssociatedData* associated);

/* Reads the station with the given MAC address among those associated with an access point.
 *
 *   callerId    in: the caller id
 *   radioId     in: radio, counted from 1
 *   apId        in: access point of the radio, counted from 1
 *   macAddress  in: the station's MAC address, readable for 6 bytes
 *   associated  out: the station, 76 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 4), TARN_REJECTED (callerId, macAddress, associated). */
TARN_EXPORT uint32_t TarnGetAccessPointAssociated(const char* callerId, uint32_t radioId, uint32_t apId,
                                                  const uint8_t* macAddress, TarnAccessPointAssociatedData* associated);

/* Reads the statistics of one station associated with an access point.
 *
 *   callerId    in: the caller id
 *   radioId     in: radio, counted from 1
 *   apId        in: access point of the radio, counted from 1
 *   macAddress  in: the station's MAC address, readable for 6 bytes
 *   stats       out: statistics, 36 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 4), TARN_REJECTED (callerId, macAddress, stats). */
TARN_EXPORT uint32_t TarnGetAccessPointAssociatedStats(const char* callerId, uint32_t radioId, uint32_t apId,
                                                       const uint8_t* macAddress, TarnAccessPointAssociatedStats* stats);

/* Ends the association of a station with an access point.
 *
 *   callerId    in: the caller id
 *   radioId     in: radio, counted from 1
 *   apId        in: access point of the radio, counted from 1
 *   macAddress  in: the station's MAC address, readable for 6 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 4), TARN_REJECTED (callerId, macAddress). */
TARN_EXPORT uint32_t TarnKickOutAccessPointAssociated(const char* callerId, uint32_t radioId, uint32_t apId,
                                                      const uint8_t* macAddress);

/* MAC address filter (commands 71 to 76)
 *
 * One filter per access point: a mode and a list of MAC addresses. The service decides whether an address may be in the
 * list twice, or be deleted when it is not there. */

/* Reads the mode of an access point's MAC address filter.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   apId      in: access point of the radio, counted from 1
 *   mode      out: mode, 32-bit word as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, mode). */
TARN_EXPORT uint32_t TarnGetAccessPointMacFilterMode(const char* callerId, uint32_t radioId, uint32_t apId, uint32_t* mode);

/* Sets the mode of an access point's MAC address filter. The service defines which mode allows and which denies.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   apId      in: access point of the radio, counted from 1
 *   mode      in: mode, as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetAccessPointMacFilterMode(const char* callerId, uint32_t radioId, uint32_t apId, uint32_t mode);

/* Adds a MAC address to an access point's filter.
 *
 *   callerId    in: the caller id
 *   radioId     in: radio, counted from 1
 *   apId        in: access point of the radio, counted from 1
 *   macAddress  in: MAC address, readable for 6 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, macAddress). */
TARN_EXPORT uint32_t TarnAddAccessPointMacFilter(const char* callerId, uint32_t radioId, uint32_t apId,
                                                 const uint8_t* macAddress);

/* Removes a MAC address from an access point's filter.
 *
 *   callerId    in: the caller id
 *   radioId     in: radio, counted from 1
 *   apId        in: access point of the radio, counted from 1
 *   macAddress  in: MAC address, readable for 6 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, macAddress). */
TARN_EXPORT uint32_t TarnDelAccessPointMacFilter(const char* callerId, uint32_t radioId, uint32_t apId,
                                                 const uint8_t* macAddress);

/* Reads the number of MAC addresses in an access point's filter.
 *
 *   callerId  in: the caller id
 *   radioId   in: radio, counted from 1
 *   apId      in: access point of the radio, counted from 1
 *   number    out: number of addresses, 32-bit word
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, number). */
TARN_EXPORT uint32_t TarnGetAccessPointMacFilterNum(const char* callerId, uint32_t radioId, uint32_t apId, uint32_t* number);

/* Reads one MAC address of an access point's filter.
 *
 *   callerId    in: the caller id
 *   radioId     in: radio, counted from 1
 *   apId        in: access point of the radio, counted from 1
 *   index       in: index, sent as it is; the service defines whether the first is 0 or 1
 *   macAddress  out: MAC address, must be writable for 6 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, macAddress). */
TARN_EXPORT uint32_t TarnGetAccessPointMacFilterAt(const char* callerId, uint32_t radioId, uint32_t apId, uint32_t index,
                                                   uint8_t* macAddress);

/* Smart WiFi (commands 78 to 110)
 *
 * The Quantenna Smart WiFi steering daemon.
 *
 * Four tables are read in three steps, each a call of its own: a function named `Sync` has the service take a snapshot of its
 * table, one that ends in `Number` tells how many entries it has, one that ends in `At` reads one entry. The service
 * defines whether `At` works without `Sync`, and what happens when the table changes in between. The list of mdids and the
 * non-steer list of an mdid are read by `Number` and `At` alone.
 *
 * An mdid that goes in is not checked for NULL in any of these functions.
 *
 * The spelling `Assoiated` is meant: it is the name to link against. */

/* Resets the Smart WiFi daemon.
 *
 *   callerId  in: the caller id
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnResetQuantennaSmartWiFiDaemon(const char* callerId);

/* Tells whether Smart WiFi is enabled.
 *
 *   callerId  in: the caller id
 *   enable    out: 32-bit flag, as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, enable). */
TARN_EXPORT uint32_t TarnGetQuantennaSmartWiFiState(const char* callerId, uint32_t* enable);

/* Enables or disables Smart WiFi.
 *
 *   callerId  in: the caller id
 *   enable    in: 32-bit flag, as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetQuantennaSmartWiFiEnable(const char* callerId, uint32_t enable);

/* Reads the version of Smart WiFi.
 *
 *   callerId  in: the caller id
 *   version   out: text, NUL-terminated, cut to 64 characters; must be writable for 65 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, version). */
TARN_EXPORT uint32_t TarnGetQuantennaSmartWiFiVersion(const char* callerId, char* version);

/* Reads the version of the Smart WiFi daemon.
 *
 *   callerId  in: the caller id
 *   version   out: text, NUL-terminated, cut to 64 characters; must be writable for 65 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, version). */
TARN_EXPORT uint32_t TarnGetQuantennaSmartWiFiDaemonVersion(const char* callerId, char* version);

/* Sets the interface that the Smart WiFi daemon binds to.
 *
 *   callerId   in: the caller id
 *   intf_name  in: the interface's name, NUL-terminated, cut to 64 characters; an empty one is sent as it is
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, intf_name). */
TARN_EXPORT uint32_t TarnSetQuantennaSmartWiFiBindingInterface(const char* callerId, const char* intf_name);

/* Reads the Qcomm data of the Smart WiFi daemon.
 *
 *   callerId  in: the caller id
 *   data      out: Qcomm data, 1700 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, data). */
TARN_EXPORT uint32_t TarnGetQuantennaSmartWiFiQcomm(const char* callerId, TarnQuantennaSmartWiFiQcommData* data);

/* Sets the Qcomm configuration of the Smart WiFi daemon.
 *
 *   callerId  in: the caller id
 *   value     in: 32-bit value that goes with the record, as the service defines it
 *   cfg       in: Qcomm configuration, 64 bytes, passed by value
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetQuantennaSmartWiFiQcommCfg(const char* callerId, uint32_t value,
                                                       TarnQuantennaSmartWiFiQcommCfg cfg);

/* Reads the state of the syncing of the QSL configuration.
 *
 *   callerId  in: the caller id
 *   state     out: state, 32-bit word as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, state). */
TARN_EXPORT uint32_t TarnGetQuantennaSmartWiFiQslCfgSyncing(const char* callerId, uint32_t* state);

/* Sets the syncing of the QSL configuration.
 *
 *   callerId  in: the caller id
 *   value     in: 32-bit value, as the service defines it
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetQuantennaSmartWiFiQslCfgSyncing(const char* callerId, uint32_t value);

/* Reads the number of mobility domains in the QSL list of mdids.
 *
 *   callerId  in: the caller id
 *   number    out: number of mdids, 32-bit word
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, number). */
TARN_EXPORT uint32_t TarnGetQuantennaSmartWiFiQslMdidNumber(const char* callerId, uint32_t* number);

/* Reads one mobility domain of the QSL list of mdids.
 *
 *   callerId  in: the caller id
 *   index     in: index, sent as it is; the service defines whether the first is 0 or 1
 *   mdid      out: mobility domain identifier, writable for 2 bytes, at any alignment
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, mdid). */
TARN_EXPORT uint32_t TarnGetQuantennaSmartWiFiQslMdidAt(const char* callerId, uint32_t index, uint8_t* mdid);

/* Reads the QSL configuration of a mobility domain: in one record, while it is written in two parts.
 *
 *   callerId  in: the caller id
 *   mdid      in: mobility domain identifier, readable for 2 bytes; must not be NULL: not checked
 *   data      out: QSL configuration, 232 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, data). */
TARN_EXPORT uint32_t TarnGetQuantennaSmartWiFiQsl(const char* callerId, const uint8_t* mdid,
                                                  TarnQuantennaSmartWiFiQslData* data);

/* Sets the first part of the QSL configuration of a mobility domain.
 *
 *   callerId  in: the caller id
 *   mdid      in: mobility domain identifier, readable for 2 bytes; must not be NULL: not checked
 *   value     in: 32-bit value that goes with the record, as the service defines it
 *   cfg       in: first part, 120 bytes, passed by value
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetQuantennaSmartWiFiQslPart1Cfg(const char* callerId, const uint8_t* mdid, uint32_t value,
                                                          TarnQuantennaSmartWiFiQslPart1Cfg cfg);

/* Sets the second part of the QSL configuration of a mobility domain.
 *
 *   callerId  in: the caller id
 *   mdid      in: mobility domain identifier, readable for 2 bytes; must not be NULL: not checked
 *   value     in: 32-bit value that goes with the record, as the service defines it
 *   cfg       in: second part, 112 bytes, passed by value
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSetQuantennaSmartWiFiQslPart2Cfg(const char* callerId, const uint8_t* mdid, uint32_t value,
                                                          TarnQuantennaSmartWiFiQslPart2Cfg cfg);

/* Reads the number of MAC addresses in the non-steer list of a mobility domain.
 *
 *   callerId  in: the caller id
 *   mdid      in: mobility domain identifier, readable for 2 bytes; must not be NULL: not checked
 *   number    out: number of addresses, 32-bit word
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, number). */
TARN_EXPORT uint32_t TarnGetQuantennaSmartWiFiNonSteerNumber(const char* callerId, const uint8_t* mdid, uint32_t* number);

/* Reads one MAC address of the non-steer list of a mobility domain.
 *
 *   callerId  in: the caller id
 *   mdid      in: mobility domain identifier, readable for 2 bytes; must not be NULL: not checked
 *   index     in: index, sent as it is; the service defines whether the first is 0 or 1
 *   mac_addr  out: MAC address, must be writable for 6 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, mac_addr). */
TARN_EXPORT uint32_t TarnGetQuantennaSmartWiFiNonSteerAt(const char* callerId, const uint8_t* mdid, uint32_t index,
                                                         uint8_t* mac_addr);

/* Adds a MAC address to the non-steer list of a mobility domain.
 *
 *   callerId  in: the caller id
 *   mdid      in: mobility domain identifier, readable for 2 bytes; must not be NULL: not checked
 *   mac_addr  in: MAC address, readable for 6 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, mac_addr). */
TARN_EXPORT uint32_t TarnAddQuantennaSmartWiFiNonSteer(const char* callerId, const uint8_t* mdid, const uint8_t* mac_addr);

/* Removes a MAC address from the non-steer list of a mobility domain.
 *
 *   callerId  in: the caller id
 *   mdid      in: mobility domain identifier, readable for 2 bytes; must not be NULL: not checked
 *   mac_addr  in: MAC address, readable for 6 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, mac_addr). */
TARN_EXPORT uint32_t TarnDelQuantennaSmartWiFiNonSteer(const char* callerId, const uint8_t* mdid, const uint8_t* mac_addr);

/* Has the service take a snapshot of the BSS table.
 *
 *   callerId  in: the caller id
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSyncQuantennaSmartWiFiBSSTable(const char* callerId);

/* Reads the number of entries in the BSS table.
 *
 *   callerId  in: the caller id
 *   number    out: number of entries, 32-bit word
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, number). */
TARN_EXPORT uint32_t TarnGetQuantennaSmartWiFiBSSEntryNumber(const char* callerId, uint32_t* number);

/* Reads one entry of the BSS table.
 *
 *   callerId  in: the caller id
 *   index     in: index, sent as it is; the service defines whether the first is 0 or 1
 *   data      out: the entry, 256 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, data). */
TARN_EXPORT uint32_t TarnGetQuantennaSmartWiFiBSSEntryAt(const char* callerId, uint32_t index,
                                                         TarnQuantennaSmartWiFiBSSEntryData* data);

/* Has the service take a snapshot of the table of associated stations.
 *
 *   callerId  in: the caller id
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSyncQuantennaSmartWiFiAssoiated(const char* callerId);

/* Reads the number of entries in the table of associated stations.
 *
 *   callerId  in: the caller id
 *   number    out: number of entries, 32-bit word
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, number). */
TARN_EXPORT uint32_t TarnGetQuantennaSmartWiFiAssoiatedNumber(const char* callerId, uint32_t* number);

/* Reads one entry of the table of associated stations.
 *
 *   callerId  in: the caller id
 *   index     in: index, sent as it is; the service defines whether the first is 0 or 1
 *   data      out: the entry, 88 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, data). */
TARN_EXPORT uint32_t TarnGetQuantennaSmartWiFiAssoiatedAt(const char* callerId, uint32_t index,
                                                          TarnQuantennaSmartWiFiAssoiatedData* data);

/* Has the service take a snapshot of the record info table.
 *
 *   callerId  in: the caller id
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSyncQuantennaSmartWiFiRecordInfo(const char* callerId);

/* Reads the number of entries in the record info table.
 *
 *   callerId  in: the caller id
 *   number    out: number of entries, 32-bit word
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, number). */
TARN_EXPORT uint32_t TarnGetQuantennaSmartWiFiRecordInfoNumber(const char* callerId, uint32_t* number);

/* Reads one entry of the record info table, and its status.
 *
 *   callerId  in: the caller id
 *   index     in: index, sent as it is; the service defines whether the first is 0 or 1
 *   status    out: the entry's status, 32-bit word as the service defines it
 *   data      out: the entry, 257 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, data, status). The last
 * argument is checked before the one in front of it. */
TARN_EXPORT uint32_t TarnGetQuantennaSmartWiFiRecordInfoAt(const char* callerId, uint32_t index, uint32_t* status,
                                                           TarnQuantennaSmartWiFiRecordInfoData* data);

/* Has the service take a snapshot of the table of slave devices.
 *
 *   callerId  in: the caller id
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnSyncQuantennaSmartWiFiSlaveDevice(const char* callerId);

/* Reads the number of slave devices.
 *
 *   callerId  in: the caller id
 *   number    out: number of slave devices, 32-bit word
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, number). */
TARN_EXPORT uint32_t TarnGetQuantennaSmartWiFiSlaveDeviceNumber(const char* callerId, uint32_t* number);

/* Reads the MAC address of one slave device.
 *
 *   callerId  in: the caller id
 *   index     in: index, sent as it is; the service defines whether the first is 0 or 1
 *   data      out: MAC address, must be writable for 6 bytes
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, data). */
TARN_EXPORT uint32_t TarnGetQuantennaSmartWiFiSlaveDeviceAt(const char* callerId, uint32_t index, uint8_t* data);

/* Has the Smart WiFi daemon propagate its configuration. Takes the longest wait of all functions.
 *
 *   callerId  in: the caller id
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 10), TARN_REJECTED (callerId). */
TARN_EXPORT uint32_t TarnDoQuantennaSmartWiFiCfgPropagation(const char* callerId);

/* Has the service dump the Smart WiFi configuration to a file. Nothing of it comes back to the caller.
 *
 *   callerId  in: the caller id
 *   path      in: the file's path, NUL-terminated, cut to 512 characters; an empty one is sent as it is
 *
 * Returns the reply status, or TARN_FAILED, TARN_TIMED_OUT (wait 3), TARN_REJECTED (callerId, path). */
TARN_EXPORT uint32_t TarnGetQuantennaSmartWiFiCfgToFile(const char* callerId, const char* path);

#ifdef __cplusplus
}
#endif

#endif
