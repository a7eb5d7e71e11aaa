#!/usr/bin/env python3
"""The programs on a real disk that fills up, is read-only, or loses them in the middle of their work.

Python's own code reads back what they left. Run by CTest, one test per scenario:
    real_disk_test.py WIZARD TOOL WORKER DYING_PROCESS GENERATOR PREPARE SCENARIO
Exit code 77 where the machine does not let this test mount a file system. TXS_SEED, a number, chooses
other moments for the kills by the clock; TXS_ROUNDS, at how many of its calls Create is killed, 0 for
each of them.
"""

import fcntl
import hashlib
import os
import pathlib
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

WIZARD, TOOL, WORKER, DYING_PROCESS, GENERATOR, PREPARE = sys.argv[1:7]

PLANT = "Mischanlage Süd"
SERVER = "Kläranlage Server"
CLIENT = "Leitstand Client"

SKIPPED = 77
IN_NAMESPACE = "TXS_REAL_DISK_NAMESPACE"
SEED = int(os.environ.get("TXS_SEED", "1"))
ROUNDS = int(os.environ.get("TXS_ROUNDS", "70"))

LOCK = "~TXSetup.lock"
IN_USE_GERMAN = "arbeitet gerade ein anderer Setup-Assistent oder ein TXSetupTool!"
READ_ONLY = "Read-only file system"
IN_USE_ENGLISH = "Another Setup Wizard or TXSetupTool is working in the project directory"


def digests(folder):
    """Every file below a folder with the digest of its bytes."""
    return {
        str(path.relative_to(folder)): hashlib.sha256(path.read_bytes()).hexdigest()
        for path in sorted(folder.rglob("*"))
        if path.is_file()
    }


def report(what, count):
    print(f"RELIABILITY {what}: {count}")


