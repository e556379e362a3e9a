#include "link_settings.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace tarn::fleet
{

namespace
{

constexpr std::uint16_t kPort = 1883;    // MQTT
constexpr std::uint16_t kTlsPort = 8883; // MQTT with TLS

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

bool setKeepAlive(LinkSettings& link, const char* value, const Problem& problem)
{
    std::uint32_t seconds = 0;
    if (!setNumber("keep-alive", value, 5, 3600, seconds, problem))
        return false;
    link.keepAlive = static_cast<std::uint16_t>(seconds);
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

bool setNumber(const char* name, const char* value, std::uint32_t least, std::uint32_t most, std::uint32_t& number,
               const Problem& problem)
{
    return parseNumber(value, least, most, number) ||
           problem.say("%s: expected a number from %u to %u, not %s", name, least, most, value);
}

bool setText(const char* name, const char* value, char* text, std::size_t size, const Problem& problem)
{
    if (*value == '\0' || std::strlen(value) >= size)
        return problem.say("%s: expected 1 to %u characters", name, static_cast<unsigned>(size - 1));
    std::snprintf(text, size, "%s", value);
    return true;
}

bool isLinkSetting(const char* name)
{
    static constexpr const char* kNames[] = {"id", "broker", "cafile", "cert", "key", "keep-alive"};
    return std::any_of(std::begin(kNames), std::end(kNames), [name](const char* each) { return isEqual(name, each); });
}

bool setLink(LinkSettings& link, const char* name, const char* value, const Problem& problem)
{
    if (isEqual(name, "id"))
        return setId(link, value, problem);
    if (isEqual(name, "broker"))
        return addBroker(link, value, problem);
    if (isEqual(name, "cafile"))
        return setText(name, value, link.authorities, sizeof link.authorities, problem);
    if (isEqual(name, "cert"))
        return setText(name, value, link.certificate, sizeof link.certificate, problem);
    if (isEqual(name, "key"))
        return setText(name, value, link.key, sizeof link.key, problem);
    return setKeepAlive(link, value, problem);
}

bool completeLink(LinkSettings& link, const char* owner, const Problem& problem)
{
    if (link.clientId[0] == '\0')
        return problem.say("id: expected the %s's name", owner);
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

bool readSettingsFile(const char* fileName,
                      bool (*take)(void* context, const char* name, const char* value, const Problem& problem), void* context,
                      const Problem& problem)
{
    struct Taker
    {
        bool (*take)(void* context, const char* name, const char* value, const Problem& problem);
        void* context;
    } taker = {take, context};
    const auto takeLine = [](void* self, char* line, const Problem& wrong)
    {
        const auto& each = *static_cast<const Taker*>(self);
        line[std::strcspn(line, "#")] = '\0';
        const char *name = nullptr, *value = nullptr;
        split(line, name, value);
        return *name == '\0' || each.take(each.context, name, value, wrong);
    };
    return readLines(fileName, "a file of settings", kLongestLine, takeLine, &taker, problem);
}

} // namespace tarn::fleet
