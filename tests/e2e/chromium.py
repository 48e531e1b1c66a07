# SPDX-License-Identifier: MIT
"""What the tests of ux-view's page work with: a headless Chromium, and a simulated screen."""

import base64
import json
import mmap
import os
import re
import shutil
import subprocess
import sys
import time
from pathlib import Path

LIMIT_S = 60
SKIPPED = 77
WIDTH, HEIGHT = 1280, 720
WINDOW = 1600, 800  # room for the screen at its full size beside the remote control
KEY_DOWN = {"key": "ArrowDown", "code": "ArrowDown", "windowsVirtualKeyCode": 40}

# The page's canvas as bytes of red, green and blue, in base64; nothing while there is none.
READ_CANVAS = """(() => {
    const canvas = document.querySelector('#screen canvas');
    if (!canvas || canvas.width !== %d || canvas.height !== %d) return '';
    const data = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height).data;
    let text = '';
    for (let at = 0; at < data.length; at += 4)
        text += String.fromCharCode(data[at], data[at + 1], data[at + 2]);
    return btoa(text);
})()""" % (WIDTH, HEIGHT)

READ_PLACE = """(() => {
    const place = document.querySelector('%s').getBoundingClientRect();
    return [place.left, place.top, place.width, place.height];
})()"""


def program():
    """Chromium's, or the end of the test where it or noVNC is missing."""
    found = shutil.which("chromium") or shutil.which("chromium-browser")
    if not found or not Path("/usr/share/novnc/core/rfb.js").exists():
        print("skipped: no chromium or no novnc")
        sys.exit(SKIPPED)
    return found


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
             "--remote-debugging-pipe", "about:blank"],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            env={**os.environ, "TMPDIR": str(folder)}, pass_fds=[3, 4, *low.values()], preexec_fn=place)
        os.close(command_in)
        os.close(answer_out)
        self.rest, self.number, self.session = b"", 0, None
        target = eventually(lambda: [
            one for one in self.ask("Target.getTargets")["targetInfos"] if one["type"] == "page"],
            "the browser has a page")[0]["targetId"]
        self.session = self.ask("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        self.ask("Emulation.setDeviceMetricsOverride", width=WINDOW[0], height=WINDOW[1],
                 deviceScaleFactor=1, mobile=False)

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

    def place_of(self, selector):
        return self.value_of(READ_PLACE % selector)

    def click_at(self, x, y):
        for kind in ("mouseMoved", "mousePressed", "mouseReleased"):
            self.ask("Input.dispatchMouseEvent", type=kind, x=x, y=y,
                     button="none" if kind == "mouseMoved" else "left", clickCount=1)

    def click(self, selector, across=0.5, down=0.5):
        """A click on an element, at a share of its width and its height."""
        left, top, width, height = self.place_of(selector)
        self.click_at(left + across * width, top + down * height)

    def touch(self, x, y):
        """A click on the screen's pixel."""
        left, top, width, height = self.place_of("#screen canvas")
        self.click_at(left + (x + 0.5) * width / WIDTH, top + (y + 0.5) * height / HEIGHT)

    def write_shot(self, path):
        shot = self.ask("Page.captureScreenshot", format="png")["data"]
        Path(path).write_bytes(base64.b64decode(shot))

    def end(self):
        self.process.kill()
        self.process.wait()


class Screen:
    """The memory of a simulator's screen, by the simulator's folder."""

    def __init__(self, folder):
        with open(Path(folder, "screen").read_text().split("\n")[1], "rb") as file:
            self.memory = mmap.mmap(file.fileno(), WIDTH * HEIGHT * 4, access=mmap.ACCESS_READ)

    def rows(self, part):
        """Bytes of memory, for a part given in bytes of picture()."""
        return self.memory[part.start * 4 // 3:part.stop * 4 // 3]

    def picture(self):
        """Red, green and blue of every pixel."""
        words = self.memory[:]
        picture = bytearray(WIDTH * HEIGHT * 3)
        for colour in range(3):
            picture[colour::3] = words[2 - colour::4]
        return bytes(picture)


def started(folder, name, *words):
    with open(f"{folder}/{name}", "wb") as log:
        return subprocess.Popen(words, stdout=log, stderr=log, stdin=subprocess.DEVNULL)


def found(folder, name, pattern):
    return eventually(lambda: re.search(pattern, Path(folder, name).read_text()),
                      f"{name} tells {pattern}").group(1)


def end_all(running):
    for one in reversed(running):
        if isinstance(one, Browser):
            one.end()
        else:
            one.terminate()
            one.wait()
