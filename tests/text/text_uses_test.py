#!/usr/bin/env python3
"""The string table against the sources and the documents: every text is shown from somewhere, every
number that the sources use has its texts, and docs/MESSAGES.md lists every message with its words.
    text_uses_test.py SOURCE_DIRECTORY
"""

import pathlib
import re
import sys
import unittest

ROOT = pathlib.Path(sys.argv[1])

# The system's own texts that nothing shows: kept in the table, see there.
NEVER_SHOWN = {93, 1416}
# Shown on some platforms only.
SHOWN_ELSEWHERE = {1701}

# Numbers that are computed: the file, what stands in it, and which texts that makes.
COMPUTED = [
    ("ui/setup_wizard_form.cpp", "return 1000 + 100 * static_cast<long>(step);", range(1100, 1501, 100)),
    ("ui/step_files_page.cpp", "id <= kLastInstruction", range(1401, 1404)),
    ("ui/step_controls.cpp", "texts.GetText(kFirstCaption + i)", range(1410, 1416)),
    ("ui/step_medium_page.cpp", "kFirstSize + ", range(1503, 1505)),
]

# Constants of type long that are no numbers of texts.
NO_TEXTS = {
    "environment/project_type.h",
    "strings/m_text.cpp",
    "strings/reason.cpp",
    "strings/string_table.cpp",
}

CONSTANT = re.compile(r"constexpr long (k\w+) = (\d+);")
# Calls that take the number of a text as their last argument, or as their first.
CALLS = [
    re.compile(r"\b(?:Add|AddColumn|AddDialogButton|add_text|captions)\([^;]*?, (\d+)\)"),
    re.compile(r"\b(?:GetText|Compose|ComposeError|Product|Version|Line)\((\d+)\b"),
]
# An enumerator: of the stages of the runs, which have the numbers of their captions, and of errors.
ENUMERATOR = re.compile(r"^ *k\w+ = (\d+),", re.MULTILINE)
STAGE_HEADERS = {"create/create_view.h", "scan/scan_view.h"}
# The reasons have numbers one after the other.
REASONS = "strings/reason.h"

# Words in the code for what went wrong. Only a programming error can say these; " in " is German, too.
ERROR = re.compile(r'\b(?:RuntimeError|Throw\w*|Refuse)\((?:"(?:[^"\\\n]|\\.)*"|[^";])*;')
LITERAL = re.compile(r'"((?:[^"\\\n]|\\.)*)"')
NO_REASONS = {
    ' in \\"',
    " rows, but row ",
    " was asked for",
    "A whole hive cannot be removed",
    "WriteAt beyond what was written",
    "the file list has ",
    "there is no text box ",
}


def unescape(literal):
    return re.sub(r"\\(.)", lambda m: {"r": "\r", "n": "\n", "t": "\t"}.get(m[1], m[1]), literal)


def read_table():
    """Number to its texts, German first."""
    source = (ROOT / "resources" / "string_table.inc").read_text(encoding="utf-8")
    literal = r'"((?:[^"\\]|\\.)*)"'
    table = {}
    for entry in re.finditer(
        rf"^TXS_TEXT(?:_GERMAN_ONLY)?\((\d+),\s*{literal}(?:,\s*{literal})?\)", source, re.MULTILINE
    ):
        table[int(entry[1])] = [unescape(text) for text in entry.groups()[1:] if text is not None]
    return table


def read_sources():
    """Path within src to the text without comments and without what stands in quotes."""
    noise = re.compile(r'//[^\n]*|"(?:[^"\\\n]|\\.)*"')
    return {
        path.relative_to(ROOT / "src").as_posix(): noise.sub(
            lambda m: "" if m[0].startswith("//") else '""', path.read_text(encoding="utf-8")
        )
        for path in sorted((ROOT / "src").rglob("*"))
        if path.suffix in (".cpp", ".h")
    }


TABLE = read_table()
SOURCES = read_sources()


def constants():
    """Files, names and numbers of the texts that have a name."""
    for path, source in SOURCES.items():
        if path in NO_TEXTS:
            continue
        for name, number in CONSTANT.findall(source):
            yield path, name, int(number)


def reasons():
    """Number and name of every reason."""
    names = re.search(r"enum class Reason[^{]*\{([^}]*)\}", SOURCES[REASONS])[1]
    first, *others = re.findall(r"k\w+(?: = \d+)?", names)
    name, _, number = first.partition(" = ")
    return list(enumerate([name, *others], int(number)))


def used_numbers():
    """Number to one place that uses it."""
    used = {number: path for path, _, number in constants()}
    for path, source in SOURCES.items():
        for pattern in CALLS + ([ENUMERATOR] if path in STAGE_HEADERS else []):
            used.update((int(number), path) for number in pattern.findall(source))
    everything = "".join(source for path, source in SOURCES.items() if path != REASONS)
    used.update((n, REASONS) for n, name in reasons() if f"Reason::{name}" in everything)
    for path, _, numbers in COMPUTED:
        used.update((number, path) for number in numbers)
    return used


