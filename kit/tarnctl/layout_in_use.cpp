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
#include <string_view>
#include <unordered_set>
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

// One that has not been read, but of which it is known what it does not mention.
class UnreadLayout
{
public:
    explicit UnreadLayout(std::string text) : text_(std::move(text)), hasEscapes_(text_.find('\\') != std::string::npos)
    {
        const std::string_view all = text_;
        for (std::size_t open = all.find('"'); open != std::string_view::npos;)
        {
            const std::size_t close = std::min(all.find('"', open + 1), all.size());
            strings_.insert(all.substr(open + 1, close - open - 1));
            open = all.find('"', close + 1);
        }
    }

    // Its texts may be anything where some of their characters are escaped.
    bool mayMention(std::string_view name) const
    {
        return hasEscapes_ || strings_.count(name) != 0;
    }

    std::string text() const
    {
        return text_;
    }

private:
    const std::string text_;
    const bool hasEscapes_;
    std::unordered_set<std::string_view> strings_; // in the text
};

struct Choice
{
    std::optional<std::string> file; // named by option or environment
    std::function<void(const std::string&)> remark;
    bool isLoaded = false;
    std::optional<LayoutInUse> layout;
    std::unique_ptr<const UnreadLayout> handedOut;
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

std::optional<LayoutInUse> withoutName(const UnreadLayout* unread)
{
    if (std::optional<std::string> text = unread == nullptr ? handedOut() : unread->text())
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

void load(Choice& choice)
{
    choice.isLoaded = true;
    if (choice.file && choice.file->empty())
        return;
    try
    {
        choice.layout = choice.file ? fromFile(*choice.file) : withoutName(choice.handedOut.get());
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
    choice().handedOut.reset();
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
    if (!chosen.file && !chosen.isLoaded && !chosen.handedOut)
        if (std::optional<std::string> text = handedOut())
            chosen.handedOut = std::make_unique<UnreadLayout>(std::move(*text));
    const bool isUnread = !chosen.isLoaded && chosen.handedOut != nullptr;
    return isUnread && !chosen.handedOut->mayMention(name) ? nullptr : layoutInUse();
}

} // namespace tarn::ctl
