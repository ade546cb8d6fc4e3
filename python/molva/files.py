# SPDX-License-Identifier: MIT
"""The program's files: matrices, labels, classes, clusterings and trees.

docs/file-formats.md describes them. Texts are UTF-8; other bytes survive reading and writing.
"""

from __future__ import annotations

import os
from typing import Iterable, NamedTuple

import numpy as np
from scipy import sparse

from . import _engine
from ._matrix import check_matrix
from .trees import Tree

_TEXT = dict(encoding="utf-8", errors="surrogateescape", newline="\n")


def read_matrix(path: str | os.PathLike, dense: bool = False):
    """Read a matrix with the program's own reader, checks and messages.

    Returns
    -------
    csr_matrix, or ndarray when `dense`
        Of single precision. The entries of a row stand in the order of the file.
    """
    with open(path, "rb"):
        pass  # A missing file is Python's matter.
    nrows, ncols, indptr, indices, data = _engine.read_matrix(os.fsencode(path), dense)
    if dense:
        return data.reshape(nrows, ncols)
    return sparse.csr_matrix((data, indices, indptr), shape=(nrows, ncols), copy=False)


def write_matrix(path: str | os.PathLike, X) -> None:
    """Write a matrix so that reading gives the same numbers: sparse ones sparse, arrays dense."""
    X = check_matrix(X)
    with open(path, "w", **_TEXT) as out:
        if not sparse.issparse(X):
            out.write(f"{X.shape[0]} {X.shape[1]}\n")
            out.writelines(" ".join(f"{value:.9g}" for value in row) + "\n" for row in X)
            return
        out.write(f"{X.shape[0]} {X.shape[1]} {X.nnz}\n")
        columns, values = (X.indices + 1).tolist(), X.data.tolist()
        for begin, end in zip(X.indptr[:-1], X.indptr[1:]):
            pairs = zip(columns[begin:end], values[begin:end])
            out.write(" ".join(f"{column} {value:.9g}" for column, value in pairs) + "\n")


def read_labels(path: str | os.PathLike) -> list[str]:
    """Read a file of row labels, column labels or classes: a line each, blanks at ends removed."""
    with open(path, **_TEXT) as lines:
        return [line.rstrip(" \t\n") for line in lines]


def write_labels(path: str | os.PathLike, labels: Iterable[object]) -> None:
    """Write row labels, column labels or classes, a line each."""
    texts = [str(label) for label in labels]
    for text in texts:
        if "\n" in text or text != text.rstrip(" \t"):
            raise ValueError(f"{text!r} would not be read back: it ends in blanks or breaks a line")
    with open(path, "w", **_TEXT) as out:
        out.writelines(text + "\n" for text in texts)


class Clustering(NamedTuple):
    """The contents of a clustering file; z-scores are None when it has none."""

    labels: np.ndarray
    internal_zscores: np.ndarray | None
    external_zscores: np.ndarray | None


def read_clustering(path: str | os.PathLike) -> Clustering:
    """Read a clustering file, with z-scores where it has them."""
    with open(path, **_TEXT) as lines:
        fields = [line.split() for line in lines]
    widths = {len(line) for line in fields}
    if not widths <= {1} and widths != {3}:
        counts = " and ".join(map(str, sorted(widths)))
        raise ValueError(f"{os.fspath(path)} is no clustering file: lines have {counts} fields")
    labels = np.array([line[0] for line in fields]).astype(np.int32)
    if widths != {3}:
        return Clustering(labels, None, None)
    scores = np.array([line[1:] for line in fields]).astype(np.float32)
    return Clustering(labels, scores[:, 0], scores[:, 1])


def write_clustering(path: str | os.PathLike, labels, statistics=None) -> None:
    """Write a clustering file, with the z-scores of `statistics` (ClusterStatistics) if given."""
    with open(path, "w", **_TEXT) as out:
        if statistics is None:
            out.writelines(f"{label}\n" for label in labels)
            return
        scores = zip(labels, statistics.internal_zscores, statistics.external_zscores)
        out.writelines("%d %s %s\n" % (label, _fixed(iz), _fixed(ez)) for label, iz, ez in scores)


def _fixed(number) -> str:
    """Write a number as C does, which tells the sign of not-a-number too."""
    if np.isnan(number):
        return "-nan" if np.signbit(number) else "nan"
    return f"{number:f}"


def read_tree(path: str | os.PathLike) -> tuple[np.ndarray, np.ndarray]:
    """Read a tree file: the parent and the similarity of each of its 2n - 1 nodes."""
    table = np.loadtxt(path, dtype=np.float64, ndmin=2)
    if table.shape[1] != 2:
        raise ValueError(f"{os.fspath(path)} is no tree file: lines have {table.shape[1]} fields")
    return table[:, 0].astype(np.int32), table[:, 1].astype(np.float32)


def write_tree(path: str | os.PathLike, tree: Tree) -> None:
    """Write a tree as the program does."""
    with open(path, "w", **_TEXT) as out:
        nodes = zip(tree.parents[:-1], tree.parent_similarities[:-1])
        out.writelines(f"{parent} {_fixed(similarity)}\n" for parent, similarity in nodes)
