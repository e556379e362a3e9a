#include "exchange.h"

#include "contract_table.h"
#include "kor_iil_service.h"
#include "message_order.h"
#include "random_number.h"

#include "tarn_frame.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>

#include <sys/eventfd.h>
#include <unistd.h>

namespace tarn::fleet
{

namespace
{

using std::chrono::duration_cast;
using std::chrono::milliseconds;

// A gateway that is there answers a ping within that time, or within half of the call's wait if that is shorter.
constexpr milliseconds kLongestPing{2000};
// A gateway's clock goes on as ours for so long; then it is asked again.
constexpr milliseconds kFreshFor{60000};
// How long a connection may take, though every broker has been tried and is not there: one may be about to restart.
constexpr milliseconds kShortestSearch{10000};
// How often a search asks whether a signal has come: its handler cannot notify who waits on a condition.
constexpr milliseconds kSearchTurn{50};
constexpr int kExchangeTurn = 1000;
constexpr int kMostRuns = 2; // that one call is meant for, one after the other

std::uint64_t sessionNumber()
{
    const std::uint64_t number = randomNumber();
    if (number == 0)
        throw std::system_error(EIO, std::generic_category(), "/dev/urandom");
    return number;
}

std::uint32_t timeToLive(std::chrono::steady_clock::time_point end)
{
    const auto left = duration_cast<milliseconds>(end - std::chrono::steady_clock::now()).count();
    return static_cast<std::uint32_t>(std::clamp<std::int64_t>(left, 1, kLongestLife));
}

template <std::size_t size>
void copyName(char (&to)[size], const std::string& from)
{
    std::snprintf(to, size, "%s", from.c_str());
}

std::string inSeconds(milliseconds time)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g s", static_cast<double>(time.count()) / 1000);
    return text;
}

} // namespace

// --- Beginning and end ------------------------------------------------------------------------------------------------------

Exchange::Exchange(const LinkSettings& settings, std::vector<std::string> filters, ExchangeWatcher watcher,
                   const layout::Layout* layout)
    : settings_(settings),
      filters_(std::move(filters)),
      watcher_(std::move(watcher)),
      layout_(layout),
      session_(sessionNumber()),
      wakeup_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      link_(settings_, LinkHandlers{this, nullptr, [](void* self) { static_cast<Exchange*>(self)->subscribe(); },
                                    [](void* self) { static_cast<Exchange*>(self)->comeUp(); },
                                    [](void* self, const char* topic, const void* payload, std::size_t size)
                                    { static_cast<Exchange*>(self)->receive(topic, payload, size); },
                                    [](void* self, const char* broker, const char* reason)
                                    {
                                        auto* exchange = static_cast<Exchange*>(self);
                                        exchange->lose(std::string("no connection to the broker ") + broker + ": " + reason);
                                        if (exchange->watcher_.lost)
                                            exchange->watcher_.lost(broker, reason);
                                    },
                                    [](void* self) { static_cast<Exchange*>(self)->renew(); }})
{
    if (wakeup_ < 0)
        throw std::system_error(errno, std::generic_category(), "eventfd");
    thread_ = std::thread([this] { serveBroker(); });
}

Exchange::~Exchange()
{
    giveUp();
    thread_.join();
    close(wakeup_);
}

void Exchange::giveUp()
{
    {
        const std::lock_guard guard(mutex_);
        isStopping_ = true;
        breakAll("this program is about to end");
    }
    wake();
}

void Exchange::wake() const
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(wakeup_, &one, sizeof one); // fails only if it has been signalled
}

bool Exchange::awaitUp(Milliseconds limit)
{
    std::unique_lock guard(mutex_);
    upChanged_.wait_for(guard, limit, [this] { return isUp_ || isStopping_; });
    return isUp_;
}

