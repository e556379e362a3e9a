/* The scripted platform from C: what a test in C sees of it. */
#include "kor_iil_mock.h"

#include "tarn_api.h"
#include "tarn_frame.h"

#include <stdio.h>
#include <string.h>

static unsigned failures = 0;

static void require(int holds, const char* what, int line)
{
    if (holds)
        return;
    ++failures;
    fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, line, what);
}

#define REQUIRE(condition) require((condition) != 0, #condition, __LINE__)

static unsigned eventsReceived = 0;

static void countEvent(const char* serviceId, uint32_t evt, const void* data, uint32_t length)
{
    (void)serviceId;
    (void)data;
    (void)length;
    eventsReceived += evt;
}

static void answersAsScripted(void)
{
    uint32_t level = 0;
    KorIilMockCall* call = KorIilMockExpect("TARN", 0, 12);
    KorIilMockCaller(call, "ledd");
    KorIilMockWait(call, 3);
    KorIilMockSentRestZero(call);
    KorIilMockReplyWord(call, 4, 5);
    KorIilMockStatus(call, 2);
    REQUIRE(TarnGetLogLevel("ledd", &level) == 2);
    REQUIRE(level == 5);
    REQUIRE(KorIilMockTraceCount() == 0);
    REQUIRE(KorIilMockVerify(stderr) == 0);
}

static void recordsTraces(void)
{
    REQUIRE(TarnGetLogLevel("ledd", NULL) == TARN_REJECTED);
    REQUIRE(KorIilMockTraceCount() == 1);
    REQUIRE(strcmp(KorIilMockTraceAt(0)->text, "level is NULL") == 0);
    REQUIRE(strcmp(KorIilMockTraceAt(0)->fileTag, "tarn_api") == 0);
    REQUIRE(KorIilMockTraceAt(1) == NULL);
    REQUIRE(KorIilMockVerify(stderr) == 0);
    REQUIRE(KorIilMockTraceCount() == 0);
}

static void deliversEvents(void)
{
    KorIilMockExpectSubscribe("TARN", 4);
    REQUIRE(tarnSubscribeEvent("ledd", 4, NULL, countEvent) == TARN_OK);
    REQUIRE(KorIilMockDeliver("TARN", 4, NULL, 0) == 1);
    REQUIRE(eventsReceived == 4);
    KorIilMockExpectCancel("TARN", 4);
    REQUIRE(tarnCancelEvent("ledd", 4, NULL, countEvent) == TARN_OK);
    REQUIRE(KorIilMockVerify(stderr) == 0);
}

static void countsFailures(void)
{
    KorIilMockSentWord(KorIilMockExpect("TARN", 1, 12), 0, 1);
    KorIilMockExpect("TARN", 1, 12);
    REQUIRE(TarnSetLogLevel("ledd", 2) == 0);
    REQUIRE(KorIilMockVerify(NULL) == 2);
    REQUIRE(KorIilMockVerify(NULL) == 0);
}

int main(void)
{
    KorIilMockReset();
    answersAsScripted();
    recordsTraces();
    deliversEvents();
    countsFailures();
    printf(failures == 0 ? "all as expected\n" : "%u failures\n", failures);
    return failures == 0 ? 0 : 1;
}
