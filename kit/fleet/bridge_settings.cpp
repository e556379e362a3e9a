#include "bridge_settings.h"

#include <cctype>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace tarn::fleet
{

namespace
{

constexpr std::size_t kLongestLine = 1023;
constexpr std::uint16_t kPort = 1883;    // MQTT
constexpr std::uint16_t kTlsPort = 8883; // MQTT with TLS

// Where to write what was expected.
struct Problem
{
    char* text;
    std::size_t size;

    __attribute__((format(printf, 2, 3))) bool say(const char* format, ...) const
    {
        std::va_list arguments;
        va_start(arguments, format);
        std::vsnprintf(text, size, format, arguments);
        va_end(arguments);
        return false;
    }
};

bool parseNumber(const char* text, std::uint32_t least, std::uint32_t most, std::uint32_t& number)
{
    char* end = nullptr;
    errno = 0;
    const unsigned long value = std::strtoul(text, &end, 10);
    if (std::isdigit(static_cast<unsigned char>(*text)) == 0 || *end != '\0' || errno != 0 || value < least || value > most)
        return false;
    number = static_cast<std::uint32_t>(value);
    return true;
}

bool setNumber(const char* name, const char* value, std::uint32_t least, std::uint32_t most, std::uint32_t& number,
               const Problem& problem)
{
    return parseNumber(value, least, most, number) ||
           problem.say("%s: expected a number from %u to %u, not %s", name, least, most, value);
}

template <std::size_t size>
bool setText(const char* name, const char* value, char (&text)[size], const Problem& problem)
{
    if (*value == '\0' || std::strlen(value) >= size)
        return problem.say("%s: expected 1 to %u characters", name, static_cast<unsigned>(size - 1));
    std::snprintf(text, size, "%s", value);
    return true;
}

// HOST, HOST:PORT, or [ADDRESS]:PORT for an address with colons. Without a port it is 0 until all settings are known.
bool parseBroker(const char* text, Broker& broker)
{
    const bool isBracketed = *text == '[';
    const char* host = isBracketed ? text + 1 : text;
    const std::size_t length = std::strcspn(host, isBracketed ? "]" : ":");
    const char* rest = host + length;
    if (isBracketed && *rest++ != ']')
        return false;
    if (length == 0 || length >= sizeof broker.host)
        return false;
    std::memcpy(broker.host, host, length);
    broker.host[length] = '\0';
    std::uint32_t port = 0;
    if (*rest != '\0' && (*rest != ':' || !parseNumber(rest + 1, 1, 65535, port)))
        return false;
    broker.port = static_cast<std::uint16_t>(port);
    return true;
}

bool addBroker(LinkSettings& link, const char* value, const Problem& problem)
{
    if (link.brokerCount == LinkSettings::kMostBrokers)
        return problem.say("broker: expected at most %u of them", static_cast<unsigned>(LinkSettings::kMostBrokers));
    if (!parseBroker(value, link.brokers[link.brokerCount]))
        return problem.say("broker: expected HOST, HOST:PORT or [ADDRESS]:PORT, not %s", value);
    ++link.brokerCount;
    return true;
}

bool setId(LinkSettings& link, const char* value, const Problem& problem)
{
    if (!isId(value))
        return problem.say("id: expected 1 to 64 printable characters without space / + #, not %s", value);
    std::snprintf(link.clientId, sizeof link.clientId, "%s", value);
    return true;
}

bool equal(const char* one, const char* other)
{
    return std::strcmp(one, other) == 0;
}

// Those that are switched on by their name alone.
bool setSwitch(BridgeOptions& options, const char* name)
{
    if (equal(name, "no-events"))
        options.isEvents = false;
    else if (equal(name, "help"))
        options.isHelp = true;
    else if (equal(name, "version"))
        options.isVersion = true;
    else
        return false;
    return true;
}

// What has to be there, and what goes together.
bool complete(BridgeOptions& options, const Problem& problem)
{
    LinkSettings& link = options.bridge.link;
    if (link.clientId[0] == '\0')
        return problem.say("id: expected the gateway's name");
    if (link.brokerCount == 0)
        return problem.say("broker: expected one or more");
    if ((link.certificate[0] == '\0') != (link.key[0] == '\0'))
        return problem.say("cert and key: expected both or none");
    if (link.certificate[0] != '\0' && link.authorities[0] == '\0')
        return problem.say("cafile: expected with cert and key");
    for (std::size_t at = 0; at < link.brokerCount; ++at)
        if (link.brokers[at].port == 0)
            link.brokers[at].port = link.authorities[0] != '\0' ? kTlsPort : kPort;
    return true;
}

// The two words of a line; the value ends where the line does, without the blanks there.
void split(char* line, const char*& name, const char*& value)
{
    for (std::size_t end = std::strlen(line); end > 0 && std::isspace(static_cast<unsigned char>(line[end - 1])) != 0; --end)
        line[end - 1] = '\0';
    line += std::strspn(line, " \t");
    name = line;
    line += std::strcspn(line, " \t");
    if (*line != '\0')
        *line++ = '\0';
    value = line + std::strspn(line, " \t");
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
    LinkSettings& link = options.bridge.link;
    if (equal(name, "id"))
        return setId(link, value, wrong);
    if (equal(name, "broker"))
        return addBroker(link, value, wrong);
    if (equal(name, "cafile"))
        return setText(name, value, link.authorities, wrong);
    if (equal(name, "cert"))
        return setText(name, value, link.certificate, wrong);
    if (equal(name, "key"))
        return setText(name, value, link.key, wrong);
    if (equal(name, "policy"))
        return setText(name, value, options.policyFile, wrong);
    if (equal(name, "renew"))
        return setNumber(name, value, 0, 3600, options.renewSeconds, wrong);
    if (equal(name, "ready-descriptor"))
        return setNumber(name, value, 1, 1023, options.readyDescriptor, wrong);
    if (equal(name, "keep-alive"))
    {
        std::uint32_t seconds = 0;
        if (!setNumber(name, value, 5, 3600, seconds, wrong))
            return false;
        link.keepAlive = static_cast<std::uint16_t>(seconds);
        return true;
    }
    return wrong.say("expected a setting of tarn-bridge --help, not %s", name);
}

bool readSettings(BridgeOptions& options, const char* fileName, char* problem, std::size_t size)
{
    const Problem wrong = {problem, size};
    std::FILE* file = std::fopen(fileName, "re");
    if (file == nullptr)
        return wrong.say("%s: %s", fileName, std::strerror(errno));
    bool isGood = true;
    char line[kLongestLine + 3]; // a line that is too long shows by one character more
    for (unsigned number = 1; isGood && std::fgets(line, sizeof line, file) != nullptr; ++number)
    {
        char expected[512];
        const bool isTooLong = std::strcspn(line, "\n") > kLongestLine;
        line[std::strcspn(line, "#\n")] = '\0';
        const char *name = nullptr, *value = nullptr;
        split(line, name, value);
        if (isTooLong)
            isGood = wrong.say("%s:%u: expected at most %u characters in a line", fileName, number,
                               static_cast<unsigned>(kLongestLine));
        else if (*name == '\0' || (*value == '\0' && setSwitch(options, name)))
            continue;
        else if (!set(options, name, value, expected, sizeof expected))
            isGood = wrong.say("%s:%u: %s", fileName, number, expected);
    }
    if (isGood && std::ferror(file) != 0)
        isGood = wrong.say("%s: %s", fileName, std::strerror(errno));
    std::fclose(file);
    return isGood;
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
            equal(name, "config") ? readSettings(options, value, problem, size) : set(options, name, value, problem, size);
        if (!isGood)
            return false;
    }
    return options.isHelp || options.isVersion || complete(options, wrong);
}

} // namespace tarn::fleet
