#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A headless Chromium opens ux-view's page of a simulated 02-buttons: the page shows the screen, keys
and clicks in the page change it; with a password it asks until it is right. Ends with status 77 (skipped) where there is no Chromium."""

import argparse
import sys
import tempfile
from pathlib import Path

from chromium import Browser, Screen, end_all, eventually, found, program, started


def check(browser, screen, address, touch):
    browser.ask("Page.navigate", url=address)
    eventually(lambda: any(screen.picture()), "the host paints")
    eventually(lambda: browser.picture() == screen.picture(), "the page shows the screen")
    first = screen.picture()
    browser.press_down_key()
    eventually(lambda: screen.picture() != first, "a key in the page changes the screen")
    eventually(lambda: browser.picture() == screen.picture(), "the page follows the key")
    second = screen.picture()
    browser.touch(*touch)
    eventually(lambda: screen.picture() != second, "a click in the page changes the screen")
    eventually(lambda: browser.picture() == screen.picture(), "the page follows the click")


def check_password(browser, screen, address):
    asks = "!document.querySelector('#ask').hidden"
    browser.ask("Page.navigate", url=address)
    for password in ("wrong", "secret"):
        eventually(lambda: browser.value_of(asks), "the page asks for a password")
        assert not any(browser.picture()), "the page shows a picture without a password"
        browser.ask("Input.insertText", text=password)  # where the focus is
        browser.click("#ask button")
        eventually(lambda: not browser.value_of(asks), "the page tries the password")
    eventually(lambda: browser.picture() == screen.picture(), "the page shows the screen")


def main():
    parser = argparse.ArgumentParser()
    for name in ("simulator", "viewer", "host", "touch"):
        parser.add_argument("--" + name, required=True)
    given = parser.parse_args()
    chromium = program()
    running = []
    with tempfile.TemporaryDirectory(prefix="ux-view-test.", ignore_cleanup_errors=True) as folder:
        try:
            running.append(started(folder, "simulator", given.simulator, "--headless", "--verbose",
                                   "--", given.host))
            run = found(folder, "simulator", r"for ux-view (\S+)\n")
            running.append(started(folder, "viewer", given.viewer, "--port", "0", "--web-port",
                                   "0", run))
            address = found(folder, "viewer", r"web (http://127\S+)\n")
            browser = Browser(chromium, folder)
            running.append(browser)
            check(browser, Screen(run), address, [int(part) for part in given.touch.split(",")])
            Path(folder, "password").write_text("secret\n")
            running.append(started(folder, "locked", given.viewer, "--port", "0", "--web-port", "0",
                                   "--password-file", folder + "/password", run))
            check_password(browser, Screen(run), found(folder, "locked", r"web (http://127\S+)\n"))
        finally:
            end_all(running)


if __name__ == "__main__":
    sys.exit(main())
