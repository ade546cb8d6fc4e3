# SPDX-License-Identifier: MIT
"""The names of criteria, similarities and models, and their codes in the library."""

from __future__ import annotations

from numbers import Real
from typing import NamedTuple

import numpy as np
from scipy import sparse

from . import _engine
from ._matrix import stored_in_full
from ._warn import warn

CRITERIA = {"i1": 1, "i2": 2, "e1": 3, "g1": 4, "g1p": 5, "h1": 6, "h2": 7, "g3": 8, "h3": 9}
# G3 and H3 do not tell what a merge gains.
TREE_CRITERIA = {name: number for name, number in CRITERIA.items() if number <= CRITERIA["h2"]}
SIMILARITIES = {"cosine": 1, "correlation": 2}
ROW_MODELS = {"none": 1, "maxtf": 2, "sqrt": 3, "log": 4}
COL_MODELS = {"none": 1, "idf": 2}
DEFAULTS = dict(similarity="cosine", row_model="none", col_model="auto", prune=1.0)


def code(parameter: str, value: object, codes: dict[str, int]) -> int:
    """Return the code of a name; names of capital letters and "G1'" are understood too."""
    name = value.lower().replace("'", "p") if isinstance(value, str) else value
    try:
        return codes[name]
    except (KeyError, TypeError):
        names = ", ".join(repr(known) for known in codes)
        raise ValueError(f"{parameter} must be one of {names}; got {value!r}") from None


def criterion_code(criterion: str) -> int:
    """Return the library's code of a criterion."""
    return code("criterion", criterion, CRITERIA)


def tree_criterion_code(criterion: str) -> int:
    """Return the library's code of a criterion that builds trees."""
    return code("criterion of a tree", criterion, TREE_CRITERIA)


def _check_prune(prune: object) -> float:
    if isinstance(prune, (bool, np.bool_)) or not isinstance(prune, Real) or not 0 <= prune <= 1:
        raise ValueError(f"prune must be a number from 0 to 1; got {prune!r}")
    return float(prune)


class Models(NamedTuple):
    """How rows are scaled, weighted and compared, with no default left open."""

    similarity: str
    row_model: str
    col_model: str
    prune: float

    @classmethod
    def choose(
        cls, X, *, similarity: str, row_model: str, col_model: str, prune: float
    ) -> Models:
        """Check the models for a checked matrix, and decide "auto" as the program does.

        Every column of a matrix whose cells are all stored occurs in every row, which leaves
        nothing for IDF to tell apart; the correlation coefficient fills the cells as well.
        """
        code("similarity", similarity, SIMILARITIES)
        code("row_model", row_model, ROW_MODELS)
        code("col_model", col_model, {"auto": 0, **COL_MODELS})
        models = cls(similarity.lower(), row_model.lower(), col_model.lower(), _check_prune(prune))
        models.check_values(X)
        if models.col_model != "auto":
            return models
        if models.similarity != "cosine" or stored_in_full(X):
            return models._replace(col_model="none")
        if (X.data != np.floor(X.data)).any():
            warn(
                "The values are not whole numbers, so they look weighted already, and IDF weighs "
                "the columns once more: col_model='none' leaves them as they are, and 'idf' does "
                "what is done now, without this warning"
            )
        return models._replace(col_model="idf")

    @classmethod
    def chosen(cls, X, given: dict) -> Models:
        """Return the models of keyword arguments, which may leave some of them out."""
        unknown = given.keys() - DEFAULTS.keys()
        if unknown:
            raise TypeError(f"unexpected keyword argument {min(unknown)!r}")
        return cls.choose(X, **{**DEFAULTS, **given})

    def check_values(self, X) -> None:
        """Refuse values that the row model makes not-a-number."""
        values = X.data if sparse.issparse(X) else X
        if self.row_model == "log" and values.min(initial=0) < 0:
            raise ValueError("row_model 'log' takes no negative values: they have no logarithm")

    def codes(self) -> _engine.Models:
        """Return the record that the extension takes."""
        return _engine.Models(
            SIMILARITIES[self.similarity],
            ROW_MODELS[self.row_model],
            COL_MODELS[self.col_model],
            self.prune,
        )
