#include "control_service.h"

#include "kor_iil_service.h"
#include "scenario.h"
#include "tarn_gateway_control.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

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

std::uint32_t shutDown(Model&, const Control& control, TarnGatewayShutDown&)
{
    control.shutDown();
    return TARN_GATEWAY_OK;
}

std::uint32_t readState(Model& model, const Control&, TarnGatewayReadState& message)
{
    using Pointer = nlohmann::ordered_json::json_pointer;
    Pointer pointer;
    try
    {
        pointer = Pointer(std::string(message.path, strnlen(message.path, sizeof message.path)));
    }
    catch (const nlohmann::ordered_json::exception&)
    {
        return TARN_GATEWAY_INVALID_VALUE;
    }

    std::string text;
    try
    {
        text = scenarioOf(model).at(pointer).dump();
    }
    catch (const nlohmann::ordered_json::exception&)
    {
        return TARN_GATEWAY_NO_SUCH_OBJECT;
    }
    message.length = static_cast<std::uint32_t>(text.size());
    if (text.size() >= sizeof message.text)
        return TARN_GATEWAY_FULL;
    std::memcpy(message.text, text.c_str(), text.size() + 1);
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

// The clock is set with the model, which it leads.
void passTo(Model& model, Clock& clock, Milliseconds time)
{
    clock.set(time);
    model.advance(time);
}

std::uint32_t controlTime(Model& model, const Control& control, TarnGatewayTime& message)
{
    Clock& clock = control.clock;
    switch (message.action)
    {
    case TARN_GATEWAY_TIME_READ:
        break;
    case TARN_GATEWAY_TIME_SET_SPEED:
        clock.setSpeed(message.value / 1000.0);
        break;
    case TARN_GATEWAY_TIME_STEP:
        passTo(model, clock, model.time + message.value);
        break;
    case TARN_GATEWAY_TIME_STEP_TO_NEXT:
        if (const std::optional<Milliseconds> next = model.agenda.next())
            passTo(model, clock, *next);
        else
            return TARN_GATEWAY_NOT_THERE;
        break;
    default:
        return TARN_GATEWAY_INVALID_VALUE;
    }
    message.speed = static_cast<std::uint32_t>(std::lround(clock.speed() * 1000));
    message.seconds = model.secondsSinceStart();
    message.milliseconds = static_cast<std::uint32_t>(model.time % 1000);
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

std::uint32_t serveControl(Model& model, const Control& control, std::uint32_t command, std::uint32_t length, void* message)
{
    switch (command)
    {
    case TARN_GATEWAY_PUBLISH:
        return serve(publish, model, control, length, message);
    case TARN_GATEWAY_SHUT_DOWN:
        return serve(shutDown, model, control, length, message);
    case TARN_GATEWAY_READ_STATE:
        return serve(readState, model, control, length, message);
    case TARN_GATEWAY_READ_LAYOUT:
        return serve(readLayout, model, control, length, message);
    case TARN_GATEWAY_TIME:
        return serve(controlTime, model, control, length, message);
    default:
        return KOR_IIL_UNKNOWN_CMD;
    }
}

} // namespace tarn::simulator
