# SPDX-License-Identifier: MIT
"""A number of clusters is recommended where there is reason to, and nowhere else."""

from __future__ import annotations

import csv
import io
import itertools

import molva
import numpy as np
import pytest
from molva import choosing
from numpy.testing import assert_allclose
from scipy import sparse

from conftest import topics

SHAPES = {
    "line": lambda k: k,
    "constant": lambda k: 0 * k,
    "root": np.sqrt,
    "logarithm": np.log,
    "hyperbola": lambda k: -1 / k,
    "rows on a line": lambda k: -1 / k**2,
    "square": lambda k: -(k**2),
    "convex": lambda k: k**2,
}


@pytest.mark.parametrize("numbers", [range(1, 13), range(2, 41), [1, 2, 4, 8, 16, 32]])
@pytest.mark.parametrize("shape", SHAPES)
def test_a_smooth_curve_has_no_knee(shape, numbers):
    k = np.array(numbers, dtype=float)
    assert choosing.find_knee(numbers, SHAPES[shape](k)) is None


def test_a_curve_that_stops_to_rise_has_its_knee_there():
    # The chord stands at 9.2 over 3, the curve at 20.
    assert choosing.find_knee(range(1, 7), [0, 10, 20, 21, 22, 23]) == (3, 10, 1)


def test_a_curve_that_begins_to_fall_has_its_knee_there():
    assert choosing.find_knee(range(1, 7), [0, -1, -2, -12, -22, -32]) == (3, -1, -10)
    assert choosing.find_knee(range(1, 6), [0, 1, 2, 1, 0]) == (3, 1, -1)
    assert choosing.find_knee(range(1, 5), [0, 4, 4, 4]) == (2, 4, 0)


def test_steps_count_by_the_clusters_that_they_add():
    # 10 for each cluster up to 5, 1 for each behind it.
    assert choosing.find_knee([1, 3, 5, 7, 15], [0, 20, 40, 42, 50]) == (5, 10, 1)


def test_a_bend_hardly_sharper_than_a_smooth_one_is_no_knee():
    # At 3 the curve -1/k^2 bends by 16/4 * 5/7 = 20/7, and 1.3 times that is 3.71.
    assert choosing.find_knee(range(1, 7), [0, 3.7, 7.4, 8.4, 9.4, 10.4]) is None
    assert choosing.find_knee(range(1, 7), [0, 3.75, 7.5, 8.5, 9.5, 10.5]) == (3, 3.75, 1)


def test_in_more_dimensions_smooth_curves_bend_less():
    # In two dimensions -1/k bends by 4/2 at 3, and 1.3 times that is 2.6.
    assert choosing.find_knee(range(1, 7), [0, 2.5, 5, 6, 7, 8], 2) is None
    assert choosing.find_knee(range(1, 7), [0, 2.75, 5.5, 6.5, 7.5, 8.5], 2) == (3, 2.75, 1)


def test_the_dimension_is_half_the_number_of_even_directions():
    # Unit rows along d axes, both ways, have the same variance along each.
    for d in (2, 6, 10):
        rows = np.vstack([np.eye(d), -np.eye(d)]).astype(np.float32)
        fit = molva.DirectKWay(2, random_state=1).fit(rows)
        assert_allclose(choosing._dimension(rows, fit), d / 2)
    line = np.array([[1, 0], [-1, 0], [1, 0]], np.float32)
    fit = molva.DirectKWay(2, random_state=1).fit(line)
    assert choosing._dimension(line, fit) == pytest.approx(0.5)
    same = np.ones((5, 3), np.float32)
    assert choosing._dimension(same, molva.DirectKWay(2, random_state=1).fit(same)) == 0.5


def test_one_small_step_behind_the_highest_point_makes_no_knee():
    assert choosing.find_knee(range(1, 7), [0, 10, 20, 21, 29, 31]) is None


