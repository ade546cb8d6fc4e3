#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Completes command lines of a tool as the shells would: tool_completions.py MARDLE PROGRAM BASH_FILE ZSH_FILE.

Every option that the program's help lists must be offered, behind it its values or files, and of
mardle's options those that the program takes.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

MARDLE, PROGRAM, BASH_FILE, ZSH_FILE = (os.path.abspath(path) for path in sys.argv[1:5])
NAME = os.path.basename(PROGRAM)
WRONG = "klingon"
# What the program must be given for a value to be looked at, and values that it does not list.
ARGUMENTS = {"mardle-import": ["texts.txt", "new.mat", "--quiet", "--force"],
             "mardle-cluster": ["texts.txt", "2", "--quiet", "--force"]}
UNLISTED = ("--encoding", "--delimiter")


def run(*arguments, folder=None):
    return subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, check=False,
                          cwd=folder)


def help_of(*words):
    return run(*words, "--help").stdout


FORMATS = re.findall(r"^  ([a-z]+) ", help_of().partition("Subcommands:")[2], re.MULTILINE)


def options_of_help(*words):
    """The options of a help, and what stands behind each on its line."""
    return dict(re.findall(r"^ +(--[a-z-]+) ?(.*)$", help_of(*words), re.MULTILINE))


def completed(*words):
    """What bash offers for the last word behind the program's name."""
    line = " ".join(f"'{word}'" for word in (NAME, *words))
    function = "_" + NAME.replace("-", "_")
    script = (f"source {BASH_FILE}; COMP_WORDS=({line}); COMP_CWORD={len(words)}; {function}; "
              'printf "%s\\n" "${COMPREPLY[@]}"')
    done = subprocess.run(["bash", "-c", script], capture_output=True, text=True, check=True)
    return done.stdout.split()


def options_of_mardle():
    """Those that stand behind one dash, in mardle's help, and of these what is offered here."""
    text = subprocess.run([MARDLE, "-help"], capture_output=True, text=True, check=False).stdout
    offered = [word for word in completed("-") if not word.startswith("--")]
    return re.findall(r"^ +-(\w+)", text, re.MULTILINE), offered


class Completions(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        (self.folder / "texts.txt").write_text("one two three\ntwo three four\nfour one\n")

    def each_help(self):
        """The words before the options of each help, and these options."""
        for words in [[format_name] for format_name in FORMATS] or [[]]:
            yield words, options_of_help(*words)

    def test_bash_offers_the_options_of_the_help(self):
        for words, options in self.each_help():
            self.assertEqual(set(completed(*words, "--")), set(options))
            self.assertGreater(len(options), 5)

    def test_bash_goes_by_what_is_there(self):
        for words, _ in self.each_help():
            self.assertEqual(completed(*words, "--hel"), ["--help"])
            self.assertEqual(completed(*words, "--nosuch"), [])

    def test_formats_come_first(self):
        if FORMATS:
            self.assertEqual(completed(""), FORMATS)
            self.assertEqual(completed("feat"), ["features"])
            self.assertEqual(set(completed("--")), {"--help", "--version"})
        else:
            self.assertEqual(completed(BASH_FILE[:-1]), [BASH_FILE])

    def test_files_stand_behind_options_that_take_them(self):
        for words, options in self.each_help():
            for option, rest in options.items():
                takes_file = re.match(r"[A-Z|]*FILE\b", rest) is not None
                # What takes no value leaves the place to the next argument.
                takes_value = re.match(r"[A-Z|]+(:| |$)|[a-z|]+:{", rest) is not None
                expected = [BASH_FILE] if takes_file or not takes_value else []
                for behind in ([option], [option, "="]):
                    found = completed(*words, *behind, BASH_FILE[:-1])
                    self.assertEqual(found, expected, option)

    def test_values_are_those_that_the_help_tells(self):
        for words, options in self.each_help():
            for option, rest in options.items():
                told = re.search(r"[a-z|]+:{([a-z,]+)}", rest)
                numbers = re.search(r"in \[1 - (\d)\]", rest)
                if told:
                    self.assertEqual(sorted(completed(*words, option, "")), told[1].split(","))
                elif numbers:
                    expected = [str(number) for number in range(1, int(numbers[1]) + 1)]
                    self.assertEqual(completed(*words, option, "="), expected)

    def message(self, option, value):
        done = run(*ARGUMENTS[NAME], option, value, folder=self.folder)
        return done.stderr.replace(value, "VALUE"), done.returncode

    def test_values_are_those_that_the_program_knows(self):
        if NAME not in ARGUMENTS:
            return
        for option in ("--format", "--missing", "--stem", "--stop-words", "--more-stop-words"):
            refusal, status = self.message(option, WRONG)
            self.assertNotEqual(status, 0)
            listed = re.search(r"not in {(.*)}|there are (.*)$|the lists are (.*)$", refusal, re.MULTILINE)
            names = set(re.split(", ?", next(filter(None, listed.groups()))))
            # A list to add to is no reason to name none.
            names -= {"none"} if option == "--more-stop-words" else set()
            offered = [word for word in completed(option, "") if not word.endswith(".txt")]
            self.assertEqual(names - set(offered), set(), option)
        for option in UNLISTED:
            refusal, _ = self.message(option, WRONG)
            values = completed(option, "")
            self.assertTrue(values)
            for value in values:
                self.assertNotEqual(self.message(option, value)[0], refusal, value)

    def test_options_of_mardle_are_those_that_the_program_takes(self):
        known, offered = options_of_mardle()
        if NAME not in ("mardle-cluster", "mardle-sweep"):
            self.assertEqual(offered, [])
            return
        self.assertEqual(len(known), 32)
        numbers = ["2"] if NAME == "mardle-cluster" else ["2", "2"]
        for name in known:
            # The values are no numbers, so no option that has one is taken in full.
            done = run(f"-{name}=x", "texts.txt", *numbers, folder=self.folder)
            taken = "has no use here" not in done.stderr and "several seeds" not in done.stderr
            self.assertEqual(taken, {f"-{name}", f"-{name}="} & set(offered) != set(), name)
        self.assertEqual(completed("-crfun", "="), [str(number) for number in range(1, 10)])
        self.assertEqual(completed("-rclassfile", "=", BASH_FILE[:-1]), [BASH_FILE])
        self.assertEqual(completed("-rb"), ["-rb"])
        self.assertEqual(completed("-ntrials", "=", ""), [])

    def test_zsh_knows_the_same(self):
        text = pathlib.Path(ZSH_FILE).read_text(encoding="utf-8")
        options = options_of_help()
        for _, more in self.each_help():
            options.update(more)
        self.assertEqual(set(re.findall(r"'\*?(--[a-z-]+)[=']", text)), set(options))
        _, of_mardle = options_of_mardle()
        self.assertEqual(set(re.findall(r"'\*?(-[a-z]+)=?[-']", text)),
                         {option.rstrip("=") for option in of_mardle})
        if FORMATS:
            self.assertIn(f"'1:format:({' '.join(FORMATS)})'", text)
        if shutil.which("zsh"):
            self.assertEqual(subprocess.run(["zsh", "-n", ZSH_FILE], check=False).returncode, 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
