# SPDX-License-Identifier: MIT
"""Clustering of blocks: the same for every cut of the rows, and measured as the whole matrix is."""

from __future__ import annotations

import json
import os
import signal
import subprocess
import sys

import numpy as np
import pytest
from conftest import topics
from scipy import sparse

import molva
from molva.blocks import BlockKWay

CRITERIA = ("i1", "i2", "e1", "g1", "g1p", "h1", "h2", "g3", "h3")
MINIMISED = ("e1", "g1", "g1p", "h3")
SETTINGS = dict(n_clusters=4, sample_rows=120, n_trials=3)


@pytest.fixture(scope="module")
def rows() -> sparse.csr_matrix:
    """Return rows of which one is empty, and one has nothing but a column of its own."""
    X = sparse.lil_matrix(topics(300, seed=5))
    X.resize(300, 61)
    X[17], X[40] = 0, 0
    X[40, 60] = 3
    X = X.tocsr()
    X.sort_indices()
    return X


def cut(X, blocks: int) -> list:
    ends = np.linspace(0, X.shape[0], blocks + 1).astype(int)
    return [X[first:last] for first, last in zip(ends[:-1], ends[1:])]


def unequal(X) -> list:
    """Cut the rows into blocks of which some are empty, and one has no stored column."""
    ends = [0, 0, 1, 17, 18, 18, 290, X.shape[0]]
    return [X[first:last] for first, last in zip(ends[:-1], ends[1:])]


@pytest.mark.parametrize("criterion", CRITERIA)
def test_labels_are_the_same_for_every_cut_of_the_rows(rows, criterion):
    whole = BlockKWay(criterion=criterion, **SETTINGS).fit([rows])
    assert set(whole.labels_) == {-1, 0, 1, 2, 3}
    for blocks, n_jobs in ((cut(rows, 7), 2), (cut(rows, 37), 1), (unequal(rows), 3)):
        model = BlockKWay(criterion=criterion, n_jobs=n_jobs, **SETTINGS).fit(blocks)
        assert np.array_equal(model.labels_, whole.labels_)
        assert model.criterion_history_ == whole.criterion_history_
        deviations = model.statistics_.internal_deviation
        assert np.array_equal(deviations, whole.statistics_.internal_deviation)


@pytest.mark.parametrize("criterion", CRITERIA)
def test_passes_never_make_the_criterion_worse_and_come_near_direct_clustering(rows, criterion):
    model = BlockKWay(criterion=criterion, **SETTINGS).fit(cut(rows, 3))
    values = np.array(model.criterion_history_)
    if criterion in MINIMISED:
        values = -values
    assert (np.diff(values) >= 0).all()
    # H3 has made a pair of rows, which no pass breaks up.
    assert values[-1] > values[0] or criterion == "h3"
    direct = molva.DirectKWay(4, criterion=criterion, random_state=1).fit(rows)
    assert model.criterion_value_ == pytest.approx(direct.criterion_value_, rel=0.02)


@pytest.mark.parametrize(
    "models",
    [
        {},
        dict(row_model="log", prune=0.9),
        dict(row_model="maxtf", col_model="none", criterion="e1"),
        dict(similarity="correlation", row_model="sqrt", criterion="h2"),
    ],
)
def test_statistics_are_those_of_the_whole_matrix(rows, models):
    model = BlockKWay(**SETTINGS, **models).fit(cut(rows, 5))
    labels = model.labels_
    whole = molva.cluster_statistics(rows, labels, **model.models_)
    # Z-scores are differences of averages that the library rounds, over small deviations.
    for name, expected in whole._asdict().items():
        allowed = 1e-5 if name.endswith("zscores") else 1e-6
        np.testing.assert_allclose(getattr(model.statistics_, name), expected, 1e-6, allowed)
    value = molva.criterion_value(rows, labels, model.criterion, **model.models_)
    assert model.criterion_value_ == pytest.approx(value, rel=1e-6)


def test_features_are_those_of_the_whole_matrix(rows):
    names = [f"word{column}" for column in range(rows.shape[1])]
    model = BlockKWay(**SETTINGS).fit(cut(rows, 4))
    found = model.features(5, names)
    expected = molva.cluster_features(rows, model.labels_, 5, names, **model.models_)
    assert np.array_equal(found.descriptive, expected.descriptive)
    assert np.array_equal(found.discriminating, expected.discriminating)
    np.testing.assert_allclose(found.descriptive_shares, expected.descriptive_shares, atol=1e-6)
    np.testing.assert_allclose(
        found.discriminating_shares, expected.discriminating_shares, atol=1e-6
    )
    assert str(found) == str(expected)


