#!/usr/bin/env python3
"""Runs benchmark programs and shows calls beside their floors: a table, JSON and a picture.

report.py [--repetitions N] [--publish] BUILD RESULTS [NAME...]
"""

import argparse
import json
import os
import platform
import re
import subprocess
import sys
from pathlib import Path

from picture import picture

PAGE = Path(__file__).resolve().parents[1] / "docs/performance.md"


def programs(build, names):
    listed = [Path(line) for line in (build / "programs.txt").read_text().split()]
    known = {path.name.removeprefix("bench_"): path for path in listed}
    unknown = set(names) - set(known)
    if unknown:
        sys.exit(f"no such benchmarks: {', '.join(sorted(unknown))}; there are {', '.join(known)}")
    return {name: known[name] for name in (names or sorted(known))}


def run(name, program, repetitions, results):
    """Runs one program. Its own table goes to a file; a failed one is shown."""
    ratios = results.resolve() / f"{name}.json"  # a program may go to another folder
    ratios.unlink(missing_ok=True)
    command = [program, f"--ratios={ratios}", f"--benchmark_repetitions={repetitions}"]
    print(f"{name} ...", file=sys.stderr, flush=True)
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    (results / f"{name}.txt").write_text(done.stdout)
    if done.returncode not in (0, 2) or not ratios.exists():
        sys.exit(f"{done.stdout}\n{name} failed with exit code {done.returncode}")
    rows = json.loads(ratios.read_text())
    ratios.unlink()
    return [{"program": name, **row, "ratio": row["call_ns"] / row["floor_ns"]} for row in rows]


def plain(name):
    """A benchmark's name without the settings that Google Benchmark appends."""
    return re.sub(r"/(real_time|manual_time|process_time|min_time:[\d.]+|iterations:\d+)\b", "", name)


def duration(nanoseconds):
    for limit, unit, size in ((1e3, "ns", 1), (1e6, "µs", 1e3), (1e9, "ms", 1e6)):
        if nanoseconds < limit:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds / 1e9:.3g} s"


def cells(row):
    return (row["program"], plain(row["call"]), duration(row["call_ns"]), plain(row["floor"]),
            duration(row["floor_ns"]), f"{row['ratio']:.2f}", f"{row['limit']:g}")


TITLES = ("Program", "Call", "Time", "Floor", "Time", "Ratio", "At most")


def text_table(rows):
    lines = [TITLES] + [cells(row) for row in rows]
    widths = [max(len(line[i]) for line in lines) for i in range(len(TITLES))]
    for line, row in zip(lines, [None] + rows):
        over = "  <-- over" if row and row["ratio"] > row["limit"] else ""
        aligned = (cell.rjust(width) if i in (2, 4, 5, 6) else cell.ljust(width)
                   for i, (cell, width) in enumerate(zip(line, widths)))
        yield "  ".join(aligned) + over


def markdown_table(rows):
    yield f"| {' | '.join(TITLES)} |"
    yield "|---|---|--:|---|--:|--:|--:|"
    for row in rows:
        program, call, time, floor, floor_time, ratio, limit = cells(row)
        yield f"| {program} | `{call}` | {time} | `{floor}` | {floor_time} | {ratio} | {limit} |"


def publish(rows, machine, svg):
    start, end = "<!-- table -->", "<!-- end of table -->"
    text = PAGE.read_text()
    before, after = text.split(start)[0], text.split(end)[1]
    table = "\n".join(markdown_table(rows))
    image = f"![Cost of calls in multiples of their floors]({PAGE.with_suffix('.svg').name})"
    PAGE.write_text(f"{before}{start}\n{machine}\n\n{table}\n\n{image}\n{end}{after}")
    PAGE.with_suffix(".svg").write_text(svg)


def machine(repetitions):
    try:
        load = f", load {os.getloadavg()[0]:.1f} at the start"
    except OSError:
        load = ""
    return (f"Medians of {repetitions} runs on {platform.machine()}, {os.cpu_count()} processors, "
            f"Linux {platform.release().split('-')[0]}{load}.")


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("--repetitions", type=int, default=5)
    arguments.add_argument("--publish", action="store_true")
    arguments.add_argument("build", type=Path)
    arguments.add_argument("results", type=Path)
    arguments.add_argument("names", nargs="*")
    given = arguments.parse_args()
    given.results.mkdir(parents=True, exist_ok=True)
    note = machine(given.repetitions)
    rows = [row for name, program in programs(given.build, given.names).items()
            for row in run(name, program, given.repetitions, given.results)]
    svg = picture([(f"{row['program']}: {plain(row['call'])}", row["ratio"], row["limit"])
                   for row in rows])
    (given.results / "ratios.json").write_text(json.dumps({"note": note, "rows": rows}, indent=2))
    (given.results / "ratios.svg").write_text(svg)
    if given.publish:
        publish(rows, note, svg)
    print(note, "", *text_table(rows), sep="\n")
    over = sum(row["ratio"] > row["limit"] for row in rows)
    print(f"\n{len(rows)} ratios, {over} over their limits; {given.results}/ratios.json, "
          f"{given.results}/ratios.svg")
    return 2 if over else 0


sys.exit(main())
