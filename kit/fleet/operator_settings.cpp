#include "operator_settings.h"

#include "link_settings.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/verbs/syntax.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdlib>

#include <unistd.h>

namespace tarn::fleet
{

namespace
{

constexpr std::size_t kProblemSize = 1024;

std::string settingsFile(const OperatorOptions& options)
{
    if (options.file)
        return *options.file;
    if (const char* const named = std::getenv("TARN_FLEET"))
        return named;
    const char* const home = std::getenv("HOME");
    const std::string own = std::string(home == nullptr ? "" : home) + "/.config/tarn/fleet.conf";
    for (const std::string& usual : {own, std::string("/etc/tarn/fleet.conf")})
        if (access(usual.c_str(), F_OK) == 0)
            return usual;
    return "";
}

// Two programs of one name would take the connection from one another, so every process has its own.
std::string ownName()
{
    char host[64] = {};
    if (gethostname(host, sizeof host - 1) != 0)
        host[0] = '\0';
    std::string name = std::string(host).substr(0, 48) + "-" + std::to_string(getpid());
    std::replace_if(
        name.begin(), name.end(), [](char each) { return each == '/' || each == '+' || each == '#'; }, '-');
    return name;
}

} // namespace

void declare(CLI::App& parser, OperatorOptions& options)
{
    ctl::Syntax syntax(parser);
    syntax.each("--broker", options.brokers, "HOST[:PORT] of a broker; given several times, up to 8 are tried in turn");
    syntax.text("--id", options.id, "The operator's name, which its certificate has; HOST-PROCESS if left out", "NAME");
    syntax.text("--cafile", options.authorities, "Certificates that the broker's is checked with; switches TLS on", "FILE");
    syntax.text("--cert", options.certificate, "The operator's own certificate", "FILE");
    syntax.text("--key", options.key, "Its key", "FILE");
    syntax.text("--keep-alive", options.keepAlive, "Seconds without traffic after which the connection is tried; else 30",
                "SECONDS");
    syntax.text("--config", options.file,
                "File of these settings, one a line without its dashes; else TARN_FLEET, ~/.config/tarn/fleet.conf, "
                "/etc/tarn/fleet.conf",
                "FILE");
}

LinkSettings linkSettings(const OperatorOptions& options)
{
    LinkSettings link;
    char text[kProblemSize] = {};
    const Problem problem = {text, sizeof text};
    const auto require = [&text](bool isGood)
    {
        if (!isGood)
            throw ctl::UsageError(text);
    };
    const auto take = [](void* context, const char* name, const char* value, const Problem& wrong)
    {
        if (!isLinkSetting(name))
            return wrong.say("expected one of id, broker, cafile, cert, key and keep-alive, not %s", name);
        return setLink(*static_cast<LinkSettings*>(context), name, value, wrong);
    };
    if (const std::string file = settingsFile(options); !file.empty())
        require(readSettingsFile(file.c_str(), take, &link, problem));
    if (!options.brokers.empty())
        link.brokerCount = 0;
    for (const std::string& broker : options.brokers)
        require(setLink(link, "broker", broker.c_str(), problem));
    const struct
    {
        const char* name;
        const std::optional<std::string>& value;
    } others[] = {{"id", options.id},
                  {"cafile", options.authorities},
                  {"cert", options.certificate},
                  {"key", options.key},
                  {"keep-alive", options.keepAlive}};
    for (const auto& other : others)
        if (other.value)
            require(setLink(link, other.name, other.value->c_str(), problem));
    if (link.clientId[0] == '\0' && link.certificate[0] == '\0')
        require(setLink(link, "id", ownName().c_str(), problem));
    if (link.brokerCount == 0)
        throw ctl::UsageError(
            "expected --broker HOST, or a line \"broker HOST\" in the file that --config or TARN_FLEET names, in "
            "~/.config/tarn/fleet.conf or in /etc/tarn/fleet.conf");
    require(completeLink(link, "operator", problem));
    return link;
}

} // namespace tarn::fleet
