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

static void answersByName(void)
{
    static const uint8_t address[6] = {2, 0, 0, 0, 1, 5};
    uint32_t status = 0;
    uint8_t found[6];
    KorIilMockCall* call = KorIilMockExpectFunction("TarnGetRadioNeighboringStatus");
    KorIilMockInputNumber(call, "radioId", 1);
    KorIilMockOutputText(call, "status", "done");
    KorIilMockTimes(call, 2);
    call = KorIilMockExpectFunction("TarnGetAccessPointMacFilterAt");
    KorIilMockOutputBytes(call, "macAddress", address, sizeof address);
    KorIilMockInAnyOrder(call);
    call = KorIilMockExpectFunction("TarnKickOutAccessPointAssociated");
    KorIilMockInputBytes(call, "macAddress", address, sizeof address);
    KorIilMockStatusNamed(call, "BUSY");
    KorIilMockAnyTimes(KorIilMockExpectFunction("TarnGetLogLevel"));

    REQUIRE(TarnGetRadioNeighboringStatus("ledd", 1, &status) == 0);
    REQUIRE(status == 2);
    REQUIRE(TarnGetAccessPointMacFilterAt("ledd", 1, 1, 0, found) == 0);
    REQUIRE(memcmp(found, address, sizeof address) == 0);
    REQUIRE(TarnGetRadioNeighboringStatus("ledd", 1, &status) == 0);
    REQUIRE(TarnKickOutAccessPointAssociated("ledd", 1, 1, address) != 0);
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
    KorIilMockExpectSubscribeNamed("EVT_AP_ASSOCIATED_CHANGED");
    REQUIRE(tarnSubscribeEvent("ledd", 4, NULL, countEvent) == TARN_OK);
    REQUIRE(KorIilMockDeliver("TARN", 4, NULL, 0) == 1);
    REQUIRE(eventsReceived == 4);
    REQUIRE(KorIilMockDeliverEvent(KorIilMockEventNamed("EVT_AP_ASSOCIATED_CHANGED")) == 1);
    REQUIRE(eventsReceived == 8);
    KorIilMockExpectCancelNamed("EVT_AP_ASSOCIATED_CHANGED");
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
    answersByName();
    recordsTraces();
    deliversEvents();
    countsFailures();
    printf(failures == 0 ? "all as expected\n" : "%u failures\n", failures);
    return failures == 0 ? 0 : 1;
}
