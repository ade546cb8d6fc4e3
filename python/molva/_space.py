# SPDX-License-Identifier: MIT
"""The space that a fitted clustering lives in, so that new rows can be brought into it."""

from __future__ import annotations

from dataclasses import dataclass

import numpy as np
from scipy import sparse

from . import _engine
from ._matrix import borrow, stored_in_full
from ._models import Models


def _scaled(values: np.ndarray, row_model: str, largest: np.ndarray) -> np.ndarray:
    """Apply a row model to values, `largest` being the largest magnitude in the row of each."""
    if row_model == "none":
        return values
    with np.errstate(invalid="ignore", divide="ignore"):
        if row_model == "maxtf":
            return 0.5 + 0.5 * values / largest
        if row_model == "sqrt":
            return np.sign(values) * (1 + np.sqrt(np.abs(values)))
        return np.where(values == 0, 0, 1 + np.log2(values))


def _unit_rows(rows):
    """Scale rows to unit length; rows of zeros stay."""
    if sparse.issparse(rows):
        lengths = np.sqrt(np.asarray(rows.multiply(rows).sum(axis=1)).ravel())
        scale = np.divide(1, lengths, out=np.ones_like(lengths), where=lengths > 0)
        return sparse.csr_matrix(sparse.diags(scale) @ rows)
    lengths = np.linalg.norm(rows, axis=1, keepdims=True)
    return np.divide(rows, lengths, out=np.array(rows), where=lengths > 0)


@dataclass(frozen=True)
class Space:
    """The models as fitted to one matrix.

    Attributes
    ----------
    models : Models
        Similarity, row model, column model and pruning fraction.
    in_full : bool
        Whether all cells are stored, zeros included: they are scaled by the row model then.
    columns : ndarray
        The columns of the matrix that pruning kept.
    weights : ndarray
        The weight of each kept column under the column model.
    """

    models: Models
    in_full: bool
    columns: np.ndarray
    weights: np.ndarray

    @classmethod
    def fit(cls, X, models: Models):
        """Return the space of a checked matrix, its prepared rows, and which rows they are."""
        nrows, ncols, indptr, indices, data, rows, columns = _engine.prepare(
            borrow(X), models.codes()
        )
        prepared = sparse.csr_matrix((data, indices, indptr), shape=(nrows, ncols), copy=False)
        columns = columns[:ncols].copy()
        weights = np.ones(ncols)
        if models.col_model == "idf":
            stored = np.bincount(X.indices, minlength=X.shape[1])[columns]
            weights = -np.log(stored / X.shape[0])
        in_full = stored_in_full(X) or models.similarity == "correlation"
        return cls(models, in_full, columns, weights), prepared, rows[:nrows].copy()

    def transform(self, X):
        """Return the rows of a checked matrix as unit vectors over the kept columns."""
        return self._transform_full(X) if self.in_full else self._transform_sparse(X)

    def _transform_full(self, X):
        values = (X.toarray() if sparse.issparse(X) else X).astype(np.float64)
        largest = np.abs(values).max(axis=1, keepdims=True)
        rows = _scaled(values, self.models.row_model, largest)
        if self.models.similarity == "correlation":
            rows = rows - rows.mean(axis=1, keepdims=True)
        return _unit_rows(rows)

    def _transform_sparse(self, X):
        X = sparse.csr_matrix(X, dtype=np.float64)
        stored = np.diff(X.indptr)
        largest = np.zeros(X.shape[0])
        np.maximum.at(largest, np.repeat(np.arange(X.shape[0]), stored), np.abs(X.data))
        values = _scaled(X.data, self.models.row_model, np.repeat(largest, stored))
        rows = sparse.csr_matrix((values, X.indices, X.indptr), shape=X.shape)
        return _unit_rows(rows[:, self.columns] @ sparse.diags(self.weights))

    def centroids(self, prepared, labels: np.ndarray, n_clusters: int):
        """Return the sums of the prepared rows of every cluster, brought to unit length."""
        shape = (n_clusters, prepared.shape[0])
        members = sparse.csr_matrix((np.ones(labels.size), (labels, np.arange(labels.size))), shape)
        sums = members @ prepared.astype(np.float64)
        return _unit_rows(sums.toarray() if self.in_full else sums)
