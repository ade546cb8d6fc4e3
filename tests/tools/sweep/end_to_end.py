#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Whole sweeps: what is printed and written, and what is left when one fails.

Usage: end_to_end.py MARDLE-SWEEP
"""

import os
import pathlib
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
import xml.etree.ElementTree

SWEEP = os.path.abspath(sys.argv[1])
# Four rows about each of three things, with a word that they share.
MATRIX = "12 4 24\n" + "".join(
    f"{thing} {count} 4 1\n" for thing in (1, 2, 3) for count in (1, 2, 3, 4))


class Sweeping(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.write("m", MATRIX)

    def write(self, name, text):
        (self.folder / name).write_text(text)

    def call(self, *arguments, **environment):
        return subprocess.run([SWEEP, *map(str, arguments)], cwd=self.folder, text=True,
                              capture_output=True, env={**os.environ, **environment}, check=False)

    def refused(self, status, *arguments):
        before = self.files()
        done = self.call(*arguments)
        self.assertEqual((done.returncode, done.stdout), (status, ""), done.stderr)
        self.assertEqual(self.files(), before)
        self.assertRegex(done.stderr, r"^mardle-sweep: ")
        return done.stderr

    def files(self):
        return {path.name: path.read_bytes() for path in self.folder.iterdir()}

    def test_a_sweep_is_printed_written_and_drawn(self):
        done = self.call("-colmodel=1", "m", 2, 6, "--csv", "t.csv", "--picture", "p.svg")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertIn("\nRecommended: 3 clusters.\nI2 has a knee at 3:", done.stdout)
        self.assertEqual(set(self.files()), {"m", "t.csv", "p.svg"})
        lines = (self.folder / "t.csv").read_text().splitlines()
        self.assertEqual([line.split(",")[0] for line in lines], ["n_clusters", *"23456"])
        self.assertEqual(lines[2].split(",")[5:], ["4", "4", "4"])
        picture = xml.etree.ElementTree.parse(self.folder / "p.svg")
        self.assertEqual(picture.getroot().tag, "{http://www.w3.org/2000/svg}svg")

    def test_threads_change_nothing(self):
        expected = self.call("m", 2, 6).stdout
        self.assertTrue(expected)
        for threads in ("1", "2", "0"):
            self.assertEqual(self.call("m", 2, 6, MOLVA_NUM_THREADS=threads).stdout, expected)

    def test_classes_are_those_beside_the_matrix_or_named(self):
        self.write("m.rclass", "a\na\na\na\n" * 2 + "b\nb\nb\nb\n")
        self.write("other", "a\na\na\na\nb\nb\nb\nb\nc\nc\nc\nc\n")
        row = self.call("-colmodel=1", "m", 3, 3).stdout.splitlines()[1].split()
        self.assertEqual(row[-2], "1.000")
        row = self.call("-colmodel=1", "-rclassfile=other", "m", 3, 3).stdout.splitlines()[1].split()
        self.assertEqual(row[-2:], ["1.000", "1.000"])

    def test_what_is_wrong_is_told_before_anything_is_written(self):
        self.write("t.csv", "older")
        self.write("short", "12 4 24\n1 1\n")
        self.assertIn("TO is a whole number", self.refused(2, "m", 2, "ten", "--csv", "t.csv"))
        self.assertIn("no option of mardle", self.refused(2, "-crfn=1", "m", 2, 4))
        self.assertIn("No such file", self.refused(1, "nowhere", 2, 4))
        self.assertIn("has 12 rows, and 13 clusters are asked for", self.refused(1, "m", 2, 13))
        self.refused(1, "short", 2, 4, "--csv", "t.csv")
        self.refused(1, "m", 2, 4, "--csv", "t.csv", "--picture", "no/such/folder")

    def test_no_input_is_written_over(self):
        self.write("m.rclass", "a\n" * 12)
        os.link(self.folder / "m", self.folder / "link")
        for output in ("m", "./m", "link", "m.rclass"):
            self.refused(1, "m", 2, 4, "--picture", output)
        self.assertIn("two names", self.refused(2, "m", 2, 4, "--picture", "x", "--csv", "x"))

    def test_without_a_reader_no_file_appears(self):
        with open("/dev/full", "w", encoding="ascii") as full:
            done = subprocess.run([SWEEP, "m", "2", "4", "--csv", "t.csv"], cwd=self.folder,
                                  stdout=full, stderr=subprocess.PIPE, text=True, check=False)
        self.assertEqual(done.returncode, 1)
        self.assertEqual(set(self.files()), {"m"})

    def test_an_interrupt_leaves_nothing(self):
        dice = random.Random(1)
        rows = "".join(" ".join(f"{column} 1" for column in sorted(dice.sample(range(1, 2001), 60)))
                       + "\n" for _ in range(3000))
        self.write("large", f"3000 2000 {60 * 3000}\n{rows}")
        before = self.files()
        running = subprocess.Popen([SWEEP, "large", "20", "200", "--csv", "t.csv"], cwd=self.folder,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                   preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL))
        time.sleep(1)
        running.send_signal(signal.SIGINT)
        running.communicate()
        self.assertEqual(running.returncode, -signal.SIGINT)
        self.assertEqual(self.files(), before)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