class RealDisk(unittest.TestCase):
    def setUp(self):
        self.scratch = pathlib.Path(tempfile.mkdtemp(prefix="real-disk-"))
        self.addCleanup(shutil.rmtree, self.scratch, ignore_errors=True)
        self.random = random.Random(SEED)

    def lay(self, name="studio", language="german"):
        studio = self.scratch / name
        subprocess.run([PREPARE, GENERATOR, str(studio), language], check=True)
        return studio

    def environment(self, studio):
        environment = dict(os.environ, TAVIX_ROOT=str(studio))
        environment.pop("DISPLAY", None)
        return environment

    def start(self, studio, *command):
        return subprocess.Popen(
            command,
            env=self.environment(studio),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
        )

    def run_program(self, studio, *command):
        process = self.start(studio, *command)
        out, err = process.communicate()
        return process.returncode, out.decode(), err.decode(errors="replace")

    def create(self, studio, project=PLANT):
        return self.run_program(studio, WIZARD, "/c=" + project)

    def directory(self, studio, project=PLANT):
        return studio / "drive_c" / "Projekte" / project

    def settings(self, studio, project=PLANT):
        return self.directory(studio, project) / (project + ".swz")

    def log(self, studio, project=PLANT):
        directory = self.directory(studio, project)
        for path in (directory / "TXSetupWizard.log", directory.parent / f"{project}TXSetupWizard.log"):
            if path.exists():
                return path.read_bytes().decode("cp1252")
        return ""

    def sources(self, studio):
        """Everything that no run may change."""
        return {
            name: digest
            for name, digest in digests(studio).items()
            if "/Setup/" not in name and "~TEMP" not in name and not name.endswith(".log")
        }

    @staticmethod
    def lines_with(words, text):
        return [line for line in text.splitlines() if words in line]

    def assert_complete(self, studio, project, expected):
        code, _, err = self.create(studio, project)
        self.assertEqual(code, 0, err + self.log(studio, project))
        self.assertEqual(digests(self.directory(studio, project) / "Setup"), expected)
        self.assertFalse((self.directory(studio, project) / "~TEMP").exists())
        windows = f"C:\\Projekte\\{project}\\Setup"
        code, out, err = self.run_program(studio, TOOL, "verify", windows)
        self.assertEqual(code, 0, out + err)

    def undisturbed(self, project=PLANT):
        studio = self.lay("undisturbed")
        started = time.monotonic()
        code, _, err = self.create(studio, project)
        seconds = time.monotonic() - started
        self.assertEqual(code, 0, err)
        return digests(self.directory(studio, project) / "Setup"), seconds

    # --- Killed

    def dying(self, studio, number):
        """The environment of a process that is killed at its Nth call that changes the disk."""
        environment = self.environment(studio)
        environment.update(LD_PRELOAD=DYING_PROCESS, TXS_DIE_AT=str(number))
        # In a build with sanitizers theirs is the next library then.
        environment["ASAN_OPTIONS"] = environment.get("ASAN_OPTIONS", "") + ":verify_asan_link_order=0"
        return environment

    def count_calls(self, studio, *command):
        """Runs a program to its end: the number of its calls that change the disk."""
        counted = self.scratch / "calls"
        environment = self.dying(studio, 0)
        environment["TXS_CALLS_FILE"] = str(counted)
        subprocess.run(command, env=environment, stdin=subprocess.DEVNULL, capture_output=True, check=True)
        return int(counted.read_text())

    def kill_at(self, studio, number, *command):
        result = subprocess.run(
            command,
            env=self.dying(studio, number),
            stdin=subprocess.DEVNULL,
            capture_output=True,
            check=False,
        )
        self.assertEqual(result.returncode, -signal.SIGKILL, result.stderr)

    def assert_spared(self, studio, before):
        after = self.sources(studio)
        after.pop(f"drive_c/Projekte/{PLANT}/{LOCK}", None)
        self.assertEqual(after, before)

    def test_create_killed_at_any_moment_harms_nothing(self):
        expected, seconds = self.undisturbed()
        studio = self.lay()
        before = self.sources(studio)
        # Each round finds the disks of a whole run, as this one does.
        self.assert_complete(studio, PLANT, expected)
        calls = self.count_calls(studio, WIZARD, "/c=" + PLANT)
        killed = 0
        rounds = ROUNDS or calls
        for round_number in range(rounds):
            # All over the run, the first call and the last among them.
            part = round_number / (rounds - 1) if rounds > 1 else 0
            self.kill_at(studio, 1 + round(part * (calls - 1)), WIZARD, "/c=" + PLANT)
            self.assert_spared(studio, before)
            killed += 1
            if round_number % 7 == 0:
                # On top of what that one has left, and by the clock.
                process = self.start(studio, WIZARD, "/c=" + PLANT)
                time.sleep(self.random.random() * seconds)
                process.kill()
                process.communicate()
                self.assert_spared(studio, before)
                killed += process.returncode == -signal.SIGKILL
            self.assert_complete(studio, PLANT, expected)
            self.assertEqual(self.sources(studio), before)
        report("rounds of Create killed", killed)
        report("of them each at another of its calls", min(rounds, calls))

    def kill_worker_everywhere(self, studio, path, *task):
        """Kills a worker at each of its calls; the file has the bytes of one of the three states."""
        folder = path.parent
        original = path.read_bytes()
        names = {entry.name for entry in folder.iterdir()}
        states = [original]
        for rounds in ("1", "2"):
            code, _, err = self.run_program(studio, WORKER, *task, rounds)
            self.assertEqual(code, 0, err)
            states.append(path.read_bytes())
        self.assertEqual(len(set(states)), 3)
        calls = self.count_calls(studio, WORKER, *task, "2")
        seen = set()
        for number in range(1, calls + 1):
            path.write_bytes(original)
            self.kill_at(studio, number, WORKER, *task, "2")
            self.assertIn(path.read_bytes(), states)
            seen.add(states.index(path.read_bytes()))
            left = {entry.name for entry in folder.iterdir()}
            self.assertLessEqual(len(left - names), 2, left)  # a temporary file and the lock
        self.assertEqual(seen, {0, 1, 2})
        code, _, err = self.run_program(studio, WORKER, *task, "2")
        self.assertEqual(code, 0, err)
        self.assertEqual(path.read_bytes(), states[2])
        return calls, {entry.name for entry in folder.iterdir()} - names

    def test_save_killed_at_any_moment_leaves_the_old_or_the_new_settings(self):
        expected, _ = self.undisturbed()
        studio = self.lay()
        settings = self.settings(studio).read_bytes()
        killed, left = self.kill_worker_everywhere(studio, self.settings(studio), "save", PLANT)
        self.assertEqual(left, set())
        # The worker's settings list files that are nowhere.
        self.settings(studio).write_bytes(settings)
        self.assert_complete(studio, PLANT, expected)
        report("rounds of Save killed", killed)

    def test_writing_the_registry_killed_at_any_moment_leaves_the_old_or_the_new_file(self):
        expected, _ = self.undisturbed()
        studio = self.lay()
        killed, left = self.kill_worker_everywhere(studio, studio / "registry.reg", "registry")
        self.assertLessEqual(left, {"registry.reg.lock"})
        code, out, _ = self.run_program(studio, TOOL, "projects")
        self.assertEqual(code, 0)
        self.assertIn(PLANT, out)
        self.assert_complete(studio, PLANT, expected)
        report("rounds of registry writing killed", killed)

    # --- Two at once

    def test_two_projects_at_once_do_not_disturb_each_other(self):
        rounds = 10
        expected = {project: self.undisturbed(project)[0] for project in (PLANT, SERVER, CLIENT)}
        studio = self.lay()
        for _ in range(rounds):
            processes = [self.start(studio, WIZARD, "/c=" + project) for project in expected]
            for process in processes:
                _, err = process.communicate()
                self.assertEqual(process.returncode, 0, err)
            for project, files in expected.items():
                self.assertEqual(digests(self.directory(studio, project) / "Setup"), files)
                self.assertEqual(self.log(studio, project), "")
        report("rounds of three projects at once", rounds)

    def refuse_second(self, language, words):
        studio = self.lay(language, language)
        directory = self.directory(studio)
        # So large that the first run can be caught at work.
        (directory / "Bilanz.dat").write_bytes(self.random.randbytes(8 * 1024 * 1024))
        settings = self.settings(studio)
        text = settings.read_bytes().decode("cp1252")
        rows = re.search(r"\[file\]\r\n[^[]*\d\d=[^\r]*\r\n", text).group(0)
        number = len(re.findall(r"^\d\d=", rows, re.MULTILINE)) + 1
        row = f"{number:02}=<ProjectDir>\\Bilanz.dat,<ProjectDir>,0\r\n"
        settings.write_bytes(text.replace(rows, rows + row).encode("cp1252"))

        refused = 0
        while refused < 4:
            first = self.start(studio, WIZARD, "/c=" + PLANT)
            while not (directory / "~TEMP").exists() and first.poll() is None:
                time.sleep(0.001)
            first.send_signal(signal.SIGSTOP)
            if first.poll() is None and (directory / "~TEMP").exists():
                code, out, err = self.run_program(studio, WIZARD, "/c=" + PLANT)
                tool_code, _, tool_err = self.run_program(studio, TOOL, "create", PLANT)
                self.assertEqual(code, 1, out + err)
                self.assertEqual(tool_code, 1)
                self.assertIn(words, tool_err)
                refused += 2
            first.send_signal(signal.SIGCONT)
            _, err = first.communicate()
            self.assertEqual(first.returncode, 0, err)
            self.assertEqual(self.log(studio).count(words), refused // 2)
            windows = f"C:\\Projekte\\{PLANT}\\Setup"
            code, out, err = self.run_program(studio, TOOL, "verify", windows)
            self.assertEqual(code, 0, out + err)
            self.assertFalse((directory / LOCK).exists())
        return refused

    def test_a_second_run_of_a_project_says_so_and_harms_nothing(self):
        refused = self.refuse_second("german", IN_USE_GERMAN)
        refused += self.refuse_second("english", IN_USE_ENGLISH)
        report("second runs refused", refused)

    def test_a_save_waits_for_nobody_and_says_who_is_at_work(self):
        studio = self.lay()
        before = self.settings(studio).read_bytes()
        with open(self.directory(studio) / LOCK, "w", encoding="ascii") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            code, _, err = self.run_program(studio, TOOL, "scan", PLANT, "--save")
        self.assertEqual(code, 1)
        self.assertIn("message 1930: ", err)
        self.assertEqual(self.settings(studio).read_bytes(), before)

    # --- Full and read-only

    def mount(self, place, size):
        """Puts a small file system in place of a folder, with the same files in it."""
        kept = self.scratch / "kept"
        shutil.copytree(place, kept, symlinks=True)
        subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={size}", "tmpfs", place], check=True)
        self.addCleanup(subprocess.run, ["umount", "-l", place], check=False)
        shutil.copytree(kept, place, symlinks=True, dirs_exist_ok=True)
        shutil.rmtree(kept)

    def remount(self, place, options):
        subprocess.run(["mount", "-o", "remount," + options, place], check=True)

    def test_a_disk_that_fills_up_costs_nothing_but_the_run(self):
        expected, _ = self.undisturbed()
        studio = self.lay()
        place = self.directory(studio)
        self.mount(place, "64m")
        before = self.sources(studio)
        used = sum((f.stat().st_size + 4095) // 4096 for f in place.rglob("*") if f.is_file())
        code, _, err = self.create(studio)
        self.assertEqual(code, 0, err)
        needed = os.statvfs(place)
        most = (needed.f_blocks - needed.f_bfree) * needed.f_frsize // 4096
        shutil.rmtree(place / "Setup")
        self.assertGreater(most, used)

        full = 0
        steps = 24
        for step in range(steps):
            for left in (place / "Setup", place / "~TEMP"):
                shutil.rmtree(left, ignore_errors=True)
            (place / "TXSetupWizard.log").unlink(missing_ok=True)
            pages = used + 8 + (most - used) * step // steps
            self.remount(place, f"size={pages * 4096}")
            code, _, err = self.create(studio)
            said = err + self.log(studio)
            if code == 0:
                self.assertEqual(digests(place / "Setup"), expected)
            else:
                self.assertEqual(code, 1)
                full += 1
                self.assertIn("No space left on device", said)
            self.assertEqual(self.sources(studio), before)
        self.assertGreater(full, steps // 2)

        # No room for one byte: saving keeps the old settings.
        filler = place / "filler"
        with open(filler, "wb", buffering=0) as file:
            try:
                while True:
                    file.write(b"x" * 4096)
            except OSError:
                pass
        code, _, err = self.run_program(studio, WORKER, "save", PLANT, "1")
        self.assertEqual(code, 1)
        self.assertIn("No space left", err)
        filler.unlink()
        self.assertEqual(self.sources(studio), before)
        self.remount(place, "size=64m")
        self.assert_complete(studio, PLANT, expected)
        report("disks filled up", full + 1)

    def test_read_only_directories_are_named_and_stay_as_they_are(self):
        expected, _ = self.undisturbed()
        studio = self.lay()
        place = self.directory(studio)
        self.mount(place, "64m")
        before = digests(studio)

        self.remount(place, "ro")
        code, _, err = self.create(studio)
        self.assertEqual(code, 1)
        windows = f"C:\\Projekte\\{PLANT}\\"
        # Once what the run could not do, and once that the log could not take it.
        self.assertEqual(
            self.lines_with(READ_ONLY, err),
            [
                f"(70: {windows}~TEMP: {READ_ONLY})",
                f"{windows}TXSetupWizard.log: {READ_ONLY}",
            ],
        )
        code, _, err = self.run_program(studio, TOOL, "scan", PLANT, "--save")
        self.assertEqual(code, 1)
        self.assertEqual(err.count("message "), 1, err)
        self.assertIn("message 911: ", err)
        self.assertEqual(
            self.lines_with(READ_ONLY, err), [f"(70: {windows}{PLANT}.swz: {READ_ONLY})"]
        )
        self.assertEqual(digests(studio), before)

        # What is only read may be read-only.
        self.remount(place, "rw")
        kit = studio / "drive_c" / "TavixStudio" / "SetupKit"
        self.mount(kit, "64m")
        self.remount(kit, "ro")
        self.assert_complete(studio, PLANT, expected)

        # The output alone.
        shutil.rmtree(place / "Setup")
        (place / "Setup").mkdir()
        self.mount(place / "Setup", "64m")
        self.remount(place / "Setup", "ro")
        code, _, err = self.create(studio)
        self.assertEqual(code, 1)
        self.assertEqual(err, "")
        self.assertEqual(
            self.lines_with(READ_ONLY, self.log(studio)),
            [f"(70: {windows}Setup\\DISK1: {READ_ONLY})"],
        )
        report("read-only directories", 3)


NEEDS_MOUNT = {
    "test_a_disk_that_fills_up_costs_nothing_but_the_run",
    "test_read_only_directories_are_named_and_stay_as_they_are",
}


def enter_namespace():
    """Runs this script again where it may mount; root of the machine or of a namespace of its own."""
    environment = dict(os.environ, **{IN_NAMESPACE: "1"})
    for options in (["-m"], ["-rm"]):
        probe = ["unshare", *options, "mount", "-t", "tmpfs", "tmpfs", tempfile.gettempdir()]
        try:
            may = subprocess.run(probe, capture_output=True, check=False).returncode == 0
        except OSError:
            may = False
        if may:
            command = ["unshare", *options, sys.executable, "-B", *sys.argv]
            sys.exit(subprocess.run(command, env=environment, check=False).returncode)
    print("SKIPPED: this machine lets nobody mount a file system here")
    sys.exit(SKIPPED)


if __name__ == "__main__":
    scenario = sys.argv[7]
    if scenario in NEEDS_MOUNT and IN_NAMESPACE not in os.environ:
        enter_namespace()
    unittest.main(argv=sys.argv[:1] + ["RealDisk." + scenario])
