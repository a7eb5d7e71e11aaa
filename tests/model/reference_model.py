"""What an installation must look like, worked out a second time.

This model shares no code with the program: it knows the rules of archive names, distribution, labels,
setup kit and script, and predicts every byte of an installation from the project that went in. The
only thing it takes from the program's output is the size of each archive, since that is the
compressor's own affair.
"""

import datetime
import ntpath
import os
import re
import struct
import zipfile

DISKETTE = 1457152
UNLIMITED = 2147483647
VENDOR = r"Software\ORBEKA GmbH"
STUDIO = r"Software\ORBEKA GmbH\Tavix\4.0"


class Row:
    """One row of the file list, as the settings file gives it."""

    def __init__(self, source, destination, register):
        self.source, self.destination, self.register = source, destination, register
        self.archive = self.disk = ""


class Project:
    """Everything that the program reads, in the form in which a person would say it."""

    def __init__(self):
        self.name = ""
        self.directory = ""  # as given on the command line or registered
        self.type = 1
        self.rows, self.hidden_rows = [], []
        self.kit = []  # (name, bytes)
        self.info = [[""] * 3, [""] * 3]
        self.folders, self.links = ["", ""], ["", ""]
        self.tavix_directory = self.project_directory = ""
        self.user_directories = []  # (number, directory)
        self.program = ""
        self.disk_size = 0
        self.use_runtime_setup = True
        self.main_directory = ""
        self.minimal_mdac = False
        self.variables = []  # (name, value) in list order

    def all_rows(self):
        return self.rows + self.hidden_rows


def resolve(project, text):
    for name, value in project.variables:
        text = re.sub(re.escape(name), lambda _, v=value: v, text, flags=re.IGNORECASE)
    return text


def round_up(size):
    return (size + 1023) // 1024 * 1024


def archive_names(rows):
    taken = set()
    for row in rows:
        bare = ntpath.basename(row.path)
        name, number = bare + ".zip", 0
        while name.lower() in taken:
            number += 1
            name = f"{bare}.{number}.zip"
        taken.add(name.lower())
        row.archive = name


def distribute(sizes, medium, reserved):
    """For each size the list of (disk, bytes), chunk by chunk; and the number of disks."""
    disk, free, placed = 1, medium - reserved, []
    for size in sizes:
        if round_up(size) < free:
            placed.append([[disk, size]])
            free -= round_up(size)
            continue
        if free < 1:
            disk, free = disk + 1, medium
        pieces, remaining = [[disk, 0]], size
        while remaining > 0:
            if free < 1:
                disk, free = disk + 1, medium
                pieces.append([disk, 0])
            chunk = min(10240, free, remaining)
            pieces[-1][1] += chunk
            remaining -= chunk
            free -= round_up(chunk)
        placed.append(pieces)
    return placed, disk


def file_version(data):
    """VS_FIXEDFILEINFO found by its signature: the images of the tests hold it once."""
    at = data.find(struct.pack("<II", 0xFEEF04BD, 0x00010000))
    if data[:2] != b"MZ" or at < 0:
        return ""
    high, low = struct.unpack_from("<II", data, at + 8)
    return f"{high >> 16}.{high & 0xFFFF}.{low >> 16}.{low & 0xFFFF}"


def user_directories_astray(project):
    """The user directories that rows are to go to and that are others, or none, in the script: names,
    and whether one is none."""
    meant = {f"<userdir{number}>": path for number, path in project.user_directories}
    set_by_script = {f"<userdir{number}>": path
                     for number, (_, path) in enumerate(project.user_directories, 1)}
    wanted = dict.fromkeys(row.destination.split(">")[0] + ">" for row in project.all_rows()
                           if row.destination.startswith("<UserDir"))
    astray = [name for name in wanted if name.lower() not in meant or
              meant[name.lower()] != set_by_script.get(name.lower())]
    return astray, any(name.lower() not in set_by_script for name in wanted)


