# SPDX-License-Identifier: MIT
"""What is done with one block of rows, and how what was found in two of them becomes one.

Every function here takes a block and what is known of all, and returns a dictionary. They run wherever
the block is: in this process or in a worker. All sums are integers, so the order in which results are
merged does not matter.
"""

from __future__ import annotations

from dataclasses import dataclass, field
from typing import NamedTuple

import numpy as np
from scipy import sparse

from . import _engine
from ._block_sources import load_block
from ._matrix import aligned, borrow

# Of the moves of a pass all may be made, or a half, a quarter, an eighth of them.
LEVELS = 4
# Of a share of a sum: what a unit of it is, and of what is left of that.
_UNITS = 2.0**32


class Block(NamedTuple):
    """A block among all: its place, its source, the number of its first row, and its labels."""

    number: int
    source: object
    first: int = 0
    rows: int = -1
    labels: object = None


@dataclass(frozen=True)
class Space:
    """How the rows of every block are prepared; see MOLVA_Space in molva_blocks.h."""

    simfun: int
    rowmodel: int
    weights: np.ndarray | None = None
    kept: np.ndarray | None = None

    def prepare(self, X):
        """Return the prepared rows as a CSR matrix, and the block's row of each."""
        weights, kept = (
            None if array is None else aligned(array) for array in (self.weights, self.kept)
        )
        space = _engine.BlockSpace(self.simfun, self.rowmodel, weights, kept)
        nrows, ncols, indptr, indices, data, rows = _engine.prepare_block(borrow(X), space)
        # Set rather than passed, as scipy would look through all of it.
        prepared = sparse.csr_matrix((nrows, ncols), dtype=np.float32)
        prepared.indptr, prepared.indices, prepared.data = indptr, indices, data
        return prepared, rows[:nrows]


@dataclass(frozen=True)
class View:
    """The clusters that rows are judged against; see MOLVA_View in molva_blocks.h.

    `composites` may be sparse on its way to the workers.
    """

    composites: object
    whole: np.ndarray
    sizes: np.ndarray
    dnorms: np.ndarray
    csim: np.ndarray

    def of_engine(self) -> _engine.BlockView:
        composites = self.composites
        if sparse.issparse(composites):
            composites = composites.toarray()
        arrays = composites, self.whole, self.sizes, self.dnorms, self.csim
        return _engine.BlockView(*map(aligned, arrays))


def row_salt(seed: int, number: int) -> int:
    """Return the salt of the hashes of a pass; that of the sample is number 0."""
    return (seed & 0xFFFFFFFF) << 16 | number


def levels_of(block: Block, salt: int) -> np.ndarray:
    """Return the level of each row: a move of level l is in the shares 1, 1/2, ... to 1/2^l."""
    hashes = _engine.hash_rows(block.first, block.rows, salt)
    levels = np.zeros(block.rows, dtype=np.int32)
    for level in range(1, LEVELS):
        levels += hashes < np.uint64(1 << (64 - level))
    return levels


@dataclass(frozen=True)
class Pass:
    """A batch pass.

    Attributes
    ----------
    number : int
        From 0 on; pass 0 gives every row a cluster.
    share : int
        The level up to which the moves of the pass before were made; LEVELS for none of them.
    salts : tuple of int
        Of the pass before, by which those moves are known, and of this one.
    seeds : dict
        For pass 0, block by block, rows that have a cluster and which.
    """

    number: int
    space: Space
    view: View
    crfun: int
    share: int
    salts: tuple[int, int]
    seeds: dict = field(default_factory=dict)


def merge(a: dict, b: dict) -> dict:
    """Return what was found in two sets of blocks as one; `a` may be changed."""
    for name, found in b.items():
        if name not in a:
            a[name] = found
        elif isinstance(found, dict):
            a[name].update(found)
        elif np.shape(found) != np.shape(a[name]):
            columns = sorted((np.shape(found)[-1], np.shape(a[name])[-1]))
            raise ValueError("Blocks have different numbers of columns: {} and {}".format(*columns))
        else:
            a[name] = a[name] + found
    return a


def count(block: Block, _) -> dict:
    """Count the rows of the block, its entries, and those in each column."""
    X = load_block(block.source)
    nrows, ncols = X.shape
    smallest = (X.data if sparse.issparse(X) else X).min(initial=0)
    return {
        "rows": {block.number: nrows},
        "entries": int(X.indptr[-1]) if sparse.issparse(X) else nrows * ncols,
        "negative": int(smallest < 0),
        "counts": _engine.count_columns(borrow(X)),
    }


def sum_columns(block: Block, space: Space) -> dict:
    """Sum the rows of the block, of unit length, over all columns."""
    rows, _ = space.prepare(_load(block))
    sums = _engine.sum_columns(borrow(rows))
    return {"sums": sums, "reach": int(np.abs(sums).max(initial=0))}


