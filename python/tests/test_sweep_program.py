# SPDX-License-Identifier: MIT
"""The program mardle-sweep and the package's function say the same of the same rows."""

from __future__ import annotations

import csv
import os
import subprocess

import molva
import numpy as np
import pytest

from conftest import ESSAYS

CRITERIA = ["i1", "i2", "e1", "g1", "g1p", "h1", "h2", "g3", "h3"]
ROW_MODELS = ["none", "maxtf", "sqrt", "log"]


@pytest.fixture(scope="session")
def sweep_of_program():
    """Return a function that runs mardle-sweep and returns its answer and its table."""
    path = os.environ.get("MARDLE_SWEEP")
    if path is None:
        pytest.fail("MARDLE_SWEEP must name the built program; scripts/test-python sets it")

    def run(table, *arguments):
        done = subprocess.run(
            [path, f"--csv={table}", *map(str, arguments)],
            capture_output=True, text=True, check=False,
        )  # fmt: skip
        assert (done.returncode, done.stderr) == (0, ""), done.stderr
        return done.stdout, read_table(table.read_text(encoding="utf-8"))

    return run


def read_table(text):
    names, *lines = csv.reader(text.splitlines())
    return names, [[float(cell) for cell in line] for line in lines]


def assert_alike(found, sweep):
    """Check that both have the same rows, to the last digits, and the same words."""
    printed, (names, numbers) = found
    expected_names, expected = read_table(sweep.to_csv())
    assert names == expected_names
    np.testing.assert_allclose(numbers, expected, rtol=1e-9, atol=1e-12)
    _, _, answer = printed.partition("\n\n")
    assert answer == str(sweep).partition("\n\n")[2] + "\n"


def test_the_essays_print_alike(sweep_of_program, tmp_path):
    essays, authors = molva.read_matrix(ESSAYS), molva.read_labels(f"{ESSAYS}.rclass")
    sweep = molva.sweep(essays, range(2, 10), classes=authors)
    found = sweep_of_program(tmp_path / "table", ESSAYS, 2, 9)
    assert found[0] == f"{sweep}\n"
    assert_alike(found, sweep)


@pytest.mark.parametrize("number, criterion", enumerate(CRITERIA, 1))
def test_every_criterion(sweep_of_program, tmp_path, counts, number, criterion):
    molva.write_matrix(tmp_path / "m", counts)
    found = sweep_of_program(tmp_path / "table", f"-crfun={number}", tmp_path / "m", 2, 7)
    assert_alike(found, molva.sweep(counts, range(2, 8), criterion=criterion))


@pytest.mark.parametrize("number, row_model", enumerate(ROW_MODELS, 1))
def test_models_and_methods(sweep_of_program, tmp_path, counts, number, row_model):
    molva.write_matrix(tmp_path / "m", counts)
    found = sweep_of_program(
        tmp_path / "table", f"-rowmodel={number}", "-colmodel=1", "-prune=0.8", "-rb", "-refine",
        "-ntrials=2", "-niter=3", "--seeds=4", "--step=2", tmp_path / "m", 3, 10,
    )  # fmt: skip
    sweep = molva.sweep(
        counts, range(3, 11, 2), method="bisection", refine=True, row_model=row_model,
        col_model="none", prune=0.8, n_trials=2, n_iter=3, seeds=4,
    )  # fmt: skip
    assert_alike(found, sweep)


@pytest.mark.parametrize("number, similarity", [(1, "cosine"), (2, "correlation")])
def test_dense_rows_with_classes(sweep_of_program, tmp_path, dense, number, similarity):
    classes = [f"direction {row % 4}" for row in range(48)]
    molva.write_matrix(tmp_path / "m", dense)
    molva.write_labels(tmp_path / "classes", classes)
    found = sweep_of_program(
        tmp_path / "table", "-denseinput", f"-sim={number}",
        f"-rclassfile={tmp_path / 'classes'}", tmp_path / "m", 2, 9,
    )  # fmt: skip
    assert_alike(found, molva.sweep(dense, range(2, 10), similarity=similarity, classes=classes))


def test_rows_that_preparation_drops(sweep_of_program, tmp_path, counts):
    X = counts.tolil()
    X[5] = X[20] = 0
    X = X.tocsr()
    molva.write_matrix(tmp_path / "m", X)
    molva.write_labels(tmp_path / "m.rclass", [row % 3 for row in range(60)])
    found = sweep_of_program(tmp_path / "table", tmp_path / "m", 2, 6)
    sweep = molva.sweep(X, range(2, 7), classes=[row % 3 for row in range(60)])
    assert_alike(found, sweep)


def test_more_rows_than_the_sample(sweep_of_program, tmp_path):
    # Four groups of 600 rows: every third row is looked at for their dimensions.
    random = np.random.RandomState(2)
    X = np.eye(4)[np.arange(2400) % 4] + random.normal(scale=0.1, size=(2400, 4))
    molva.write_matrix(tmp_path / "m", X.astype(np.float32))
    found = sweep_of_program(tmp_path / "table", "-denseinput", tmp_path / "m", 2, 8)
    sweep = molva.sweep(X, range(2, 9))
    assert sweep.recommended == 4
    assert_alike(found, sweep)
