#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A headless Chromium opens ux-view's page of a simulated 02-buttons: the page shows the screen, keys
and clicks in the page change it. Ends with status 77 (skipped) where there is no Chromium."""

import argparse
import base64
import json
import mmap
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

LIMIT_S = 60
SKIPPED = 77
WIDTH, HEIGHT = 1280, 720
KEY_DOWN = {"key": "ArrowDown", "code": "ArrowDown", "windowsVirtualKeyCode": 40}

# The page's canvas as bytes of red, green and blue, in base64; nothing while there is none.
READ_CANVAS = """(() => {
    const canvas = document.querySelector('#noVNC_container canvas');
    if (!canvas || canvas.width !== %d || canvas.height !== %d) return '';
    const data = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height).data;
    let text = '';
    for (let at = 0; at < data.length; at += 4)
        text += String.fromCharCode(data[at], data[at + 1], data[at + 2]);
    return btoa(text);
})()""" % (WIDTH, HEIGHT)

READ_PLACE = """(() => {
    const place = document.querySelector('#noVNC_container canvas').getBoundingClientRect();
    return [place.left, place.top, place.width, place.height];
})()"""


def eventually(condition, what):
    deadline = time.monotonic() + LIMIT_S
    while time.monotonic() < deadline:
        result = condition()
        if result:
            return result
        time.sleep(0.1)
    sys.exit(f"it never came true that {what}")


class Browser:
    """Chromium by its debugging pipe: messages of JSON that end with a zero byte."""

    def __init__(self, program, folder):
        command_in, self.commands = os.pipe()
        self.answers, answer_out = os.pipe()
        low = {3: os.dup(command_in), 4: os.dup(answer_out)}

        def place():  # Chromium reads from 3 and writes to 4
            for number, fd in low.items():
                os.dup2(fd, number)

        self.process = subprocess.Popen(
            [program, "--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
             "--no-first-run", f"--user-data-dir={folder}/profile",
             f"--window-size={WIDTH},{HEIGHT}", "--remote-debugging-pipe", "about:blank"],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            pass_fds=[3, 4, *low.values()], preexec_fn=place)
        os.close(command_in)
        os.close(answer_out)
        self.rest, self.number, self.session = b"", 0, None
        target = eventually(lambda: [
            one for one in self.ask("Target.getTargets")["targetInfos"] if one["type"] == "page"],
            "the browser has a page")[0]["targetId"]
        self.session = self.ask("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]

    def ask(self, method, **parameters):
        self.number += 1
        message = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.commands, json.dumps(message).encode() + b"\0")
        while True:
            while b"\0" not in self.rest:
                part = os.read(self.answers, 1 << 20)
                if not part:
                    sys.exit("the browser ended")
                self.rest += part
            line, self.rest = self.rest.split(b"\0", 1)
            answer = json.loads(line)
            if answer.get("id") == self.number:
                if "error" in answer:
                    sys.exit(f"{method}: {answer['error']}")
                return answer["result"]

    def value_of(self, script):
        return self.ask("Runtime.evaluate", expression=script,
                        returnByValue=True)["result"].get("value")

    def picture(self):
        return base64.b64decode(self.value_of(READ_CANVAS) or "")

    def press_down_key(self):
        for kind in ("keyDown", "keyUp"):
            self.ask("Input.dispatchKeyEvent", type=kind, **KEY_DOWN)

    def click(self, x, y):
        left, top, width, height = self.value_of(READ_PLACE)
        for kind in ("mouseMoved", "mousePressed", "mouseReleased"):
            self.ask("Input.dispatchMouseEvent", type=kind, x=left + (x + 0.5) * width / WIDTH,
                     y=top + (y + 0.5) * height / HEIGHT,
                     button="none" if kind == "mouseMoved" else "left", clickCount=1)

    def end(self):
        self.process.kill()
        self.process.wait()


def started(folder, name, *words):
    with open(f"{folder}/{name}", "wb") as log:
        return subprocess.Popen(words, stdout=log, stderr=log, stdin=subprocess.DEVNULL)


def found(folder, name, pattern):
    return eventually(lambda: re.search(pattern, Path(folder, name).read_text()),
                      f"{name} tells {pattern}").group(1)


def screen_of(memory):
    words = memory[:]
    picture = bytearray(WIDTH * HEIGHT * 3)
    for colour in range(3):
        picture[colour::3] = words[2 - colour::4]
    return bytes(picture)


def check(browser, memory, address, touch):
    browser.ask("Page.navigate", url=address)
    eventually(lambda: any(screen_of(memory)), "the host paints")
    eventually(lambda: browser.picture() == screen_of(memory), "the page shows the screen")
    first = screen_of(memory)
    browser.press_down_key()
    eventually(lambda: screen_of(memory) != first, "a key in the page changes the screen")
    eventually(lambda: browser.picture() == screen_of(memory), "the page follows the key")
    second = screen_of(memory)
    browser.click(*touch)
    eventually(lambda: screen_of(memory) != second, "a click in the page changes the screen")
    eventually(lambda: browser.picture() == screen_of(memory), "the page follows the click")


def main():
    parser = argparse.ArgumentParser()
    for name in ("simulator", "viewer", "host", "touch"):
        parser.add_argument("--" + name, required=True)
    given = parser.parse_args()
    program = shutil.which("chromium") or shutil.which("chromium-browser")
    if not program or not Path("/usr/share/novnc/vnc.html").exists():
        print("skipped: no chromium or no novnc")
        return SKIPPED
    running = []
    with tempfile.TemporaryDirectory(prefix="ux-view-test.", ignore_cleanup_errors=True) as folder:
        try:
            running.append(started(folder, "simulator", given.simulator, "--headless", "--verbose",
                                   "--", given.host))
            run = found(folder, "simulator", r"for ux-view (\S+)\n")
            running.append(started(folder, "viewer", given.viewer, "--port", "0", "--web-port",
                                   "0", run))
            address = found(folder, "viewer", r"web (http://127\S+)\n")
            with open(Path(run, "screen").read_text().split("\n")[1], "rb") as file:
                memory = mmap.mmap(file.fileno(), WIDTH * HEIGHT * 4, access=mmap.ACCESS_READ)
            browser = Browser(program, folder)
            running.append(browser)
            check(browser, memory, address, [int(part) for part in given.touch.split(",")])
        finally:
            for one in reversed(running):
                if isinstance(one, Browser):
                    one.end()
                else:
                    one.terminate()
                    one.wait()
    return 0


if __name__ == "__main__":
    sys.exit(main())
