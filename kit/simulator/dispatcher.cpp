#include "dispatcher.h"

#include "kor_iil_service.h"

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
std::vector<Dispatcher::HandledFunction> Dispatcher::choose(const std::vector<HandledFunction>& functions,
                                                            const GatewayLayout& layout, void* message)
{
    constexpr const char* kName = "intf_name";
    const HandledFunction* named = nullptr;
    for (const HandledFunction& function : functions)
        if (function.command->argument(kName) != nullptr)
            named = &function;
    if (functions.size() == 1 || named == nullptr)
        return functions;

    const bool hasName = !CommandRequest(*named->command, layout, message).text(kName).empty();
    std::vector<HandledFunction> chosen;
    for (const HandledFunction& function : functions)
        if ((&function == named) == hasName)
            chosen.push_back(function);
    return chosen;
}

std::uint32_t Dispatcher::serve(Model& model, std::uint32_t command, std::uint32_t length, void* message) const
{
    const auto found = functions_.find(command);
    if (found == functions_.end())
        return KOR_IIL_UNKNOWN_CMD;
    if (length != found->second.front().command->length)
        return KOR_IIL_MISMATCH_CMD_LEN;

    ReplyStatus status = ReplyStatus::kDone;
    const std::vector<HandledFunction> chosen = choose(found->second, model.layout, message);
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
    }
    if (notesFailures_)
        model.service.errorMask |= errorMaskBit(status);
    CommandRequest(*chosen.front().command, model.layout, message).setStatus(model.layout.status(service_, status));
    return KOR_IIL_OK;
}

} // namespace tarn::simulator
