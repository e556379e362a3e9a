"""Instructions and allocations of a call in a program of harness/cases.h."""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

# callgrind counts a repeated string instruction once for each byte: the C library shall not use them in memset and memcpy.
_TUNABLES = "glibc.cpu.x86_rep_movsb_threshold=100000:glibc.cpu.x86_rep_stosb_threshold=100000"


def count(program):
    """{name: {"instructions": ..., "allocations": ...}}"""
    with tempfile.TemporaryDirectory() as directory:
        command = ["valgrind", "-q", "--tool=callgrind", "--collect-atstart=no", f"--callgrind-out-file={directory}/call",
                   str(program), "--count"]
        done = subprocess.run(command, capture_output=True, text=True,
                              env=dict(os.environ, GLIBC_TUNABLES=_TUNABLES))
        if done.returncode != 0:
            sys.exit(f"{command}: exit code {done.returncode}\n{done.stderr}")
        counts = {}
        for line in done.stdout.splitlines():
            name, allocations = line.rsplit(" ", 1)
            counts[name] = {"allocations": int(allocations)}
        for path in pathlib.Path(directory).glob("call.*"):
            text = path.read_text(encoding="utf-8")
            name = re.search(r"^desc: Trigger: Client Request: (.*)$", text, re.MULTILINE)[1]
            counts[name]["instructions"] = int(re.search(r"^totals: (\d+)", text, re.MULTILINE)[1])
    return counts
