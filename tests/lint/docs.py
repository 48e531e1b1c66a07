# SPDX-License-Identifier: MIT
"""Documents name only what exists: links, headings, pictures, paths and tests in backticks."""

import re

import project

LINK = re.compile(r"!?\[[^\]]*\]\(\s*<?([^)\s>]+)>?[^)]*\)")
CODE_SPAN = re.compile(r"(?<!`)`([^`\n]+)`(?!`)")
FENCE = re.compile(r"^(```|~~~).*?^\1", re.M | re.S)

# A code span is taken for a path when it looks like one and begins in the project.
PATH = re.compile(r"(?:\./)?[\w.+-]+(?:/[\w.+*-]+)*/?")
FILE_NAME = re.compile(r"[\w.+-]+\.(?:h|c|cpp|py|cmake|md|map|uxs|json|in)")

# A code span that names a test, and where tests get their names.
TEST_NAME = re.compile(r"[A-Z]\w+\.[a-z0-9]+(?:_[a-z0-9]+)+")
TEST = re.compile(r"^TEST(?:_[FP])?\(\s*(\w+),\s*(\w+)\)", re.M)

HEADING = re.compile(r"^#+ +(.+?) *$", re.M)

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


def without_fences(text):
    return FENCE.sub(lambda block: "\n" * block.group().count("\n"), text)


def names(document):
    """(line, target) of every path that the document names."""
    text = project.text(document)
    top = {p.name for p in project.ROOT.iterdir()}
    prose = without_fences(text)
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


def anchors(document):
    """What a link into a document may end with: its headings as the usual viewers spell them."""
    for match in HEADING.finditer(without_fences(document.read_text(encoding="utf-8"))):
        yield re.sub(r"[^\w -]", "", match.group(1).lower()).replace(" ", "-")


def missing_anchors(document):
    """(line, link) of every link to a heading that is not there."""
    prose = without_fences(project.text(document))
    for match in LINK.finditer(prose):
        path, _, anchor = match.group(1).partition("#")
        target = project.ROOT / document.parent / path if path else project.ROOT / document
        if anchor and target.suffix == ".md" and target.exists() and anchor not in anchors(target):
            yield prose.count("\n", 0, match.start()) + 1, match.group(1)


def tests():
    return {f"{suite}.{name}" for path in project.code() if path.parts[0] == "tests"
            for suite, name in TEST.findall(project.text(path))}


def missing_tests(document, known):
    """(line, name) of every test that the document names and nobody wrote."""
    prose = without_fences(project.text(document))
    for match in CODE_SPAN.finditer(prose):
        if TEST_NAME.fullmatch(match.group(1)) and match.group(1) not in known:
            yield prose.count("\n", 0, match.start()) + 1, match.group(1)


def check():
    known = tests()
    for document in project.documents():
        for line, target in names(document):
            if not exists(document, target):
                yield f"{document}:{line}: {target} does not exist"
        for line, target in missing_anchors(document):
            yield f"{document}:{line}: no heading for {target}"
        for line, name in missing_tests(document, known):
            yield f"{document}:{line}: no test {name}"
