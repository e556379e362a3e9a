/* What the platform's IPC library supplies: four functions, resolved when the component is linked.
 *
 * The gateway brings its own implementation; on a workstation libkoriil takes its place, and in unit tests the mock. All sizes
 * are in bytes, and every function may be called from any thread at any time. */
#ifndef KOR_IIL_H
#define KOR_IIL_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Receives one event. Called by the IPC library, on a thread of its choice.
 *
 *   serviceId  in: name of the service that published the event
 *   evt        in: the event's number, as it was subscribed to
 *   data       in: what the service attached to the event, `length` bytes, valid until the handler returns; NULL if length is 0
 *   length     in: bytes at data */
typedef void (*KorIilEventHandler)(const char* serviceId, uint32_t evt, const void* data, uint32_t length);

/* Sends a message to a service and blocks until its reply is in the same buffer or the wait is over.
 *
 *   callerId   in: IPC identifier of the calling component, 1 to 31 characters
 *   serviceId  in: IPC identifier of the service
 *   wait       in: how long the reply may take, in the platform's unit
 *   cmdId      in: number of the command
 *   msgLen     in: bytes of the message, and of its reply
 *   msg        in, out: the message, overwritten by the reply
 *
 * Returns an IPC status: 0 when the reply is in the buffer, 7 when the wait is over, another value on another failure (see
 * `tarnIpcStatusName`). After a status other than 0 nothing may be read from the buffer. */
uint32_t KorIilExecute(const char* callerId, const char* serviceId, uint32_t wait, uint32_t cmdId, uint32_t msgLen, void* msg);

/* Registers a handler for one event of a service. Returns an IPC status, 0 when it is registered. */
uint32_t KorIilSubscribeEvent(const char* callerId, const char* serviceId, uint32_t evt, KorIilEventHandler handler);

/* Cancels a registration. Returns an IPC status, 0 when it is cancelled. */
uint32_t KorIilCancelEvent(const char* callerId, const char* serviceId, uint32_t evt, KorIilEventHandler handler);

/* Writes one trace record.
 *
 *   level    in: severity; this library always passes 1
 *   fileTag  in: name of the source unit that reports
 *   line     in: a line of that unit that tells where the report comes from
 *   format   in: printf format, its arguments behind it */
void KorIilTrace(uint32_t level, const char* fileTag, uint32_t line, const char* format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 4, 5)))
#endif
    ;

#ifdef __cplusplus
}
#endif

#endif
