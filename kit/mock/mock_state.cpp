#include "mock_state.h"

#include "base/join.h"
#include "layout/message.h"

#include <algorithm>
#include <set>

namespace tarn::mock
{

namespace
{

constexpr std::size_t kInputsShown = 8;

// With the mutex held.
std::shared_ptr<const layout::Layout> layoutInUse()
{
    if (state().layout == nullptr)
        state().layout = std::shared_ptr<const layout::Layout>(std::shared_ptr<void>(), &layout::simulated());
    return state().layout;
}

// --- What was called, by its names -----------------------------------------------------------------------------------------

std::vector<const contract::Command*> commandsOf(const ActualCall& actual)
{
    std::vector<const contract::Command*> commands;
    const contract::Contract* const service =
        actual.kind == CallKind::kExecute && actual.serviceId != nullptr ? contract::findService(actual.serviceId) : nullptr;
    if (service != nullptr)
        for (const contract::Command& command : service->commands)
            if (command.command == actual.number && command.length == actual.length)
                commands.push_back(&command);
    return commands;
}

bool isZero(const layout::Field& field, const std::uint8_t* message)
{
    const std::uint8_t* const bytes = message + field.offset;
    return std::all_of(bytes, bytes + field.size, [](std::uint8_t byte) { return byte == 0; });
}

// " with radioId 1, cfg.channel 44": every argument, and the fields that are not zero.
std::string inputsOf(const contract::Command& command, const layout::Layout& layout, const std::uint8_t* message)
{
    std::vector<std::string> inputs;
    for (const layout::NamedPart& part : layout::inputsOf(layout, command))
        if (part.name == part.argument->name || !isZero(part.field, message))
            inputs.push_back(part.name + " " + part.valueIn(message));
    const std::size_t left = inputs.size() - std::min(inputs.size(), kInputsShown);
    inputs.resize(inputs.size() - left);
    if (left > 0)
        inputs.push_back("and " + std::to_string(left) + " more");
    return inputs.empty() ? "" : " with " + base::join(inputs);
}

// "TarnGetRadio (TARN command 7) with radioId 1", or the part of it that the contract tells.
std::string described(const ActualCall& actual)
{
    std::string name = nameOf(actual.kind, actual.serviceId == nullptr ? "NULL" : actual.serviceId, actual.number);
    const std::vector<const contract::Command*> commands = commandsOf(actual);
    if (commands.empty())
        return name;
    const std::string functions =
        base::join(commands, " or ", [](const contract::Command* command) { return command->function; });
    return functions + " (" + name + ")" +
           (commands.size() == 1 ? inputsOf(*commands.front(), *layoutInUse(), actual.message) : "");
}

// --- Which call of the script it is ----------------------------------------------------------------------------------------

KorIilMockCall* nextInOrder()
{
    for (const auto& call : state().script)
        if (call->isInOrder && call->isOpen())
            return call.get();
    return nullptr;
}

// Of those in any order: one that must still be made before one that may be, and of the latter the one scripted last, so that
// a test can replace what a fixture has set up.
KorIilMockCall* inAnyOrder(const ActualCall& actual)
{
    KorIilMockCall* allowed = nullptr;
    for (const auto& call : state().script)
    {
        if (call->isInOrder || !call->isOpen() || !call->fits(actual))
            continue;
        if (call->made < call->least)
            return call.get();
        allowed = call.get();
    }
    return allowed;
}

std::string expectedNext(const KorIilMockCall* next)
{
    std::set<std::string> others;
    for (const auto& call : state().script)
        if (!call->isInOrder && call->isOpen())
            others.insert(call->name());
    std::string text = next == nullptr && others.empty() ? "; no further call is expected" : "";
    if (next != nullptr)
        text += "; expected here: " + next->name();
    if (!others.empty())
        text += "; expected at any time: " + base::join(others);
    return text;
}

// Why a call that was made is none of the script's.
Failure unexpected(const ActualCall& actual, const KorIilMockCall* next)
{
    Failure failure{"", 0, "unexpected call: " + described(actual)};
    failure.text += expectedNext(next);
    const KorIilMockCall* nearest = next;
    for (const auto& call : state().script)
        if (!call->isInOrder && call->isFor(actual))
        {
            nearest = nearest == nullptr ? call.get() : nearest;
            failure.text += "\nnot the " + call->name() + " of line " + std::to_string(call->line) + ": ";
            failure.text += call->isOpen() ? call->differences(actual) : "it has been made as often as expected";
        }
    if (nearest != nullptr)
    {
        failure.file = nearest->file;
        failure.line = nearest->line;
    }
    return failure;
}

} // namespace

std::mutex& mutex()
{
    static std::mutex instance;
    return instance;
}

MockState& state()
{
    static MockState instance;
    return instance;
}

std::shared_ptr<const layout::Layout> currentLayout()
{
    const Guard guard(mutex());
    return layoutInUse();
}

void fail(const std::string& file, unsigned line, const std::string& text)
{
    {
        const Guard guard(mutex());
        state().failures.push_back({file, line, text});
    }
    if (const auto hook = copyOf(&MockState::onFailure); hook.handler != nullptr)
        hook.handler(hook.context, file.empty() ? nullptr : file.c_str(), line, text.c_str());
}

void fail(const KorIilMockCall& call, const std::string& text)
{
    if (call.most > 0)
        fail(call.file, call.line, call.name() + ": " + text);
}

KorIilMockCall* addCall(CallKind kind, const char* file, unsigned line, const char* serviceId, std::uint32_t number,
                        std::uint32_t length)
{
    auto call = std::make_unique<KorIilMockCall>();
    call->kind = kind;
    call->file = file;
    call->line = line;
    call->serviceId = serviceId;
    call->number = number;
    call->length = length;
    const Guard guard(mutex());
    state().script.push_back(std::move(call));
    return state().script.back().get();
}

void addPart(KorIilMockCall& call, std::vector<Part> KorIilMockCall::*parts, Part part)
{
    if (call.kind != CallKind::kExecute)
    {
        fail(call, "the script gives it bytes (" + part.label + "), but it has no message");
    }
    else if (part.offset > call.length || part.bytes.size() > call.length - part.offset)
    {
        fail(call, "the script puts " + part.label + ", " + std::to_string(part.bytes.size()) + " bytes, at offset " +
                       std::to_string(part.offset) + " of a message of " + std::to_string(call.length));
    }
    else
    {
        const Guard guard(mutex());
        (call.*parts).push_back(std::move(part));
    }
}

const KorIilMockCall* take(const ActualCall& actual)
{
    std::unique_lock<std::mutex> lock(mutex());
    KorIilMockCall* const next = nextInOrder();
    KorIilMockCall* call = next != nullptr && next->fits(actual) ? next : inAnyOrder(actual);
    if (call == nullptr && next != nullptr && next->isFor(actual))
        call = next;
    if (call == nullptr)
    {
        // Described before the lock is released, as another thread may then take the next call.
        const Failure failure = unexpected(actual, next);
        lock.unlock();
        fail(failure.file, failure.line, failure.text);
        return nullptr;
    }
    ++call->made;
    const std::string text = call->differences(actual);
    lock.unlock();
    if (!text.empty())
        fail(*call, "not as scripted\n" + text);
    return call;
}

} // namespace tarn::mock
