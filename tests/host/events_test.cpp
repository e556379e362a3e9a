// Events: who gets them, in what order, and from when to when.
#include "support.h"

#include <atomic>
#include <csignal>
#include <mutex>
#include <vector>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace host_test
{
namespace
{

// Handlers are plain functions: what they receive is kept here, and what they are to do is said here.
struct Inbox
{
    struct Event
    {
        std::string serviceId;
        uint32_t number;
        std::string data;
        bool hadData;
    };

    void put(const char* serviceId, uint32_t number, const void* data, uint32_t length)
    {
        const std::lock_guard<std::mutex> guard(mutex);
        events.push_back({serviceId, number, std::string(static_cast<const char*>(data), length), data != nullptr});
    }

    size_t count()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        return events.size();
    }

    bool waitFor(size_t number)
    {
        return eventually([=] { return count() >= number; });
    }

    std::mutex mutex;
    std::vector<Event> events;
};

Inbox* inbox = nullptr;
Inbox* secondInbox = nullptr;
std::atomic<bool> held{false};    // onEventHeld stays in while this is true
std::atomic<bool> entered{false}; // it has been called
std::atomic<int> runs{0};

void onEvent(const char* serviceId, uint32_t evt, const void* data, uint32_t length)
{
    inbox->put(serviceId, evt, data, length);
}

void onEventToo(const char* serviceId, uint32_t evt, const void* data, uint32_t length)
{
    secondInbox->put(serviceId, evt, data, length);
}

void onEventHeld(const char*, uint32_t, const void*, uint32_t)
{
    entered = true;
    while (held)
        sleepMilliseconds(1);
    ++runs;
}

class EventsTest : public HostTest
{
protected:
    void SetUp() override
    {
        HostTest::SetUp();
        inbox = &inbox_;
        secondInbox = &secondInbox_;
        held = entered = false;
        runs = 0;
    }

    Inbox inbox_, secondInbox_;
};

uint32_t subscribe(uint32_t evt = 1, KorIilEventHandler handler = onEvent, const char* callerId = kCaller)
{
    return KorIilSubscribeEvent(callerId, kService, evt, handler);
}

uint32_t cancel(uint32_t evt = 1, KorIilEventHandler handler = onEvent, const char* callerId = kCaller)
{
    return KorIilCancelEvent(callerId, kService, evt, handler);
}

// On the peer's own connection, without this library's help.
uint32_t subscribeByHand(Peer& peer, uint32_t evt)
{
    koriil::PacketHeader request = requestHeader(evt, 0);
    request.kind = koriil::PacketKind::Subscribe;
    request.channel = peer.greet().channel;
    EXPECT_TRUE(peer.send(request));
    auto reply = std::make_unique<koriil::Packet>();
    EXPECT_GT(peer.receive(*reply), 0);
    return reply->header.status;
}

// Neither the thread sanitizer nor user-mode emulation lets a child of a process with several threads start its own.
bool childrenCanStartThreads()
{
#if defined(__SANITIZE_THREAD__)
    return false;
#else
    return *EMULATOR == '\0';
#endif
}

TEST_F(EventsTest, AnEventArrivesAsItWasPublished)
{
    RunningService service;
    ASSERT_EQ(KOR_IIL_OK, subscribe(4));
    const std::string data("station\0 joined", 15);
    EXPECT_EQ(1u, service.publish(4, data));
    ASSERT_TRUE(inbox_.waitFor(1));
    EXPECT_EQ(kService, inbox_.events[0].serviceId);
    EXPECT_EQ(4u, inbox_.events[0].number);
    EXPECT_EQ(data, inbox_.events[0].data);
    EXPECT_EQ(KOR_IIL_OK, cancel(4));
}

TEST_F(EventsTest, DataIsFromNothingToTheLimit)
{
    RunningService service;
    ASSERT_EQ(KOR_IIL_OK, subscribe());
    for (const size_t length : {size_t{0}, size_t{1}, size_t{9584}, size_t{KOR_IIL_MAX_LENGTH}})
    {
        service.publish(1, std::string(length, 'x'));
        ASSERT_TRUE(inbox_.waitFor(1));
        EXPECT_EQ(length, inbox_.events[0].data.size());
        EXPECT_EQ(length > 0, inbox_.events[0].hadData) << "no data is a null pointer";
        inbox_.events.clear();
    }
    EXPECT_EQ(KOR_IIL_OK, cancel());
}

TEST_F(EventsTest, PublishingHasStatusesToo)
{
    const auto refuse = [](void*, const KorIilRequest*, void*) -> uint32_t { return KOR_IIL_UNSUPPORT; };
    KorIilService* service = nullptr;
    ASSERT_EQ(KOR_IIL_OK, KorIilServiceOpen(kService, 5, refuse, nullptr, &service));
    const std::string tooLong(KOR_IIL_MAX_LENGTH + 1, 'x');
    uint32_t subscribers = 77;
    EXPECT_EQ(KOR_IIL_UNKNOWN_EVT, KorIilServicePublish(service, 0, nullptr, 0, nullptr));
    EXPECT_EQ(KOR_IIL_UNKNOWN_EVT, KorIilServicePublish(service, 6, nullptr, 0, nullptr));
    EXPECT_EQ(KOR_IIL_OVERSIZE, KorIilServicePublish(service, 1, tooLong.data(), KOR_IIL_MAX_LENGTH + 1, nullptr));
    EXPECT_EQ(KOR_IIL_BAD_PARAM, KorIilServicePublish(service, 1, nullptr, 1, nullptr));
    EXPECT_EQ(KOR_IIL_OK, KorIilServicePublish(service, 5, nullptr, 0, &subscribers)) << "before it runs, to nobody";
    EXPECT_EQ(0u, subscribers);
    KorIilServiceClose(service);
}

TEST_F(EventsTest, NobodyGetsWhatHeDidNotSubscribeTo)
{
    RunningService service;
    ASSERT_EQ(KOR_IIL_OK, subscribe(1));
    ASSERT_EQ(KOR_IIL_OK, subscribe(3));
    EXPECT_EQ(0u, service.publish(2));
    EXPECT_EQ(1u, service.publish(1));
    EXPECT_EQ(1u, service.publish(3));
    ASSERT_TRUE(inbox_.waitFor(2));
    EXPECT_EQ(1u, inbox_.events[0].number);
    EXPECT_EQ(3u, inbox_.events[1].number);
    EXPECT_EQ(KOR_IIL_OK, cancel(1));
    EXPECT_EQ(KOR_IIL_OK, cancel(3));
}

TEST_F(EventsTest, EventsArriveInOrder)
{
    RunningService service;
    ASSERT_EQ(KOR_IIL_OK, subscribe(1));
    ASSERT_EQ(KOR_IIL_OK, subscribe(2));
    constexpr uint32_t kEvents = 100;
    for (uint32_t i = 0; i < kEvents; ++i)
        service.publish(1 + i % 2, std::to_string(i));
    ASSERT_TRUE(inbox_.waitFor(kEvents));
    for (uint32_t i = 0; i < kEvents; ++i)
        EXPECT_EQ(std::to_string(i), inbox_.events[i].data);
    EXPECT_EQ(KOR_IIL_OK, cancel(1));
    EXPECT_EQ(KOR_IIL_OK, cancel(2));
}

// Published from several threads at once, they reach all subscribers in one and the same order.
TEST_F(EventsTest, AllSubscribersSeeOneOrder)
{
    RunningService service;
    ASSERT_EQ(KOR_IIL_OK, subscribe(1, onEvent));
    ASSERT_EQ(KOR_IIL_OK, subscribe(1, onEventToo));
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back(
            [&, thread]
            {
                for (int i = 0; i < 20; ++i)
                    service.publish(1, std::to_string(thread) + "/" + std::to_string(i));
            });
    for (std::thread& thread : threads)
        thread.join();
    ASSERT_TRUE(inbox_.waitFor(80));
    ASSERT_TRUE(secondInbox_.waitFor(80));
    for (size_t i = 0; i < 80; ++i)
        EXPECT_EQ(inbox_.events[i].data, secondInbox_.events[i].data);
    EXPECT_EQ(KOR_IIL_OK, cancel(1, onEvent));
    EXPECT_EQ(KOR_IIL_OK, cancel(1, onEventToo));
}

TEST_F(EventsTest, ARequestHandlerPublishes)
{
    RunningService* self = nullptr;
    RunningService service(
        [&](const KorIilRequest& request, unsigned char* message)
        {
            self->publish(2, "from the handler");
            return addOne(request, message);
        });
    self = &service;
    ASSERT_EQ(KOR_IIL_OK, subscribe(2));
    EXPECT_EQ(KOR_IIL_OK, callOnce());
    ASSERT_TRUE(inbox_.waitFor(1));
    EXPECT_EQ("from the handler", inbox_.events[0].data);
    EXPECT_EQ(KOR_IIL_OK, cancel(2));
}

TEST_F(EventsTest, ASubscriptionStandsOnce)
{
    RunningService service;
    EXPECT_EQ(KOR_IIL_OK, subscribe());
    EXPECT_EQ(KOR_IIL_CONFLICT_ID, subscribe());
    EXPECT_EQ(KOR_IIL_OK, subscribe(1, onEventToo)) << "another handler";
    EXPECT_EQ(KOR_IIL_OK, subscribe(1, onEvent, "another caller"));
    EXPECT_EQ(KOR_IIL_OK, subscribe(2)) << "another event";
    EXPECT_EQ(1u, service.publish(1)) << "one process";
    ASSERT_TRUE(inbox_.waitFor(2)) << "once for each caller";
    ASSERT_TRUE(secondInbox_.waitFor(1));

    EXPECT_EQ(KOR_IIL_OK, cancel());
    EXPECT_EQ(KOR_IIL_BAD_EVT, cancel());
    EXPECT_EQ(1u, service.publish(1));
    ASSERT_TRUE(inbox_.waitFor(3));
    EXPECT_EQ(KOR_IIL_OK, cancel(1, onEventToo));
    EXPECT_EQ(KOR_IIL_OK, cancel(1, onEvent, "another caller"));
    EXPECT_EQ(0u, service.publish(1));
    EXPECT_EQ(1u, service.publish(2));
    EXPECT_EQ(KOR_IIL_OK, cancel(2));
    EXPECT_EQ(0u, service.publish(2));
    EXPECT_EQ(KOR_IIL_OK, subscribe()) << "and all over again";
    EXPECT_EQ(KOR_IIL_OK, cancel());
}

TEST_F(EventsTest, WhatIsNotSubscribedCannotBeCancelled)
{
    EXPECT_EQ(KOR_IIL_BAD_EVT, cancel()) << "no service at all";
    RunningService service;
    EXPECT_EQ(KOR_IIL_BAD_EVT, cancel());
    ASSERT_EQ(KOR_IIL_OK, subscribe());
    EXPECT_EQ(KOR_IIL_BAD_EVT, cancel(2));
    EXPECT_EQ(KOR_IIL_BAD_EVT, cancel(1, onEventToo));
    EXPECT_EQ(KOR_IIL_BAD_EVT, cancel(1, onEvent, "another caller"));
    EXPECT_EQ(KOR_IIL_OK, cancel());
}

TEST_F(EventsTest, AnEventTheServiceDoesNotHave)
{
    RunningService service;
    EXPECT_EQ(KOR_IIL_UNKNOWN_EVT, subscribe(0));
    EXPECT_EQ(KOR_IIL_UNKNOWN_EVT, subscribe(6));
    EXPECT_EQ(KOR_IIL_UNKNOWN_EVT, subscribe(UINT32_MAX));
    EXPECT_EQ(KOR_IIL_BAD_EVT, cancel(6));
}

TEST_F(EventsTest, AServiceThatIsNotThere)
{
    EXPECT_EQ(KOR_IIL_UNKNOWN_DST_ID, subscribe());
}

TEST_F(EventsTest, AServiceThatDoesNotAnswer)
{
    ScriptedService service([](Peer& peer) { EXPECT_TRUE(peer.hasEnded() || peer.hasEnded()); });
    EXPECT_EQ(KOR_IIL_TIMEOUT, subscribe());
    EXPECT_EQ(KOR_IIL_BAD_EVT, cancel());
}

// --- The end of a subscription -----------------------------------------------------------------------------------------------

TEST_F(EventsTest, CancelWaitsForARunningHandler)
{
    RunningService service;
    held = true;
    ASSERT_EQ(KOR_IIL_OK, subscribe(1, onEventHeld));
    service.publish(1);
    service.publish(1); // and for no other run
    ASSERT_TRUE(eventually([] { return entered.load(); }));

    std::atomic<bool> returned{false};
    std::thread canceller(
        [&]
        {
            EXPECT_EQ(KOR_IIL_OK, cancel(1, onEventHeld));
            returned = true;
            EXPECT_EQ(1, runs);
        });
    sleepMilliseconds(100);
    EXPECT_FALSE(returned);
    held = false;
    canceller.join();
    sleepMilliseconds(50);
    EXPECT_EQ(1, runs);
}

std::atomic<bool> gone{false};
std::atomic<int> lateRuns{0};

void onEventUnlessGone(const char*, uint32_t, const void*, uint32_t)
{
    ++runs;
    if (gone)
        ++lateRuns;
    std::this_thread::yield();
    if (gone)
        ++lateRuns;
}

TEST_F(EventsTest, NoHandlerRunsAfterCancelReturned)
{
    RunningService service;
    const Publishing publishing(service);
    lateRuns = 0;
    for (int i = 0; i < 100; ++i)
    {
        gone = false;
        const int before = runs;
        ASSERT_EQ(KOR_IIL_OK, subscribe(1, onEventUnlessGone));
        while (runs == before)
            std::this_thread::yield();
        ASSERT_EQ(KOR_IIL_OK, cancel(1, onEventUnlessGone)); // while the handler is running, more often than not
        gone = true;
        std::this_thread::yield();
    }
    EXPECT_EQ(0, lateRuns);
}

std::atomic<uint32_t> statusInHandler{1000};

void onEventCancelSelf(const char*, uint32_t evt, const void*, uint32_t)
{
    ++runs;
    statusInHandler = cancel(evt, onEventCancelSelf);
}

TEST_F(EventsTest, AHandlerCancelsItself)
{
    RunningService service;
    statusInHandler = 1000;
    ASSERT_EQ(KOR_IIL_OK, subscribe(1, onEventCancelSelf));
    ASSERT_EQ(KOR_IIL_OK, subscribe(1, onEvent));
    service.publish(1);
    service.publish(1);
    ASSERT_TRUE(inbox_.waitFor(2));
    EXPECT_EQ(KOR_IIL_OK, statusInHandler);
    EXPECT_EQ(1, runs);
    EXPECT_EQ(KOR_IIL_OK, cancel(1, onEvent));
}

TEST_F(EventsTest, TheOnlyHandlerCancelsItself)
{
    RunningService service;
    for (int i = 0; i < 10; ++i)
    {
        statusInHandler = 1000;
        ASSERT_EQ(KOR_IIL_OK, subscribe(1, onEventCancelSelf));
        EXPECT_EQ(1u, service.publish(1));
        ASSERT_TRUE(eventually([] { return statusInHandler != 1000; }));
        EXPECT_EQ(KOR_IIL_OK, statusInHandler);
        EXPECT_EQ(KOR_IIL_BAD_EVT, cancel(1, onEventCancelSelf));
    }
    EXPECT_EQ(10, runs);
}

void onEventCancelOther(const char*, uint32_t evt, const void*, uint32_t)
{
    statusInHandler = cancel(evt, onEvent);
}

TEST_F(EventsTest, AHandlerCancelsTheNext)
{
    RunningService service;
    statusInHandler = 1000;
    ASSERT_EQ(KOR_IIL_OK, subscribe(1, onEventCancelOther));
    ASSERT_EQ(KOR_IIL_OK, subscribe(1, onEvent));
    ASSERT_EQ(KOR_IIL_OK, subscribe(1, onEventToo));
    service.publish(1);
    ASSERT_TRUE(secondInbox_.waitFor(1));
    EXPECT_EQ(KOR_IIL_OK, statusInHandler);
    EXPECT_EQ(0u, inbox_.count()) << "its turn for this very event had not come";
    EXPECT_EQ(KOR_IIL_OK, cancel(1, onEventCancelOther));
    EXPECT_EQ(KOR_IIL_OK, cancel(1, onEventToo));
}

void onEventRenew(const char*, uint32_t evt, const void*, uint32_t)
{
    ++runs;
    statusInHandler = cancel(evt, onEventRenew) + subscribe(evt, onEventRenew) + subscribe(evt + 1, onEvent);
}

TEST_F(EventsTest, AHandlerSubscribes)
{
    RunningService service;
    statusInHandler = 1000;
    ASSERT_EQ(KOR_IIL_OK, subscribe(3, onEventToo)); // the process is a subscriber throughout
    ASSERT_EQ(KOR_IIL_OK, subscribe(1, onEventRenew));
    service.publish(1);
    ASSERT_TRUE(eventually([] { return statusInHandler != 1000; }));
    EXPECT_EQ(KOR_IIL_OK, statusInHandler);
    service.publish(2);
    ASSERT_TRUE(inbox_.waitFor(1));
    EXPECT_EQ(1, runs) << "renewed for the next event, not for the one it was called with";
    EXPECT_EQ(KOR_IIL_OK, cancel(1, onEventRenew));
    EXPECT_EQ(KOR_IIL_OK, cancel(2, onEvent));
    EXPECT_EQ(KOR_IIL_OK, cancel(3, onEventToo));
}

void onEventCall(const char*, uint32_t, const void*, uint32_t)
{
    statusInHandler = callOnce();
}

TEST_F(EventsTest, AHandlerCallsTheService)
{
    RunningService service;
    statusInHandler = 1000;
    ASSERT_EQ(KOR_IIL_OK, subscribe(1, onEventCall));
    service.publish(1);
    ASSERT_TRUE(eventually([] { return statusInHandler != 1000; }));
    EXPECT_EQ(KOR_IIL_OK, statusInHandler);
    EXPECT_EQ(KOR_IIL_OK, cancel(1, onEventCall));
}

TEST_F(EventsTest, ManyThreadsSubscribeAndCancel)
{
    RunningService service;
    {
        const Publishing publishing(service);
        std::vector<std::thread> threads;
        for (const char* caller : {"a", "b", "c", "d", "e", "f", "g", "h"})
            threads.emplace_back(
                [caller]
                {
                    for (int i = 0; i < 20; ++i)
                    {
                        EXPECT_EQ(KOR_IIL_OK, subscribe(1, onEvent, caller));
                        EXPECT_EQ(KOR_IIL_OK, cancel(1, onEvent, caller));
                    }
                });
        for (std::thread& thread : threads)
            thread.join();
    }
    EXPECT_EQ(0u, service.publish(1));
}

// --- The end of a peer -------------------------------------------------------------------------------------------------------

TEST_F(EventsTest, SubscriptionsEndWithTheService)
{
    for (int i = 0; i < 5; ++i)
    {
        RunningService service;
        EXPECT_EQ(KOR_IIL_OK, subscribe()) << "round " << i;
        EXPECT_EQ(1u, service.publish(1));
        ASSERT_TRUE(inbox_.waitFor(static_cast<size_t>(i) + 1));
    }
    EXPECT_EQ(KOR_IIL_BAD_EVT, cancel());
    EXPECT_EQ(KOR_IIL_UNKNOWN_DST_ID, subscribe());
}

TEST_F(EventsTest, ARestartedServiceHasNoSubscribers)
{
    {
        RunningService service;
        ASSERT_EQ(KOR_IIL_OK, subscribe());
    }
    RunningService service;
    EXPECT_EQ(0u, service.publish(1));
    EXPECT_EQ(KOR_IIL_BAD_EVT, cancel());
    EXPECT_EQ(KOR_IIL_OK, subscribe());
    EXPECT_EQ(1u, service.publish(1));
    EXPECT_TRUE(inbox_.waitFor(1));
    EXPECT_EQ(KOR_IIL_OK, cancel());
}

// It gets what was in its queue, and loses its subscriptions; the others lose nothing.
TEST_F(EventsTest, ASubscriberThatDoesNotTakeItsEventsIsDisconnected)
{
    RunningService service;
    Peer witness = Peer::connectTo(kService);
    ASSERT_EQ(KOR_IIL_OK, subscribeByHand(witness, 2));

    held = true;
    ASSERT_EQ(KOR_IIL_OK, subscribe(1, onEventHeld));
    uint32_t taken = 0;
    const std::string data(KOR_IIL_MAX_LENGTH, 'x');
    while (service.publish(1, data) == 1)
        ASSERT_LT(++taken, 100000u);
    EXPECT_GT(taken, 0u);
    EXPECT_EQ(1u, service.publish(2, "for the witness"));
    auto packet = std::make_unique<koriil::Packet>();
    EXPECT_EQ(ssize_t{sizeof(koriil::PacketHeader) + 15}, witness.receive(*packet));
    held = false;
    EXPECT_EQ(KOR_IIL_BAD_EVT, cancel(1, onEventHeld));
}

// The subscription is lost, but its handler may be running: the promise holds for that too.
TEST_F(EventsTest, CancelWaitsForAHandlerOfALostSubscription)
{
    held = true;
    {
        RunningService service;
        ASSERT_EQ(KOR_IIL_OK, subscribe(1, onEventHeld));
        service.publish(1);
        ASSERT_TRUE(eventually([] { return entered.load(); }));
    }
    EXPECT_EQ(KOR_IIL_BAD_EVT, cancel(1, onEvent)) << "another's, which is not waited for";
    EXPECT_EQ(0, runs);

    std::atomic<bool> returned{false};
    std::thread canceller(
        [&]
        {
            EXPECT_EQ(KOR_IIL_BAD_EVT, cancel(1, onEventHeld));
            EXPECT_EQ(1, runs);
            returned = true;
        });
    sleepMilliseconds(100);
    EXPECT_FALSE(returned);
    held = false;
    canceller.join();
}

TEST_F(EventsTest, AChildHasNoSubscriptions)
{
    RunningService service;
    ASSERT_EQ(KOR_IIL_OK, subscribe());
    Child child([] { return cancel() == KOR_IIL_BAD_EVT ? 0 : 1; });
    EXPECT_EQ(0, child.wait());
    EXPECT_EQ(1u, service.publish(1));
    EXPECT_TRUE(inbox_.waitFor(1));
    EXPECT_EQ(KOR_IIL_OK, cancel());
}

// The child calls over a connection of its own and, where a forked child can start the thread that this takes, subscribes.
TEST_F(EventsTest, AChildStartsAfresh)
{
    RunningService service;
    ASSERT_EQ(KOR_IIL_OK, subscribe());
    Child child(
        []
        {
            if (callOnce() != KOR_IIL_OK || cancel() != KOR_IIL_BAD_EVT)
                return 1;
            if (!childrenCanStartThreads())
                return 0;
            if (subscribe() != KOR_IIL_OK)
                return 2;
            const bool came = inbox->waitFor(1);
            return came && cancel() == KOR_IIL_OK ? 0 : 3;
        });
    if (childrenCanStartThreads())
    {
        ASSERT_TRUE(eventually([&] { return service.publish(1) == 2; })) << "the two processes";
    }
    EXPECT_EQ(0, child.wait());
    EXPECT_EQ(1u, service.publish(1)) << "the parent's stands";
    EXPECT_EQ(KOR_IIL_OK, cancel());
}

TEST_F(EventsTest, ASubscriberThatDiesIsForgotten)
{
    RunningService service;
    Child child(
        []
        {
            Peer peer = Peer::connectTo(kService);
            return subscribeByHand(peer, 1) == KOR_IIL_OK ? pause() : 1;
        });
    ASSERT_TRUE(eventually([&] { return service.publish(1) == 1; }));
    child.kill(SIGKILL);
    child.wait();
    EXPECT_EQ(0u, service.publish(1));
    EXPECT_EQ(KOR_IIL_OK, callOnce());
}

koriil::Descriptor listenByHand()
{
    koriil::Descriptor listener(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    socketOf(kService).copy(address.sun_path, sizeof(address.sun_path) - 1);
    EXPECT_EQ(0, bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)));
    EXPECT_EQ(0, listen(listener.get(), 8));
    return listener;
}

