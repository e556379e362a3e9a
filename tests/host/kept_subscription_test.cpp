// Subscriptions that are kept over restarts of their service.
#include "support.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace host_test
{
namespace
{

std::atomic<int> events{0};

void countEvent(const char*, std::uint32_t, const void*, std::uint32_t)
{
    ++events;
}

// What a watcher has been told.
struct Notes
{
    static void add(void* context, const char* callerId, const char* serviceId, std::uint32_t evt, std::uint32_t status)
    {
        auto& notes = *static_cast<Notes*>(context);
        EXPECT_STREQ(callerId, kCaller);
        EXPECT_STREQ(serviceId, kService);
        const std::lock_guard<std::mutex> guard(notes.mutex);
        notes.taken.emplace_back(evt, status);
    }

    bool waitFor(const std::vector<std::pair<std::uint32_t, std::uint32_t>>& expected)
    {
        return eventually(
            [&]
            {
                const std::lock_guard<std::mutex> guard(mutex);
                return taken == expected;
            });
    }

    std::mutex mutex;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> taken; // event and status
};

class KeptSubscriptionTest : public HostTest
{
protected:
    void SetUp() override
    {
        events = 0;
    }

    std::uint32_t keep(std::uint32_t evt = 1, KorIilSubscriptionWatcher watcher = Notes::add)
    {
        return KorIilKeepSubscription(kCaller, kService, evt, countEvent, watcher, &notes_);
    }

    static std::uint32_t cancel(std::uint32_t evt = 1)
    {
        return KorIilCancelEvent(kCaller, kService, evt, countEvent);
    }

    Notes notes_;
};

TEST_F(KeptSubscriptionTest, ARestartIsToldAndTheEventsGoOn)
{
    auto service = std::make_unique<RunningService>();
    ASSERT_EQ(keep(), KOR_IIL_OK);
    EXPECT_EQ(keep(), KOR_IIL_CONFLICT_ID);
    service.reset();
    EXPECT_TRUE(notes_.waitFor({{1, KOR_IIL_RX_FAIL}}));
    service = std::make_unique<RunningService>();
    EXPECT_TRUE(notes_.waitFor({{1, KOR_IIL_RX_FAIL}, {1, KOR_IIL_OK}}));
    EXPECT_EQ(service->publish(1), 1u);
    EXPECT_TRUE(eventually([] { return events == 1; }));
    EXPECT_EQ(cancel(), KOR_IIL_OK);
    EXPECT_EQ(service->publish(1), 0u);
}

TEST_F(KeptSubscriptionTest, NobodyNeedsToWatch)
{
    auto service = std::make_unique<RunningService>();
    ASSERT_EQ(keep(1, nullptr), KOR_IIL_OK);
    ASSERT_EQ(keep(2, nullptr), KOR_IIL_OK);
    service.reset();
    service = std::make_unique<RunningService>();
    for (const std::uint32_t event : {1u, 2u})
        EXPECT_TRUE(eventually([&] { return service->publish(event) == 1; }));
    EXPECT_EQ(cancel(1), KOR_IIL_OK);
    EXPECT_EQ(cancel(2), KOR_IIL_OK);
}

TEST_F(KeptSubscriptionTest, OneThatIsLostCanBeCancelled)
{
    auto service = std::make_unique<RunningService>();
    ASSERT_EQ(keep(), KOR_IIL_OK);
    service.reset();
    EXPECT_TRUE(notes_.waitFor({{1, KOR_IIL_RX_FAIL}}));
    EXPECT_EQ(cancel(), KOR_IIL_OK);
    EXPECT_EQ(cancel(), KOR_IIL_BAD_EVT);
    service = std::make_unique<RunningService>();
    sleepMilliseconds(1200); // longer than the pause between two attempts
    EXPECT_EQ(service->publish(1), 0u);
    EXPECT_TRUE(notes_.waitFor({{1, KOR_IIL_RX_FAIL}}));
}

TEST_F(KeptSubscriptionTest, AnEventThatIsNoLongerThereEndsIt)
{
    auto service = std::make_unique<RunningService>();
    ASSERT_EQ(keep(5), KOR_IIL_OK);
    service = nullptr;
    service = std::make_unique<RunningService>(addOne, kService, 4);
    EXPECT_TRUE(notes_.waitFor({{5, KOR_IIL_RX_FAIL}, {5, KOR_IIL_UNKNOWN_EVT}}));
    EXPECT_EQ(cancel(5), KOR_IIL_BAD_EVT);
}

// A watcher runs on the delivering thread, and may do what a handler may.
TEST_F(KeptSubscriptionTest, AWatcherCancels)
{
    static std::atomic<std::uint32_t> status{KOR_IIL_ERR};
    const auto cancelIt = [](void*, const char*, const char*, std::uint32_t evt, std::uint32_t) { status = cancel(evt); };
    {
        RunningService service;
        ASSERT_EQ(keep(1, cancelIt), KOR_IIL_OK);
    }
    EXPECT_TRUE(eventually([] { return status == KOR_IIL_OK; }));
    EXPECT_EQ(cancel(), KOR_IIL_BAD_EVT);
}

TEST_F(KeptSubscriptionTest, WhatCannotBeMadeIsNotKept)
{
    EXPECT_EQ(keep(), KOR_IIL_UNKNOWN_DST_ID);
    EXPECT_EQ(cancel(), KOR_IIL_BAD_EVT);
    EXPECT_EQ(KorIilKeepSubscription(kCaller, kService, 1, nullptr, nullptr, nullptr), KOR_IIL_BAD_PARAM);
}

} // namespace
} // namespace host_test
