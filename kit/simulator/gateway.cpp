#include "gateway.h"

#include "kor_iil_service.h"
#include "scenario.h"
#include "tarn_gateway_control.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <stdexcept>

#include <nlohmann/json.hpp>

namespace tarn::simulator
{

namespace
{

constexpr std::chrono::hours kLongestWait{1}; // which no clock calculates too long

std::uint32_t eventNumber(const std::string& name)
{
    for (const contract::Event& event : contract::findService("TARN")->events)
        if (event.name == name)
            return event.event;
    throw std::logic_error("no event " + name);
}

void tell(const std::string& line)
{
    std::fprintf(stderr, "%s\n", line.c_str());
}

} // namespace

Gateway::Gateway(Model& model, std::function<void()> shutDown, double speed)
    : model_(model),
      shutDown_(std::move(shutDown)),
      clock_(speed),
      log_(tell),
      surroundings_{clock_,
                    log_,
                    [this] { shutDown_(); },
                    [this] { restartServices(); },
                    [this] { loseSettings(); },
                    [this](Milliseconds time) { passTo(time); },
                    [this] { return nextDue(); }}
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
        open("TARN", true);
        open("QTN_RPC_PROXY", false);
        open("QTN_MIRROR", false);
        openControl();
    }
    catch (...)
    {
        stop();
        throw;
    }
    model_.publish = [this](const std::string& event, const Record& data) { publish(event, data); };
    scenario_ = scenarioOf(model_).dump();
    model_.start();
    clock_.set(model_.time);

    stopping_ = false;
    for (const std::unique_ptr<Service>& service : services_)
        startServing(*service->endpoint);
    startServing(*control_);
    timekeeper_ = std::thread([this] { keepTime(); });
}

void Gateway::open(const char* serviceId, bool notesFailures)
{
    const contract::Contract& contract = *contract::findService(serviceId);
    auto service = std::make_unique<Service>(Service{Dispatcher(contract, notesFailures), nullptr});
    service->endpoint =
        std::make_unique<Endpoint>(serviceId, static_cast<std::uint32_t>(contract.events.size()),
                                   [this, one = service.get()](const KorIilRequest& request, void* message)
                                   { return withLock([&](Lock& lock) { return answer(*one, request, message, lock); }); });
    services_.push_back(std::move(service));
}

void Gateway::openControl()
{
    control_ = std::make_unique<Endpoint>(TARN_GATEWAY_SERVICE, 0,
                                          [this](const KorIilRequest& request, void* message)
                                          { return withLock([&](Lock&) { return answerControl(request, message); }); });
}

void Gateway::startServing(Endpoint& endpoint)
{
    endpoint.start(
        [this]
        {
            failed_ = true;
            shutDown_();
        });
}

void Gateway::stop()
{
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        stopping_ = true;
    }
    wakeUp_.notify_all();
    changed_.notify_all();
    if (timekeeper_.joinable())
        timekeeper_.join();
    control_.reset();
    for (const std::unique_ptr<Service>& service : services_)
        service->endpoint->stop();
    model_.publish = nullptr;
    services_.clear();
    errands_.clear();
}

void Gateway::setLogging(bool isLogging)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    log_.switchTo(isLogging);
}

void Gateway::setLogWriter(RequestLog::Write write)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    log_.setWriter(std::move(write));
}

void Gateway::restartServices()
{
    for (const std::unique_ptr<Service>& service : services_)
        service->endpoint->restart();
}

void Gateway::loseSettings()
{
    Model original(model_.layout);
    readScenario(scenario_, "the scenario", original);
    model_.loseSettings(original);
}

// --- Time: all of it with the mutex held -------------------------------------------------------------------------------------

// What is due in the model comes before errands of the same instant.
void Gateway::advance()
{
    while (!errands_.empty() && errands_.begin()->first <= clock_.now())
    {
        const auto errand = errands_.begin();
        const Milliseconds at = errand->first;
        const std::function<void()> run = std::move(errand->second);
        errands_.erase(errand);
        model_.advance(at);
        run();
    }
    model_.advance(clock_.now());
}

void Gateway::passTo(Milliseconds time)
{
    clock_.set(time);
    advance();
}

std::optional<Milliseconds> Gateway::nextDue() const
{
    const std::optional<Milliseconds> next = model_.agenda.next();
    if (errands_.empty())
        return next;
    return next ? std::min(*next, errands_.begin()->first) : errands_.begin()->first;
}

void Gateway::step(Milliseconds duration)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    advance();
    passTo(model_.time + duration);
    wakeUp_.notify_all();
}

void Gateway::keepTime()
{
    Lock lock(mutex_);
    while (!stopping_)
    {
        advance();
        expected_ = nextDue();
        expectedSpeed_ = clock_.speed();
        const auto until = expected_ ? clock_.until(*expected_) : std::nullopt;
        if (until)
            wakeUp_.wait_for(lock, std::min<std::chrono::duration<double, std::milli>>(*until, kLongestWait));
        else
            wakeUp_.wait(lock);
    }
}

void Gateway::play(const std::vector<ScriptLine>& script)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    for (const ScriptLine& line : script)
        errands_.emplace(line.at, [this, line] { carryOut(line); });
    wakeUp_.notify_all();
}

void Gateway::carryOut(const ScriptLine& line)
{
    try
    {
        simulator::carryOut(model_, surroundings_, line.order);
    }
    catch (const Refused& refused)
    {
        tell("tarn-gateway: " + line.place + ": " + refused.reason);
    }
    catch (const std::exception& error)
    {
        tell("tarn-gateway: " + line.place + ": " + error.what());
    }
    changed_.notify_all();
}

