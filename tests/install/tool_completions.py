#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Completes command lines of a tool as the shells would: tool_completions.py PROGRAM BASH_FILE ZSH_FILE.

Every option that the program's help lists must be offered, and nothing else.
"""
import os
import re
import shutil
import subprocess
import sys
import unittest

PROGRAM, BASH_FILE, ZSH_FILE = sys.argv[1:4]
NAME = os.path.basename(PROGRAM)


def options_of_help():
    text = subprocess.run([PROGRAM, "--help"], capture_output=True, text=True, check=True).stdout
    return set(re.findall(r"^ +(--[a-z-]+)", text, re.MULTILINE))


def completed(word):
    """What bash offers for a word behind the program's name."""
    function = "_" + NAME.replace("-", "_")
    script = (f"source {BASH_FILE}; COMP_WORDS=({NAME} '{word}'); COMP_CWORD=1; {function}; "
              'printf "%s\\n" "${COMPREPLY[@]}"')
    done = subprocess.run(["bash", "-c", script], capture_output=True, text=True, check=True)
    return done.stdout.split()


class Completions(unittest.TestCase):
    def test_bash_offers_the_options_of_the_help(self):
        self.assertEqual(set(completed("--")), options_of_help())
        self.assertGreater(len(options_of_help()), 20)

    def test_bash_goes_by_what_is_there(self):
        self.assertEqual(completed("--enc"), ["--encoding"])
        self.assertEqual(completed("--nosuch"), [])
        self.assertEqual(completed("a"), [])

    def test_zsh_knows_the_same_options(self):
        with open(ZSH_FILE, encoding="utf-8") as file:
            text = file.read()
        self.assertEqual(set(re.findall(r"(--[a-z-]+)=?[:']", text)), options_of_help())
        self.assertIn("'*--encoding=:value:_files'", text)
        self.assertIn("'--digits'", text)
        if shutil.which("zsh"):
            self.assertEqual(subprocess.run(["zsh", "-n", ZSH_FILE], check=False).returncode, 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
