#include "dispatcher.h"

#include "kor_iil_service.h"

#include <cstring>
#include <stdexcept>

namespace tarn::simulator
{

Dispatcher::Dispatcher(const contract::Contract& contract, bool notesFailures)
    : service_(contract.service), notesFailures_(notesFailures)
{
    for (const contract::Command& command : contract.commands)
    {
        const Handler* handler = handlers().find(command.function);
        if (handler == nullptr)
            throw std::logic_error(command.function + " has no handler");
        functions_[command.command].push_back({&command, handler});
    }
}

// Where two functions have one command, the message says which was called: the one with an interface name if it has a name.
// Where neither has that argument, the requests are equal, and the reply carries the outputs of both.
std::vector<Dispatcher::HandledFunction> Dispatcher::choose(const std::vector<HandledFunction>& functions, const void* message)
{
    constexpr const char* kName = "intf_name";
    const HandledFunction* named = nullptr;
    for (const HandledFunction& function : functions)
        if (function.command->argument(kName) != nullptr)
            named = &function;
    if (functions.size() == 1 || named == nullptr)
        return functions;

    const bool hasName = static_cast<const char*>(message)[named->command->argument(kName)->offset] != '\0';
    std::vector<HandledFunction> chosen;
    for (const HandledFunction& function : functions)
        if ((&function == named) == hasName)
            chosen.push_back(function);
    return chosen;
}

const std::vector<Dispatcher::HandledFunction>* Dispatcher::functionsOf(std::uint32_t command) const
{
    const auto found = functions_.find(command);
    return found == functions_.end() ? nullptr : &found->second;
}

void Dispatcher::answer(std::uint32_t command, void* message, std::uint32_t status) const
{
    std::memcpy(static_cast<std::uint8_t*>(message) + functionsOf(command)->front().command->statusOffset(), &status,
                sizeof status);
}

std::vector<const contract::Command*> Dispatcher::functionsCalled(std::uint32_t command, std::uint32_t length,
                                                                  const void* message) const
{
    std::vector<const contract::Command*> called;
    const std::vector<HandledFunction>* const functions = functionsOf(command);
    if (functions != nullptr && functions->front().command->length == length)
        for (const HandledFunction& function : choose(*functions, message))
            called.push_back(function.command);
    return called;
}

std::uint32_t Dispatcher::serve(Model& model, std::uint32_t command, std::uint32_t length, void* message) const
{
    std::string reason;
    return serve(model, command, length, message, reason);
}

std::uint32_t Dispatcher::serve(Model& model, std::uint32_t command, std::uint32_t length, void* message,
                                std::string& reason) const
{
    const std::vector<HandledFunction>* const functions = functionsOf(command);
    if (functions == nullptr)
    {
        reason = "there is no such command";
        return KOR_IIL_UNKNOWN_CMD;
    }
    if (length != functions->front().command->length)
    {
        reason = "expected " + std::to_string(functions->front().command->length) + " bytes";
        return KOR_IIL_MISMATCH_CMD_LEN;
    }

    ReplyStatus status = ReplyStatus::kDone;
    const std::vector<HandledFunction> chosen = choose(*functions, message);
    try
    {
        for (const HandledFunction& function : chosen)
        {
            CommandRequest request(*function.command, model.layout, message);
            (*function.handler)(model, request);
        }
    }
    catch (const Refused& refused)
    {
        status = refused.status;
        reason = refused.reason;
    }
    if (notesFailures_)
        model.service.errorMask |= errorMaskBit(status);
    CommandRequest(*chosen.front().command, model.layout, message).setStatus(model.layout.status(service_, status));
    return KOR_IIL_OK;
}

} // namespace tarn::simulator
