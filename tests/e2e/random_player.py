#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Sends a long random session to the player in virtual time: keys that widgets use and keys that
nothing uses, touches inside, on edges and beside the screen, in bursts and with pauses, so that
timers, effects, news line, messages and multi-tap all have their turn. The player must live, end
properly when asked to, reach all of its pages, and hold no more memory at the end than after the
first tenth. A sanitizer's complaint in the log is a failure. The same seed gives the same session.
"""

import argparse
import collections
import os
import random
import signal
import sys
import tempfile
import threading
import time
from pathlib import Path

from simulated import Simulated, Stops

SEED = 20250601
PARTS = 10  # memory is looked at behind each
LIMIT_S = 7200
END_LIMIT_S = 120

KNOWN_KEYS = [f"digit{digit}" for digit in range(10)] + [
    "up", "down", "left", "right", "ok", "delete", "shift", "punctuation"]
KNOWN_CODES = {*range(1, 11), 19, 20, 21, 22, 23, 32, 34, 35}
UNKNOWN_CODES = [code for code in range(256) if code not in KNOWN_CODES]

WIDTH, HEIGHT = 1280, 720
# Where the pages have edges: of the screen, the menu's entries, the form's rows, the calendar.
EDGES_X = [0, 79, 80, 81, 519, 520, 521, 555, 556, 839, 840, 855, 856, 872, 1199, 1200, 1279, 1280]
EDGES_Y = [0, 48, 135, 136, 240, 241, 256, 360, 376, 480, 496, 600, 601, 639, 640, 672, 719, 720]
FAR = [-2147483648, -1281, -1, 1281, 4096, 65536, 2147483647]

# Ways from wherever the player is.
HINT = "touch 640 660\nwait 1100\n"  # leads home, closes a message
HOME = 3 * HINT
POWER = "touch 1164 72\n"
SHOW, CALENDAR, SETTINGS, MESSAGES = (f"touch 300 {y}\n" for y in (188, 308, 428, 548))
ROUTES = [
    HOME + SHOW + "wait 1400\nkey digit1\nwait 2500\nkey ok\nwait 1400\nkey digit0\nwait 1500\n",
    HOME + SHOW + "wait 9000\ntouch 600 300\nwait 1300\ntouch 600 700\nwait 1200\n",
    HOME + CALENDAR + "wait 2200\nkey right\ntouch 100 300\nwait 1500\n",
    HOME + SETTINGS + "wait 1200\ntouch 500 440\ntouch 1036 188\nwait 1200\n",  # a reminder, saved
    HOME + SETTINGS + "wait 1200\nkey down\nkey down\nkey left\ntouch 1036 188\nwait 6000\n",
    HOME + MESSAGES + "wait 1500\nkey ok\nwait 1200\n",
    HOME + POWER + "wait 1500\nkey ok\nwait 1200\n",
    # What comes next goes on there.
    HOME + SHOW + "wait 4000\n",
    HOME + CALENDAR + "wait 1200\n",
    HOME + SETTINGS + "wait 1200\n",
    HOME + SETTINGS + "wait 1200\nkey down\nkey down\nkey down\n",
]


def random_key(dice):
    return f"key {dice.choice(UNKNOWN_CODES if dice.random() < 0.06 else KNOWN_KEYS)}\n"


def random_touch(dice):
    kind = dice.random()
    if kind < 0.5:
        x, y = dice.randrange(WIDTH), dice.randrange(HEIGHT)
    elif kind < 0.85:
        x, y = dice.choice(EDGES_X), dice.choice(EDGES_Y)
    else:
        x, y = dice.choice(FAR + EDGES_X), dice.choice(FAR)
        x, y = (x, y) if dice.random() < 0.5 else (y, x)
    return f"touch {x} {y}\n"


def typing(dice):
    key = dice.choice(KNOWN_KEYS[:10])
    return "".join(f"key {key}\nwait {dice.choice((20, 300, 900, 1100))}\n"
                   for _ in range(dice.randrange(1, 6)))


def pause(dice):
    return f"wait {dice.choice((20, 60, 150, 400, 1100, 3000, 3000, 8000))}\n"


def burst(dice):
    press = random_touch if dice.random() < 0.25 else random_key
    return "".join(press(dice) for _ in range(dice.randrange(1, 40)))


def stretch(dice):
    kind = dice.random()
    if kind < 0.62:
        return burst(dice)
    if kind < 0.80:
        return typing(dice)
    if kind < 0.94:
        return pause(dice)
    if kind < 0.995:
        return dice.choice(ROUTES)
    return "wait 60000\n"


def is_event(line):
    return line.startswith(("key", "touch"))


def session(events, stops):
    """The whole script. Behind each part the player is at home and at rest."""
    dice = random.Random(SEED)
    lines, sent = ["wait 1500"], 0
    for part in range(1, PARTS + 1):
        while sent < events * part // PARTS:
            for line in stretch(dice).splitlines():
                lines.append(line)
                sent += is_event(line)
        lines += HOME.splitlines() + ["wait 2500", stops.make(f"part{part}").strip()]
    return "\n".join(lines + ["wait exit within 60000"]) + "\n", sent


def page_shown(run):
    """By a pixel that only this page has so."""
    if run.pixel(317, 300) == 0xFFD54A and run.pixel(962, 300) == 0xFFD54A:
        return "message"
    if run.pixel(60, 100) == 0xC9D6EA and run.pixel(860, 300) == 0x0E1726:
        return "calendar"
    if run.pixel(856, 300) == 0x0E1726 and run.pixel(81, 300) in (0x34507A, 0x16233A):
        return "settings"
    if is_home(run):
        return "menu"
    return "photo" if run.pixel(640, 20) not in (0, 0x0E1726) else "something else"


def is_home(run):
    return run.pixel(82, 137) in (0x34507A, 0xFFD54A) and run.pixel(554, 137) == 0x34507A


class Spectator(threading.Thread):
    """Looks at the screen again and again."""

    def __init__(self, run):
        super().__init__(daemon=True)
        self.run_seen, self.seen, self.over = run, collections.Counter(), threading.Event()

    def run(self):
        while not self.over.wait(0.003):
            self.seen[page_shown(self.run_seen)] += 1


def play(arguments, folder):
    stops = Stops(folder)
    script, sent = session(arguments.events, stops)
    path = Path(folder) / "session.uxs"
    path.write_text(script, encoding="ascii")
    options = ["--virtual-time", "--date", "2025-06-01T17:00", "--stall", 60, "--timeout", LIMIT_S,
               "--root", arguments.root, "--script", path, "--shots", folder]
    log = Path(folder) / "sanitizer"
    environment = {
        "ASAN_OPTIONS": "verify_asan_link_order=0:detect_leaks=1:quarantine_size_mb=1:"
                        f"thread_local_quarantine_size_kb=16:malloc_context_size=12:log_path={log}",
        "UBSAN_OPTIONS": f"print_stacktrace=1:log_path={log}"}
    sizes, begun = [], time.monotonic()
    with Simulated(folder, arguments.simulator, *options, "--", arguments.host, "--locked",
                   *arguments.pictures, environment=environment) as run:
        spectator = Spectator(run)
        spectator.start()
        for part in range(1, PARTS + 1):
            with stops.met(f"part{part}", run, LIMIT_S):
                assert is_home(run), f"part {part} does not end at the menu"
                sizes.append(run.resident_kib()[0])
                if part == PARTS:
                    os.kill(run.host, signal.SIGTERM)
            print(f"{sent * part // PARTS} events, {time.monotonic() - begun:.1f} s: "
                  f"resident {sizes[-1]} KiB", flush=True)
        spectator.over.set()
        spectator.join()
        status = run.process.wait(END_LIMIT_S)
        complaints = [one.read_text(encoding="utf-8", errors="replace")
                      for one in sorted(Path(folder).glob("sanitizer.*"))]
        return sent, sizes, spectator.seen, status, run.errors(), complaints


def wrong(growth_kib, sizes, seen, status, errors, complaints):
    if status != 0:
        yield f"the simulator ended with status {status}: {errors[-2000:]}"
    yield from complaints
    if max(sizes[1:]) - sizes[0] > growth_kib:
        yield f"memory grew from {sizes[0]} to {max(sizes[1:])} KiB"
    for page in ("menu", "photo", "calendar", "settings", "message"):
        if seen[page] == 0:
            yield f"the page '{page}' was never seen"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    for name in ("simulator", "host", "root"):
        parser.add_argument(f"--{name}", type=Path, required=True)
    parser.add_argument("--events", type=int, default=200000)
    parser.add_argument("--growth-kib", type=int, default=1024, help="the most that memory may grow")
    parser.add_argument("--keep", type=Path, help="an empty folder for what the run writes")
    parser.add_argument("pictures", nargs="+")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        sent, sizes, seen, *end = play(arguments, arguments.keep or folder)
    total = sum(seen.values())
    print(f"{sent} events; looks at the screen: " +
          ", ".join(f"{page} {100 * count / total:.1f} %" for page, count in seen.most_common()))
    complaints = list(wrong(arguments.growth_kib, sizes, seen, *end))
    for complaint in complaints:
        print(complaint, file=sys.stderr)
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
