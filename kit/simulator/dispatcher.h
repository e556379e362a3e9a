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

    const std::string& service() const
    {
        return service_;
    }

    // Turns the request into its reply. Returns the IPC status: KOR_IIL_OK, or what is wrong with the request. `reason` says
    // why it was refused, if it was.
    std::uint32_t serve(Model& model, std::uint32_t command, std::uint32_t length, void* message, std::string& reason) const;
    std::uint32_t serve(Model& model, std::uint32_t command, std::uint32_t length, void* message) const;

    // Turns a request that one of its functions makes into a reply with that status alone.
    void answer(std::uint32_t command, void* message, std::uint32_t status) const;

    // The functions whose request this is, by its message: one, or where it does not say which, two. None for a command that
    // the service does not have, or a message of another length.
    std::vector<const contract::Command*> functionsCalled(std::uint32_t command, std::uint32_t length,
                                                          const void* message) const;

private:
    struct HandledFunction
    {
        const contract::Command* command;
        const Handler* handler;
    };

    // Null for one that the service does not have.
    const std::vector<HandledFunction>* functionsOf(std::uint32_t command) const;
    static std::vector<HandledFunction> choose(const std::vector<HandledFunction>& functions, const void* message);

    std::map<std::uint32_t, std::vector<HandledFunction>> functions_; // by command; a few commands have two
    std::string service_;
    bool notesFailures_;
};

} // namespace tarn::simulator
