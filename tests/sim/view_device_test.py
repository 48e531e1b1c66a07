#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""ux-view on framebuffer devices of all kinds, which a preloaded library makes up: padded rows,
panning, other pixels, modes that change, memory that does not hold what is told."""

import os
import struct
import subprocess
from pathlib import Path

from view_support import LIMIT_S, PROGRAMS, ViewTest, run_tests

DEVICE = "/dev/fake-fb"
PACKED_PIXELS, TRUE_COLOUR, PSEUDO_COLOUR = 0, 2, 3
ARGB8888 = (32, (16, 8), (8, 8), (0, 8))  # bits per pixel; offset and length of each colour
ABGR8888 = (32, (0, 8), (8, 8), (16, 8))
RGB565 = (16, (11, 5), (5, 6), (0, 5))


class DeviceTest(ViewTest):
    def setUp(self):
        super().setUp()
        self.files = {name: Path(self.folder.name, name) for name in ("memory", "fixed", "mode")}
        self.environment = dict(os.environ, LD_PRELOAD=PROGRAMS["framebuffer"],
                                **{f"FAKE_FB_{name.upper()}": str(path)
                                   for name, path in self.files.items()})

    def set_mode(self, width, height, pixels=ARGB8888, left=0, top=0):
        bits, red, green, blue = pixels
        new = Path(self.folder.name, "new")
        new.write_bytes(struct.pack("=40I", width, height, width, 2 * height, left, top, bits, 0,
                                    *red, 0, *green, 0, *blue, 0, *[0] * 23))
        new.rename(self.files["mode"])

    def set_fixed(self, pitch, rows, visual=TRUE_COLOUR, start=0):
        self.pitch, self.start = pitch, start % 4096
        self.files["fixed"].write_bytes(struct.pack(
            "@16sLIIIIHHHILIIHHH0L", b"fake", start, pitch * rows, PACKED_PIXELS, 0, visual,
            0, 1, 0, pitch, 0, 0, 0, 0, 0, 0))
        size = self.start + pitch * rows
        self.memory = bytes((7 * at + at // 251) & 255 for at in range(size))
        self.files["memory"].write_bytes(self.memory)

    def shown(self, left, top, row_bytes, height):
        """The bytes of a part of the memory."""
        first = [self.start + (top + row) * self.pitch + left for row in range(height)]
        return b"".join(self.memory[at:at + row_bytes] for at in first)

    def run_program(self, *words):
        before = os.environ.copy()
        os.environ.update(self.environment)
        try:
            return super().run_program(*words)
        finally:
            os.environ.clear()
            os.environ.update(before)

    def refusal(self, *words):
        done = subprocess.run([PROGRAMS["viewer"], "--no-web", "--port", "0", *words],
                              capture_output=True, text=True, timeout=LIMIT_S, check=False,
                              env=self.environment)
        return done.returncode, done.stderr

    def test_rows_may_be_padded_and_begin_within_a_page(self):
        self.set_mode(853, 7)
        self.set_fixed(853 * 4 + 172, 7, start=0x10000200)
        self.view(DEVICE)
        client = self.connect().start()
        self.assertEqual((client.width, client.height), (853, 7))
        self.assertEqual(client.picture(), self.shown(0, 0, 853 * 4, 7))

    def test_pixels_are_told_as_the_device_has_them(self):
        for pixels, told in ((RGB565, (16, 16, 0, 1, 31, 63, 31, 11, 5, 0)),
                             (ABGR8888, (32, 24, 0, 1, 255, 255, 255, 0, 8, 16))):
            with self.subTest(told):
                self.set_mode(33, 5, pixels)
                self.set_fixed(144, 5)
                self.view(DEVICE)
                client = self.connect().start()
                self.assertEqual(client.format, told)
                self.assertEqual(client.picture(), self.shown(0, 0, 33 * pixels[0] // 8, 5))

    def test_the_part_that_is_shown_is_followed(self):
        self.set_mode(40, 10, left=3, top=6)
        self.set_fixed(200, 20)
        self.view(DEVICE)
        client = self.connect().start()
        self.assertEqual(client.picture(), self.shown(12, 6, 160, 10))
        self.set_mode(40, 10, left=0, top=10)
        rows = client.update(1)
        self.assertEqual(b"".join(rows[(0, row, 40)] for row in range(10)),
                         self.shown(0, 10, 160, 10))

    def test_screens_that_cannot_be_shown_are_named(self):
        kind = f"{DEVICE} shows neither 16 nor 32 bits per pixel in true colour"
        size = f"{DEVICE}: its size does not fit its memory"
        for mode, fixed, text in (
                ((40, 10, (24, (16, 8), (8, 8), (0, 8))), (160, 10), kind),
                ((40, 10), (160, 10, PSEUDO_COLOUR), kind),
                ((40, 10, (16, (11, 5), (5, 6), (0, 0))), (160, 10), kind),
                ((40, 10, (16, (12, 5), (5, 6), (0, 5))), (160, 10), kind),
                ((40, 10, (32, (0xFFFFFFFF, 8), (8, 8), (0, 8))), (160, 10), kind),
                ((40, 10), (159, 10), size),
                ((40, 10), (160, 9), size),
                ((40, 10, ARGB8888, 0, 1), (160, 10), size),
                ((40, 10, ARGB8888, 1, 0), (160, 20), size),
                ((40, 10, ARGB8888, 0, 0xFFFFFFFF), (160, 20), size),
                ((40, 10, ARGB8888, 0xFFFFFFFF, 0), (160, 20), size),
                ((0, 10), (160, 10), size), ((40, 0), (160, 10), size),
                ((8193, 1), (32772, 1), size), ((0x40000028, 10), (160, 10), size)):
            with self.subTest(mode=mode, fixed=fixed):
                self.set_mode(*mode)
                self.set_fixed(*fixed)
                self.assertEqual(self.refusal(DEVICE), (1, f"ux-view: {text}\n"))

    def test_a_changed_mode_and_a_device_that_goes_end_it(self):
        for change, text in (
                (lambda: self.set_mode(32, 16), f"{DEVICE} has changed its mode"),
                (lambda: self.files["mode"].write_bytes(b""),
                 f"cannot ask {DEVICE} for its mode: No such device")):
            self.set_mode(40, 10)
            self.set_fixed(160, 10)
            viewer = self.view(DEVICE)
            client = self.connect().start()
            client.picture()
            change()
            self.assertEqual(viewer.process.wait(LIMIT_S), 1)
            self.assertEqual(viewer.err(), f"ux-view: {text}\n")

    def test_a_changed_mode_ends_it_when_nobody_looks_too(self):
        self.set_mode(40, 10)
        self.set_fixed(160, 10)
        viewer = self.view(DEVICE)
        self.set_mode(32, 16)
        self.assertEqual(viewer.process.wait(LIMIT_S), 1)
        self.assertEqual(viewer.err(), f"ux-view: {DEVICE} has changed its mode\n")


if __name__ == "__main__":
    run_tests("viewer", "framebuffer")
