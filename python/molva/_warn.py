# SPDX-License-Identifier: MIT
"""Warnings that point to the line which called the package."""

from __future__ import annotations

import sys
import warnings


def warn(message: str) -> None:
    """Give a warning as of the nearest caller outside the package, however deep this is."""
    frame, level = sys._getframe(1), 2
    while frame is not None and frame.f_globals.get("__package__") == __package__:
        frame, level = frame.f_back, level + 1
    warnings.warn(message, stacklevel=level)
