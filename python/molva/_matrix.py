# SPDX-License-Identifier: MIT
"""From what scikit-learn calls X to the arrays that the library borrows."""

from __future__ import annotations

import numpy as np
from scipy import sparse
from sklearn.utils import check_array

from . import _engine

LARGEST_INT = np.iinfo(np.int32).max


def check_matrix(X):
    """Return X as an array or a CSR matrix of finite single-precision numbers.

    What is of that form already is not copied.
    """
    return check_array(X, accept_sparse="csr", dtype=np.float32, order="C")


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
    indptr = np.ascontiguousarray(X.indptr, dtype=np.int32)
    indices = np.ascontiguousarray(X.indices, dtype=np.int32)
    return _engine.Matrix(nrows, ncols, indptr, indices, np.ascontiguousarray(X.data))


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
    if not np.issubdtype(array.dtype, np.integer):
        raise ValueError(f"Labels must be integers; got {array.dtype}")
    highest = int(array.max(initial=-1))
    if highest < 0:
        raise ValueError("No row has a cluster: every label is negative")
    if highest >= LARGEST_INT:
        raise ValueError(f"The label {highest} is too large")
    return np.ascontiguousarray(np.maximum(array, -1), dtype=np.int32), highest + 1