@pytest.mark.parametrize("criterion", ["i2", "e1", "h1"])
def test_the_tree_is_that_of_the_whole_matrix(rows, criterion):
    model = BlockKWay(**SETTINGS).fit(cut(rows, 4))
    found = model.cluster_tree(criterion)
    expected = molva.cluster_tree(rows, model.labels_, criterion, **model.models_)
    assert np.array_equal(found.children, expected.children)
    assert np.array_equal(found.sizes, expected.sizes)
    np.testing.assert_allclose(found.similarities, expected.similarities, atol=1e-6)


def test_a_sample_of_all_rows_begins_with_the_direct_clustering(rows):
    model = BlockKWay(4, sample_rows=300, max_passes=1).fit(cut(rows, 6))
    direct = molva.DirectKWay(4, random_state=1).fit(rows)
    assert model.criterion_value_ == pytest.approx(direct.criterion_value_, rel=1e-6)
    assert np.array_equal(model.labels_, direct.labels_)


def test_new_rows_go_where_those_of_direct_clustering_would(rows):
    model = BlockKWay(**SETTINGS).fit(cut(rows, 3))
    similarities = model.transform(rows)
    assert similarities.shape == (300, 4)
    assert (similarities[[17, 40]] == 0).all()
    labels = model.predict(rows)
    assert (labels[[17, 40]] == -1).all()
    others = labels >= 0
    assert np.array_equal(labels[others], similarities[others].argmax(axis=1))
    assert (labels == model.labels_).mean() > 0.9
    assert model.score(rows) == pytest.approx(similarities.max(axis=1).mean())


def test_classes_are_compared_as_for_the_whole_matrix(rows):
    model = BlockKWay(**SETTINGS).fit(cut(rows, 3))
    classes = np.arange(300) % 3
    expected = molva.external_quality(model.labels_, classes)
    for given in (classes, np.split(classes, 3)):
        assert model.external_quality(given).purity == expected.purity


def test_dense_blocks_are_as_sparse_ones_with_every_cell(dense):
    models = dict(n_clusters=4, sample_rows=48, n_trials=2)
    expected = BlockKWay(**models).fit([dense])
    stored = sparse.csr_matrix(dense)
    for blocks in (cut(dense, 5), cut(stored, 3), [dense[:10], stored[10:]]):
        assert np.array_equal(BlockKWay(**models).fit(blocks).labels_, expected.labels_)
    assert expected.models_["col_model"] == "none"
    assert isinstance(expected.cluster_centers_, np.ndarray)


def test_blocks_come_from_files_folders_and_functions(rows, tmp_path):
    expected = BlockKWay(**SETTINGS).fit([rows]).labels_
    folder = tmp_path / "blocks"
    folder.mkdir()
    first, second, third = cut(rows, 3)
    molva.write_matrix(folder / "a.mat", first)
    sparse.save_npz(folder / "b.npz", second)
    np.save(folder / "c.npy", third.toarray())
    files = sorted(folder.iterdir())
    # A dense file counts all its cells as stored, so the last one is left out here.
    sources = [
        [first, second, third],
        [str(files[0]), files[1], lambda: third],
        lambda: iter([first, second, third]),
    ]
    for blocks in sources:
        assert np.array_equal(BlockKWay(**SETTINGS).fit(blocks).labels_, expected)
    files[2].unlink()
    part = BlockKWay(**SETTINGS).fit(folder)
    assert np.array_equal(part.labels_, BlockKWay(**SETTINGS).fit([first, second]).labels_)


def test_columns_of_a_view_can_be_few(rows):
    model = BlockKWay(view_columns=20, **SETTINGS).fit(cut(rows, 2))
    other = BlockKWay(view_columns=20, **SETTINGS).fit(cut(rows, 9))
    assert np.array_equal(model.labels_, other.labels_)
    full = BlockKWay(**SETTINGS).fit([rows])
    assert model.criterion_value_ == pytest.approx(full.criterion_value_, rel=0.01)


