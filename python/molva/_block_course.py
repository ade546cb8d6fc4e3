# SPDX-License-Identifier: MIT
"""The course of a clustering of blocks: count, weigh, sample, pass after pass, measure."""

from __future__ import annotations

from dataclasses import dataclass, field
from typing import Callable, NamedTuple

import numpy as np
from scipy import sparse

from . import _block_work as work
from . import _engine
from ._block_folder import Folder, Memory
from ._matrix import aligned, borrow
from ._models import COL_MODELS, CRITERIA, ROW_MODELS, SIMILARITIES, Models

# Better when smaller.
_MINIMISED = {CRITERIA[name] for name in ("e1", "g1", "g1p", "h3")}
_REFINEMENT_PASSES = 10
_NO_MODELS = (SIMILARITIES["cosine"], ROW_MODELS["none"], COL_MODELS["none"], 1.0)


class Settings(NamedTuple):
    """What a clustering is asked for, every argument checked."""

    n_clusters: int
    crfun: int
    models: Models  # col_model may be "auto"
    sample_rows: int
    n_trials: int
    max_passes: int
    tol: float
    seed: int
    view_columns: int | None


@dataclass
class Clusters:
    """The clusters by their sums, and what follows from these."""

    crfun: int
    sums: np.ndarray
    sizes: np.ndarray
    dnorms: np.ndarray = field(init=False)
    csim: np.ndarray = field(init=False)
    value: float = field(init=False)

    def __post_init__(self):
        self.measure()

    def measure(self) -> None:
        self.dnorms, self.csim = _engine.measure_sums(self.sums)
        self.value = _engine.value_of_sums(self.crfun, self.sizes, self.dnorms, self.csim)

    def add(self, sums: sparse.csr_matrix, sizes: np.ndarray, sign: int = 1) -> None:
        places = np.repeat(np.arange(sums.shape[0]), np.diff(sums.indptr)), sums.indices
        self.sums[places] += sign * sums.data
        self.sizes += sign * sizes

    def gain_over(self, value: float) -> float:
        """Return by which part of it the criterion is better than a value."""
        if not np.isfinite(self.value) or self.sizes.min() < 1:
            return -np.inf
        gain = (self.value - value) / abs(value) if value else self.value - value
        return -gain if self.crfun in _MINIMISED else gain

    def ahead(self, before: tuple[np.ndarray, np.ndarray]) -> Clusters:
        """Return the clusters as another change like the last one would make them.

        Rows follow the clusters they were in, and clusters their rows, pass after pass in the same
        direction. Judging rows by where the clusters are going saves every other pass.
        """
        sums, sizes = before
        return Clusters(self.crfun, 2 * self.sums - sums, np.maximum(2 * self.sizes - sizes, 1))

    def view(self, scale: float, view_columns: int | None) -> work.View:
        """Return what rows are judged against, as it stands for `scale` times as many rows."""
        composites, whole = _engine.make_view(self.sums, scale)
        sizes = np.maximum(np.rint(self.sizes * scale), 1).astype(np.int64)
        if view_columns is not None and view_columns < len(whole):
            for cluster, sums in enumerate(self.sums):
                light = np.argsort(-np.abs(sums), kind="stable")[view_columns:]
                composites[light, cluster] = 0
            composites = sparse.csr_matrix(composites)
        return work.View(composites, whole, sizes, self.dnorms * scale**2, self.csim * scale**2)


