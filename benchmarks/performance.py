#!/usr/bin/env python3
"""Measures how the programs scale, beside their peers in the same run, and writes the tables and plots
of docs/PERFORMANCE.md. tools/performance.sh builds and starts it; README.md tells what is measured.

    performance.py BUILD_FOLDER [--only NAME,...] [--quick] [--place DIR]

Nothing here passes or fails on a time; a program that fails ends the run.
"""

import argparse
import datetime
import glob
import json
import math
import os
import platform
import random
import re
import shutil
import subprocess
import sys
import tempfile

import plot
from studio import MIB, CreateStudio, ScanStudio, crlf, text_of, write

HERE = os.path.dirname(os.path.abspath(__file__))
DLLS = "/usr/lib/x86_64-linux-gnu/wine/x86_64-windows/*.dll"
DISKETTE_BYTES = 1_457_664


def growth(points):
    """Exponent and number of sizes: the slope of log y over log x by least squares, over the sizes
    from a thirtieth of the largest."""
    top = max(x for x, _ in points)
    upper = [(math.log(x), math.log(y)) for x, y in points if x * 30 >= top and y > 0]
    if len(upper) < 3:
        return None
    mean_x = sum(x for x, _ in upper) / len(upper)
    mean_y = sum(y for _, y in upper) / len(upper)
    slope = sum((x - mean_x) * (y - mean_y) for x, y in upper) / sum((x - mean_x) ** 2
                                                                    for x, _ in upper)
    return slope, len(upper)


def growth_line(what, curves):
    """curves: [(name, points)]"""
    parts = []
    for name, points in curves:
        fitted = growth(points)
        if fitted:
            parts.append(f"{name} {what}^{fitted[0]:.2f} ({fitted[1]} sizes)")
    return "Fitted growth: " + "; ".join(parts) + "." if parts else ""


def seconds(value):
    return f"{value:.3f}" if value < 10 else f"{value:.1f}"


def mib(value):
    return f"{value / MIB:,.0f}" if value >= 10 * MIB else f"{value / MIB:.1f}"


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|" + "---:|" * len(head)]
    lines += ["| " + " | ".join(row) + " |" for row in rows]
    return "\n".join(lines)


def columns(name):
    return [f"{name}: wall s", "CPU s", "peak MiB"]


def cells(figures):
    if figures is None:
        return ["–", "–", "–"]
    return [seconds(figures["wall"]), seconds(figures["cpu"]), mib(figures["peak"])]


def dll_files():
    found = sorted(glob.glob(DLLS))
    if found:
        return found, "Windows DLLs (those of Wine)"
    return sorted(path for path in glob.glob("/usr/lib/**/*.so*", recursive=True)
                  if os.path.isfile(path) and not os.path.islink(path)), "shared libraries (.so)"


