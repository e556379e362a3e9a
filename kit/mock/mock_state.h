// What the scripted platform knows during one test: the script, what has gone wrong, who is subscribed, the traces.
#pragma once

#include "kor_iil.h"
#include "script.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

// Data of an event that is to be delivered, by its fields. `structure` is null where the layout does not tell them, and the
// service empty where there is no such event.
struct KorIilMockEvent
{
    std::string file;
    unsigned line;
    std::string name;
    std::string serviceId;
    std::uint32_t number = 0;
    const tarn::layout::Structure* structure = nullptr;
    std::shared_ptr<const tarn::layout::Layout> layout; // which has the structure
    std::vector<std::uint8_t> data;
};

namespace tarn::mock
{

struct Failure
{
    std::string file; // of the test; empty if the script has no call for it
    unsigned line;
    std::string text;
};

struct Subscription
{
    std::string serviceId;
    std::uint32_t evt;
    KorIilEventHandler handler;

    bool operator==(const Subscription& other) const
    {
        return serviceId == other.serviceId && evt == other.evt && handler == other.handler;
    }
};

struct RecordedTrace
{
    std::string fileTag;
    std::string format;
    std::string text;
    KorIilMockTrace shown;
};

// A handler of the test, and its context; without a handler, not in use.
template <typename Handler>
struct Hook
{
    Handler handler = nullptr;
    void* context = nullptr;
};

struct MockState
{
    std::vector<std::unique_ptr<KorIilMockCall>> script; // all calls, also those that were made
    std::vector<std::unique_ptr<KorIilMockEvent>> events;
    std::shared_ptr<const layout::Layout> layout; // null for the simulated gateway's
    std::vector<Failure> failures;
    std::vector<Subscription> subscriptions;
    std::deque<RecordedTrace> traces; // a deque: its elements keep their addresses

    Hook<KorIilMockFailureHandler> onFailure;
    Hook<KorIilMockExecuteHandler> onExecute;
    Hook<KorIilMockTraceHandler> onTrace;
};

using Guard = std::lock_guard<std::mutex>;

std::mutex& mutex();

// Accessed only with the mutex held.
MockState& state();

template <typename Handler>
void setHook(Hook<Handler> MockState::*hook, Handler handler, void* context)
{
    const Guard guard(mutex());
    state().*hook = {handler, context};
}

// A copy, which is called without the lock: the handler may call the mock's functions.
template <typename Handler>
Hook<Handler> copyOf(Hook<Handler> MockState::*hook)
{
    const Guard guard(mutex());
    return state().*hook;
}

// The layout in use.
std::shared_ptr<const layout::Layout> currentLayout();

// Reports a failure. Without the mutex.
void fail(const std::string& file, unsigned line, const std::string& text);

// The same of a call of the script. One that can never be made, as it was scripted wrongly, has been reported already.
void fail(const KorIilMockCall& call, const std::string& text);

// Adds a call to the script, which owns it.
KorIilMockCall* addCall(CallKind kind, const char* file, unsigned line, const char* serviceId, std::uint32_t number,
                        std::uint32_t length);

// Adds bytes to what is expected of a call, or to its answer, unless they do not fit the message.
void addPart(KorIilMockCall& call, std::vector<Part> KorIilMockCall::*parts, Part part);

// Takes a call that the component makes out of the script, or fails the test and returns null. Other arguments or bytes than
// scripted fail the test too.
const KorIilMockCall* take(const ActualCall& actual);

} // namespace tarn::mock
