// Services under load, under restarts, and in a process where memory, files or children are not as they should be.
#include "support.h"

#include <atomic>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace host_test
{
namespace
{

class ServiceFaultsTest : public HostTest
{
protected:
    static std::uint32_t open(KorIilService*& service)
    {
        return KorIilServiceOpen(kService, 5, refuseRequest, nullptr, &service);
    }

    std::string lockFile() const
    {
        return directory() + "/" + kService + ".lock";
    }
};

// --- Its name ----------------------------------------------------------------------------------------------------------------

TEST_F(ServiceFaultsTest, ANameIsKeptThoughItsLockFileIsRemoved)
{
    RunningService first;
    ASSERT_EQ(unlink(lockFile().c_str()), 0);
    KorIilService* second = nullptr;
    EXPECT_EQ(open(second), KOR_IIL_CONFLICT_ID);
    EXPECT_EQ(callOnce(), KOR_IIL_OK);
}

// Where another process has the lock for the moment that it takes to find the service running.
TEST_F(ServiceFaultsTest, ANameIsNotGivenUpWhileItsSocketIsThere)
{
    RunningService service;
    ASSERT_EQ(unlink(lockFile().c_str()), 0);
    const koriil::Descriptor other(::open(lockFile().c_str(), O_RDWR | O_CREAT, 0600));
    ASSERT_EQ(flock(other.get(), LOCK_EX | LOCK_NB), 0);
    sleepMilliseconds(1500); // it looks after its files once a second
    EXPECT_EQ(callOnce(), KOR_IIL_OK);
    ASSERT_EQ(flock(other.get(), LOCK_UN), 0);
    EXPECT_TRUE(eventually(
        [&]
        {
            const bool isTaken = flock(other.get(), LOCK_EX | LOCK_NB) != 0;
            if (!isTaken)
                flock(other.get(), LOCK_UN);
            return isTaken;
        }));
}

TEST_F(ServiceFaultsTest, ASocketThatIsRemovedIsMadeAgain)
{
    RunningService service;
    ASSERT_EQ(unlink(lockFile().c_str()), 0);
    ASSERT_EQ(unlink(socketOf(kService).c_str()), 0);
    EXPECT_TRUE(eventually([] { return callOnce() == KOR_IIL_OK; }));
    EXPECT_EQ(access(lockFile().c_str(), F_OK), 0);
}

TEST_F(ServiceFaultsTest, ANameThatIsLostIsLeftToItsNewOwner)
{
    KorIilService *first = nullptr, *second = nullptr;
    ASSERT_EQ(open(first), KOR_IIL_OK);
    ASSERT_EQ(unlink(lockFile().c_str()), 0);
    ASSERT_EQ(unlink(socketOf(kService).c_str()), 0);
    ASSERT_EQ(open(second), KOR_IIL_OK);
    std::thread loop([=] { KorIilServiceRun(second); });
    std::atomic<bool> hasEnded{false};
    std::thread lost(
        [&, first]
        {
            EXPECT_EQ(KorIilServiceRun(first), KOR_IIL_CONFLICT_ID);
            hasEnded = true;
        });
    EXPECT_TRUE(eventually([&] { return hasEnded.load(); })) << "it looks after its files once a second";
    KorIilServiceStop(first);
    lost.join();
    KorIilServiceClose(first);
    EXPECT_EQ(callOnce(), KOR_IIL_UNSUPPORT) << "the second one's socket is still there";
    KorIilServiceStop(second);
    loop.join();
    KorIilServiceClose(second);
}

TEST_F(ServiceFaultsTest, AChildThatOutlivesItLeavesNothingOfItBehind)
{
    ServiceProcess service(
        [](const KorIilRequest& request, unsigned char* message)
        {
            const int child = request.command == 2 ? fork() : -1;
            if (child == 0)
                for (;;)
                    pause();
            std::memcpy(message, &child, sizeof child);
            return static_cast<std::uint32_t>(KOR_IIL_OK);
        });
    int child = 0;
    ASSERT_EQ(KorIilExecute(kCaller, kService, kAmple, 2, sizeof child, &child), KOR_IIL_OK);
    ASSERT_GT(child, 0);
    service.kill();
    EXPECT_TRUE(eventually([] { return callOnce(12, 2) == KOR_IIL_UNKNOWN_DST_ID; }));
    KorIilService* successor = nullptr;
    EXPECT_EQ(open(successor), KOR_IIL_OK);
    KorIilServiceClose(successor);
    kill(child, SIGKILL);
}

// --- Its load ----------------------------------------------------------------------------------------------------------------

// A service that can be occupied with one request, and counts the others that it runs.
class OccupiedService
{
public:
    OccupiedService() : service_([this](const KorIilRequest& request, unsigned char* message) { return run(request, message); })
    {
    }
    ~OccupiedService()
    {
        release();
    }
    void occupy()
    {
        caller_ = std::thread([] { EXPECT_EQ(KorIilExecute("occupier", kService, kAmple, 2, 0, nullptr), KOR_IIL_OK); });
        EXPECT_TRUE(eventually([this] { return occupied_.load(); }));
    }
    void release()
    {
        occupied_ = false;
        if (caller_.joinable())
            caller_.join();
    }
    int runs() const
    {
        return runs_;
    }

private:
    std::uint32_t run(const KorIilRequest& request, unsigned char* message)
    {
        if (request.command != 2)
        {
            ++runs_;
            return addOne(request, message);
        }
        occupied_ = true;
        while (occupied_)
            sleepMilliseconds(1);
        return KOR_IIL_OK;
    }

    std::atomic<bool> occupied_{false};
    std::atomic<int> runs_{0};
    std::thread caller_;
    RunningService service_;
};

TEST_F(ServiceFaultsTest, ARequestWhoseWaitHasPassedIsNotRun)
{
    OccupiedService service;
    ASSERT_EQ(callOnce(), KOR_IIL_OK); // connects
    service.occupy();
    EXPECT_EQ(callOnce(12, 1), KOR_IIL_TIMEOUT);
    service.release();
    EXPECT_EQ(callOnce(), KOR_IIL_OK);
    EXPECT_EQ(service.runs(), 2) << "the first and the last";
}

TEST_F(ServiceFaultsTest, ARequestWhoseCallerHasHungUpIsNotRun)
{
    OccupiedService service;
    {
        Peer peer = Peer::connectTo(kService);
        peer.greet();
        service.occupy();
        ASSERT_TRUE(peer.send(requestHeader(1, 0)));
    }
    service.release();
    EXPECT_EQ(callOnce(), KOR_IIL_OK);
    EXPECT_EQ(service.runs(), 1);
}

TEST_F(ServiceFaultsTest, AFailedAllocationCostsOneRequest)
{
    RunningService service(
        [](const KorIilRequest& request, unsigned char* message) -> std::uint32_t
        {
            if (request.length == 1)
                throw std::bad_alloc();
            return addOne(request, message);
        });
    EXPECT_EQ(callOnce(1), KOR_IIL_NO_MEM);
    EXPECT_EQ(callOnce(), KOR_IIL_OK);
}

// --- Its restarts ------------------------------------------------------------------------------------------------------------

// Restarts a slow service again and again under the calls of several threads, and counts what these got.
class Restarts
{
public:
    Restarts()
    {
        std::vector<std::thread> callers;
        for (int i = 0; i < 8; ++i)
            callers.emplace_back([this] { callUntilDone(); });
        for (int i = 0; i < 10; ++i)
        {
            const int before = runs;
            RunningService service(
                [this](const KorIilRequest& request, unsigned char* message)
                {
                    ++runs;
                    sleepMilliseconds(1);
                    return addOne(request, message);
                });
            sleepMilliseconds(50);
            EXPECT_TRUE(eventually([&] { return runs > before; })) << "nobody has called";
        }
        done_ = true;
        RunningService last;
        for (std::thread& caller : callers)
            caller.join();
    }

    std::atomic<int> runs{0};
    std::atomic<int> ofStatus[KOR_IIL_BUSY + 1] = {};

private:
    void callUntilDone()
    {
        while (!done_)
            ++ofStatus[callOnce()];
    }

    std::atomic<bool> done_{false};
};

TEST_F(ServiceFaultsTest, WhatHasArrivedIsAnsweredBeforeItStops)
{
    const Restarts restarts;
    EXPECT_EQ(restarts.ofStatus[KOR_IIL_RX_FAIL], 0);
    EXPECT_GT(restarts.ofStatus[KOR_IIL_OK], 0);
}

TEST_F(ServiceFaultsTest, ACallerThatAsksForItDoesNotSeeARestart)
{
    setenv("KORIIL_WAIT_FOR_SERVICE", "on", 1);
    const Restarts restarts;
    unsetenv("KORIIL_WAIT_FOR_SERVICE");
    for (std::uint32_t status = 1; status <= KOR_IIL_BUSY; ++status)
        EXPECT_EQ(restarts.ofStatus[status], 0) << "status " << status;
}

TEST_F(ServiceFaultsTest, ACallerThatAsksForItWaitsNoLongerThanItsWait)
{
    setenv("KORIIL_WAIT_FOR_SERVICE", "on", 1);
    EXPECT_EQ(callOnce(12, 1), KOR_IIL_UNKNOWN_DST_ID);
    unsetenv("KORIIL_WAIT_FOR_SERVICE");
}

} // namespace
} // namespace host_test
