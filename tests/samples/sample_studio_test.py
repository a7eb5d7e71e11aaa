#!/usr/bin/env python3
"""The programs on the sample studio, from the command line to the disks.

Python's own zipfile reads the installations back, so that a fault of the archiver cannot hide behind
the same fault in TXSetupTool verify. Run by CTest, one test per scenario:
    sample_studio_test.py WIZARD TOOL GENERATOR PREPARE SCENARIO
"""

import io
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile

WIZARD, TOOL, GENERATOR, PREPARE = sys.argv[1:5]

PLANT = "Mischanlage Süd"
SERVER = "Kläranlage Server"
CLIENT = "Leitstand Client"
PUMPS = "Pumpwerke"

DISKETTE_BYTES = 1457152

# What the path variables of the sample studio stand for, below drive_c.
VARIABLES = {
    "<TavixCommonDir>": "TavixStudio/Common",
    "<TavixStudioDir>": "TavixStudio/Studio",
    "<TavixMainDir>": "TavixStudio",
    "<WinSysDir>": "Windows/System32",
}


class SampleStudio(unittest.TestCase):
    def setUp(self):
        self.scratch = pathlib.Path(tempfile.mkdtemp(prefix="sample-studio-"))
        self.addCleanup(shutil.rmtree, self.scratch)
        self.studio = self.lay("studio")

    def lay(self, name, language="german"):
        target = self.scratch / name
        subprocess.run([PREPARE, GENERATOR, str(target), language], check=True)
        return target

    def run_program(self, *command, studio=None):
        environment = dict(os.environ, TAVIX_ROOT=str(studio or self.studio))
        environment.pop("DISPLAY", None)  # an unattended run needs none
        return subprocess.run(
            command, env=environment, stdin=subprocess.DEVNULL, capture_output=True, check=False
        )

    def build(self, argument, studio=None):
        return self.run_program(WIZARD, "/c=" + argument, studio=studio)

    def directory(self, project, studio=None):
        return (studio or self.studio) / "drive_c" / "Projekte" / project

    def script(self, project, studio=None):
        path = self.directory(project, studio) / "Setup" / "DISK1" / "SETUP.STP"
        return path.read_bytes().decode("cp1252").split("\r\n")

    def listed_sources(self, project):
        """The files that the settings file lists, in the order in which they are installed."""
        text = (self.directory(project) / (project + ".swz")).read_bytes().decode("cp1252")
        sections = re.split(r"^\[(.*?)\]", text, flags=re.MULTILINE)
        bodies = dict(zip(sections[1::2], sections[2::2]))
        sources = []
        for section in ("file", "HiddenFile"):
            for value in re.findall(r"^\d+=(.*?),", bodies.get(section, ""), re.MULTILINE):
                variable, _, rest = value.partition("\\")
                base = VARIABLES.get(variable, "Projekte/" + project)
                sources.append(self.studio / "drive_c" / base / rest.replace("\\", "/"))
        return sources

    def assert_disks_hold(self, project, sources, medium=DISKETTE_BYTES):
        """Joins the pieces that the script names and compares every file with its source."""
        setup = self.directory(project) / "Setup"
        installs = [
            line[len("InstallFile(") : -1].split("|")
            for line in self.script(project)
            if line.startswith("InstallFile(")
        ]
        self.assertEqual(len(installs), len(sources))
        for fields, source in zip(installs, sources):
            archive, target, length, date = fields[0:4]
            self.assertEqual(fields[5:7], ["2", "0"])
            joined = b"".join(
                (setup / ("DISK" + disk) / archive).read_bytes() for disk in fields[7:]
            )
            with zipfile.ZipFile(io.BytesIO(joined)) as zipped:
                self.assertEqual(zipped.namelist(), [source.name])
                self.assertEqual(zipped.read(source.name), source.read_bytes())
            self.assertEqual(target.rpartition("\\")[2], source.name)
            self.assertEqual(int(length), source.stat().st_size)
            self.assertRegex(date, r"^\d\d\.\d\d\.\d{4}$")
        for disk in setup.iterdir():
            label = disk / disk.name
            self.assertEqual(label.read_bytes(), f" {disk.name[4:]} ".encode())
            self.assertLessEqual(
                sum((f.stat().st_size + 1023) // 1024 * 1024 for f in disk.iterdir() if f != label),
                medium + 1024,  # the last chunk of a disk may end beyond it by less than one unit
            )

    def assert_succeeded(self, result):
        self.assertEqual(result.returncode, 0, result.stderr.decode(errors="replace"))

    def test_a_single_project_fills_three_diskettes(self):
        result = self.build(f"C:\\Projekte\\{PLANT}\\{PLANT}.txs")

        self.assert_succeeded(result)
        setup = self.directory(PLANT) / "Setup"
        self.assertEqual(sorted(disk.name for disk in setup.iterdir()), ["DISK1", "DISK2", "DISK3"])
        self.assert_disks_hold(PLANT, self.listed_sources(PLANT))
        self.assertIn("SetVar(UserDir2|D:\\Protokolle\\Chargen)", self.script(PLANT))
        self.assertIn("SetupName=" + PLANT, self.script(PLANT))
        archives = [line for line in self.script(PLANT) if line.startswith("InstallFile(Meldungen")]
        self.assertEqual(
            [line.split("|")[0] for line in archives],
            ["InstallFile(Meldungen.dll.zip", "InstallFile(Meldungen.dll.1.zip"],
        )
        self.assertFalse((self.directory(PLANT) / "~TEMP").exists())

    def test_the_version_of_a_program_file_is_in_the_script(self):
        self.assert_succeeded(self.build(PLANT))

        line = next(l for l in self.script(PLANT) if l.startswith("InstallFile(TXData.dll.zip|"))
        self.assertEqual(line.split("|")[3:5], ["30.09.2003", "4.0.112.0"])

    def test_a_server_project_named_without_directory_starts_the_manager(self):
        result = self.build(SERVER)

        self.assert_succeeded(result)
        sources = [
            s.with_name("Mdac_min.exe") if s.name == "mdac_typ.exe" else s
            for s in self.listed_sources(SERVER)
        ]
        self.assert_disks_hold(SERVER, sources)
        script = self.script(SERVER)
        key = "WriteRegistry(HKEY_LOCAL_MACHINE|Software\\ORBEKA GmbH\\Tavix\\4.0|"
        self.assertIn(f"{key}Actual Project|{SERVER}|1)", script)
        self.assertIn(key + "AutoStart|1|3)", script)
        manager = "<TavixStudioDir>\\System\\TXEManager.exe"
        self.assertTrue(any(line.startswith(f"  CreateShellLink({manager}|") for line in script))

    def test_a_client_project_lies_on_one_disk_behind_its_runtime_setup(self):
        result = self.build(f'"C:\\Projekte\\{CLIENT}\\{CLIENT}.swz"')

        self.assert_succeeded(result)
        setup = self.directory(CLIENT) / "Setup"
        self.assertEqual([disk.name for disk in setup.iterdir()], ["DISK1"])
        self.assert_disks_hold(CLIENT, self.listed_sources(CLIENT), medium=2147483647)
        script = self.script(CLIENT)
        start = "ExecFile(<TavixMainDir>\\SetupKit\\TXSRuntimeClientSetup.exe|0|/S)"
        self.assertIn(start, script)
        self.assertNotIn("If(IsEqual(<Language>|1))", script)

    def test_two_copies_give_the_same_bytes(self):
        other = self.lay("other")

        for studio in (self.studio, other):
            for project in (PLANT, SERVER, CLIENT):
                self.assert_succeeded(self.build(project, studio=studio))

        def contents(studio):
            return {
                str(path.relative_to(studio)): path.read_bytes()
                for project in (PLANT, SERVER, CLIENT)
                for path in (self.directory(project, studio) / "Setup").rglob("*")
                if path.is_file()
            }

        self.assertEqual(contents(self.studio), contents(other))

    def test_a_second_run_replaces_the_disks_of_the_first(self):
        self.assert_succeeded(self.build(PLANT))
        left_over = self.directory(PLANT) / "Setup" / "DISK9"
        left_over.mkdir()
        (left_over / "old.zip").write_bytes(b"old")

        result = self.build(PLANT)

        self.assert_succeeded(result)
        self.assertFalse(left_over.exists())
        self.assert_disks_hold(PLANT, self.listed_sources(PLANT))

    def test_a_missing_file_ends_with_exit_code_1_and_a_log(self):
        for language, words in (("german", "existieren nicht"), ("english", "do not exist")):
            with self.subTest(language):
                studio = self.lay(language, language)
                (self.directory(PLANT, studio) / "Daten" / "Rezepte.mdb").unlink()

                result = self.build(PLANT, studio=studio)

                self.assertEqual(result.returncode, 1)
                log = (self.directory(PLANT, studio) / "TXSetupWizard.log").read_bytes()
                self.assertIn(words, log.decode("cp1252"))

    def test_verify_finds_the_installation_sound_and_a_flipped_bit(self):
        self.assert_succeeded(self.build(PLANT))
        setup = f"C:\\Projekte\\{PLANT}\\Setup"
        archive = self.directory(PLANT) / "Setup" / "DISK1" / "TXData.dll.zip"

        sound = self.run_program(TOOL, "verify", setup)
        damaged = bytearray(archive.read_bytes())
        damaged[len(damaged) // 2] ^= 1
        archive.write_bytes(damaged)
        broken = self.run_program(TOOL, "verify", setup)

        self.assertEqual(sound.returncode, 0, sound.stdout.decode() + sound.stderr.decode())
        self.assertEqual(broken.returncode, 5)
        self.assertIn("TXData.dll.zip", broken.stdout.decode() + broken.stderr.decode())

    def test_projects_lists_a_registration_whose_file_has_gone_and_keeps_it(self):
        registry = (self.studio / "registry.reg").read_bytes()

        result = self.run_program(TOOL, "projects")

        self.assert_succeeded(result)
        for project in (PLANT, SERVER, CLIENT, "Altes Lager"):
            self.assertIn(project, result.stdout.decode())
        self.assertEqual((self.studio / "registry.reg").read_bytes(), registry)

    # --- scan

    def use_runtime_setup(self, use):
        path = self.studio / "registry.reg"
        text = path.read_bytes().decode("utf-16")
        option = '"UseRuntimeSetup"=dword:0000000'
        self.assertIn(option, text)
        text = re.sub(option + r"\d", option + str(int(use)), text)
        path.write_bytes(b"\xff\xfe" + text.encode("utf-16-le"))

    def scan(self, project, *options):
        result = self.run_program(TOOL, "scan", project, "--json", *options)
        return result, json.loads(result.stdout.decode())

    def sources_of(self, scanned):
        return [row["source"] for row in scanned["rows"]]

    def test_a_group_scanned_and_created_in_one_process_gives_the_complete_script(self):
        self.use_runtime_setup(False)

        result = self.run_program(TOOL, "create", PUMPS, "--scan", "--json")
        verified = self.run_program(TOOL, "verify", f"C:\\Projekte\\{PUMPS}\\Setup")

        self.assert_succeeded(result)
        self.assertEqual(json.loads(result.stdout.decode())["missing"], [])
        self.assertIn("message 917", result.stderr.decode())
        self.assertEqual(verified.returncode, 0, verified.stdout.decode())
        script = self.script(PUMPS)
        key = "WriteRegistry(HKEY_LOCAL_MACHINE|Software\\ORBEKA GmbH\\Tavix\\4.0\\"
        for line in (
            key + "Projects\\Pumpwerke|Path|<ProjectDir>|1)",
            key + "Projects\\Pumpwerke|TavixVersion|4.0.112|1)",
            key + "Projects\\Pumpwerke|ProjectType|Single|1)",
            key + "Drivers\\TXDrvFeldbus.Device|Path|<TavixStudioDir>\\Drivers\\TXDrvFeldbus.exe|1)",
            key + "Drivers\\TXDrvFeldbus.Device|Name|Feldbus-Koppler|1)",
            'ExecFile(<TempDir>\\mdac_typ.exe|0|/q:a|/c:"setup.exe /qt")',
            "ExecFile(<TempDir>\\Jet40Sp3_Comp.exe|0|/q)",
            "RegInProc(<ProjectDir>\\Förderregler\\Regler.dll)",
            "RegInProc(<WinSysDir>\\Manometer.ocx)",
            "RegOutProc(<TavixStudioDir>\\Drivers\\TXDrvFeldbus.exe)",
        ):
            self.assertEqual(script.count(line), 1, line)

    def test_a_scan_relies_on_the_predefined_runtime_setup(self):
        result, scanned = self.scan(PUMPS)

        self.assertEqual(result.returncode, 0, result.stderr.decode())
        self.assertEqual(
            self.sources_of(scanned),
            [
                "<TavixMainDir>\\SetupKit\\TXSRuntimeServerSetup.exe",
                "<TavixMainDir>\\SetupKit\\TXSRuntimeClientSetup.exe",
                "<ProjectDir>\\Pumpwerke.txs",
                "<ProjectDir>\\Pumpwerke.dbf",
                "<ProjectDir>\\Förderregler\\Regler.dll",
                "<ProjectDir>\\Förderregler\\Messwandler.dll",
                "<TavixStudioDir>\\Drivers\\TXDrvFeldbus.exe",
                "<WinSysDir>\\MSVBVM50.DLL",
                "C:\\Komponenten\\Manometer.ocx",
                "<WinSysDir>\\MFCBSP.DLL",
                "C:\\Komponenten\\ManoDe.dll",
                "<ProjectDir>\\Pumpwerke.exe",
            ],
        )
        self.assertEqual(scanned["program"], "Pumpwerke.exe")

    def test_a_scan_names_a_missing_file_with_the_chain_that_needs_it(self):
        (self.studio / "drive_c/Windows/System32/MFCBSP.DLL").unlink()

        result, scanned = self.scan(PUMPS)

        self.assertEqual(result.returncode, 3)
        self.assertTrue(scanned["result"])
        self.assertEqual(
            scanned["missing"],
            [
                {
                    "name": "MFCBSP.DLL",
                    "chain": ["Pumpwerke.vbg", "Pumpwerke.vbp", "Manometer.ocx", "MFCBSP.DLL"],
                }
            ],
        )

    def test_a_saved_scan_adds_nothing_the_next_time(self):
        self.use_runtime_setup(False)
        for project in (PLANT, SERVER, CLIENT, PUMPS):
            first_result, first = self.scan(project, "--save")
            saved = (self.directory(project) / (project + ".swz")).read_bytes()

            second_result, second = self.scan(project, "--save")

            self.assertEqual(first_result.returncode, 0, first_result.stderr.decode())
            self.assertEqual(second_result.returncode, 0, second_result.stderr.decode())
            self.assertEqual(second["rows"], first["rows"])
            self.assertEqual(sorted(second["todo"]), sorted(first["todo"]))
            self.assertEqual(
                (self.directory(project) / (project + ".swz")).read_bytes(), saved
            )


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], "SampleStudio." + sys.argv[5]])
