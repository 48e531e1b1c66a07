#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""ux-view as its viewers see it: a small VNC client of its own compares what arrives with the
screen's memory, and what it sends with the message queue."""

import ctypes
import mmap
import os
import re
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

SIMULATOR, VIEWER = "", ""  # the programs, from the command line
LIMIT_S = 20
LIBC = ctypes.CDLL(None, use_errno=True)
IPC_CREAT, IPC_EXCL, IPC_RMID, IPC_NOWAIT = 0o1000, 0o2000, 0, 0o4000
QUEUE_PROJECT = 40
XK_DOWN, XK_OK, XK_F5 = 0xFF54, 0xFF0D, 0xFFC2


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
    """The least of a VNC viewer: no security, raw pixels."""

    def __init__(self, address, port):
        self.socket = socket.create_connection((address, port), LIMIT_S)
        self.version = self.read(12)
        self.send(b"RFB 003.008\n")
        self.security = self.read(self.read(1)[0])

    def start(self):
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
        self.simulator = self.run_program(SIMULATOR, "--headless", "--verbose", "--size", size,
                                          "--format", form, "--", *(host or ("sleep", "60")))
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
        viewer = self.run_program(VIEWER, "--port", "0", *words)
        self.port = int(viewer.find(r"vnc \S+:(\d+)\n", viewer.out))
        return viewer

    def connect(self, address="127.0.0.1"):
        client = Client(address, self.port)
        self.addCleanup(client.close)
        return client

    def refusal(self, *words):
        done = subprocess.run([VIEWER, *words], capture_output=True, text=True, timeout=LIMIT_S,
                              check=False)
        return done.returncode, done.stderr


class Pictures(ViewTest):
    def test_a_simulators_screen_of_32_bits_arrives_byte_for_byte(self):
        self.view(self.simulate("67x41", "argb8888"))
        client = self.connect().start()
        self.assertEqual((client.width, client.height), (67, 41))
        self.assertEqual(client.format, (32, 24, 0, 1, 255, 255, 255, 16, 8, 0))
        self.assertEqual(client.picture(), self.memory[:])

    def test_rgb565_arrives_byte_for_byte(self):
        self.view(self.simulate("33x19", "rgb565"))
        client = self.connect().start()
        self.assertEqual(client.format, (16, 16, 0, 1, 31, 63, 31, 11, 5, 0))
        self.assertEqual(client.picture(), self.memory[:])

    def test_a_framebuffer_device_arrives_byte_for_byte(self):
        """The viewer itself is the simulated host: /dev/fb0 is the simulator's."""
        for form in ("argb8888", "rgb565"):
            with self.subTest(form):
                self.simulate("50x30", form, VIEWER, "--port", "0", "/dev/fb0")
                self.port = int(self.simulator.find(r"vnc \S+:(\d+)\n", self.simulator.out))
                client = self.connect().start()
                self.assertEqual(client.name, "/dev/fb0")
                self.assertEqual(client.picture(), self.memory[:])

    def test_an_update_tells_the_changed_rows_only(self):
        self.view(self.simulate("40x64", "argb8888"))
        client = self.connect().start()
        client.picture()
        row = 40 * 4
        self.memory[20 * row:21 * row] = b"\x55" * row  # a single row: found by sampling
        self.assertEqual(client.update(1), {(0, 20, 40): b"\x55" * row})
        self.memory[63 * row + 8] ^= 255  # one byte
        self.assertEqual(client.update(1), {(0, 63, 40): self.memory[63 * row:]})

    def test_what_changed_while_nobody_looked_is_shown_to_the_next(self):
        self.view(self.simulate("40x20", "argb8888"))
        client = self.connect().start()
        client.picture()
        client.close()
        self.memory[:] = b"\x33" * self.bytes
        self.assertEqual(self.connect().start().picture(), b"\x33" * self.bytes)


class Input(ViewTest):
    def setUp(self):
        super().setUp()
        queue_folder = self.folder.name
        self.queue = Queue(queue_folder)
        self.addCleanup(self.queue.remove)
        self.viewer = self.view("--queue-path", queue_folder, self.simulate("60x40", "argb8888"))

    def test_keys_reach_the_queue_in_order_and_unknown_ones_do_not(self):
        client = self.connect().start()
        for symbol in (XK_DOWN, XK_F5, ord("0"), ord("9"), ord("."), XK_OK):
            client.key(symbol)
        for code in (20, 1, 10, 35, 23):
            self.assertEqual(self.queue.receive(), (code, 1, 0, 0))
        time.sleep(0.2)
        self.assertTrue(self.queue.is_empty())

    def test_pressing_the_pointer_is_a_touch_and_moving_it_is_none(self):
        client = self.connect().start()
        client.pointer(0, 3, 4)
        client.pointer(1, 12, 34)
        client.pointer(1, 13, 35)
        client.pointer(0, 13, 35)
        client.pointer(4, 20, 20)  # the right button
        client.pointer(0, 20, 20)
        client.pointer(1, 500, 600)  # outside: the last pixel
        self.assertEqual(self.queue.receive(), (0, 2, 12, 34))
        self.assertEqual(self.queue.receive(), (0, 2, 59, 39))

    def test_a_queue_that_is_gone_is_told_once_and_a_new_one_is_found(self):
        client = self.connect().start()
        self.queue.remove()
        client.key(XK_OK)
        eventually(self.viewer.err)
        client.key(XK_OK)
        time.sleep(0.2)
        self.assertEqual(self.viewer.err(), f"ux-view: there is no input queue for "
                         f"{self.folder.name}; is the host running?\n")
        self.queue = Queue(self.folder.name)
        self.addCleanup(self.queue.remove)
        client.key(XK_DOWN)
        self.assertEqual(self.queue.receive(), (20, 1, 0, 0))


