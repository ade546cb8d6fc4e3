# SPDX-License-Identifier: MIT
"""The third row has 200,000 characters, so the last row is never reached."""
import pathlib
import sys

lines = ["5 4 8", "1 1", "1 1", "2 1".ljust(199997) + "3 1", "3 1 4 1", "2 1 4 1"]
pathlib.Path(sys.argv[1], "m.txt").write_text("\n".join(lines) + "\n")
