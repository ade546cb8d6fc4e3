# SPDX-License-Identifier: MIT
"""Where blocks of rows come from: matrices, files, folders, callables, iterators."""

from __future__ import annotations

import os
from functools import partial
from pathlib import Path
from typing import Iterator

import numpy as np
from scipy import sparse
from sklearn.utils import check_array

from . import files
from ._matrix import check_matrix

_ENDINGS = (".mat", ".npy", ".npz")


def block_sources(blocks):
    """Return the sources of blocks as something that gives them in the same order every time.

    A source is a matrix, the path of a file, or a callable that returns either.
    """
    if isinstance(blocks, (str, os.PathLike)):
        return _of_path(Path(blocks))
    if sparse.issparse(blocks) or isinstance(blocks, np.ndarray):
        return [blocks]
    if callable(blocks):
        return _Started(blocks)
    if not hasattr(blocks, "__iter__"):
        raise ValueError(f"blocks must be matrices, paths or callables; got {blocks!r}")
    if iter(blocks) is blocks:
        raise ValueError(
            "An iterator gives its blocks once, and they are read many times: pass a list, or a "
            "function that starts the iterator"
        )
    return blocks


class _Started:
    """The blocks of an iterator that a function starts."""

    def __init__(self, start):
        self._start = start

    def __iter__(self) -> Iterator:
        started = self._start()
        return iter([started]) if sparse.issparse(started) else iter(started)


def _of_path(path: Path):
    if not path.is_dir():
        return [path]
    found = sorted(entry for entry in path.iterdir() if entry.suffix in _ENDINGS)
    if not found:
        raise ValueError(f"{path} holds no blocks: no file ends in {', '.join(_ENDINGS)}")
    return found


def load_block(source):
    """Return the rows of a source as a CSR matrix or an array of single precision."""
    while callable(source):
        source = source()
    if isinstance(source, (str, os.PathLike)):
        source = _read(Path(source))
    return check_matrix(source, partial(check_array, ensure_min_samples=0, ensure_min_features=0))


def _read(path: Path):
    if path.suffix == ".npz":
        return sparse.load_npz(path)
    if path.suffix == ".npy":
        return np.load(path)
    with open(path, "rb") as lines:
        is_dense = len(lines.readline().split()) == 2
    return files.read_matrix(path, dense=is_dense)
