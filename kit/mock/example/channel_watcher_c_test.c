/* The channel watcher's unit test in plain C. */
#include "channel_watcher.h"

#include "kor_iil_mock.h"

#include <stdio.h>

#define CHANNEL_EVENT "EVT_RADIO_OPR_CHANNEL_CHANGED"

enum
{
    kTimeout = 7
};

static unsigned failures = 0;

#define CHECK(condition)                                                                                                       \
    do                                                                                                                         \
    {                                                                                                                          \
        if (!(condition))                                                                                                      \
        {                                                                                                                      \
            ++failures;                                                                                                        \
            fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, __LINE__, #condition);                                     \
        }                                                                                                                      \
    } while (0)

static KorIilMockCall* expectRead(void)
{
    KorIilMockCall* call = KorIilMockExpectFunction("tarn_qcsapi_wifi_get_channel");
    KorIilMockCaller(call, "channel_watcher");
    KorIilMockInputText(call, "intf_name", "wifi0");
    return call;
}

static void start(uint32_t channel)
{
    KorIilMockExpectSubscribeNamed(CHANNEL_EVENT);
    KorIilMockOutputNumber(expectRead(), "channel", channel);
    CHECK(channelWatcherStart("wifi0") == 0);
}

static void readsTheChannelAtItsStart(void)
{
    start(36);
    CHECK(channelWatcherChannel() == 36);
}

static void readsItAgainWhenItChanges(void)
{
    start(36);
    KorIilMockOutputNumber(expectRead(), "channel", 100);
    CHECK(KorIilMockDeliverEvent(KorIilMockEventNamed(CHANNEL_EVENT)) == 1);
    CHECK(channelWatcherChannel() == 100);
}

static void knowsNoChannelWhenTheModuleDoesNotAnswer(void)
{
    start(36);
    KorIilMockFail(expectRead(), kTimeout);
    KorIilMockDeliverEvent(KorIilMockEventNamed(CHANNEL_EVENT));
    CHECK(channelWatcherChannel() == 0);
    CHECK(KorIilMockTraceCount() == 1);
}

static void hearsNothingOnceItIsStopped(void)
{
    start(36);
    KorIilMockExpectCancelNamed(CHANNEL_EVENT);
    CHECK(channelWatcherStop() == 0);
    CHECK(KorIilMockDeliverEvent(KorIilMockEventNamed(CHANNEL_EVENT)) == 0);
}

int main(void)
{
    void (*const tests[])(void) = {readsTheChannelAtItsStart, readsItAgainWhenItChanges,
                                   knowsNoChannelWhenTheModuleDoesNotAnswer, hearsNothingOnceItIsStopped};
    unsigned i;
    for (i = 0; i < sizeof tests / sizeof tests[0]; ++i)
    {
        KorIilMockReset();
        tests[i]();
        failures += KorIilMockVerify(stderr);
    }
    printf("%u failures\n", failures);
    return failures == 0 ? 0 : 1;
}
