// Arguments that are refused before anything is sent.
#include "support.h"

#include <cstring>

namespace host_test
{
namespace
{

using ArgumentsTest = HostTest;

std::string characters(std::size_t count)
{
    return std::string(count, 'x');
}

TEST_F(ArgumentsTest, NullPointersAreRefused)
{
    RunningService service;
    std::uint32_t word = 5;
    EXPECT_EQ(KorIilExecute(nullptr, kService, kAmple, 1, sizeof word, &word), KOR_IIL_BAD_PARAM);
    EXPECT_EQ(KorIilExecute(kCaller, nullptr, kAmple, 1, sizeof word, &word), KOR_IIL_BAD_PARAM);
    EXPECT_EQ(KorIilExecute(kCaller, kService, kAmple, 1, sizeof word, nullptr), KOR_IIL_BAD_PARAM);
    EXPECT_EQ(word, 5u);
}

TEST_F(ArgumentsTest, NoMessageNeedsNoBuffer)
{
    RunningService service;
    EXPECT_EQ(KorIilExecute(kCaller, kService, kAmple, 1, 0, nullptr), KOR_IIL_OK);
}

TEST_F(ArgumentsTest, AWaitOfZeroIsRefused)
{
    RunningService service;
    EXPECT_EQ(callOnce(12, 0), KOR_IIL_BAD_PARAM);
}

TEST_F(ArgumentsTest, TheLongestWaitIsAWait)
{
    RunningService service;
    EXPECT_EQ(callOnce(12, UINT32_MAX), KOR_IIL_OK);
}

TEST_F(ArgumentsTest, CallerIdsHaveOneTo31Characters)
{
    RunningService service;
    EXPECT_EQ(callOnce(12, kAmple, kService, "x"), KOR_IIL_OK);
    EXPECT_EQ(callOnce(12, kAmple, kService, characters(31).c_str()), KOR_IIL_OK);
    EXPECT_EQ(callOnce(12, kAmple, kService, characters(32).c_str()), KOR_IIL_UNKNOWN_SRC_ID);
    EXPECT_EQ(callOnce(12, kAmple, kService, ""), KOR_IIL_UNKNOWN_SRC_ID);
}

TEST_F(ArgumentsTest, OnlyTheFirstCharacterOfACallerIdMatters)
{
    RunningService service;
    EXPECT_EQ(callOnce(12, kAmple, kService, " \n\x80\xFF"), KOR_IIL_OK);
    EXPECT_EQ(callOnce(12, kAmple, kService, "\x7F"), KOR_IIL_OK);
    EXPECT_EQ(callOnce(12, kAmple, kService, "\x1F"), KOR_IIL_UNKNOWN_SRC_ID);
    EXPECT_EQ(callOnce(12, kAmple, kService, "\x80"), KOR_IIL_UNKNOWN_SRC_ID);
}

TEST_F(ArgumentsTest, ACallerIdIsReadNoFurtherThanItsLimit)
{
    RunningService service;
    char id[32];
    std::memset(id, 'x', sizeof id); // no NUL; the sanitizers watch its end
    EXPECT_EQ(callOnce(12, kAmple, kService, id), KOR_IIL_UNKNOWN_SRC_ID);
}

TEST_F(ArgumentsTest, NoServiceHasAnInvalidName)
{
    for (const char* id : {"", ".hidden", "../SERVICE", "a/b", "a b", "a\n", "\xC3\xA4", "0123456789012345678901234567890x"})
        EXPECT_EQ(callOnce(12, kAmple, id), KOR_IIL_UNKNOWN_DST_ID) << id;
}

TEST_F(ArgumentsTest, AServiceNameMayUseAllThatIsAllowed)
{
    for (const char* id : {"a", "Az09_-.", "0123456789012345678901234567890"})
    {
        RunningService service(addOne, id);
        EXPECT_EQ(callOnce(12, kAmple, id), KOR_IIL_OK) << id;
    }
}

TEST_F(ArgumentsTest, AMessageOverTheLimitIsRefused)
{
    RunningService service;
    EXPECT_EQ(callOnce(KOR_IIL_MAX_LENGTH), KOR_IIL_OK);
    EXPECT_EQ(callOnce(KOR_IIL_MAX_LENGTH + 1), KOR_IIL_OVERSIZE);
    std::uint32_t word = 5;
    EXPECT_EQ(KorIilExecute(kCaller, kService, kAmple, 1, UINT32_MAX, &word), KOR_IIL_OVERSIZE);
}

TEST_F(ArgumentsTest, SubscriptionsRefuseTheSame)
{
    RunningService service;
    for (const auto function : {KorIilSubscribeEvent, KorIilCancelEvent})
    {
        EXPECT_EQ(function(nullptr, kService, 1, ignoreEvent), KOR_IIL_BAD_PARAM);
        EXPECT_EQ(function(kCaller, nullptr, 1, ignoreEvent), KOR_IIL_BAD_PARAM);
        EXPECT_EQ(function(kCaller, kService, 1, nullptr), KOR_IIL_BAD_PARAM);
        EXPECT_EQ(function("", kService, 1, ignoreEvent), KOR_IIL_UNKNOWN_SRC_ID);
        EXPECT_EQ(function(characters(32).c_str(), kService, 1, ignoreEvent), KOR_IIL_UNKNOWN_SRC_ID);
        EXPECT_EQ(function(kCaller, "a/b", 1, ignoreEvent), KOR_IIL_UNKNOWN_DST_ID);
    }
}

std::uint32_t open(const char* serviceId, std::uint32_t eventCount, KorIilRequestHandler handler)
{
    KorIilService* service = reinterpret_cast<KorIilService*>(1);
    const std::uint32_t status = KorIilServiceOpen(serviceId, eventCount, handler, nullptr, &service);
    if (status != KOR_IIL_OK)
        EXPECT_EQ(service, nullptr);
    else
        KorIilServiceClose(service);
    return status;
}

TEST_F(ArgumentsTest, AServiceIsOpenedWithWhatItNeeds)
{
    EXPECT_EQ(open(kService, 0, refuseRequest), KOR_IIL_OK);
    EXPECT_EQ(open(kService, 1024, refuseRequest), KOR_IIL_OK);
    EXPECT_EQ(open(kService, 1025, refuseRequest), KOR_IIL_BAD_PARAM);
    EXPECT_EQ(open(nullptr, 0, refuseRequest), KOR_IIL_BAD_PARAM);
    EXPECT_EQ(open("", 0, refuseRequest), KOR_IIL_BAD_PARAM);
    EXPECT_EQ(open(".hidden", 0, refuseRequest), KOR_IIL_BAD_PARAM);
    EXPECT_EQ(open("../SERVICE", 0, refuseRequest), KOR_IIL_BAD_PARAM);
    EXPECT_EQ(open(kService, 0, nullptr), KOR_IIL_BAD_PARAM);
    EXPECT_EQ(KorIilServiceOpen(kService, 0, refuseRequest, nullptr, nullptr), KOR_IIL_BAD_PARAM);
}

TEST_F(ArgumentsTest, NoServiceIsNoService)
{
    EXPECT_EQ(KorIilServiceRun(nullptr), KOR_IIL_BAD_PARAM);
    EXPECT_EQ(KorIilServicePublish(nullptr, 1, nullptr, 0, nullptr), KOR_IIL_BAD_PARAM);
    KorIilServiceStop(nullptr);
    KorIilServiceClose(nullptr);
}

} // namespace
} // namespace host_test
