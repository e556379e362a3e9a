/* The scripted platform for tests with GoogleTest. `kor_iil_mock.h` says what each step means.
 *
 *     tarn::mock::Platform platform;
 *     platform.expect("TarnGetRadioNeighboringStatus").with("radioId", 1).reply("status", "running");
 *     EXPECT_EQ(TarnGetRadioNeighboringStatus("ledd", 1, &status), 0u);
 *
 * An unexpected call, other inputs than expected or a missing call fail the running test, at the line that scripted the
 * call. */
#pragma once

#include "kor_iil_mock.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>
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

// A name of the library's, and the line of the test that has it.
struct Name
{
    // Not explicit, so that a name is written as a text.
    Name(const char* text, const char* testFile = __builtin_FILE(), unsigned testLine = __builtin_LINE())
        : name(text), file(testFile), line(testLine)
    {
    }

    const char* name;
    const char* file;
    unsigned line;
};

// What an argument or a field holds: a number; a text, which is also the name of a number's value or a MAC address; or bytes,
// those of a record included. Not explicit, so that each is written as it is.
class Value
{
public:
    template <typename Number, std::enable_if_t<std::is_integral_v<Number> || std::is_enum_v<Number>, int> = 0>
    Value(Number number) : text_(textOf(number))
    {
    }

    Value(const char* text) : text_(text)
    {
    }

    Value(std::string text) : text_(std::move(text))
    {
    }

    Value(std::vector<std::uint8_t> bytes) : isText_(false), bytes_(std::move(bytes))
    {
    }

    template <std::size_t size>
    Value(const std::uint8_t (&bytes)[size]) : Value(std::vector<std::uint8_t>(bytes, bytes + size))
    {
    }

    template <typename Record, std::enable_if_t<std::is_class_v<Record> && std::is_trivially_copyable_v<Record>, int> = 0>
    Value(const Record& record) : isText_(false), bytes_(sizeof record)
    {
        std::memcpy(bytes_.data(), &record, sizeof record);
    }

private:
    friend class Call;
    friend class Event;

    template <typename Number>
    static std::string textOf(Number number)
    {
        if constexpr (std::is_enum_v<Number>)
            return std::to_string(static_cast<std::underlying_type_t<Number>>(number));
        else
            return std::to_string(number);
    }

    bool isText_ = true;
    std::string text_;
    std::vector<std::uint8_t> bytes_;
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

    Call& times(std::uint32_t times)
    {
        KorIilMockTimes(call_, times);
        return *this;
    }

    Call& inAnyOrder()
    {
        KorIilMockInAnyOrder(call_);
        return *this;
    }

    Call& anyTimes()
    {
        KorIilMockAnyTimes(call_);
        return *this;
    }

    // An input, and an output, by its name.
    Call& with(const char* name, const Value& value)
    {
        if (value.isText_)
            KorIilMockInputText(call_, name, value.text_.c_str());
        else
            KorIilMockInputBytes(call_, name, value.bytes_.data(), static_cast<std::uint32_t>(value.bytes_.size()));
        return *this;
    }

    Call& reply(const char* name, const Value& value)
    {
        if (value.isText_)
            KorIilMockOutputText(call_, name, value.text_.c_str());
        else
            KorIilMockOutputBytes(call_, name, value.bytes_.data(), static_cast<std::uint32_t>(value.bytes_.size()));
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

    Call& status(std::int32_t status)
    {
        return this->status(static_cast<std::uint32_t>(status));
    }

    Call& status(const char* name)
    {
        KorIilMockStatusNamed(call_, name);
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

// Data of an event, by its fields.
class Event
{
public:
    explicit Event(KorIilMockEvent* event) : event_(event)
    {
    }

    Event& with(const char* field, const Value& value)
    {
        if (value.isText_)
            KorIilMockEventText(event_, field, value.text_.c_str());
        else
            KorIilMockEventBytes(event_, field, value.bytes_.data(), static_cast<std::uint32_t>(value.bytes_.size()));
        return *this;
    }

    unsigned deliver()
    {
        return KorIilMockDeliverEvent(event_);
    }

private:
    KorIilMockEvent* event_;
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

    // A call of a function by its name.
    Call expect(const Name& function)
    {
        return Call(KorIilMockExpectFunctionAt(function.file, function.line, function.name));
    }

    Call expect(const char* serviceId, std::uint32_t cmdId, std::uint32_t msgLen, const char* file = __builtin_FILE(),
                unsigned line = __builtin_LINE())
    {
        return Call(KorIilMockExpectAt(file, line, serviceId, cmdId, msgLen));
    }

    // By the event's name.
    Call expectSubscribe(const Name& event)
    {
        return Call(KorIilMockExpectSubscribeNamedAt(event.file, event.line, event.name));
    }

    Call expectCancel(const Name& event)
    {
        return Call(KorIilMockExpectCancelNamedAt(event.file, event.line, event.name));
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

    Event event(const Name& event)
    {
        return Event(KorIilMockEventNamedAt(event.file, event.line, event.name));
    }

    void useLayout(const Name& path)
    {
        KorIilMockUseLayoutAt(path.file, path.line, path.name);
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
