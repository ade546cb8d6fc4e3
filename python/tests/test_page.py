# SPDX-License-Identifier: MIT
"""The page of a clustering is the one that mardle-export draws of the same run."""

from __future__ import annotations

import os
import subprocess

import molva
import numpy as np
import pytest
from scipy import sparse

from conftest import topics


@pytest.fixture(scope="session")
def export():
    """Return a function that runs mardle-export in a folder and returns what it prints."""
    path = os.environ.get("MARDLE_EXPORT")
    if path is None:
        pytest.fail("MARDLE_EXPORT must name the built program; scripts/test-python sets it")

    def run(folder, *arguments) -> str:
        done = subprocess.run(
            [path, *arguments], cwd=folder, capture_output=True, text=True, check=True
        )
        assert not done.stderr, done.stderr
        return done.stdout

    return run


WORDS = [f"{first}{second}" for first in "abcdef" for second in "klmnopqrst"]


@pytest.mark.parametrize("contents", [None, "table"])
def test_it_is_the_programs_page(program, export, tmp_path, monkeypatch, counts, contents):
    texts = [f"Text {number}: about <b>{number % 3}</b>" for number in range(60)]
    classes = [f"subject {number % 3}" for number in range(60)]
    molva.write_matrix(tmp_path / "mine", counts)
    for suffix, lines in (("rlabel", texts), ("clabel", WORDS), ("rclass", classes)):
        molva.write_labels(tmp_path / f"mine.{suffix}", lines)
    monkeypatch.chdir(tmp_path)
    program("-rowmodel=4", "-crfun=5", "-seed=3", "-output=mine.clustering", "-fulltree",
            "-writetree=mine.tree", "mine", 3)  # fmt: skip
    options = ["--crfun=5", "--rowmodel=4", "--nfeatures=7"]
    options += [f"--contents={contents}"] if contents else []
    expected = export(
        tmp_path, "html", *options, "--matrix=mine", "--clustering=mine.clustering",
        "--tree=mine.tree",
    )  # fmt: skip

    model = molva.RepeatedBisection(3, criterion="g1p", row_model="log", random_state=3)
    page = model.fit(counts).to_html(
        counts, feature_names=WORDS, texts=texts, classes=classes, title="mine", n_features=7,
        contents=contents,
    )  # fmt: skip
    assert page == expected
    assert ("documents" in page) == (contents is None)


def test_dense_rows_and_other_models_are_told(export, tmp_path, dense):
    model = molva.DirectKWay(4, similarity="correlation", random_state=1).fit(dense)
    molva.write_matrix(tmp_path / "clusters", dense)
    molva.write_labels(tmp_path / "clusters.rlabel", range(48))
    molva.write_labels(tmp_path / "clusters.clabel", range(6))
    molva.write_clustering(tmp_path / "clusters.clustering", model.labels_)
    expected = export(
        tmp_path, "html", "--denseinput", "--sim=2", "--matrix=clusters",
        "--clustering=clusters.clustering",
    )  # fmt: skip
    assert model.to_html(dense, tree=False) == expected


def test_a_path_is_written(tmp_path, monkeypatch, counts):
    model = molva.RepeatedBisection(3, random_state=1).fit(counts)
    page = model.to_html(counts)
    monkeypatch.chdir(tmp_path)
    assert model.to_html(counts, "page.html") is None
    assert (tmp_path / "page.html").read_text(encoding="utf-8") == page
    assert os.listdir(tmp_path) == ["page.html"]


def test_labels_from_elsewhere_have_a_page_too(counts):
    labels = np.arange(60) % 3
    labels[:2] = -1
    page = molva.to_html(counts, labels, criterion="i1", col_model="none")
    value = molva.criterion_value(counts, labels, "i1", col_model="none")
    assert "I1" in page and f"{value:.4g}" in page and "Tree over the rows" not in page


@pytest.mark.parametrize("criterion", ["g3", "h3"])
def test_criteria_without_trees_have_a_page(counts, criterion):
    model = molva.RepeatedBisection(3, criterion=criterion, random_state=1).fit(counts)
    assert "Tree over the clusters" in model.to_html(counts)


