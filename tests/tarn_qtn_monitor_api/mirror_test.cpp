// The mirror service: port mirroring and telnet access of the module.
#include "support/platform_test.h"
#include "support/samples.h"
#include "tarn_qtn_monitor_api.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace tarn::test
{
namespace
{

class Mirror : public PlatformTest
{
protected:
    // Every byte that the test does not name must be zero.
    mock::Call expectCommand(std::uint32_t command, const char* file = __builtin_FILE(),
                             unsigned line = static_cast<unsigned>(__builtin_LINE()))
    {
        return platform.expect("QTN_MIRROR", command, 24, file, line).caller("ledd").wait(3).restZero();
    }

    // A request for the status: 24 zero bytes. The reply fills all words but the status with their offsets.
    mock::Call expectStatusRequest(const char* file = __builtin_FILE(), unsigned line = static_cast<unsigned>(__builtin_LINE()))
    {
        mock::Call call = expectCommand(0, file, line);
        for (const std::uint32_t offset : {0u, 4u, 8u, 12u, 16u})
            call.replyWord(offset, offset);
        return call;
    }
};

TEST_F(Mirror, BothGettersSendTheSameRequestAndTakeTheirOwnWords)
{
    expectStatusRequest().status(static_cast<std::uint32_t>(-5));
    expectStatusRequest().status(6);

    std::uint32_t mirrorStatus = 0;
    std::uint32_t references = 0;
    std::uint32_t telnetStatus = 0;
    EXPECT_EQ(tarn_qtn_mirror_get_mirror_status("ledd", &mirrorStatus), -5);
    EXPECT_EQ(tarn_qtn_mirror_get_telnet_status("ledd", &references, &telnetStatus), 6);
    EXPECT_EQ(mirrorStatus, 16u);
    EXPECT_EQ(references, 8u);
    EXPECT_EQ(telnetStatus, 12u);
}

TEST_F(Mirror, TelnetIsSwitchedForAProcess)
{
    expectCommand(1).word(0, 1).word(4, 4711);
    expectCommand(1).word(0, 0).word(4, 1).status(static_cast<std::uint32_t>(-1));
    EXPECT_EQ(tarn_qtn_mirror_set_telnet_enable("ledd", 1, 4711), 0);
    EXPECT_EQ(tarn_qtn_mirror_set_telnet_enable("ledd", 0, 1), -1);
}

TEST_F(Mirror, TelnetForProcess0IsRefusedWhateverTheSwitch)
{
    EXPECT_EQ(tarn_qtn_mirror_set_telnet_enable("ledd", 0, 0), -1);
    EXPECT_EQ(tarn_qtn_mirror_set_telnet_enable("ledd", 1, 0), -1);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("invalid pid", "invalid pid"));
}

TEST_F(Mirror, CallerIdIsCheckedBeforeTheProcess)
{
    EXPECT_EQ(tarn_qtn_mirror_set_telnet_enable(nullptr, 1, 0), -1);
    EXPECT_EQ(tarn_qtn_mirror_set_telnet_enable("", 1, 0), -1);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("handle is NULL", "handle is invalid"));
}

TEST_F(Mirror, MirroringIsSwitchedWithoutAProcess)
{
    expectCommand(2).word(0, 0x01020304);
    expectCommand(2).status(3);
    EXPECT_EQ(tarn_qtn_mirror_set_mirror_enable("ledd", 0x01020304), 0);
    EXPECT_EQ(tarn_qtn_mirror_set_mirror_enable("ledd", 0), 3);
}

TEST_F(Mirror, ReferenceCountIsCheckedBeforeTheStatus)
{
    EXPECT_EQ(missing(tarn_qtn_mirror_get_telnet_status), "ref_cnt, status");
    EXPECT_EQ(missing(tarn_qtn_mirror_get_mirror_status), "status");
}

TEST_F(Mirror, FailureLeavesTheOutputs)
{
    expectStatusRequest().fail(21);
    expectStatusRequest().fail(7);

    std::uint32_t word = kUntouched;
    EXPECT_EQ(tarn_qtn_mirror_get_mirror_status("ledd", &word), -1);
    EXPECT_EQ(tarn_qtn_mirror_get_telnet_status("ledd", &word, &word), -1);
    EXPECT_EQ(word, kUntouched);
    EXPECT_THAT(platform.traceTexts(),
                ElementsAre("fail to KorIilExecute(), err = BUSY", "fail to KorIilExecute(), err = TIMEOUT"));
    EXPECT_EQ(platform.traces()[0].fileTag, "tarn_qtn_monitor_api");
    EXPECT_EQ(platform.traces()[0].level, 1u);
}

} // namespace
} // namespace tarn::test
