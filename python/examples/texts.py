# SPDX-License-Identifier: MIT
"""From texts to clusters, their words, a dendrogram and a heat map.

Forty short texts on four subjects are counted by scikit-learn's CountVectorizer and clustered, and
two pictures are drawn: texts.py [FOLDER]. The subjects, the first field of every line, are used
only to tell how well the clusters meet them.
"""

from __future__ import annotations

import sys
from pathlib import Path

import matplotlib

matplotlib.use("Agg")

import matplotlib.pyplot as plt  # noqa: E402
import numpy as np  # noqa: E402
from scipy.cluster.hierarchy import dendrogram  # noqa: E402
from sklearn.feature_extraction.text import CountVectorizer  # noqa: E402

import molva  # noqa: E402

COLLECTION = Path(__file__).with_name("texts.txt")


def read_collection() -> tuple[list[str], list[str]]:
    """Return the subjects and the texts."""
    lines = COLLECTION.read_text(encoding="utf-8").splitlines()
    subjects, texts = zip(*(line.split("\t") for line in lines))
    return list(subjects), list(texts)


def draw_dendrogram(tree: molva.Tree, names: list[str], labels: np.ndarray, path: Path) -> None:
    """Draw the tree over all texts, their names in the colours of their clusters."""
    figure, axes = plt.subplots(figsize=(8, 7), layout="constrained")
    leaf_names = [names[row] for row in tree.leaves]
    drawn = dendrogram(
        tree.linkage(),
        labels=leaf_names,
        orientation="left",
        link_color_func=lambda node: "0.45",
        leaf_font_size=8,
        ax=axes,
    )
    for text, leaf in zip(axes.get_yticklabels(), drawn["leaves"]):
        text.set_color(f"C{labels[tree.leaves[leaf]]}")
    axes.invert_yaxis()
    axes.set_xlabel("1 - average similarity")
    axes.spines[["top", "left", "right"]].set_visible(False)
    figure.savefig(path, dpi=100)
    plt.close(figure)


def draw_heat_map(
    counts, features: molva.ClusterFeatures, tree: molva.Tree, labels: np.ndarray, path: Path
) -> None:
    """Draw the counts of the clusters' words, texts and words in the order of the tree."""
    rows = tree.leaf_order()
    order = list(dict.fromkeys(labels[rows]))
    columns = list(dict.fromkeys(features.descriptive[order].ravel()))
    figure, axes = plt.subplots(figsize=(8, 6), layout="constrained")
    axes.imshow(counts[rows][:, columns].toarray(), cmap="Greys", aspect="auto")
    axes.set_xticks(range(len(columns)), [features.name(j) for j in columns], rotation=90)
    for begin in np.flatnonzero(np.diff(labels[rows])) + 0.5:
        axes.axhline(begin, color="0.6", linewidth=1)
    middles = [np.flatnonzero(labels[rows] == cluster).mean() for cluster in order]
    axes.set_yticks(middles, [f"cluster {cluster}" for cluster in order])
    for text, cluster in zip(axes.get_yticklabels(), order):
        text.set_color(f"C{cluster}")
    figure.savefig(path, dpi=100)
    plt.close(figure)


def main(folder: Path) -> None:
    """Cluster the collection, print what was found, and draw it into a folder."""
    subjects, texts = read_collection()
    vectorizer = CountVectorizer(stop_words="english")
    counts = vectorizer.fit_transform(texts)

    model = molva.RepeatedBisection(n_clusters=4, refine=True, random_state=1).fit(counts)
    features = model.features(counts, n_features=8, feature_names=vectorizer)
    tree = model.full_tree(counts, ordered=True)
    quality = molva.external_quality(model.labels_, subjects, tree)

    print(f"I2 = {model.criterion_value_:.3f}, sizes {model.statistics_.sizes.tolist()}")
    print(f"purity {quality.purity:.3f}, entropy {quality.entropy:.3f}")
    print(features)
    names = [f"{subject} {row}" for row, subject in enumerate(subjects)]
    draw_dendrogram(tree, names, model.labels_, folder / "python-dendrogram.png")
    draw_heat_map(counts, features, tree, model.labels_, folder / "python-heatmap.png")


if __name__ == "__main__":
    main(Path(sys.argv[1] if len(sys.argv) > 1 else "."))
