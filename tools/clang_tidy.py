#!/usr/bin/env python3
"""tools/clang_tidy.py [--profile] BUILD_DIR [FILE ...]

Runs clang-tidy over the sources that BUILD_DIR/compile_commands.json names, or over FILEs of them, and
prints what it finds in them and in their headers. Exit code 1 when it found something.

Most of clang-tidy's time goes into the headers of libraries, which it reads and searches anew for every
source. So the sources go through it in bundles: a text that includes one source after the other, whose
libraries are read once. Two sources that define the same name, each for itself, go into different
bundles; a bundle that does not compile all the same is taken apart. The one thing that a bundle hides
is a using-declaration that only another source of it uses.

A bundle without findings leaves a stamp in BUILD_DIR/clang-tidy and is not looked at again until a
source, a header of this project, .clang-tidy or clang-tidy itself is another. --profile looks at all
of them again, and tells which checks took how long.
"""

import argparse
import collections
import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import resource
import shlex
import shutil
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDERS = ("src", "tests", "samples", "benchmarks")
# Longer bundles save little more, and leave one processor idle at the end.
MAX_LINES = 5000

# What a source defines at the left edge, where namespaces are not indented.
NAMES = [
    re.compile(pattern)
    for pattern in (
        r"(?:TYPED_)?TEST(?:_F|_P)?\s*\(\s*(\w+\s*,\s*\w+)",
        r"(?:template\s*<[^>]*>\s*)?(?:class|struct|union|enum(?:\s+class)?)\s+(?:alignas\(\w+\)\s+)?(\w+)",
        r"(?:using|namespace)\s+(\w+)\s*=",
        r"#\s*define\s+(\w+)",
        r"(?!namespace|using|#)[A-Za-z_][\w:<>,*&\s\[\]\".]*?[\s*&](\w+)\s*(?:\(|\[|=|;|\{)",
    )
]
# There is one in every program; a bundle gives each a name of its own.
ENTRIES = ("main", "LLVMFuzzerTestOneInput", "LLVMFuzzerCustomMutator")
# Of no meaning to clang, or none that differs from source to source.
UNKNOWN_WORDS = ("-c", "-MD", "-Winvalid-pch", "-Werror", "-fPIC", "-fPIE", "-fno-keep-inline-dllexport")
INCLUDE = re.compile(r'^#\s*include "([^"]+)"', re.MULTILINE)
# A bundle includes its sources like headers.
OWN_FILES = rf"^{re.escape(str(ROOT))}/({'|'.join(FOLDERS)})/.*\.(h|cpp)$"
FINDING = re.compile(r"(.+?):(\d+:\d+): (error|warning): (.*)")
PROFILE = re.compile(r"\s*([\d.]+) \([^)]*\)\s+.*\s([\d.]+) \([^)]*\)\s+([\w.-]+)$")


def names_of(text):
    names = set()
    for line in text.splitlines():
        match = next(filter(None, (name.match(line) for name in NAMES)), None)
        if match:
            names.add(re.sub(r"\s", "", match.group(1)))
    return names


@functools.cache
def flags_of_target(compiler):
    """What a cross compiler need not be told: its target, and where its standard library is."""
    match = re.match(r"(\w+-w64-mingw32)-", pathlib.Path(compiler).name)
    if not match:
        return []
    command = [compiler, "-E", "-v", "-x", "c++", os.devnull]
    words = subprocess.run(command, capture_output=True, text=True, check=True).stderr
    folders = [line.strip() for line in words.splitlines() if re.match(r" /.*/c\+\+", line)]
    return [(f"--target={match.group(1)}",)] + [("-isystem", folder) for folder in folders]


class Headers:
    """The names in the headers of this project."""

    def __init__(self):
        self.known = {}

    def names_behind(self, text):
        names = set()
        for path in INCLUDE.findall(text):
            if path not in self.known:
                self.known[path] = set()  # for headers that include each other
                file = next(filter(pathlib.Path.is_file, (ROOT / f / path for f in FOLDERS)), None)
                if file:
                    header = file.read_text(encoding="utf-8")
                    self.known[path] = names_of(header) | self.names_behind(header)
            names |= self.known[path]
        return names


