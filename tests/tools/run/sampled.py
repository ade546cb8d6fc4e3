#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The sampled form of mardle-run: a matrix file clustered in passes over it.

Usage: sampled.py MARDLE MARDLE-RUN MARDLE-EXPORT [limit]

With `limit` a file four times larger than the address space is clustered, too.
"""

import hashlib
import json
import os
import pathlib
import random
import re
import resource
import shlex
import shutil
import subprocess
import sys
import tempfile
import unittest

MARDLE, RUN, EXPORT = (os.path.abspath(path) for path in sys.argv[1:4])
WITH_LIMIT = sys.argv[4:5] == ["limit"]
MEGABYTE = 1 << 20
TOPICS = 4


def topic_rows(count, seed, width=20, drawn=9):
    """Lines of a matrix, each about one of four topics of so many columns, in turn."""
    draw = random.Random(seed)
    lines = []
    for row in range(count):
        own = row % TOPICS * width
        columns = {own + draw.randrange(width) for _ in range(drawn)}
        columns.add(draw.randrange(TOPICS * width))
        lines.append(" ".join(f"{column + 1} {draw.randint(1, 5)}" for column in sorted(columns)))
    return lines


class Files(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)

    def write(self, lines, name="m"):
        entries = sum(len(line.split()) // 2 for line in lines)
        (self.folder / name).write_text("\n".join([f"{len(lines)} 80 {entries}", *lines]) + "\n")

    def run_tool(self, *arguments, address_space=None, **environment):
        def prepare():
            if address_space:
                resource.setrlimit(resource.RLIMIT_AS, (address_space, address_space))

        return subprocess.run([RUN, *arguments], cwd=self.folder, text=True, capture_output=True,
                              env={**os.environ, "MARDLE": MARDLE, **environment}, check=False,
                              preexec_fn=prepare)

    def clusters(self, name="m.clustering.4"):
        return (self.folder / name).read_text().split()

    def expect_topics(self, labels):
        """Every topic is a cluster."""
        self.assertEqual(len({(row % TOPICS, label) for row, label in enumerate(labels)}), TOPICS)


class SampledRuns(Files):
    def refuse(self, words, *arguments, status=2):
        done = self.run_tool(*arguments)
        self.assertEqual(done.returncode, status, done.stderr)
        self.assertIn(words, done.stderr)

    def test_rows_are_placed_and_the_report_says_how(self):
        self.write(topic_rows(2000, 1))
        done = self.run_tool("--sample=200", "m", "4")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.expect_topics(self.clusters())
        self.assertRegex(done.stdout, r"^Sampled form: [12]\d\d rows clustered directly, all rows "
                                      r"placed in \d+ of at most 12 passes\n")
        self.assertEqual(re.findall(r"^  \d +(\d+) ", done.stdout, re.M), ["500"] * 4)
        self.assertIn("clustering a sample of", done.stderr)

    def test_labels_are_the_same_for_every_number_of_threads(self):
        self.write(topic_rows(3000, 2))
        for criterion in range(1, 10):
            found = set()
            for threads in ("1", "3"):
                name = f"c{threads}"
                done = self.run_tool("--sample=150", f"-crfun={criterion}", f"-output={name}", "m",
                                     "5", MOLVA_NUM_THREADS=threads)
                self.assertEqual(done.returncode, 0, done.stderr)
                found.add(tuple(self.clusters(name)))
            self.assertEqual(len(found), 1, criterion)

    def test_a_sample_of_all_rows_begins_with_the_direct_clustering(self):
        self.write(topic_rows(300, 3))
        done = self.run_tool("--sample", "--passes=1", "m", "4")
        self.assertEqual(done.returncode, 0, done.stderr)
        sampled = self.clusters()
        self.assertEqual(self.run_tool("-direct", "m", "4").returncode, 0)
        self.assertEqual(sampled, self.clusters())

    def test_dense_rows_and_correlation(self):
        lines = [" ".join(str(9 * (row % 2 == column // 2) + row % 5) for column in range(4))
                 for row in range(60)]
        (self.folder / "m").write_text("60 4\n" + "\n".join(lines) + "\n")
        for similarity in "12":
            done = self.run_tool("--sample=20", "-denseinput", "-colmodel=1", f"-sim={similarity}",
                                 "m", "2")
            self.assertEqual(done.returncode, 0, done.stderr)
            labels = self.clusters("m.clustering.2")
            self.assertEqual(len(set(labels[0::2])), 1)
            self.assertEqual(len(set(labels[0::2] + labels[1::2])), 2)

    def test_rows_of_which_nothing_is_left_have_no_cluster(self):
        self.write([*topic_rows(200, 4), ""])
        done = self.run_tool("--sample=100", "m", "4")
        self.assertEqual(self.clusters()[-1], "-1")
        self.assertIn("\n1 rows in no cluster\n", done.stdout)

    def test_a_record_tells_of_the_run(self):
        self.write(topic_rows(2000, 6))
        (self.folder / "d").mkdir()
        done = self.run_tool("--sample=200", "-seed", "5", "-output", "d/c.clustering", "-crfun=1", "m",
                             "4", MOLVA_NUM_THREADS="2")
        self.assertEqual(done.returncode, 0, done.stderr)
        rows, passes = re.search(r": (\d+) rows clustered directly, all rows placed in (\d+) of",
                                 done.stdout).groups()
        record = json.loads((self.folder / "d/c.run.json").read_text())
        self.assertEqual([record[key] for key in ("format", "options", "clusters", "seed", "threads",
                                                  "sampled")],
                         [1, ["--sample=200", "--passes=12", "-seed=5", "-crfun=1"], 4, 5, 2,
                          {"rows": int(rows), "passes": int(passes)}])
        self.assertEqual([(file["role"], file["path"]) for file in record["files"]],
                         [("matrix", "../m"), ("clustering", "c.clustering")])
        for file in record["files"]:
            contents = (self.folder / "d" / file["path"]).read_bytes()
            self.assertEqual((file["size"], file["sha256"]),
                             (len(contents), hashlib.sha256(contents).hexdigest()))

    def test_a_page_tells_of_the_sampled_form_and_how_to_repeat_it(self):
        self.write(topic_rows(2000, 6))
        self.assertEqual(self.run_tool("--sample=200", "-sim=1", "m", "4").returncode, 0)
        labels = self.clusters()
        done = subprocess.run([EXPORT, "html", "--matrix", "m", "--clustering", "m.clustering.4"],
                              cwd=self.folder, text=True, capture_output=True, check=True)
        self.assertEqual(done.stderr, "")
        self.assertRegex(done.stdout, r"Sampled form: [12]\d\d rows clustered directly, all placed in "
                                      r"\d+ pass(es)?\.")
        program, *command = shlex.split(re.search("<code>(.*)</code>", done.stdout)[1])
        self.assertEqual(program, "mardle-run")
        self.assertEqual(self.run_tool("-output=again", *command).returncode, 0)
        self.assertEqual(self.clusters("again"), labels)

    def test_what_is_not_read_back_has_no_record(self):
        self.write(topic_rows(50, 5))
        for option in ("-nooutput", "-output=/dev/stdout"):
            done = self.run_tool("--sample", option, "m", "4")
            self.assertEqual(done.returncode, 0, done.stderr)
            self.assertEqual(os.listdir(self.folder), ["m"])

    def test_a_clustering_that_cannot_be_written_is_a_failure(self):
        self.write(topic_rows(50, 5))
        self.refuse("the run could not write everything", "--sample", "-output=/dev/full", "m", "4",
                    status=1)

    def test_no_record_is_written_over_the_matrix(self):
        self.write(topic_rows(50, 5), "c.run.json")
        self.refuse("c.run.json", "--sample", "-output=c", "c.run.json", "4", status=1)
        self.assertEqual(os.listdir(self.folder), ["c.run.json"])

    def test_what_needs_all_rows_is_refused(self):
        self.write(topic_rows(50, 5))
        for option in ("-showfeatures", "-fulltree", "-zscores", "-rb", "-plotmatrix=p", "-refine"):
            self.refuse(option + " needs all rows in memory", "--sample", option, "m", "4")
        self.refuse("--sample takes a whole number from 1 on, not 'x'", "--sample=x", "m", "4")
        self.refuse("--passes goes with --sample", "--passes=3", "m", "4")
        self.refuse("needs the number of clusters", "--sample", "m", "0")
        self.refuse("takes a matrix file and the number of clusters", "--sample", "m")

    def test_a_wrong_file_ends_with_the_message_of_mardle(self):
        self.refuse("Matrix file to be clusterd (no) does not exist!", "--sample", "no", "4", status=1)
        (self.folder / "m").write_text("3 2 4\n1 1\n1 2 2 1\n")
        self.refuse("Nrows=3, ActualNrows=2", "--sample", "m", "2", status=1)
        (self.folder / "m").write_text("2 3 4\n1 1\n1 2 2 1\n")
        self.refuse("NNZ=4, ActualNNZ=3", "--sample", "m", "2", status=1)
        (self.folder / "m").write_text("2 2 3\n1 1\n1 2 3 1\n")
        self.refuse("Ncols=2, ColNum=2, Row=1", "--sample", "m", "2", status=1)
        self.write(["1 1 2 1"] * 3)
        self.refuse("The sample has 3 rows for 4 clusters!", "--sample", "m", "4", status=1)
        self.assertFalse((self.folder / "m.clustering.4").exists())


# Sanitizers reserve address space of their own.
if WITH_LIMIT:

    class RunsInLittleMemory(Files):
        def test_a_file_four_times_larger_than_the_address_space(self):
            limit = 64 * MEGABYTE
            lines = topic_rows(4000, 7, width=200, drawn=200)
            text = "\n".join(lines) + "\n"
            copies = 4 * limit // len(text) + 1
            entries = copies * sum(len(line.split()) // 2 for line in lines)
            with open(self.folder / "m", "w", encoding="ascii") as out:
                out.write(f"{copies * len(lines)} 800 {entries}\n")
                for _ in range(copies):
                    out.write(text)
            self.assertGreater((self.folder / "m").stat().st_size, 4 * limit)
            whole = self.run_tool("-direct", "-ntrials=1", "m", "4", address_space=limit)
            self.assertEqual(whole.returncode, 1)
            self.assertIn("Memory allocation failed", whole.stderr)
            done = self.run_tool("--sample=2000", "--passes=2", "m", "4", address_space=limit)
            self.assertEqual(done.returncode, 0, done.stderr)
            self.expect_topics(self.clusters())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
