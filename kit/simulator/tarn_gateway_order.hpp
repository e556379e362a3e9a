// Orders to a simulated gateway that runs, for programs and tests in C++.
#pragma once

#include "kor_iil.h"
#include "tarn_gateway_control.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

namespace tarn::gateway
{

struct OrderAnswer
{
    std::uint32_t ipcStatus = 0; // of KorIilExecute; the rest is empty unless it is 0
    std::uint32_t status = 0;    // TarnGatewayStatus
    std::string text;            // JSON, or why it was refused
};

// Gives an order, such as "step 60", and reads the whole answer. `wait` is in seconds, of each message.
inline OrderAnswer giveOrder(const char* callerId, const std::string& order, std::uint32_t wait)
{
    if (order.size() >= TARN_GATEWAY_ORDER_SIZE)
        return {0, TARN_GATEWAY_INVALID_VALUE,
                "expected an order of at most " + std::to_string(TARN_GATEWAY_ORDER_SIZE - 1) + " characters; got " +
                    std::to_string(order.size())};
    const auto execute = [&](std::uint32_t command, auto& message)
    { return KorIilExecute(callerId, TARN_GATEWAY_SERVICE, wait, command, sizeof message, &message); };

    OrderAnswer answer;
    const auto message = std::make_unique<TarnGatewayOrder>();
    order.copy(message->order, sizeof message->order - 1);
    answer.ipcStatus = execute(TARN_GATEWAY_ORDER, *message);
    if (answer.ipcStatus != 0)
        return answer;
    answer.status = message->status;
    answer.text.assign(message->text, std::min<std::size_t>(message->length, sizeof message->text));
    const auto piece = std::make_unique<TarnGatewayReadAnswer>();
    while (answer.text.size() < message->total)
    {
        *piece = {};
        piece->number = message->number;
        piece->offset = static_cast<std::uint32_t>(answer.text.size());
        answer.ipcStatus = execute(TARN_GATEWAY_READ_ANSWER, *piece);
        if (answer.ipcStatus != 0)
            return {answer.ipcStatus, 0, ""};
        if (piece->status != TARN_GATEWAY_OK || piece->length == 0)
            return {0, TARN_GATEWAY_NOT_THERE, "others have taken the place of the answer before it was read"};
        answer.text.append(piece->text, std::min<std::size_t>(piece->length, sizeof piece->text));
    }
    return answer;
}

} // namespace tarn::gateway
