# SPDX-License-Identifier: MIT
"""The extension trusts nobody about shapes and types, since the library reads memory by them."""

from __future__ import annotations

import numpy as np
import pytest

from molva import MolvaError, _engine

POINTERS = np.array([0, 2, 3], dtype=np.int32)
COLUMNS = np.array([0, 1, 1], dtype=np.int32)
VALUES = np.array([1, 2, 3], dtype=np.float32)
MODELS = _engine.Models(1, 1, 1, 1.0)


def matrix(rows=2, columns=2, pointers=POINTERS, entry_columns=COLUMNS, values=VALUES):
    return _engine.Matrix(rows, columns, pointers, entry_columns, values)


@pytest.mark.parametrize(
    "wrong, message",
    [
        ({"rows": 3}, "nrows . 1 elements"),
        ({"rows": -1}, "negative"),
        ({"values": VALUES[:2]}, "passes the entries"),
        ({"entry_columns": COLUMNS[:2]}, "passes the entries"),
        ({"entry_columns": None}, "go together"),
        ({"pointers": None, "entry_columns": None}, "does not fill"),
    ],
)
def test_arrays_of_other_sizes_are_refused(wrong, message):
    with pytest.raises(ValueError, match=message):
        matrix(**wrong)


@pytest.mark.parametrize(
    "wrong",
    [
        {"values": VALUES.astype(np.float64)},
        {"pointers": POINTERS.astype(np.int64)},
        {"entry_columns": np.repeat(COLUMNS, 2)[::2]},
    ],
)
def test_nothing_is_converted_in_silence(wrong):
    with pytest.raises(TypeError):
        matrix(**wrong)


@pytest.mark.parametrize(
    "wrong, message",
    [
        ({"pointers": np.array([0, 3, 2], dtype=np.int32)}, "Row starts must not decrease"),
        ({"pointers": np.array([1, 2, 3], dtype=np.int32)}, "Row starts must begin with 0"),
        ({"entry_columns": np.array([0, 1, 2], dtype=np.int32)}, "Column number is outside"),
    ],
)
def test_what_the_library_checks_is_told_in_its_words(wrong, message):
    with pytest.raises(MolvaError, match=message):
        _engine.prepare(matrix(**wrong), MODELS)


def test_labels_of_another_number_are_refused():
    with pytest.raises(ValueError, match="needs a label"):
        _engine.criterion_value(matrix(), MODELS, 2, np.zeros(1, dtype=np.int32), 2)
    with pytest.raises(ValueError, match="must be positive"):
        _engine.criterion_value(matrix(), MODELS, 0, np.zeros(2, dtype=np.int32), 2)
