#include "forks.h"

#include "service.h"

#include <algorithm>
#include <mutex>
#include <vector>

#include <pthread.h>

namespace koriil
{
namespace
{

struct OpenServices
{
    std::mutex mutex;
    std::vector<Service*> services;
};

// Never deleted: a fork may come at any time.
OpenServices& openServices();

void beforeFork()
{
    openServices().mutex.lock();
    for (Service* service : openServices().services)
        service->beforeFork();
}

void afterFork()
{
    for (Service* service : openServices().services)
        service->afterFork();
    openServices().mutex.unlock();
}

void inChild()
{
    for (Service* service : openServices().services)
        service->abandon();
    afterFork();
}

OpenServices& openServices()
{
    static OpenServices& open = *[]
    {
        auto* const fresh = new OpenServices;
        pthread_atfork(beforeFork, afterFork, inChild);
        return fresh;
    }();
    return open;
}

} // namespace

void addToForks(Service& service)
{
    OpenServices& open = openServices();
    const std::lock_guard<std::mutex> guard(open.mutex);
    open.services.push_back(&service);
}

void removeFromForks(const Service& service)
{
    OpenServices& open = openServices();
    const std::lock_guard<std::mutex> guard(open.mutex);
    open.services.erase(std::remove(open.services.begin(), open.services.end(), &service), open.services.end());
}

} // namespace koriil
