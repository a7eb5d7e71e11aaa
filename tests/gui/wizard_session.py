"""Drives the real wizard on a display: keys go in through the X server, windows are known by their
titles, and nothing waits for a fixed time. Needs xdotool and a window manager (with_display.sh).
"""

import os
import pathlib
import re
import subprocess
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]

# Long enough for a machine that builds at the same time; reached only where something is wrong.
PATIENCE_SECONDS = 30
POLL_SECONDS = 0.01

GERMAN = 1031
ENGLISH = 1033


def _unescape(literal):
    return re.sub(r"\\(.)", lambda m: {"r": "\r", "n": "\n", "t": "\t"}.get(m[1], m[1]), literal)


def _read_texts():
    source = (ROOT / "resources" / "string_table.inc").read_text(encoding="utf-8")
    literal = r'"((?:[^"\\]|\\.)*)"'
    entry = re.compile(r"^TXS_TEXT\((\d+),\s*" + literal + r",\s*" + literal + r"\)", re.MULTILINE)
    return {
        int(m[1]): {GERMAN: _unescape(m[2]), ENGLISH: _unescape(m[3])}
        for m in entry.finditer(source)
    }


_TEXTS = _read_texts()


def text(language, number, *parameters):
    """Text `number` of the string table, as it is shown."""
    # Of the table's own escapes only those of the backslash occur.
    result = re.sub(r"\\(.)", r"\1", _TEXTS[number][language])
    for index, parameter in enumerate(parameters, 1):
        result = result.replace(f"@{index}@", str(parameter))
    return result


def message_title(language, number):
    return text(language, 900, number)


def access_key(language, number):
    """The key that a caption marks, as xdotool names it."""
    return "alt+" + re.search("&(.)", text(language, number))[1].lower()


class SessionError(AssertionError):
    """The program did not get where it should within PATIENCE_SECONDS."""


class Wizard:
    """One running TXSetupWizard. Use as a context manager: it ends with the block."""

    def __init__(self, program, studio, language, *arguments, environment=None):
        self.language = language
        variables = dict(environment or os.environ, TAVIX_ROOT=str(studio))
        self.errors = pathlib.Path(studio, "standard-error.txt")
        with self.errors.open("wb") as errors:
            self.process = subprocess.Popen(
                [str(program), *arguments],
                env=variables,
                stdin=subprocess.DEVNULL,
                stdout=errors,
                stderr=errors,
                cwd=studio,
            )

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()

    # --- Windows

    def wait_for(self, title):
        """Until the active window is this program's, has this title, and the program waits for the
        user. The window of a program that has just ended stays for a moment."""
        active = (title, str(self.process.pid))
        self._poll(lambda: active_window() == active, f"'{title}' to become the active window")
        self.settle()

    def wait_for_text(self, number, *parameters):
        self.wait_for(text(self.language, number, *parameters))

    def wait_for_message(self, number):
        self.wait_for(message_title(self.language, number))

    def wait_for_end(self):
        """The exit code."""
        self._poll(lambda: self.process.poll() is not None, "the program to end")
        return self.process.returncode

    def said(self):
        """What the program wrote to its standard streams."""
        return self.errors.read_text(encoding="utf-8", errors="replace")

    def size(self):
        """Width and height of the active window, without its frame."""
        return tuple(_geometry(_xdotool("getactivewindow"))[2:])

    def resize(self, width, height):
        _xdotool("getactivewindow", "windowsize", str(width), str(height))
        self._poll(lambda: self.size() == (width, height), f"the window to be {width}x{height}")
        self.settle()

    def take_picture(self, path):
        """Saves the active window with its frame as a PNG file."""
        window = _xdotool("getactivewindow")
        # Left, right, top, bottom.
        extents = subprocess.run(
            ["xprop", "-id", window, "_NET_FRAME_EXTENTS"], stdout=subprocess.PIPE, check=True
        ).stdout.decode()
        left, right, top, bottom = map(int, re.findall(r"\d+", extents.partition("=")[2]))
        x, y, width, height = _geometry(window)
        crop = f"{width + left + right}x{height + top + bottom}+{x - left}+{y - top}"
        subprocess.run(
            ["import", "-silent", "-window", "root", "-crop", crop, "+repage", str(path)],
            check=True,
        )

    # --- Keys

    def press(self, *keys):
        """Keys as xdotool names them, each after the program has done with the one before."""
        for key in keys:
            subprocess.run(["xdotool", "key", "--clearmodifiers", key], check=True)
            self.settle()

    def type(self, ascii_text):
        subprocess.run(["xdotool", "type", "--delay", "2", "--", ascii_text], check=True)
        self.settle()

    def settle(self):
        """Until the program waits in its event loop, with nothing left to do. A key that xdotool has
        sent is in its queue by then and wakes it."""
        self._poll(lambda: self.process.poll() is not None or self._rests(), "the program to rest")

    def _rests(self):
        # Asleep in poll(2) or ppoll(2) on several files, without a timeout of zero, is the event
        # loop: what waits for an answer of the window system waits on one file.
        try:
            call = pathlib.Path(f"/proc/{self.process.pid}/syscall").read_text().split()
        except (FileNotFoundError, ProcessLookupError):
            return True
        if call[0] not in ("7", "271"):
            return False
        return int(call[2], 16) >= 2 and int(call[3], 16) != 0

    def _poll(self, condition, what):
        end = time.monotonic() + PATIENCE_SECONDS
        while not condition():
            if time.monotonic() > end:
                raise SessionError(
                    f"waited for {what}; active is '{active_window()[0]}', "
                    f"exit code {self.process.poll()}, said:\n{self.said()}"
                )
            time.sleep(POLL_SECONDS)


def _xdotool(*command):
    result = subprocess.run(["xdotool", *command], stdout=subprocess.PIPE, check=True)
    return result.stdout.decode().strip()


def _geometry(window):
    """Left, top, width and height of a window on the screen, without its frame."""
    described = subprocess.run(
        ["xwininfo", "-id", window], stdout=subprocess.PIPE, check=True
    ).stdout.decode()
    return [
        int(re.search(rf"^ *{name}: +(-?\d+)", described, re.MULTILINE)[1])
        for name in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")
    ]


def active_window():
    """Title and process of the active window; empty when there is none, and as long as it has not
    got the keyboard: the manager calls a window active a moment before that."""
    result = subprocess.run(
        ["xdotool", "getactivewindow", "getwindowname"]
        + ["getwindowfocus", "getwindowname", "getwindowpid"],
        stdout=subprocess.PIPE,
        stderr=subprocess.DEVNULL,
        check=False,
    )
    lines = result.stdout.decode(errors="replace").splitlines()
    if len(lines) != 3 or lines[0] != lines[1]:
        return "", ""
    return lines[1], lines[2]


def copied_text():
    """What lies on the clipboard of the display."""
    command = ["xclip", "-out", "-selection", "clipboard"]
    return subprocess.run(command, stdout=subprocess.PIPE, check=True).stdout.decode()


def picture_of_screen(path):
    subprocess.run(["import", "-silent", "-window", "root", str(path)], check=False)
