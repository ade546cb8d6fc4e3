# SPDX-License-Identifier: MIT
"""What fitted estimators tell of their clusters and of new rows."""

from __future__ import annotations

import math

import molva
import numpy as np
import pytest
from numpy.testing import assert_allclose
from scipy import sparse
from sklearn import config_context
from sklearn.feature_extraction.text import CountVectorizer, TfidfVectorizer
from sklearn.pipeline import make_pipeline

from conftest import REPOSITORY

# Two pairs of rows at a right angle; the centroids are the two axes.
AXES = np.array([[1.0, 0.0], [2.0, 0.0], [0.0, 3.0], [0.0, 1.0]])
# Unit rows at 0, 60 and 90 degrees, and one alone.
FAN = np.array([[1, 0, 0], [0.5, math.sqrt(0.75), 0], [0, 1, 0], [0, 0, 1]])


@pytest.fixture(scope="module")
def axes():
    """Return a fit of AXES, and the number of the cluster along each axis."""
    model = molva.DirectKWay(2, random_state=1).fit(AXES)
    return model, model.labels_[[0, 2]]


@pytest.fixture(scope="module")
def subjects_and_texts():
    lines = (REPOSITORY / "python" / "examples" / "texts.txt").read_text(encoding="utf-8")
    return tuple(zip(*(line.split("\t") for line in lines.splitlines())))


class TestNewRows:
    def test_they_become_similarities_to_the_centroids(self, axes):
        model, (first, second) = axes
        similarities = model.transform([[3, 4], [5, 0], [-1, 0], [0, 0]])
        assert_allclose(similarities[:, first], [0.6, 1, -1, 0], atol=1e-6)
        assert_allclose(similarities[:, second], [0.8, 0, 0, 0], atol=1e-6)

    def test_their_score_is_the_average_of_the_largest(self, axes):
        # 0.8 and 1, and 0 of a row that has no direction.
        assert axes[0].score([[3, 4], [5, 0], [0, 0]]) == pytest.approx(0.6)

    def test_sparse_rows_are_measured_in_the_fitted_space(self, counts):
        model = molva.RepeatedBisection(3, random_state=1, prune=0.8).fit(counts[:45])
        similarities = model.transform(counts[45:])
        assert similarities.shape == (15, 3) and type(similarities) is np.ndarray
        np.testing.assert_array_equal(similarities.argmax(axis=1), model.predict(counts[45:]))
        assert model.score(counts[45:]) == pytest.approx(similarities.max(axis=1).mean())

    def test_the_score_of_the_fitted_rows_is_no_less_than_i2_gives_them(self, counts):
        # I2 sums the similarities of the rows to the centroids of their own clusters.
        model = molva.DirectKWay(4, random_state=1).fit(counts)
        assert model.score(counts) >= model.criterion_value_ / 60 - 1e-6

    def test_the_columns_of_similarities_have_names(self, axes):
        assert axes[0].get_feature_names_out().tolist() == ["directkway0", "directkway1"]


class TestWeightedValues:
    MESSAGE = "look weighted already, and IDF weighs the columns once more"

    @pytest.fixture
    def weighted(self, counts):
        return counts.multiply(0.5).tocsr()

    @pytest.mark.parametrize(
        "call",
        [
            lambda X: molva.RepeatedBisection(3).fit(X),
            lambda X: molva.DirectKWay(3).fit_predict(X),
            lambda X: molva.cluster_features(X, np.zeros(60, dtype=int)),
            lambda X: molva.full_tree(X, np.zeros(60, dtype=int)),
            lambda X: molva.typical_rows(X, np.zeros(60, dtype=int)),
            lambda X: molva.sweep(X, [2, 3]),
        ],
        ids=["fit", "fit_predict", "features", "full_tree", "typical_rows", "sweep"],
    )
    def test_weighing_them_again_is_told_once(self, recwarn, weighted, call):
        call(weighted)
        (warning,) = recwarn
        assert self.MESSAGE in str(warning.message)

    def test_the_warning_points_to_the_caller(self, recwarn, weighted):
        molva.cluster_statistics(weighted, np.zeros(60, dtype=int))
        assert recwarn[0].filename == __file__

    @pytest.mark.filterwarnings("error")
    def test_whoever_says_what_to_do_is_not_warned(self, counts, weighted):
        for col_model in ("none", "idf"):
            model = molva.RepeatedBisection(3, col_model=col_model).fit(weighted)
            model.features(weighted)
            model.transform(weighted)
            molva.sweep(weighted, [2, 3], col_model=col_model)
        molva.RepeatedBisection(3).fit(counts)
        molva.RepeatedBisection(3).fit(weighted.toarray())
        molva.RepeatedBisection(3, similarity="correlation").fit(weighted)

    @pytest.mark.filterwarnings("error")
    def test_a_pipeline_weighs_once(self, subjects_and_texts):
        subjects, texts = subjects_and_texts
        pipeline = make_pipeline(
            TfidfVectorizer(stop_words="english"),
            molva.DirectKWay(4, col_model="none", random_state=1),
        ).fit(texts)
        X, model = pipeline[0].transform(texts), pipeline[-1]
        # The vectoriser's rows have length 1, and columns of one text are dropped by the library.
        kept = X[:, np.diff(X.tocsc().indptr) > 1].toarray().astype(np.float32)
        kept /= np.linalg.norm(kept, axis=1, keepdims=True)
        sums = np.array([kept[model.labels_ == k].sum(axis=0) for k in range(4)])
        assert model.criterion_value_ == pytest.approx(np.linalg.norm(sums, axis=1).sum())
        assert molva.external_quality(model.labels_, subjects).purity == 1


