// Calls that succeed: what arrives at the service, and what comes back.
#include "support.h"

#include <atomic>
#include <cstring>
#include <mutex>
#include <vector>

#include <unistd.h>

// c_service.c
extern "C" {
KorIilService* openServiceInC(const char* serviceId);
uint32_t callInC(const char* serviceId, uint32_t value, uint32_t* doubled);
}

namespace host_test
{
namespace
{

using RoundTripTest = HostTest;

TEST_F(RoundTripTest, MessagesOfEveryLengthComeBackAnswered)
{
    RunningService service;
    for (const uint32_t length : {0u, 1u, 8u, 12u, 144u, 4444u, 9376u, 9584u, 65535u, 65536u})
        EXPECT_EQ(KOR_IIL_OK, callOnce(length)) << length;
}

TEST_F(RoundTripTest, TheServiceSeesTheRequestAsItWasMade)
{
    std::string callerId, message;
    KorIilRequest seen = {};
    RunningService service(
        [&](const KorIilRequest& request, unsigned char* bytes)
        {
            seen = request;
            callerId = request.callerId;
            message.assign(reinterpret_cast<const char*>(bytes), request.length);
            return KOR_IIL_OK;
        });

    char bytes[] = "twelve bytes";
    ASSERT_EQ(KOR_IIL_OK, KorIilExecute("web.interface", kService, kAmple, 0xFEDCBA98u, 12, bytes));
    EXPECT_EQ("web.interface", callerId);
    EXPECT_EQ("twelve bytes", message);
    EXPECT_EQ(0xFEDCBA98u, seen.command);
    EXPECT_EQ(12u, seen.length);
    EXPECT_EQ(kAmple, seen.wait);
    EXPECT_EQ(static_cast<uint32_t>(getpid()), seen.processId);
    EXPECT_STREQ("twelve bytes", bytes);
}

TEST_F(RoundTripTest, MessagesAreAlignedForAnyType)
{
    std::atomic<uintptr_t> address{1};
    RunningService service(
        [&](const KorIilRequest&, unsigned char* bytes)
        {
            address = reinterpret_cast<uintptr_t>(bytes);
            return KOR_IIL_OK;
        });
    ASSERT_EQ(KOR_IIL_OK, KorIilExecute(kCaller, kService, kAmple, 1, 0, nullptr));
    EXPECT_EQ(0u, address % alignof(max_align_t));
}

TEST_F(RoundTripTest, OneConnectionCarriesSeveralCallers)
{
    std::vector<std::string> callers;
    RunningService service(
        [&](const KorIilRequest& request, unsigned char*)
        {
            callers.emplace_back(request.callerId);
            return KOR_IIL_OK;
        });
    for (const char* id : {"a longer identifier", "b", "a longer identifier"})
        ASSERT_EQ(KOR_IIL_OK, KorIilExecute(id, kService, kAmple, 1, 0, nullptr));
    EXPECT_EQ((std::vector<std::string>{"a longer identifier", "b", "a longer identifier"}), callers);
}

TEST_F(RoundTripTest, OneThreadTalksToSeveralServices)
{
    const auto answer = [](char letter)
    {
        return [letter](const KorIilRequest&, unsigned char* bytes)
        {
            bytes[0] = static_cast<unsigned char>(letter);
            return KOR_IIL_OK;
        };
    };
    RunningService a(answer('A'), "A"), b(answer('B'), "B"), c(answer('C'), "C");
    for (int i = 0; i < 20; ++i)
        for (const char* id : {"A", "C", "B", "B"})
        {
            char byte = 0;
            ASSERT_EQ(KOR_IIL_OK, KorIilExecute(kCaller, id, kAmple, 1, 1, &byte));
            EXPECT_EQ(id[0], byte);
        }
}

TEST_F(RoundTripTest, AServiceCallsAnother)
{
    RunningService back(addOne, "BACK");
    RunningService front([](const KorIilRequest& request, unsigned char* bytes)
                         { return KorIilExecute("FRONT", "BACK", kAmple, request.command, request.length, bytes); });
    EXPECT_EQ(KOR_IIL_OK, callOnce(144));
}

TEST_F(RoundTripTest, BothEndsCanBeWrittenInC)
{
    KorIilService* service = openServiceInC(kService);
    ASSERT_NE(nullptr, service);
    std::thread loop([=] { EXPECT_EQ(KOR_IIL_OK, KorIilServiceRun(service)); });
    uint32_t doubled = 0;
    EXPECT_EQ(KOR_IIL_OK, callInC(kService, 21, &doubled));
    EXPECT_EQ(42u, doubled);
    KorIilServiceStop(service);
    loop.join();
    KorIilServiceClose(service);
}

// The reply to a request is a function of the request alone; one crossed reply among them all would show.
TEST_F(RoundTripTest, RepliesOfManyThreadsAreNeverCrossed)
{
    constexpr int kThreads = 64;
    constexpr uint32_t kCalls = 100;
    RunningService service(
        [](const KorIilRequest& request, unsigned char* bytes)
        {
            for (uint32_t i = 0; i < request.length; ++i)
                bytes[i] = static_cast<unsigned char>(bytes[i] ^ (request.command + i));
            return KOR_IIL_OK;
        });

    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (uint32_t thread = 0; thread < kThreads; ++thread)
        threads.emplace_back(
            [&wrong, thread]
            {
                for (uint32_t call = 0; call < kCalls; ++call)
                {
                    const uint32_t length = 4 + (thread * 37 + call * 101) % 3000;
                    const uint32_t command = thread << 16 | call;
                    std::vector<unsigned char> message(length, static_cast<unsigned char>(thread));
                    bool right = KorIilExecute(kCaller, kService, kAmple, command, length, message.data()) == KOR_IIL_OK;
                    for (uint32_t i = 0; i < length; ++i)
                        right = right && message[i] == static_cast<unsigned char>(thread ^ (command + i));
                    if (!right)
                        ++wrong;
                }
            });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(0, wrong);
}

TEST_F(RoundTripTest, ManyProcessesCallAtOnce)
{
    RunningService service;
    std::vector<std::unique_ptr<Child>> children;
    for (int i = 0; i < 8; ++i)
        children.push_back(std::make_unique<Child>(
            []
            {
                for (int call = 0; call < 50; ++call)
                {
                    uint32_t words[3] = {1, 2, 3};
                    if (KorIilExecute(kCaller, kService, kAmple, 1, sizeof(words), words) != KOR_IIL_OK)
                        return 1;
                    for (uint32_t word = 0; word < 3; ++word)
                        if (words[word] != word + 1 + 0x01010101u)
                            return 2;
                }
                return 0;
            }));
    for (const auto& child : children)
        EXPECT_EQ(0, child->wait());
}

} // namespace
} // namespace host_test
