#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the built program on whole cases and compares everything it leaves behind.

Usage: run.py PROGRAM [NAME...]

A case is a file of cases/, named after what it shows; README.md tells what it says. Every case
runs in a fresh folder, under the program name PROG. Only what no two runs or platforms share is
evened out: the three processor times and the order of the option parser's suggestions.
"""

import argparse
import difflib
import os
import pathlib
import re
import subprocess
import sys
import tempfile

import case_file

TIME_LIMIT = 300  # seconds; only a program that hangs comes near it

PROCESSOR_TIME = re.compile(
    rb"^(   (?:I/O|Clustering|Reporting): *?)(?=.{10} sec$) *-?\d+\.\d{3} sec$", re.M)
SUGGESTIONS = re.compile(rb"(?<=; possibilities:)(?: '[^'\n]*')+$", re.M)
# A sanitizer build tells that it refused an allocation before the program does.
SANITIZER_REFUSAL = re.compile(rb"^==\d+==WARNING: \w+ failed to allocate 0x[0-9a-f]+ bytes\n", re.M)


def mask_stdout(text):
    return PROCESSOR_TIME.sub(rb"\1     0.000 sec", text)


def mask_stderr(text):
    text = SANITIZER_REFUSAL.sub(b"", text)
    return SUGGESTIONS.sub(lambda words: b"".join(sorted(re.findall(rb" '[^']*'", words[0]))), text)


def environment(case):
    variables = os.environ | case.env
    # A refused allocation is the program's to report, in sanitizer builds too.
    asan = [variables.get("ASAN_OPTIONS"), "allocator_may_return_null=1"]
    variables["ASAN_OPTIONS"] = ":".join(filter(None, asan))
    return variables


def files_under(folder):
    paths = (path for path in sorted(folder.rglob("*")) if path.is_file())
    return {str(path.relative_to(folder)): path.read_bytes() for path in paths}


def run_program(program, case, folder):
    """Returns what the run printed and its status, as texts by name."""
    run = subprocess.run(["PROG", *case.args], executable=program, cwd=folder,
                         env=environment(case), stdin=subprocess.DEVNULL, capture_output=True,
                         timeout=TIME_LIMIT)
    return {"stdout": mask_stdout(run.stdout), "stderr": mask_stderr(run.stderr),
            "status": b"%d\n" % run.returncode}


def changed_files(before, after):
    """The files written, changed or removed, as texts by name."""
    changed = {name: text for name, text in after.items() if before.get(name) != text}
    removed = {name: b"(removed)\n" for name in before.keys() - after.keys()}
    return {"outputs/" + name: text for name, text in (changed | removed).items()}


def actual_results(program, case):
    with tempfile.TemporaryDirectory(prefix="mardle-e2e-") as name:
        folder = pathlib.Path(name)
        case.write_inputs(folder)
        before = files_under(folder)
        printed = run_program(program, case, folder)
        return printed | changed_files(before, files_under(folder))


def expected_results(case):
    printed = {"stdout": case.stdout, "stderr": mask_stderr(case.stderr),
               "status": b"%d\n" % case.status}
    return printed | {"outputs/" + name: text for name, text in case.outputs.items()}


def split_lines(text):
    """Lines with their ends, told apart from a last line without one and from other line ends."""
    return [line.replace("\r", "\\r") if line.endswith("\n") else line + "\n\\ no newline at end\n"
            for line in re.findall(r"[^\n]*\n|[^\n]+", text.decode(errors="backslashreplace"))]


def difference(name, expected, actual):
    """A unified diff, empty when both are the same; None stands for a file that is not there."""
    if expected == actual:
        return ""
    told = [label + ("" if text is not None else " (no such file)")
            for label, text in (("expected", expected), ("actual", actual))]
    return "".join(difflib.unified_diff(split_lines(expected or b""), split_lines(actual or b""),
                                        f"{name} {told[0]}", f"{name} {told[1]}"))


def differences(expected, actual):
    names = sorted(expected.keys() | actual.keys())
    return [difference(name, expected.get(name), actual.get(name))
            or f"{name}: differs in being there\n"
            for name in names if expected.get(name) != actual.get(name)]


def check(program, name):
    """Returns the differences of one case as texts, none when it passes."""
    try:
        case = case_file.read_case(name)
        return differences(expected_results(case), actual_results(program, case))
    except (OSError, subprocess.SubprocessError, case_file.Malformed) as error:
        return [f"{error}\n"]


def select(names):
    present = case_file.case_names()
    missing = [name for name in names if name not in present]
    if missing or not present:
        sys.exit(f"no such case: {' '.join(missing)}" if missing else "no cases")
    return names or present


def main():
    parser = argparse.ArgumentParser(description="Runs the built program on whole cases.")
    parser.add_argument("program", type=pathlib.Path, metavar="PROGRAM")
    parser.add_argument("names", nargs="*", metavar="NAME")
    arguments = parser.parse_args()
    program = arguments.program.resolve()
    if not program.is_file():
        parser.error(f"no such program: {program}")
    names = select(arguments.names)
    failed = 0
    for name in names:
        found = check(program, name)
        failed += bool(found)
        if found:
            print(f"FAILED {name}", *found, sep="\n", flush=True)
    print(f"{len(names) - failed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
