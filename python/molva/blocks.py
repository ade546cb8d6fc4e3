# SPDX-License-Identifier: MIT
"""Clusters more rows than one machine holds: they come in blocks, of which sums are kept.

A sample of the rows is clustered exactly, by the engine of `DirectKWay`. Then passes over the blocks
give every row the cluster by which the criterion gains most, until that is little. What is kept of a
block are its labels and sums, in integers that add up alike in any order. So labels are the same, bit
for bit, however the rows are cut into blocks, for every number of threads, and in `molva.dask` for
every number of workers.
"""

from __future__ import annotations

import os
from numbers import Real

import numpy as np
from scipy import sparse
from sklearn.base import BaseEstimator
from sklearn.utils.validation import check_is_fitted

from . import analysis, quality, trees
from . import _block_work as work
from ._block_course import Course, Settings
from ._block_folder import Folder, Memory
from ._block_labels import check_labels_of, load_arrays
from ._block_sources import block_sources
from ._estimators import _seed
from ._matrix import check_count, check_matrix
from ._models import (
    COL_MODELS,
    ROW_MODELS,
    SIMILARITIES,
    Models,
    _check_prune,
    code,
    criterion_code,
    tree_criterion_code,
)
from ._threads import threads

_FEWEST_SAMPLED = 20_000
_SAMPLED_OF_A_CLUSTER = 300


