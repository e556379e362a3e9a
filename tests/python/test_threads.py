"""Many threads and processes over one gateway."""
import concurrent.futures
import os
import subprocess
import sys

import tarn
from tarn.simulated import SimulatedGateway


def test_threads_share_a_gateway_and_get_their_own_answers(tarn_gateway: SimulatedGateway) -> None:
    def ask(number: int) -> list[str]:
        wrong = []
        for turn in range(25):
            key, value = f"key{number}", f"value {number} {turn}"
            tarn_gateway.module.set_custom_value(key, value)
            answer = tarn_gateway.module.custom_value(key)
            wrong += [] if answer == value else [f"{key}: {answer}"]
        return wrong

    with concurrent.futures.ThreadPoolExecutor(8) as pool:
        assert [each for wrong in pool.map(ask, range(8)) for each in wrong] == []


def test_each_thread_is_told_its_own_failures(tarn_gateway: SimulatedGateway) -> None:
    def ask(number: int) -> set[object]:
        seen: set[object] = set()
        for _ in range(25):
            try:
                if number % 2:
                    tarn.Gateway("").log_level()
                else:
                    tarn_gateway.radio(9).is_ready()
            except tarn.TarnError as error:
                seen.add(type(error))
        return seen

    with concurrent.futures.ThreadPoolExecutor(8) as pool:
        assert list(pool.map(ask, range(8))) == [{tarn.StatusError}, {tarn.RefusedError}] * 4


def test_a_child_process_has_connections_of_its_own(tarn_gateway: SimulatedGateway) -> None:
    script = (
        "import os, tarn\n"
        "gateway = tarn.Gateway('bench')\n"
        "gateway.log_level()\n"
        "child = os.fork()\n"
        "for turn in range(200): assert gateway.module.errno_message(0) == 'done'\n"
        "if child: assert os.waitpid(child, 0)[1] == 0\n"
    )
    subprocess.run([sys.executable, "-c", script], check=True, timeout=60, env=os.environ)
