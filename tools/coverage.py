#!/usr/bin/env python3
"""tools/coverage.py BUILD_DIR REPORT [--at-least PERCENT]

Prints which part of the lines of src/ the tests have run, room by room, and the files that lack most.
BUILD_DIR was configured with TXS_COVERAGE, and the tests have run in it since. REPORT gets every line
that did not run, as FILE:LINE: TEXT. Exit code 1 when less than PERCENT of all lines ran.

src/ui is not counted: much of it is forms, and whether those are right is seen on a display.
"""

import argparse
import json
import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent


def read_counts(build):
    """For each file of src/, its lines that hold code, and those of them that ran."""
    done = subprocess.run(
        ["gcovr", "--root", ROOT, "--filter", "src/", "--exclude", "src/ui/", "--json"]
        + ["-j", str(os.cpu_count()), build],
        stdout=subprocess.PIPE,
        cwd=ROOT,
        check=True,
    )
    counts = {}
    for file in json.loads(done.stdout)["files"]:
        lines = [line for line in file["lines"] if not line.get("gcovr/noncode")]
        counts[file["file"]] = (
            {line["line_number"] for line in lines},
            {line["line_number"] for line in lines if line["count"] > 0},
        )
    return counts


def row(name, lines, ran):
    return f"  {name:<44} {lines:>6} {lines - ran:>8} {100 * ran / max(lines, 1):>8.1f} %"


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("report", type=pathlib.Path)
    parser.add_argument("--at-least", type=float, default=0.0)
    arguments = parser.parse_args()

    counts = read_counts(arguments.build.resolve())
    rooms = {}
    for name, (lines, ran) in counts.items():
        room = rooms.setdefault(name.split("/")[1], [0, 0])
        room[0] += len(lines)
        room[1] += len(ran)
    print(f"  {'room':<44} {'lines':>6} {'not run':>8} {'run':>10}")
    for name in sorted(rooms):
        print(row(name, *rooms[name]))
    total = [sum(room[index] for room in rooms.values()) for index in (0, 1)]
    print(row("src without ui", *total))

    worst = sorted(counts.items(), key=lambda item: len(item[1][1]) - len(item[1][0]))
    print("\n  most lines not run")
    for name, (lines, ran) in worst[:8]:
        if len(ran) < len(lines):
            print(row(name, len(lines), len(ran)))

    with arguments.report.open("w", encoding="utf-8") as report:
        for name, (lines, ran) in sorted(counts.items()):
            text = (ROOT / name).read_text(encoding="utf-8").splitlines()
            for number in sorted(lines - ran):
                report.write(f"{name}:{number}: {text[number - 1].strip()}\n")
    print(f"\n  every one of them: {arguments.report}")

    if not total[0]:
        print("coverage: nothing was counted", file=sys.stderr)
        return 1
    percent = 100 * total[1] / total[0]
    if percent < arguments.at_least:
        print(f"coverage: {percent:.1f} % is less than {arguments.at_least:g} %", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