class BlockKWay(BaseEstimator):
    """Cluster rows that come in blocks into all clusters at once.

    Parameters
    ----------
    n_clusters : int, default=8
        Clusters to make.
    criterion : {"i1", "i2", "e1", "g1", "g1p", "h1", "h2", "g3", "h3"}, default="i2"
        The function to optimise; docs/criteria.md has the formulas.
    similarity, row_model, col_model, prune
        As for `DirectKWay`; frequencies and weights are those of all blocks together.
    sample_rows : int or None, default=None
        Rows of the sample, more or less: each row is in it by a hash of its number. None takes 300
        for each cluster, and at least 20,000.
    n_trials : int, default=10
        Random starts of the sample's clustering, of which the best is kept.
    max_passes : int, default=12
        Passes over all blocks at most, after the sample; the first gives every row a cluster.
    tol : float, default=1e-4
        Passes end when the criterion gains less than this part of it.
    random_state : int, RandomState or None, default=1
        As for `DirectKWay`.
    n_jobs : int or None, default=None
        Threads to use for each block; the results are the same for every number.
    work_dir : path, optional
        A folder for labels and sums. With the same blocks and arguments a clustering that was
        stopped goes on after its last whole pass. None keeps all labels in memory.
    view_columns : int or None, default=None
        Judge rows by so many columns of each cluster only, the heaviest: less to send to workers.
    verbose : int, default=0
        1 prints a line for every pass.

    Attributes
    ----------
    labels_ : ndarray of shape (n_samples,)
        Cluster of every row, in the order of the blocks; -1 for rows that preparation drops.
    criterion_value_ : float
    criterion_history_ : list of float
        The value after every pass.
    statistics_ : ClusterStatistics
        Sizes, similarities, deviations, and the z-scores of all rows; with a `work_dir` the
        z-scores are None, and `zscores` gives those of a block.
    cluster_centers_ : {ndarray, CSR matrix} of shape (n_clusters, n_kept_features)
    models_ : dict
        Similarity, models and pruning as used, "auto" decided.
    n_features_in_ : int
    n_passes_ : int
    block_rows_ : list of int
        Rows of every block.
    """

    def __init__(
        self,
        n_clusters: int = 8,
        criterion: str = "i2",
        similarity: str = "cosine",
        row_model: str = "none",
        col_model: str = "auto",
        prune: float = 1.0,
        sample_rows: int | None = None,
        n_trials: int = 10,
        max_passes: int = 12,
        tol: float = 1e-4,
        random_state=1,
        n_jobs: int | None = None,
        work_dir: str | os.PathLike | None = None,
        view_columns: int | None = None,
        verbose: int = 0,
    ):
        self.n_clusters = n_clusters
        self.criterion = criterion
        self.similarity = similarity
        self.row_model = row_model
        self.col_model = col_model
        self.prune = prune
        self.sample_rows = sample_rows
        self.n_trials = n_trials
        self.max_passes = max_passes
        self.tol = tol
        self.random_state = random_state
        self.n_jobs = n_jobs
        self.work_dir = work_dir
        self.view_columns = view_columns
        self.verbose = verbose

    # ---- Fitting

    def fit(self, blocks, y=None):
        """Cluster the rows of all blocks.

        Parameters
        ----------
        blocks : sequence, folder, function or iterable
            Blocks are CSR matrices, arrays, paths of `.npz`, `.npy` or matrix files of the program,
            or callables that make one of these. A path of a folder stands for the files in it, by
            name; a function for the iterator that it starts, again for every pass.
        y : ignored
        """
        settings = self._settings()
        folder = self._folder(settings)
        with threads(self.n_jobs):
            course = Course(settings, self._sources(blocks), folder, self._run, self._say)
            course.complete()
        self._keep(course)
        return self

    def _settings(self) -> Settings:
        n_clusters = check_count("n_clusters", self.n_clusters, 1)
        sample = self.sample_rows
        if sample is None:
            sample = max(_FEWEST_SAMPLED, _SAMPLED_OF_A_CLUSTER * n_clusters)
        tol = self.tol
        if isinstance(tol, (bool, np.bool_)) or not isinstance(tol, Real) or not 0 <= tol < 1:
            raise ValueError(f"tol must be a number from 0 to below 1; got {tol!r}")
        columns = self.view_columns
        return Settings(
            n_clusters,
            criterion_code(self.criterion),
            self._models(),
            check_count("sample_rows", sample, n_clusters),
            check_count("n_trials", self.n_trials, 1),
            check_count("max_passes", self.max_passes, 1),
            float(tol),
            _seed(self.random_state),
            None if columns is None else check_count("view_columns", columns, 1),
        )

    def _models(self) -> Models:
        code("similarity", self.similarity, SIMILARITIES)
        code("row_model", self.row_model, ROW_MODELS)
        code("col_model", self.col_model, {"auto": 0, **COL_MODELS})
        names = self.similarity.lower(), self.row_model.lower(), self.col_model.lower()
        return Models(*names, _check_prune(self.prune))

    def _folder(self, settings: Settings) -> Folder | Memory:
        if self.work_dir is None:
            return Memory()
        told = {**settings._asdict(), "models": list(settings.models)}
        # More passes, or passes until there is less to gain, go on with the same clustering.
        del told["max_passes"], told["tol"]
        return Folder(self.work_dir, told)

    def _sources(self, blocks):
        return block_sources(blocks)

    def _run(self, function, blocks, given) -> dict:
        found: dict = {}
        for block in blocks:
            found = work.merge(found, function(block, given))
        return found

    def _say(self, text: str) -> None:
        if self.verbose:
            print(f"{type(self).__name__}: {text}", flush=True)

    def _keep(self, course: Course) -> None:
        """Take over what was found, together, so that a run that is stopped leaves what was."""
        self._space, self._sums = course.space, course.sums
        self._in_full, self._finished = course.in_full, course.finished
        self._deviations = course.internal, course.external, course.deviations
        self.block_rows_ = course.rows
        self.n_features_in_ = course.n_columns
        self.models_ = course.models._asdict()
        self.criterion_value_ = course.value
        self.criterion_history_ = list(course.history)
        self.n_passes_ = len(course.history)
        self.cluster_centers_ = self._centers()
        scores = (None, None)
        if self._finished is not None:
            parts = [self.zscores(number) for number in range(len(course.rows))]
            scores = tuple(np.concatenate(kind) for kind in zip(*parts))
        internal, external, (internal_dev, external_dev) = self._deviations
        self.statistics_ = analysis.ClusterStatistics(
            course.sizes, internal, internal_dev, external, external_dev, *scores
        )

    def _centers(self):
        sums = self._sums / 2.0**32
        lengths = np.sqrt((sums**2).sum(axis=1, keepdims=True))
        unit = np.divide(sums, lengths, out=np.zeros_like(sums), where=lengths > 0)
        return unit if self._in_full else sparse.csr_matrix(unit)

    # ---- Rows of the fit

    def _of_block(self, number: int) -> tuple[np.ndarray, np.ndarray]:
        check_is_fitted(self)
        rows = self.block_rows_[number]
        if self._finished is not None:
            return self._finished[number]
        path = Folder(self.work_dir, {}).labels(number).path("last")
        labels, averages = load_arrays(path, "labels", "averages")
        check_labels_of(path, labels, rows, self.n_clusters)
        return labels, averages

    def block_labels(self, number: int) -> np.ndarray:
        """Return the labels of one block."""
        return self._of_block(number)[0]

    @property
    def labels_(self) -> np.ndarray:
        check_is_fitted(self)
        parts = [self.block_labels(number) for number in range(len(self.block_rows_))]
        return np.concatenate(parts)

    def zscores(self, number: int) -> tuple[np.ndarray, np.ndarray]:
        """Return the internal and the external z-scores of the rows of one block."""
        labels, averages = self._of_block(number)
        internal, external, deviations = self._deviations
        has_cluster = labels >= 0
        part = labels[has_cluster]
        scores = np.zeros((2, len(labels)), dtype=np.float32)
        with np.errstate(divide="ignore", invalid="ignore"):
            for kind, means in enumerate((internal, external)):
                distance = averages[kind, has_cluster].astype(np.float64) - means[part]
                scores[kind, has_cluster] = distance / deviations[kind][part]
        return scores[0], scores[1]

    # ---- Measures and explanations

    def features(self, n_features: int = 5, feature_names=None) -> analysis.ClusterFeatures:
        """Name the columns of the clusters; see `molva.cluster_features`."""
        check_is_fitted(self)
        names = analysis.column_names(feature_names, self.n_features_in_)
        columns = np.arange(self.n_features_in_)
        if self._space.kept is not None:
            columns = np.flatnonzero(self._space.kept)
        composites = self._sums / 2.0**32
        others = composites.sum(axis=0) - composites
        named = min(check_count("n_features", n_features, 1), self.n_features_in_)
        lists = [
            *_ranked(composites**2, named, columns),
            *_ranked((_unit(composites) - _unit(others)) ** 2, named, columns),
        ]
        return analysis.ClusterFeatures(*lists, names)

    def cluster_tree(self, criterion: str | None = None, ordered: bool = True) -> trees.Tree:
        """Build the tree over the clusters; see `molva.cluster_tree`."""
        check_is_fitted(self)
        crfun = tree_criterion_code(self.criterion if criterion is None else criterion)
        sizes = self.statistics_.sizes
        if sizes.sum() > np.iinfo(np.int32).max:
            raise ValueError("The library's trees take at most 2,147,483,647 rows")
        return trees.tree_of_sums(self._sums, sizes, crfun, ordered, self.n_jobs)

    def external_quality(self, classes) -> quality.ExternalQuality:
        """Compare the clusters with classes: of all rows, or a sequence of them for each block."""
        check_is_fitted(self)
        if not isinstance(classes, np.ndarray) and len(classes) == len(self.block_rows_):
            if all(np.ndim(part) == 1 for part in classes):
                classes = np.concatenate([np.asarray(part) for part in classes])
        return quality.external_quality(self.labels_, classes)

    # ---- New rows

    def transform(self, X) -> np.ndarray:
        """Return the similarity of each new row to the centroid of each cluster, 0 for a row of
        which nothing is left. X is a matrix, such as a block."""
        return self._similarities(X)[0]

    def predict(self, X) -> np.ndarray:
        """Return for each new row the cluster whose centroid is most similar to it; -1 for rows of
        which nothing is left."""
        similarities, is_left = self._similarities(X)
        labels = np.argmax(similarities, axis=1).astype(np.int32)
        labels[~is_left] = -1
        return labels

    def score(self, X, y=None) -> float:
        """Return the average of the largest similarities of new rows, 1 at the most."""
        return float(self._similarities(X)[0].max(axis=1).mean())

    def _similarities(self, X) -> tuple[np.ndarray, np.ndarray]:
        check_is_fitted(self)
        X = check_matrix(X)
        if X.shape[1] != self.n_features_in_:
            raise ValueError(f"X has {X.shape[1]} columns, and the blocks had {self.n_features_in_}")
        rows, places = self._space.prepare(X)
        products = rows.astype(np.float64) @ self.cluster_centers_.T
        similarities = np.zeros((X.shape[0], self.n_clusters))
        similarities[places] = products.toarray() if sparse.issparse(products) else products
        is_left = np.zeros(X.shape[0], dtype=bool)
        is_left[places] = np.asarray(rows.multiply(rows).sum(axis=1)).ravel() > 0
        return similarities, is_left


def _unit(vectors: np.ndarray) -> np.ndarray:
    with np.errstate(divide="ignore", invalid="ignore"):
        return vectors / np.linalg.norm(vectors, axis=1, keepdims=True)


def _ranked(weights: np.ndarray, n_features: int, columns: np.ndarray):
    """Return the heaviest columns of every row of weights, and their shares of its sum."""
    found = min(n_features, weights.shape[1])
    order = np.argsort(-weights, axis=1, kind="stable")[:, :found]
    shape = (len(weights), n_features)
    ids, shares = np.full(shape, -1, dtype=np.int32), np.zeros(shape, dtype=np.float32)
    ids[:, :found] = columns[order]
    with np.errstate(divide="ignore", invalid="ignore"):
        shares[:, :found] = np.take_along_axis(
            weights / weights.sum(axis=1, keepdims=True), order, axis=1
        )
    return ids, shares
