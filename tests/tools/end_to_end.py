#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""From texts and tables to clusters, with the built programs.

Usage: end_to_end.py MARDLE MARDLE-IMPORT MARDLE-RUN MARDLE-EXPORT
"""

import os
import pathlib
import shutil
import signal
import subprocess
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "testing"))
from scratch_folder import ScratchFolder

DATA = pathlib.Path(__file__).resolve().parent / "data"
TEXTS = DATA / "texts"
MARDLE, IMPORT, RUN, EXPORT = (os.path.abspath(path) for path in sys.argv[1:5])


class EndToEnd(ScratchFolder):
    def run_tool(self, *arguments, **environment):
        return self.call(RUN, *arguments, **{"MARDLE": MARDLE, **environment})

    def small_matrix(self):
        self.write("m", "3 2 4\n1 1\n1 2 2 1\n2 1\n")



class ShowingOnTerminals(EndToEnd):
    LABEL = b"\x1b]0;title\x07 caf\xc3\xa9 \xc2\x9b2J"
    SHOWN = b"\\x1b]0;title\\x07 caf\xc3\xa9 \\xc2\\x9b2J"

    def test_labels_bring_no_control_characters(self):
        self.small_matrix()
        (self.folder / "m.rlabel").write_bytes(b"\n".join([self.LABEL] * 3) + b"\n")
        self.write("c", "0\n1\n0\n")
        asked = ["tsv", "--matrix", "m", "--clustering", "c"]
        shown = self.on_terminal(EXPORT, *asked)[1]
        self.assertEqual(shown.count(self.SHOWN), 3, shown)
        self.assertNotIn(b"\x1b", shown)
        piped = subprocess.run([EXPORT, *asked], cwd=self.folder, capture_output=True, check=True)
        self.assertEqual(piped.stdout.count(self.LABEL), 3)

    def test_messages_bring_no_control_characters(self):
        (self.folder / "bad.mtx").write_bytes(
            b"%%MatrixMarket matrix coordinate real general\n1 1 1\n1 1 \x1b[2J\n")
        shown = self.on_terminal(IMPORT, "bad.mtx", "out")[1]
        self.assertIn(b"'\\x1b[2J'", shown)
        self.assertNotIn(b"\x1b[2J", shown)
        shown = self.on_terminal(RUN, "no\x1b[2Jfile", "2",
                                 env={**os.environ, "MARDLE": MARDLE})[1]
        self.assertIn(b"no\\x1b[2Jfile", shown)
        self.assertNotIn(b"no\x1b", shown)


class Importing(EndToEnd):
    def test_texts_are_clustered_by_their_subject(self):
        made = self.call(IMPORT, "--folder-classes", TEXTS, "texts.mat")
        self.assertEqual((made.returncode, made.stderr), (0, ""))
        self.assertIn("texts.mat: 10 rows, ", made.stdout)
        run = self.run_tool("-showfeatures", "texts.mat", 0)
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        self.assertIn("Entropy: 0.000, Purity: 1.000", run.stdout)
        self.assert_clusters_are(self.lines("texts.mat.rclass"), "texts.mat.clustering.3")
        self.assertEqual(sorted(set(self.lines("texts.mat.rclass"))), ["garden", "music", "sea"])

    def clusters_of(self, classes, clustering):
        """The clusters in which the rows of each class are."""
        found = {}
        for name, cluster in zip(classes, self.lines(clustering)):
            found.setdefault(name, set()).add(cluster)
        return found

    def assert_clusters_are(self, classes, clustering):
        found = self.clusters_of(classes, clustering)
        self.assertTrue(all(len(clusters) == 1 for clusters in found.values()), found)
        self.assertEqual(len(set.union(*found.values())), len(found), found)

    def test_german_texts_are_clustered_by_their_subject(self):
        made = self.call(IMPORT, "--folder-classes", "--stop-words", "german", "--stem", "german",
                         DATA / "german", "g.mat")
        self.assertEqual((made.returncode, made.stderr), (0, ""))
        words = self.lines("g.mat.clabel")
        self.assertIn("apfelbaum", words)
        self.assertTrue({"der", "die", "und"}.isdisjoint(words), words)
        self.assertEqual(self.run_tool("g.mat", 2).returncode, 0)
        self.assert_clusters_are(self.lines("g.mat.rclass"), "g.mat.clustering.2")

    def test_japanese_lines_are_cut_into_words(self):
        made = self.call(IMPORT, "--stop-words", "japanese", DATA / "japanese.txt", "j.mat")
        self.assertEqual((made.returncode, made.stderr), (0, ""))
        words = self.lines("j.mat.clabel")
        self.assertTrue({"ファイル", "圧縮", "印刷", "ジョブ"} <= set(words), words)
        self.assertTrue(self.lines("j.mat.rlabel")[1].startswith("ファイルを圧縮します。"))
        self.assertEqual(self.run_tool("j.mat", 3).returncode, 0)
        clusters = self.lines("j.mat.clustering.3")
        self.assertEqual(clusters[1], clusters[2], "compressing and unpacking")
        self.assertEqual(clusters[4], clusters[5], "printing")

    def test_several_columns_of_a_table_are_one_text(self):
        made = self.call(IMPORT, "--label-column", "id", "--class-column", "rating",
                         "--text-column", "title", "--text-column", "review",
                         DATA / "reviews.csv", "r.mat")
        self.assertEqual((made.returncode, made.stderr), (0, ""))
        self.assertEqual(self.lines("r.mat.rlabel"), ["r1", "r2", "r3", "r4"])
        words = self.lines("r.mat.clabel")
        self.assertIn("café", words)
        self.assertTrue({"quot", "amp", "eacute"}.isdisjoint(words), words)
        self.assertEqual(self.run_tool("r.mat", 2).returncode, 0)
        self.assert_clusters_are(self.lines("r.mat.rclass"), "r.mat.clustering.2")

    def test_measurements_with_gaps_and_decimal_commas(self):
        arguments = ["--label-column", "name", "--class-column", "site", "--decimal-comma",
                     DATA / "measurements.csv", "m.mat"]
        refused = self.call(IMPORT, *arguments)
        self.assertEqual(refused.returncode, 1)
        self.assertIn("2 values are missing in 2 rows: 1 in column 3 (width), 1 in column 4 (weight)",
                      refused.stderr)
        made = self.call(IMPORT, "--missing", "median", "--standardize", *arguments)
        self.assertEqual((made.returncode, made.stderr), (0, ""))
        self.assertIn("2 missing values filled with the median of their columns", made.stdout)
        self.assertEqual(self.run_tool("-denseinput", "m.mat", 2).returncode, 0)
        self.assert_clusters_are(self.lines("m.mat.rclass"), "m.mat.clustering.2")

    def test_a_weighted_matrix_is_clustered_as_the_summary_says(self):
        self.write("words", "red\nsea\ngarden\nwine\nstorm\n")
        made = self.call(IMPORT, "--labels", "words", DATA / "tfidf.mtx", "w.mat")
        self.assertEqual((made.returncode, made.stderr), (0, ""))
        self.assertIn("they look weighted already", made.stdout)
        self.assertIn("Cluster with: mardle -colmodel=1 w.mat NCLUSTERS\n", made.stdout)
        self.assertEqual(len(self.lines("w.mat.clabel")), 5)
        self.assertEqual(self.run_tool("-colmodel=1", "w.mat", 2).returncode, 0)

    def test_a_text_without_words_has_a_label_and_no_cluster(self):
        self.write("l.txt", "red apple\n\nred sea\nblue sea\nblue apple\n")
        self.assertEqual(self.call(IMPORT, "l.txt", "l.mat").returncode, 0)
        self.assertEqual(self.lines("l.mat.rlabel")[1], "")
        self.assertEqual(self.run_tool("l.mat", 2).returncode, 0)
        self.assertEqual(self.lines("l.mat.clustering.2")[1], "-1")

    def test_a_table_is_clustered_as_the_summary_says(self):
        self.write("t.csv", "name,x,y\n" + "".join(
            f"r{i},{9 if i < 3 else 1},{1 if i < 3 else 9}\n" for i in range(6)))
        made = self.call(IMPORT, "--label-column", "name", "t.csv", "t.mat")
        self.assertIn("Cluster with: mardle -denseinput t.mat NCLUSTERS\n", made.stdout)
        self.assertEqual(self.run_tool("-denseinput", "t.mat", 2).returncode, 0)
        clusters = self.lines("t.mat.clustering.2")
        self.assertEqual((len(set(clusters[:3])), len(set(clusters[3:]))), (1, 1))
        self.assertNotEqual(clusters[0], clusters[5])

    def test_the_summary_names_a_command_that_works(self):
        self.write("l.txt", "".join(f"sea land sky {i}\n" for i in range(9)))
        made = self.call(IMPORT, "l.txt", "l.mat")
        command = made.stdout.splitlines()[-1].removeprefix("Cluster with: mardle ").split()
        self.assertEqual(command, ["-colmodel=1", "l.mat", "NCLUSTERS"])
        self.assertEqual(self.run_tool(*command[:-1], 2).returncode, 0)

    def importing(self, number, disposition):
        """An import that has begun and waits for its input."""
        process = subprocess.Popen([IMPORT, "--format", "svmlight", "-", "s.mat"],
                                   cwd=self.folder, stdin=subprocess.PIPE,
                                   stdout=subprocess.DEVNULL,
                                   preexec_fn=lambda: signal.signal(number, disposition))
        while not list(self.folder.glob(".mardle-*.partial")):
            time.sleep(0.001)
        return process

    def test_an_interrupt_leaves_no_file_behind(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.importing(number, signal.SIG_DFL) as process:
                process.send_signal(number)
            self.assertEqual(process.returncode, -number)
            self.assertEqual(os.listdir(self.folder), [])

    def test_an_ignored_signal_stays_ignored(self):
        with self.importing(signal.SIGHUP, signal.SIG_IGN) as process:
            process.send_signal(signal.SIGHUP)
            process.stdin.write(b"1 1:2\n")
        self.assertEqual(process.returncode, 0)
        self.assertEqual(self.lines("s.mat.rclass"), ["1"])

    def test_standard_input_is_read(self):
        made = subprocess.run([IMPORT, "-", "s.mat"], cwd=self.folder, input=b"1 1:2\n-1 2:3\n",
                              capture_output=True, check=False)
        self.assertEqual(made.returncode, 0, made.stderr)
        self.assertEqual(self.lines("s.mat.rclass"), ["1", "-1"])

    def test_an_error_names_file_and_line_and_leaves_nothing(self):
        self.write("t.csv", "a,b\n1,2\n3,x\n")
        made = self.call(IMPORT, "t.csv", "t.mat")
        self.assertEqual((made.returncode, made.stdout), (1, ""))
        self.assertTrue(made.stderr.startswith("mardle-import: t.csv:3: column 2 (b) is no number"))
        self.assertEqual(os.listdir(self.folder), ["t.csv"])

    def test_files_are_replaced_on_request_alone(self):
        self.write("l.txt", "aa\naa\n")
        self.write("l.mat", "mine")
        made = self.call(IMPORT, "l.txt", "l.mat")
        self.assertEqual(made.returncode, 1)
        self.assertEqual(made.stderr,
                         "mardle-import: l.mat: exists already; --force replaces it\n")
        self.assertEqual(self.call(IMPORT, "--force", "--quiet", "l.txt", "l.mat").stdout, "")
        self.assertEqual(self.lines("l.mat")[1:], ["1 1", "1 1"])

    def test_wrong_usage_has_status_2(self):
        self.write("l.txt", "aa\n")
        for arguments in ([], ["--bogus", "l.txt", "x"], ["--sparse", "l.txt", "x"],
                          ["--token-pattern", "([", "l.txt", "x"]):
            self.assertEqual(self.call(IMPORT, *arguments).returncode, 2, arguments)

    def test_an_option_that_there_is_not_is_named(self):
        self.write("l.txt", "aa\n")
        self.assertEqual(self.call(IMPORT, "--stopwords", "german", "l.txt", "x").stderr,
                         "mardle-import: there is no option '--stopwords'; did you mean "
                         "'--stop-words'?\nTry 'mardle-import --help'.\n")

    def test_version_and_help_succeed(self):
        for program in (IMPORT, RUN):
            name = os.path.basename(program)
            version = self.call(program, "--version")
            self.assertRegex(version.stdout, rf"^{name} \d+\.\d+\.\d+\n$")
            self.assertEqual(version.returncode, 0)
            self.assertEqual(self.call(program, "--help").returncode, 0)


class Running(EndToEnd):
    def test_output_passes_through(self):
        self.small_matrix()
        program = self.stand_in('printf "out %s" "$*"; printf "err" >&2; exit 0\n')
        run = self.run_tool("m", "a b", MARDLE=program)
        self.assertEqual((run.stdout, run.stderr),
                         ("out m a b", "errmardle-run: the run was not completed\n"))

    def test_success_is_0_and_failure_1(self):
        self.small_matrix()
        self.assertEqual(self.run_tool("m", 2).returncode, 0)
        failed = self.run_tool("nosuch", 2)
        self.assertEqual(failed.returncode, 1)
        self.assertIn("(nosuch) does not exist!", failed.stderr)

    def test_every_result_of_a_run_is_found(self):
        self.small_matrix()
        run = self.run_tool("-zscores", "-fulltree", "-writetree", "-output=c", "-plotmatrix=m.ps",
                            "-plotclusters=c.ps", "m", 2)
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        self.assertEqual(self.run_tool("-writetree=t", "-nooutput", "m", 2).returncode, 0)

    def test_a_result_that_is_missing_or_short_is_a_failure(self):
        self.small_matrix()
        run = self.run_tool("m", 2, MARDLE=self.stand_in("exit 84\n"))
        self.assertEqual(run.returncode, 1)
        self.assertEqual(run.stderr, "mardle-run: m.clustering.2: No such file or directory\n")
        run = self.run_tool("m", 2, MARDLE=self.stand_in("echo 0 > m.clustering.2; exit 84\n"))
        self.assertEqual(run.returncode, 1)
        self.assertEqual(run.stderr, "mardle-run: m.clustering.2: incomplete, 1 of 3 lines\n")

    def test_a_drawing_that_mardle_does_not_make_is_a_failure(self):
        self.small_matrix()
        self.write("old.ps", "an older drawing")
        run = self.run_tool("-sim=2", "-plotmatrix=old.ps", "m", 2)
        self.assertEqual((run.returncode, run.stderr), (1, "mardle-run: old.ps: not drawn\n"))

    def test_a_tree_under_a_criterion_that_builds_none_is_refused_before_the_run(self):
        self.small_matrix()
        run = {"MARDLE": self.stand_in("touch started; exit 84")}
        over_rows = "mardle-run: -fulltree needs a criterion from 1 to 7, and -crfun is 8\n"
        over_clusters = ("mardle-run: the tree over the clusters needs a criterion from 1 to 7, "
                         "not {}: name one by -showtree=N\n")
        for options, message in (
                (["-crfun=8", "-fulltree"], over_rows),
                (["-crfun=8", "-fulltree", "-showtree=2"], over_rows),
                (["-crfun=8", "-writetree"], over_clusters.format(8)),
                (["-crfun=9", "-showtree"], over_clusters.format(9)),
                (["-showtree=9"], over_clusters.format(9)),
                (["-fulltree", "-writetree", "-showtree=8"], over_clusters.format(8)),
                (["-crfun=8", "-plotclusters=p.ps"], over_clusters.format(8))):
            refused = self.run_tool(*options, "m", 2, **run)
            self.assertEqual((refused.returncode, refused.stderr), (2, message), options)
            self.assertFalse((self.folder / "started").exists(), options)

    def test_other_runs_under_these_criteria_are_not_refused(self):
        self.write("rows", "4 4 8\n1 3 2 4\n1 4 2 3\n3 3 4 4\n3 4 4 3\n")
        for options in (["-crfun=8"], ["-crfun=9", "-showtree=2", "-writetree"],
                        ["-crfun=8", "-plotmatrix=p.ps"],
                        ["-crfun=8", "-showtree=1", "-plotclusters=p.ps"]):
            run = self.run_tool(*options, "rows", 2)
            self.assertEqual((run.returncode, run.stderr), (0, ""), options)

    def test_results_on_standard_output_are_not_read_back(self):
        self.small_matrix()
        with open(self.folder / "all", "w", encoding="utf-8") as report:
            run = subprocess.run([RUN, "-output=/dev/stdout", "m", "2"], cwd=self.folder,
                                 stdout=report, env={**os.environ, "MARDLE": MARDLE}, check=False)
        self.assertEqual(run.returncode, 0)

    def test_help_succeeds_and_wrong_usage_has_status_2(self):
        shown = self.run_tool("-help")
        self.assertEqual((shown.returncode, shown.stdout),
                         (0, self.call(MARDLE, "-help").stdout))
        for arguments in ([], ["m"], ["-bogus", "m", "2"]):
            self.assertEqual(self.run_tool(*arguments).returncode, 2, arguments)

    def test_a_missing_mardle_has_status_127(self):
        for name in ("/nosuch/mardle", "no-such-mardle", RUN):
            self.assertEqual(self.run_tool("m", 2, MARDLE=name).returncode, 127, name)

    def test_mardle_is_found_beside_the_program_or_on_the_path(self):
        self.small_matrix()
        moved = self.folder / "bin"
        moved.mkdir()
        shutil.copy(RUN, moved / "mardle-run")
        environment = {"MARDLE": "", "PATH": os.path.dirname(MARDLE)}
        self.assertEqual(self.call(moved / "mardle-run", "m", 2, **environment).returncode, 0)
        environment["PATH"] = "/nosuch"
        self.assertEqual(self.call(moved / "mardle-run", "m", 2, **environment).returncode, 127)
        shutil.copy(MARDLE, moved / "mardle")
        self.assertEqual(self.call(moved / "mardle-run", "m", 2, **environment).returncode, 0)

    def test_a_program_that_cannot_be_started_has_status_126(self):
        program = self.stand_in("")
        pathlib.Path(program).write_bytes(b"\x7fELF no program")
        self.assertEqual(self.run_tool("m", 2, MARDLE=program).returncode, 126)

    def test_signals_reach_mardle_and_end_both(self):
        program = self.stand_in('echo ready; exec sleep 60\n')
        with subprocess.Popen([RUN, "m", "2"], stdout=subprocess.PIPE, cwd=self.folder,
                              env={**os.environ, "MARDLE": program}) as run:
            run.stdout.readline()
            run.send_signal(signal.SIGTERM)
            self.assertEqual(run.wait(), -signal.SIGTERM)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
