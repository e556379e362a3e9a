// A service's name, its loop, and its end.
#include "support.h"

#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace host_test
{
namespace
{

class ServiceTest : public HostTest
{
protected:
    static std::uint32_t open(KorIilService*& service, const char* serviceId = kService)
    {
        return KorIilServiceOpen(serviceId, 5, refuseRequest, nullptr, &service);
    }
};

TEST_F(ServiceTest, ANameBelongsToOne)
{
    KorIilService *first = nullptr, *second = nullptr;
    ASSERT_EQ(open(first), KOR_IIL_OK);
    EXPECT_EQ(open(second), KOR_IIL_CONFLICT_ID);
    EXPECT_EQ(second, nullptr);
    KorIilServiceClose(first);
    EXPECT_EQ(open(second), KOR_IIL_OK);
    KorIilServiceClose(second);
}

TEST_F(ServiceTest, ANameBelongsToOneProcess)
{
    ServiceProcess owner;
    KorIilService* service = nullptr;
    EXPECT_EQ(open(service), KOR_IIL_CONFLICT_ID);
    EXPECT_EQ(callOnce(), KOR_IIL_OK) << "the owner is not disturbed";
    owner.kill();
    EXPECT_EQ(open(service), KOR_IIL_OK) << "the files of the dead one are removed";
    KorIilServiceClose(service);
}

TEST_F(ServiceTest, AnyOtherNameIsFree)
{
    RunningService first(addOne, "FIRST"), second(addOne, "SECOND"), third(addOne, "FIRST.socket"),
        fourth(addOne, "FIRST.lock");
    for (const char* id : {"FIRST", "SECOND", "FIRST.socket", "FIRST.lock"})
        EXPECT_EQ(callOnce(12, kAmple, id), KOR_IIL_OK);
}

TEST_F(ServiceTest, OfManyWhoWantANameOneGetsIt)
{
    for (int round = 0; round < 10; ++round)
    {
        std::atomic<int> opened{0}, refused{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < 8; ++i)
            threads.emplace_back(
                [&]
                {
                    KorIilService* service = nullptr;
                    const std::uint32_t status = open(service);
                    ++(status == KOR_IIL_OK ? opened : refused);
                    EXPECT_TRUE(status == KOR_IIL_OK || status == KOR_IIL_CONFLICT_ID);
                    EXPECT_TRUE(eventually([&] { return opened + refused == 8; })); // held until all have tried
                    KorIilServiceClose(service);
                });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(opened, 1);
        EXPECT_EQ(refused, 7);
    }
}

TEST_F(ServiceTest, ClosingTakesTheSocketAway)
{
    KorIilService* service = nullptr;
    ASSERT_EQ(open(service), KOR_IIL_OK);
    EXPECT_EQ(access(socketOf(kService).c_str(), F_OK), 0);
    KorIilServiceClose(service);
    EXPECT_NE(access(socketOf(kService).c_str(), F_OK), 0);
    EXPECT_EQ(callOnce(), KOR_IIL_UNKNOWN_DST_ID);
}

TEST_F(ServiceTest, AChildOfTheServiceTakesNothingAway)
{
    KorIilService* service = nullptr;
    ASSERT_EQ(open(service), KOR_IIL_OK);
    Child child(
        [&]
        {
            KorIilServiceClose(service);
            return 0;
        });
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(access(socketOf(kService).c_str(), F_OK), 0);
    KorIilService* second = nullptr;
    EXPECT_EQ(open(second), KOR_IIL_CONFLICT_ID);

    Child survivor([] { return pause(); });
    KorIilServiceClose(service);
    EXPECT_EQ(open(second), KOR_IIL_OK) << "a running child does not keep the name";
    KorIilServiceClose(second);
}

TEST_F(ServiceTest, WhatCannotBeClearedAwayIsAnError)
{
    std::filesystem::create_directory(socketOf(kService));
    KorIilService* service = nullptr;
    EXPECT_EQ(open(service), KOR_IIL_ERR);
}

TEST_F(ServiceTest, ALockFileThatIsALinkIsAnError)
{
    const std::string victim = directory() + "/victim";
    std::ofstream(victim) << "text";
    std::filesystem::create_symlink(victim, directory() + "/" + kService + ".lock");
    KorIilService* service = nullptr;
    EXPECT_EQ(open(service), KOR_IIL_ERR);
}

TEST_F(ServiceTest, StoppedBeforeItRunsItReturnsAtOnce)
{
    KorIilService* service = nullptr;
    ASSERT_EQ(open(service), KOR_IIL_OK);
    KorIilServiceStop(service);
    KorIilServiceStop(service);
    EXPECT_EQ(KorIilServiceRun(service), KOR_IIL_OK);
    KorIilServiceClose(service);
}

TEST_F(ServiceTest, ItCanBeRunAgain)
{
    KorIilService* service = nullptr;
    ASSERT_EQ(open(service), KOR_IIL_OK);
    for (int i = 0; i < 3; ++i)
    {
        std::thread loop([=] { EXPECT_EQ(KorIilServiceRun(service), KOR_IIL_OK); });
        EXPECT_EQ(callOnce(), KOR_IIL_UNSUPPORT);
        KorIilServiceStop(service);
        loop.join();
    }
    KorIilServiceClose(service);
}

TEST_F(ServiceTest, CallersWaitWhileItIsNotRunning)
{
    KorIilService* service = nullptr;
    ASSERT_EQ(open(service), KOR_IIL_OK);
    std::thread caller([] { EXPECT_EQ(callOnce(), KOR_IIL_UNSUPPORT); });
    sleepMilliseconds(50);
    std::thread loop([=] { EXPECT_EQ(KorIilServiceRun(service), KOR_IIL_OK); });
    caller.join();
    KorIilServiceStop(service);
    loop.join();
    KorIilServiceClose(service);
}

// A caller that had to wait for the loop is served, though the time for its hello has passed by then.
TEST_F(ServiceTest, ALongRequestDoesNotCostOthersTheirPlace)
{
    RunningService service(
        [](const KorIilRequest& request, unsigned char* message)
        {
            if (request.length == 1)
                sleepMilliseconds(2300);
            return addOne(request, message);
        });
    EXPECT_EQ(callOnce(), KOR_IIL_OK);
    Peer silent = Peer::connectTo(kService); // admitted before the long request; its hello comes during it
    sleepMilliseconds(100);
    std::thread longCaller([] { EXPECT_EQ(callOnce(1), KOR_IIL_OK); });
    sleepMilliseconds(100);
    EXPECT_EQ(silent.greet().status, KOR_IIL_OK);
    longCaller.join();
}

KorIilService* stoppedBySignal = nullptr;

void stopService(int)
{
    KorIilServiceStop(stoppedBySignal);
}

TEST_F(ServiceTest, ASignalHandlerCanStopIt)
{
    Child child(
        []
        {
            if (open(stoppedBySignal) != KOR_IIL_OK)
                return 1;
            struct sigaction action = {};
            action.sa_handler = stopService;
            sigaction(SIGTERM, &action, nullptr);
            const auto status = static_cast<int>(KorIilServiceRun(stoppedBySignal));
            KorIilServiceClose(stoppedBySignal);
            return status;
        });
    ASSERT_TRUE(eventually([] { return callOnce() == KOR_IIL_UNSUPPORT; }));
    child.kill(SIGTERM);
    EXPECT_EQ(child.wait(), 0);
    EXPECT_NE(access(socketOf(kService).c_str(), F_OK), 0);
}

TEST_F(ServiceTest, AHandlerCanStopIt)
{
    KorIilService* service = nullptr;
    const auto stop = [](void* context, const KorIilRequest*, void*) -> std::uint32_t
    {
        KorIilServiceStop(*static_cast<KorIilService**>(context));
        return KOR_IIL_OK;
    };
    ASSERT_EQ(KorIilServiceOpen(kService, 0, stop, &service, &service), KOR_IIL_OK);
    std::thread loop([=] { EXPECT_EQ(KorIilServiceRun(service), KOR_IIL_OK); });
    EXPECT_EQ(KorIilExecute(kCaller, kService, kAmple, 1, 0, nullptr), KOR_IIL_OK) << "its last request is answered";
    loop.join();
    KorIilServiceClose(service);
}

} // namespace
} // namespace host_test
