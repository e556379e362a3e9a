/* The scripted platform for tests with GoogleTest. `kor_iil_mock.h` says what each step means.
 *
 *     tarn::mock::Platform platform;
 *     platform.expect("TARN", 0, 12).caller("ledd").wait(3).restZero().replyWord(4, 5);
 *     EXPECT_EQ(TarnGetLogLevel("ledd", &level), 0u);
 *
 * An unexpected call, other bytes than expected or a missing call fail the running test, at the line that scripted the call. */
#pragma once

#include "kor_iil_mock.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tarn::mock
{

struct Trace
{
    std::uint32_t level;
    std::string fileTag;
    std::uint32_t line;
    std::string format;
    std::string text;
};

// One scripted call.
class Call
{
public:
    explicit Call(KorIilMockCall* scripted) : call_(scripted)
    {
    }

    Call& caller(const char* callerId)
    {
        KorIilMockCaller(call_, callerId);
        return *this;
    }

    Call& wait(std::uint32_t wait)
    {
        KorIilMockWait(call_, wait);
        return *this;
    }

    Call& bytes(std::uint32_t offset, const void* expected, std::size_t size)
    {
        KorIilMockSent(call_, offset, expected, static_cast<std::uint32_t>(size));
        return *this;
    }

    Call& word(std::uint32_t offset, std::uint32_t expected)
    {
        KorIilMockSentWord(call_, offset, expected);
        return *this;
    }

    Call& byte(std::uint32_t offset, std::uint8_t expected)
    {
        KorIilMockSentByte(call_, offset, expected);
        return *this;
    }

    Call& text(std::uint32_t offset, std::uint32_t size, const char* expected)
    {
        KorIilMockSentText(call_, offset, size, expected);
        return *this;
    }

    Call& restZero()
    {
        KorIilMockSentRestZero(call_);
        return *this;
    }

    Call& replyBytes(std::uint32_t offset, const void* reply, std::size_t size)
    {
        KorIilMockReply(call_, offset, reply, static_cast<std::uint32_t>(size));
        return *this;
    }

    Call& replyWord(std::uint32_t offset, std::uint32_t word)
    {
        KorIilMockReplyWord(call_, offset, word);
        return *this;
    }

    Call& replyByte(std::uint32_t offset, std::uint8_t byte)
    {
        KorIilMockReplyByte(call_, offset, byte);
        return *this;
    }

    Call& replyText(std::uint32_t offset, const char* text)
    {
        KorIilMockReplyText(call_, offset, text);
        return *this;
    }

    Call& status(std::uint32_t status)
    {
        KorIilMockStatus(call_, status);
        return *this;
    }

    Call& fail(std::uint32_t ipcStatus)
    {
        KorIilMockFail(call_, ipcStatus);
        return *this;
    }

private:
    KorIilMockCall* call_;
};

// The platform for one test, or a part of it: reset by the constructor, verified by the destructor. One at a time.
// The script is the process's, but tests reach it only through this object, hence no static methods.
// NOLINTBEGIN(readability-convert-member-functions-to-static)
class Platform
{
public:
    Platform()
    {
        KorIilMockReset();
        KorIilMockOnFailure(&failTest, nullptr);
    }

    ~Platform()
    {
        KorIilMockVerify(nullptr);
    }

    Platform(const Platform&) = delete;
    Platform& operator=(const Platform&) = delete;

    Call expect(const char* serviceId, std::uint32_t cmdId, std::uint32_t msgLen, const char* file = __builtin_FILE(),
                unsigned line = __builtin_LINE())
    {
        return Call(KorIilMockExpectAt(file, line, serviceId, cmdId, msgLen));
    }

    Call expectSubscribe(const char* serviceId, std::uint32_t evt, const char* file = __builtin_FILE(),
                         unsigned line = __builtin_LINE())
    {
        return Call(KorIilMockExpectSubscribeAt(file, line, serviceId, evt));
    }

    Call expectCancel(const char* serviceId, std::uint32_t evt, const char* file = __builtin_FILE(),
                      unsigned line = __builtin_LINE())
    {
        return Call(KorIilMockExpectCancelAt(file, line, serviceId, evt));
    }

    unsigned deliver(const char* serviceId, std::uint32_t evt, const void* data = nullptr, std::size_t length = 0)
    {
        return KorIilMockDeliver(serviceId, evt, data, static_cast<std::uint32_t>(length));
    }

    std::vector<Trace> traces() const
    {
        std::vector<Trace> result;
        for (unsigned i = 0; i < KorIilMockTraceCount(); ++i)
        {
            const KorIilMockTrace& trace = *KorIilMockTraceAt(i);
            result.push_back({trace.level, trace.fileTag, trace.line, trace.format, trace.text});
        }
        return result;
    }

    std::vector<std::string> traceTexts() const
    {
        std::vector<std::string> result;
        for (const Trace& trace : traces())
            result.push_back(trace.text);
        return result;
    }

private:
    static void failTest(void*, const char* file, unsigned line, const char* text)
    {
        if (file != nullptr)
            ADD_FAILURE_AT(file, static_cast<int>(line)) << text;
        else
            ADD_FAILURE() << text;
    }
};
// NOLINTEND(readability-convert-member-functions-to-static)

} // namespace tarn::mock
