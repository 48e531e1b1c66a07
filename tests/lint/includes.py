# SPDX-License-Identifier: MIT
"""Who includes whom: no circles, and only downwards."""

import re

import project

INCLUDE = re.compile(r'^\s*#\s*include\s+["<]([^">]+)[">]', re.M)

# Private headers go downwards only; files of one rank may include each other.
RANKS = {"graphics": 1, "font": 2, "event": 4, "core": 4, "widgets": 5}
# The kit that objects are built with lies in core/ but below it.
OBJECT_KIT_RANK = 3
OBJECT_KIT = re.compile(r"core/(object_kit|save_area|child_walk)\.(h|cpp)")

# Any unit of the library may include these two.
OPEN_HEADERS = {"include/ux.h", "include/ux_bitmap.h", "platform/em862x.h"}

# Folders outside the library, and what they may include beside their own files and the standard's.
OUTSIDE = {
    "include": (),
    "platform": (),
    "sim": (),
    "tools": ("sim/",),
    "examples": ("include/ux.h",),
}


def resolve(path, name, known):
    """The project file that `path` includes by `name`, or None for others' headers."""
    for folder in (path.parent.as_posix(), ".", "include"):
        candidate = name if folder == "." else f"{folder}/{name}"
        if candidate in known:
            return candidate
    return None


def graph():
    """file -> the project files it includes."""
    known = {p.as_posix() for p in project.code()}
    edges = {}
    for path in project.code():
        names = INCLUDE.findall(project.text(path))
        found = (resolve(path, name, known) for name in names)
        edges[path.as_posix()] = [f for f in found if f]
    return edges


def circles(edges):
    """Complaints about every include that leads back to a file being visited."""
    done = set()

    def visit(node, trail):
        if node in trail:
            yield "includes form a circle: " + " -> ".join(trail[trail.index(node):] + [node])
            return
        if node in done:
            return
        for target in edges.get(node, ()):
            yield from visit(target, trail + [node])
        done.add(node)

    for node in sorted(edges):
        yield from visit(node, [])


def rank(name):
    if OBJECT_KIT.fullmatch(name):
        return OBJECT_KIT_RANK
    return RANKS.get(name.split("/")[0])


def layer_complaint(name, target):
    """Why `name` must not include `target`, or None."""
    folder = name.split("/")[0]
    own = target.split("/")[0] == folder
    if folder in OUTSIDE:
        allowed = own or target in OPEN_HEADERS and folder == "platform" or any(
            target.startswith(prefix) for prefix in OUTSIDE[folder])
        return None if allowed else f"{name} must not include {target}"
    mine = rank(name)
    if mine is None or target in OPEN_HEADERS:
        return None  # tests, benchmarks and fuzz targets may look inside
    theirs = rank(target)
    if theirs is None:
        return f"{name} is part of the library and must not include {target}"
    return None if theirs <= mine else f"{name} includes {target}, which lies above it"


def check():
    edges = graph()
    yield from circles(edges)
    for name, targets in edges.items():
        for target in targets:
            complaint = layer_complaint(name, target)
            if complaint:
                yield complaint
