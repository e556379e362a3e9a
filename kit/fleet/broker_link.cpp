#include "broker_link.h"
#include "clock.h"
#include "random_number.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <mosquitto.h>
#include <poll.h>
#include <sys/socket.h>

namespace tarn::fleet
{

namespace
{

// For TCP, TLS and the broker's answer together: a broker that takes longer is given up for the next one.
constexpr std::uint64_t kConnectTime = 10000;
// A connection that has lasted so long was a good one: the next attempt comes soon.
constexpr std::uint64_t kGoodTime = 10000;
// libmosquitto's own keeping alive counts in seconds.
constexpr std::uint64_t kTendTime = 500;
constexpr std::uint64_t kRenewAge = 4000;
// libmosquitto does not say whether the TLS handshake waits for reading or writing.
constexpr int kGreetingTurn = 20;

} // namespace

BrokerLink::BrokerLink(const LinkSettings& settings, const LinkHandlers& handlers) : settings_(settings), handlers_(handlers)
{
}

BrokerLink::~BrokerLink()
{
    drop();
}

void BrokerLink::drop()
{
    if (client_ != nullptr)
        mosquitto_destroy(client_);
    client_ = nullptr;
}

// Between half of what the failures so far ask for and all of it, so that gateways that lost the same broker come apart.
std::uint32_t BrokerLink::pause() const
{
    std::uint64_t longest = settings_.firstPause;
    for (std::uint32_t failure = 1; failure < failures_ && longest < settings_.longestPause; ++failure)
        longest *= 2;
    const auto bound = static_cast<std::uint32_t>(std::min<std::uint64_t>(longest, settings_.longestPause));
    return bound / 2 + static_cast<std::uint32_t>(randomNumber() % (bound / 2 + 1));
}

// Of a result of libmosquitto's. A broker that does not take a certificate says so and closes the connection, but what it says
// may be lost where the greeting was on its way to it.
const char* BrokerLink::reasonOf(int result) const
{
    if (tlsProblem_[0] != '\0')
        return tlsProblem_;
    const bool isReset = result == MOSQ_ERR_ERRNO && (errno == EPROTO || errno == ECONNRESET || errno == EPIPE);
    const bool isEnded = isReset || result == MOSQ_ERR_CONN_LOST;
    if (isEnded && state_ == State::kSubscribing)
        return "the broker ended the connection, as RabbitMQ does if it does not allow the subscriptions";
    if (isEnded && !isUp() && settings_.certificate[0] != '\0')
        return "the broker ended the connection, as it does if it does not take the certificate";
    return result == MOSQ_ERR_ERRNO ? std::strerror(errno) : mosquitto_strerror(result);
}

// Why TCP did not come about, unless OpenSSL has taken the socket's error before us.
const char* BrokerLink::connectFailure() const
{
    int error = 0;
    socklen_t size = sizeof error;
    const bool isKnown = getsockopt(mosquitto_socket(client_), SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error != 0;
    return isKnown ? std::strerror(error) : "no TCP connection";
}

void BrokerLink::lose(const char* reason)
{
    const std::uint64_t now = monotonicMilliseconds();
    if (state_ == State::kUp && now - upSince_ >= kGoodTime)
        failures_ = 0;
    ++failures_;
    state_ = State::kDown;
    attemptAt_ = now + pause();
    if (handlers_.lost != nullptr)
        handlers_.lost(handlers_.context, broker().host, reason);
    next_ = (next_ + 1) % settings_.brokerCount;
    drop();
}

bool BrokerLink::prepareTls()
{
    if (settings_.authorities[0] == '\0')
        return true;
    const bool hasOwn = settings_.certificate[0] != '\0';
    const int result = mosquitto_tls_set(client_, settings_.authorities, nullptr, hasOwn ? settings_.certificate : nullptr,
                                         hasOwn ? settings_.key : nullptr, nullptr);
    if (result != MOSQ_ERR_SUCCESS)
        lose(result == MOSQ_ERR_INVAL ? "the files of the certificates cannot be read" : reasonOf(result));
    return result == MOSQ_ERR_SUCCESS;
}

bool BrokerLink::prepareClient()
{
    client_ = mosquitto_new(settings_.clientId, true, this);
    if (client_ == nullptr)
    {
        lose(std::strerror(errno));
        return false;
    }
    mosquitto_connect_callback_set(client_, onConnect);
    mosquitto_subscribe_callback_set(client_, onSubscribe);
    mosquitto_disconnect_callback_set(client_, onDisconnect);
    mosquitto_message_callback_set(client_, onMessage);
    mosquitto_log_callback_set(client_, onLog);
    // A small packet would wait for the acknowledgement of the one before it: 40 ms a call.
    mosquitto_int_option(client_, MOSQ_OPT_TCP_NODELAY, 1);
    if (!prepareTls())
        return false;
    Will will;
    if (handlers_.prepare != nullptr)
        handlers_.prepare(handlers_.context, connections_, will);
    if (will.size > 0)
        mosquitto_will_set(client_, will.topic.text, static_cast<int>(will.size), will.payload, 0, true);
    return true;
}

void BrokerLink::attempt()
{
    ++connections_;
    ended_ = nullptr;
    tlsProblem_[0] = '\0';
    std::fill_n(asked_, kMostAsked, Asked());
    if (!prepareClient())
        return;
    const int result = mosquitto_connect_async(client_, broker().host, broker().port, settings_.keepAlive);
    if (result != MOSQ_ERR_SUCCESS)
    {
        lose(reasonOf(result));
        return;
    }
    state_ = State::kConnecting;
    attemptAt_ = monotonicMilliseconds() + kConnectTime;
}

// Lets libmosquitto read, write and keep the connection alive.
int BrokerLink::converse(short happened)
{
    int result = MOSQ_ERR_SUCCESS;
    // Reading also goes on with the handshake, whichever direction it waits for.
    if (happened != 0 || state_ == State::kGreeting)
        result = mosquitto_loop_read(client_, 1);
    if (result == MOSQ_ERR_SUCCESS && ended_ == nullptr && state_ != State::kConnecting && mosquitto_want_write(client_))
        result = mosquitto_loop_write(client_, 1);
    const std::uint64_t now = monotonicMilliseconds();
    if (result == MOSQ_ERR_SUCCESS && ended_ == nullptr && now - tendedAt_ >= kTendTime)
    {
        tendedAt_ = now;
        result = mosquitto_loop_misc(client_);
    }
    return result;
}

// What poll says has happened on the connection.
void BrokerLink::work(short happened)
{
    const std::uint64_t now = monotonicMilliseconds();
    if (state_ != State::kUp && now >= attemptAt_)
        return lose(state_ == State::kSubscribing ? "the subscriptions are not confirmed within 10 s"
                                                  : "no answer within 10 s");
    // In a TLS handshake libmosquitto takes a broken connection for one that needs time.
    const bool isBroken = (happened & (POLLERR | POLLHUP | POLLNVAL)) != 0;
    if (state_ == State::kConnecting && isBroken)
        return lose(connectFailure());
    if (state_ == State::kConnecting && happened != 0)
        state_ = State::kGreeting;
    const int result = converse(happened);
    if (state_ == State::kUp && now - upSince_ >= renewAge_)
    {
        renewAge_ *= 2;
        if (handlers_.renew != nullptr)
            handlers_.renew(handlers_.context);
    }
    if (ended_ != nullptr)
        lose(ended_);
    else if (result != MOSQ_ERR_SUCCESS)
        lose(reasonOf(result));
    else if (isBroken || mosquitto_socket(client_) < 0)
        lose(reasonOf(MOSQ_ERR_CONN_LOST));
}

void BrokerLink::turn(int wakeup, int milliseconds)
{
    if (state_ == State::kDown && monotonicMilliseconds() >= attemptAt_)
        attempt();

    pollfd descriptors[2] = {{wakeup, POLLIN, 0}, {-1, POLLIN, 0}};
    if (state_ == State::kConnecting || state_ == State::kGreeting || isAccepted())
        descriptors[1].fd = mosquitto_socket(client_);
    if (state_ == State::kConnecting || (isAccepted() && mosquitto_want_write(client_)))
        descriptors[1].events |= POLLOUT;
    std::uint64_t longest = static_cast<std::uint64_t>(std::max(milliseconds, 0));
    if (state_ == State::kGreeting)
        longest = std::min<std::uint64_t>(longest, kGreetingTurn);
    else if (isAccepted() || state_ == State::kConnecting)
        longest = std::min(longest, kTendTime);
    else if (state_ == State::kDown)
        longest = std::min(longest, attemptAt_ - std::min(attemptAt_, monotonicMilliseconds()));
    const int ready = poll(descriptors, 2, static_cast<int>(longest));
    if (client_ != nullptr)
        work(ready > 0 ? descriptors[1].revents : short{0});
}

bool BrokerLink::isClear() const
{
    return isUp() && !mosquitto_want_write(client_);
}

void BrokerLink::subscribe(const char* filter)
{
    if (!isAccepted())
        return;
    Asked* const free = std::find_if(asked_, asked_ + kMostAsked, [](const Asked& each) { return each.message == 0; });
    int message = 0;
    if (free == asked_ + kMostAsked)
        ended_ = "too many subscriptions are not confirmed";
    else if (const int result = mosquitto_subscribe(client_, &message, filter, 0); result != MOSQ_ERR_SUCCESS)
        ended_ = mosquitto_strerror(result);
    else
    {
        free->message = message;
        std::snprintf(free->filter.text, sizeof free->filter.text, "%s", filter);
    }
}

void BrokerLink::renew(const char* filter)
{
    if (isAccepted() && mosquitto_unsubscribe(client_, nullptr, filter) == MOSQ_ERR_SUCCESS)
        subscribe(filter);
}

bool BrokerLink::publish(const char* topic, const void* payload, std::size_t size, bool isRetained)
{
    return isUp() &&
           mosquitto_publish(client_, nullptr, topic, static_cast<int>(size), payload, 0, isRetained) == MOSQ_ERR_SUCCESS;
}

void BrokerLink::close()
{
    if (isAccepted())
    {
        state_ = State::kClosed;
        mosquitto_disconnect(client_);
        for (int turns = 0; turns < 100 && mosquitto_socket(client_) >= 0 && mosquitto_want_write(client_); ++turns)
        {
            pollfd writable = {mosquitto_socket(client_), POLLOUT, 0};
            poll(&writable, 1, 10);
            if (mosquitto_loop_write(client_, 1) != MOSQ_ERR_SUCCESS)
                break;
        }
    }
    state_ = State::kClosed;
    drop();
}

void BrokerLink::onConnect(mosquitto* /*client*/, void* self, int code)
{
    auto* link = static_cast<BrokerLink*>(self);
    if (code != 0)
    {
        link->ended_ = mosquitto_connack_string(code);
        return;
    }
    link->state_ = State::kSubscribing;
    if (link->handlers_.connected != nullptr)
        link->handlers_.connected(link->handlers_.context);
    link->comeUpIfConfirmed();
}

void BrokerLink::comeUpIfConfirmed()
{
    const bool isAnyAsked = std::any_of(asked_, asked_ + kMostAsked, [](const Asked& each) { return each.message != 0; });
    if (state_ != State::kSubscribing || isAnyAsked || ended_ != nullptr)
        return;
    state_ = State::kUp;
    upSince_ = monotonicMilliseconds();
    renewAge_ = kRenewAge;
    if (handlers_.subscribed != nullptr)
        handlers_.subscribed(handlers_.context);
}

void BrokerLink::onSubscribe(mosquitto* /*client*/, void* self, int message, int count, const int* granted)
{
    constexpr int kFailure = 0x80;
    static_cast<BrokerLink*>(self)->confirm(message, count != 1 || granted[0] >= kFailure);
}

void BrokerLink::confirm(int message, bool isRefused)
{
    for (Asked& each : asked_)
        if (each.message == message)
        {
            if (isRefused)
            {
                std::snprintf(refusal_, sizeof refusal_, "the broker refuses the subscription to %s", each.filter.text);
                ended_ = refusal_;
            }
            each.message = 0;
        }
    comeUpIfConfirmed();
}

void BrokerLink::onDisconnect(mosquitto* /*client*/, void* self, int code)
{
    auto* link = static_cast<BrokerLink*>(self);
    if (link->ended_ == nullptr)
        link->ended_ = link->reasonOf(code);
}

void BrokerLink::onMessage(mosquitto* /*client*/, void* self, const mosquitto_message* message)
{
    auto* link = static_cast<BrokerLink*>(self);
    if (link->handlers_.received != nullptr)
        link->handlers_.received(link->handlers_.context, message->topic, message->payload,
                                 static_cast<std::size_t>(message->payloadlen));
}

// libmosquitto writes down what OpenSSL has to say, and returns no more than that there is something:
//     OpenSSL Error[0]: error:0A000415:SSL routines::sslv3 alert certificate expired
// An alert is what the broker has sent, the rest was found here.
void BrokerLink::onLog(mosquitto* /*client*/, void* self, int level, const char* text)
{
    auto* link = static_cast<BrokerLink*>(self);
    constexpr char kOpenSsl[] = "OpenSSL Error[";
    if (level != MOSQ_LOG_ERR || link->tlsProblem_[0] != '\0' || std::strncmp(text, kOpenSsl, sizeof kOpenSsl - 1) != 0)
        return;
    const char* const routines = std::strstr(text, "::");
    const char* const problem = routines == nullptr ? text : routines + 2;
    const char* const alert = std::strstr(problem, "alert ");
    if (alert != nullptr)
        std::snprintf(link->tlsProblem_, sizeof link->tlsProblem_, "the broker refuses TLS: %s", alert + std::strlen("alert "));
    else
        std::snprintf(link->tlsProblem_, sizeof link->tlsProblem_, "TLS with the broker failed: %s", problem);
}

} // namespace tarn::fleet
