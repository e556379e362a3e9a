#include "kor_iil_mock.h"

#include "base/format.h"
#include "base/quote.h"
#include "kor_iil.h"
#include "mock_state.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace
{

using tarn::mock::ActualCall;
using tarn::mock::addCall;
using tarn::mock::addPart;
using tarn::mock::CallKind;
using tarn::mock::copyOf;
using tarn::mock::fail;
using tarn::mock::Failure;
using tarn::mock::Guard;
using tarn::mock::MockState;
using tarn::mock::mutex;
using tarn::mock::Part;
using tarn::mock::RecordedTrace;
using tarn::mock::setHook;
using tarn::mock::state;
using tarn::mock::Subscription;
using tarn::mock::take;

// The IPC status that answers an unexpected call: "ERR".
constexpr std::uint32_t kUnexpected = 1;

// "a_test.c:12: ", or nothing.
std::string placeOf(const Failure& failure)
{
    return failure.file.empty() ? "" : failure.file + ":" + std::to_string(failure.line) + ": ";
}

Part bytesPart(std::uint32_t offset, const void* bytes, std::uint32_t size, const std::string& label)
{
    Part part{offset, std::vector<std::uint8_t>(size), label};
    if (size > 0)
        std::memcpy(part.bytes.data(), bytes, size);
    return part;
}

Part wordPart(std::uint32_t offset, std::uint32_t word)
{
    return bytesPart(offset, &word, sizeof word, tarn::base::format("word 0x%08x", word));
}

Part bytePart(std::uint32_t offset, std::uint8_t byte)
{
    return bytesPart(offset, &byte, sizeof byte, tarn::base::format("byte 0x%02x", byte));
}

Part runPart(std::uint32_t offset, const void* bytes, std::uint32_t size)
{
    return bytesPart(offset, bytes, size, "run of " + std::to_string(size) + " bytes");
}

std::string textLabel(const char* text)
{
    return "text " + tarn::base::inQuotes(text);
}

std::string timesText(std::uint32_t times)
{
    return times == 1 ? "once" : std::to_string(times) + " times";
}

} // namespace

