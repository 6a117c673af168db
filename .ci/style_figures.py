#!/usr/bin/env python3
"""Prints figures of style of the production code: how long files and functions are, and how much of
the code depends on conditions of the preprocessor. With --strict it fails where a limit is passed.

It reads code as clang-format lays it out: a function ends with a closing brace that stands as far
to the left as the line on which its header begins.
"""

import re
import statistics
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
PRODUCTION = ["include", "support", "handles", "files", "system", "registry", "daemon", "disk",
              "messages", "security", "platform", "tools"]
SUFFIXES = {".h", ".c", ".cpp"}
LONGEST_FUNCTION = 60
MEDIAN_FILE = 110

NO_FUNCTION = re.compile(r"\s*(?:namespace|class|struct|union|enum|extern|typedef|if|else|for|while|"
                         r"switch|do|case|default|try|catch|return|using|static_assert)\b")


def production_files():
    listed = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard",
                             *PRODUCTION], cwd=ROOT, check=True, capture_output=True, text=True)
    return [ROOT / name for name in listed.stdout.split("\n")
            if Path(name).suffix in SUFFIXES and (ROOT / name).exists()]


def indentation(line):
    return len(line) - len(line.lstrip())


def header_start(lines, brace):
    """Where the header of the block begins that opens at the end of a line; None for a block that
    is no function's. A header goes on over open parentheses and lists of initialisers."""
    first = brace
    depth = lines[brace].count(")") - lines[brace].count("(")
    while first > 0 and (depth > 0 or lines[first - 1].endswith((",", " :"))):
        first -= 1
        depth += lines[first].count(")") - lines[first].count("(")
    text = " ".join(line.strip() for line in lines[first:brace + 1])
    if "(" not in text or "=" in text.split("(")[0] or NO_FUNCTION.match(lines[first]):
        return None
    return first


def functions(lines):
    """Every function with a body of more than one line, as its name and its count of lines."""
    line = 0
    while line < len(lines):
        start = header_start(lines, line) if lines[line].endswith("{") else None
        if start is not None:
            closing = " " * indentation(lines[start]) + "}"
            end = next((place for place in range(line + 1, len(lines))
                        if lines[place].rstrip(";,)") == closing), None)
            if end is not None:
                name = re.search(r"([~\w:]+)\s*\(", lines[start])
                yield (name.group(1) if name else lines[start].strip()), end - start + 1
                line = end
        line += 1


def main():
    longest, long_functions, counted, lengths, conditions = (0, ""), [], 0, [], 0
    for path in production_files():
        lines = path.read_text(encoding="utf-8").splitlines()
        lengths.append(len(lines))
        conditions += sum(1 for line in lines if re.match(r"\s*#\s*(?:if|ifdef|ifndef|elif)\b", line))
        for name, length in functions(lines):
            counted += 1
            longest = max(longest, (length, f"{path.relative_to(ROOT)}: {name}"))
            if length > LONGEST_FUNCTION:
                long_functions.append(f"{path.relative_to(ROOT)}: {name} ({length} lines)")
    total = sum(lengths)
    median = statistics.median(lengths)
    print(f"Production code: {len(lengths)} files, {total} lines, {counted} functions of more than "
          "one line")
    print(f"Median length of a file: {median:g} lines (limit {MEDIAN_FILE})")
    print(f"Functions of more than {LONGEST_FUNCTION} lines: {len(long_functions)} (limit 0)")
    print(f"Longest function: {longest[0]} lines ({longest[1]})")
    print(f"Preprocessor conditions: {conditions}, {1000 * conditions / total:.1f} per 1000 lines")
    for text in long_functions:
        print(f"  too long: {text}")
    if "--strict" in sys.argv and (long_functions or median >= MEDIAN_FILE):
        sys.exit("A limit is passed.")


main()
