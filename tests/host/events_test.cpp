// Events: who gets them, in what order, and from when to when.
#include "support.h"

#include <atomic>
#include <csignal>
#include <mutex>
#include <vector>

#include <unistd.h>

namespace host_test
{
namespace
{

// Handlers have no context argument: what they receive and what they are told is global.
struct Inbox
{
    struct Event
    {
        std::string serviceId;
        std::uint32_t number;
        std::string data;
        bool hadData;
    };

    void put(const char* serviceId, std::uint32_t number, const void* data, std::uint32_t length)
    {
        const std::lock_guard<std::mutex> guard(mutex);
        events.push_back({serviceId, number, std::string(static_cast<const char*>(data), length), data != nullptr});
    }

    std::size_t count()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        return events.size();
    }

    bool waitFor(std::size_t number)
    {
        return eventually([=] { return count() >= number; });
    }

    std::mutex mutex;
    std::vector<Event> events;
};

Inbox* inbox = nullptr;
Inbox* secondInbox = nullptr;
std::atomic<bool> held{false};    // onEventHeld does not return while this is true
std::atomic<bool> entered{false}; // onEventHeld has been called
std::atomic<int> runs{0};         // of the handlers that count them

constexpr std::uint32_t kNotRun = 1000;
std::atomic<std::uint32_t> statusInHandler{kNotRun}; // what a handler's own calls returned

void onEvent(const char* serviceId, std::uint32_t evt, const void* data, std::uint32_t length)
{
    inbox->put(serviceId, evt, data, length);
}

void onEventToo(const char* serviceId, std::uint32_t evt, const void* data, std::uint32_t length)
{
    secondInbox->put(serviceId, evt, data, length);
}

void onEventHeld(const char*, std::uint32_t, const void*, std::uint32_t)
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
        inbox = &inbox_;
        secondInbox = &secondInbox_;
        held = entered = false;
        runs = 0;
        statusInHandler = kNotRun;
    }

    Inbox inbox_, secondInbox_;
};

std::uint32_t subscribe(std::uint32_t evt = 1, KorIilEventHandler handler = onEvent, const char* callerId = kCaller)
{
    return KorIilSubscribeEvent(callerId, kService, evt, handler);
}

std::uint32_t cancel(std::uint32_t evt = 1, KorIilEventHandler handler = onEvent, const char* callerId = kCaller)
{
    return KorIilCancelEvent(callerId, kService, evt, handler);
}

// On the peer's own connection, without this library's client side.
std::uint32_t subscribeByHand(Peer& peer, std::uint32_t evt)
{
    koriil::PacketHeader request = requestHeader(evt, 0);
    request.kind = koriil::PacketKind::kSubscribe;
    request.connection = peer.greet().connection;
    EXPECT_TRUE(peer.send(request));
    return peer.receiveHeader().status;
}

// Under the thread sanitizer and under user-mode emulation, a child of a process with several threads cannot start threads.
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
    ASSERT_EQ(subscribe(4), KOR_IIL_OK);
    const std::string data("station\0 joined", 15);
    EXPECT_EQ(service.publish(4, data), 1u);
    ASSERT_TRUE(inbox_.waitFor(1));
    EXPECT_EQ(inbox_.events[0].serviceId, kService);
    EXPECT_EQ(inbox_.events[0].number, 4u);
    EXPECT_EQ(inbox_.events[0].data, data);
    EXPECT_EQ(cancel(4), KOR_IIL_OK);
}

TEST_F(EventsTest, DataIsFromNothingToTheLimit)
{
    RunningService service;
    ASSERT_EQ(subscribe(), KOR_IIL_OK);
    for (const std::size_t length : {std::size_t{0}, std::size_t{1}, std::size_t{9584}, std::size_t{KOR_IIL_MAX_LENGTH}})
    {
        service.publish(1, std::string(length, 'x'));
        ASSERT_TRUE(inbox_.waitFor(1));
        EXPECT_EQ(inbox_.events[0].data.size(), length);
        EXPECT_EQ(inbox_.events[0].hadData, length > 0) << "no data is a null pointer";
        inbox_.events.clear();
    }
    EXPECT_EQ(cancel(), KOR_IIL_OK);
}