class Bench:
    def __init__(self, options):
        self.quick = options.quick
        self.place = options.place
        self.wizard = os.path.join(options.build, "src/startup/TXSetupWizard")
        self.tool = os.path.join(options.build, "src/tool/TXSetupTool")
        self.measurer = os.path.join(options.build, "benchmarks/measure")
        self.bare_program = os.path.join(options.build, "benchmarks/bare_compressor")
        self.reader = os.path.join(options.build, "benchmarks/profile_reader")
        for program in (self.wizard, self.tool, self.measurer, self.bare_program, self.reader):
            if not os.path.exists(program):
                sys.exit(f"{program} is missing; tools/performance.sh builds it")

    def folder(self):
        return tempfile.TemporaryDirectory(prefix="txs-performance-", dir=self.place)

    def sizes(self, values):
        """All but the largest two when trying."""
        return values[:-2] if self.quick else values

    def cost(self, command, stdin=None, cwd=None, studio=None, codes=(0,)):
        environment = dict(os.environ)
        environment.pop("DISPLAY", None)
        if studio:
            environment["TAVIX_ROOT"] = studio
        with open(stdin or os.devnull, "rb") as source:
            done = subprocess.run([self.measurer, *command], stdin=source, cwd=cwd, env=environment,
                                  stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
        figures = json.loads(done.stdout)
        if figures["code"] not in codes:
            sys.exit(f"{command} ended with {figures['code']}: {done.stderr[-1000:].decode()}")
        return figures

    def best(self, rounds, action, by="cpu"):
        """The round with the least CPU time. One is enough when trying."""
        return min((action() for _ in range(1 if self.quick else rounds)),
                   key=lambda figures: figures[by])

    def rounds(self, seconds_each):
        """Enough for a moment without disturbance, as far as half a minute goes."""
        return 1 if self.quick else max(1, min(9, round(30 / seconds_each)))

    def create(self, studio):
        studio.clear()
        return self.cost([self.wizard, "/c=Bench"], studio=studio.root)

    def create_and_bare(self, studio, names):
        """By turns: what disturbs the machine for a while disturbs both."""
        def turn():
            ours = self.create(studio)
            ours["bytes"] = studio.archive_bytes()
            studio.clear()
            return ours, self.bare(studio, names)

        turns = [turn()]
        ours, bare = turns[0]
        rounds = self.rounds(ours["wall"] + bare["compress"] + bare["disk"])
        turns += [turn() for _ in range(rounds - 1)]
        return (min((ours for ours, _ in turns), key=lambda figures: figures["cpu"]),
                min((bare for _, bare in turns), key=lambda figures: figures["compress"]))

    def peer(self, command, archive, rounds, **options):
        """zip and 7z would update an archive that is there."""
        def run():
            if os.path.exists(archive):
                os.remove(archive)
            return self.cost(command, **options)

        figures = self.best(rounds, run)
        figures["bytes"] = os.path.getsize(archive)
        os.remove(archive)
        return figures

    def zip(self, studio, names, rounds):
        archive = os.path.join(studio.root, "peer.zip")
        return self.peer(["zip", "-q", "-5", "-X", archive, "-@"], archive, rounds,
                         stdin=self.listing(studio, names), cwd=studio.project)

    def seven(self, studio, names, rounds):
        archive = os.path.join(studio.root, "peer.zip")
        return self.peer(["7z", "a", "-tzip", "-mx5", "-mmt1", archive,
                          "@" + self.listing(studio, names)], archive, rounds, cwd=studio.project)

    @staticmethod
    def listing(studio, names):
        path = os.path.join(studio.root, "names")
        write(path, ("\n".join(names) + "\n").encode())
        return path

    def bare(self, studio, names):
        paths = [studio.path(name) for name in names]
        done = subprocess.run([self.bare_program, studio.root], text=True, check=True,
                              input="\n".join(paths) + "\n", stdout=subprocess.PIPE)
        return json.loads(done.stdout)

    # Each measures one section of the page and returns its text and its plots by file name.

    def rows(self):
        lines, create_cpu, zip_cpu, seven_cpu, peaks = [], [], [], [], []
        rng = random.Random(1)
        with self.folder() as root:
            studio = CreateStudio(root)
            names = []
            for count in self.sizes([1_000, 3_000, 10_000, 30_000, 100_000]):
                while len(names) < count:
                    names.append(f"f{len(names)}.txt")
                    write(studio.path(names[-1]), text_of(rng, 2000))
                studio.set_rows(names)
                ours, bare = self.create_and_bare(studio, names)
                peer = self.zip(studio, names, self.rounds(ours["wall"]))
                seven = self.seven(studio, names, 1)
                create_cpu.append((count, ours["cpu"]))
                zip_cpu.append((count, peer["cpu"]))
                seven_cpu.append((count, seven["cpu"]))
                peaks.append((count, ours["peak"]))
                lines.append([f"{count:,}", *cells(ours), f"{ours['cpu'] / count * 1e6:.1f}",
                              seconds(bare["compress"]), seconds(bare["disk"]),
                              f"{ours['cpu'] / bare['compress']:.2f}", *cells(peer), *cells(seven)])
        head = ["rows", *columns("Create"), "CPU µs per row", "compressor alone: CPU s",
                "reading and writing alone: CPU s", "Create ÷ compressor", *columns("zip -5"),
                *columns("7z")]
        text = table(head, lines) + "\n\n" + growth_line(
            "rows", [("Create: CPU", create_cpu), ("peak", peaks), ("zip: CPU", zip_cpu),
                     ("7z: CPU", seven_cpu)])
        return text, {"rows.svg": plot.svg("Rows, each a file of 2 KB", "rows", "CPU seconds", [
            ("Create", create_cpu), ("zip -5", zip_cpu), ("7z -mx5", seven_cpu)])}

    def one_file(self):
        files, kind = dll_files()
        lines, curves = [], {"Create": [], "compressor alone": [], "zip -5": [], "7z -mx5": []}
        peaks = []
        with self.folder() as root:
            studio = CreateStudio(root)
            name = "big.dll"
            studio.set_rows([name])
            written, source = 0, 0
            for size in self.sizes([1, 4, 16, 64, 256, 1024, 4096]):
                with open(studio.path(name), "r+b" if written else "wb") as big:
                    big.seek(written)
                    while written < size * MIB:
                        with open(files[source % len(files)], "rb") as part:
                            written += big.write(part.read(size * MIB - written))
                        source += 1
                ours, bare = self.create_and_bare(studio, [name])
                # The peers only as far as their line is clear: they take minutes beyond.
                peer = (self.zip(studio, [name], 1 if size > 64 else self.rounds(2 * ours["wall"]))
                        if size <= 1024 else None)
                seven = self.seven(studio, [name], 1) if size <= 256 else None
                for curve, figures in (("Create", ours["cpu"]), ("compressor alone", bare["compress"]),
                                       ("zip -5", peer and peer["cpu"]),
                                       ("7z -mx5", seven and seven["cpu"])):
                    if figures:
                        curves[curve].append((size, figures))
                peaks.append((size, ours["peak"]))
                lines.append([f"{size:,}", *cells(ours), seconds(bare["compress"]),
                              seconds(bare["disk"]), f"{ours['cpu'] / bare['compress']:.2f}",
                              *cells(peer), *cells(seven),
                              f"{100 * ours['bytes'] / (size * MIB):.2f}",
                              f"{100 * peer['bytes'] / (size * MIB):.2f}" if peer else "–"])
        head = ["MiB", *columns("Create"), "compressor alone: CPU s", "reading and writing alone: CPU s",
                "Create ÷ compressor", *columns("zip -5"), *columns("7z"), "Create: size %", "zip: size %"]
        text = (f"Data: {kind}, one after the other.\n\n" + table(head, lines) + "\n\n" + growth_line(
            "bytes", [("Create: CPU", curves["Create"]), ("peak", peaks),
                      ("compressor alone", curves["compressor alone"]), ("zip", curves["zip -5"]),
                      ("7z", curves["7z -mx5"])]))
        return text, {"one-file.svg": plot.svg("One file of DLL-like data", "MiB", "CPU seconds",
                                               list(curves.items()))}

    def kinds(self):
        rng = random.Random(2)
        files, kind = dll_files()
        size = (16 if self.quick else 128) * MIB
        block = rng.randbytes(MIB // 2) + bytes(MIB // 2)
        text = text_of(rng, 8 * MIB)
        makers = [
            ("noise: does not shrink", lambda: rng.randbytes(MIB)),
            ("half noise, half zeros, by turns of 512 KiB", lambda: block),
            ("words of a plant's texts", lambda: text),
            ("zeros", lambda: bytes(MIB)),
        ]
        lines = []
        with self.folder() as root:
            studio = CreateStudio(root)
            name = "data.bin"
            studio.set_rows([name])

            def line(title):
                ours, bare = self.create_and_bare(studio, [name])
                peer = self.zip(studio, [name], 1)
                lines.append([title, *cells(ours), seconds(bare["compress"]),
                              f"{ours['cpu'] / bare['compress']:.2f}", *cells(peer),
                              f"{100 * ours['bytes'] / size:.2f}", f"{100 * peer['bytes'] / size:.2f}"])

            for title, make in makers:
                with open(studio.path(name), "wb") as file:
                    while file.tell() < size:
                        file.write(make()[:size - file.tell()])
                line(title)
            with open(studio.path(name), "wb") as file:
                for path in files:
                    with open(path, "rb") as part:
                        file.write(part.read(size - file.tell()))
                file.truncate(size)
            line(kind)
        head = [f"{size // MIB} MiB of", *columns("Create"), "compressor alone: CPU s",
                "Create ÷ compressor", *columns("zip -5"), "Create: size %", "zip: size %"]
        return table(head, lines), {}

    def repeated(self, studio, chosen):
        """The files and further names of them, 4 GiB in all."""
        names, total = list(chosen), sum(os.path.getsize(studio.path(name)) for name in chosen)
        while total < 4096 * MIB:
            name = chosen[len(names) % len(chosen)]
            names.append(f"{len(names)}-{name}")
            os.link(studio.path(name), studio.path(names[-1]))
            total += os.path.getsize(studio.path(name))
        return names

    def many_files(self):
        files, kind = dll_files()
        lines = []
        rng = random.Random(3)
        with self.folder() as root:
            studio = CreateStudio(root)

            def line(title, names, with_seven=True):
                studio.set_rows(names)
                ours, bare = self.create_and_bare(studio, names)
                peer = self.zip(studio, names, 1 if ours["wall"] > 2 else 3)
                seven = self.seven(studio, names, 1) if with_seven else None
                total = sum(os.path.getsize(studio.path(name)) for name in names)
                lines.append([title, f"{len(names):,}", mib(total), *cells(ours),
                              seconds(bare["compress"]), seconds(bare["disk"]),
                              f"{ours['cpu'] / bare['compress']:.2f}", *cells(peer), *cells(seven),
                              f"{100 * ours['bytes'] / total:.2f}",
                              f"{100 * peer['bytes'] / total:.2f}"])
                return (total / MIB, ours["cpu"], bare["compress"], peer["cpu"],
                        seven and seven["cpu"])

            chosen, curves = [], [[], [], [], []]
            for index, path in enumerate(files):
                name = f"{index}-" + os.path.basename(path)
                shutil.copyfile(path, studio.path(name))  # 7z would keep a link a link
                chosen.append(name)
            for part in (64, 16, 4, 1)[:2 if self.quick else 4]:
                point = line(kind, chosen[::part])
                for curve, figure in zip(curves, point[1:]):
                    curve.append((point[0], figure))
            if not self.quick:
                # 7z takes ten minutes for them.
                point = line(f"{kind}, the same again and again", self.repeated(studio, chosen),
                             with_seven=False)
                for curve, figure in zip(curves[:3], point[1:]):
                    curve.append((point[0], figure))
            small = []
            for index in range(500 if self.quick else 5_000):
                small.append(f"f{index}.txt")
                write(studio.path(small[-1]), text_of(rng, rng.randrange(1 << 10, 32 << 10)))
            line("texts of 1 to 32 KiB", small)
        head = ["what", "files", "MiB", *columns("Create"), "compressor alone: CPU s",
                "reading and writing alone: CPU s", "Create ÷ compressor", *columns("zip -5"),
                *columns("7z"), "Create: size %", "zip: size %"]
        names = ["Create", "compressor alone", "zip -5", "7z -mx5"]
        text = table(head, lines) + "\n\n" + growth_line("bytes", list(zip(names, curves)))
        return text, {"many-files.svg": plot.svg(f"Many files: {kind}", "MiB", "CPU seconds",
                                                 list(zip(names, curves)))}

    def disks(self):
        lines, create_cpu, peer_cpu, peaks = [], [], [], []
        rng = random.Random(4)
        noise = rng.randbytes(700_000)
        with self.folder() as root:
            studio = CreateStudio(root)
            write(studio.path("noise.bin"), noise)
            split_folder = os.path.join(root, "split")
            archive = os.path.join(root, "peer.zip")
            linked = []
            for wanted in self.sizes([1, 10, 100, 300, 1_000, 3_000]):
                # A little below the limit, so that the last disk is not one more.
                count = max(1, int(wanted * DISKETTE_BYTES / 701_000 - 0.5))
                studio.set_rows(["noise.bin"] * count, on_diskettes=True)
                ours = self.best(1 if wanted > 100 else 3, lambda: self.create(studio))
                disks = len(studio.disks())
                studio.clear()
                create_cpu.append((disks, ours["cpu"]))
                peaks.append((disks, ours["peak"]))
                line = [f"{disks:,}", f"{count:,}", *cells(ours)]
                lines.append(line)
                if wanted > 1_000:  # the peers need the room twice
                    line += [*cells(None), "–", "–", "–"]
                    continue
                while len(linked) < count:
                    linked.append(f"n{len(linked)}.bin")
                    os.link(studio.path("noise.bin"), studio.path(linked[-1]))
                peer = self.cost(["zip", "-q", "-5", "-X", archive, "-@"], cwd=studio.project,
                                 stdin=self.listing(studio, linked))
                os.mkdir(split_folder)
                split = self.cost(["zipsplit", "-q", "-n", str(DISKETTE_BYTES), "-b", split_folder,
                                   archive])
                parts = len(os.listdir(split_folder))
                shutil.rmtree(split_folder)
                os.remove(archive)
                together = {"wall": peer["wall"] + split["wall"], "cpu": peer["cpu"] + split["cpu"],
                            "peak": max(peer["peak"], split["peak"])}
                peer_cpu.append((disks, together["cpu"]))
                line += [*cells(together), seconds(split["cpu"]), f"{parts:,}",
                         f"{ours['cpu'] / together['cpu']:.2f}"]
        head = ["disks", "files", *columns("Create"), *columns("zip -5, then zipsplit"),
                "of it zipsplit: CPU s", "zipsplit: disks", "Create ÷ both"]
        text = table(head, lines) + "\n\n" + growth_line(
            "disks", [("Create: CPU", create_cpu), ("peak", peaks), ("zip and zipsplit: CPU", peer_cpu)])
        return text, {"disks.svg": plot.svg("Disks of 1.44 MB", "disks", "CPU seconds", [
            ("Create", create_cpu), ("zip, zipsplit", peer_cpu)])}

    def scan(self, studio, codes=(0,)):
        return self.best(5,
                         lambda: self.cost([self.tool, "scan", "Bench"], studio=studio.root,
                                           codes=codes))

    def sections(self):
        section_lines, by_section, reference_lines, by_reference = [], [], [], []
        with self.folder() as root:
            studio = ScanStudio(root, components=4_000)
            studio.set_references(20)
            for count in self.sizes([1_000, 3_000, 10_000, 30_000, 100_000]):
                studio.set_sections(count)
                figures = self.scan(studio)
                by_section.append((count, figures["cpu"]))
                section_lines.append([f"{count:,}", *cells(figures)])
            studio.set_sections(10_000)
            for count in self.sizes([20, 100, 500, 1_000, 2_000, 4_000]):
                studio.set_references(count)
                figures = self.scan(studio)
                by_reference.append((count, figures["cpu"]))
                reference_lines.append([f"{count:,}", *cells(figures)])
        text = ("20 references:\n\n" + table(["sections", *columns("scan")], section_lines) + "\n\n" +
                growth_line("sections", [("CPU", by_section)]) +
                "\n\nA dependency file of 10,000 sections:\n\n" +
                table(["references", *columns("scan")], reference_lines) + "\n\n" +
                growth_line("references", [("CPU", by_reference)]))
        return text, {"sections.svg": plot.svg("Scan", "sections, references", "CPU seconds", [
            ("sections", by_section), ("references", by_reference)])}

    def trees(self):
        lines, ours_cpu, find_cpu = [], [], []
        with self.folder() as root:
            studio = ScanStudio(root, components=200)
            studio.set_sections(1_000)
            studio.set_references(200)
            studio.lose(50)
            done = 0
            for count in self.sizes([1_000, 5_000, 20_000, 50_000, 200_000]):
                studio.grow_tree(done, count)
                done = count
                figures = self.scan(studio, codes=(3,))
                find = self.best(5, lambda: self.cost(
                    ["find", studio.project, "-name", "nothing"]))
                ours_cpu.append((count, figures["cpu"]))
                find_cpu.append((count, find["cpu"]))
                lines.append([f"{count:,}", *cells(figures), *cells(find)])
        text = table(["files in the tree", *columns("scan"), *columns("find")], lines) + "\n\n" + \
            growth_line("files", [("scan: CPU", ours_cpu), ("find: CPU", find_cpu)])
        return text, {"trees.svg": plot.svg("Scan with 50 missing files", "files in the project's tree",
                                            "CPU seconds", [("scan", ours_cpu), ("find", find_cpu)])}

    def ini(self):
        def line(what, count, mine, theirs):
            lines.append([what, *cells(mine), f"{mine['wall'] / count * 1e6:.1f}", *cells(theirs),
                          f"{theirs['wall'] / count * 1e6:.1f}" if theirs else "–"])

        sizes = self.sizes([100, 300, 1_000, 3_000, 10_000, 30_000, 100_000])
        wine_sizes = [size for size in sizes if size <= 10_000]
        lines, ours, wine = [], {}, {}
        with self.folder() as root:
            drive = os.path.join(root, "drive_c")
            os.mkdir(drive)
            reader = WineReader(root, self.read_keys)
            for size in sizes:
                write(os.path.join(drive, f"{size}.ini"), crlf(
                    ["[Other]", "Key0=x", "[File]"] +
                    [f"Key{i}=<ProjectDir>Library{i}.dll,<ProjectDir>,0" for i in range(size)]))
            for size in sizes:
                ours[size] = self.read_keys([self.reader, root, f"C:\\{size}.ini", str(size)], size)
                if size in wine_sizes and reader.program:
                    wine[size] = reader.read(os.path.join(drive, f"{size}.ini"), size, size)
                line(f"{size:,}", size, ours[size], wine.get(size))
            count = 10_000
            missing = self.read_keys([self.reader, root, "C:\\Missing.ini", str(count)], 0)
            wine_missing = (reader.read(os.path.join(drive, "Missing.ini"), count, 0)
                            if reader.program else None)
            line(f"{count:,} of a missing file", count, missing, wine_missing)
        head = ["keys", *columns("ours"), "µs per key", *columns("GetPrivateProfileString"), "µs per key"]
        curves = [(name, [(size, figures["wall"]) for size, figures in series.items()])
                  for name, series in (("ours", ours), ("Wine", wine)) if series]
        text = table(head, lines) + "\n\n" + growth_line("keys", curves)
        if not reader.program:
            text += f"\n\nNot measured beside Wine: {reader.why_not}"
        return text, {"ini.svg": plot.svg("Reading every key of an INI file", "keys", "seconds", curves)}

    def read_keys(self, command, expected, **options):
        """Wall and CPU time are those of the reading alone, as the reader tells them."""
        def run():
            done = subprocess.run([self.measurer, *command], text=True, check=True,
                                  stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options)
            wall, cpu, found = done.stderr.splitlines()[-1].split()
            if int(found) != expected:
                sys.exit(f"{command} found {found} keys instead of {expected}")
            return {"wall": float(wall), "cpu": float(cpu), "peak": json.loads(done.stdout)["peak"]}

        return self.best(3, run, by="wall")


class WineReader:
    """profile_reader_win32.exe under Wine, in a Wine of its own."""

    def __init__(self, root, read_keys):
        self.program, self.why_not = None, ""
        self.read_keys = read_keys
        compiler, wine = shutil.which("x86_64-w64-mingw32-g++-posix"), shutil.which("wine")
        if not compiler or not wine:
            self.why_not = "mingw-w64 or Wine is not installed."
            return
        program = os.path.join(root, "profile_reader_win32.exe")
        subprocess.run([compiler, "-std=c++20", "-O2", "-static", "-o", program,
                        os.path.join(HERE, "profile_reader_win32.cpp")], check=True)
        self.environment = {**os.environ, "WINEPREFIX": os.path.join(root, "wine"),
                            "WINEDEBUG": "-all", "WINEDLLOVERRIDES": "mscoree,mshtml=;winemenubuilder.exe="}
        self.environment.pop("DISPLAY", None)
        self.program = program
        try:
            self.read(os.path.join(root, "none.ini"), 1, 0)  # the first start sets Wine up
        except (subprocess.SubprocessError, ValueError, IndexError, OSError) as error:
            self.program, self.why_not = None, f"Wine does not start ({type(error).__name__})."

    def read(self, path, count, expected):
        return self.read_keys(["wine", self.program, "Z:" + path.replace("/", "\\"), str(count)],
                              expected, env=self.environment, timeout=300)


SECTIONS = ["one_file", "kinds", "many_files", "rows", "disks", "sections", "trees", "ini"]


def first_line(command):
    try:
        done = subprocess.run(command, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              check=False)
    except OSError:
        return "not installed"
    return next((line.strip() for line in done.stdout.splitlines() if line.strip()), "")


def machine():
    processor = "unknown processor"
    with open("/proc/cpuinfo") as file:
        for line in file:
            if line.startswith("model name"):
                processor = line.split(":", 1)[1].strip()
    memory = os.sysconf("SC_PAGE_SIZE") * os.sysconf("SC_PHYS_PAGES") / (1 << 30)
    packages = subprocess.run(["dpkg-query", "-W", "-f", "${Package} ${Version}\n", "zip",
                               "p7zip-full", "libdeflate0", "wine"], text=True, check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout.split("\n")
    return (f"{processor}, {os.cpu_count()} cores, {memory:.0f} GiB of memory; Linux "
            f"{platform.release()}; {first_line(['c++', '--version'])}; "
            f"{', '.join(line for line in packages if line)}.")


def moment():
    now = datetime.datetime.now(datetime.timezone.utc)
    return now.strftime("%Y-%m-%d %H:%M UTC")


def replace_block(page, name, text):
    pattern = re.compile(rf"(<!-- {name}:begin -->\n).*?(<!-- {name}:end -->)", re.S)
    if not pattern.search(page):
        sys.exit(f"docs/PERFORMANCE.md has no block {name}")
    return pattern.sub(lambda match: match.group(1) + "\n" + text.strip() + "\n\n" + match.group(2), page)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("build")
    parser.add_argument("--only", default=",".join(SECTIONS), help="of " + ", ".join(SECTIONS))
    parser.add_argument("--quick", action="store_true", help="small sizes, printed, not written")
    parser.add_argument("--place", default="/dev/shm", help="folder for the data, 12 GiB in full size")
    options = parser.parse_args()
    options.build = os.path.abspath(options.build)
    bench = Bench(options)
    docs = os.path.join(HERE, "..", "docs")
    page_path = os.path.join(docs, "PERFORMANCE.md")
    images = os.path.join(docs, "images", "performance")
    os.makedirs(images, exist_ok=True)
    for name in options.only.split(","):
        if name not in SECTIONS:
            sys.exit(f"there is no '{name}': {', '.join(SECTIONS)}")
        began, load = moment(), os.getloadavg()[0]
        print(f"== {name}", file=sys.stderr, flush=True)
        text, plots = getattr(bench, name)()
        text += (f"\n\nMeasured {began}; processes that were ready to run (load average): {load:.1f} "
                 f"before, {os.getloadavg()[0]:.1f} after.")
        if options.quick:
            print(text + "\n")
            images_here = bench.place
        else:
            images_here = images
            with open(page_path, encoding="utf-8") as file:
                page = file.read()
            page = replace_block(page, "machine", machine())
            page = replace_block(page, name.replace("_", "-"), text)
            write(page_path, page.encode())
        for file_name, picture in plots.items():
            write(os.path.join(images_here, file_name), picture.encode())


if __name__ == "__main__":
    main()
