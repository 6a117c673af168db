#!/usr/bin/env python3
"""Runs clang-tidy over every source that a build compiles: clang_tidy.py BUILD

What was found clean before is not looked at again while the text that its compiler sees, the
command and the configuration are the same. That is noted beside the compiler's cache if there is
one, for other checkouts too.
"""

import hashlib
import json
import os
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]


def configuration(source):
    """The settings in force for a file: those of its folder and of the folders above."""
    folders = [folder for folder in source.parents if folder == ROOT or ROOT in folder.parents]
    files = [folder / ".clang-tidy" for folder in folders]
    return b"".join(file.read_bytes() for file in files if file.exists())


def fingerprint(command, source):
    """What the result for a source depends on; nothing when it does not even compile."""
    words = shlex.split(command["command"])
    while words and "clang" not in Path(words[0]).name:
        words.pop(0)  # a compiler cache
    words = [word for word in words if word != "-c"]
    output = words.index("-o")
    preprocess = words[:output] + words[output + 2:] + ["-E", "-C", "-o", "-"]
    result = subprocess.run(preprocess, cwd=command["directory"], capture_output=True)
    if result.returncode != 0:
        return None
    parts = [VERSION, configuration(source), command["command"].encode(), result.stdout]
    # A checkout may stand anywhere.
    return hashlib.sha256(b"\0".join(parts).replace(bytes(ROOT), b".")).hexdigest()


def check(command):
    """The complaints about one source; empty when it is clean."""
    source = Path(command["directory"], command["file"]).resolve()
    stamp = STAMPS / (fingerprint(command, source) or "none")
    if stamp.exists():
        return source, ""
    result = subprocess.run(["clang-tidy", "--quiet", "-p", BUILD, source], capture_output=True,
                            text=True)
    if result.returncode != 0:
        return source, result.stdout + result.stderr
    if stamp.name != "none":
        stamp.touch()
    return source, ""


BUILD = Path(sys.argv[1]).resolve()
STAMPS = Path(os.environ.get("CCACHE_DIR", BUILD)) / "clang-tidy"
STAMPS.mkdir(parents=True, exist_ok=True)
VERSION = subprocess.run(["clang-tidy", "--version"], check=True, capture_output=True).stdout

commands = {command["file"]: command
            for command in json.loads((BUILD / "compile_commands.json").read_text())}
complaints = 0
with ThreadPoolExecutor(os.cpu_count()) as pool:
    for number, (source, text) in enumerate(pool.map(check, commands.values()), 1):
        print(f"[{number}/{len(commands)}] {source.relative_to(ROOT)}", flush=True)
        if text:
            complaints += 1
            print(text, flush=True)
sys.exit(f"clang-tidy complains about {complaints} of {len(commands)} files" if complaints else 0)
