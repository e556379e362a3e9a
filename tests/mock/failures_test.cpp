// The scripted platform when a call or a script is wrong: the failure must be reported, and must say what was expected.
#include "kor_iil_mock.hpp"

#include "kor_iil.h"
#include "tarn_api.h"
#include "tarn_frame.h"
#include "tarn_qtn_monitor_api.h"

#include "failures.h"

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{

void ignoreEvent(const char*, std::uint32_t, const void*, std::uint32_t)
{
}

class Failures : public tarn_test::MockFailures
{
};

TEST_F(Failures, NoneIfAllWentAsScripted)
{
    KorIilMockExpect("TARN", 1, 12);
    TarnSetLogLevel("ledd", 1);
    EXPECT_THAT(verify(), IsEmpty());
}

TEST_F(Failures, UnexpectedCallWithoutAScript)
{
    EXPECT_EQ(TarnSetLogLevel("ledd", 1), 1u);
    EXPECT_THAT(
        verify(),
        ElementsAre("nowhere: unexpected call: TarnSetLogLevel (TARN command 1) with level 1; no further call is expected"));
}

TEST_F(Failures, CallThatNeverCame)
{
    const unsigned line = __LINE__ + 1;
    KorIilMockExpect("TARN", 1, 12);
    EXPECT_THAT(verify(),
                ElementsAre(std::string(__FILE__) + ":" + std::to_string(line) + ": TARN command 1: expected, but never made"));
}

TEST_F(Failures, AnotherCommand)
{
    KorIilMockExpectAt("a_test.cpp", 12, "TARN", 0, 12);
    EXPECT_EQ(TarnSetLogLevel("ledd", 1), 1u);
    EXPECT_THAT(
        verify(),
        ElementsAre(
            "a_test.cpp:12: unexpected call: TarnSetLogLevel (TARN command 1) with level 1; expected here: TARN command 0",
            "a_test.cpp:12: TARN command 0: expected, but never made"));
}

TEST_F(Failures, AnotherService)
{
    KorIilMockExpectAt("a_test.cpp", 12, "QTN_MIRROR", 1, 24);
    EXPECT_EQ(tarn_qcsapi_init("ledd"), -1);
    EXPECT_THAT(verify()[0],
                HasSubstr("unexpected call: tarn_qcsapi_init (QTN_RPC_PROXY command 1); expected here: QTN_MIRROR command 1"));
}

TEST_F(Failures, CallInPlaceOfASubscription)
{
    KorIilMockExpectSubscribeAt("a_test.cpp", 12, "TARN", 1);
    EXPECT_EQ(TarnSetLogLevel("ledd", 1), 1u);
    EXPECT_THAT(
        verify()[0],
        HasSubstr(
            "unexpected call: TarnSetLogLevel (TARN command 1) with level 1; expected here: subscription to TARN event 1"));
}

TEST_F(Failures, AnotherEvent)
{
    KorIilMockExpectCancelAt("a_test.cpp", 12, "TARN", 1);
    EXPECT_EQ(tarnCancelEvent("ledd", 2, nullptr, &ignoreEvent), 1u);
    EXPECT_THAT(verify()[0],
                HasSubstr("unexpected call: cancellation of TARN event 2; expected here: cancellation of TARN event 1"));
}

TEST_F(Failures, CallerWaitAndLength)
{
    KorIilMockCall* const call = KorIilMockExpectAt("a_test.cpp", 12, "TARN", 1, 16);
    KorIilMockCaller(call, "web");
    KorIilMockWait(call, 4);
    EXPECT_EQ(TarnSetLogLevel("ledd", 1), 0u);
    EXPECT_THAT(verify(), ElementsAre("a_test.cpp:12: TARN command 1: not as scripted\n"
                                      "caller: expected \"web\", got \"ledd\"\n"
                                      "wait: expected 4, got 3\n"
                                      "length: expected 16, got 12\n"));
}

TEST_F(Failures, CallerOfASubscription)
{
    KorIilMockCaller(KorIilMockExpectSubscribeAt("a_test.cpp", 12, "TARN", 1), "web");
    EXPECT_EQ(tarnSubscribeEvent("ledd", 1, nullptr, &ignoreEvent), 0u);
    EXPECT_THAT(
        verify(),
        ElementsAre("a_test.cpp:12: subscription to TARN event 1: not as scripted\ncaller: expected \"web\", got \"ledd\"\n"));
}

TEST_F(Failures, BytesWithOffsetExpectedGotAndADump)
{
    KorIilMockCall* const call = KorIilMockExpectAt("a_test.cpp", 12, "TARN", 3, 12);
    const std::uint8_t expected[] = {1, 2, 3, 4};
    KorIilMockSent(call, 4, expected, sizeof expected);
    std::uint32_t sent;
    const std::uint8_t bytes[] = {1, 2, 9, 4};
    std::memcpy(&sent, bytes, sizeof sent);
    EXPECT_EQ(TarnSetStopPollingEnable("ledd", 0, sent), 0u);

    const std::string gap(1 + 4 * 3, ' ');
    EXPECT_THAT(verify(), ElementsAre("a_test.cpp:12: TARN command 3: not as scripted\n"
                                      "at offset 6: expected 03 (run of 4 bytes at 4), got 09; 1 byte differs\n"
                                      "  offset  expected (.. is not compared)                    sent\n"
                                      "  0x0000  .. .. .. .. 01 02 03 04 .. .. .. .. " +
                                      gap + "00 00 00 00 01 02 09 04 00 00 00 00 \n" + std::string(10 + 18, ' ') + "^^" +
                                      std::string(47, ' ') + "^^\n"));
}

TEST_F(Failures, NamesTheWordThatDiffers)
{
    KorIilMockCall* const call = KorIilMockExpectAt("a_test.cpp", 12, "TARN", 1, 12);
    KorIilMockSentWord(call, 0, 0x01010101);
    TarnSetLogLevel("ledd", 0x02020202);
    EXPECT_THAT(verify()[0], HasSubstr("at offset 0: expected 01 (word 0x01010101 at 0), got 02; 4 bytes differ\n"));
}

TEST_F(Failures, NamesTheTextThatDiffers)
{
    KorIilMockCall* const call = KorIilMockExpectAt("a_test.cpp", 12, "QTN_RPC_PROXY", 31, 9376);
    KorIilMockSentText(call, 0, 65, "wifi0");
    tarn_qcsapi_wps_registrar_report_button_press("ledd", "wifi0.1");
    EXPECT_THAT(verify()[0], HasSubstr("at offset 5: expected 00 (text \"wifi0\" at 0), got 2e; 2 bytes differ\n"));
}

TEST_F(Failures, NamesAByteThatIsNotZero)
{
    KorIilMockCall* const call = KorIilMockExpectAt("a_test.cpp", 12, "QTN_RPC_PROXY", 63, 9376);
    KorIilMockSentText(call, 0, 65, "wifi0");
    KorIilMockSentRestZero(call);
    tarn_qcsapi_wifi_set_priority("ledd", "wifi0", 7);
    EXPECT_THAT(verify()[0], HasSubstr("at offset 68: expected 00 (zero), got 07; 1 byte differs\n"));
}

TEST_F(Failures, ComparesNothingThatIsNotScripted)
{
    KorIilMockExpectAt("a_test.cpp", 12, "TARN", 1, 12);
    TarnSetLogLevel("ledd", 0xFFFFFFFFu);
    EXPECT_THAT(verify(), IsEmpty());
}

TEST_F(Failures, CutALongDump)
{
    KorIilMockCall* const call = KorIilMockExpectAt("a_test.cpp", 12, "TARN", 9, 4444);
    KorIilMockSentRestZero(call);
    TarnRadioCfg cfg;
    std::memset(&cfg, 0xEE, sizeof cfg);
    TarnSetRadioCfg("ledd", 1, 0, cfg);
    const std::string text = verify()[0];
    EXPECT_THAT(text, HasSubstr("4432 bytes differ\n"));
    EXPECT_THAT(text, HasSubstr("and 270 more rows that differ\n"));
}

TEST_F(Failures, AnswerAllTheSame)
{
    KorIilMockCall* const call = KorIilMockExpectAt("a_test.cpp", 12, "TARN", 1, 12);
    KorIilMockSentWord(call, 0, 1);
    KorIilMockStatus(call, 77);
    EXPECT_EQ(TarnSetLogLevel("ledd", 2), 77u);
    EXPECT_EQ(verify().size(), 1u);
}

TEST_F(Failures, CancelOfWhatIsNotSubscribed)
{
    KorIilMockExpectCancelAt("a_test.cpp", 12, "TARN", 1);
    EXPECT_EQ(tarnCancelEvent("ledd", 1, nullptr, &ignoreEvent), 0u);
    EXPECT_THAT(verify(), ElementsAre("a_test.cpp:12: cancellation of TARN event 1: that handler is not subscribed to it"));
}

TEST_F(Failures, SubscriptionWithoutAHandler)
{
    KorIilMockExpectSubscribeAt("a_test.cpp", 12, "TARN", 1);
    EXPECT_EQ(tarnSubscribeEvent("ledd", 1, nullptr, nullptr), 0u);
    EXPECT_THAT(verify()[0], HasSubstr("the handler is NULL"));
}

TEST_F(Failures, ScriptThatDoesNotFitTheMessage)
{
    KorIilMockCall* const call = KorIilMockExpectAt("a_test.cpp", 12, "TARN", 1, 12);
    KorIilMockSentWord(call, 12, 1);
    KorIilMockReplyWord(call, 0xFFFFFFFFu, 1);
    KorIilMockSentText(call, 0, 4, "four");
    KorIilMockFail(call, 0);
    TarnSetLogLevel("ledd", 1);
    EXPECT_THAT(
        verify(),
        ElementsAre("a_test.cpp:12: TARN command 1: the script puts word 0x00000001, 4 bytes, at offset 12 of a message of 12",
                    HasSubstr("at offset 4294967295 of a message of 12"),
                    HasSubstr("the script expects the text \"four\" in 4 bytes, where it does not fit"),
                    HasSubstr("the script lets it fail with IPC status 0, which is success")));
}

TEST_F(Failures, ScriptThatGivesASubscriptionAMessage)
{
    KorIilMockCall* const call = KorIilMockExpectSubscribeAt("a_test.cpp", 12, "TARN", 1);
    KorIilMockSentWord(call, 0, 1);
    KorIilMockWait(call, 3);
    KorIilMockReset();
    EXPECT_THAT(texts_,
                ElementsAre(HasSubstr("bytes (word 0x00000001), but it has no message"), HasSubstr("a wait, but it has none")));
}

TEST_F(Failures, ScriptOfAMessageWithoutAStatus)
{
    KorIilMockExpectAt("a_test.cpp", 12, "LAMP", 1, 2);
    char message[2] = {1, 2};
    EXPECT_EQ(KorIilExecute("ledd", "LAMP", 3, 1, 2, message), 0u);
    EXPECT_EQ(message[0], 1);
    EXPECT_THAT(verify(), ElementsAre(HasSubstr("2 bytes, which leaves no room for its reply status")));
}

TEST(Verify, WritesOneFailureALineAndCountsThem)
{
    KorIilMockReset();
    KorIilMockExpectAt("a_test.c", 12, "TARN", 0, 12);
    TarnSetLogLevel("ledd", 1);

    char* text = nullptr;
    std::size_t length = 0;
    FILE* const out = open_memstream(&text, &length);
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(KorIilMockVerify(out), 2u);
    std::fclose(out);
    EXPECT_STREQ(text,
                 "a_test.c:12: unexpected call: TarnSetLogLevel (TARN command 1) with level 1; expected here: TARN command 0\n"
                 "a_test.c:12: TARN command 0: expected, but never made\n");
    std::free(text);
    EXPECT_EQ(KorIilMockVerify(nullptr), 0u);
}

TEST(Platform, FailsTheTestOnAMissingCall)
{
    EXPECT_NONFATAL_FAILURE(
        {
            tarn::mock::Platform platform;
            platform.expect("TARN", 1, 12);
        },
        "TARN command 1: expected, but never made");
}

TEST(Platform, FailsTheTestOnAnUnexpectedCall)
{
    EXPECT_NONFATAL_FAILURE(
        {
            const tarn::mock::Platform platform;
            TarnSetLogLevel("ledd", 1);
        },
        "unexpected call: TarnSetLogLevel (TARN command 1) with level 1; no further call is expected");
}

TEST(Platform, FailsTheTestAtTheLineOfTheScript)
{
    testing::TestPartResultArray results;
    int line = 0;
    {
        const testing::ScopedFakeTestPartResultReporter reporter(&results);
        tarn::mock::Platform platform;
        line = __LINE__ + 1;
        platform.expect("TARN", 1, 12).word(0, 1);
        TarnSetLogLevel("ledd", 2);
    }
    ASSERT_EQ(results.size(), 1);
    EXPECT_EQ(results.GetTestPartResult(0).line_number(), line);
    EXPECT_STREQ(results.GetTestPartResult(0).file_name(), __FILE__);
}

} // namespace
