#include "attachment.h"

#include "message_order.h"

#include "tarn_frame.h"

#include <stdexcept>
#include <vector>

namespace tarn::fleet
{

namespace
{

constexpr std::uint32_t kWarning = 2; // of KorIilTrace
constexpr std::uint32_t kNotice = 3;
constexpr char kTag[] = "tarn-fleet";
// Calls of one service at the same time: one more than a bridge lets wait and carries out.
constexpr std::uint32_t kThreads = 18;

} // namespace

Attachment::Attachment(const LinkSettings& settings, const std::string& gateway, const layout::Layout* layout)
    : gateway_(gateway), layout_(layout)
{
    for (std::size_t at = 0; at < kContractServiceCount; ++at)
    {
        Door& door = doors_[at];
        door.attachment = this;
        door.service = &kContractServices[at];
        if (const std::uint32_t status = open(door); status != KOR_IIL_OK)
        {
            closeAll();
            throw std::runtime_error(std::string("the service ") + door.service->name +
                                     " cannot be opened: " + tarnIpcStatusName(status));
        }
    }
    ExchangeWatcher watcher;
    watcher.state = [this](const std::string& /*gateway*/, const Envelope& envelope) { hearState(envelope); };
    watcher.event = [this](const std::string& /*gateway*/, const Envelope& envelope) { hearEvent(envelope); };
    watcher.connected = [this]
    {
        if (hasConnected_)
            loseEvents();
        hasConnected_ = true;
    };
    watcher.lost = [](const std::string& broker, const std::string& reason)
    { KorIilTrace(kWarning, kTag, __LINE__, "no connection to the broker %s: %s", broker.c_str(), reason.c_str()); };
    try
    {
        exchange_ = std::make_unique<Exchange>(
            settings, std::vector<std::string>{stateTopic(gateway.c_str()).text, eventTopic(gateway.c_str(), "+").text},
            watcher, layout);
    }
    catch (...)
    {
        closeAll();
        throw;
    }
    for (Door& door : doors_)
        door.thread = std::thread([this, &door] { serve(door); });
}

Attachment::~Attachment()
{
    giveUp();
    for (Door& door : doors_)
    {
        const std::lock_guard guard(door.mutex);
        KorIilServiceStop(door.opened);
    }
    for (Door& door : doors_)
        door.thread.join();
    exchange_.reset();
    closeAll();
}

void Attachment::giveUp()
{
    isStopping_ = true;
    exchange_->giveUp();
}

bool Attachment::awaitGateway(std::chrono::milliseconds limit)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + limit;
    if (exchange_->awaitUp(limit) &&
        exchange_->ping(gateway_, std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now())))
        return true;
    if (!isStopping_)
        KorIilTrace(kWarning, kTag, __LINE__, "%s",
                    exchange_->isUp() ? (gateway_ + " does not answer").c_str() : "no connection to a broker");
    return false;
}

// --- Calls ------------------------------------------------------------------------------------------------------------------

std::uint32_t Attachment::handle(void* door, const KorIilRequest* request, void* message)
{
    const auto& self = *static_cast<Door*>(door);
    Attachment& attachment = *self.attachment;
    const Outcome outcome =
        attachment.exchange_->call(attachment.gateway_, {self.service->name, request->command, request->wait, request->length},
                                   message, std::chrono::seconds(request->wait));
    for (const std::string& note : outcome.notes)
        KorIilTrace(kWarning, kTag, __LINE__, "%s", note.c_str());
    if (outcome.status != KOR_IIL_OK)
        KorIilTrace(kWarning, kTag, __LINE__, "%s of %s, command %lu of %s: %s", tarnIpcStatusName(outcome.status),
                    request->callerId, static_cast<unsigned long>(request->command), self.service->name,
                    outcome.reason.c_str());
    return outcome.status;
}

std::uint32_t Attachment::open(Door& door)
{
    KorIilService* service = nullptr;
    std::uint32_t status = KorIilServiceOpen(door.service->name, door.service->events, &handle, &door, &service);
    if (status == KOR_IIL_OK)
        status = KorIilServiceSetThreads(service, kThreads);
    const std::lock_guard guard(door.mutex);
    door.opened = service;
    return status;
}

