#include "call.h"

#include <cstring>

#include "caller_id.h"
#include "tarn_frame.h"
#include "trace.h"

namespace tarn
{
namespace
{

constexpr std::uint32_t kTimeout = 7;

// What the steps do differently for each family. Texts are arrays, not pointers, so that the loader has nothing to relocate.
struct Convention
{
    char service[16];
    char tag[24];
    char invalidCaller[20]; // a format: the device service's names the caller id, the other ignores it
    std::uint32_t rejected;
    std::uint32_t failed;
    std::uint32_t timedOut;
};

constexpr std::uint32_t kQtnFailed = static_cast<std::uint32_t>(TARN_QTN_FAILED);

constexpr Convention kConventions[] = {
    {"TARN", "tarn_api", "invalid id is %s", TARN_REJECTED, TARN_FAILED, TARN_TIMED_OUT},
    {"QTN_RPC_PROXY", "tarn_qtn_monitor_api", "handle is invalid", kQtnFailed, kQtnFailed, kQtnFailed},
    {"QTN_MIRROR", "tarn_qtn_monitor_api", "handle is invalid", kQtnFailed, kQtnFailed, kQtnFailed},
};

const Convention& conventionOf(const CallHead& head)
{
    return kConventions[head.site.family()];
}

unsigned char* messageBehind(CallHead& head)
{
    return reinterpret_cast<unsigned char*>(&head + 1);
}

const CallHead& headOf(const void* message)
{
    return static_cast<const CallHead*>(message)[-1];
}

// Failures are out of line, so that a call that succeeds saves no registers for what a trace would say.

[[gnu::noinline]] std::uint32_t rejectCaller(const CallHead& head)
{
    const Convention& convention = conventionOf(head);
    KorIilTrace(kTraceLevel, convention.tag, head.site.line(), convention.invalidCaller, head.callerId);
    return convention.rejected;
}

[[gnu::noinline]] std::uint32_t failed(const CallHead& head, std::uint32_t status)
{
    const Convention& convention = conventionOf(head);
    KorIilTrace(kTraceLevel, convention.tag, head.site.line(), "fail to KorIilExecute(), err = %s", tarnIpcStatusName(status));
    return status == kTimeout ? convention.timedOut : convention.failed;
}

} // namespace

std::uint32_t open(CallHead& head, const char* callerId, Site site)
{
    head.callerId = callerId;
    head.site = site;

    if (callerId == nullptr)
        return reject(head, "handle is NULL");
    if (!isCallerId(callerId))
        return rejectCaller(head);
    for (std::uint32_t i = 0; i != head.site.pointers(); ++i)
        if (head.required[i].pointer == nullptr)
            return reject(head, head.required[i].text);

    std::memset(messageBehind(head), 0, head.site.length());
    return 0;
}

[[gnu::noinline]] std::uint32_t reject(const CallHead& head, const char* text)
{
    const Convention& convention = conventionOf(head);
    trace(convention.tag, head.site.line(), text);
    return convention.rejected;
}

std::uint32_t execute(void* message, std::uint32_t command, std::uint32_t wait)
{
    const CallHead& head = headOf(message);
    const char* const service = conventionOf(head).service;
    const std::uint32_t status = KorIilExecute(head.callerId, service, wait, command, head.site.length(), message);
    return status == 0 ? 0 : failed(head, status);
}

std::uint32_t finish(void* message, std::uint32_t command, std::uint32_t wait)
{
    if (const std::uint32_t failure = execute(message, command, wait))
        return failure;

    std::uint32_t status;
    std::memcpy(&status, static_cast<unsigned char*>(message) + headOf(message).site.length() - sizeof status, sizeof status);
    return status;
}

} // namespace tarn
