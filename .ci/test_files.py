#!/usr/bin/env python3
"""Checks that every test file is compiled into a test program, and that no test is switched off.

test_files.py BUILD
"""

import json
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]


def compiled(build):
    commands = json.loads((Path(build) / "compile_commands.json").read_text())
    return {Path(command["directory"], command["file"]).resolve() for command in commands}


def switched_off(path):
    """Tests that GoogleTest passes over because of their name, and code that is not compiled."""
    for number, line in enumerate(path.read_text().splitlines(), 1):
        if re.search(r"\bDISABLED\B_\w|^\s*#\s*if\s+0\b", line):
            yield f"{path.relative_to(ROOT)}:{number}: switched off: {line.strip()}"


def main(build):
    files = sorted((ROOT / "tests").rglob("*_test.cpp"))
    built = compiled(build)
    problems = [f"{path.relative_to(ROOT)}: in no test program" for path in files
                if path.resolve() not in built]
    for path in sorted((ROOT / "tests").rglob("*.cpp")):
        problems.extend(switched_off(path))
    print(f"{len(files)} test files, {len(problems)} of them left out")
    sys.exit("\n".join(problems) if problems or not files else 0)


main(sys.argv[1])
