#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Tests that corpora keep every byte of their inputs, in files and out of them."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

import corpus

HERE = pathlib.Path(__file__).resolve().parent


class Corpus(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.file = self.folder / "odd.txt"

    def run_command(self, *arguments):
        return subprocess.run([sys.executable, HERE / "corpus.py", *arguments],
                              capture_output=True, text=True)

    def unpacked(self):
        return sorted(path.read_bytes() for path in (self.folder / "odd").iterdir())

    def test_the_text_of_some_inputs(self):
        corpus.write_corpus(self.file, [b"b \n", b"", b"a\\\0", b"\xff\r\t", b"two ", b""])
        self.assertEqual(self.file.read_text(), "\n\\xff\\r\\t\na\\\\\\x00\nb \\n\ntwo\\s\n")
        self.assertEqual(corpus.read_corpus(self.file),
                         [b"", b"\xff\r\t", b"a\\\0", b"b \n", b"two "])

    def test_every_byte_survives_unpacking_and_adding(self):
        threes = [bytes([first, 0x5c, last]) for first in range(256) for last in (10, 32, 120)]
        inputs = sorted([b"", bytes(range(256)), *threes])
        corpus.write_corpus(self.file, inputs)
        self.assertEqual(self.run_command("unpack", self.folder, self.file).returncode, 0)
        self.assertEqual(self.unpacked(), inputs)
        files = (self.folder / "odd").iterdir()
        self.assertEqual(self.run_command("add", self.folder / "new.txt", *files).returncode, 0)
        self.assertEqual((self.folder / "new.txt").read_bytes(), self.file.read_bytes())

    def test_adding_keeps_what_is_there(self):
        corpus.add_inputs(self.file, [b"b"])
        corpus.add_inputs(self.file, [b"c", b"b", b"a"])
        self.assertEqual(self.file.read_text(), "a\nb\nc\n")

    def test_what_left_the_corpus_leaves_the_folder(self):
        corpus.write_corpus(self.file, [b"stays", b"goes"])
        corpus.unpack(self.folder, [self.file])
        (self.folder / "odd" / "mine").write_bytes(b"put there by hand")
        corpus.write_corpus(self.file, [b"stays", b"comes"])
        corpus.unpack(self.folder, [self.file])
        self.assertEqual(self.unpacked(), [b"comes", b"put there by hand", b"stays"])

    def test_a_file_has_the_name_that_the_fuzzer_gives_it(self):
        self.file.write_text("abc\n")
        corpus.unpack(self.folder, [self.file])
        name, = (self.folder / "odd").iterdir()
        self.assertEqual(name.name, "a9993e364706816aba3e25717850c26c9cd0d89d")

    def test_lines_that_are_no_input(self):
        for text, message in (
                (b"a\nb \n", "2: not a whole line"), (b"a", "1: not a whole line"),
                (b"\xff\n", "1: not a whole line"), (b"a\r\n", "1: not a whole line"),
                (b"a\n\\q\n", "2: unknown escape \\q"), (b"\\x4\n", "1: unknown escape \\x4")):
            self.file.write_bytes(text)
            told = self.run_command("unpack", self.folder, self.file)
            self.assertEqual(told.returncode, 1, text)
            self.assertTrue(told.stderr.startswith(f"corpus.py: {self.file}:{message}"), told.stderr)

    def test_the_corpora_hold_inputs_and_the_seeds(self):
        corpora = sorted((HERE / "corpus").glob("*.txt"))
        self.assertEqual(corpora, sorted((HERE / "corpus").iterdir()))
        for path in corpora:
            corpus.write_corpus(self.folder / path.name, corpus.read_corpus(path))
        before = {path.name: (self.folder / path.name).read_text() for path in corpora}
        subprocess.run([sys.executable, HERE / "make_seeds.py", self.folder], check=True)
        self.assertEqual(before, {path.name: path.read_text() for path in self.folder.iterdir()})


if __name__ == "__main__":
    unittest.main()
