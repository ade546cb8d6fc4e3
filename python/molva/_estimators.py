# SPDX-License-Identifier: MIT
"""The two clusterings as estimators after scikit-learn's rules."""

from __future__ import annotations

from functools import partial
from numbers import Integral
from typing import Callable

import numpy as np
from scipy import sparse
from sklearn.base import (
    BaseEstimator,
    ClassNamePrefixFeaturesOutMixin,
    ClusterMixin,
    TransformerMixin,
)
from sklearn.utils import check_random_state
from sklearn.utils.validation import check_is_fitted

from . import _engine, analysis
from ._explaining import Explaining
from ._matrix import LARGEST_INT, borrow, check_count, check_matrix
from ._models import Models, criterion_code
from ._space import Space
from ._threads import threads

try:
    from sklearn.utils.validation import validate_data
except ImportError:  # Before scikit-learn 1.6 it is a method.

    def validate_data(estimator, X, **options):
        return estimator._validate_data(X, **options)


_BISECTION, _TRIAL = 1, 2


def _seed(random_state) -> int:
    """Return the seed of the library's random numbers; an integer is taken as it is."""
    if isinstance(random_state, Integral):
        seed = int(random_state)
        if not -LARGEST_INT - 1 <= seed <= LARGEST_INT:
            raise ValueError(f"random_state must fit 32 bits with a sign; got {seed}")
        return seed
    return int(check_random_state(random_state).randint(LARGEST_INT))


def _check_flag(name: str, value: object) -> bool:
    if not isinstance(value, (bool, np.bool_)) and value not in (0, 1):
        raise ValueError(f"{name} must be True or False; got {value!r}")
    return bool(value)


