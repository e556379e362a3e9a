#include "event_source.h"
#include "bridge.h"
#include "kor_iil.h"

#include <cerrno>
#include <ctime>

#include <pthread.h>

namespace tarn::fleet
{

namespace
{

// Where the platform already has this subscription, it says so.
constexpr std::uint32_t kConflictId = 20;
// Between attempts to subscribe to what has not been accepted yet, in seconds.
constexpr std::uint32_t kRetry = 5;
constexpr std::size_t kMostEvents = 32; // of one service

struct Source
{
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t changed = PTHREAD_COND_INITIALIZER;
    pthread_t thread = {};
    Bridge* bridge = nullptr; // NULL: no events
    std::uint32_t renewSeconds = 0;
    bool isSubscribed[kContractServiceCount][kMostEvents] = {};
};

Source& source()
{
    static Source only;
    return only;
}

void handleEvent(const char* serviceId, std::uint32_t evt, const void* data, std::uint32_t length)
{
    Source& self = source();
    pthread_mutex_lock(&self.mutex);
    if (self.bridge != nullptr)
        self.bridge->publishEvent(serviceId, evt, data, length);
    pthread_mutex_unlock(&self.mutex);
}

// Calls of the platform take time and may wait for a handler: never under the mutex.
void subscribeAll(Source& self, bool isRenewal)
{
    for (std::size_t service = 0; service < kContractServiceCount; ++service)
        for (std::uint32_t event = 1; event <= kContractServices[service].events && event <= kMostEvents; ++event)
        {
            bool& isSubscribed = self.isSubscribed[service][event - 1];
            if (isSubscribed && !isRenewal)
                continue;
            const std::uint32_t status =
                KorIilSubscribeEvent(Bridge::kCallerId, kContractServices[service].name, event, handleEvent);
            isSubscribed = status == 0 || status == kConflictId;
        }
}

bool isComplete(const Source& self)
{
    for (std::size_t service = 0; service < kContractServiceCount; ++service)
        for (std::uint32_t event = 1; event <= kContractServices[service].events && event <= kMostEvents; ++event)
            if (!self.isSubscribed[service][event - 1])
                return false;
    return true;
}

// False if there are to be no more events.
bool waitFor(Source& self, std::uint32_t seconds)
{
    timespec until = {};
    clock_gettime(CLOCK_REALTIME, &until);
    until.tv_sec += static_cast<std::time_t>(seconds);
    pthread_mutex_lock(&self.mutex);
    int result = 0;
    while (self.bridge != nullptr && result != ETIMEDOUT)
        result = seconds == 0 ? pthread_cond_wait(&self.changed, &self.mutex)
                              : pthread_cond_timedwait(&self.changed, &self.mutex, &until);
    const bool goesOn = self.bridge != nullptr;
    pthread_mutex_unlock(&self.mutex);
    return goesOn;
}

void* keepSubscribed(void* /*unused*/)
{
    Source& self = source();
    bool isRenewal = false;
    do
    {
        subscribeAll(self, isRenewal);
        isRenewal = self.renewSeconds > 0;
    } while (waitFor(self, isComplete(self) ? self.renewSeconds : kRetry));
    return nullptr;
}

} // namespace

bool startEvents(Bridge& bridge, std::uint32_t renewSeconds)
{
    Source& self = source();
    pthread_mutex_lock(&self.mutex);
    const bool isFree = self.bridge == nullptr;
    if (isFree)
    {
        self.bridge = &bridge;
        self.renewSeconds = renewSeconds;
    }
    pthread_mutex_unlock(&self.mutex);
    const bool isStarted = isFree && pthread_create(&self.thread, nullptr, keepSubscribed, nullptr) == 0;
    if (isFree && !isStarted)
        self.bridge = nullptr;
    return isStarted;
}

void stopEvents()
{
    Source& self = source();
    pthread_mutex_lock(&self.mutex);
    const bool isOn = self.bridge != nullptr;
    self.bridge = nullptr;
    pthread_cond_signal(&self.changed);
    pthread_mutex_unlock(&self.mutex);
    if (!isOn)
        return;
    pthread_join(self.thread, nullptr);
    for (std::size_t service = 0; service < kContractServiceCount; ++service)
        for (std::uint32_t event = 1; event <= kMostEvents; ++event)
            if (self.isSubscribed[service][event - 1])
            {
                KorIilCancelEvent(Bridge::kCallerId, kContractServices[service].name, event, handleEvent);
                self.isSubscribed[service][event - 1] = false;
            }
}

} // namespace tarn::fleet
