#!/usr/bin/env python3
"""Command lines as other programs of Windows write them, each handed to the wizard as it is.

Run by CTest, one test per scenario; for the arguments see windows_studio.py.
"""

from windows_studio import (PLANT, START, WINDOWS_WIZARD, StudioTest, main, windows_path)

PROJECT = rf"C:\Projekte\{PLANT}\{PLANT}.txs"


class CommandLine(StudioTest):
    def start(self, arguments):
        """What Wine makes of an argument that it gets from this machine is not what is asked here."""
        line = self.scratch / "line.txt"
        line.write_text(f'"{windows_path(WINDOWS_WIZARD)}" {arguments}', encoding="utf-8")
        return self.windows.run(START, windows_path(line))

    def assert_builds(self, arguments):
        self.assert_succeeded(self.start(arguments), PLANT)
        self.assertTrue((self.directory_there(PLANT) / "Setup/DISK1/SETUP.STP").exists())

    def test_a_command_line_with_quotes_around_the_switch_and_its_path(self):
        self.assert_builds(f'"/c={PROJECT}"')

    def test_a_command_line_with_quotes_around_the_path_alone(self):
        self.assert_builds(f'/c="{PROJECT}"')

    def test_a_command_line_with_no_quotes_around_a_path_with_blanks(self):
        self.assert_builds(f"  /C={PROJECT} ")

    def test_a_project_that_is_not_there_is_named_with_its_umlauts(self):
        project = rf"C:\Projekte\{PLANT}\Größe.txs"

        result = self.start(f'/c="{project}"')

        self.assertEqual(result.returncode, 1)
        self.assertIn("Größe", "".join(self.log_of(self.directory_there(PLANT))))


main("CommandLine")
