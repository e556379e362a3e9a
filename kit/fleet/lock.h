/* A mutex that is locked as long as this lives. Needs no C++ run-time library, which std::mutex does. */
#pragma once

#include <pthread.h>

namespace tarn::fleet
{

class Lock
{
public:
    explicit Lock(pthread_mutex_t& mutex) : mutex_(mutex)
    {
        pthread_mutex_lock(&mutex_);
    }
    ~Lock()
    {
        pthread_mutex_unlock(&mutex_);
    }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    pthread_mutex_t& mutex_;
};

} // namespace tarn::fleet
