// The script in the words of the contract and of a layout: functions, arguments, fields, statuses and events by their names.
#include "kor_iil_mock.h"

#include "base/join.h"
#include "base/json_reader.h"
#include "base/quote.h"
#include "base/suggestions.h"
#include "contract/message.h"
#include "layout/encode.h"
#include "layout/message.h"
#include "mock_state.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace
{

using tarn::contract::Direction;
using tarn::layout::EncodeError;
using tarn::mock::addCall;
using tarn::mock::addPart;
using tarn::mock::CallKind;
using tarn::mock::currentLayout;
using tarn::mock::fail;
using tarn::mock::Guard;
using tarn::mock::mutex;
using tarn::mock::state;

namespace contract = tarn::contract;
namespace layout = tarn::layout;

using Bytes = std::vector<std::uint8_t>;

std::string didYouMean(const std::vector<std::string>& suggestions)
{
    return suggestions.empty() ? "" : "; did you mean " + tarn::base::join(suggestions, " or ") + "?";
}

std::string textOf(const EncodeError& error)
{
    return error.what() + didYouMean(error.suggestions);
}

Bytes bytesAt(const void* bytes, std::uint32_t size)
{
    const auto* const first = static_cast<const std::uint8_t*>(bytes);
    return size == 0 ? Bytes() : Bytes(first, first + size);
}

// --- Calls -----------------------------------------------------------------------------------------------------------------

void setUnknownFunction(KorIilMockCall& call, const char* function)
{
    call.least = call.most = 0;
    std::vector<std::string> names;
    for (const contract::Row& row : contract::rows())
        names.push_back(row.command->function);
    fail(call.file, call.line,
         "the script expects a call of " + tarn::base::inQuotes(function) + ", and the library has no such function" +
             didYouMean(tarn::base::suggestions(function, names)));
}

// Outputs that the script does not give are zero, also where they share bytes with inputs.
void setOutputsZero(KorIilMockCall& call)
{
    for (const contract::Argument& argument : call.command->arguments)
    {
        if (argument.direction != Direction::kOut || argument.encoding == contract::Encoding::kNothing)
            continue;
        const std::uint32_t size = argument.sizeArgument.empty() ? argument.size : 1;
        addPart(call, &KorIilMockCall::reply, {argument.offset, Bytes(size), argument.name});
    }
}

// Adds what `encode` makes of a name, or says what is wrong with it.
template <typename Encode>
void addNamed(KorIilMockCall& call, Direction direction, const char* name, Encode encode)
{
    if (call.most == 0)
        return;
    if (call.command == nullptr)
        return fail(call, "the script names " + tarn::base::inQuotes(name) +
                              ", and only a call that is expected by its function has names");
    try
    {
        layout::Encoded encoded = encode();
        addPart(call, direction == Direction::kIn ? &KorIilMockCall::sent : &KorIilMockCall::reply,
                {encoded.offset, std::move(encoded.bytes), name});
    }
    catch (const EncodeError& error)
    {
        fail(call, textOf(error));
    }
}

void addText(KorIilMockCall& call, Direction direction, const char* name, const std::string& value)
{
    addNamed(call, direction, name, [&] { return layout::encode(*call.layout, *call.command, direction, name, value); });
}

void addBytes(KorIilMockCall& call, Direction direction, const char* name, const Bytes& bytes)
{
    addNamed(call, direction, name, [&] { return layout::encodeBytes(*call.layout, *call.command, direction, name, bytes); });
}

// --- Events ----------------------------------------------------------------------------------------------------------------

struct ServiceEvent
{
    std::string serviceId;
    std::uint32_t number = 0; // 0 for none
};

// Fails the test for a name that no event has.
ServiceEvent eventNamed(const char* file, unsigned line, const char* name)
{
    std::vector<std::string> names;
    for (const contract::Contract& service : contract::all())
        for (const contract::Event& event : service.events)
        {
            if (event.name == name)
                return {service.service, event.event};
            names.push_back(event.name);
        }
    fail(file, line, "there is no event " + tarn::base::inQuotes(name) + "; expected one of " + tarn::base::join(names));
    return {};
}

KorIilMockCall* addSubscription(CallKind kind, const char* file, unsigned line, const char* name)
{
    const ServiceEvent event = eventNamed(file, line, name);
    KorIilMockCall* const call = addCall(kind, file, line, event.serviceId.c_str(), event.number, 0);
    if (event.number == 0)
        call->least = call->most = 0;
    return call;
}

void fail(const KorIilMockEvent& event, const std::string& text)
{
    fail(event.file, event.line, event.name + ": " + text);
}

// `encode` sets the field in the event's data.
template <typename Encode>
void setField(KorIilMockEvent& event, Encode encode)
{
    if (event.number == 0)
        return;
    if (event.structure == nullptr)
        return fail(event, "the layout " + event.layout->title() + " does not tell which fields it has");
    try
    {
        encode(*event.structure, event.data);
    }
    catch (const EncodeError& error)
    {
        fail(event, textOf(error));
    }
}

void setField(KorIilMockEvent& event, const char* field, const std::string& value)
{
    setField(event, [&](const layout::Structure& structure, Bytes& data) { layout::encode(structure, field, value, data); });
}

} // namespace

