#include "dispatcher.h"

#include "kor_iil_service.h"

#include <stdexcept>

namespace tarn::simulator
{

Dispatcher::Dispatcher(const contract::Contract& contract, StatusOf statusOf, bool notesFailures)
    : statusOf_(statusOf), notesFailures_(notesFailures)
{
    for (const contract::Command& command : contract.commands)
    {
        const Handler* handler = handlers().find(command.function);
        if (handler == nullptr)
            throw std::logic_error(command.function + " has no handler");
        functions_[command.command].push_back({&command, handler});
    }
}

// Of two functions with one command, the message's contents say which is meant: the one with an interface name if there is a
// name. Where none of them has one, the requests are the same and each function takes its own part of the reply.
std::vector<Dispatcher::Function> Dispatcher::choose(const std::vector<Function>& functions, void* message)
{
    constexpr const char* kName = "intf_name";
    const Function* named = nullptr;
    for (const Function& each : functions)
        if (each.command->argument(kName) != nullptr)
            named = &each;
    if (functions.size() == 1 || named == nullptr)
        return functions;

    const bool hasName = !Exchange(*named->command, message).text(kName).empty();
    std::vector<Function> chosen;
    for (const Function& each : functions)
        if ((&each == named) == hasName)
            chosen.push_back(each);
    return chosen;
}

std::uint32_t Dispatcher::serve(Model& model, std::uint32_t command, std::uint32_t length, void* message) const
{
    const auto found = functions_.find(command);
    if (found == functions_.end())
        return KOR_IIL_UNKNOWN_CMD;
    if (length != found->second.front().command->length)
        return KOR_IIL_MISMATCH_CMD_LEN;

    Outcome outcome = Outcome::kDone;
    model.advance();
    const std::vector<Function> chosen = choose(found->second, message);
    try
    {
        for (const Function& each : chosen)
        {
            Exchange exchange(*each.command, message);
            (*each.handler)(model, exchange);
        }
    }
    catch (const Refused& refused)
    {
        outcome = refused.outcome;
    }
    model.advance();
    if (notesFailures_)
        model.errorMask |= errorMaskBit(outcome);
    Exchange(*chosen.front().command, message).setStatus(statusOf_(outcome));
    return KOR_IIL_OK;
}

} // namespace tarn::simulator