class Sampling(NamedTuple):
    """A sample of rows: those whose hashes are below the limit."""

    space: Space
    salt: int
    limit: int


def take_sample(block: Block, sampling: Sampling) -> dict:
    """Return the block's prepared rows that are in the sample, and how many it has in all."""
    rows, places = sampling.space.prepare(_load(block))
    n_prepared = len(places)
    if sampling.limit < 1 << 64:
        hashes = _engine.hash_rows(block.first, block.rows, sampling.salt)
        taken = np.flatnonzero(hashes[places] < np.uint64(sampling.limit))
        rows, places = rows[taken], places[taken]
    return {"prepared": n_prepared, "sample": {block.number: (places, rows)}}


def _load(block: Block):
    X = load_block(block.source)
    if X.shape[0] != block.rows:
        raise ValueError(
            f"Block {block.number} has {X.shape[0]} rows, and had {block.rows} when it was counted"
        )
    return X


def assign(block: Block, work: Pass) -> dict:
    """Find where the rows of the block would move, and what that changes in the sums."""
    rows, places = work.space.prepare(_load(block))
    before = _current_labels(block, work)
    after = before.copy()
    part = before[places]
    matrix = borrow(rows)
    best = _engine.assign_rows(matrix, work.view.of_engine(), work.crfun, part)
    if work.number == 0:
        best = np.where(part >= 0, part, best).astype(np.int32)
    after[places] = best

    n_clusters = len(work.view.sizes)
    level = np.zeros(len(best), dtype=np.int32)
    if work.number > 0:
        level = levels_of(block, work.salts[1])[places]
    lists = LEVELS * n_clusters
    leaves = np.where(part >= 0, level * n_clusters + part, -1).astype(np.int32)
    joins = (level * n_clusters + best).astype(np.int32)
    starts, columns, sums, reach = _engine.sum_changes(matrix, lists, leaves, joins)
    moved = leaves != joins
    sizes = np.bincount(joins[moved], minlength=lists)
    sizes -= np.bincount(leaves[moved & (leaves >= 0)], minlength=lists)
    found = {
        "changes": sparse.csr_matrix((sums, columns, starts), shape=(lists, rows.shape[1])),
        "sizes": sizes,
        "moves": np.bincount(level[moved], minlength=LEVELS),
        "reach": reach,
    }
    return {**found, **block.labels.keep(work.number, before, after)}


def _current_labels(block: Block, work: Pass) -> np.ndarray:
    """Return the labels of the block's rows as the pass before left them."""
    if work.number == 0:
        labels = np.full(block.rows, -1, dtype=np.int32)
        rows, seeds = work.seeds.get(block.number, ((), ()))
        labels[rows] = seeds
        return labels
    before, after = block.labels.load(work.number - 1, block.rows, len(work.view.sizes))
    if work.share == 0:
        return after
    made = levels_of(block, work.salts[0]) >= work.share
    return np.where(made, after, before).astype(np.int32)


class Measuring(NamedTuple):
    """The last pass: deviations around the clusters' averages, under the clusters' last numbers."""

    work: Pass
    internal: np.ndarray
    external: np.ndarray
    numbers: np.ndarray


def measure(block: Block, measuring: Measuring) -> dict:
    """Sum the squared deviations of the block's rows, and keep their labels and averages."""
    work = measuring.work
    rows, places = work.space.prepare(_load(block))
    labels = _current_labels(block, work)
    part = labels[places]
    averages = _engine.average_rows(borrow(rows), work.view.of_engine(), part)
    deviations = [
        _sum_squares(average, mean, part)
        for average, mean in zip(averages, (measuring.internal, measuring.external))
    ]
    numbered = np.where(labels >= 0, measuring.numbers[labels], -1).astype(np.int32)
    spread = np.full((2, block.rows), np.nan, dtype=np.float32)
    spread[:, places] = averages
    return {"squares": np.stack(deviations), **block.labels.finish(numbered, spread)}


def _sum_squares(averages: np.ndarray, means: np.ndarray, part: np.ndarray) -> np.ndarray:
    """Return, for each cluster, the sum of squares in whole units and in what is left of them."""
    squares = (averages.astype(np.float64) - means[part]) ** 2 * _UNITS
    # A cluster of all rows has no rows outside.
    squares[~np.isfinite(squares)] = 0
    whole = np.floor(squares)
    sums = np.zeros((2, len(means)), dtype=np.int64)
    np.add.at(sums[0], part, whole.astype(np.int64))
    np.add.at(sums[1], part, np.floor((squares - whole) * _UNITS).astype(np.int64))
    return sums


def from_units(sums: np.ndarray) -> np.ndarray:
    """Return the sums of squares that `measure` found."""
    return sums[..., 0, :] / _UNITS + sums[..., 1, :] / _UNITS / _UNITS
