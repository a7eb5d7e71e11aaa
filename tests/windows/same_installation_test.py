#!/usr/bin/env python3
"""The Windows program on the sample studio, with the real registry, beside the program of this machine.

What both build must be the same byte for byte. Run by CTest, one test per scenario:
    same_installation_test.py WINE PREFIX WIZARD.exe TOOL.exe WIZARD GENERATOR PREPARE SCENARIO
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

from windows_studio import WindowsStudio

WINE, PREFIX, WINDOWS_WIZARD, WINDOWS_TOOL, WIZARD, GENERATOR, PREPARE = sys.argv[1:8]

PLANT = "Mischanlage Süd"
SERVER = "Kläranlage Server"
CLIENT = "Leitstand Client"


def files_below(folder):
    return {str(path.relative_to(folder)): path.read_bytes()
            for path in sorted(folder.rglob("*")) if path.is_file()}


class SameInstallation(unittest.TestCase):
    def setUp(self):
        self.scratch = pathlib.Path(tempfile.mkdtemp(prefix="same-installation-"))
        self.addCleanup(shutil.rmtree, self.scratch)
        self.windows = WindowsStudio(WINE, PREFIX, PREPARE, GENERATOR, self.scratch)
        self.twin = self.windows.lay()

    def build_here(self, argument):
        environment = dict(os.environ, TAVIX_ROOT=str(self.twin))
        return subprocess.run([WIZARD, "/c=" + argument], env=environment,
                              stdin=subprocess.DEVNULL, capture_output=True, check=False)

    def build_there(self, argument):
        return self.windows.run(WINDOWS_WIZARD, "/c=" + argument)

    def assert_same(self, project, argument):
        here = self.build_here(argument)
        self.assertEqual(here.returncode, 0, here.stderr)
        there = self.build_there(argument)
        self.assertEqual(there.returncode, 0,
                         there.stderr.decode(errors="replace") + self.log_there(project))
        below = pathlib.Path("drive_c/Projekte") / project / "Setup"
        expected = files_below(self.twin / below)
        found = files_below(self.windows.prefix / below)
        self.assertIn(os.path.join("DISK1", "SETUP.STP"), found)
        self.assertEqual(sorted(found), sorted(expected))
        for name, contents in expected.items():
            self.assertEqual(found[name], contents, f"{name} differs")

    def log_there(self, project):
        for log in (self.windows.drive_c / "Projekte").rglob("*TXSetupWizard.log"):
            return "\n" + log.read_bytes().decode("cp1252")
        return ""

    def test_a_project_with_umlauts_fills_the_same_three_diskettes(self):
        self.assert_same(PLANT, rf"C:\Projekte\{PLANT}\{PLANT}.txs")

    def test_a_server_project_is_found_by_its_name_in_the_registry(self):
        self.assert_same(SERVER, SERVER)

    def test_a_client_project_lies_on_one_disk(self):
        self.assert_same(CLIENT, CLIENT)

    def test_a_missing_file_ends_with_exit_code_1_and_the_same_log(self):
        for studio in (self.twin, self.windows.prefix):
            (studio / "drive_c/Projekte" / PLANT / "Silodaten.rct").unlink()

        here = self.build_here(PLANT)
        there = self.build_there(PLANT)

        self.assertEqual((here.returncode, there.returncode), (1, 1))
        logs = [(studio / "drive_c/Projekte" / PLANT / "TXSetupWizard.log").read_bytes()
                for studio in (self.twin, self.windows.prefix)]
        # The first line of an entry is the date, as each system writes it.
        texts = [log.decode("cp1252").split("\r\n")[1:] for log in logs]
        self.assertEqual(texts[0], texts[1])

    def test_the_companion_finds_the_installation_sound_and_its_words_are_utf_8(self):
        self.assertEqual(self.build_there(PLANT).returncode, 0)

        verified = self.windows.run(WINDOWS_TOOL, "verify", rf"C:\Projekte\{PLANT}\Setup")
        listed = self.windows.run(WINDOWS_TOOL, "projects")

        self.assertEqual(verified.returncode, 0, verified.stdout + verified.stderr)
        self.assertEqual(listed.returncode, 0, listed.stderr)
        self.assertIn(PLANT, listed.stdout.decode("utf-8"))


unittest.main(argv=["same_installation_test.py", "SameInstallation." + sys.argv[8]])