class Addresses(ViewTest):
    def listening(self, viewer):
        """Addresses at which the process listens, by the kernel's tables."""
        inodes = set()
        for name in os.listdir(f"/proc/{viewer.process.pid}/fd"):
            target = os.readlink(f"/proc/{viewer.process.pid}/fd/{name}")
            if target.startswith("socket:["):
                inodes.add(target[8:-1])
        found = []
        for table in ("tcp", "tcp6"):
            for line in Path("/proc/net", table).read_text().splitlines()[1:]:
                fields = line.split()
                if fields[3] == "0A" and fields[9] in inodes:
                    found.append(fields[1].rsplit(":", 1)[0])
        return sorted(found)

    def test_both_loopbacks_are_served_and_nothing_else(self):
        viewer = self.view(self.simulate("32x16", "argb8888"))
        for address in ("127.0.0.1", "::1"):
            self.assertEqual(self.connect(address).start().picture(), self.memory[:])
        self.assertEqual(self.listening(viewer),
                         ["00000000000000000000000001000000", "0100007F"])

    def test_a_single_ipv6_address_is_enough(self):
        viewer = self.view("--listen", "::1", self.simulate("32x16", "argb8888"))
        self.assertEqual(self.connect("::1").start().picture(), self.memory[:])
        self.assertEqual(self.listening(viewer), ["00000000000000000000000001000000"])

    def test_other_addresses_want_a_password(self):
        for address in ("0.0.0.0", "::", "192.0.2.1", "::ffff:127.0.0.1"):
            with self.subTest(address):
                self.assertEqual(self.refusal("--port", "0", "--listen", address, "/dev/null"), (
                    2, f"ux-view: listening at {address} wants a --password-file; "
                       "see ux-view --help\n"))

    def test_with_a_password_nobody_gets_in_without(self):
        Path(self.folder.name, "password").write_text("secret\n")
        self.view("--password-file", self.folder.name + "/password",
                  self.simulate("32x16", "argb8888"))
        client = self.connect()
        self.assertEqual(client.security, b"\x02")  # VNC authentication, and not "none"
        client.send(b"\x02")
        client.read(16)
        client.send(bytes(16))
        self.assertEqual(client.unpack(">I"), (1,))
        client = self.connect()
        client.send(b"\x01")  # "none" all the same
        with self.assertRaises((EOFError, ConnectionError)):
            client.read(4 + 4 + 64)
            client.read(4096)

    def test_the_right_password_opens(self):
        Path(self.folder.name, "password").write_text("secret\n")
        self.view("--password-file", self.folder.name + "/password",
                  self.simulate("32x16", "argb8888"))
        client = self.connect()
        client.send(b"\x02")
        client.send(encrypted(client.read(16), b"secret"))
        self.assertEqual(client.unpack(">I"), (0,))

    def test_a_busy_port_is_named(self):
        folder = self.simulate("32x16", "argb8888")
        with socket.create_server(("127.0.0.1", 0)) as other:
            port = other.getsockname()[1]
            self.assertEqual(self.refusal("--port", str(port), folder), (
                1, f"ux-view: cannot listen at 127.0.0.1:{port}: Address already in use\n"))


def encrypted(challenge, password):
    """The challenge by DES, the key's bytes with their bits in reverse order."""
    key = bytes(int(f"{byte:08b}"[::-1], 2) for byte in password.ljust(8, b"\0"))
    return subprocess.run(
        ["openssl", "enc", "-des-ecb", "-nopad", "-provider", "legacy", "-provider", "default",
         "-K", key.hex()], input=challenge, capture_output=True, check=True).stdout


