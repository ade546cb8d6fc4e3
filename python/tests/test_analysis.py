# SPDX-License-Identifier: MIT
"""Measures, features and trees against plain arithmetic."""

from __future__ import annotations

import numpy as np
import pytest
from scipy import sparse
from scipy.cluster import hierarchy

import molva
from molva.trees import _sibling_similarities

# Two pairs of rows that share nothing: in a pair, the cosine is 24/25.
PAIRS = np.array([[3, 4, 0, 0], [4, 3, 0, 0], [0, 0, 3, 4], [0, 0, 4, 3]], dtype=np.float32)
LABELS = np.array([0, 0, 1, 1])


def unit(X):
    return X / np.linalg.norm(X, axis=1, keepdims=True)


def test_statistics_of_two_pairs():
    s = molva.cluster_statistics(PAIRS, LABELS)
    assert s.sizes.tolist() == [2, 2]
    np.testing.assert_allclose(s.internal_similarity, (1 + 0.96) / 2, rtol=1e-6)
    np.testing.assert_allclose(s.external_similarity, 0, atol=1e-7)


def test_zscores_are_deviations_from_the_cluster(dense):
    labels = np.arange(48) % 4
    s = molva.cluster_statistics(dense, labels)
    members = unit(dense.astype(np.float64))[labels == 2]
    averages = members @ members.sum(axis=0) / len(members)
    scores = (averages - averages.mean()) / averages.std(ddof=1)
    np.testing.assert_allclose(s.internal_zscores[labels == 2], scores, atol=1e-4)


def test_criterion_values_of_two_pairs():
    length = 2 * 1.96  # Squared length of the sum of a pair.
    value = molva.criterion_value
    assert value(PAIRS, LABELS, "i1") == pytest.approx(2 * length / 2)
    assert value(PAIRS, LABELS, "i2") == pytest.approx(2 * length**0.5)
    assert value(PAIRS, LABELS, "g1") == pytest.approx(2)
    assert value(PAIRS, LABELS, "G1'") == pytest.approx(8)


def test_features_are_shares_of_the_similarity():
    f = molva.cluster_features(PAIRS, LABELS, 2, ["a", "b", "c", "d"])
    assert {row.feature for row in f.rows(0)} == {"a", "b"}
    assert {row.feature for row in f.rows(1)} == {"c", "d"}
    np.testing.assert_allclose(f.descriptive_shares, 0.5, rtol=1e-6)
    first = next(iter(f))
    assert (first.cluster, first.kind, first.rank) == (0, "descriptive", 0)
    assert "descriptive:  " in str(f) and "50.0%" in str(f)


def test_features_take_names_from_a_vectoriser():
    class Vectoriser:
        def get_feature_names_out(self):
            return np.array(["w", "x", "y", "z"], dtype=object)

    names = {row.feature for row in molva.cluster_features(PAIRS, LABELS, 4, Vectoriser())}
    assert names == {"w", "x", "y", "z"}
    with pytest.raises(ValueError, match="3 names for 4 columns"):
        molva.cluster_features(PAIRS, LABELS, 4, ["a", "b", "c"])


def test_surplus_slots_have_no_feature(counts):
    f = molva.cluster_features(counts, np.arange(60) % 3, 50, prune=0.5)
    assert f.descriptive.shape == (3, 50)
    assert (f.descriptive[:, -1] == -1).all()
    assert all(row.feature >= 0 for row in f)


def test_no_more_features_are_made_room_for_than_there_are_columns(counts):
    f = molva.cluster_features(counts, np.arange(60) % 3, 2**31 - 1)
    assert f.descriptive.shape == (3, 60)


@pytest.mark.parametrize("wrong", [0, 2.5, True, 2**31])
def test_the_number_of_features_is_checked(wrong):
    with pytest.raises(ValueError, match="n_features must be"):
        molva.cluster_features(PAIRS, LABELS, wrong)


def test_features_take_names_from_anything_in_order():
    columns = dict.fromkeys("abcd")  # Its elements are found by name only.
    names = {row.feature for row in molva.cluster_features(PAIRS, LABELS, 2, columns).rows(0)}
    assert names == {"a", "b"}


def test_tables_of_arrays_can_be_compared_and_shown():
    f, again = (molva.cluster_features(PAIRS, LABELS, 2) for _ in range(2))
    tree = molva.full_tree(PAIRS, LABELS)
    assert f == f and f != again and tree == tree
    assert repr(f) == str(f) != ""


def brute_similarities(tree, X):
    """Average the products of all pairs of rows below the children of every merge."""
    m = len(tree.leaves)
    below = [[row] for row in tree.leaves]
    products = X @ X.T
    found = []
    for left, right in tree.children:
        found.append(products[np.ix_(below[left], below[right])].mean())
        below.append(below[left] + below[right])
    assert sorted(below[-1]) == sorted(tree.leaves) and len(below) == 2 * m - 1
    return np.array(found), below


