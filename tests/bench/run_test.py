#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""bench/run measures what it says, with a program that is a few lines of shell."""

import argparse
import importlib.machinery
import importlib.util
import pathlib
import sys
import tempfile
import types
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]

# Writes what it was given into the clustering file; {extra} makes it differ from another program.
PROGRAM = """#!/bin/sh
for last; do :; done
echo "$@" {extra} > "m.clustering.$last"
cat m.rclass >> "m.clustering.$last"
for timer in I/O Clustering Reporting; do
  printf '   %s:     %d.250 sec\\n' $timer $$
done
exit {status}
"""


def load():
    sys.dont_write_bytecode = True
    loader = importlib.machinery.SourceFileLoader("bench_run", str(ROOT / "bench" / "run"))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("bench_run", loader))
    loader.exec_module(module)
    module.say = lambda text: None
    return module


bench = load()


class InFolder(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)
        self.matrix = self.write("news.mat", "3 4 5\n1 1\n2 1 3 1\n1 1 4 1\n")
        self.write("news.mat.rclass", "a\nb\na\n")

    def write(self, name, text):
        path = self.folder / name
        path.write_text(text)
        return path

    def program(self, name, extra="", status=84):
        path = self.write(name, PROGRAM.format(extra=extra, status=status))
        path.chmod(0o755)
        return path

    def measure(self, now, before, threads=("",), repeat=2):
        job = bench.job_of(f"news, direct: -direct {self.matrix} 2")
        options = types.SimpleNamespace(rows=[], run=[job], threads=threads, repeat=repeat,
                                        limit=30, only=None, scratch=self.folder)
        return bench.measure(options, now, before)


class CommandLine(InFolder):
    def test_a_run_has_a_name_options_a_matrix_and_clusters(self):
        job = bench.job_of(f"news: -direct '-crfun=1' {self.matrix} 20")
        self.assertEqual((job.name, job.options, job.matrix, job.clusters),
                         ("news", ["-direct", "-crfun=1"], self.matrix.resolve(), "20"))

    def test_what_is_no_run_is_refused(self):
        for wrong in ["news", "news:", f"news: {self.matrix}", f"{self.matrix} 20",
                      f"news: {self.matrix}.missing 20"]:
            with self.assertRaises(argparse.ArgumentTypeError, msg=wrong):
                bench.job_of(wrong)

    def test_sizes_may_be_none(self):
        self.assertEqual(bench.sizes("none"), [])
        self.assertEqual(bench.sizes("300,20"), [20, 300])


class Sizes(InFolder):
    def test_of_sparse_matrices_are_told_by_the_first_line(self):
        self.assertEqual(bench.size_of(self.matrix), (3, 5))

    def test_of_dense_matrices_are_all_cells(self):
        self.assertEqual(bench.size_of(self.write("dense", "3 4\n")), (3, 12))


class Measuring(InFolder):
    def test_programs_that_leave_the_same_agree(self):
        [case] = self.measure(self.program("now"), self.program("before"))
        self.assertEqual((case.rows, case.entries, len(case.now), len(case.before)), (3, 5, 2, 2))
        self.assertEqual(bench.agreement(case), "same")

    def test_another_clustering_file_is_named(self):
        [case] = self.measure(self.program("now"), self.program("before", extra="other"))
        self.assertEqual(bench.agreement(case), "DIFFERS: m.clustering.2")

    def test_classes_beside_the_matrix_are_taken_along(self):
        [case] = self.measure(self.program("now"), None)
        self.write("news.mat.rclass", "c\nc\nc\n")
        [other] = self.measure(self.program("now"), None)
        self.assertNotEqual(case.now[0].left, other.now[0].left)

    def test_every_number_of_threads_is_measured_by_itself(self):
        now = self.program("now", extra="$MOLVA_NUM_THREADS")
        one, two = self.measure(now, None, threads=["1", "2"])
        self.assertEqual((one.threads, two.threads), ("1", "2"))
        self.assertEqual((len(one.now), len(two.now)), (2, 2))
        self.assertEqual(bench.agreement(one), "DIFFERS: m.clustering.2")

    def test_the_least_of_each_figure_counts(self):
        runs = [bench.Run(1, 5, 3, 4, 0.5, 9, 60, {}), bench.Run(2, 4, 3, 5, 0.1, 8, 50, {})]
        self.assertEqual(bench.least(runs)[:7], (1, 4, 3, 4, 0.1, 8, 50))

    def test_waiting_is_told_of_runs_with_one_thread(self):
        ran = bench.Run(0, 0, 0, 2.5, 0.5, 4, 0, {})
        waited = bench.Run(0, 0, 0, 1.5, 0.5, 6, 0, {})
        case = bench.Case(None, 1, 1, "1", [ran], [waited], [])
        both = bench.Case(None, 1, 1, "2", [waited._replace(wall=1)], [waited], [])
        self.assertEqual(bench.waiting([case]), 0.5)
        self.assertEqual(bench.waiting([case, case]), 0.5)
        self.assertAlmostEqual(bench.waiting([both]), 1 - 2 / 6)

    def test_a_run_that_does_not_complete_ends_all(self):
        with self.assertRaises(SystemExit):
            self.measure(self.program("now", status=1), None)


class Scaling(unittest.TestCase):
    def test_the_exponent_is_the_slope_of_the_logarithms(self):
        self.assertAlmostEqual(bench.exponent([(10, 3), (100, 300), (1000, 30000)]), 2)
        self.assertIsNone(bench.exponent([(10, 3)]))


if __name__ == "__main__":
    unittest.main()
