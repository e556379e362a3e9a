/* The control identifier of tarn-gateway, the simulated gateway: messages of its own, which no real gateway has.
 *
 * They are sent with KorIilExecute to the service TARN_GATEWAY_SERVICE, like any other message: cleared to zero, filled,
 * exchanged in place. All words are in the host's byte order; sizes are in bytes. Each message ends with its status, one of
 * TarnGatewayStatus. */
#ifndef TARN_GATEWAY_CONTROL_H
#define TARN_GATEWAY_CONTROL_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define TARN_GATEWAY_SERVICE "TARN_GATEWAY"

/* Statuses. The simulated services answer 0 and the numbers from 16 on as well: README.md says what each of them means. */
enum TarnGatewayStatus
{
    TARN_GATEWAY_OK = 0,
    TARN_GATEWAY_NO_SUCH_OBJECT = 16, /* no such event; no such entry in the state */
    TARN_GATEWAY_INVALID_VALUE = 17,  /* a length over the message's room; a path that is no JSON pointer */
    TARN_GATEWAY_FULL = 19,           /* the answer does not fit into the message */
    TARN_GATEWAY_NOT_THERE = 21       /* nothing is due */
};

/* Publishes an event of the device service, whatever the state of the gateway is. */
#define TARN_GATEWAY_PUBLISH 0u
#define TARN_GATEWAY_PUBLISH_DATA_SIZE 1024u
typedef struct TarnGatewayPublish
{
    uint32_t event;                               /* in: 1 to 5, one of TARN_EVT_... of tarn_frame.h */
    uint32_t length;                              /* in: bytes of `data` to publish, at most TARN_GATEWAY_PUBLISH_DATA_SIZE */
    uint8_t data[TARN_GATEWAY_PUBLISH_DATA_SIZE]; /* in */
    uint32_t subscribers;                         /* out: how many processes it was sent to */
    uint32_t status;                              /* out */
} TarnGatewayPublish;

/* Shuts the simulated gateway down, once this has been answered. */
#define TARN_GATEWAY_SHUT_DOWN 1u
typedef struct TarnGatewayShutDown
{
    uint32_t status; /* out */
} TarnGatewayShutDown;

/* Reads the state of the gateway, or a part of it, as JSON text: also what has been set by commands that no other command reads
 * back. */
#define TARN_GATEWAY_READ_STATE 2u
#define TARN_GATEWAY_PATH_SIZE 256u
#define TARN_GATEWAY_STATE_SIZE 49152u
typedef struct TarnGatewayReadState
{
    char path[TARN_GATEWAY_PATH_SIZE];  /* in: a JSON pointer such as "/radios/0/channel"; empty for everything */
    uint32_t length;                    /* out: characters of the text, the NUL not counted, also when it does not fit */
    char text[TARN_GATEWAY_STATE_SIZE]; /* out: NUL-terminated; empty when it does not fit */
    uint32_t status;                    /* out */
} TarnGatewayReadState;

/* Reads the text of the layout file that the gateway answers by, a piece at a time. */
#define TARN_GATEWAY_READ_LAYOUT 3u
#define TARN_GATEWAY_LAYOUT_SIZE 32768u
typedef struct TarnGatewayReadLayout
{
    uint32_t offset;                     /* in: of the first character to read */
    uint32_t total;                      /* out: characters of the whole text */
    uint32_t length;                     /* out: characters of this piece; 0 behind the end */
    char text[TARN_GATEWAY_LAYOUT_SIZE]; /* out: the piece, without a NUL behind it */
    uint32_t status;                     /* out */
} TarnGatewayReadLayout;

/* Reads the gateway's time, and changes how it goes. */
#define TARN_GATEWAY_TIME 4u
enum TarnGatewayTimeAction
{
    TARN_GATEWAY_TIME_READ = 0,
    TARN_GATEWAY_TIME_SET_SPEED = 1,   /* `value`: thousandths of real time's speed; 0 stops it */
    TARN_GATEWAY_TIME_STEP = 2,        /* `value`: milliseconds that pass at once */
    TARN_GATEWAY_TIME_STEP_TO_NEXT = 3 /* until the next thing that is due has happened, with all others of the same instant */
};
typedef struct TarnGatewayTime
{
    uint32_t action;
    uint32_t value;
    uint32_t speed;        /* out: thousandths of real time's */
    uint32_t seconds;      /* out: since the gateway was started */
    uint32_t milliseconds; /* out: of the second, 0 to 999 */
    uint32_t status;       /* out */
} TarnGatewayTime;

#ifdef __cplusplus
}
#endif

#endif