class Course:
    """One clustering.

    run : callable
        Takes a function of `_block_work`, the blocks and what all of them are given, and returns
        what was found in all blocks, merged.
    say : callable
        Told how far the clustering has come.
    """

    def __init__(
        self, settings: Settings, sources, folder: Folder | Memory, run: Callable, say: Callable
    ):
        self.settings = settings
        self._sources = sources
        self._folder = folder
        self._run = run
        self._say = say
        self._state = folder.load_state()
        self.rows: list[int] = []
        self.history: list[float] = []

    def complete(self) -> None:
        """Cluster all blocks, from where the folder was left."""
        if self._state is None:
            self._count()
            self._weigh()
            self._start()
        else:
            self._go_on()
        while not self._ended():
            self._pass()
        self._measure()

    # ---- Before the passes

    def _blocks(self):
        first = 0
        for number, source in enumerate(self._sources):
            rows = self.rows[number] if number < len(self.rows) else -1
            yield work.Block(number, source, first, rows, self._folder.labels(number))
            first += max(rows, 0)

    def _count(self) -> None:
        found = self._run(work.count, self._blocks(), None)
        if not found:
            raise ValueError("There are no blocks")
        self.rows = [found["rows"][number] for number in range(len(found["rows"]))]
        self._counts = aligned(found["counts"])
        self.n_columns = len(self._counts)
        self._decide_models(found)

    def _decide_models(self, found: dict) -> None:
        models = self.settings.models
        cells = sum(self.rows) * self.n_columns
        in_full = found["entries"] >= cells or models.similarity == "correlation"
        if models.row_model == "log" and found["negative"]:
            raise ValueError("row_model 'log' takes no negative values: they have no logarithm")
        if models.col_model == "auto":
            models = models._replace(col_model="none" if in_full else "idf")
        if models.col_model == "idf" and in_full:
            raise ValueError("col_model 'idf' has nothing to tell apart where all cells are stored")
        self.models = models
        self.in_full = in_full

    def _weigh(self) -> None:
        codes = SIMILARITIES[self.models.similarity], ROW_MODELS[self.models.row_model]
        weights = kept = sums = None
        if self.models.col_model == "idf":
            weights = _engine.weigh_columns(self._counts, sum(self.rows))
        if not self.in_full:
            if self.models.prune < 1:
                found = self._run(work.sum_columns, self._blocks(), work.Space(*codes, weights))
                _require_room(found["reach"])
                sums = aligned(found["sums"])
            kept = _engine.choose_columns(self.models.prune, self._counts, sums)
            if not kept.any():
                raise ValueError("No column is stored in two rows, so none is left")
        self.space = work.Space(*codes, weights, kept)

    def _start(self) -> None:
        """Cluster the sample."""
        settings, total = self.settings, sum(self.rows)
        limit = min((settings.sample_rows << 64) // max(total, 1), 1 << 64)
        sampling = work.Sampling(self.space, work.row_salt(settings.seed, 0), limit)
        found = self._run(work.take_sample, self._blocks(), sampling)
        taken = [found["sample"][number] for number in range(len(self.rows))]
        rows = sparse.vstack([rows for _, rows in taken], format="csr", dtype=np.float32)
        if rows.shape[0] < settings.n_clusters:
            raise ValueError(
                f"The sample has {rows.shape[0]} rows for {settings.n_clusters} clusters"
            )
        self._say(f"clustering a sample of {rows.shape[0]} of {found['prepared']} rows")
        labels = _engine.cluster_directly(
            borrow(rows),
            _engine.Models(*_NO_MODELS),
            crfun=settings.crfun,
            ntrials=settings.n_trials,
            niter=_REFINEMENT_PASSES,
            seed=settings.seed,
            nparts=settings.n_clusters,
            progress=None,
        )
        clusters = _clusters_of(rows, labels, settings)
        self._clusters = clusters
        self._seeds = _by_block(taken, labels)
        self._number, self._share = 0, 0
        self._before, self._looked_ahead = None, False
        self._scale = found["prepared"] / max(int(clusters.sizes.sum()), 1)

    # ---- Passes

    def _ended(self) -> bool:
        if self._number == 0:
            return False
        if self._number >= self.settings.max_passes:
            return True
        if self._number == 1:
            return False
        if self._share == work.LEVELS:
            # No move gains; the next pass would not look ahead, and this one may have.
            return not self._looked_ahead
        return self._clusters.gain_over(self.history[-2]) < self.settings.tol

    def _job(self, view: work.View) -> work.Pass:
        number = self._number
        return work.Pass(
            number,
            self.space,
            view,
            self.settings.crfun,
            self._share,
            tuple(work.row_salt(self.settings.seed, at) for at in (number, number + 1)),
            self._seeds if number == 0 else {},
        )

    def _view(self) -> work.View:
        columns = self.settings.view_columns
        if self._number == 0:
            return self._clusters.view(self._scale, columns)
        self._looked_ahead = self._before is not None
        clusters = self._clusters.ahead(self._before) if self._looked_ahead else self._clusters
        return clusters.view(1.0, columns)

    def _pass(self) -> None:
        found = self._run(work.assign, self._blocks(), self._job(self._view()))
        _require_room(found["reach"])
        self._folder.take(found)
        before = self._clusters.sums.copy(), self._clusters.sizes.copy()
        if self._number == 0:
            self._share = 0
            self._clusters.add(*_level(found, 0, self.settings.n_clusters))
            self._clusters.measure()
        else:
            self._share = _make_best_share(self._clusters, found, self.settings.n_clusters)
        # The first pass is no change of clusters, and one without moves is none at all. Looking ahead
        # takes three times the room of a sum.
        is_change = self._number > 0 and self._share < work.LEVELS
        self._before = before if is_change and found["reach"] < 1 << 61 else None
        self.history.append(self._clusters.value)
        share = 0.5**self._share if self._share < work.LEVELS else 0
        self._say(
            f"pass {self._number + 1}: {found['moves'].sum()} rows would move, {share:.0%} do, "
            f"criterion {self._clusters.value:.6g}"
        )
        self._number += 1
        self._save()

    # ---- The folder

    def _save(self) -> None:
        if isinstance(self._folder, Memory):
            return
        number = self._number - 1
        if number == 0:
            space = {name: getattr(self.space, name) for name in ("weights", "kept")}
            self._folder.save("space", **{k: v for k, v in space.items() if v is not None})
        before = {}
        if self._before is not None:
            before = {"sums_before": self._before[0], "sizes_before": self._before[1]}
        self._folder.save(
            f"sums-{number:03}", sums=self._clusters.sums, sizes=self._clusters.sizes, **before
        )
        self._folder.save_state(
            {
                "pass": number,
                "share": self._share,
                "before": self._before is not None,
                "looked_ahead": self._looked_ahead,
                "history": self.history,
                "rows": self.rows,
                "columns": self.n_columns,
                "in_full": self.in_full,
                "models": self.models._asdict(),
            }
        )
        self._folder.drop_pass(number - 1, len(self.rows))

    def _go_on(self) -> None:
        state = self._state
        self.rows, self.history = state["rows"], state["history"]
        self.n_columns, self.in_full = state["columns"], state["in_full"]
        self.models = Models(**state["models"])
        names = ["weights"] if self.models.col_model == "idf" else []
        names += [] if self.in_full else ["kept"]
        arrays = dict(zip(names, self._folder.load("space", *names))) if names else {}
        codes = SIMILARITIES[self.models.similarity], ROW_MODELS[self.models.row_model]
        self.space = work.Space(*codes, arrays.get("weights"), arrays.get("kept"))
        names = ["sums", "sizes", *(["sums_before", "sizes_before"] if state["before"] else [])]
        sums, sizes, *before = self._folder.load(f"sums-{state['pass']:03}", *names)
        self._before = tuple(before) or None
        self._looked_ahead = state["looked_ahead"]
        self._clusters = Clusters(self.settings.crfun, sums, sizes)
        self._number, self._share = state["pass"] + 1, state["share"]
        if self._clusters.value != self.history[-1]:
            raise ValueError(f"{self._folder.path} is damaged: its sums are of another pass")
        self._say(f"going on after pass {self._number}")

    # ---- After the passes

    def _measure(self) -> None:
        clusters = self._clusters
        sizes = clusters.sizes.astype(np.float64)
        total = sizes.sum()
        with np.errstate(divide="ignore", invalid="ignore"):
            internal = (clusters.dnorms / sizes**2).astype(np.float32)
            outside = clusters.csim - clusters.dnorms
            external = (outside / ((total - sizes) * sizes)).astype(np.float32)
        keys = internal.astype(np.float64) - external
        order = np.argsort(-np.nan_to_num(keys, nan=-np.inf), kind="stable")
        numbers = np.argsort(order, kind="stable").astype(np.int32)
        job = work.Measuring(self._job(clusters.view(1.0, None)), internal, external, numbers)
        found = self._run(work.measure, self._blocks(), job)
        self.finished = found.get("finished")
        squares = work.from_units(found["squares"])
        with np.errstate(divide="ignore", invalid="ignore"):
            deviations = np.sqrt(squares / (sizes - 1))
        self.internal, self.external = internal[order], external[order]
        self.deviations = deviations[:, order].astype(np.float32)
        self.sizes, self.sums = clusters.sizes[order], clusters.sums[order]
        self.value = clusters.value


def _require_room(reach: int) -> None:
    if reach >= 1 << 63:
        raise ValueError(
            "There are too many rows: a sum of them may pass 64 bits in units of 2^-32"
        )


def _clusters_of(rows: sparse.csr_matrix, labels: np.ndarray, settings: Settings) -> Clusters:
    none = np.full(len(labels), -1, dtype=np.int32)
    k = settings.n_clusters
    starts, columns, sums, _ = _engine.sum_changes(borrow(rows), k, none, labels)
    dense = sparse.csr_matrix((sums, columns, starts), shape=(k, rows.shape[1])).toarray()
    return Clusters(settings.crfun, dense, np.bincount(labels[labels >= 0], minlength=k))


def _by_block(taken: list, labels: np.ndarray) -> dict:
    """Return, for each block, the rows of the sample that have a cluster, and which."""
    seeds, begin = {}, 0
    for number, (places, _) in enumerate(taken):
        found = labels[begin : begin + len(places)]
        seeds[number] = places[found >= 0], found[found >= 0]
        begin += len(places)
    return seeds


def _level(found: dict, level: int, n_clusters: int):
    span = slice(level * n_clusters, (level + 1) * n_clusters)
    return found["changes"][span], found["sizes"][span]


def _make_best_share(clusters: Clusters, found: dict, n_clusters: int) -> int:
    """Make the share of the moves that the criterion gains most by; LEVELS stands for none."""
    before = clusters.value
    best, most = work.LEVELS, 0.0
    for share in reversed(range(work.LEVELS)):
        clusters.add(*_level(found, share, n_clusters))
        clusters.measure()
        gain = clusters.gain_over(before)
        if gain > most:
            best, most = share, gain
    for share in range(best):
        clusters.add(*_level(found, share, n_clusters), sign=-1)
    clusters.measure()
    return best
