# SPDX-License-Identifier: MIT
"""Clustering of blocks on workers of Dask: the labels of one process, whoever dies meanwhile."""

from __future__ import annotations

import os
import signal
import time
from functools import partial
from pathlib import Path

import dask
import dask.array
import dask.dataframe
import distributed
import numpy as np
import pandas
import pytest
from conftest import topics
from scipy import sparse
from sklearn.feature_extraction.text import HashingVectorizer

import molva.dask
from molva.blocks import BlockKWay

SETTINGS = dict(n_clusters=4, sample_rows=120, n_trials=3)
ROWS = 300
BLOCKS = 6


@pytest.fixture(scope="module")
def client():
    """Return the client of two processes of one thread each."""
    with dask.config.set({"distributed.comm.timeouts.connect": "20s"}):
        with distributed.LocalCluster(
            n_workers=2, threads_per_worker=1, processes=True, dashboard_address=None
        ) as cluster, distributed.Client(cluster) as client:
            yield client


@pytest.fixture(scope="module")
def expected():
    return BlockKWay(**SETTINGS).fit([topics(ROWS, seed=5)])


def block(number: int):
    """Make a block of the rows."""
    size = ROWS // BLOCKS
    return topics(ROWS, seed=5)[number * size : (number + 1) * size]


def assert_same(model, expected) -> None:
    assert np.array_equal(model.labels_, expected.labels_)
    assert model.criterion_history_ == expected.criterion_history_
    for name, value in expected.statistics_._asdict().items():
        if getattr(model.statistics_, name) is not None:
            np.testing.assert_array_equal(getattr(model.statistics_, name), value)


def test_callables_and_delayed_blocks_give_the_labels_of_one_process(client, expected):
    made = [partial(block, number) for number in range(BLOCKS)]
    assert_same(molva.dask.BlockKWay(**SETTINGS).fit(made, client=client), expected)
    delayed = [dask.delayed(block)(number) for number in range(BLOCKS)]
    assert_same(molva.dask.BlockKWay(**SETTINGS).fit(delayed), expected)


def test_files_and_labels_may_lie_in_folders(client, expected, tmp_path):
    folder = tmp_path / "blocks"
    folder.mkdir()
    for number in range(BLOCKS):
        sparse.save_npz(folder / f"{number}.npz", block(number))
    model = molva.dask.BlockKWay(work_dir=tmp_path / "work", view_columns=None, **SETTINGS)
    assert_same(model.fit(folder, client=client), expected)


def test_arrays_of_dask_are_cut_into_their_chunks(client, expected):
    dense = dask.array.from_array(topics(ROWS, seed=5).toarray(), chunks=(70, 20))
    rows = dense.rechunk((70, 60)).map_blocks(sparse.csr_matrix, dtype=np.float32)
    assert_same(molva.dask.BlockKWay(**SETTINGS).fit(rows), expected)
    columns = molva.dask.BlockKWay(col_model="none", **SETTINGS).fit(dense)
    alone = BlockKWay(col_model="none", **SETTINGS).fit([dense.compute()])
    assert np.array_equal(columns.labels_, alone.labels_)


def test_a_text_column_is_hashed_into_blocks(client):
    texts = ["ships sail the sea", "the sea has ships", "bread and butter", "butter the bread"] * 8
    column = dask.dataframe.from_pandas(pandas.Series(texts), npartitions=3)
    words = HashingVectorizer(n_features=256, norm=None, alternate_sign=False)
    model = molva.dask.BlockKWay(2, sample_rows=32, n_trials=3)
    labels = model.fit(molva.dask.text_blocks(column, words)).labels_
    alone = BlockKWay(2, sample_rows=32, n_trials=3).fit([words.transform(texts)])
    assert np.array_equal(labels, alone.labels_)
    assert len(set(labels[0::4]) | set(labels[1::4])) == 1
    assert set(labels[2::4]) == set(labels[3::4]) != set(labels[0::4])


def dying_block(number: int, folder: Path):
    """Make a block; the first worker to make block 3 for the fifth time is killed by its id."""
    if number == 3:
        with open(folder / "made", "a") as made:
            made.write(f"{os.getpid()}\n")
        times = (folder / "made").read_text().split()
        if len(times) == 5:
            os.kill(os.getpid(), signal.SIGKILL)
            time.sleep(60)
    return block(number)


def test_a_worker_that_dies_within_a_pass_changes_nothing(client, expected, tmp_path):
    """The fifth making is that of the third pass, after counting, the sample and two passes."""
    before = set(client.run(os.getpid).values())
    made = [partial(dying_block, number, tmp_path) for number in range(BLOCKS)]
    model = molva.dask.BlockKWay(work_dir=tmp_path / "work", **SETTINGS).fit(made, client=client)
    assert_same(model, expected)
    killed = int((tmp_path / "made").read_text().split()[4])
    assert killed in before
    client.wait_for_workers(2, timeout=60)
    assert killed not in client.run(os.getpid).values()


def test_errors_of_a_worker_are_those_of_one_process(client):
    with pytest.raises(ValueError, match="different numbers of columns"):
        molva.dask.BlockKWay(**SETTINGS).fit([np.ones((2, 3)), np.ones((2, 4))], client=client)
