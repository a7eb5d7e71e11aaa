#!/usr/bin/env python3
"""What Windows sees of the program files, before it runs them.

    program_files_test.py VERSION MACHINE WIZARD.exe TOOL.exe [WINE]

VERSION is the project's (4.0.0), MACHINE is x86 or x64. With WINE (cmake/run_under_wine.sh), the tool
is also asked for its version.
"""

import struct
import subprocess
import sys
import unittest

VERSION, MACHINE, WIZARD, TOOL = sys.argv[1:5]
WINE = sys.argv[5] if len(sys.argv) > 5 else None

MACHINES = {"x86": 0x014C, "x64": 0x8664}
GRAPHICAL, CONSOLE = 2, 3
ICON, GROUP_ICON, VERSION_INFO, MANIFEST = 3, 14, 16, 24

# Part of every Windows since 7.
SYSTEM_LIBRARIES = {
    "advapi32.dll", "comctl32.dll", "comdlg32.dll", "gdi32.dll", "gdiplus.dll", "imm32.dll",
    "kernel32.dll", "msimg32.dll", "msvcrt.dll", "ole32.dll", "oleacc.dll", "oleaut32.dll",
    "psapi.dll", "rpcrt4.dll", "shell32.dll", "shlwapi.dll", "user32.dll", "uxtheme.dll",
    "version.dll", "winspool.drv", "ws2_32.dll",
}


class ProgramFile:
    """As much of a PE file as the tests ask for."""

    def __init__(self, path):
        with open(path, "rb") as file:
            self.data = file.read()
        self.header = self.number(0x3C, "<I")
        if self.data[self.header:self.header + 4] != b"PE\0\0":
            raise ValueError(f"{path} is no program of Windows")
        self.machine = self.number(self.header + 4, "<H")
        self.optional = self.header + 24
        self.wide = self.number(self.optional, "<H") == 0x20B
        self.subsystem = self.number(self.optional + 68, "<H")
        self.features = self.number(self.optional + 70, "<H")
        self.needs_windows = struct.unpack_from("<HH", self.data, self.optional + 48)
        self.directories = self.optional + (112 if self.wide else 96)
        sections = self.optional + self.number(self.header + 20, "<H")
        self.sections = [struct.unpack_from("<IIII", self.data, sections + 40 * i + 8)
                         for i in range(self.number(self.header + 6, "<H"))]

    def number(self, offset, form):
        return struct.unpack_from(form, self.data, offset)[0]

    def offset(self, address):
        for size, start, raw_size, raw in self.sections:
            if start <= address < start + max(size, raw_size):
                return address - start + raw
        raise ValueError(f"no section holds address {address:#x}")

    def imports(self):
        at = self.offset(self.number(self.directories + 8, "<I"))
        names = []
        while self.number(at + 12, "<I"):
            start = self.offset(self.number(at + 12, "<I"))
            names.append(self.data[start:self.data.index(b"\0", start)].decode().lower())
            at += 20
        return names

    def resources(self, kind):
        """The contents of all resources of a kind."""
        root = self.offset(self.number(self.directories + 16, "<I"))

        def entries(directory):
            named, numbered = struct.unpack_from("<HH", self.data, directory + 12)
            for i in range(named + numbered):
                yield struct.unpack_from("<II", self.data, directory + 16 + 8 * i)

        def contents(entry):
            if entry & 0x80000000:
                for _, below in entries(root + (entry & 0x7FFFFFFF)):
                    yield from contents(below)
            else:
                address, size = struct.unpack_from("<II", self.data, root + entry)
                start = self.offset(address)
                yield self.data[start:start + size]

        return [found for name, entry in entries(root) if name == kind for found in contents(entry)]

    def file_version(self):
        block = self.resources(VERSION_INFO)[0]
        at = block.index(struct.pack("<I", 0xFEEF04BD))
        high, low = struct.unpack_from("<II", block, at + 8)
        return [high >> 16, high & 0xFFFF, low >> 16, low & 0xFFFF]

    def version_text(self, name):
        text = self.resources(VERSION_INFO)[0].decode("utf-16-le", errors="replace")
        return text.partition(name + "\0")[2].lstrip("\0").partition("\0")[0]


class BothPrograms(unittest.TestCase):
    def each(self):
        for path in (WIZARD, TOOL):
            with self.subTest(program=path):
                yield ProgramFile(path)

    def test_they_are_for_the_machine(self):
        for program in self.each():
            self.assertEqual(program.machine, MACHINES[MACHINE])

    def test_they_need_no_library_that_windows_does_not_bring(self):
        for program in self.each():
            self.assertEqual([n for n in program.imports() if n not in SYSTEM_LIBRARIES], [])

    def test_they_are_loaded_at_random_addresses_and_run_no_data(self):
        for program in self.each():
            self.assertTrue(program.features & 0x0040, "no DYNAMIC_BASE")
            self.assertTrue(program.features & 0x0100, "no NX_COMPAT")

    def test_they_start_on_windows_7(self):
        for program in self.each():
            self.assertLessEqual(program.needs_windows, (6, 1))

    def test_the_file_properties_show_the_version_of_the_project(self):
        numbers = [int(n) for n in VERSION.split(".")]
        for program in self.each():
            self.assertEqual(program.file_version(), numbers + [0] * (4 - len(numbers)))
            self.assertEqual(program.version_text("FileVersion"), VERSION)
            self.assertEqual(program.version_text("ProductVersion"), VERSION)

    def test_they_bring_icons_in_all_sizes(self):
        for program in self.each():
            count = struct.unpack_from("<H", program.resources(GROUP_ICON)[0], 4)[0]
            self.assertGreaterEqual(count, 6)
            self.assertGreaterEqual(len(program.resources(ICON)), 6)

    def test_a_single_manifest_says_how_to_run_them(self):
        for program in self.each():
            manifests = program.resources(MANIFEST)
            self.assertEqual(len(manifests), 1)
            text = manifests[0].decode()
            for part in ('level="asInvoker"', "PerMonitorV2", "<longPathAware", "Common-Controls",
                         "{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}"):
                self.assertIn(part, text)


class EachProgram(unittest.TestCase):
    def test_the_wizard_has_no_console_and_the_tool_has_one(self):
        self.assertEqual(ProgramFile(WIZARD).subsystem, GRAPHICAL)
        self.assertEqual(ProgramFile(TOOL).subsystem, CONSOLE)

    def test_the_texts_name_the_programs(self):
        self.assertEqual(ProgramFile(WIZARD).version_text("OriginalFilename"), "TXSetupWizard.exe")
        self.assertEqual(ProgramFile(TOOL).version_text("OriginalFilename"), "TXSetupTool.exe")

    @unittest.skipUnless(WINE, "only where the programs run")
    def test_the_tool_tells_the_version_of_its_file(self):
        result = subprocess.run([WINE, TOOL, "--version"], stdin=subprocess.DEVNULL,
                                capture_output=True, check=False)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(result.stdout.decode().split()[-1], VERSION)


unittest.main(argv=sys.argv[:1])
