#include "request_log.h"

#include "kor_iil_service.h"
#include "layout/message.h"

#include <algorithm>
#include <cstring>

namespace tarn::simulator
{

namespace
{

// A field or an element, and no argument of its own.
bool isInside(const layout::NamedPart& part)
{
    return part.name != part.argument->name;
}

bool isZero(const layout::NamedPart& part, const std::uint8_t* message)
{
    const std::uint8_t* const begin = message + part.field.offset;
    return std::all_of(begin, begin + part.field.size, [](std::uint8_t byte) { return byte == 0; });
}

} // namespace

void RequestLog::add(const std::string& line)
{
    write_(line);
    lines_.push_back(line);
    if (lines_.size() > kKept)
        lines_.pop_front();
}

std::string requestText(const Dispatcher& dispatcher, const GatewayLayout& layout, const KorIilRequest& request,
                        const void* message)
{
    std::string text = request.callerId + (" (" + std::to_string(request.processId) + ")");
    const auto* const bytes = static_cast<const std::uint8_t*>(message);
    const std::vector<const contract::Command*> called = dispatcher.functionsCalled(request.command, request.length, message);
    if (called.empty())
        return text + " " + dispatcher.service() + " command " + std::to_string(request.command) + ", " +
               std::to_string(request.length) + " bytes";
    text += " " + called.front()->function;
    for (const layout::NamedPart& part : layout::inputsOf(layout.used(), *called.front()))
        if (!isInside(part) || !isZero(part, bytes))
            text += " " + part.name + "=" + part.valueIn(bytes);
    return text;
}

std::string replyText(const Dispatcher& dispatcher, const GatewayLayout& layout, const KorIilRequest& request,
                      const void* message, std::uint32_t ipcStatus, const std::string& reason)
{
    if (ipcStatus == KOR_IIL_TIMEOUT)
        return "no answer" + (reason.empty() ? "" : ", " + reason);
    if (ipcStatus != KOR_IIL_OK)
        return "IPC status " + std::to_string(ipcStatus) + (reason.empty() ? "" : ", " + reason);
    const std::vector<const contract::Command*> called = dispatcher.functionsCalled(request.command, request.length, message);
    std::uint32_t status = 0;
    std::memcpy(&status, static_cast<const std::uint8_t*>(message) + called.front()->statusOffset(), sizeof status);
    std::string text = std::to_string(static_cast<std::int32_t>(status));
    if (const layout::Status* const named = layout.used().status(dispatcher.service(), status))
        text += " (" + named->name + ")";
    return reason.empty() ? text : text + ", " + reason;
}

std::string timeText(Milliseconds time)
{
    const std::string fraction = std::to_string(time % 1000 + 1000);
    return std::to_string(time / 1000) + "." + fraction.substr(1);
}

} // namespace tarn::simulator
