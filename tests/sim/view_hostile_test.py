#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""ux-view and those who mean no good: viewers that stop, flood or do not read, connections without
end, and pages of other sites."""

import os
import signal
import socket
import struct
import threading
import time
import unittest
from pathlib import Path

from view_support import (LIMIT_S, Queue, ViewTest, encrypted, eventually, processes_of, run_tests)

PROMPT_S = 3  # a viewer that behaves waits no longer, on a busy machine either
XK_DOWN = 0xFF54
SET_ENCODINGS, KEY_EVENT, CUT_TEXT = 2, 4, 6


class Hostile(ViewTest):
    def dial(self):
        other = socket.create_connection(("127.0.0.1", self.port), LIMIT_S)
        self.addCleanup(other.close)
        return other

    def drip(self, other, pause_s):
        """Sends a byte now and then until the test ends."""
        over = threading.Event()

        def send():
            while not over.wait(pause_s):
                try:
                    other.sendall(b"x")
                except OSError:
                    return
        thread = threading.Thread(target=send)
        thread.start()
        self.addCleanup(thread.join)
        self.addCleanup(over.set)

    def assert_served(self):
        begun = time.monotonic()
        self.assertEqual(self.connect().start().picture(), self.memory[:])
        self.assertLess(time.monotonic() - begun, PROMPT_S)

    def test_garbage_and_half_messages_do_not_end_it(self):
        viewer = self.view(self.simulate("32x16", "argb8888"))
        for garbage in (b"\xff" * 4096, b"RFB 003.008\n\x01\x01" + b"\xee" * 64,
                        b"RFB 003.008\n\x01\x01\x06\0\0\0\xff\xff\xff\xff", b"GET ",
                        b"\x16\x03\x01", b"GET / HTTP/1.1\r\n\r\n", b"GET " + b"x" * 8192):
            other = self.dial()
            other.sendall(garbage)
            other.close()
        self.assert_served()
        self.assertIsNone(viewer.process.poll())

    def test_the_first_bytes_without_the_next_hold_up_nobody(self):
        self.view(self.simulate("32x16", "argb8888"))
        for text in (b"G", b"GE", b"R"):
            other = self.dial()
            time.sleep(0.05)  # it is being waited for
            other.sendall(text)
            self.assert_served()
        late = self.dial()
        late.recv(12)  # greeted
        late.sendall(b"R")
        self.assert_served()

    def test_a_request_that_drips_holds_up_nobody(self):
        self.view(self.simulate("32x16", "argb8888"))
        other = self.dial()
        other.sendall(b"GET / HTTP/1.1\r\nX: ")
        self.drip(other, 0.05)
        time.sleep(0.3)
        self.assert_served()

    def test_a_message_that_drips_holds_up_neither_viewers_nor_the_end(self):
        viewer = self.view(self.simulate("32x16", "argb8888"))
        other = self.connect().start()
        other.send(struct.pack(">BxxxI", CUT_TEXT, 1000000))
        self.drip(other.socket, 0.05)
        time.sleep(0.3)
        self.assert_served()
        viewer.process.terminate()
        self.assertEqual(viewer.process.wait(PROMPT_S), 128 + signal.SIGTERM)

    def test_viewers_that_do_not_read_or_stop_in_a_message_hold_up_nobody_and_are_dropped(self):
        viewer = self.view(self.simulate("1280x720", "argb8888"))
        deaf = self.connect().start()
        for _ in range(8):  # more than the sockets hold
            deaf.send(struct.pack(">BBHHHH", 3, 0, 0, 0, 1280, 720))
        halting = [self.connect().start() for _ in range(3)]
        for one in halting:
            one.send(bytes([KEY_EVENT]))
        self.assert_served()
        self.assertIsNone(viewer.process.poll())
        for one in halting:
            with self.assertRaises((EOFError, ConnectionError)):
                one.read(1)

    def test_silent_connections_keep_nobody_out(self):
        viewer = self.view(self.simulate("32x16", "argb8888"))
        silent = [self.dial() for _ in range(100)]
        self.assert_served()
        self.assertLessEqual(len(processes_of(viewer)), 1 + 16 + 1)
        for other in silent:
            other.close()
        eventually(lambda: len(processes_of(viewer)) <= 2)

    def test_the_seventeenth_viewer_is_turned_away_until_one_leaves(self):
        self.view(self.simulate("32x16", "argb8888"))
        inside = [self.connect().start() for _ in range(16)]
        for one in inside:
            one.picture()
        with self.assertRaises((EOFError, ConnectionError)):
            self.connect().start()
        for one in inside:
            self.assertEqual(one.picture(), self.memory[:])
        inside[0].close()

        def is_let_in():
            try:
                return self.connect().start().picture()
            except (EOFError, ConnectionError):
                return None
        self.assertEqual(eventually(is_let_in), self.memory[:])

    def test_floods_take_bounded_memory(self):
        viewer = self.view(self.simulate("32x16", "argb8888"))
        for flood in (struct.pack(">BxxxI", CUT_TEXT, 0xFFFFFFFF),
                      struct.pack(">BxxxI", CUT_TEXT, 0x7FFFFFFF) + b"x" * 4000000,
                      (struct.pack(">BxH", SET_ENCODINGS, 65535) + b"\xff" * 4 * 65535) * 40,
                      struct.pack(">BBxxI", KEY_EVENT, 1, XK_DOWN) * 200000):
            client = self.connect().start()
            try:
                client.send(flood)
            except OSError:
                pass  # turned out, rightly
        kilobytes = 0
        for process in processes_of(viewer):
            text = Path(f"/proc/{process}/smaps_rollup").read_text()
            kilobytes += int(text.split("\nPss:")[1].split()[0])
        self.assertLess(kilobytes, 48 * 1024)
        self.assert_served()

    def test_no_process_outlives_a_killed_viewer(self):
        viewer = self.view(self.simulate("32x16", "argb8888"))
        client = self.connect().start()
        client.picture()
        processes = processes_of(viewer)
        viewer.process.kill()
        viewer.process.wait()
        eventually(lambda: not any(os.path.exists(f"/proc/{one}") for one in processes))
        with self.assertRaises((EOFError, ConnectionError)):
            client.read(1)


class HeldKeys(ViewTest):
    def test_a_held_key_does_not_run_on_after_its_release(self):
        queue = Queue(self.folder.name)
        self.addCleanup(queue.remove)
        self.view("--queue-path", self.folder.name, self.simulate("60x40", "argb8888"))
        client = self.connect().start()
        for _ in range(20):  # the queue's reader is slow: all before it takes the first
            client.send(struct.pack(">BBxxI", KEY_EVENT, 1, XK_DOWN))
        client.send(struct.pack(">BBxxI", KEY_EVENT, 0, XK_DOWN))
        client.key(ord("7"))
        taken = [queue.receive()[0]]
        while taken[-1] != 8:
            taken.append(queue.receive()[0])
        self.assertIn(taken, ([20, 8], [20, 20, 8]))


class Origins(ViewTest):
    def upgrade(self, host, origin, field="Origin"):
        """The status of the answer to a browser that wants to connect."""
        lines = [f"Host: {host}"] if host else []
        if origin:
            lines.append(f"{field}: {origin}")
        with socket.create_connection(("127.0.0.1", self.port), LIMIT_S) as connection:
            connection.sendall("\r\n".join([
                "GET /websockify HTTP/1.1", *lines, "Upgrade: websocket", "Connection: Upgrade",
                "Sec-WebSocket-Key: AAECAwQFBgcICQoLDA0ODw==", "Sec-WebSocket-Version: 13",
                "Sec-WebSocket-Protocol: binary", "", ""]).encode())
            answer = connection.recv(4096)
        return int(answer.split()[1])

    def test_without_a_password_only_pages_of_the_loopback_connect(self):
        self.view(self.simulate("32x16", "argb8888"))
        for host, origin, status in (
                ("127.0.0.1:5900", "http://127.0.0.1:5800", 101),
                ("localhost:5900", "http://localhost:5800", 101),
                ("[::1]:5900", "http://[::1]:5800", 101),
                ("localhost:5900", "https://LOCALHOST", 101),
                ("127.0.0.1:5900", "http://example.org", 403),
                ("127.0.0.1:5900", "http://127.0.0.1.example.org", 403),
                ("127.0.0.1:5900", "http://localhost.example.org:5800", 403),
                ("127.0.0.1:5900", "http://192.0.2.1:5800", 403),
                ("127.0.0.1:5900", "null", 403),
                ("127.0.0.1:5900", "file://", 403),
                ("example.org:5900", "http://example.org:5900", 403),  # a name that leads here
                ("example.org:5900", "http://127.0.0.1:5800", 403),
                (None, "http://127.0.0.1:5800", 403)):
            with self.subTest(host=host, origin=origin):
                self.assertEqual(self.upgrade(host, origin), status)

    def test_a_page_may_not_hide_behind_the_older_field_or_its_letters_size(self):
        self.view(self.simulate("32x16", "argb8888"))
        for field in ("Sec-WebSocket-Origin", "origin", "ORIGIN"):
            self.assertEqual(self.upgrade("127.0.0.1", "http://example.org", field), 403)

    def test_with_a_password_only_pages_of_the_same_machine_connect(self):
        Path(self.folder.name, "password").write_text("secret\n")
        self.view("--password-file", self.folder.name + "/password",
                  self.simulate("32x16", "argb8888"))
        for host, origin, status in (
                ("player.example:5900", "http://player.example:5800", 101),
                ("192.0.2.1:5900", "http://192.0.2.1:5800", 101),
                ("192.0.2.1:5900", "http://example.org", 403),
                ("192.0.2.1:5900", "null", 403)):
            with self.subTest(host=host, origin=origin):
                self.assertEqual(self.upgrade(host, origin), status)

    def test_wrong_passwords_are_answered_slowly(self):
        Path(self.folder.name, "password").write_text("secret\n")
        self.view("--password-file", self.folder.name + "/password",
                  self.simulate("32x16", "argb8888"))
        client = self.connect()
        client.send(b"\x02")
        answer = encrypted(client.read(16), b"wrong")
        begun = time.monotonic()
        client.send(answer)
        self.assertEqual(client.unpack(">I"), (1,))
        self.assertGreater(time.monotonic() - begun, 0.9)


class Pages(ViewTest):
    def setUp(self):
        super().setUp()
        root = Path(self.folder.name, "root")
        Path(root, "core").mkdir(parents=True)
        for name in ("vnc.html", "core/rfb.js"):
            Path(root, name).write_text("the file")
        viewer = self.view("--web-port", "0", "--web-root", str(root),
                           self.simulate("32x16", "argb8888"))
        self.web_port = int(viewer.find(r"web http://127\.0\.0\.1:(\d+)/\n", viewer.out))

    def dial(self):
        connection = socket.create_connection(("127.0.0.1", self.web_port), LIMIT_S)
        self.addCleanup(connection.close)
        return connection

    def ask(self, *texts):
        connection = self.dial()
        for text in texts:
            connection.sendall(text)
        answer = b""
        while part := connection.recv(4096):
            answer += part
        return answer

    def test_silent_browsers_keep_nobody_out(self):
        for _ in range(100):
            self.dial()
        begun = time.monotonic()
        answer = self.ask(b"GET /core/rfb.js HTTP/1.1\r\n\r\n")
        self.assertTrue(answer.startswith(b"HTTP/1.1 200 OK\r\n"))
        self.assertTrue(answer.endswith(b"\r\n\r\nthe file"))
        self.assertLess(time.monotonic() - begun, PROMPT_S)

    def test_an_answer_survives_what_is_sent_behind_the_request(self):
        for begin, status in ((b"POST / HTTP/1.1\r\n\r\n", b"405"), (b"GET /", b"431"),
                              (b"GET /core/rfb.js HTTP/1.1\r\n\r\n", b"200"),
                              (b"GET /core\0rfb.js HTTP/1.1\r\n\r\n", b"404")):
            for _ in range(5):
                answer = self.ask(begin, *[b"x" * 50000] * 20)
                self.assertEqual(answer.split()[1], status)
                self.assertIn(b"\r\n\r\n", answer)


if __name__ == "__main__":
    run_tests("simulator", "viewer")
