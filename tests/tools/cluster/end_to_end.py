#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Whole runs of mardle-cluster, compared with what mardle leaves.

Usage: end_to_end.py MARDLE MARDLE-RUN MARDLE-CLUSTER
"""

import gzip
import hashlib
import json
import os
import pathlib
import random
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "testing"))
from scratch_folder import ScratchFolder

DATA = pathlib.Path(__file__).resolve().parents[1] / "data"
MARDLE, RUN, CLUSTER = (os.path.abspath(path) for path in sys.argv[1:4])


class Clustering(ScratchFolder):
    def cluster(self, *arguments, **environment):
        done = self.call(CLUSTER, *arguments, **environment)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return done.stdout.splitlines()

    def refused(self, status, *arguments):
        done = self.call(CLUSTER, *arguments)
        self.assertEqual((done.returncode, done.stdout), (status, ""), done.stderr)
        return done.stderr

    def read(self, name):
        return (self.folder / name).read_bytes()

    def many_lines(self, rows=3000):
        """Lines of words that take a while to cluster."""
        dice = random.Random(1)
        words = [f"w{''.join(dice.choices('abcdefgh', k=4))}" for _ in range(3000)]
        text = "".join(" ".join(dice.choices(words, k=40)) + "\n" for _ in range(rows))
        (self.folder / "many.txt").write_text(text)

    def test_a_folder_of_texts_leaves_everything_in_one_folder(self):
        said = self.cluster("--folder-classes", DATA / "texts", 3)
        self.assertEqual(self.names("texts-3"),
                         ["texts.clustering", "texts.clusters.tree", "texts.html", "texts.mat",
                          "texts.mat.clabel", "texts.mat.rclass", "texts.mat.rlabel",
                          "texts.run.json", "texts.tree"])
        self.assertEqual(self.names(), ["texts-3"])
        self.assertTrue(said[0].startswith("texts-3/texts.mat: 10 rows, "), said)
        self.assertEqual(said[1], "3 clusters of 3 to 4 rows")
        self.assertEqual(said[-1], "Results: texts-3/, begin with texts-3/texts.html")
        self.assertIn(b"<html", self.read("texts-3/texts.html"))

    def test_clustering_and_trees_are_those_of_mardle(self):
        for options in ([], ["-crfun=3", "-seed=9"], ["-direct", "-rowmodel=3"],
                        ["-refine", "-zscores"]):
            self.cluster("--force", *options, DATA / "texts", 3)
            made = "texts-3/texts"
            self.call(MARDLE, *options, "-output=c", "-fulltree", "-writetree=t", f"{made}.mat", 3)
            self.call(MARDLE, *options, "-nooutput", "-writetree=ct", f"{made}.mat", 3)
            for name, ending in (("c", "clustering"), ("t", "tree"), ("ct", "clusters.tree")):
                self.assertEqual(self.read(name), self.read(f"{made}.{ending}"), (options, name))

    def test_the_command_that_is_printed_works_as_typed(self):
        shutil.copytree(DATA / "texts", self.folder / "my texts")
        said = self.cluster("-crfun=1", "my texts", 3)
        command = shlex.split(said[-2].removeprefix("Report: "))
        self.assertEqual(os.path.basename(command[0]), "mardle-run")
        self.assertEqual(command[-2:], ["my texts-3/my texts.mat", "3"])
        report = self.call(*command)
        self.assertEqual(report.returncode, 0, report.stderr)
        self.assertIn("CRfun=I1", report.stdout)
        self.assertIn("Descriptive:", report.stdout)
        self.assertEqual(self.names(), ["my texts", "my texts-3"])

    def test_the_record_tells_of_the_run(self):
        self.cluster("--folder-classes", "-seed=5", DATA / "texts", 3, MOLVA_NUM_THREADS="2")
        record = json.loads(self.read("texts-3/texts.run.json"))
        self.assertEqual([record[key] for key in ("format", "program", "options", "clusters", "seed",
                                                  "threads", "import")],
                         [1, "mardle", ["-seed=5"], 3, 5, 2, ["--folder-classes"]])
        self.assertEqual([file["role"] for file in record["files"]],
                         ["source", "matrix", "row-labels", "column-labels", "row-classes",
                          "clustering", "tree", "cluster-tree"])
        source, *results = record["files"]
        for file in results:
            contents = self.read("texts-3/" + file["path"])
            self.assertEqual((file["size"], file["sha256"]),
                             (len(contents), hashlib.sha256(contents).hexdigest()), file)
        texts = DATA / "texts"
        self.assertEqual((self.folder / "texts-3" / source["path"]).resolve(), texts)
        files = sorted(texts.rglob("*.txt"))
        lines = "".join(f"{hashlib.sha256(file.read_bytes()).hexdigest()}  {file.relative_to(texts)}\n"
                        for file in files)
        self.assertEqual((source["count"], source["size"], source["sha256"]),
                         (len(files), sum(file.stat().st_size for file in files),
                          hashlib.sha256(lines.encode()).hexdigest()))

    def test_the_same_run_leaves_the_same_bytes(self):
        for output in ("a", "b"):
            self.cluster("--output", output, DATA / "texts", 3)
        self.assertEqual(self.names("a"), self.names("b"))
        for name in self.names("a"):
            self.assertEqual(self.read(f"a/{name}"), self.read(f"b/{name}"), name)

    def test_a_matrix_stays_where_it_is(self):
        self.cluster("--output", "first", DATA / "texts", 3)
        shutil.copy(self.folder / "first/texts.mat", self.folder / "m.mat")
        shutil.copy(self.folder / "first/texts.mat.rlabel", self.folder / "m.mat.rlabel")
        said = self.cluster("m.mat", 3)
        self.assertEqual(self.names("m-3"), ["m.clustering", "m.clusters.tree", "m.html",
                                             "m.run.json", "m.tree"])
        self.assertEqual(self.read("m-3/m.clustering"), self.read("first/texts.clustering"))
        self.assertTrue(said[-2].endswith("mardle-run -nooutput -showfeatures m.mat 3"), said)
        record = json.loads(self.read("m-3/m.run.json"))
        self.assertNotIn("import", record)
        self.assertEqual([file["path"] for file in record["files"][:2]],
                         ["../m.mat", "../m.mat.rlabel"])
        self.assertIn("--digits has no use", self.refused(2, "--digits", "--force", "m.mat", 3))

    def test_inputs_of_other_kinds(self):
        shutil.copy(DATA / "tfidf.mtx", self.folder / "w.mtx")
        said = self.cluster("w.mtx", 2)
        self.assertIn(" -colmodel=1 ", said[-2])
        (self.folder / "t.csv").write_text("a,b\n9,1\n8,1\n1,9\n1,8\n")
        self.assertIn(" -denseinput ", self.cluster("t.csv", 2)[-2])
        (self.folder / "l.txt.gz").write_bytes(gzip.compress(b"sea wind\nsea sail\nred wine\nred grape\n"))
        self.cluster("--output", "lines", "--min-count", "1", "l.txt.gz", 2)
        self.assertIn("l.html", self.names("lines"))

    def test_the_page_knows_what_was_imported(self):
        """Words with digits, and a table whose columns are called by words."""
        (self.folder / "l.txt").write_text("mp3 ogg7\nmp3 ogg7\nav1 vp9\nav1 vp9\n")
        self.cluster("--digits", "l.txt", 2)
        self.assertIn(b"<p>4 documents in 2 clusters by 4 words</p>", self.read("l-2/l.html"))
        (self.folder / "t.csv").write_text("sea,land\n9,1\n8,1\n1,9\n1,8\n")
        self.cluster("--sparse", "t.csv", 2)
        self.assertIn(b"<p>4 rows in 2 clusters by 2 columns</p>", self.read("t-2/t.html"))

    def test_one_cluster_and_criteria_without_trees(self):
        self.assertIn("1 cluster of 10 rows", self.cluster(DATA / "texts", 1))
        self.assertNotIn("texts.clusters.tree", self.names("texts-1"))
        self.assertIn("No trees: the criteria 8 and 9 build none; that on the page is built under I2",
                      self.cluster("-crfun=8", DATA / "texts", 2))
        self.assertNotIn("texts.tree", self.names("texts-2"))

    def test_nothing_is_left_of_a_run_that_fails(self):
        self.assertEqual(self.refused(1, DATA / "texts", 11).strip(),
                         "mardle-cluster: Cannot make 11 clusters out of 10 rows with entries!")
        (self.folder / "e.txt").write_text("the\n")
        self.assertEqual(self.refused(1, "e.txt", 2),
                         "mardle-cluster: e-2/e.mat: the texts have no words, or stop words alone, so "
                         "there are no columns\n")
        self.assertEqual(self.names(), ["e.txt"])

    def test_a_result_that_cannot_be_written_is_a_failure(self):
        """The matrix is there already, and no file may grow beyond half of the tree."""
        self.many_lines(300)
        self.cluster("--output", "whole", "many.txt", 2)
        shutil.copy(self.folder / "whole/many.mat", self.folder / "m.mat")
        limit = (self.folder / "whole/many.tree").stat().st_size // 2

        def limited():
            resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))
        done = subprocess.run([CLUSTER, "m.mat", "2"], cwd=self.folder, text=True,
                              capture_output=True, check=False, preexec_fn=limited)
        self.assertEqual((done.returncode, done.stdout), (1, ""), done.stderr)
        self.assertIn("m.tree", done.stderr)
        self.assertEqual(self.names(), ["m.mat", "many.txt", "whole"])

    def test_results_are_replaced_on_request_alone(self):
        self.cluster(DATA / "texts", 3)
        (self.folder / "texts-3/mine").write_text("mine")
        self.assertIn("texts-3: exists already; --force", self.refused(1, DATA / "texts", 3))
        self.cluster("--force", "--folder-classes", DATA / "texts", 3)
        self.cluster("--force", DATA / "texts", 3)
        self.assertEqual(self.read("texts-3/mine"), b"mine")
        self.assertNotIn("texts.mat.rclass", self.names("texts-3"))
        self.assertEqual(self.names(), ["texts-3"])

    def test_what_an_earlier_run_left_is_no_text_of_the_next(self):
        texts = self.folder / "my"
        shutil.copytree(DATA / "texts", texts)
        first = subprocess.run([CLUSTER, ".", "3"], cwd=texts, text=True, capture_output=True,
                               check=True).stdout.splitlines()
        again = subprocess.run([CLUSTER, ".", "4"], cwd=texts, text=True, capture_output=True,
                               check=True).stdout.splitlines()
        self.assertEqual(first[0].replace("my-3", "my-4"), again[0])
        self.assertEqual(again[1], "8 files are results of an earlier run and left out, the first: "
                                   "my-3/my.mat")
        self.assertEqual(self.read("my/my-3/my.mat"), self.read("my/my-4/my.mat"))

    def test_a_wrong_number_of_threads_is_an_error(self):
        done = self.call(CLUSTER, DATA / "texts", 3, MOLVA_NUM_THREADS="many")
        self.assertEqual(done.returncode, 1)
        self.assertIn("MOLVA_NUM_THREADS", done.stderr)
        self.assertEqual(self.names(), [])

    def test_an_interrupt_leaves_nothing_behind(self):
        self.many_lines()
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with subprocess.Popen([CLUSTER, "-ntrials=100000", "many.txt", "20"], cwd=self.folder,
                                  stdout=subprocess.DEVNULL,
                                  preexec_fn=lambda: signal.signal(number, signal.SIG_DFL)) as run:
                while not list(self.folder.glob(".mardle-*/many.mat")):
                    time.sleep(0.001)
                run.send_signal(number)
            self.assertEqual(run.returncode, -number)
            self.assertEqual(self.names(), ["many.txt"])

    def test_a_terminal_is_told_how_far_the_work_has_come(self):
        self.many_lines()
        run, shown = self.on_terminal(CLUSTER, "-ntrials=40", "many.txt", "30",
                                      stdout=subprocess.DEVNULL)
        self.assertEqual(run.returncode, 0, shown)
        self.assertRegex(shown, rb"reading")
        self.assertRegex(shown, rb"clustering: bisection \d+ of 29, \d+ s")
        self.assertRegex(shown, rb"tree over the rows")
        self.assertTrue(shown.endswith(b"\r\x1b[K"), shown[-40:])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
