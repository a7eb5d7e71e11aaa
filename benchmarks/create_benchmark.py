#!/usr/bin/env python3
"""What a whole Create costs, beside zip and 7z on the same files in the same run.

    create_benchmark.py WIZARD [--dlls DIR] [--rounds N] [--big] [--place DIR]

Operations: dlls (real Windows DLLs, one row each), small and tiny (5,000 files of 1 to 32 KB, and of
2 KB), empty (a project without rows), rows (10,000 to 100,000 rows that all name one file), big (one
file of 1 GiB, only with --big). Times are wall seconds, best of N rounds; memory is the peak resident
set of the process. Nothing here passes or fails: the figures are for docs/PERFORMANCE.md.

Everything lies in a folder in memory (/dev/shm) unless --place names another: a disk adds its own
habits. ext4, for one, gives no inode away again for some minutes after a deletion, so that thousands
of files made after thousands were deleted cost many times what they cost at first.
"""

import argparse
import glob
import os
import random
import shutil
import subprocess
import sys
import tempfile
import time

STUDIO = r"HKEY_LOCAL_MACHINE\Software\ORBEKA GmbH\Tavix\4.0"


class World:
    """A studio with one project in a temporary folder."""

    place = "/dev/shm"

    def __init__(self):
        self.root = tempfile.mkdtemp(prefix="txs-bench-", dir=World.place)
        self.project = os.path.join(self.root, "drive_c", "Bench")
        for folder in (self.project, os.path.join(self.root, "drive_c", "Studio", "SetupKit")):
            os.makedirs(folder)
        with open(os.path.join(self.root, "drive_c", "Studio", "SetupKit", "TXSTPKIT.INI"), "w") as kit:
            kit.write("[SetupFiles]\r\nCount=0\r\n")
        registry = "Windows Registry Editor Version 5.00\r\n"
        for key, values in (
                (r"HKEY_LOCAL_MACHINE\Software\ORBEKA GmbH", {"MainDir": r"C:\Studio"}),
                (STUDIO, {"Path": r"C:\Studio"}),
                (STUDIO + r"\Projects\Bench", {"Path": "C:\\Bench\\", "ProjectType": "Single"})):
            registry += f"\r\n[{key}]\r\n"
            for name, value in values.items():
                registry += f'"{name}"="' + value.replace("\\", "\\\\") + '"\r\n'
        with open(os.path.join(self.root, "registry.reg"), "wb") as file:
            file.write(registry.encode("utf-16"))
        open(os.path.join(self.project, "Bench.txs"), "w").close()

    def add(self, name, data):
        with open(os.path.join(self.project, name), "wb") as file:
            file.write(data)

    def settings(self, names):
        rows = "".join(f"{i:02d}=<ProjectDir>{name},<ProjectDir>,0\r\n" for i, name in enumerate(names, 1))
        text = ("[program]\r\nname=Bench.exe\r\n[Destination]\r\nSize=1\r\nPath=C:\\Out\r\n[path]\r\n"
                "tavix=C:\\Studio\r\nproject=C:\\Bench\r\n[file]\r\n" + rows)
        with open(os.path.join(self.project, "Bench.swz"), "wb") as file:
            file.write(text.encode("cp1252"))

    def create(self, wizard):
        shutil.rmtree(os.path.join(self.root, "drive_c", "Out"), ignore_errors=True)
        environment = {**os.environ, "TAVIX_ROOT": self.root}
        environment.pop("DISPLAY", None)
        figures = measure([wizard, "/c=Bench"], environment)
        log = os.path.join(self.project, "TXSetupWizard.log")
        if figures["code"] != 0:
            sys.exit("Create failed: " + (open(log, errors="replace").read() if os.path.exists(log) else ""))
        return figures

    def written(self):
        disk = os.path.join(self.root, "drive_c", "Out", "DISK1")
        return sum(os.path.getsize(os.path.join(disk, name)) for name in os.listdir(disk)
                   if name.endswith(".zip"))

    def remove(self):
        shutil.rmtree(self.root)


