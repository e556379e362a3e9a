#include "bridge.h"
#include "clock.h"
#include "lock.h"
#include "random_number.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <sys/eventfd.h>
#include <unistd.h>

namespace tarn::fleet
{

namespace
{

// What the IPC's statuses mean is in tarn_frame.h; these are those that a refusal has.
struct RefusalStatus
{
    Refusal refusal;
    std::uint32_t status;
};
constexpr RefusalStatus kStatuses[] = {
    {Refusal::kPolicy, 12},  {Refusal::kRate, 21},    {Refusal::kBusy, 21},          {Refusal::kLate, 7},
    {Refusal::kOtherRun, 6}, {Refusal::kNoRun, 3},    {Refusal::kOtherContract, 11}, {Refusal::kOtherByteOrder, 11},
    {Refusal::kLength, 16},  {Refusal::kStopping, 5},
};

std::uint32_t statusOf(Refusal refusal)
{
    for (const RefusalStatus& each : kStatuses)
        if (each.refusal == refusal)
            return each.status;
    return 0;
}

// An operator's clocks and ours may come apart by so much between two envelopes; a request that is further ahead is not from
// this run.
constexpr std::uint64_t kClockTolerance = 60000;
// What serves a call's message, TLS and the IPC library.
constexpr std::size_t kStackSize = 262144;
constexpr int kTurn = 1000;
// For the last answers, once nothing is under way any more: a broker that takes nothing does not keep the program from ending.
constexpr std::uint64_t kFarewell = 1000;

} // namespace

// A request that waits for its turn, or is under way.
struct Bridge::Call
{
    Call* next;
    std::uint64_t session;
    std::uint64_t dead; // when its time to live is over, on this object's clock
    std::uint32_t sequence;
    std::uint32_t command;
    std::uint32_t wait;
    std::uint32_t length;
    std::uint32_t present;
    std::size_t function; // kContractFunctionCount if the contract has no such command
    char operatorId[kIdSize];
    char service[kServiceSize];
    std::uint8_t message[1]; // `present` bytes
};

// --- Beginning and end ------------------------------------------------------------------------------------------------------

Bridge::Bridge(const BridgeSettings& settings, const BridgePlatform& platform, const Policy& policy)
    : settings_(settings),
      platform_(platform),
      startedAt_(monotonicMilliseconds()),
      link_(settings.link, LinkHandlers{this, prepare, connected, subscribed, received, lost, renew}),
      policy_(policy),
      log_(platform.log, platform.context)
{
    for (Worker& worker : workers_)
    {
        worker.bridge = this;
        pthread_cond_init(&worker.changed, nullptr);
    }
}

Bridge::~Bridge()
{
    stop();
    for (Worker& worker : workers_)
    {
        while (Call* call = worker.calls.take())
            std::free(call);
        pthread_cond_destroy(&worker.changed);
    }
    if (wakeup_ >= 0)
        close(wakeup_);
}

namespace
{

bool startThread(pthread_t& thread, void* (*function)(void*), void* argument)
{
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0)
        return false;
    pthread_attr_setstacksize(&attributes, kStackSize);
    const bool isStarted = pthread_create(&thread, &attributes, function, argument) == 0;
    pthread_attr_destroy(&attributes);
    return isStarted;
}

} // namespace

bool Bridge::start()
{
    run_ = randomNumber();
    wakeup_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    isRunning_ = run_ != 0 && wakeup_ >= 0 && startThread(thread_, brokerThread, this);
    return isRunning_;
}

void Bridge::stop()
{
    if (!isRunning_)
        return;
    {
        const Lock lock(mutex_);
        isStopping_ = true;
        for (Worker& worker : workers_)
            pthread_cond_signal(&worker.changed);
    }
    wake();
    for (const Worker& worker : workers_)
        if (worker.isRunning)
            pthread_join(worker.thread, nullptr);
    // All answers are posted now, and the broker's thread may end.
    {
        const Lock lock(mutex_);
        leaveAt_ = clock() + kFarewell;
    }
    wake();
    pthread_join(thread_, nullptr);
    isRunning_ = false;
}

void Bridge::setPolicy(const Policy& policy)
{
    const Lock lock(mutex_);
    policy_ = policy;
}

