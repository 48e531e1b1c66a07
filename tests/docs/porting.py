#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""docs/porting.md lists and declares exactly the symbols of the chip that the library leaves
undefined. That the declarations are those of the header is samples.py's to find."""

import argparse
import re
import subprocess
import sys
from pathlib import Path

DOCUMENT = Path(__file__).resolve().parents[2] / "docs" / "porting.md"
LISTED = re.compile(r"^\| `(\w+)` \|", re.M)
FENCE = re.compile(r"^```c\n(.*?)^```$", re.M | re.S)
DECLARED = re.compile(r"^\w[^;]*?(\w+)(?:\([^;]*\))?;", re.M)


def symbols(nm, library, which):
    listing = subprocess.run([nm, "--dynamic", which, "--format=posix", library],
                             stdout=subprocess.PIPE, check=True, encoding="utf-8").stdout
    return {line.split()[0].split("@")[0] for line in listing.splitlines()}


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--nm", required=True)
    parser.add_argument("--library", required=True)
    parser.add_argument("--platform", required=True, help="a library that stands for the chip's")
    arguments = parser.parse_args()
    asked = (symbols(arguments.nm, arguments.library, "--undefined-only")
             & symbols(arguments.nm, arguments.platform, "--defined-only"))
    text = DOCUMENT.read_text(encoding="utf-8")
    listed = LISTED.findall(text)
    declared = DECLARED.findall("".join(FENCE.findall(text)))
    for name in sorted(asked - set(listed)):
        print(f"{DOCUMENT}: {name} is not listed")
    for name in sorted(name for name in set(listed)
                       if name not in asked or listed.count(name) > 1):
        print(f"{DOCUMENT}: {name} is not asked for, or listed twice")
    for name in sorted(set(listed) ^ set(declared)):
        print(f"{DOCUMENT}: {name} is listed or declared, and not both")
    return 0 if asked and sorted(listed) == sorted(asked) == sorted(declared) else 1


if __name__ == "__main__":
    sys.exit(main())
