#!/usr/bin/env python3
"""Compiles the installed headers in every way that a client may include them.

headers.py PREFIX CHECK, where CHECK is one of the functions below with a name check_...
"""

import os
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

STRICT = ["-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Werror"]
QT = ["QtCore/QtCore", "QtNetwork/QtNetwork", "QMessageBox"]
# What programs in C include; everything else is for C++ with Qt.
C_HEADERS = ["windows.h", "export.h", "threadsafety.h", "corefoundation.h", "corefoundation/*.h",
             "winapi/*.h"]

# What the packages define for sources written for Windows.
windows = ["-D_DEFAULT_SOURCE"]
# Headers of the system that such sources may have besides.
SYSTEM = ["sys/types.h", "sys/stat.h", "unistd.h", "pthread.h", "stdio.h", "stdlib.h", "string.h",
          "time.h", "wchar.h"]

prefix = Path(sys.argv[1])
include = prefix / "include"
forwarding = include / "KxQts" / "windows"
our_paths = ["-I", str(include), "-I", str(forwarding)]


def qt_paths():
    flags = subprocess.run(["pkg-config", "--cflags", "Qt6Network", "Qt6Widgets"],
                           check=True, capture_output=True, text=True).stdout.split()
    return [flag.replace("-I", "-isystem", 1) for flag in flags]


def c_headers():
    found = {path for pattern in C_HEADERS for path in (include / "KxQts").glob(pattern)}
    return sorted(str(path.relative_to(include)) for path in found)


def forwarding_headers():
    return sorted(str(path.relative_to(forwarding)) for path in forwarding.rglob("*.[hH]"))


def all_headers():
    found = (path for path in (include / "KxQts").rglob("*.h") if forwarding not in path.parents)
    return sorted(str(path.relative_to(include)) for path in found)


def compiler(language):
    if "++" in language:
        return os.environ.get("CXX", "c++").split() + [f"-std={language}", "-fPIC", "-x", "c++"]
    return os.environ.get("CC", "cc").split() + [f"-std={language}", "-x", "c"]


def source_of(headers):
    return "".join(f"#include <{header}>\n" for header in headers) + "extern int something;\n"


def compiles(language, headers, flags, options=("-fsyntax-only",)):
    """Why a source that includes the headers does not compile; empty when it does."""
    command = compiler(language) + [*STRICT, *our_paths, *flags, *options, "-"]
    result = subprocess.run(command, input=source_of(headers), capture_output=True, text=True)
    if result.returncode == 0:
        return ""
    return f"{language}, {' '.join(headers)} {' '.join(flags)}:\n{result.stderr}"


def report(jobs):
    """Runs compilations side by side; the check fails with what the failed ones said."""
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        failures = [text for text in pool.map(lambda job: compiles(*job), jobs) if text]
    print(f"{len(jobs)} compilations, {len(failures)} failed")
    sys.exit("\n".join(failures) if failures or not jobs else 0)


def check_c():
    """Alone and twice, without Qt's paths, in C and in C++, with and without UNICODE."""
    unicode = ["-DUNICODE", "-D_UNICODE"]
    jobs = [(language, [header, header], flags)
            for header in c_headers() for language in ("c99", "c++20") for flags in ([], unicode)]
    jobs += [(language, [header, header], [*windows, *flags]) for header in forwarding_headers()
             for language in ("c99", "c++20") for flags in ([], unicode)]
    headers = c_headers() + forwarding_headers()
    for language in ("c99", "gnu11", "gnu17", "c++17", "c++20", "c++2b"):
        for flags in (windows, [*windows, *unicode]):
            jobs.append((language, headers, flags))
            jobs.append((language, headers[::-1], flags))
            jobs.append((language, SYSTEM + ["windows.h"] + SYSTEM, flags))
    report(jobs)


def check_cxx():
    """Alone and twice, in C++ with Qt."""
    flags = qt_paths()
    report([("c++20", [header, header], flags) for header in all_headers()])


def check_order():
    """All together in both orders, before and after Qt's."""
    headers = all_headers() + forwarding_headers()
    plain, unicode = qt_paths(), [*qt_paths(), "-DUNICODE", "-D_UNICODE"]
    report([("c++20", headers + QT, plain), ("c++20", QT + headers[::-1], plain),
            ("c++20", headers[::-1] + QT, unicode), ("c++20", QT + headers, unicode)])


def check_gathered():
    """KxQts.h includes every header but those under Windows names."""
    command = compiler("c++20") + [*our_paths, *qt_paths(), "-M", "-"]
    text = subprocess.run(command, input=source_of(["KxQts/KxQts.h"]), check=True,
                          capture_output=True, text=True).stdout
    missing = [header for header in all_headers()
               if header != "KxQts/KxQts.h" and f"/{header}" not in text]
    print(f"not gathered: {missing}")
    sys.exit(1 if missing else 0)


def macros_of(language, headers, flags):
    command = compiler(language) + [*our_paths, *flags, "-dM", "-E", "-"]
    text = subprocess.run(command, input=source_of(headers), check=True, capture_output=True,
                          text=True).stdout
    return {line.split()[1].split("(")[0] for line in text.splitlines()}


def check_macros():
    """Windows names without their A or W are macros in <windows.h> and not outside it."""
    library = prefix / "lib/Korvex/libKxQts.so"
    symbols = subprocess.run(["nm", "-D", "--defined-only", "--format=just-symbols", library],
                             check=True, capture_output=True, text=True).stdout.split()
    undecorated = {symbol[:-1] for symbol in symbols
                   if symbol[-1] == "A" and symbol[:-1] + "W" in symbols}
    leaked = undecorated & (macros_of("c99", c_headers(), []) |
                            macros_of("c++20", all_headers(), qt_paths()))
    missing = undecorated - macros_of("c99", ["windows.h"], windows)
    print(f"{len(undecorated)} names, {len(leaked)} of them macros: {sorted(leaked)}")
    print(f"{len(missing)} of them unknown to <windows.h>: {sorted(missing)}")
    sys.exit(1 if leaked or missing or not undecorated else 0)


def check_short_wchar():
    """Wide characters of 16 bits are refused, and the message says so."""
    complaint = compiles("c99", ["KxQts/windows.h"], ["-fshort-wchar"])
    print(complaint)
    sys.exit(0 if "-fshort-wchar" in complaint.split("\n", 1)[-1] else 1)


globals()[f"check_{sys.argv[2]}"]()
