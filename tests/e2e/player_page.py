#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The player under ux-sim --web, as ./dev demo --web runs it, in a headless Chromium: the page shows
its menu, a click on OK of the page's remote control opens what the focus is on. Ends with status 77
(skipped) where there is no Chromium."""

import argparse
import sys
import tempfile
import time

from chromium import (HEIGHT, WIDTH, Browser, Screen, end_all, eventually, found, program, started)

ROWS = slice(112 * WIDTH * 3, 500 * WIDTH * 3)  # of the menu; the news line moves below them
MOST_LOSS = 8  # of 255: photos come as JPEG of the best quality


def alike(shown, real):
    """The picture in the page is the screen's, but for what JPEG loses."""
    return len(shown) == len(real) and max(
        abs(a - b) for a, b in zip(shown[ROWS], real[ROWS])) <= MOST_LOSS


def check_layout(browser):
    """All of the screen at its full size, and the remote control beside it."""
    left, top, width, height = browser.place_of("#screen canvas")
    assert (width, height) == (WIDTH, HEIGHT), (width, height)
    assert (left, top) == (int(left), int(top)), (left, top)  # else every pixel would be smeared
    remote = browser.place_of("#remote")
    assert remote[0] >= left + width and remote[0] + remote[2] <= 1600, remote


def settled(screen, other_than=None):
    """The picture's rows once they stand still, and are not those given."""
    def look():
        before = screen.rows(ROWS)
        time.sleep(0.3)
        return any(before) and before != other_than and before == screen.rows(ROWS) and before
    return eventually(look, "the player shows something new that stands still")


def check(browser, screen, address, shots):
    browser.ask("Page.navigate", url=address)
    menu = settled(screen)
    eventually(lambda: alike(browser.picture(), screen.picture()), "the page shows the menu")
    check_layout(browser)
    browser.write_shot(f"{shots}/page-menu.png")
    calendar = settled(screen, press(browser, "#down", menu))
    settings = settled(screen, press(browser, "#down", calendar))
    for one, other in ((menu, calendar), (calendar, settings)):
        assert 0.01 < changed(one, other) < 0.3, "an arrow did not move the focus"
    form = settled(screen, press(browser, "#ok", settings))
    assert changed(form, settings) > 0.5, "OK did not open another page"
    eventually(lambda: alike(browser.picture(), screen.picture()), "the page shows the settings")
    typed = settled(screen, press(browser, "#digit5", form))
    assert changed(form, typed) < 0.1, "a digit did not go to the text field"
    eventually(lambda: alike(browser.picture(), screen.picture()), "the page shows what was typed")
    browser.write_shot(f"{shots}/page-settings.png")


def press(browser, button, now):
    """A click on the remote control; hands back what is on the screen until then."""
    across, down = {"#down": (0.5, 0.9)}.get(button, (0.5, 0.5))  # arrows are quarters of a ring
    browser.click("#remote " + button, across, down)
    return now


def changed(one, other):
    """The share of bytes that differ."""
    return sum(a != b for a, b in zip(one, other)) / len(one)


def main():
    parser = argparse.ArgumentParser()
    for name in ("simulator", "root", "shots"):
        parser.add_argument("--" + name, required=True)
    parser.add_argument("host", nargs="+")
    given = parser.parse_args()
    chromium = program()
    running = []
    with tempfile.TemporaryDirectory(prefix="ux-view-test.", ignore_cleanup_errors=True) as folder:
        try:
            running.append(started(folder, "run", given.simulator, "--verbose", "--root",
                                   given.root, "--web", "--", *given.host))
            address = found(folder, "run", r"web (http://127\S+)\n")
            run = found(folder, "run", r"for ux-view (\S+)\n")
            browser = Browser(chromium, folder)
            running.append(browser)
            check(browser, Screen(run), address, given.shots)
        finally:
            end_all(running)


if __name__ == "__main__":
    sys.exit(main())
