// From a request of one service to the handlers of its command, and to the status of the reply.
#pragma once

#include "contract/contract.h"
#include "handlers.h"
#include "reply_status.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace tarn::simulator
{

class Dispatcher
{
public:
    // `notesFailures`: what is refused here enters the model's error mask.
    Dispatcher(const contract::Contract& contract, bool notesFailures);

    // Turns the request into its reply. Returns the IPC status: KOR_IIL_OK, or what is wrong with the request.
    std::uint32_t serve(Model& model, std::uint32_t command, std::uint32_t length, void* message) const;

private:
    struct HandledFunction
    {
        const contract::Command* command;
        const Handler* handler;
    };

    static std::vector<HandledFunction> choose(const std::vector<HandledFunction>& functions, const GatewayLayout& layout,
                                               void* message);

    std::map<std::uint32_t, std::vector<HandledFunction>> functions_; // by command; a few commands have two
    std::string service_;
    bool notesFailures_;
};

} // namespace tarn::simulator
