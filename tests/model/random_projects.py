#!/usr/bin/env python3
"""Builds random projects with the wizard and compares every byte with the reference model.

    random_projects.py WIZARD VERIFIER [--count N] [--seed S] [--keep]

Each project gets a studio of its own in a temporary folder: random file names (umlauts, blanks, dots,
the same name in several directories), sizes around the limits of the distribution, random kits, both
media, every project type, hidden rows, user directories with gaps, runtime setups, minimal MDAC, and
settings files with the untidiness that a person's editor leaves. The seed of a difference is printed,
and --keep leaves its folder.
"""

import argparse
import os
import random
import re
import shutil
import struct
import subprocess
import sys
import tempfile

import reference_model as model

WORDS = ["Mischer", "Kläranlage", "Öl", "Straße Süd", "Rezept", "x", "Pumpe.alt", "a b", "ÜBERSICHT",
         "übersicht", "driver", "DISK1", "SETUP.STP", "Regler-2", "Größe", "naïve", "Œuvre", "€uro"]
EXTENSIONS = ["dll", "DLL", "ocx", "exe", "txt", "mdb", "1", "zip", "b m", ""]


def pe_image(version):
    """The smallest image with fixed version information that a loader would call a PE file."""
    fixed = struct.pack("<13I", 0xFEEF04BD, 0x10000, version[0] << 16 | version[1],
                        version[2] << 16 | version[3], 0, 0, 0x3F, 0, 4, 2, 0, 0, 0)
    key = "VS_VERSION_INFO\0".encode("utf-16le")
    info = struct.pack("<HHH", 0, len(fixed), 0) + key
    info += b"\0" * (-len(info) % 4) + fixed
    info = struct.pack("<H", len(info)) + info[2:]
    base = 0x1000
    directory = b""
    for depth, identifier in enumerate((16, 1, 1031)):
        child = (depth + 1) * 24
        directory += struct.pack("<IIHHHH", 0, 0, 0, 0, 0, 1)
        directory += struct.pack("<II", identifier, child | (0x80000000 if depth < 2 else 0))
    directory += struct.pack("<IIII", base + len(directory) + 16, len(info), 0, 0)
    section = directory + info
    raw = section + b"\0" * (-len(section) % 512)
    dos = b"MZ" + b"\0" * 58 + struct.pack("<I", 64)
    coff = struct.pack("<HHIIIHH", 0x14C, 1, 0, 0, 0, 224, 0x2102)
    optional = struct.pack("<HBBIIIIIIIIIHHHHHHIIIIHHIIIIII", 0x10B, 6, 0, 0, len(raw), 0, 0, 0x1000,
                           0x1000, 0x10000000, 0x1000, 512, 4, 0, 0, 0, 4, 0, 0, 0x2000, 512, 0, 2, 0,
                           0x100000, 0x1000, 0x100000, 0x1000, 0, 16)
    directories = [(0, 0)] * 16
    directories[2] = (base, len(section))
    for entry in directories:
        optional += struct.pack("<II", *entry)
    header = struct.pack("<8sIIIIIIHHI", b".rsrc", len(section), base, len(raw), 512, 0, 0, 0, 0,
                         0x40000040)
    head = dos + b"PE\0\0" + coff + optional + header
    return head + b"\0" * (512 - len(head)) + raw


class Studio:
    """A TAVIX_ROOT on the host."""

    def __init__(self, root):
        self.root = root
        self.registry = []

    def host(self, path):
        drive, rest = path[0].lower(), path[2:]
        parts = [part for part in rest.split("\\") if part]
        return os.path.join(self.root, "drive_" + drive, *parts)

    def write(self, path, data, time=None):
        host = self.host(path)
        os.makedirs(os.path.dirname(host), exist_ok=True)
        with open(host, "wb") as file:
            file.write(data)
        if time is not None:
            os.utime(host, (time, time))

    def key(self, path, **values):
        self.registry.append((path, values))

    def write_registry(self):
        text = "Windows Registry Editor Version 5.00\r\n"
        for path, values in self.registry:
            text += f"\r\n[{path}]\r\n"
            for name, value in values.items():
                data = f"dword:{value:08x}" if isinstance(value, int) else \
                    '"' + value.replace("\\", "\\\\").replace('"', '\\"') + '"'
                text += f'"{name}"={data}\r\n'
        with open(os.path.join(self.root, "registry.reg"), "wb") as file:
            file.write(text.encode("utf-16"))


