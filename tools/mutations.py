#!/usr/bin/env python3
"""tools/mutations.py [--only NAME ...] [--list | --check] [--scratch DIR]

Makes one condition after the other wrong, in a copy of the project, and runs the tests that ought to
notice. Prints which test did. Exit code 1 when a mutation survived, or no longer fits the source.

Not part of test.sh: run it when one of these conditions, or a test of theirs, has changed. It builds
the tests once, and then for each mutation one source and the programs with it. DIR, which it makes
and keeps for the next time, is build/mutations unless given. What test.sh does is --check: each
mutation still has its place in the sources. It builds nothing.
"""

import argparse
import pathlib
import re
import resource
import subprocess
import sys
import typing

ROOT = pathlib.Path(__file__).resolve().parent.parent
# A mutated loop may not end, or eat memory without an end.
TEST_SECONDS = 300
TEST_BYTES = 6 << 30


class Mutation(typing.NamedTuple):
    name: str
    harm: str  # what users would suffer
    file: str
    original: str  # stands in the file exactly once
    mutated: str
    programs: tuple  # the test programs that ought to notice, the nearest first


MUTATIONS = [
    Mutation(
        "full medium",
        "an archive that just fills a disk is laid down by another rule than its neighbours",
        "src/create/disk_distribution.cpp",
        "if (need < free) {",
        "if (need <= free) {",
        ("create_test",),
    ),
    Mutation(
        "split boundary",
        "the last piece on a disk is charged without rounding: the next archive overfills the disk",
        "src/create/disk_distribution.cpp",
        "free -= static_cast<std::int64_t>(RoundUpTo1024(static_cast<std::uint64_t>(piece)));",
        "free -= piece;",
        ("create_test",),
    ),
    Mutation(
        "archiver's result",
        "a file that could not be compressed is left out, and Create reports success",
        "src/create/compression.cpp",
        "if (code != ArchiveResult::kSuccess) {",
        "if (code < ArchiveResult::kSuccess) {",
        ("create_test",),
    ),
    Mutation(
        "runtime setup in row 2",
        "the runtime setup in the second row is copied and never run",
        "src/create/setup_control_file.cpp",
        "i < files_.size() && i < 2;",
        "i < files_.size() && i < 1;",
        ("create_test",),
    ),
    Mutation(
        "CRC of a large file",
        "archives of files that are packed in several blocks cannot be unpacked",
        "src/environment/archiver_builtin.cpp",
        "entry.crc = libdeflate_crc32(entry.crc, input.data(), input.size());",
        "entry.crc = libdeflate_crc32(0, input.data(), input.size());",
        ("environment_test",),
    ),
    Mutation(
        "CRC in verify",
        "verify calls an installation sound although bytes are wrong",
        "src/tool/archive_check.cpp",
        "if (crc_ != crc) Fail(",
        "if (crc_ > crc + 0xFFFFFFFFUL) Fail(",
        ("tool_test",),
    ),
    Mutation(
        "size in verify",
        "verify calls an archive sound that holds less than the script says",
        "src/tool/archive_check.cpp",
        "if (central.bytes != expected.length_bytes) {",
        "if (central.bytes > expected.length_bytes) {",
        ("tool_test",),
    ),
    Mutation(
        "INI: first key wins",
        "of a key that stands twice the other value counts than in every other Windows program",
        "src/environment/profile_document.cpp",
        "section.first_of_key.try_emplace(FoldCase(Decode(line.NameBytes())), section.lines.size());",
        "section.first_of_key.insert_or_assign(FoldCase(Decode(line.NameBytes())),"
        " section.lines.size());",
        ("environment_test",),
    ),
    Mutation(
        "INI: quotes",
        "a value that is one single quote is read from beyond its end",
        "src/environment/profile_document.cpp",
        "return value.size() >= 2 && value.front() == value.back() &&",
        "return !value.empty() && value.front() == value.back() &&",
        ("environment_test",),
    ),
    Mutation(
        "registry fallback",
        "what a 64-bit computer keeps in the other view of its registry is not found",
        "src/environment/registry_host.cpp",
        "if (std::optional<RegistryValue> value = file.Value(place, name)) return value;",
        "return file.Value(place, name);",
        ("contract_test",),
    ),
    Mutation(
        "registry lock",
        "two programs that write the registry file at once lose one's changes",
        "src/environment/registry_host.cpp",
        "LOCK_EX | LOCK_NB",
        "LOCK_SH | LOCK_NB",
        ("contract_test",),
    ),
    Mutation(
        "version of a type library",
        "the library in just the version that is asked for is not taken where only a newer would do",
        "src/scan/type_libraries.cpp",
        "offered->minor_part >= wanted->minor_part;",
        "offered->minor_part > wanted->minor_part;",
        ("scan_test",),
    ),
    Mutation(
        "day of a runtime setup",
        "a file that the runtime setup brings along is packed a second time",
        "src/scan/predefined_setups.cpp",
        "last_write.day} <= found->second;",
        "last_write.day} < found->second;",
        ("scan_test",),
    ),
    Mutation(
        "cycle of dependencies",
        "files that need each other make Scan run without end",
        "src/scan/dependency_resolution.cpp",
        "(is_product ? done.product : done.usual)) return true;",
        "false) return true;",
        ("scan_test",),
    ),
    Mutation(
        "changed flag",
        "closing after an edit does not ask, and the edit is lost",
        "src/ui/setup_wizard_presenter.cpp",
        "    field = text;\n    application_.document.changed = true;\n",
        "    field = text;\n",
        ("ui_test",),
    ),
    Mutation(
        "exit code",
        "a build server takes an installation that was not finished for a success",
        "src/startup/start_routine.cpp",
        "RunCreate(application, view).succeeded ? kExitNormal : kExitCreateFailed;",
        "RunCreate(application, view).succeeded ? kExitNormal : kExitNormal;",
        ("startup_test",),
    ),
]


