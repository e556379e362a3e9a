/* A scripted platform: the four functions of `kor_iil.h` for unit tests of components that call the client library.
 *
 * A test scripts the calls it expects, together with their answers; runs the component; and verifies. A failure is an
 * unexpected call, a call with other bytes than expected, or a call that was never made; it comes with the line of the test
 * that scripted the call. Traces are recorded. Events are delivered to the subscribed handlers when the test says so.
 *
 * There is one script per process, guarded by a lock: a component may call from any thread. Words are in the host's byte
 * order. All sizes and offsets are in bytes. C++ tests use `kor_iil_mock.hpp`. */
#ifndef KOR_IIL_MOCK_H
#define KOR_IIL_MOCK_H

#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

/* One scripted call. It is owned by the script, and invalid after KorIilMockReset or KorIilMockVerify. */
typedef struct KorIilMockCall KorIilMockCall;

/* Clears everything: script, failures, traces, subscriptions and handlers. */
void KorIilMockReset(void);

/* ---- Expected calls, in this order unless they say otherwise ---- */

/* A call of a function of the library, by its name: "TarnGetRadio". By default its caller, wait and inputs are not compared,
 * and it is answered with IPC status 0, outputs of zeros, and a reply status of 0. Two functions with one command, such as
 * tarn_qtn_mirror_get_mirror_status and tarn_qtn_mirror_get_telnet_status, are the same call to the platform. */
#define KorIilMockExpectFunction(function) KorIilMockExpectFunctionAt(__FILE__, __LINE__, function)
KorIilMockCall* KorIilMockExpectFunctionAt(const char* file, unsigned line, const char* function);

/* A message of msgLen bytes to a service. By default its caller, wait and bytes are not compared, and it is answered with IPC
 * status 0, the message as it was sent, and a reply status of 0. */
#define KorIilMockExpect(serviceId, cmdId, msgLen) KorIilMockExpectAt(__FILE__, __LINE__, serviceId, cmdId, msgLen)
KorIilMockCall* KorIilMockExpectAt(const char* file, unsigned line, const char* serviceId, uint32_t cmdId, uint32_t msgLen);

/* A subscription to an event, or its cancellation. Only KorIilMockCaller and KorIilMockFail apply to these. A cancellation that
 * is to succeed must name a handler that is subscribed. */
#define KorIilMockExpectSubscribe(serviceId, evt) KorIilMockExpectSubscribeAt(__FILE__, __LINE__, serviceId, evt)
#define KorIilMockExpectCancel(serviceId, evt) KorIilMockExpectCancelAt(__FILE__, __LINE__, serviceId, evt)
KorIilMockCall* KorIilMockExpectSubscribeAt(const char* file, unsigned line, const char* serviceId, uint32_t evt);
KorIilMockCall* KorIilMockExpectCancelAt(const char* file, unsigned line, const char* serviceId, uint32_t evt);

/* The same by the event's name: "EVT_RADIO_OPR_CHANNEL_CHANGED". */
#define KorIilMockExpectSubscribeNamed(event) KorIilMockExpectSubscribeNamedAt(__FILE__, __LINE__, event)
#define KorIilMockExpectCancelNamed(event) KorIilMockExpectCancelNamedAt(__FILE__, __LINE__, event)
KorIilMockCall* KorIilMockExpectSubscribeNamedAt(const char* file, unsigned line, const char* event);
KorIilMockCall* KorIilMockExpectCancelNamedAt(const char* file, unsigned line, const char* event);

/* ---- How often, and in which order ---- */

/* Exactly so many times, 1 or more; in the script's order one after another. */
void KorIilMockTimes(KorIilMockCall* call, uint32_t times);

/* At any time until the end of the test, whatever the order of the others. A call that fits none of those is unexpected, also
 * if it is of the same function. One that fits the next call of the order is taken for that; of several others that it fits,
 * the first that must still be made. */
void KorIilMockInAnyOrder(KorIilMockCall* call);

/* Any number of times, or never, and in any order. Of several that fit, the one scripted last answers. */
void KorIilMockAnyTimes(KorIilMockCall* call);

/* ---- What is compared ---- */

/* An input of a call that is expected by its function: an argument, "radioId", with the value that the component passes; or a
 * field of a record or block, "cfg.channel", "entries[2].name". A text is the text itself, the name of a number's value or of
 * its flags ("running", "busy+full"), a MAC address (02:00:00:00:01:05), or bytes in hexadecimal digits. A number of 32 bits
 * may be negative. A text that the library cuts is given as it is when cut. Bytes are a whole argument or field. */
void KorIilMockInputNumber(KorIilMockCall* call, const char* name, int64_t number);
void KorIilMockInputText(KorIilMockCall* call, const char* name, const char* value);
void KorIilMockInputBytes(KorIilMockCall* call, const char* name, const void* bytes, uint32_t size);

/* Fields are where the layout file at this path says, from now until the next reset; until it is called, where the simulated
 * gateway's says. */
#define KorIilMockUseLayout(path) KorIilMockUseLayoutAt(__FILE__, __LINE__, path)
void KorIilMockUseLayoutAt(const char* file, unsigned line, const char* path);

