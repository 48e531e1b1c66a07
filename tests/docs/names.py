#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Documents name only functions, types and constants that the public headers have, and
docs/widgets.md names every function of every widget."""

import re
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "lint"))
import project  # noqa: E402

HEADERS = ("include/ux.h", "include/ux_bitmap.h")
NAMED = re.compile(r"`&?((?:ux|uxDraw|uxFont|UX)_?\w+)(?:\(\))?`")
FUNCTION = re.compile(r"^UX_API [^;]*?\b(ux_\w+)\(", re.M)
WIDGET = re.compile(r"ux_(?:container|text_label|text_button|image_label|image_button|text_field|"
                    r"select_box|check_box|slider_bar|button_list|memo|clock|calendar)_\w+")

# Words of other files that look alike.
OTHERS = {"ux_bitmap", "UX_SIM_SHIM"}


def complaints():
    headers = "".join(project.text(Path(header)) for header in HEADERS)
    known = set(re.findall(r"\w+", headers)) | OTHERS
    for document in project.documents():
        for name in NAMED.findall(project.text(document)):
            if name not in known:
                yield f"{document}: no {name} in {' and '.join(HEADERS)}"
    functions = {name for name in FUNCTION.findall(headers) if WIDGET.fullmatch(name)}
    if not functions:
        yield f"{HEADERS[0]}: no functions of widgets found"
    told = set(re.findall(r"`(\w+)`", project.text(Path("docs/widgets.md"))))
    for name in sorted(functions - told):
        yield f"docs/widgets.md: {name} is not told"


def main():
    found = list(complaints())
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
