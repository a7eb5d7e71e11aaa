#!/usr/bin/env python3
"""Same input, same bytes: whatever surrounds a run, and whichever build makes it.

Run by CTest, one test per scenario:
    reproducible_test.py WIZARD TOOL GENERATOR PREPARE SCENARIO
The installations of the sample studio have their digests on record, sample_installations.sha256; every
preset compares with them. Regenerate the record, after a change that is meant to change the bytes
(samples, archiver, script, or a new version of libdeflate), with
    TXS_WRITE_DIGESTS=1 ctest --preset ci -R reproducible.the_samples_have_the_digests_on_record
and say in the commit why.
"""

import hashlib
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

WIZARD, TOOL, GENERATOR, PREPARE = (str(pathlib.Path(path).absolute()) for path in sys.argv[1:5])
RECORD = pathlib.Path(__file__).with_name("sample_installations.sha256")
LEAKS = pathlib.Path(__file__).with_name("leaks.supp")

SCANNED = "Pumpwerke"  # has no list of files before its first Scan
PROJECTS = ("Kläranlage Server", "Leitstand Client", "Mischanlage Süd", SCANNED)

# Other letters for i and I, another decimal sign, other dates; a machine may have none of them.
LOCALES = {"de_DE.UTF-8": ("de_DE", "UTF-8"), "tr_TR.ISO-8859-9": ("tr_TR", "ISO-8859-9")}


def digests(folder):
    return {
        path.relative_to(folder).as_posix(): hashlib.sha256(path.read_bytes()).hexdigest()
        for path in sorted(folder.rglob("*"))
        if path.is_file()
    }


class Reproducible(unittest.TestCase):
    def setUp(self):
        self.scratch = pathlib.Path(tempfile.mkdtemp(prefix="reproducible-"))
        self.addCleanup(shutil.rmtree, self.scratch)

    def build(self, name, changes=None, directory="/", mask=0o022, projects=PROJECTS):
        """The digests of all installations of a fresh copy of the sample studio."""
        studio = self.scratch / name
        studio.parent.mkdir(parents=True, exist_ok=True)
        subprocess.run([PREPARE, GENERATOR, str(studio)], check=True)
        environment = {
            "PATH": os.environ["PATH"],
            "HOME": str(self.scratch),
            "LC_ALL": "C.UTF-8",
            # Archives and script tell local times, as on Windows: the time zone is input.
            "TZ": "UTC",
            "TAVIX_ROOT": str(studio),
            "LSAN_OPTIONS": f"suppressions={LEAKS}:print_suppressions=0",
        }
        for key, value in (changes or {}).items():
            environment.pop(key, None)
            if value is not None:
                environment[key] = value
        found = {}
        for project in projects:
            result = subprocess.run(
                [TOOL, "create", project, "--scan"] if project == SCANNED else [WIZARD, "/c=" + project],
                env=environment,
                cwd=directory or studio,
                umask=mask,
                stdin=subprocess.DEVNULL,
                capture_output=True,
                check=False,
            )
            self.assertEqual(result.returncode, 0, result.stderr.decode(errors="replace"))
            setup = studio / "drive_c" / "Projekte" / project / "Setup"
            for path, digest in digests(setup).items():
                found[project + "/" + path] = digest
        return found

    def make_locales(self):
        """A folder with the locales, each of which a program can use from there."""
        folder = self.scratch / "locales"
        folder.mkdir()
        for name, (language, code_page) in LOCALES.items():
            subprocess.run(
                ["localedef", "-i", language, "-f", code_page, str(folder / name)], check=True
            )
            loaded = subprocess.run(
                [sys.executable, "-c", "import locale; print(locale.setlocale(locale.LC_ALL, ''),"
                 " locale.localeconv()['decimal_point'])"],
                env={"LC_ALL": name, "LOCPATH": str(folder)},
                capture_output=True,
                text=True,
                check=True,
            )
            self.assertEqual(loaded.stdout, f"{name} ,\n")
        return str(folder)

    def test_the_surroundings_of_a_run_change_no_byte(self):
        expected = self.build("plain")
        self.assertGreater(len(expected), 60)
        locales = self.make_locales()
        surroundings = [
            {"directory": None},
            {"directory": tempfile.gettempdir(), "mask": 0o077},
            {"mask": 0},
            {"changes": {"LC_ALL": "C"}},
            {"changes": {"LC_ALL": "de_DE.UTF-8", "LANG": "de_DE.UTF-8", "LOCPATH": locales}},
            {"changes": {"LC_ALL": "tr_TR.ISO-8859-9", "LOCPATH": locales}},
            {"changes": {"LC_ALL": None, "LANG": "no such locale"}},
            {"changes": {"TZ": "UTC0", "HOME": None, "XDG_DATA_HOME": "/nowhere"}},
            {"changes": {"TMPDIR": "/nowhere", "DISPLAY": ":77", "COLUMNS": "7"}},
            {"name": "a much longer name/of the folder/that stands for the computer"},
        ]
        some = ("Mischanlage Süd", SCANNED)
        part = {name: digest for name, digest in expected.items() if name.startswith(some)}
        for number, surrounding in enumerate(surroundings):
            with self.subTest(surrounding=surrounding):
                name = surrounding.pop("name", f"copy{number}")
                self.assertEqual(self.build(name, projects=some, **surrounding), part)
        print(f"RELIABILITY surroundings with the same bytes: {len(surroundings)}")

    def test_the_samples_have_the_digests_on_record(self):
        found = self.build("studio")
        lines = "".join(f"{digest}  {name}\n" for name, digest in found.items())
        if os.environ.get("TXS_WRITE_DIGESTS"):
            RECORD.write_text(lines, encoding="utf-8")
        self.assertEqual(lines, RECORD.read_text(encoding="utf-8"))
        print(f"RELIABILITY files of the samples with the digest on record: {len(found)}")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + ["Reproducible." + sys.argv[5]])
