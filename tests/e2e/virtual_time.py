#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Plays hosts of the library in virtual time: timers fire at exact moments, and a tour gives the
reference pictures of real time, byte for byte the same in twenty runs on a busy machine; a
ticker moves the same way every time; a recording plays to the same recording."""

import argparse
import concurrent.futures
import subprocess
import sys
import tempfile
from pathlib import Path

RUNS = 20
AT_ONCE = 5
LIMIT_SECONDS = 100

# A pass of the main loop looks at the timers, then sleeps 10 ms: 25 ms are over at the pass of 30.
TIMERS = "".join(f"{line}\n" for line in (
    "short 30", "short 60", "short 90", "short 120", "alarm 30000", "long 60000",
    "alarm 3630000"))


def play(arguments, host, script_text, shots):
    command = [arguments.simulator, "--headless", "--virtual-time", "--script", "-",
               "--shots", shots, "--timeout", str(LIMIT_SECONDS), "--", host]
    return subprocess.run(command, input=script_text, capture_output=True, text=True, check=False)


def timers_fire_at_exact_moments(arguments, folder):
    done = play(arguments, arguments.timers, "wait 3600000\nwait exit within 31000\n", folder)
    told = "".join(line for line in done.stdout.splitlines(True)
                   if line.startswith(("short", "long", "alarm")))
    if done.returncode != 0 or told != TIMERS:
        return f"status {done.returncode}, {told}{done.stderr[-300:]}"
    return None


def tour(arguments, folder):
    """The shots of one run, as bytes by name, or a complaint."""
    done = play(arguments, arguments.host, arguments.script.read_text(encoding="utf-8"), folder)
    if done.returncode != 0:
        return done.stderr[-300:]
    return {path.name: path.read_bytes() for path in sorted(Path(folder).glob("*.png"))}


def tours_are_all_the_same(arguments, folder):
    folders = [Path(folder) / str(run) for run in range(RUNS)]
    with concurrent.futures.ThreadPoolExecutor(AT_ONCE) as pool:
        runs = list(pool.map(lambda one: tour(arguments, one), folders))
    if not isinstance(runs[0], dict) or not runs[0]:
        return f"the first tour took no shots: {runs[0]}"
    for number, run in enumerate(runs):
        if run != runs[0]:
            return f"tour {number} differs from the first"
    for name in runs[0]:
        reference = arguments.golden / f"{arguments.scene}-{name}"
        done = subprocess.run([arguments.compare, reference, folders[0] / name,
                               folders[0] / f"diff-{name}"], check=False)
        if done.returncode != 0:
            return f"{name} is not {reference}"
    return None


def moving_tickers_are_all_the_same(arguments, folder):
    shots = "".join(f"wait 137\nshot {number}.png\n" for number in range(10))
    script = f"wait still 500\nkey right\nkey ok\nwait 1500\n{shots}key digit0\nwait exit\n"
    folders = [Path(folder) / f"ticker{run}" for run in range(AT_ONCE)]
    with concurrent.futures.ThreadPoolExecutor(AT_ONCE) as pool:
        runs = list(pool.map(lambda one: play(arguments, arguments.ticker, script, one), folders))
    for run in runs:
        if run.returncode != 0:
            return f"ticker: {run.stderr[-300:]}"
    pictures = [[path.read_bytes() for path in sorted(one.glob("*.png"))] for one in folders]
    if len(pictures[0]) != 10 or len(set(pictures[0])) < 3:
        return "the ticker did not move"
    return None if all(one == pictures[0] for one in pictures) else "moving tickers differ"


def a_recorded_tour_plays_to_the_same_recording(arguments, folder):
    first, second = Path(folder) / "first.uxs", Path(folder) / "second.uxs"
    for script, recording in ((arguments.script, first), (first, second)):
        done = subprocess.run([arguments.simulator, "--headless", "--virtual-time", "--record",
                               recording, "--script", script, "--shots", folder, "--",
                               arguments.host], capture_output=True, text=True, check=False)
        if done.returncode != 0:
            return f"recording {script}: {done.stderr[-300:]}"
    if "key digit0" not in first.read_text(encoding="utf-8") or "#" in first.read_text(
            encoding="utf-8").split("\n", 1)[1]:
        return f"recorded: {first.read_text(encoding='utf-8')}"
    if first.read_bytes() != second.read_bytes():
        return "the recording of the recording differs"
    return None


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    for name in ("simulator", "timers", "ticker", "host", "script", "golden", "compare"):
        parser.add_argument(f"--{name}", type=Path, required=True)
    parser.add_argument("--scene", required=True, help="first part of the references' names")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        checks = (timers_fire_at_exact_moments, tours_are_all_the_same,
                  moving_tickers_are_all_the_same,
                  a_recorded_tour_plays_to_the_same_recording)
        wrong = [complaint for complaint in (check(arguments, folder) for check in checks)
                 if complaint]
    for complaint in wrong:
        print(complaint, file=sys.stderr)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
