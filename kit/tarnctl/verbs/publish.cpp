// `tarnctl publish`: no function of the library, but a message to the simulated gateway's control identifier.
#include "kor_iil.h"
#include "tarn_gateway_control.h"
#include "tarnctl/event_names.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/values.h"
#include "tarnctl/verbs/verbs.h"

#include <algorithm>

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

constexpr std::uint32_t kPublishWait = 3; // seconds

struct PublishOptions
{
    std::string event;
    std::optional<std::string> data;
};

void declarePublish(Syntax& syntax, PublishOptions& options)
{
    syntax.text("EVENT", options.event, "Name or number of the event");
    syntax.text("--data", options.data, "The event's data, two hexadecimal digits a byte");
}

TarnGatewayPublish messageFor(const contract::Event& event, const Bytes& data)
{
    TarnGatewayPublish message = {};
    message.event = event.event;
    message.length = static_cast<std::uint32_t>(data.size());
    std::copy(data.begin(), data.end(), message.data);
    return message;
}

ExitCode publish(const Console& console, const PublishOptions& options)
{
    const contract::Event& event = eventNamed(options.event);
    const Bytes data = parseHex("--data", options.data.value_or(""));
    if (data.size() > TARN_GATEWAY_PUBLISH_DATA_SIZE)
        throw UsageError("--data: expected at most " + std::to_string(TARN_GATEWAY_PUBLISH_DATA_SIZE) + " bytes; got " +
                         std::to_string(data.size()));

    TarnGatewayPublish message = messageFor(event, data);
    if (const std::uint32_t status =
            KorIilExecute(kOwnCallerId, TARN_GATEWAY_SERVICE, kPublishWait, TARN_GATEWAY_PUBLISH, sizeof message, &message))
        return simulatorFailure(console, status, "publishes on request");
    if (message.status != TARN_GATEWAY_OK)
        return console.fail(ExitCode::kServiceStatus,
                            "the simulated gateway answered with status " + std::to_string(message.status));

    if (!console.json)
    {
        console.out << "sent to " << message.subscribers << (message.subscribers == 1 ? " subscriber\n" : " subscribers\n");
        return ExitCode::kSuccess;
    }
    Json document = Console::document("publish");
    document["event"] = event.event;
    document["name"] = event.name;
    document["data"] = hexText(data);
    document["subscribers"] = message.subscribers;
    console.write(document);
    return ExitCode::kSuccess;
}

} // namespace

void addPublish(Verbs& verbs)
{
    verbs.add("publish", "Lets the simulated gateway publish an event", &declarePublish, &publish, &eventNames);
}

} // namespace tarn::ctl