class _RowClusterer(
    Explaining, ClassNamePrefixFeaturesOutMixin, TransformerMixin, ClusterMixin, BaseEstimator
):
    """What both estimators share: everything but the run itself."""

    def __init__(
        self,
        n_clusters: int = 8,
        *,
        criterion: str = "i2",
        similarity: str = "cosine",
        row_model: str = "none",
        col_model: str = "auto",
        prune: float = 1.0,
        n_trials: int = 10,
        n_iter: int = 10,
        random_state=None,
        n_jobs: int | None = None,
        verbose: int = 0,
    ):
        self.n_clusters = n_clusters
        self.criterion = criterion
        self.similarity = similarity
        self.row_model = row_model
        self.col_model = col_model
        self.prune = prune
        self.n_trials = n_trials
        self.n_iter = n_iter
        self.random_state = random_state
        self.n_jobs = n_jobs
        self.verbose = verbose

    def fit(self, X, y=None):
        """Cluster the rows of a matrix.

        Parameters
        ----------
        X : {array-like, sparse matrix} of shape (n_samples, n_features)
            Rows to cluster. CSR matrices and arrays of single precision are not copied. Entries
            stored in a sparse matrix count as such even when they are 0.
        y : ignored

        Returns
        -------
        self
        """
        X = self._checked(X, reset=True)
        with threads(self.n_jobs):
            self._fit(X)
        return self

    def _fit(self, X) -> None:
        """Cluster the rows of a checked matrix, with the threads that are set."""
        n_clusters = check_count("n_clusters", self.n_clusters, 1)
        if X.shape[0] < n_clusters:
            raise ValueError(f"n_samples={X.shape[0]} should be >= n_clusters={n_clusters}.")
        crfun = criterion_code(self.criterion)
        models = Models.choose(
            X,
            similarity=self.similarity,
            row_model=self.row_model,
            col_model=self.col_model,
            prune=self.prune,
        )
        matrix, codes = borrow(X), models.codes()
        labels = self._cluster(
            matrix,
            codes,
            crfun=crfun,
            ntrials=check_count("n_trials", self.n_trials, 1),
            niter=check_count("n_iter", self.n_iter, 0),
            seed=_seed(self.random_state),
            nparts=n_clusters,
            progress=self._progress(),
        )
        found = matrix, codes, n_clusters, labels
        statistics = analysis.ClusterStatistics(*_engine.cluster_statistics(*found))
        value = _engine.criterion_value(*found, crfun)
        space, prepared, rows = Space.fit(X, models)
        centers = space.centroids(prepared, labels[rows], n_clusters)

        # Together, so that a run that is stopped leaves what an earlier one found.
        self.labels_ = labels
        self.models_ = models._asdict()
        self.statistics_ = statistics
        self.criterion_value_ = value
        self._space = space
        self.cluster_centers_ = centers

    def _checked(self, X, reset: bool = False):
        """Return X in the library's form; without `reset` it must have the fitted columns."""
        return check_matrix(X, partial(validate_data, self, reset=reset))

    def _cluster(self, matrix, codes, **settings) -> np.ndarray:
        raise NotImplementedError

    def _progress(self) -> Callable[[int, int, int], None] | None:
        raise NotImplementedError

    def _report(self, told: dict[int, str]) -> Callable[[int, int, int], None]:
        name = type(self).__name__

        def report(event: int, done: int, total: int) -> None:
            if event in told:
                print(f"{name}: {told[event]} {done} of {total}", flush=True)

        return report

    def predict(self, X) -> np.ndarray:
        """Return for each new row the cluster whose centroid is most similar to it.

        The program has no such step. New rows are scaled by the fitted row model and the fitted
        column weights and reduced to the columns that were kept; of equally similar clusters the
        first wins. On the rows of the fit the answers may differ from `labels_`: no criterion asks
        for the nearest centroid alone, and refinement may stop before every row is at its nearest.

        Parameters
        ----------
        X : {array-like, sparse matrix} of shape (n_samples, n_features)

        Returns
        -------
        ndarray of shape (n_samples,)
            -1 for rows of which nothing is left.
        """
        similarities, empty = self._similarities(X)
        labels = np.argmax(similarities, axis=1).astype(np.int32)
        labels[empty] = -1
        return labels

    def transform(self, X) -> np.ndarray:
        """Return the similarity of each new row to the centroid of each cluster.

        They are the cosines, or correlation coefficients, that `predict` takes the largest of.

        Parameters
        ----------
        X : {array-like, sparse matrix} of shape (n_samples, n_features)

        Returns
        -------
        ndarray of shape (n_samples, n_clusters)
            0 for rows of which nothing is left.
        """
        return self._similarities(X)[0]

    def score(self, X, y=None) -> float:
        """Return how near new rows are to the centroids: 1 when every row stands on one.

        It is the average of their largest similarities, 0 of a row of which nothing is left, so
        larger is better whatever the criterion. On the rows of the fit more clusters mostly have a
        higher one; rows that were kept out tell more.

        Parameters
        ----------
        X : {array-like, sparse matrix} of shape (n_samples, n_features)
        y : ignored
        """
        return float(self._similarities(X)[0].max(axis=1).mean())

    def _similarities(self, X) -> tuple[np.ndarray, np.ndarray]:
        """Return the similarities of rows to centroids, and of which rows nothing is left."""
        check_is_fitted(self)
        X = self._checked(X)
        self._space.models.check_values(X)
        rows = self._space.transform(X)
        similarities = rows @ self.cluster_centers_.T
        if sparse.issparse(rows):
            empty = np.asarray(rows.multiply(rows).sum(axis=1)).ravel() == 0
            return similarities.toarray(), empty
        return similarities, ~rows.any(axis=1)

    @property
    def _n_features_out(self) -> int:
        return self.cluster_centers_.shape[0]


