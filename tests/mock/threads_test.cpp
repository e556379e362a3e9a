// A component may call from any thread.
#include "kor_iil_mock.hpp"

#include "kor_iil.h"
#include "tarn_api.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace
{

TEST(Threads, CallTraceAndReceiveAtTheSameTime)
{
    constexpr unsigned kThreads = 4;
    constexpr unsigned kCalls = 200;
    tarn::mock::Platform platform;
    for (unsigned i = 0; i < kThreads * kCalls; ++i)
        platform.expect("TARN", 0, 12).restZero().replyWord(4, 5);

    std::atomic<unsigned> good{0};
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < kThreads; ++i)
        threads.emplace_back(
            [&good]
            {
                for (unsigned call = 0; call < kCalls; ++call)
                {
                    std::uint32_t level = 0;
                    good += TarnGetLogLevel("ledd", &level) == 0 && level == 5 ? 1 : 0;
                    TarnGetLogLevel("ledd", nullptr);
                }
            });
    for (unsigned i = 0; i < kCalls; ++i)
        platform.deliver("TARN", 1);
    for (std::thread& thread : threads)
        thread.join();

    EXPECT_EQ(good.load(), kThreads * kCalls);
    EXPECT_EQ(KorIilMockTraceCount(), kThreads * kCalls);
}

TEST(Threads, CallInTheirOwnOrderWhatMayComeInAny)
{
    constexpr unsigned kThreads = 4;
    constexpr unsigned kCalls = 50;
    tarn::mock::Platform platform;
    platform.expect("TarnGetLogLevel").anyTimes().reply("level", 5);
    for (unsigned i = 1; i <= kThreads; ++i)
        platform.expect("TarnGetRadioNeighboringStatus").with("radioId", i).times(kCalls).inAnyOrder().reply("status", 10 + i);

    std::atomic<unsigned> good{0};
    std::vector<std::thread> threads;
    for (unsigned i = 1; i <= kThreads; ++i)
        threads.emplace_back(
            [&good, i]
            {
                for (unsigned call = 0; call < kCalls; ++call)
                {
                    std::uint32_t level = 0;
                    std::uint32_t status = 0;
                    good += TarnGetLogLevel("ledd", &level) == 0 && level == 5 ? 1 : 0;
                    good += TarnGetRadioNeighboringStatus("ledd", i, &status) == 0 && status == 10 + i ? 1 : 0;
                }
            });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(good.load(), 2 * kThreads * kCalls);
}

} // namespace
