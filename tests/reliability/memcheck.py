#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the program under valgrind on whole runs: memcheck.py PROGRAM [NAME...].

A run passes when it is completed and valgrind finds no error: nothing read or written outside its
block, nothing uninitialised used, nothing lost. What is printed is not compared, because valgrind
computes long doubles in 64 bits and other ties may be found. Findings of libplot alone are listed
in libplot.supp, each with its reason. Prints one line per run; ends with status 1 on a finding.
"""

import concurrent.futures
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "e2e"))
from case_file import read_case

ESSAYS = HERE.parent.parent / "examples" / "federalist"
COMPLETED, FOUND = 84, 99
VALGRIND = ["valgrind", "--quiet", f"--error-exitcode={FOUND}", "--leak-check=full",
            "--errors-for-leak-kinds=definite,possible", "--track-origins=yes",
            "--num-callers=20", f"--suppressions={HERE / 'libplot.supp'}"]

# What a run shows: where its inputs are, a folder or an end-to-end case, and its arguments.
RUNS = {
    "sparse": (ESSAYS, "federalist.mat 5"),
    "dense": ("dense-input", "-denseinput m.txt 2"),
    "correlation": ("correlation", "-sim=2 m.txt 2"),
    "direct": ("direct-into-three", "-denseinput -direct m.txt 3"),
    "refine": (ESSAYS, "-refine -crfun=6 -rowmodel=4 -prune=0.8 federalist.mat 4"),
    "zscores": (ESSAYS, "-zscores -rowmodel=2 federalist.mat 3"),
    "features": (ESSAYS, "-showfeatures -nfeatures=6 federalist.mat 4"),
    "tree": (ESSAYS, "-showtree -labeltree -crfun=3 -writetree federalist.mat 6"),
    "complete-tree": (ESSAYS, "-fulltree -showtree=7 -writetree -dbglvl=7 federalist.mat 4"),
    "plots": (ESSAYS, "-fulltree -clustercolumns -plotmatrix=m.ps -plotclusters=c.ps "
                      "federalist.mat 4"),
    "plots-svg": (ESSAYS, "-clustercolumns -plotformat=svg -plotmatrix=m.svg -plotclusters=c.svg "
                          "federalist.mat 4"),
    "dense-plots-gif": ("dense-input",
                        "-denseinput -fulltree -zeroblack -plotformat=gif -plotmatrix=m.gif "
                        "-plotclusters=c.gif m.txt 2"),
}


def write_inputs(inputs, folder):
    if isinstance(inputs, pathlib.Path):
        shutil.copytree(inputs, folder)
    else:
        folder.mkdir()
        read_case(inputs).write_inputs(folder)


def findings(program, inputs, arguments):
    """What valgrind or the run told, empty when there is nothing to tell."""
    with tempfile.TemporaryDirectory(prefix="mardle-memcheck-") as name:
        folder = pathlib.Path(name)
        log = folder / "valgrind.log"
        write_inputs(inputs, folder / "run")
        run = subprocess.run([*VALGRIND, f"--log-file={log}", program, *arguments.split()],
                             cwd=folder / "run", stdin=subprocess.DEVNULL, capture_output=True)
        told = log.read_text()
        if run.returncode == COMPLETED:
            return told
        return told or f"status {run.returncode}: {run.stderr.decode(errors='replace')}"


def main():
    program = pathlib.Path(sys.argv[1]).resolve()
    names = sys.argv[2:] or list(RUNS)
    found = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as runs:
        texts = runs.map(lambda name: findings(program, *RUNS[name]), names)
        for name, text in zip(names, texts):
            print(f"{name}: {'findings' if text else 'clean'}", flush=True)
            if text:
                found += 1
                print(text)
    print(f"{found} runs with findings.")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
