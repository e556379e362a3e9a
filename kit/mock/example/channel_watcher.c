#include "channel_watcher.h"

#include "tarn_frame.h"
#include "tarn_qtn_monitor_api.h"

#include <pthread.h>
#include <stddef.h>
#include <stdio.h>

#define CALLER_ID "channel_watcher"

/* A handler has no context argument, so its data is static. Events may come on any thread. */
static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
static char interfaceName[65];
static uint32_t channel;

static void readChannel(void)
{
    uint32_t current = 0;
    if (tarn_qcsapi_wifi_get_channel(CALLER_ID, interfaceName, &current) != 0)
        current = 0;

    pthread_mutex_lock(&lock);
    channel = current;
    pthread_mutex_unlock(&lock);
}

static void onChannelChanged(const char* serviceId, uint32_t evt, const void* data, uint32_t length)
{
    (void)serviceId;
    (void)evt;
    (void)data;
    (void)length;
    readChannel();
}

int channelWatcherStart(const char* interface)
{
    snprintf(interfaceName, sizeof interfaceName, "%s", interface);
    if (tarnSubscribeEvent(CALLER_ID, TARN_EVT_RADIO_OPR_CHANNEL_CHANGED, NULL, onChannelChanged) != TARN_OK)
        return -1;
    readChannel();
    return 0;
}

uint32_t channelWatcherChannel(void)
{
    uint32_t current;
    pthread_mutex_lock(&lock);
    current = channel;
    pthread_mutex_unlock(&lock);
    return current;
}

int channelWatcherStop(void)
{
    return tarnCancelEvent(CALLER_ID, TARN_EVT_RADIO_OPR_CHANNEL_CHANGED, NULL, onChannelChanged) == TARN_OK ? 0 : -1;
}
