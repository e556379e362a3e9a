// For programs that give orders to a running gateway.
#pragma once

#include "kor_iil.h"
#include "tarn_gateway_control.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

namespace tarn::simulator
{

struct OrderAnswer
{
    std::uint32_t ipcStatus = 0;
    std::uint32_t status = 0; // TarnGatewayStatus
    std::string text;         // JSON, or why it was refused
};

// `order` is shorter than TARN_GATEWAY_ORDER_SIZE. `wait` is in seconds.
inline OrderAnswer giveOrder(const char* callerId, const std::string& order, std::uint32_t wait)
{
    const auto message = std::make_unique<TarnGatewayOrder>();
    order.copy(message->order, sizeof message->order - 1);
    OrderAnswer answer;
    answer.ipcStatus = KorIilExecute(callerId, TARN_GATEWAY_SERVICE, wait, TARN_GATEWAY_ORDER, sizeof *message, message.get());
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
        answer.ipcStatus =
            KorIilExecute(callerId, TARN_GATEWAY_SERVICE, wait, TARN_GATEWAY_READ_ANSWER, sizeof *piece, piece.get());
        if (answer.ipcStatus != 0 || piece->status != TARN_GATEWAY_OK || piece->length == 0)
        {
            answer.status = TARN_GATEWAY_NOT_THERE;
            answer.text = "others have taken the place of the answer before it was read";
            return answer;
        }
        answer.text.append(piece->text, std::min<std::size_t>(piece->length, sizeof piece->text));
    }
    return answer;
}

} // namespace tarn::simulator
