#!/usr/bin/env python3
"""tools/count_tests.py JUNIT GTEST_DIR [CHECK=ok|failed ...]

Adds up what a test run did and prints it: every case of every GoogleTest program, every other test
of CTest, and the checks named on the command line. Ends with the line 'N passed, N failed'.
JUNIT "-" says that no tests were to run, only checks.

A GoogleTest program counts by its own report (GTEST_DIR/<program>.xml). It counts one failure more
when CTest saw it fail although its report shows none: it crashed, or a sanitizer stopped it at the
end. Exit code 1 when something failed, or when nothing ran at all.
"""

import pathlib
import sys
import xml.etree.ElementTree as ElementTree


def count_cases(report):
    passed = failed = skipped = 0
    for case in ElementTree.parse(report).getroot().iter("testcase"):
        if case.find("failure") is not None or case.find("error") is not None:
            failed += 1
        elif case.get("status") == "notrun" or case.get("result") == "skipped":
            skipped += 1
        else:
            passed += 1
    return passed, failed, skipped


def count_program(test, gtest_dir):
    """Counts of one CTest test, and whether they are GoogleTest cases."""
    status = test.get("status")
    ok = status == "run" and test.find("failure") is None and test.find("error") is None
    report = gtest_dir / (test.get("name") + ".xml")
    if report.is_file():
        try:
            passed, failed, skipped = count_cases(report)
        except ElementTree.ParseError:
            return (0, 1, 0), True
        if not ok and failed == 0:
            failed = 1
        return (passed, failed, skipped), True
    if status in ("disabled", "notrun") and test.find("skipped") is not None:
        return (0, 0, 1), False
    return ((1, 0, 0) if ok else (0, 1, 0)), False


def main():
    if len(sys.argv) < 3:
        print(__doc__, file=sys.stderr)
        return 2
    junit, gtest_dir = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    total = [0, 0, 0]

    def add(name, counts, unit):
        for index, count in enumerate(counts):
            total[index] += count
        passed, failed, skipped = counts
        line = f"  {name:<32} {passed:>5} passed"
        line += f", {failed} FAILED" if failed else ""
        line += f", {skipped} skipped" if skipped else ""
        print(f"{line}  ({unit})")

    print("\nSummary")
    for check in sys.argv[3:]:
        name, _, result = check.rpartition("=")
        add(name, (1, 0, 0) if result == "ok" else (0, 1, 0), "check")
    if junit.is_file():
        for test in ElementTree.parse(junit).getroot().iter("testcase"):
            counts, is_gtest = count_program(test, gtest_dir)
            add(test.get("name"), counts, "GoogleTest cases" if is_gtest else "test")
    elif sys.argv[1] != "-":
        print("  CTest wrote no report")
        total[1] += 1
    passed, failed, skipped = total
    print()
    print(f"{passed} passed, {failed} failed" + (f", {skipped} skipped" if skipped else ""))
    return 1 if failed or not passed else 0


if __name__ == "__main__":
    sys.exit(main())
