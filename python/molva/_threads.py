# SPDX-License-Identifier: MIT
"""How many threads a call may use, after joblib's rules."""

from __future__ import annotations

from contextlib import contextmanager
from numbers import Integral
from typing import Iterator

import numpy as np

from . import _engine

_MOST = 1024  # The library's limit.


def thread_count(n_jobs: object) -> int:
    """Return the number of threads that `n_jobs` asks for.

    None is 1, -1 all processors that the process may use, as its affinity and the quota of its
    control group have it, -2 one fewer, and so on, but never fewer than 1.
    """
    if n_jobs is None:
        return 1
    if isinstance(n_jobs, (bool, np.bool_)) or not isinstance(n_jobs, Integral):
        raise ValueError(f"n_jobs must be an integer or None; got {n_jobs!r}")
    if n_jobs == 0 or n_jobs > _MOST:
        raise ValueError(f"n_jobs must be from 1 to {_MOST}, or negative; got {n_jobs}")
    if n_jobs > 0:
        return int(n_jobs)
    return max(_engine.processors() + 1 + int(n_jobs), 1)


@contextmanager
def threads(n_jobs: object) -> Iterator[None]:
    """Have the library's calls of this thread use so many threads in the block, and no longer."""
    count = thread_count(n_jobs)
    before = _engine.num_threads()
    _engine.set_num_threads(count)
    try:
        yield
    finally:
        _engine.set_num_threads(before)
