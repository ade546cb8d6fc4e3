# SPDX-License-Identifier: MIT
"""The first line after the header runs over two rows: the reader takes 131,071 characters at a time."""
import pathlib
import sys

first = "1 1".rjust(131071)
lines = ["5 4 8", first + "1 1", "2 1 3 1", "3 1 4 1", "2 1 4 1"]
pathlib.Path(sys.argv[1], "m.txt").write_text("\n".join(lines) + "\n")
