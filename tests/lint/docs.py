# SPDX-License-Identifier: MIT
"""Documents name only what exists: links, pictures and paths in backticks."""

import re

import project

LINK = re.compile(r"!?\[[^\]]*\]\(\s*<?([^)\s>]+)>?[^)]*\)")
CODE_SPAN = re.compile(r"(?<!`)`([^`\n]+)`(?!`)")
FENCE = re.compile(r"^(```|~~~).*?^\1", re.M | re.S)

# A code span is taken for a path when it looks like one and begins in the project.
PATH = re.compile(r"(?:\./)?[\w.+-]+(?:/[\w.+*-]+)*/?")
FILE_NAME = re.compile(r"[\w.+-]+\.(?:h|c|cpp|py|cmake|md|map|uxs|json|in)")

# What a build makes, not what the project holds.
MADE = ("build/",)


def looks_like_path(span, top):
    if not PATH.fullmatch(span) or span.startswith(MADE):
        return False
    first = span.removeprefix("./").split("/")[0]
    return ("/" in span and (first in top or span.startswith("./"))
            or bool(FILE_NAME.fullmatch(span)))


def exists(document, target):
    """Relative to the document or to the root; a star stands for anything."""
    for base in (project.ROOT / document.parent, project.ROOT):
        if "*" in target and any(base.glob(target)) or (base / target).exists():
            return True
    return False


def names(document):
    """(line, target) of every path that the document names."""
    text = project.text(document)
    top = {p.name for p in project.ROOT.iterdir()}
    prose = FENCE.sub(lambda block: "\n" * block.group().count("\n"), text)
    for pattern in (LINK, CODE_SPAN):
        for match in pattern.finditer(prose):
            target = match.group(1)
            line = prose.count("\n", 0, match.start()) + 1
            if pattern is LINK:
                target = target.split("#")[0]
                if target and not re.match(r"[a-z]+:", target):
                    yield line, target
            elif looks_like_path(target, top):
                yield line, target.removeprefix("./")


def check():
    for document in project.documents():
        for line, target in names(document):
            if not exists(document, target):
                yield f"{document}:{line}: {target} does not exist"
