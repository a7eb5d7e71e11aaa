#!/usr/bin/env python3
"""Complete sessions of the real wizard on the sample studio, with keys as a user presses them. Run by
CTest on a display of its own, one test per scenario:
    session_test.py WIZARD TOOL GENERATOR PREPARE SCENARIO
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

from wizard_session import (
    ENGLISH,
    GERMAN,
    Wizard,
    access_key,
    active_window,
    copied_text,
    message_title,
    picture_of_screen,
)

WIZARD, TOOL, GENERATOR, PREPARE = sys.argv[1:5]

PROJECT = "Pumpwerke"
DESTINATION = "<ProjectDir>\\Regler"


class Session(unittest.TestCase):
    def setUp(self):
        self.scratch = pathlib.Path(tempfile.mkdtemp(prefix="wizard-session-"))
        self.addCleanup(shutil.rmtree, self.scratch)

    def lay(self, language=GERMAN):
        self.language = language
        self.studio = self.scratch / "studio"
        name = {GERMAN: "german", ENGLISH: "english"}[language]
        subprocess.run([PREPARE, GENERATOR, str(self.studio), name], check=True)

    def start(self, *arguments, environment=None):
        wizard = self.enterContext(
            Wizard(WIZARD, self.studio, self.language, *arguments, environment=environment)
        )
        return wizard

    def path(self, *parts):
        return self.studio.joinpath("drive_c", "Projekte", PROJECT, *parts)

    def settings(self):
        """Sections of the settings file, each a dictionary."""
        contents = self.path(PROJECT + ".swz").read_bytes().decode("cp1252")
        pieces = re.split(r"^\[(.*?)\]", contents, flags=re.MULTILINE)
        return {
            name: dict(re.findall(r"^(.*?)=(.*?)\r?$", body, re.MULTILINE))
            for name, body in zip(pieces[1::2], pieces[2::2])
        }

    def assert_sound_installation(self):
        result = subprocess.run(
            [TOOL, "verify", f"C:\\Projekte\\{PROJECT}\\Setup"],
            env=dict(os.environ, TAVIX_ROOT=str(self.studio)),
            capture_output=True,
            check=False,
        )
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        self.assertTrue(self.path("Setup", "DISK1", "SETUP.STP").is_file())

    def assert_ended_well(self, wizard):
        self.assertEqual(wizard.wait_for_end(), 0)
        # What the toolkit complains about is a mistake in its use.
        self.assertNotRegex(wizard.said(), "CRITICAL|WARNING|assert|[Ee]xception")

    def scan_and_edit(self, wizard, destination=DESTINATION):
        """In step 4: Scan, then another destination for the first of the found files."""
        wizard.press("F5")
        wizard.wait_for_message(917)
        wizard.press("Return")
        wizard.wait_for_text(700)
        wizard.press("Return")
        wizard.wait_for_text(1001, PROJECT)
        # The list has the focus: what was found is to be looked through.
        wizard.press("Home", "Right", "F2", "ctrl+a")
        wizard.type(destination)
        wizard.press("Return")

    def create(self, wizard):
        """In step 5: Create, and the two windows at its end."""
        wizard.press(access_key(self.language, 1511))
        wizard.wait_for_text(300)
        wizard.press("Return")
        wizard.wait_for_text(400)
        wizard.press("Return")
        wizard.wait_for_text(1001, PROJECT)

    def assert_job_done(self):
        self.assert_sound_installation()
        files = self.settings()["file"]
        self.assertEqual(len(files), 12)
        self.assertEqual(files["01"].split(",")[1], DESTINATION)

    # --- The whole job

    def test_the_whole_job_in_german_by_keyboard(self):
        self.lay(GERMAN)
        wizard = self.start()

        wizard.wait_for_text(600)
        wizard.press("End", "Return")
        wizard.wait_for_text(1001, PROJECT)
        wizard.type("Pumpwerke Nord")
        wizard.press("alt+2", "alt+3", "alt+4")
        self.scan_and_edit(wizard)
        wizard.press("alt+5")
        self.create(wizard)
        wizard.press("alt+F4")
        wizard.wait_for_message(1703)
        wizard.press(access_key(GERMAN, 1978))

        self.assert_ended_well(wizard)
        self.assert_job_done()
        self.assertIn("Pumpwerke Nord", self.path(PROJECT + ".swz").read_text("cp1252"))

    def test_the_whole_job_in_english_through_menus_and_access_keys(self):
        self.lay(ENGLISH)
        wizard = self.start()

        wizard.wait_for_text(600)
        wizard.press("p", access_key(ENGLISH, 13))
        wizard.wait_for_text(1001, PROJECT)
        for _ in range(3):
            wizard.press("ctrl+Next")
        self.scan_and_edit(wizard)
        wizard.press("ctrl+Next")
        self.create(wizard)
        wizard.press(access_key(ENGLISH, 1010), access_key(ENGLISH, 1013)[-1])
        wizard.wait_for_message(1703)
        wizard.press("Return")

        self.assert_ended_well(wizard)
        self.assert_job_done()

    def test_a_message_says_why_in_the_language_of_the_studio(self):
        reasons = {
            GERMAN: "Ein Komma trennt die Felder der Einstellungsdatei",
            ENGLISH: "a comma separates the fields of the settings file",
        }
        for language, reason in reasons.items():
            with self.subTest(language):
                self.lay(language)
                wizard = self.start(PROJECT)
                wizard.wait_for_text(1001, PROJECT)
                wizard.press("alt+4")
                self.scan_and_edit(wizard, destination="C:\\a,b")

                wizard.press("ctrl+s")
                wizard.wait_for_message(911)
                wizard.press("ctrl+c")
                self.assertIn(reason, copied_text())

    def test_closing_without_saving_leaves_the_settings_as_they_were(self):
        self.lay()
        before = self.path(PROJECT + ".swz").read_bytes()
        wizard = self.start(PROJECT)

        wizard.wait_for_text(1001, PROJECT)
        wizard.type("x")
        wizard.press("alt+F4")
        wizard.wait_for_message(1703)
        wizard.press("Escape")
        wizard.wait_for_text(1001, PROJECT)
        wizard.press("alt+F4")
        wizard.wait_for_message(1703)
        wizard.press(access_key(GERMAN, 1979))

        self.assert_ended_well(wizard)
        self.assertEqual(self.path(PROJECT + ".swz").read_bytes(), before)

    def test_the_window_comes_back_in_the_size_that_it_had(self):
        self.lay()

        sizes = []
        for _ in range(2):
            wizard = self.start(PROJECT)
            wizard.wait_for_text(1001, PROJECT)
            if not sizes:
                wizard.resize(1100, 820)
            sizes.append(wizard.size())
            wizard.press("alt+F4")
            self.assert_ended_well(wizard)

        self.assertEqual(sizes, [(1100, 820), (1100, 820)])

    # --- Starts

    def test_a_project_on_the_command_line_opens_without_a_question(self):
        for argument in (PROJECT, f"C:\\Projekte\\{PROJECT}\\{PROJECT}.txs"):
            with self.subTest(argument):
                self.lay()
                wizard = self.start(argument)

                wizard.wait_for_text(1001, PROJECT)
                wizard.press("alt+F4")

                self.assert_ended_well(wizard)

    def test_cancelling_the_choice_of_a_project_ends_without_a_message(self):
        self.lay()
        wizard = self.start()

        wizard.wait_for_text(600)
        wizard.press("Escape")

        self.assert_ended_well(wizard)
        self.assertEqual(wizard.said(), "")

    def test_an_unknown_project_ends_with_its_message(self):
        for language in (GERMAN, ENGLISH):
            with self.subTest(language):
                self.lay(language)
                wizard = self.start("Nirgendwo")

                wizard.wait_for_message(901)
                wizard.press("Return")

                self.assert_ended_well(wizard)
                self.assertIn("'Nirgendwo'", wizard.said())

    def test_options_of_the_toolkit_are_refused_like_any_other(self):
        for argument in ("--display=:0", "--version", "/x"):
            with self.subTest(argument):
                self.lay()
                wizard = self.start(argument, PROJECT)

                wizard.wait_for("TavixStudio - Setup Wizard")
                wizard.press("Return")

                self.assert_ended_well(wizard)
                self.assertIn("ProjectName[.txs|.swz]", wizard.said())

    # --- Displays

    def test_without_a_display_the_start_says_how_to_get_one(self):
        self.lay(ENGLISH)
        for display in (None, "", ":4711"):
            for arguments in ((), (PROJECT,)):
                with self.subTest(display=display, arguments=arguments):
                    environment = dict(os.environ)
                    environment.pop("DISPLAY")
                    if display is not None:
                        environment["DISPLAY"] = display
                    wizard = self.start(*arguments, environment=environment)

                    self.assertEqual(wizard.wait_for_end(), 0)
                    self.assertIn(message_title(ENGLISH, 1975), wizard.said())
                    self.assertIn("ssh -X", wizard.said())

    def test_an_unattended_run_loads_no_toolkit(self):
        self.lay()
        loaded = self.scratch / "loaded"
        # The loader's own diary.
        environment = dict(os.environ, LD_DEBUG="files", LD_DEBUG_OUTPUT=str(loaded))
        wizard = self.start("/c=Leitstand Client", environment=environment)

        self.assertEqual(wizard.wait_for_end(), 0)

        diary = "".join(path.read_text() for path in self.scratch.glob("loaded.*"))
        self.assertIn("libstdc++", diary)
        self.assertNotRegex(diary, "libwx|libgtk|TXSetupWizardWindows")

    def test_an_unattended_run_without_a_registry_waits_for_nobody(self):
        self.lay()
        (self.studio / "registry.reg").write_text("garbage")
        wizard = self.start("/c=" + PROJECT)

        self.assertEqual(wizard.wait_for_end(), 1)
        self.assertIn("registry.reg", wizard.said())


class Result(unittest.TextTestResult):
    def keep_picture(self):
        folder = os.environ.get("SCREENSHOTS")
        if not folder:
            return
        path = pathlib.Path(folder) / f"failed-{sys.argv[5]}.png"
        picture_of_screen(path)
        print(f"'{active_window()[0]}' was active; the screen is in {path}", file=sys.stderr)

    def addFailure(self, test, err):
        self.keep_picture()
        super().addFailure(test, err)

    def addError(self, test, err):
        self.keep_picture()
        super().addError(test, err)

    def addSubTest(self, test, subtest, err):
        if err is not None:
            self.keep_picture()
        super().addSubTest(test, subtest, err)


if __name__ == "__main__":
    unittest.main(
        argv=[sys.argv[0], "Session." + sys.argv[5]],
        testRunner=unittest.TextTestRunner(resultclass=Result),
    )
