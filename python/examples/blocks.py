# SPDX-License-Identifier: MIT
"""Clusters generated rows that come in blocks, in this process or on workers of Dask.

    python3 python/examples/blocks.py --rows 1000000
    python3 python/examples/blocks.py --rows 1000000 --workers 2

A block is a function that makes its rows; in earnest it would read them. No process holds more than a
block, the sums of the clusters, and the labels.
"""

import argparse
import resource
import tempfile
import time
from functools import partial

import numpy as np
from scipy import sparse

from molva.blocks import BlockKWay

COLUMNS = 100_000
ENTRIES = 30  # drawn for each row
TOPICS = 200


def make_block(number: int, rows: int) -> sparse.csr_matrix:
    """Return rows of which each draws a fifth of its columns from a topic and the others from all."""
    draw = np.random.default_rng(number)
    shape = rows, ENTRIES
    of_topic = 300 * draw.integers(TOPICS, size=(rows, 1)) + np.minimum(draw.zipf(1.3, shape), 300)
    of_all = np.minimum(draw.zipf(1.2, shape), COLUMNS)
    columns = np.where(draw.random(shape) < 0.2, of_topic, of_all) - 1
    starts = np.arange(0, rows * ENTRIES + 1, ENTRIES)
    values = np.ones(rows * ENTRIES, np.float32)
    block = sparse.csr_matrix((values, columns.ravel(), starts), shape=(rows, COLUMNS))
    block.sum_duplicates()
    return block


def peak() -> float:
    """Return the most memory that this process has had, in MB."""
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss / 1024


def fit_on_workers(workers: int, blocks: list, work_dir: str, settings: dict):
    """Cluster on a cluster of Dask on this machine."""
    import distributed

    import molva.dask

    with distributed.LocalCluster(
        n_workers=workers, threads_per_worker=1, dashboard_address=None
    ) as cluster, distributed.Client(cluster) as client:
        model = molva.dask.BlockKWay(work_dir=work_dir, **settings).fit(blocks, client=client)
        peaks = ", ".join(f"{megabytes:.0f}" for megabytes in client.run(peak).values())
        print(f"Most memory of the workers: {peaks} MB")
        return model


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--rows", type=int, default=1_000_000)
    parser.add_argument("--blocks", type=int, default=40)
    parser.add_argument("--clusters", type=int, default=50)
    parser.add_argument("--workers", type=int, default=0, help="of Dask; 0 is this process alone")
    asked = parser.parse_args()
    blocks = [partial(make_block, number, asked.rows // asked.blocks) for number in range(asked.blocks)]
    settings = dict(n_clusters=asked.clusters, verbose=1)
    start = time.perf_counter()
    if asked.workers:
        with tempfile.TemporaryDirectory() as work_dir:
            model = fit_on_workers(asked.workers, blocks, work_dir, settings)
            labels = model.labels_
    else:
        model = BlockKWay(**settings).fit(blocks)
        labels = model.labels_
    seconds = time.perf_counter() - start
    print(f"{len(labels)} rows in {model.n_passes_} passes, {seconds:.0f} s, here {peak():.0f} MB")
    print(f"I2 {model.criterion_value_:.6g}, the first labels {labels[:8]}")


if __name__ == "__main__":
    main()
