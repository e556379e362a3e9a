/* What the workstation's IPC library (libkoriil) has beyond the platform's four functions, which are in `kor_iil.h`: services
 * (register an identifier, serve requests, publish events), and for callers subscriptions that outlive a restart of a service,
 * its counters, and the status of the latest call.
 *
 * Both sides return the same statuses; their names are those of `tarnIpcStatusName`. */
#ifndef KOR_IIL_SERVICE_H
#define KOR_IIL_SERVICE_H

#include "kor_iil.h"

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* IPC statuses, and what they mean with this library. */
enum KorIilStatus
{
    KOR_IIL_OK = 0,                /* done */
    KOR_IIL_ERR = 1,               /* a failure with no status of its own; the trace says which */
    KOR_IIL_OVERSIZE = 2,          /* a message, or an event's data, over KOR_IIL_MAX_LENGTH */
    KOR_IIL_BAD_PARAM = 3,         /* an invalid argument: null pointer, wait 0 ... */
    KOR_IIL_NO_MEM = 4,            /* out of memory, threads or descriptors */
    KOR_IIL_TX_FAIL = 5,           /* the request could not be sent */
    KOR_IIL_RX_FAIL = 6,           /* the service ended, or the connection broke, before the reply came */
    KOR_IIL_TIMEOUT = 7,           /* no reply within the wait */
    KOR_IIL_UNKNOWN_SRC_ID = 8,    /* no valid caller id (1 to 31 characters, ASCII first); or another user's process */
    KOR_IIL_UNKNOWN_DST_ID = 9,    /* no service of that name is running, or it is no name a service can have */
    KOR_IIL_UNKNOWN_COMM = 10,     /* the runtime directory cannot be created, or is refused; the trace says why */
    KOR_IIL_MISMATCH_COMM = 11,    /* the peer has another byte order or another version of the transport */
    KOR_IIL_UNSUPPORT = 12,        /* the service does not support this request (a service's own choice) */
    KOR_IIL_UNKNOWN_CMD = 13,      /* the service has no such command */
    KOR_IIL_BAD_CMD = 14,          /* the request's packet is malformed, or came over another's connection */
    KOR_IIL_BAD_RET = 15,          /* the reply's packet is malformed, or does not answer the request */
    KOR_IIL_MISMATCH_CMD_LEN = 16, /* the request or the reply has another length than the command's message */
    KOR_IIL_UNKNOWN_EVT = 17,      /* the service has no such event */
    KOR_IIL_BAD_EVT = 18,          /* cancel of what is not subscribed */
    KOR_IIL_MISMATCH_EVT_LEN = 19, /* an event's data is not as long as announced: dropped, and only traced */
    KOR_IIL_CONFLICT_ID = 20,      /* the name is taken by a running service; or this subscription exists already */
    KOR_IIL_BUSY = 21              /* the service has no room for another caller */
};

/* Longest message, and longest data of an event, in bytes. */
#define KOR_IIL_MAX_LENGTH 65536u

/* One service of this process. */
typedef struct KorIilService KorIilService;

/* One request, as a handler sees it. */
typedef struct KorIilRequest
{
    const char* callerId; /* IPC identifier that the caller gave, 1 to 31 characters; valid during the call */
    uint32_t processId;   /* the calling process, as the kernel says */
    uint32_t wait;        /* seconds the caller waits for the reply */
    uint32_t command;
    uint32_t length; /* bytes of the message, and of its reply */
} KorIilRequest;

/* Answers one request: reads the message, writes the reply over the same `request->length` bytes, and returns KOR_IIL_OK; or
 * returns another status, which the caller's KorIilExecute then returns, its message unchanged. KOR_IIL_TIMEOUT sends no reply
 * at all, and the caller's wait expires.
 * Handlers of one service are called one at a time, on the thread that runs KorIilServiceRun, unless KorIilServiceSetThreads
 * allows for more. A request whose caller has given up (its wait has passed, or its process has ended) is not carried out. */
typedef uint32_t (*KorIilRequestHandler)(void* context, const KorIilRequest* request, void* message);

/* Registers `serviceId` (1 to 31 characters of A-Z a-z 0-9 _ - . that do not begin with .) with its handler. `context` is
 * passed to every call of the handler. `eventCount`: the service publishes events 1 to eventCount, at most 1024; 0 for none.
 * On KOR_IIL_OK, *service must be closed with KorIilServiceClose. Otherwise *service is NULL: KOR_IIL_CONFLICT_ID when a
 * running service has the name (files of a dead one are removed), KOR_IIL_UNKNOWN_COMM when the runtime directory cannot be
 * used, KOR_IIL_BAD_PARAM, KOR_IIL_NO_MEM, KOR_IIL_ERR. */
