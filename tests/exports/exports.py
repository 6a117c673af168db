#!/usr/bin/env python3
"""What the library exports, against the checked-in list and against the documentation.

exports.py compare LIBRARY      fails when the library exports something else than the list says
exports.py update LIBRARY       writes the list
exports.py declared             fails when the headers declare a call in C that is not in the list
exports.py documented           fails when the list and docs/differences.md do not name the same
"""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
LIST = ROOT / "tests/exports/exports.txt"
DIFFERENCES = ROOT / "docs/differences.md"
HEADERS = ROOT / "include/KxQts"

# Tables that every class of a kind has; one line for the class is enough to see them come or go.
TABLES = ("vtable for ", "typeinfo for ", "typeinfo name for ", "VTT for ")


def exported_by(library):
    output = subprocess.run(["nm", "-D", "--defined-only", "-C", library], check=True,
                            capture_output=True, text=True).stdout
    return sorted({line.split(" ", 2)[2] for line in output.splitlines()})


def listed():
    return LIST.read_text().splitlines()


def as_on_32_bits(symbols):
    """There, `size_t` is `unsigned int`, `ptrdiff_t` is `int` and `va_list` is `char*`."""
    return sorted({re.sub(r"\blong\b(?! long)(?<!long long)", "int", symbol)
                   .replace("__va_list_tag (*) [1]", "char**").replace("__va_list_tag*", "char*")
                   for symbol in symbols})


def is_32_bit(library):
    return Path(library).read_bytes()[4] == 1


def compare(library):
    actual, expected = exported_by(library), listed()
    if is_32_bit(library):
        actual, expected = as_on_32_bits(actual), as_on_32_bits(expected)
    for symbol in sorted(set(actual) - set(expected)):
        print(f"exported, but not in the list: {symbol}")
    for symbol in sorted(set(expected) - set(actual)):
        print(f"in the list, but not exported: {symbol}")
    if actual != expected:
        sys.exit("If the interface was meant to change, run tests/exports/update.")
    print(f"{len(actual)} symbols, as listed")


def update(library):
    LIST.write_text("".join(symbol + "\n" for symbol in exported_by(library)))


def declared():
    """Every call and object in C that a header promises is exported, and the other way round."""
    text = "\n".join(path.read_text() for path in sorted(HEADERS.rglob("*.h")))
    promised = set(re.findall(r"^KXQTS_C_API\b[^;()]*?\b(\w+)(?:\[\])?\s*(?:\(|;)", text,
                              re.MULTILINE))
    exported = {symbol for symbol in listed() if re.fullmatch(r"\w+", symbol)}
    for name in sorted(promised - exported):
        print(f"declared, but not exported: {name}")
    for name in sorted(exported - promised):
        print(f"exported, but not declared: {name}")
    if promised != exported:
        sys.exit("Headers and library do not offer the same.")
    print(f"{len(promised)} calls and objects in C, all declared and exported")


def without_arguments(symbol):
    """The qualified name of a symbol: `Korvex::WEvent::set` of `Korvex::WEvent::set(int)`."""
    name = symbol.split("(", 1)[0]
    return name if "operator" not in name else name.split("operator", 1)[0] + "operator"


def class_of(name):
    """The class that a qualified name is a member of, or nothing. Korvex is the only namespace."""
    scopes = name.split("::")[:-1]
    namespace = ["Korvex"] if scopes[:1] == ["Korvex"] else []
    rest = scopes[len(namespace):]
    return "::".join(namespace + rest[:1]) if rest else ""


def interface():
    """Names of exported functions and objects that stand for themselves, of classes, of members."""
    free, classes, members = set(), set(), set()
    for symbol in listed():
        table = next((prefix for prefix in TABLES if symbol.startswith(prefix)), None)
        if table:
            classes.add(symbol[len(table):])
            continue
        # Tables reach a member of a second base through a thunk.
        name = without_arguments(re.sub("^(non-)?virtual thunk to ", "", symbol))
        owner = class_of(name)
        if owner:
            classes.add(owner)
            members.add(name)
        else:
            free.add(name)
    return free, classes, members


def rows():
    """The names in the first column of every table of the documentation."""
    for line in DIFFERENCES.read_text().splitlines():
        cells = line.split("|")
        if len(cells) > 2 and not set(cells[1]) <= set("- :"):
            for name in re.findall(r"`([^`]+)`", cells[1]):
                yield without_arguments(name.strip())


def unqualified(name):
    return name.removeprefix("Korvex::")


def defined_in_headers():
    """Inline functions, and classes of which nothing is exported."""
    text = "\n".join(path.read_text() for path in sorted(HEADERS.rglob("*.h")))
    functions = re.findall(r"\binline\b[^;{}()]*?\b(\w+)\(", text)
    classes = re.findall(r"^\s*(?:class|struct|union)\b[^;{}()]*?\b(\w+)\s*(?:final\s*)?[:{]", text,
                         re.MULTILINE)
    return set(functions) | set(classes)


def documented():
    free, classes, members = interface()
    named = {unqualified(name) for name in rows()}
    missing = sorted(name for name in free | classes if unqualified(name) not in named)
    known = {unqualified(name) for name in free | classes | members} | defined_in_headers()
    unknown = sorted(named - known)
    for name in missing:
        print(f"exported, but without a row: {name}")
    for name in unknown:
        print(f"a row names what is not exported: {name}")
    if missing or unknown:
        sys.exit(f"{DIFFERENCES.relative_to(ROOT)} is not complete: one row for every exported "
                 "function and class, and none for anything else.")
    print(f"{len(free)} functions and objects, {len(classes)} classes, all with a row")


if __name__ == "__main__":
    actions = {"compare": compare, "update": update, "declared": declared,
               "documented": documented}
    actions[sys.argv[1]](*sys.argv[2:])