// A service that was restarted between the channel's last look and the request does not know the channel.
TEST_F(EventsTest, AnUnknownChannelIsReplacedOnce)
{
    const koriil::Descriptor listener = listenByHand();
    std::thread service(
        [&]
        {
            Peer channel(accept(listener.get(), nullptr, nullptr));
            welcome(channel);
            Peer caller(accept(listener.get(), nullptr, nullptr));
            welcome(caller);
            auto request = std::make_unique<koriil::Packet>();
            ASSERT_GT(caller.receive(*request), 0);
            koriil::PacketHeader unknown = replyTo(request->header, 0);
            unknown.status = KOR_IIL_BAD_EVT;
            ASSERT_TRUE(caller.send(unknown));
            EXPECT_TRUE(channel.hasEnded());

            Peer secondChannel(accept(listener.get(), nullptr, nullptr));
            welcome(secondChannel);
            ASSERT_GT(caller.receive(*request), 0);
            ASSERT_EQ(koriil::PacketKind::Subscribe, request->header.kind);
            unknown.sequence = request->header.sequence;
            ASSERT_TRUE(caller.send(unknown));
            EXPECT_TRUE(secondChannel.hasEnded());
        });
    EXPECT_EQ(KOR_IIL_BAD_EVT, subscribe()) << "twice, and it gives up";
    service.join();
}

