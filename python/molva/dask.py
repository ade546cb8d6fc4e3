# SPDX-License-Identifier: MIT
"""Clusters blocks of rows on the workers of a Dask cluster; see `molva.blocks`.

Blocks are worked on where Dask puts them, and only sums come back, added up on the way. The clusters go
out once for each pass and worker. Sums are exact, so labels are those of `molva.blocks`, whatever worker
takes a block and however often one dies: Dask gives its blocks to others, and they are made again from
their sources.
"""

from __future__ import annotations

from concurrent.futures import CancelledError

import dask
from dask import delayed
from dask.delayed import Delayed
from distributed import get_client

from . import _block_work as work
from . import blocks as _blocks
from ._threads import threads

# So many results become one at a time, on the workers.
_FAN_IN = 8
# How often a pass is begun.
_ATTEMPTS = 4


def text_blocks(column, vectoriser) -> list[Delayed]:
    """Return the partitions of a text column as blocks of a vectoriser that needs no fitting.

    Parameters
    ----------
    column : dask.dataframe.Series
    vectoriser : object with transform
        Such as scikit-learn's `HashingVectorizer`, with ``norm=None, alternate_sign=False`` for
        counts.
    """
    return [delayed(vectoriser.transform)(part) for part in column.to_delayed()]


class BlockKWay(_blocks.BlockKWay):
    __doc__ = _blocks.BlockKWay.__doc__

    def fit(self, blocks, y=None, client=None):
        """Cluster the rows of all blocks on the workers of a client.

        Parameters
        ----------
        blocks : sequence, folder or dask array
            Besides what `molva.blocks.BlockKWay.fit` takes: delayed blocks, and arrays of Dask whose
            chunks, sparse or not, hold whole rows. Paths must be those of storage that all workers
            see, and so must `work_dir`. Matrices of this process, and what an iterator gives, travel
            anew with each pass.
        y : ignored
        client : distributed.Client, optional
            The current one by default.
        """
        self._client = get_client() if client is None else client
        try:
            return super().fit(blocks)
        finally:
            del self._client

    def _sources(self, blocks):
        if dask.is_dask_collection(blocks) and hasattr(blocks, "rechunk"):
            if len(blocks.chunks[1]) > 1:
                blocks = blocks.rechunk({1: -1})
            return list(blocks.to_delayed().ravel())
        return [blocks] if isinstance(blocks, Delayed) else super()._sources(blocks)

    def _run(self, function, blocks, given) -> dict:
        blocks = list(blocks)
        if not blocks:
            return {}
        for _ in range(_ATTEMPTS - 1):
            try:
                return self._run_once(function, blocks, given)
            except CancelledError:
                # All workers that knew what is given have died; the sources of blocks are still there.
                self._say("what was sent to the workers is lost, sending it again")
        return self._run_once(function, blocks, given)

    def _run_once(self, function, blocks: list, given) -> dict:
        # On all workers, so that one may die.
        (known,) = self._client.scatter([given], broadcast=True, hash=False)
        results = [
            delayed(_on_worker, pure=False)(
                function, block._replace(source=None), block.source, known, self.n_jobs
            )
            for block in blocks
        ]
        while len(results) > 1:
            starts = range(0, len(results), _FAN_IN)
            results = [
                delayed(_merged, pure=False)(results[first : first + _FAN_IN]) for first in starts
            ]
        future = self._client.compute(results[0])
        try:
            return future.result()
        except BaseException:
            self._client.cancel(future)
            raise


def _on_worker(function, block, source, given, n_jobs) -> dict:
    with threads(n_jobs):
        return function(block._replace(source=source), given)


def _merged(found: list[dict]) -> dict:
    """Merge results; those that are merged stay as they are, for Dask may ask for them again."""
    merged: dict = {}
    for part in found:
        copies = {name: dict(value) for name, value in part.items() if isinstance(value, dict)}
        merged = work.merge(merged, {**part, **copies})
    return merged
