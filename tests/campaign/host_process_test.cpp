// What programs do to the library that is linked into them: signals, forks, cancelled threads, closed descriptors.
#include "support.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>

#include <fcntl.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace campaign
{
namespace
{

class HostProcessTest : public CampaignTest
{
    const HangGuard guard_{duration() + std::chrono::seconds(2 * kAmple), [] { return "a program of this process"; }};
};

// --- Signals -----------------------------------------------------------------------------------------------------------------

void interrupt(int)
{
}

// Sends SIGPROF to every thread of this process a thousand times a second. System calls are not restarted.
class SignalStorm
{
public:
    SignalStorm()
    {
        struct sigaction action = {};
        action.sa_handler = interrupt;
        sigaction(SIGPROF, &action, nullptr);
        thread_ = std::thread([this] { run(); });
    }
    ~SignalStorm()
    {
        done_ = true;
        thread_.join();
    }
    SignalStorm(const SignalStorm&) = delete;
    SignalStorm& operator=(const SignalStorm&) = delete;

private:
    void run()
    {
        const pid_t self = gettid();
        while (!done_)
        {
            for (const auto& task : std::filesystem::directory_iterator("/proc/self/task"))
                if (const pid_t thread = std::atoi(task.path().filename().c_str()); thread != self)
                    syscall(SYS_tgkill, getpid(), thread, SIGPROF);
            sleepMilliseconds(1);
        }
    }

    std::atomic<bool> done_{false};
    std::thread thread_;
};

std::atomic<std::uint32_t> lastEvent{0};
std::atomic<std::uint32_t> lostEvents{0};

void receiveNumbered(const char*, std::uint32_t, const void* data, std::uint32_t)
{
    std::uint32_t number;
    std::memcpy(&number, data, sizeof number);
    lostEvents += number - lastEvent - 1;
    lastEvent = number;
}

TEST_F(HostProcessTest, AThousandSignalsASecondLoseNoCallNoEventAndNoSubscription)
{
    RunningService service;
    ASSERT_EQ(KorIilSubscribeEvent("signals", kService, 1, receiveNumbered), KOR_IIL_OK);
    std::atomic<std::uint32_t> published{0};
    std::atomic<std::uint32_t> sent{0};
    {
        const SignalStorm storm;
        const Repeating calling(2, [] { EXPECT_EQ(callSum(), KOR_IIL_OK); });
        const Repeating subscribing(1,
                                    []
                                    {
                                        EXPECT_EQ(KorIilSubscribeEvent("signals", kService, 2, ignoreEvent), KOR_IIL_OK);
                                        EXPECT_EQ(KorIilCancelEvent("signals", kService, 2, ignoreEvent), KOR_IIL_OK);
                                    });
        const Repeating publishing(1,
                                   [&]
                                   {
                                       const std::uint32_t number = ++published;
                                       std::uint32_t subscribers = 0;
                                       EXPECT_EQ(KorIilServicePublish(service.get(), 1, &number, sizeof number, &subscribers),
                                                 KOR_IIL_OK);
                                       sent += subscribers;
                                       sleepMilliseconds(1);
                                   });
        std::this_thread::sleep_for(duration());
    }
    EXPECT_EQ(sent, published);
    EXPECT_TRUE(eventually([&] { return lastEvent == sent; })) << lastEvent;
    EXPECT_EQ(lostEvents, 0u);
    EXPECT_EQ(KorIilCancelEvent("signals", kService, 1, receiveNumbered), KOR_IIL_OK);
    std::printf("counted: %u events between signals\n", static_cast<unsigned>(sent));
}

// --- Forks -------------------------------------------------------------------------------------------------------------------

int callAndSubscribe()
{
    for (int i = 0; i < 3; ++i)
        if (callSum() != KOR_IIL_OK)
            return 1;
    if (KorIilSubscribeEvent("child", kService, 1, ignoreEvent) != KOR_IIL_OK)
        return 2;
    return KorIilCancelEvent("child", kService, 1, ignoreEvent) == KOR_IIL_OK ? 0 : 3;
}

TEST_F(HostProcessTest, ForkedChildrenCallAndDoNotDisturbTheirParent)
{
    Peer service({"serve", directory() + "/ledger"});
    ASSERT_EQ(service.line(), "ready");
    ASSERT_EQ(KorIilSubscribeEvent("parent", kService, 1, ignoreEvent), KOR_IIL_OK);
    int children = 0;
    {
        const Repeating calling(2, [] { EXPECT_EQ(callSum(), KOR_IIL_OK); });
        const auto end = std::chrono::steady_clock::now() + duration();
        while (std::chrono::steady_clock::now() < end)
        {
            ASSERT_EQ(callSum(), KOR_IIL_OK); // the child inherits this connection
            const pid_t child = fork();
            if (child == 0)
                _exit(callAndSubscribe());
            int status = 0;
            ASSERT_EQ(waitpid(child, &status, 0), child);
            ASSERT_EQ(status, 0) << "child " << children;
            ++children;
        }
    }
    EXPECT_EQ(KorIilCancelEvent("parent", kService, 1, ignoreEvent), KOR_IIL_OK);
    EXPECT_EQ(service.finish(), 0);
    std::printf("counted: %d children\n", children);
}

// --- Cancelled threads -------------------------------------------------------------------------------------------------------

std::uint32_t answerSlowly(void*, const KorIilRequest* request, void* message)
{
    sleepMilliseconds(1);
    return answerSum(nullptr, request, message);
}

void* callUntilCancelled(void*)
{
    for (;;)
    {
        Sum sum = {1, 1};
        KorIilExecute("cancelled", kService, kAmple, kAdd, sizeof sum, &sum);
        KorIilSubscribeEvent("cancelled", kService, 1, ignoreEvent);
        KorIilCancelEvent("cancelled", kService, 1, ignoreEvent);
        pthread_testcancel();
    }
}

TEST_F(HostProcessTest, CancelledThreadsLeaveNothingBehind)
{
    std::mt19937 random(seed());
    const RunningService service(answerSlowly);
    ASSERT_EQ(callSum(), KOR_IIL_OK);
    const std::size_t descriptors = openDescriptors();
    const auto end = std::chrono::steady_clock::now() + duration();
    int cancelled = 0;
    for (; std::chrono::steady_clock::now() < end; ++cancelled)
    {
        pthread_t thread;
        ASSERT_EQ(pthread_create(&thread, nullptr, callUntilCancelled, nullptr), 0);
        sleepMilliseconds(static_cast<int>(random() % 4));
        ASSERT_EQ(pthread_cancel(thread), 0);
        ASSERT_EQ(pthread_join(thread, nullptr), 0);
        EXPECT_EQ(callSum(), KOR_IIL_OK);
    }
    KorIilCancelEvent("cancelled", kService, 1, ignoreEvent); // one may have been cancelled before it did so itself
    EXPECT_EQ(KorIilSubscribeEvent("campaign", kService, 1, ignoreEvent), KOR_IIL_OK);
    EXPECT_EQ(KorIilCancelEvent("campaign", kService, 1, ignoreEvent), KOR_IIL_OK);
    EXPECT_TRUE(eventually([&] { return openDescriptors() <= descriptors; }))
        << openDescriptors() << ", before " << descriptors;
    std::printf("counted: %d threads cancelled\n", cancelled);
}

// --- Closed descriptors ------------------------------------------------------------------------------------------------------

TEST_F(HostProcessTest, AProgramWithoutStandardDescriptorsCallsAndTraces)
{
    RunningService service;
    const Repeating publishing(1,
                               [&]
                               {
                                   KorIilServicePublish(service.get(), 1, nullptr, 0, nullptr);
                                   sleepMilliseconds(1);
                               });
    unsetenv("KORIIL_TRACE_FILE"); // traces go to standard error
    for (unsigned closed = 1; closed < 8; ++closed)
    {
        std::vector<std::string> arguments = {"closed"};
        for (unsigned number = 0; number < 3; ++number)
            if ((closed >> number & 1) != 0)
                arguments.push_back(std::to_string(number));
        Peer peer(arguments);
        EXPECT_EQ(peer.finish(), 0) << "closed: " << closed;
    }
}

// As a program does that becomes a daemon.
TEST_F(HostProcessTest, AProgramThatClosesEveryDescriptorCanCallAgain)
{
    Peer service({"serve", directory() + "/ledger"});
    ASSERT_EQ(service.line(), "ready");
    const pid_t child = fork();
    if (child == 0)
    {
        for (int i = 0; i < 20; ++i)
        {
            const bool worked = callAndSubscribe() == 0;
            const bool subscribed = KorIilSubscribeEvent("daemon", kService, 1, ignoreEvent) == KOR_IIL_OK;
            if (!worked || !subscribed)
                _exit(i + 1);
            close_range(3, ~0u, 0);
            for (int file = 0; file < i; ++file) // each time a connection gets a greater number: that of the trace file, once
                EXPECT_GE(open("/dev/null", O_RDONLY | O_CLOEXEC), 0);
            callSum();                                             // may find its connection closed
            KorIilCancelEvent("daemon", kService, 1, ignoreEvent); // the same
            if (callSum() != KOR_IIL_OK)
                _exit(i + 101);
        }
        _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0) << "exit code " << WEXITSTATUS(status);
    EXPECT_EQ(service.finish(), 0);
}

} // namespace
} // namespace campaign
