# SPDX-License-Identifier: MIT
"""What a clustering of blocks leaves in its folder, so that one that was stopped goes on."""

from __future__ import annotations

import json
import os
from pathlib import Path

import numpy as np

from ._block_labels import FolderLabels, MemoryLabels, load_arrays, save_arrays, whole_file

_FORMAT = 1


class Memory:
    """Keeps nothing behind: labels travel with their blocks."""

    def __init__(self):
        self._labels: dict[int, MemoryLabels] = {}

    def labels(self, number: int) -> MemoryLabels:
        return self._labels.get(number, MemoryLabels(number))

    def take(self, found: dict) -> None:
        """Keep the labels that came back with a pass."""
        self._labels = found.pop("labels")

    def load_state(self) -> dict | None:
        return None

    def save_state(self, state: dict) -> None:
        pass

    def save(self, name: str, **arrays: np.ndarray) -> None:
        pass


class Folder:
    """A work folder. The state names the last whole pass; it changes at once, after all files of it.

    settings : dict
        What the clustering depends on; a folder with other settings is refused.
    """

    def __init__(self, path: str | os.PathLike, settings: dict):
        self.path = Path(path)
        self.path.mkdir(parents=True, exist_ok=True)
        self._settings = settings

    @property
    def _state_path(self) -> Path:
        return self.path / "state.json"

    def labels(self, number: int) -> FolderLabels:
        return FolderLabels(self.path, number)

    def take(self, found: dict) -> None:
        pass

    def load_state(self) -> dict | None:
        """Return the state that the folder was left in, None for a new one."""
        if not self._state_path.exists():
            return None
        try:
            state = json.loads(self._state_path.read_text())
            kind, settings = state["format"], state["settings"]
            # A state is written whole, so the rest is there as well.
            state["pass"], state["share"], state["history"], state["rows"]
        except (OSError, ValueError, KeyError, TypeError) as error:
            raise ValueError(f"{self._state_path} is damaged: {error!r}") from None
        if kind != _FORMAT:
            raise ValueError(f"{self._state_path} is of another version: {kind!r}")
        for name, value in self._settings.items():
            if settings.get(name) != value:
                raise ValueError(
                    f"{self.path} holds another clustering: its {name} is {settings.get(name)!r}, "
                    f"not {value!r}; name a new work_dir, or remove this one"
                )
        return state

    def save_state(self, state: dict) -> None:
        told = {"format": _FORMAT, "settings": self._settings, **state}
        with whole_file(self._state_path) as out:
            out.write(json.dumps(told, indent=1).encode() + b"\n")

    def save(self, name: str, **arrays: np.ndarray) -> None:
        save_arrays(self.path / f"{name}.npz", **arrays)

    def load(self, name: str, *names: str) -> list[np.ndarray]:
        return load_arrays(self.path / f"{name}.npz", *names)

    def drop_pass(self, number: int, n_blocks: int) -> None:
        """Remove what a pass left that no later one needs."""
        if number < 0:
            return
        for block in range(n_blocks):
            self.labels(block).drop(number)
        (self.path / f"sums-{number:03}.npz").unlink(missing_ok=True)
