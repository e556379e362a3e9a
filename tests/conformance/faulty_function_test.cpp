// The conformance checks must notice a function that does something wrong. Here is one that can make each of many mistakes,
// held against the row of the function whose work it does.
#include "checker.h"
#include "function_lines.h"

#include "kor_iil.h"
#include "tarn_frame.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

namespace calling = tarn::calling;
namespace contract = tarn::contract;

namespace
{

constexpr char kModel[] = "tarn_qcsapi_wps_get_param";
constexpr std::uint32_t kLength = 9376;
constexpr std::uint32_t kResult = 1152;
constexpr std::uint32_t kResultSize = 8200;
constexpr std::uint32_t kStatus = 9372;

enum class Mistake
{
    kNone,
    kSendsTwice,
    kSendsBeforeChecking,
    kSendsCopyOfCallerId,
    kSendsFromOddAddress,
    kLeavesDirtInMessage,
    kInterpretsText,
    kCutsTextOneEarly,
    kReadsBehindText,
    kReadsCallerIdTooFar,
    kTakesLongCallerId,
    kTakesHighBytes,
    kTakesAnyFirstByte,
    kTracesTwice,
    kTracesOtherLevel,
    kTracesOtherTag,
    kTracesLineInFrontOfFunction,
    kTracesLineBehindFunction,
    kTracesOtherText,
    kTracesStatusNumber,
    kTracesReplyStatus,
    kForgetsUnknownStatus,
    kChecksInOtherOrder,
    kChecksCallerIdLast,
    kWritesOutputOnIpcFailure,
    kWritesOutputOnlyOnStatusZero,
    kWritesBehindOutput,
    kWritesInFrontOfOutput,
    kPadsOutput,
    kForgetsNul,
    kWritesToSizeZero,
    kReadsSizeAsSigned,
    kReadsBehindResultArea,
    kWritesIntoInput,
    kReturnsUnsignedStatus,
    kReturnsOwnStatus
};

Mistake mistake = Mistake::kNone;

bool makes(Mistake which)
{
    return mistake == which;
}

void trace(const char* format, const char* argument)
{
    const std::uint32_t level = makes(Mistake::kTracesOtherLevel) ? 2 : 1;
    const char* const tag = makes(Mistake::kTracesOtherTag) ? "tarn_api" : "tarn_qtn_monitor_api";
    const conformance::FunctionLines& lines = conformance::linesOf(kModel);
    const std::uint32_t line = makes(Mistake::kTracesLineInFrontOfFunction) ? lines.first - 1
                               : makes(Mistake::kTracesLineBehindFunction)  ? lines.last + 1
                                                                            : lines.first;
    for (int i = 0; i < (makes(Mistake::kTracesTwice) ? 2 : 1); ++i)
        KorIilTrace(level, tag, line, format, argument);
}

bool isCallerId(const char* id)
{
    const bool printable =
        makes(Mistake::kTakesHighBytes) ? static_cast<unsigned char>(id[0]) >= 32 : static_cast<signed char>(id[0]) >= 32;
    if (!printable && !makes(Mistake::kTakesAnyFirstByte))
        return false;
    const std::size_t most = makes(Mistake::kTakesLongCallerId) || makes(Mistake::kReadsCallerIdTooFar) ? 33 : 32;
    for (std::size_t i = 1; i < most; ++i)
        if (id[i] == '\0')
            return i < 32 || makes(Mistake::kTakesLongCallerId);
    return false;
}

const char* refusalOfArguments(const char* name, const char* value)
{
    if (makes(Mistake::kChecksInOtherOrder) && value == nullptr)
        return "param_value is NULL";
    if (name == nullptr)
        return makes(Mistake::kTracesOtherText) ? "ifname is null" : "ifname is NULL";
    return value == nullptr ? "param_value is NULL" : nullptr;
}

bool refused(const char* id, const char* name, const char* value)
{
    const char* text = refusalOfArguments(name, value);
    if (!makes(Mistake::kChecksCallerIdLast) || text == nullptr)
    {
        if (id == nullptr)
            text = "handle is NULL";
        else if (!isCallerId(id))
            text = "handle is invalid";
    }
    if (text != nullptr)
        trace(text, nullptr);
    return text != nullptr;
}

void fill(unsigned char* message, const char* name, std::uint32_t parameter)
{
    std::memset(message, 0, kLength);
    auto* const field = reinterpret_cast<char*>(message);
    const std::size_t size = makes(Mistake::kCutsTextOneEarly) ? 64 : 65;
    if (makes(Mistake::kInterpretsText) && name[0] == '%')
        ++name;
    if (makes(Mistake::kReadsBehindText))
    {
        volatile char behind = name[std::strlen(name) + 1];
        static_cast<void>(behind);
    }
    std::snprintf(field, size, "%s", name);
    std::memcpy(message + 68, &parameter, sizeof parameter);
    if (makes(Mistake::kLeavesDirtInMessage))
        message[9351] = 1;
}

void copyOut(const unsigned char* message, char* value, std::uint32_t size)
{
    if (makes(Mistake::kWritesToSizeZero) && size == 0)
        value[0] = '\0';
    if (size == 0 || (makes(Mistake::kReadsSizeAsSigned) && static_cast<std::int32_t>(size) < 0))
        return;
    const std::size_t area = makes(Mistake::kReadsBehindResultArea) ? kLength - kResult : kResultSize;
    const auto* const text = reinterpret_cast<const char*>(message + kResult);
    const std::size_t length = strnlen(text, std::min<std::size_t>(size - 1, area));
    std::memcpy(value, text, length);
    if (!makes(Mistake::kForgetsNul))
        value[length] = '\0';
    if (makes(Mistake::kPadsOutput) && size < 1000)
        std::memset(value + length, 0, size - length);
    if (makes(Mistake::kWritesBehindOutput))
        value[size] = '\0';
    if (makes(Mistake::kWritesInFrontOfOutput))
        value[-1] = '\0';
}

std::int64_t failure(std::uint32_t status, const unsigned char* message, char* value, std::uint32_t size)
{
    const char* const name = makes(Mistake::kForgetsUnknownStatus) && status > 21 ? "BUSY" : tarnIpcStatusName(status);
    if (makes(Mistake::kTracesStatusNumber))
        trace("fail to KorIilExecute(), err = %p", name);
    else
        trace("fail to KorIilExecute(), err = %s", name);
    if (makes(Mistake::kWritesOutputOnIpcFailure))
        copyOut(message, value, size);
    return -1;
}

std::int64_t getParameter(const char* id, char* name, std::uint32_t parameter, char* value, std::uint32_t size)
{
    alignas(4) unsigned char storage[kLength + 4] = {};
    unsigned char* const message = storage + (makes(Mistake::kSendsFromOddAddress) ? 2 : 0);
    if (makes(Mistake::kSendsBeforeChecking))
        KorIilExecute(id, "QTN_RPC_PROXY", 3, 38, kLength, message);
    if (refused(id, name, value))
        return -1;
    fill(message, name, parameter);
    if (makes(Mistake::kWritesIntoInput))
        name[0] = '\0';

    const std::string copy = id;
    const char* const caller = makes(Mistake::kSendsCopyOfCallerId) ? copy.c_str() : id;
    if (makes(Mistake::kSendsTwice))
        KorIilExecute(caller, "QTN_RPC_PROXY", 3, 38, kLength, message);
    const std::uint32_t ipcStatus = KorIilExecute(caller, "QTN_RPC_PROXY", 3, 38, kLength, message);
    if (ipcStatus != 0)
        return failure(ipcStatus, message, value, size);

    std::uint32_t status = 0;
    std::memcpy(&status, message + kStatus, sizeof status);
    if (status == 0 || !makes(Mistake::kWritesOutputOnlyOnStatusZero))
        copyOut(message, value, size);
    if (makes(Mistake::kTracesReplyStatus) && status != 0)
        trace("fail", nullptr);
    if (makes(Mistake::kReturnsUnsignedStatus))
        return status;
    return makes(Mistake::kReturnsOwnStatus) && status != 0 ? -1 : static_cast<std::int32_t>(status);
}

std::string report()
{
    const contract::Row row = contract::find(kModel);
    calling::Callable function = *calling::find(kModel);
    function.invoke = [](calling::AnyFunction, const char* id, const calling::ArgumentValue* values)
    {
        return getParameter(id, static_cast<char*>(values[0].pointer), values[1].number, static_cast<char*>(values[2].pointer),
                            values[3].number);
    };
    return conformance::Checker(*row.contract, *row.command, function).everything();
}

struct Case
{
    Mistake mistake;
    const char* name;
    const char* report;
};

class FaultyFunction : public testing::TestWithParam<Case>
{
protected:
    void TearDown() override
    {
        mistake = Mistake::kNone;
    }
};

TEST_P(FaultyFunction, IsNoticed)
{
#ifdef __SANITIZE_THREAD__
    if (GetParam().mistake == Mistake::kReadsBehindText || GetParam().mistake == Mistake::kReadsCallerIdTooFar)
        GTEST_SKIP() << "the thread sanitizer does not come back from a second memory fault";
#endif
    mistake = GetParam().mistake;
    EXPECT_THAT(report(), testing::HasSubstr(GetParam().report));
}

const Case kCases[] = {
    {Mistake::kSendsTwice, "SendsTwice", "expected one message, got 2"},
    {Mistake::kSendsBeforeChecking, "SendsBeforeChecking", "expected one message, got 2"},
    {Mistake::kSendsCopyOfCallerId, "SendsCopyOfCallerId", "expected the caller's own pointer as the caller id"},
    {Mistake::kSendsFromOddAddress, "SendsFromOddAddress", "expected a message at a multiple of 4"},
    {Mistake::kLeavesDirtInMessage, "LeavesDirtInMessage", "the message differs at offset 9351: expected 0, got 1"},
    {Mistake::kInterpretsText, "InterpretsText", "the message differs at offset 0"},
    {Mistake::kCutsTextOneEarly, "CutsTextOneEarly", "the message differs at offset 63"},
    {Mistake::kReadsBehindText, "ReadsBehindText", "touches memory that is not its own: ifname["},
    {Mistake::kReadsCallerIdTooFar, "ReadsCallerIdTooFar", "touches byte 32 of a caller id of 32 bytes"},
    {Mistake::kTakesLongCallerId, "TakesLongCallerId", "a caller id of 32 characters"},
    {Mistake::kTakesHighBytes, "TakesHighBytes", "a caller id whose first byte is 128"},
    {Mistake::kTakesAnyFirstByte, "TakesAnyFirstByte", "a caller id whose first byte is 0"},
    {Mistake::kTracesTwice, "TracesTwice", "expected one trace"},
    {Mistake::kTracesOtherLevel, "TracesOtherLevel", "expected a trace of level 1, got 2"},
    {Mistake::kTracesOtherTag, "TracesOtherTag", "expected the trace tag tarn_qtn_monitor_api, got tarn_api"},
    {Mistake::kTracesLineInFrontOfFunction, "TracesLineInFrontOfFunction", "expected a line of the function in the trace"},
    {Mistake::kTracesLineBehindFunction, "TracesLineBehindFunction", "expected a line of the function in the trace"},
    {Mistake::kTracesOtherText, "TracesOtherText", "expected the trace \"ifname is NULL\", got \"ifname is null\""},
    {Mistake::kTracesStatusNumber, "TracesStatusNumber", "expected the trace \"fail to KorIilExecute(), err = %s\""},
    {Mistake::kTracesReplyStatus, "TracesReplyStatus", "expected no trace, got \"fail\""},
    {Mistake::kForgetsUnknownStatus, "ForgetsUnknownStatus", "(the IPC status 22): expected the name Unknown, got BUSY"},
    {Mistake::kChecksInOtherOrder, "ChecksInOtherOrder", "refusing ifname param_value"},
    {Mistake::kChecksCallerIdLast, "ChecksCallerIdLast", "expected the trace \"handle is NULL\", got \"ifname is NULL\""},
    {Mistake::kWritesOutputOnIpcFailure, "WritesOutputOnIpcFailure", "param_value[0]"},
    {Mistake::kWritesOutputOnlyOnStatusZero, "WritesOutputOnlyOnStatusZero", "param_value[0]"},
    {Mistake::kWritesBehindOutput, "WritesBehindOutput", "param_value[48]"},
    {Mistake::kWritesInFrontOfOutput, "WritesInFrontOfOutput", "param_value[-1]"},
    {Mistake::kPadsOutput, "PadsOutput", "param_value[1]"},
    {Mistake::kForgetsNul, "ForgetsNul", "expected 00, got"},
    {Mistake::kWritesToSizeZero, "WritesToSizeZero", "buffers of 0): param_value[0]"},
    {Mistake::kReadsSizeAsSigned, "ReadsSizeAsSigned", "a size of 2147483648"},
    {Mistake::kReadsBehindResultArea, "ReadsBehindResultArea", "buffers of 8219): param_value[8200]"},
    {Mistake::kWritesIntoInput, "WritesIntoInput", "ifname[0]"},
    {Mistake::kReturnsUnsignedStatus, "ReturnsUnsignedStatus", "expected the result -"},
    {Mistake::kReturnsOwnStatus, "ReturnsOwnStatus", "expected the result"},
};

INSTANTIATE_TEST_SUITE_P(Each, FaultyFunction, testing::ValuesIn(kCases), [](const auto& test) { return test.param.name; });

TEST(FaultyFunction, IsTakenWithoutAMistake)
{
    EXPECT_EQ(report(), "");
}

} // namespace
