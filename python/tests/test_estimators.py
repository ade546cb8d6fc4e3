# SPDX-License-Identifier: MIT
"""The estimators keep scikit-learn's rules, and their own promises."""

from __future__ import annotations

import _thread
import pickle
import signal
import threading
import time

import numpy as np
import pytest
from scipy import sparse
from sklearn.base import clone
from sklearn.utils.estimator_checks import parametrize_with_checks

import molva
from molva._matrix import borrow, check_matrix
from molva._space import Space

BOTH = [molva.RepeatedBisection, molva.DirectKWay]


@pytest.mark.filterwarnings("ignore:The values are not whole numbers")
@parametrize_with_checks([estimator() for estimator in BOTH])
def test_scikit_learns_rules(estimator, check):
    check(estimator)


@pytest.mark.parametrize("estimator", BOTH)
class TestBoth:
    def test_finds_the_topics(self, counts, estimator):
        labels = estimator(3, random_state=1).fit_predict(counts)
        quality = molva.external_quality(labels, np.arange(60) % 3)
        assert quality.purity == 1

    def test_sparse_formats_and_types_give_the_same_labels(self, counts, estimator):
        model = estimator(3, random_state=1)
        labels = model.fit_predict(counts)
        wide = sparse.csr_matrix(
            (counts.data.astype(np.float64), counts.indices, counts.indptr), counts.shape
        )
        wide.indices, wide.indptr = wide.indices.astype(np.int64), wide.indptr.astype(np.int64)
        for form in (counts.tocsc(), counts.tocoo(), wide, counts.astype(np.int64)):
            np.testing.assert_array_equal(model.fit_predict(form), labels)
        np.testing.assert_array_equal(model.fit_predict(sparse.csr_array(counts)), labels)

    def test_indices_that_do_not_fit_are_refused(self, counts, estimator):
        X = counts.copy()
        X.indices = X.indices.astype(np.int64)
        X.indices[0] += 2**32  # Cut to 32 bits it would be what it was.
        for call in (estimator(3).fit, lambda X: molva.criterion_value(X, np.zeros(60, dtype=int))):
            with pytest.raises(ValueError, match="Column index 4294967... is outside the matrix"):
                call(X)

    def test_what_lies_behind_the_last_entry_is_no_part_of_the_matrix(self, counts, estimator):
        X = counts.copy()
        X.data = np.append(X.data, np.float32([3, -7]))
        X.indices = np.append(X.indices, np.int32([5, 99]))
        model = estimator(3, row_model="log", random_state=1).fit(X)
        expected = clone(model).fit(counts)
        np.testing.assert_array_equal(model.labels_, expected.labels_)
        np.testing.assert_array_equal(model._space.weights, expected._space.weights)
        np.testing.assert_array_equal(model.predict(X), expected.predict(counts))
        assert len(X.data) == counts.nnz + 2

    def test_the_matrix_is_left_as_it_was(self, counts, estimator):
        X = counts.copy()
        for array in (X.data, X.indices, X.indptr):
            array.flags.writeable = False
        estimator(3, random_state=1).fit(X)
        assert (X != counts).nnz == 0

    def test_random_state_decides(self, dense, estimator):
        model = estimator(9, n_trials=1, n_iter=1)

        def labels(random_state):
            return model.set_params(random_state=random_state).fit_predict(dense).tolist()

        assert labels(3) == labels(3) == labels(np.int64(3))
        assert labels(np.random.RandomState(3)) == labels(np.random.RandomState(3))
        assert len({tuple(labels(seed)) for seed in range(5)}) > 1
        assert model.get_params()["random_state"] == 4

    def test_pickled_and_cloned_models_do_the_same(self, counts, estimator):
        model = estimator(3, random_state=1, row_model="log").fit(counts)
        again = pickle.loads(pickle.dumps(model))
        np.testing.assert_array_equal(again.predict(counts), model.predict(counts))
        np.testing.assert_array_equal(clone(model).fit(counts).labels_, model.labels_)

    def test_rows_that_preparation_drops_have_no_cluster(self, counts, estimator):
        wider = sparse.csr_matrix((counts.data, counts.indices, counts.indptr), (60, 61))
        # Column 60 stands in row 60 only; row 61 is empty.
        X = sparse.vstack([wider, sparse.csr_matrix(([5.0], ([0], [60])), (2, 61))]).tocsr()
        model = estimator(3, random_state=1).fit(X)
        assert model.labels_[60:].tolist() == [-1, -1]
        assert model.labels_[:60].min() == 0
        assert model.statistics_.sizes.sum() == 60
        assert model.predict(X)[60:].tolist() == [-1, -1]

    @pytest.mark.filterwarnings("ignore:overflow")
    @pytest.mark.parametrize("bad", [np.nan, np.inf, 1e300])
    def test_numbers_that_are_none_are_refused(self, counts, estimator, bad):
        X = counts.astype(np.float64)
        X.data[5] = bad
        for form in (X, X.toarray()):
            with pytest.raises(ValueError, match="NaN|infinity"):
                estimator(3).fit(form)

    @pytest.mark.parametrize(
        "parameters, message",
        [
            ({"criterion": "i9"}, "criterion must be one of 'i1'.*got 'i9'"),
            ({"similarity": "jaccard"}, "similarity must be one of"),
            ({"row_model": None}, "row_model must be one of"),
            ({"col_model": "tf"}, "col_model must be one of 'auto'"),
            ({"n_clusters": 0}, "n_clusters must be at least 1"),
            ({"n_clusters": 2.5}, "n_clusters must be an integer"),
            ({"n_trials": 0}, "n_trials must be at least 1"),
            ({"n_iter": -1}, "n_iter must be at least 0"),
            ({"prune": np.nan}, "prune must be a number from 0 to 1; got nan"),
            ({"prune": 2}, "prune must be a number from 0 to 1; got 2"),
            ({"n_clusters": 61}, "n_samples=60 should be >= n_clusters=61"),
            ({"random_state": 2**31}, "random_state must fit 32 bits"),
        ],
    )
    def test_arguments_are_checked_by_fit(self, counts, estimator, parameters, message):
        model = estimator().set_params(**parameters)
        with pytest.raises(ValueError, match=message):
            model.fit(counts)

    def test_the_librarys_errors_are_exceptions_with_its_message(self, dense, estimator):
        with pytest.raises(molva.MolvaError, match="^IDF column model only applies to sparse") as e:
            estimator(3, col_model="idf").fit(dense)
        assert isinstance(e.value, ValueError) and isinstance(e.value, RuntimeError)
        estimator(3).fit(dense)  # The next run is as good as the first.

    def test_verbose_tells_progress(self, counts, capsys, estimator):
        estimator(3, n_trials=4, random_state=1).fit(counts)
        assert capsys.readouterr().out == ""
        estimator(3, n_trials=4, random_state=1, verbose=1).fit(counts)
        lines = capsys.readouterr().out.splitlines()
        if estimator is molva.DirectKWay:
            assert lines == [f"DirectKWay: trial {done} of 4" for done in range(1, 5)]
        else:
            assert lines == [f"RepeatedBisection: bisection {done} of 2" for done in (1, 2)]

    def test_runs_go_on_in_several_threads(self, counts, estimator):
        expected = [estimator(4, random_state=seed).fit_predict(counts) for seed in range(4)]
        found = [None] * 4

        def run(seed):
            found[seed] = estimator(4, random_state=seed).fit_predict(counts)

        threads = [threading.Thread(target=run, args=(seed,)) for seed in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        np.testing.assert_array_equal(found, expected)


EACH = np.arange(3000)


def interrupt_soon():
    """Sends this process an interrupt; the list tells the processor time then."""
    sent = []

    def interrupt():
        sent.append(time.process_time())
        _thread.interrupt_main(signal.SIGINT)

    threading.Timer(0.5, interrupt).start()  # The thread needs the lock, which a run has to let go.
    return sent


@pytest.mark.parametrize("estimator", BOTH)
def test_an_interrupt_stops_a_fit_that_would_go_on_for_years(estimator):
    X = np.random.RandomState(0).normal(size=(len(EACH), 60))
    interrupt_soon()
    with pytest.raises(KeyboardInterrupt):
        estimator(30, n_trials=2**30).fit(X)


FEWER = np.arange(1200)  # Their tree takes some seconds.


@pytest.mark.parametrize(
    "tree",
    [
        lambda X: molva.full_tree(X, np.zeros_like(FEWER), "h1"),
        lambda X: molva.cluster_tree(X, FEWER, "h1"),
    ],
    ids=["full_tree", "cluster_tree"],
)
def test_an_interrupt_stops_a_tree_before_its_end(tree):
    X = np.random.RandomState(0).normal(size=(len(FEWER), 60))
    began = time.process_time()
    tree(X)
    whole = time.process_time() - began
    sent = interrupt_soon()
    with pytest.raises(KeyboardInterrupt):
        tree(X)
    # Not on a clock, which goes on while others work.
    assert time.process_time() - sent[0] < whole / 2


def test_refinement_is_asked_for_by_a_flag(counts):
    for yes in (True, np.True_, 1):
        molva.RepeatedBisection(3, refine=yes).fit(counts)
    for wrong in ("no", None, 2):
        with pytest.raises(ValueError, match="refine must be True or False"):
            molva.RepeatedBisection(3, refine=wrong).fit(counts)


@pytest.mark.parametrize("estimator", BOTH)
def test_logarithms_of_negative_values_are_refused(dense, estimator):
    model = estimator(3, row_model="log")
    with pytest.raises(ValueError, match="no negative values"):
        model.fit(dense)
    with pytest.raises(ValueError, match="no negative values"):
        model.fit(np.abs(dense)).predict(dense)


def test_a_run_that_is_stopped_leaves_the_one_before(counts, monkeypatch):
    model = molva.RepeatedBisection(3, random_state=1).fit(counts)
    labels = model.labels_

    def stop(*args):
        raise KeyboardInterrupt

    monkeypatch.setattr("molva._space.Space.fit", stop)
    with pytest.raises(KeyboardInterrupt):
        model.set_params(n_clusters=5).fit(counts)
    assert model.labels_ is labels and len(model.statistics_.sizes) == 3


@pytest.mark.parametrize("method", ["features", "cluster_tree", "full_tree", "predict"])
def test_the_fitted_columns_are_asked_for(counts, method):
    model = molva.RepeatedBisection(3, random_state=1).fit(counts)
    with pytest.raises(ValueError, match="X has 40 features, but .* is expecting 60"):
        getattr(model, method)(counts[:, :40])


def test_a_run_within_a_run_takes_nothing_from_it(counts, capsys, monkeypatch):
    show = print

    def cluster_and_show(*args, **kwargs):
        molva.DirectKWay(2, random_state=1).fit(counts)
        show(*args, **kwargs)

    monkeypatch.setattr("builtins.print", cluster_and_show)
    molva.RepeatedBisection(4, random_state=1, verbose=1).fit(counts)
    assert len(capsys.readouterr().out.splitlines()) == 3


def test_more_verbose_bisection_tells_trials_too(counts, capsys):
    molva.RepeatedBisection(2, n_trials=2, random_state=1, verbose=2).fit(counts)
    assert capsys.readouterr().out.splitlines() == [
        "RepeatedBisection: trial 1 of 2",
        "RepeatedBisection: trial 2 of 2",
        "RepeatedBisection: bisection 1 of 1",
    ]


def test_an_error_in_the_progress_function_ends_the_run(counts, monkeypatch):
    def fail(*args, **kwargs):
        raise OSError("no place to print")

    monkeypatch.setattr("builtins.print", fail)
    with pytest.raises(OSError, match="no place to print"):
        molva.DirectKWay(3, verbose=1).fit(counts)


def test_single_precision_rows_are_shared_with_the_library(counts):
    X = check_matrix(counts)
    assert np.shares_memory(X.data, counts.data)
    assert np.shares_memory(X.indices, counts.indices)
    borrow(X)  # Takes the arrays as they are: its arguments are never converted.


class TestPredict:
    def test_new_rows_join_the_topic_they_are_about(self, counts):
        model = molva.RepeatedBisection(3, random_state=1).fit(counts[:45])
        of_topic = model.labels_[:3]
        assert model.predict(counts[45:]).tolist() == of_topic[np.arange(45, 60) % 3].tolist()
        assert model.predict(counts[45:].toarray()).tolist() == model.predict(counts[45:]).tolist()

    @pytest.mark.parametrize("form", ["counts", "dense"])
    @pytest.mark.parametrize("similarity", ["cosine", "correlation"])
    @pytest.mark.parametrize("row_model", ["none", "maxtf", "sqrt", "log"])
    @pytest.mark.parametrize("prune", [1.0, 0.7])
    def test_the_fitted_space_is_the_librarys(self, request, form, similarity, row_model, prune):
        X = check_matrix(np.abs(request.getfixturevalue(form)))
        model = molva.RepeatedBisection(
            3, similarity=similarity, row_model=row_model, prune=prune, random_state=1
        ).fit(X)
        _, prepared, rows = Space.fit(X, model._space.models)
        ours = model._space.transform(X)
        ours = ours.toarray() if sparse.issparse(ours) else ours
        np.testing.assert_allclose(ours[rows], prepared.toarray(), atol=1e-6)

    def test_centroids_are_unit_sums(self, counts):
        model = molva.DirectKWay(3, random_state=1, col_model="none").fit(counts)
        X = counts.toarray()[:, np.diff(counts.tocsc().indptr) > 1].astype(np.float64)
        X /= np.linalg.norm(X, axis=1, keepdims=True)
        for cluster in range(3):
            total = X[model.labels_ == cluster].sum(axis=0)
            np.testing.assert_allclose(
                model.cluster_centers_[cluster].toarray().ravel(),
                total / np.linalg.norm(total),
                atol=1e-6,
            )
