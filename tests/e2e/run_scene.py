#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs a host in the simulator by a script and compares every shot with its reference picture.
With UX_GOLDEN_RENEW=1 in the environment the shots become the references. A folder may be served on
the loopback interface meanwhile: {server} in the host's arguments becomes its address."""

import argparse
import contextlib
import functools
import http.server
import os
import re
import shutil
import subprocess
import sys
import threading
from pathlib import Path

RUN_SECONDS = 60


def shots_of(script):
    return re.findall(r"^\s*shot\s+(\S+)", script.read_text(encoding="utf-8"), re.M)


class QuietHandler(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *_):
        pass


@contextlib.contextmanager
def served(folder):
    """The address of a server of `folder`; without a folder there is none."""
    if folder is None:
        yield ""
        return
    handler = functools.partial(QuietHandler, directory=str(folder))
    with http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler) as server:
        thread = threading.Thread(target=server.serve_forever, daemon=True)
        thread.start()
        yield f"http://127.0.0.1:{server.server_address[1]}"
        server.shutdown()


def run(arguments, address):
    command = [arguments.simulator, "--headless", "--script", arguments.script,
               "--shots", arguments.shots, "--timeout", str(RUN_SECONDS)]
    if arguments.virtual_time:
        command.append("--virtual-time")
    if arguments.size:
        command += ["--size", arguments.size]
    if arguments.root:
        command += ["--root", arguments.root]
    command += ["--", arguments.host]
    command += [argument.replace("{server}", address) for argument in arguments.arguments]
    print("+", " ".join(map(str, command)), flush=True)
    # References are painted in the default font.
    environment = {k: v for k, v in os.environ.items() if k not in ("EM862X_FONT", "FontSize")}
    done = subprocess.run(command, stdin=subprocess.DEVNULL, env=environment, check=False)
    if done.returncode != 0:
        sys.exit(f"the run ended with status {done.returncode}")


def check(arguments, shot):
    """What is wrong with a shot, or None."""
    taken = arguments.shots / shot
    reference = arguments.golden / f"{arguments.scene}-{shot}"
    if os.environ.get("UX_GOLDEN_RENEW") == "1":
        shutil.copyfile(taken, reference)
        print(f"renewed {reference}")
        return None
    if not reference.exists():
        return f"{reference} is missing: look at {taken}, then run ./dev golden"
    diff = arguments.shots / f"diff-{shot}"
    done = subprocess.run([arguments.compare, reference, taken, diff], check=False)
    return None if done.returncode == 0 else f"{taken} is not {reference}"


def stale(arguments, shots):
    """References of this scene that no shot stands for any more."""
    known = {f"{arguments.scene}-{shot}" for shot in shots}
    for path in arguments.golden.glob(f"{arguments.scene}-*.png"):
        if path.name not in known:
            yield f"{path} belongs to no shot"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    for name in ("simulator", "host", "script", "golden", "shots", "compare"):
        parser.add_argument(f"--{name}", type=Path, required=True)
    parser.add_argument("--virtual-time", action="store_true", help="without waiting")
    parser.add_argument("--size", help="of the screen, WxH")
    parser.add_argument("--root", type=Path, help="the device's files")
    parser.add_argument("--serve", type=Path, help="a folder for {server}")
    parser.add_argument("arguments", nargs="*", help="of the host")
    parser.add_argument("--scene", required=True, help="first part of the references' names")
    arguments = parser.parse_args()
    shots = shots_of(arguments.script)
    if not shots:
        sys.exit(f"{arguments.script} takes no shot")
    shutil.rmtree(arguments.shots, ignore_errors=True)
    arguments.shots.mkdir(parents=True)
    arguments.golden.mkdir(exist_ok=True)
    with served(arguments.serve) as address:
        run(arguments, address)
    wrong = [w for w in (check(arguments, shot) for shot in shots) if w]
    wrong += stale(arguments, shots)
    for complaint in wrong:
        print(complaint, file=sys.stderr)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
