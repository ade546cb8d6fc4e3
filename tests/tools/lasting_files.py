#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Files that are never lost: the built tools where disks are full, names lead elsewhere, others write
the same files, and readers or results are gone.

Usage: lasting_files.py MARDLE MARDLE-IMPORT MARDLE-RUN MARDLE-EXPORT
"""

import fcntl
import os
import pathlib
import resource
import signal
import stat
import subprocess
import sys
import threading
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "testing"))
from scratch_folder import ScratchFolder

MARDLE, IMPORT, RUN, EXPORT = (os.path.abspath(path) for path in sys.argv[1:5])
TIME_LIMIT = 60  # seconds; only a program that hangs comes near it
COMPANIONS = ("", ".rlabel", ".rclass", ".clabel")


class Tools(ScratchFolder):
    def call(self, program, *words, stdout=subprocess.PIPE, most_bytes=None, closed=False, **variables):
        def prepare():
            if most_bytes is not None:
                resource.setrlimit(resource.RLIMIT_FSIZE, (most_bytes, most_bytes))
            if closed:
                os.close(1)

        return subprocess.run([program, *map(str, words)], cwd=self.folder, text=True, stdout=stdout,
                              stderr=subprocess.PIPE, preexec_fn=prepare, timeout=TIME_LIMIT,
                              env={**os.environ, "MARDLE": MARDLE, **variables}, check=False)

    def expect(self, done, status, error=""):
        self.assertEqual((done.returncode, done.stderr), (status, error))

    def expect_output_errors(self, *command):
        """Standard output that takes nothing is an error, whatever was asked for."""
        with open("/dev/full", "w", encoding="utf-8") as full:
            done = self.call(*command, stdout=full)
        self.assertEqual(done.returncode, 1, command)
        self.assertIn("standard output", done.stderr)
        done = self.call(*command, closed=True)
        self.assertEqual(done.returncode, 1, command)
        self.assertIn("standard output", done.stderr)


def of_class(name):
    """An svmlight file whose matrix and classes name each other."""
    return "".join(f"{name} 1:{name} {row}:1\n" for row in range(2, 900))


class Importing(Tools):
    def importing(self, *options):
        """An import that has begun and waits for its input."""
        before = len(self.partial())
        process = subprocess.Popen([IMPORT, *options, "--format", "svmlight", "-", "m"],
                                   cwd=self.folder, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, text=True)
        while len(self.partial()) == before:
            time.sleep(0.001)
        return process

    def partial(self):
        return [name for name in self.names() if name.endswith(".partial")]

    def is_whole(self):
        classes = set(self.text("m.rclass").split())
        rows = self.text("m").splitlines()[1:]
        return len(classes) == 1 and len(rows) == 898 and all(
            row.split()[1] in classes for row in rows)

    def test_two_at_once_never_mix(self):
        with self.importing("--force") as first, self.importing("--force") as second:
            ends = [threading.Thread(target=process.communicate, args=(of_class(name),))
                    for name, process in ((7, first), (8, second))]
            for end in ends:
                end.start()
            for end in ends:
                end.join(TIME_LIMIT)
        self.assertEqual((first.returncode, second.returncode), (0, 0))
        self.assertTrue(self.is_whole())
        self.assertEqual(self.names(), ["m", "m.rclass"])

    def test_another_that_publishes_in_the_folder_is_waited_for(self):
        folder = os.open(self.folder, os.O_RDONLY)
        fcntl.flock(folder, fcntl.LOCK_EX)
        with self.importing() as waiting:
            waiting.stdin.write(of_class(7))
            waiting.stdin.close()
            while waiting.poll() is None and not self.waits_for_a_lock(waiting):
                time.sleep(0.001)
            self.assertIsNone(waiting.poll())
            self.assertFalse((self.folder / "m").exists())
            os.close(folder)
            error = waiting.stderr.read()
        self.assertEqual((waiting.returncode, error), (0, ""))
        self.assertTrue(self.is_whole())

    @staticmethod
    def waits_for_a_lock(process):
        locks = pathlib.Path("/proc/locks").read_text().splitlines()
        return any("->" in line and f" {process.pid} " in line for line in locks)

    def test_of_two_at_once_one_finds_the_files_there(self):
        with self.importing() as first, self.importing() as second:
            first.communicate(of_class(7))
            error = second.communicate(of_class(8))[1]
        self.assertEqual((first.returncode, second.returncode), (0, 1))
        self.assertEqual(error, "mardle-import: m: exists already; --force replaces it\n")
        self.assertTrue(self.is_whole())
        self.assertEqual(self.names(), ["m", "m.rclass"])

    def test_nobody_else_has_the_names_that_are_written(self):
        self.write("l", "aa\naa\n")
        self.write("m.partial", "mine")
        self.write("other", "theirs")
        (self.folder / "m.clabel.partial").symlink_to("other")
        self.expect(self.call(IMPORT, "--quiet", "l", "m"), 0)
        self.assertEqual((self.text("m.partial"), self.text("other")), ("mine", "theirs"))

    def old_matrix(self):
        for suffix in COMPANIONS:
            self.write("m" + suffix, "old" + suffix)

    def expect_old_matrix(self):
        for suffix in COMPANIONS:
            if (self.folder / ("m" + suffix)).is_file():
                self.assertEqual(self.text("m" + suffix), "old" + suffix)

    def test_what_cannot_be_removed_keeps_the_old_files(self):
        self.old_matrix()
        os.remove(self.folder / "m.clabel")
        (self.folder / "m.clabel").mkdir()
        self.write("m.clabel/file", "")
        self.write("s", of_class(7))
        self.expect(self.call(IMPORT, "--force", "--quiet", "--format", "svmlight", "s", "m"), 1,
                    "mardle-import: m.clabel: is a folder\n")
        self.expect_old_matrix()
        self.assertEqual(self.names(), ["m", "m.clabel", "m.rclass", "m.rlabel", "s"])

    def test_a_full_disk_keeps_the_old_files(self):
        self.old_matrix()
        self.write("s", of_class(7))
        for most_bytes in (0, 100, 1000, 8000):
            done = self.call(IMPORT, "--force", "--quiet", "--format", "svmlight", "s", "m",
                             most_bytes=most_bytes)
            self.assertEqual(done.returncode, 1)
            self.assertRegex(done.stderr, r"^mardle-import: m(\.rclass)?: File too large\n$")
            self.expect_old_matrix()
            self.assertEqual(self.names(), ["m", "m.clabel", "m.rclass", "m.rlabel", "s"])

    def test_no_input_is_written_over(self):
        text = "aa bb\naa bb\n"
        self.write("l", text)
        os.link(self.folder / "l", self.folder / "linked")
        (self.folder / "m.clabel").symlink_to("l")
        (self.folder / "texts").mkdir()
        self.write("texts/a", text)
        self.write("texts/b", text)
        for source, matrix, output in (("l", "l", "l"), ("l", "linked", "linked"),
                                       ("l", "m", "m.clabel"), ("-", "m", "m.clabel")):
            with open(self.folder / "l", encoding="utf-8") as stdin:
                done = subprocess.run([IMPORT, "--force", "--format", "lines", source, matrix],
                                      cwd=self.folder, stdin=stdin, text=True,
                                      capture_output=True, check=False)
            shown = "/dev/stdin" if source == "-" else source
            self.expect(done, 1, f"mardle-import: {output}: would be written over the input {shown}\n")
        done = self.call(IMPORT, "--force", "--stop-words", "l", "texts", "linked")
        self.expect(done, 1, "mardle-import: linked: would be written over the input l\n")
        done = self.call(IMPORT, "--force", "texts", "texts/b")
        self.expect(done, 1, "mardle-import: texts/b: would be written over the input texts/b\n")
        for name in ("l", "texts/a", "texts/b"):
            self.assertEqual(self.text(name), text)

    def test_the_target_of_a_link_is_replaced(self):
        self.write("l", "aa\naa\n")
        (self.folder / "there").mkdir()
        self.write("there/m", "old")
        (self.folder / "m").symlink_to("there/m")
        self.expect(self.call(IMPORT, "--force", "--quiet", "l", "m"), 0)
        self.assertTrue((self.folder / "m").is_symlink())
        self.assertEqual(self.text("there/m").splitlines()[1:], ["1 1", "1 1"])
        self.assertEqual(os.listdir(self.folder / "there"), ["m"])

    def test_a_file_keeps_its_permissions(self):
        self.write("l", "aa\naa\n")
        self.write("m", "old")
        (self.folder / "m").chmod(0o604)
        previous = os.umask(0o027)
        try:
            self.expect(self.call(IMPORT, "--force", "--quiet", "l", "m"), 0)
        finally:
            os.umask(previous)
        self.assertEqual(stat.S_IMODE((self.folder / "m").stat().st_mode), 0o604)
        self.assertEqual(stat.S_IMODE((self.folder / "m.clabel").stat().st_mode), 0o640)

    def test_a_summary_that_cannot_be_written_is_an_error(self):
        self.write("l", "aa\naa\n")
        self.expect_output_errors(IMPORT, "--force", "l", "m")
        self.expect_output_errors(IMPORT, "--help")
        self.expect_output_errors(IMPORT, "--version")


class Exporting(Tools):
    def setUp(self):
        super().setUp()
        self.write("t", "2 0\n2 0\n-1 0.5\n")
        self.write("c", "0\n1\n1\n")
        self.write("m", "3 2 4\n1 1\n1 2 2 1\n2 1\n")

    def test_a_full_disk_keeps_the_old_page(self):
        self.write("page", "old")
        before = self.names()
        for most_bytes in (0, 10, 5000):
            done = self.call(EXPORT, "html", "--matrix", "m", "--clustering", "c", "--output", "page",
                             most_bytes=most_bytes)
            self.expect(done, 1, "mardle-export: page: File too large\n")
            self.assertEqual((self.text("page"), self.names()), ("old", before))

    def test_the_table_and_its_leaves_appear_together(self):
        self.write("leaves", "old")
        before = self.names()
        done = self.call(EXPORT, "linkage", "--tree", "t", "--leaves", "leaves", "--output", "/no/o")
        self.expect(done, 1, "mardle-export: /no/o: No such file or directory\n")
        done = self.call(EXPORT, "linkage", "--tree", "t", "--leaves", "leaves", "--output", "leaves")
        self.expect(done, 1, "mardle-export: leaves: is the name of two outputs\n")
        self.assertEqual((self.text("leaves"), self.names()), ("old", before))

    def test_no_input_is_written_over(self):
        (self.folder / "link").symlink_to("m.rlabel")
        self.write("m.rlabel", "a\nb\nc\n")
        for name, source in (("link", "m.rlabel"), ("c", "c"), ("m", "m")):
            before = self.text(name)
            done = self.call(EXPORT, "tsv", "--matrix", "m", "--clustering", "c", "--output", name)
            self.expect(done, 1,
                        f"mardle-export: {name}: would be written over the input {source}\n")
            self.assertEqual(self.text(name), before)
        with open(self.folder / "t", "a", encoding="utf-8") as out:
            done = self.call(EXPORT, "dot", "--tree", "t", stdout=out)
        self.expect(done, 1, "mardle-export: /dev/stdout: would be written over the input t\n")

    def test_pipes_and_devices_are_written_to(self):
        os.mkfifo(self.folder / "pipe")
        read = []
        reader = threading.Thread(target=lambda: read.append(self.text("pipe")))
        reader.start()
        self.expect(self.call(EXPORT, "newick", "--tree", "t", "--output", "pipe"), 0)
        reader.join(TIME_LIMIT)
        self.assertEqual(read, ["(0:1,1:1);\n"])
        self.expect(self.call(EXPORT, "newick", "--tree", "t", "--output", "/dev/null"), 0)
        self.expect(self.call(EXPORT, "linkage", "--tree", "t", "--leaves", "/dev/null", "--output",
                              "/dev/null"), 0)
        done = self.call(EXPORT, "newick", "--tree", "t", "--output", "/dev/stdout")
        self.assertEqual(done.stdout, "(0:1,1:1);\n")
        with open(self.folder / "out", "w", encoding="utf-8") as out:
            self.expect(self.call(EXPORT, "newick", "--tree", "t", "--output", "/dev/stdout",
                                  stdout=out), 0)
        self.assertEqual(self.text("out"), "(0:1,1:1);\n")

    def test_an_interrupt_leaves_no_file_behind(self):
        os.mkfifo(self.folder / "pipe")  # which nobody reads
        before = self.names()
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with subprocess.Popen([EXPORT, "linkage", "--tree", "t", "--leaves", "leaves", "--output",
                                   "pipe"], cwd=self.folder) as process:
                while self.names() == before:
                    time.sleep(0.001)
                process.send_signal(number)
            self.assertEqual(process.returncode, -number)
            self.assertEqual(self.names(), before)

    def test_a_reader_that_is_gone_is_an_error(self):
        ends = os.pipe()
        os.close(ends[0])
        done = self.call(EXPORT, "newick", "--tree", "t", stdout=ends[1])
        os.close(ends[1])
        self.expect(done, 1, "mardle-export: standard output: Broken pipe\n")

    def test_output_that_cannot_be_written_is_an_error(self):
        self.expect_output_errors(EXPORT, "newick", "--tree", "t")
        self.expect_output_errors(EXPORT, "--help")
        self.expect_output_errors(EXPORT, "--version")


class Running(Tools):
    def setUp(self):
        super().setUp()
        self.write("m", "3 2 4\n1 1\n1 2 2 1\n2 1\n")

    def afterwards(self, script, *options):
        """mardle-run with a mardle after whose whole run something happens to the results."""
        program = self.stand_in(f'"{MARDLE}" "$@" >/dev/null 2>&1\n{script}\nexit 84\n')
        return self.call(RUN, *options, "m", 2, MARDLE=program)

    def test_a_clustering_that_is_cut_is_a_failure(self):
        short = "mardle-run: m.clustering.2: incomplete, 2 of 3 lines\n"
        long = "mardle-run: m.clustering.2: more than the 3 lines that are wanted\n"
        results = "m.clustering.2"
        self.expect(self.afterwards(":"), 0)
        self.expect(self.afterwards(f"printf '0\\n1\\n1' > {results}"), 1, short)
        self.expect(self.afterwards(f"printf '0\\n1\\n' > {results}"), 1, short)
        self.expect(self.afterwards(f"printf '0\\n1\\nx\\n' > {results}"), 1, short)
        self.expect(self.afterwards(f"printf '0\\n1\\n1\\n0\\n' > {results}"), 1, long)
        self.expect(self.afterwards(f"printf '0\\n1\\n1\\nx y' > {results}"), 1, long)
        self.expect(self.afterwards(f"truncate -s -3 {results}", "-zscores"), 1, short)

    def test_a_tree_that_is_cut_is_a_failure(self):
        self.expect(self.afterwards("truncate -s -1 t", "-nooutput", "-writetree=t"), 1,
                    "mardle-run: t: incomplete, 2 of 3 lines\n")

    def test_a_picture_without_its_end_is_a_failure(self):
        for form in ("ps", "svg", "fig", "ai", "cgm", "pcl", "gif", "png", "meta", "hpgl", "regis"):
            options = ("-nooutput", "-plotclusters=picture", "-plotformat=" + form)
            self.expect(self.afterwards(":", *options), 0)
            for cut in (1, 2, 100):
                self.expect(self.afterwards(f"truncate -s -{cut} picture", *options), 1,
                            "mardle-run: picture: incomplete, the picture has no end\n")

    def test_a_picture_may_be_cut_nowhere(self):
        """At the end of a line, too, where the drawing's own end is what tells."""
        for form in ("ps", "svg", "ai"):
            options = ("-nooutput", "-plotmatrix=picture", "-plotformat=" + form)
            self.expect(self.afterwards("sed -i '$d' picture", *options), 1,
                        "mardle-run: picture: incomplete, the picture has no end\n")

    def test_a_write_that_mardle_reports_is_a_failure(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            done = self.call(RUN, "m", 2, stdout=full)
        self.expect(done, 1, "Writing standard output failed: No space left on device\n"
                    "mardle-run: the run could not write everything\n")
        done = self.call(RUN, "-output=/dev/full", "m", 2)
        self.expect(done, 1, "Writing /dev/full failed: No space left on device\n"
                    "mardle-run: the run could not write everything\n")
        done = self.call(RUN, "m", 2, closed=True)
        self.assertEqual(done.returncode, 1)
        with open("/dev/full", "w", encoding="utf-8") as full:
            self.assertEqual(self.call(RUN, "-help", stdout=full).returncode, 1)

    def test_a_limit_on_files_is_a_failure(self):
        failed = "Writing m.clustering.2 failed: File too large\n"
        done = self.call(RUN, "m", 2, most_bytes=3)
        self.expect(done, 1, failed + "mardle-run: m.clustering.2: No such file or directory\n")
        # An older clustering stays, and is not taken for that of this run.
        self.write("m.clustering.2", "1\n0\n0\n")
        done = self.call(RUN, "m", 2, most_bytes=3)
        self.expect(done, 1, failed + "mardle-run: the run could not write everything\n")
        self.assertEqual(self.text("m.clustering.2"), "1\n0\n0\n")

    def test_no_input_is_written_over(self):
        self.write("m.rlabel", "a\nb\nc\n")
        (self.folder / "link").symlink_to("m")
        os.link(self.folder / "m.rlabel", self.folder / "m.tree.3")
        (self.folder / "m.clustering.1").symlink_to("m")
        before = {name: self.text(name) for name in ("m", "m.rlabel")}
        for name, source, words in (("m", "m", ["-output=m", "m", 2]),
                                    ("link", "m", ["-plotmatrix=link", "m", 2]),
                                    ("m.rlabel", "m.rlabel", ["-plotclusters=m.rlabel", "m", 2]),
                                    ("m.tree.3", "m.rlabel", ["-fulltree", "-writetree", "m", 2]),
                                    ("m.clustering.1", "m", ["m", 0])):
            self.expect(self.call(RUN, *words), 1,
                        f"mardle-run: {name}: would be written over the input {source}\n")
        with open(self.folder / "m", "a", encoding="utf-8") as out:
            self.expect(self.call(RUN, "m", 2, stdout=out), 1,
                        "mardle-run: /dev/stdout: would be written over the input m\n")
        self.assertEqual({name: self.text(name) for name in before}, before)

    def test_a_matrix_that_is_wrong_is_left_to_mardle(self):
        self.write("m", "99999999999 2 4\n")
        done = self.call(RUN, "m", 0)
        self.assertEqual(done.returncode, 1)
        self.assertIn("The number 99999999999 in the header of the input file is out of range!",
                      done.stderr)

    def test_a_pipe_is_left_to_mardle(self):
        os.mkfifo(self.folder / "pipe")
        program = self.stand_in("exit 84\n")
        done = self.call(RUN, "-nooutput", "-rclassfile=pipe", "m", 0, MARDLE=program)
        self.expect(done, 0)
        done = self.call(RUN, "pipe", 2, MARDLE=program)
        self.expect(done, 1, "mardle-run: pipe: cannot be read again\n")

    def test_its_own_answers_that_cannot_be_written_are_errors(self):
        self.expect_output_errors(RUN, "--help")
        self.expect_output_errors(RUN, "--version")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