bool Exchange::awaitAnyBroker(const ctl::StopSignals& signals)
{
    const Clock::time_point enough = Clock::now() + kShortestSearch;
    std::unique_lock guard(mutex_);
    const auto hasFailed = [&] { return failures_ >= settings_.brokerCount && Clock::now() >= enough; };
    while (!isUp_ && !isStopping_ && !hasFailed() && !signals.haveCome())
        upChanged_.wait_for(guard, kSearchTurn);
    return isUp_;
}

bool Exchange::isUp() const
{
    const std::lock_guard guard(mutex_);
    return isUp_;
}

std::string Exchange::lastLoss() const
{
    const std::lock_guard guard(mutex_);
    return lastLoss_;
}

ExchangeCounters Exchange::counters() const
{
    const std::lock_guard guard(mutex_);
    return counters_;
}

// --- The broker's thread ----------------------------------------------------------------------------------------------------

void Exchange::serveBroker()
{
    for (bool isDone = false; !isDone;)
    {
        link_.turn(wakeup_, kExchangeTurn);
        std::uint64_t signals = 0;
        [[maybe_unused]] const ssize_t taken = read(wakeup_, &signals, sizeof signals);
        sendQueued();
        const std::lock_guard guard(mutex_);
        isDone = isStopping_;
    }
    link_.close();
}

void Exchange::subscribe()
{
    hasHeard_ = false;
    link_.subscribe(allReplies(settings_.clientId).text);
    for (const std::string& filter : filters_)
        link_.subscribe(filter.c_str());
}

void Exchange::comeUp()
{
    {
        const std::lock_guard guard(mutex_);
        isUp_ = true;
        failures_ = 0;
    }
    upChanged_.notify_all();
    if (watcher_.connected)
        watcher_.connected();
}

void Exchange::renew()
{
    if (hasHeard_)
        return;
    link_.renew(allReplies(settings_.clientId).text);
    for (const std::string& filter : filters_)
        link_.renew(filter.c_str());
}

// Sends what waits, as long as the connection takes it at once.
void Exchange::sendQueued()
{
    const std::lock_guard guard(mutex_);
    while (!queue_.empty() && link_.isClear())
    {
        const auto found = waiting_.find(queue_.front());
        queue_.pop_front();
        if (found == waiting_.end())
            continue; // its sender has given up
        Waiting& waiting = *found->second;
        if (!link_.publish(requestTopic(waiting.gateway->c_str()).text, waiting.bytes.data(), waiting.bytes.size(), false))
        {
            waiting.loss = "the connection to the broker does not take it";
            waiting.stage = Stage::kBroken; // nobody knows how much of it went out
            waiting.changed.notify_all();
            continue;
        }
        waiting.stage = Stage::kSent;
        ++(waiting.asked.kind == Kind::kPing ? counters_.pings : counters_.requests);
    }
}

void Exchange::receive(const char* topic, const void* payload, std::size_t size)
{
    const TopicParts parts = parseTopic(topic);
    Envelope envelope;
    const bool isEnvelope = decode(payload, size, envelope) == Fault::kNone;
    const Kind kind = envelope.kind;
    hasHeard_ = hasHeard_ || parts.kind != TopicKind::kState; // which comes from what is retained, even if nothing else does
    if (isEnvelope && parts.kind == TopicKind::kReply && (kind == Kind::kReply || kind == Kind::kPong))
        return receiveAnswer(parts.gateway, envelope);
    if (isEnvelope && parts.kind == TopicKind::kState && (kind == Kind::kBirth || kind == Kind::kWill))
        return receiveState(parts.gateway, envelope);
    if (isEnvelope && parts.kind == TopicKind::kEvent && kind == Kind::kEvent &&
        std::strcmp(parts.service, envelope.service) == 0)
    {
        if (watcher_.event)
            watcher_.event(parts.gateway, envelope);
        return;
    }
    const std::lock_guard guard(mutex_);
    ++counters_.malformed;
}

