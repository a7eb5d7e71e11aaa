#!/usr/bin/env python3
"""How the cost of a Scan grows, measured on TXSetupTool from outside.

    benchmarks/scan_benchmark.py build/bench/src/tool/TXSetupTool

What is measured, each with a studio laid anew on the disk (fixed seed, best of three runs):
  references   a project with 500, 1,000, 2,000 and 4,000 registered components, whose dependencies
               stand in a file of 10,000 sections; linear means that the time per reference stays
  missing      the same project of 500 references of which 50 have gone, in a project directory that
               holds 200,000 files in 2,000 folders; and the same again with 250 missing: the folders
               are listed once, so the number of missing files hardly counts
  sample       a project of the size that people have (20 references)
The start of the program is part of every time; it is shown as "scan of nothing".
"""

import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import time

SECTIONS = 10_000
COUNTS = (500, 1_000, 2_000, 4_000)
TREE_FOLDERS, FILES_PER_FOLDER = 2_000, 100
RUNS = 3


def crlf(lines):
    return ("\r\n".join(lines) + "\r\n").encode("cp1252")


def quoted(path):
    return path.replace("\\", "\\\\")


def guid(number):
    return "{%08X-1000-11D3-9C01-0050DA4E7B10}" % number


class Studio:
    """A generated computer with the project "Bench"."""

    def __init__(self, root):
        self.root = root
        self.drive = root / "drive_c"
        self.system = self.drive / "Windows" / "System32"
        self.project = self.drive / "Bench"
        for folder in (
            self.system,
            self.project,
            self.drive / "Tavix" / "Studio",
            self.drive / "Tavix" / "SetupKit",
            self.drive / "VB98" / "Wizards" / "PDWizard",
        ):
            folder.mkdir(parents=True)
        rng = random.Random(1)
        lines = []
        for i in range(SECTIONS):
            lines += [f"[Part{i}.dll]", "Register=$(DLLSelfRegister)"]
            # Each needs a few of the parts around it, so that chains and circles arise.
            for n in range(1, 4):
                lines.append(f"Uses{n}=Part{(i // 4) * 4 + rng.randrange(4)}.dll")
        (self.drive / "VB98/Wizards/PDWizard/Vb6dep.ini").write_bytes(crlf(lines))
        for i in range(max(COUNTS)):
            (self.system / f"Part{i}.dll").write_bytes(b"part")
        (self.project / "Bench.exe").write_bytes(b"program")
        (self.project / "Bench.txs").write_bytes(
            crlf(["[Global]", "Designer=Visual Basic 6.0", "DesignerProject=Bench.vbp"])
        )
        self.write_registry()

    def write_registry(self):
        studio = r"HKEY_LOCAL_MACHINE\Software\ORBEKA GmbH"
        lines = ["REGEDIT4", ""]
        for key, values in (
            (studio, {"MainDir": r"C:\Tavix", "Common": r"C:\Tavix\Common"}),
            (studio + r"\Tavix\4.0", {"Path": r"C:\Tavix\Studio", "Version": "4.0"}),
            (studio + r"\Tavix\4.0\Projects\Bench", {"Path": r"C:\Bench", "ProjectType": "1"}),
            (
                r"HKEY_LOCAL_MACHINE\Software\Microsoft\VisualStudio\6.0\Setup"
                r"\Microsoft Visual Basic",
                {"ProductDir": r"C:\VB98"},
            ),
            (
                r"HKEY_CURRENT_USER\Software\ORBEKA GmbH\Tavix\4.0\TX4SetupWizard",
                {"UseRuntimeSetup": "0"},
            ),
        ):
            lines += [f"[{key}]"] + [f'"{k}"="{quoted(v)}"' for k, v in values.items()] + [""]
        for i in range(max(COUNTS)):
            lines.append(f"[HKEY_CLASSES_ROOT\\TypeLib\\{guid(i)}\\1.0\\0\\win32]")
            lines.append('@="' + quoted(f"C:\\Windows\\System32\\Part{i}.dll") + '"')
            lines.append("")
        (self.root / "registry.reg").write_bytes(crlf(lines))

    def set_references(self, count):
        lines = ["Type=Exe"]
        lines += [f"Reference=*\\G{guid(i)}#1.0#0#Part{i}.dll#Part {i}" for i in range(count)]
        lines += ['ExeName32="Bench.exe"', 'Path32=""']
        (self.project / "Bench.vbp").write_bytes(crlf(lines))

    def add_tree(self):
        for folder in range(TREE_FOLDERS):
            path = self.project / f"Data{folder // 50}" / f"Batch{folder}"
            path.mkdir(parents=True)
            for i in range(FILES_PER_FOLDER):
                (path / f"{folder}-{i}.dat").touch()

    def lose(self, first, last):
        for i in range(first, last):
            (self.system / f"Part{i}.dll").unlink(missing_ok=True)


def scan(tool, studio, expected):
    """Milliseconds of the fastest run."""
    best = float("inf")
    for _ in range(RUNS):
        start = time.perf_counter()
        result = subprocess.run(
            [tool, "scan", "Bench"],
            env=dict(os.environ, TAVIX_ROOT=str(studio.root)),
            stdout=subprocess.DEVNULL,
            stderr=subprocess.PIPE,
            check=False,
        )
        best = min(best, (time.perf_counter() - start) * 1000)
        if result.returncode not in expected:
            sys.exit(f"scan ended with {result.returncode}: {result.stderr.decode()[:500]}")
    return best


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    tool = sys.argv[1]
    root = pathlib.Path(tempfile.mkdtemp(prefix="scan-benchmark-"))
    try:
        studio = Studio(root)
        studio.set_references(0)
        nothing = scan(tool, studio, {0})
        studio.set_references(20)
        print(f"{'scan of nothing':<34}{nothing:>9.1f} ms")
        print(f"{'20 references':<34}{scan(tool, studio, {0}):>9.1f} ms")
        first = None
        for count in COUNTS:
            studio.set_references(count)
            net = scan(tool, studio, {0}) - nothing
            first = first or net / count
            print(
                f"{f'{count:,} references, net':<34}{net:>9.1f} ms"
                f"{1000 * net / count:>9.1f} us each, {net / count / first:.2f} of the first"
            )
        studio.add_tree()
        studio.set_references(500)
        print(f"{'500 references, tree of 200,000':<34}{scan(tool, studio, {0}):>9.1f} ms")
        studio.lose(0, 50)
        print(f"{'  50 of them missing':<34}{scan(tool, studio, {3}):>9.1f} ms")
        studio.lose(50, 250)
        print(f"{'  250 of them missing':<34}{scan(tool, studio, {3}):>9.1f} ms")
    finally:
        shutil.rmtree(root)


if __name__ == "__main__":
    main()
