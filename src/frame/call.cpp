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

// What a family's steps differ in. Texts stand in arrays, not behind pointers, so that the loader has nothing to relocate.
struct Manner
{
    char service[16];
    char tag[24];
    char invalidCaller[20]; // a format: the device service's names the caller id, the other ignores it
    std::uint32_t rejected;
    std::uint32_t failed;
    std::uint32_t timedOut;
};

constexpr std::uint32_t kQtnFailed = static_cast<std::uint32_t>(TARN_QTN_FAILED);

constexpr Manner kManners[] = {
    {"TARN", "tarn_api", "invalid id is %s", TARN_REJECTED, TARN_FAILED, TARN_TIMED_OUT},
    {"QTN_RPC_PROXY", "tarn_qtn_monitor_api", "handle is invalid", kQtnFailed, kQtnFailed, kQtnFailed},
    {"QTN_MIRROR", "tarn_qtn_monitor_api", "handle is invalid", kQtnFailed, kQtnFailed, kQtnFailed},
};

Site siteOf(const CallHead& head)
{
    Site site(0, Family::kDevice, 0);
    site.packed = head.site;
    return site;
}

const Manner& mannerOf(const CallHead& head)
{
    return kManners[siteOf(head).family()];
}

unsigned char* messageBehind(CallHead& head)
{
    return reinterpret_cast<unsigned char*>(&head + 1);
}

const CallHead& headOf(const void* message)
{
    return static_cast<const CallHead*>(message)[-1];
}

std::uint32_t openRequiring(const Required* required, std::uint32_t count, CallHead& head, const char* callerId,
                            std::uint32_t site)
{
    head.callerId = callerId;
    head.site = site;

    if (callerId == nullptr)
        return reject(head, "handle is NULL");
    if (!isCallerId(callerId))
    {
        const Manner& manner = mannerOf(head);
        KorIilTrace(kTraceLevel, manner.tag, siteOf(head).line(), manner.invalidCaller, callerId);
        return manner.rejected;
    }
    for (const Required* each = required; each != required + count; ++each)
        if (each->pointer == nullptr)
            return reject(head, each->complaint);

    std::memset(messageBehind(head), 0, siteOf(head).length());
    return 0;
}

} // namespace

std::uint32_t open(CallHead& head, const char* callerId, std::uint32_t site)
{
    return openRequiring(nullptr, 0, head, callerId, site);
}

std::uint32_t open(CallHead& head, const char* callerId, const void* pointer, const char* complaint, std::uint32_t site)
{
    const Required required[] = {{pointer, complaint}};
    return openRequiring(required, 1, head, callerId, site);
}

std::uint32_t open(CallHead& head, const char* callerId, Required first, Required second, std::uint32_t site)
{
    const Required required[] = {first, second};
    return openRequiring(required, 2, head, callerId, site);
}

std::uint32_t open(CallHead& head, const char* callerId, Required first, Required second, Required third, std::uint32_t site)
{
    const Required required[] = {first, second, third};
    return openRequiring(required, 3, head, callerId, site);
}

std::uint32_t reject(const CallHead& head, const char* complaint)
{
    const Manner& manner = mannerOf(head);
    trace(manner.tag, siteOf(head).line(), complaint);
    return manner.rejected;
}

std::uint32_t execute(void* message, std::uint32_t commandAndWait)
{
    const CallHead& head = headOf(message);
    const Manner& manner = mannerOf(head);
    const Site site = siteOf(head);
    const std::uint32_t status =
        KorIilExecute(head.callerId, manner.service, commandAndWait >> 8, commandAndWait & 0xFF, site.length(), message);
    if (status == 0)
        return 0;
    KorIilTrace(kTraceLevel, manner.tag, site.line(), "fail to KorIilExecute(), err = %s", tarnIpcStatusName(status));
    return status == kTimeout ? manner.timedOut : manner.failed;
}

} // namespace tarn
