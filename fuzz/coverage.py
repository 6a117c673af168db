#!/usr/bin/env python3
"""Tells how much of the files that a fuzz target is meant for its inputs reach, and which functions
they do not: coverage.py TARGET, with what the target prints for -print_coverage=1 on standard input.

Edges are those of the instrumented program: many belong to checks of the sanitizers and to the
unwinding of the stack, and are never taken as long as nothing is wrong.
"""

import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
FUNCTION = re.compile(r"(?:UN)?COVERED_FUNC: hits: (\d+) edges: (\d+)/(\d+) (.*) (\S+):\d+$")


def meant_for(target):
    for line in (ROOT / "fuzz" / "meant-for.txt").read_text().splitlines():
        name, _, files = line.partition(": ")
        if name == target:
            return {ROOT / file for file in files.split()}
    sys.exit(f"fuzz/meant-for.txt does not tell what {target} is meant for")


def main(target):
    files = meant_for(target)
    functions, taken, edges, missed = 0, 0, 0, []
    for line in sys.stdin.read().splitlines():
        match = FUNCTION.match(line)
        if not match or Path(match[5]).resolve() not in files:
            continue
        functions += 1
        taken += int(match[2])
        edges += int(match[3])
        if match[1] == "0":
            missed.append(re.sub(r"\(anonymous namespace\)::|\(.*", "", match[4]))
    if not functions:
        sys.exit(f"nothing of the files of {target} is instrumented")
    print(f"{target:16} {functions - len(missed):4} of {functions:4} functions"
          f" {taken:5} of {edges:5} edges")
    for name in sorted(set(missed)):
        print(f"    not reached: {name}")


main(sys.argv[1])
