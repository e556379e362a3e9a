// The running gateway: its services, with a thread for each, over one model.
#pragma once

#include "clock.h"
#include "dispatcher.h"
#include "model.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

struct KorIilRequest;
struct KorIilService;

namespace tarn::simulator
{

// Why the services cannot be opened.
class GatewayError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

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
    // Turns a request's message into the reply. Returns the IPC status.
    using Answer = std::function<std::uint32_t(const KorIilRequest&, void* message)>;

    // An identifier with its service and the thread that serves it.
    struct Endpoint
    {
        Gateway* gateway = nullptr;
        Answer answer;
        KorIilService* service = nullptr;
        std::thread thread;
    };

    static std::uint32_t handle(void* context, const KorIilRequest* request, void* message);
    void open(const char* serviceId, std::uint32_t eventCount, Answer answer);
    void openContract(const char* serviceId, bool notesFailures);
    void run(KorIilService* service);
    void publish(const std::string& event, const Record& data);
    std::uint32_t answerControl(const KorIilRequest& request, void* message);
    void advance();
    void keepTime();

    Model& model_;
    std::function<void()> shutDown_;
    std::mutex mutex_; // of the model, the clock and what belongs to the timekeeper
    Clock clock_;
    std::vector<std::unique_ptr<Endpoint>> endpoints_;
    KorIilService* deviceService_ = nullptr; // the one that publishes events
    std::atomic<bool> failed_{false};

    std::thread timekeeper_;
    std::condition_variable wakeUp_;       // there is something to do for the timekeeper
    std::optional<Milliseconds> expected_; // what it waits for,
    double expectedSpeed_ = 0;             // at this speed
    bool stopping_ = false;
};

} // namespace tarn::simulator