def test_halves_of_rows_on_a_line_make_no_knee():
    # -256 times the sum of size^3 over the parts of a line of length 1, halved one after the other.
    # A half that is halved adds 24, a quarter 3.
    halved = [-64, -40, -16, -13, -10, -7, -4]
    assert choosing.find_knee(range(2, 9), halved) == (4, 24, 3)
    assert choosing.find_knee(range(2, 9), halved, halving=True) is None


@pytest.mark.parametrize("curve", [[], [1], [1, 2], [0, 9, np.nan, 10], [0, 9, np.inf, 10]])
def test_too_few_points_or_no_numbers_have_no_knee(curve):
    assert choosing.find_knee(range(1, len(curve) + 1), curve) is None


@pytest.fixture(scope="module")
def groups() -> np.ndarray:
    """Return ten rows near each of three axes."""
    random = np.random.RandomState(1)
    return np.eye(3)[np.arange(30) % 3] * 10 + random.uniform(size=(30, 3))


@pytest.mark.parametrize("method", ["direct", "bisection"])
@pytest.mark.parametrize("criterion", ["i1", "i2", "e1", "g1p", "h2"])
def test_three_groups_give_three(groups, method, criterion):
    found = molva.sweep(groups, range(2, 9), method=method, criterion=criterion)
    assert found.recommended == 3
    three = found.rows[1]
    assert (three.stability, three.least_stability) == (1, 1)
    assert (three.smallest, three.median, three.largest) == (10, 10, 10)
    assert str(found).splitlines()[9] == "Recommended: 3 clusters."


def test_two_tight_groups_give_two_although_the_numbers_begin_there():
    rows = np.repeat([[9, 1], [1, 9]], 6, axis=0) + np.arange(12)[:, None] / 1000 * [1, 0]
    assert molva.sweep(rows, range(2, 7)).recommended == 2


@pytest.mark.parametrize("method", ["direct", "bisection"])
@pytest.mark.parametrize("columns", [2, 5, 30])
@pytest.mark.parametrize("seed", [1, 2])
def test_noise_gives_no_recommendation_and_says_so(columns, method, seed):
    noise = np.random.RandomState(seed).uniform(size=(150, columns))
    found = molva.sweep(noise, range(2, 11), method=method, n_trials=3)
    assert found.recommended is None
    assert "no clear knee" in found.reasons[0]
    assert "No recommendation." in str(found).splitlines()


def row(number: int, stability: float) -> molva.choosing.SweepRow:
    return choosing.SweepRow(number, 1.0, 0.1, stability, stability, 1, 1.0, 1, None, None)


def test_a_knee_without_stable_clusters_is_not_recommended():
    rows = [row(2, 1.0), row(3, 0.5), row(4, 0.95)]
    recommended, reasons = choosing.recommend(rows, choosing.Knee(3, 2.0, 0.5), "i2")
    assert recommended is None
    assert reasons == (
        "I2 has a knee at 3: a further cluster adds 2 before it and 0.5 behind it.",
        "Clusters that come back with other seeds (stability 0.9): 2 and 4.",
        "At the knee the seeds agree by 0.50 only, which is too little.",
    )


def test_stable_clusters_without_a_knee_are_not_recommended():
    recommended, reasons = choosing.recommend([row(2, 1.0), row(3, 1.0)], None, "g1p")
    assert recommended is None
    assert reasons == (
        "G1' has no clear knee: what a further cluster adds changes smoothly.",
        "Every number has clusters that come back, so the seeds tell none from the others.",
    )


def test_words_tell_what_a_criterion_that_falls_loses():
    recommended, reasons = choosing.recommend([row(3, 0.9)], choosing.Knee(3, 5.0, 1.0), "e1")
    assert recommended == 3
    assert "adds -5 before it and -1 behind it" in reasons[0]


