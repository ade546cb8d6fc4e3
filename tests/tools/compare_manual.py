#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares the options that a program's --help lists with those that its manual page explains.

Usage: compare_manual.py PROGRAM PAGE
"""

import pathlib
import re
import subprocess
import sys

NAME = r"--[a-z][a-z-]*"


def options_of_help(program):
    text = subprocess.run([program, "--help"], check=True, capture_output=True, text=True).stdout
    return set(re.findall(rf"^ +({NAME})", text, re.M))


def options_of_page(page):
    text = page.read_text(encoding="utf-8").replace("\\-", "-")
    section = text.split("\n.SH OPTIONS\n")[1].split("\n.SH ")[0]
    return set(re.findall(rf"^\.TP\n\.BI? ({NAME})", section, re.M))


def main():
    helped, explained = options_of_help(sys.argv[1]), options_of_page(pathlib.Path(sys.argv[2]))
    for option in sorted(helped ^ explained):
        print(f"{option} stands only in the {'help' if option in helped else 'manual page'}")
    if not helped or helped != explained:
        sys.exit("help and manual page differ")


if __name__ == "__main__":
    main()