class Ends(ViewTest):
    def test_wrong_sources_are_named(self):
        plain = Path(self.folder.name, "plain")
        plain.write_bytes(b"abc")
        note = Path(self.folder.name, "screen")
        for source, words in (
                ("/dev/ux-nothing", "cannot open /dev/ux-nothing: No such file or directory"),
                (str(plain), f"{plain} is no framebuffer device"),
                ("/dev/null", "/dev/null is no framebuffer device"),
                (self.folder.name, f"{self.folder.name} is no simulator's folder: it holds no "
                                   "file 'screen'")):
            self.assertEqual(self.refusal("--port", "0", source), (1, f"ux-view: {words}\n"))
        for text in ("", "9x9x32\n", "9x9x24\n/proc/1/fd/1\n/tmp\n", "9x9x32\n/etc\n/tmp\n",
                     "0x9x32\n/proc/1/fd/1\n/tmp\n", "9x9999x32\n/proc/1/fd/1\n/tmp\n"):
            note.write_text(text)
            self.assertEqual(self.refusal("--port", "0", self.folder.name), (
                1, f"ux-view: {note} does not describe a simulator's screen\n"))

    def test_memory_too_small_for_the_size_is_refused(self):
        folder = self.simulate("32x16", "argb8888")
        memory = Path(folder, "screen").read_text().split("\n")[1]
        Path(self.folder.name, "screen").write_text(f"800x600x32\n{memory}\n/tmp\n")
        self.assertEqual(self.refusal("--port", "0", self.folder.name), (
            1, f"ux-view: {memory} is not the memory of a screen of this size\n"))

    def test_wrong_options_end_with_status_2(self):
        long, empty = Path(self.folder.name, "long"), Path(self.folder.name, "empty")
        long.write_text("123456789\n")
        empty.write_text("\n")
        for words, text in (
                (["--port", "x"], "--port wants 0 to 65535, not 'x'"),
                (["--port", "65536"], "--port wants 0 to 65535, not '65536'"),
                (["--listen", "here"],
                 "--listen wants an IPv4 or IPv6 address in numbers, not 'here'"),
                (["--listen", "::1"] * 3, "--listen may be given 2 times"),
                (["--queue-path", ""], "--queue-path wants a path"),
                (["a", "b"], "only one source can be shown, not 'b' too"),
                (["--bad"], "unknown option or stray argument in '--bad'"),
                (["--port"], "'--port' wants an argument")):
            self.assertEqual(self.refusal(*words),
                             (2, f"ux-view: {text}; see ux-view --help\n"))
        for file in (long, empty):
            self.assertEqual(self.refusal("--password-file", str(file)), (
                2, f"ux-view: the password in {file} must have 1 to 8 characters\n"))
        self.assertEqual(self.refusal("--password-file", "/nowhere")[0], 1)

    def test_help_and_version_go_to_standard_output(self):
        for option, start in (("--help", "Usage: ux-view "), ("--version", "ux-view ")):
            done = subprocess.run([VIEWER, option], capture_output=True, text=True, check=False)
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            self.assertTrue(done.stdout.startswith(start))

    def test_the_viewer_ends_with_its_simulator_even_a_killed_one(self):
        viewer = self.view(self.simulate("32x16", "argb8888"))
        self.simulator.process.kill()
        self.assertEqual(viewer.process.wait(LIMIT_S), 1)
        self.assertEqual(viewer.err(), "ux-view: the simulator has ended\n")

    def test_a_killed_viewer_leaves_the_simulator_running(self):
        viewer = self.view(self.simulate("32x16", "argb8888"))
        viewer.process.kill()
        viewer.process.wait()
        self.assertIsNone(self.simulator.process.poll())

    def test_signals_end_it(self):
        folder = self.simulate("32x16", "argb8888")
        for number in (signal.SIGINT, signal.SIGTERM):
            viewer = self.view(folder)
            viewer.process.send_signal(number)
            self.assertEqual(viewer.process.wait(LIMIT_S), 128 + number)


class Speed(ViewTest):
    def cpu_seconds(self, process):
        fields = Path(f"/proc/{process.pid}/stat").read_text().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def test_a_still_screen_costs_less_than_5_percent_of_a_core(self):
        seconds = 3
        viewer = self.view(self.simulate("1280x720", "argb8888"))
        client = self.connect().start()
        client.picture()
        client.send(struct.pack(">BBHHHH", 3, 1, 0, 0, 1280, 720))  # waits for a change
        before = self.cpu_seconds(viewer.process)
        time.sleep(seconds)
        spent = (self.cpu_seconds(viewer.process) - before) / seconds
        print(f"still 1280x720 at 60 Hz: {100 * spent:.1f} % of a core", file=sys.stderr)
        self.assertLess(spent, 0.05)


class Hostile(ViewTest):
    def test_garbage_and_half_messages_do_not_end_it(self):
        viewer = self.view(self.simulate("32x16", "argb8888"))
        for garbage in (b"\xff" * 4096, b"RFB 003.008\n\x01\x01" + b"\xee" * 64,
                        b"RFB 003.008\n\x01\x01\x06\0\0\0\xff\xff\xff\xff", b"GET "):
            with socket.create_connection(("127.0.0.1", self.port), LIMIT_S) as other:
                other.sendall(garbage)
        self.assertEqual(self.connect().start().picture(), self.memory[:])
        self.assertIsNone(viewer.process.poll())


if __name__ == "__main__":
    SIMULATOR, VIEWER = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