def script(project, disks, read_file, stamp):
    """SETUP.STP as text with CR LF."""
    rows = project.all_rows()
    total = sum(row.length for row in rows)
    lines = ["[Params]", "DefLang=0", "Silent=1", "Force=0",
             "TargetDir=" + project.project_directory, "SetupName=" + project.name]
    lines += ["SetupDesc0=" + text for text in project.info[0]]
    lines += ["SetupDesc1=" + text for text in project.info[1]]
    lines += [f"MaxBytes={total}", f"MaxDisk={disks}", "[ToDo]"]
    main = project.tavix_directory
    lines += [f"SetVar(TavixMainDir|{main})", f"SetVar(TavixStudioDir|{main})",
              f"SetVar(TavixCommonDir|{main}\\Common)",
              f"SetVar(ProjectDir|{project.project_directory})"]
    for row_number, (_, directory) in enumerate(project.user_directories, 1):
        lines.append(f"SetVar(UserDir{row_number}|{directory})")
    lines.append("CheckDiskSpace")
    key = "WriteRegistry(HKEY_LOCAL_MACHINE|"
    lines += [key + VENDOR + "|MAINDIR|<TavixMainDir>|1)",
              key + VENDOR + "|Common|<TavixCommonDir>|1)",
              key + VENDOR + "|OPC|<TavixMainDir>\\OPC|1)",
              key + STUDIO + "|Path|<TavixStudioDir>|1)",
              key + STUDIO + "|LCID|1031|3)"]

    def install(row):
        name = ntpath.basename(row.path)
        date = datetime.datetime.fromtimestamp(stamp(row)).strftime("%d.%m.%Y")
        return (f"InstallFile({row.archive}|{row.destination}\\{name}|{row.length}|{date}|"
                f"{file_version(read_file(row))}|2|0{row.disk})")

    runtime = []
    if project.use_runtime_setup:
        for row in rows[:2]:
            name = ntpath.basename(row.path)
            if name.lower() in ("txsruntimeclientsetup.exe", "txsruntimeserversetup.exe"):
                runtime.append(row)
                lines += [
                    key + STUDIO + "|RuntimeSetup|0|3)",
                    install(row),
                    f"ExecFile(<TavixMainDir>\\SetupKit\\{name}|0|/S)",
                    f"If(IsEqual(ReadRegistry(HKEY_LOCAL_MACHINE|{STUDIO}|RuntimeSetup|0)|2))",
                    "  WriteRegistry(HKEY_CURRENT_USER|Software\\Microsoft\\Windows\\CurrentVersion"
                    "\\RunOnce|TavixStudio Setup|<AppDir>\\Setup.exe|1)",
                    "  SetVar(Reboot|1)", "  Exit", "EndIf"]
    lines += [f"CreateDir({directory})" for _, directory in project.user_directories]
    lines += [install(row) for row in rows if row not in runtime]
    for row in rows:
        command = {"1": "RegInProc", "2": "RegOutProc"}.get(row.register)
        if command:
            lines.append(f"{command}({row.destination}\\{ntpath.basename(row.path)})")
    working = {1: "<ProjectDir>", 4: "<ProjectDir>", 2: "<TavixStudioDir>\\System"}
    working = working.get(project.type, "")
    if project.type == 2:
        lines += [key + STUDIO + f"|Actual Project|{project.name}|1)",
                  key + STUDIO + "|AutoStart|1|3)"]
    for language in (0, 1):
        folder, link = project.folders[language], project.links[language]
        if folder and link:
            lines += [f"If(IsEqual(<Language>|{language}))",
                      f"  CreateShellLink({working}\\{project.program}|<ProgramsDir>\\{folder}\\"
                      f"{link}|{working})", "EndIf"]
    return "".join(line + "\r\n" for line in lines)


class Difference(Exception):
    """Where the program and the model part."""


def check(condition, message):
    if not condition:
        raise Difference(message)


def compare(project, output, read_file, stamp):
    """Compares the installation in the host folder `output` with what the model predicts."""
    rows = project.all_rows()
    for row in rows:
        row.path = resolve(project, row.source)
        if project.minimal_mdac and ntpath.basename(row.path).lower() == "mdac_typ.exe":
            row.path = project.main_directory + r"\SetupKit\Mdac_min.exe"
        row.length = len(read_file(row))
    archive_names(rows)

    found = {}
    for disk in os.listdir(output):
        for name in os.listdir(os.path.join(output, disk)):
            with open(os.path.join(output, disk, name), "rb") as file:
                found[(disk, name)] = file.read()

    medium = UNLIMITED if project.disk_size == 1 else DISKETTE
    reserved = sum(round_up(len(data)) for _, data in project.kit) + 32000
    kit_names = {name for name, _ in project.kit}
    sizes = []
    for row in rows:
        sizes.append(sum(len(data) for (disk, name), data in found.items()
                         if name == row.archive and not (disk == "DISK1" and name in kit_names)))
        check(sizes[-1] > 0, f"no archive {row.archive}")
    placed, disks = distribute(sizes, medium, reserved)

    expected = {("DISK1", name): data for name, data in project.kit}
    for number in range(1, disks + 1):
        expected[(f"DISK{number}", f"DISK{number}")] = f" {number} ".encode()
    for row, pieces in zip(rows, placed):
        row.disk = "".join(f"|{disk}" for disk, _ in pieces)
        joined = b""
        for disk, size in pieces:
            data = found.get((f"DISK{disk}", row.archive))
            check(data is not None, f"{row.archive}: no piece on disk {disk}")
            check(len(data) == size, f"{row.archive}: {len(data)} bytes on disk {disk}, not {size}")
            expected[(f"DISK{disk}", row.archive)] = data
            joined += data
        compare_archive(row, joined, read_file(row), stamp(row))
    expected[("DISK1", "SETUP.STP")] = script(project, disks, read_file, stamp).encode("cp1252")

    check(set(found) == set(expected),
          f"surplus {sorted(set(found) - set(expected))}, missing {sorted(set(expected) - set(found))}")
    for place, data in expected.items():
        if found[place] != data:
            at = next((i for i, (a, b) in enumerate(zip(found[place], data)) if a != b),
                      min(len(found[place]), len(data)))
            raise Difference(f"{place} differs at byte {at}: {found[place][at - 60:at + 60]!r} "
                             f"instead of {data[at - 60:at + 60]!r}")


def compare_archive(row, joined, content, time):
    import io
    with zipfile.ZipFile(io.BytesIO(joined)) as archive:
        entries = archive.infolist()
        check(len(entries) == 1, f"{row.archive}: {len(entries)} entries")
        entry = entries[0]
        check(entry.filename == ntpath.basename(row.path), f"{row.archive}: entry {entry.filename}")
        check(archive.read(entry) == content, f"{row.archive}: other content")
        local = datetime.datetime.fromtimestamp(time)
        check(entry.date_time == (local.year, local.month, local.day, local.hour, local.minute,
                                  local.second // 2 * 2), f"{row.archive}: time {entry.date_time}")