def random_content(rng):
    kind = rng.random()
    if kind < 0.15:
        return pe_image([rng.randrange(65536) for _ in range(4)]) + rng.randbytes(rng.randrange(3000))
    if kind < 0.2:
        return b""
    size = rng.choice([1, 1023, 1024, 1025, 10239, 10240, 10241, rng.randrange(1, 5000),
                       rng.randrange(1, 300000)])
    if rng.random() < 0.06:
        size = rng.choice([rng.randrange(1000000, 1500000), rng.randrange(2500000, 5000000)])
    if kind < 0.6:
        return rng.randbytes(size)
    pattern = rng.randbytes(rng.randrange(1, 400))
    return (pattern * (size // len(pattern) + 1))[:size]


def random_name(rng):
    name = " ".join(rng.choice(WORDS) for _ in range(rng.choice([1, 1, 2])))
    extension = rng.choice(EXTENSIONS)
    return (name + ("." + extension if extension else "")).strip()


def tidy_text(rng):
    """A text that the settings file can hold as it stands."""
    return rng.choice(["", "Anlage Süd", "50 % Öl; nicht mehr", "a=b", "[x]", "Version 1.0", "'", "5\" x",
                       "C:\\Temp\\@1@", "Straße, Tor 3"])


def make_project(rng, studio):
    project = model.Project()
    project.name = rng.choice(["Demo", "Mischanlage Süd", "Anlage 1.5", "x"]).strip()
    base = rng.choice([r"C:\Projekte", r"D:\Daten Süd", r"C:\Projekte\2026"]) + "\\" + project.name
    trailing = rng.choice(["", "\\"])
    by_directory = rng.random() < 0.3
    project.directory = base if by_directory else base + trailing
    project.type = rng.choice([1, 2, 4, 8, 16, 1, 2, 4])
    project.disk_size = rng.choice([0, 0, 1])
    project.use_runtime_setup = rng.random() < 0.5
    project.minimal_mdac = rng.random() < 0.3
    project.main_directory = r"C:\TavixStudio"
    project.program = rng.choice(["Demo.exe", "Mischanlage Süd.exe", "TXEManager.exe"])
    project.info = [[tidy_text(rng) for _ in range(3)] for _ in range(2)]
    project.folders = [rng.choice(["", "Visualisierung", "Öl"]), rng.choice(["", "Visualization"])]
    project.links = [rng.choice(["", "Anlage"]), rng.choice(["", "Plant 1"])]
    project.tavix_directory = rng.choice([r"C:\TavixStudio", r"D:\Programme\Tavix"])
    project.project_directory = rng.choice([r"C:\Anlage", r"E:\Süd", "C:\\"])
    for number in sorted(rng.sample(range(1, 12), rng.choice([0, 0, 1, 2, 3]))):
        project.user_directories.append((number, rf"D:\Benutzer {number}\Daten"))

    studio_key = "HKEY_LOCAL_MACHINE\\" + model.STUDIO
    studio.key("HKEY_LOCAL_MACHINE\\" + model.VENDOR, MainDir=project.main_directory,
               Common=r"C:\TavixStudio\Common")
    studio.key(studio_key, LCID=rng.choice([1031, 1033]), Path=r"C:\TavixStudio\Studio", Version="4.0.7")
    names = {1: "Single", 2: "Server", 4: "Client", 8: "Terminal Server", 16: "Terminal Client"}
    stored_type = rng.choice([project.type, str(project.type), names[project.type]])
    studio.key(studio_key + "\\Projects\\" + project.name, Path=project.directory,
               ProjectType=stored_type)
    studio.key("HKEY_CURRENT_USER\\" + model.STUDIO + r"\TX4SetupWizard",
               UseRuntimeSetup=int(project.use_runtime_setup))
    os.makedirs(studio.host(r"C:\TavixStudio\Studio"))
    os.makedirs(studio.host(r"C:\TavixStudio\Common"))

    for number in range(rng.choice([0, 1, 2, 5])):
        data = rng.randbytes(rng.choice([0, 1, 1024, 1025, rng.randrange(200000)]))
        if rng.random() < 0.05:
            data = rng.randbytes(1300000)
        name = rng.choice(["Setup.exe", "dunzip32.dll", "Lies mich.txt", "ÜBER.txt", "k"]) + str(number)
        project.kit.append((name, data))
    while sum(model.round_up(len(data)) for _, data in project.kit) + 32000 > model.DISKETTE:
        project.kit.pop()
    kit = "; the engine\r\n[SetupFiles]\r\nCount=%d\r\n" % len(project.kit)
    for number, (name, data) in enumerate(project.kit, 1):
        kit += f"{number}={name}\r\n"
        studio.write(project.main_directory + "\\SetupKit\\" + name, data)
    studio.write(project.main_directory + r"\SetupKit\TXSTPKIT.INI", kit.encode("cp1252"))
    studio.write(project.main_directory + r"\SetupKit\Mdac_min.exe", rng.randbytes(3000), 1e9)

    project.variables = [
        ("<ProjectDir>", project.directory), ("<TavixCommonDir>", r"C:\TavixStudio\Common"),
        ("<TavixStudioDir>", r"C:\TavixStudio\Studio"), ("<TavixMainDir>", project.main_directory),
        ("<WinSysDir>", r"C:\Windows\System32"), ("<FontDir>", r"C:\Windows\Fonts"),
        ("<WinDir>", r"C:\Windows"), ("<CommonFilesDir>", r"C:\Program Files\Common Files"),
        ("<ProgramFilesDir>", r"C:\Program Files"), ("<TempDir>", project.directory + r"\~TEMP")]
    project.variables += [(f"<UserDir{n}>", d) for n, d in project.user_directories]

    places = ["<ProjectDir>", "<ProjectDir>\\Bilder", "<WinSysDir>", "<TavixCommonDir>\\X", "<windir>",
              "<TavixMainDir>", r"C:\Quellen", r"D:\Quellen\Süd"]
    used = {}
    if rng.random() < 0.5:
        for name in rng.sample(["TXSRuntimeServerSetup.exe", "txsruntimeclientsetup.EXE"], 2):
            if rng.random() < 0.8:
                used.setdefault(("<TavixMainDir>\\SetupKit\\" + name).lower(),
                                model.Row("<TavixMainDir>\\SetupKit\\" + name,
                                          "<TavixMainDir>\\SetupKit", "0"))
    for _ in range(rng.choice([0, 1, 3, 10, 30])):
        source = rng.choice(places) + "\\" + random_name(rng)
        destination = rng.choice(["<ProjectDir>", "<WinSysDir>", "<TempDir>", "<UserDir1>", "X y"])
        used.setdefault(source.lower(), model.Row(source, destination,
                                                  rng.choice(["", "0", "1", "2", "3", "5", "1 2"])))
    if rng.random() < 0.3:
        used["mdac"] = model.Row("<TavixMainDir>\\SetupKit\\MDAC_Typ.exe", "<TempDir>", "")
    rows = list(used.values())
    hidden = rng.choice([0, 0, len(rows) // 2])
    project.rows, project.hidden_rows = rows[:len(rows) - hidden], rows[len(rows) - hidden:]
    for row in rows:
        studio.write(model.resolve(project, row.source), random_content(rng),
                     rng.randrange(946684800, 1800000000))
    if rows and rng.random() < 0.3:
        source = rows[0].source
        if "ß" not in source and rng.random() < 0.5:
            source = source.upper()
        project.rows.append(model.Row(source, "<WinDir>", "1"))

    studio.write(project.directory + "\\" + project.name + ".txs",
                 b"[Global]\r\nDesigner=Visual Basic 6.0\r\n")
    studio.write(project.directory + "\\" + project.name + ".swz", settings(rng, project))
    argument = project.name if not by_directory else base + "\\" + project.name
    if by_directory or "." not in project.name:
        argument += rng.choice([".txs", ".swz", ".xyz"] if "." in project.name else ["", ".txs", ".swz"])
    else:
        argument += ".txs"
    if rng.random() < 0.3:
        argument = '"' + argument + '"'
    return project, rng.choice(["/c=", "-c=", "/C=", "-C="]) + argument


def settings(rng, project):
    """The settings file, with the disorder of a file that people edit."""
    def line(key, value):
        blank = rng.choice(["", "", " "])
        if value != value.strip() or (len(value) > 1 and value[0] == value[-1] and value[0] in "\"'"):
            value = '"' + value + '"'
        elif rng.random() < 0.1:
            value = '"' + value + '"'
        return rng.choice(["", "", "\t"]) + rng.choice([key, key.upper()]) + blank + "=" + blank + value

    def listed(rows):
        return [line(f"{number:02d}", f"{row.source},{row.destination},{row.register}")
                for number, row in enumerate(rows, 1)]

    sections = {
        "setup": [line(f"text{i}", project.info[0][i - 1]) for i in (1, 2, 3)] +
                 [line(f"text2{i}", project.info[1][i - 1]) for i in (1, 2, 3)] + ["note=keep"],
        "Program": [line("group", project.folders[0]), line("group2", project.folders[1]),
                    line("icon", project.links[0]), line("icon2", project.links[1]),
                    line("name", project.program)],
        "path": [line("tavix", project.tavix_directory), line("project", project.project_directory)] +
                [line(str(n), d) for n, d in project.user_directories],
        "FILE": listed(project.rows),
        "HiddenFile": listed(project.hidden_rows),
        "Destination": [line("Size", str(project.disk_size)), line("Path", r"<ProjectDir>\Setup"),
                        line("MDAC", str(int(project.minimal_mdac)))],
        "other": ["01=x", "no key here"],
    }
    names = list(sections)
    rng.shuffle(names)
    lines = ["; settings"]
    for name in names:
        lines.append(rng.choice(["[%s]", "[%s]", " [ %s ] "]) % name)
        if rng.random() < 0.3:
            lines.append(";" + rng.choice(["01=no", " comment", "[file]"]))
        lines += sections[name]
        if rng.random() < 0.3:
            lines.append("")
    return rng.choice(["\r\n", "\n"]).join(lines + [""]).encode("cp1252")


def run(seed, wizard, verifier, keep):
    rng = random.Random(seed)
    root = tempfile.mkdtemp(prefix="txs-model-")
    try:
        studio = Studio(root)
        project, argument = make_project(rng, studio)
        studio.write_registry()
        environment = {**os.environ, "TAVIX_ROOT": root}
        environment.pop("DISPLAY", None)
        done = subprocess.run([wizard, argument], env=environment, capture_output=True, timeout=120)
        log = studio.host(project.directory + "TXSetupWizard.log")
        said = open(log, "rb").read().decode("cp1252") if os.path.exists(log) else ""
        model.check(done.returncode == 0, f"exit code {done.returncode}: {said} {done.stderr.decode()}")
        astray, is_unset = model.user_directories_astray(project)
        expected = ("" if not astray else r"\S+ \S+\s+(Dateien mit dem Zielverzeichnis|On the target computer, "
                    r"files with the destination directory) '" + re.escape(", ".join(astray)) +
                    r"' (kommen|will)[^\n]*\n[^\n]*\n")
        model.check(re.fullmatch(expected, said.rstrip() + "\n" if said else ""),
                    f"messages in the log: {said}")

        def read_file(row):
            with open(studio.host(row.path), "rb") as file:
                return file.read()

        def stamp(row):
            return os.stat(studio.host(row.path)).st_mtime

        spellings = spelled(studio)
        plain_host = studio.host
        studio.host = lambda path: spellings.get(plain_host(path).lower(), plain_host(path))
        output = studio.host(project.directory + "\\Setup")
        model.compare(project, output, read_file, stamp)
        verified = subprocess.run([verifier, "verify", output], env=environment, capture_output=True,
                                  timeout=120)
        if is_unset:
            model.check(verified.returncode == 5 and b"which no SetVar sets" in verified.stdout,
                        "verify: " + verified.stdout.decode())
        else:
            model.check(verified.returncode == 0, "verify: " + verified.stdout.decode())
        model.check(not os.path.exists(studio.host(project.directory + "\\~TEMP")), "~TEMP is left")
        return len(project.all_rows())
    finally:
        if keep:
            print("kept:", root)
        else:
            shutil.rmtree(root)


def spelled(studio):
    """Every host path of the studio by its lower-case form, for rows that spell a file otherwise."""
    found = {}
    for folder, folders, files in os.walk(studio.root):
        for name in folders + files:
            path = os.path.join(folder, name)
            found[path.lower()] = path
    return found


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("wizard")
    parser.add_argument("verifier")
    parser.add_argument("--count", type=int, default=40)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--keep", action="store_true")
    options = parser.parse_args()
    failed = files = 0
    for seed in range(options.seed, options.seed + options.count):
        try:
            files += run(seed, options.wizard, options.verifier, options.keep)
        except model.Difference as difference:
            failed += 1
            print(f"seed {seed}: {difference}")
    print(f"{options.count - failed} of {options.count} random projects agree with the model "
          f"({files} files)")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