@pytest.mark.parametrize("ordered", [False, True])
def test_full_tree_keeps_clusters_and_tells_similarities(dense, ordered):
    model = molva.RepeatedBisection(4, random_state=1).fit(dense)
    tree = model.full_tree(dense, ordered=ordered)
    expected, below = brute_similarities(tree, unit(dense.astype(np.float64)))
    np.testing.assert_allclose(tree.similarities, expected, atol=1e-6)
    assert tree.sizes.tolist() == [len(rows) for rows in below[48:]]
    for cluster in range(4):
        assert sorted(np.flatnonzero(model.labels_ == cluster)) in [sorted(b) for b in below]


@pytest.mark.parametrize("shape", ["chain", "balanced", "random"])
def test_similarities_of_siblings_in_trees_of_any_shape(counts, shape):
    random = np.random.RandomState(5)
    free, children = list(range(60)), []
    for merge in range(59):
        if shape == "chain":
            pair = [free.pop(), free.pop(0)]
        elif shape == "balanced":
            pair = [free.pop(0), free.pop(0)]
        else:
            pair = [free.pop(random.randint(len(free))) for _ in range(2)]
        children.append(pair)
        free.append(60 + merge)
    children = np.array(children)
    tree = molva.Tree(np.arange(60), children, *[np.empty(0)] * 4)
    expected, below = brute_similarities(tree, counts.toarray())
    sizes = np.array([len(rows) for rows in below[60:]])
    found = _sibling_similarities(counts, children, sizes)
    np.testing.assert_allclose(found, expected, rtol=1e-6)


def test_cluster_tree_tells_similarities(dense):
    labels = np.arange(48) % 4
    tree = molva.cluster_tree(dense, labels)
    X = unit(dense.astype(np.float64))
    below = [np.flatnonzero(labels == cluster).tolist() for cluster in tree.leaves]
    for (left, right), similarity, size in zip(tree.children, tree.similarities, tree.sizes):
        products = X[below[left]] @ X[below[right]].T
        assert similarity == pytest.approx(products.mean(), abs=1e-6)
        below.append(below[left] + below[right])
        assert size == len(below[-1])


@pytest.mark.parametrize("criterion", ["i1", "i2", "e1", "g1", "g1p", "h1", "h2"])
def test_linkage_is_what_scipy_draws(dense, criterion):
    model = molva.DirectKWay(4, random_state=1).fit(dense)
    for tree in (model.full_tree(dense, criterion), model.cluster_tree(dense, criterion)):
        Z = tree.linkage()
        assert hierarchy.is_valid_linkage(Z, throw=True) and hierarchy.is_monotonic(Z)
        assert Z[-1, 3] == len(tree.leaves)
        drawn = hierarchy.dendrogram(Z, no_plot=True)["leaves"]
        assert tree.leaves[drawn].tolist() == tree.leaf_order().tolist()


def test_a_merge_is_never_lower_than_what_it_joins():
    # Merge 4 joins what is more alike than the rows of merge 3.
    tree = molva.Tree(
        leaves=np.arange(3),
        children=np.array([[0, 1], [3, 2]]),
        similarities=np.array([0.25, 0.75]),
        sizes=np.array([2, 3]),
        parents=np.array([3, 3, 4, 4, -1, -1]),
        parent_similarities=np.zeros(6),
    )
    assert tree.heights().tolist() == [0.75, 0.75]
    assert tree.linkage().tolist() == [[0, 1, 0.75, 2], [3, 2, 0.75, 3]]


def test_dropped_rows_and_empty_clusters_are_no_leaves(counts):
    X = sparse.vstack([counts, sparse.csr_matrix((1, 60))]).tocsr()
    labels = np.append(2 * (np.arange(60) % 3), -1)  # Clusters 1 and 3 are empty.
    assert molva.cluster_tree(X, labels).leaves.tolist() == [0, 2, 4]
    tree = molva.full_tree(X, labels)
    assert tree.leaves.tolist() == list(range(60))
    assert len(tree.children) == 59
    assert hierarchy.is_valid_linkage(tree.linkage())


def test_a_tree_over_one_cluster_is_a_leaf():
    tree = molva.cluster_tree(PAIRS, np.zeros(4, dtype=int))
    assert tree.leaves.tolist() == [0] and tree.children.shape == (0, 2)
    assert tree.leaf_order().tolist() == [0]


@pytest.mark.parametrize("build", [molva.cluster_tree, molva.full_tree])
@pytest.mark.parametrize("criterion", ["g3", "H3"])
def test_criteria_without_merges_are_refused_before_anything_is_read(build, criterion):
    with pytest.raises(ValueError, match="criterion of a tree must be one of 'i1'.*'h2'; got"):
        build(None, None, criterion)


def test_clusters_without_rows_change_no_tree(dense):
    labels = np.arange(48) % 5
    apart = np.array([0, 3, 4, 90, 399])
    for build in (molva.cluster_tree, molva.full_tree):
        close, wide = build(dense, labels), build(dense, apart[labels])
        np.testing.assert_array_equal(close.children, wide.children)
        np.testing.assert_array_equal(close.similarities, wide.similarities)
        np.testing.assert_array_equal(close.sizes, wide.sizes)
    assert molva.cluster_tree(dense, apart[labels]).leaves.tolist() == apart.tolist()


