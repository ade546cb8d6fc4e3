# SPDX-License-Identifier: MIT
"""The estimators beside scikit-learn's and faiss's on one matrix: compare.py MATRIX [CLUSTERS].

The matrix stands in a file of the program's, sparse or, with --dense, dense; its classes, if it has
any, in MATRIX.rclass. All methods work on the same unit rows in single precision, of counts
weighted by IDF where the matrix is sparse, and squared distances order them as cosines do. Lines
named tf-idf have scikit-learn's own weights; LSA reduces the weighted rows to 100 dimensions first
(TruncatedSVD) and makes them unit rows again. "One start" is what KMeans does by default nowadays;
otherwise all make ten. faiss, which is left out where it is not installed, takes dense rows, so it
follows LSA where the matrix is sparse; "defaults" are one start and 256 rows a cluster at most.

Every measurement is a process of its own, by turns, which is told the number of threads before
anything is loaded. Each method is fitted to a few rows first, so that loading and warming up is
nobody's. Preparing the rows is in the time of all, and so are the measures that our `fit` makes.
All figures are medians over the seeds: `wall` is what passes and `CPU` the time of all threads
together, in seconds; `MB` is what the fit added to the memory of the process at most. I2 is what
ours optimise by default, while the others minimise squared distances, which comes to maximising I1;
it is measured on the rows of the first lines for all.

KMeans, LSA and faiss are as fast as the linear algebra that NumPy finds: Debian's libopenblas0 is
many times faster than what it installs by default, so the first lines tell what was found.
"""

from __future__ import annotations

import argparse
import inspect
import json
import os
import platform
import re
import statistics
import subprocess
import sys
import time
import warnings
from pathlib import Path

import numpy as np
import scipy
import sklearn
import threadpoolctl
from scipy import sparse
from sklearn.cluster import BisectingKMeans, KMeans, MiniBatchKMeans
from sklearn.decomposition import TruncatedSVD
from sklearn.feature_extraction.text import TfidfTransformer
from sklearn.metrics import normalized_mutual_info_score
from sklearn.pipeline import make_pipeline
from sklearn.preprocessing import FunctionTransformer, Normalizer, normalize

import molva

try:
    import faiss
except ImportError:
    faiss = None

STARTS = 10
DIMENSIONS = 100


def unit_rows(X):
    """Return what the library makes of a matrix; counts get IDF and lose columns of one row."""
    if not sparse.issparse(X):
        return normalize(X)
    rows_with = X.getnnz(axis=0)
    kept = rows_with > 1
    weights = np.log(X.shape[0] / rows_with[kept]).astype(np.float32)
    return normalize(X[:, kept] @ sparse.diags(weights))


class FaissKMeans:
    """faiss's k-means on the sphere, in the shape of an estimator."""

    def __init__(self, n_clusters: int, seed: int, **options):
        self.n_clusters = n_clusters
        self.options = dict(spherical=True, seed=seed, **options)

    def fit(self, X, y=None):
        self.fit_predict(X)
        return self

    def fit_predict(self, X, y=None):
        X = np.ascontiguousarray(X, dtype=np.float32)
        kmeans = faiss.Kmeans(X.shape[1], self.n_clusters, **self.options)
        kmeans.train(X)
        return kmeans.index.search(X, 1)[1].ravel()


def theirs(n_clusters: int, seed: int) -> dict[str, object]:
    """Return the estimators of others, for unit rows."""
    common = dict(n_clusters=n_clusters, random_state=seed)
    ten = dict(**common, n_init=STARTS)
    largest = dict(init="k-means++", bisecting_strategy="largest_cluster")
    return {
        "KMeans": KMeans(**ten),
        "KMeans, one start": KMeans(**common, n_init=1),
        "KMeans, random starts": KMeans(**ten, init="random"),
        "BisectingKMeans": BisectingKMeans(**ten, init="k-means++"),
        "BisectingKMeans, largest": BisectingKMeans(**ten, **largest),
        "MiniBatchKMeans": MiniBatchKMeans(**ten),
    }


