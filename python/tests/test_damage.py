# SPDX-License-Identifier: MIT
"""Sparse matrices whose arrays were damaged: scipy reads and writes memory by them, unlooked at."""

from __future__ import annotations

import numpy as np
import pytest
from scipy import sparse

import molva

ROWS = sparse.csr_matrix(np.float32([[1, 2, 0], [2, 1, 0], [0, 1, 2], [0, 2, 1]]))
LABELS = np.array([0, 0, 1, 1])
FITTED = molva.RepeatedBisection(2, random_state=1).fit(ROWS)

# Everything that takes a matrix.
TAKERS = {
    "fit": lambda X, folder: molva.DirectKWay(2).fit(X),
    "fit_predict": lambda X, folder: molva.RepeatedBisection(2).fit_predict(X),
    "predict": lambda X, folder: FITTED.predict(X),
    "features": lambda X, folder: FITTED.features(X),
    "cluster_tree of a fit": lambda X, folder: FITTED.cluster_tree(X),
    "full_tree of a fit": lambda X, folder: FITTED.full_tree(X),
    "cluster_statistics": lambda X, folder: molva.cluster_statistics(X, LABELS),
    "criterion_value": lambda X, folder: molva.criterion_value(X, LABELS),
    "cluster_features": lambda X, folder: molva.cluster_features(X, LABELS),
    "cluster_tree": lambda X, folder: molva.cluster_tree(X, LABELS),
    "full_tree": lambda X, folder: molva.full_tree(X, LABELS),
    "write_matrix": lambda X, folder: molva.write_matrix(folder / "m", X),
}


def damaged(form: str, array: str, place, value):
    """Return the matrix in another form, one number of one of its arrays changed."""
    X = ROWS.asformat(form).copy()
    getattr(X, array)[place] = value
    return X


def with_array(array: str, change, form: str = "csr"):
    X = ROWS.asformat(form).copy()
    setattr(X, array, change(getattr(X, array)))
    return X


DAMAGES = {
    "column too large": (damaged("csr", "indices", 1, 10**8), "Column index 100000000 is outside"),
    "column behind the last": (damaged("csr", "indices", -1, 3), "Column index 3 is outside"),
    "column below 0": (damaged("csr", "indices", 2, -(10**8)), "Column index -100000000 is outs"),
    "starts that fall": (damaged("csr", "indptr", 1, 6), "Row starts must not decrease; got 6 and"),
    "start far out": (damaged("csr", "indptr", 2, 10**8), "Row starts must not decrease"),
    "start below 0": (damaged("csr", "indptr", 1, -4), "Row starts must not decrease; got 0 and"),
    "first start": (damaged("csr", "indptr", 0, 1), "Row starts must begin with 0; got 1"),
    "last start": (damaged("csr", "indptr", -1, 99), "Row starts end at 99, behind the 8 entries"),
    "few entries": (with_array("data", lambda a: a[:5]), "end at 8, behind the 5 entries"),
    "few indices": (with_array("indices", lambda a: a[:6]), "end at 8, behind the 6 entries"),
    "few starts": (with_array("indptr", lambda a: a[:3]), "Row starts must be 5 for the shape"),
    "no whole indices": (with_array("indices", lambda a: a / 1), "Column indices must be integers"),
    "no whole starts": (with_array("indptr", lambda a: a / 1), "Row starts must be integers"),
    "rows of columns": (damaged("csc", "indices", 0, 10**8), "Row index 100000000 is outside"),
    "starts of columns": (damaged("csc", "indptr", 1, 10**8), "Column starts must not decrease"),
    "blocks": (damaged("bsr", "indices", 0, 10**8), "Block column index 100000000 is outside"),
    "row of a triple": (damaged("coo", "row", 0, 10**8), "Row index 100000000 is outside"),
    "column of a triple": (damaged("coo", "col", 0, -7), "Column index -7 is outside"),
    "lists": (damaged("lil", "rows", 1, [0, 10**8]), "Column index 100000000 is outside"),
}


@pytest.mark.parametrize("damage", DAMAGES)
@pytest.mark.parametrize("taker", TAKERS)
def test_is_refused_by_everything_that_takes_a_matrix(taker, damage, tmp_path):
    X, message = DAMAGES[damage]
    with pytest.raises(ValueError, match=message):
        TAKERS[taker](X, tmp_path)


@pytest.mark.parametrize("form", ["csr", "csc", "bsr", "coo", "lil", "dok", "dia"])
@pytest.mark.parametrize("taker", TAKERS)
def test_sound_matrices_of_every_form_are_taken(taker, form, tmp_path):
    TAKERS[taker](ROWS.asformat(form), tmp_path)