void Exchange::receiveAnswer(const std::string& gateway, const Envelope& envelope)
{
    const std::lock_guard guard(mutex_);
    const auto found = envelope.session == session_ ? waiting_.find(envelope.sequence) : waiting_.end();
    const bool isPing = found != waiting_.end() && found->second->asked.kind == Kind::kPing;
    if (found == waiting_.end() || found->second->stage != Stage::kSent || *found->second->gateway != gateway ||
        isPing != (envelope.kind == Kind::kPong))
    {
        ++counters_.unasked;
        return;
    }
    Waiting& waiting = *found->second;
    ++counters_.answers;
    waiting.answer = envelope;
    const auto* const bytes = static_cast<const std::uint8_t*>(envelope.message);
    waiting.answerBytes.assign(bytes, bytes + envelope.present);
    waiting.answer.message = waiting.answerBytes.data();
    waiting.stage = Stage::kAnswered;
    waiting.changed.notify_all();

    Acquaintance& known = known_[gateway];
    if (known.presence.run != envelope.run)
        known.connection = 0;
    known.presence.run = envelope.run;
    known.presence.clock = envelope.clock;
    known.presence.byteOrder = envelope.byteOrder;
    known.presence.isSameContract = envelope.contract == kContractHash;
    if (envelope.kind == Kind::kPong)
        known.presence.version.assign(reinterpret_cast<const char*>(bytes), envelope.present);
    known.heardAt = Clock::now();
}

void Exchange::receiveState(const std::string& gateway, const Envelope& envelope)
{
    {
        const std::lock_guard guard(mutex_);
        bool isGone = false;
        const auto known = known_.find(gateway);
        if (known != known_.end() && known->second.presence.run == envelope.run)
        {
            std::uint32_t& connection = known->second.connection;
            // A will that is older than the latest birth says nothing: the bridge has moved to another broker.
            isGone = envelope.kind == Kind::kWill && envelope.sequence >= connection;
            connection = std::max(connection, envelope.sequence);
            if (isGone)
                known_.erase(known);
        }
        for (const auto& [sequence, waiting] : waiting_)
        {
            if (*waiting->gateway != gateway || waiting->stage != Stage::kSent)
                continue;
            if (isGone)
                breakOff(*waiting, "the gateway has lost its connection");
            else if (envelope.kind == Kind::kBirth && waiting->asked.kind == Kind::kPing)
            {
                // It may have been sent before the gateway was there to hear it.
                waiting->stage = Stage::kQueued;
                queue_.push_back(sequence);
            }
        }
    }
    if (watcher_.state)
        watcher_.state(gateway, envelope);
}

void Exchange::lose(const std::string& reason)
{
    const std::lock_guard guard(mutex_);
    ++failures_;
    breakAll(reason);
}

// The connection is gone. With the mutex locked.
void Exchange::breakAll(const std::string& reason)
{
    isUp_ = false;
    lastLoss_ = reason;
    queue_.clear();
    upChanged_.notify_all();
    for (const auto& [sequence, waiting] : waiting_)
        if (waiting->stage < Stage::kAnswered)
            breakOff(*waiting, reason);
}

// What has not been sent stays so.
void Exchange::breakOff(Waiting& waiting, const std::string& reason)
{
    waiting.loss = reason;
    if (waiting.stage == Stage::kSent)
        waiting.stage = Stage::kBroken;
    waiting.changed.notify_all();
}

// --- One question -----------------------------------------------------------------------------------------------------------

