#include "local_functions.h"

#include "tarn_frame.h"

#include <utility>

namespace tarn::ctl
{

namespace
{

using Values = std::vector<calling::ArgumentValue>;

FunctionParameter number(std::string name, std::string content)
{
    FunctionParameter parameter;
    parameter.name = std::move(name);
    parameter.isInput = true;
    parameter.content = std::move(content);
    return parameter;
}

FunctionParameter address(std::string name, std::string content)
{
    FunctionParameter parameter;
    parameter.name = std::move(name);
    parameter.form = Form::kAddress;
    parameter.isInput = true;
    parameter.null = Null::kAllowed;
    parameter.content = std::move(content);
    return parameter;
}

FunctionParameter rateTable()
{
    FunctionParameter parameter;
    parameter.name = "table";
    parameter.form = Form::kRecord;
    parameter.isInput = true;
    parameter.isOutput = true;
    parameter.size = sizeof(TarnRateTable);
    parameter.record = "TarnRateTable";
    parameter.null = Null::kRefused;
    parameter.content = "count in one byte, then 255 texts of 17 bytes; zero is an empty table";
    return parameter;
}

FunctionParameter rate()
{
    FunctionParameter parameter;
    parameter.name = "rate";
    parameter.form = Form::kText;
    parameter.isInput = true;
    parameter.size = TARN_RATE_TEXT_SIZE;
    parameter.null = Null::kRefused;
    parameter.content = "a decimal text of at most 16 characters";
    return parameter;
}

// --- Results ----------------------------------------------------------------------------------------------------------------

LocalResult eventResult(std::uint32_t result)
{
    return {result, "", result == TARN_OK ? Answer::kYes : Answer::kNo, ""};
}

LocalResult rateResult(std::uint32_t result)
{
    switch (result)
    {
    case TARN_RATE_ADDED:
        return {result, "", Answer::kYes, "the rate is in the table"};
    case TARN_RATE_DELETED:
        return {result, "", Answer::kYes, "the rate is deleted"};
    case TARN_RATE_REJECTED:
        return {result, "", Answer::kRefused, "expected a table and a rate above zero"};
    case TARN_RATE_NOT_FOUND:
        return {result, "", Answer::kNo, "the rate is not in the table"};
    case TARN_RATE_TABLE_FULL:
        return {result, "", Answer::kNo, "the table is full"};
    default:
        return {result, "", Answer::kNo, "a result that is not documented"};
    }
}

// --- Calls ------------------------------------------------------------------------------------------------------------------

// In place of a component's own handler. Events are watched with another verb.
void ignoreEvent(const char*, std::uint32_t, const void*, std::uint32_t)
{
}

// An address that was left out is not null: it is the handler above.
KorIilEventHandler handlerOf(const calling::ArgumentValue& value)
{
    return value.pointer == nullptr ? nullptr : &ignoreEvent;
}

LocalResult subscribe(const char* callerId, const Values& values)
{
    return eventResult(tarnSubscribeEvent(callerId, values[0].number, nullptr, handlerOf(values[1])));
}

LocalResult cancel(const char* callerId, const Values& values)
{
    return eventResult(tarnCancelEvent(callerId, values[0].number, nullptr, handlerOf(values[1])));
}

LocalResult statusName(const char*, const Values& values)
{
    return {0, tarnIpcStatusName(values[0].number), Answer::kYes, ""};
}

LocalResult validatePin(const char*, const Values& values)
{
    const std::uint32_t result = tarnValidatePinCode(values[0].number);
    if (result != 0)
        return {result, "", Answer::kYes, "the check digit is right"};
    return {result, "", Answer::kNo, "the check digit is wrong"};
}

LocalResult addRate(const char*, const Values& values)
{
    return rateResult(
        tarnAddRateEntries(static_cast<TarnRateTable*>(values[0].pointer), static_cast<const char*>(values[1].pointer)));
}

LocalResult deleteRate(const char*, const Values& values)
{
    return rateResult(
        tarnDelRatesEntries(static_cast<TarnRateTable*>(values[0].pointer), static_cast<const char*>(values[1].pointer)));
}

// --- Descriptions -----------------------------------------------------------------------------------------------------------

LibraryFunction eventFunction(const char* name, const char* description, const char* note,
                              decltype(LibraryFunction::local) call)
{
    LibraryFunction function;
    function.kind = FunctionKind::kEvent;
    function.name = name;
    function.service = "TARN";
    function.group = "Events";
    function.description = description;
    function.note = note;
    function.parameters = {number("evt", "1 to 5, as it is"),
                           address("handler", "a function of tarnctl's own that ignores the event")};
    function.local = call;
    return function;
}

LibraryFunction localFunction(const char* name, const char* description, std::vector<FunctionParameter> parameters,
                              decltype(LibraryFunction::local) call)
{
    LibraryFunction function;
    function.kind = FunctionKind::kLocal;
    function.name = name;
    function.group = "Local utilities";
    function.description = description;
    function.parameters = std::move(parameters);
    function.local = call;
    return function;
}

} // namespace

std::vector<LibraryFunction> localFunctions()
{
    return {
        eventFunction("tarnSubscribeEvent", "Subscribes to one event of the device service.",
                      "The subscription ends with this process; `tarnctl events` watches events. "
                      "The prototype's third argument is never read and is always null here.",
                      &subscribe),
        eventFunction("tarnCancelEvent", "Takes a subscription to an event back.",
                      "A process that has just started has no subscription, so the platform refuses this with BAD_EVT. "
                      "The prototype's third argument is never read and is always null here.",
                      &cancel),
        localFunction("tarnIpcStatusName", "Names an IPC status.", {number("status", "any number")}, &statusName),
        localFunction("tarnValidatePinCode", "Tells whether a WPS PIN carries a valid check digit.",
                      {number("pin", "eight decimal digits; those above the eighth are ignored")}, &validatePin),
        localFunction("tarnAddRateEntries", "Adds a rate to a table of rates.", {rateTable(), rate()}, &addRate),
        localFunction("tarnDelRatesEntries", "Deletes a rate from a table of rates.", {rateTable(), rate()}, &deleteRate),
    };
}

} // namespace tarn::ctl
