#include "observer.h"

#include "base/format.h"
#include "kor_iil.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>

// libkoriil alone has it.
#pragma weak KorIilKeepSubscription

namespace tarn::ctl
{

namespace
{

thread_local Observer* observing = nullptr;

} // namespace

Observer::Observer(Passage how) : passage(how), outer_(observing)
{
    observing = this;
}

Observer::~Observer()
{
    observing = outer_;
}

} // namespace tarn::ctl

using tarn::ctl::observing;
using tarn::ctl::Passage;

// The linker resolves these names: `__wrap_` is where the library's calls arrive, `__real_` is the platform's function.
// NOLINTBEGIN(bugprone-reserved-identifier): the names are the linker's
extern "C" {

uint32_t __real_KorIilExecute(const char* callerId, const char* serviceId, uint32_t wait, uint32_t cmdId, uint32_t msgLen,
                              void* msg);
uint32_t __real_KorIilSubscribeEvent(const char* callerId, const char* serviceId, uint32_t evt, KorIilEventHandler handler);
uint32_t __real_KorIilCancelEvent(const char* callerId, const char* serviceId, uint32_t evt, KorIilEventHandler handler);
void __real_KorIilTrace(uint32_t level, const char* fileTag, uint32_t line, const char* format, ...)
    __attribute__((format(printf, 4, 5)));

uint32_t __wrap_KorIilExecute(const char* callerId, const char* serviceId, uint32_t wait, uint32_t cmdId, uint32_t msgLen,
                              void* msg);
uint32_t __wrap_KorIilSubscribeEvent(const char* callerId, const char* serviceId, uint32_t evt, KorIilEventHandler handler);
uint32_t __wrap_KorIilCancelEvent(const char* callerId, const char* serviceId, uint32_t evt, KorIilEventHandler handler);
void __wrap_KorIilTrace(uint32_t level, const char* fileTag, uint32_t line, const char* format, ...)
    __attribute__((format(printf, 4, 5)));
}

namespace
{

// Records the request and, unless it is to be held back, sends it.
template <typename Send>
uint32_t observed(tarn::ctl::Request request, Send send)
{
    if (observing == nullptr)
        return send();

    tarn::ctl::Observation& seen = observing->seen;
    seen.request = std::move(request);
    if (observing->passage == Passage::kHold)
        return 0;
    const uint32_t status = send();
    seen.ipcStatus = status;
    return status;
}

} // namespace

uint32_t __wrap_KorIilExecute(const char* callerId, const char* serviceId, uint32_t wait, uint32_t cmdId, uint32_t msgLen,
                              void* msg)
{
    const auto* const bytes = static_cast<const unsigned char*>(msg);
    return observed({serviceId, wait, cmdId, tarn::ctl::Bytes(bytes, bytes + msgLen)},
                    [&]
                    {
                        if (observing != nullptr && observing->sender)
                            return observing->sender(*observing->seen.request, msg);
                        return __real_KorIilExecute(callerId, serviceId, wait, cmdId, msgLen, msg);
                    });
}

uint32_t __wrap_KorIilSubscribeEvent(const char* callerId, const char* serviceId, uint32_t evt, KorIilEventHandler handler)
{
    return observed({serviceId, 0, evt, {}},
                    [&]
                    {
                        if (observing == nullptr || observing->watcher == nullptr || KorIilKeepSubscription == nullptr)
                            return __real_KorIilSubscribeEvent(callerId, serviceId, evt, handler);
                        return KorIilKeepSubscription(callerId, serviceId, evt, handler, observing->watcher, nullptr);
                    });
}

uint32_t __wrap_KorIilCancelEvent(const char* callerId, const char* serviceId, uint32_t evt, KorIilEventHandler handler)
{
    return observed({serviceId, 0, evt, {}}, [&] { return __real_KorIilCancelEvent(callerId, serviceId, evt, handler); });
}

void __wrap_KorIilTrace(uint32_t level, const char* fileTag, uint32_t line, const char* format, ...)
{
    const int callersErrno = errno; // the format may contain %m
    va_list arguments;
    va_start(arguments, format);
    const std::string text = tarn::base::vformat(format, arguments);
    va_end(arguments);

    if (observing != nullptr)
        observing->seen.traces.push_back({level, fileTag, line, text});
    errno = callersErrno;
    if (observing != nullptr && observing->sender)
        return;
    __real_KorIilTrace(level, fileTag, line, "%s", text.c_str());
    errno = callersErrno;
}
// NOLINTEND(bugprone-reserved-identifier)
