#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the built program and ends it at every call that concerns its files, or lets the call fail.

Usage: killed_runs.py PROGRAM LIBRARY

LIBRARY is fault_at_call. Whatever happens, each result is what stood there before or the whole new
one; only a run that is killed outright may leave a file under a name of its own.
"""

import errno
import itertools
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "testing"))
from scratch_folder import MATRIX, ScratchFolder

PROGRAM, LIBRARY = (os.path.abspath(path) for path in sys.argv[1:3])
TIME_LIMIT = 60  # seconds; only a program that hangs comes near it
COMPLETED = 84
CLUSTERING, CLUSTER_TREE, ROW_TREE = "m.clustering.3", "m.tree.3", "m.tree.8"
# What is asked for, and the results in the order in which they are written.
RUNS = ((["-zscores", "-fulltree", "-writetree"], [ROW_TREE, CLUSTERING]),
        (["-writetree"], [CLUSTERING, CLUSTER_TREE]))
OLD = "an old text, which is longer than any of the results that are to replace it\n" * 20
NOT_OPENED = f"Problems in opening the clustering file: {CLUSTERING}\n"
OWN_NAME = re.compile(r"^\.mardle-[0-9a-f]{16}\.partial$")


class KilledRuns(ScratchFolder):
    def run_in_new_folder(self, words, old, fault=None):
        """A run among old results, or none: the finished run, the files it left, and whether the
        fault was met."""
        shutil.rmtree(self.folder)
        self.folder.mkdir()
        for name, text in {"m": MATRIX, **old}.items():
            self.write(name, text)
        told, tell = os.pipe()
        variables = dict(os.environ)
        if fault:
            variables.update(LD_PRELOAD=LIBRARY, MARDLE_FAULT=fault, MARDLE_FAULT_TOLD=str(tell))
        done = subprocess.run([PROGRAM, "m", "3", *words], cwd=self.folder, env=variables, text=True,
                              capture_output=True, pass_fds=[tell], timeout=TIME_LIMIT, check=False)
        os.close(tell)
        with os.fdopen(told, "rb") as met:
            fault_met = met.read() != b""
        files = {path.name: path.read_text() for path in self.folder.iterdir() if path.name != "m"}
        return done, files, fault_met

    def whole(self, words):
        """The results of a run that nothing disturbs."""
        return self.run_in_new_folder(words, {})[1]

    def each_fault(self, effect):
        """Every run, with and without old results, with a fault at each call until none is left."""
        for words, results in RUNS:
            new = self.whole(words)
            self.assertEqual(sorted(new), sorted(results))
            for old in ({}, dict.fromkeys(results, OLD)):
                for call in itertools.count(1):
                    done, files, met = self.run_in_new_folder(words, old, f"any {call} {effect}")
                    if not met:
                        break
                    yield f"{words} call {call} {effect}", results, old, new, done, files
                self.assertGreater(call, 20)

    def expect_old_or_new(self, case, results, old, new, files):
        """Every result is whole, and those before one that is new are new."""
        states = [files.get(name) for name in results]
        for name, state in zip(results, states):
            self.assertIn(state, (old.get(name), new[name]), f"{case}: {name}")
        is_new = [state == new[name] for name, state in zip(results, states)]
        self.assertEqual(is_new, sorted(is_new, reverse=True), case)

    def test_a_kill_leaves_old_or_new_files(self):
        for case, results, old, new, done, files in self.each_fault(f"signal {signal.SIGKILL}"):
            self.assertEqual(done.returncode, -signal.SIGKILL, case)
            self.expect_old_or_new(case, results, old, new, files)
            others = set(files) - set(results)
            self.assertTrue(all(OWN_NAME.match(name) for name in others), f"{case}: {others}")
            self.assertLessEqual(len(others), 1, case)

    def test_an_interrupt_leaves_old_or_new_files_and_no_other(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            for case, results, old, new, done, files in self.each_fault(f"signal {number}"):
                self.assertEqual(done.returncode, -number, case)
                self.expect_old_or_new(case, results, old, new, files)
                self.assertLessEqual(set(files), set(results), case)

    def test_an_interrupt_that_is_ignored_changes_nothing(self):
        words = RUNS[0][0]
        new = self.whole(words)
        signal.signal(signal.SIGHUP, signal.SIG_IGN)
        try:
            done, files, met = self.run_in_new_folder(words, {}, f"fprintf 3 signal {signal.SIGHUP}")
        finally:
            signal.signal(signal.SIGHUP, signal.SIG_DFL)
        self.assertEqual((met, done.returncode, files), (True, COMPLETED, new))

    def test_any_call_that_fails_leaves_whole_results_and_no_other_file(self):
        for case, results, old, new, done, files in self.each_fault(f"errno {errno.EIO}"):
            self.assertLessEqual(set(files), set(results), case)
            for name in results:
                self.assertIn(files.get(name), (old.get(name), new[name]), f"{case}: {name}")
            if done.returncode == COMPLETED and not done.stderr:
                self.assertEqual(files, new, case)
            else:
                self.assertIn(done.returncode, (0, COMPLETED), case)
                self.assertNotEqual(done.stderr, "", case)

    def expect(self, fault, old, status, error, files):
        done, left, met = self.run_in_new_folder([], old, fault)
        self.assertTrue(met, fault)
        self.assertEqual((done.returncode, done.stderr, left), (status, error, files), fault)

    def test_a_close_that_fails_keeps_the_old_file_and_is_told(self):
        # What is closed before is the matrix, once when it is looked for and once when it is read.
        for old in ({}, {CLUSTERING: OLD}):
            self.expect(f"fclose 3 errno {errno.ENOSPC}", old, COMPLETED,
                        f"Writing {CLUSTERING} failed: No space left on device\n", old)

    def test_a_disk_that_fills_up_keeps_the_old_file_and_is_told(self):
        for old in ({}, {CLUSTERING: OLD}):
            self.expect("fprintf 5 errno 0", old, COMPLETED,
                        f"Writing {CLUSTERING} failed: No space left on device\n", old)

    def test_a_file_that_cannot_be_renamed_over_is_written_in_place(self):
        """As one that is mounted by itself."""
        for old in ({}, {CLUSTERING: OLD}):
            self.expect(f"rename 1 errno {errno.EBUSY}", old, COMPLETED, "", self.whole([]))

    # A file that is there is opened first, and then the one that is to replace it.

    def test_in_a_folder_that_takes_no_new_file_the_old_one_is_written(self):
        for number in (errno.EACCES, errno.EPERM, errno.EROFS, errno.ENAMETOOLONG):
            self.expect(f"open 2 errno {number}", {CLUSTERING: OLD}, COMPLETED, "", self.whole([]))

    def test_a_disk_without_room_for_another_file_keeps_the_old_one(self):
        for number in (errno.ENOSPC, errno.EDQUOT):
            self.expect(f"open 2 errno {number}", {CLUSTERING: OLD}, 0, NOT_OPENED, {CLUSTERING: OLD})

    def test_a_file_that_cannot_be_opened_ends_the_run(self):
        self.expect(f"open 1 errno {errno.EACCES}", {CLUSTERING: OLD}, 0, NOT_OPENED,
                    {CLUSTERING: OLD})
        self.expect(f"open 1 errno {errno.ENOSPC}", {}, 0, NOT_OPENED, {})


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
