#!/usr/bin/env python3
"""The Windows program on the sample studio, with the real registry, beside the program of this machine.

What both build must be the same byte for byte. Run by CTest, one test per scenario; for the arguments
see windows_studio.py.
"""

import os
import pathlib
import subprocess
import zipfile

from windows_studio import (CLIENT, PLANT, SERVER, WINDOWS_TOOL, WINDOWS_WIZARD, StudioTest,
                            files_below, main)


class SameInstallation(StudioTest):
    def assert_same(self, project, argument, wizard=WINDOWS_WIZARD):
        here = self.build_here(argument)
        self.assertEqual(here.returncode, 0, here.stderr)
        self.assert_succeeded(self.build_there(argument, wizard), project)
        expected = files_below(self.directory_here(project) / "Setup")
        found = files_below(self.directory_there(project) / "Setup")
        self.assertIn(os.path.join("DISK1", "SETUP.STP"), found)
        self.assertEqual(sorted(found), sorted(expected))
        for name, contents in expected.items():
            self.assertEqual(found[name], contents, f"{name} differs")

    def test_a_project_with_umlauts_fills_the_same_three_diskettes(self):
        self.assert_same(PLANT, rf"C:\Projekte\{PLANT}\{PLANT}.txs")

    def test_a_server_project_is_found_by_its_name_in_the_registry(self):
        self.assert_same(SERVER, SERVER)

    def test_a_client_project_lies_on_one_disk(self):
        self.assert_same(CLIENT, CLIENT)

    def test_the_package_of_a_user_works_in_a_folder_with_blanks_and_umlauts(self):
        build = pathlib.Path(WINDOWS_WIZARD).parents[2]
        subprocess.run(["cpack", "-G", "ZIP", "-B", str(self.scratch / "packages")], cwd=build,
                       stdout=subprocess.DEVNULL, check=True)
        (package,) = (self.scratch / "packages").glob("*.zip")
        folder = self.scratch / "Setup-Assistent für Süd"
        with zipfile.ZipFile(package) as entries:
            entries.extractall(folder)
        (programs,) = folder.iterdir()

        self.assert_same(PLANT, PLANT, wizard=programs / "TXSetupWizard.exe")

        verified = self.windows.run(programs / "TXSetupTool.exe", "verify",
                                    rf"C:\Projekte\{PLANT}\Setup")
        self.assertEqual(verified.returncode, 0, verified.stdout + verified.stderr)

    def test_a_directory_whose_name_the_code_page_lacks_holds_a_project_all_the_same(self):
        name = "Leitstand Ωж"
        for directory in (self.directory_here, self.directory_there):
            directory(CLIENT).rename(directory(name))

        self.assert_same(name, rf"C:\Projekte\{name}\{CLIENT}.txs")

    def test_a_missing_file_ends_with_exit_code_1_and_the_same_log(self):
        for directory in (self.directory_here(PLANT), self.directory_there(PLANT)):
            (directory / "Silodaten.rct").unlink()

        here = self.build_here(PLANT)
        there = self.build_there(PLANT)

        self.assertEqual((here.returncode, there.returncode), (1, 1))
        log = self.log_of(self.directory_here(PLANT))
        self.assertIn("Silodaten.rct", "".join(log))
        self.assertEqual(self.log_of(self.directory_there(PLANT)), log)

    def test_the_companion_finds_the_installation_sound_and_its_words_are_utf_8(self):
        self.assert_succeeded(self.build_there(PLANT), PLANT)

        verified = self.windows.run(WINDOWS_TOOL, "verify", rf"C:\Projekte\{PLANT}\Setup")
        listed = self.windows.run(WINDOWS_TOOL, "projects")

        self.assertEqual(verified.returncode, 0, verified.stdout + verified.stderr)
        self.assertEqual(listed.returncode, 0, listed.stderr)
        self.assertIn(PLANT, listed.stdout.decode("utf-8"))


main("SameInstallation")
