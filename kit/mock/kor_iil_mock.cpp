#include "kor_iil_mock.h"

#include "base/format.h"
#include "base/quote.h"
#include "kor_iil.h"
#include "script.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace
{

using tarn::mock::ActualCall;
using tarn::mock::CallKind;
using tarn::mock::nameOf;
using tarn::mock::Part;

// The IPC status that answers an unexpected call: "ERR".
constexpr std::uint32_t kUnexpected = 1;

struct Failure
{
    std::string file; // of the test; empty if the script has no call for it
    unsigned line;
    std::string text;
};

// "a_test.c:12: ", or nothing.
std::string placeOf(const Failure& failure)
{
    return failure.file.empty() ? "" : failure.file + ":" + std::to_string(failure.line) + ": ";
}

struct Subscription
{
    std::string serviceId;
    std::uint32_t evt;
    KorIilEventHandler handler;

    bool operator==(const Subscription& other) const
    {
        return serviceId == other.serviceId && evt == other.evt && handler == other.handler;
    }
};

struct RecordedTrace
{
    std::string fileTag;
    std::string format;
    std::string text;
    KorIilMockTrace shown;
};

// A handler of the test, and its context; without a handler, not in use.
template <typename Handler>
struct Hook
{
    Handler handler = nullptr;
    void* context = nullptr;
};

struct MockState
{
    std::deque<std::unique_ptr<KorIilMockCall>> script; // calls still to come
    std::vector<std::unique_ptr<KorIilMockCall>> done;
    std::vector<Failure> failures;
    std::vector<Subscription> subscriptions;
    std::deque<RecordedTrace> traces; // a deque: its elements keep their addresses

    Hook<KorIilMockFailureHandler> onFailure;
    Hook<KorIilMockExecuteHandler> onExecute;
    Hook<KorIilMockTraceHandler> onTrace;
};

std::mutex& mutex()
{
    static std::mutex instance;
    return instance;
}

// Accessed only with the mutex held.
MockState& state()
{
    static MockState instance;
    return instance;
}

using Guard = std::lock_guard<std::mutex>;

template <typename Handler>
void setHook(Hook<Handler> MockState::*hook, Handler handler, void* context)
{
    const Guard guard(mutex());
    state().*hook = {handler, context};
}

// A copy, which is called without the lock: the handler may call the mock's functions.
template <typename Handler>
Hook<Handler> copyOf(Hook<Handler> MockState::*hook)
{
    const Guard guard(mutex());
    return state().*hook;
}

void fail(const std::string& file, unsigned line, const std::string& text)
{
    {
        const Guard guard(mutex());
        state().failures.push_back({file, line, text});
    }
    if (const auto hook = copyOf(&MockState::onFailure); hook.handler != nullptr)
        hook.handler(hook.context, file.empty() ? nullptr : file.c_str(), line, text.c_str());
}

void fail(const KorIilMockCall& call, const std::string& text)
{
    fail(call.file, call.line, call.name() + ": " + text);
}

KorIilMockCall* expect(CallKind kind, const char* file, unsigned line, const char* serviceId, std::uint32_t number,
                       std::uint32_t length)
{
    auto call = std::make_unique<KorIilMockCall>();
    call->kind = kind;
    call->file = file;
    call->line = line;
    call->serviceId = serviceId;
    call->number = number;
    call->length = length;
    KorIilMockCall* const scripted = call.get();
    {
        const Guard guard(mutex());
        state().script.push_back(std::move(call));
    }
    if (kind == CallKind::kExecute && length < sizeof(std::uint32_t))
        fail(*scripted,
             "the script gives the message " + std::to_string(length) + " bytes, which leaves no room for its reply status");
    return scripted;
}

// Adds bytes to the script, unless they do not fit the message.
void addPart(const KorIilMockCall& call, std::vector<Part>& parts, Part part)
{
    if (call.kind != CallKind::kExecute)
        fail(call, "the script gives it bytes (" + part.label + "), but it has no message");
    else if (part.offset > call.length || part.bytes.size() > call.length - part.offset)
        fail(call, "the script puts " + part.label + ", " + std::to_string(part.bytes.size()) + " bytes, at offset " +
                       std::to_string(part.offset) + " of a message of " + std::to_string(call.length));
    else
        parts.push_back(std::move(part));
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

// Takes the first call of the script if it is this one, and otherwise fails the test and returns NULL. Other arguments or bytes
// than scripted fail the test too.
const KorIilMockCall* take(const ActualCall& actual)
{
    const std::string name = nameOf(actual.kind, actual.serviceId == nullptr ? "NULL" : actual.serviceId, actual.number);
    std::unique_lock<std::mutex> lock(mutex());
    if (state().script.empty())
    {
        lock.unlock();
        fail("", 0, "unexpected call: " + name + "; no further call is expected");
        return nullptr;
    }
    if (!state().script.front()->isFor(actual))
    {
        // Described before the lock is released, as another thread may then take the first call.
        const KorIilMockCall& first = *state().script.front();
        const Failure failure{first.file, first.line, "unexpected call: " + name + "; expected here: " + first.name()};
        lock.unlock();
        fail(failure.file, failure.line, failure.text);
        return nullptr;
    }
    state().done.push_back(std::move(state().script.front()));
    state().script.pop_front();
    const KorIilMockCall* const call = state().done.back().get();
    lock.unlock();

    if (const std::string text = call->differences(actual); !text.empty())
        fail(*call, "not as scripted\n" + text);
    return call;
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
    return expect(CallKind::kExecute, file, line, serviceId, cmdId, msgLen);
}

KorIilMockCall* KorIilMockExpectSubscribeAt(const char* file, unsigned line, const char* serviceId, uint32_t evt)
{
    return expect(CallKind::kSubscribe, file, line, serviceId, evt, 0);
}

KorIilMockCall* KorIilMockExpectCancelAt(const char* file, unsigned line, const char* serviceId, uint32_t evt)
{
    return expect(CallKind::kCancel, file, line, serviceId, evt, 0);
}

void KorIilMockCaller(KorIilMockCall* call, const char* callerId)
{
    call->callerId = callerId;
}

void KorIilMockWait(KorIilMockCall* call, uint32_t wait)
{
    if (call->kind != CallKind::kExecute)
        fail(*call, "the script gives it a wait, but it has none");
    call->wait = wait;
}

void KorIilMockSent(KorIilMockCall* call, uint32_t offset, const void* bytes, uint32_t size)
{
    addPart(*call, call->sent, runPart(offset, bytes, size));
}

void KorIilMockSentWord(KorIilMockCall* call, uint32_t offset, uint32_t word)
{
    addPart(*call, call->sent, wordPart(offset, word));
}

void KorIilMockSentByte(KorIilMockCall* call, uint32_t offset, uint8_t byte)
{
    addPart(*call, call->sent, bytePart(offset, byte));
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
    addPart(*call, call->sent, {offset, padded, textLabel(text)});
}

void KorIilMockSentRestZero(KorIilMockCall* call)
{
    call->restZero = true;
}

void KorIilMockReply(KorIilMockCall* call, uint32_t offset, const void* bytes, uint32_t size)
{
    addPart(*call, call->reply, runPart(offset, bytes, size));
}

void KorIilMockReplyWord(KorIilMockCall* call, uint32_t offset, uint32_t word)
{
    addPart(*call, call->reply, wordPart(offset, word));
}

void KorIilMockReplyByte(KorIilMockCall* call, uint32_t offset, uint8_t byte)
{
    addPart(*call, call->reply, bytePart(offset, byte));
}

void KorIilMockReplyText(KorIilMockCall* call, uint32_t offset, const char* text)
{
    addPart(*call, call->reply, bytesPart(offset, text, static_cast<std::uint32_t>(std::strlen(text)) + 1, textLabel(text)));
}

void KorIilMockStatus(KorIilMockCall* call, uint32_t status)
{
    call->status = status;
}

void KorIilMockFail(KorIilMockCall* call, uint32_t ipcStatus)
{
    if (ipcStatus == 0)
        fail(*call, "the script lets it fail with IPC status 0, which is success");
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
    std::deque<std::unique_ptr<KorIilMockCall>> missing;
    {
        const Guard guard(mutex());
        missing.swap(state().script);
    }
    for (const auto& call : missing)
        fail(*call, "expected, but never made");

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
