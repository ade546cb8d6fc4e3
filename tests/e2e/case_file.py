# SPDX-License-Identifier: MIT
"""Reads the cases: one file each, of which README.md tells the sections and the escapes."""

import dataclasses
import pathlib
import re
import shlex
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "testing"))
from escapes import unescape

CASES = HERE / "cases"
COMPLETED = 84  # the status of a completed run

MARKER = re.compile(r"-- (.*) --")
SINGLE = ("args", "env", "make_inputs", "status", "stdout", "stderr")
FOLDERS = ("inputs", "outputs")
VERBATIM = ("note", "make_inputs")  # text that no escape is sought in
UNSEEN = re.compile(r"[\x00-\x1f\x7f]| $")


class Malformed(Exception):
    """What is wrong with a case, and where."""


@dataclasses.dataclass
class Case:
    name: str
    note: str = ""
    args: list = dataclasses.field(default_factory=list)
    env: dict = dataclasses.field(default_factory=dict)
    inputs: dict = dataclasses.field(default_factory=dict)  # bytes by name, as are the outputs
    make_inputs: str = ""
    status: int = COMPLETED
    stdout: bytes = b""
    stderr: bytes = b""
    outputs: dict = dataclasses.field(default_factory=dict)

    def write_inputs(self, folder):
        for name, data in self.inputs.items():
            path = pathlib.Path(folder, name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(data)
        if self.make_inputs:
            subprocess.run([sys.executable, "-c", self.make_inputs, folder], check=True)


def lines_of(text):
    """The lines of a file that shows all it holds."""
    if not text.endswith("\n"):
        raise Malformed("no line end behind the last line")
    lines = text[:-1].split("\n")
    for number, line in enumerate(lines, 1):
        unseen = UNSEEN.search(line)
        if unseen:
            raise Malformed(f"line {number}: {unseen[0]!r} is not seen and must be escaped")
    return lines


def is_section(name):
    folder, _, file = name.partition("/")
    # No file lies outside the working folder.
    inside = all(part not in ("", ".", "..") for part in file.split("/"))
    return name in SINGLE or (folder in FOLDERS and inside)


def sections_of(lines):
    """The lines of each section by its name, each as its number and text."""
    sections = {"note": []}
    name = "note"
    for number, line in enumerate(lines, 1):
        marker = MARKER.fullmatch(line)
        if not marker:
            sections[name].append((number, line))
            continue
        name = marker[1]
        if not is_section(name):
            raise Malformed(f"line {number}: no section is called {name}")
        if name in sections:
            raise Malformed(f"line {number}: a second section {name}")
        sections[name] = []
    return sections


def data_of(line):
    """The bytes of one line. The last of an odd number of backslashes takes the line end away."""
    open_end = (len(line) - len(line.rstrip("\\"))) % 2
    return unescape(line[:-1]) if open_end else unescape(line) + b"\n"


def content_of(name, lines):
    if name in VERBATIM:
        return "".join(line + "\n" for _, line in lines)
    data = []
    for number, line in lines:
        try:
            data.append(data_of(line))
        except ValueError as error:
            raise Malformed(f"line {number}: {error}") from None
    return b"".join(data)


def words_of(data):
    """The words of a command line, as a shell takes them apart that knows blanks and quotes."""
    shell = shlex.shlex(data.decode(errors="surrogateescape"), posix=True)
    shell.whitespace_split, shell.commenters, shell.escape = True, "", ""
    words = list(shell)
    if any("\0" in word for word in words):
        raise ValueError("no argument can hold a NUL")
    return words


def variables_of(data):
    lines = [line for line in data.decode().split("\n") if line]
    if not all(re.fullmatch(r"\w+=[^\0]*", line) for line in lines):
        raise ValueError("a line that is not NAME=VALUE")
    return dict(line.split("=", 1) for line in lines)


def status_of(data):
    if not re.fullmatch(rb"-?\d+\n", data):
        raise ValueError("not one number")
    return int(data)


PARSERS = {"args": words_of, "env": variables_of, "status": status_of}


def parsed(name, content):
    try:
        return PARSERS.get(name, lambda data: data)(content)
    except ValueError as error:
        raise Malformed(f"{name}: {error}") from None


def parse(name, text):
    """The case of this name that a file's text tells."""
    contents = {section: content_of(section, lines)
                for section, lines in sections_of(lines_of(text)).items()}
    if "args" not in contents:
        raise Malformed("no section args")
    contents["note"] = contents["note"].strip("\n")
    values = {section: parsed(section, content)
              for section, content in contents.items() if "/" not in section}
    for folder in FOLDERS:
        values[folder] = {section[len(folder) + 1:]: content
                          for section, content in contents.items()
                          if section.startswith(folder + "/")}
    return Case(name, **values)


def read_case(name):
    path = CASES / f"{name}.case"
    try:
        return parse(name, path.read_bytes().decode())
    except (Malformed, UnicodeDecodeError) as error:
        raise Malformed(f"{path}: {error}") from None


def case_names():
    return sorted(path.stem for path in CASES.glob("*.case"))
