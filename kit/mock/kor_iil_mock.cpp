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
using tarn::mock::Kind;
using tarn::mock::nameOf;
using tarn::mock::Part;

// What an unexpected call is answered with: "ERR".
constexpr std::uint32_t kUnexpected = 1;

struct Complaint
{
    std::string file; // empty: no place in the test
    unsigned line;
    std::string text;
};

// "a_test.c:12: ", or nothing.
std::string placeOf(const Complaint& complaint)
{
    return complaint.file.empty() ? "" : complaint.file + ":" + std::to_string(complaint.line) + ": ";
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

struct Platform
{
    std::deque<std::unique_ptr<KorIilMockCall>> script; // what is still to come
    std::vector<std::unique_ptr<KorIilMockCall>> done;
    std::vector<Complaint> complaints;
    std::vector<Subscription> subscriptions;
    std::deque<RecordedTrace> traces; // a deque, so that records stay where they are

    KorIilMockComplaintHandler onComplaint = nullptr;
    void* complaintContext = nullptr;
    KorIilMockExecuteHandler onExecute = nullptr;
    void* executeContext = nullptr;
    KorIilMockTraceHandler onTrace = nullptr;
    void* traceContext = nullptr;
};

std::mutex& mutex()
{
    static std::mutex instance;
    return instance;
}

// To be touched with the mutex held.
Platform& platform()
{
    static Platform instance;
    return instance;
}

using Guard = std::lock_guard<std::mutex>;

// The complaint handler is called without the lock, as it may well ask for the traces.
void complain(const std::string& file, unsigned line, const std::string& text)
{
    KorIilMockComplaintHandler handler = nullptr;
    void* context = nullptr;
    {
        const Guard guard(mutex());
        platform().complaints.push_back({file, line, text});
        handler = platform().onComplaint;
        context = platform().complaintContext;
    }
    if (handler != nullptr)
        handler(context, file.empty() ? nullptr : file.c_str(), line, text.c_str());
}

void complain(const KorIilMockCall& call, const std::string& text)
{
    complain(call.file, call.line, call.name() + ": " + text);
}

KorIilMockCall* expect(Kind kind, const char* file, unsigned line, const char* serviceId, std::uint32_t number,
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
        platform().script.push_back(std::move(call));
    }
    if (kind == Kind::kExecute && length < sizeof(std::uint32_t))
        complain(*scripted, "the script gives the message " + std::to_string(length) +
                                " bytes, which leaves no room for its reply status");
    return scripted;
}

