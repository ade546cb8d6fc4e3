# SPDX-License-Identifier: MIT
"""46,341 is the first number whose square does not fit an int."""
import pathlib
import sys

lines = ["46341 46341 1", "1 1"] + [""] * 46340
pathlib.Path(sys.argv[1], "m.txt").write_text("\n".join(lines) + "\n")
