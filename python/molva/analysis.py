# SPDX-License-Identifier: MIT
"""What a clustering is worth and what it is about.

The functions measure any labels, wherever they come from. `similarity`, `row_model`, `col_model`,
`prune` and `n_jobs` have the meanings and defaults of the estimators; pass a fitted one's
``**models_`` to measure its labels where they were made.
"""

from __future__ import annotations

from dataclasses import dataclass
from typing import Iterator, NamedTuple, Sequence

import numpy as np

from . import _engine
from ._matrix import borrow, check_count, check_labels, check_matrix
from ._models import Models, criterion_code
from ._tables import html_table
from ._threads import threads


def view(X, labels, models: dict):
    """Return what the entry points take: matrix, models, number of clusters, labels."""
    X = check_matrix(X)
    part, n_clusters = check_labels(labels, X.shape[0])
    return borrow(X), Models.chosen(X, models).codes(), n_clusters, part


class ClusterStatistics(NamedTuple):
    """Measures of every cluster and every row.

    Attributes
    ----------
    sizes : ndarray of shape (n_clusters,)
    internal_similarity, internal_deviation : ndarray of shape (n_clusters,)
        Average similarity of two rows of the cluster, and the deviation over its rows.
    external_similarity, external_deviation : ndarray of shape (n_clusters,)
        The same of a row in the cluster and one outside.
    internal_zscores, external_zscores : ndarray of shape (n_samples,)
        How far a row's own average lies from its cluster's, in deviations. 0 for rows that
        preparation drops, -100 for other rows without a cluster; infinite or not-a-number in
        clusters of one row.
    """

    sizes: np.ndarray
    internal_similarity: np.ndarray
    internal_deviation: np.ndarray
    external_similarity: np.ndarray
    external_deviation: np.ndarray
    internal_zscores: np.ndarray
    external_zscores: np.ndarray


def cluster_statistics(X, labels, *, n_jobs: int | None = None, **models) -> ClusterStatistics:
    """Measure every cluster and every row of a clustering."""
    with threads(n_jobs):
        return ClusterStatistics(*_engine.cluster_statistics(*view(X, labels, models)))


def criterion_value(
    X, labels, criterion: str = "i2", *, n_jobs: int | None = None, **models
) -> float:
    """Return the value of a criterion for a clustering.

    I1, I2, H1, H2 and G3 are better when larger, the others when smaller.
    """
    with threads(n_jobs):
        return _engine.criterion_value(*view(X, labels, models), criterion_code(criterion))


_KINDS = "descriptive", "discriminating"


class Feature(NamedTuple):
    """One line of the table of features."""

    cluster: int
    kind: str
    rank: int
    feature: object
    share: float


@dataclass(frozen=True, eq=False, repr=False)
class ClusterFeatures:
    """The columns that describe every cluster and those that tell it from the rest, best first.

    Iterating gives `Feature` tuples, which ``pandas.DataFrame(features)`` makes a table of;
    printed it is a list of names for every cluster.

    Attributes
    ----------
    descriptive, discriminating : ndarray of shape (n_clusters, n_features)
        Column numbers; -1 in slots without a column.
    descriptive_shares, discriminating_shares : ndarray of shape (n_clusters, n_features)
        Their shares of the similarity inside the cluster, and of the distance between the cluster
        and all other rows.
    names : sequence or None
        Names of all columns.
    """

    descriptive: np.ndarray
    descriptive_shares: np.ndarray
    discriminating: np.ndarray
    discriminating_shares: np.ndarray
    names: Sequence | None = None

    def name(self, column: int):
        """Return the name of a column, or its number when there are no names."""
        return int(column) if self.names is None else self.names[column]

    def rows(self, cluster: int, kind: str = "descriptive") -> Iterator[Feature]:
        """Yield the features of one cluster, "descriptive" or "discriminating"."""
        columns, shares = getattr(self, kind)[cluster], getattr(self, f"{kind}_shares")[cluster]
        for rank, (column, share) in enumerate(zip(columns, shares)):
            if column >= 0:
                yield Feature(cluster, kind, rank, self.name(column), float(share))

    def __iter__(self) -> Iterator[Feature]:
        for cluster in range(len(self.descriptive)):
            for kind in _KINDS:
                yield from self.rows(cluster, kind)

    def _repr_html_(self) -> str:
        lines = [
            [str(cluster), *(self._shown(cluster, kind) for kind in _KINDS)]
            for cluster in range(len(self.descriptive))
        ]
        return html_table(("cluster", *_KINDS), lines, left=(1, 2))

    def _shown(self, cluster: int, kind: str) -> str:
        return ", ".join(f"{row.feature} {row.share:.1%}" for row in self.rows(cluster, kind))

    def __str__(self) -> str:
        lines = []
        for cluster in range(len(self.descriptive)):
            heads = f"cluster {cluster:3}, {_KINDS[0]}", _KINDS[1]
            for head, kind in zip(heads, _KINDS):
                lines.append(f"{head:>24}:  {self._shown(cluster, kind)}")
        return "\n".join(lines)

    __repr__ = __str__


def column_names(feature_names, n_columns: int) -> Sequence | None:
    """Return names from a list of them or from what knows them, as a vectoriser does."""
    if feature_names is None:
        return None
    if hasattr(feature_names, "get_feature_names_out"):
        feature_names = feature_names.get_feature_names_out()
    names = list(feature_names)
    if len(names) != n_columns:
        raise ValueError(f"{len(names)} names for {n_columns} columns")
    return names


def cluster_features(
    X, labels, n_features: int = 5, feature_names=None, *, n_jobs: int | None = None, **models
) -> ClusterFeatures:
    """Name the columns that describe every cluster and those that tell it from the rest.

    Parameters
    ----------
    X : {array-like, sparse matrix} of shape (n_samples, n_features)
    labels : array-like of shape (n_samples,)
    n_features : int, default=5
        Columns to name for each cluster, as far as there are so many.
    feature_names : sequence of str, or object with get_feature_names_out, optional
    n_jobs : int or None, default=None
        Threads to use.
    **models
        similarity, row_model, col_model, prune.
    """
    matrix, codes, n_clusters, part = view(X, labels, models)
    names = column_names(feature_names, matrix.ncols)
    named = min(check_count("n_features", n_features, 1), matrix.ncols)
    with threads(n_jobs):
        lists = _engine.cluster_features(matrix, codes, n_clusters, part, named)
    return ClusterFeatures(*lists, names)