TEST_F(EventsTest, PublishingHasStatusesToo)
{
    KorIilService* service = nullptr;
    ASSERT_EQ(KorIilServiceOpen(kService, 5, refuseRequest, nullptr, &service), KOR_IIL_OK);
    const std::string tooLong(KOR_IIL_MAX_LENGTH + 1, 'x');
    std::uint32_t subscribers = 77;
    EXPECT_EQ(KorIilServicePublish(service, 0, nullptr, 0, nullptr), KOR_IIL_UNKNOWN_EVT);
    EXPECT_EQ(KorIilServicePublish(service, 6, nullptr, 0, nullptr), KOR_IIL_UNKNOWN_EVT);
    EXPECT_EQ(KorIilServicePublish(service, 1, tooLong.data(), KOR_IIL_MAX_LENGTH + 1, nullptr), KOR_IIL_OVERSIZE);
    EXPECT_EQ(KorIilServicePublish(service, 1, nullptr, 1, nullptr), KOR_IIL_BAD_PARAM);
    EXPECT_EQ(KorIilServicePublish(service, 5, nullptr, 0, &subscribers), KOR_IIL_OK) << "before it runs, to nobody";
    EXPECT_EQ(subscribers, 0u);
    KorIilServiceClose(service);
}

TEST_F(EventsTest, NobodyGetsWhatHeDidNotSubscribeTo)
{
    RunningService service;
    ASSERT_EQ(subscribe(1), KOR_IIL_OK);
    ASSERT_EQ(subscribe(3), KOR_IIL_OK);
    EXPECT_EQ(service.publish(2), 0u);
    EXPECT_EQ(service.publish(1), 1u);
    EXPECT_EQ(service.publish(3), 1u);
    ASSERT_TRUE(inbox_.waitFor(2));
    EXPECT_EQ(inbox_.events[0].number, 1u);
    EXPECT_EQ(inbox_.events[1].number, 3u);
    EXPECT_EQ(cancel(1), KOR_IIL_OK);
    EXPECT_EQ(cancel(3), KOR_IIL_OK);
}

TEST_F(EventsTest, EventsArriveInOrder)
{
    RunningService service;
    ASSERT_EQ(subscribe(1), KOR_IIL_OK);
    ASSERT_EQ(subscribe(2), KOR_IIL_OK);
    constexpr std::uint32_t kEvents = 100;
    for (std::uint32_t i = 0; i < kEvents; ++i)
        service.publish(1 + i % 2, std::to_string(i));
    ASSERT_TRUE(inbox_.waitFor(kEvents));
    for (std::uint32_t i = 0; i < kEvents; ++i)
        EXPECT_EQ(inbox_.events[i].data, std::to_string(i));
    EXPECT_EQ(cancel(1), KOR_IIL_OK);
    EXPECT_EQ(cancel(2), KOR_IIL_OK);
}

// Published from several threads at once, they reach all subscribers in one and the same order.
TEST_F(EventsTest, AllSubscribersSeeOneOrder)
{
    RunningService service;
    ASSERT_EQ(subscribe(1, onEvent), KOR_IIL_OK);
    ASSERT_EQ(subscribe(1, onEventToo), KOR_IIL_OK);
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
    for (std::size_t i = 0; i < 80; ++i)
        EXPECT_EQ(secondInbox_.events[i].data, inbox_.events[i].data);
    EXPECT_EQ(cancel(1, onEvent), KOR_IIL_OK);
    EXPECT_EQ(cancel(1, onEventToo), KOR_IIL_OK);
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
    ASSERT_EQ(subscribe(2), KOR_IIL_OK);
    EXPECT_EQ(callOnce(), KOR_IIL_OK);
    ASSERT_TRUE(inbox_.waitFor(1));
    EXPECT_EQ(inbox_.events[0].data, "from the handler");
    EXPECT_EQ(cancel(2), KOR_IIL_OK);
}

