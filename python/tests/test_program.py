# SPDX-License-Identifier: MIT
"""The package says what the program says, of the same matrix under the same options."""

from __future__ import annotations

import re

import numpy as np
import pytest

import molva
from conftest import ESSAYS

CRITERIA = ["i1", "i2", "e1", "g1", "g1p", "h1", "h2", "g3", "h3"]
ROW_MODELS = ["none", "maxtf", "sqrt", "log"]
ESTIMATORS = {"-rb": molva.RepeatedBisection, "-direct": molva.DirectKWay}


def labels_of_program(program, folder, X, n_clusters, *options):
    molva.write_matrix(folder / "m", X)
    dense = ["-denseinput"] if isinstance(X, np.ndarray) else []
    program(*dense, *options, f"-output={folder / 'clusters'}", folder / "m", n_clusters)
    return molva.read_clustering(folder / "clusters").labels


@pytest.mark.parametrize("method", ESTIMATORS)
@pytest.mark.parametrize("number, criterion", enumerate(CRITERIA, 1))
def test_labels_are_the_programs_under_every_criterion(
    program, tmp_path, counts, method, number, criterion
):
    model = ESTIMATORS[method](5, criterion=criterion, random_state=number).fit(counts)
    expected = labels_of_program(
        program, tmp_path, counts, 5, method, f"-crfun={number}", f"-seed={number}"
    )
    np.testing.assert_array_equal(model.labels_, expected)


@pytest.mark.parametrize("number, row_model", enumerate(ROW_MODELS, 1))
@pytest.mark.parametrize("col_number, col_model", [(1, "none"), (2, "idf")])
def test_labels_are_the_programs_under_every_model(
    program, tmp_path, counts, number, row_model, col_number, col_model
):
    model = molva.RepeatedBisection(
        4, row_model=row_model, col_model=col_model, prune=0.8, random_state=5
    ).fit(counts)
    expected = labels_of_program(
        program, tmp_path, counts, 4, f"-rowmodel={number}", f"-colmodel={col_number}",
        "-prune=0.8", "-seed=5",
    )  # fmt: skip
    np.testing.assert_array_equal(model.labels_, expected)


@pytest.mark.parametrize("sim, similarity", [(1, "cosine"), (2, "correlation")])
@pytest.mark.parametrize("form", ["counts", "dense"])
@pytest.mark.parametrize("method", ESTIMATORS)
def test_labels_are_the_programs_for_sparse_and_dense_rows(
    request, program, tmp_path, form, method, sim, similarity
):
    X = request.getfixturevalue(form)
    model = ESTIMATORS[method](4, similarity=similarity, random_state=1).fit(X)
    expected = labels_of_program(program, tmp_path, X, 4, method, f"-sim={sim}")
    np.testing.assert_array_equal(model.labels_, expected)


@pytest.mark.parametrize("seed", [1, 2, 12345, -7])
def test_trials_passes_seed_and_refinement_are_the_programs(program, tmp_path, seed):
    essays = molva.read_matrix(ESSAYS)
    model = molva.RepeatedBisection(
        9, n_trials=2, n_iter=1, refine=True, random_state=seed
    ).fit(essays)
    expected = labels_of_program(
        program, tmp_path, essays, 9, "-ntrials=2", "-niter=1", "-refine", f"-seed={seed}"
    )
    np.testing.assert_array_equal(model.labels_, expected)


def test_files_are_the_programs_byte_for_byte(program, tmp_path):
    essays = molva.read_matrix(ESSAYS)
    program("-zscores", "-fulltree", f"-writetree={tmp_path / 'tree'}",
            f"-output={tmp_path / 'clusters'}", ESSAYS, 8)  # fmt: skip
    program("-nooutput", f"-writetree={tmp_path / 'small'}", ESSAYS, 8)
    model = molva.RepeatedBisection(8, random_state=1).fit(essays)
    molva.write_clustering(tmp_path / "our clusters", model.labels_, model.statistics_)
    molva.write_tree(tmp_path / "our tree", model.full_tree(essays))
    molva.write_tree(tmp_path / "our small", model.cluster_tree(essays))
    for name in ("clusters", "tree", "small"):
        assert (tmp_path / f"our {name}").read_bytes() == (tmp_path / name).read_bytes()


def test_numbers_are_those_of_the_report(program):
    essays = molva.read_matrix(ESSAYS)
    authors = molva.read_labels(f"{ESSAYS}.rclass")
    report = program("-nooutput", "-fulltree", "-showfeatures", ESSAYS, 8)
    model = molva.RepeatedBisection(8, random_state=1).fit(essays)
    quality = molva.external_quality(model.labels_, authors, model.full_tree(essays))

    assert (
        f"[I2={model.criterion_value_:.2e}], Entropy: {quality.entropy:.3f}, "
        f"Purity: {quality.purity:.3f}, FScore: {quality.f_score:.3f}" in report
    )
    assert "Max F-Score Value:  " + " ".join(f"{f:.2f}" for f in quality.f_scores) in report
    s = model.statistics_
    for k in range(8):
        line = (
            f"{k:3d} {s.sizes[k]:5d} {s.internal_similarity[k]:+5.3f} "
            f"{s.internal_deviation[k]:+5.3f} {s.external_similarity[k]:+5.3f} "
            f"{s.external_deviation[k]:+5.3f} {quality.entropies[k]:5.3f} "
            f"{quality.purities[k]:5.3f} | " + "".join(f"{n:4d} " for n in quality.counts[k])
        )
        assert line in report
    words = model.features(essays, feature_names=molva.read_labels(f"{ESSAYS}.clabel"))
    lists = re.findall(r"^ *(?:Descriptive|Discriminating): (.*)$", report, re.MULTILINE)
    for k in range(8):
        for kind, line in zip(("descriptive", "discriminating"), lists[2 * k : 2 * k + 2]):
            ours = ", ".join(f"{f.feature} {100 * f.share:4.1f}%" for f in words.rows(k, kind))
            assert ours == line.strip()
