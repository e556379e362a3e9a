/* A component as it might run on the gateway: it keeps track of the channel that the module works on.
 *
 * It shows how such a component is tested: see channel_watcher_test.cpp and channel_watcher_c_test.c. */
#ifndef CHANNEL_WATCHER_H
#define CHANNEL_WATCHER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Subscribes to changes of the channel and reads the current one. `interface` names an interface of the module, up to 64
 * characters. Returns 0, or -1 if the subscription failed; then nothing has to be stopped. A channel that cannot be read is no
 * failure: it is unknown until the next change. */
int channelWatcherStart(const char* interface);

/* The channel, or 0 while it is unknown. From any thread. */
uint32_t channelWatcherChannel(void);

/* Cancels the subscription. Returns 0, or -1 if that failed. */
int channelWatcherStop(void);

#ifdef __cplusplus
}
#endif

#endif
