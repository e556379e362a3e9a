"""Events, waited for one by one, iterated over, and awaited."""
import asyncio
import gc
import os
import queue
import subprocess
import sys
import threading
import weakref

import pytest

import tarn
from tarn import events as module
from tarn.simulated import SimulatedGateway
from waiting import AMPLE



def test_an_event_has_number_name_and_the_fields_of_its_data(tarn_gateway: SimulatedGateway) -> None:
    with tarn_gateway.events() as events:
        tarn_gateway.interface("wifi0").set_channel(44)
        event = events.next(AMPLE)
    assert (event.number, event.name) == (tarn.EVT_RADIO_OPR_CHANNEL_CHANGED, "EVT_RADIO_OPR_CHANNEL_CHANGED")
    assert (event.data.radioId, event.data.channel) == (1, 44)


def test_events_come_in_their_order_and_only_those_that_were_asked_for(tarn_gateway: SimulatedGateway) -> None:
    with tarn_gateway.events("EVT_RADIO_OPR_CHANNEL_CHANGED", 4) as events:
        for channel in (40, 44, 48):
            tarn_gateway.publish("EVT_RADIO_STATUS_CHANGED", b"not asked for")
            assert tarn_gateway.publish(2, {"radioId": 1, "channel": channel}) == 1
        assert tarn_gateway.publish(tarn.EVT_AP_ASSOCIATED_CHANGED, b"\x0a\x0b") == 1
        received = [events.next(AMPLE) for _ in range(4)]
    assert [event.data.channel for event in received[:3]] == [40, 44, 48]
    assert received[3].data == b"\x0a\x0b"  # not as long as the layout has it


def test_iterating_ends_when_the_subscription_is_closed(tarn_gateway: SimulatedGateway) -> None:
    events = tarn_gateway.events(1)
    tarn_gateway.publish(1, b"first")
    tarn_gateway.publish(1, b"second")
    seen = []
    for event in events:
        seen.append(bytes(event.data))
        if len(seen) == 2:
            events.close()
    assert seen == [b"first", b"second"]
    assert tarn_gateway.publish(1) == 0


def test_closing_ends_the_wait_of_another_thread(tarn_gateway: SimulatedGateway) -> None:
    events = tarn_gateway.events(1)
    waiting = threading.Thread(target=lambda: list(events))
    waiting.start()
    events.close()
    waiting.join(AMPLE)
    assert not waiting.is_alive()


def test_no_event_in_time_is_a_timeout(tarn_gateway: SimulatedGateway) -> None:
    with tarn_gateway.events(1) as events, pytest.raises(TimeoutError, match="no event within 0.01 s"):
        events.next(timeout=0.01)


def test_events_are_awaited_by_async_for(tarn_gateway: SimulatedGateway) -> None:
    async def received() -> list[bytes]:
        seen = []
        with tarn_gateway.events(1) as events:

            async def publish() -> None:
                for data in (b"one", b"two", b"three"):
                    await asyncio.sleep(0.01)
                    tarn_gateway.publish(1, data)

            publishing = asyncio.create_task(publish())
            async for event in events:
                seen.append(bytes(event.data))
                if len(seen) == 3:
                    events.close()
            await publishing
        return seen

    assert asyncio.run(asyncio.wait_for(received(), AMPLE)) == [b"one", b"two", b"three"]


def test_an_await_that_was_cancelled_takes_no_event(tarn_gateway: SimulatedGateway) -> None:
    async def received() -> bytes:
        with tarn_gateway.events(1) as events:
            with pytest.raises(asyncio.TimeoutError):
                await asyncio.wait_for(events.__anext__(), 0.01)
            assert not events._inbox.waiting
            tarn_gateway.publish(1, b"the only one")
            return bytes((await asyncio.wait_for(events.__anext__(), AMPLE)).data)

    assert asyncio.run(received()) == b"the only one"


def test_two_subscriptions_to_the_same_event_receive_it_both(tarn_gateway: SimulatedGateway) -> None:
    with tarn_gateway.events(1) as one, tarn_gateway.events(1) as other:
        assert tarn_gateway.publish(1, b"both") == 1  # one process
        assert one.next(AMPLE).data == other.next(AMPLE).data == b"both"


def test_the_end_of_the_service_is_told_and_its_restart_brings_events_again() -> None:
    with SimulatedGateway() as first:
        events = tarn.Gateway("bench").events(1)
        directory = first.directory
        process = first._process
        assert process is not None
        process.kill()
        process.wait()
        with pytest.raises(tarn.IpcError, match="RX_FAIL"):
            events.next(AMPLE)
        again = subprocess.Popen(["tarn-gateway", f"--directory={directory}"], stdout=subprocess.PIPE)
        assert again.stdout is not None
        assert again.stdout.readline() == b"ready\n"
        first._process = again
        for _ in range(1000):
            if first.publish(1, b"again"):
                break
            threading.Event().wait(0.01)
        assert events.next(AMPLE).data == b"again"
        events.close()
        again.stdout.close()


