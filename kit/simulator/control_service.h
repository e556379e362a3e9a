// Answers the requests of the control identifier, whose messages are in tarn_gateway_control.h.
#pragma once

#include "orders.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>

namespace tarn::simulator
{

// Answers that did not fit into a message, until others have taken their place.
class Answers
{
public:
    // Returns its number.
    std::uint32_t keep(std::string text);
    // Null if it is not kept any more.
    const std::string* find(std::uint32_t number) const;

private:
    static constexpr std::size_t kKept = 8;

    std::deque<std::string> texts_; // the last one has the number last_
    std::uint32_t last_ = 0;
};

// What the control identifier needs of the gateway.
struct Control
{
    // Returns the IPC status of publishing, and how many processes the event was sent to.
    std::function<std::uint32_t(std::uint32_t event, const void* data, std::uint32_t length, std::uint32_t& subscribers)>
        publish;
    const Surroundings& surroundings;
    Answers& answers;
};

// Turns a request into its reply. Returns the IPC status: KOR_IIL_OK, or what is wrong with the request.
std::uint32_t serveControl(Model& model, const Control& control, std::uint32_t command, std::uint32_t length, void* message);

} // namespace tarn::simulator