TEST_F(EventsTest, ASubscriptionStandsOnce)
{
    RunningService service;
    EXPECT_EQ(subscribe(), KOR_IIL_OK);
    EXPECT_EQ(subscribe(), KOR_IIL_CONFLICT_ID);
    EXPECT_EQ(subscribe(1, onEventToo), KOR_IIL_OK) << "another handler";
    EXPECT_EQ(subscribe(1, onEvent, "another caller"), KOR_IIL_OK);
    EXPECT_EQ(subscribe(2), KOR_IIL_OK) << "another event";
    EXPECT_EQ(service.publish(1), 1u) << "one process";
    ASSERT_TRUE(inbox_.waitFor(2)) << "once for each caller";
    ASSERT_TRUE(secondInbox_.waitFor(1));

    EXPECT_EQ(cancel(), KOR_IIL_OK);
    EXPECT_EQ(cancel(), KOR_IIL_BAD_EVT);
    EXPECT_EQ(service.publish(1), 1u);
    ASSERT_TRUE(inbox_.waitFor(3));
    EXPECT_EQ(cancel(1, onEventToo), KOR_IIL_OK);
    EXPECT_EQ(cancel(1, onEvent, "another caller"), KOR_IIL_OK);
    EXPECT_EQ(service.publish(1), 0u);
    EXPECT_EQ(service.publish(2), 1u);
    EXPECT_EQ(cancel(2), KOR_IIL_OK);
    EXPECT_EQ(service.publish(2), 0u);
    EXPECT_EQ(subscribe(), KOR_IIL_OK) << "again";
    EXPECT_EQ(cancel(), KOR_IIL_OK);
}

TEST_F(EventsTest, WhatIsNotSubscribedCannotBeCancelled)
{
    EXPECT_EQ(cancel(), KOR_IIL_BAD_EVT) << "no service at all";
    RunningService service;
    EXPECT_EQ(cancel(), KOR_IIL_BAD_EVT);
    ASSERT_EQ(subscribe(), KOR_IIL_OK);
    EXPECT_EQ(cancel(2), KOR_IIL_BAD_EVT);
    EXPECT_EQ(cancel(1, onEventToo), KOR_IIL_BAD_EVT);
    EXPECT_EQ(cancel(1, onEvent, "another caller"), KOR_IIL_BAD_EVT);
    EXPECT_EQ(cancel(), KOR_IIL_OK);
}

TEST_F(EventsTest, AnEventTheServiceDoesNotHave)
{
    RunningService service;
    EXPECT_EQ(subscribe(0), KOR_IIL_UNKNOWN_EVT);
    EXPECT_EQ(subscribe(6), KOR_IIL_UNKNOWN_EVT);
    EXPECT_EQ(subscribe(UINT32_MAX), KOR_IIL_UNKNOWN_EVT);
    EXPECT_EQ(cancel(6), KOR_IIL_BAD_EVT);
}

TEST_F(EventsTest, AServiceThatIsNotThere)
{
    EXPECT_EQ(subscribe(), KOR_IIL_UNKNOWN_DST_ID);
}

TEST_F(EventsTest, AServiceThatDoesNotAnswer)
{
    ScriptedService service(
        [](ScriptedService& self)
        {
            Peer peer = self.accept();
            peer.receiveHeader();
            EXPECT_TRUE(peer.hasEnded());
        });
    EXPECT_EQ(subscribe(), KOR_IIL_TIMEOUT);
    EXPECT_EQ(cancel(), KOR_IIL_BAD_EVT);
}

// --- The end of a subscription -----------------------------------------------------------------------------------------------

