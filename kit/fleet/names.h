/* The names of gateways, operators and services, and the topics that they make. Needs no C++ run-time library, as it is part of
 * the program on the gateway. */
#pragma once

#include <cstddef>

namespace tarn::fleet
{

// Of the name of a gateway or an operator, its NUL included.
inline constexpr std::size_t kIdSize = 65;
// Of the identifier of a service, its NUL included.
inline constexpr std::size_t kServiceSize = 32;

// 1 to 64 printable ASCII characters without space, / + and #, which have a meaning in topics.
bool isId(const char* text);

// 1 to 31 characters of A-Z a-z 0-9 _ - . that do not begin with a dot.
bool isService(const char* text);

struct Topic
{
    // tarn/1/op/<operator>/re/<gateway> is the longest.
    static constexpr std::size_t kSize = 10 + (kIdSize - 1) + 4 + (kIdSize - 1) + 1;
    char text[kSize];
};

// The names must be valid, see above.
Topic requestTopic(const char* gateway);                       // tarn/1/gw/<gateway>/rq
Topic stateTopic(const char* gateway);                         // tarn/1/gw/<gateway>/st
Topic eventTopic(const char* gateway, const char* service);    // tarn/1/gw/<gateway>/ev/<service>
Topic replyTopic(const char* operatorId, const char* gateway); // tarn/1/op/<operator>/re/<gateway>

// What an operator subscribes to: the states and the events of all gateways, and the replies to itself (replyTopic with + for
// the gateway).
inline constexpr char kAllStates[] = "tarn/1/gw/+/st";
inline constexpr char kAllEvents[] = "tarn/1/gw/+/ev/+";
Topic allReplies(const char* operatorId);

enum class TopicKind
{
    kNone, // none of these topics, or with a name that is not valid
    kRequest,
    kState,
    kEvent,
    kReply
};

struct TopicParts
{
    TopicKind kind = TopicKind::kNone;
    char gateway[kIdSize] = {};
    char operatorId[kIdSize] = {};   // of a reply's topic
    char service[kServiceSize] = {}; // of an event's topic
};

TopicParts parseTopic(const char* topic);

} // namespace tarn::fleet
