# SPDX-License-Identifier: MIT
"""The estimators beside scikit-learn's on the same matrix: compare.py MATRIX [CLUSTERS].

The matrix stands in a sparse file of the program's, its classes in MATRIX.rclass. All methods work
on the same unit rows of counts weighted by IDF, where squared distances order as cosines do, in
single precision, and make as many starts. The last three lines have other weightings:
scikit-learn's own, the same with logarithms of the counts, and logarithms for ours.

Each is fitted to a few rows first, so that loading and warming up is nobody's. `seconds` is what
passes, `CPU` the time of all threads together; scikit-learn uses several, ours one. Preparing the
rows is in the time of all, and so are the measures that our `fit` makes. I2 is what ours optimise
by default, while the others minimise squared distances, which comes to maximising I1; it is
measured on the rows of the first lines for all.
"""

from __future__ import annotations

import os
import sys
import time
import warnings
from pathlib import Path

import numpy as np
from scipy import sparse
from sklearn.cluster import BisectingKMeans, KMeans, MiniBatchKMeans
from sklearn.feature_extraction.text import TfidfTransformer
from sklearn.metrics import normalized_mutual_info_score
from sklearn.pipeline import make_pipeline
from sklearn.preprocessing import FunctionTransformer, normalize

import molva

STARTS = 10


def unit_rows(counts):
    """Return what the library makes of counts: weighted by IDF, columns of one row dropped."""
    rows_with = counts.getnnz(axis=0)
    kept = rows_with > 1
    weights = np.log(counts.shape[0] / rows_with[kept]).astype(np.float32)
    return normalize(counts[:, kept] @ sparse.diags(weights))


def methods(n_clusters: int, seed: int) -> dict[str, object]:
    """Return the estimators to compare, each with all it needs to start from counts."""
    ours = dict(n_clusters=n_clusters, n_trials=STARTS, random_state=seed)
    theirs = dict(n_clusters=n_clusters, n_init=STARTS, random_state=seed)

    def after(preparation, estimator):
        return make_pipeline(preparation, estimator)

    same = FunctionTransformer(unit_rows, accept_sparse=True)
    largest = dict(init="k-means++", bisecting_strategy="largest_cluster")
    return {
        "RepeatedBisection": molva.RepeatedBisection(**ours),
        "RepeatedBisection, refined": molva.RepeatedBisection(**ours, refine=True),
        "DirectKWay": molva.DirectKWay(**ours),
        "KMeans": after(same, KMeans(**theirs)),
        "KMeans, random starts": after(same, KMeans(**theirs, init="random")),
        "BisectingKMeans": after(same, BisectingKMeans(**theirs, init="k-means++")),
        "BisectingKMeans, largest": after(same, BisectingKMeans(**theirs, **largest)),
        "MiniBatchKMeans": after(same, MiniBatchKMeans(**theirs)),
        "KMeans, tf-idf": after(TfidfTransformer(), KMeans(**theirs)),
        "KMeans, log tf-idf": after(TfidfTransformer(sublinear_tf=True), KMeans(**theirs)),
        "DirectKWay, log rows": molva.DirectKWay(**ours, row_model="log"),
    }


def main(path: Path, n_clusters: int | None = None, seeds: int = 3) -> None:
    """Print a line for every method: the medians over some seeds."""
    counts = molva.read_matrix(path)
    classes = molva.read_labels(f"{path}.rclass")
    n_clusters = n_clusters or len(set(classes))
    warnings.filterwarnings("ignore", category=RuntimeWarning)
    rows, columns = counts.shape
    print(f"{path.name}: {rows} rows, {columns} columns, {counts.nnz} entries; "
          f"{n_clusters} clusters, {STARTS} starts, medians of {seeds} seeds, "
          f"{os.cpu_count()} processors")  # fmt: skip
    print(f"{'':28}{'seconds':>8}{'CPU':>8}{'I2':>10}{'purity':>8}{'NMI':>8}")
    for name in methods(n_clusters, 0):
        methods(n_clusters, 0)[name].fit(counts[:: max(rows // 100, 1)])
        measured = []
        for seed in range(1, seeds + 1):
            estimator = methods(n_clusters, seed)[name]
            start, start_cpu = time.perf_counter(), time.process_time()
            labels = estimator.fit_predict(counts)
            seconds, cpu = time.perf_counter() - start, time.process_time() - start_cpu
            kept = labels >= 0
            measured.append(
                (
                    seconds,
                    cpu,
                    molva.criterion_value(counts, labels, "i2"),
                    molva.external_quality(labels, classes).purity,
                    normalized_mutual_info_score(np.asarray(classes)[kept], labels[kept]),
                )
            )
        seconds, cpu, value, purity, nmi = np.median(measured, axis=0)
        print(f"{name:28}{seconds:8.2f}{cpu:8.2f}{value:10.2f}{purity:8.3f}{nmi:8.3f}")


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    main(Path(sys.argv[1]), int(sys.argv[2]) if len(sys.argv) > 2 else None)
