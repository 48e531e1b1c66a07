#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""png_compare on pictures written here byte by byte."""

import struct
import subprocess
import sys
import tempfile
import unittest
import zlib
from pathlib import Path

TOOL = sys.argv.pop(1) if len(sys.argv) > 1 else "png_compare"


def png(width, height, pixels):
    """A PNG file of 8-bit RGB pixels, given as (red, green, blue) row by row."""
    def chunk(kind, data):
        check = zlib.crc32(kind + data)
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", check)

    rows = [pixels[y * width:(y + 1) * width] for y in range(height)]
    raw = b"".join(b"\0" + bytes(v for p in row for v in p) for row in rows)
    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
            + chunk(b"IDAT", zlib.compress(raw)) + chunk(b"IEND", b""))


class CompareTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="ux-compare-")
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)

    def compare(self, reference, shot):
        (self.root / "reference.png").write_bytes(reference)
        (self.root / "shot.png").write_bytes(shot)
        self.diff = self.root / "diff.png"
        command = [TOOL, self.root / "reference.png", self.root / "shot.png", self.diff]
        return subprocess.run(command, stderr=subprocess.PIPE, text=True, check=False)

    def test_equal_pictures_give_0_and_no_diff(self):
        picture = png(2, 2, [(1, 2, 3)] * 4)
        self.assertEqual(self.compare(picture, picture).returncode, 0)
        self.assertFalse(self.diff.exists())

    def test_one_step_in_one_channel_of_one_pixel_is_found(self):
        before = [(100, 100, 100)] * 6
        after = before[:5] + [(100, 100, 101)]
        done = self.compare(png(3, 2, before), png(3, 2, after))
        self.assertEqual(done.returncode, 1)
        self.assertIn("1 pixels differ, inside (2, 1)-(2, 1)", done.stderr)
        expected = png(3, 2, [(25, 25, 25)] * 5 + [(255, 0, 0)])
        self.assertEqual(self.compare(expected, self.diff.read_bytes()).returncode, 0)

    def test_other_sizes_differ(self):
        done = self.compare(png(2, 1, [(0, 0, 0)] * 2), png(1, 2, [(0, 0, 0)] * 2))
        self.assertEqual(done.returncode, 1)

    def test_a_broken_file_gives_2(self):
        picture = png(1, 1, [(0, 0, 0)])
        self.assertEqual(self.compare(picture, picture[:40]).returncode, 2)
        self.assertEqual(self.compare(b"", picture).returncode, 2)


if __name__ == "__main__":
    unittest.main()
