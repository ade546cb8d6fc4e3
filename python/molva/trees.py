# SPDX-License-Identifier: MIT
"""Trees over clusters and over rows, in the library's form and in scipy's."""

from __future__ import annotations

from dataclasses import dataclass

import numpy as np
from scipy import sparse

from . import _engine
from ._models import tree_criterion_code
from ._threads import threads
from .analysis import view

_OVER_CLUSTERS, _OVER_ROWS = 1, 2


@dataclass(frozen=True, eq=False)
class Tree:
    """A binary tree over m leaves; node m + s is made by merge s.

    Attributes
    ----------
    leaves : ndarray of shape (m,)
        The cluster or the row that each leaf stands for. Empty clusters and rows that preparation
        drops have none.
    children : ndarray of shape (m - 1, 2)
        The two nodes that each merge joins, left and right, as scikit-learn's `children_`.
    similarities : ndarray of shape (m - 1,)
        The average similarity of a row below one child and a row below the other.
    sizes : ndarray of shape (m - 1,)
        Rows below each merge.
    parents, parent_similarities : ndarray
        The tree as the library builds it and the program writes it, over all rows or over the
        clusters that have rows. In a tree over the rows the similarities stand at other places than
        their nodes; the attribute `similarities` puts this right.
    """

    leaves: np.ndarray
    children: np.ndarray
    similarities: np.ndarray
    sizes: np.ndarray
    parents: np.ndarray
    parent_similarities: np.ndarray

    def heights(self) -> np.ndarray:
        """Return the height of each merge: the distance 1 - similarity, never below its children.

        The library merges what its criterion likes best, so a merge may join what is more similar
        than what it holds. Such a merge is drawn level with its highest child.
        """
        m = len(self.leaves)
        heights = 1 - self.similarities.astype(np.float64)
        for merge, pair in enumerate(self.children):
            inner = pair[pair >= m] - m
            heights[merge] = max(heights[merge], *heights[inner], 0.0)
        return heights

    def linkage(self) -> np.ndarray:
        """Return the merges as scipy's linkage matrix, lowest first.

        Its leaf i is `leaves[i]`, its last column counts leaves. The heights are those of
        `heights`, so they never fall, and `scipy.cluster.hierarchy.dendrogram` draws it.
        """
        m = len(self.leaves)
        heights = self.heights()
        # Children come before their parents and are not higher, so a stable sort keeps them there.
        order = np.argsort(heights, kind="stable")
        number = np.concatenate([np.arange(m), m + np.argsort(order, kind="stable")])
        counts = np.ones(2 * m - 1)
        for merge, pair in enumerate(self.children):
            counts[m + merge] = counts[pair].sum()
        columns = number[self.children], heights[:, None], counts[m:, None]
        return np.hstack(columns)[order].astype(np.float64)

    def leaf_order(self) -> np.ndarray:
        """Return what the leaves stand for, from left to right."""
        m = len(self.leaves)
        order, waiting = [], [2 * m - 2]
        while waiting:
            node = waiting.pop()
            if node < m:
                order.append(self.leaves[node])
            else:
                left, right = self.children[node - m]
                waiting += [right, left]
        return np.array(order)


def _child_table(parents: np.ndarray) -> np.ndarray:
    """Return the pairs of children, -1 where absent, the lower-numbered first."""
    children = np.full((len(parents), 2), -1, dtype=np.int32)
    for node, parent in enumerate(parents[:-1]):
        if parent >= 0:
            children[parent, 1 if children[parent, 0] >= 0 else 0] = node
    return children


def _compact(parents: np.ndarray, table: np.ndarray) -> tuple[np.ndarray, np.ndarray, slice]:
    """Number the leaves that are there from 0 on and the merges behind them.

    Returns the leaves, the children, and where the merges stand in the library's arrays.
    """
    n = len(parents) // 2
    leaves = np.flatnonzero(parents[:n] >= 0)
    merges = slice(n, n + max(len(leaves) - 1, 0))
    number = np.full(2 * n, -1)
    number[leaves] = np.arange(len(leaves))
    number[merges] = len(leaves) + np.arange(merges.stop - n)
    return leaves, number[table[merges]], merges


