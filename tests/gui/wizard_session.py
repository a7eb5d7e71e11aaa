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
    """Text `number` of the string table."""
    result = _TEXTS[number][language]
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
        self.errors = open(studio / "standard-error.txt", "w+b")
        self.process = subprocess.Popen(
            [str(program), *arguments],
            env=variables,
            stdin=subprocess.DEVNULL,
            stdout=self.errors,
            stderr=self.errors,
            cwd=studio,
        )

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()
        self.errors.close()

    # --- Windows

    def wait_for(self, title):
        """Until the active window has this title and the program waits for the user."""
        self._poll(lambda: active_title() == title, f"'{title}' to become the active window")
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
        self.errors.flush()
        self.errors.seek(0)
        return self.errors.read().decode(errors="replace")

    def size(self):
        """Width and height of the active window, without its frame."""
        geometry = _geometry(_xdotool("getactivewindow"))
        return geometry["WIDTH"], geometry["HEIGHT"]

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
        at = _geometry(window)
        crop = (
            f"{at['WIDTH'] + left + right}x{at['HEIGHT'] + top + bottom}"
            f"+{at['X'] - left}+{at['Y'] - top}"
        )
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
        """Until the program has nothing left to do: its main thread sleeps, looked at three times
        in a row. Key events that the server has taken are in its queue by then and wake it."""
        seen = 0
        end = time.monotonic() + PATIENCE_SECONDS
        while seen < 3:
            if self.process.poll() is not None:
                return
            seen = seen + 1 if self._sleeps() else 0
            if time.monotonic() > end:
                raise SessionError("the program never rests")
            time.sleep(0.002)

    def _sleeps(self):
        try:
            stat = pathlib.Path(f"/proc/{self.process.pid}/stat").read_bytes()
        except FileNotFoundError:
            return True
        # The name in parentheses may hold blanks.
        return stat.rpartition(b")")[2].split()[0] == b"S"

    def _poll(self, condition, what):
        end = time.monotonic() + PATIENCE_SECONDS
        while not condition():
            if time.monotonic() > end:
                raise SessionError(
                    f"waited for {what}; active is '{active_title()}', "
                    f"exit code {self.process.poll()}, said:\n{self.said()}"
                )
            time.sleep(POLL_SECONDS)


def _xdotool(*command):
    result = subprocess.run(["xdotool", *command], stdout=subprocess.PIPE, check=True)
    return result.stdout.decode().strip()


def _geometry(window):
    lines = _xdotool("getwindowgeometry", "--shell", window).splitlines()
    return {name: int(value) for name, _, value in (line.partition("=") for line in lines)}


def active_title():
    """Title of the active window; empty when there is none."""
    result = subprocess.run(
        ["xdotool", "getactivewindow", "getwindowname"],
        stdout=subprocess.PIPE,
        stderr=subprocess.DEVNULL,
        check=False,
    )
    return result.stdout.decode(errors="replace").removesuffix("\n")


def picture_of_screen(path):
    subprocess.run(["import", "-silent", "-window", "root", str(path)], check=False)
