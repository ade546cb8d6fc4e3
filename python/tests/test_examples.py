# SPDX-License-Identifier: MIT
"""The examples run."""

from __future__ import annotations

import runpy
import subprocess
import sys
import textwrap

import matplotlib.image
import molva
import pytest

from conftest import ESSAYS, REPOSITORY

EXAMPLES = REPOSITORY / "python" / "examples"


def test_the_quick_start_prints_what_the_page_says(capsys, monkeypatch):
    page = (REPOSITORY / "docs" / "python.md").read_text(encoding="utf-8")
    blocks = [block for block in page.split("\n\n") if block.startswith("    ")]
    code, output = (textwrap.dedent(block).strip() for block in blocks[:2])
    monkeypatch.chdir(REPOSITORY)
    exec(code, {})
    printed = textwrap.dedent(capsys.readouterr().out).strip()
    assert printed == output


def test_texts_draws_its_pictures(tmp_path, capsys):
    runpy.run_path(str(EXAMPLES / "texts.py"))["main"](tmp_path)
    assert "purity 1.000" in capsys.readouterr().out
    for name in ("python-dendrogram.png", "python-heatmap.png"):
        picture = matplotlib.image.imread(tmp_path / name)
        assert picture[..., :3].min() < 0.5 < picture[..., :3].max()


def test_blocks_gives_the_same_labels_here_and_on_workers():
    arguments = ["--rows", "2000", "--blocks", "4", "--clusters", "5"]
    found = []
    for workers in ([], ["--workers", "2"]):
        done = subprocess.run(
            [sys.executable, EXAMPLES / "blocks.py", *arguments, *workers],
            capture_output=True, text=True, check=False,
        )  # fmt: skip
        assert done.returncode == 0, done.stdout + done.stderr
        found.append([line for line in done.stdout.splitlines() if line.startswith("I2 ")])
    assert found[0] == found[1] != []


@pytest.fixture(scope="module")
def compare():
    """Return the functions of the comparison."""
    return runpy.run_path(str(EXAMPLES / "compare.py"))


def comparison(*arguments) -> list[str]:
    """Return the lines that a comparison prints."""
    done = subprocess.run(
        [sys.executable, EXAMPLES / "compare.py", *map(str, arguments)],
        capture_output=True, text=True, check=False,
    )  # fmt: skip
    assert done.returncode == 0, done.stdout + done.stderr
    return done.stdout.splitlines()


def test_compare_measures_every_method(compare):
    essays, classes = compare["read"](ESSAYS, False)
    methods = compare["methods"](essays, 4, 1)
    assert {"RepeatedBisection", "DirectKWay", "KMeans", "MiniBatchKMeans", "LSA, KMeans"} <= set(
        methods
    )
    for name in methods:
        found = compare["measure"](essays, classes, name, 4, 1, 1)
        # Each of the 85 unit rows adds at most 1.
        assert 0 < found["value"] < 85
        assert 51 / 85 <= found["purity"] <= 1
        assert 0 <= found["nmi"] <= 1
        assert found["wall"] > 0


def test_compare_evaluates_every_labelling_alike(compare, counts):
    name = "KMeans, one start"
    found = compare["measure"](counts, None, name, 3, 1, 1)
    labels = compare["methods"](counts, 3, 1)[name].fit_predict(counts)
    assert found["value"] == molva.criterion_value(counts, labels, "i2")
    assert "purity" not in found


def test_compare_takes_dense_rows_as_they_are(compare, dense):
    methods = compare["methods"](dense, 4, 1)
    assert not any(name.startswith("LSA") for name in methods)
    classes = [str(row % 4) for row in range(48)]
    for name in methods:
        assert compare["measure"](dense, classes, name, 4, 1, 1)["purity"] > 0.5


def test_compare_prints_a_line_for_every_method_that_is_asked_for():
    lines = comparison(ESSAYS, 4, "--seeds", 1, "--only", "^DirectKWay$|^KMeans, one start$")
    assert lines[0].startswith("federalist.mat: 85 rows, 5,274 columns, 46,873 entries; 4 clusters")
    table = [line.split(" | ")[0] for line in lines if line.startswith("| ")]
    assert table == ["| Method", "| ---", "| DirectKWay", "| KMeans, one start"]


def test_compare_tells_what_takes_too_long():
    lines = comparison(ESSAYS, 4, "--seeds", 1, "--only", "^DirectKWay$", "--limit", 0.01)
    assert "DirectKWay: takes more than 0.01 s" in lines