class TestSummary:
    def test_its_numbers_are_those_of_the_clusters(self, axes):
        model, (first, second) = axes
        summary = model.summary(feature_names=["across", "up"])
        # Rows of one direction have the similarity 1, rows at a right angle 0.
        assert summary.rows[first] == (first, 2, 1, 0, 0, 0, ("across",))
        assert summary.rows[second] == (second, 2, 1, 0, 0, 0, ("up",))
        assert summary.without_cluster == 0 and len(summary) == 2

    def test_columns_stand_by_their_shares(self):
        # The unit sum has the shares 0.64 and 0.36, and the third column adds nothing.
        model = molva.DirectKWay(1, random_state=1).fit([[3.0, 4, 0], [3, 4, 0]])
        assert model.summary().rows[0].features == (1, 0)
        assert model.summary(1).rows[0].features == (1,)
        assert model.summary(feature_names=["c", "d", "e"]).rows[0].features == ("d", "c")

    @pytest.mark.parametrize("prune", [1.0, 0.7])
    def test_columns_are_those_that_describe_the_clusters(self, counts, prune):
        model = molva.RepeatedBisection(3, random_state=1, prune=prune).fit(counts)
        described = model.features(counts)
        for row in model.summary():
            names = [feature.feature for feature in described.rows(row.cluster)]
            assert list(row.features) == names

    def test_it_prints_a_line_for_every_cluster(self):
        X = sparse.csr_matrix([[1.0, 1, 0], [2, 2, 0], [0, 0, 0]])
        model = molva.DirectKWay(1, random_state=1, col_model="none").fit(X)
        assert str(model.summary(feature_names="a b c".split())).splitlines() == [
            "cluster  size   ISim   IDev  ESim  EDev  features",
            "      0     2  1.000  0.000   nan   nan  a, b",
            "",
            "2 rows in 1 cluster, 1 in none",
        ]

    def test_its_columns_are_at_hand(self, axes):
        columns = axes[0].summary().to_dict()
        assert columns["cluster"] == [0, 1] and columns["size"] == [2, 2]
        assert columns["internal_similarity"] == [1, 1]

    def test_wrong_names_are_refused(self, axes):
        with pytest.raises(ValueError, match="3 names for 2 columns"):
            axes[0].summary(feature_names=["a", "b", "c"])
        with pytest.raises(ValueError, match="n_features must be at least 1"):
            axes[0].summary(0)


