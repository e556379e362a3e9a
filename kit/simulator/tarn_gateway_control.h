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
    TARN_GATEWAY_NO_SUCH_OBJECT = 16, /* no such event, client or neighbour; no such entry in the state */
    TARN_GATEWAY_INVALID_VALUE = 17,  /* no such order, or none that can be; a length over the message's room */
    TARN_GATEWAY_NOT_THERE = 21       /* nothing is due; the answer is not kept any more */
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

/* Carries out an order: "state /radios/0/channel", "radar 52", "faults add noAnswer count=1" ...; README.md has all of them.
 * Its words are separated by blanks and quoted as in a shell. The answer is JSON text, "null" where there is nothing to tell;
 * with a status other than TARN_GATEWAY_OK it says as plain text what was expected. What of it does not fit is read with
 * TARN_GATEWAY_READ_ANSWER. */
#define TARN_GATEWAY_ORDER 1u
#define TARN_GATEWAY_ORDER_SIZE 28672u
#define TARN_GATEWAY_TEXT_SIZE 32768u
typedef struct TarnGatewayOrder
{
    char order[TARN_GATEWAY_ORDER_SIZE]; /* in: NUL-terminated */
    uint32_t number;                     /* out: of the answer */
    uint32_t total;                      /* out: characters of the whole answer */
    uint32_t length;                     /* out: characters of it in `text` */
    char text[TARN_GATEWAY_TEXT_SIZE];   /* out: the beginning, without a NUL behind it if the answer goes on */
    uint32_t status;                     /* out */
} TarnGatewayOrder;

/* Reads the rest of an order's answer, a piece at a time. The last 8 answers that did not fit are kept. */
#define TARN_GATEWAY_READ_ANSWER 2u
typedef struct TarnGatewayReadAnswer
{
    uint32_t number;                   /* in: of the answer */
    uint32_t offset;                   /* in: of the first character to read */
    uint32_t length;                   /* out: characters of this piece; 0 behind the end */
    char text[TARN_GATEWAY_TEXT_SIZE]; /* out: the piece, without a NUL behind it */
    uint32_t status;                   /* out */
} TarnGatewayReadAnswer;

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

#ifdef __cplusplus
}
#endif

#endif
