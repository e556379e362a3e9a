// Calls that succeed: what arrives at the service, and what is returned.
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
    for (const std::uint32_t length : {0u, 1u, 8u, 12u, 144u, 4444u, 9376u, 9584u, 65535u, 65536u})
        EXPECT_EQ(callOnce(length), KOR_IIL_OK) << length;
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
    ASSERT_EQ(KorIilExecute("web.interface", kService, kAmple, 0xFEDCBA98u, 12, bytes), KOR_IIL_OK);
    EXPECT_EQ(callerId, "web.interface");
    EXPECT_EQ(message, "twelve bytes");
    EXPECT_EQ(seen.command, 0xFEDCBA98u);
    EXPECT_EQ(seen.length, 12u);
    EXPECT_EQ(seen.wait, kAmple);
    EXPECT_EQ(seen.processId, static_cast<std::uint32_t>(getpid()));
    EXPECT_STREQ(bytes, "twelve bytes");
}

TEST_F(RoundTripTest, MessagesAreAlignedForAnyType)
{
    std::atomic<std::uintptr_t> address{1};
    RunningService service(
        [&](const KorIilRequest&, unsigned char* bytes)
        {
            address = reinterpret_cast<std::uintptr_t>(bytes);
            return KOR_IIL_OK;
        });
    ASSERT_EQ(KorIilExecute(kCaller, kService, kAmple, 1, 0, nullptr), KOR_IIL_OK);
    EXPECT_EQ(address % alignof(std::max_align_t), 0u);
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
        ASSERT_EQ(KorIilExecute(id, kService, kAmple, 1, 0, nullptr), KOR_IIL_OK);
    EXPECT_EQ(callers, (std::vector<std::string>{"a longer identifier", "b", "a longer identifier"}));
}

TEST_F(RoundTripTest, EachThreadIsToldTheStatusOfItsOwnLatestCall)
{
    RunningService service;
    EXPECT_EQ(KorIilExecute(kCaller, "NOBODY", kAmple, 1, 0, nullptr), KOR_IIL_UNKNOWN_DST_ID);
    EXPECT_EQ(KorIilLastStatus(), KOR_IIL_UNKNOWN_DST_ID);
    std::thread(
        []
        {
            EXPECT_EQ(KorIilLastStatus(), KOR_IIL_OK) << "it has made no call";
            EXPECT_EQ(KorIilExecute(kCaller, kService, kAmple, 2, 0, nullptr), KOR_IIL_UNKNOWN_CMD);
            EXPECT_EQ(KorIilLastStatus(), KOR_IIL_UNKNOWN_CMD);
        })
        .join();
    EXPECT_EQ(KorIilLastStatus(), KOR_IIL_UNKNOWN_DST_ID);
    EXPECT_EQ(KorIilExecute(kCaller, kService, 0, 1, 0, nullptr), KOR_IIL_BAD_PARAM);
    EXPECT_EQ(KorIilLastStatus(), KOR_IIL_BAD_PARAM) << "a call that is not sent counts as well";
    EXPECT_EQ(callOnce(8), KOR_IIL_OK);
    EXPECT_EQ(KorIilLastStatus(), KOR_IIL_OK);
    const KorIilEventHandler handler = [](const char*, std::uint32_t, const void*, std::uint32_t) {};
    EXPECT_EQ(KorIilCancelEvent(kCaller, kService, 1, handler), KOR_IIL_BAD_EVT);
    EXPECT_EQ(KorIilLastStatus(), KOR_IIL_BAD_EVT) << "so does what is asked about events";
    EXPECT_EQ(KorIilSubscribeEvent(kCaller, "NOBODY", 1, handler), KOR_IIL_UNKNOWN_DST_ID);
    EXPECT_EQ(KorIilLastStatus(), KOR_IIL_UNKNOWN_DST_ID);
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
            ASSERT_EQ(KorIilExecute(kCaller, id, kAmple, 1, 1, &byte), KOR_IIL_OK);
            EXPECT_EQ(byte, id[0]);
        }
}

TEST_F(RoundTripTest, AServiceCallsAnother)
{
    RunningService back(addOne, "BACK");
    RunningService front([](const KorIilRequest& request, unsigned char* bytes)
                         { return KorIilExecute("FRONT", "BACK", kAmple, request.command, request.length, bytes); });
    EXPECT_EQ(callOnce(144), KOR_IIL_OK);
}

TEST_F(RoundTripTest, BothEndsCanBeWrittenInC)
{
    KorIilService* service = openServiceInC(kService);
    ASSERT_NE(service, nullptr);
    std::thread loop([=] { EXPECT_EQ(KorIilServiceRun(service), KOR_IIL_OK); });
    std::uint32_t doubled = 0;
    EXPECT_EQ(callInC(kService, 21, &doubled), KOR_IIL_OK);
    EXPECT_EQ(doubled, 42u);
    KorIilServiceStop(service);
    loop.join();
    KorIilServiceClose(service);
}

// The reply depends on the request alone, so that a single crossed reply is detected.
TEST_F(RoundTripTest, RepliesOfManyThreadsAreNeverCrossed)
{
    constexpr int kThreads = 64;
    constexpr std::uint32_t kCalls = 100;
    RunningService service(
        [](const KorIilRequest& request, unsigned char* bytes)
        {
            for (std::uint32_t i = 0; i < request.length; ++i)
                bytes[i] = static_cast<unsigned char>(bytes[i] ^ (request.command + i));
            return KOR_IIL_OK;
        });

    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (std::uint32_t thread = 0; thread < kThreads; ++thread)
        threads.emplace_back(
            [&wrong, thread]
            {
                for (std::uint32_t call = 0; call < kCalls; ++call)
                {
                    const std::uint32_t length = 4 + (thread * 37 + call * 101) % 3000;
                    const std::uint32_t command = thread << 16 | call;
                    std::vector<unsigned char> message(length, static_cast<unsigned char>(thread));
                    bool right = KorIilExecute(kCaller, kService, kAmple, command, length, message.data()) == KOR_IIL_OK;
                    for (std::uint32_t i = 0; i < length; ++i)
                        right = right && message[i] == static_cast<unsigned char>(thread ^ (command + i));
                    if (!right)
                        ++wrong;
                }
            });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
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
                    std::uint32_t words[3] = {1, 2, 3};
                    if (KorIilExecute(kCaller, kService, kAmple, 1, sizeof words, words) != KOR_IIL_OK)
                        return 1;
                    for (std::uint32_t word = 0; word < 3; ++word)
                        if (words[word] != word + 1 + 0x01010101u)
                            return 2;
                }
                return 0;
            }));
    for (const auto& child : children)
        EXPECT_EQ(child->wait(), 0);
}

} // namespace
} // namespace host_test
