// Which caller ids are accepted, and how they are passed on.
#include "kor_iil_mock.hpp"
#include "support/samples.h"
#include "tarn_api.h"

#include <cstdarg>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace tarn::test
{
namespace
{

struct CallerId : testing::Test
{
    void expectAccepted(const char* id)
    {
        platform.expect("TARN", 1, 12).caller(id).word(0, 7).restZero();
        EXPECT_EQ(TarnSetLogLevel(id, 7), TARN_OK);
        EXPECT_THAT(platform.traceTexts(), IsEmpty());
    }

    mock::Platform platform;
};

TEST_F(CallerId, MayHave31Characters)
{
    expectAccepted(letters(31).c_str());
}

TEST_F(CallerId, MayHaveOneCharacter)
{
    expectAccepted("l");
}

TEST_F(CallerId, MayStartWithAnyByteFrom0x20To0x7F)
{
    for (char first = 0x20;; ++first)
    {
        const char id[] = {first, '\0'};
        expectAccepted(id);
        if (first == 0x7F)
            break;
    }
}

TEST_F(CallerId, MayHoldAnyByteButNulBehindTheFirst)
{
    for (int value = 1; value <= 0xFF; ++value)
    {
        const char id[] = {'l', static_cast<char>(value), '\0'};
        expectAccepted(id);
    }
}

TEST_F(CallerId, NullIsRejected)
{
    EXPECT_EQ(TarnSetLogLevel(nullptr, 7), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("handle is NULL"));
}

TEST_F(CallerId, EmptyIsRejected)
{
    EXPECT_EQ(TarnSetLogLevel("", 7), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("invalid id is "));
}

// With a signed and with an unsigned plain char alike.
TEST_F(CallerId, StartingBelow0x20OrAbove0x7FIsRejected)
{
    for (int first = 1; first <= 0xFF; ++first)
    {
        if (first >= 0x20 && first <= 0x7F)
            continue;
        const char id[] = {static_cast<char>(first), 'l', 'e', 'd', 'd', '\0'};
        EXPECT_EQ(TarnSetLogLevel(id, 7), TARN_REJECTED) << first;
        EXPECT_EQ(platform.traceTexts().back(), std::string("invalid id is ") + id);
    }
    EXPECT_EQ(platform.traces().size(), 0x1Fu + 0x80u);
}

TEST_F(CallerId, Of32CharactersIsRejectedAndNamedInTheTrace)
{
    EXPECT_EQ(TarnSetLogLevel(letters(32).c_str(), 7), TARN_REJECTED);
    ASSERT_EQ(platform.traces().size(), 1u);
    EXPECT_EQ(platform.traces()[0].format, "invalid id is %s");
    EXPECT_EQ(platform.traces()[0].text, "invalid id is " + letters(32));
}

TEST_F(CallerId, OfManyCharactersIsRejected)
{
    EXPECT_EQ(TarnSetLogLevel(letters(1000).c_str(), 7), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("invalid id is " + letters(1000)));
}

// The buffer ends where the check must end, so the trace's argument is compared by its address and not read.
TEST_F(CallerId, IsCheckedNoFurtherThan32Bytes)
{
    const std::vector<char> endless(32, 'a');
    const char* named = nullptr;
    KorIilMockOnTrace(
        [](void* context, std::uint32_t, const char*, std::uint32_t, const char* format, va_list arguments)
        {
            EXPECT_STREQ(format, "invalid id is %s");
            *static_cast<const char**>(context) = va_arg(arguments, const char*);
        },
        &named);

    EXPECT_EQ(TarnSetLogLevel(endless.data(), 7), TARN_REJECTED);
    EXPECT_EQ(named, endless.data());
}

TEST_F(CallerId, EndsAtItsFirstNul)
{
    char id[40] = "ledd\0\x01\x02 left over";
    expectAccepted(id);
}

TEST_F(CallerId, IsHandedOnAsTheVeryPointer)
{
    const char* handedOn = nullptr;
    KorIilMockOnExecute(
        [](void* context, const char* callerId, const char*, std::uint32_t, std::uint32_t, std::uint32_t,
           void*) -> std::uint32_t
        {
            *static_cast<const char**>(context) = callerId;
            return 0;
        },
        &handedOn);

    const char id[] = "ledd";
    EXPECT_EQ(TarnSetLogLevel(id, 7), TARN_OK);
    EXPECT_EQ(handedOn, id);
}

TEST_F(CallerId, IsCheckedBeforeThePointers)
{
    EXPECT_EQ(TarnGetLogLevel(nullptr, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetLogLevel("\x01", nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetLogLevel("ledd", nullptr), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("handle is NULL", "invalid id is \x01", "level is NULL"));
}

} // namespace
} // namespace tarn::test