def test_one_row_of_each_kind_has_values_by_hand():
    # Two pairs of equal rows at right angles. One cluster of all has a sum of length 2 sqrt(2), two
    # have sums of length 2 each, and cutting a pair changes nothing.
    pairs = [[1, 0], [1, 0], [0, 1], [0, 1]]
    found = molva.sweep(pairs, [3, 2], classes=["a", "a", "b", "a"])
    assert len(found) == 2
    two, three = found
    assert (two.n_clusters, three.n_clusters) == (2, 3)
    assert_allclose([two.value, two.added], [4, 4 - np.sqrt(8)], rtol=1e-6)
    assert_allclose([three.value, three.added], [4, 0], atol=1e-6)
    assert (two.smallest, two.median, two.largest) == (2, 2, 2)
    assert (three.smallest, three.median, three.largest) == (1, 1, 2)
    assert two.purity == 0.75
    # Entropies: of the clusters ln 2, of the classes 0.75 ln(4/3) + 0.25 ln 4; within one cluster
    # the classes are half and half, so the mutual information is the latter less ln(2) / 2.
    of_classes = 0.75 * np.log(4 / 3) + 0.25 * np.log(4)
    assert_allclose(two.nmi, 2 * (of_classes - np.log(2) / 2) / (np.log(2) + of_classes))


def test_stability_is_the_adjusted_rand_index_of_the_pairs_of_seeds(monkeypatch):
    # {0 1 2 3} {4 5} and {0 1 2} {3 4 5}: of 15 pairs of rows 7 and 6 are together, 4 in both;
    # chance has 7 * 6 / 15 = 2.8, so the index is (4 - 2.8) / (6.5 - 2.8) = 12/37.
    labels = {1: [0, 0, 0, 0, 1, 1], 2: [0, 0, 0, 1, 1, 1], 3: [1, 1, 1, 1, 0, 0]}

    class Fixed(molva.DirectKWay):
        def _cluster(self, matrix, codes, *, seed, **settings):
            return np.array(labels[seed], dtype=np.int32)

    monkeypatch.setitem(choosing.METHODS, "direct", Fixed)
    (only,) = molva.sweep(np.eye(6) + 1, [2])
    assert_allclose(only.stability, (1 + 2 * 12 / 37) / 3)
    assert_allclose(only.least_stability, 12 / 37)
    assert molva.sweep(np.eye(6) + 1, [2], seeds=[3, 1]).rows[0].stability == 1


def test_numbers_that_begin_above_two_have_nothing_added_before_them(counts):
    first, second = molva.sweep(counts, [3, 5], n_trials=1)
    assert np.isnan(first.added)
    assert_allclose(second.added, (second.value - first.value) / 2)
    assert str(molva.sweep(counts, [3, 5], n_trials=1)).splitlines()[1].split()[2] == "-"


def test_rows_that_preparation_drops_are_in_no_measure():
    # The last row is empty and belongs to no cluster.
    counts = topics(30, seed=2).toarray()
    counts[-1] = 0
    found = molva.sweep(sparse.csr_matrix(counts), [3], classes=[*np.arange(29) % 3, 7])
    assert found.rows[0].smallest + found.rows[0].median + found.rows[0].largest == 29


def test_settings_reach_the_estimator(counts):
    swept = molva.sweep(counts, [4], criterion="h2", row_model="sqrt", prune=0.9, seeds=[5, 6])
    fits = [
        molva.DirectKWay(4, criterion="h2", row_model="sqrt", prune=0.9, random_state=seed).fit(
            counts
        )
        for seed in (5, 6)
    ]
    assert swept.rows[0].value == max(fit.criterion_value_ for fit in fits)
    refined = molva.sweep(counts, [4], method="bisection", refine=True, seeds=[5, 6])
    fits = [
        molva.RepeatedBisection(4, refine=True, random_state=seed).fit(counts) for seed in (5, 6)
    ]
    assert refined.rows[0].value == max(fit.criterion_value_ for fit in fits)


def test_threads_and_repetition_change_nothing(counts):
    once = molva.sweep(counts, range(2, 6), classes=np.arange(60) % 3)
    assert molva.sweep(counts, range(2, 6), classes=np.arange(60) % 3, n_jobs=2).rows == once.rows


