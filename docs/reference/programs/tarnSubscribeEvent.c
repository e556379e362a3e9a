#include <stdio.h>
#include <unistd.h>

#include <tarn_frame.h>

static void channelChanged(const char* serviceId, uint32_t evt, const void* data, uint32_t length)
{
    (void)data;
    printf("%s: event %u, %u bytes\n", serviceId, (unsigned)evt, (unsigned)length);
}

int main(void)
{
    const uint32_t evt = TARN_EVT_RADIO_OPR_CHANNEL_CHANGED;

    if (tarnSubscribeEvent("ledd", evt, NULL, channelChanged) != TARN_OK)
        return 1;
    sleep(60);
    return tarnCancelEvent("ledd", evt, NULL, channelChanged) != TARN_OK;
}