class Source:
    def __init__(self, entry, headers):
        self.path = pathlib.Path(entry["file"])
        self.name = str(self.path.relative_to(ROOT))
        text = self.path.read_text(encoding="utf-8")
        self.lines = text.count("\n")
        names = names_of(text)
        self.entries = sorted(names.intersection(ENTRIES))
        self.names = names.difference(ENTRIES)
        self.header_names = headers.names_behind(text)
        # What its own headers declare it defines for all.
        self.own_names = self.names - self.header_names
        self.flags, self.first_includes = [], []
        compiler, *words = shlex.split(entry["command"])
        self.read_command(iter(words), entry["file"])
        self.flags += flags_of_target(compiler)
        # clang-tidy takes the nearest .clang-tidy.
        folders = self.path.relative_to(ROOT).parents
        self.config = next(f for f in folders if (ROOT / f / ".clang-tidy").is_file())

        # The other sources need not go through its headers.
        self.knows_toolkit = any(flag[0].startswith("-D__WX") for flag in self.flags)

    def order(self):
        """Those first that call an entry of another, by the name that it has without a bundle."""
        return bool(self.entries), "main" not in self.entries

    def read_command(self, words, file):
        for word in words:
            if word in ("-o", "-MF", "-MT", "-MQ"):
                next(words)
            elif word == "-include":
                # A precompiled header; clang reads its text.
                self.first_includes.append(next(words))
            elif word == "-isystem":
                self.flags.append((word, next(words)))
            elif word not in UNKNOWN_WORDS and word != file:
                self.flags.append((word,))


class Bundle:
    def __init__(self, sources):
        self.sources = sources
        self.lines = sum(source.lines for source in sources)
        self.names = set().union(*(source.names for source in sources))
        self.own_names = set().union(*(source.own_names for source in sources))
        self.header_names = set().union(*(source.header_names for source in sources))

    def has_room_for(self, source):
        return self.lines + source.lines <= MAX_LINES and not (
            self.names & source.names
            or self.own_names & source.header_names
            or self.header_names & source.own_names
        )

    def flags(self):
        flags = dict.fromkeys(flag for source in self.sources for flag in source.flags)
        return [word for flag in flags for word in flag]

    def text(self):
        headers = dict.fromkeys(h for source in self.sources for h in source.first_includes)
        lines = [f'#include "{header}"' for header in headers]
        for number, source in enumerate(sorted(self.sources, key=Source.order)):
            lines += [f"#define {entry} {entry.capitalize()}{number}" for entry in source.entries]
            lines.append(f'#include "{source.path}"  // NOLINT(bugprone-suspicious-include)')
            lines += [f"#undef {entry}" for entry in source.entries]
        return "\n".join(lines) + "\n"


def make_bundles(sources):
    groups = collections.defaultdict(list)
    for source in sorted(sources, key=lambda source: (-source.lines, source.name)):
        bundles = groups[source.config, source.knows_toolkit]
        for bundle in bundles:
            if bundle.has_room_for(source):
                bundles[bundles.index(bundle)] = Bundle(bundle.sources + [source])
                break
        else:
            bundles.append(Bundle([source]))
    bundles = [bundle for group in groups.values() for bundle in group]
    return sorted(bundles, key=lambda bundle: -bundle.lines)


