#include "layout_in_use.h"

#include "base/json_reader.h"
#include "call.h"
#include "kor_iil.h"
#include "kor_iil_service.h"
#include "tarn_gateway_control.h"
#include "usage_error.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <utility>

#include <unistd.h>

// Only libkoriil has it: where the platform is another, there is no simulated gateway to ask.
#pragma weak KorIilRuntimeDirectory

namespace tarn::ctl
{

namespace
{

constexpr char kUsualFile[] = "/etc/tarn/layout.json";
constexpr std::uint32_t kWait = 3; // seconds

struct Choice
{
    std::optional<std::string> file; // named by option or environment
    std::function<void(const std::string&)> remark;
    bool isLoaded = false;
    std::optional<LayoutInUse> layout;
    std::optional<std::string> unread; // the text of one that a simulated gateway has handed out
};

Choice& choice()
{
    static Choice kChoice;
    return kChoice;
}

LayoutInUse fromFile(const std::string& path)
{
    LayoutInUse result;
    result.text = base::readText(path, "a layout file");
    result.source = path;
    result.layout = layout::parse(result.text, path);
    return result;
}

// The whole text, or nothing if there is no simulated gateway.
std::optional<std::string> handedOut()
{
    if (KorIilRuntimeDirectory == nullptr)
        return std::nullopt;
    const auto message = std::make_unique<TarnGatewayReadLayout>();
    std::string text;
    do
    {
        *message = {};
        message->offset = static_cast<std::uint32_t>(text.size());
        const std::uint32_t status =
            KorIilExecute(kOwnCallerId, TARN_GATEWAY_SERVICE, kWait, TARN_GATEWAY_READ_LAYOUT, sizeof *message, message.get());
        if (status != KOR_IIL_OK || message->status != TARN_GATEWAY_OK || message->length == 0)
            return std::nullopt;
        text.append(message->text, std::min<std::size_t>(message->length, sizeof message->text));
    } while (text.size() < message->total);
    return text;
}

std::optional<LayoutInUse> withoutName(std::optional<std::string> unread)
{
    if (std::optional<std::string> text = unread ? std::move(unread) : handedOut())
    {
        LayoutInUse result;
        result.source = "the simulated gateway";
        result.layout = layout::parse(*text, result.source);
        result.text = std::move(*text);
        return result;
    }
    if (access(kUsualFile, F_OK) != 0)
        return std::nullopt;
    return fromFile(kUsualFile);
}

// Of the text of a layout. In one with escaped characters the name may be written in any way.
bool mayMention(const std::string& text, const std::string& name)
{
    return text.find(name) != std::string::npos || text.find('\\') != std::string::npos;
}

void load(Choice& choice)
{
    choice.isLoaded = true;
    if (choice.file && choice.file->empty())
        return;
    try
    {
        choice.layout = choice.file ? fromFile(*choice.file) : withoutName(std::move(choice.unread));
    }
    catch (const base::JsonError& error)
    {
        if (choice.file)
            throw UsageError(error.what());
        choice.remark(std::string(error.what()) + "; shown without a layout");
    }
}

} // namespace

void chooseLayout(std::optional<std::string> file, std::function<void(const std::string&)> remark)
{
    choice() = {};
    choice().remark = std::move(remark);
    const char* const environment = std::getenv("TARN_LAYOUT");
    if (file)
        choice().file = std::move(file);
    else if (environment != nullptr)
        choice().file = environment;
}

void checkNamedLayout()
{
    if (choice().file)
        layoutInUse();
}

void loadLayoutAnew()
{
    choice().isLoaded = false;
    choice().layout.reset();
    choice().unread.reset();
}

const LayoutInUse* layoutInUse()
{
    Choice& chosen = choice();
    if (!chosen.isLoaded)
        load(chosen);
    return chosen.layout ? &*chosen.layout : nullptr;
}

const LayoutInUse* layoutThatTellsOf(const std::string& name)
{
    Choice& chosen = choice();
    if (!chosen.file && !chosen.isLoaded && !chosen.unread)
        chosen.unread = handedOut();
    const bool isUnread = !chosen.isLoaded && chosen.unread;
    return isUnread && !mayMention(*chosen.unread, name) ? nullptr : layoutInUse();
}

} // namespace tarn::ctl