def _sizes(children: np.ndarray, leaf_sizes: np.ndarray) -> np.ndarray:
    sizes = np.concatenate([leaf_sizes, np.zeros(len(children), dtype=np.int64)])
    for merge, pair in enumerate(children):
        sizes[len(leaf_sizes) + merge] = sizes[pair].sum()
    return sizes[len(leaf_sizes) :]


def _larger_child_first(
    children: np.ndarray, below: np.ndarray
) -> tuple[np.ndarray, np.ndarray]:
    """Lay out the leaves so that those of every merge's larger child stand before the others.

    `below` counts the leaves below each node. Returns the larger child of every merge and the
    place where the leaves of each node begin.
    """
    m = len(children) + 1
    larger = np.where(below[children[:, 0]] < below[children[:, 1]], children[:, 1], children[:, 0])
    smaller = children.sum(axis=1) - larger
    begins = np.zeros(2 * m - 1, dtype=np.int64)
    for merge in reversed(range(m - 1)):
        begins[larger[merge]] = begins[m + merge]
        begins[smaller[merge]] = begins[m + merge] + below[larger[merge]]
    return larger, begins


def _sibling_similarities(
    rows: sparse.csr_matrix, children: np.ndarray, sizes: np.ndarray
) -> np.ndarray:
    """Return the average similarity between the leaves of the two children of every merge.

    Merges whose leaves begin at the same place grow from one leaf. One running sum serves them:
    the leaves of each smaller child are multiplied with it, then added to it. So a leaf is met
    as often as it lies in a smaller child, which is at most the logarithm of their number.
    """
    m = rows.shape[0]
    below = np.append(np.ones(m, dtype=np.int64), sizes)
    larger, begins = _larger_child_first(children, below)
    rows = rows[np.argsort(begins[:m])]
    running = np.zeros(rows.shape[1])
    similarities = np.empty(m - 1, dtype=np.float32)

    def entries(first: int, last: int) -> tuple[np.ndarray, np.ndarray]:
        span = slice(rows.indptr[first], rows.indptr[last])
        return rows.indices[span], rows.data[span]

    begin = end = 0
    # The sort is stable: among merges of one leaf, children stay before their parents.
    for merge in np.argsort(begins[m:], kind="stable"):
        if begins[m + merge] != begin or end == 0:
            running[entries(begin, end)[0]] = 0
            begin = begins[m + merge]
            np.add.at(running, *entries(begin, begin + 1))
        middle, end = begin + below[larger[merge]], begin + below[m + merge]
        columns, values = entries(middle, end)
        pairs = (middle - begin) * (end - middle)
        similarities[merge] = values @ running[columns] / pairs
        np.add.at(running, columns, values)
    return similarities


def _only_leaf(part: np.ndarray, treetype: int) -> np.ndarray:
    """Return the leaf of a tree without merges, whose parent is -1 as that of an absent one."""
    return np.unique(part[part >= 0]) if treetype == _OVER_CLUSTERS else np.flatnonzero(part >= 0)


def _without_empty_clusters(part: np.ndarray) -> tuple[np.ndarray, np.ndarray]:
    """Number the clusters that have rows from 0 on; returns them and the new labels.

    A tree takes memory for the square of the number of clusters, whether or not they have rows.
    """
    clusters, numbers = np.unique(part[part >= 0], return_inverse=True)
    renumbered = np.full_like(part, -1)
    renumbered[part >= 0] = numbers
    return clusters, renumbered