BridgeCounters Bridge::counters() const
{
    BridgeCounters all;
    {
        const Lock lock(mutex_);
        all = counters_;
    }
    static_cast<OutboxCounters&>(all) = outbox_.counters();
    return all;
}

void Bridge::wake() const
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(wakeup_, &one, sizeof one); // fails only if it has been signalled
}

std::uint64_t Bridge::clock() const
{
    return monotonicMilliseconds() - startedAt_;
}

// --- The broker's thread ----------------------------------------------------------------------------------------------------

void* Bridge::brokerThread(void* self)
{
    static_cast<Bridge*>(self)->serveBroker();
    return nullptr;
}

void Bridge::serveBroker()
{
    for (bool isDone = false; !isDone;)
    {
        link_.turn(wakeup_, kTurn);
        std::uint64_t signals = 0;
        [[maybe_unused]] const ssize_t taken = read(wakeup_, &signals, sizeof signals);
        outbox_.send(link_);
        const Lock lock(mutex_);
        isDone = leaveAt_ != 0 && (outbox_.isEmpty() || !link_.isUp() || clock() >= leaveAt_);
    }
    takeLeave();
}

void Bridge::takeLeave()
{
    if (link_.isUp())
        announce(Kind::kWill);
    link_.close();
}

Envelope Bridge::presence(Kind kind) const
{
    Envelope envelope;
    envelope.kind = kind;
    envelope.byteOrder = kOwnByteOrder;
    envelope.sequence = connection_;
    envelope.run = run_;
    envelope.clock = clock();
    envelope.contract = kContractHash;
    if (kind != Kind::kWill)
    {
        envelope.message = settings_.programVersion;
        envelope.length = envelope.present = static_cast<std::uint32_t>(std::strlen(settings_.programVersion));
    }
    return envelope;
}

void Bridge::announce(Kind kind)
{
    std::uint8_t bytes[kHeaderSize + kLongestProgramVersion];
    std::size_t size = 0;
    if (encode(presence(kind), bytes, sizeof bytes, size) == Fault::kNone)
        link_.publish(stateTopic(settings_.link.clientId).text, bytes, size, true);
}

void Bridge::prepare(void* self, std::uint32_t connection, Will& will)
{
    auto* bridge = static_cast<Bridge*>(self);
    bridge->connection_ = connection;
    will.topic = stateTopic(bridge->settings_.link.clientId);
    if (encode(bridge->presence(Kind::kWill), will.payload, sizeof will.payload, will.size) != Fault::kNone)
        will.size = 0;
}

void Bridge::renew(void* self)
{
    auto* bridge = static_cast<Bridge*>(self);
    if (!bridge->hasHeard_)
        bridge->link_.renew(requestTopic(bridge->settings_.link.clientId).text);
}

void Bridge::connected(void* self)
{
    auto* bridge = static_cast<Bridge*>(self);
    bridge->hasHeard_ = false;
    bridge->link_.subscribe(requestTopic(bridge->settings_.link.clientId).text);
}

// Only now: who sees the birth can ask.
void Bridge::subscribed(void* self)
{
    auto* bridge = static_cast<Bridge*>(self);
    bridge->announce(Kind::kBirth);
    {
        const Lock lock(bridge->mutex_);
        ++bridge->counters_.births;
    }
    bridge->log_.line(kLogNotice, "connected at attempt %u", bridge->connection_);
}

void Bridge::lost(void* self, const char* broker, const char* reason)
{
    auto* bridge = static_cast<Bridge*>(self);
    bridge->log_.line(kLogWarning, "no connection to the broker %s: %s", broker, reason);
}

void Bridge::received(void* self, const char* /*topic*/, const void* payload, std::size_t size)
{
    auto* bridge = static_cast<Bridge*>(self);
    bridge->hasHeard_ = true;
    bridge->receive(payload, size);
}

// --- Requests ---------------------------------------------------------------------------------------------------------------

void Bridge::receive(const void* payload, std::size_t size)
{
    Envelope envelope;
    const Fault fault = decode(payload, size, envelope);
    const bool isForGateways = envelope.kind == Kind::kRequest || envelope.kind == Kind::kPing;
    if (fault != Fault::kNone || !isForGateways)
    {
        {
            const Lock lock(mutex_);
            ++counters_.malformed;
        }
        return log_.line(kLogWarning, "dropped %zu bytes: %s", size,
                         fault != Fault::kNone ? describe(fault) : "expected a request or a ping");
    }
    if (envelope.kind == Kind::kPing)
        answerPing(envelope);
    else
        admit(envelope);
}