def run(command, **more):
    return subprocess.run(command, text=True, errors="replace", capture_output=True, **more)


def copy_tree(tree):
    """Brings the copy up to date without touching what is the same: it would be built anew."""
    listed = run(
        ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=ROOT, check=True
    ).stdout
    wanted = {name for name in listed.split("\0") if name and (ROOT / name).is_file()}
    for name in wanted:
        source, target = ROOT / name, tree / name
        if target.is_file() and target.read_bytes() == source.read_bytes():
            continue
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_bytes(source.read_bytes())
        target.chmod(source.stat().st_mode)


def build(tree, programs):
    return run(["cmake", "--build", "build/core", "--target", *programs], cwd=tree)


def limit_memory():
    resource.setrlimit(resource.RLIMIT_AS, (TEST_BYTES, TEST_BYTES))


def notice(tree, program):
    """The first test of the program that fails; None when all pass."""
    found = list((tree / "build/core/tests").glob(f"*/{program}"))
    try:
        done = run(
            [found[0]], cwd=found[0].parent, timeout=TEST_SECONDS, preexec_fn=limit_memory
        )
    except subprocess.TimeoutExpired:
        return f"{program} does not end"
    if done.returncode == 0:
        return None
    failed = re.findall(r"^\[  FAILED  \] (\S+?),? ", done.stdout, re.MULTILINE)
    if failed:
        return failed[0] + (f" and {len(set(failed)) - 1} more" if len(set(failed)) > 1 else "")
    started = re.findall(r"^\[ RUN      \] (\S+)", done.stdout, re.MULTILINE)
    return f"{started[-1] if started else program} ends the program ({done.returncode})"


def places(tree, mutation):
    """How often its condition stands in its source."""
    path = tree / mutation.file
    return path.read_text(encoding="utf-8").count(mutation.original) if path.is_file() else 0


def check(chosen):
    misfits = [mutation for mutation in chosen if places(ROOT, mutation) != 1]
    for mutation in misfits:
        print(
            f"{mutation.file}: the condition of mutation '{mutation.name}' stands there"
            f" {places(ROOT, mutation)} times instead of once",
            file=sys.stderr,
        )
    return 1 if misfits or not chosen else 0


def try_out(tree, mutation):
    """(caught, words)"""
    if places(tree, mutation) != 1:
        return False, f"no longer fits: {mutation.file}"
    path = tree / mutation.file
    source = path.read_text(encoding="utf-8")
    path.write_text(source.replace(mutation.original, mutation.mutated), encoding="utf-8")
    try:
        built = build(tree, mutation.programs)
        if built.returncode:
            return False, "does not compile:\n" + built.stdout[-2000:]
        for program in mutation.programs:
            noticed = notice(tree, program)
            if noticed:
                return True, noticed
        return False, "SURVIVED " + ", ".join(mutation.programs)
    finally:
        path.write_text(source, encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[2])
    parser.add_argument("--only", nargs="+", default=[])
    parser.add_argument("--list", action="store_true", help="as rows of a table, without a run")
    parser.add_argument("--check", action="store_true", help="that each still fits, without a run")
    parser.add_argument("--scratch", type=pathlib.Path, default=ROOT / "build/mutations")
    arguments = parser.parse_args()
    chosen = [m for m in MUTATIONS if not arguments.only or m.name in arguments.only]
    if arguments.list:
        for mutation in chosen:
            print(f"| {mutation.name} | {mutation.file} | {mutation.harm} |")
        return 0
    if arguments.check:
        return check(chosen)

    tree = arguments.scratch.resolve()
    tree.mkdir(parents=True, exist_ok=True)
    copy_tree(tree)
    programs = sorted({program for m in chosen for program in m.programs})
    configured = run(
        ["cmake", "--preset", "core", "-D", "TXS_WARNINGS_AS_ERRORS=ON"], cwd=tree
    )
    built = build(tree, programs) if configured.returncode == 0 else configured
    if built.returncode:
        print(built.stdout[-4000:] + built.stderr[-4000:], file=sys.stderr)
        return 1
    for program in programs:
        failed = notice(tree, program)
        if failed:
            print(f"{program} fails without any mutation: {failed}", file=sys.stderr)
            return 1

    survived = 0
    for mutation in chosen:
        caught, words = try_out(tree, mutation)
        survived += not caught
        print(f"| {mutation.name} | {mutation.harm} | {words} |", flush=True)
    print(f"\n{len(chosen) - survived} of {len(chosen)} mutations caught")
    return 1 if survived or not chosen else 0


if __name__ == "__main__":
    sys.exit(main())