STRAY_LABEL = """
import numpy as np
import molva


def most_mapped():
    with open("/proc/self/status") as lines:
        return next(int(line.split()[1]) for line in lines if line.startswith("VmPeak"))


X = np.eye(4000, 2, dtype=np.float32) + 1
labels = np.arange(4000) % 3
molva.cluster_tree(X, labels)
before = most_mapped()
labels[7] = 39_999
assert molva.cluster_tree(X, labels).leaves.tolist() == [0, 1, 2, 39_999]
print(most_mapped() - before)
"""


def test_a_tree_takes_memory_for_the_clusters_that_have_rows(python):
    # In kilobytes. A number for every pair of 40,000 clusters alone would take 3 gigabytes.
    assert int(python(STRAY_LABEL)) < 2**18


class TestExternalQuality:
    def test_of_a_small_table(self):
        # Cluster 0 has classes b b a, cluster 1 has a; one row has no cluster.
        q = molva.external_quality([0, 0, 0, 1, -1], ["b", "b", "a", "a", "b"])
        assert q.classes.tolist() == ["b", "a"]
        assert q.counts.tolist() == [[2, 1], [0, 1]]
        assert q.purity == pytest.approx(3 / 4)
        mixed = -(2 / 3 * np.log2(2 / 3) + 1 / 3 * np.log2(1 / 3))
        np.testing.assert_allclose(q.entropies, [mixed, 0])
        assert q.entropy == pytest.approx(3 / 4 * mixed)
        assert q.f_score is None

    def test_one_class_is_not_mixed_and_empty_clusters_do_not_count(self):
        q = molva.external_quality([0, 2], ["a", "a"])
        assert (q.entropy, q.purity) == (0, 1)
        assert np.isnan(q.purities[1])

    def test_f_scores_are_the_best_over_all_nodes(self):
        tree = molva.full_tree(PAIRS, LABELS)
        q = molva.external_quality(LABELS, ["x", "x", "x", "y"], tree)
        # x: the pair gives 2/2 and 2/3, the root 3/4 and 1. y: its own leaf.
        np.testing.assert_allclose(q.f_scores, [2 * 3 / (3 + 4), 1])
        assert q.f_score == pytest.approx((3 * 6 / 7 + 1) / 4)


@pytest.mark.parametrize(
    "labels, message",
    [
        ([0, 1], "Expected 4 labels"),
        ([0.0, 1.0, 0.0, 1.0], "Labels must be integers"),
        ([-1, -1, -1, -1], "No row has a cluster"),
        ([0, 0, 1, 10**9], "The label 1000000000 is too large"),
        ([0, 0, 1, 2**40], "The label 1099511627776 is too large"),
        ([0, 0, 1, 1000], "The label 1000 is too large: .* 4 rows may have labels below 1000"),
    ],
)
def test_labels_are_checked(labels, message, tmp_path):
    with pytest.raises(ValueError, match=message):
        molva.cluster_statistics(PAIRS, labels)
    with pytest.raises(ValueError, match=message):
        molva.external_quality(labels, ["a", "b", "b", "a"])
    with pytest.raises(ValueError, match=message):
        molva.full_tree(PAIRS, labels)
    if max(labels) >= 1000:
        with pytest.raises(ValueError, match=message):
            molva.write_clustering(tmp_path / "c", labels)
        assert not (tmp_path / "c").exists()


def test_rows_may_be_a_part_of_those_clustered():
    assert len(molva.cluster_statistics(PAIRS, [0, 5, 5, 999]).sizes) == 1000
    many = np.arange(200) * 10 + 9  # The last is 1999.
    assert len(molva.cluster_statistics(np.ones((200, 2)), many).sizes) == 2000
    with pytest.raises(ValueError, match="200 rows may have labels below 2000"):
        molva.cluster_statistics(np.ones((200, 2)), many + 1)


def test_labels_of_any_integer_type_will_do():
    sizes = [molva.cluster_statistics(PAIRS, LABELS.astype(t)).sizes.tolist() for t in "bBhHiIqQ"]
    assert sizes == [[2, 2]] * 8


def test_a_tree_over_clusters_gives_no_f_scores():
    tree = molva.cluster_tree(PAIRS, LABELS)
    with pytest.raises(ValueError, match="The tree is not over the rows"):
        molva.external_quality(LABELS, ["x", "x", "x", "y"], tree)


@pytest.mark.parametrize("bad", [-0.1, 1.5, np.nan, np.inf, True, None, "1"])
def test_the_pruning_fraction_is_checked(bad):
    with pytest.raises(ValueError, match="prune must be a number from 0 to 1"):
        molva.cluster_statistics(PAIRS, LABELS, prune=bad)


def test_unknown_keywords_are_refused():
    with pytest.raises(TypeError, match="unexpected keyword argument 'pruning'"):
        molva.cluster_statistics(PAIRS, LABELS, pruning=1)
