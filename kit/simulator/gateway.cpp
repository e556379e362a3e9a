#include "gateway.h"

#include "control_service.h"
#include "kor_iil_service.h"
#include "tarn_gateway_control.h"

#include <cstdio>

namespace tarn::simulator
{

namespace
{

std::string whyNot(const std::string& serviceId, std::uint32_t status)
{
    switch (status)
    {
    case KOR_IIL_CONFLICT_ID:
        return "the identifier " + serviceId + " is taken: another gateway runs in this runtime directory";
    case KOR_IIL_UNKNOWN_COMM:
        return "the runtime directory cannot be used, see the trace; "
               "expected a directory of ours that others cannot write to, as an absolute path";
    default:
        return "the identifier " + serviceId + " cannot be registered: IPC status " + std::to_string(status);
    }
}

std::uint32_t eventNumber(const std::string& name)
{
    for (const contract::Event& event : contract::findService("TARN")->events)
        if (event.name == name)
            return event.event;
    throw std::logic_error("no event " + name);
}

} // namespace

Gateway::Gateway(Model& model, std::function<void()> shutDown, double speed)
    : model_(model), shutDown_(std::move(shutDown)), clock_(speed)
{
}

Gateway::~Gateway()
{
    stop();
}

void Gateway::start()
{
    try
    {
        openContract("TARN", true);
        deviceService_ = endpoints_.back()->service;
        openContract("QTN_RPC_PROXY", false);
        openContract("QTN_MIRROR", false);
        open(TARN_GATEWAY_SERVICE, 0,
             [this](const KorIilRequest& request, void* message) { return answerControl(request, message); });
    }
    catch (...)
    {
        stop();
        throw;
    }
    model_.publish = [this](const std::string& event, const Record& data) { publish(event, data); };
    model_.start();
    clock_.set(model_.time);

    stopping_ = false;
    for (const std::unique_ptr<Endpoint>& endpoint : endpoints_)
        endpoint->thread = std::thread(&Gateway::run, this, endpoint->service);
    timekeeper_ = std::thread([this] { keepTime(); });
}

void Gateway::run(KorIilService* service)
{
    if (KorIilServiceRun(service) == KOR_IIL_OK)
        return;
    failed_ = true;
    shutDown_();
}

void Gateway::stop()
{
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        stopping_ = true;
    }
    wakeUp_.notify_all();
    if (timekeeper_.joinable())
        timekeeper_.join();
    for (const std::unique_ptr<Endpoint>& endpoint : endpoints_)
        KorIilServiceStop(endpoint->service);
    for (const std::unique_ptr<Endpoint>& endpoint : endpoints_)
        if (endpoint->thread.joinable())
            endpoint->thread.join();
    model_.publish = nullptr;
    for (const std::unique_ptr<Endpoint>& endpoint : endpoints_)
        KorIilServiceClose(endpoint->service);
    endpoints_.clear();
}

// With the mutex held.
void Gateway::advance()
{
    model_.advance(clock_.now());
}

void Gateway::step(Milliseconds duration)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    advance();
    clock_.set(model_.time + duration);
    advance();
    wakeUp_.notify_all();
}

void Gateway::keepTime()
{
    std::unique_lock<std::mutex> lock(mutex_);
    while (!stopping_)
    {
        advance();
        expected_ = model_.agenda.next();
        expectedSpeed_ = clock_.speed();
        const auto until = expected_ ? clock_.until(*expected_) : std::nullopt;
        if (until)
            wakeUp_.wait_for(lock, *until);
        else
            wakeUp_.wait(lock);
    }
}

void Gateway::open(const char* serviceId, std::uint32_t eventCount, Answer answer)
{
    auto endpoint = std::make_unique<Endpoint>();
    endpoint->gateway = this;
    endpoint->answer = std::move(answer);
    const std::uint32_t status = KorIilServiceOpen(serviceId, eventCount, handle, endpoint.get(), &endpoint->service);
    if (status != KOR_IIL_OK)
        throw GatewayError(whyNot(serviceId, status));
    endpoints_.push_back(std::move(endpoint));
}

void Gateway::openContract(const char* serviceId, bool notesFailures)
{
    const contract::Contract& contract = *contract::findService(serviceId);
    open(serviceId, static_cast<std::uint32_t>(contract.events.size()),
         [this, dispatcher = Dispatcher(contract, notesFailures)](const KorIilRequest& request, void* message)
         { return dispatcher.serve(model_, request.command, request.length, message); });
}

// Called from C code, through which no exception may pass.
std::uint32_t Gateway::handle(void* context, const KorIilRequest* request, void* message)
{
    auto& endpoint = *static_cast<Endpoint*>(context);
    try
    {
        Gateway& gateway = *endpoint.gateway;
        const std::lock_guard<std::mutex> guard(gateway.mutex_);
        gateway.advance();
        const std::uint32_t status = endpoint.answer(*request, message);
        if (gateway.model_.agenda.next() != gateway.expected_ || gateway.clock_.speed() != gateway.expectedSpeed_)
            gateway.wakeUp_.notify_all();
        return status;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "tarn-gateway: command %lu: %s\n", static_cast<unsigned long>(request->command), error.what());
        return KOR_IIL_ERR;
    }
}

void Gateway::publish(const std::string& event, const Record& data)
{
    const auto length = static_cast<std::uint32_t>(data.bytes().size());
    KorIilServicePublish(deviceService_, eventNumber(event), data.bytes().data(), length, nullptr);
}

std::uint32_t Gateway::answerControl(const KorIilRequest& request, void* message)
{
    Control control{nullptr, shutDown_, clock_};
    control.publish = [this](std::uint32_t event, const void* data, std::uint32_t length, std::uint32_t& subscribers)
    { return KorIilServicePublish(deviceService_, event, data, length, &subscribers); };
    return serveControl(model_, control, request.command, request.length, message);
}

} // namespace tarn::simulator