void Bridge::answerPing(const Envelope& ping)
{
    Envelope pong = presence(Kind::kPong);
    pong.session = ping.session;
    pong.sequence = ping.sequence;
    {
        const Lock lock(mutex_);
        ++counters_.pings;
    }
    if (!outbox_.reserveAnswer())
        return;
    outbox_.postAnswer(replyTopic(ping.operatorId, settings_.link.clientId), pong);
    wake();
}

// Why a request is not to be carried out, as far as the request itself tells.
Refusal Bridge::judge(const Envelope& request, std::size_t function, std::uint64_t now) const
{
    if (request.run != 0 && (request.run != run_ || request.clock > now + kClockTolerance))
        return Refusal::kOtherRun;
    if (request.contract != kContractHash)
        return Refusal::kOtherContract;
    if (request.byteOrder != kOwnByteOrder)
        return Refusal::kOtherByteOrder;
    if (function == kContractFunctionCount)
        return Refusal::kPolicy;
    if (request.length != kContractFunctions[function].length)
        return Refusal::kLength;
    if (request.run == 0 && !kContractFunctions[function].reads)
        return Refusal::kNoRun;
    if (request.run != 0 && request.clock + request.live <= now)
        return Refusal::kLate;
    return Refusal::kNone;
}

void Bridge::admit(const Envelope& request)
{
    const std::uint64_t now = clock();
    const bool isOfThisRun = request.run == run_ && request.clock <= now + kClockTolerance;
    // When it can no longer be carried out if it comes again. Where no run is named the call only reads, and may as well be
    // made again.
    const std::uint64_t dead = isOfThisRun ? request.clock + request.live : 0;
    const SeenRequests::Verdict verdict = seen_.see(request.session, request.sequence, dead, now);
    const bool isRepeated = verdict == SeenRequests::Verdict::kSeen;
    {
        const Lock lock(mutex_);
        ++counters_.requests;
        if (isRepeated)
            ++counters_.repeated;
    }
    if (isRepeated)
        return log_.line(kLogWarning, "dropped a request of %s: it has been here before", request.operatorId);
    if (!outbox_.reserveAnswer())
        return log_.line(kLogWarning, "dropped a request of %s: too many answers wait for the broker", request.operatorId);

    auto* call = static_cast<Call*>(std::malloc(sizeof(Call) + request.present));
    if (call == nullptr)
        return outbox_.giveUpAnswer();
    call->session = request.session;
    call->sequence = request.sequence;
    call->dead = request.live + (request.run != 0 && request.clock < now ? request.clock : now);
    call->command = request.command;
    call->wait = request.wait;
    call->length = request.length;
    call->present = request.present;
    call->function = findCommand(request.service, request.command);
    std::memcpy(call->operatorId, request.operatorId, sizeof call->operatorId);
    std::memcpy(call->service, request.service, sizeof call->service);
    if (request.present > 0)
        std::memcpy(call->message, request.message, request.present);

    Refusal refusal = verdict == SeenRequests::Verdict::kNoRoom ? Refusal::kBusy : judge(request, call->function, now);
    if (refusal == Refusal::kNone)
        refusal = queue(call, now);
    if (refusal != Refusal::kNone)
        refuse(call, refusal);
}

// Gives the request to its service's thread, which then owns it, unless the policy or what waits already is against it.
Refusal Bridge::queue(Call* call, std::uint64_t now)
{
    const ContractFunction& function = kContractFunctions[call->function];
    Worker& worker = workers_[function.service];
    const Lock lock(mutex_);
    if (isStopping_)
        return Refusal::kStopping;
    if (!policy_.allows(call->function))
        return Refusal::kPolicy;
    if (worker.calls.count >= kMostWaiting)
        return Refusal::kBusy;
    if (!worker.isRunning)
        worker.isRunning = startThread(worker.thread, workerThread, &worker);
    if (!worker.isRunning)
        return Refusal::kBusy;
    // At last, and both or none: what is refused uses nothing up.
    if (!calls_.hasOne(policy_.rate(), now) || (!function.reads && !changes_.take(policy_.rateOfChanges(), now)))
        return Refusal::kRate;
    calls_.take(policy_.rate(), now);
    worker.calls.add(call);
    pthread_cond_signal(&worker.changed);
    return Refusal::kNone;
}

