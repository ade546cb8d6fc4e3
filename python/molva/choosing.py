# SPDX-License-Identifier: MIT
"""How many clusters: the same rows clustered into several numbers of them, side by side.

Two things speak for a number. The criterion has a knee there: clusters up to it add much, those
behind it little. And the clusters come back whatever the seed. Neither is common in real data, so
the answer is often that there is none, and the table says why.
"""

from __future__ import annotations

import csv
import inspect
import io
from dataclasses import dataclass
from itertools import combinations
from pathlib import Path
from typing import Iterable, Iterator, NamedTuple, Sequence

import numpy as np
from scipy import sparse
from sklearn.metrics import adjusted_rand_score, normalized_mutual_info_score

from ._estimators import DirectKWay, RepeatedBisection
from ._matrix import LARGEST_INT, check_count, check_matrix
from ._models import CRITERIA, DEFAULTS, Models, code, criterion_code
from ._space import Space
from ._tables import html_table, html_text, text_table
from .analysis import criterion_value
from .quality import external_quality

METHODS = {"direct": DirectKWay, "bisection": RepeatedBisection}
_LARGER_IS_BETTER = {CRITERIA[name] for name in ("i1", "i2", "h1", "h2", "g3")}

# A knee rises over the chord of its curve by this share of the curve's range at least,
_KNEE_HEIGHT = 0.1
# and bends so many times as sharply as rows without groups can make a curve bend.
_KNEE_BEND = 1.3
# Seeds agree from this mean of their adjusted Rand indices on.
STABLE = 0.9
# Rows that tell in how many dimensions all of them spread.
_SAMPLE = 1000


class Knee(NamedTuple):
    """Where a curve bends: the number of clusters, and what one more adds before and behind it."""

    n_clusters: int
    before: float
    behind: float


def find_knee(
    numbers: Sequence[int],
    goodness: Sequence[float],
    dimension: float = 1,
    halving: bool = False,
) -> Knee | None:
    """Return the knee of a curve over increasing numbers, or None when it has none.

    The candidate is the point highest above the chord from the first point to the last. It is a
    knee when it lies a tenth of the curve's range above it, and when the curve is steeper before
    it than behind it by 1.3 times what it would be for rows without groups: spread evenly in d
    dimensions and cut into equal parts they give the curve -k^(-2/d), or with `halving`, as by
    repeated bisection, one that bends at powers of two. Two steps before and two behind are looked
    at, and the weaker contrast counts, so that one odd value makes no knee.
    """
    k, y = np.asarray(numbers, dtype=float), np.asarray(goodness, dtype=float)
    if len(k) < 3 or not np.isfinite(y).all() or y.max() == y.min():
        return None
    chord = y[0] + (y[-1] - y[0]) * (k - k[0]) / (k[-1] - k[0])
    heights = (y - chord) / (y.max() - y.min())
    at = int(np.argmax(heights))
    if heights[at] < _KNEE_HEIGHT:
        return None
    steps = np.diff(y) / np.diff(k)
    before, behind = steps[max(at - 2, 0) : at].min(), steps[at : at + 2].max()
    smooth = _smooth_bend(k[at - 1 : at + 2], dimension)
    if halving and k[at] == 2 ** round(np.log2(k[at])):
        # A part that is halved adds so many times what its halves add.
        smooth = max(smooth, 2 ** (1 + 2 / dimension))
    if _bend(before, behind) < _KNEE_BEND * smooth:
        return None
    return Knee(int(numbers[at]), float(before), float(behind))


def _smooth_bend(k: np.ndarray, dimension: float) -> float:
    """Return how many times -k^(-2/d) is steeper before the middle of three numbers than behind."""
    before, behind = np.diff(-(k ** (-2 / dimension))) / np.diff(k)
    return float(before / behind)


