# SPDX-License-Identifier: MIT
"""Threads change nothing but the time, and a call leaves the library's setting as it was."""

from __future__ import annotations

import multiprocessing
import threading

import molva
import numpy as np
import pytest
from molva import _engine, _threads
from numpy.testing import assert_array_equal

from conftest import topics

ESTIMATORS = [molva.RepeatedBisection, molva.DirectKWay]
MANY = [2, 3, -1]


@pytest.fixture(scope="module")
def texts():
    """Rows enough for several threads to have something to do."""
    return topics(3000, seed=5)


@pytest.fixture(autouse=True)
def setting():
    """Give the library a number of its own, which every test must leave in place."""
    _engine.set_num_threads(4)
    yield
    assert _engine.num_threads() == 4
    _engine.set_num_threads(1)


@pytest.mark.parametrize("n_jobs", MANY)
@pytest.mark.parametrize("estimator", ESTIMATORS)
def test_every_number_gives_the_same_fit(texts, estimator, n_jobs):
    one = estimator(6, random_state=1).fit(texts)
    many = estimator(6, random_state=1, n_jobs=n_jobs).fit(texts)
    assert_array_equal(many.labels_, one.labels_)
    assert many.criterion_value_ == one.criterion_value_
    assert (many.cluster_centers_ != one.cluster_centers_).nnz == 0
    for measure, expected in zip(many.statistics_, one.statistics_):
        assert_array_equal(measure, expected)


@pytest.mark.parametrize("n_jobs", MANY)
def test_every_number_gives_the_same_measures(texts, n_jobs):
    labels = np.arange(texts.shape[0]) % 7
    for number in range(1, 10):
        name = list(molva._models.CRITERIA)[number - 1]
        one = molva.criterion_value(texts, labels, name)
        assert molva.criterion_value(texts, labels, name, n_jobs=n_jobs) == one
    one, many = (molva.cluster_statistics(texts, labels, n_jobs=jobs) for jobs in (None, n_jobs))
    for measure, expected in zip(many, one):
        assert_array_equal(measure, expected)
    one, many = (molva.cluster_features(texts, labels, n_jobs=jobs) for jobs in (None, n_jobs))
    assert str(many) == str(one)


@pytest.mark.parametrize("n_jobs", MANY)
@pytest.mark.parametrize("build", [molva.cluster_tree, molva.full_tree])
def test_every_number_gives_the_same_trees(counts, build, n_jobs):
    labels = np.arange(counts.shape[0]) % 5
    one, many = (build(counts, labels, n_jobs=jobs, ordered=True) for jobs in (None, n_jobs))
    assert_array_equal(many.children, one.children)
    assert_array_equal(many.similarities, one.similarities)
    assert_array_equal(many.parent_similarities, one.parent_similarities)


def test_names_are_those_of_joblib(monkeypatch):
    monkeypatch.setattr(_engine, "processors", lambda: 8)
    asked = [None, 1, 5, 1024, -1, -2, -8, -9, -100, np.int64(3)]
    assert [_threads.thread_count(n_jobs) for n_jobs in asked] == [1, 1, 5, 1024, 8, 7, 1, 1, 1, 3]


@pytest.mark.parametrize("wrong", [0, 1025, True, 1.5, "2", [2]])
def test_other_numbers_are_refused(counts, wrong):
    labels = np.arange(counts.shape[0]) % 3
    calls = [
        lambda: molva.RepeatedBisection(3, n_jobs=wrong).fit(counts),
        lambda: molva.DirectKWay(3, n_jobs=wrong).fit(counts),
        lambda: molva.criterion_value(counts, labels, n_jobs=wrong),
        lambda: molva.cluster_statistics(counts, labels, n_jobs=wrong),
        lambda: molva.cluster_features(counts, labels, n_jobs=wrong),
        lambda: molva.cluster_tree(counts, labels, n_jobs=wrong),
        lambda: molva.full_tree(counts, labels, n_jobs=wrong),
    ]
    for call in calls:
        with pytest.raises(ValueError, match="n_jobs"):
            call()


def test_processors_are_those_that_the_process_may_use(python):
    script = """
import os
from molva import _engine
os.sched_setaffinity(0, {min(os.sched_getaffinity(0))})
print(_engine.processors())
"""
    assert python(script) == "1\n"


def test_the_number_is_set_while_a_call_works(counts, monkeypatch):
    seen = []
    monkeypatch.setattr("builtins.print", lambda *_, **__: seen.append(_engine.num_threads()))
    molva.DirectKWay(3, n_trials=2, verbose=1, n_jobs=3, random_state=1).fit(counts)
    assert seen == [3, 3]


def test_calls_within_a_call_have_numbers_of_their_own(counts, monkeypatch):
    labels = np.arange(counts.shape[0]) % 3
    seen = []

    def measure(*_, **__):
        molva.criterion_value(counts, labels, n_jobs=2)
        seen.append(_engine.num_threads())

    monkeypatch.setattr("builtins.print", measure)
    molva.DirectKWay(3, n_trials=2, verbose=1, n_jobs=3, random_state=1).fit(counts)
    assert seen == [3, 3]


def test_errors_leave_the_setting_as_it_was(counts):
    with pytest.raises(ValueError):
        molva.DirectKWay(1000, n_jobs=2).fit(counts)
    with pytest.raises(ValueError):
        molva.criterion_value(counts, [0], n_jobs=2)
    # The fixture looks at the setting.


def test_threads_of_the_caller_have_settings_of_their_own(counts):
    found = []
    thread = threading.Thread(target=lambda: found.append(_engine.num_threads()))
    thread.start()
    thread.join()
    assert found == [1]


def _labels(seed: int) -> list[int]:
    model = molva.DirectKWay(4, random_state=seed, n_jobs=2)
    return model.fit_predict(topics(600, seed=5)).tolist()


def test_a_process_may_fork_between_calls():
    here = [_labels(seed) for seed in (1, 2, 3)]
    with multiprocessing.get_context("fork").Pool(2) as pool:
        assert pool.map_async(_labels, (1, 2, 3)).get(timeout=120) == here


def test_numbers_that_the_library_refuses_are_its_errors():
    with pytest.raises(molva.MolvaError):
        _engine.set_num_threads(-1)


def test_models_are_cloned_with_their_threads():
    from sklearn.base import clone

    for estimator in ESTIMATORS:
        assert clone(estimator(n_jobs=-2)).n_jobs == -2
