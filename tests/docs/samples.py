#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Every code sample of the documents compiles; complete programs link with the library. A script of
the simulator is carried out on the program before it in the same document, if there is one, and its
shots are compared with those of docs/images. With UX_GOLDEN_RENEW=1 in the environment they become
those."""

import argparse
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "lint"))
import project  # noqa: E402

FENCE = re.compile(r"^```(\S*)\n(.*?)^```$", re.M | re.S)
MAIN = re.compile(r"^int main\(", re.M)
WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Werror"]

# Fences that hold no code: output, layouts, messages.
PLAIN = {"", "text"}


def samples(document):
    """(line, language, code) of every fenced block."""
    text = project.text(document)
    for match in FENCE.finditer(text):
        yield text.count("\n", 0, match.start()) + 2, match.group(1), match.group(2)


class Checker:
    """Knows the tools; each method gives a tool's complaint about one sample, or nothing."""

    def __init__(self, arguments, folder):
        self.arguments = arguments
        self.folder = folder
        self.program = None  # the last one of the document
        paths = {str(library.parent) for library in arguments.library}
        self.environment = {**os.environ, "LD_LIBRARY_PATH": ":".join(sorted(paths))}
        self.includes = [f"-I{project.ROOT / 'include'}", f"-I{folder / 'include'}"]
        self.install_platform_header(folder / "include" / "ux")

    @staticmethod
    def install_platform_header(folder):
        """Where an installation has it. A sample that declares its functions again compiles only
        if the declarations are the same."""
        header = project.ROOT / "platform" / "em862x.h"
        folder.mkdir(parents=True, exist_ok=True)
        if header.exists():
            shutil.copy(header, folder)

    def run(self, *command, fails=lambda status: status != 0):
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              timeout=120, check=False, encoding="utf-8", errors="replace",
                              env=self.environment)
        return done.stdout or f"status {done.returncode}" if fails(done.returncode) else ""

    def keep(self, name, code):
        path = self.folder / name
        path.write_text(code, encoding="utf-8")
        return path

    def compile(self, compiler, options, source, code):
        end = ["-c"]
        made = self.folder / "made"
        if MAIN.search(code):
            self.program = made = self.folder / "program"
            end = [*map(str, self.arguments.library), "-pthread"]
        return self.run(compiler, *options, *WARNINGS, *self.includes, source, *end, "-o", made)

    def c(self, code):
        return self.compile(self.arguments.cc, ["-std=c11"], self.keep("sample.c", code), code)

    def cpp(self, code):
        return self.compile(self.arguments.cxx, ["-std=c++20"],
                            self.keep("sample.cpp", code), code)

    def python(self, code):
        return self.run(sys.executable, "-B", "-m", "py_compile", self.keep("sample.py", code))

    def sh(self, code):
        return self.run("bash", "-n", self.keep("sample.sh", code))

    def uxs(self, code):
        """Without a host: the simulator looks at the whole script before it looks for one."""
        simulate = [self.arguments.simulator, "--headless", "--virtual-time", "--timeout", "60",
                    "--script", self.keep("sample.uxs", code)]
        if self.program:
            images = project.ROOT / "docs" / "images"
            shots = ["--shots", images]
            if os.environ.get("UX_GOLDEN_RENEW") != "1":
                shots = ["--shots", self.folder / "shots", "--expect", images]
            return self.run(*simulate, *shots, "--", self.program)
        return self.run(*simulate, "--", self.folder / "no-host",
                        fails=lambda status: status != 127)


def check(checker):
    """(number of samples, complaints) of all documents."""
    count = 0
    complaints = []
    for document in project.documents():
        checker.program = None
        for line, language, code in samples(document):
            if language in PLAIN:
                continue
            count += 1
            look = {"c": checker.c, "cpp": checker.cpp, "python": checker.python,
                    "sh": checker.sh, "uxs": checker.uxs}.get(language)
            told = look(code) if look else f"nothing can check '{language}'"
            if told:
                complaints.append(f"{document}:{line}: {told.strip()}")
    return count, complaints


def parsed_arguments(description):
    """Where compilers, simulator and libraries are."""
    parser = argparse.ArgumentParser(description=description)
    parser.add_argument("--cc", required=True)
    parser.add_argument("--cxx", required=True)
    parser.add_argument("--simulator", required=True)
    parser.add_argument("--library", type=Path, action="append", default=[])
    return parser.parse_args()


def main():
    arguments = parsed_arguments(__doc__)
    with tempfile.TemporaryDirectory(prefix="ux-samples-") as folder:
        count, complaints = check(Checker(arguments, Path(folder)))
    for complaint in complaints:
        print(complaint)
    print(f"{count} samples, {len(complaints)} complaint(s)")
    return 1 if complaints or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
