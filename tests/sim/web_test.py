#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The player under ux-sim --web: addresses, ends, and what is left when one of the three processes is
killed. The viewer's screen and the host's queue are looked at from outside, as a browser's would be."""

import ctypes
import mmap
import os
import re
import shutil
import signal
import socket
import sys
import tempfile
import time
import unittest
from pathlib import Path

from view_support import LIBC, LIMIT_S, Client, Program, eventually

SIMULATOR, VIEWER, PLAYER, DEVICE = "", "", "", ""  # from the command line
SIZE = 1280 * 720 * 4
IPC_STAT = 2
XK_DOWN = 0xFF54


def children_of(process):
    return [int(word) for word in
            Path(f"/proc/{process}/task/{process}/children").read_text().split()]


def name_of(process):
    return Path(f"/proc/{process}/comm").read_text().strip()


def has_ended(process):
    try:
        return Path(f"/proc/{process}/stat").read_text().rsplit(")", 1)[1].split()[0] == "Z"
    except (FileNotFoundError, ProcessLookupError):
        return True


def queue_exists(number):
    return LIBC.msgctl(number, IPC_STAT, ctypes.create_string_buffer(256)) == 0


class Run:
    """One run of a host under --web, once the host has painted."""

    def __init__(self, test, runtime, host=None):
        folder = test.enterContext(tempfile.TemporaryDirectory(prefix="ux-web-test."))
        # No run may open a window: there is no such display. Each leads a process group, as one
        # started by a shell.
        self.program = Program(folder, "setsid", "env", "DISPLAY=:9999", "SDL_VIDEODRIVER=x11",
                               f"XDG_RUNTIME_DIR={runtime}", SIMULATOR, "--verbose", "--root",
                               DEVICE, "--web", "--", *(host or (PLAYER,)))
        test.addCleanup(self.program.end)
        self.process = self.program.process
        self.folder = self.program.find(r"for ux-view (\S+)\n", self.program.err)
        self.web = int(self.program.find(r"web http://127\.0\.0\.1:(\d+)/\n", self.program.out))
        self.vnc = int(self.program.find(r"vnc 127\.0\.0\.1:(\d+)\n", self.program.out))
        self.queue = int(Path(self.folder, "lock").read_text().split()[0])
        with open(Path(self.folder, "screen").read_text().split("\n")[1], "rb") as file:
            self.memory = mmap.mmap(file.fileno(), SIZE, access=mmap.ACCESS_READ)
        test.addCleanup(self.memory.close)
        eventually(lambda: len(children_of(self.process.pid)) == 2)
        self.host, self.viewer = (
            eventually(lambda: [child for child in children_of(self.process.pid)
                                if (name_of(child) == "ux-view") == is_viewer])[0]
            for is_viewer in (False, True))
        if not host:
            eventually(self.stands_still)

    def stands_still(self):
        """The menu is there, and not about to be painted further."""
        before = self.focus()
        time.sleep(0.3)
        return any(before) and before == self.focus()

    def focus(self):
        """Rows of the menu's list, where no news line moves."""
        return self.memory[100 * 1280 * 4:500 * 1280 * 4]

    def client(self, test):
        client = Client("127.0.0.1", self.vnc)
        test.addCleanup(client.close)
        return client.start()

    def wait(self):
        return self.process.wait(LIMIT_S)

    def said(self):
        """What simulator and viewer told beside what --verbose asks for; the host's lines are not
        looked at."""
        return [line for line in self.program.err().splitlines()
                if re.match(r"ux-(sim|view): (?!queue path |for ux-view )", line)]


class WebTest(unittest.TestCase):
    def setUp(self):
        self.runtime = self.enterContext(tempfile.TemporaryDirectory(prefix="ux-web-test."))

    def enterContext(self, context):  # in unittest since Python 3.11
        self.addCleanup(context.__exit__, None, None, None)
        return context.__enter__()

    def run_player(self):
        return Run(self, self.runtime)

    def assert_nothing_is_left(self, run):
        for process in (run.host, run.viewer):
            eventually(lambda process=process: has_ended(process))
        self.assertFalse(queue_exists(run.queue))
        self.assertEqual(os.listdir(self.runtime), [])

    def assert_reached(self, run, client):
        """A key from the viewer moves the player's focus, and the viewer sees it."""
        before = run.focus()
        client.key(XK_DOWN)
        eventually(lambda: run.focus() != before)
        shown = client.picture()
        start = 100 * 1280 * 4
        eventually(lambda: run.focus() == shown[start:start + len(before)] or
                   client.picture()[start:start + len(before)] == run.focus())