void KorIilMockCaller(KorIilMockCall* call, const char* callerId);
void KorIilMockWait(KorIilMockCall* call, uint32_t wait);

/* These bytes at this offset of the message as it is sent. A text is compared with its NUL and zeros up to `size` bytes. */
void KorIilMockSent(KorIilMockCall* call, uint32_t offset, const void* bytes, uint32_t size);
void KorIilMockSentWord(KorIilMockCall* call, uint32_t offset, uint32_t word);
void KorIilMockSentByte(KorIilMockCall* call, uint32_t offset, uint8_t byte);
void KorIilMockSentText(KorIilMockCall* call, uint32_t offset, uint32_t size, const char* text);

/* All other bytes must be zero. */
void KorIilMockSentRestZero(KorIilMockCall* call);

/* ---- The answer ---- */

/* An output of a call that is expected by its function, named and written as an input is. */
void KorIilMockOutputNumber(KorIilMockCall* call, const char* name, int64_t number);
void KorIilMockOutputText(KorIilMockCall* call, const char* name, const char* value);
void KorIilMockOutputBytes(KorIilMockCall* call, const char* name, const void* bytes, uint32_t size);

/* These bytes at this offset of the reply. A text goes with its NUL. */
void KorIilMockReply(KorIilMockCall* call, uint32_t offset, const void* bytes, uint32_t size);
void KorIilMockReplyWord(KorIilMockCall* call, uint32_t offset, uint32_t word);
void KorIilMockReplyByte(KorIilMockCall* call, uint32_t offset, uint8_t byte);
void KorIilMockReplyText(KorIilMockCall* call, uint32_t offset, const char* text);

/* The reply status, which is the last word of the message. */
void KorIilMockStatus(KorIilMockCall* call, uint32_t status);

/* The same by the name that the layout has for it, such as "BUSY". */
void KorIilMockStatusNamed(KorIilMockCall* call, const char* name);

/* Fails the call with this IPC status, not 0, and without a reply: 7 is a time-out. */
void KorIilMockFail(KorIilMockCall* call, uint32_t ipcStatus);

/* ---- Events ---- */

/* Calls every handler that is subscribed to the event, on this thread, and returns how many there were. The component may have
 * subscribed at any time during the script, and on any thread. */
unsigned KorIilMockDeliver(const char* serviceId, uint32_t evt, const void* data, uint32_t length);

/* The same with data that is written by the fields that the layout says the event has; those that are not set are zero. An
 * event is valid until the next reset, and can be changed and delivered again. */
typedef struct KorIilMockEvent KorIilMockEvent;
#define KorIilMockEventNamed(name) KorIilMockEventNamedAt(__FILE__, __LINE__, name)
KorIilMockEvent* KorIilMockEventNamedAt(const char* file, unsigned line, const char* name);
void KorIilMockEventNumber(KorIilMockEvent* event, const char* field, int64_t number);
void KorIilMockEventText(KorIilMockEvent* event, const char* field, const char* value);
void KorIilMockEventBytes(KorIilMockEvent* event, const char* field, const void* bytes, uint32_t size);
unsigned KorIilMockDeliverEvent(const KorIilMockEvent* event);

/* ---- Traces ---- */

typedef struct KorIilMockTrace
{
    uint32_t level;
    const char* fileTag;
    uint32_t line;
    const char* format;
    const char* text; /* the format with its arguments filled in */
} KorIilMockTrace;

/* How many traces were written since the last reset, and the one at `index`, counted from 0; NULL if there is none. It is valid
 * until the next reset. */
unsigned KorIilMockTraceCount(void);
const KorIilMockTrace* KorIilMockTraceAt(unsigned index);

/* ---- The end of a test ---- */

/* Adds a failure for every expected call that was never made, writes all failures to `out` (unless it is NULL), resets, and
 * returns the number of failures: 0 when all went as scripted. */
unsigned KorIilMockVerify(FILE* out);

/* Receives a failure as soon as it is found: the file and line where the test scripted the call (NULL and 0 if it did not), and
 * a description. May be called on any thread that calls the platform. */
typedef void (*KorIilMockFailureHandler)(void* context, const char* file, unsigned line, const char* text);
void KorIilMockOnFailure(KorIilMockFailureHandler handler, void* context);

/* ---- In place of the script ---- */

/* Every KorIilExecute goes to the handler, with the caller's own pointers, instead of the script. For answers that a script
 * cannot give. */
typedef uint32_t (*KorIilMockExecuteHandler)(void* context, const char* callerId, const char* serviceId, uint32_t wait,
                                             uint32_t cmdId, uint32_t msgLen, void* msg);
void KorIilMockOnExecute(KorIilMockExecuteHandler handler, void* context);

/* Every KorIilTrace goes to the handler, its arguments unread, and is not recorded. For arguments that must not be read. */
typedef void (*KorIilMockTraceHandler)(void* context, uint32_t level, const char* fileTag, uint32_t line, const char* format,
                                       va_list arguments);
void KorIilMockOnTrace(KorIilMockTraceHandler handler, void* context);

#ifdef __cplusplus
}
#endif

#endif
