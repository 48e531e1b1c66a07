#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Measures a key press in the player's menu in real time: from the message at the queue to the next
button's changed pixels in the screen's memory. The main loop looks at its events every 10 ms, so
half of that is spent on waiting. Prints the median, the 99th percentile and the longest."""

import argparse
import random
import sys
import tempfile
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tests" / "e2e"))
from simulated import Simulated, eventually, key_message, send  # noqa: E402

ROOT = Path(__file__).resolve().parents[1]
POLL_MS = 10
UP, DOWN = 19, 20
MARKED = 0xFFD54A
# The lower right corner of the border of the first two buttons: painted last but for the text.
BUTTONS = [(519, 239), (519, 359)]
REST_S = (0.020, 0.045)  # between presses: any place in a pass of the main loop
LIMIT_S = 1.0


def press(run, queue, code, button):
    """Seconds until the button is marked."""
    begun = time.perf_counter()
    send(queue, key_message(code))
    while run.pixel(*button) != MARKED:
        if time.perf_counter() - begun > LIMIT_S:
            raise SystemExit(f"no pixel changed within {LIMIT_S} s")
    return time.perf_counter() - begun


def measure(run, presses):
    eventually(lambda: run.pixel(*BUTTONS[0]) == MARKED)
    time.sleep(2)  # the news line begins
    queue, times = run.open_queue(), []
    dice = random.Random(1)
    for number in range(presses):
        code, button = ((DOWN, BUTTONS[1]), (UP, BUTTONS[0]))[number % 2]
        times.append(press(run, queue, code, button) * 1000)
        time.sleep(dice.uniform(*REST_S))
    return sorted(times)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("programs", type=Path, help="the folder of ux-sim and player")
    parser.add_argument("--presses", type=int, default=1000)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder, \
            Simulated(folder, arguments.programs / "ux-sim", "--root", ROOT / "examples" / "device",
                      "--", arguments.programs / "player",
                      ROOT / "examples" / "03-pictures" / "photos") as run:
        times = measure(run, arguments.presses)
    last = len(times) - 1
    print(f"key to pixels, {len(times)} presses: median {times[last // 2]:.2f} ms, "
          f"99th percentile {times[last * 99 // 100]:.2f} ms, longest {times[-1]:.2f} ms "
          f"(the main loop looks every {POLL_MS} ms)")


if __name__ == "__main__":
    main()
