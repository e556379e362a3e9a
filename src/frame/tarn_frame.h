/* The client library's frame: what its command functions share, event subscription, and local utilities.
 *
 * A caller includes `tarn_frame.h`, `tarn_api.h` for the wireless device service and `tarn_qtn_monitor_api.h` for the Wi-Fi
 * module, and links `libtarn`. Nothing has to be initialised, nothing is kept between calls, and every function may be called
 * from any thread at any time. A call needs stack for its message: at most 9584 bytes and a little.
 *
 * The caller id
 *   The first argument of every function but the local utilities: the calling component's own IPC identifier, a text of 1 to 31
 *   characters, NUL-terminated. The first must be from 0x20 to 0x7F, the others may be any byte but NUL. At most
 *   its first 32 bytes are checked; one that is refused goes to the trace as it is. Functions named `tarn_...` call it
 *   `handle`. For NULL the trace of every function reads "handle is NULL".
 *
 * Results of the functions named `Tarn...` (device service)
 *   the service's own reply status   the call reached the service; 0 is success by the service's convention
 *   TARN_FAILED (1)                  the IPC call failed
 *   TARN_TIMED_OUT (2)               the service did not reply within the command's wait
 *   TARN_REJECTED (3)                an argument was refused; nothing was sent
 *   A service may answer 1, 2 or 3 itself; the result alone does not tell that from the library's own.
 *
 * Results of the functions named `tarn_qcsapi_...` and `tarn_qtn_mirror_...` (Wi-Fi module)
 *   the service's own reply status   the call reached the service
 *   TARN_QTN_FAILED (-1)             an argument was refused, or the IPC call failed or timed out
 *
 * Traces and outputs
 *   Each refused call and each failed IPC call writes exactly one trace record through KorIilTrace: level 1, the source
 *   unit's tag, the line of the function that reports, and a text. A reply status other than 0 is returned and not traced.
 *   Outputs are written after every IPC call that succeeded, whatever the reply status, and never after one that failed.
 *
 * Ids and indices
 *   Ids of radios, SSID interfaces and access points count from 1. An index of a function that ends in `At` goes to the service
 *   as it is. Neither is checked for its range here. */
#ifndef TARN_FRAME_H
#define TARN_FRAME_H

#include <stdint.h>

#include "kor_iil.h"

#if defined(__GNUC__)
#define TARN_EXPORT __attribute__((visibility("default")))
#else
#define TARN_EXPORT
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Local results of the functions named `Tarn...`. */
#define TARN_OK 0u
#define TARN_FAILED 1u
#define TARN_TIMED_OUT 2u
#define TARN_REJECTED 3u

/* Local result of the functions named `tarn_qcsapi_...` and `tarn_qtn_mirror_...`. */
#define TARN_QTN_FAILED (-1)

/* Events that the device service publishes. */
#define TARN_EVT_RADIO_STATUS_CHANGED 1u
#define TARN_EVT_RADIO_OPR_CHANNEL_CHANGED 2u
#define TARN_EVT_RADIO_OPR_BANDWIDTH_CHANGED 3u
#define TARN_EVT_AP_ASSOCIATED_CHANGED 4u
#define TARN_EVT_AP_WPS_WIN_STATUS_CHANGED 5u

/* Subscribes to one event of the device service. The platform's IPC library keeps the subscription and calls the handler, on a
 * thread of its choice; this library sees neither.
 *
 *   callerId  in: the caller id
 *   evt       in: 1 to 5, one of TARN_EVT_..., sent as it is
 *   ignored   never read; pass NULL
 *   handler   in: called for each event; passed on unchecked
 *
 * Returns TARN_OK, TARN_REJECTED (callerId, evt), or TARN_FAILED for every failure of the IPC library, a time-out included.
 * What is refused is traced as "id is invalid" and "evt is invalid". The IPC library decides whether a second subscription to
 * the same event is an error. */
TARN_EXPORT uint32_t tarnSubscribeEvent(const char* callerId, uint32_t evt, const void* ignored, KorIilEventHandler handler);

/* Cancels a subscription. Arguments and results are those of tarnSubscribeEvent; the IPC library decides whether it is an
 * error to cancel what is not subscribed. */
TARN_EXPORT uint32_t tarnCancelEvent(const char* callerId, uint32_t evt, const void* ignored, KorIilEventHandler handler);

/* Names an IPC status.
 *
 *   status  in: an IPC status, as the platform's four functions return it
 *
 * Returns "OK" for 0, "TIMEOUT" for 7 ... "BUSY" for 21, "Unknown" for every other value. The text is constant and must not be
 * freed. */
TARN_EXPORT const char* tarnIpcStatusName(uint32_t status);

/* Tells whether a WPS PIN carries a valid check digit (Wi-Fi Simple Configuration, the eight-digit device password).
 *
 *   pin  in: the PIN as a number; leading zeros count, digits above the eighth are ignored
 *
 * Returns 1 when the check digit is right, else 0. */
TARN_EXPORT uint32_t tarnValidatePinCode(uint32_t pin);

/* A table of rates as decimal texts, 4336 bytes, owned by the caller. Cleared to zero it is empty. */
#define TARN_RATE_TEXT_SIZE 17
#define TARN_RATE_TABLE_SLOTS 255
typedef struct TarnRateTable
{
    uint8_t count;                                          /* slots in use: 0 to count - 1 */
    char rates[TARN_RATE_TABLE_SLOTS][TARN_RATE_TEXT_SIZE]; /* "54", "5.5" ..., in the order they were added */
} TarnRateTable;

/* Results of the two functions below. The two successes differ. */
#define TARN_RATE_ADDED 0u
#define TARN_RATE_DELETED 1u
#define TARN_RATE_REJECTED 3u
#define TARN_RATE_NOT_FOUND 4u
#define TARN_RATE_TABLE_FULL 5u

/* Adds a rate behind the last one. Rates are compared by value: "5.5" and "5.50" are the same.
 *
 *   table  in, out: the table, 4336 bytes
 *   rate   in: a NUL-terminated decimal text in a buffer of at least 17 readable bytes, all 17 of which are copied. Of a longer
 *          text the first 17 characters are kept. Its value is what strtod makes of it in the process's locale; "nan" is
 *          accepted
 *
 * Returns TARN_RATE_ADDED (also when the rate is in the table already), TARN_RATE_REJECTED (a NULL pointer, or a value of
 * zero or less, which includes a text without a number), TARN_RATE_TABLE_FULL (255 rates; the text is not read). */
TARN_EXPORT uint32_t tarnAddRateEntries(TarnRateTable* table, const char* rate);

/* Deletes a rate and closes the gap. Rates are compared by value.
 *
 *   table  in, out: the table, 4336 bytes
 *   rate   in: a NUL-terminated decimal text
 *
 * Returns TARN_RATE_DELETED, TARN_RATE_REJECTED (a NULL pointer), TARN_RATE_NOT_FOUND. */
TARN_EXPORT uint32_t tarnDelRatesEntries(TarnRateTable* table, const char* rate);

#ifdef __cplusplus
}
#endif

#endif