def test_the_table_is_aligned_and_ends_with_the_reasons(groups):
    found = molva.sweep(groups, range(2, 12), classes=np.arange(30) % 3)
    lines = str(found).splitlines()
    heads = "clusters value added stability least smallest median largest purity NMI"
    assert lines[0].split() == heads.split()
    assert len({len(line) for line in lines[:11]}) == 1
    assert lines[11] == ""
    assert lines[13:] == list(found.reasons)
    assert "purity" not in str(molva.sweep(groups, [3]))
    assert repr(found) == str(found)


def test_the_table_as_csv_reads_back(groups, tmp_path):
    found = molva.sweep(groups, range(2, 5), classes=np.arange(30) % 3)
    assert found.to_csv(tmp_path / "sweep.csv") is None
    text = (tmp_path / "sweep.csv").read_text(encoding="utf-8")
    assert text == found.to_csv()
    for read, row in zip(csv.DictReader(io.StringIO(text)), found, strict=True):
        assert tuple(map(float, read.values())) == row


def test_the_plot_has_both_curves(groups):
    import matplotlib

    matplotlib.use("Agg")
    found = molva.sweep(groups, range(2, 7))
    axes = found.plot()
    values, recommended = axes.get_lines()
    assert list(values.get_xdata()) == [2, 3, 4, 5, 6]
    assert list(values.get_ydata()) == [row.value for row in found]
    assert list(recommended.get_xdata()) == [3, 3]
    assert found.plot(axes) is axes
    matplotlib.pyplot.close("all")


@pytest.mark.parametrize(
    ("wrong", "message"),
    [
        ({"n_clusters": []}, "empty"),
        ({"n_clusters": 5}, "range or a list"),
        ({"n_clusters": "234"}, "range or a list"),
        ({"n_clusters": [1, 2]}, "at least 2"),
        ({"n_clusters": [2.5]}, "integer"),
        ({"n_clusters": [2, 61]}, "60 rows"),
        ({"n_clusters": itertools.count(2)}, "60 rows"),
        ({"method": "ward"}, "method must be one of 'direct', 'bisection'"),
        ({"criterion": "i3"}, "criterion"),
        ({"seeds": 1}, "at least 2"),
        ({"seeds": [4]}, "two or more"),
        ({"seeds": [4, 4]}, "twice"),
        ({"seeds": 2.5}, "integer"),
        ({"seeds": [1, "2"]}, "integer"),
        ({"classes": [1, 2]}, "60 classes"),
        ({"classes": 3}, "60 classes"),
        ({"n_jobs": 0}, "n_jobs"),
        ({"n_trials": 0}, "n_trials"),
        ({"row_model": "cube"}, "row_model"),
        ({"prune": 2}, "prune"),
    ],
)
def test_wrong_arguments_are_value_errors(counts, wrong, message):
    with pytest.raises(ValueError, match=message):
        molva.sweep(counts, **{"n_clusters": [2, 3], **wrong})


@pytest.mark.parametrize("unknown", ["refine", "random_state", "speed"])
def test_other_keywords_are_refused(counts, unknown):
    with pytest.raises(TypeError, match=f"unexpected keyword argument '{unknown}'"):
        molva.sweep(counts, [2, 3], **{unknown: 1})


def test_i1_and_i2_are_the_objectives_of_the_two_k_means(dense):
    labels = np.arange(len(dense)) % 3
    rows = dense / np.linalg.norm(dense, axis=1, keepdims=True)
    means = np.array([rows[labels == k].mean(axis=0) for k in range(3)])[labels]
    cosines = (rows * means).sum(axis=1) / np.linalg.norm(means, axis=1)
    assert_allclose(molva.criterion_value(dense, labels, "i2"), cosines.sum(), rtol=1e-5)
    inertia = ((rows - means) ** 2).sum()
    assert_allclose(len(dense) - molva.criterion_value(dense, labels, "i1"), inertia, rtol=1e-5)
