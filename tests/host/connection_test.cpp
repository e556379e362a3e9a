// A client's connections: kept between calls, closed after a failure, never shared with a child.
#include "support.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <functional>
#include <mutex>
#include <set>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

namespace host_test
{
namespace
{

using ConnectionTest = HostTest;

// The sockets that this process has open.
std::set<int> openSockets()
{
    std::set<int> sockets;
    for (int descriptor = 0; descriptor < 1024; ++descriptor)
    {
        int type = 0;
        socklen_t size = sizeof type;
        if (getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &size) == 0)
            sockets.insert(descriptor);
    }
    return sockets;
}

// On a thread that has no connections yet.
void inThreadOfItsOwn(const std::function<void()>& body)
{
    std::thread(body).join();
}

// Makes the first call of a thread, and returns the descriptor of its connection.
int connectionOfThisThread()
{
    const auto before = openSockets();
    EXPECT_EQ(callOnce(), KOR_IIL_OK);
    for (const int descriptor : openSockets())
        if (before.count(descriptor) == 0)
            return descriptor;
    ADD_FAILURE() << "no connection was opened";
    return -1;
}

double secondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

TEST_F(ConnectionTest, AThreadKeepsOneConnectionToAService)
{
    ServiceProcess service;
    ASSERT_EQ(callOnce(), KOR_IIL_OK);
    const auto after = openSockets();
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(callOnce(), KOR_IIL_OK);
    EXPECT_EQ(openSockets(), after);
}

TEST_F(ConnectionTest, AThreadThatEndsClosesItsOwn)
{
    ServiceProcess service;
    const auto before = openSockets();
    for (int i = 0; i < 5; ++i)
        std::thread([] { EXPECT_EQ(callOnce(), KOR_IIL_OK); }).join();
    EXPECT_EQ(openSockets(), before);
}

// Destroyed after this library's own objects of the thread, if it is constructed before them.
struct LateCaller
{
    ~LateCaller()
    {
        EXPECT_EQ(callOnce(), KOR_IIL_OK);
    }
    bool armed = false;
};

TEST_F(ConnectionTest, ACallAtTheVeryEndOfAThreadLeavesNothingOpen)
{
    ServiceProcess service;
    const auto before = openSockets();
    inThreadOfItsOwn(
        []
        {
            thread_local LateCaller late;
            late.armed = true;
            EXPECT_EQ(callOnce(), KOR_IIL_OK);
        });
    EXPECT_EQ(openSockets(), before);
}

TEST_F(ConnectionTest, ConnectionsEndAtAnExec)
{
    ServiceProcess service;
    inThreadOfItsOwn([] { EXPECT_NE(fcntl(connectionOfThisThread(), F_GETFD) & FD_CLOEXEC, 0); });
}

TEST_F(ConnectionTest, ARestartedServiceIsFoundAgain)
{
    for (int i = 0; i < 5; ++i)
    {
        RunningService service;
        EXPECT_EQ(callOnce(), KOR_IIL_OK);
        EXPECT_EQ(callOnce(), KOR_IIL_OK);
    }
    EXPECT_EQ(callOnce(), KOR_IIL_UNKNOWN_DST_ID);
}

TEST_F(ConnectionTest, AServiceKilledAndRestartedIsFoundAgain)
{
    for (int i = 0; i < 3; ++i)
    {
        ServiceProcess service;
        EXPECT_EQ(callOnce(), KOR_IIL_OK);
        service.kill();
        EXPECT_EQ(callOnce(), KOR_IIL_UNKNOWN_DST_ID);
    }
}

// The service dies with the request received: whether it executed the command is unknown, so it must not be sent to another.
TEST_F(ConnectionTest, ARequestThatMayHaveArrivedIsNotSentAgain)
{
    {
        ScriptedService first(
            [](ScriptedService& self)
            {
                Peer peer = self.welcome();
                peer.receiveHeader();
                unlink(socketOf(kService).c_str());
            });
        EXPECT_EQ(callOnce(), KOR_IIL_RX_FAIL);
    }
    std::atomic<int> requests{0};
    RunningService second(
        [&](const KorIilRequest& request, unsigned char* message)
        {
            ++requests;
            return addOne(request, message);
        });
    EXPECT_EQ(callOnce(), KOR_IIL_OK);
    EXPECT_EQ(requests, 1);
}

TEST_F(ConnectionTest, ALateReplyIsNotTheNextCalls)
{
    std::atomic<bool> late{true}, hasTimedOut{false};
    RunningService service(
        [&](const KorIilRequest& request, unsigned char* message)
        {
            if (late.exchange(false))
            {
                EXPECT_TRUE(eventually([&] { return hasTimedOut.load(); }));
            }
            return addOne(request, message);
        });

    EXPECT_EQ(callOnce(12, 1), KOR_IIL_TIMEOUT);
    hasTimedOut = true;
    for (std::uint32_t i = 0; i < 10; ++i) // of the same command and length, with other bytes
    {
        std::uint32_t words[3] = {i, i, i};
        ASSERT_EQ(KorIilExecute(kCaller, kService, kAmple, 1, sizeof words, words), KOR_IIL_OK);
        EXPECT_EQ(words[1], i + 0x01010101u);
    }
}

TEST_F(ConnectionTest, AWaitIsInSecondsAndTheRequestSentOnce)
{
    std::atomic<int> requests{0};
    RunningService service(
        [&](const KorIilRequest& request, unsigned char* message)
        {
            ++requests;
            return request.length == 1 ? addOne(request, message) : std::uint32_t{KOR_IIL_TIMEOUT}; // no reply
        });
    ASSERT_EQ(callOnce(1), KOR_IIL_OK) << "connects, so that the whole wait is the request's";
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(callOnce(12, 1), KOR_IIL_TIMEOUT);
    EXPECT_GE(secondsSince(start), 0.9);
    EXPECT_LT(secondsSince(start), kAmple / 2);
    EXPECT_EQ(requests, 2);
}

TEST_F(ConnectionTest, EachCallHasItsOwnWait)
{
    RunningService service(
        [](const KorIilRequest& request, unsigned char* message)
        {
            if (request.length == 1)
                return static_cast<std::uint32_t>(KOR_IIL_TIMEOUT);
            if (request.length == 2)
                sleepMilliseconds(1200);
            return addOne(request, message);
        });
    inThreadOfItsOwn(
        []
        {
            EXPECT_EQ(callOnce(12, kAmple), KOR_IIL_OK) << "the connection is kept, its long wait is not";
            const auto start = std::chrono::steady_clock::now();
            EXPECT_EQ(callOnce(1, 1), KOR_IIL_TIMEOUT);
            EXPECT_LT(secondsSince(start), kAmple / 2);

            EXPECT_TRUE(eventually([] { return callOnce(12, 1) == KOR_IIL_OK; })) << "a second may be too short";
            EXPECT_EQ(callOnce(2, kAmple), KOR_IIL_OK) << "nor is a short one kept";
        });
}

std::atomic<int> interruptions{0};

void countInterruption(int)
{
    ++interruptions;
}

// A timer signal that interrupts this process every 20 ms.
class Interruptions
{
public:
    Interruptions()
    {
        interruptions = 0;
        struct sigaction action = {};
        action.sa_handler = countInterruption; // no SA_RESTART: system calls fail with EINTR
        sigaction(SIGALRM, &action, &before_);
        itimerval timer = {{0, 20000}, {0, 20000}};
        setitimer(ITIMER_REAL, &timer, nullptr);
    }
    ~Interruptions()
    {
        const itimerval off = {};
        setitimer(ITIMER_REAL, &off, nullptr);
        sigaction(SIGALRM, &before_, nullptr);
    }
    Interruptions(const Interruptions&) = delete;
    Interruptions& operator=(const Interruptions&) = delete;

private:
    struct sigaction before_ = {};
};

TEST_F(ConnectionTest, SignalsNeitherEndNorLengthenAWait)
{
    ServiceProcess service(
        [](const KorIilRequest& request, unsigned char* message)
        {
            if (request.command == 2)
                return static_cast<std::uint32_t>(KOR_IIL_TIMEOUT);
            sleepMilliseconds(500);
            return addOne(request, message);
        });
    const Interruptions interrupting;
    EXPECT_EQ(callOnce(), KOR_IIL_OK);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(KorIilExecute(kCaller, kService, 1, 2, 0, nullptr), KOR_IIL_TIMEOUT);
    EXPECT_GE(secondsSince(start), 0.9);
    EXPECT_LT(secondsSince(start), kAmple / 2);
    EXPECT_GT(interruptions, 5);
}

TEST_F(ConnectionTest, NoCallRaisesSigpipe)
{
    struct sigaction before = {};
    struct sigaction standard = {};
    standard.sa_handler = SIG_DFL;
    sigaction(SIGPIPE, &standard, &before);
    {
        RunningService service;
        EXPECT_EQ(callOnce(), KOR_IIL_OK);
    }
    EXPECT_EQ(callOnce(), KOR_IIL_UNKNOWN_DST_ID); // finds the kept connection dead
    sigaction(SIGPIPE, &before, nullptr);
}

TEST_F(ConnectionTest, AChildHasConnectionsOfItsOwn)
{
    std::mutex mutex;
    std::set<std::uint32_t> processes;
    RunningService service(
        [&](const KorIilRequest& request, unsigned char* message)
        {
            const std::lock_guard<std::mutex> guard(mutex);
            processes.insert(request.processId);
            return addOne(request, message);
        });
    ASSERT_EQ(callOnce(), KOR_IIL_OK);

    Child child(
        []
        {
            for (int i = 0; i < 100; ++i)
                if (const std::uint32_t status = callOnce())
                    return static_cast<int>(status);
            return 0;
        });
    for (int i = 0; i < 100; ++i) // meanwhile, on the connection of which the child has a copy
        ASSERT_EQ(callOnce(), KOR_IIL_OK);
    const auto childsId = static_cast<std::uint32_t>(child.processId());
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(callOnce(), KOR_IIL_OK);
    EXPECT_EQ(processes, (std::set<std::uint32_t>{static_cast<std::uint32_t>(getpid()), childsId}));
}

TEST_F(ConnectionTest, AChildClosesWhatItInherited)
{
    ServiceProcess service;
    inThreadOfItsOwn(
        []
        {
            connectionOfThisThread();
            const std::size_t open = openSockets().size();
            Child child([=] { return callOnce() == KOR_IIL_OK && openSockets().size() == open ? 0 : 1; });
            EXPECT_EQ(child.wait(), 0) << "one of its own, and the inherited one closed";
        });
}

// Like a daemon that closes all descriptors: the number of the inherited one becomes that of another file.
TEST_F(ConnectionTest, AChildClosesNothingElse)
{
    ServiceProcess service;
    inThreadOfItsOwn(
        []
        {
            const int inherited = connectionOfThisThread();
            Child child(
                [=]
                {
                    int ends[2];
                    if (pipe(ends) != 0 || dup2(ends[0], inherited) != inherited)
                        return 1;
                    if (callOnce() != KOR_IIL_OK)
                        return 2;
                    struct stat status = {};
                    return fstat(inherited, &status) == 0 && S_ISFIFO(status.st_mode) ? 0 : 3;
                });
            EXPECT_EQ(child.wait(), 0);
        });
}

TEST_F(ConnectionTest, AChildsCopyDoesNotKeepAConnectionAlive)
{
    std::unique_ptr<Child> child;
    ScriptedService service(
        [](ScriptedService& self)
        {
            Peer peer = self.welcome();
            EXPECT_TRUE(peer.send(replyTo(peer.receiveHeader(), 0)));
            EXPECT_TRUE(peer.hasEnded());
        });
    std::thread(
        [&]
        {
            EXPECT_EQ(KorIilExecute(kCaller, kService, kAmple, 1, 0, nullptr), KOR_IIL_OK);
            child = std::make_unique<Child>([] { return pause(); });
        })
        .join(); // the thread's connection ends here, while the child lives
}

TEST_F(ConnectionTest, WithoutDescriptorsThereIsAStatusOfItsOwn)
{
    ServiceProcess service;
    Child child(
        []
        {
            rlimit limit = {};
            getrlimit(RLIMIT_NOFILE, &limit);
            const rlimit none = {3, limit.rlim_max};
            if (setrlimit(RLIMIT_NOFILE, &none) != 0)
                return 1;
            if (const std::uint32_t status = callOnce(); status != KOR_IIL_NO_MEM)
                return 100 + static_cast<int>(status);
            setrlimit(RLIMIT_NOFILE, &limit);
            return callOnce() == KOR_IIL_OK ? 0 : 2;
        });
    EXPECT_EQ(child.wait(), 0);
}

} // namespace
} // namespace host_test
