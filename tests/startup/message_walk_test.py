#!/usr/bin/env python3
"""The messages that a run can give on a sound computer, as users meet them: in the log of the
unattended run and on the console of the tool, in both languages, on a real disk.
    message_walk_test.py WIZARD TOOL SOURCE_DIRECTORY
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

WIZARD, TOOL, SOURCES = sys.argv[1:4]
sys.path.insert(0, str(pathlib.Path(SOURCES, "tests", "gui")))

from wizard_session import ENGLISH, GERMAN, text  # noqa: E402

MISSING_GUID = "{11111111-2222-3333-4444-555555555555}"


class Studio:
    """A studio with the project Demo, which is sound until a test breaks it."""

    def __init__(self, root, language):
        self.root = root
        self.drive = root / "drive_c"
        self.project = self.drive / "Projects" / "Demo"
        self.kit = self.drive / "Tavix" / "SetupKit"
        self.language = language
        for folder in (self.project, self.kit, self.drive / "Tavix" / "Studio"):
            folder.mkdir(parents=True)
        self.registry = [
            ("", {"MainDir": "C:\\Tavix", "Common": "C:\\Tavix\\Common"}),
            ("\\Tavix\\4.0", {"LCID": language, "Path": "C:\\Tavix\\Studio"}),
            (
                "\\Tavix\\4.0\\Projects\\Demo",
                {"Path": "C:\\Projects\\Demo\\", "ProjectType": "Single"},
            ),
        ]
        self.write(self.kit / "TXSTPKIT.INI", "[SetupFiles]", "Count=1", "1=SETUP.EXE")
        self.write(self.kit / "SETUP.EXE", "engine")
        self.write(self.project / "Demo.exe", "program")
        self.settings = {
            "program": {"name": "Demo.exe"},
            "file": {"01": "<ProjectDir>\\Demo.exe,<ProjectDir>,0"},
        }
        self.studio_project = ["[Global]", "Designer=Visual Basic 6.0", "DesignerProject=Demo.vbp"]
        self.vb_project = ["Type=Exe", 'ExeName32="Demo.exe"']

    @staticmethod
    def write(path, *lines):
        path.write_bytes("".join(line + "\r\n" for line in lines).encode("cp1252"))

    def lay(self):
        def value(data):
            if isinstance(data, int):
                return f"dword:{data:08x}"
            return '"' + data.replace("\\", "\\\\") + '"'

        registry = ["REGEDIT4"]
        for key, values in self.registry:
            registry.append(f"\r\n[HKEY_LOCAL_MACHINE\\Software\\ORBEKA GmbH{key}]")
            registry += [f'"{name}"={value(data)}' for name, data in values.items()]
        self.write(self.root / "registry.reg", *registry)
        if not (self.project / "Demo.swz").exists():
            settings = []
            for section, values in self.settings.items():
                settings.append(f"[{section}]")
                settings += [f"{key}={data}" for key, data in values.items()]
            self.write(self.project / "Demo.swz", *settings)
        self.write(self.project / "Demo.txs", *self.studio_project)
        if not (self.project / "Demo.vbp").exists():
            self.write(self.project / "Demo.vbp", *self.vb_project)

    def run(self, *command):
        environment = {**os.environ, "TAVIX_ROOT": str(self.root)}
        environment.pop("DISPLAY", None)
        return subprocess.run(
            command, env=environment, stdin=subprocess.DEVNULL, capture_output=True, check=False
        )

    def logged(self):
        """What the unattended run writes into its log: one text per entry."""
        result = self.run(WIZARD, "/c=Demo")
        assert (result.returncode, result.stdout, result.stderr) == (1, b"", b""), result
        contents = (self.project / "TXSetupWizard.log").read_bytes()
        # Every line ends in CR LF.
        assert contents.count(b"\n") == contents.count(b"\r\n") == contents.count(b"\r")
        entry = re.compile(r"^\d[\d./ :APM]+\r\n(.*?)\r\n\r\n", re.DOTALL | re.MULTILINE)
        entries = entry.findall(contents.decode("cp1252"))
        assert "".join(entries).count("\r\n\r\n") == 0
        return entries

    def said(self, command):
        """What the tool writes to its console: (number, text) of every message."""
        result = self.run(TOOL, command, "Demo")
        console = result.stderr.decode("utf-8")
        assert "\r" not in console, console
        found = re.findall(r"^message (\d+): (.*?)(?=^message |\Z)", console, re.DOTALL | re.MULTILINE)
        return [
            (int(number), words.rstrip("\n").replace("\n", "\r\n")) for number, words in found
        ]


# --- What goes wrong: each is told the studio, and says what the message names and how its text
# goes on.


def settings_cannot_be_read(studio):
    (studio.project / "Demo.swz").mkdir()
    return ["Demo"], r"\r\n\(\d+: C:\\Projects\\Demo\\Demo\.swz.*: .+\)"


def archive_cannot_be_made(studio):
    # With ".zip" behind it the name is too long for the disk.
    name = "x" * 248 + ".dll"
    studio.write(studio.project / name, "x")
    studio.settings["file"]["02"] = f"<ProjectDir>\\{name},<ProjectDir>,0"
    path = f"C:\\Projects\\Demo\\{name}"
    return [path], r"\r\n\(3\)\r\nC:\\Projects\\Demo\\~TEMP\\x+\.dll\.zip: .+"


def output_directory_is_none(studio):
    studio.settings["destination"] = {"path": "Setup"}
    return [], r"\r\n\(52: \"Setup\" .+\)"


def kit_file_is_missing(studio):
    (studio.kit / "SETUP.EXE").unlink()
    return ["SETUP.EXE"], r"\r\n\(53: C:\\Tavix\\SetupKit\\SETUP\.EXE.*: .+\)"


def kit_list_is_missing(studio):
    (studio.kit / "TXSTPKIT.INI").unlink()
    return [], r"\r\n\(53: C:\\Tavix\\SetupKit\\TXSTPKIT\.INI.*: .+\)"


def kit_is_too_large(studio):
    with (studio.kit / "SETUP.EXE").open("wb") as kit:
        kit.truncate(1_600_000)
    return [], ""


def picture_is_missing(studio):
    studio.settings["setup"] = {"background": "C:\\Bilder\\gibt es nicht.bmp"}
    return ["C:\\Bilder\\gibt es nicht.bmp"], ""


def directory_is_missing(studio):
    studio.settings["path"] = {"tavix": " "}
    return [], ""


def files_are_missing(studio):
    (studio.project / "Demo.exe").unlink()
    concerned = text(studio.language, 1940, "\r\nC:\\Projects\\Demo\\Demo.exe")
    return [], re.escape("\r\n" + concerned)


def destination_is_missing(studio):
    studio.settings["file"]["01"] = "<ProjectDir>\\Demo.exe,,0"
    concerned = text(studio.language, 1940, "\r\nC:\\Projects\\Demo\\Demo.exe")
    return [], re.escape("\r\n" + concerned)


def program_is_missing(studio):
    studio.settings["program"]["name"] = ""
    return [], ""


def directory_has_no_drive(studio):
    studio.settings["path"] = {"project": "Demo"}
    return ["Demo"], ""


CREATING = {
    901: settings_cannot_be_read,
    902: archive_cannot_be_made,
    906: output_directory_is_none,
    909: kit_file_is_missing,
    910: kit_list_is_missing,
    912: kit_is_too_large,
    1707: picture_is_missing,
    1708: directory_is_missing,
    1709: files_are_missing,
    1710: destination_is_missing,
    1711: program_is_missing,
    1712: directory_has_no_drive,
}


def project_cannot_be_read(studio):
    (studio.project / "Demo.vbp").mkdir()
    return ["C:\\Projects\\Demo\\Demo.vbp"], r"\r\n\(\d+: C:\\Projects\\Demo\\Demo\.vbp.*: .+\)"


def type_library_is_missing(studio):
    studio.vb_project.append(f"Reference=*\\G{MISSING_GUID}#1.0#0#C:\\x.tlb#X")
    return [MISSING_GUID], ""


def driver_is_missing(studio):
    studio.studio_project += ["[device1]", "ProgID=Lost", "[device2]", "ProgID=Lost"]
    return ["Lost"], ""


def object_is_embedded(studio):
    studio.vb_project += ["Object=Word.Document.8; WINWORD.EXE"] * 2
    return ["Word.Document.8; WINWORD.EXE"], ""


def component_uses_mdac(studio):
    studio.write(studio.kit / "TXDependencies.ini", "[Tavix4]", "Uses1=ado.dll", "[ado.dll]",
                 "Replace=mdac_typ.exe")
    studio.write(studio.project / "ado.dll", "ado")
    return [], ""


def designer_is_another(studio):
    studio.studio_project = ["[Global]", "Designer=Delphi 5.0"]
    return ["Delphi 5.0"], ""


SCANNING = {
    908: project_cannot_be_read,
    914: type_library_is_missing,
    915: driver_is_missing,
    916: object_is_embedded,
    917: component_uses_mdac,
    1713: designer_is_another,
}


class Messages(unittest.TestCase):
    maxDiff = None

    def studio(self, language):
        root = pathlib.Path(tempfile.mkdtemp(prefix="message-walk-"))
        self.addCleanup(shutil.rmtree, root)
        return Studio(root, language)

    def with_each(self, cases, check):
        """Every case in both languages: `check` is told the studio, the message's number and what it
        must read."""
        for number, breaks in cases.items():
            for language in (GERMAN, ENGLISH):
                with self.subTest(number, language=language):
                    studio = self.studio(language)
                    names, behind = breaks(studio)
                    studio.lay()
                    expected = re.escape(text(language, number, *names)) + behind
                    check(studio, number, re.compile(f"^{expected}$", re.DOTALL))

    def test_the_log_has_each_message_of_create_once_with_its_cause(self):
        def check(studio, _, expected):
            entries = studio.logged()

            self.assertEqual(len(entries), 1, entries)
            self.assertRegex(entries[0], expected)

        self.with_each(CREATING, check)

    def test_the_console_has_each_message_of_create_once_with_its_cause(self):
        def check(studio, number, expected):
            messages = studio.said("create")

            self.assertEqual([said for said, _ in messages], [number], messages)
            self.assertRegex(messages[0][1], expected)

        self.with_each(CREATING, check)

    def test_the_console_has_each_message_of_scan_once_with_its_cause(self):
        def check(studio, number, expected):
            messages = studio.said("scan")

            self.assertEqual([said for said, _ in messages].count(number), 1, messages)
            self.assertEqual(len(messages), len(set(messages)), messages)
            self.assertRegex(dict(messages)[number], expected)

        self.with_each(SCANNING, check)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
