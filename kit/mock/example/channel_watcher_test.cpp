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
        platform_.expectSubscribe("TARN", kChannelEvent).caller("channel_watcher");
        expectRead().replyWord(kChannel, channel);
        ASSERT_EQ(channelWatcherStart("wifi0"), 0);
    }

    tarn::mock::Call expectRead()
    {
        return platform_.expect("QTN_RPC_PROXY", kGetChannel, kProxyLength)
            .caller("channel_watcher")
            .text(kInterface, 65, "wifi0")
            .restZero();
    }

    tarn::mock::Platform platform_;
};

TEST_F(ChannelWatcher, ReadsTheChannelAtItsStart)
{
    start(36);
    EXPECT_EQ(channelWatcherChannel(), 36u);
}

TEST_F(ChannelWatcher, ReadsItAgainWhenItChanges)
{
    start(36);
    expectRead().replyWord(kChannel, 100);
    EXPECT_EQ(platform_.deliver("TARN", kChannelEvent), 1u);
    EXPECT_EQ(channelWatcherChannel(), 100u);
}

TEST_F(ChannelWatcher, KnowsNoChannelWhenTheModuleDoesNotAnswer)
{
    start(36);
    expectRead().fail(kTimeout);
    platform_.deliver("TARN", kChannelEvent);
    EXPECT_EQ(channelWatcherChannel(), 0u);
    EXPECT_THAT(platform_.traceTexts(), testing::ElementsAre("fail to KorIilExecute(), err = TIMEOUT"));
}

TEST_F(ChannelWatcher, KnowsNoChannelWhenTheModuleRefuses)
{
    start(36);
    expectRead().replyWord(kChannel, 100).status(static_cast<std::uint32_t>(-19));
    platform_.deliver("TARN", kChannelEvent);
    EXPECT_EQ(channelWatcherChannel(), 0u);
}

TEST_F(ChannelWatcher, DoesNotStartWithoutASubscription)
{
    platform_.expectSubscribe("TARN", kChannelEvent).fail(kTimeout);
    EXPECT_EQ(channelWatcherStart("wifi0"), -1);
}

TEST_F(ChannelWatcher, HearsNothingOnceItIsStopped)
{
    start(36);
    platform_.expectCancel("TARN", kChannelEvent);
    EXPECT_EQ(channelWatcherStop(), 0);
    EXPECT_EQ(platform_.deliver("TARN", kChannelEvent), 0u);
}

} // namespace