// --- Requests ----------------------------------------------------------------------------------------------------------------

template <typename Body>
std::uint32_t Gateway::withLock(Body body)
{
    Lock lock(mutex_);
    advance();
    const std::uint32_t status = body(lock);
    if (nextDue() != expected_ || clock_.speed() != expectedSpeed_)
        wakeUp_.notify_all();
    return status;
}

std::uint32_t Gateway::answerControl(const KorIilRequest& request, void* message)
{
    const Control control{[this](std::uint32_t event, const void* data, std::uint32_t length, std::uint32_t& subscribers)
                          { return services_.front()->endpoint->publish(event, data, length, &subscribers); },
                          surroundings_, answers_};
    const std::uint32_t status = serveControl(model_, control, request.command, request.length, message);
    changed_.notify_all();
    return status;
}

std::uint32_t Gateway::answer(Service& service, const KorIilRequest& request, void* message, Lock& lock)
{
    Served served{service, request, message, lock, ""};
    if (!log_.isOn())
        return serve(served);
    const std::string line = timeText(model_.time) + " " + requestText(service.dispatcher, model_.layout, request, message);
    const std::uint32_t status = serve(served);
    log_.add(line + ": " + replyText(service.dispatcher, model_.layout, request, message, status, served.reason));
    return status;
}

std::uint32_t Gateway::carryOut(Served& served)
{
    return served.service.dispatcher.serve(model_, served.request.command, served.request.length, served.message,
                                           served.reason);
}

// --- Faults ------------------------------------------------------------------------------------------------------------------

std::uint32_t Gateway::serve(Served& served)
{
    if (model_.faults.empty())
        return carryOut(served);
    std::vector<std::string> functions;
    for (const contract::Command* each :
         served.service.dispatcher.functionsCalled(served.request.command, served.request.length, served.message))
        functions.push_back(each->function);
    const std::string& serviceId = served.service.endpoint->serviceId();
    if (model_.hangs(serviceId, functions) && !waitWhileHung(served, functions))
    {
        served.reason = "fault hang";
        return KOR_IIL_TIMEOUT;
    }
    const std::optional<Fault> fault = functions.empty() ? std::nullopt : model_.takeFault(serviceId, functions);
    return fault ? carryOutWith(*fault, served) : carryOut(served);
}

bool Gateway::isToEnd(const Served& served) const
{
    return stopping_ || served.service.endpoint->isRestarting();
}

// Returns whether the request is to be carried out: its caller may have given up meanwhile, or the service is to end.
bool Gateway::waitWhileHung(const Served& served, const std::vector<std::string>& functions)
{
    const auto begin = std::chrono::steady_clock::now();
    const std::string& serviceId = served.service.endpoint->serviceId();
    changed_.wait(served.lock, [&] { return isToEnd(served) || !model_.hangs(serviceId, functions); });
    advance();
    return !isToEnd(served) && std::chrono::steady_clock::now() - begin < std::chrono::seconds(served.request.wait);
}

std::uint32_t Gateway::carryOutWith(const Fault& fault, Served& served)
{
    const std::string cause = std::string("fault ") + kFaultKindNames[static_cast<std::size_t>(fault.kind)];
    if (fault.kind == FaultKind::kIpcStatus || fault.kind == FaultKind::kStatus)
    {
        const auto status = static_cast<std::uint32_t>(fault.status.value_or(0));
        served.reason = cause;
        if (fault.kind == FaultKind::kIpcStatus)
            return status;
        served.service.dispatcher.answer(served.request.command, served.message, status);
        return KOR_IIL_OK;
    }
    const std::uint32_t status = carryOut(served);
    served.reason += (served.reason.empty() ? "" : "; ") + cause;
    switch (fault.kind)
    {
    case FaultKind::kDelay:
        changed_.wait_for(served.lock, std::chrono::milliseconds(fault.milliseconds.value_or(kFaultMilliseconds)),
                          [&] { return isToEnd(served); });
        return status;
    case FaultKind::kNoAnswer:
        return KOR_IIL_TIMEOUT;
    case FaultKind::kLength:
        return KOR_IIL_MISMATCH_CMD_LEN;
    case FaultKind::kGarbage:
        for (std::uint32_t i = 0; i < served.request.length; ++i)
            static_cast<std::uint8_t*>(served.message)[i] = static_cast<std::uint8_t>(model_.random.upTo(255));
        return status;
    case FaultKind::kDie:
    case FaultKind::kRestart:
        if (fault.losesSettings.value_or(false))
            loseSettings();
        served.service.endpoint->restart();
        return fault.kind == FaultKind::kDie ? std::uint32_t{KOR_IIL_TIMEOUT} : status;
    default:
        return status;
    }
}

// --- Events ------------------------------------------------------------------------------------------------------------------

void Gateway::publish(const std::string& event, const Record& data)
{
    const std::optional<Fault> fault = model_.faults.empty() ? std::nullopt : model_.takeEventFault(event);
    if (fault && fault->kind == FaultKind::kEventLost)
        return;
    if (fault && fault->kind == FaultKind::kEventLate)
    {
        errands_.emplace(model_.time + fault->milliseconds.value_or(kFaultMilliseconds),
                         [this, event, bytes = data.bytes()] { send(event, bytes); });
        return;
    }
    send(event, data.bytes());
    if (fault && fault->kind == FaultKind::kEventDoubled)
        send(event, data.bytes());
}

void Gateway::send(const std::string& event, const std::vector<std::uint8_t>& data)
{
    services_.front()->endpoint->publish(eventNumber(event), data.data(), static_cast<std::uint32_t>(data.size()));
}

} // namespace tarn::simulator
