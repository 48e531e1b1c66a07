#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the project's lint checks by name; prints complaints and ends with status 1 if any."""

import argparse
import sys
from pathlib import Path

import docs
import includes
import project
import text
import tidy

CHECKS = {
    "layout": (text.layout, "clang-format has nothing to change"),
    "licence": (text.licence, "every source opens with the licence line"),
    "merges": (text.merges, "no merge was left open"),
    "length": (text.length, "no source is too long"),
    "includes": (includes.check, "includes form no circle and go downwards only"),
    "docs": (docs.check, "documents name only paths, headings and tests that exist"),
    "shell": (text.shell, "shellcheck has nothing to say"),
    "tidy": (None, "clang-tidy has nothing to say"),
}


def main():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter,
        epilog="\n".join(f"  {name:10}{claim}" for name, (_, claim) in CHECKS.items()))
    parser.add_argument("checks", nargs="*", metavar="check", help="default: all")
    parser.add_argument("--build", type=Path, default=project.ROOT / "build/release",
                        help="a configured tree, for its compile_commands.json")
    parser.add_argument("--fix-layout", action="store_true",
                        help="lay out all sources with clang-format and check nothing")
    arguments = parser.parse_args()
    if arguments.fix_layout:
        return text.fix_layout()
    unknown = [name for name in arguments.checks if name not in CHECKS]
    if unknown:
        parser.error(f"no such check: {', '.join(unknown)}")
    failed = 0
    for name in arguments.checks or CHECKS:
        check, claim = CHECKS[name]
        complaints = list(check() if check else tidy.check(arguments.build.resolve()))
        for complaint in complaints:
            print(complaint)
        print(f"{name}: {claim}" if not complaints else f"{name}: {len(complaints)} complaint(s)",
              flush=True)
        failed += len(complaints)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