class TestTypicalRows:
    def test_they_are_most_similar_to_the_others_of_their_cluster(self):
        # Similarities 0.5 of the first and the second, 0 and cos 30 of these and the third.
        found = molva.typical_rows(FAN, [0, 0, 0, 1], texts=["right", "slant", "up", "alone"])
        cosine = math.sqrt(0.75)
        assert [(row.cluster, row.rank, row.row, row.text) for row in found] == [
            (0, 0, 1, "slant"), (0, 1, 2, "up"), (0, 2, 0, "right"), (1, 0, 3, "alone"),
        ]  # fmt: skip
        expected = [(0.5 + cosine) / 2, cosine / 2, 0.25, math.nan]
        assert_allclose([row.similarity for row in found], expected, atol=1e-6)
        assert found.of(1) == [found.rows[3]]

    def test_rows_without_a_cluster_are_none(self):
        found = molva.typical_rows(FAN, [0, 0, -1, 1], n_rows=1)
        assert [row.row for row in found] == [0, 3]  # Of two that are equal the first.
        assert found.rows[0].similarity == pytest.approx(0.5) and found.rows[0].text is None

    @pytest.mark.parametrize("form", ["counts", "dense"])
    def test_they_are_those_of_all_pairs(self, request, form):
        X = request.getfixturevalue(form)
        model = molva.RepeatedBisection(3, random_state=1, col_model="none", prune=0.9).fit(X)
        columns = model._space.columns
        rows = (X.toarray() if sparse.issparse(X) else X)[:, columns].astype(np.float64)
        rows /= np.linalg.norm(rows, axis=1, keepdims=True)
        pairs = rows @ rows.T
        for row in model.typical_rows(X, n_rows=100):
            others = np.flatnonzero(model.labels_ == row.cluster)
            others = others[others != row.row]
            assert row.similarity == pytest.approx(pairs[row.row, others].mean(), abs=1e-5)
        for cluster in range(3):
            similarities = [row.similarity for row in model.typical_rows(X).of(cluster)]
            assert similarities == sorted(similarities, reverse=True) and len(similarities) == 3

    def test_rows_are_numbered_as_in_the_matrix(self, counts):
        X = sparse.vstack([sparse.csr_matrix((2, 60)), counts]).tocsr()
        labels = np.append([-1, -1], np.arange(60) % 3)
        with_empty = [row.row for row in molva.typical_rows(X, labels, col_model="none")]
        without = [row.row for row in molva.typical_rows(counts, labels[2:], col_model="none")]
        assert with_empty == [row + 2 for row in without]

    def test_they_print_as_a_table_with_texts_on_a_line(self):
        text = "two\nlines of " + "a long text " * 10
        found = molva.typical_rows(FAN[:2], [0, 0], texts=[text, "short"])
        assert str(found).splitlines() == [
            "cluster  row  similarity  text",
            "      0    0       0.500  two lines of " + ("a long text " * 10)[:66] + "…",
            "      0    1       0.500  short",
        ]
        assert str(molva.typical_rows(FAN[:2], [0, 0])).splitlines()[1] == "      0    0       0.500"

    def test_wrong_arguments_are_refused(self):
        with pytest.raises(ValueError, match="3 texts for 4 rows"):
            molva.typical_rows(FAN, [0, 0, 0, 1], texts=["a", "b", "c"])
        with pytest.raises(ValueError, match="n_rows must be at least 1"):
            molva.typical_rows(FAN, [0, 0, 0, 1], n_rows=0)


class TestNotebooks:
    def test_a_fitted_estimator_shows_its_summary(self, axes):
        model, _ = axes
        shown = model.summary()._repr_html_()
        assert "<td style=\"text-align: right\">1.000</td>" in shown
        assert model._repr_html_().endswith(shown)
        assert model._repr_mimebundle_()["text/html"].endswith(shown)
        assert model._repr_mimebundle_()["text/plain"] == repr(model)

    def test_one_that_is_not_fitted_shows_itself_alone(self):
        assert "<table>" not in molva.DirectKWay()._repr_html_()
        assert "<table>" not in molva.DirectKWay()._repr_mimebundle_()["text/html"]

    def test_scikit_learn_may_be_told_to_show_text(self, axes):
        with config_context(display="text"):
            assert not hasattr(axes[0], "_repr_html_")
            assert "text/html" not in axes[0]._repr_mimebundle_()

    def test_of_many_clusters_the_first_are_shown(self):
        rows = np.random.RandomState(1).normal(size=(60, 5))
        model = molva.RepeatedBisection(25, random_state=1).fit(rows)
        assert model.summary()._repr_html_().count("<tr>") == 26
        shown = model._repr_html_()
        assert shown.count("<tr>") == 21 and "<p>and 5 more</p>" in shown

    def test_results_are_tables_whose_texts_are_no_markup(self, axes):
        model, (first, _) = axes
        names = ["<script>", "b & c"]
        typical = model.typical_rows(AXES, texts=[f"<i>{row}</i>" for row in range(4)])
        results = [model.summary(feature_names=names), model.features(AXES, 1, names), typical]
        for result in results:
            shown = result._repr_html_()
            assert shown.startswith("<table>") and "<script>" not in shown and "<i>" not in shown
        assert "&lt;script&gt; 100.0%" in results[1]._repr_html_()
        assert "&lt;i&gt;0&lt;/i&gt;" in typical._repr_html_()

    def test_a_sweep_shows_its_table_and_its_answer(self, counts):
        sweep = molva.sweep(counts, [2, 3, 4])
        shown = sweep._repr_html_()
        assert shown.count("<tr>") == 4 and "purity" not in shown
        assert all(f"<p>{reason}</p>" in shown for reason in sweep.reasons)


def test_a_vectoriser_names_the_columns(subjects_and_texts):
    vectoriser = CountVectorizer(stop_words="english")
    X = vectoriser.fit_transform(subjects_and_texts[1])
    summary = molva.DirectKWay(4, random_state=1).fit(X).summary(2, vectoriser)
    names = set(vectoriser.get_feature_names_out())
    assert all(len(row.features) == 2 and names.issuperset(row.features) for row in summary)