extern "C" {

void KorIilMockReset(void)
{
    const Guard guard(mutex());
    state() = MockState();
}

KorIilMockCall* KorIilMockExpectAt(const char* file, unsigned line, const char* serviceId, uint32_t cmdId, uint32_t msgLen)
{
    KorIilMockCall* const call = addCall(CallKind::kExecute, file, line, serviceId, cmdId, msgLen);
    if (msgLen < sizeof(std::uint32_t))
        fail(*call,
             "the script gives the message " + std::to_string(msgLen) + " bytes, which leaves no room for its reply status");
    return call;
}

KorIilMockCall* KorIilMockExpectSubscribeAt(const char* file, unsigned line, const char* serviceId, uint32_t evt)
{
    return addCall(CallKind::kSubscribe, file, line, serviceId, evt, 0);
}

KorIilMockCall* KorIilMockExpectCancelAt(const char* file, unsigned line, const char* serviceId, uint32_t evt)
{
    return addCall(CallKind::kCancel, file, line, serviceId, evt, 0);
}

void KorIilMockCaller(KorIilMockCall* call, const char* callerId)
{
    const Guard guard(mutex());
    call->callerId = callerId;
}

void KorIilMockWait(KorIilMockCall* call, uint32_t wait)
{
    if (call->kind != CallKind::kExecute)
        fail(*call, "the script gives it a wait, but it has none");
    const Guard guard(mutex());
    call->wait = wait;
}

void KorIilMockInAnyOrder(KorIilMockCall* call)
{
    const Guard guard(mutex());
    call->isInOrder = false;
}

void KorIilMockTimes(KorIilMockCall* call, uint32_t times)
{
    if (times == 0)
        return fail(*call, "the script expects it 0 times; expected 1 or more, or no such line");
    if (call->most == 0)
        return;
    const Guard guard(mutex());
    call->least = call->most = times;
}

void KorIilMockAnyTimes(KorIilMockCall* call)
{
    if (call->most == 0)
        return;
    const Guard guard(mutex());
    call->isInOrder = false;
    call->least = 0;
    call->most = tarn::mock::kAnyTimes;
}

void KorIilMockSent(KorIilMockCall* call, uint32_t offset, const void* bytes, uint32_t size)
{
    addPart(*call, &KorIilMockCall::sent, runPart(offset, bytes, size));
}

void KorIilMockSentWord(KorIilMockCall* call, uint32_t offset, uint32_t word)
{
    addPart(*call, &KorIilMockCall::sent, wordPart(offset, word));
}

void KorIilMockSentByte(KorIilMockCall* call, uint32_t offset, uint8_t byte)
{
    addPart(*call, &KorIilMockCall::sent, bytePart(offset, byte));
}

void KorIilMockSentText(KorIilMockCall* call, uint32_t offset, uint32_t size, const char* text)
{
    const std::size_t length = std::strlen(text);
    if (length >= size)
    {
        fail(*call,
             "the script expects the " + textLabel(text) + " in " + std::to_string(size) + " bytes, where it does not fit");
        return;
    }
    std::vector<std::uint8_t> padded(size);
    std::memcpy(padded.data(), text, length);
    addPart(*call, &KorIilMockCall::sent, {offset, padded, textLabel(text)});
}

void KorIilMockSentRestZero(KorIilMockCall* call)
{
    const Guard guard(mutex());
    call->restZero = true;
}

void KorIilMockReply(KorIilMockCall* call, uint32_t offset, const void* bytes, uint32_t size)
{
    addPart(*call, &KorIilMockCall::reply, runPart(offset, bytes, size));
}

void KorIilMockReplyWord(KorIilMockCall* call, uint32_t offset, uint32_t word)
{
    addPart(*call, &KorIilMockCall::reply, wordPart(offset, word));
}

void KorIilMockReplyByte(KorIilMockCall* call, uint32_t offset, uint8_t byte)
{
    addPart(*call, &KorIilMockCall::reply, bytePart(offset, byte));
}

void KorIilMockReplyText(KorIilMockCall* call, uint32_t offset, const char* text)
{
    addPart(*call, &KorIilMockCall::reply,
            bytesPart(offset, text, static_cast<std::uint32_t>(std::strlen(text)) + 1, textLabel(text)));
}

void KorIilMockStatus(KorIilMockCall* call, uint32_t status)
{
    const Guard guard(mutex());
    call->status = status;
}

void KorIilMockFail(KorIilMockCall* call, uint32_t ipcStatus)
{
    if (ipcStatus == 0)
        fail(*call, "the script lets it fail with IPC status 0, which is success");
    const Guard guard(mutex());
    call->ipcStatus = ipcStatus;
}

unsigned KorIilMockDeliver(const char* serviceId, uint32_t evt, const void* data, uint32_t length)
{
    std::vector<Subscription> receivers;
    {
        const Guard guard(mutex());
        for (const Subscription& subscription : state().subscriptions)
            if (subscription.serviceId == serviceId && subscription.evt == evt)
                receivers.push_back(subscription);
    }
    // Without the lock, as a handler may call the library.
    for (const Subscription& receiver : receivers)
        receiver.handler(serviceId, evt, data, length);
    return static_cast<unsigned>(receivers.size());
}

unsigned KorIilMockTraceCount(void)
{
    const Guard guard(mutex());
    return static_cast<unsigned>(state().traces.size());
}

const KorIilMockTrace* KorIilMockTraceAt(unsigned index)
{
    const Guard guard(mutex());
    return index < state().traces.size() ? &state().traces[index].shown : nullptr;
}

unsigned KorIilMockVerify(FILE* out)
{
    std::vector<std::unique_ptr<KorIilMockCall>> script;
    {
        const Guard guard(mutex());
        script.swap(state().script);
    }
    for (const auto& call : script)
        if (call->made < call->least)
            fail(*call, call->made == 0 && call->least == 1
                            ? "expected, but never made"
                            : "expected " + timesText(call->least) + ", but made " + timesText(call->made));

    std::vector<Failure> failures;
    {
        const Guard guard(mutex());
        failures.swap(state().failures);
    }
    if (out != nullptr)
        for (const Failure& failure : failures)
            std::fprintf(out, "%s%s\n", placeOf(failure).c_str(), failure.text.c_str());
    KorIilMockReset();
    return static_cast<unsigned>(failures.size());
}

void KorIilMockOnFailure(KorIilMockFailureHandler handler, void* context)
{
    setHook(&MockState::onFailure, handler, context);
}

void KorIilMockOnExecute(KorIilMockExecuteHandler handler, void* context)
{
    setHook(&MockState::onExecute, handler, context);
}

void KorIilMockOnTrace(KorIilMockTraceHandler handler, void* context)
{
    setHook(&MockState::onTrace, handler, context);
}

uint32_t KorIilExecute(const char* callerId, const char* serviceId, uint32_t wait, uint32_t cmdId, uint32_t msgLen, void* msg)
{
    if (const auto hook = copyOf(&MockState::onExecute); hook.handler != nullptr)
        return hook.handler(hook.context, callerId, serviceId, wait, cmdId, msgLen, msg);

    const ActualCall actual{CallKind::kExecute, callerId, serviceId, cmdId, wait, msgLen, static_cast<std::uint8_t*>(msg)};
    const KorIilMockCall* const call = take(actual);
    if (call == nullptr)
        return kUnexpected;
    call->answer(actual);
    return call->ipcStatus;
}

uint32_t KorIilSubscribeEvent(const char* callerId, const char* serviceId, uint32_t evt, KorIilEventHandler handler)
{
    const KorIilMockCall* const call = take({CallKind::kSubscribe, callerId, serviceId, evt, 0, 0, nullptr});
    if (call == nullptr)
        return kUnexpected;
    if (call->ipcStatus == 0 && handler == nullptr)
    {
        fail(*call, "the handler is NULL, and no event can be delivered to that");
    }
    else if (call->ipcStatus == 0)
    {
        const Guard guard(mutex());
        state().subscriptions.push_back({serviceId, evt, handler});
    }
    return call->ipcStatus;
}

uint32_t KorIilCancelEvent(const char* callerId, const char* serviceId, uint32_t evt, KorIilEventHandler handler)
{
    const KorIilMockCall* const call = take({CallKind::kCancel, callerId, serviceId, evt, 0, 0, nullptr});
    if (call == nullptr)
        return kUnexpected;
    if (call->ipcStatus != 0)
        return call->ipcStatus;

    bool wasSubscribed = false;
    {
        const Guard guard(mutex());
        std::vector<Subscription>& subscriptions = state().subscriptions;
        const auto found = std::find(subscriptions.begin(), subscriptions.end(), Subscription{serviceId, evt, handler});
        wasSubscribed = found != subscriptions.end();
        if (wasSubscribed)
            subscriptions.erase(found);
    }
    if (!wasSubscribed)
        fail(*call, "that handler is not subscribed to it");
    return 0;
}

void KorIilTrace(uint32_t level, const char* fileTag, uint32_t line, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    if (const auto hook = copyOf(&MockState::onTrace); hook.handler != nullptr)
    {
        hook.handler(hook.context, level, fileTag, line, format, arguments);
    }
    else
    {
        const std::string text = tarn::base::vformat(format, arguments);
        const Guard guard(mutex());
        RecordedTrace& trace = state().traces.emplace_back(RecordedTrace{fileTag, format, text, {}});
        trace.shown = {level, trace.fileTag.c_str(), line, trace.format.c_str(), trace.text.c_str()};
    }
    va_end(arguments);
}

} // extern "C"
