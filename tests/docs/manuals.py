#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A tool's manual and its --help tell the same options, the simulator's the same steps of scripts,
and the documents' command lines use no other options."""

import argparse
import re
import subprocess
import sys
from pathlib import Path

import samples

ROOT = samples.project.ROOT
MANUALS = {"ux-sim": "sim/ux-sim.1", "ux-remote": "tools/ux-remote.1",
           "ux-inputd": "tools/ux-inputd.1", "ux-view": "tools/ux-view.1"}
STEPS_OF = "ux-sim"

OPTION = re.compile(r"--([a-z][a-z-]*)")
HELPED = re.compile(r"^  (--.*?)(?:  |$)", re.M)
TOLD = re.compile(r"\bFl -([a-z][a-z-]*)")
SCRIPTS = re.compile(r"^\.Sh SCRIPTS$(.*?)^\.Sh ", re.M | re.S)
STEP = re.compile(r"^\.It Cm ((?:[a-z]+ ?)+)", re.M)
HELPED_STEPS = re.compile(r"^Script verbs.*", re.M | re.S)
# The part of a command line that is the tool's own: what follows "--" is the host's.
COMMAND = re.compile(r"\b(ux-sim|ux-remote|ux-inputd|ux-view)((?:\\\n|[^\n|&;])*)")


def help_of(tool):
    return subprocess.run([tool, "--help"], stdout=subprocess.PIPE, check=True,
                          encoding="utf-8").stdout


def options_of(helped):
    return {name for line in HELPED.findall(helped) for name in OPTION.findall(line)}


def differences(what, told, helped):
    for name in sorted(told - helped):
        yield f"{what} {name} is in the manual only"
    for name in sorted(helped - told):
        yield f"{what} {name} is in --help only"


def steps_of_manual(manual):
    """The words that steps begin with, such as "wait still": those before an argument."""
    return {step.strip() for step in STEP.findall(SCRIPTS.search(manual).group(1))}


def check_tool(name, helped):
    manual = (ROOT / MANUALS[name]).read_text(encoding="utf-8")
    yield from differences(f"{name}: option", set(TOLD.findall(manual)), options_of(helped))
    if name == STEPS_OF:
        verbs = HELPED_STEPS.search(helped).group()
        for step in sorted(steps_of_manual(manual)):
            if not re.search(rf"\b{step}\b", verbs):
                yield f"{name}: --help does not tell the step '{step}'"


def command_lines():
    """(document, tool, options) of every command line of the documents."""
    for document in samples.project.documents():
        for _, language, code in samples.samples(document):
            for tool, rest in COMMAND.findall(code if language == "sh" else ""):
                yield document, tool, OPTION.findall(re.split(r"\s-- ", rest)[0])


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("tools", nargs="+", type=Path)
    arguments = parser.parse_args()
    helped = {tool.name: help_of(tool) for tool in arguments.tools}
    found = [complaint for name, text in helped.items() for complaint in check_tool(name, text)]
    lines = 0
    for document, tool, options in command_lines():
        lines += 1
        known = options_of(helped[tool]) if tool in helped else set(options)
        found += [f"{document}: {tool} has no --{name}" for name in options if name not in known]
    print("\n".join(found))
    return 1 if found or lines == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
