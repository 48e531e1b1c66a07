#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The lint checks on small made-up projects: each finds what it is for and lets the rest pass."""

import contextlib
import io
import json
import os
import tempfile
import unittest
from pathlib import Path
from unittest import mock

import docs
import includes
import project
import text
import tidy

HEAD = "// SPDX-License-Identifier: MIT\n"


class LintTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="ux-lint-")
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        patch = mock.patch.object(project, "ROOT", self.root)
        patch.start()
        self.addCleanup(patch.stop)

    def write(self, name, content):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(content, encoding="utf-8")
        return path

    def test_a_circle_of_three_headers_is_found(self):
        self.write("core/a.h", '#include "core/b.h"\n')
        self.write("core/b.h", '#include "c.h"\n')
        self.write("core/c.h", '#include "core/a.h"\n')
        self.assertEqual(list(includes.check()), [
            "includes form a circle: core/a.h -> core/b.h -> core/c.h -> core/a.h"])

    def test_a_header_reached_twice_is_no_circle(self):
        self.write("core/a.cpp", '#include "core/b.h"\n#include "core/c.h"\n')
        self.write("core/b.h", '#include "core/c.h"\n')
        self.write("core/c.h", "")
        self.assertEqual(list(includes.check()), [])

    def test_graphics_must_not_include_widgets(self):
        self.write("graphics/a.cpp", '#include "widgets/kit.h"\n#include "ux.h"\n')
        self.write("widgets/kit.h", '#include "core/object_kit.h"\n')
        self.write("core/object_kit.h", '#include "graphics/pixel.h"\n#include <ux.h>\n')
        self.write("graphics/pixel.h", "")
        self.write("include/ux.h", "")
        self.assertEqual(list(includes.check()), [
            "graphics/a.cpp includes widgets/kit.h, which lies above it"])

    def test_the_object_kit_must_not_include_the_rest_of_core(self):
        self.write("core/object_kit.cpp", '#include "core/uxWidget.h"\n')
        self.write("core/uxWidget.h", "")
        self.assertEqual(len(list(includes.check())), 1)

    def test_examples_see_the_public_header_only(self):
        self.write("examples/good.cpp", "#include <ux.h>\n#include <vector>\n")
        self.write("examples/bad.cpp", '#include "core/uxWidget.h"\n')
        self.write("core/uxWidget.h", "")
        self.write("include/ux.h", "")
        self.assertEqual(list(includes.check()), [
            "examples/bad.cpp must not include core/uxWidget.h"])

    def test_the_library_must_not_include_the_simulator(self):
        self.write("core/a.cpp", '#include "sim/screen.h"\n')
        self.write("sim/screen.h", "")
        self.assertEqual(list(includes.check()), [
            "core/a.cpp is part of the library and must not include sim/screen.h"])

    def test_a_document_naming_a_missing_path_is_found(self):
        self.write("core/there.h", "")
        self.write("README.md", "See `core/there.h`, `core/gone.h`,\n[this](docs/gone.md),\n"
                                "`core/*.h`, `/dev/fb0`, `a/b` and `build/demo/`.\n"
                                "```\n`core/also_gone.h`\n```\n[far](https://example.org/x.md)\n")
        self.assertEqual(sorted(docs.check()), [
            "README.md:1: core/gone.h does not exist", "README.md:2: docs/gone.md does not exist"])

    def test_a_link_to_a_missing_heading_is_found(self):
        self.write("docs/a.md", "# Keys & touches\n```sh\n# no heading\n```\n"
                                "[up](#keys--touches) [down](#no-heading)\n")
        self.write("README.md", "[a](docs/a.md#keys--touches) [b](docs/a.md#gone)\n")
        self.assertEqual(sorted(docs.check()), [
            "README.md:1: no heading for docs/a.md#gone",
            "docs/a.md:5: no heading for #no-heading"])

    def test_a_document_naming_a_missing_test_is_found(self):
        self.write("tests/core/a_test.cpp", "TEST_F(LoopTest,\n       ends_at_once) {\n}\n")
        self.write("docs/a.md", "`LoopTest.ends_at_once`, `LoopTest.goes_on`, `obj.type`\n")
        self.assertEqual(list(docs.check()), ["docs/a.md:1: no test LoopTest.goes_on"])

    def test_a_source_without_licence_is_found(self):
        self.write("core/good.cpp", HEAD)
        self.write("core/bad.cpp", "int x;\n")
        self.write("dev", "#!/bin/sh\n# SPDX-License-Identifier: MIT\n")
        self.assertEqual(list(text.licence()), [
            "core/bad.cpp: does not open with 'SPDX-License-Identifier: MIT'"])

    def test_a_merge_that_was_left_open_is_found(self):
        self.write("a.md", "Heading\n=======\n")
        self.write("b.md", f"one\n{'<' * 7} HEAD\ntwo\n{'=' * 7}\nthree\n{'>' * 7} other\n")
        self.write("core/c.cpp", HEAD + "int x = 1 << 7;\n")
        self.assertEqual(list(text.merges()), [
            "b.md:2: a merge was left open", "b.md:6: a merge was left open"])

    def test_a_source_of_501_lines_is_too_long(self):
        self.write("core/longest.cpp", "\n" * 500)
        self.write("core/longer.cpp", "\n" * 501)
        self.write("include/ux.h", "\n" * 501)
        self.assertEqual(list(text.length()), ["core/longer.cpp: 501 lines, the limit is 500"])

    def test_a_source_laid_out_wrongly_is_found(self):
        self.write(".clang-format", "BasedOnStyle: LLVM\n")
        self.write("core/good.cpp", "int x;\n")
        self.write("core/bad.cpp", "int   x ;\n")
        self.assertEqual(list(text.layout()), [
            "core/bad.cpp: not laid out as .clang-format says; run ./dev format"])

    def test_clang_tidy_looks_again_only_at_what_changed(self):
        self.write(".clang-tidy", "Checks: '-*,bugprone-suspicious-semicolon'\n"
                                  "WarningsAsErrors: '*'\n")
        bad = self.write("core/bad.cpp", "int f(int a) {\n  if (a);\n  return a;\n}\n")
        header = self.write("core/good.h", "int g(int a);\n")
        good = self.write("core/good.cpp", '#include "good.h"\nint g(int a) { return a; }\n')
        build = self.root / "build"
        build.mkdir()
        (build / "compile_commands.json").write_text(json.dumps([
            {"directory": str(self.root), "file": str(f), "command": f"c++ -c {f}"}
            for f in (bad, good)]))

        def look():
            said = io.StringIO()
            with contextlib.redirect_stdout(said):
                complaints = list(tidy.check(build))
            return len(complaints), said.getvalue().split()[1]

        self.assertEqual(look(), (1, "2"))
        self.assertEqual(look(), (1, "1"))
        bad.write_text("int f(int a) { return a; }\n", encoding="utf-8")
        self.assertEqual(look(), (0, "1"))
        self.assertEqual(look(), (0, "0"))
        header.write_text("int g(int b);\n", encoding="utf-8")
        self.assertEqual(look(), (0, "1"))

    def test_shell_scripts_are_known_by_their_first_line(self):
        for name, first in (("dev", "#!/usr/bin/env bash"), ("other", "#!/usr/bin/python3")):
            os.chmod(self.write(name, first + "\n"), 0o755)
        self.write("a.sh", "")
        self.assertEqual([p.as_posix() for p in text.shell_scripts()], ["a.sh", "dev"])


if __name__ == "__main__":
    unittest.main()