TEST_F(EventsTest, CancelWaitsForARunningHandler)
{
    RunningService service;
    held = true;
    ASSERT_EQ(subscribe(1, onEventHeld), KOR_IIL_OK);
    service.publish(1);
    service.publish(1); // not delivered: cancelled before its turn
    ASSERT_TRUE(eventually([] { return entered.load(); }));

    std::atomic<bool> returned{false};
    std::thread canceller(
        [&]
        {
            EXPECT_EQ(cancel(1, onEventHeld), KOR_IIL_OK);
            returned = true;
            EXPECT_EQ(runs, 1);
        });
    EXPECT_TRUE(eventually([&] { return service.publish(1) == 0; })) << "it has cancelled, and waits";
    sleepMilliseconds(100);
    EXPECT_FALSE(returned);
    held = false;
    canceller.join();
    sleepMilliseconds(50);
    EXPECT_EQ(runs, 1);
}

std::atomic<bool> gone{false};
std::atomic<int> lateRuns{0};

void onEventUnlessGone(const char*, std::uint32_t, const void*, std::uint32_t)
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
        ASSERT_EQ(subscribe(1, onEventUnlessGone), KOR_IIL_OK);
        while (runs == before)
            std::this_thread::yield();
        ASSERT_EQ(cancel(1, onEventUnlessGone), KOR_IIL_OK); // often while the handler is running
        gone = true;
        std::this_thread::yield();
    }
    EXPECT_EQ(lateRuns, 0);
}

void onEventCancelSelf(const char*, std::uint32_t evt, const void*, std::uint32_t)
{
    ++runs;
    statusInHandler = cancel(evt, onEventCancelSelf);
}

TEST_F(EventsTest, AHandlerCancelsItself)
{
    RunningService service;
    ASSERT_EQ(subscribe(1, onEventCancelSelf), KOR_IIL_OK);
    ASSERT_EQ(subscribe(1, onEvent), KOR_IIL_OK);
    service.publish(1);
    service.publish(1);
    ASSERT_TRUE(inbox_.waitFor(2));
    EXPECT_EQ(statusInHandler, KOR_IIL_OK);
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(cancel(1, onEvent), KOR_IIL_OK);
}

TEST_F(EventsTest, TheOnlyHandlerCancelsItself)
{
    RunningService service;
    for (int i = 0; i < 10; ++i)
    {
        statusInHandler = kNotRun;
        ASSERT_EQ(subscribe(1, onEventCancelSelf), KOR_IIL_OK);
        EXPECT_EQ(service.publish(1), 1u);
        ASSERT_TRUE(eventually([] { return statusInHandler != kNotRun; }));
        EXPECT_EQ(statusInHandler, KOR_IIL_OK);
        EXPECT_EQ(cancel(1, onEventCancelSelf), KOR_IIL_BAD_EVT);
    }
    EXPECT_EQ(runs, 10);
}

void onEventCancelOther(const char*, std::uint32_t evt, const void*, std::uint32_t)
{
    statusInHandler = cancel(evt, onEvent);
}

TEST_F(EventsTest, AHandlerCancelsTheNext)
{
    RunningService service;
    ASSERT_EQ(subscribe(1, onEventCancelOther), KOR_IIL_OK);
    ASSERT_EQ(subscribe(1, onEvent), KOR_IIL_OK);
    ASSERT_EQ(subscribe(1, onEventToo), KOR_IIL_OK);
    service.publish(1);
    ASSERT_TRUE(secondInbox_.waitFor(1));
    EXPECT_EQ(statusInHandler, KOR_IIL_OK);
    EXPECT_EQ(inbox_.count(), 0u) << "its turn for this very event had not come";
    EXPECT_EQ(cancel(1, onEventCancelOther), KOR_IIL_OK);
    EXPECT_EQ(cancel(1, onEventToo), KOR_IIL_OK);
}

void onEventRenew(const char*, std::uint32_t evt, const void*, std::uint32_t)
{
    ++runs;
    statusInHandler = cancel(evt, onEventRenew) + subscribe(evt, onEventRenew) + subscribe(evt + 1, onEvent);
}