class Runs(WebTest):
    def test_the_page_is_served_and_a_key_reaches_the_host(self):
        run = self.run_player()
        with socket.create_connection(("127.0.0.1", run.web), LIMIT_S) as page:
            page.sendall(b"GET / HTTP/1.1\r\n\r\n")
            answer = b"".join(iter(lambda: page.recv(65536), b"")).decode()
        self.assertTrue(answer.startswith("HTTP/1.1 200 OK\r\n"), answer)
        self.assertIn(f'<meta name="vnc-port" content="{run.vnc}">', answer)
        self.assert_reached(run, run.client(self))

    def test_two_runs_have_ports_of_their_own_and_leave_each_other_alone(self):
        one, other = self.run_player(), self.run_player()
        self.assertEqual(len({one.web, one.vnc, other.web, other.vnc}), 4)
        before = other.focus()
        self.assert_reached(one, one.client(self))
        self.assertEqual(other.focus(), before)
        one.process.terminate()
        self.assertEqual(one.wait(), 128 + signal.SIGTERM)
        self.assert_reached(other, other.client(self))
        self.assertEqual(other.said(), [])

    def test_without_a_port_free_ones_from_5800_and_5900_on_are_taken(self):
        run = Run(self, self.runtime, host=("sleep", "60"))
        self.assertTrue(5800 <= run.web <= 5899 and 5900 <= run.vnc <= 5999, (run.web, run.vnc))
        other = Program(self.enterContext(tempfile.TemporaryDirectory()), VIEWER, run.folder)
        self.addCleanup(other.end)
        lines = other.find(r"((?:\w+ \S+\n){4})", other.out)
        web = int(re.search(r"^web http://127\.0\.0\.1:(\d+)/$", lines, re.M).group(1))
        vnc = int(re.search(r"^vnc 127\.0\.0\.1:(\d+)$", lines, re.M).group(1))
        self.assertEqual(lines, f"vnc 127.0.0.1:{vnc}\nvnc [::1]:{vnc}\n"
                         f"web http://127.0.0.1:{web}/\nweb http://[::1]:{web}/\n")
        self.assertTrue(5800 <= web <= 5899 and 5900 <= vnc <= 5999, (web, vnc))
        self.assertTrue(web != run.web and vnc != run.vnc)

    def test_a_busy_port_is_told_and_the_host_is_not_started(self):
        with socket.create_server(("127.0.0.1", 0)) as taken:
            port = taken.getsockname()[1]
            made = Path(self.runtime, "made")
            program = Program(self.enterContext(tempfile.TemporaryDirectory()), SIMULATOR,
                              f"--web={port}", "--", "touch", made)
            self.addCleanup(program.end)
            self.assertEqual(program.process.wait(LIMIT_S), 1)
        self.assertEqual(program.err(),
                         f"ux-view: cannot listen at 127.0.0.1:{port}: Address already in use\n"
                         "ux-sim: ux-view ended with exit status 1\n")
        self.assertFalse(made.exists())

    def test_without_ux_view_the_run_is_refused(self):
        folder = self.enterContext(tempfile.TemporaryDirectory())
        os.makedirs(folder + "/bin")
        shutil.copy(SIMULATOR, folder + "/bin")
        program = Program(folder, "env", "PATH=" + folder, folder + "/bin/ux-sim", "--web", "--",
                          "/bin/true")
        self.addCleanup(program.end)
        self.assertEqual(program.process.wait(LIMIT_S), 1)
        self.assertEqual(program.err(),
                         "ux-sim: cannot start ux-view: No such file or directory\n")

    def test_the_viewer_ends_with_the_host_and_the_status_is_the_hosts(self):
        fifo = self.enterContext(tempfile.TemporaryDirectory()) + "/fifo"
        os.mkfifo(fifo)
        run = Run(self, self.runtime, host=("sh", "-c", f"read line < {fifo}; exit 7"))
        Path(fifo).write_text("end\n")
        self.assertEqual(run.wait(), 7)
        self.assertEqual(run.said(), [])
        self.assert_nothing_is_left(run)

    def test_a_signal_ends_all_three_and_the_viewer_is_not_mourned(self):
        run = self.run_player()
        run.process.terminate()
        self.assertEqual(run.wait(), 128 + signal.SIGTERM)
        self.assertEqual(run.said(), [])
        self.assert_nothing_is_left(run)

    def test_so_does_ctrl_c_which_reaches_the_whole_group(self):
        run = self.run_player()
        os.killpg(run.process.pid, signal.SIGINT)
        self.assertEqual(run.wait(), 128 + signal.SIGINT)
        self.assertEqual(run.said(), [])
        self.assert_nothing_is_left(run)


class Killed(WebTest):
    def test_a_killed_viewer_is_told_and_the_run_goes_on_and_can_be_shown_again(self):
        run = self.run_player()
        os.kill(run.viewer, signal.SIGKILL)
        eventually(run.said)
        self.assertEqual(run.said(), [
            "ux-sim: ux-view was ended by signal 9 (Killed); the run goes on, and "
            f"'ux-view {run.folder}' shows it again"])
        self.assertFalse(has_ended(run.host))
        again = Program(self.enterContext(tempfile.TemporaryDirectory()), VIEWER, "--no-web",
                        run.folder)
        self.addCleanup(again.end)
        run.vnc = int(again.find(r"vnc 127\.0\.0\.1:(\d+)\n", again.out))
        self.assert_reached(run, run.client(self))
        run.process.terminate()
        self.assertEqual(run.wait(), 128 + signal.SIGTERM)
        self.assertEqual(again.process.wait(LIMIT_S), 1)
        self.assert_nothing_is_left(run)

    def test_a_killed_simulator_is_told_and_takes_both_along_and_nothing_is_left(self):
        run = self.run_player()
        run.process.kill()
        for process in (run.host, run.viewer):
            eventually(lambda process=process: has_ended(process))
        self.assertEqual(run.said(), ["ux-view: the simulator has ended"])
        eventually(lambda: not queue_exists(run.queue))
        eventually(lambda: not os.listdir(self.runtime))
        self.assert_nothing_is_left(run)

    def test_a_killed_host_is_told_and_ends_the_run_and_the_viewer(self):
        run = self.run_player()
        os.kill(run.host, signal.SIGKILL)
        self.assertEqual(run.wait(), 128 + signal.SIGKILL)
        self.assertEqual(run.said(), ["ux-sim: the host was ended by signal 9 (Killed)"])
        self.assert_nothing_is_left(run)


if __name__ == "__main__":
    SIMULATOR, VIEWER, PLAYER, DEVICE = sys.argv[1:5]
    unittest.main(argv=sys.argv[:1] + sys.argv[5:])
