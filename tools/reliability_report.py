#!/usr/bin/env python3
"""tools/reliability_report.py BUILD_DIRECTORY [--write]

Runs the tests with the label "reliability" of a build and prints the figures that they give, as the
table of docs/RELIABILITY.md; with --write, puts it there. Create is killed at each of its calls, which
takes some minutes, unless TXS_ROUNDS says otherwise. A figure is a line of a test's output:
    RELIABILITY what was tried: 123
Exit code 1 when a test failed; nothing is written then.
"""

import datetime
import os
import pathlib
import re
import subprocess
import sys

DOCUMENT = pathlib.Path(__file__).parent.parent / "docs" / "RELIABILITY.md"
BEGIN = "<!-- figures: begin, written by tools/reliability_report.py -->\n"
END = "<!-- figures: end -->\n"


def run_tests(build):
    """Figures by test, and the tests that were passed, failed and skipped."""
    command = ["ctest", "--test-dir", str(build), "-L", "^reliability$", "-V"]
    environment = {"TXS_ROUNDS": "0", **os.environ}
    lines = subprocess.run(
        command, stdout=subprocess.PIPE, text=True, check=False, env=environment
    ).stdout.splitlines()
    figures, names, results = [], {}, {}
    for line in lines:
        if match := re.match(r"\s*Start\s+(\d+): (\S+)", line):
            names[match[1]] = match[2]
        elif match := re.match(r"(\d+): RELIABILITY (.+): (\d+)$", line):
            figures.append((names[match[1]], match[2], int(match[3])))
        elif match := re.match(r"\s*\d+/\d+ Test\s+#(\d+): .*?(Passed|Skipped|Failed|Timeout|\*\*\*)", line):
            results[names[match[1]]] = match[2]
    return figures, results


def table(figures, results, build):
    day = datetime.date.today().isoformat()
    skipped = [name for name, result in results.items() if result == "Skipped"]
    kind = re.search(r"^CMAKE_BUILD_TYPE:\w+=(.*)$", (build / "CMakeCache.txt").read_text(), re.M)[1]
    text = f"Last run: {day}, build type {kind}, {len(results)} tests, {len(skipped)} skipped.\n\n"
    text += "| tried | how often | by |\n|---|---:|---|\n"
    for test, what, count in figures:
        text += f"| {what} | {count:,} | `{test}` |\n"
    for test in skipped:
        text += f"| not tried on that machine | | `{test}` |\n"
    return text


def main():
    if len(sys.argv) < 2 or sys.argv[1].startswith("-"):
        print(__doc__, file=sys.stderr)
        return 2
    build = pathlib.Path(sys.argv[1])
    figures, results = run_tests(build)
    print(table(figures, results, build))
    failed = [name for name, result in results.items() if result not in ("Passed", "Skipped")]
    if failed or not figures:
        print("failed: " + (", ".join(failed) or "no figures at all"), file=sys.stderr)
        return 1
    if "--write" in sys.argv[2:]:
        text = DOCUMENT.read_text(encoding="utf-8")
        before, rest = text.split(BEGIN)
        _, after = rest.split(END)
        DOCUMENT.write_text(before + BEGIN + table(figures, results, build) + END + after, encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
