#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs 04-ticker and looks at shots of its moving ticker: text passes in the box, both ways, in two
colours only, and nothing else of the page changes."""

import argparse
import shutil
import struct
import subprocess
import sys
import zlib
from pathlib import Path

LEFT, TOP, WIDTH, HEIGHT = 112, 376, 1056, 56
INK = bytes((0xFF, 0xD5, 0x4A))
PANEL = bytes((0x16, 0x23, 0x3A))
SHOTS = 16

# The mode's key presses, then its shots. Scrolling up, a line is in the box for half of the time.
MODES = {"up": "key ok\nwait 500\n", "left": "key right\nkey ok\nwait 1500\n"}


def script(mode):
    shots = "".join(f"wait 137\nshot {mode}-{i}.png\n" for i in range(SHOTS))
    return f"wait still 500\n{MODES[mode]}{shots}key digit0\nwait exit\n"


def paeth(a, b, c):
    pa, pb, pc = abs(b - c), abs(a - c), abs(a + b - 2 * c)
    return a if pa <= pb and pa <= pc else b if pb <= pc else c


def unfilter(kind, row, above):
    if kind == 1:
        for i in range(3, len(row)):
            row[i] = (row[i] + row[i - 3]) & 255
    elif kind == 2 and not any(row):
        return above
    elif kind == 2:
        for i, b in enumerate(above):
            row[i] = (row[i] + b) & 255
    elif kind:
        for i, b in enumerate(above):
            a, c = (row[i - 3], above[i - 3]) if i >= 3 else (0, 0)
            row[i] = (row[i] + (paeth(a, b, c) if kind == 4 else (a + b) // 2)) & 255
    return row


def rows_of(path):
    """The rows of a picture of 8-bit RGB pixels."""
    data = path.read_bytes()
    width, height, depth, color = struct.unpack(">IIBB", data[16:26])
    assert (depth, color) == (8, 2), f"{path} is not RGB"
    at, packed = 8, b""
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        packed += data[at + 8:at + 8 + length] if kind == b"IDAT" else b""
        at += length + 12
    raw, stride, above, rows = zlib.decompress(packed), width * 3, bytearray(width * 3), []
    for y in range(height):
        start = y * (stride + 1)
        above = unfilter(raw[start], bytearray(raw[start + 1:start + 1 + stride]), above)
        rows.append(bytes(above))
    return rows


def box_of(rows):
    return [row[LEFT * 3:(LEFT + WIDTH) * 3] for row in rows[TOP:TOP + HEIGHT]]


def around(rows):
    blank = bytes(WIDTH * 3)
    return [row[:LEFT * 3] + blank + row[(LEFT + WIDTH) * 3:] if TOP <= y < TOP + HEIGHT else row
            for y, row in enumerate(rows)]


def colors(box):
    return {row[i:i + 3] for row in box for i in range(0, len(row), 3)}


def check(mode, shots):
    pictures = [rows_of(shots / f"{mode}-{i}.png") for i in range(SHOTS)]
    boxes = [box_of(rows) for rows in pictures]
    if any(around(rows) != around(pictures[0]) for rows in pictures):
        yield f"{mode}: the page changes beside the box"
    if any(colors(box) - {INK, PANEL} for box in boxes):
        yield f"{mode}: there are colours but ink and panel"
    if len({b"".join(box) for box in boxes if INK in colors(box)}) < 3:
        yield f"{mode}: fewer than three different pictures of text"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    for name in ("simulator", "host", "shots"):
        parser.add_argument(name, type=Path)
    arguments = parser.parse_args()
    shutil.rmtree(arguments.shots, ignore_errors=True)
    arguments.shots.mkdir(parents=True)
    wrong = []
    for mode in MODES:
        subprocess.run([arguments.simulator, "--headless", "--script", "-", "--shots",
                        arguments.shots, "--timeout", "60", "--", arguments.host],
                       input=script(mode).encode(), check=True)
        wrong += check(mode, arguments.shots)
    for complaint in wrong:
        print(complaint, file=sys.stderr)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