// Sends it, and returns how far it has come at the latest at the end of the wait.
Exchange::Stage Exchange::exchange(Waiting& waiting, Clock::time_point end)
{
    std::unique_lock guard(mutex_);
    if (!isUp_ || isStopping_)
    {
        waiting.loss = lastLoss_;
        return Stage::kQueued;
    }
    waiting.asked.session = session_;
    if (++sequence_ == 0)
        ++sequence_;
    waiting.asked.sequence = sequence_;
    const std::uint32_t sequence = sequence_;
    copyName(waiting.asked.operatorId, settings_.clientId);
    waiting.bytes.resize(kHeaderSize + kIdSize + kServiceSize + waiting.asked.present);
    std::size_t size = 0;
    if (const Fault fault = encode(waiting.asked, waiting.bytes.data(), waiting.bytes.size(), size); fault != Fault::kNone)
        throw std::logic_error(describe(fault));
    waiting.bytes.resize(size);
    waiting_[sequence] = &waiting;
    queue_.push_back(sequence);
    wake();
    waiting.changed.wait_until(guard, end, [&] { return waiting.stage >= Stage::kAnswered || !waiting.loss.empty(); });
    waiting_.erase(sequence);
    return waiting.stage;
}

std::optional<Presence> Exchange::pingUntil(const std::string& gateway, Clock::time_point end)
{
    Waiting waiting;
    waiting.gateway = &gateway;
    waiting.asked.kind = Kind::kPing;
    const Clock::time_point start = Clock::now();
    if (exchange(waiting, end) != Stage::kAnswered)
        return std::nullopt;
    const auto roundTrip = duration_cast<std::chrono::microseconds>(Clock::now() - start);
    const std::lock_guard guard(mutex_);
    Presence presence = known_[gateway].presence;
    presence.roundTrip = roundTrip;
    return presence;
}

std::optional<Presence> Exchange::ping(const std::string& gateway, Milliseconds limit)
{
    return pingUntil(gateway, Clock::now() + limit);
}

void Exchange::forget(const std::string& gateway)
{
    const std::lock_guard guard(mutex_);
    known_.erase(gateway);
}

// --- One call ---------------------------------------------------------------------------------------------------------------

// What is known of the gateway; it is asked if that is nothing, or old.
std::optional<Exchange::Acquaintance> Exchange::acquaintance(const std::string& gateway, Clock::time_point end)
{
    for (bool hasAsked = false;; hasAsked = true)
    {
        {
            const std::lock_guard guard(mutex_);
            const auto known = known_.find(gateway);
            if (known != known_.end() && Clock::now() - known->second.heardAt < kFreshFor)
                return known->second;
        }
        const Clock::time_point now = Clock::now();
        if (hasAsked || !pingUntil(gateway, now + std::min<Clock::duration>(kLongestPing, (end - now) / 2)))
            return std::nullopt;
    }
}

Outcome Exchange::unreachable(const std::string& gateway) const
{
    const std::lock_guard guard(mutex_);
    if (!isUp_)
        return {Fate::kNotSent, KOR_IIL_TX_FAIL, lastLoss_, {}};
    return {Fate::kNotSent, KOR_IIL_UNKNOWN_DST_ID, gateway + " does not answer: it is not connected to the broker", {}};
}

Outcome Exchange::call(const std::string& gateway, const CallRequest& request, void* message, Milliseconds wait)
{
    const Clock::time_point end = Clock::now() + wait;
    if (request.length > kLongestMessage)
        return {Fate::kNotSent,
                KOR_IIL_OVERSIZE,
                "expected a message of at most " + std::to_string(kLongestMessage) + " bytes, not " +
                    std::to_string(request.length),
                {}};
    if (request.length == 0)
        return {Fate::kNotSent, KOR_IIL_MISMATCH_CMD_LEN, "expected a message, not one of 0 bytes", {}};
    Outcome outcome;
    bool isOtherRun = true;
    for (int run = 0; run < kMostRuns && isOtherRun; ++run)
        outcome = callOnce(gateway, request, message, end, isOtherRun);
    return outcome;
}

