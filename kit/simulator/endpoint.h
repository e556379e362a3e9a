// One identifier of the gateway: its service, and the thread that serves it and opens it again when it is restarted.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>

struct KorIilRequest;
struct KorIilService;

namespace tarn::simulator
{

// Why a service cannot be opened.
class GatewayError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

class Endpoint
{
public:
    // Turns a request into its reply. Returns the IPC status; KOR_IIL_TIMEOUT for none.
    using Answer = std::function<std::uint32_t(const KorIilRequest& request, void* message)>;

    // Registers the identifier. Throws GatewayError.
    Endpoint(const std::string& serviceId, std::uint32_t eventCount, Answer answer);
    ~Endpoint(); // stops
    Endpoint(const Endpoint&) = delete;
    Endpoint& operator=(const Endpoint&) = delete;

    const std::string& serviceId() const
    {
        return serviceId_;
    }

    // Serves on a thread of its own. `onFailure` is called on it if the service cannot go on.
    void start(std::function<void()> onFailure);
    // Lets the service end and come back, once what has arrived is answered: its callers find their connections closed, and
    // subscriptions are gone. From any thread, that of `answer` included.
    void restart();
    bool isRestarting() const
    {
        return restarts_;
    }
    // No request is served after that. From any thread but that of `answer`.
    void stop();

    // Returns the IPC status.
    std::uint32_t publish(std::uint32_t event, const void* data, std::uint32_t length, std::uint32_t* subscribers = nullptr);

private:
    static std::uint32_t handle(void* context, const KorIilRequest* request, void* message);
    std::uint32_t open();
    std::uint32_t run();

    const std::string serviceId_;
    const std::uint32_t eventCount_;
    const Answer answer_;
    std::atomic<bool> restarts_{false};
    std::mutex mutex_; // of the following two
    bool stopping_ = false;
    KorIilService* service_ = nullptr;
    std::thread thread_;
};

} // namespace tarn::simulator
