// Subscriptions to the device service's events. The IPC library keeps them; here the arguments are checked and failures traced.
//
// The traces have the same tag as those of tarn_api.cpp. This file has fewer lines than come before the first command function
// there, so that tag and line still tell which function failed.
#include "caller_id.h"
#include "tarn_frame.h"
#include "trace.h"

namespace
{

constexpr char kService[] = "TARN";
constexpr char kTag[] = "tarn_api";

constexpr char kEventNames[][32] = {
    "EVT_RADIO_STATUS_CHANGED",  "EVT_RADIO_OPR_CHANNEL_CHANGED", "EVT_RADIO_OPR_BANDWIDTH_CHANGED",
    "EVT_AP_ASSOCIATED_CHANGED", "EVT_AP_WPS_WIN_STATUS_CHANGED",
};
constexpr std::uint32_t kEventCount = sizeof kEventNames / sizeof kEventNames[0];

using Request = std::uint32_t (*)(const char* callerId, const char* serviceId, std::uint32_t evt, KorIilEventHandler handler);

bool refused(const char* callerId, std::uint32_t evt, std::uint32_t line)
{
    const char* text = nullptr;
    if (callerId == nullptr)
        text = "handle is NULL";
    else if (!tarn::isCallerId(callerId))
        text = "id is invalid"; // unlike the command functions' text, this one does not name the id
    else if (evt - 1 >= kEventCount)
        text = "evt is invalid";
    else
        return false;
    tarn::trace(kTag, line, text);
    return true;
}

// A time-out is TARN_FAILED here, unlike the command functions' TARN_TIMED_OUT.
std::uint32_t ask(Request request, const char* failureFormat, const char* callerId, std::uint32_t evt,
                  KorIilEventHandler handler, std::uint32_t line)
{
    if (refused(callerId, evt, line))
        return TARN_REJECTED;
    const std::uint32_t status = request(callerId, kService, evt, handler);
    if (status == 0)
        return TARN_OK;
    KorIilTrace(tarn::kTraceLevel, kTag, line, failureFormat, kEventNames[evt - 1], tarnIpcStatusName(status));
    return TARN_FAILED;
}

} // namespace

uint32_t tarnSubscribeEvent(const char* callerId, uint32_t evt, const void*, KorIilEventHandler handler)
{
    return ask(KorIilSubscribeEvent, "fail to KorIilSubscribeEvent(%s), err = %s", callerId, evt, handler, __LINE__);
}

uint32_t tarnCancelEvent(const char* callerId, uint32_t evt, const void*, KorIilEventHandler handler)
{
    return ask(KorIilCancelEvent, "fail to KorIilCancelEvent(%s), err = %s", callerId, evt, handler, __LINE__);
}
