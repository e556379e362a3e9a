#include "names.h"

#include <cstdio>
#include <cstring>

namespace tarn::fleet
{

namespace
{

constexpr char kGatewayPrefix[] = "tarn/1/gw/";
constexpr char kOperatorPrefix[] = "tarn/1/op/";

bool isIdCharacter(char character)
{
    return character > ' ' && character < 0x7F && character != '/' && character != '+' && character != '#';
}

bool isServiceCharacter(char character)
{
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
           (character >= '0' && character <= '9') || character == '_' || character == '-' || character == '.';
}

// Whether `text` has 1 to size - 1 characters, each of them accepted.
bool consistsOf(const char* text, std::size_t size, bool (*accepts)(char))
{
    std::size_t length = 0;
    while (length < size && text[length] != '\0')
        if (!accepts(text[length++]))
            return false;
    return length > 0 && length < size;
}

// Puts two names between three texts.
Topic join(const char* prefix, const char* first, const char* middle, const char* second)
{
    Topic topic;
    std::snprintf(topic.text, sizeof topic.text, "%s%s%s%s", prefix, first, middle, second);
    return topic;
}

// If `text` begins with `prefix`, moves it behind that.
bool take(const char*& text, const char* prefix)
{
    const std::size_t length = std::strlen(prefix);
    if (std::strncmp(text, prefix, length) != 0)
        return false;
    text += length;
    return true;
}

// Moves a name, which ends before a slash or with the text, to `name`. False if it is too long for that.
bool takeName(const char*& text, char* name, std::size_t size)
{
    const std::size_t length = std::strcspn(text, "/");
    if (length >= size)
        return false;
    std::memcpy(name, text, length);
    name[length] = '\0';
    text += length;
    return true;
}

bool parseGatewayTopic(const char* text, TopicParts& parts)
{
    if (!takeName(text, parts.gateway, sizeof parts.gateway) || !isId(parts.gateway))
        return false;
    if (std::strcmp(text, "/rq") == 0)
        parts.kind = TopicKind::kRequest;
    else if (std::strcmp(text, "/st") == 0)
        parts.kind = TopicKind::kState;
    else if (take(text, "/ev/") && takeName(text, parts.service, sizeof parts.service) && *text == '\0' &&
             isService(parts.service))
        parts.kind = TopicKind::kEvent;
    return parts.kind != TopicKind::kNone;
}

bool parseOperatorTopic(const char* text, TopicParts& parts)
{
    if (!takeName(text, parts.operatorId, sizeof parts.operatorId) || !isId(parts.operatorId) || !take(text, "/re/") ||
        !takeName(text, parts.gateway, sizeof parts.gateway) || *text != '\0' || !isId(parts.gateway))
        return false;
    parts.kind = TopicKind::kReply;
    return true;
}

} // namespace

bool isId(const char* text)
{
    return consistsOf(text, kIdSize, isIdCharacter);
}

bool isService(const char* text)
{
    return text[0] != '.' && consistsOf(text, kServiceSize, isServiceCharacter);
}

Topic requestTopic(const char* gateway)
{
    return join(kGatewayPrefix, gateway, "/rq", "");
}

Topic stateTopic(const char* gateway)
{
    return join(kGatewayPrefix, gateway, "/st", "");
}

Topic eventTopic(const char* gateway, const char* service)
{
    return join(kGatewayPrefix, gateway, "/ev/", service);
}

Topic replyTopic(const char* operatorId, const char* gateway)
{
    return join(kOperatorPrefix, operatorId, "/re/", gateway);
}

Topic allReplies(const char* operatorId)
{
    return replyTopic(operatorId, "+");
}

TopicParts parseTopic(const char* topic)
{
    TopicParts parts;
    bool isKnown = false;
    if (take(topic, kGatewayPrefix))
        isKnown = parseGatewayTopic(topic, parts);
    else if (take(topic, kOperatorPrefix))
        isKnown = parseOperatorTopic(topic, parts);
    return isKnown ? parts : TopicParts();
}

} // namespace tarn::fleet
