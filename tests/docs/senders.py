#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The senders of docs/input.md reach hosts: each presses a key that ends the guide's first program,
and touches the button that ends its second one, in the simulator."""

import subprocess
import sys
import tempfile
import time
from pathlib import Path

import samples

KEY = ["23"]  # OK
TOUCH = ["200", "280"]  # in the middle of the button "Leave"
PATIENCE_S = 60


def fenced(document, language):
    return [code for _, found, code in samples.samples(Path(document)) if found == language]


def built(checker, language, code, name):
    """The path of a sample's program, or the end of the test."""
    told = {"c": checker.c, "cpp": checker.cpp}[language](code)
    if told:
        sys.exit(f"{name} does not build: {told}")
    return checker.program.rename(checker.folder / name)


def sent(sender, queue, numbers, until):
    """Sends as soon as there is a queue; the sender's complaint, or nothing."""
    while True:
        done = subprocess.run([*sender, queue, *numbers], stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, check=False, encoding="utf-8")
        if done.returncode == 0 or time.monotonic() > until:
            return done.stdout if done.returncode != 0 else ""
        time.sleep(0.01)


def ends_by(checker, sender, numbers, host):
    """A complaint if the host does not end by what the sender sends it, and by itself."""
    with tempfile.TemporaryDirectory(dir=checker.folder) as queue:
        command = [checker.arguments.simulator, "--headless", "--timeout", str(PATIENCE_S),
                   "--queue-path", queue, "--", host]
        with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              env=checker.environment) as run:
            told = sent(sender, queue, numbers, time.monotonic() + PATIENCE_S)
            output = run.communicate()[0].decode(errors="replace")
    if told or run.returncode != 0:
        return f"{host.name} ended with status {run.returncode}: {told}{output}"
    return ""


def main():
    arguments = samples.parsed_arguments(__doc__)
    failed = 0
    with tempfile.TemporaryDirectory(prefix="ux-senders-") as folder:
        checker = samples.Checker(arguments, Path(folder))
        label = built(checker, "c", fenced("docs/guide.md", "c")[0], "label")
        buttons = built(checker, "cpp", fenced("docs/guide.md", "cpp")[0], "buttons")
        in_c = built(checker, "c", fenced("docs/input.md", "c")[0], "sender")
        in_python = checker.keep("sender.py", fenced("docs/input.md", "python")[0])
        for sender in ([in_c], [sys.executable, "-B", in_python]):
            for numbers, host in ((KEY, label), (TOUCH, buttons)):
                complaint = ends_by(checker, sender, numbers, host)
                print(sender[-1].name, *numbers, complaint or f"ends {host.name}")
                failed += bool(complaint)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
