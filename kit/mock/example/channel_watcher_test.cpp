// The channel watcher's unit test with GoogleTest.
#include "channel_watcher.h"

#include "kor_iil_mock.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>

namespace
{

constexpr std::uint32_t kGetChannel = 2;
constexpr std::uint32_t kProxyLength = 9376;
constexpr std::uint32_t kInterface = 0;  // offset of the interface name, 65 bytes
constexpr std::uint32_t kChannel = 1152; // offset of the channel in the reply
constexpr std::uint32_t kChannelEvent = 2;
constexpr std::uint32_t kTimeout = 7;

class ChannelWatcher : public testing::Test
{
protected:
    void start(std::uint32_t channel)
    {
        platform.expectSubscribe("TARN", kChannelEvent).caller("channel_watcher");
        expectRead().replyWord(kChannel, channel);
        ASSERT_EQ(channelWatcherStart("wifi0"), 0);
    }

    tarn::mock::Call expectRead()
    {
        return platform.expect("QTN_RPC_PROXY", kGetChannel, kProxyLength)
            .caller("channel_watcher")
            .text(kInterface, 65, "wifi0")
            .restZero();
    }

    tarn::mock::Platform platform;
};

TEST_F(ChannelWatcher, ReadsTheChannelAtItsStart)
{
    start(36);
    EXPECT_EQ(channelWatcherChannel(), 36U);
}

TEST_F(ChannelWatcher, ReadsItAgainWhenItChanges)
{
    start(36);
    expectRead().replyWord(kChannel, 100);
    EXPECT_EQ(platform.deliver("TARN", kChannelEvent), 1U);
    EXPECT_EQ(channelWatcherChannel(), 100U);
}

TEST_F(ChannelWatcher, KnowsNoChannelWhenTheModuleDoesNotAnswer)
{
    start(36);
    expectRead().fail(kTimeout);
    platform.deliver("TARN", kChannelEvent);
    EXPECT_EQ(channelWatcherChannel(), 0U);
    EXPECT_THAT(platform.traceTexts(), testing::ElementsAre("fail to KorIilExecute(), err = TIMEOUT"));
}

TEST_F(ChannelWatcher, KnowsNoChannelWhenTheModuleRefuses)
{
    start(36);
    expectRead().replyWord(kChannel, 100).status(static_cast<std::uint32_t>(-19));
    platform.deliver("TARN", kChannelEvent);
    EXPECT_EQ(channelWatcherChannel(), 0U);
}

TEST_F(ChannelWatcher, DoesNotStartWithoutASubscription)
{
    platform.expectSubscribe("TARN", kChannelEvent).fail(kTimeout);
    EXPECT_EQ(channelWatcherStart("wifi0"), -1);
}

TEST_F(ChannelWatcher, HearsNothingOnceItIsStopped)
{
    start(36);
    platform.expectCancel("TARN", kChannelEvent);
    EXPECT_EQ(channelWatcherStop(), 0);
    EXPECT_EQ(platform.deliver("TARN", kChannelEvent), 0U);
}

} // namespace