uint32_t KorIilServiceOpen(const char* serviceId, uint32_t eventCount, KorIilRequestHandler handler, void* context,
                           KorIilService** service);

/* Sets how many threads call the handler at the same time, from its first KorIilServiceRun on: 1 to 64, and 1 unless set. The
 * requests of one connection, which is one thread of a caller, are served in their order. KOR_IIL_BAD_PARAM for another number,
 * and once it has been run. */
uint32_t KorIilServiceSetThreads(KorIilService* service, uint32_t threads);

/* Serves requests on this thread until KorIilServiceStop. Returns KOR_IIL_OK then, and can be called again; another status if
 * it cannot continue: KOR_IIL_CONFLICT_ID when another service has the name, because the files of this one were removed. */
uint32_t KorIilServiceRun(KorIilService* service);

/* Makes KorIilServiceRun return, or return at once when it is called next. Requests that have arrived are answered before; the
 * callers that are connected find their connection closed before they send the next one. From any thread, or a signal
 * handler. */
void KorIilServiceStop(KorIilService* service);

/* Sends an event to all its subscribers. From any thread, the handler's included. `subscribers`, if not NULL, receives how
 * many processes it was sent to. A subscriber that does not read its events (its queue is full) is disconnected and loses its
 * subscriptions. KOR_IIL_UNKNOWN_EVT for an event the service does not have, KOR_IIL_OVERSIZE for data over
 * KOR_IIL_MAX_LENGTH. */
uint32_t KorIilServicePublish(KorIilService* service, uint32_t evt, const void* data, uint32_t length, uint32_t* subscribers);

/* Closes every connection and releases the name. Not while KorIilServiceRun runs. NULL is allowed. In a child of the process
 * that opened the service, it only frees the child's copy. */
void KorIilServiceClose(KorIilService* service);

/* The status that this thread's latest KorIilExecute, subscription or cancellation returned, KOR_IIL_OK before the first. The
 * client library's functions return a number of their own for a call that failed, which may be a service's reply status as
 * well: this tells the two apart. */
uint32_t KorIilLastStatus(void);

/* What a service has counted since it was opened. On 32-bit machines the last three begin again at 2 to the power of 32. */
typedef struct KorIilServiceCounters
{
    uint64_t processId;     /* of the service */
    uint64_t openedAt;      /* seconds since 1970 (UTC) */
    uint64_t connections;   /* callers that are connected, a thread each; and processes that take events */
    uint64_t subscriptions; /* events that processes take, the same event once for each process */
    uint64_t calls;         /* requests that the handler has answered, whatever its status */
    uint64_t refusals;      /* connections and packets to which the service itself gave a status other than KOR_IIL_OK */
    uint64_t drops;         /* requests that were not carried out because their caller had given up, and connections closed
                             * because their peer did not read */
} KorIilServiceCounters;

/* Asks a service for its counters, within `wait` seconds. Returns a status like KorIilExecute; *counters is written only if
 * that is KOR_IIL_OK. */
uint32_t KorIilAskCounters(const char* serviceId, uint32_t wait, KorIilServiceCounters* counters);

/* What became of a kept subscription: KOR_IIL_RX_FAIL, the service has ended, and events are missed from now on; KOR_IIL_OK, it
 * has been renewed; KOR_IIL_UNKNOWN_EVT, the service no longer has the event, and the subscription is gone. Called on the
 * thread that calls the handler, and like it may call, subscribe and cancel. */
typedef void (*KorIilSubscriptionWatcher)(void* context, const char* callerId, const char* serviceId, uint32_t evt,
                                          uint32_t status);

/* Subscribes like KorIilSubscribeEvent, and renews the subscription whenever the service has been restarted, until
 * KorIilCancelEvent. `watcher` is told of every loss and every renewal; it may be NULL, and does not run any more after the
 * subscription was cancelled. */
uint32_t KorIilKeepSubscription(const char* callerId, const char* serviceId, uint32_t evt, KorIilEventHandler handler,
                                KorIilSubscriptionWatcher watcher, void* context);

/* Where services and callers meet: writes the path of the runtime directory into `size` bytes, cut if it does not fit, with a
 * NUL in any case (nothing for size 0). Returns the length of the whole path. The directory is neither made nor checked. */
uint32_t KorIilRuntimeDirectory(char* path, uint32_t size);

#ifdef __cplusplus
}
#endif

#endif
