#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""What scripts/guide finds wrong in the pages of a small repository, and what it lets pass.

Usage: guide.py GUIDE
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

GUIDE = pathlib.Path(sys.argv[1]).resolve()

REPORT = """#!/bin/sh
printf 'Solution\\n\\n  0  7 +0.303\\n  1  9 +0.246 \\nTiming\\n'
printf '   I/O:                                   0.004 sec\\n'
exit 84
"""

PAGE = """\
# Page

Text with a [link](docs/other.md#two-words) and

    $ build/mardle
    Solution

      0  7 +0.303
      1  9 +0.246
    Timing
       I/O:                                   0.719 sec

more text.

    $ printf 'a\\nb\\nc\\nd 1\\ne\\n'
    a
    ...
    d 1
    ...
    $ for x in 1 2; do
    >   echo $x \\
          end
    > done; echo to stderr >&2
    1 end
    2 end
    to stderr

    $ (exit 84)
    $ echo $?
    84
"""

RECTANGLE = """%!PS-Adobe-3.0 EPSF-3.0
%%BoundingBox: 0 0 200 200
1 0 0 setrgbcolor 20 20 90 90 rectfill
"""


class Guide(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)
        for name in ("scripts", "build", "docs/images", "examples", "python"):
            (self.folder / name).mkdir(parents=True)
        shutil.copy(GUIDE, self.folder / "scripts/guide")
        for name in ("mardle", "mardle-import", "mardle-run", "mardle-cluster",
                     "mardle-sweep", "mardle-export"):
            self.write(f"build/{name}", REPORT)
            os.chmod(self.folder / "build" / name, 0o755)
        self.write("README.md", PAGE)
        self.write("docs/other.md", "# Other\n\n## Two words\n\nNothing to run.\n")

    def write(self, name, text):
        (self.folder / name).write_text(text, encoding="utf-8")

    def read(self, name):
        return (self.folder / name).read_text(encoding="utf-8")

    def change(self, name, old, new):
        text = self.read(name)
        self.assertEqual(text.count(old), 1, old)
        self.write(name, text.replace(old, new))

    def guide(self, *arguments):
        done = subprocess.run([sys.executable, self.folder / "scripts/guide", *arguments],
                              capture_output=True, text=True, check=False)
        self.assertEqual(done.stderr, "")
        return done.returncode, done.stdout

    def passes(self, *arguments):
        status, output = self.guide(*arguments)
        self.assertEqual(status, 0, output)

    def fails(self, text):
        status, output = self.guide()
        self.assertEqual(status, 1, output)
        self.assertIn(text, output)

    def test_true_pages_pass_whatever_the_times(self):
        self.passes()

    def test_a_changed_digit_fails(self):
        self.change("README.md", "+0.246", "+0.247")
        self.fails("README.md:5: another output")

    def test_a_digit_between_elided_lines_fails(self):
        self.change("README.md", "d 1\n", "d 2\n")
        self.fails("-d 2")

    def test_a_missing_line_fails(self):
        self.change("README.md", "    2 end\n", "")
        self.fails("+2 end")

    def test_a_line_too_many_fails(self):
        self.change("README.md", "    84\n", "    84\n    85\n")
        self.fails("-85")

    def test_a_failing_command_fails(self):
        self.change("README.md", "(exit 84)", "(exit 3)")
        self.fails("status 3: (exit 3)")

    def test_a_dead_link_fails(self):
        self.change("README.md", "docs/other.md#two-words", "docs/another.md")
        self.fails("README.md: leads nowhere: docs/another.md")

    def test_a_link_to_no_heading_fails(self):
        self.change("README.md", "#two-words", "#three-words")
        self.fails("README.md: no such heading: docs/other.md#three-words")

    def test_links_of_pages_without_commands_are_followed(self):
        self.write("examples/README.md", "![nothing](none.png)\n")
        self.fails("examples/README.md: leads nowhere: none.png")

    def test_a_picture_that_no_page_shows_fails(self):
        self.write("docs/images/old.png", "")
        self.fails("docs/images/old.png: no page shows it")

    def test_update_writes_what_is_printed_and_keeps_the_rest(self):
        self.change("README.md", "+0.246", "+0.247")
        self.change("README.md", "d 1\n", "d 2\n")
        self.change("README.md", "    2 end\n", "")
        self.passes("--update")
        self.passes()
        # The times of the block that changed are those of the run.
        self.assertEqual(self.read("README.md"), PAGE.replace("0.719", "0.004"))

    def test_python_programs_run_where_the_package_is_given(self):
        self.write("README.md", "    import this_package\n    print(this_package.ANSWER)\n\nprints\n\n    41\n")
        self.write("python/this_package.py", "ANSWER = 42\n")
        self.passes()
        status, output = self.guide("--python", str(self.folder / "python"))
        self.assertEqual(status, 1)
        self.assertIn("-41\n+42", output)

    @unittest.skipUnless(shutil.which("gs") and shutil.which("pngtopnm"), "no ghostscript or netpbm")
    def test_pictures_are_drawn_and_compared(self):
        # The page of a picture is named in the script, so this one borrows a name.
        self.write("docs/plots.md", "    $ cp examples/drawing matrix.ps\n\n![It](images/matrix.png)\n")
        self.write("examples/drawing", RECTANGLE)
        self.fails("matrix.png: is another picture now")
        self.passes("--update")
        self.passes()
        self.write("examples/drawing", RECTANGLE.replace("20 20 90 90", "20 60 90 90"))
        self.fails("matrix.png: is another picture now")
        self.write("examples/drawing", RECTANGLE.replace("200 200", "200 210"))
        self.fails("matrix.png: is another picture now (inf)")
        self.change("docs/plots.md", "cp examples/drawing matrix.ps", "true")
        self.fails("matrix.png: matrix.ps was not written")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
