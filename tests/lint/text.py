# SPDX-License-Identifier: MIT
"""The plain facts of a file: its licence line, its length, its layout, its merges, its shell."""

import os
import re
import shutil
import subprocess

import project

LICENCE = "SPDX-License-Identifier: MIT"
LICENCE_LINES = 2  # a script's first line names its interpreter
LONGEST = 500

# A line of seven equals signs alone may underline a heading.
OPEN_MERGE = re.compile(r"(<{7}|>{7}|\|{7})( |$)")

SHELLS = (b"#!/bin/sh", b"#!/bin/bash", b"#!/usr/bin/env bash")

# One header holds the whole public interface, with prose for each of its parts.
MAY_BE_LONGER = {"include/ux.h"}


def licence():
    for path in project.sources():
        head = project.text(path).splitlines()[:LICENCE_LINES]
        if not any(LICENCE in line for line in head):
            yield f"{path}: does not open with '{LICENCE}'"


def length():
    for path in project.sources():
        lines = project.text(path).count("\n")
        if lines > LONGEST and path.as_posix() not in MAY_BE_LONGER:
            yield f"{path}: {lines} lines, the limit is {LONGEST}"


def merges():
    for path in sorted({*project.sources(), *project.documents()}):
        for number, line in enumerate(project.text(path).splitlines(), 1):
            if OPEN_MERGE.match(line):
                yield f"{path}:{number}: a merge was left open"


def clang_format(*options):
    """The finished run over all code, or None without the tool."""
    command = shutil.which("clang-format")
    if command is None:
        return None
    paths = [str(p) for p in project.code()]
    return subprocess.run([command, *options, *paths], cwd=project.ROOT, stderr=subprocess.PIPE,
                          text=True, check=False)


def fix_layout():
    done = clang_format("-i")
    if done is None or done.returncode != 0:
        print("clang-format is not installed" if done is None else done.stderr.rstrip())
        return 1
    return 0


def layout():
    done = clang_format("--dry-run", "-Werror")
    if done is None:
        yield "clang-format is not installed"
        return
    wrong = {line.split(":")[0] for line in done.stderr.splitlines() if ": error:" in line}
    for name in sorted(wrong):
        yield f"{name}: not laid out as .clang-format says; run ./dev format"
    if done.returncode != 0 and not wrong:
        yield done.stderr.rstrip()


def shell_scripts():
    for path in project.files():
        if path.suffix == ".sh":
            yield path
        elif not path.suffix and os.access(project.ROOT / path, os.X_OK):
            with open(project.ROOT / path, "rb") as file:
                if file.readline().startswith(SHELLS):
                    yield path


def shell():
    command = shutil.which("shellcheck")
    if command is None:
        print("shellcheck is not installed: shell scripts are not checked")
        return
    scripts = [str(p) for p in shell_scripts()]
    if not scripts:
        yield "no shell script was found"
        return
    done = subprocess.run([command, *scripts], cwd=project.ROOT, stdout=subprocess.PIPE, text=True,
                          check=False)
    if done.returncode != 0:
        yield done.stdout.rstrip()