def _build(X, labels, criterion: str, treetype: int, ordered: bool, models: dict):
    crfun = tree_criterion_code(criterion)
    matrix, codes, _, part = view(X, labels, models)
    clusters, part = _without_empty_clusters(part)
    n_clusters = len(clusters)
    parents, similarities = _engine.build_tree(matrix, codes, crfun, treetype, n_clusters, part)
    table = _child_table(parents)
    if ordered:
        table = _engine.order_tree(matrix, codes, treetype, n_clusters, part, parents, table)
    leaves, children, merges = _compact(parents, table)
    if not len(leaves):
        leaves = _only_leaf(part, treetype)
        children = np.empty((0, 2), dtype=np.int64)
    return (matrix, codes, part, clusters), (parents, similarities), (leaves, children, merges)


def cluster_tree(
    X,
    labels,
    criterion: str = "i2",
    *,
    ordered: bool = True,
    n_jobs: int | None = None,
    **models,
) -> Tree:
    """Build a tree over the clusters, always by the merge that is best for a criterion.

    Parameters
    ----------
    X : {array-like, sparse matrix} of shape (n_samples, n_features)
    labels : array-like of shape (n_samples,)
    criterion : str, default="i2"
        One of the first seven; "g3" and "h3" build no trees.
    ordered : bool, default=True
        Turn the children so that neighbouring subtrees are as similar as possible.
    n_jobs : int or None, default=None
        Threads to use.
    **models
        similarity, row_model, col_model, prune.
    """
    with threads(n_jobs):
        given, built, found = _build(X, labels, criterion, _OVER_CLUSTERS, ordered, models)
        (matrix, codes, part, clusters), (parents, similarities) = given, built
        leaves, children, merges = found
        leaf_sizes = _engine.cluster_statistics(matrix, codes, len(clusters), part)[0][leaves]
    sizes = _sizes(children, leaf_sizes)
    return Tree(clusters[leaves], children, similarities[merges], sizes, parents, similarities)


def tree_of_sums(
    sums: np.ndarray, sizes: np.ndarray, crfun: int, ordered: bool, n_jobs: int | None
) -> Tree:
    """Build a tree over clusters from the sums of their rows, as `cluster_tree` does from rows.

    Clusters without rows are left out. `sums` are integers of the library's, a row for each cluster.
    """
    clusters = np.flatnonzero(sizes)
    weights = sizes[clusters].astype(np.int32)
    with threads(n_jobs):
        products = _engine.multiply_sums(sums[clusters])
        parents, similarities = _engine.merge_items(weights, products, crfun)
        table = _child_table(parents)
        if ordered:
            table = _engine.order_items(weights, products, parents, table)
    leaves, children, merges = _compact(parents, table)
    if not len(leaves):
        leaves, children = np.arange(len(clusters)), np.empty((0, 2), dtype=np.int64)
    merged = _sizes(children, weights[leaves])
    return Tree(clusters[leaves], children, similarities[merges], merged, parents, similarities)


def full_tree(
    X,
    labels,
    criterion: str = "i2",
    *,
    ordered: bool = False,
    n_jobs: int | None = None,
    **models,
) -> Tree:
    """Build a tree over all rows in which every cluster is a subtree.

    Parameters as for `cluster_tree`. Takes memory for the square of the largest cluster, and with
    `ordered` for that of the number of rows; rows are left in place when preparation drops some.
    """
    with threads(n_jobs):
        given, built, found = _build(X, labels, criterion, _OVER_ROWS, ordered, models)
        (matrix, codes, _, _), (parents, places), (leaves, children, _) = given, built, found
        nrows, ncols, indptr, indices, data, _, _ = _engine.prepare(matrix, codes)
    prepared = sparse.csr_matrix((data, indices, indptr), shape=(nrows, ncols), dtype=np.float64)
    sizes = _sizes(children, np.ones(len(leaves), dtype=np.int64))
    similarities = _sibling_similarities(prepared, children, sizes)
    return Tree(leaves, children, similarities, sizes, parents, places)