TEST_F(EventsTest, AHandlerSubscribes)
{
    RunningService service;
    ASSERT_EQ(subscribe(3, onEventToo), KOR_IIL_OK); // keeps the process a subscriber
    ASSERT_EQ(subscribe(1, onEventRenew), KOR_IIL_OK);
    service.publish(1);
    ASSERT_TRUE(eventually([] { return statusInHandler != kNotRun; }));
    EXPECT_EQ(statusInHandler, KOR_IIL_OK);
    service.publish(2);
    ASSERT_TRUE(inbox_.waitFor(1));
    EXPECT_EQ(runs, 1) << "renewed for the next event, not for the one it was called with";
    EXPECT_EQ(cancel(1, onEventRenew), KOR_IIL_OK);
    EXPECT_EQ(cancel(2, onEvent), KOR_IIL_OK);
    EXPECT_EQ(cancel(3, onEventToo), KOR_IIL_OK);
}

void onEventCall(const char*, std::uint32_t, const void*, std::uint32_t)
{
    statusInHandler = callOnce();
}

TEST_F(EventsTest, AHandlerCallsTheService)
{
    RunningService service;
    ASSERT_EQ(subscribe(1, onEventCall), KOR_IIL_OK);
    service.publish(1);
    ASSERT_TRUE(eventually([] { return statusInHandler != kNotRun; }));
    EXPECT_EQ(statusInHandler, KOR_IIL_OK);
    EXPECT_EQ(cancel(1, onEventCall), KOR_IIL_OK);
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
                        EXPECT_EQ(subscribe(1, onEvent, caller), KOR_IIL_OK);
                        EXPECT_EQ(cancel(1, onEvent, caller), KOR_IIL_OK);
                    }
                });
        for (std::thread& thread : threads)
            thread.join();
    }
    EXPECT_EQ(service.publish(1), 0u);
}

// --- The end of a peer -------------------------------------------------------------------------------------------------------

TEST_F(EventsTest, SubscriptionsEndWithTheService)
{
    for (int i = 0; i < 5; ++i)
    {
        RunningService service;
        EXPECT_EQ(subscribe(), KOR_IIL_OK) << "round " << i;
        EXPECT_EQ(service.publish(1), 1u);
        ASSERT_TRUE(inbox_.waitFor(static_cast<std::size_t>(i) + 1));
    }
    EXPECT_EQ(cancel(), KOR_IIL_BAD_EVT);
    EXPECT_EQ(subscribe(), KOR_IIL_UNKNOWN_DST_ID);
}

TEST_F(EventsTest, ARestartedServiceHasNoSubscribers)
{
    {
        RunningService service;
        ASSERT_EQ(subscribe(), KOR_IIL_OK);
    }
    RunningService service;
    EXPECT_EQ(service.publish(1), 0u);
    EXPECT_EQ(cancel(), KOR_IIL_BAD_EVT);
    EXPECT_EQ(subscribe(), KOR_IIL_OK);
    EXPECT_EQ(service.publish(1), 1u);
    EXPECT_TRUE(inbox_.waitFor(1));
    EXPECT_EQ(cancel(), KOR_IIL_OK);
}

// It gets what is in its queue, and loses its subscriptions; other subscribers are not affected.
TEST_F(EventsTest, ASubscriberThatDoesNotTakeItsEventsIsDisconnected)
{
    RunningService service;
    Peer witness = Peer::connectTo(kService);
    ASSERT_EQ(subscribeByHand(witness, 2), KOR_IIL_OK);

    held = true;
    ASSERT_EQ(subscribe(1, onEventHeld), KOR_IIL_OK);
    std::uint32_t taken = 0;
    const std::string data(KOR_IIL_MAX_LENGTH, 'x');
    while (service.publish(1, data) == 1)
        ASSERT_LT(++taken, 100000u);
    EXPECT_GT(taken, 0u);
    EXPECT_EQ(service.publish(2, "for the witness"), 1u);
    auto packet = std::make_unique<koriil::Packet>();
    EXPECT_EQ(witness.receive(*packet), ssize_t{sizeof(koriil::PacketHeader) + 15});
    held = false;
    EXPECT_EQ(cancel(1, onEventHeld), KOR_IIL_BAD_EVT);
}