// A run of bytes for the script, unless it does not fit the message.
void addPart(const KorIilMockCall& call, std::vector<Part>& parts, Part part)
{
    if (call.kind != Kind::kExecute)
        complain(call, "the script gives it bytes (" + part.label + "), but it has no message");
    else if (part.offset > call.length || part.bytes.size() > call.length - part.offset)
        complain(call, "the script puts " + part.label + ", " + std::to_string(part.bytes.size()) + " bytes, at offset " +
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

// Takes the head of the script if it is this call, and complains if it is not or carries something else. Null if it is not.
const KorIilMockCall* take(const ActualCall& actual)
{
    const std::string name = nameOf(actual.kind, actual.serviceId == nullptr ? "NULL" : actual.serviceId, actual.number);
    std::unique_lock<std::mutex> lock(mutex());
    if (platform().script.empty())
    {
        lock.unlock();
        complain("", 0, "unexpected call: " + name + "; no further call is expected");
        return nullptr;
    }
    if (!platform().script.front()->isFor(actual))
    {
        // Held together as text before the lock goes, since another thread may take the head.
        const KorIilMockCall& head = *platform().script.front();
        const Complaint wrong{head.file, head.line, "unexpected call: " + name + "; expected here: " + head.name()};
        lock.unlock();
        complain(wrong.file, wrong.line, wrong.text);
        return nullptr;
    }
    platform().done.push_back(std::move(platform().script.front()));
    platform().script.pop_front();
    const KorIilMockCall* const call = platform().done.back().get();
    lock.unlock();

    if (const std::string text = call->differences(actual); !text.empty())
        complain(*call, "not as scripted\n" + text);
    return call;
}

} // namespace

extern "C" {

void KorIilMockReset(void)
{
    const Guard guard(mutex());
    platform() = Platform();
}

KorIilMockCall* KorIilMockExpectAt(const char* file, unsigned line, const char* serviceId, uint32_t cmdId, uint32_t msgLen)
{
    return expect(Kind::kExecute, file, line, serviceId, cmdId, msgLen);
}

KorIilMockCall* KorIilMockExpectSubscribeAt(const char* file, unsigned line, const char* serviceId, uint32_t evt)
{
    return expect(Kind::kSubscribe, file, line, serviceId, evt, 0);
}

KorIilMockCall* KorIilMockExpectCancelAt(const char* file, unsigned line, const char* serviceId, uint32_t evt)
{
    return expect(Kind::kCancel, file, line, serviceId, evt, 0);
}

void KorIilMockCaller(KorIilMockCall* call, const char* callerId)
{
    call->callerId = callerId;
}

void KorIilMockWait(KorIilMockCall* call, uint32_t wait)
{
    if (call->kind != Kind::kExecute)
        complain(*call, "the script gives it a wait, but it has none");
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
        complain(*call,
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
        complain(*call, "the script lets it fail with IPC status 0, which is success");
    call->ipcStatus = ipcStatus;
}

unsigned KorIilMockDeliver(const char* serviceId, uint32_t evt, const void* data, uint32_t length)
{
    std::vector<Subscription> receivers;
    {
        const Guard guard(mutex());
        for (const Subscription& each : platform().subscriptions)
            if (each.serviceId == serviceId && each.evt == evt)
                receivers.push_back(each);
    }
    // Without the lock, as a handler may call the library.
    for (const Subscription& each : receivers)
        each.handler(serviceId, evt, data, length);
    return static_cast<unsigned>(receivers.size());
}

unsigned KorIilMockTraceCount(void)
{
    const Guard guard(mutex());
    return static_cast<unsigned>(platform().traces.size());
}

const KorIilMockTrace* KorIilMockTraceAt(unsigned index)
{
    const Guard guard(mutex());
    return index < platform().traces.size() ? &platform().traces[index].shown : nullptr;
}

unsigned KorIilMockVerify(FILE* out)
{
    std::deque<std::unique_ptr<KorIilMockCall>> missing;
    {
        const Guard guard(mutex());
        missing.swap(platform().script);
    }
    for (const auto& call : missing)
        complain(*call, "expected, but never made");

    std::vector<Complaint> complaints;
    {
        const Guard guard(mutex());
        complaints.swap(platform().complaints);
    }
    if (out != nullptr)
        for (const Complaint& each : complaints)
            std::fprintf(out, "%s%s\n", placeOf(each).c_str(), each.text.c_str());
    KorIilMockReset();
    return static_cast<unsigned>(complaints.size());
}

void KorIilMockOnComplaint(KorIilMockComplaintHandler handler, void* context)
{
    const Guard guard(mutex());
    platform().onComplaint = handler;
    platform().complaintContext = context;
}

void KorIilMockOnExecute(KorIilMockExecuteHandler handler, void* context)
{
    const Guard guard(mutex());
    platform().onExecute = handler;
    platform().executeContext = context;
}

void KorIilMockOnTrace(KorIilMockTraceHandler handler, void* context)
{
    const Guard guard(mutex());
    platform().onTrace = handler;
    platform().traceContext = context;
}

uint32_t KorIilExecute(const char* callerId, const char* serviceId, uint32_t wait, uint32_t cmdId, uint32_t msgLen, void* msg)
{
    KorIilMockExecuteHandler handler = nullptr;
    void* context = nullptr;
    {
        const Guard guard(mutex());
        handler = platform().onExecute;
        context = platform().executeContext;
    }
    if (handler != nullptr)
        return handler(context, callerId, serviceId, wait, cmdId, msgLen, msg);

    const ActualCall actual{Kind::kExecute, callerId, serviceId, cmdId, wait, msgLen, static_cast<std::uint8_t*>(msg)};
    const KorIilMockCall* const call = take(actual);
    if (call == nullptr)
        return kUnexpected;
    call->answer(actual);
    return call->ipcStatus;
}

uint32_t KorIilSubscribeEvent(const char* callerId, const char* serviceId, uint32_t evt, KorIilEventHandler handler)
{
    const KorIilMockCall* const call = take({Kind::kSubscribe, callerId, serviceId, evt, 0, 0, nullptr});
    if (call == nullptr)
        return kUnexpected;
    if (call->ipcStatus == 0 && handler == nullptr)
    {
        complain(*call, "the handler is NULL, and no event can be delivered to that");
    }
    else if (call->ipcStatus == 0)
    {
        const Guard guard(mutex());
        platform().subscriptions.push_back({serviceId, evt, handler});
    }
    return call->ipcStatus;
}

uint32_t KorIilCancelEvent(const char* callerId, const char* serviceId, uint32_t evt, KorIilEventHandler handler)
{
    const KorIilMockCall* const call = take({Kind::kCancel, callerId, serviceId, evt, 0, 0, nullptr});
    if (call == nullptr)
        return kUnexpected;
    if (call->ipcStatus != 0)
        return call->ipcStatus;

    bool wasSubscribed = false;
    {
        const Guard guard(mutex());
        std::vector<Subscription>& subscriptions = platform().subscriptions;
        const auto found = std::find(subscriptions.begin(), subscriptions.end(), Subscription{serviceId, evt, handler});
        wasSubscribed = found != subscriptions.end();
        if (wasSubscribed)
            subscriptions.erase(found);
    }
    if (!wasSubscribed)
        complain(*call, "that handler is not subscribed to it");
    return 0;
}

void KorIilTrace(uint32_t level, const char* fileTag, uint32_t line, const char* format, ...)
{
    KorIilMockTraceHandler handler = nullptr;
    void* context = nullptr;
    {
        const Guard guard(mutex());
        handler = platform().onTrace;
        context = platform().traceContext;
    }
    va_list arguments;
    va_start(arguments, format);
    if (handler != nullptr)
    {
        handler(context, level, fileTag, line, format, arguments);
    }
    else
    {
        const std::string text = tarn::base::vformat(format, arguments);
        const Guard guard(mutex());
        RecordedTrace& trace = platform().traces.emplace_back(RecordedTrace{fileTag, format, text, {}});
        trace.shown = {level, trace.fileTag.c_str(), line, trace.format.c_str(), trace.text.c_str()};
    }
    va_end(arguments);
}

} // extern "C"
