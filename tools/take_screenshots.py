"""Walks the wizard through the sample project and takes a picture of every window. Run by
tools/screenshots.sh on a display of its own:
    take_screenshots.py WIZARD GENERATOR DIRECTORY
"""

import pathlib
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "tests" / "gui"))

from wizard_session import ENGLISH, GERMAN, Wizard, access_key  # noqa: E402

WIZARD, GENERATOR, DIRECTORY = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
PROJECT = "Mischanlage Süd"
SIZE = (1000, 640)


def take_all(language, suffix, studio):
    with Wizard(WIZARD, studio, language) as wizard:

        def take(name):
            wizard.take_picture(DIRECTORY / f"{name}-{suffix}.png")

        wizard.wait_for_text(600)
        wizard.press("Home")
        take("open-project")
        wizard.press("Return")

        wizard.wait_for_text(1001, PROJECT)
        wizard.resize(*SIZE)
        take("step-1")
        wizard.press("alt+2")
        take("step-2")
        wizard.press("alt+3")
        take("step-3")
        wizard.press("alt+4", "F5")
        wizard.wait_for_text(700)
        take("scan")
        wizard.press("Return")
        wizard.wait_for_text(1001, PROJECT)

        wizard.press(access_key(language, 1030), access_key(language, 1031)[-1])
        wizard.wait_for_text(800)
        take("options")
        wizard.press("Escape")
        wizard.wait_for_text(1001, PROJECT)

        wizard.press("alt+5")
        take("step-5")
        wizard.press(access_key(language, 1511))
        wizard.wait_for_text(300)
        take("take-note")
        wizard.press("Return")
        wizard.wait_for_text(400)
        take("create")
        wizard.press("Return")
        wizard.wait_for_text(1001, PROJECT)
        # Now every column of the file list is filled.
        wizard.press("alt+4")
        take("step-4")


def main():
    # Beyond the windows: nothing is to look as if the pointer were on it.
    subprocess.run(["xdotool", "mousemove", "10000", "10000"], check=True)
    with tempfile.TemporaryDirectory() as scratch:
        for language, name, suffix in ((GERMAN, "german", "de"), (ENGLISH, "english", "en")):
            studio = pathlib.Path(scratch) / name
            subprocess.run(
                [ROOT / "samples" / "prepare.sh", GENERATOR, studio, name], check=True
            )
            take_all(language, suffix, studio)


main()
