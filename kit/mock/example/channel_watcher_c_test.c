/* The channel watcher's unit test in plain C. */
#include "channel_watcher.h"

#include "kor_iil_mock.h"

#include <stdio.h>

enum
{
    kGetChannel = 2,
    kProxyLength = 9376,
    kInterface = 0,  /* offset of the interface name, 65 bytes */
    kChannel = 1152, /* offset of the channel in the reply */
    kChannelEvent = 2,
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
    KorIilMockCall* call = KorIilMockExpect("QTN_RPC_PROXY", kGetChannel, kProxyLength);
    KorIilMockCaller(call, "channel_watcher");
    KorIilMockSentText(call, kInterface, 65, "wifi0");
    KorIilMockSentRestZero(call);
    return call;
}

static void start(uint32_t channel)
{
    KorIilMockExpectSubscribe("TARN", kChannelEvent);
    KorIilMockReplyWord(expectRead(), kChannel, channel);
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
    KorIilMockReplyWord(expectRead(), kChannel, 100);
    CHECK(KorIilMockDeliver("TARN", kChannelEvent, NULL, 0) == 1);
    CHECK(channelWatcherChannel() == 100);
}

static void knowsNoChannelWhenTheModuleDoesNotAnswer(void)
{
    start(36);
    KorIilMockFail(expectRead(), kTimeout);
    KorIilMockDeliver("TARN", kChannelEvent, NULL, 0);
    CHECK(channelWatcherChannel() == 0);
    CHECK(KorIilMockTraceCount() == 1);
}

static void hearsNothingOnceItIsStopped(void)
{
    start(36);
    KorIilMockExpectCancel("TARN", kChannelEvent);
    CHECK(channelWatcherStop() == 0);
    CHECK(KorIilMockDeliver("TARN", kChannelEvent, NULL, 0) == 0);
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
