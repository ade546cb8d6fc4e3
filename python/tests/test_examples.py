# SPDX-License-Identifier: MIT
"""The examples run."""

from __future__ import annotations

import runpy
import textwrap

import matplotlib.image

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


def test_compare_measures_every_method(capsys):
    runpy.run_path(str(EXAMPLES / "compare.py"))["main"](ESSAYS, 4, seeds=1)
    lines = capsys.readouterr().out.splitlines()
    methods = {line.split()[0].rstrip(",") for line in lines[2:]}
    assert methods == {
        "RepeatedBisection", "DirectKWay", "KMeans", "BisectingKMeans", "MiniBatchKMeans"
    }  # fmt: skip
