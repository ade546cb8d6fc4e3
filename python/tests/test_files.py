# SPDX-License-Identifier: MIT
"""The program's files, read and written."""

from __future__ import annotations

import numpy as np
import pytest
from scipy import sparse

import molva


def test_a_sparse_matrix_is_read_as_it_stands(tmp_path):
    (tmp_path / "m").write_text("3 4 5\n1 1.0 4 2.0\n\n2 0.5 3 1 1 7\n")
    X = molva.read_matrix(tmp_path / "m")
    assert X.dtype == np.float32 and X.shape == (3, 4)
    assert X.indptr.tolist() == [0, 2, 2, 5]
    assert X.indices.tolist() == [0, 3, 1, 2, 0]
    assert X.data.tolist() == [1, 2, 0.5, 1, 7]


def test_a_dense_matrix_is_read_as_it_stands(tmp_path):
    (tmp_path / "m").write_text("2 3\n5.1 0 1.4\n4.9 3 0\n")
    X = molva.read_matrix(tmp_path / "m", dense=True)
    np.testing.assert_array_equal(X, np.float32([[5.1, 0, 1.4], [4.9, 3, 0]]))


@pytest.mark.parametrize("form", ["sparse", "dense"])
def test_matrices_come_back_to_the_last_bit(tmp_path, form):
    random = np.random.RandomState(1)
    X = (random.normal(size=(40, 30)) * 10.0 ** random.randint(-30, 30, (40, 30))).astype("f4")
    if form == "sparse":
        X[random.rand(40, 30) < 0.8] = 0
        X = sparse.csr_matrix(X)
    molva.write_matrix(tmp_path / "m", X)
    again = molva.read_matrix(tmp_path / "m", dense=form == "dense")
    if form == "dense":
        np.testing.assert_array_equal(again, X)
    else:
        np.testing.assert_array_equal(again.indptr, X.indptr)
        np.testing.assert_array_equal(again.indices, X.indices)
        np.testing.assert_array_equal(again.data, X.data)


def test_rows_up_to_the_length_of_the_readers_line_are_written(tmp_path):
    # 65,535 zeros and as many blanks, less the last, make 131,069 characters.
    X = np.zeros((2, 65_535), dtype=np.float32)
    X[1, 0] = 12
    molva.write_matrix(tmp_path / "m", X)
    np.testing.assert_array_equal(molva.read_matrix(tmp_path / "m", dense=True), X)
    written = (tmp_path / "m").read_bytes()
    X[1, 0] = 123
    with pytest.raises(ValueError, match="^row 1 would be a line of 131071 characters"):
        molva.write_matrix(tmp_path / "m", X)
    assert (tmp_path / "m").read_bytes() == written


def test_a_bad_matrix_is_refused_with_the_programs_message(tmp_path):
    (tmp_path / "m").write_text("1 4 1\n5 1.0\n")
    with pytest.raises(molva.MolvaError) as refused:
        molva.read_matrix(tmp_path / "m")
    assert str(refused.value) == "Column number is greater than ncols. Ncols=4, ColNum=4, Row=0"
    with pytest.raises(FileNotFoundError):
        molva.read_matrix(tmp_path / "none")


def test_column_numbers_from_0_are_refused(tmp_path):
    (tmp_path / "m").write_text("2 4 2\n0 1.0\n1 1.0\n")
    with pytest.raises(ValueError, match="column numbers below 1"):
        molva.read_matrix(tmp_path / "m")


def test_a_number_is_no_path():
    with pytest.raises(TypeError):
        molva.read_matrix(0)


def test_labels_lose_blanks_at_their_ends_only(tmp_path):
    (tmp_path / "l").write_bytes(b" a b \t\n\nna\xefve\r\nlast")
    assert molva.read_labels(tmp_path / "l") == [" a b", "", "na\udcefve\r", "last"]
    molva.write_labels(tmp_path / "again", molva.read_labels(tmp_path / "l"))
    assert (tmp_path / "again").read_bytes() == b" a b\n\nna\xefve\r\nlast\n"