extern "C" {

void KorIilMockUseLayoutAt(const char* file, unsigned line, const char* path)
{
    try
    {
        auto read = std::make_shared<const layout::Layout>(layout::read(path));
        const Guard guard(mutex());
        state().layout = std::move(read);
    }
    catch (const tarn::base::JsonError& error)
    {
        fail(file, line, error.what());
    }
}

KorIilMockCall* KorIilMockExpectFunctionAt(const char* file, unsigned line, const char* function)
{
    const contract::Row row = contract::find(function);
    if (!row)
    {
        KorIilMockCall* const call = addCall(CallKind::kExecute, file, line, "", 0, 0);
        setUnknownFunction(*call, function);
        return call;
    }
    const contract::Command& command = *row.command;
    KorIilMockCall* const call =
        addCall(CallKind::kExecute, file, line, row.contract->service.c_str(), command.command, command.length);
    call->layout = currentLayout();
    call->command = &command;
    setOutputsZero(*call);
    return call;
}

void KorIilMockInputNumber(KorIilMockCall* call, const char* name, int64_t number)
{
    addText(*call, Direction::kIn, name, std::to_string(number));
}

void KorIilMockInputText(KorIilMockCall* call, const char* name, const char* value)
{
    addText(*call, Direction::kIn, name, value);
}

void KorIilMockInputBytes(KorIilMockCall* call, const char* name, const void* bytes, uint32_t size)
{
    addBytes(*call, Direction::kIn, name, bytesAt(bytes, size));
}

void KorIilMockOutputNumber(KorIilMockCall* call, const char* name, int64_t number)
{
    addText(*call, Direction::kOut, name, std::to_string(number));
}

void KorIilMockOutputText(KorIilMockCall* call, const char* name, const char* value)
{
    addText(*call, Direction::kOut, name, value);
}

void KorIilMockOutputBytes(KorIilMockCall* call, const char* name, const void* bytes, uint32_t size)
{
    addBytes(*call, Direction::kOut, name, bytesAt(bytes, size));
}

void KorIilMockStatusNamed(KorIilMockCall* call, const char* name)
{
    const std::shared_ptr<const layout::Layout> layout = call->layout == nullptr ? currentLayout() : call->layout;
    if (const layout::Status* const status = layout->statusNamed(call->serviceId, name))
        return KorIilMockStatus(call, status->number);
    std::vector<std::string> names;
    for (const layout::Status& status : layout->statuses)
        if (status.isOf(call->serviceId))
            names.push_back(status.name);
    fail(*call, "the layout " + layout->title() + " has no status " + tarn::base::inQuotes(name) + " of this service; it has " +
                    (names.empty() ? "none" : tarn::base::join(names)) + didYouMean(tarn::base::suggestions(name, names)));
}

KorIilMockCall* KorIilMockExpectSubscribeNamedAt(const char* file, unsigned line, const char* event)
{
    return addSubscription(CallKind::kSubscribe, file, line, event);
}

KorIilMockCall* KorIilMockExpectCancelNamedAt(const char* file, unsigned line, const char* event)
{
    return addSubscription(CallKind::kCancel, file, line, event);
}

KorIilMockEvent* KorIilMockEventNamedAt(const char* file, unsigned line, const char* name)
{
    const ServiceEvent found = eventNamed(file, line, name);
    auto event = std::make_unique<KorIilMockEvent>();
    event->file = file;
    event->line = line;
    event->name = name;
    event->serviceId = found.serviceId;
    event->number = found.number;
    event->layout = currentLayout();
    event->structure = event->layout->event(name);
    event->data.resize(event->structure == nullptr ? 0 : event->structure->size);
    const Guard guard(mutex());
    state().events.push_back(std::move(event));
    return state().events.back().get();
}

void KorIilMockEventNumber(KorIilMockEvent* event, const char* field, int64_t number)
{
    setField(*event, field, std::to_string(number));
}

void KorIilMockEventText(KorIilMockEvent* event, const char* field, const char* value)
{
    setField(*event, field, value);
}

void KorIilMockEventBytes(KorIilMockEvent* event, const char* field, const void* bytes, uint32_t size)
{
    setField(*event, [&](const layout::Structure& structure, Bytes& data)
             { layout::encodeBytes(structure, field, bytesAt(bytes, size), data); });
}

unsigned KorIilMockDeliverEvent(const KorIilMockEvent* event)
{
    if (event->number == 0)
        return 0;
    return KorIilMockDeliver(event->serviceId.c_str(), event->number, event->data.data(),
                             static_cast<std::uint32_t>(event->data.size()));
}

} // extern "C"
