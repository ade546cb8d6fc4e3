# SPDX-License-Identifier: MIT
"""The program's files: matrices, labels, classes, clusterings and trees.

docs/file-formats.md describes them. Texts are UTF-8; other bytes survive reading and writing.
"""

from __future__ import annotations

import os
from typing import Iterable, Iterator, NamedTuple

import numpy as np
from scipy import sparse

from . import _engine
from ._matrix import check_matrix, label_array, narrowed
from .trees import Tree

# Characters of a line that the program's reader takes whole.
_LONGEST_LINE = 131_070

_TEXT = dict(encoding="utf-8", errors="surrogateescape", newline="\n")


def read_matrix(path: str | os.PathLike, dense: bool = False):
    """Read a matrix with the program's own reader, checks and messages.

    Returns
    -------
    csr_matrix, or ndarray when `dense`
        Of single precision. The entries of a row stand in the order of the file.
    """
    name = os.fsencode(path)
    with open(name, "rb"):
        pass  # A missing file is Python's matter.
    nrows, ncols, indptr, indices, data = _engine.read_matrix(name, dense)
    if dense:
        return data.reshape(nrows, ncols)
    if indices.min(initial=0) < 0:
        # The program meets these in its first run; scipy would write outside its arrays.
        raise ValueError(f"{os.fspath(path)} has column numbers below 1; the first column is 1")
    return sparse.csr_matrix((data, indices, indptr), shape=(nrows, ncols), copy=False)


def _matrix_lines(X) -> Iterator[str]:
    """Yield the header of a matrix and its rows, each as a line of its file."""
    if not sparse.issparse(X):
        yield f"{X.shape[0]} {X.shape[1]}"
        for row in X:
            yield " ".join(f"{value:.9g}" for value in row)
        return
    yield f"{X.shape[0]} {X.shape[1]} {X.nnz}"
    columns, values = (X.indices + 1).tolist(), X.data.tolist()
    for begin, end in zip(X.indptr[:-1], X.indptr[1:]):
        pairs = zip(columns[begin:end], values[begin:end])
        yield " ".join(f"{column} {value:.9g}" for column, value in pairs)


def write_matrix(path: str | os.PathLike, X) -> None:
    """Write a matrix so that reading gives the same numbers: sparse ones sparse, arrays dense.

    Rows that the program's reader would cut, of some ten thousand entries, are refused.
    """
    lines = list(_matrix_lines(check_matrix(X)))
    for row, line in enumerate(lines, start=-1):
        if len(line) > _LONGEST_LINE:
            raise ValueError(
                f"row {row} would be a line of {len(line)} characters, and the program reads no "
                f"more than {_LONGEST_LINE}"
            )
    with open(path, "w", **_TEXT) as out:
        out.writelines(line + "\n" for line in lines)


def read_labels(path: str | os.PathLike) -> list[str]:
    """Read a file of row labels, column labels or classes: a line each, blanks at ends removed."""
    with open(path, **_TEXT) as lines:
        return [line.rstrip(" \t\n") for line in lines]


def write_labels(path: str | os.PathLike, labels: Iterable[object]) -> None:
    """Write row labels, column labels or classes, a line each.

    Labels that the program would not read back are refused, and then nothing is written.
    """
    lines = [_label_line(str(label)) for label in labels]
    with open(path, "wb") as out:
        out.writelines(lines)


def _label_line(text: str) -> bytes:
    line = text.encode(_TEXT["encoding"], _TEXT["errors"])
    if len(line) > _LONGEST_LINE:
        raise ValueError(
            f"The label that begins with {text[:20]!r} has {len(line)} bytes, and the program "
            f"reads no more than {_LONGEST_LINE}"
        )
    if b"\n" in line or b"\0" in line:
        raise ValueError(f"{text!r} would not be read back: it has a line end or a null character")
    if line != line.rstrip(b" \t"):
        raise ValueError(f"{text!r} would not be read back: it ends in blanks")
    return line + b"\n"


class Clustering(NamedTuple):
    """The contents of a clustering file; z-scores are None when it has none."""

    labels: np.ndarray
    internal_zscores: np.ndarray | None = None
    external_zscores: np.ndarray | None = None


def _read_numbers(path: str | os.PathLike, kind: str, *widths: int) -> list[np.ndarray]:
    """Return the fields of all lines as columns, the first of integers and the others of floats.

    All lines must have the same number of fields, one of `widths`.
    """
    with open(path, **_TEXT) as lines:
        table = [line.split() for line in lines]
    found = {len(fields) for fields in table} or {widths[0]}
    try:
        if len(found) > 1 or not found <= set(widths):
            raise ValueError(f"lines have {' and '.join(map(str, sorted(found)))} fields")
        columns = np.array(table, dtype=str).reshape(len(table), *found).T
        return [narrowed(columns[0].astype(np.int64)), *columns[1:].astype(np.float32)]
    except (ValueError, OverflowError) as error:
        raise ValueError(f"{os.fspath(path)} is no {kind} file: {error}") from None


def read_clustering(path: str | os.PathLike) -> Clustering:
    """Read a clustering file, with z-scores where it has them."""
    return Clustering(*_read_numbers(path, "clustering", 1, 3))


def write_clustering(path: str | os.PathLike, labels, statistics=None) -> None:
    """Write a clustering file, with the z-scores of `statistics` (ClusterStatistics) if given."""
    labels = label_array(labels, np.size(labels))
    columns = [labels]
    if statistics is not None:
        columns += [statistics.internal_zscores, statistics.external_zscores]
    if {len(column) for column in columns} != {len(labels)}:
        raise ValueError(f"{len(labels)} labels beside {len(columns[1])} z-scores")
    with open(path, "w", **_TEXT) as out:
        for label, *scores in zip(*columns):
            out.write(" ".join([str(label), *map(_fixed, scores)]) + "\n")


def _fixed(number) -> str:
    """Write a number as C does, which tells the sign of not-a-number too."""
    if np.isnan(number):
        return "-nan" if np.signbit(number) else "nan"
    return f"{number:f}"


def read_tree(path: str | os.PathLike) -> tuple[np.ndarray, np.ndarray]:
    """Read a tree file: the parent and the similarity of each of its 2n - 1 nodes."""
    parents, similarities = _read_numbers(path, "tree", 2)
    return parents, similarities


def write_tree(path: str | os.PathLike, tree: Tree) -> None:
    """Write a tree as the program does."""
    with open(path, "w", **_TEXT) as out:
        nodes = zip(tree.parents[:-1], tree.parent_similarities[:-1])
        out.writelines(f"{parent} {_fixed(similarity)}\n" for parent, similarity in nodes)
