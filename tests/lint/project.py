# SPDX-License-Identifier: MIT
"""The files of the project, as the lint checks see them."""

import subprocess
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]

CODE_SUFFIXES = {".c", ".cpp", ".h"}
SCRIPT_SUFFIXES = {".py", ".sh", ".cmake", ".uxs", ".map", ".in", ".html"}
SCRIPT_NAMES = {"dev", "run", "CMakeLists.txt", ".clang-tidy"}


def files():
    """Every file under version control or about to be, relative to the root, sorted."""
    listed = subprocess.run(
        ["git", "-C", ROOT, "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
    if listed.returncode == 0:
        names = {Path(name.decode()) for name in listed.stdout.split(b"\0") if name}
    else:  # an unpacked archive
        names = {p.relative_to(ROOT) for p in ROOT.rglob("*")}
        names = {p for p in names if p.parts[0] not in ("build", ".git", ".cache")}
    return sorted(p for p in names if (ROOT / p).is_file())


def code():
    return [p for p in files() if p.suffix in CODE_SUFFIXES]


def sources():
    """Everything a person writes in a programming or build language."""
    return [p for p in files()
            if p.suffix in CODE_SUFFIXES | SCRIPT_SUFFIXES or p.name in SCRIPT_NAMES]


def documents():
    return [p for p in files() if p.suffix == ".md"]


def text(path):
    return (ROOT / path).read_text(encoding="utf-8")
