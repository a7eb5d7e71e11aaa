"""Generated studios: the computer of a developer, small enough to be laid out in a moment.

Everything that is random comes from a generator with a fixed seed.
"""

import os
import random
import shutil

VENDOR = r"HKEY_LOCAL_MACHINE\Software\ORBEKA GmbH"
WORDS = ["alarm", "valve", "Pumpe", "0", "true", "level", "\r\n", "Grenzwert", "25.4", "<Silo>"]
MIB = 1 << 20


def crlf(lines):
    return ("\r\n".join(lines) + "\r\n").encode("cp1252")


def write(path, data):
    with open(path, "wb") as file:
        file.write(data)


def text_of(rng, size):
    """Words of a plant's texts and parameters."""
    words = " ".join(rng.choices(WORDS, k=size // 3 + 10))
    return words.encode()[:size]


def write_registry(root, keys):
    lines = ["REGEDIT4", ""]
    for key, values in keys:
        lines.append(f"[{key}]")
        for name, value in values.items():
            name = '"' + name + '"' if name else "@"
            lines.append(name + '="' + value.replace("\\", "\\\\") + '"')
        lines.append("")
    write(os.path.join(root, "registry.reg"), crlf(lines))


class CreateStudio:
    """A studio with the project "Bench" whose rows a benchmark chooses."""

    def __init__(self, root):
        self.root = root
        self.project = os.path.join(root, "drive_c", "Bench")
        self.output = os.path.join(root, "drive_c", "Out")
        kit = os.path.join(root, "drive_c", "Studio", "SetupKit")
        os.makedirs(self.project)
        os.makedirs(kit)
        write(os.path.join(kit, "TXSTPKIT.INI"), crlf(["[SetupFiles]", "Count=0"]))
        write(os.path.join(self.project, "Bench.txs"), b"")
        write_registry(root, [
            (VENDOR, {"MainDir": r"C:\Studio"}),
            (VENDOR + r"\Tavix\4.0", {"Path": r"C:\Studio"}),
            (VENDOR + r"\Tavix\4.0\Projects\Bench", {"Path": "C:\\Bench\\", "ProjectType": "Single"}),
        ])

    def path(self, name):
        return os.path.join(self.project, name)

    def set_rows(self, names, on_diskettes=False):
        lines = ["[program]", "name=Bench.exe", "[Destination]", f"Size={0 if on_diskettes else 1}",
                 "Path=C:\\Out", "[path]", "tavix=C:\\Studio", "project=C:\\Bench", "[file]"]
        lines += [f"{i:02d}=<ProjectDir>\\{name},<ProjectDir>,0" for i, name in enumerate(names, 1)]
        write(self.path("Bench.swz"), crlf(lines))

    def disks(self):
        return [os.path.join(self.output, name) for name in os.listdir(self.output)]

    def archive_bytes(self):
        return sum(os.path.getsize(os.path.join(disk, name)) for disk in self.disks()
                   for name in os.listdir(disk) if name.lower().endswith(".zip"))

    def clear(self):
        shutil.rmtree(self.output, ignore_errors=True)


class ScanStudio:
    """A studio with the project "Bench" that names registered components, each with a section in the
    dependency file of Visual Basic."""

    def __init__(self, root, components):
        self.root = root
        drive = os.path.join(root, "drive_c")
        self.system = os.path.join(drive, "Windows", "System32")
        self.project = os.path.join(drive, "Bench")
        self.dependencies = os.path.join(drive, "VB98", "Wizards", "PDWizard", "Vb6dep.ini")
        for folder in (self.system, self.project, os.path.join(drive, "Tavix", "Studio"),
                       os.path.join(drive, "Tavix", "SetupKit"), os.path.dirname(self.dependencies)):
            os.makedirs(folder)
        for i in range(components):
            write(os.path.join(self.system, f"Part{i}.dll"), b"part")
        write(os.path.join(self.project, "Bench.exe"), b"program")
        write(os.path.join(drive, "Tavix", "SetupKit", "TXDependencies.ini"), b"")
        write(os.path.join(self.project, "Bench.txs"),
              crlf(["[Global]", "Designer=Visual Basic 6.0", "DesignerProject=Bench.vbp"]))
        keys = [
            (VENDOR, {"MainDir": r"C:\Tavix", "Common": r"C:\Tavix\Common"}),
            (VENDOR + r"\Tavix\4.0", {"Path": r"C:\Tavix\Studio", "Version": "4.0"}),
            (VENDOR + r"\Tavix\4.0\Projects\Bench", {"Path": r"C:\Bench", "ProjectType": "1"}),
            (r"HKEY_LOCAL_MACHINE\Software\Microsoft\VisualStudio\6.0\Setup\Microsoft Visual Basic",
             {"ProductDir": r"C:\VB98"}),
            (r"HKEY_CURRENT_USER\Software\ORBEKA GmbH\Tavix\4.0\TX4SetupWizard",
             {"UseRuntimeSetup": "0"}),
        ]
        keys += [(f"HKEY_CLASSES_ROOT\\TypeLib\\{self.guid(i)}\\1.0\\0\\win32",
                  {"": f"C:\\Windows\\System32\\Part{i}.dll"}) for i in range(components)]
        write_registry(root, keys)

    @staticmethod
    def guid(number):
        return "{%08X-1000-11D3-9C01-0050DA4E7B10}" % number

    def set_sections(self, count):
        """Each part needs three of the four around it, so that chains and circles arise."""
        rng = random.Random(1)
        lines = []
        for i in range(count):
            lines += [f"[Part{i}.dll]", "Register=$(DLLSelfRegister)"]
            lines += [f"Uses{n}=Part{i // 4 * 4 + rng.randrange(4)}.dll" for n in range(1, 4)]
        write(self.dependencies, crlf(lines))

    def set_references(self, count):
        lines = ["Type=Exe"]
        lines += [f"Reference=*\\G{self.guid(i)}#1.0#0#Part{i}.dll#Part {i}" for i in range(count)]
        lines += ['ExeName32="Bench.exe"', 'Path32=""']
        write(os.path.join(self.project, "Bench.vbp"), crlf(lines))

    def lose(self, count):
        for i in range(count):
            os.remove(os.path.join(self.system, f"Part{i}.dll"))

    def grow_tree(self, first, last):
        """Files first to last - 1 of a tree with 100 files in a folder, 50 folders in one above."""
        for folder in range(first // 100, last // 100):
            path = os.path.join(self.project, f"Data{folder // 50}", f"Batch{folder}")
            os.makedirs(path)
            for i in range(100):
                write(os.path.join(path, f"{folder}-{i}.dat"), b"")