def faiss_methods(n_clusters: int, seed: int) -> dict[str, object]:
    """Return faiss's estimators, for dense unit rows."""
    if faiss is None:
        return {}
    whole = dict(nredo=STARTS, max_points_per_centroid=10**9)
    return {
        "faiss": FaissKMeans(n_clusters, seed, **whole),
        "faiss, defaults": FaissKMeans(n_clusters, seed),
    }


def ours(n_clusters: int, seed: int, threads: int) -> dict[str, object]:
    """Return the estimators of this package."""
    common = dict(n_clusters=n_clusters, random_state=seed)
    if threads_are_taken():
        common["n_jobs"] = threads
    ten = dict(**common, n_trials=STARTS)
    return {
        "RepeatedBisection": molva.RepeatedBisection(**ten),
        "RepeatedBisection, refined": molva.RepeatedBisection(**ten, refine=True),
        "DirectKWay": molva.DirectKWay(**ten),
        "DirectKWay, one start": molva.DirectKWay(**common, n_trials=1),
    }


def threads_are_taken() -> bool:
    """Return whether our estimators can be told a number of threads."""
    return "n_jobs" in inspect.signature(molva.DirectKWay).parameters


def methods(X, n_clusters: int, seed: int, threads: int = 1) -> dict[str, object]:
    """Return the estimators to compare, each with all it needs to start from the matrix."""
    same = FunctionTransformer(unit_rows, accept_sparse=True)
    direct = theirs(n_clusters, seed)
    found = ours(n_clusters, seed, threads)
    for name, estimator in direct.items():
        found[name] = make_pipeline(same, estimator)
    if not sparse.issparse(X):
        for name, estimator in faiss_methods(n_clusters, seed).items():
            found[name] = make_pipeline(same, estimator)
        return found
    for name in ("KMeans", "KMeans, one start", "MiniBatchKMeans"):
        found[f"LSA, {name}"] = after_lsa(same, direct[name], seed)
    for name, estimator in faiss_methods(n_clusters, seed).items():
        found[f"LSA, {name}"] = after_lsa(same, estimator, seed)
    found["KMeans, tf-idf"] = make_pipeline(TfidfTransformer(), direct["KMeans"])
    logarithms = TfidfTransformer(sublinear_tf=True)
    found["KMeans, log tf-idf"] = make_pipeline(logarithms, direct["KMeans"])
    found["DirectKWay, log rows"] = found["DirectKWay"].set_params(row_model="log")
    found["DirectKWay"] = ours(n_clusters, seed, threads)["DirectKWay"]
    return found


def after_lsa(preparation, estimator, seed: int):
    """Return the estimator for unit rows of fewer dimensions."""
    lsa = TruncatedSVD(DIMENSIONS, random_state=seed)
    return make_pipeline(preparation, lsa, Normalizer(copy=False), estimator)


# One measurement.


def memory(field: str) -> int:
    """Return a line of the process's status in bytes: VmRSS is in use, VmHWM was at most."""
    status = Path("/proc/self/status").read_text(encoding="ascii")
    return 1024 * int(re.search(rf"^{field}:\s+(\d+) kB$", status, re.MULTILINE)[1])


def forget_peak() -> bool:
    """Begin to measure VmHWM anew; not all containers allow that."""
    try:
        Path("/proc/self/clear_refs").write_text("5", encoding="ascii")
    except OSError:
        return False
    return True


def read(path: Path, dense: bool):
    """Return the matrix and its classes, None where it has none."""
    classes = Path(f"{path}.rclass")
    matrix = molva.read_matrix(path, dense=dense)
    return matrix, molva.read_labels(classes) if classes.exists() else None


