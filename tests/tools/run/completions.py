#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Completes command lines of mardle-run: completions.py MARDLE-RUN BASH_FILE ZSH_FILE.

It is offered what its own help lists beside the options of mardle, and mardle is not.
"""
import pathlib
import re
import subprocess
import sys
import unittest

RUN, BASH_FILE, ZSH_FILE = sys.argv[1:4]


def completed(command, *words):
    line = " ".join(f"'{word}'" for word in (command, *words))
    script = (f"source {BASH_FILE}; COMP_WORDS=({line}); COMP_CWORD={len(words)}; _mardle; "
              'printf "%s\\n" "${COMPREPLY[@]}"')
    done = subprocess.run(["bash", "-c", script], capture_output=True, text=True, check=True)
    return done.stdout.split()


def options_of_help():
    text = subprocess.run([RUN, "--help"], capture_output=True, text=True, check=True).stdout
    return set(re.findall(r"^ +(--[a-z-]+)", text, re.MULTILINE))


class Completions(unittest.TestCase):
    def test_bash_offers_the_options_of_both_programs(self):
        own = {word.rstrip("=") for word in completed("mardle-run", "--")}
        self.assertEqual(own, options_of_help())
        self.assertEqual(set(completed("/usr/bin/mardle-run", "-")) - set(completed("mardle", "-")),
                         set(completed("mardle-run", "--")))
        self.assertEqual(completed("mardle-run", "--pas"), ["--passes="])
        self.assertEqual(completed("mardle-run", "-sim", "="), ["1", "2"])

    def test_mardle_is_not_offered_them(self):
        self.assertEqual(completed("mardle", "--"), [])

    def test_zsh_knows_the_same(self):
        text = pathlib.Path(ZSH_FILE).read_text(encoding="utf-8")
        self.assertEqual(set(re.findall(r"'(--[a-z-]+)", text)), options_of_help())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
