// Events while services restart, stop answering, or system calls fail.
#include "faults.h"
#include "support.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <memory>
#include <vector>

namespace host_test::event_faults
{
namespace
{

constexpr const char* kOtherService = "OTHER";

std::atomic<int> running{0}, mostRunning{0}, runs{0}; // of the handlers of these tests
std::atomic<bool> held{false};                        // a handler that waits does so while this is true

class EventFaultsTest : public HostTest
{
protected:
    void SetUp() override
    {
        running = mostRunning = runs = 0;
        held = false;
    }
};

std::uint32_t subscribe(KorIilEventHandler handler, const char* serviceId = kService, std::uint32_t evt = 1)
{
    return KorIilSubscribeEvent(kCaller, serviceId, evt, handler);
}

std::uint32_t cancel(KorIilEventHandler handler, const char* serviceId = kService, std::uint32_t evt = 1)
{
    return KorIilCancelEvent(kCaller, serviceId, evt, handler);
}

void count(const char*, std::uint32_t, const void*, std::uint32_t)
{
    ++runs;
}

void countToo(const char*, std::uint32_t, const void*, std::uint32_t)
{
    ++runs;
}

// Counts itself as running until it is no longer held.
void enterAndWait()
{
    const int now = ++running;
    if (now > mostRunning)
        mostRunning = now;
    while (held)
        sleepMilliseconds(1);
}

void leave()
{
    --running;
    ++runs;
}

// On a thread that is given up if it hangs. False if it does.
bool returnsInTime(const std::function<void()>& body)
{
    const auto done = std::make_shared<std::atomic<bool>>(false);
    std::thread(
        [=]
        {
            body();
            *done = true;
        })
        .detach();
    return eventually([&] { return done->load(); });
}

// --- Waiting for one another -------------------------------------------------------------------------------------------------

void waitAndCancelSelf(const char* serviceId, std::uint32_t evt, const void*, std::uint32_t)
{
    enterAndWait();
    cancel(waitAndCancelSelf, serviceId, evt);
    leave();
}

TEST_F(EventFaultsTest, AHandlerThatCancelsItselfMeetsARestartOfItsService)
{
    held = true;
    {
        RunningService service;
        ASSERT_EQ(subscribe(waitAndCancelSelf), KOR_IIL_OK);
        service.publish(1);
        ASSERT_TRUE(eventually([] { return running == 1; }));
    }
    RunningService restarted;
    ASSERT_EQ(subscribe(waitAndCancelSelf), KOR_IIL_OK) << "while it runs for the service's first life";
    restarted.publish(1);
    sleepMilliseconds(200);
    EXPECT_EQ(mostRunning, 1) << "one thread delivers the events of a service";
    held = false;
    EXPECT_TRUE(returnsInTime([] { cancel(waitAndCancelSelf); })) << "nor does it keep a third party waiting";
    EXPECT_TRUE(eventually([] { return running == 0; }));
}

void cancelTheOther(const char* serviceId, std::uint32_t, const void*, std::uint32_t)
{
    const bool isFirst = std::string(serviceId) == kService;
    ++running;
    while (running < 2 && runs == 0)
        sleepMilliseconds(1);
    cancel(cancelTheOther, isFirst ? kOtherService : kService);
    ++runs;
}

TEST_F(EventFaultsTest, HandlersOfTwoServicesCancelOneAnother)
{
    RunningService first, second(addOne, kOtherService);
    ASSERT_EQ(subscribe(cancelTheOther), KOR_IIL_OK);
    ASSERT_EQ(subscribe(cancelTheOther, kOtherService), KOR_IIL_OK);
    first.publish(1);
    second.publish(1);
    EXPECT_TRUE(eventually([] { return runs == 2; }));
    EXPECT_TRUE(returnsInTime(
        []
        {
            cancel(cancelTheOther);
            cancel(cancelTheOther, kOtherService);
        }));
}

TEST_F(EventFaultsTest, SubscribersOfAServiceThatDoesNotAnswerWaitTogether)
{
    const koriil::Descriptor listener = listenAs(kService, SOCK_SEQPACKET, 64); // accepts nobody
    RunningService healthy(addOne, kOtherService);
    std::atomic<int> returned{0};
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::thread> threads;
    for (std::uint32_t event = 1; event <= 8; ++event)
        threads.emplace_back(
            [&, event]
            {
                EXPECT_EQ(subscribe(count, kService, event), KOR_IIL_TIMEOUT);
                ++returned;
            });
    sleepMilliseconds(100);
    EXPECT_EQ(subscribe(count, kOtherService), KOR_IIL_OK);
    EXPECT_EQ(returned, 0) << "another service does not wait for them";
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(15)) << "3 seconds each";
    EXPECT_EQ(cancel(count, kOtherService), KOR_IIL_OK);
}

// --- System calls that fail --------------------------------------------------------------------------------------------------

TEST_F(EventFaultsTest, ASignalDoesNotEndASubscription)
{
    RunningService service;
    ASSERT_EQ(subscribe(count), KOR_IIL_OK);
    failNextPoll(EINTR);
    EXPECT_EQ(subscribe(countToo), KOR_IIL_OK);
    EXPECT_EQ(service.publish(1), 1u);
    EXPECT_TRUE(eventually([] { return runs == 2; }));
    failNextPoll(EINTR);
    EXPECT_EQ(cancel(count), KOR_IIL_OK);
    EXPECT_EQ(cancel(countToo), KOR_IIL_OK);
}

// Whether the connection can be kept (no memory for a moment) or is given up, the next subscription is a good one.
TEST_F(EventFaultsTest, ADeliveryThatFailsLeavesNoDeadConnection)
{
    for (const int error : {ENOMEM, EIO})
    {
        runs = 0;
        RunningService service;
        ASSERT_EQ(subscribe(count), KOR_IIL_OK);
        failNextDelivery(error);
        EXPECT_EQ(service.publish(1), 1u);
        const bool isKept = error == ENOMEM;
        EXPECT_TRUE(eventually(
            [&]
            {
                const std::uint32_t subscribers = service.publish(1);
                return isKept ? runs > 0 : subscribers == 0;
            }))
            << "error " << error;
        ASSERT_EQ(subscribe(countToo), KOR_IIL_OK);
        EXPECT_EQ(cancel(count), isKept ? KOR_IIL_OK : KOR_IIL_BAD_EVT);
        runs = 0;
        EXPECT_EQ(service.publish(1), 1u);
        EXPECT_TRUE(eventually([] { return runs > 0; })) << "error " << error;
        EXPECT_EQ(cancel(countToo), KOR_IIL_OK);
    }
}

} // namespace
} // namespace host_test::event_faults
