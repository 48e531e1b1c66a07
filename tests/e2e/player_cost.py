#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""What the player takes on each of its pages: memory, and processor time while nobody presses
anything.

Memory is what is resident in all of its mappings, private or of files, libraries included, but for
the screen; pictures that are on show and kept in memory count. Pictures come from files: the first
address loads libcurl, which is as large again."""

import argparse
import sys
import tempfile
import time
from pathlib import Path

from simulated import Simulated, Stops, eventually, key_message, send, touch_message

MOST_KIB = 12 * 1024
MOST_IDLE_PERCENT = 3  # 1 is the aim; a busy machine makes every wake-up dearer
BUSY_PERCENT = 100     # what moves is told only
LIMIT_S = 120
IDLE_S = 3
SWITCH_S = 1.3  # a page switch rests for a second

MARKED = 0xFFD54A
KEY_LEFT = 21
PHOTOS, CALENDAR, SETTINGS, MESSAGES = ((300, y) for y in (188, 308, 428, 548))
NEWS_CHOICE, SAVE, BACK = (600, 312), (1036, 188), (640, 660)

HINT = "touch 640 660\nwait 1500\n"
WAIT = "wait 3500\n"
# In this order, each with the way to it.
PAGES = {
    "menu": "",
    "photo": "touch 300 188\n",
    "calendar": HINT + "touch 300 308\n",
    "settings": HINT + "touch 300 428\n",
    "message": HINT + "touch 300 548\n",
}


def start(arguments, folder, *options):
    return Simulated(folder, arguments.simulator, "--root", arguments.root, "--timeout", LIMIT_S,
                     *options, "--", arguments.host, *arguments.pictures)


def memory(arguments, folder):
    stops = Stops(folder)
    script = "".join(way + WAIT + stops.make(page) for page, way in PAGES.items())
    path = Path(folder) / "pages.uxs"
    path.write_text(script, encoding="ascii")
    with start(arguments, folder, "--virtual-time", "--script", path, "--shots", folder) as run:
        for page in PAGES:
            with stops.met(page, run, LIMIT_S):
                total, screen = run.resident_kib()
            rest = total - screen
            print(f"{page}: {total} KiB resident, screen {screen}, rest {rest} KiB", flush=True)
            if screen < run.width * run.height * 4 // 1024:
                yield f"{page}: the screen's mapping was not found"
            if rest > MOST_KIB:
                yield f"{page}: {rest} KiB are more than {MOST_KIB}"


def busy_s(process):
    """Processor time of a process so far, with all its threads."""
    return time.clock_gettime(~process << 3 | 2)  # its clock, as clock_getcpuclockid() names it


def go(run, queue, *touches):
    for x, y in touches:
        send(queue, touch_message(x, y))
        time.sleep(SWITCH_S)


def measured(run, page, aim):
    begun, spent = time.monotonic(), busy_s(run.host)
    time.sleep(IDLE_S)
    percent = 100 * (busy_s(run.host) - spent) / (time.monotonic() - begun)
    print(f"{page}: {percent:.2f} % of a processor", flush=True)
    if percent > aim:
        yield f"{page}: {percent:.2f} % of a processor are more than {aim}"


def idle(arguments, folder):
    with start(arguments, folder) as run:
        eventually(lambda: run.pixel(82, 137) == MARKED)
        queue = run.open_queue()
        time.sleep(SWITCH_S)
        yield from measured(run, "menu, the news line moves", BUSY_PERCENT)
        for page, entry in (("calendar", CALENDAR), ("settings", SETTINGS), ("message", MESSAGES)):
            go(run, queue, entry)
            yield from measured(run, page, MOST_IDLE_PERCENT)
            go(run, queue, BACK)
        go(run, queue, SETTINGS, NEWS_CHOICE)
        send(queue, key_message(KEY_LEFT))  # off
        go(run, queue, SAVE)
        yield from measured(run, "menu, no news line", MOST_IDLE_PERCENT)
        go(run, queue, PHOTOS)
        yield from measured(run, "photo show, a picture every 3 s", BUSY_PERCENT)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("what", choices=("memory", "idle"))
    for name in ("simulator", "host", "root"):
        parser.add_argument(f"--{name}", type=Path, required=True)
    parser.add_argument("pictures", nargs="+")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        complaints = list({"memory": memory, "idle": idle}[arguments.what](arguments, folder))
    for complaint in complaints:
        print(complaint, file=sys.stderr)
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
