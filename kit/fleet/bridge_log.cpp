#include "bridge_log.h"
#include "clock.h"
#include "lock.h"

#include <cstdarg>
#include <cstdio>

namespace tarn::fleet
{

namespace
{

constexpr Rate kMostLines = {50, 1000};

} // namespace

void BridgeLog::line(int priority, const char* format, ...)
{
    std::uint32_t hidden = 0;
    {
        const Lock lock(mutex_);
        if (!lines_.take(kMostLines, monotonicMilliseconds()))
        {
            ++hidden_;
            return;
        }
        hidden = hidden_;
        hidden_ = 0;
    }
    if (write_ == nullptr)
        return;
    char text[512];
    if (hidden > 0)
    {
        std::snprintf(text, sizeof text, "%u lines are left out here", hidden);
        write_(context_, kLogWarning, text);
    }
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    write_(context_, priority, text);
}

} // namespace tarn::fleet
