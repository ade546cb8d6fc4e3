# SPDX-License-Identifier: MIT
"""How well clusters agree with classes, as the program reports it."""

from __future__ import annotations

from typing import NamedTuple

import numpy as np

from ._matrix import check_labels
from .trees import Tree


class ExternalQuality(NamedTuple):
    """Agreement of clusters and classes; averages are weighted by sizes.

    Attributes
    ----------
    entropy : float
        How the classes mix: 0 for one class in every cluster, 1 for all in equal parts.
    purity : float
        The share of a cluster's largest class.
    f_score : float or None
        Each class's best F-score over the nodes of a tree; None without a tree.
    entropies, purities : ndarray of shape (n_clusters,)
        Of every cluster; not-a-number for empty ones.
    f_scores : ndarray of shape (n_classes,) or None
    counts : ndarray of shape (n_clusters, n_classes)
        Rows of every class in every cluster.
    classes : ndarray of shape (n_classes,)
        In the order of their first appearance, as in the program's report.
    """

    entropy: float
    purity: float
    f_score: float | None
    entropies: np.ndarray
    purities: np.ndarray
    f_scores: np.ndarray | None
    counts: np.ndarray
    classes: np.ndarray


def number_classes(classes) -> tuple[np.ndarray, np.ndarray]:
    """Return the number of each row's class, by first appearance, and the classes."""
    names, first, numbers = np.unique(classes, return_index=True, return_inverse=True)
    by_appearance = np.argsort(first)
    return np.argsort(by_appearance)[numbers], names[by_appearance]


def _best_f_scores(tree: Tree, numbers: np.ndarray, class_sizes: np.ndarray) -> np.ndarray:
    m = len(tree.leaves)
    counts = np.zeros((m + len(tree.children), len(class_sizes)), dtype=np.int64)
    counts[np.arange(m), numbers[tree.leaves]] = 1
    for merge, (left, right) in enumerate(tree.children):
        counts[m + merge] = counts[left] + counts[right]
    node_sizes = counts.sum(axis=1, keepdims=True)
    # 2 R P / (R + P) with recall c / class and precision c / node.
    return (2 * counts / (class_sizes + node_sizes)).max(axis=0)


def external_quality(labels, classes, tree: Tree | None = None) -> ExternalQuality:
    """Compare clusters with the true classes of their rows.

    Parameters
    ----------
    labels : array-like of shape (n_samples,)
        Rows with labels below 0 are left out.
    classes : array-like of shape (n_samples,)
        Class of every row: numbers or names.
    tree : Tree, optional
        The tree over all rows (`molva.full_tree`); adds F-scores.
    """
    classes = np.asarray(classes)
    if classes.ndim != 1:
        raise ValueError(f"Expected a class for each row; got shape {classes.shape}")
    labels, n_clusters = check_labels(labels, len(classes))
    if tree is not None and len(tree.parents) != 2 * len(labels):
        raise ValueError("The tree is not over the rows: F-scores take that of molva.full_tree")
    numbers, names = number_classes(classes)
    clustered = labels >= 0
    counts = np.zeros((n_clusters, len(names)), dtype=np.int64)
    np.add.at(counts, (labels[clustered], numbers[clustered]), 1)

    sizes = counts.sum(axis=1)
    filled = sizes > 0
    with np.errstate(invalid="ignore", divide="ignore"):
        shares = counts / sizes[:, None]
        terms = np.where(counts > 0, shares * np.log2(shares), 0)
        # One class alone is never mixed.
        entropies = -terms.sum(axis=1) / max(np.log2(len(names)), 1) + 0.0
        purities = shares.max(axis=1)
    entropies[~filled] = np.nan
    f_scores = f_score = None
    if tree is not None:
        class_sizes = counts.sum(axis=0)
        f_scores = _best_f_scores(tree, numbers, class_sizes)
        f_score = float(np.average(f_scores, weights=class_sizes))
    return ExternalQuality(
        float(np.average(entropies[filled], weights=sizes[filled])),
        float(np.average(purities[filled], weights=sizes[filled])),
        f_score,
        entropies,
        purities,
        f_scores,
        counts,
        names,
    )
