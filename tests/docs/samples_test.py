#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The check of the documents' samples on small made-up documents."""

import argparse
import tempfile
import unittest
from pathlib import Path
from unittest import mock

import samples

GOOD = {
    "c": "#include <stdint.h>\nint32_t twice(int32_t n);\nint32_t twice(int32_t n) "
         "{ return 2 * n; }\n",
    "cpp": "int twice(int n) { return 2 * n; }\n",
    "python": "print('ux')\n",
    "sh": "echo ux\n",
}
BAD = {
    "c": "int twice(int n) { return 2 * m; }\n",
    "cpp": "int twice(int n) {}\n",  # a warning
    "python": "print('ux'\n",
    "sh": "if true; then\n",
    "pascal": "begin end.\n",
}


class SamplesTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="ux-samples-test-")
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        patch = mock.patch.object(samples.project, "ROOT", self.root)
        patch.start()
        self.addCleanup(patch.stop)
        tools = argparse.Namespace(cc="cc", cxx="c++", simulator="false", library=[])
        self.checker = samples.Checker(tools, self.root)

    def check(self, blocks):
        text = "".join(f"```{language}\n{code}```\n" for language, code in blocks.items())
        (self.root / "guide.md").write_text("# Guide\n" + text, encoding="utf-8")
        return samples.check(self.checker)

    def test_good_samples_pass(self):
        self.assertEqual(self.check(GOOD), (4, []))

    def test_every_bad_sample_is_found(self):
        count, complaints = self.check(BAD)
        self.assertEqual(count, 5)
        self.assertEqual([complaint.split(": ")[0] for complaint in complaints],
                         [f"guide.md:{line}" for line in (3, 6, 9, 12, 15)])

    def test_output_is_no_sample(self):
        self.assertEqual(self.check({"": "int twice(\n", "text": "<\n"}), (0, []))

    def test_a_program_must_link(self):
        program = "int twice(int);\nint main() { return twice(0); }\n"
        count, complaints = self.check({"cpp": program})
        self.assertEqual((count, len(complaints)), (1, 1))
        self.assertIn("twice", complaints[0])

    def test_a_script_runs_on_the_program_before_it(self):
        """echo stands for the simulator: it succeeds, and tells what it was asked to run."""
        self.checker.arguments.simulator = "echo"
        program = "int main() {}\n"
        self.assertEqual(self.check({"cpp": program, "uxs": "quit\n"}), (2, []))
        count, complaints = self.check({"uxs": "quit\n"})  # status 0 is not that of no host
        self.assertEqual((count, len(complaints)), (1, 1))
        self.assertIn("no-host", complaints[0])


if __name__ == "__main__":
    unittest.main()
