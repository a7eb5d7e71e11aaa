#!/usr/bin/env python3
"""The wizard with a dzip32.dll beside it: the stand-in of standin_dzip32.cpp, which checks what it is
handed, and packs or fails.

Run by CTest, one test per scenario; for the arguments see windows_studio.py.
"""

import io
import pathlib
import re
import shutil
import subprocess
import zipfile

from windows_studio import (PLANT, STANDIN, WINDOWS_TOOL, WINDOWS_WIZARD, StudioTest, files_below, main)

MARK = b"packed by the stand-in"


class DynaZip(StudioTest):
    def setUp(self):
        super().setUp()
        programs = self.scratch / "Setup-Assistent für Süd"
        programs.mkdir()
        shutil.copy(WINDOWS_WIZARD, programs)
        shutil.copy(STANDIN, programs)
        self.wizard = programs / pathlib.Path(WINDOWS_WIZARD).name

    def archives(self):
        """Every archive of the installation, its pieces joined."""
        setup = self.directory_there(PLANT) / "Setup"
        disks = sorted(setup.glob("DISK*"), key=lambda disk: int(disk.name[4:]))
        archives = {}
        for disk in disks:
            for piece in sorted(disk.glob("*.zip")):
                archives[piece.name] = archives.get(piece.name, b"") + piece.read_bytes()
        return archives

    def test_dynazip_packs_every_file_of_an_unattended_run(self):
        self.assert_succeeded(self.build_there(PLANT, wizard=self.wizard), PLANT)

        archives = self.archives()
        self.assertGreater(len(archives), 5)
        sources = {}
        for path in self.twin.rglob("*"):
            if path.is_file():
                sources.setdefault(path.name.lower(), []).append(path.read_bytes())
        for name, archive in archives.items():
            with self.subTest(name):
                self.assertTrue(archive.endswith(MARK))
                joined = self.scratch / "joined.zip"
                joined.write_bytes(archive)
                tested = subprocess.run(["unzip", "-t", str(joined)], capture_output=True, check=False)
                self.assertEqual(tested.returncode, 0, tested.stdout + tested.stderr)
                with zipfile.ZipFile(io.BytesIO(archive)) as entries:
                    (entry,) = entries.infolist()
                    # "x.dll.1.zip" holds another x.dll.
                    source = re.sub(r"(\.\d+)?\.zip$", "", name.lower())
                    self.assertIn(entries.read(entry), sources[source])
        verified = self.windows.run(WINDOWS_TOOL, "verify", rf"C:\Projekte\{PLANT}\Setup")
        self.assertEqual(verified.returncode, 0, verified.stdout + verified.stderr)

    def test_dynazip_whose_code_is_an_error_ends_the_run_with_the_message_and_nothing_half_written(self):
        before = files_below(self.directory_there(PLANT))

        result = self.build_there(PLANT, wizard=self.wizard, TXS_DZIP_RESULT="21")

        self.assertEqual(result.returncode, 1)
        log = self.log_of(self.directory_there(PLANT))
        said = [i for i, line in enumerate(log) if "Fehler beim Komprimieren" in line]
        self.assertEqual(len(said), 1, log)
        self.assertIn("(21)", log[said[0] + 1])
        after = files_below(self.directory_there(PLANT))
        after.pop("TXSetupWizard.log")
        self.assertEqual(after, before)


main("DynaZip")
