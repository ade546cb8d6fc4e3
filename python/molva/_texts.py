# SPDX-License-Identifier: MIT
"""Texts of rows and names of columns as they are shown: on a line, and not too long."""

from __future__ import annotations

from typing import Sequence

import numpy as np

LONGEST = 80  # Characters of a text that labels take, as those of the importer do.


# What neither a line nor a file of UTF-8 may hold: control characters, halves of pairs.
_CONTROLS = dict.fromkeys([*range(0x20), *range(0x7F, 0xA0), *range(0xD800, 0xE000)], " ")


def one_line(text: object, longest: int = LONGEST) -> str:
    """Return a text without line ends and other control characters, cut when it is too long."""
    line = " ".join(str(text).translate(_CONTROLS).split())
    return line if len(line) <= longest else line[: longest - 1].rstrip() + "…"


def per_row(what: str, values, nrows: int) -> Sequence | None:
    """Return what is given for every row as a list, or None when nothing is."""
    if values is None:
        return None
    listed = values.tolist() if isinstance(values, np.ndarray) else list(values)
    if len(listed) != nrows:
        raise ValueError(f"{len(listed)} {what} for {nrows} rows")
    return listed