def measure(command, environment=None, cwd=None):
    start = time.perf_counter()
    child = subprocess.Popen(command, env=environment, cwd=cwd, stdout=subprocess.DEVNULL,
                             stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(child.pid, 0)
    return {"wall": time.perf_counter() - start, "cpu": usage.ru_utime + usage.ru_stime,
            "peak": usage.ru_maxrss / 1024, "code": os.waitstatus_to_exitcode(status)}


def best(rounds, action):
    return min((action() for _ in range(rounds)), key=lambda figures: figures["wall"])


def beside_peers(title, world, names, wizard, rounds):
    world.settings(names)
    archive = os.path.join(world.root, "peer.zip")

    listing = os.path.join(world.root, "names")
    with open(listing, "w") as file:
        file.write("\n".join(names) + "\n")

    def run_zip():
        if os.path.exists(archive):
            os.remove(archive)
        return measure(["sh", "-c", f"zip -q -5 -X '{archive}' -@ < '{listing}'"], cwd=world.project)

    def run_7z():
        if os.path.exists(archive):
            os.remove(archive)
        return measure(["7z", "a", "-tzip", "-mx5", "-mmt1", archive, f"@{listing}"], cwd=world.project)

    ours = best(rounds, lambda: world.create(wizard))
    ours_bytes = world.written()
    zip_figures = best(rounds, run_zip)
    zip_bytes = os.path.getsize(archive)
    seven = best(min(rounds, 2), run_7z)
    seven_bytes = os.path.getsize(archive)
    size = sum(os.path.getsize(os.path.join(world.project, name)) for name in names)
    print(f"{title}: {len(names)} files, {size / 1e6:.1f} MB")
    print(f"  Create       {ours['wall']:8.2f} s  {ours_bytes:>12} bytes  peak {ours['peak']:6.1f} MiB")
    for name, figures, written in (("zip -5", zip_figures, zip_bytes), ("7z -mx5 -mmt1", seven, seven_bytes)):
        print(f"  {name:<12} {figures['wall']:8.2f} s  {written:>12} bytes  "
              f"time ratio {figures['wall'] / ours['wall']:.2f}, size ratio {written / ours_bytes:.3f}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("wizard")
    parser.add_argument("--dlls", default="/usr/lib/x86_64-linux-gnu/wine/x86_64-windows")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--big", action="store_true")
    parser.add_argument("--place", default=World.place)
    options = parser.parse_args()
    World.place = options.place
    rng = random.Random(1)

    dlls = sorted(path for path in glob.glob(os.path.join(options.dlls, "*.dll")))
    if dlls:
        world = World()
        for path in dlls:
            shutil.copy(path, world.project)
        beside_peers("dlls", world, [os.path.basename(p) for p in dlls], options.wizard, options.rounds)
        world.remove()
    else:
        print(f"dlls: no DLLs in {options.dlls} (package libwine carries some); not measured")

    words = ["alarm", "valve", "Pumpe", "0", "true", "level", "\r\n", "Grenzwert", "25.4", "<Silo>"]
    for title, largest in (("small", 6000), ("tiny", 400)):
        world = World()
        names = []
        for number in range(5000):
            names.append(f"f{number}.txt")
            count = rng.randrange(200, largest) if title == "small" else largest
            world.add(names[-1], " ".join(rng.choices(words, k=count)).encode())
        beside_peers(title, world, names, options.wizard, options.rounds)
        world.remove()

    world = World()
    world.settings([])
    figures = best(20, lambda: world.create(options.wizard))
    print(f"empty: {figures['wall'] * 1000:.1f} ms, peak {figures['peak']:.1f} MiB")
    for count in (10000, 20000, 50000, 100000):
        world.add("one.txt", b"x")
        world.settings(["one.txt"] * count)
        figures = best(1, lambda: world.create(options.wizard))
        print(f"rows: {count:>6} rows {figures['wall']:.2f} s, {figures['wall'] / count * 1e6:.1f} us each, "
              f"peak {figures['peak']:.1f} MiB")
    if options.big:
        big = os.path.join(world.project, "big.dat")
        block = rng.randbytes(1 << 19) + bytes(1 << 19)
        with open(big, "wb") as file:
            for _ in range(1024):
                file.write(block)
        world.settings(["big.dat"])
        figures = best(1, lambda: world.create(options.wizard))
        print(f"big: 1 GiB {figures['wall']:.1f} s, peak {figures['peak']:.1f} MiB")
    world.remove()


if __name__ == "__main__":
    main()
