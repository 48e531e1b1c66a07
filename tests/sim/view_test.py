#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""ux-view as its viewers see it: a small VNC client compares what arrives with the
screen's memory, and what it sends with the message queue."""

import base64
import hashlib
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

from view_support import LIMIT_S, Client, Program, Queue, eventually

SIMULATOR, VIEWER = "", ""  # the programs, from the command line
XK_DOWN, XK_OK, XK_F5 = 0xFF54, 0xFF0D, 0xFFC2


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
        viewer = self.run_program(VIEWER, "--port", "0", *(words if "--web-root" in words
                                                           else ("--no-web", *words)))
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
                self.simulate("50x30", form, VIEWER, "--no-web", "--port", "0",
                              "/dev/fb0")
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
            self.assertEqual(self.refusal("--no-web", "--port", str(port), folder), (
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


class Web(ViewTest):
    def setUp(self):
        super().setUp()
        self.root = Path(self.folder.name, "root")
        (self.root / "core").mkdir(parents=True)
        (self.root / "vnc.html").write_text("<p>the page</p>")
        (self.root / "core" / "rfb.js").write_bytes(b"x" * 3000000)
        (self.root / ".hidden").write_text("secret")
        Path(self.folder.name, "outside").write_text("secret")
        self.viewer = self.view("--web-port", "0", "--web-root", str(self.root),
                                self.simulate("32x16", "argb8888"))
        self.web_port = int(self.viewer.find(r"web http://127\.0\.0\.1:(\d+)/\n",
                                             self.viewer.out))

    def ask(self, text, address="127.0.0.1"):
        """The status, the head and the body of what is answered."""
        with socket.create_connection((address, self.web_port), LIMIT_S) as connection:
            connection.sendall(text)
            answer = b""
            while part := connection.recv(65536):
                answer += part
        head, body = answer.split(b"\r\n\r\n", 1)
        return int(head.split()[1]), head.decode(), body

    def get(self, target, address="127.0.0.1"):
        return self.ask(b"GET " + target + b" HTTP/1.1\r\nHost: x\r\n\r\n", address)

    def test_files_of_the_page_are_served_on_both_loopbacks(self):
        for address in ("127.0.0.1", "::1"):
            status, head, body = self.get(b"/vnc.html?port=1", address)
            self.assertEqual((status, body), (200, b"<p>the page</p>"))
            self.assertIn("\r\nContent-Type: text/html; charset=utf-8\r\n", head)
        status, head, body = self.get(b"/core/rfb.js")
        self.assertEqual((status, body), (200, b"x" * 3000000))
        self.assertIn("\r\nContent-Type: text/javascript; charset=utf-8\r\n", head)
        status, head, body = self.ask(b"HEAD /vnc.html HTTP/1.1\r\n\r\n")
        self.assertEqual((status, body), (200, b""))
        self.assertIn("\r\nContent-Length: 15\r\n", head)

    def test_the_root_is_the_page_that_connects(self):
        for target in (b"/", b"/?anything"):
            status, head, body = self.get(target)
            self.assertEqual(status, 200)
            self.assertIn("\r\nContent-Type: text/html; charset=utf-8\r\n", head)
            self.assertIn(f'<meta name="vnc-port" content="{self.port}">'.encode(), body)
            self.assertIn(b"from './core/rfb.js'", body)
            self.assertTrue(body.endswith(b"</html>\n"))

    def test_nothing_outside_the_folder_is_served(self):
        for target in (b"/../outside", b"/core/../../outside", b"/%2e%2e/outside", b"/.hidden",
                       b"//../outside", b"outside", b"/core", b"/core/", b"/nothing", b"/\xff"):
            self.assertEqual(self.get(target)[0], 404, target)

    def test_other_requests_are_refused(self):
        self.assertEqual(self.ask(b"POST / HTTP/1.1\r\n\r\n")[0], 405)
        self.assertEqual(self.ask(b"\r\n\r\n")[0], 400)
        self.assertEqual(self.ask(b"GET /\r\n\r\n")[0], 400)
        self.assertEqual(self.ask(b"x" * 20480)[0], 431)

    def test_silent_connections_hold_up_nobody(self):
        silent = [socket.create_connection(("127.0.0.1", self.web_port), LIMIT_S)
                  for _ in range(8)]
        begun = time.monotonic()
        self.assertEqual(self.get(b"/vnc.html")[0], 200)
        self.assertLess(time.monotonic() - begun, 5)
        for connection in silent:
            connection.close()

    def test_a_websocket_at_the_vnc_port_speaks_vnc(self):
        key = base64.b64encode(bytes(range(16)))
        with socket.create_connection(("127.0.0.1", self.port), LIMIT_S) as connection:
            connection.sendall(b"GET /websockify HTTP/1.1\r\nHost: localhost\r\n"
                               b"Origin: http://localhost\r\n"
                               b"Upgrade: websocket\r\nConnection: Upgrade\r\n"
                               b"Sec-WebSocket-Key: " + key + b"\r\n"
                               b"Sec-WebSocket-Version: 13\r\n"
                               b"Sec-WebSocket-Protocol: binary\r\n\r\n")
            answer = b""
            while not answer.endswith(b"RFB 003.008\n"):
                part = connection.recv(4096)
                self.assertTrue(part, answer)
                answer += part
        accepted = base64.b64encode(hashlib.sha1(
            key + b"258EAFA5-E914-47DA-95CA-C5AB0DC85B11").digest())
        head, frame = answer.split(b"\r\n\r\n", 1)
        self.assertTrue(head.startswith(b"HTTP/1.1 101"), head)
        self.assertIn(b"Sec-WebSocket-Accept: " + accepted, head)
        self.assertEqual(frame, b"\x82\x0cRFB 003.008\n")  # one binary frame

    def test_a_missing_page_is_an_error_when_asked_for(self):
        empty = tempfile.mkdtemp(dir=self.folder.name)
        self.assertEqual(
            self.refusal("--port", "0", "--web-root", empty,
                         self.viewer.process.args[-1]),
            (1, f"ux-view: no browser page: there is no {empty}/core/rfb.js (package novnc)\n"))


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

    def test_viewers_that_do_not_read_or_stop_in_a_message_are_dropped(self):
        viewer = self.view(self.simulate("1280x720", "argb8888"))
        deaf = self.connect().start()
        for _ in range(8):  # more than the sockets hold
            deaf.send(struct.pack(">BBHHHH", 3, 0, 0, 0, 1280, 720))
        halting = self.connect().start()
        halting.send(b"\x04")
        self.assertEqual(self.connect().start().picture(), self.memory[:])
        self.assertIsNone(viewer.process.poll())
        with self.assertRaises((EOFError, ConnectionError)):
            halting.read(1)


if __name__ == "__main__":
    SIMULATOR, VIEWER = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
