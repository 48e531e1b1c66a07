# SPDX-License-Identifier: MIT
"""clang-tidy over what is shipped, with a memory: a file is looked at again when it, a header that
it includes, its command line, the configuration or the tool has changed."""

import concurrent.futures
import hashlib
import json
import os
import re
import shutil
import subprocess
from pathlib import Path

import includes
import project

# Tests and benchmarks stay out: the macros of their frameworks take most of the time and raise
# alarms of their own.
CHECKED = re.compile(r"(core|event|graphics|font|widgets|platform|sim|tools|examples)/.*\.(c|cpp)")


def digest(*parts):
    total = hashlib.sha256()
    for part in parts:
        data = part if isinstance(part, bytes) else str(part).encode()
        total.update(len(data).to_bytes(8, "little") + data)
    return total.hexdigest()


def commands(build):
    """file -> its compile command, of the files that clang-tidy is to check."""
    database = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
    found = {}
    for entry in database:
        path = Path(entry["directory"], entry["file"]).resolve()
        if not path.is_relative_to(project.ROOT):
            continue
        name = path.relative_to(project.ROOT).as_posix()
        if CHECKED.fullmatch(name):
            found.setdefault(name, entry["command"])
    return found


def reached(name, edges):
    """The file and all files of the project that it includes, directly or not."""
    found = {name}
    pending = [name]
    while pending:
        new = set(edges.get(pending.pop(), ())) - found
        found |= new
        pending += new
    return sorted(found)


def keys_of(found, tool):
    """file -> what decides about its result, as one word."""
    version = subprocess.run([tool, "--version"], stdout=subprocess.PIPE, check=True).stdout
    base = digest(version, (project.ROOT / ".clang-tidy").read_bytes())
    edges = includes.graph()
    return {name: digest(base, command, *[part for path in reached(name, edges)
                                          for part in (path, (project.ROOT / path).read_bytes())])
            for name, command in found.items()}


def tidy(tool, build, name):
    done = subprocess.run([tool, "--quiet", "-p", build, project.ROOT / name],
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=False)
    if done.returncode == 0:
        return None
    return f"{name}:\n{done.stdout.rstrip() or done.stderr.rstrip()}"


def check(build):
    tool = shutil.which("clang-tidy")
    if tool is None:
        yield "clang-tidy is not installed"
        return
    found = commands(build)
    if not found:
        yield f"{build}/compile_commands.json names no file of the library"
        return
    memory = build / "lint-cache"
    memory.mkdir(exist_ok=True)
    keys = keys_of(found, tool)
    due = sorted(name for name, key in keys.items() if not (memory / key).exists())
    print(f"clang-tidy: {len(due)} of {len(found)} files to check", flush=True)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for name, complaint in zip(due, pool.map(lambda n: tidy(tool, build, n), due)):
            if complaint:
                yield complaint
            else:
                (memory / keys[name]).touch()
    for old in memory.iterdir():
        if old.name not in keys.values():
            old.unlink()
