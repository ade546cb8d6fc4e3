# SPDX-License-Identifier: MIT
"""From what callers pass to what the library borrows: matrices, labels, numbers."""

from __future__ import annotations

from numbers import Integral

import numpy as np
from scipy import sparse
from sklearn.utils import check_array

from . import _engine

LARGEST_INT = np.iinfo(np.int32).max

# The form of a matrix that the library takes, as scikit-learn's checks are asked for it.
FORM = dict(accept_sparse="csr", dtype=np.float32, order="C")

# More clusters than rows are allowed up to these numbers: rows may be a part of those clustered. A
# stray label would otherwise take the memory of as many clusters.
_CLUSTERS_PER_ROW = 10
_CLUSTERS_OF_FEW_ROWS = 1_000


def check_count(name: str, value: object, least: int) -> int:
    """Return an integer argument of at least `least` that the library's integers hold."""
    if isinstance(value, (bool, np.bool_)) or not isinstance(value, Integral):
        raise ValueError(f"{name} must be an integer; got {value!r}")
    if not least <= value <= LARGEST_INT:
        raise ValueError(f"{name} must be at least {least} and fit 32 bits; got {value}")
    return int(value)


def check_matrix(X, check=check_array):
    """Return X as an array or a CSR matrix of finite single-precision numbers.

    What is of that form already is not copied. `check` is scikit-learn's check of an estimator,
    where there is one.
    """
    _check_places(X)
    checked = check(X, **FORM)
    if checked is not X:
        _check_places(checked)
    return _without_tail(checked)


def _check_places(X) -> None:
    """Refuse a sparse matrix with an entry outside it.

    scipy does not look: it reads and writes memory wherever the indices of a damaged matrix point.
    """
    form = X.format if sparse.issparse(X) else None
    if form == "coo":
        _check_indices("Row", X.row, X.shape[0])
        _check_indices("Column", X.col, X.shape[1])
    elif form == "csr":
        _check_compressed(X, ("Row", "Column"), X.shape)
    elif form == "csc":
        _check_compressed(X, ("Column", "Row"), X.shape[::-1])
    elif form == "bsr":
        blocks = X.shape[0] // X.blocksize[0], X.shape[1] // X.blocksize[1]
        _check_compressed(X, ("Block row", "Block column"), blocks)


def _check_compressed(X, kinds: tuple[str, str], shape: tuple[int, int]) -> None:
    (line, entry), (n_lines, n_places), starts = kinds, shape, X.indptr
    _check_integers(f"{line} starts", starts)
    if len(starts) != n_lines + 1:
        raise ValueError(f"{line} starts must be {n_lines + 1} for the shape; got {len(starts)}")
    if starts[0] != 0:
        raise ValueError(f"{line} starts must begin with 0; got {starts[0]}")
    if (starts[1:] < starts[:-1]).any():
        at = int(np.argmax(starts[1:] < starts[:-1]))
        raise ValueError(
            f"{line} starts must not decrease; got {starts[at]} and then {starts[at + 1]}"
        )
    stored = min(len(X.indices), len(X.data))
    if starts[-1] > stored:
        raise ValueError(f"{line} starts end at {starts[-1]}, behind the {stored} entries stored")
    _check_indices(entry, X.indices[: starts[-1]], n_places)


def _check_indices(kind: str, indices: np.ndarray, places: int) -> None:
    _check_integers(f"{kind} indices", indices)
    if len(indices) and not 0 <= indices.min() <= indices.max() < places:
        wrong = indices[(indices < 0) | (indices >= places)][0]
        raise ValueError(f"{kind} index {wrong} is outside the matrix: there are {places}")


def _check_integers(what: str, array: np.ndarray) -> None:
    if array.ndim != 1 or not np.issubdtype(array.dtype, np.integer):
        raise ValueError(f"{what} must be integers, one after the other; got {array.dtype}")


def _without_tail(X):
    """Return a CSR matrix without what its arrays may hold behind the last entry."""
    if sparse.issparse(X) and len(X.data) > X.indptr[-1]:
        X = X.copy()
        X.prune()
    return X


def aligned(array: np.ndarray, dtype=None) -> np.ndarray:
    """Return an array as the library reads it, one element after the other, each in its place.

    Arrays that came in a message, or are views of records, may lie across the places of elements.
    """
    return np.require(array, dtype, ("C_CONTIGUOUS", "ALIGNED"))


def narrowed(array: np.ndarray) -> np.ndarray:
    """Return integers as the library's, which have 32 bits; those that fit already are shared."""
    narrow = aligned(array, np.int32)
    if array.dtype != narrow.dtype and not np.array_equal(array, narrow):
        raise ValueError("a number does not fit 32 bits")
    return narrow


def borrow(X) -> _engine.Matrix:
    """Return the library's view of a checked matrix.

    The arrays are shared; only indices of 64 bits are copied, and refused when they do not fit
    the library's 32.
    """
    nrows, ncols = X.shape
    if max(nrows, ncols) > LARGEST_INT:
        raise ValueError(f"The library takes at most {LARGEST_INT} rows and columns; got {X.shape}")
    if not sparse.issparse(X):
        return _engine.Matrix(nrows, ncols, None, None, aligned(X))
    if X.indptr[-1] > LARGEST_INT:
        raise ValueError(f"The library takes at most {LARGEST_INT} entries; got {X.indptr[-1]}")
    return _engine.Matrix(
        nrows, ncols, narrowed(X.indptr), narrowed(X.indices), aligned(X.data)
    )


def stored_in_full(X) -> bool:
    """Tell whether every cell is stored, which the library takes for a dense matrix."""
    return not sparse.issparse(X) or int(X.indptr[-1]) >= X.shape[0] * X.shape[1]


def label_array(labels, nrows: int) -> np.ndarray:
    """Return the labels of so many rows as an array of integers, none of them a stray one."""
    array = np.asarray(labels)
    if array.shape != (nrows,):
        raise ValueError(f"Expected {nrows} labels, one for each row; got shape {array.shape}")
    if array.size and not np.issubdtype(array.dtype, np.integer):
        raise ValueError(f"Labels must be integers; got {array.dtype}")
    most = max(_CLUSTERS_PER_ROW * nrows, _CLUSTERS_OF_FEW_ROWS)
    highest = int(array.max()) if array.size else -1
    if highest >= min(most, LARGEST_INT):
        raise ValueError(
            f"The label {highest} is too large: labels number the clusters from 0, and {nrows} "
            f"rows may have labels below {most}"
        )
    return array


def check_labels(labels, nrows: int) -> tuple[np.ndarray, int]:
    """Return labels as 32-bit integers, and the number of clusters: the highest label plus one.

    Labels below 0 stand for rows without a cluster.
    """
    array = label_array(labels, nrows)
    part = np.maximum(array.astype(np.int64), -1).astype(np.int32)
    n_clusters = int(part.max(initial=-1)) + 1
    if n_clusters == 0:
        raise ValueError("No row has a cluster: every label is negative")
    return part, n_clusters
