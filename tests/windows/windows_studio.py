"""The sample studio on a Windows of its own (a Wine prefix), beside a copy that the programs of this
machine work on.

The scripts of the tests have these arguments in common, then the name of the scenario:
    WINE PREFIX WIZARD.exe TOOL.exe WIZARD GENERATOR PREPARE DZIP32.dll START.exe
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

(WINE, PREFIX, WINDOWS_WIZARD, WINDOWS_TOOL, WIZARD, GENERATOR, PREPARE, STANDIN,
 START) = sys.argv[1:10]
SCENARIO = sys.argv[10]

PLANT = "Mischanlage Süd"
SERVER = "Kläranlage Server"
CLIENT = "Leitstand Client"

# The 32-bit view, in which the studio has always kept its keys; a 64-bit import leaves them elsewhere.
VIEW_32 = "/reg:32"


class WindowsStudio:
    """Lays the samples into the prefix `prefix`, which is made when it is missing."""

    def __init__(self, wine, prefix, prepare, generator, scratch):
        self.wine = wine
        self.prefix = pathlib.Path(prefix)
        self.prepare = prepare
        self.generator = generator
        self.scratch = pathlib.Path(scratch)
        self.drive_c = self.prefix / "drive_c"

    def environment(self):
        environment = dict(os.environ, WINEPREFIX=str(self.prefix))
        environment.pop("DISPLAY", None)  # an unattended run needs none
        environment.pop("WAYLAND_DISPLAY", None)
        return environment

    def run(self, program, *arguments, **variables):
        return subprocess.run([self.wine, str(program), *arguments],
                              env=dict(self.environment(), **variables),
                              stdin=subprocess.DEVNULL, capture_output=True, check=False)

    def lay(self, language="german"):
        """A fresh copy; what an earlier one left in the prefix goes. Returns the copy for this
        machine's programs."""
        twin = self.scratch / "studio"
        subprocess.run([self.prepare, self.generator, str(twin), language], check=True)
        result = self.run("cmd", "/c", "exit 0")  # makes the prefix
        if result.returncode != 0:
            raise RuntimeError(f"Wine does not start: {result.stderr.decode(errors='replace')}")
        for folder in sorted((twin / "drive_c").iterdir()):
            self.copy(folder, self.find(self.drive_c, folder.name))
        result = self.run("reg", "import", "Z:" + str(twin / "registry.reg").replace("/", "\\"),
                          VIEW_32)
        if result.returncode != 0:
            raise RuntimeError(f"no registry: {result.stdout.decode(errors='replace')}")
        return twin

    def find(self, parent, name):
        """Windows knows the folder whatever the case; this machine does not."""
        for entry in parent.iterdir():
            if entry.name.lower() == name.lower():
                return entry
        return parent / name

    def copy(self, source, target):
        """What the samples lack stays in folders of Windows, and goes in all others."""
        if source.is_dir():
            if target.exists() and source.name.lower() in ("projekte", "tavixstudio", "komponenten"):
                shutil.rmtree(target)
            target.mkdir(exist_ok=True)
            for entry in sorted(source.iterdir()):
                self.copy(entry, self.find(target, entry.name))
            shutil.copystat(source, target)
        else:
            # A link of Wine's into its own libraries must not be written through.
            target.unlink(missing_ok=True)
            shutil.copy2(source, target)


def files_below(folder):
    return {str(path.relative_to(folder)): path.read_bytes()
            for path in sorted(folder.rglob("*")) if path.is_file()}


def windows_path(path):
    """A file of this machine as programs of Windows name it."""
    return "Z:" + str(path).replace("/", "\\")


class StudioTest(unittest.TestCase):
    def setUp(self):
        self.scratch = pathlib.Path(tempfile.mkdtemp(prefix="windows-studio-"))
        self.addCleanup(shutil.rmtree, self.scratch)
        self.windows = WindowsStudio(WINE, PREFIX, PREPARE, GENERATOR, self.scratch)
        self.twin = self.windows.lay()

    def directory_there(self, project):
        return self.windows.drive_c / "Projekte" / project

    def directory_here(self, project):
        return self.twin / "drive_c" / "Projekte" / project

    def build_here(self, argument):
        environment = dict(os.environ, TAVIX_ROOT=str(self.twin))
        return subprocess.run([WIZARD, "/c=" + argument], env=environment,
                              stdin=subprocess.DEVNULL, capture_output=True, check=False)

    def build_there(self, argument, wizard=WINDOWS_WIZARD, **variables):
        return self.windows.run(wizard, "/c=" + argument, **variables)

    def log_of(self, directory):
        """The entries of the log without their dates, which each system writes in its way."""
        log = directory / "TXSetupWizard.log"
        if not log.exists():
            return []
        return log.read_bytes().decode("cp1252").split("\r\n")[1:]

    def assert_succeeded(self, there, project):
        self.assertEqual(there.returncode, 0, there.stderr.decode(errors="replace") +
                         "\n".join(self.log_of(self.directory_there(project))))


def main(test_class):
    unittest.main(argv=[sys.argv[0], f"{test_class}.test_{SCENARIO}"])
