// A service whose handler several threads call, and what a service counts.
#include "support.h"

#include <atomic>
#include <cstring>
#include <ctime>
#include <vector>

#include <unistd.h>

namespace host_test
{
namespace
{

using ThreadsTest = HostTest;
using CountersTest = HostTest;

// A service with this many threads.
class ThreadedService
{
public:
    ThreadedService(std::uint32_t threads, KorIilRequestHandler handler, void* context)
    {
        EXPECT_EQ(KorIilServiceOpen(kService, 5, handler, context, &service_), KOR_IIL_OK);
        EXPECT_EQ(KorIilServiceSetThreads(service_, threads), KOR_IIL_OK);
        loop_ = std::thread([this] { EXPECT_EQ(KorIilServiceRun(service_), KOR_IIL_OK); });
    }
    ~ThreadedService()
    {
        KorIilServiceStop(service_);
        loop_.join();
        EXPECT_EQ(KorIilServiceSetThreads(service_, 1), KOR_IIL_BAD_PARAM) << "it has been run";
        KorIilServiceClose(service_);
    }
    ThreadedService(const ThreadedService&) = delete;
    ThreadedService& operator=(const ThreadedService&) = delete;

private:
    KorIilService* service_ = nullptr;
    std::thread loop_;
};

TEST_F(ThreadsTest, ThereAreOneTo64)
{
    KorIilService* service = nullptr;
    ASSERT_EQ(KorIilServiceOpen(kService, 0, refuseRequest, nullptr, &service), KOR_IIL_OK);
    EXPECT_EQ(KorIilServiceSetThreads(service, 0), KOR_IIL_BAD_PARAM);
    EXPECT_EQ(KorIilServiceSetThreads(service, 65), KOR_IIL_BAD_PARAM);
    EXPECT_EQ(KorIilServiceSetThreads(service, 64), KOR_IIL_OK);
    EXPECT_EQ(KorIilServiceSetThreads(nullptr, 1), KOR_IIL_BAD_PARAM);
    KorIilServiceClose(service);
}

// Each handler waits until the others have been called too.
TEST_F(ThreadsTest, AsManyRequestsAreServedAtTheSameTime)
{
    constexpr int kThreads = 4;
    std::atomic<int> together{0};
    const auto meet = [](void* context, const KorIilRequest*, void*) -> std::uint32_t
    {
        auto& arrived = *static_cast<std::atomic<int>*>(context);
        ++arrived;
        return eventually([&] { return arrived >= kThreads; }) ? KOR_IIL_OK : KOR_IIL_ERR;
    };
    const ThreadedService service(kThreads, meet, &together);
    std::vector<std::thread> callers;
    for (int i = 0; i < kThreads; ++i)
        callers.emplace_back([] { EXPECT_EQ(KorIilExecute(kCaller, kService, kAmple, 1, 0, nullptr), KOR_IIL_OK); });
    for (std::thread& caller : callers)
        caller.join();
}

TEST_F(ThreadsTest, RequestsOfOneConnectionStayInOrder)
{
    std::vector<std::uint32_t> commands; // not locked: one at a time
    const auto note = [](void* context, const KorIilRequest* request, void*) -> std::uint32_t
    {
        static_cast<std::vector<std::uint32_t>*>(context)->push_back(request->command);
        if (request->command % 3 == 0)
            sleepMilliseconds(2);
        return KOR_IIL_OK;
    };
    const ThreadedService service(8, note, &commands);
    Peer peer = Peer::connectTo(kService);
    peer.greet();
    constexpr std::uint32_t kRequests = 60;
    for (std::uint32_t sent = 0, answered = 0; answered < kRequests;)
    {
        for (; sent < kRequests && sent < answered + 6; ++sent) // as many as the queue takes in any case
            ASSERT_TRUE(peer.send(requestHeader(sent, 0)));
        EXPECT_EQ(peer.receiveHeader().command, answered++);
    }
    ASSERT_EQ(commands.size(), kRequests);
    for (std::uint32_t i = 0; i < kRequests; ++i)
        EXPECT_EQ(commands[i], i);
}

TEST_F(ThreadsTest, ManyCallersComeAndGo)
{
    const auto echo = [](void*, const KorIilRequest* request, void* message) -> std::uint32_t
    { return addOne(*request, static_cast<unsigned char*>(message)); };
    const ThreadedService service(3, echo, nullptr);
    std::vector<std::thread> callers;
    for (int i = 0; i < 8; ++i)
        callers.emplace_back(
            []
            {
                for (int round = 0; round < 20; ++round)
                    std::thread([] { EXPECT_EQ(callOnce(), KOR_IIL_OK); }).join();
            });
    for (std::thread& caller : callers)
        caller.join();
}

TEST_F(CountersTest, AServiceCountsWhatItDoes)
{
    const std::time_t before = std::time(nullptr);
    RunningService service;
    KorIilServiceCounters counters = {};
    ASSERT_EQ(KorIilAskCounters(kService, kAmple, &counters), KOR_IIL_OK);
    EXPECT_EQ(counters.processId, static_cast<std::uint64_t>(getpid()));
    EXPECT_GE(counters.openedAt, static_cast<std::uint64_t>(before));
    EXPECT_LE(counters.openedAt, static_cast<std::uint64_t>(std::time(nullptr)));
    EXPECT_EQ(counters.connections, 1u);
    EXPECT_EQ(counters.subscriptions, 0u);
    EXPECT_EQ(counters.calls, 0u);
    EXPECT_EQ(counters.refusals, 0u);
    EXPECT_EQ(counters.drops, 0u);

    ASSERT_EQ(KorIilSubscribeEvent(kCaller, kService, 1, ignoreEvent), KOR_IIL_OK);
    ASSERT_EQ(KorIilSubscribeEvent(kCaller, kService, 2, ignoreEvent), KOR_IIL_OK);
    EXPECT_EQ(KorIilSubscribeEvent(kCaller, kService, 6, ignoreEvent), KOR_IIL_UNKNOWN_EVT);
    EXPECT_EQ(callOnce(), KOR_IIL_OK);
    EXPECT_EQ(KorIilExecute(kCaller, kService, kAmple, 2, 0, nullptr), KOR_IIL_UNKNOWN_CMD);
    Peer peer = Peer::connectTo(kService);
    peer.greet();
    koriil::PacketHeader late = requestHeader(1, 0);
    late.wait = 1;
    late.began -= 2000;
    ASSERT_TRUE(peer.send(late));
    ASSERT_TRUE(
        eventually([&] { return KorIilAskCounters(kService, kAmple, &counters) == KOR_IIL_OK && counters.drops == 1; }));
    EXPECT_EQ(counters.connections, 3u) << "this thread's, the one for events, and the peer's";
    EXPECT_EQ(counters.subscriptions, 2u);
    EXPECT_EQ(counters.calls, 2u) << "the handler's own refusal is a call";
    EXPECT_EQ(counters.refusals, 1u);
    EXPECT_EQ(KorIilCancelEvent(kCaller, kService, 1, ignoreEvent), KOR_IIL_OK);
    EXPECT_EQ(KorIilCancelEvent(kCaller, kService, 2, ignoreEvent), KOR_IIL_OK);
}

TEST_F(CountersTest, TheyAreAskedLikeACall)
{
    KorIilServiceCounters counters = {};
    EXPECT_EQ(KorIilAskCounters(nullptr, kAmple, &counters), KOR_IIL_BAD_PARAM);
    EXPECT_EQ(KorIilAskCounters(kService, 0, &counters), KOR_IIL_BAD_PARAM);
    EXPECT_EQ(KorIilAskCounters(kService, kAmple, nullptr), KOR_IIL_BAD_PARAM);
    EXPECT_EQ(KorIilAskCounters("a/b", kAmple, &counters), KOR_IIL_UNKNOWN_DST_ID);
    EXPECT_EQ(KorIilAskCounters(kService, kAmple, &counters), KOR_IIL_UNKNOWN_DST_ID);
}

} // namespace
} // namespace host_test
