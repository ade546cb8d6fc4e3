# SPDX-License-Identifier: MIT
"""What tests of built programs share: a scratch folder for each, and programs that run in it."""

import os
import pathlib
import pty
import shutil
import subprocess
import tempfile
import unittest

# Eight rows about two subjects.
MATRIX = """8 6 22
1 3 2 1
1 2 2 2 3 1
1 4 2 3
3 2 4 5
3 3 4 2 5 1
3 1 4 4
5 2 6 3 1 1 4 2
5 3 6 1 2 1 3 1
"""


class ScratchFolder(unittest.TestCase):
    """Tests with a folder of their own, which goes with them."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="mardle-test-"))
        self.addCleanup(shutil.rmtree, self.folder)

    def write(self, name, text):
        (self.folder / name).write_text(text)
        return name

    def text(self, name):
        return (self.folder / name).read_text()

    def lines(self, name):
        return self.text(name).splitlines()

    def names(self, folder="."):
        return sorted(os.listdir(self.folder / folder))

    def stand_in(self, script):
        """A program of one's own that is run instead of mardle."""
        path = self.folder / "stand-in"
        path.write_text("#!/bin/sh\n" + script)
        path.chmod(0o755)
        return str(path)

    def call(self, program, *words, **environment):
        return subprocess.run([program, *map(str, words)], cwd=self.folder, text=True,
                              capture_output=True, env={**os.environ, **environment}, check=False)

    def on_terminal(self, *command, **options):
        """The finished process and what its terminal showed, to which all three streams lead that
        the options do not name."""
        ours, theirs = pty.openpty()
        options = {"stdin": theirs, "stdout": theirs, "stderr": theirs, **options}
        with subprocess.Popen(command, cwd=self.folder, **options) as process:
            os.close(theirs)
            shown = b""
            try:
                while block := os.read(ours, 65536):
                    shown += block
            except OSError:
                pass  # Linux tells the end of a terminal by an error.
            os.close(ours)
        return process, shown
