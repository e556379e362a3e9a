// The simulated gateway at work: its services, each on a thread of its own, over one model.
#pragma once

#include "dispatcher.h"
#include "model.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
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
    // `model` is as its scenario has filled it, and outlives the gateway. `shutDown` is called, from any thread, when a caller
    // asks for the end, or when a service cannot go on.
    Gateway(Model& model, std::function<void()> shutDown);
    ~Gateway(); // stops
    Gateway(const Gateway&) = delete;
    Gateway& operator=(const Gateway&) = delete;

    // Registers all services and starts to serve them. Throws GatewayError; none of them is registered then.
    void start();
    // Takes the services back. No request is served after that.
    void stop();

    // Lets happen what is due. It happens by itself too, a little later.
    void tick();

    // Runs `body` while no request is served.
    template <typename Body>
    auto withModel(Body body)
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        return body(model_);
    }

    // A service could not go on.
    bool hasFailed() const
    {
        return failed_;
    }

private:
    // One identifier: what answers its requests, and the thread that it is served on.
    struct Served
    {
        Gateway* gateway = nullptr;
        std::function<std::uint32_t(const KorIilRequest&, void*)> answer;
        KorIilService* service = nullptr;
        std::thread thread;
    };

    static std::uint32_t handle(void* context, const KorIilRequest* request, void* message);
    void open(const char* serviceId, std::uint32_t eventCount,
              std::function<std::uint32_t(const KorIilRequest&, void*)> answer);
    void openContract(const char* serviceId, Dispatcher::StatusOf statusOf, bool notesFailures);
    void publish(const std::string& event, const Record& data);
    std::uint32_t answerControl(const KorIilRequest& request, void* message);
    void keepTime();

    Model& model_;
    std::function<void()> shutDown_;
    std::mutex mutex_; // of the model
    std::vector<std::unique_ptr<Served>> served_;
    KorIilService* deviceService_ = nullptr; // the one that publishes events
    std::atomic<bool> failed_{false};

    std::thread timekeeper_;
    std::mutex stopMutex_;
    std::condition_variable stopped_;
    bool stopping_ = false;
};

} // namespace tarn::simulator
