/* The log lines of a bridge: not more than somebody may want to read, whatever arrives. From any thread. Needs no C++ run-time
 * library. */
#pragma once

#include "rate.h"

#include <cstdint>

#include <pthread.h>

namespace tarn::fleet
{

// Priorities of log lines, those of syslog.
inline constexpr int kLogError = 3;
inline constexpr int kLogWarning = 4;
inline constexpr int kLogNotice = 5;
inline constexpr int kLogInfo = 6;

class BridgeLog
{
public:
    // Writes a line without its line feed; may be null.
    using Write = void (*)(void* context, int priority, const char* line);

    BridgeLog(Write write, void* context) : write_(write), context_(context)
    {
    }

    __attribute__((format(printf, 3, 4))) void line(int priority, const char* format, ...);

private:
    const Write write_;
    void* const context_;
    pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
    Bucket lines_;
    std::uint32_t hidden_ = 0;
};

} // namespace tarn::fleet