def shown(text):
    """The first line of a text as a reader of the list looks for it."""
    line = text.partition("\r\n")[0]
    # What is filled in, then the escapes of the table, then what Markdown would take for its own.
    line = re.sub(r"\\(.)", r"\1", re.sub(r"@\d@", "…", line))
    return re.sub(r"([|\[\]<>])", r"\\\1", line)


def messages():
    """Number of every message."""
    header = (ROOT / "tests" / "fakes" / "message_ids.h").read_text(encoding="utf-8")
    captions = {int(number) for number in re.findall(r"\b(\d+)L\b", header)}
    ranges = [(91, 94), (901, 999), (1701, 1799), (1900, 1999)]
    return [
        number
        for number in TABLE
        if number not in captions and any(low <= number <= high for low, high in ranges)
    ]


class Texts(unittest.TestCase):
    maxDiff = None

    def test_every_text_is_shown_from_somewhere(self):
        unused = set(TABLE) - set(used_numbers()) - NEVER_SHOWN - SHOWN_ELSEWHERE
        self.assertEqual(unused, set())

    def test_what_is_called_never_shown_is_not(self):
        self.assertEqual(NEVER_SHOWN & set(used_numbers()), set())

    def test_every_number_that_the_sources_use_has_its_texts(self):
        for number, path in used_numbers().items():
            languages = 1 if 91 <= number <= 94 else 2
            self.assertEqual(len(TABLE.get(number, [])), languages, f"{number} in src/{path}")

    def test_every_named_text_is_used_where_it_is_named(self):
        for path, name, number in constants():
            uses = len(re.findall(rf"\b{name}\b", SOURCES[path]))
            self.assertGreater(uses, 1, f"{name} ({number}) in src/{path}")

    def test_every_reason_has_its_texts_and_every_such_text_its_reason(self):
        self.assertEqual([n for n in TABLE if 1800 <= n <= 1899], [n for n, _ in reasons()])

    def test_reasons_come_from_the_table(self):
        found = {
            words
            for path in sorted((ROOT / "src").rglob("*.cpp"))
            for statement in ERROR.findall(path.read_text(encoding="utf-8"))
            for words in LITERAL.findall(statement)
            if re.search(r"[a-z]{2} ", words)
        }
        self.assertEqual(found, NO_REASONS)

    def test_computed_numbers_are_computed_as_this_test_believes(self):
        for path, expression, _ in COMPUTED:
            self.assertIn(expression, SOURCES[path], path)

    def test_the_list_of_messages_has_each_with_its_words_and_what_to_do(self):
        listed = {}
        document = (ROOT / "docs" / "MESSAGES.md").read_text(encoding="utf-8")
        for line in document.splitlines():
            cells = [cell.strip() for cell in re.split(r"(?<!\\)\|", line)[1:-1]]
            if len(cells) == 4 and cells[0].isdigit():
                self.assertNotIn(int(cells[0]), listed)
                self.assertNotIn("", cells, line)
                listed[int(cells[0])] = cells[1]

        expected = {number: "<br>".join(map(shown, reversed(TABLE[number]))) for number in messages()}
        self.assertEqual(listed, expected)

    def test_the_list_of_messages_explains_every_error_number(self):
        document = (ROOT / "docs" / "MESSAGES.md").read_text(encoding="utf-8")
        explained = re.findall(r"^\| ([\d, ]+) \|[^|]*\|[^|]*\|$", document, re.MULTILINE)
        numbers = [int(number) for row in explained for number in row.split(",")]
        header = SOURCES["environment/runtime_error.h"]

        self.assertEqual(sorted(numbers), sorted(map(int, ENUMERATOR.findall(header))))

    def test_the_list_of_messages_explains_every_code_of_the_archiver(self):
        document = (ROOT / "docs" / "MESSAGES.md").read_text(encoding="utf-8")
        codes = list(map(int, re.findall(r"^\| (\d+) \|[^|]*\|$", document, re.MULTILINE)))
        header = SOURCES["environment/archiver.h"]

        self.assertEqual([0, *codes], list(map(int, ENUMERATOR.findall(header))))

    def test_the_list_of_messages_quotes_no_reason_that_half_of_the_readers_see_otherwise(self):
        document = (ROOT / "docs" / "MESSAGES.md").read_text(encoding="utf-8")
        quoted = {words.lower() for words in re.findall(r'"([^"\n]+)"', document)}
        reasons_shown = {text.lower() for n, _ in reasons() for text in TABLE[n]}

        self.assertEqual(quoted & reasons_shown, set())

    def test_own_texts_call_a_directory_by_one_name(self):
        self.assertEqual(
            [n for n in TABLE if n >= 1800 and "folder" in TABLE[n][-1].lower()], []
        )

    def test_the_advice_to_open_a_project_again_does_not_lead_through_a_save(self):
        """A save would be refused for the same reason."""
        for number in (1931, 1933):
            german, english = TABLE[number]
            self.assertIn("noch einmal, ohne zu speichern", german)
            self.assertIn("again without saving", english)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