def test_without_a_service_there_is_no_subscription() -> None:
    with pytest.raises(tarn.NoServiceError, match="KorIilKeepSubscription: no service TARN is running"):
        tarn.Gateway("bench").events()


def test_a_forgotten_subscription_ends_and_its_handler_is_used_again(tarn_gateway: SimulatedGateway) -> None:
    events = tarn.Gateway("bench").events(1)
    gone = weakref.ref(events)
    del events
    gc.collect()
    assert gone() is None
    assert tarn_gateway.publish(1) == 0
    free = len(module._Slot._free)
    for _ in range(100):
        tarn_gateway.events(1, 2).close()
    assert len(module._Slot._free) == free


def test_events_that_arrive_while_subscriptions_are_dropped_harm_nobody(tarn_gateway: SimulatedGateway) -> None:
    enough = threading.Event()

    def publish() -> None:
        while not enough.is_set():
            tarn_gateway.publish(1, b"x" * 100)

    publishing = threading.Thread(target=publish)
    publishing.start()
    for _ in range(200):
        tarn.Gateway("bench").events(1, 2, 3)
    gc.collect()
    enough.set()
    publishing.join(AMPLE)
    with tarn_gateway.events(1) as events:
        tarn_gateway.publish(1, b"last")
        assert events.next(AMPLE).data == b"last"


def test_a_process_ends_with_a_subscription_that_is_still_open(tarn_gateway: SimulatedGateway) -> None:
    script = "import tarn; events = tarn.Gateway('other').events(); print(len(tarn.TarnGetRadio('other', 1)))"
    result = subprocess.run(
        [sys.executable, "-c", script], capture_output=True, text=True, timeout=AMPLE, env=os.environ, check=False
    )
    assert (result.returncode, result.stdout, result.stderr) == (0, "9552\n", "")


def test_a_handler_is_called_for_each_event_until_it_is_cancelled(tarn_gateway: SimulatedGateway) -> None:
    received: "queue.Queue[tarn.Event]" = queue.Queue()
    tarn.tarnSubscribeEvent("bench", 2, received.put)
    tarn_gateway.interface("wifi0").set_channel(44)
    event = received.get(timeout=AMPLE)
    assert (event.name, event.data.channel) == ("EVT_RADIO_OPR_CHANNEL_CHANGED", 44)
    tarn.tarnCancelEvent("bench", 2, received.put)
    assert tarn_gateway.publish(2, b"") == 0
    assert received.empty()


def test_a_handler_may_cancel_itself_and_be_subscribed_again(tarn_gateway: SimulatedGateway) -> None:
    received: "queue.Queue[bytes]" = queue.Queue()

    def once(event: tarn.Event) -> None:
        tarn.tarnCancelEvent("bench", 1, once)
        received.put(bytes(event.data))

    for data in (b"one", b"two"):
        tarn.tarnSubscribeEvent("bench", 1, once)
        assert tarn_gateway.publish(1, data) == 1
        assert received.get(timeout=AMPLE) == data
    assert tarn_gateway.publish(1) == 0


def test_a_subscription_in_the_librarys_way_fails_as_the_library_says(tarn_gateway: SimulatedGateway) -> None:
    handler = print
    with pytest.raises(tarn.RefusedError, match="tarnSubscribeEvent refused an argument: evt is invalid; nothing was sent"):
        tarn.tarnSubscribeEvent("bench", 6, handler)
    with pytest.raises(tarn.RefusedError, match="tarnCancelEvent refused an argument: id is invalid"):
        tarn.tarnCancelEvent("", 1, handler)
    with pytest.raises(tarn.IpcError, match="BAD_EVT"):
        tarn.tarnCancelEvent("bench", 1, handler)
    tarn.tarnSubscribeEvent("bench", 1, handler)
    with pytest.raises(tarn.IpcError, match="CONFLICT_ID"):
        tarn.tarnSubscribeEvent("bench", 1, handler)
    assert tarn_gateway.publish(1) == 1  # the first holds
    tarn.tarnCancelEvent("bench", 1, handler)
    with pytest.raises(tarn.IpcError, match="BAD_EVT"):
        tarn.tarnCancelEvent("bench", 1, handler)


def test_without_a_service_a_handler_is_not_subscribed() -> None:
    with pytest.raises(tarn.NoServiceError, match="tarnSubscribeEvent: no service TARN is running"):
        tarn.tarnSubscribeEvent("bench", 1, print)
