#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A corpus as one file of text: an input on each line, sorted, escaped as testing/escapes.py tells.

  corpus.py unpack FOLDER CORPUS...   FOLDER/NAME gets the inputs of NAME.txt as files
  corpus.py add CORPUS FILE...        the corpus gets the contents of these files too

The files unpacked are named as libFuzzer names those it makes, so that no input is kept twice.
"""

import hashlib
import pathlib
import re
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "testing"))
from escapes import escape, unescape

MADE = re.compile(r"[0-9a-f]{40}")  # the name of a file that was made, not put there by hand


def read_corpus(path):
    """The inputs of a corpus file; ValueError when a line of it is none."""
    text = path.read_bytes().decode("latin-1")
    inputs = []
    for number, line in enumerate(text.splitlines(keepends=True), 1):
        try:
            if not re.fullmatch(r"([!-~ ]*[!-~])?\n", line):
                raise ValueError("not a whole line of printable ASCII without a blank at its end")
            inputs.append(unescape(line[:-1]))
        except ValueError as error:
            raise ValueError(f"{path}:{number}: {error}") from None
    return inputs


def write_corpus(path, inputs):
    path.write_text("".join(sorted({escape(data) + "\n" for data in inputs})))


def add_inputs(path, inputs):
    present = read_corpus(path) if path.exists() else []
    write_corpus(path, present + inputs)


def unpack(folder, corpora):
    for corpus in corpora:
        write_files(folder / corpus.stem, read_corpus(corpus))


def write_files(folder, inputs):
    files = {hashlib.sha1(data).hexdigest(): data for data in inputs}
    folder.mkdir(parents=True, exist_ok=True)
    for path in folder.iterdir():
        if MADE.fullmatch(path.name) and path.name not in files:
            path.unlink()
    for name, data in files.items():
        (folder / name).write_bytes(data)


def add(corpus, files):
    add_inputs(corpus, [path.read_bytes() for path in files])


def main():
    commands = {"unpack": unpack, "add": add}
    if len(sys.argv) < 4 or sys.argv[1] not in commands:
        sys.exit(__doc__)
    first, *others = map(pathlib.Path, sys.argv[2:])
    try:
        commands[sys.argv[1]](first, others)
    except (OSError, ValueError) as error:
        sys.exit(f"corpus.py: {error}")


if __name__ == "__main__":
    main()
