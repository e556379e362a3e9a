#include "endpoint.h"

#include "host/runtime_path.h"
#include "kor_iil_service.h"

#include <cstdio>
#include <utility>

namespace tarn::simulator
{

namespace
{

std::string whyNot(const std::string& serviceId, std::uint32_t status)
{
    switch (status)
    {
    case KOR_IIL_CONFLICT_ID:
        return "the identifier " + serviceId + " is taken: another gateway runs in " + koriil::runtimePath();
    case KOR_IIL_UNKNOWN_COMM:
        return "the runtime directory cannot be used, see the trace; "
               "expected a directory of ours that others cannot write to, as an absolute path";
    default:
        return "the identifier " + serviceId + " cannot be registered: IPC status " + std::to_string(status);
    }
}

} // namespace

Endpoint::Endpoint(const std::string& serviceId, std::uint32_t eventCount, Answer answer)
    : serviceId_(serviceId), eventCount_(eventCount), answer_(std::move(answer))
{
    const std::uint32_t status = open();
    if (status != KOR_IIL_OK)
        throw GatewayError(whyNot(serviceId_, status));
}

Endpoint::~Endpoint()
{
    stop();
    KorIilServiceClose(service_);
}

std::uint32_t Endpoint::open()
{
    return KorIilServiceOpen(serviceId_.c_str(), eventCount_, handle, this, &service_);
}

// Called from C code, through which no exception may pass.
std::uint32_t Endpoint::handle(void* context, const KorIilRequest* request, void* message)
{
    try
    {
        return static_cast<Endpoint*>(context)->answer_(*request, message);
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "tarn-gateway: command %lu: %s\n", static_cast<unsigned long>(request->command), error.what());
        return KOR_IIL_ERR;
    }
}

void Endpoint::start(std::function<void()> onFailure)
{
    thread_ = std::thread(
        [this, onFailure = std::move(onFailure)]
        {
            if (run() != KOR_IIL_OK)
                onFailure();
        });
}

std::uint32_t Endpoint::run()
{
    for (;;)
    {
        std::uint32_t status = KorIilServiceRun(service_);
        const std::lock_guard<std::mutex> guard(mutex_);
        if (status != KOR_IIL_OK || stopping_)
            return status;
        KorIilServiceClose(std::exchange(service_, nullptr));
        status = open();
        if (status != KOR_IIL_OK)
            return status;
        restarts_ = false;
    }
}

void Endpoint::restart()
{
    const std::lock_guard<std::mutex> guard(mutex_);
    restarts_ = true;
    KorIilServiceStop(service_);
}

void Endpoint::stop()
{
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        stopping_ = true;
        KorIilServiceStop(service_);
    }
    if (thread_.joinable())
        thread_.join();
}

std::uint32_t Endpoint::publish(std::uint32_t event, const void* data, std::uint32_t length, std::uint32_t* subscribers)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    return KorIilServicePublish(service_, event, data, length, subscribers);
}

} // namespace tarn::simulator