@pytest.mark.parametrize(
    "label, message",
    [
        ("a\nb", "would not be read back: it has a line end"),
        ("\n", "line end"),
        ("a\0b", "or a null character"),
        ("a ", "it ends in blanks"),
        ("\t", "it ends in blanks"),
        ("\ud800", "surrogates not allowed"),
        ("x" * 131_071, "begins with 'xxxxxxxxxxxxxxxxxxxx' has 131071 bytes"),
        ("\u00e9" * 65_536, "has 131072 bytes, and the program reads no more than 131070"),
    ],
    ids=["lines", "end", "null", "blank", "tab", "surrogate", "long", "long in bytes"],
)
def test_labels_that_would_not_be_read_back_leave_the_file_as_it_was(tmp_path, label, message):
    (tmp_path / "l").write_text("kept\n")
    with pytest.raises(ValueError, match=message):
        molva.write_labels(tmp_path / "l", ["first", label])
    assert (tmp_path / "l").read_text() == "kept\n"


def test_the_longest_label_is_read_back_by_the_program(tmp_path, program):
    labels = ["x" * 131_070, "\u00e9" * 65_535]
    molva.write_labels(tmp_path / "m.rclass", labels)
    assert molva.read_labels(tmp_path / "m.rclass") == labels
    molva.write_matrix(tmp_path / "m", sparse.csr_matrix([[1, 2, 0], [2, 1, 0]]))
    assert program("-nooutput", tmp_path / "m", 0).count("2-way clustering") == 1


def test_clusterings_come_back(tmp_path):
    molva.write_clustering(tmp_path / "c", np.array([1, -1, 0]))
    assert (tmp_path / "c").read_text() == "1\n-1\n0\n"
    labels, internal, external = molva.read_clustering(tmp_path / "c")
    assert labels.tolist() == [1, -1, 0] and internal is None and external is None

    (tmp_path / "z").write_text("1 -0.707107 0.707108\n-1 0.000000 -nan\n")
    labels, internal, external = molva.read_clustering(tmp_path / "z")
    assert labels.tolist() == [1, -1]
    np.testing.assert_array_equal(internal, np.float32([-0.707107, 0]))
    assert np.isnan(external[1])


@pytest.mark.parametrize(
    "text, told",
    [
        ("1\n2 3\n", "lines have 1 and 2 fields"),
        ("1 2\n", "lines have 2 fields"),
        ("1\n\n", "lines have 0 and 1 fields"),
        ("1.5\n", "'1.5'"),
        ("1 x 0\n", "'x'"),
        ("4294967297\n", "does not fit 32 bits"),
        ("99999999999999999999\n", "too large"),
    ],
)
def test_other_files_are_no_clusterings(tmp_path, text, told):
    (tmp_path / "bad").write_text(text)
    with pytest.raises(ValueError, match=f"bad is no clustering file: .*{told}"):
        molva.read_clustering(tmp_path / "bad")


def test_only_clusterings_are_written(tmp_path):
    (tmp_path / "c").write_text("kept\n")
    scores = molva.cluster_statistics(np.eye(2), [0, 0])
    for wrong in (([0.5, 1.0],), ([[0], [1]],), ([0, 0, 0], scores)):
        with pytest.raises(ValueError, match="labels|Labels"):
            molva.write_clustering(tmp_path / "c", *wrong)
    assert (tmp_path / "c").read_text() == "kept\n"


def test_trees_come_back(tmp_path):
    (tmp_path / "t").write_text("4 0.000000\n3 0.000000\n3 0.000000\n4 0.500000\n-1 0.125000\n")
    parents, similarities = molva.read_tree(tmp_path / "t")
    assert parents.tolist() == [4, 3, 3, 4, -1]
    assert similarities.tolist() == [0, 0, 0, 0.5, 0.125]
    for text in ("1 0 0\n", "1.5 0\n", "# 1\n"):
        (tmp_path / "bad").write_text(text)
        with pytest.raises(ValueError, match="bad is no tree file"):
            molva.read_tree(tmp_path / "bad")