// Until the end; anew whenever the subscribers have to know that they may have missed events.
void Attachment::serve(Door& door)
{
    for (;;)
    {
        const std::uint32_t status = KorIilServiceRun(door.opened);
        if (isStopping_)
            return;
        if (status != KOR_IIL_OK)
            KorIilTrace(kWarning, kTag, __LINE__, "service %s: %s", door.service->name, tarnIpcStatusName(status));
        {
            const std::lock_guard guard(door.mutex);
            KorIilServiceClose(door.opened);
            door.opened = nullptr;
        }
        for (std::uint32_t failed = open(door); failed != KOR_IIL_OK && !isStopping_; failed = open(door))
        {
            KorIilTrace(kWarning, kTag, __LINE__, "service %s cannot be opened again: %s", door.service->name,
                        tarnIpcStatusName(failed));
            std::this_thread::sleep_for(std::chrono::seconds(1));
        }
        if (isStopping_)
            return;
    }
}

void Attachment::closeAll()
{
    for (Door& door : doors_)
    {
        KorIilServiceClose(door.opened);
        door.opened = nullptr;
    }
}

// --- Events -----------------------------------------------------------------------------------------------------------------

// What happened while the gateway was not connected brought no event.
void Attachment::hearState(const Envelope& envelope)
{
    const bool isSameRun = envelope.run == run_;
    if (envelope.kind == Kind::kWill)
    {
        if (isSameRun && envelope.sequence >= connection_)
            KorIilTrace(kWarning, kTag, __LINE__, "%s has lost its connection to the broker", gateway_.c_str());
        return;
    }
    if (isSameRun && envelope.sequence <= connection_)
        return; // retained, and heard before
    const bool isFirst = run_ == 0;
    run_ = envelope.run;
    connection_ = envelope.sequence;
    if (!isSameRun)
        for (Door& door : doors_)
            door.lastEvent.reset();
    if (isFirst)
        return;
    KorIilTrace(kNotice, kTag, __LINE__, "%s is connected to the broker again", gateway_.c_str());
    loseEvents();
}

void Attachment::hearEvent(const Envelope& envelope)
{
    Door& door = doors_[findService(envelope.service) % kContractServiceCount];
    if (std::string(envelope.service) != door.service->name)
        return;
    const bool isSameRun = run_ == 0 || envelope.run == run_;
    if (!isSameRun || (door.lastEvent && envelope.sequence <= *door.lastEvent))
        return; // of a run that has ended, or heard before
    const std::uint32_t lost = door.lastEvent ? envelope.sequence - *door.lastEvent - 1 : 0;
    door.lastEvent = envelope.sequence;
    if (lost > 0)
    {
        KorIilTrace(kWarning, kTag, __LINE__, "%lu events of %s were lost on their way", static_cast<unsigned long>(lost),
                    envelope.service);
        loseEvents();
    }
    publish(door, envelope);
}

void Attachment::publish(Door& door, const Envelope& envelope)
{
    std::vector<std::uint8_t> data(envelope.length);
    unpack(envelope, data.data());
    if (envelope.byteOrder != kOwnByteOrder && !data.empty())
    {
        const OrderTable table = orderTableOfEvent(envelope.service, envelope.command, layout_);
        turnRound(table, data.data(), data.size());
        for (const std::string& unknown : table.unknownOutputs)
            KorIilTrace(kWarning, kTag, __LINE__, "%s is as %s has it, in the other byte order: no layout tells of its inside",
                        unknown.c_str(), gateway_.c_str());
    }
    const std::lock_guard guard(door.mutex);
    if (door.opened == nullptr)
        return; // its subscribers are about to be told that they miss events
    const std::uint32_t status =
        KorIilServicePublish(door.opened, envelope.command, data.data(), static_cast<std::uint32_t>(data.size()), nullptr);
    if (status != KOR_IIL_OK)
        KorIilTrace(kWarning, kTag, __LINE__, "event %lu of %s is not passed on: %s",
                    static_cast<unsigned long>(envelope.command), envelope.service, tarnIpcStatusName(status));
}

// Restarts the services that have events, which ends the subscriptions: so a subscriber learns that it has missed some.
void Attachment::loseEvents()
{
    for (Door& door : doors_)
        if (door.service->events > 0)
        {
            const std::lock_guard guard(door.mutex);
            KorIilServiceStop(door.opened);
        }
}

} // namespace tarn::fleet
