#include "bridge_settings.h"
#include "link_settings.h"

#include <cstring>

namespace tarn::fleet
{

namespace
{

// Those that are switched on by their name alone.
bool setSwitch(BridgeOptions& options, const char* name)
{
    if (isEqual(name, "no-events"))
        options.isEvents = false;
    else if (isEqual(name, "help"))
        options.isHelp = true;
    else if (isEqual(name, "version"))
        options.isVersion = true;
    else
        return false;
    return true;
}

} // namespace

const char kBridgeHelp[] =
    "Takes calls for a gateway from a message broker, makes them with the gateway's own IPC, and answers.\n"
    "Usage: tarn-bridge [OPTIONS]\n"
    "\n"
    "Options:\n"
    "  --help                      Print this help message and exit\n"
    "  --version                   Print the version and exit\n"
    "  --id TEXT                   The gateway's name, as the broker and operators know it\n"
    "  --broker TEXT               HOST[:PORT] of a broker; given several times, up to 8 are tried in turn\n"
    "  --cafile FILE               Certificates that the broker's is checked with; switches TLS on\n"
    "  --cert FILE                 The gateway's own certificate\n"
    "  --key FILE                  Its key\n"
    "  --policy FILE               What may be asked from afar; what only reads if left out\n"
    "  --keep-alive UINT:5 to 3600=30\n"
    "                              Seconds without traffic after which the connection is tried\n"
    "  --no-events                 Do not carry the gateway's events\n"
    "  --renew UINT:0 to 3600=5    Seconds after which events are subscribed to again, as a service that was restarted has "
    "lost\n"
    "                              its subscribers; 0 where the gateway's IPC would then deliver them twice\n"
    "  --ready-descriptor UINT     Write a line to this descriptor once a broker is reached\n"
    "  --config FILE               Read settings from a file: an option a line, without its dashes\n"
    "\n"
    "A policy has lines such as \"allow reads\", \"deny QTN_RPC_PROXY *\", \"allow TARN TarnSetRadioCfg\", \"rate 20/s\" and\n"
    "\"rate changes 6/min\". It begins with nothing allowed, and a later line overrides an earlier one.\n"
    "\n"
    "SIGHUP reads the policy again. SIGTERM and SIGINT end the program: what waits is refused, what is under way is answered.\n"
    "What is refused and what changes something is logged on standard error, behind <N>, the priority of syslog.\n"
    "\n"
    "Exit codes:\n"
    "  0  ended by a signal\n"
    "  1  the system has no thread, descriptor or memory left\n"
    "  2  a setting or the policy is wrong\n";

bool set(BridgeOptions& options, const char* name, const char* value, char* problem, std::size_t size)
{
    const Problem wrong = {problem, size};
    if (isLinkSetting(name))
        return setLink(options.bridge.link, name, value, wrong);
    if (isEqual(name, "policy"))
        return setText(name, value, options.policyFile, sizeof options.policyFile, wrong);
    if (isEqual(name, "renew"))
        return setNumber(name, value, 0, 3600, options.renewSeconds, wrong);
    if (isEqual(name, "ready-descriptor"))
        return setNumber(name, value, 1, 1023, options.readyDescriptor, wrong);
    return wrong.say("expected a setting of tarn-bridge --help, not %s", name);
}

bool readSettings(BridgeOptions& options, const char* fileName, char* problem, std::size_t size)
{
    const auto take = [](void* context, const char* name, const char* value, const Problem& wrong)
    {
        auto& read = *static_cast<BridgeOptions*>(context);
        return (*value == '\0' && setSwitch(read, name)) || set(read, name, value, wrong.text, wrong.size);
    };
    return readSettingsFile(fileName, take, &options, Problem{problem, size});
}

bool readArguments(BridgeOptions& options, int count, const char* const* arguments, char* problem, std::size_t size)
{
    const Problem wrong = {problem, size};
    for (int at = 1; at < count; ++at)
    {
        const char* name = arguments[at];
        if (std::strncmp(name, "--", 2) != 0)
            return wrong.say("expected an option, not %s", name);
        name += 2;
        if (setSwitch(options, name))
            continue;
        if (at + 1 == count)
            return wrong.say("--%s: expected an option of tarn-bridge --help, with its value", name);
        const char* value = arguments[++at];
        const bool isGood =
            isEqual(name, "config") ? readSettings(options, value, problem, size) : set(options, name, value, problem, size);
        if (!isGood)
            return false;
    }
    return options.isHelp || options.isVersion || completeLink(options.bridge.link, "gateway", wrong);
}

} // namespace tarn::fleet
