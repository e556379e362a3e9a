#include "checker.h"

#include "fault_trap.h"
#include "support/ipc_status_names.h"

#include <algorithm>
#include <cstring>

namespace conformance
{

using tarn::calling::ParameterKind;
using tarn::calling::ParameterType;
using tarn::contract::Argument;
using tarn::contract::Check;
using tarn::contract::Direction;
using tarn::contract::Encoding;
using tarn::contract::Type;

namespace
{

constexpr char kCaller[] = "conformance";

// Size of the buffers whose size the caller says, where it does not matter.
constexpr std::uint32_t kSomeSize = 48;

const std::vector<std::uint8_t> kNoReply;

constexpr Style kStyles[] = {
    {Numbers::kDistinct, Texts::kShort, Blocks::kDistinct},    {Numbers::kZero, Texts::kEmpty, Blocks::kZeros},
    {Numbers::kHighest, Texts::kFull, Blocks::kHighest},       {Numbers::kOne, Texts::kTooLong, Blocks::kZeroInside},
    {Numbers::kDistinct, Texts::kMuchTooLong, Blocks::kZeros}, {Numbers::kZero, Texts::kFull, Blocks::kDistinct},
    {Numbers::kHighest, Texts::kEmpty, Blocks::kZeroInside},
};

constexpr Placement kPlacements[] = {Placement::kFront, Placement::kBack};

constexpr std::uint32_t kTimeout = 7;

// What a parameter must be for an argument of the contract.
std::string parameterDeviation(const Argument& argument, const ParameterType& parameter, std::uint32_t recordSize)
{
    const auto number = [&](std::size_t size)
    {
        const bool fits = parameter.kind == ParameterKind::kNumber && parameter.size == size;
        return fits ? std::string() : "expected a number of " + std::to_string(size) + " bytes";
    };
    const auto pointer = [&](const char* to, bool fits)
    {
        const bool isConst = argument.direction == Direction::kIn;
        if (parameter.kind != ParameterKind::kPointer || !fits)
            return std::string("expected a pointer to ") + to;
        return parameter.isConst == isConst ? std::string()
                                            : std::string("expected a pointer to ") + (isConst ? "const" : "what is not const");
    };

    if (argument.isNumber())
        return number(argument.type == Type::kU32 ? 4 : argument.type == Type::kU16 ? 2 : 1);
    const bool isPlain = !parameter.isRecord && !parameter.isCharacter;
    switch (argument.type)
    {
    case Type::kU32:
        return pointer("a number of 4 bytes", isPlain && parameter.size == 4);
    case Type::kU16:
        return pointer("a number of 2 bytes", isPlain && parameter.size == 2);
    case Type::kU8:
        return pointer("a number of 1 byte", isPlain && parameter.size == 1);
    case Type::kText:
        return pointer("char", parameter.isCharacter);
    case Type::kBytes:
        return pointer("bytes", isPlain && parameter.size <= 1);
    case Type::kRecord:
        break;
    }
    const std::string record = "a record of " + std::to_string(recordSize) + " bytes";
    if (argument.direction == Direction::kOut)
        return pointer(record.c_str(), parameter.isRecord && parameter.size == recordSize);
    const bool fits = parameter.kind == ParameterKind::kRecord && parameter.size == recordSize;
    return fits ? std::string() : "expected " + record + " by value";
}

// A reply in which every byte of the message differs from zero.
std::vector<std::uint8_t> filledReply(std::uint32_t length, std::uint32_t seed)
{
    std::vector<std::uint8_t> reply(length);
    for (std::size_t i = 0; i < reply.size(); ++i)
        reply[i] = static_cast<std::uint8_t>(1 + (i * 7 + i / 255 * 3 + seed) % 255);
    return reply;
}

void storeStatus(std::vector<std::uint8_t>& reply, std::uint32_t offset, std::uint32_t status)
{
    std::memcpy(reply.data() + offset, &status, sizeof status);
}

std::string caseOf(const Style& style, Placement placement)
{
    return "numbers " + std::to_string(static_cast<int>(style.numbers)) + ", texts " +
           std::to_string(static_cast<int>(style.texts)) + ", blocks " + std::to_string(static_cast<int>(style.blocks)) +
           (placement == Placement::kFront ? ", at the front of a page" : ", at the end of a page");
}

} // namespace

Checker::Checker(const tarn::contract::Contract& contract, const tarn::contract::Command& command,
                 const tarn::calling::Callable& function)
    : contract_(contract),
      command_(command),
      function_(function),
      lines_(linesOf(command.function)),
      callerArea_(sharedArea(command.arguments.size()))
{
}

template <typename Action>
std::string Checker::deviationIn(Action action)
{
    try
    {
        case_.clear();
        action();
    }
    catch (const Deviation& deviation)
    {
        return deviation.text;
    }
    return "";
}

void Checker::fail(const std::string& text) const
{
    throw Deviation{command_.function + (case_.empty() ? "" : " (" + case_ + ")") + ": " + text};
}

void Checker::require(bool holds, const std::string& expected, const std::string& got) const
{
    if (!holds)
        fail("expected " + expected + ", got " + got);
}

PreparedCall Checker::prepare(const Style& style, Placement placement) const
{
    return PreparedCall(contract_, command_, style, placement, kSomeSize, kSomeSize);
}

std::int64_t Checker::call(const char* callerId, const PreparedCall& prepared)
{
    struct Context
    {
        const tarn::calling::Callable& function;
        const char* callerId;
        const std::vector<tarn::calling::ArgumentValue>& values;
        std::int64_t result;
    } context{function_, callerId, prepared.values(), 0};

    recorder_.clear();
    const void* address = nullptr;
    const auto action = [](void* opaque)
    {
        Context& it = *static_cast<Context*>(opaque);
        it.result = it.function.call(it.callerId, it.values.data(), it.values.size());
    };
    if (!runTrapped(action, &context, &address))
    {
        std::ptrdiff_t offset = 0;
        if (callerArea_.covers(address, offset))
            fail("touches byte " + std::to_string(offset) + " of a caller id of " + std::to_string(callerArea_.runSize()) +
                 " bytes");
        const std::string place = prepared.describeAddress(address);
        fail("touches memory that is not its own: " + (place.empty() ? "none of the caller's" : place));
    }
    return context.result;
}

void Checker::requireSent(const char* callerId, const PreparedCall& prepared) const
{
    const SentMessage& sent = recorder_.sent;
    require(recorder_.sentCount == 1, "one message", std::to_string(recorder_.sentCount));
    require(sent.service == contract_.service, "service " + contract_.service, sent.service);
    require(sent.command == command_.command, "command " + std::to_string(command_.command), std::to_string(sent.command));
    require(sent.wait == command_.wait, "wait " + std::to_string(command_.wait), std::to_string(sent.wait));
    require(sent.length == command_.length, "a message of " + std::to_string(command_.length), std::to_string(sent.length));
    require(sent.callerId == callerId, "the caller's own pointer as the caller id", "another one");
    require(sent.aligned, "a message at a multiple of 4", "one that is not");

    const std::vector<std::uint8_t> expected = prepared.expectedMessage();
    if (expected == sent.bytes)
        return;
    const auto differing = std::mismatch(expected.begin(), expected.end(), sent.bytes.begin());
    fail("the message differs at offset " + std::to_string(differing.first - expected.begin()) + ": expected " +
         std::to_string(*differing.first) + ", got " + std::to_string(*differing.second));
}

void Checker::requireTrace(const std::string& format) const
{
    require(recorder_.traceCount == 1, "one trace, \"" + format + "\"", std::to_string(recorder_.traceCount));
    require(recorder_.trace.format == format, "the trace \"" + format + "\"", "\"" + recorder_.trace.format + "\"");
    require(recorder_.trace.level == 1, "a trace of level 1", std::to_string(recorder_.trace.level));
    require(recorder_.trace.tag == contract_.traceTag, "the trace tag " + contract_.traceTag, recorder_.trace.tag);
    require(lines_.contain(recorder_.trace.line),
            "a line of the function in the trace, " + std::to_string(lines_.first) + " to " + std::to_string(lines_.last),
            std::to_string(recorder_.trace.line));
}

void Checker::requireNoTrace() const
{
    require(recorder_.traceCount == 0, "no trace", "\"" + recorder_.trace.format + "\"");
}

void Checker::requireResult(std::int64_t result, std::int64_t expected) const
{
    require(result == expected, "the result " + std::to_string(expected), std::to_string(result));
}

void Checker::requireMemory(const PreparedCall& prepared, const std::vector<std::uint8_t>* reply) const
{
    if (const std::string text = prepared.memoryDeviation(reply); !text.empty())
        fail(text);
}

std::int64_t Checker::resultOf(std::uint32_t status) const
{
    return contract_.result.isSigned ? std::int64_t{static_cast<std::int32_t>(status)} : std::int64_t{status};
}

bool Checker::hasSizeArgument(Encoding encoding) const
{
    return std::any_of(command_.arguments.begin(), command_.arguments.end(),
                       [&](const Argument& argument)
                       { return argument.encoding == encoding && !argument.sizeArgument.empty(); });
}

std::string Checker::signature()
{
    return deviationIn(
        [&]
        {
            const std::vector<ParameterType>& parameters = *function_.parameters;
            require(parameters.size() == command_.arguments.size(),
                    std::to_string(command_.arguments.size()) + " arguments behind the caller id",
                    std::to_string(parameters.size()));
            require(function_.signedResult == contract_.result.isSigned,
                    contract_.result.isSigned ? "a signed result" : "an unsigned result", "the other");
            for (std::size_t i = 0; i < parameters.size(); ++i)
            {
                const Argument& argument = command_.arguments[i];
                const tarn::contract::RecordType* const record = contract_.record(argument.record);
                const std::string text = parameterDeviation(argument, parameters[i], record == nullptr ? 0 : record->size);
                if (!text.empty())
                    fail(argument.name + ": " + text);
            }
        });
}

std::string Checker::requests()
{
    return deviationIn(
        [&]
        {
            recorder_.answerWith(0, kNoReply);
            for (const Placement placement : kPlacements)
                for (const Style& style : kStyles)
                {
                    case_ = caseOf(style, placement);
                    const PreparedCall prepared(contract_, command_, style, placement, kSomeSize, kSomeSize);
                    const std::vector<std::uint8_t> reply = prepared.expectedMessage();
                    const std::int64_t result = call(kCaller, prepared);
                    requireSent(kCaller, prepared);
                    requireNoTrace();
                    requireResult(result, 0);
                    requireMemory(prepared, &reply);
                }
        });
}

void Checker::checkReply(const std::vector<std::uint8_t>& reply, Placement placement, std::uint32_t callerSize,
                         std::uint32_t bufferSize)
{
    const PreparedCall prepared(contract_, command_, kStyles[0], placement, callerSize, bufferSize);
    recorder_.answerWith(0, reply);
    const std::int64_t result = call(kCaller, prepared);
    std::uint32_t status = 0;
    std::memcpy(&status, reply.data() + command_.statusOffset(), sizeof status);
    requireSent(kCaller, prepared);
    requireNoTrace();
    requireResult(result, resultOf(status));
    requireMemory(prepared, &reply);
}

// Replies whose texts end everywhere around the end of the caller's buffer, and nowhere.
void Checker::checkReplyTexts(std::uint32_t callerSize, std::uint32_t bufferSize)
{
    for (const Argument& argument : command_.arguments)
    {
        if (argument.direction != Direction::kOut || argument.encoding != Encoding::kText)
            continue;
        const std::uint32_t size = argument.sizeArgument.empty() ? argument.size : callerSize;
        for (const std::uint32_t end : {0u, 1u, 20u, size - 2, size - 1, size, size + 1})
        {
            std::vector<std::uint8_t> reply = filledReply(command_.length, end);
            if (end >= command_.statusOffset() - argument.offset)
                continue;
            reply[argument.offset + end] = 0;
            for (const Placement placement : kPlacements)
            {
                case_ = "a text that ends at " + std::to_string(end) + " for a buffer of " + std::to_string(size);
                checkReply(reply, placement, callerSize, bufferSize);
            }
        }
    }
}

void Checker::checkStatuses()
{
    for (const std::uint32_t status : {0u, 1u, 2u, 3u, 7u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu, 0x01020304u})
    {
        case_ = "the reply status " + std::to_string(status);
        std::vector<std::uint8_t> reply = filledReply(command_.length, 5);
        storeStatus(reply, command_.statusOffset(), status);
        checkReply(reply, Placement::kBack, kSomeSize, kSomeSize);
    }
}

// A caller may say that a buffer is larger than any text, where only the text is written.
void Checker::checkHugeSizes()
{
    if (!hasSizeArgument(Encoding::kText))
        return;
    std::vector<std::uint8_t> reply = filledReply(command_.length, 9);
    for (const Argument& argument : command_.arguments)
        if (argument.direction == Direction::kOut && argument.encoding == Encoding::kText)
            reply[argument.offset + 20] = 0;
    for (const std::uint32_t size : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
    {
        case_ = "a size of " + std::to_string(size);
        checkReply(reply, Placement::kBack, size, 21);
    }
}

std::string Checker::replies()
{
    return deviationIn(
        [&]
        {
            std::vector<std::uint32_t> sizes = {kSomeSize};
            if (hasSizeArgument(Encoding::kText) || hasSizeArgument(Encoding::kBlock))
                sizes = {kSomeSize, 0, 1, 2, 8, 64, 65, 512, 8192, 8199, 8200, 8201, 8219, 8220, 8221, 8224, 8225, 12000};
            for (const std::uint32_t size : sizes)
            {
                for (const Placement placement : kPlacements)
                {
                    case_ = "a reply without a zero for buffers of " + std::to_string(size);
                    checkReply(filledReply(command_.length, 0), placement, size, size);
                    case_ = "another reply without a zero for buffers of " + std::to_string(size);
                    checkReply(filledReply(command_.length, 128), placement, size, size);
                }
                checkReplyTexts(size, size);
            }
            for (const std::uint8_t byte : {std::uint8_t{0}, std::uint8_t{0xFF}})
            {
                case_ = "a reply of one byte, " + std::to_string(byte);
                checkReply(std::vector<std::uint8_t>(command_.length, byte), Placement::kBack, kSomeSize, kSomeSize);
            }
            checkStatuses();
            checkHugeSizes();
        });
}

std::string Checker::ipcFailures()
{
    return deviationIn(
        [&]
        {
            std::vector<std::uint32_t> statuses = {22, 100, 255, 256, 0x80000000u, 0xFFFFFFFFu};
            for (std::uint32_t status = 1; status < tarn::test::kIpcStatusCount; ++status)
                statuses.push_back(status);
            const std::vector<std::uint8_t> reply = filledReply(command_.length, 77);
            for (const std::uint32_t status : statuses)
            {
                case_ = "the IPC status " + std::to_string(status);
                recorder_.answerWith(status, reply);
                const PreparedCall prepared = prepare(kStyles[0], Placement::kBack);
                const std::int64_t result = call(kCaller, prepared);
                requireSent(kCaller, prepared);
                requireTrace("fail to KorIilExecute(), err = %s");
                const std::string name = recorder_.trace.argument == nullptr ? "NULL" : recorder_.trace.argument;
                require(name == tarn::test::ipcStatusName(status), std::string("the name ") + tarn::test::ipcStatusName(status),
                        name);
                requireResult(result, status == kTimeout ? contract_.result.timedOut : contract_.result.failed);
                requireMemory(prepared, nullptr);
            }
        });
}

// `failing` has one bit for each check that is to fail.
void Checker::checkRefusal(std::uint32_t failing, bool empty)
{
    PreparedCall prepared = prepare(kStyles[0], Placement::kBack);
    std::string message; // of the first check that fails
    case_ = "refusing";
    for (std::size_t i = 0; i < command_.checks.size(); ++i)
    {
        if ((failing >> i & 1) == 0)
            continue;
        prepared.violate(command_.checks[i], empty);
        case_ += " " + command_.checks[i].argument;
        if (message.empty())
            message = command_.checks[i].message;
    }
    const std::int64_t result = call(kCaller, prepared);
    require(recorder_.sentCount == 0, "no message", std::to_string(recorder_.sentCount));
    requireTrace(message);
    requireResult(result, contract_.result.rejected);
    requireMemory(prepared, nullptr);
}

std::string Checker::refusals()
{
    return deviationIn(
        [&]
        {
            recorder_.answerWith(0, kNoReply);
            const std::uint32_t sets = 1u << command_.checks.size();
            for (std::uint32_t failing = 1; failing < sets; ++failing)
            {
                checkRefusal(failing, false);
                checkRefusal(failing, true);
            }
        });
}

std::string Checker::optionalPointers()
{
    return deviationIn(
        [&]
        {
            std::vector<std::string> optional;
            for (const Argument& argument : command_.arguments)
                if (argument.optional)
                    optional.push_back(argument.name);
            const std::vector<std::uint8_t> reply = filledReply(command_.length, 33);
            recorder_.answerWith(0, reply);
            std::uint32_t status = 0;
            std::memcpy(&status, reply.data() + command_.statusOffset(), sizeof status);
            const std::uint32_t sets = optional.empty() ? 0 : 1u << optional.size();
            for (std::uint32_t leftOut = 0; leftOut < sets; ++leftOut)
            {
                PreparedCall prepared = prepare(kStyles[0], Placement::kBack);
                case_ = "leaving out";
                for (std::size_t i = 0; i < optional.size(); ++i)
                    if ((leftOut >> i & 1) != 0)
                    {
                        prepared.omit(optional[i]);
                        case_ += " " + optional[i];
                    }
                const std::int64_t result = call(kCaller, prepared);
                requireSent(kCaller, prepared);
                requireNoTrace();
                requireResult(result, resultOf(status));
                requireMemory(prepared, &reply);
            }
        });
}

void Checker::checkRefusedCallerId(const char* callerId, const std::string& format, bool othersWrong)
{
    PreparedCall prepared = prepare(kStyles[0], Placement::kBack);
    if (othersWrong)
        for (const Check& check : command_.checks)
            prepared.violate(check, false);
    const std::int64_t result = call(callerId, prepared);
    require(recorder_.sentCount == 0, "no message", std::to_string(recorder_.sentCount));
    requireTrace(format);
    if (format.find("%s") != std::string::npos)
        require(recorder_.trace.argument == callerId, "the caller's own pointer in the trace", "another one");
    requireResult(result, contract_.result.rejected);
    requireMemory(prepared, nullptr);
}

void Checker::checkCallerId(const std::vector<std::uint8_t>& bytes, Placement placement, bool valid)
{
    const std::uint8_t* const run = callerArea_.place(bytes.size(), placement);
    callerArea_.put(bytes.data(), bytes.size());
    const char* const callerId = reinterpret_cast<const char*>(run);
    if (!valid)
    {
        checkRefusedCallerId(callerId, contract_.invalidCaller, false);
        checkRefusedCallerId(callerId, contract_.invalidCaller, true);
        return;
    }
    const PreparedCall prepared = prepare(kStyles[0], Placement::kBack);
    const std::int64_t result = call(callerId, prepared);
    requireSent(callerId, prepared);
    requireNoTrace();
    requireResult(result, 0);
}

std::string Checker::callerIds()
{
    return deviationIn(
        [&]
        {
            recorder_.answerWith(0, kNoReply);
            case_ = "a null caller id";
            checkRefusedCallerId(nullptr, "handle is NULL", false);
            checkRefusedCallerId(nullptr, "handle is NULL", true);

            // Only the first byte has to be a printable character.
            for (unsigned first = 0; first < 256; ++first)
            {
                case_ = "a caller id whose first byte is " + std::to_string(first);
                checkCallerId({static_cast<std::uint8_t>(first), 0}, Placement::kBack, first >= 32 && first < 128);
            }
            case_ = "an empty caller id at the end of a page";
            checkCallerId({0}, Placement::kBack, false);
            case_ = "a caller id with all kinds of bytes";
            checkCallerId({'a', 1, 0x80, 0xFF, '%', 's', 0}, Placement::kBack, true);

            for (const Placement placement : kPlacements)
                for (const std::size_t length : {1u, 2u, 30u, 31u, 32u, 33u, 200u})
                {
                    case_ = "a caller id of " + std::to_string(length) + " characters";
                    std::vector<std::uint8_t> id(length + 1, 'i');
                    id.back() = 0;
                    checkCallerId(id, placement, length < 32);
                }
            case_ = "32 characters at the end of a page and no NUL";
            checkCallerId(std::vector<std::uint8_t>(32, 'i'), Placement::kBack, false);
        });
}

std::string Checker::everything()
{
    for (const auto check : {&Checker::signature, &Checker::requests, &Checker::replies, &Checker::ipcFailures,
                             &Checker::refusals, &Checker::optionalPointers, &Checker::callerIds})
        if (std::string deviation = (this->*check)(); !deviation.empty())
            return deviation;
    return "";
}

Checker::Site Checker::failureSite()
{
    recorder_.answerWith(1, kNoReply);
    call(kCaller, prepare(kStyles[0], Placement::kBack));
    return {recorder_.trace.tag, recorder_.trace.line};
}

} // namespace conformance
