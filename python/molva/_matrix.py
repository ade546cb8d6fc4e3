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

# More clusters than rows are allowed up to this number: rows may be a part of those clustered. A
# stray label would otherwise take the memory of as many clusters.
_EMPTY_CLUSTERS = 65_536


def check_count(name: str, value: object, least: int) -> int:
    """Return an integer argument of at least `least` that the library's integers hold."""
    if isinstance(value, (bool, np.bool_)) or not isinstance(value, Integral):
        raise ValueError(f"{name} must be an integer; got {value!r}")
    if not least <= value <= LARGEST_INT:
        raise ValueError(f"{name} must be at least {least} and fit 32 bits; got {value}")
    return int(value)


def check_matrix(X):
    """Return X as an array or a CSR matrix of finite single-precision numbers.

    What is of that form already is not copied.
    """
    return without_tail(check_array(X, **FORM))


def without_tail(X):
    """Return a CSR matrix without what its arrays may hold behind the last entry."""
    if sparse.issparse(X) and len(X.data) > X.indptr[-1]:
        X = X.copy()
        X.prune()
    return X


def narrowed(array: np.ndarray) -> np.ndarray:
    """Return integers as the library's, which have 32 bits; those that fit already are shared."""
    narrow = np.ascontiguousarray(array, dtype=np.int32)
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
        return _engine.Matrix(nrows, ncols, None, None, X)
    if X.indptr[-1] > LARGEST_INT:
        raise ValueError(f"The library takes at most {LARGEST_INT} entries; got {X.indptr[-1]}")
    return _engine.Matrix(
        nrows, ncols, narrowed(X.indptr), narrowed(X.indices), np.ascontiguousarray(X.data)
    )


def stored_in_full(X) -> bool:
    """Tell whether every cell is stored, which the library takes for a dense matrix."""
    return not sparse.issparse(X) or int(X.indptr[-1]) >= X.shape[0] * X.shape[1]


def check_labels(labels, nrows: int) -> tuple[np.ndarray, int]:
    """Return labels as 32-bit integers, and the number of clusters: the highest label plus one.

    Labels below 0 stand for rows without a cluster.
    """
    array = np.asarray(labels)
    if array.shape != (nrows,):
        raise ValueError(f"Expected {nrows} labels, one for each row; got shape {array.shape}")
    if array.size and not np.issubdtype(array.dtype, np.integer):
        raise ValueError(f"Labels must be integers; got {array.dtype}")
    highest = int(array.max()) if array.size else -1
    if highest < 0:
        raise ValueError("No row has a cluster: every label is negative")
    if highest >= max(nrows, _EMPTY_CLUSTERS):
        raise ValueError(f"The label {highest} is too large: labels number the clusters from 0")
    return np.maximum(array.astype(np.int64), -1).astype(np.int32), highest + 1