// What a service must not send on such a connection is dropped, and the next event is delivered.
TEST_F(EventsTest, MalformedEventsAreDropped)
{
    const koriil::Descriptor listener = listenByHand();
    std::thread service(
        [&]
        {
            Peer channel(accept(listener.get(), nullptr, nullptr));
            welcome(channel);
            Peer caller(accept(listener.get(), nullptr, nullptr));
            welcome(caller);
            auto request = std::make_unique<koriil::Packet>();
            ASSERT_GT(caller.receive(*request), 0);
            ASSERT_EQ(koriil::PacketKind::Subscribe, request->header.kind);
            ASSERT_EQ(1000u, request->header.channel);
            ASSERT_TRUE(caller.send(replyTo(request->header, 0)));

            koriil::PacketHeader event;
            event.kind = koriil::PacketKind::Event;
            event.command = 1;
            event.length = 4;
            ASSERT_TRUE(channel.send(event, "abc"));
            ASSERT_TRUE(channel.send(event, "abcde"));
            ASSERT_TRUE(channel.sendBytes(&event, 20));
            ASSERT_TRUE(channel.send(inOtherByteOrder(event), "abcd"));
            ASSERT_TRUE(channel.send(replyTo(event, 4), "abcd"));
            event.length = KOR_IIL_MAX_LENGTH + 1;
            ASSERT_TRUE(channel.send(event, std::string(event.length, 'x')));
            event.length = 4;
            ASSERT_TRUE(channel.send(event, "good"));
            ASSERT_GT(caller.receive(*request), 0);
            ASSERT_EQ(koriil::PacketKind::Cancel, request->header.kind);
            ASSERT_TRUE(caller.send(replyTo(request->header, 0)));
            ASSERT_TRUE(channel.hasEnded()) << "it was the last";
        });
    ASSERT_EQ(KOR_IIL_OK, subscribe());
    ASSERT_TRUE(inbox_.waitFor(1));
    EXPECT_EQ("good", inbox_.events[0].data);
    EXPECT_EQ(KOR_IIL_OK, cancel());
    service.join();
    EXPECT_EQ(1u, inbox_.count());
}

} // namespace
} // namespace host_test
