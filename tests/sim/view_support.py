# SPDX-License-Identifier: MIT
"""What the tests of ux-view work with: programs, a host's message queue, and the least of a VNC
viewer."""

import ctypes
import mmap
import os
import re
import socket
import struct
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

LIMIT_S = 20
LIBC = ctypes.CDLL(None, use_errno=True)
IPC_CREAT, IPC_EXCL, IPC_RMID, IPC_NOWAIT = 0o1000, 0o2000, 0, 0o4000
QUEUE_PROJECT = 40
PROGRAMS = {}  # paths by name, from the command line


def eventually(condition):
    deadline = time.monotonic() + LIMIT_S
    while time.monotonic() < deadline:
        result = condition()
        if result:
            return result
        time.sleep(0.01)
    raise AssertionError("it never came true")


class Program:
    """A program whose output lines can be waited for; killed at the end if need be."""

    def __init__(self, folder, *words):
        self.out_path = tempfile.mktemp(dir=folder)
        self.err_path = tempfile.mktemp(dir=folder)
        with open(self.out_path, "wb") as out, open(self.err_path, "wb") as err:
            self.process = subprocess.Popen(words, stdout=out, stderr=err,
                                            stdin=subprocess.DEVNULL)

    def out(self):
        return Path(self.out_path).read_text()

    def err(self):
        return Path(self.err_path).read_text()

    def find(self, pattern, where):
        def look():
            found = re.search(pattern, where())
            if not found and self.process.poll() is not None:
                raise AssertionError(f"ended without {pattern}: {self.out()}{self.err()}")
            return found
        return eventually(look).group(1)

    def end(self):
        if self.process.poll() is None:
            self.process.terminate()
            try:
                self.process.wait(LIMIT_S)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()


class Queue:
    """A message queue named by a folder, as a host makes it."""

    def __init__(self, folder):
        self.id = LIBC.msgget(LIBC.ftok(folder.encode(), QUEUE_PROJECT),
                              IPC_CREAT | IPC_EXCL | 0o600)
        assert self.id != -1

    def receive(self):
        buffer = ctypes.create_string_buffer(8 + 276)
        size = eventually(lambda: max(0, LIBC.msgrcv(self.id, buffer, 276, 0, IPC_NOWAIT)))
        assert size == 16, size
        return struct.unpack_from("=iiii", buffer, 8)

    def is_empty(self):
        buffer = ctypes.create_string_buffer(8 + 276)
        return LIBC.msgrcv(self.id, buffer, 276, 0, IPC_NOWAIT) == -1

    def remove(self):
        LIBC.msgctl(self.id, IPC_RMID, None)


class Client:
    """The least of a VNC viewer: raw pixels."""

    def __init__(self, address, port):
        self.socket = socket.create_connection((address, port), LIMIT_S)
        self.version = self.read(12)
        self.send(b"RFB 003.008\n")
        self.security = self.read(self.read(1)[0])

    def start(self, password=None):
        if password:
            self.send(b"\x02")
            self.send(encrypted(self.read(16), password))
        else:
            self.send(b"\x01")
        assert self.unpack(">I") == (0,)
        self.send(b"\x01")
        self.width, self.height = self.unpack(">HH")
        self.format = self.unpack(">BBBBHHHBBBxxx")
        self.name = self.read(self.unpack(">I")[0]).decode()
        self.send(struct.pack(">BxHi", 2, 1, 0))
        return self

    def read(self, size):
        result = b""
        while len(result) < size:
            part = self.socket.recv(size - len(result))
            if not part:
                raise EOFError
            result += part
        return result

    def unpack(self, form):
        return struct.unpack(form, self.read(struct.calcsize(form)))

    def send(self, data):
        self.socket.sendall(data)

    def key(self, symbol):
        for down in (1, 0):
            self.send(struct.pack(">BBxxI", 4, down, symbol))

    def pointer(self, buttons, x, y):
        self.send(struct.pack(">BBHH", 5, buttons, x, y))

    def update(self, incremental):
        """One update: the rows it told, as {(x, y, width): bytes}."""
        self.send(struct.pack(">BBHHHH", 3, incremental, 0, 0, self.width, self.height))
        kind, count = self.unpack(">BxH")
        assert kind == 0, kind
        rows = {}
        for _ in range(count):
            x, y, width, height, encoding = self.unpack(">HHHHi")
            assert encoding == 0, encoding
            for row in range(y, y + height):
                rows[(x, row, width)] = self.read(width * self.format[0] // 8)
        return rows

    def picture(self):
        rows = self.update(0)
        assert sorted(rows) == [(0, row, self.width) for row in range(self.height)]
        return b"".join(rows[(0, row, self.width)] for row in range(self.height))

    def close(self):
        self.socket.close()


def encrypted(challenge, password):
    """The challenge by DES, the key's bytes with their bits in reverse order."""
    key = bytes(int(f"{byte:08b}"[::-1], 2) for byte in password.ljust(8, b"\0"))
    return subprocess.run(
        ["openssl", "enc", "-des-ecb", "-nopad", "-provider", "legacy", "-provider", "default",
         "-K", key.hex()], input=challenge, capture_output=True, check=True).stdout


def processes_of(viewer):
    """The numbers of the viewer's process and of those that serve its viewers."""
    own = viewer.process.pid
    children = Path(f"/proc/{own}/task/{own}/children").read_text().split()
    return [own, *map(int, children)]


class ViewTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory(prefix="ux-view-test.")
        self.addCleanup(self.folder.cleanup)

    def run_program(self, *words):
        program = Program(self.folder.name, *words)
        self.addCleanup(program.end)
        return program

    def simulate(self, size, form, *host):
        """A simulator; its folder and its screen's memory, filled with a pattern."""
        self.simulator = self.run_program(
            PROGRAMS["simulator"], "--headless", "--verbose", "--size", size, "--format", form,
            "--", *(host or ("sleep", "60")))
        folder = self.simulator.find(r"for ux-view (\S+)\n", self.simulator.err)
        note = Path(folder, "screen").read_text().split("\n")
        width, height, bits = map(int, note[0].split("x"))
        self.bytes = width * height * bits // 8
        file = os.open(note[1], os.O_RDWR)
        self.memory = mmap.mmap(file, self.bytes)
        os.close(file)
        self.addCleanup(self.memory.close)
        self.memory[:] = bytes((7 * at + at // 251) & 255 for at in range(self.bytes))
        return folder

    def view(self, *words):
        page = () if "--web-root" in words else ("--no-web",)
        viewer = self.run_program(PROGRAMS["viewer"], "--port", "0", *page, *words)
        self.port = int(viewer.find(r"vnc \S+:(\d+)\n", viewer.out))
        return viewer

    def connect(self, address="127.0.0.1"):
        client = Client(address, self.port)
        self.addCleanup(client.close)
        return client

    def refusal(self, *words):
        done = subprocess.run([PROGRAMS["viewer"], *words], capture_output=True, text=True,
                              timeout=LIMIT_S, check=False)
        return done.returncode, done.stderr


def run_tests(*names):
    """The programs of these names come first on the command line, then what unittest knows."""
    words = sys.argv[1:]
    PROGRAMS.update(zip(names, words))
    unittest.main(argv=sys.argv[:1] + words[len(names):])
