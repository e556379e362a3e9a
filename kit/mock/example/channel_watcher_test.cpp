// The channel watcher's unit test with GoogleTest.
#include "channel_watcher.h"

#include "kor_iil_mock.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace
{

constexpr char kChannelEvent[] = "EVT_RADIO_OPR_CHANNEL_CHANGED";
constexpr std::uint32_t kTimeout = 7;

class ChannelWatcher : public testing::Test
{
protected:
    void start(std::uint32_t channel)
    {
        platform_.expectSubscribe(kChannelEvent).caller("channel_watcher");
        expectRead().reply("channel", channel);
        ASSERT_EQ(channelWatcherStart("wifi0"), 0);
    }

    tarn::mock::Call expectRead()
    {
        return platform_.expect("tarn_qcsapi_wifi_get_channel").caller("channel_watcher").with("intf_name", "wifi0");
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
    expectRead().reply("channel", 100);
    EXPECT_EQ(platform_.event(kChannelEvent).deliver(), 1u);
    EXPECT_EQ(channelWatcherChannel(), 100u);
}

TEST_F(ChannelWatcher, KnowsNoChannelWhenTheModuleDoesNotAnswer)
{
    start(36);
    expectRead().fail(kTimeout);
    platform_.event(kChannelEvent).deliver();
    EXPECT_EQ(channelWatcherChannel(), 0u);
    EXPECT_EQ(platform_.traceTexts(), std::vector<std::string>{"fail to KorIilExecute(), err = TIMEOUT"});
}

TEST_F(ChannelWatcher, KnowsNoChannelWhenTheModuleRefuses)
{
    start(36);
    expectRead().reply("channel", 100).status(-19);
    platform_.event(kChannelEvent).deliver();
    EXPECT_EQ(channelWatcherChannel(), 0u);
}

TEST_F(ChannelWatcher, DoesNotStartWithoutASubscription)
{
    platform_.expectSubscribe(kChannelEvent).fail(kTimeout);
    EXPECT_EQ(channelWatcherStart("wifi0"), -1);
}

TEST_F(ChannelWatcher, HearsNothingOnceItIsStopped)
{
    start(36);
    platform_.expectCancel(kChannelEvent);
    EXPECT_EQ(channelWatcherStop(), 0);
    EXPECT_EQ(platform_.event(kChannelEvent).deliver(), 0u);
}

} // namespace
