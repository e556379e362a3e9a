// What is refused before anything is sent.
#include "support.h"

#include <cstring>

namespace host_test
{
namespace
{

using ArgumentsTest = HostTest;

std::string characters(size_t count)
{
    return std::string(count, 'x');
}

void ignoreEvent(const char*, uint32_t, const void*, uint32_t)
{
}

TEST_F(ArgumentsTest, NullPointersAreRefused)
{
    RunningService service;
    uint32_t word = 5;
    EXPECT_EQ(KOR_IIL_BAD_PARAM, KorIilExecute(nullptr, kService, kAmple, 1, sizeof(word), &word));
    EXPECT_EQ(KOR_IIL_BAD_PARAM, KorIilExecute(kCaller, nullptr, kAmple, 1, sizeof(word), &word));
    EXPECT_EQ(KOR_IIL_BAD_PARAM, KorIilExecute(kCaller, kService, kAmple, 1, sizeof(word), nullptr));
    EXPECT_EQ(5u, word);
}

TEST_F(ArgumentsTest, NoMessageNeedsNoBuffer)
{
    RunningService service;
    EXPECT_EQ(KOR_IIL_OK, KorIilExecute(kCaller, kService, kAmple, 1, 0, nullptr));
}

TEST_F(ArgumentsTest, AWaitOfZeroIsRefused)
{
    RunningService service;
    EXPECT_EQ(KOR_IIL_BAD_PARAM, callOnce(12, 0));
}

TEST_F(ArgumentsTest, TheLongestWaitIsAWait)
{
    RunningService service;
    EXPECT_EQ(KOR_IIL_OK, callOnce(12, UINT32_MAX));
}

TEST_F(ArgumentsTest, CallerIdsHaveOneTo31Characters)
{
    RunningService service;
    EXPECT_EQ(KOR_IIL_OK, callOnce(12, kAmple, kService, "x"));
    EXPECT_EQ(KOR_IIL_OK, callOnce(12, kAmple, kService, characters(31).c_str()));
    EXPECT_EQ(KOR_IIL_UNKNOWN_SRC_ID, callOnce(12, kAmple, kService, characters(32).c_str()));
    EXPECT_EQ(KOR_IIL_UNKNOWN_SRC_ID, callOnce(12, kAmple, kService, ""));
}

TEST_F(ArgumentsTest, OnlyTheFirstCharacterOfACallerIdMatters)
{
    RunningService service;
    EXPECT_EQ(KOR_IIL_OK, callOnce(12, kAmple, kService, " \n\x80\xFF"));
    EXPECT_EQ(KOR_IIL_OK, callOnce(12, kAmple, kService, "\x7F"));
    EXPECT_EQ(KOR_IIL_UNKNOWN_SRC_ID, callOnce(12, kAmple, kService, "\x1F"));
    EXPECT_EQ(KOR_IIL_UNKNOWN_SRC_ID, callOnce(12, kAmple, kService, "\x80"));
}

TEST_F(ArgumentsTest, ACallerIdIsReadNoFurtherThanItsLimit)
{
    RunningService service;
    char id[32];
    memset(id, 'x', sizeof(id)); // no NUL; the sanitizers watch its end
    EXPECT_EQ(KOR_IIL_UNKNOWN_SRC_ID, callOnce(12, kAmple, kService, id));
}

TEST_F(ArgumentsTest, NoServiceHasAnInvalidName)
{
    for (const char* id : {"", ".hidden", "../SERVICE", "a/b", "a b", "a\n", "\xC3\xA4", "0123456789012345678901234567890x"})
        EXPECT_EQ(KOR_IIL_UNKNOWN_DST_ID, callOnce(12, kAmple, id)) << id;
}

TEST_F(ArgumentsTest, AServiceNameMayUseAllThatIsAllowed)
{
    for (const char* id : {"a", "Az09_-.", "0123456789012345678901234567890"})
    {
        RunningService service(addOne, id);
        EXPECT_EQ(KOR_IIL_OK, callOnce(12, kAmple, id)) << id;
    }
}

TEST_F(ArgumentsTest, AMessageOverTheLimitIsRefused)
{
    RunningService service;
    EXPECT_EQ(KOR_IIL_OK, callOnce(KOR_IIL_MAX_LENGTH));
    EXPECT_EQ(KOR_IIL_OVERSIZE, callOnce(KOR_IIL_MAX_LENGTH + 1));
    uint32_t word = 5;
    EXPECT_EQ(KOR_IIL_OVERSIZE, KorIilExecute(kCaller, kService, kAmple, 1, UINT32_MAX, &word));
}

TEST_F(ArgumentsTest, SubscriptionsRefuseTheSame)
{
    RunningService service;
    for (const auto function : {KorIilSubscribeEvent, KorIilCancelEvent})
    {
        EXPECT_EQ(KOR_IIL_BAD_PARAM, function(nullptr, kService, 1, ignoreEvent));
        EXPECT_EQ(KOR_IIL_BAD_PARAM, function(kCaller, nullptr, 1, ignoreEvent));
        EXPECT_EQ(KOR_IIL_BAD_PARAM, function(kCaller, kService, 1, nullptr));
        EXPECT_EQ(KOR_IIL_UNKNOWN_SRC_ID, function("", kService, 1, ignoreEvent));
        EXPECT_EQ(KOR_IIL_UNKNOWN_SRC_ID, function(characters(32).c_str(), kService, 1, ignoreEvent));
        EXPECT_EQ(KOR_IIL_UNKNOWN_DST_ID, function(kCaller, "a/b", 1, ignoreEvent));
    }
}

uint32_t open(const char* serviceId, uint32_t eventCount, KorIilRequestHandler handler)
{
    KorIilService* service = reinterpret_cast<KorIilService*>(1);
    const uint32_t status = KorIilServiceOpen(serviceId, eventCount, handler, nullptr, &service);
    if (status != KOR_IIL_OK)
        EXPECT_EQ(nullptr, service);
    else
        KorIilServiceClose(service);
    return status;
}

uint32_t refuseRequest(void*, const KorIilRequest*, void*)
{
    return KOR_IIL_UNSUPPORT;
}

TEST_F(ArgumentsTest, AServiceIsOpenedWithWhatItNeeds)
{
    EXPECT_EQ(KOR_IIL_OK, open(kService, 0, refuseRequest));
    EXPECT_EQ(KOR_IIL_OK, open(kService, 1024, refuseRequest));
    EXPECT_EQ(KOR_IIL_BAD_PARAM, open(kService, 1025, refuseRequest));
    EXPECT_EQ(KOR_IIL_BAD_PARAM, open(nullptr, 0, refuseRequest));
    EXPECT_EQ(KOR_IIL_BAD_PARAM, open("", 0, refuseRequest));
    EXPECT_EQ(KOR_IIL_BAD_PARAM, open(".hidden", 0, refuseRequest));
    EXPECT_EQ(KOR_IIL_BAD_PARAM, open("../SERVICE", 0, refuseRequest));
    EXPECT_EQ(KOR_IIL_BAD_PARAM, open(kService, 0, nullptr));
    EXPECT_EQ(KOR_IIL_BAD_PARAM, KorIilServiceOpen(kService, 0, refuseRequest, nullptr, nullptr));
}

TEST_F(ArgumentsTest, NoServiceIsNoService)
{
    EXPECT_EQ(KOR_IIL_BAD_PARAM, KorIilServiceRun(nullptr));
    EXPECT_EQ(KOR_IIL_BAD_PARAM, KorIilServicePublish(nullptr, 1, nullptr, 0, nullptr));
    KorIilServiceStop(nullptr);
    KorIilServiceClose(nullptr);
}

} // namespace
} // namespace host_test
