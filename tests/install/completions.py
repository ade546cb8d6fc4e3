#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Completes command lines as the shells would: completions.py MARDLE BASH_FILE ZSH_FILE.

Every option that the program's help names must be offered, values and files after the right ones.
"""
import re
import shutil
import subprocess
import sys

MARDLE, BASH_FILE, ZSH_FILE = sys.argv[1:4]
failures = 0


def check(holds, what):
    global failures
    if not holds:
        failures += 1
        print("FAIL", what)


def completed(*words):
    """What bash offers for the last of the words after `mardle`."""
    line = " ".join(f"'{word}'" for word in ("mardle", *words))
    script = (f"source {BASH_FILE}; COMP_WORDS=({line}); COMP_CWORD={len(words)}; _mardle; "
              'printf "%s\\n" "${COMPREPLY[@]}"')
    done = subprocess.run(["bash", "-c", script], capture_output=True, text=True, check=True)
    return done.stdout.split()


help_text = subprocess.run([MARDLE, "-help"], capture_output=True, text=True).stdout
named = set(re.findall(r"^ +-(\w+)", help_text, re.MULTILINE))
check(len(named) == 32, f"the help names 32 options, not {len(named)}")
offered = {word.strip("-=") for word in completed("-")}
check(offered == named, f"bash offers {offered ^ named} or not")
check(completed("-crf") == ["-crfun="], "an option that takes a value ends in =")
check(completed("-dir") == ["-direct"], "one that takes none does not")
check(completed("-sim", "=") == ["1", "2"], "codes after =")
check(completed("-sim", "=", "2") == ["2"], "codes by what is there")
check(completed("-output", "=", BASH_FILE[:-1]) == [BASH_FILE], "files after options that take one")
check(completed(BASH_FILE[:-1]) == [BASH_FILE], "files as arguments")
check(completed("-ntrials", "=") == [], "nothing for any number")

zsh_text = open(ZSH_FILE, encoding="utf-8").read()
check(set(re.findall(r"'-(\w+)", zsh_text)) == named, "zsh knows the same options")
if shutil.which("zsh"):
    check(subprocess.run(["zsh", "-n", ZSH_FILE]).returncode == 0, "zsh can read its file")

print(f"{failures} failed")
sys.exit(1 if failures else 0)
