# SPDX-License-Identifier: MIT
"""A host in the simulator as a test sees it: its process, its screen's pixels, its message queue,
and moments at which it is held still."""

import contextlib
import ctypes
import fcntl
import mmap
import os
import select
import struct
import subprocess
import time
from pathlib import Path

LIMIT_S = 20
KEY, TOUCH = 1, 2  # kinds of messages
QUEUE_PROJECT = 40
LIBC = ctypes.CDLL(None, use_errno=True)


def eventually(condition, limit_s=LIMIT_S):
    deadline = time.monotonic() + limit_s
    while time.monotonic() < deadline:
        result = condition()
        if result:
            return result
        time.sleep(0.005)
    raise AssertionError(f"it did not come true within {limit_s} s")


def children(process):
    try:
        return [int(one) for one in Path(f"/proc/{process}/task/{process}/children")
                .read_text(encoding="ascii").split()]
    except FileNotFoundError:
        return []


class Simulated:
    """`words` are the options of the simulator, "--" and the host. It ends with the block."""

    def __init__(self, folder, simulator, *words, environment=None, output=subprocess.DEVNULL):
        self.error_path = Path(folder) / "errors"
        with open(self.error_path, "wb") as errors:
            self.process = subprocess.Popen(
                [simulator, "--headless", "--verbose", *map(str, words)], stdin=subprocess.DEVNULL,
                stdout=output, stderr=errors, env={**os.environ, **(environment or {})})
        note = eventually(self._note)
        self.width, self.height = (int(one) for one in note[0].split("x")[:2])
        with open(note[1], "rb") as memory:
            self.pixels = mmap.mmap(memory.fileno(), self.width * self.height * 4,
                                    mmap.MAP_SHARED, mmap.PROT_READ)
        self.queue_path = note[2]
        self.host = eventually(lambda: children(self.process.pid))[0]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.terminate()
            self.process.wait(LIMIT_S)

    def errors(self):
        return self.error_path.read_text(encoding="utf-8", errors="replace")

    def _note(self):
        for line in self.errors().splitlines():
            mark = "ux-sim: for ux-view "
            if line.startswith(mark):
                return (Path(line[len(mark):]) / "screen").read_text(encoding="utf-8").splitlines()
        assert self.process.poll() is None, self.errors()
        return None

    def pixel(self, x, y):
        """Red, green and blue as one number."""
        at = (y * self.width + x) * 4
        return struct.unpack_from("<I", self.pixels, at)[0] & 0xFFFFFF

    def open_queue(self):
        key = LIBC.ftok(self.queue_path.encode(), QUEUE_PROJECT)
        queue = LIBC.msgget(key, 0)
        assert queue != -1, os.strerror(ctypes.get_errno())
        return queue

    def resident_kib(self):
        """Of the host: everything, and of it what is the screen's memory."""
        total = screen = 0
        is_screen = False
        with open(f"/proc/{self.host}/smaps", encoding="utf-8") as maps:
            for line in maps:
                if line.startswith("Rss:"):
                    kib = int(line.split()[1])
                    total += kib
                    screen += kib if is_screen else 0
                elif not line.split(maxsplit=1)[0].endswith(":"):
                    is_screen = "/memfd:ux-sim" in line
        return total, screen


def key_message(code):
    """A message of the queue, with its type before it."""
    return struct.pack("@l", 1) + struct.pack("=iiii", code, KEY, 0, 0)


def touch_message(x, y):
    return struct.pack("@l", 1) + struct.pack("=iiii", 0, TOUCH, x, y)


def send(queue, message):
    payload = len(message) - struct.calcsize("@l")
    assert LIBC.msgsnd(queue, message, payload, 0) == 0, os.strerror(ctypes.get_errno())


class Stops:
    """Shots of a script during which simulator and host stand still: each is a pipe, which takes
    the whole shot only when it is let go."""

    SMALLEST_PIPE = 4096  # less than any shot

    def __init__(self, folder):
        self.folder = Path(folder)

    def make(self, name):
        """The script's line."""
        os.mkfifo(self.folder / f"{name}.png.part")  # where a shot is written before it is whole
        return f"shot {name}.png\n"

    @contextlib.contextmanager
    def met(self, name, run, limit_s):
        """The block runs while the shot is being written."""
        pipe = os.open(self.folder / f"{name}.png.part", os.O_RDONLY | os.O_NONBLOCK)
        fcntl.fcntl(pipe, fcntl.F_SETPIPE_SZ, self.SMALLEST_PIPE)
        deadline = time.monotonic() + limit_s
        while not select.select([pipe], [], [], 0.2)[0]:
            assert run.process.poll() is None, f"ended before {name}: {run.errors()[-2000:]}"
            assert time.monotonic() < deadline, f"no {name} within {limit_s} s"
        yield
        os.set_blocking(pipe, True)
        while os.read(pipe, 1 << 20):
            pass
        os.close(pipe)
