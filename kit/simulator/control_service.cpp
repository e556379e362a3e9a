#include "control_service.h"

#include "kor_iil_service.h"
#include "tarn_gateway_control.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace tarn::simulator
{

namespace
{

std::uint32_t publish(Model&, const Control& control, TarnGatewayPublish& message)
{
    if (message.length > TARN_GATEWAY_PUBLISH_DATA_SIZE)
        return TARN_GATEWAY_INVALID_VALUE;
    const std::uint32_t status = control.publish(message.event, message.data, message.length, message.subscribers);
    return status == KOR_IIL_OK ? TARN_GATEWAY_OK : TARN_GATEWAY_NO_SUCH_OBJECT;
}

std::uint32_t statusOf(ReplyStatus status)
{
    constexpr std::uint32_t kFirst = TARN_GATEWAY_NO_SUCH_OBJECT; // the others follow it, in the order of the enumeration
    return status == ReplyStatus::kDone ? std::uint32_t{TARN_GATEWAY_OK} : kFirst - 1 + static_cast<std::uint32_t>(status);
}

std::uint32_t order(Model& model, const Control& control, TarnGatewayOrder& message)
{
    std::uint32_t status = TARN_GATEWAY_OK;
    std::string text;
    try
    {
        text =
            carryOut(model, control.surroundings, std::string_view(message.order, strnlen(message.order, sizeof message.order)))
                .dump();
    }
    catch (const Refused& refused)
    {
        status = statusOf(refused.status);
        text = refused.reason;
    }
    message.total = static_cast<std::uint32_t>(text.size());
    message.length = static_cast<std::uint32_t>(text.copy(message.text, sizeof message.text));
    if (message.length < message.total)
        message.number = control.answers.keep(std::move(text));
    return status;
}

std::uint32_t readAnswer(Model&, const Control& control, TarnGatewayReadAnswer& message)
{
    const std::string* const text = control.answers.find(message.number);
    if (text == nullptr)
        return TARN_GATEWAY_NOT_THERE;
    message.length = static_cast<std::uint32_t>(
        text->copy(message.text, sizeof message.text, std::min<std::size_t>(message.offset, text->size())));
    return TARN_GATEWAY_OK;
}

std::uint32_t readLayout(Model& model, const Control&, TarnGatewayReadLayout& message)
{
    const std::string& text = model.layout.text();
    message.total = static_cast<std::uint32_t>(text.size());
    message.length =
        static_cast<std::uint32_t>(text.copy(message.text, sizeof message.text, std::min(message.offset, message.total)));
    return TARN_GATEWAY_OK;
}

// The struct is aligned, the message need not be: it is copied in and out.
template <typename Message>
std::uint32_t serve(std::uint32_t (*answer)(Model&, const Control&, Message&), Model& model, const Control& control,
                    std::uint32_t length, void* bytes)
{
    if (length != sizeof(Message))
        return KOR_IIL_MISMATCH_CMD_LEN;
    const auto message = std::make_unique<Message>();
    std::memcpy(message.get(), bytes, sizeof(Message));
    message->status = answer(model, control, *message);
    std::memcpy(bytes, message.get(), sizeof(Message));
    return KOR_IIL_OK;
}

} // namespace

std::uint32_t Answers::keep(std::string text)
{
    texts_.push_back(std::move(text));
    if (texts_.size() > kKept)
        texts_.pop_front();
    return ++last_;
}

const std::string* Answers::find(std::uint32_t number) const
{
    const std::uint32_t first = last_ + 1 - static_cast<std::uint32_t>(texts_.size());
    return number >= first && number <= last_ ? &texts_[number - first] : nullptr;
}

std::uint32_t serveControl(Model& model, const Control& control, std::uint32_t command, std::uint32_t length, void* message)
{
    switch (command)
    {
    case TARN_GATEWAY_PUBLISH:
        return serve(publish, model, control, length, message);
    case TARN_GATEWAY_ORDER:
        return serve(order, model, control, length, message);
    case TARN_GATEWAY_READ_ANSWER:
        return serve(readAnswer, model, control, length, message);
    case TARN_GATEWAY_READ_LAYOUT:
        return serve(readLayout, model, control, length, message);
    default:
        return KOR_IIL_UNKNOWN_CMD;
    }
}

} // namespace tarn::simulator
