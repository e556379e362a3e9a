/* What passes between the library and the platform while a function is called.
 *
 * A function's result alone does not tell a refused argument from a failed IPC call, nor either from the service's own
 * status. So tarnctl sits between the two: the linker directs the library's KorIil calls (--wrap) to the functions of this
 * file, which record them and pass them on. That needs nothing of the library, nor of the
 * platform, and works with a static platform library as well as with a shared one, on every target with GNU ld, gold or
 * lld. */
#pragma once

#include "kor_iil_service.h"
#include "values.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tarn::ctl
{

// What the library passed to the platform.
struct Request
{
    std::string service;
    std::uint32_t wait = 0;
    std::uint32_t command = 0; // or the event's number
    Bytes message;             // as it was sent; empty for an event
};

struct TraceRecord
{
    std::uint32_t level = 0;
    std::string tag;
    std::uint32_t line = 0;
    std::string text;
};

struct Observation
{
    std::optional<Request> request;         // none: nothing was sent
    std::optional<std::uint32_t> ipcStatus; // none: nothing was sent, or it was held back
    std::vector<TraceRecord> traces;
};

enum class Passage
{
    kSend, // requests go to the platform
    kHold  // requests are recorded only; the library gets its own message back as the reply, with success
};

// Takes a request's message to where it is answered, in the platform's place; returns an IPC status.
using Sender = std::function<std::uint32_t(const Request& request, void* message)>;

// Observes this thread for as long as it lives. The latest one sees what passes.
class Observer
{
public:
    explicit Observer(Passage how);
    ~Observer();
    Observer(const Observer&) = delete;
    Observer& operator=(const Observer&) = delete;

    Observation seen;
    const Passage passage;

    // Set: requests of commands go here, and traces are only recorded.
    Sender sender;

    // Set: subscriptions are made such that they outlive a restart of the service, and this is told of it, without a context.
    // Has no effect on a platform that cannot do so.
    KorIilSubscriptionWatcher watcher = nullptr;

private:
    Observer* const outer_;
};

} // namespace tarn::ctl