class Runner:
    def __init__(self, build, bundles, profile):
        self.folder = build / "clang-tidy"
        self.unchanged = 0
        self.profile = collections.Counter() if profile else None
        digest = hashlib.sha256(subprocess.check_output(["clang-tidy", "--version"]))
        for folder in FOLDERS + ("resources",):
            for header in sorted((ROOT / folder).rglob("*.h")):
                digest.update(str(header).encode() + b"\0" + header.read_bytes() + b"\0")
        self.common = digest.digest()
        # A bundle stands where it finds the .clang-tidy of its sources.
        self.configs = {}
        for config in {bundle.sources[0].config for bundle in bundles}:
            for folder in (config, *config.parents):
                if (ROOT / folder / ".clang-tidy").is_file():
                    (self.folder / folder).mkdir(parents=True, exist_ok=True)
                    copy = shutil.copy(ROOT / folder / ".clang-tidy", self.folder / folder)
                    self.configs[folder] = pathlib.Path(copy).read_bytes()

    def run(self, bundle):
        """Findings of a bundle, as a set of texts."""
        text, flags, config = bundle.text(), bundle.flags(), bundle.sources[0].config
        digest = hashlib.sha256(self.common)
        for part in (text, *flags):
            digest.update(part.encode() + b"\0")
        for folder in (config, *config.parents):
            digest.update(self.configs.get(folder, b""))
        for source in bundle.sources:
            digest.update(source.path.read_bytes() + b"\0")
        file = self.folder / config / f"{digest.hexdigest()[:32]}.cpp"
        stamp = file.with_suffix(".clean")
        if stamp.exists() and self.profile is None:
            self.unchanged += len(bundle.sources)
            return set()
        file.write_text(text, encoding="utf-8")
        command = ["clang-tidy", "--quiet", f"--header-filter={OWN_FILES}", str(file)]
        if self.profile is not None:
            command.insert(1, "--enable-check-profile")
        done = subprocess.run(
            command + ["--"] + flags, capture_output=True, text=True, errors="replace", cwd=ROOT
        )
        if "[clang-diagnostic-error]" in done.stdout and len(bundle.sources) > 1:
            half = len(bundle.sources) // 2
            errors = [line for line in done.stdout.splitlines() if "[clang-diagnostic-error]" in line]
            print(f"  taken apart: {errors[0]}", flush=True)
            return self.run(Bundle(bundle.sources[:half])) | self.run(Bundle(bundle.sources[half:]))
        if self.profile is not None:
            for line in done.stderr.splitlines():
                match = PROFILE.match(line)
                if match:
                    self.profile[match.group(3)] += float(match.group(2))
        findings = self.read(done.stdout)
        if done.returncode and not findings:
            words = "\n".join((done.stdout + done.stderr).splitlines()[-20:])
            findings.add(f"{bundle.sources[0].name}: clang-tidy ended with {done.returncode}\n{words}")
        if not findings:
            stamp.touch()
        return findings

    @staticmethod
    def read(output):
        findings, current = [], None
        for line in output.splitlines():
            match = FINDING.match(line)
            if match:
                path, place, kind, words = match.groups()
                current = []
                findings.append(current)
                line = f"{os.path.relpath(path, ROOT)}:{place}: {kind}: {words}"
            if current is not None:
                current.append(line)
        return {"\n".join(finding) for finding in findings}


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[2])
    parser.add_argument("--profile", action="store_true")
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("files", nargs="*", type=pathlib.Path)
    arguments = parser.parse_args()
    build = arguments.build.resolve()
    only = {file.resolve() for file in arguments.files}

    started = time.monotonic()
    sources, headers = {}, Headers()
    for entry in json.loads((build / "compile_commands.json").read_text()):
        path = pathlib.Path(entry["file"])
        if not path.is_relative_to(ROOT) or path.is_relative_to(build):
            continue
        if path.relative_to(ROOT).parts[0] in FOLDERS and (not only or path in only):
            # A source of two programs is looked at once.
            sources.setdefault(path, Source(entry, headers))
    if not sources or len(sources) < len(only):
        print("clang-tidy: no such source in this build", file=sys.stderr)
        return 2
    bundles = make_bundles(sources.values())
    runner = Runner(build, bundles, arguments.profile)
    findings = set()
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for done in concurrent.futures.as_completed([pool.submit(runner.run, b) for b in bundles]):
            found = done.result()
            for finding in sorted(found - findings):
                print(finding, flush=True)
            findings |= found
    if arguments.profile:
        for check, seconds in runner.profile.most_common():
            print(f"  {seconds:8.1f} s  {check}")
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    print(
        f"clang-tidy: {len(sources)} sources in {len(bundles)} bundles ({runner.unchanged} sources"
        f" as before), {len(findings)} findings, {time.monotonic() - started:.0f} s,"
        f" {usage.ru_utime + usage.ru_stime:.0f} s of processor time"
    )
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