@pytest.mark.parametrize(
    "given, blocks, message",
    [
        (dict(n_clusters=0), None, "n_clusters must be at least 1"),
        (dict(criterion="i3"), None, "criterion must be one of"),
        (dict(tol=2), None, "tol must be a number"),
        (dict(sample_rows=3), None, "sample_rows must be at least 4"),
        (dict(similarity="correlation", col_model="idf"), None, "nothing to tell apart"),
        ({}, [], "There are no blocks"),
        ({}, iter([]), "An iterator gives its blocks once"),
        ({}, [np.ones((2, 3)), np.ones((2, 4))], "different numbers of columns"),
        ({}, [sparse.eye(9, format="csr")], "No column is stored in two rows"),
        ({}, [np.ones((3, 3))], "The sample has 3 rows for 4 clusters"),
        (dict(row_model="log"), [np.eye(3), -np.eye(3)], "takes no negative values"),
        ({}, 5, "blocks must be matrices"),
        (dict(row_model="maxtf"), [np.eye(6), np.zeros((1, 6))], "no finite numbers"),
    ],
)
def test_what_cannot_be_clustered_is_refused(rows, given, blocks, message):
    with pytest.raises(ValueError, match=message):
        BlockKWay(**{**SETTINGS, **given}).fit([rows] if blocks is None else blocks)


@pytest.mark.parametrize(
    "options, models",
    [
        ((), {}),
        (("-crfun=3", "-rowmodel=4", "-prune=0.8"), dict(criterion="e1", row_model="log", prune=0.8)),
        (("-crfun=8", "-sim=2", "-colmodel=1"), dict(criterion="g3", similarity="correlation")),
        (("-crfun=5", "-seed=7"), dict(criterion="g1p", random_state=7)),
    ],
)
def test_the_program_gives_the_same_labels(rows, tmp_path, options, models):
    molva.write_matrix(tmp_path / "rows.mat", rows)
    program = os.path.join(os.path.dirname(os.environ["MARDLE"]), "mardle-run")
    arguments = ["--sample=120", "-ntrials=3", *options, str(tmp_path / "rows.mat"), "4"]
    subprocess.run([program, *arguments], check=True, capture_output=True)
    labels = molva.read_clustering(tmp_path / "rows.mat.clustering.4").labels
    model = BlockKWay(**SETTINGS, **models).fit(cut(rows, 3))
    assert np.array_equal(labels, model.labels_)


# ---- The work folder


def test_a_folder_keeps_labels_and_goes_on(rows, tmp_path):
    expected = BlockKWay(**SETTINGS).fit(cut(rows, 4))
    given = dict(work_dir=tmp_path, **SETTINGS)
    short = BlockKWay(max_passes=2, **given).fit(cut(rows, 4))
    assert short.n_passes_ == 2 < expected.n_passes_
    model = BlockKWay(**given).fit(cut(rows, 4))
    assert model.criterion_history_ == expected.criterion_history_
    assert np.array_equal(model.labels_, expected.labels_)
    assert np.array_equal(model.block_labels(2), expected.block_labels(2))
    assert model.statistics_.internal_zscores is None
    np.testing.assert_array_equal(model.zscores(1), expected.zscores(1))


_DRIVER = """
import sys
import numpy as np
from conftest import topics
from molva.blocks import BlockKWay

X = topics(300, seed=5)
seen = 0

def slowly(block):
    def load():
        global seen
        seen += 1
        if seen == 5 * int(sys.argv[2]) + 3:
            print("now", flush=True)
            sys.stdin.read()
        return block
    return load

blocks = [slowly(X[first:first + 60]) for first in range(0, 300, 60)]
BlockKWay(4, sample_rows=120, n_trials=3, work_dir=sys.argv[1]).fit(blocks)
"""


