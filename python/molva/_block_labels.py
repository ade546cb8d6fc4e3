# SPDX-License-Identifier: MIT
"""Where the labels of blocks are kept between passes: in memory, or in files of a folder.

A pass leaves two labels for each row, before it and after all its moves; which moves are made is decided
when all blocks are done, and known to the next pass. So nothing is written twice.
"""

from __future__ import annotations

import os
import uuid
import zipfile
from contextlib import contextmanager
from dataclasses import dataclass
from pathlib import Path

import numpy as np

_UNREADABLE = (OSError, ValueError, KeyError, EOFError, zipfile.BadZipFile, zipfile.LargeZipFile)


@contextmanager
def whole_file(path: Path):
    """Give a stream to a file that appears when it is whole; two may write the same one."""
    partial = path.with_name(f".{path.name}.{uuid.uuid4().hex}.part")
    try:
        with open(partial, "wb") as out:
            yield out
            out.flush()
            os.fsync(out.fileno())
        os.replace(partial, path)
    except BaseException:
        partial.unlink(missing_ok=True)
        raise


def save_arrays(path: Path, **arrays: np.ndarray) -> None:
    """Write arrays to a file, which carries checksums."""
    with whole_file(path) as out:
        np.savez(out, **arrays)


def load_arrays(path: Path, *names: str) -> list[np.ndarray]:
    """Return arrays of a file; what cannot be read, or has changed since, is refused by name."""
    try:
        with np.load(path, allow_pickle=False) as arrays:
            return [arrays[name] for name in names]
    except _UNREADABLE as error:
        raise ValueError(f"{path} is missing or damaged: {error}") from None


@dataclass(frozen=True)
class MemoryLabels:
    """The labels of a block as they travel with it."""

    number: int
    before: np.ndarray | None = None
    after: np.ndarray | None = None

    def load(self, _, rows: int, n_clusters: int) -> tuple[np.ndarray, np.ndarray]:
        return self.before, self.after

    def keep(self, _, before: np.ndarray, after: np.ndarray) -> dict:
        return {"labels": {self.number: MemoryLabels(self.number, before, after)}}

    def finish(self, labels: np.ndarray, averages: np.ndarray) -> dict:
        return {"finished": {self.number: (labels, averages)}}


@dataclass(frozen=True)
class FolderLabels:
    """The labels of a block in a folder that all who work on blocks see."""

    folder: Path
    number: int

    def path(self, kind: str) -> Path:
        return self.folder / f"labels-{self.number:06}-{kind}.npz"

    def load(self, number: int, rows: int, n_clusters: int) -> tuple[np.ndarray, np.ndarray]:
        path = self.path(f"pass-{number:03}")
        before, after = load_arrays(path, "before", "after")
        for labels in (before, after):
            check_labels_of(path, labels, rows, n_clusters)
        return before, after

    def keep(self, number: int, before: np.ndarray, after: np.ndarray) -> dict:
        save_arrays(self.path(f"pass-{number:03}"), before=before, after=after)
        return {}

    def drop(self, number: int) -> None:
        self.path(f"pass-{number:03}").unlink(missing_ok=True)

    def finish(self, labels: np.ndarray, averages: np.ndarray) -> dict:
        save_arrays(self.path("last"), labels=labels, averages=averages)
        return {}


def check_labels_of(path: Path, labels: np.ndarray, rows: int, n_clusters: int) -> None:
    """Refuse what are no labels of so many rows."""
    if labels.shape != (rows,) or labels.dtype != np.int32:
        raise ValueError(f"{path} is damaged: it holds no {rows} labels")
    if rows and not -1 <= labels.min() <= labels.max() < n_clusters:
        raise ValueError(f"{path} is damaged: it holds labels of other clusters than {n_clusters}")
