// KorIilExecute: checks the arguments, records the call if asked to, and sends it. KorIilAskCounters is a call of its own kind.
#include "identifiers.h"
#include "kor_iil.h"
#include "last_status.h"
#include "recorder.h"
#include "round_trip.h"
#include "thread_guards.h"

#include <cstdint>
#include <new>
#include <optional>

namespace koriil
{
namespace
{

std::uint32_t checkArguments(const char* callerId, const char* serviceId, std::uint32_t wait, std::uint32_t length,
                             const void* message)
{
    if (callerId == nullptr || serviceId == nullptr || (message == nullptr && length > 0) || wait == 0)
        return KOR_IIL_BAD_PARAM;
    if (!isCallerId(callerId))
        return KOR_IIL_UNKNOWN_SRC_ID;
    if (!isServiceId(serviceId))
        return KOR_IIL_UNKNOWN_DST_ID;
    return length <= KOR_IIL_MAX_LENGTH ? KOR_IIL_OK : KOR_IIL_OVERSIZE;
}

thread_local std::uint32_t lastStatus = KOR_IIL_OK;

std::uint32_t execute(const char* callerId, const char* serviceId, std::uint32_t wait, std::uint32_t cmdId,
                      std::uint32_t msgLen, void* msg)
try
{
    const CancellationDeferred deferred;
    std::uint32_t status = checkArguments(callerId, serviceId, wait, msgLen, msg);
    const void* const message = msgLen > 0 ? msg : ""; // without a byte, the pointer may be NULL
    std::optional<RecordedCall> record;
    if (isRecording())
        record.emplace(callerId, serviceId, wait, cmdId, msgLen, status == KOR_IIL_OK ? message : nullptr);
    if (status == KOR_IIL_OK)
    {
        PacketHeader request;
        request.kind = PacketKind::kRequest;
        request.command = cmdId;
        request.length = msgLen;
        copyIdentifier(request.name, callerId);
        status = roundTrip(serviceId, request, msg, Deadline(wait));
    }
    if (record)
        record->finish(status, status == KOR_IIL_OK ? message : nullptr);
    return status;
}
catch (const std::bad_alloc&)
{
    return KOR_IIL_NO_MEM;
}

} // namespace

std::uint32_t remembered(std::uint32_t status)
{
    lastStatus = status;
    return status;
}

} // namespace koriil

extern "C" uint32_t KorIilExecute(const char* callerId, const char* serviceId, uint32_t wait, uint32_t cmdId, uint32_t msgLen,
                                  void* msg)
{
    return koriil::remembered(koriil::execute(callerId, serviceId, wait, cmdId, msgLen, msg));
}

extern "C" uint32_t KorIilLastStatus()
{
    return koriil::lastStatus;
}

extern "C" uint32_t KorIilAskCounters(const char* serviceId, uint32_t wait, KorIilServiceCounters* counters)
try
{
    using namespace koriil;

    constexpr char kCaller[] = "koriil";
    if (const std::uint32_t status = checkArguments(kCaller, serviceId, wait, sizeof *counters, counters))
        return status;
    const CancellationDeferred deferred;
    PacketHeader request;
    request.kind = PacketKind::kCounters;
    request.length = sizeof *counters;
    copyIdentifier(request.name, kCaller);
    KorIilServiceCounters answer = {};
    const std::uint32_t status = roundTrip(serviceId, request, &answer, Deadline(wait));
    if (status == KOR_IIL_OK)
        *counters = answer;
    return status;
}
catch (const std::bad_alloc&)
{
    return KOR_IIL_NO_MEM;
}