def test_a_tree_of_ones_own_is_shown(counts):
    model = molva.RepeatedBisection(3, random_state=1).fit(counts)
    automatic, without = model.to_html(counts), model.to_html(counts, tree=False)
    assert model.to_html(counts, tree=model.full_tree(counts)) == automatic
    assert "Tree over the rows of cluster" in automatic
    assert "Tree over the rows of cluster" not in without


def test_large_clusters_have_no_tree_unasked(counts):
    X = topics(4003, seed=1)
    labels = np.zeros(4003, dtype=int)
    labels[:2] = 1
    assert "Tree over the rows" not in molva.to_html(X, labels)


def test_rows_that_preparation_drops_are_in_no_cluster(counts):
    X = sparse.vstack([counts, sparse.csr_matrix((2, 60))]).tocsr()
    page = molva.to_html(X, np.arange(62) % 3)
    assert "62 rows in 3 clusters" in page and "2 without a cluster" in page
    assert "Tree over the rows of cluster" in page


def test_texts_and_names_may_hold_anything(counts):
    texts = ["", "two\nlines", "\ud800", "x" * 200, "ends in blanks  "] + ["one"] * 55
    names = ["line\nend", "", "<script>alert(1)</script>"] + ["c"] * 57
    page = molva.RepeatedBisection(3, random_state=1).fit(counts).to_html(
        counts, texts=texts, feature_names=names, classes=["a\tb", None] * 30
    )
    assert "two lines" in page and "x" * 79 + "…" in page and "x" * 80 not in page
    assert "<script>alert" not in page


def test_a_missing_program_is_told_before_any_work(monkeypatch, counts):
    model = molva.RepeatedBisection(3, random_state=1).fit(counts)
    monkeypatch.setenv("MARDLE_EXPORT", "/nowhere/mardle-export")
    monkeypatch.setattr("molva.page.full_tree", lambda *_, **__: pytest.fail("a tree was built"))
    with pytest.raises(FileNotFoundError, match="drawn by the program mardle-export"):
        model.to_html(counts)
    monkeypatch.delenv("MARDLE_EXPORT")
    monkeypatch.setenv("PATH", "/nowhere")
    with pytest.raises(FileNotFoundError, match="there is none on PATH"):
        model.to_html(counts)


def test_what_the_program_says_is_told(tmp_path, monkeypatch, counts):
    model = molva.RepeatedBisection(3, random_state=1).fit(counts)
    with pytest.raises(RuntimeError, match="No such file or directory"):
        model.to_html(counts, tmp_path / "no such folder" / "page.html")
    talking = tmp_path / "talking"
    talking.write_text("#!/bin/sh\necho 'mardle-export: warning: dust' >&2\necho page\n")
    talking.chmod(0o755)
    monkeypatch.setenv("MARDLE_EXPORT", str(talking))
    with pytest.warns(UserWarning, match="dust"):
        assert model.to_html(counts) == "page\n"


@pytest.mark.parametrize(
    "arguments, message",
    [
        ({"title": ""}, "title must be a short line"),
        ({"title": "a\nb"}, "title must be a short line"),
        ({"title": "../b"}, "no slashes"),
        ({"title": "-x"}, "no dash first"),
        ({"contents": "poems"}, "contents must be one of 'text', 'table'"),
        ({"texts": ["a"]}, "1 texts for 60 rows"),
        ({"classes": ["a"]}, "1 classes for 60 rows"),
        ({"feature_names": ["a"]}, "1 names for 60 columns"),
        ({"n_features": 0}, "n_features must be at least 1"),
    ],
)
def test_wrong_arguments_are_refused(counts, arguments, message):
    with pytest.raises(ValueError, match=message):
        molva.to_html(counts, np.arange(60) % 3, **arguments)


def test_a_matrix_of_one_row_for_every_cluster_has_a_page():
    X = sparse.csr_matrix(np.eye(3) + 1)
    page = molva.to_html(X, [0, 1, 2], col_model="none")
    assert "3 clusters" in page
