#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Installs a build into a temporary prefix, moves it, and builds and runs hosts against it: by
find_package and by pkg-config with the plain compilers, with and without --as-needed."""

import argparse
import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

CLIENTS = Path(__file__).resolve().parent / "client"


def run(command, **options):
    print("+", " ".join(map(str, command)), flush=True)
    done = subprocess.run(command, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          **options)
    print(done.stdout, end="", flush=True)
    if done.returncode != 0:
        sys.exit(f"failed with status {done.returncode}: {command[0]}")
    return done.stdout.strip()


def install(build, scratch):
    """Installs and then moves the tree, to prove that nothing in it knows its place."""
    first = scratch / "first"
    run(["cmake", "--install", build, "--prefix", first])
    prefix = scratch / "moved here"
    shutil.move(first, prefix)
    return prefix


def single(prefix, pattern):
    found = sorted(prefix.rglob(pattern))
    if len(found) != 1:
        sys.exit(f"expected one {pattern} below the prefix, found {found}")
    return found[0]


def run_client(program, prefix):
    libraries = single(prefix, "libux.so").parent
    run([program], env={**os.environ, "LD_LIBRARY_PATH": str(libraries)})
    linked = subprocess.run(["readelf", "-d", program], text=True, stdout=subprocess.PIPE,
                            check=True).stdout
    for name in ("libux.so.1", "libem862x-host.so"):
        if name not in linked:
            sys.exit(f"{program.name} does not need {name}")


def check_find_package(prefix, scratch, flags):
    build = scratch / f"cmake{len(flags)}"
    run(["cmake", "-S", CLIENTS, "-B", build, "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={prefix}",
         f"-DCMAKE_EXE_LINKER_FLAGS={flags}"])
    run(["cmake", "--build", build])
    for name in ("client-c", "client-cxx", "client-bitmap"):
        run_client(build / name, prefix)


def check_wrong_version(prefix, scratch):
    project = scratch / "wrong"
    project.mkdir()
    (project / "CMakeLists.txt").write_text(
        "cmake_minimum_required(VERSION 3.21)\nproject(wrong LANGUAGES C)\n"
        "find_package(ux 2 QUIET)\n"
        "if(ux_FOUND)\n    message(FATAL_ERROR \"version 1 answers to 2\")\nendif()\n")
    run(["cmake", "-S", project, "-B", project / "build", f"-DCMAKE_PREFIX_PATH={prefix}"])


def pkg_config(prefix, *arguments, package="ux"):
    directory = single(prefix, "ux.pc").parent
    return run(["pkg-config", *arguments, package],
               env={**os.environ, "PKG_CONFIG_PATH": str(directory)})


def check_pkg_config(prefix, scratch, flags):
    # The prefix holds a blank: the shell undoes the quoting that pkg-config printed.
    for compiler, standard, source, package in (("cc", "c11", "client.c", "ux"),
                                                ("c++", "c++20", "client.cpp", "ux"),
                                                ("cc", "c11", "bitmap.c", "ux-bitmap")):
        found = pkg_config(prefix, "--cflags", "--libs", package=package)
        program = scratch / f"{source}{len(flags)}"
        run(["sh", "-c", f"{compiler} -std={standard} -D_GNU_SOURCE '{CLIENTS / source}' {flags} "
                         f"{found} -o '{program}'"])
        run_client(program, prefix)


def check_platform_choice(prefix):
    chosen = pkg_config(prefix, "--define-variable=platform_libs=-lchip", "--libs")
    if "-lchip" not in chosen or "em862x-host" in chosen:
        sys.exit("platform_libs does not choose the chip's library")


def check_components(prefix, scratch):
    """A component that is none is refused, and hosts without the bitmap reader need nothing else."""
    for name, package, found in (("none", "ux 1 QUIET COMPONENTS nothing", "NOT ux_FOUND"),
                                 ("plain", "ux 1 QUIET", "ux_FOUND AND NOT TARGET PNG::PNG")):
        project = scratch / name
        project.mkdir()
        (project / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.21)\nproject(components LANGUAGES C)\n"
            f"find_package({package})\nif(NOT ({found}))\n"
            "    message(FATAL_ERROR \"wrong components\")\nendif()\n")
        run(["cmake", "-S", project, "-B", project / "build", f"-DCMAKE_PREFIX_PATH={prefix}"])


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build", type=Path, help="a configured and built tree")
    build = parser.parse_args().build
    with tempfile.TemporaryDirectory(prefix="ux-install-") as name:
        scratch = Path(name)
        prefix = install(build, scratch)
        check_wrong_version(prefix, scratch)
        check_components(prefix, scratch)
        check_platform_choice(prefix)
        for flags in ("", "-Wl,--as-needed"):
            check_find_package(prefix, scratch, flags)
            check_pkg_config(prefix, scratch, flags)


if __name__ == "__main__":
    main()