@pytest.mark.parametrize("whole_passes", [0, 3, 5])
def test_a_killed_clustering_goes_on_after_its_last_whole_pass(tmp_path, whole_passes):
    """Kill it within a reading of the blocks: of the counting, and of two of the passes."""
    tests = os.path.dirname(__file__)
    environment = {**os.environ, "PYTHONPATH": f"{tests}:{os.environ.get('PYTHONPATH', '')}"}
    arguments = [sys.executable, "-c", _DRIVER, str(tmp_path), str(whole_passes)]
    driver = subprocess.Popen(
        arguments, env=environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE
    )
    assert driver.stdout.readline() == b"now\n"
    driver.send_signal(signal.SIGKILL)
    driver.wait()
    driver.stdin.close()
    driver.stdout.close()
    X = topics(300, seed=5)
    state = tmp_path / "state.json"
    # Counting and sampling are two readings.
    assert state.exists() == (whole_passes > 2)
    if whole_passes > 2:
        assert json.loads(state.read_text())["pass"] == whole_passes - 3
    model = BlockKWay(4, sample_rows=120, n_trials=3, work_dir=tmp_path).fit(cut(X, 5))
    expected = BlockKWay(4, sample_rows=120, n_trials=3).fit([X])
    assert np.array_equal(model.labels_, expected.labels_)
    assert model.criterion_history_ == expected.criterion_history_


def _flip(path) -> None:
    content = bytearray(path.read_bytes())
    content[len(content) // 2] ^= 0x55
    path.write_bytes(content)


@pytest.mark.parametrize(
    "pattern, damage, message",
    [
        ("state.json", lambda path: path.write_text("{"), "state.json is damaged"),
        ("state.json", lambda path: path.write_text("{}"), "state.json is damaged"),
        ("sums-*.npz", _flip, "sums-001.npz is missing or damaged"),
        ("sums-*.npz", lambda path: path.unlink(), "sums-001.npz is missing or damaged"),
        ("space.npz", lambda path: path.write_bytes(b""), "space.npz is missing or damaged"),
        ("labels-*-pass-*.npz", lambda path: path.write_bytes(b"PK"), "missing or damaged"),
        (
            "labels-000001-pass-*.npz",
            lambda path: np.savez(path, before=np.zeros(3, np.int32), after=np.zeros(3, np.int32)),
            "holds no 75 labels",
        ),
        (
            "labels-000001-pass-*.npz",
            lambda path: np.savez(path, before=np.full(75, 9, np.int32), after=np.arange(75)),
            "labels of other clusters",
        ),
    ],
)
def test_a_damaged_folder_is_refused(rows, tmp_path, pattern, damage, message):
    given = dict(work_dir=tmp_path, **SETTINGS)
    BlockKWay(max_passes=2, **given).fit(cut(rows, 4))
    for path in tmp_path.glob(pattern):
        damage(path)
    with pytest.raises(ValueError, match=message):
        BlockKWay(**given).fit(cut(rows, 4))


def test_a_folder_of_another_clustering_is_refused(rows, tmp_path):
    BlockKWay(max_passes=1, work_dir=tmp_path, **SETTINGS).fit([rows])
    with pytest.raises(ValueError, match="holds another clustering: its crfun is 2, not 1"):
        BlockKWay(work_dir=tmp_path, criterion="i1", **SETTINGS).fit([rows])
    with pytest.raises(ValueError, match="Block 0 has 100 rows, and had 300"):
        BlockKWay(work_dir=tmp_path, **SETTINGS).fit(cut(rows, 3))


def test_progress_is_told_pass_by_pass(rows, capsys):
    model = BlockKWay(verbose=1, **SETTINGS).fit([rows])
    lines = capsys.readouterr().out.splitlines()
    assert lines[0].startswith("BlockKWay: clustering a sample of ")
    assert len(lines) == 1 + model.n_passes_
    assert lines[1].startswith("BlockKWay: pass 1: ")


def _across_places(array: np.ndarray) -> np.ndarray:
    """Return a copy of an array that begins one byte behind the place of an element."""
    memory = np.zeros(array.nbytes + 1, dtype=np.uint8)
    moved = memory[1:].view(array.dtype).reshape(array.shape)
    moved[...] = array
    assert not moved.flags.aligned
    return moved


def test_arrays_may_lie_across_the_places_of_their_elements(rows):
    """As those do that come in messages."""
    moved = rows.copy()
    for name in ("data", "indices", "indptr"):
        setattr(moved, name, _across_places(getattr(moved, name)))
    expected = BlockKWay(**SETTINGS).fit([rows]).labels_
    assert np.array_equal(BlockKWay(**SETTINGS).fit([moved]).labels_, expected)
    direct = molva.DirectKWay(4, random_state=1)
    assert np.array_equal(direct.fit(moved).labels_, direct.fit(rows).labels_)