_PARAMETERS = """
    Parameters
    ----------
    n_clusters : int, default=8
        Clusters to make.
    criterion : {"i1", "i2", "e1", "g1", "g1p", "h1", "h2", "g3", "h3"}, default="i2"
        The function to optimise; docs/criteria.md has the formulas.
    similarity : {"cosine", "correlation"}, default="cosine"
        How rows are compared. The correlation coefficient stores every cell.
    row_model : {"none", "maxtf", "sqrt", "log"}, default="none"
        How the values of a row are scaled.
    col_model : {"auto", "none", "idf"}, default="auto"
        How columns are weighted. "auto" is "idf" for sparse matrices under the cosine, as long as
        not every cell is stored, and "none" otherwise, where IDF has nothing to tell apart.
    prune : float from 0 to 1, default=1.0
        Columns of a sparse matrix are kept, heaviest first, until the squares of their weights in
        the unit sum of all rows pass prune * prune. A column stored in one row is always dropped.
    n_trials : int, default=10
        Random starts, of which the best is kept; in repeated bisection for every split.
    n_iter : int, default=10
        Refinement passes at most.
    random_state : int, RandomState or None, default=None
        An integer is the program's -seed (whose default is 1); from anything else one is drawn.
    n_jobs : int or None, default=None
        Threads to use; the results are the same, bit for bit, for every number. None is 1, -1 all
        processors that the process may use, -2 one fewer, and so on.
"""

_ATTRIBUTES = """
    Attributes
    ----------
    labels_ : ndarray of shape (n_samples,)
        Cluster of every row, the tightest and best separated first; -1 for rows that preparation
        drops: those without entries in a kept column.
    criterion_value_ : float
        The value of the criterion.
    statistics_ : ClusterStatistics
        Sizes, similarities, deviations and z-scores.
    cluster_centers_ : {ndarray, CSR matrix} of shape (n_clusters, n_kept_features)
        Unit sums of the prepared rows, over the columns that pruning kept.
    models_ : dict
        Similarity, models and pruning as used, "auto" decided; keywords of the analysis functions.
    n_features_in_ : int
        Columns seen by fit.
"""


class RepeatedBisection(_RowClusterer):
    __doc__ = (
        "Cluster rows by bisections: each splits the cluster with the most rows.\n"
        + _PARAMETERS
        + """\
    refine : bool, default=False
        Refine the finished clustering once more as a whole.
    verbose : int, default=0
        1 prints a line for every bisection, 2 also for every trial of one.
"""
        + _ATTRIBUTES
    )

    def __init__(
        self,
        n_clusters: int = 8,
        *,
        criterion: str = "i2",
        similarity: str = "cosine",
        row_model: str = "none",
        col_model: str = "auto",
        prune: float = 1.0,
        n_trials: int = 10,
        n_iter: int = 10,
        refine: bool = False,
        random_state=None,
        n_jobs: int | None = None,
        verbose: int = 0,
    ):
        super().__init__(
            n_clusters,
            criterion=criterion,
            similarity=similarity,
            row_model=row_model,
            col_model=col_model,
            prune=prune,
            n_trials=n_trials,
            n_iter=n_iter,
            random_state=random_state,
            n_jobs=n_jobs,
            verbose=verbose,
        )
        self.refine = refine

    def _cluster(self, matrix, codes, **settings) -> np.ndarray:
        refine = _check_flag("refine", self.refine)
        return _engine.cluster_by_bisection(matrix, codes, refine=refine, **settings)

    def _progress(self):
        if not self.verbose:
            return None
        told = {_BISECTION: "bisection"}
        return self._report(told if self.verbose < 2 else {**told, _TRIAL: "trial"})


class DirectKWay(_RowClusterer):
    __doc__ = (
        "Cluster rows into all clusters at once.\n"
        + _PARAMETERS
        + """\
    verbose : int, default=0
        1 prints a line for every trial.
"""
        + _ATTRIBUTES
    )

    def _cluster(self, matrix, codes, **settings) -> np.ndarray:
        return _engine.cluster_directly(matrix, codes, **settings)

    def _progress(self):
        return self._report({_TRIAL: "trial"}) if self.verbose else None
