// Answers the requests of the control identifier, whose messages are in tarn_gateway_control.h.
#pragma once

#include "model.h"

#include <cstdint>
#include <functional>

namespace tarn::simulator
{

// What the control identifier needs of the gateway.
struct Control
{
    // Returns the IPC status of publishing, and how many processes the event was sent to.
    std::function<std::uint32_t(std::uint32_t event, const void* data, std::uint32_t length, std::uint32_t& subscribers)>
        publish;
    std::function<void()> shutDown;
    Clock& clock;
};

// Turns a request into its reply. Returns the IPC status: KOR_IIL_OK, or what is wrong with the request.
std::uint32_t serveControl(Model& model, const Control& control, std::uint32_t command, std::uint32_t length, void* message);

} // namespace tarn::simulator
