#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Tests the reader of the cases: what a file says is read to the byte, all else is refused."""

import pathlib
import tempfile
import unittest

import case_file
from escapes import escape, unescape


def stdout_of(*lines):
    """What a case whose stdout section has these lines expects to be printed."""
    text = "".join(f"{line}\n" for line in ("-- args --", "-- stdout --", *lines))
    return case_file.parse("it", text).stdout


def args_of(line):
    return case_file.parse("it", f"-- args --\n{line}\n").args


class Sections(unittest.TestCase):
    def test_a_case_of_every_section(self):
        case = case_file.parse("it", "Why.\n\n-- args --\n-rb m.txt\n2\n-- env --\nA=b=c\nD=\n"
                                     "-- inputs/m.txt --\n1 1\n-- inputs/sub/two words --\nx\n"
                                     "-- make_inputs --\nprint('\\n')\n-- status --\n-6\n"
                                     "-- stdout --\nyes\n-- stderr --\nno\n-- outputs/t.1 --\n0\n")
        self.assertEqual(case, case_file.Case(
            "it", "Why.", ["-rb", "m.txt", "2"], {"A": "b=c", "D": ""},
            {"m.txt": b"1 1\n", "sub/two words": b"x\n"}, "print('\\n')\n", -6, b"yes\n", b"no\n",
            {"t.1": b"0\n"}))

    def test_what_is_left_out_is_empty_and_the_run_completed(self):
        case = case_file.parse("it", "-- args --\n")
        self.assertEqual(case, case_file.Case("it", "", [], {}, {}, "", 84, b"", b"", {}))

    def test_an_empty_file_is_not_a_missing_file(self):
        case = case_file.parse("it", "-- args --\n-- inputs/none --\n-- inputs/line --\n\n")
        self.assertEqual(case.inputs, {"none": b"", "line": b"\n"})

    def test_lines_like_a_section_without_its_form_are_content(self):
        self.assertEqual(stdout_of("-- stdout", "--- x ---", " -- args --"),
                         b"-- stdout\n--- x ---\n -- args --\n")
        self.assertEqual(stdout_of("\\x2d- args --"), b"-- args --\n")


class Content(unittest.TestCase):
    def test_escapes(self):
        self.assertEqual(stdout_of("a\\tb\\r", "\\x00\\xff\\s", "\\\\x00", "c:\\\\"),
                         b"a\tb\r\n\x00\xff \n\\x00\nc:\\\n")

    def test_a_last_backslash_takes_the_line_end_away(self):
        self.assertEqual(stdout_of("one\\", " two", "three\\"), b"one two\nthree")
        self.assertEqual(stdout_of("\\\\\\"), b"\\")

    def test_letters_of_any_script_stand_for_their_utf_8(self):
        self.assertEqual(stdout_of("Ärger"), b"\xc3\x84rger\n")

    def test_every_byte_can_be_written(self):
        for data in (bytes(range(256)), b"", b" ", b"  \n ", b"\\x41", b"\\s "):
            line = escape(data)
            self.assertEqual(unescape(line), data)
            self.assertRegex(line, r"\A([!-~ ]*[!-~])?\Z")
            self.assertEqual(stdout_of(line + "\\"), data)

    def test_arguments_are_words_and_quotes_join_them(self):
        self.assertEqual(args_of("  a 'b  c'\\\n\"\" d\"'\"e #f"), ["a", "b  c", "d'e", "#f"])
        self.assertEqual(args_of("'' \"\" \\xff"), ["", "", "\udcff"])


