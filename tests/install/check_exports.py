#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Looks into libux.so.1 as built: its exports and needs, what it runs at load, its size."""

import argparse
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

SONAME = "libux.so.1"
VERSION_NODE = "UX_1"
# libm, libstdc++ and libgcc_s stay out: the players' systems need not have them.
ALLOWED_LIBRARIES = re.compile(r"libc\.so\.\d+|ld-linux[\w-]*\.so\.\d+|libpng\d*\.so\.\d+"
                               r"|libjpeg\.so\.\d+")
# The start-up object's entry, and libgcc's look at the processor for functions built for several.
COMPILERS_OWN_INITIALISERS = {"frame_dummy", "__cpu_indicator_init"}
STRIPPED_LIMIT_BYTES = 200 * 1024


def tool(*command):
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE).stdout


def code_of(header):
    """The header's text without comments and preprocessor lines."""
    text = re.sub(r"/\*.*?\*/", "", header.read_text(encoding="utf-8"), flags=re.S)
    return re.sub(r"^\s*#.*$", "", text, flags=re.M)


def declared(header):
    """The names behind UX_API in the header and its neighbours, read from their text alone."""
    names = set()
    text = "".join(code_of(path) for path in sorted(header.parent.glob("ux*.h")))
    for declaration in re.findall(r"\bUX_API\b([^;]*);", text):
        function = re.search(r"(\w+)\s*\(", declaration)
        data = re.search(r"(\w+)\s*$", declaration)
        names.add((function or data).group(1))
    return names


def dynamic_symbols(library):
    """(name, version, defined) of every dynamic symbol but weak wishes, which may stay open."""
    symbols = []
    for line in tool("readelf", "--dyn-syms", "-W", library).splitlines():
        fields = line.split()
        if len(fields) < 8 or not fields[0].rstrip(":").isdigit():
            continue
        name, _, version = fields[7].partition("@")
        defined = fields[6] != "UND"
        if defined or fields[4] != "WEAK":
            symbols.append((name, version.lstrip("@"), defined))
    return symbols


def check_exports(library, header):
    wanted = declared(header)
    exported = {(n, v) for n, v, defined in dynamic_symbols(library) if defined}
    names = {n for n, v in exported if n != VERSION_NODE}
    for name in sorted(wanted - names):
        yield f"{name} is declared in the header but not exported"
    for name in sorted(names - wanted):
        yield f"{name} is exported but not declared in the header"
    for name, version in sorted(exported):
        if name != VERSION_NODE and version != VERSION_NODE:
            yield f"{name} has the version '{version}', expected {VERSION_NODE}"
    if not wanted:
        yield "no declaration was found in the header"


def check_undefined(library, chip_header):
    """Undefined symbols without a version come from no library named here: they are the chip's."""
    chip = set(re.findall(r"\w+", code_of(chip_header)))
    for name, version, defined in dynamic_symbols(library):
        if name and not defined and not version and name not in chip:
            yield f"{name} is undefined and not declared in {chip_header.name}"


def check_dynamic_section(library):
    dynamic = tool("readelf", "-d", "-W", library)
    soname = re.findall(r"\(SONAME\).*\[(.*)\]", dynamic)
    if soname != [SONAME]:
        yield f"SONAME is {soname}, expected {SONAME}"
    for needed in re.findall(r"\(NEEDED\).*\[(.*)\]", dynamic):
        if not ALLOWED_LIBRARIES.fullmatch(needed):
            yield f"needs {needed}"
    for tag in ("RPATH", "RUNPATH", "TEXTREL"):
        if f"({tag})" in dynamic:
            yield f"has a {tag} entry"


def initialisers(library):
    """Names of the functions that run at load, from the relocated constructor arrays."""
    sections = tool("readelf", "-S", "-W", library)
    arrays = [(int(start, 16), int(start, 16) + int(size, 16)) for start, size in re.findall(
        r"\.(?:init_array|preinit_array|ctors)\S*\s+\S+\s+(\S+)\s+\S+\s+(\S+)", sections)]
    names = {int(value, 16): name for value, name in re.findall(
        r"^\s*\d+: (\w+)\s+\d+ FUNC .* (\S+)$", tool("readelf", "-s", "-W", library), re.M)}
    for place, addend in re.findall(r"^(\w{8,}) .*RELATIVE\s+(\w+)$",
                                    tool("readelf", "-r", "-W", library), re.M):
        if any(start <= int(place, 16) < end for start, end in arrays):
            yield names.get(int(addend, 16), f"function at {addend}")


def check_initialisers(library):
    found = list(initialisers(library))
    if not found:
        yield "the constructor array was not understood: not even the compiler's own is in it"
    for name in found:
        if name not in COMPILERS_OWN_INITIALISERS:
            yield f"{name} runs at load"


def check_size(library):
    with tempfile.TemporaryDirectory(prefix="ux-exports-") as name:
        stripped = Path(name) / SONAME
        shutil.copy(library, stripped)
        tool("strip", "--strip-unneeded", stripped)
        size = stripped.stat().st_size
    print(f"stripped size: {size} bytes")
    if size >= STRIPPED_LIMIT_BYTES:
        yield f"takes {size} bytes stripped, the limit is {STRIPPED_LIMIT_BYTES}"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("library", type=Path)
    parser.add_argument("header", type=Path)
    parser.add_argument("chip_header", type=Path, help="what others supply at link time")
    arguments = parser.parse_args()
    library = arguments.library
    complaints = [*check_exports(library, arguments.header),
                  *check_undefined(library, arguments.chip_header),
                  *check_dynamic_section(library), *check_size(library),
                  *check_initialisers(library)]
    for complaint in complaints:
        print(f"{SONAME}: {complaint}", file=sys.stderr)
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
