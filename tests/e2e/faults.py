#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the built program while the machine around it fails.

Usage: faults.py PROGRAM

Full disks, results that cannot be opened, closed streams, readers that are gone, limits on files,
stack and memory. Every run must come to its own end, tell what failed on standard error, and leave
whole what it could write: files and report are compared with those of a run that nothing disturbs.
"""

import argparse
import collections
import errno
import os
import pathlib
import re
import resource
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "testing"))
from scratch_folder import MATRIX

TIME_LIMIT = 60  # seconds; only a program that hangs comes near it
FORMATS = ["ai", "cgm", "fig", "gif", "hpgl", "meta", "pcl", "png", "pnm", "ps", "regis", "svg",
           "tek"]
EVERYTHING = ["-fulltree", "-writetree", "-showtree", "-showfeatures", "-plotmatrix=plot",
              "-plotformat=svg"]
MEMORY_STEPS = 80
COMPLETED = 84
STOPPED = 0


def large_matrix():
    """A thousand rows of 12 entries: some megabytes of working memory."""
    nrows, ncols, entries = 1000, 4000, 12
    rows = [" ".join(f"{(i % 3 * 1300 + (i * 37 + j * 211) % 1300) + 1} {j + 1}"
                     for j in range(entries)) for i in range(nrows)]
    return "\n".join([f"{nrows} {ncols} {nrows * entries}", *rows]) + "\n"


PROCESSOR_TIME = re.compile(rb"-?\d+\.\d{3} sec$", re.M)
# libplot tells of fonts that a format lacks, and of streams that break.
LIBPLOT = re.compile(r"^libplot.*\n|^\n", re.M)


class Run:
    """A finished run: its status, its texts and the files it left, by name."""

    def __init__(self, program, matrix, words, stdout=subprocess.PIPE, limits=(), closed=()):
        def prepare():
            for limit, value in limits:
                resource.setrlimit(limit, (value, value))
            for stream in closed:
                os.close(stream)

        with tempfile.TemporaryDirectory(prefix="mardle-faults-") as name:
            folder = pathlib.Path(name)
            (folder / "m").write_text(matrix)
            (folder / "folder").mkdir()
            # libplot leaks some hundred bytes of every plot; ours are looked for in process.
            variables = dict(os.environ, ASAN_OPTIONS="detect_leaks=0")
            done = subprocess.run([program, "m", "3", *words], cwd=folder, env=variables,
                                  preexec_fn=prepare, stdin=subprocess.DEVNULL, stdout=stdout,
                                  stderr=subprocess.PIPE, timeout=TIME_LIMIT, check=False)
            self.files = {path.name: path.read_bytes() for path in folder.iterdir()
                          if path.is_file() and path.name != "m"}
        self.status = done.returncode
        self.report = PROCESSOR_TIME.sub(b"", done.stdout or b"")
        self.errors = LIBPLOT.sub("", done.stderr.decode())
        self.all_errors = done.stderr.decode()


class Checks:
    """Counts runs and tells those that went another way than they should."""

    def __init__(self, program):
        self.program = program
        self.matrix = MATRIX
        self.runs = 0
        self.failed = 0
        self.endings = collections.Counter()  # of the runs with little memory
        self.whole = {}

    def run(self, words, **faults):
        self.runs += 1
        return Run(self.program, self.matrix, words, **faults)

    def undisturbed(self, words):
        """The same run where nothing fails."""
        if tuple(words) not in self.whole:
            self.whole[tuple(words)] = self.run(words)
        return self.whole[tuple(words)]

    def expect(self, name, **claims):
        """Each claim is a pair of what is and what should be."""
        wrong = {what: pair for what, pair in claims.items() if pair[0] != pair[1]}
        if wrong:
            self.failed += 1
            print(f"FAILED {name}")
            for what, (actual, expected) in wrong.items():
                print(f"  {what}: {actual!r}\n  not: {expected!r}")


def notice(name, error):
    return f"Writing {name} failed: {os.strerror(error)}\n"


def full_disk(checks):
    """A result or the report goes to a full disk; all the rest is as ever."""
    results = [["-output=/dev/full"], ["-zscores", "-output=/dev/full"],
               ["-writetree=/dev/full"], ["-fulltree", "-writetree=/dev/full"]]
    results += [[f"-{plot}=/dev/full", f"-plotformat={form}"]
                for plot in ("plotmatrix", "plotclusters") for form in FORMATS]
    for words in results:
        run = checks.run(words)
        whole = checks.undisturbed([word.replace("/dev/full", "result") for word in words])
        others = {name: text for name, text in whole.files.items() if name != "result"}
        checks.expect(f"full disk {words}", status=(run.status, COMPLETED),
                      errors=(run.errors, notice("/dev/full", errno.ENOSPC)),
                      files=(run.files, others), report=(run.report, whole.report))
    with open("/dev/full", "wb") as full:
        expect_unheard(checks, "full disk under the report", errno.ENOSPC, stdout=full)


def expect_unheard(checks, name, error, **faults):
    """The report is lost, the files are not."""
    for words in ([], ["-dbglvl=7"], EVERYTHING, [*EVERYTHING, "-dbglvl=7", "-clustercolumns"]):
        run = checks.run(words, **faults)
        checks.expect(f"{name} {words}", status=(run.status, COMPLETED),
                      errors=(run.errors, notice("standard output", error)),
                      files=(run.files, checks.undisturbed(words).files))


def unheard(checks):
    """Nobody reads the report, or there is no such stream."""
    read_end, write_end = os.pipe()
    os.close(read_end)
    expect_unheard(checks, "no reader", errno.EPIPE, stdout=write_end)
    os.close(write_end)
    expect_unheard(checks, "closed standard output", errno.EBADF, closed=[1])
    # What libplot says of fonts that "fig" lacks belongs to no file.
    for words in (EVERYTHING, ["-plotclusters=plot", "-plotformat=fig"]):
        for closed in ([0], [2], [0, 2], [1, 2], [0, 1, 2]):
            run = checks.run(words, closed=closed)
            checks.expect(f"closed streams {closed} {words}", status=(run.status, COMPLETED),
                          files=(run.files, checks.undisturbed(words).files))


def unopened(checks):
    """Results that cannot be opened end the run; what came before stays whole."""
    clustering = checks.undisturbed([]).files
    names = {"missing/result": errno.ENOENT, "m/result": errno.ENOTDIR, "folder": errno.EISDIR,
             "x" * 300: errno.ENAMETOOLONG}
    for name, error in names.items():
        plot = f"fpout: {os.strerror(error)}\nFailed on RVfopen\n\n"
        endings = {
            f"-output={name}": (f"Problems in opening the clustering file: {name}\n", {}),
            f"-writetree={name}": (f"Problems in creating the tree file: {name}\n", clustering),
            f"-plotmatrix={name}": (f"PlotFullTree: {plot}", clustering),
            f"-plotclusters={name}": (f"PlotTreeClusterMatrix: {plot}", clustering)}
        for word, (errors, files) in endings.items():
            run = checks.run([word])
            checks.expect(f"unopened {word}", status=(run.status, STOPPED),
                          errors=(run.all_errors, errors), files=(run.files, files))


def limited_files(checks):
    """Files may not grow beyond a size; each that would is told, each that fits is whole, and of the
    others only the picture is left, which is drawn in place."""
    whole = checks.undisturbed(EVERYTHING)
    for size in (0, 1, 15, 16, 100, 1000, 5000):
        run = checks.run(EVERYTHING, limits=[(resource.RLIMIT_FSIZE, size)])
        told = {line for line in run.errors.splitlines()}
        cut = {notice(name, errno.EFBIG).rstrip("\n") for name, text in whole.files.items()
               if len(text) > size}
        fitting = {name: text for name, text in whole.files.items() if len(text) <= size}
        left = {name: text for name, text in run.files.items() if name != "plot" or name in fitting}
        checks.expect(f"files of {size} bytes", status=(run.status, COMPLETED), errors=(told, cut),
                      report=(run.report, whole.report),
                      files=(left, fitting))


def limited_stack(checks):
    for size in (128, 256, 1024):
        run = checks.run(EVERYTHING, limits=[(resource.RLIMIT_STACK, size * 1024)])
        whole = checks.undisturbed(EVERYTHING)
        checks.expect(f"stack of {size} KiB", status=(run.status, COMPLETED),
                      report=(run.report, whole.report), files=(run.files, whole.files))


def least_memory(checks, words, reaches, low, high):
    """The least address space, to two pages, under which a run gets as far as it should."""
    while high - low > 8192:
        middle = (low + high) // 2
        run = checks.run(words, limits=[(resource.RLIMIT_AS, middle)])
        low, high = (low, middle) if reaches(run) else (middle, high)
    return high


def limited_memory(checks):
    """From barely enough to start to enough for all, step by step."""
    checks.matrix = large_matrix()
    checks.whole = {}
    words = [*EVERYTHING, "-noreorder"]  # else one block outgrows all others
    whole = checks.undisturbed(words)
    started = least_memory(checks, ["-help"], lambda run: run.report != b"", 1 << 20, 1 << 30)
    enough = least_memory(checks, words, lambda run: run.status == COMPLETED, started, 1 << 30)
    for step in range(MEMORY_STEPS + 1):
        size = started + (enough - started) * step // MEMORY_STEPS
        run = checks.run(words, limits=[(resource.RLIMIT_AS, size)])
        told = {COMPLETED: run.errors == "", STOPPED: run.errors != "",
                # libplot asks for memory of its own, and ends the process itself.
                1: "libplot: out of memory" in run.all_errors}.get(run.status, False)
        partial = [name for name, text in run.files.items()
                   if name != "plot" and text != whole.files[name]]
        checks.expect(f"{size} bytes of memory: {run.status} {run.all_errors}",
                      told=(told, True), partial=(partial, []))
        checks.endings[run.status] += 1


def main():
    parser = argparse.ArgumentParser(description="Runs the program while the machine fails.")
    parser.add_argument("program", type=pathlib.Path, metavar="PROGRAM")
    program = parser.parse_args().program.resolve()
    if not program.is_file():
        parser.error(f"no such program: {program}")
    checks = Checks(program)
    for fault in (full_disk, unheard, unopened, limited_files):
        fault(checks)
    # Sanitizers take a large part of the address space, and of the stack.
    if b"__asan_init" not in program.read_bytes():
        limited_stack(checks)
        limited_memory(checks)
        print("endings under little memory:", dict(checks.endings))
    print(f"{checks.runs} runs, {checks.failed} failed")
    return 1 if checks.failed else 0


if __name__ == "__main__":
    sys.exit(main())
