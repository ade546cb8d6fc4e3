# SPDX-License-Identifier: MIT
"""A clustering at a glance: a line for every cluster."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Iterator, NamedTuple, Sequence

import numpy as np
from scipy import sparse

from ._tables import html_table, html_text, text_table
from ._texts import one_line
from .analysis import ClusterStatistics


class SummaryRow(NamedTuple):
    """One cluster.

    Attributes
    ----------
    cluster, size : int
    internal_similarity, internal_deviation : float
        Average similarity of two rows of the cluster, and the deviation over its rows.
    external_similarity, external_deviation : float
        The same of a row in the cluster and one outside.
    features : tuple
        The columns that describe it, best first: names, or numbers where there are none.
    """

    cluster: int
    size: int
    internal_similarity: float
    internal_deviation: float
    external_similarity: float
    external_deviation: float
    features: tuple


_HEADS = ("cluster", "size", "ISim", "IDev", "ESim", "EDev", "features")
_WORDS = (len(_HEADS) - 1,)  # The column of words.


@dataclass(frozen=True, eq=False, repr=False)
class ClusterSummary:
    """A table with a row for every cluster, under the names that the program's report has.

    Iterating gives `SummaryRow` tuples; ``pandas.DataFrame(summary)`` makes a table of them.

    Attributes
    ----------
    rows : tuple of SummaryRow
        By number of the cluster.
    without_cluster : int
        Rows that preparation dropped.
    """

    rows: tuple[SummaryRow, ...]
    without_cluster: int = 0

    def __iter__(self) -> Iterator[SummaryRow]:
        return iter(self.rows)

    def __len__(self) -> int:
        return len(self.rows)

    def to_dict(self) -> dict[str, list]:
        """Return the columns of the table by their names."""
        return dict(zip(SummaryRow._fields, map(list, zip(*self.rows))))

    def _lines(self) -> list[list[str]]:
        return [
            [str(cluster), str(size), *(f"{number:.3f}" for number in numbers),
             ", ".join(one_line(name) for name in features)]
            for cluster, size, *numbers, features in self.rows
        ]  # fmt: skip

    def _foot(self) -> str:
        rows = sum(row.size for row in self.rows)
        foot = f"{_counted(rows, 'row')} in {_counted(len(self.rows), 'cluster')}"
        return foot + (f", {self.without_cluster} in none" if self.without_cluster else "")

    def __str__(self) -> str:
        return text_table(_HEADS, self._lines(), _WORDS) + f"\n\n{self._foot()}"

    __repr__ = __str__

    def to_html(self, most: int | None = None) -> str:
        """Return the table as HTML, as notebooks show it; at most so many of its rows."""
        return html_table(_HEADS, self._lines(), _WORDS, most) + html_text(self._foot())

    def _repr_html_(self) -> str:
        return self.to_html()


def _counted(count: int, noun: str) -> str:
    return f"{count} {noun}" + ("" if count == 1 else "s")


def _best_columns(centroid: np.ndarray, count: int) -> np.ndarray:
    """Return the columns with the largest shares of a unit sum, the square of each being its share.

    Columns that add nothing are left out; of equal ones the first comes first.
    """
    order = np.argsort(-(centroid**2), kind="stable")[:count]
    return order[centroid[order] != 0]


def summarize(
    statistics: ClusterStatistics,
    centroids,
    columns: np.ndarray,
    names: Sequence | None,
    n_features: int,
) -> ClusterSummary:
    """Make the summary of measured clusters, whose centroids stand over some of the columns."""
    rows = []
    for cluster, numbers in enumerate(zip(*statistics[:5])):
        centroid = centroids[cluster]
        centroid = centroid.toarray().ravel() if sparse.issparse(centroid) else centroid
        best = columns[_best_columns(centroid, n_features)].tolist()
        features = tuple(best if names is None else [names[column] for column in best])
        size, *similarities = numbers
        rows.append(SummaryRow(cluster, int(size), *map(float, similarities), features))
    in_none = len(statistics.internal_zscores) - int(statistics.sizes.sum())
    return ClusterSummary(tuple(rows), in_none)