// The handler of a lost subscription may still be running: cancelling waits for it all the same.
TEST_F(EventsTest, CancelWaitsForAHandlerOfALostSubscription)
{
    held = true;
    {
        RunningService service;
        ASSERT_EQ(subscribe(1, onEventHeld), KOR_IIL_OK);
        service.publish(1);
        ASSERT_TRUE(eventually([] { return entered.load(); }));
    }
    EXPECT_EQ(cancel(1, onEvent), KOR_IIL_BAD_EVT) << "another handler, not running";
    EXPECT_EQ(runs, 0);

    std::atomic<bool> returned{false};
    std::thread canceller(
        [&]
        {
            EXPECT_EQ(cancel(1, onEventHeld), KOR_IIL_BAD_EVT);
            EXPECT_EQ(runs, 1);
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
    ASSERT_EQ(subscribe(), KOR_IIL_OK);
    Child child([] { return cancel() == KOR_IIL_BAD_EVT ? 0 : 1; });
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(service.publish(1), 1u);
    EXPECT_TRUE(inbox_.waitFor(1));
    EXPECT_EQ(cancel(), KOR_IIL_OK);
}

// The child calls over a connection of its own and, where it can start the thread for events, subscribes.
TEST_F(EventsTest, AChildStartsAfresh)
{
    RunningService service;
    ASSERT_EQ(subscribe(), KOR_IIL_OK);
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
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(service.publish(1), 1u) << "the parent's remains";
    EXPECT_EQ(cancel(), KOR_IIL_OK);
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
    EXPECT_EQ(service.publish(1), 0u);
    EXPECT_EQ(callOnce(), KOR_IIL_OK);
}

// A service that was restarted between the channel's last look and the request does not know the channel.
TEST_F(EventsTest, AnUnknownChannelIsReplacedOnce)
{
    ScriptedService service(
        [](ScriptedService& self)
        {
            const auto refuseSubscription = [](Peer& caller, Peer& channel)
            {
                const koriil::PacketHeader request = caller.receiveHeader();
                ASSERT_EQ(request.kind, koriil::PacketKind::kSubscribe);
                koriil::PacketHeader reply = replyTo(request, 0);
                reply.status = KOR_IIL_BAD_EVT;
                ASSERT_TRUE(caller.send(reply));
                EXPECT_TRUE(channel.hasEnded());
            };
            Peer channel = self.welcome();
            Peer caller = self.welcome();
            refuseSubscription(caller, channel);
            Peer secondChannel = self.welcome();
            refuseSubscription(caller, secondChannel);
        });
    EXPECT_EQ(subscribe(), KOR_IIL_BAD_EVT) << "after the second time";
}

// A packet that is no valid event is dropped, and the next event is delivered.
TEST_F(EventsTest, MalformedEventsAreDropped)
{
    {
        ScriptedService service(
            [](ScriptedService& self)
            {
                Peer channel = self.welcome();
                Peer caller = self.welcome();
                const koriil::PacketHeader subscription = caller.receiveHeader();
                ASSERT_EQ(subscription.kind, koriil::PacketKind::kSubscribe);
                ASSERT_EQ(subscription.connection, kScriptedChannel);
                ASSERT_TRUE(caller.send(replyTo(subscription, 0)));

                koriil::PacketHeader event;
                event.kind = koriil::PacketKind::kEvent;
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
                ASSERT_TRUE(channel.hasEnded()) << "it was the last subscription";
            });
        ASSERT_EQ(subscribe(), KOR_IIL_OK);
        ASSERT_TRUE(inbox_.waitFor(1));
        EXPECT_EQ(inbox_.events[0].data, "good");
        EXPECT_EQ(cancel(), KOR_IIL_OK);
    }
    EXPECT_EQ(inbox_.count(), 1u);
}

} // namespace
} // namespace host_test
