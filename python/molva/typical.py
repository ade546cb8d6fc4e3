# SPDX-License-Identifier: MIT
"""The rows that show best what a cluster is like."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Iterator, NamedTuple

import numpy as np
from scipy import sparse

from ._matrix import check_count, check_labels, check_matrix
from ._models import Models
from ._space import Space
from ._tables import html_table, text_table
from ._texts import one_line, per_row
from ._threads import threads


class TypicalRow(NamedTuple):
    """A row among those most similar to the others of its cluster.

    Attributes
    ----------
    cluster, rank, row : int
    similarity : float
        Its average similarity to the other rows of the cluster; not-a-number without others.
    text : object
        What was given for the row, or None.
    """

    cluster: int
    rank: int
    row: int
    similarity: float
    text: object


@dataclass(frozen=True, eq=False, repr=False)
class TypicalRows:
    """The most typical rows of every cluster, the most typical first.

    Iterating gives `TypicalRow` tuples, which ``pandas.DataFrame(typical)`` makes a table of;
    printed it is that table, with texts on one line each.

    Attributes
    ----------
    rows : tuple of TypicalRow
        By cluster and rank.
    """

    rows: tuple[TypicalRow, ...]

    def __iter__(self) -> Iterator[TypicalRow]:
        return iter(self.rows)

    def __len__(self) -> int:
        return len(self.rows)

    def of(self, cluster: int) -> list[TypicalRow]:
        """Return those of one cluster."""
        return [row for row in self.rows if row.cluster == cluster]

    def _table(self) -> tuple[tuple[str, ...], list[list[str]], tuple[int, ...]]:
        heads = ("cluster", "row", "similarity")
        lines = [[str(row.cluster), str(row.row), f"{row.similarity:.3f}"] for row in self.rows]
        if all(row.text is None for row in self.rows):
            return heads, lines, ()
        texts = [one_line(row.text) for row in self.rows]
        return (*heads, "text"), [[*line, text] for line, text in zip(lines, texts)], (3,)

    def __str__(self) -> str:
        return text_table(*self._table())

    __repr__ = __str__

    def _repr_html_(self) -> str:
        return html_table(*self._table())


def _similarities_to_others(prepared, part: np.ndarray, n_clusters: int) -> np.ndarray:
    """Return every row's average similarity to the other rows of its cluster."""
    members = np.flatnonzero(part >= 0)
    shape = (n_clusters, len(part))
    chosen = sparse.csr_matrix((np.ones(len(members)), (part[members], members)), shape)
    prepared = prepared.astype(np.float64)
    sums = sparse.csr_matrix(chosen @ prepared)
    others = np.bincount(part[members], minlength=n_clusters) - 1
    to_all = np.asarray(prepared.multiply(sums[np.maximum(part, 0)]).sum(axis=1)).ravel()
    to_itself = np.asarray(prepared.multiply(prepared).sum(axis=1)).ravel()
    with np.errstate(invalid="ignore", divide="ignore"):
        return np.where(part >= 0, (to_all - to_itself) / others[np.maximum(part, 0)], np.nan)


def typical_rows(
    X, labels, n_rows: int = 3, texts=None, *, n_jobs: int | None = None, **models
) -> TypicalRows:
    """Return the rows of every cluster that are most similar to its other rows.

    Parameters
    ----------
    X : {array-like, sparse matrix} of shape (n_samples, n_features)
    labels : array-like of shape (n_samples,)
    n_rows : int, default=3
        Rows of each cluster, as far as there are so many. Of equal ones the first comes first.
    texts : sequence of length n_samples, optional
        What the rows are: texts, titles, keys.
    n_jobs : int or None, default=None
        Threads to use.
    **models
        similarity, row_model, col_model, prune.
    """
    X = check_matrix(X)
    part, n_clusters = check_labels(labels, X.shape[0])
    n_rows = check_count("n_rows", n_rows, 1)
    texts = per_row("texts", texts, X.shape[0])
    with threads(n_jobs):
        _, prepared, rows = Space.fit(X, Models.chosen(X, models))
    part = part[rows]
    similarities = _similarities_to_others(prepared, part, n_clusters)
    found = []
    for cluster in range(n_clusters):
        members = np.flatnonzero(part == cluster)
        best = members[np.argsort(-similarities[members], kind="stable")[:n_rows]]
        for rank, at in enumerate(best):
            row = int(rows[at])
            text = None if texts is None else texts[row]
            found.append(TypicalRow(cluster, rank, row, float(similarities[at]), text))
    return TypicalRows(tuple(found))