Outcome Exchange::callOnce(const std::string& gateway, const CallRequest& request, void* message, Clock::time_point end,
                           bool& isOtherRun)
{
    isOtherRun = false;
    const std::optional<Acquaintance> known = acquaintance(gateway, end);
    if (!known)
        return unreachable(gateway);
    const Presence& presence = known->presence;

    Waiting waiting;
    waiting.gateway = &gateway;
    const auto* const bytes = static_cast<const std::uint8_t*>(message);
    std::vector<std::uint8_t> sent(bytes, bytes + request.length);
    if (presence.byteOrder != kOwnByteOrder)
    {
        const OrderTable table = orderTableOf(request.service, request.command, layout_);
        if (!table.unknownInputs.empty())
            return {Fate::kNotSent,
                    KOR_IIL_UNSUPPORT,
                    gateway + " has the other byte order, and no layout tells of the inside of " + table.unknownInputs.front(),
                    {}};
        turnRound(table, sent.data(), sent.size());
    }
    Envelope& asked = waiting.asked;
    asked.kind = Kind::kRequest;
    asked.byteOrder = presence.byteOrder;
    asked.run = presence.run;
    asked.clock =
        presence.clock + static_cast<std::uint64_t>(duration_cast<milliseconds>(Clock::now() - known->heardAt).count());
    asked.live = timeToLive(end);
    asked.command = request.command;
    asked.wait = request.wait;
    asked.contract = kContractHash;
    asked.length = asked.present = request.length;
    asked.message = sent.data();
    copyName(asked.service, request.service);

    if (request.beforeSending)
        request.beforeSending();
    const Stage stage = exchange(waiting, end);
    if (stage != Stage::kAnswered)
        return broken(waiting, stage);
    isOtherRun = waiting.answer.refusal == Refusal::kOtherRun;
    return finish(waiting, request, message);
}

// Of a request without an answer.
Outcome Exchange::broken(const Waiting& waiting, Stage stage)
{
    const std::string& gateway = *waiting.gateway;
    if (stage == Stage::kQueued)
        return {Fate::kNotSent,
                KOR_IIL_TX_FAIL,
                waiting.loss.empty() ? "the connection to the broker did not take it in time" : waiting.loss,
                {}};
    // The next call asks first whether the gateway is still there.
    forget(gateway);
    if (stage == Stage::kBroken)
        return {Fate::kUnknown, KOR_IIL_RX_FAIL, waiting.loss + "; whether " + gateway + " has made the call is unknown", {}};
    return {Fate::kUnknown,
            KOR_IIL_TIMEOUT,
            "no answer from " + gateway + " within " + inSeconds(milliseconds(waiting.asked.live)) + "; the outcome is unknown",
            {}};
}

// Of one with an answer.
Outcome Exchange::finish(const Waiting& waiting, const CallRequest& request, void* message) const
{
    const Envelope& answer = waiting.answer;
    if (answer.refusal != Refusal::kNone)
        return {Fate::kRefused, answer.status, *waiting.gateway + " refused it: " + describe(answer.refusal), {}};
    if (answer.status != KOR_IIL_OK)
        return {Fate::kAnswered,
                answer.status,
                std::string("the IPC of ") + *waiting.gateway + ": " + tarnIpcStatusName(answer.status),
                {}};
    if (answer.command != request.command || request.service != answer.service)
        return {Fate::kAnswered, KOR_IIL_BAD_RET, *waiting.gateway + " answered another command", {}};
    if (answer.length != request.length)
        return {Fate::kAnswered,
                KOR_IIL_MISMATCH_CMD_LEN,
                *waiting.gateway + " answered with " + std::to_string(answer.length) + " bytes; expected " +
                    std::to_string(request.length),
                {}};
    unpack(answer, message);
    Outcome outcome{Fate::kAnswered, KOR_IIL_OK, "", {}};
    if (answer.byteOrder != kOwnByteOrder)
    {
        const OrderTable table = orderTableOf(request.service, request.command, layout_);
        turnRound(table, message, request.length);
        for (const std::string& unknown : table.unknownOutputs)
            outcome.notes.push_back(unknown + " is as " + *waiting.gateway +
                                    " has it, in the other byte order: no layout tells of its inside");
    }
    return outcome;
}

} // namespace tarn::fleet
