// The contract files as the build has listed them (list_contract.cmake), so that no program reads their text when it starts.
#include "contract.h"

#include "words.h"

#include <cstddef>
#include <string_view>

namespace tarn::contract
{

namespace
{

template <std::size_t count>
constexpr std::size_t indexOf(const char* const (&words)[count], std::string_view word)
{
    for (std::size_t index = 0; index < count; ++index)
        if (words[index] == word)
            return index;
    throw "no such word"; // which ends the compilation
}

struct ListedService
{
    const char* name;
    const char* traceTag;
    Result result;
    const char* invalidCaller;
    std::size_t records, events, commands;
};

struct ListedRecord
{
    const char* name;
    std::uint32_t size;
};

struct ListedEvent
{
    std::uint32_t number;
    const char* name;
};

struct ListedCommand
{
    std::uint32_t command, wait, length;
    const char* function;
    Effect effect;
    const char* effectReason;
    const char* group;
    const char* description;
    const char* note;
    std::size_t arguments, checks;
};

struct ListedArgument
{
    const char* name;
    Type type;
    const char* record;
    Direction direction;
    Encoding encoding;
    std::uint32_t offset, size;
    const char* sizeArgument;
    bool isSigned, optional;
};

struct ListedCheck
{
    const char* argument;
    When when;
    const char* message;
};

// The list is read once for each kind of its lines.
#define TARN_SERVICE(...)
#define TARN_RECORD(...)
#define TARN_EVENT(...)
#define TARN_FUNCTION(...)
#define TARN_ARGUMENT(...)
#define TARN_CHECK(...)
#define TARN_LAYOUT(...)

#undef TARN_SERVICE
#define TARN_SERVICE(name, tag, type, rejected, failed, timedOut, invalidCaller, records, events, commands)                    \
    {name, tag, {indexOf(kResultWords, #type) == 1, rejected, failed, timedOut}, invalidCaller, records, events, commands},
constexpr ListedService kServices[] = {
#include "contract_list.inc"
};
#undef TARN_SERVICE
#define TARN_SERVICE(...)

#undef TARN_RECORD
#define TARN_RECORD(...) {__VA_ARGS__},
constexpr ListedRecord kRecords[] = {
#include "contract_list.inc"
};
#undef TARN_RECORD
#define TARN_RECORD(...)

#undef TARN_EVENT
#define TARN_EVENT(...) {__VA_ARGS__},
constexpr ListedEvent kEvents[] = {
#include "contract_list.inc"
};
#undef TARN_EVENT
#define TARN_EVENT(...)

#undef TARN_FUNCTION
#define TARN_FUNCTION(service, command, wait, length, function, effect, ...)                                                   \
    {command, wait, length, function, static_cast<Effect>(indexOf(kEffectWords, #effect)), __VA_ARGS__},
constexpr ListedCommand kCommands[] = {
#include "contract_list.inc"
};
#undef TARN_FUNCTION
#define TARN_FUNCTION(...)

#undef TARN_ARGUMENT
#define TARN_ARGUMENT(name, type, record, direction, encoding, ...)                                                            \
    {name,                                                                                                                     \
     static_cast<Type>(indexOf(kTypeWords, #type)),                                                                            \
     record,                                                                                                                   \
     static_cast<Direction>(indexOf(kDirectionWords, #direction)),                                                             \
     static_cast<Encoding>(indexOf(kEncodingWords, #encoding)),                                                                \
     __VA_ARGS__},
constexpr ListedArgument kArguments[] = {
#include "contract_list.inc"
};
#undef TARN_ARGUMENT
#define TARN_ARGUMENT(...)

#undef TARN_CHECK
#define TARN_CHECK(argument, when, message) {argument, static_cast<When>(indexOf(kWhenWords, #when)), message},
constexpr ListedCheck kChecks[] = {
#include "contract_list.inc"
};

#undef TARN_SERVICE
#undef TARN_RECORD
#undef TARN_EVENT
#undef TARN_FUNCTION
#undef TARN_ARGUMENT
#undef TARN_CHECK
#undef TARN_LAYOUT

Argument argumentFrom(const ListedArgument& listed)
{
    const std::uint32_t implied = impliedSize(listed.encoding);
    return {listed.name,
            listed.type,
            listed.record,
            listed.direction,
            listed.encoding,
            listed.offset,
            implied == 0 ? listed.size : implied,
            listed.sizeArgument,
            listed.isSigned,
            listed.optional};
}

// Goes through the lists of what follows upon one another in the files.
class Listing
{
public:
    Contract next(const ListedService& service)
    {
        Contract contract;
        contract.service = service.name;
        contract.traceTag = service.traceTag;
        contract.result = service.result;
        contract.invalidCaller = service.invalidCaller;
        for (std::size_t count = service.records; count > 0; --count, ++record_)
            contract.records.push_back({record_->name, record_->size});
        for (std::size_t count = service.events; count > 0; --count, ++event_)
            contract.events.push_back({event_->number, event_->name});
        contract.commands.reserve(service.commands);
        for (std::size_t count = service.commands; count > 0; --count, ++command_)
            contract.commands.push_back(next(*command_));
        return contract;
    }

private:
    Command next(const ListedCommand& listed)
    {
        Command command;
        command.command = listed.command;
        command.function = listed.function;
        command.group = listed.group;
        command.description = listed.description;
        command.note = listed.note;
        command.effect = listed.effect;
        command.effectReason = listed.effectReason;
        command.wait = listed.wait;
        command.length = listed.length;
        command.arguments.reserve(listed.arguments);
        for (std::size_t count = listed.arguments; count > 0; --count, ++argument_)
            command.arguments.push_back(argumentFrom(*argument_));
        command.checks.reserve(listed.checks);
        for (std::size_t count = listed.checks; count > 0; --count, ++check_)
            command.checks.push_back({check_->argument, check_->when, check_->message});
        return command;
    }

    const ListedRecord* record_ = kRecords;
    const ListedEvent* event_ = kEvents;
    const ListedCommand* command_ = kCommands;
    const ListedArgument* argument_ = kArguments;
    const ListedCheck* check_ = kChecks;
};

} // namespace

const std::vector<Contract>& all()
{
    static const std::vector<Contract> kContracts = []
    {
        Listing listing;
        std::vector<Contract> contracts;
        for (const ListedService& service : kServices)
            contracts.push_back(listing.next(service));
        return contracts;
    }();
    return kContracts;
}

} // namespace tarn::contract