def _dimension(X, fit) -> float:
    """Return in how many dimensions the prepared rows spread, on the safe side.

    The participation ratio of the variances, of rows at even distances, is the number of dimensions
    of a box. Half of it is taken, as rows along a bent line fill a part of a second one, and rows
    of uneven density make a curve bend more than even ones.
    """
    _, prepared, _ = Space.fit(X, Models(**fit.models_))
    rows = prepared[:: -(-prepared.shape[0] // _SAMPLE)]
    products = rows @ rows.T
    products = np.asarray(products.todense() if sparse.issparse(products) else products, float)
    products -= products.mean(axis=0)
    products -= products.mean(axis=1, keepdims=True)
    squares = (products**2).sum()
    return float(np.trace(products) ** 2 / squares / 2) if squares > 0 else 0.5


def _bend(before: float, behind: float) -> float:
    """Return how many times a curve rises faster before a point, or falls faster behind it."""
    if before <= behind:
        return 1.0
    if behind > 0:
        return before / behind
    return behind / before if before < 0 else np.inf


class SweepRow(NamedTuple):
    """One number of clusters.

    Attributes
    ----------
    n_clusters : int
    value : float
        The value of the criterion, the best of all seeds.
    added : float
        What each further cluster changes in it, from the number before; before 2 stands 1. It is
        not-a-number for the first number when that is above 2.
    stability, least_stability : float
        Adjusted Rand index of the clusterings of two seeds, the mean and the least of all pairs:
        1 when they are the same, about 0 when they agree as much as chance would have it.
    smallest, median, largest : int, float, int
        Sizes of the clusters of the best seed.
    purity, nmi : float or None
        Of its clusters and the classes, where classes are given: the share of the rows in the
        largest class of their cluster, and normalised mutual information.
    """

    n_clusters: int
    value: float
    added: float
    stability: float
    least_stability: float
    smallest: int
    median: float
    largest: int
    purity: float | None
    nmi: float | None


_HEADS = {
    "n_clusters": ("clusters", "{}"),
    "value": ("value", "{:.5g}"),
    "added": ("added", "{:.3g}"),
    "stability": ("stability", "{:.3f}"),
    "least_stability": ("least", "{:.3f}"),
    "smallest": ("smallest", "{}"),
    "median": ("median", "{:g}"),
    "largest": ("largest", "{}"),
    "purity": ("purity", "{:.3f}"),
    "nmi": ("NMI", "{:.3f}"),
}


@dataclass(frozen=True, eq=False, repr=False)
class Sweep:
    """A table with a row for every number of clusters, and what it recommends.

    Iterating gives `SweepRow` tuples, which ``pandas.DataFrame(sweep)`` makes a table of; printed
    it is the table and the recommendation with its reasons.

    Attributes
    ----------
    rows : tuple of SweepRow
        By number of clusters.
    criterion : str
    recommended : int or None
        None when nothing speaks for one number.
    reasons : tuple of str
        Why, in words: of the knee, and of the seeds.
    """

    rows: tuple[SweepRow, ...]
    criterion: str
    recommended: int | None
    reasons: tuple[str, ...]

    def __iter__(self) -> Iterator[SweepRow]:
        return iter(self.rows)

    def __len__(self) -> int:
        return len(self.rows)

    def _columns(self) -> list[str]:
        with_classes = self.rows[0].purity is not None
        return [name for name in _HEADS if with_classes or name not in ("purity", "nmi")]

    def _table(self) -> tuple[list[str], list[list[str]]]:
        columns = self._columns()
        return [_HEADS[name][0] for name in columns], [
            [_cell(name, getattr(row, name)) for name in columns] for row in self.rows
        ]

    def _answer(self) -> str:
        answer = "No recommendation."
        if self.recommended is not None:
            answer = f"Recommended: {self.recommended} clusters."
        return "\n".join([answer, *self.reasons])

    def __str__(self) -> str:
        return f"{text_table(*self._table())}\n\n{self._answer()}"

    __repr__ = __str__

    def _repr_html_(self) -> str:
        return html_table(*self._table()) + html_text(self._answer())

    def to_csv(self, path=None) -> str | None:
        """Write the table with all its digits to a file, or return it as text without a path."""
        names = self._columns()
        text = io.StringIO()
        writer = csv.writer(text, lineterminator="\n")
        writer.writerow(names)
        writer.writerows([getattr(row, name) for name in names] for row in self.rows)
        if path is None:
            return text.getvalue()
        Path(path).write_text(text.getvalue(), encoding="utf-8")
        return None

    def plot(self, axes=None):
        """Draw the criterion and the stability over the numbers; needs matplotlib.

        Returns the axes of the criterion; without `axes` they are those of a new figure.
        """
        if axes is None:
            import matplotlib.pyplot as plt

            axes = plt.figure().add_subplot()
        numbers = [row.n_clusters for row in self.rows]
        axes.plot(numbers, [row.value for row in self.rows], "o-", color="C0")
        axes.set_xlabel("clusters")
        axes.set_ylabel(_shown(self.criterion), color="C0")
        agreement = axes.twinx()
        agreement.plot(numbers, [row.stability for row in self.rows], "s--", color="C1")
        agreement.set_ylim(min(0.0, *(row.stability for row in self.rows)), 1.05)
        agreement.set_ylabel("stability", color="C1")
        if self.recommended is not None:
            axes.axvline(self.recommended, color="0.7", zorder=0)
        return axes


def _cell(name: str, value: float) -> str:
    return "-" if np.isnan(value) else _HEADS[name][1].format(value)


def _sign(criterion: str) -> int:
    """Return 1 for criteria that are better when larger, -1 for the others."""
    return 1 if criterion_code(criterion) in _LARGER_IS_BETTER else -1


def _goodness(value: float, sign: int) -> float:
    return sign * value if np.isfinite(value) else -np.inf


def _shown(criterion: str) -> str:
    return criterion.upper().replace("1P", "1'")


def _check_numbers(n_clusters: object, nrows: int) -> list[int]:
    if not isinstance(n_clusters, Iterable) or isinstance(n_clusters, (str, bytes, dict)):
        raise ValueError(f"n_clusters must be a range or a list of numbers; got {n_clusters!r}")
    numbers = set()
    for number in n_clusters:
        numbers.add(check_count("Each of n_clusters", number, 2))
        if number > nrows:
            raise ValueError(f"n_clusters reaches {number}, but there are {nrows} rows")
    if not numbers:
        raise ValueError("n_clusters must hold a number; it is empty")
    return sorted(numbers)


def _check_seeds(seeds: object) -> Sequence[int]:
    """Return the seeds: those of a list, or as many as a number says, from 1 on."""
    if isinstance(seeds, (str, bytes, dict)) or not isinstance(seeds, Iterable):
        return range(1, check_count("seeds", seeds, 2) + 1)
    chosen = [check_count("Each of seeds", seed, -LARGEST_INT - 1) for seed in seeds]
    if len(chosen) < 2 or len(set(chosen)) < len(chosen):
        raise ValueError(f"seeds must be two or more, none of them twice; got {chosen}")
    return chosen


def _check_classes(classes, nrows: int) -> np.ndarray | None:
    if classes is None:
        return None
    classes = np.asarray(classes)
    if classes.shape != (nrows,):
        raise ValueError(f"Expected {nrows} classes, one for each row; got shape {classes.shape}")
    return classes


def _check_settings(estimator: type, settings: dict) -> None:
    known = set(inspect.signature(estimator).parameters) - {"n_clusters", "random_state", "n_jobs"}
    unknown = settings.keys() - known
    if unknown:
        raise TypeError(f"unexpected keyword argument {min(unknown)!r}")


def _measure(fits: list, best, added: float, classes: np.ndarray | None) -> SweepRow:
    kept = best.labels_ >= 0
    agreements = [
        adjusted_rand_score(one.labels_[kept], other.labels_[kept])
        for one, other in combinations(fits, 2)
    ]
    sizes = np.bincount(best.labels_[kept], minlength=best.n_clusters)
    purity = nmi = None
    if classes is not None:
        purity = external_quality(best.labels_, classes).purity
        nmi = float(normalized_mutual_info_score(classes[kept], best.labels_[kept]))
    return SweepRow(
        best.n_clusters,
        best.criterion_value_,
        added,
        float(np.mean(agreements)),
        float(min(agreements)),
        int(sizes.min()),
        float(np.median(sizes)),
        int(sizes.max()),
        purity,
        nmi,
    )


def _listed(numbers: Sequence[int]) -> str:
    texts = [str(number) for number in numbers]
    return " and ".join(filter(None, [", ".join(texts[:-1]), texts[-1]]))


def _words_of_knee(knee: Knee | None, criterion: str) -> str:
    name = _shown(criterion)
    if knee is None:
        return f"{name} has no clear knee: what a further cluster adds changes smoothly."
    sign = _sign(criterion)
    return (
        f"{name} has a knee at {knee.n_clusters}: a further cluster adds {sign * knee.before:.3g} "
        f"before it and {sign * knee.behind:.3g} behind it."
    )


def _words_of_seeds(rows: Sequence[SweepRow]) -> str:
    stable = [row.n_clusters for row in rows if row.stability >= STABLE]
    if not stable:
        return (
            f"No number has clusters that come back with other seeds (stability {STABLE}): "
            "they may be made by the method, not found in the data."
        )
    if len(stable) == len(rows):
        return "Every number has clusters that come back, so the seeds tell none from the others."
    return f"Clusters that come back with other seeds (stability {STABLE}): {_listed(stable)}."


def recommend(
    rows: Sequence[SweepRow], knee: Knee | None, criterion: str
) -> tuple[int | None, tuple[str, ...]]:
    """Return the number that has the knee and comes back with other seeds, or None, and why."""
    reasons = [_words_of_knee(knee, criterion), _words_of_seeds(rows)]
    if knee is None:
        return None, tuple(reasons)
    stability = next(row.stability for row in rows if row.n_clusters == knee.n_clusters)
    if stability >= STABLE:
        return knee.n_clusters, tuple(reasons)
    reasons.append(f"At the knee the seeds agree by {stability:.2f} only, which is too little.")
    return None, tuple(reasons)


def sweep(
    X,
    n_clusters: Iterable[int] = range(2, 13),
    *,
    method: str = "direct",
    criterion: str = "i2",
    seeds: int | Iterable[int] = 3,
    classes=None,
    n_jobs: int | None = None,
    **settings,
) -> Sweep:
    """Cluster the rows into several numbers of clusters with several seeds, and compare.

    A number is recommended when the criterion has a clear knee there and the clusterings of the
    seeds agree. The knee can be at neither end of the numbers, so take more than you expect; a
    sweep from 2 on has one cluster for its beginning, and may recommend 2.

    Parameters
    ----------
    X : {array-like, sparse matrix} of shape (n_samples, n_features)
    n_clusters : range or list of int, default=range(2, 13)
        Numbers to try, from 2 to the number of rows.
    method : {"direct", "bisection"}, default="direct"
        The estimator: `DirectKWay`, whose numbers of clusters have nothing to do with each other,
        or `RepeatedBisection`, which is faster, but favours powers of two by itself.
    criterion : str, default="i2"
    seeds : int or list of int, default=3
        Seeds to try with every number, two or more; a number is that many, from 1 on.
    classes : array-like of shape (n_samples,), optional
        Class of every row: numbers or names. Purity and NMI are told, but never used to choose.
    n_jobs : int or None, default=None
        Threads to use.
    **settings
        Everything else the estimator takes: similarity, row_model, col_model, prune, n_trials,
        n_iter, refine.
    """
    X = check_matrix(X)
    numbers = _check_numbers(n_clusters, X.shape[0])
    estimator = code("method", method, METHODS)
    sign = _sign(criterion)
    chosen_seeds = _check_seeds(seeds)
    classes = _check_classes(classes, X.shape[0])
    _check_settings(estimator, settings)
    # Settled once: all that is said of the models is said once, too.
    models = Models.chosen(X, {key: settings[key] for key in DEFAULTS.keys() & settings.keys()})
    settings.update(models._asdict())

    rows, curve = [], []
    for number in numbers:
        fits = [
            estimator(
                number, criterion=criterion, random_state=seed, n_jobs=n_jobs, **settings
            ).fit(X)
            for seed in chosen_seeds
        ]
        best = max(fits, key=lambda fit: _goodness(fit.criterion_value_, sign))
        if number == 2:
            together = np.minimum(best.labels_, 0)
            value = criterion_value(X, together, criterion, n_jobs=n_jobs, **best.models_)
            curve.append((1, value))
        curve.append((number, best.criterion_value_))
        added = np.nan
        if len(curve) > 1:
            (before, lesser), (_, value) = curve[-2:]
            added = (value - lesser) / (number - before)
        rows.append(_measure(fits, best, float(added), classes))

    halving = estimator is RepeatedBisection
    knee = find_knee(*zip(*((k, sign * value) for k, value in curve)), _dimension(X, best), halving)
    name = criterion.lower().replace("'", "p")
    return Sweep(tuple(rows), name, *recommend(rows, knee, criterion))