def measure(X, classes, name: str, n_clusters: int, seed: int, threads: int) -> dict[str, float]:
    """Return what one fit takes, and how good it is."""
    warnings.filterwarnings("ignore", category=RuntimeWarning)
    few = X[:: max(X.shape[0] // max(500, 5 * n_clusters), 1)]
    methods(few, n_clusters, seed, threads)[name].fit(few)
    estimator = methods(X, n_clusters, seed, threads)[name]
    peak_is_known = forget_peak()
    before = memory("VmRSS")
    start, start_cpu = time.perf_counter(), time.process_time()
    labels = np.asarray(estimator.fit_predict(X))
    found = {"wall": time.perf_counter() - start, "cpu": time.process_time() - start_cpu}
    if peak_is_known:
        found["megabytes"] = (memory("VmHWM") - before) / 1e6
    found["value"] = molva.criterion_value(X, labels, "i2")
    if classes is not None:
        kept = labels >= 0
        found["purity"] = molva.external_quality(labels, classes).purity
        found["nmi"] = normalized_mutual_info_score(np.asarray(classes)[kept], labels[kept])
    return found


def measure_apart(options, name: str, seed: int, threads: int) -> dict[str, float] | str:
    """Return what a process of its own measures, or why it does not."""
    print(f"{name}, seed {seed}, {threads} threads", file=sys.stderr, flush=True)
    count = str(threads)
    variables = ("OMP_NUM_THREADS", "OPENBLAS_NUM_THREADS", "MKL_NUM_THREADS")
    # One for each of the threads of a product would be more than were asked for.
    limits = {**dict.fromkeys(variables, count), "OMP_MAX_ACTIVE_LEVELS": "1"}
    words = [sys.executable, __file__, str(options.matrix), str(options.clusters)]
    words += ["--dense"] * options.dense + ["--measure", name, str(seed), count]
    try:
        done = subprocess.run(words, capture_output=True, text=True, timeout=options.limit,
                              env={**os.environ, **limits}, check=False)  # fmt: skip
    except subprocess.TimeoutExpired:
        return f"takes more than {options.limit:g} s"
    if done.returncode != 0:
        return (done.stderr.strip().splitlines() or ["failed"])[-1]
    return json.loads(done.stdout)


# The report.


def median(runs, figure: str) -> float | None:
    """Return the median of a figure; None where a run has none."""
    figures = [run[figure] for run in runs if figure in run]
    return statistics.median(figures) if figures else None


def number(value: float | None, digits: int) -> str:
    return "" if value is None else f"{value:,.{digits}f}"


def row(*cells: str) -> None:
    print("| " + " | ".join(cells) + " |", flush=True)


def print_heads(threads: list[int]) -> None:
    times = [f"{figure}, {count}" for figure in ("wall", "CPU") for count in threads]
    row("Method", *times, "MB", "I2", "purity", "NMI")
    row("---", *["---:"] * (len(times) + 4))


def print_method(name: str, by_threads: list[list[dict[str, float]]]) -> None:
    """Print the line of a method, its times for every number of threads."""
    times = [number(median(runs, key), 2) for key in ("wall", "cpu") for runs in by_threads]
    first = by_threads[0]
    row(name, *times, number(median(first, "megabytes"), 0), number(median(first, "value"), 1),
        number(median(first, "purity"), 3), number(median(first, "nmi"), 3))  # fmt: skip


def linear_algebra() -> str:
    """Return what computes products of dense matrices here."""
    np.dot(np.ones((2, 2)), np.ones((2, 2)))
    found = [
        f"{library['internal_api']} {library['version']}"
        for library in threadpoolctl.threadpool_info()
        if library["user_api"] == "blas"
    ]
    return " and ".join(dict.fromkeys(found)) or "a linear algebra of no special speed"


def processor() -> str:
    found = re.search(r"^model name\s*: (.*)$", Path("/proc/cpuinfo").read_text(), re.MULTILINE)
    return found[1] if found else platform.machine()


def print_setting(options, X) -> None:
    """Print what is compared where."""
    rows, columns = X.shape
    seeds = "one seed" if options.seeds == 1 else f"medians of {options.seeds} seeds"
    stored = X.nnz if sparse.issparse(X) else X.size
    print(f"{options.matrix.name}: {rows:,} rows, {columns:,} columns, {stored:,} entries; "
          f"{options.clusters} clusters, {seeds}.")  # fmt: skip
    print(f"{processor()}, {os.cpu_count()} processors, load average {os.getloadavg()[0]:.1f}; "
          f"Python {platform.python_version()}, molva {molva.__version__}, "
          f"scikit-learn {sklearn.__version__}, NumPy {np.__version__}, "
          f"SciPy {scipy.__version__}, faiss {getattr(faiss, '__version__', 'not installed')}; "
          f"{linear_algebra()}.")  # fmt: skip
    if faiss is None:
        print("faiss is not installed (python3-faiss in Debian), so its lines are left out.")
    if not threads_are_taken():
        print("Ours take one thread, so they are measured with that alone.")
    print(flush=True)


def counts_of(estimator, threads: list[int]) -> list[int]:
    """Return the numbers of threads that make a difference to a method."""
    own = type(estimator).__module__.startswith("molva")
    return threads[:1] if own and not threads_are_taken() else threads


def compare(options) -> None:
    """Measure all methods by turns, and print a line for each."""
    X, classes = read(options.matrix, options.dense)
    options.clusters = options.clusters or len(set(classes or ()))
    if not options.clusters:
        sys.exit("The matrix has no classes, so the number of clusters must be given.")
    print_setting(options, X)
    chosen = {
        name: counts_of(estimator, options.threads)
        for name, estimator in methods(X, options.clusters, 0).items()
        if re.search(options.only, name)
    }
    runs = {name: [[] for _ in options.threads] for name in chosen}
    failed: dict[str, str] = {}
    for seed in range(1, options.seeds + 1):
        for name, counts in chosen.items():
            for place, threads in enumerate(counts):
                if name in failed:
                    continue
                found = measure_apart(options, name, seed, threads)
                if isinstance(found, str):
                    failed[name] = found
                else:
                    runs[name][place].append(found)
    print_heads(options.threads)
    for name in chosen:
        if runs[name][0]:
            print_method(name, runs[name])
    for name, reason in failed.items():
        print(f"\n{name}: {reason}")
    print_conditions(options, runs)


def print_conditions(options, runs) -> None:
    """Print what else the machine did."""
    alone = [run for by_threads in runs.values() for run in by_threads[0]]
    print(f"\nLoad average at the end {os.getloadavg()[0]:.1f}.")
    if alone and options.threads[0] == 1:
        waited = 1 - sum(run["cpu"] for run in alone) / sum(run["wall"] for run in alone)
        print(f"Fits with one thread waited {waited:.0%} of the wall time. Where that is much, wall "
              "tells nothing,\nand CPU of several threads tells how long they wait for each other.")


def parse_command_line(words: list[str] | None):
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter
    )
    parser.add_argument("matrix", type=Path)
    parser.add_argument("clusters", type=int, nargs="?", help="[as many as there are classes]")
    parser.add_argument("--dense", action="store_true", help="the file is dense")
    parser.add_argument("--seeds", type=int, default=3, help="[%(default)s]")
    parser.add_argument("--threads", default="1,2", type=lambda text: [*map(int, text.split(","))],
                        help="numbers of threads, separated by commas [%(default)s]")  # fmt: skip
    parser.add_argument("--only", default="", metavar="REGEX", help="methods with this in the name")
    parser.add_argument("--limit", type=float, default=600, metavar="SECONDS",
                        help="no measurement takes longer [%(default)s]")  # fmt: skip
    parser.add_argument("--measure", nargs=3, help=argparse.SUPPRESS)
    return parser.parse_args(words)


def main(words: list[str] | None = None) -> None:
    """Compare, or make the one measurement that a comparison asks for."""
    options = parse_command_line(words)
    if options.measure is None:
        compare(options)
        return
    name, seed, threads = options.measure
    X, classes = read(options.matrix, options.dense)
    print(json.dumps(measure(X, classes, name, options.clusters, int(seed), int(threads))))


if __name__ == "__main__":
    main()
