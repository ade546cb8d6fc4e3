# SPDX-License-Identifier: MIT
"""The page of a clustering, as the program mardle-export draws it.

The program reads files, so the matrix, the names and the labels are written into a folder that is
removed afterwards.
"""

from __future__ import annotations

import os
import shutil
import subprocess
import tempfile
from pathlib import Path

import numpy as np
from scipy import sparse

from ._matrix import check_count, check_labels, check_matrix
from ._models import (
    COL_MODELS,
    CRITERIA,
    ROW_MODELS,
    SIMILARITIES,
    TREE_CRITERIA,
    Models,
    code,
    criterion_code,
)
from ._space import Space
from ._texts import one_line, per_row
from ._warn import warn
from .analysis import column_names
from .files import write_clustering, write_labels, write_matrix, write_tree
from .trees import Tree, full_tree

_PROGRAM = "mardle-export"
_CONTENTS = {name: name for name in ("text", "table")}
# Pairs of rows are held while the tree of a cluster is built, so memory goes with the square.
_MOST_ROWS_OF_A_TREE = 4000


def _program() -> str:
    """Return where the program is: as MARDLE_EXPORT says, or on PATH."""
    path = shutil.which(os.environ.get("MARDLE_EXPORT", _PROGRAM))
    if path is None:
        raise FileNotFoundError(
            f"The page is drawn by the program {_PROGRAM} (Debian package mardle), and there is "
            "none on PATH; MARDLE_EXPORT may name it"
        )
    return path


def _names(values, count: int) -> list[str]:
    """Return what is shown for each row or column: what is given for it, or its number."""
    if values is None:
        return [str(number) for number in range(count)]
    return [one_line(value) or str(number) for number, value in enumerate(values)]


def _without_dropped(part: np.ndarray, kept: np.ndarray) -> np.ndarray:
    """Return the labels with -1 for rows that preparation drops, as a run of the program has it."""
    labels = np.full_like(part, -1)
    labels[kept] = part[kept]
    return labels


def _tree_shown(X, part, kept, criterion: str, n_jobs, models: Models) -> Tree | None:
    """Return the tree over the rows that a page shows unasked: where there is one, and not large."""
    sizes = np.bincount(part[part >= 0])
    builds_trees = criterion_code(criterion) in TREE_CRITERIA.values()
    if not builds_trees or part[kept].min(initial=0) < 0 or len(sizes) >= X.shape[0]:
        return None
    if sizes.max(initial=0) > _MOST_ROWS_OF_A_TREE:
        return None
    return full_tree(X, part, criterion, n_jobs=n_jobs, **models._asdict())


def _settings(X, criterion: str, models: Models, n_features: int) -> list[str]:
    """Return the options that tell the program how the rows were clustered."""
    crfun = criterion_code(criterion)
    settings = [
        f"--crfun={crfun}",
        f"--sim={SIMILARITIES[models.similarity]}",
        f"--rowmodel={ROW_MODELS[models.row_model]}",
        f"--colmodel={COL_MODELS[models.col_model]}",
        f"--prune={models.prune:.9g}",
        f"--nfeatures={n_features}",
    ]
    if crfun not in TREE_CRITERIA.values():
        settings.append(f"--treecrfun={CRITERIA['i2']}")
    if not sparse.issparse(X):
        settings.append("--denseinput")
    return settings


def _draw(arguments: list[str], folder: str) -> bytes:
    """Run the program and return what it prints; its warnings become ours."""
    done = subprocess.run(
        [_program(), "html", *arguments], cwd=folder, capture_output=True, check=False
    )
    told = done.stderr.decode(errors="replace").strip()
    if done.returncode != 0:
        raise RuntimeError(told or f"{_PROGRAM} ended with status {done.returncode}")
    for line in filter(None, told.splitlines()):
        warn(line)
    return done.stdout


def _check_title(title: object) -> str:
    """Return the name of the matrix, which the page begins with and its file has."""
    if not isinstance(title, str) or title != one_line(title) or title in ("", ".", ".."):
        raise ValueError(f"title must be a short line of text; got {title!r}")
    if "/" in title or title.startswith("-"):
        raise ValueError(f"title becomes the name of a file: no slashes, no dash first; {title!r}")
    return title


def to_html(
    X,
    labels,
    path: str | os.PathLike | None = None,
    *,
    criterion: str = "i2",
    feature_names=None,
    texts=None,
    classes=None,
    tree: Tree | bool = True,
    n_features: int = 10,
    title: str = "clusters",
    contents: str | None = None,
    n_jobs: int | None = None,
    **models,
) -> str | None:
    """Write a clustering as a page that explains it: words, typical rows, maps, trees, quality.

    The page needs no other files and no network. The program mardle-export draws it, so it must be
    on PATH, or MARDLE_EXPORT name it.

    Parameters
    ----------
    X : {array-like, sparse matrix} of shape (n_samples, n_features)
    labels : array-like of shape (n_samples,)
    path : path, optional
        The file to write; without it the page is returned as text.
    criterion : str, default="i2"
        The criterion that the page gives the value of, and under which its trees are built.
    feature_names : sequence of str, or object with get_feature_names_out, optional
    texts : sequence of length n_samples, optional
        Texts or titles of the rows, shown as far as 80 characters.
    classes : sequence of length n_samples, optional
        Classes of the rows, shown beside the clusters.
    tree : Tree or bool, default=True
        The tree over the rows (`full_tree`). True builds it when no cluster has more than 4,000
        rows, as its memory goes with the square.
    n_features : int, default=10
        Columns shown of each kind, 100 at most.
    title : str, default="clusters"
        The name of the matrix.
    contents : {"text", "table"}, optional
        Whether rows and columns are called documents and words; by default they are for counts of
        columns that are called by letters.
    n_jobs : int or None, default=None
        Threads to use.
    **models
        similarity, row_model, col_model, prune.
    """
    X = check_matrix(X)
    part, _ = check_labels(labels, X.shape[0])
    chosen = Models.chosen(X, models)
    columns = column_names(feature_names, X.shape[1])
    rows = per_row("texts", texts, X.shape[0])
    classes = per_row("classes", classes, X.shape[0])
    title = _check_title(title)
    arguments = _settings(X, criterion, chosen, check_count("n_features", n_features, 1))
    if contents is not None:
        arguments.append(f"--contents={code('contents', contents, _CONTENTS)}")
    if path is not None:
        arguments.append(f"--output={os.path.abspath(os.fspath(path))}")
    _program()  # Before the work that it would be in vain without.
    _, _, kept = Space.fit(X, chosen)
    part = _without_dropped(part, kept)
    if tree is True:
        tree = _tree_shown(X, part, kept, criterion, n_jobs, chosen)

    with tempfile.TemporaryDirectory(prefix="molva-") as name:
        folder = Path(name)
        write_matrix(folder / title, X)
        write_labels(folder / f"{title}.rlabel", _names(rows, X.shape[0]))
        write_labels(folder / f"{title}.clabel", _names(columns, X.shape[1]))
        if classes is not None:
            write_labels(folder / f"{title}.rclass", map(one_line, classes))
        write_clustering(folder / f"{title}.clustering", part)
        arguments += [f"--matrix={title}", f"--clustering={title}.clustering"]
        if isinstance(tree, Tree):
            write_tree(folder / f"{title}.tree", tree)
            arguments.append(f"--tree={title}.tree")
        page = _draw(arguments, name)
    return None if path is not None else page.decode()