class Refusals(unittest.TestCase):
    def refuses(self, text, message):
        with self.assertRaises(case_file.Malformed) as refused:
            case_file.parse("it", text)
        self.assertEqual(str(refused.exception), message)

    def test_unknown_and_repeated_sections(self):
        self.refuses("-- args --\n-- output --\n", "line 2: no section is called output")
        self.refuses("-- inputs --\n", "line 1: no section is called inputs")
        self.refuses("-- note --\n", "line 1: no section is called note")
        self.refuses("-- args --\nm\n-- args --\n", "line 3: a second section args")
        self.refuses("Why.\n", "no section args")

    def test_files_outside_the_working_folder(self):
        for name in ("", "/etc/x", "../x", "a/../../x", "a//b", "./x", "a/"):
            self.refuses(f"-- inputs/{name} --\n", f"line 1: no section is called inputs/{name}")

    def test_what_an_editor_would_change_or_nobody_sees(self):
        for text, message in (("-- args --\n-- stdout --\na \n", "line 3: ' '"),
                              ("-- args --\n-- stdout --\na\tb\n", "line 3: '\\t'"),
                              ("-- args --\r\n", "line 1: '\\r'"),
                              ("Why. \n-- args --\n", "line 1: ' '")):
            self.refuses(text, f"{message} is not seen and must be escaped")
        self.refuses("-- args --", "no line end behind the last line")
        self.refuses("", "no line end behind the last line")

    def test_escapes_that_mean_nothing(self):
        self.refuses("-- args --\n-- stdout --\na\\q1234\n", "line 3: unknown escape \\q12")
        self.refuses("-- args --\n-- stdout --\n\\xg0\n", "line 3: unknown escape \\xg0")
        self.refuses("-- args --\n-- stdout --\n\\x1\n", "line 3: unknown escape \\x1")

    def test_values_of_the_wrong_kind(self):
        self.refuses("-- args --\n'm 2\n", "args: No closing quotation")
        self.refuses("-- args --\n\\x00\n", "args: no argument can hold a NUL")
        self.refuses("-- args --\n-- env --\nA\n", "env: a line that is not NAME=VALUE")
        self.refuses("-- args --\n-- env --\nA=\\x00\n", "env: a line that is not NAME=VALUE")
        self.refuses("-- args --\n-- status --\n", "status: not one number")
        self.refuses("-- args --\n-- status --\n0\n84\n", "status: not one number")


class Files(unittest.TestCase):
    def test_inputs_are_written_and_then_made(self):
        made = "import pathlib, sys\npathlib.Path(sys.argv[1], 'sub', 'b').write_bytes(b'made')\n"
        case = case_file.Case("it", inputs={"sub/a": b"\x00\r\n"}, make_inputs=made)
        with tempfile.TemporaryDirectory() as folder:
            case.write_inputs(folder)
            files = {path.name: path.read_bytes() for path in pathlib.Path(folder, "sub").iterdir()}
        self.assertEqual(files, {"a": b"\x00\r\n", "b": b"made"})

    def test_the_file_is_told_with_what_is_wrong_in_it(self):
        kept = case_file.CASES
        with tempfile.TemporaryDirectory() as folder:
            case_file.CASES = pathlib.Path(folder)
            self.addCleanup(setattr, case_file, "CASES", kept)
            pathlib.Path(folder, "odd.case").write_text("-- agrs --\n")
            pathlib.Path(folder, "bytes.case").write_bytes(b"\xff\n")
            self.assertEqual(case_file.case_names(), ["bytes", "odd"])
            for name, message in (("odd", "odd.case: line 1: no section is called agrs"),
                                  ("bytes", "bytes.case: 'utf-8' codec can't decode byte 0xff")):
                with self.assertRaisesRegex(case_file.Malformed, message):
                    case_file.read_case(name)

    def test_nothing_lies_among_the_cases_that_no_run_would_see(self):
        files = {path.name for path in case_file.CASES.iterdir()}
        self.assertEqual(files, {f"{name}.case" for name in case_file.case_names()})

    def test_every_case_is_well_formed(self):
        for name in case_file.case_names():
            with self.subTest(name):
                self.assertEqual(case_file.read_case(name).name, name)


if __name__ == "__main__":
    unittest.main()