// --- A service's thread -----------------------------------------------------------------------------------------------------

void* Bridge::workerThread(void* worker)
{
    auto* self = static_cast<Worker*>(worker);
    self->bridge->serve(*self);
    return nullptr;
}

void Bridge::serve(Worker& worker)
{
    void* message = std::malloc(kLongestMessage);
    for (;;)
    {
        Call* call = nullptr;
        Refusal refusal = Refusal::kNone;
        {
            const Lock lock(mutex_);
            while (!isStopping_ && worker.calls.first == nullptr)
                pthread_cond_wait(&worker.changed, &mutex_);
            call = worker.calls.take();
            if (call == nullptr)
                break;
            if (isStopping_)
                refusal = Refusal::kStopping;
            else if (!policy_.allows(call->function))
                refusal = Refusal::kPolicy; // it has changed meanwhile
            else if (message == nullptr)
                refusal = Refusal::kBusy;
        }
        if (refusal == Refusal::kNone && clock() >= call->dead)
            refusal = Refusal::kLate;
        if (refusal == Refusal::kNone)
            carryOut(call, message);
        else
            refuse(call, refusal);
    }
    std::free(message);
}

void Bridge::carryOut(Call* call, void* message)
{
    Envelope packed;
    packed.length = call->length;
    packed.present = call->present;
    packed.message = call->message;
    unpack(packed, message);
    const std::uint32_t status =
        platform_.execute(platform_.context, kCallerId, call->service, call->wait, call->command, call->length, message);
    {
        const Lock lock(mutex_);
        ++counters_.executed;
    }
    if (!kContractFunctions[call->function].reads)
        log_.line(kLogNotice, "%s called %s: IPC status %u", call->operatorId, kContractFunctions[call->function].name, status);
    answer(*call, Refusal::kNone, status, message);
    std::free(call);
}

void Bridge::refuse(Call* call, Refusal refusal)
{
    {
        const Lock lock(mutex_);
        ++counters_.refused;
    }
    const bool isKnown = call->function != kContractFunctionCount;
    log_.line(kLogWarning, "refused %s a call of %s (%s %u): %s", call->operatorId,
              isKnown ? kContractFunctions[call->function].name : "no function", call->service, call->command,
              describe(refusal));
    answer(*call, refusal, statusOf(refusal), nullptr);
    std::free(call);
}

void Bridge::answer(const Call& call, Refusal refusal, std::uint32_t status, const void* message)
{
    Envelope reply;
    reply.kind = Kind::kReply;
    reply.byteOrder = kOwnByteOrder;
    reply.refusal = refusal;
    reply.session = call.session;
    reply.sequence = call.sequence;
    reply.run = run_;
    reply.clock = clock();
    reply.command = call.command;
    reply.status = status;
    reply.contract = kContractHash;
    std::memcpy(reply.service, call.service, sizeof reply.service);
    if (status == 0)
    {
        reply.length = reply.present = call.length;
        reply.message = message;
    }
    outbox_.postAnswer(replyTopic(call.operatorId, settings_.link.clientId), reply);
    wake();
}

// --- Events -----------------------------------------------------------------------------------------------------------------

void Bridge::publishEvent(const char* service, std::uint32_t event, const void* data, std::uint32_t length)
{
    const std::size_t index = findService(service);
    if (index == kContractServiceCount)
        return log_.line(kLogWarning, "dropped event %u of %s: the contract has no such service", event, service);
    Envelope envelope;
    envelope.kind = Kind::kEvent;
    envelope.byteOrder = kOwnByteOrder;
    envelope.run = run_;
    envelope.clock = clock();
    envelope.command = event;
    envelope.contract = kContractHash;
    envelope.length = envelope.present = length;
    envelope.message = data;
    std::snprintf(envelope.service, sizeof envelope.service, "%s", service);
    outbox_.postEvent(eventTopic(settings_.link.clientId, service), envelope, eventNumbers_[index]);
    wake();
}

} // namespace tarn::fleet
