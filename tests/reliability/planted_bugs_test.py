#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Every planted mistake, and every weakened bound, changes a text that its file holds once:
planted_bugs_test.py SOURCE."""
import collections
import importlib.machinery
import importlib.util
import os
import sys
import unittest

kSource = os.path.abspath(sys.argv.pop(1))
sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(kSource, "scripts"))

import planted_bugs  # noqa: E402


def script(name):
    loader = importlib.machinery.SourceFileLoader(name, os.path.join(kSource, "scripts", name))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader(name, loader))
    loader.exec_module(module)
    return module


class Texts(unittest.TestCase):
    def check(self, edits):
        self.assertTrue(edits)
        for name, path, text in edits:
            with open(os.path.join(kSource, path), encoding="utf-8") as file:
                self.assertEqual(file.read().count(text), 1, f"{name}: {path}")

    def test_mistakes(self):
        self.check([(bug.name, bug.path, bug.text) for bug in planted_bugs.BUGS])

    def test_names_of_mistakes_differ(self):
        names = collections.Counter(bug.name for bug in planted_bugs.BUGS)
        self.assertEqual([name for name, count in names.items() if count > 1], [])

    def test_weakenings(self):
        self.check([(w.name, w.path, w.text) for w in script("weaken").all_weakenings()])


if __name__ == "__main__":
    unittest.main()
