#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Fills the form of 05-form with ux-remote, letters by multi-tap, and compares the values that the
host prints at its end."""

import argparse
import os
import subprocess
import sys
import tempfile
import time
from pathlib import Path

RUN_SECONDS = 90
START_SECONDS = 20
KEY_OF_NOBODY = "77"

STEPS = [
    ["key", "right", "down", "down"],
    ["type", "q"],
    ["key", "up", "up", "up", "down", "ok"],  # the second button: start again
    ["key", "right", "down"],  # Kitchen
    ["key", "left", "down"],  # around the end: Open
    ["type", "Abc 12"],
    ["key", "delete"],
    ["type", "9zZ_"],
    ["key", "down"],
    ["type", "136"],  # numeric: no letters
    ["key", "delete", "down"],
    ["key", "ok", "down"],  # checked
    ["key", "ok", "ok", "down"],  # and unchecked
    ["key", "right", "right", "right", "left", "down"],  # 50 + 30 - 10
    ["key", "up", "ok"],  # from the button left last to the first
]

EXPECTED = """\
access point: Kitchen
security: Open
password: Abc 19zZ_
channel: 13
at start: yes
guests: no
power: 70
"""


def send(arguments, queue, words):
    command = [arguments.remote, "--queue-path", queue, *words]
    return subprocess.run(command, stdin=subprocess.DEVNULL, check=False,
                          stderr=subprocess.PIPE, text=True)


def wait_for_host(arguments, queue):
    """Presses a key that nobody handles until the host takes it."""
    end = time.monotonic() + START_SECONDS
    while True:
        done = send(arguments, queue, ["key", KEY_OF_NOBODY])
        if done.returncode == 0:
            return
        if time.monotonic() > end:
            sys.exit(f"the host takes no keys: {done.stderr}")
        time.sleep(0.1)


def fill(arguments, queue):
    wait_for_host(arguments, queue)
    for step in STEPS:
        done = send(arguments, queue, step)
        if done.returncode != 0:
            sys.exit(f"{' '.join(step)}: {done.stderr}")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    for name in ("simulator", "remote", "host"):
        parser.add_argument(f"--{name}", type=Path, required=True)
    arguments = parser.parse_args()
    environment = {k: v for k, v in os.environ.items() if k not in ("EM862X_FONT", "FontSize")}
    with tempfile.TemporaryDirectory() as folder:
        script = Path(folder) / "script"
        script.write_text(f"wait exit within {RUN_SECONDS * 1000}\n", encoding="utf-8")
        command = [arguments.simulator, "--headless", "--queue-path", folder, "--script", script,
                   "--timeout", str(RUN_SECONDS), "--", arguments.host]
        with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, env=environment, text=True) as run:
            try:
                fill(arguments, folder)
                output, _ = run.communicate(timeout=RUN_SECONDS)
            except BaseException:
                run.terminate()
                raise
    if run.returncode != 0:
        sys.exit(f"the run ended with status {run.returncode}")
    if not output.endswith(EXPECTED):
        sys.exit(f"the host printed\n{output}instead of\n{EXPECTED}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
