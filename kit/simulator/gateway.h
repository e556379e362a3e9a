// The running gateway: its services over one model, and its time.
#pragma once

#include "clock.h"
#include "control_service.h"
#include "dispatcher.h"
#include "endpoint.h"
#include "model.h"
#include "orders.h"
#include "request_log.h"
#include "script.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tarn::simulator
{

class Gateway
{
public:
    // `model` has been filled by a scenario, and outlives the gateway. `shutDown` is called, from any thread, when a caller
    // asks for it, or when a service fails. `speed` is how fast the gateway's time goes: 1 as real time, 0 only by steps.
    Gateway(Model& model, std::function<void()> shutDown, double speed = 1);
    ~Gateway(); // stops
    Gateway(const Gateway&) = delete;
    Gateway& operator=(const Gateway&) = delete;

    // Registers all services and starts to serve them. Throws GatewayError; none of them is registered then.
    void start();
    // Unregisters the services. No request is served after that.
    void stop();

    // Whether each request is logged, as a line that `write` gets; to standard error unless said otherwise.
    void setLogging(bool isLogging);
    void setLogWriter(RequestLog::Write write);

    // Orders that are to be carried out at their times. What is refused is told on standard error.
    void play(const std::vector<ScriptLine>& script);

    // Lets so much time pass at once.
    void step(Milliseconds duration);

    // Runs `body` while no request is served.
    template <typename Body>
    auto withModel(Body body)
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        return body(model_);
    }

    // Whether a service has failed.
    bool hasFailed() const
    {
        return failed_;
    }

private:
    using Lock = std::unique_lock<std::mutex>;

    // One of those that the contract describes.
    struct Service
    {
        Dispatcher dispatcher;
        std::unique_ptr<Endpoint> endpoint;
    };

    // A request that is served, with the mutex held but while it waits.
    struct Served
    {
        Service& service;
        const KorIilRequest& request;
        void* message;
        Lock& lock;
        std::string reason; // why it was refused, or the fault that happened to it
    };

    void open(const char* serviceId, bool notesFailures);
    void openControl();
    void startServing(Endpoint& endpoint);
    template <typename Body>
    std::uint32_t withLock(Body body);
    std::uint32_t answer(Service& service, const KorIilRequest& request, void* message, Lock& lock);
    std::uint32_t answerControl(const KorIilRequest& request, void* message);
    std::uint32_t serve(Served& served);
    std::uint32_t carryOut(Served& served);
    std::uint32_t carryOutWith(const Fault& fault, Served& served);
    bool isToEnd(const Served& served) const;
    bool waitWhileHung(const Served& served, const std::vector<std::string>& functions);
    void publish(const std::string& event, const Record& data);
    void send(const std::string& event, const std::vector<std::uint8_t>& data);
    void restartServices();
    void loseSettings();

    void advance();
    void passTo(Milliseconds time);
    std::optional<Milliseconds> nextDue() const;
    void carryOut(const ScriptLine& line);
    void keepTime();

    Model& model_;
    std::function<void()> shutDown_;
    std::string scenario_; // that the gateway was started with
    std::mutex mutex_;     // of all but the services
    Clock clock_;
    RequestLog log_;
    Surroundings surroundings_;
    Answers answers_;
    std::multimap<Milliseconds, std::function<void()>> errands_; // orders of the script, and late events
    std::condition_variable changed_; // what requests wait for: there are fewer faults, a service is to end
    bool stopping_ = false;

    std::vector<std::unique_ptr<Service>> services_; // the first one publishes the events
    std::unique_ptr<Endpoint> control_;
    std::atomic<bool> failed_{false};

    std::thread timekeeper_;
    std::condition_variable wakeUp_;       // there is something to do for the timekeeper
    std::optional<Milliseconds> expected_; // what it waits for,
    double expectedSpeed_ = 0;             // at this speed
};

} // namespace tarn::simulator
