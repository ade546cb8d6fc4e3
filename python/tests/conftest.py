# SPDX-License-Identifier: MIT
"""Matrices that the tests share, and the program to compare with."""

from __future__ import annotations

import os
import signal
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest
from scipy import sparse

REPOSITORY = Path(__file__).resolve().parents[2]
ESSAYS = REPOSITORY / "examples" / "federalist" / "federalist.mat"
COMPLETED = 84  # The status of a completed run.


def topics(rows: int, seed: int) -> sparse.csr_matrix:
    """Return counts of 60 words in rows about three topics of 20 words, with some noise."""
    random = np.random.RandomState(seed)
    counts = random.poisson(0.05, (rows, 60))
    for row in range(rows):
        topic = row % 3
        counts[row, 20 * topic : 20 * topic + 20] += random.poisson(0.7, 20)
    return sparse.csr_matrix(counts.astype(np.float32))


@pytest.fixture(scope="session", autouse=True)
def interrupts():
    """Let SIGINT raise KeyboardInterrupt, as it does not in processes of the background."""
    before = signal.signal(signal.SIGINT, signal.default_int_handler)
    yield
    signal.signal(signal.SIGINT, before)


@pytest.fixture(scope="session")
def counts() -> sparse.csr_matrix:
    return topics(60, seed=7)


@pytest.fixture(scope="session")
def dense() -> np.ndarray:
    """Rows around four directions, no value of which is 0."""
    random = np.random.RandomState(3)
    centers = random.normal(size=(4, 6)) * 4
    return (centers[np.arange(48) % 4] + random.normal(size=(48, 6))).astype(np.float32)


@pytest.fixture(scope="session")
def program():
    """Return a function that runs the program and returns what it prints."""
    path = os.environ.get("MARDLE")
    if path is None:
        pytest.fail("MARDLE must name the built program; scripts/test-python sets it")

    def run(*arguments) -> str:
        done = subprocess.run(
            [path, *map(str, arguments)], capture_output=True, text=True, check=False
        )
        assert done.returncode == COMPLETED, done.stdout + done.stderr
        return done.stdout

    return run


@pytest.fixture(scope="session")
def python():
    """Return a function that runs a script in a process of its own and returns what it prints."""

    def run(script: str, *arguments) -> str:
        # Blocks that are held back after their release would look like a leak.
        sanitizer = os.environ.get("ASAN_OPTIONS", "") + ":quarantine_size_mb=1"
        done = subprocess.run(
            [sys.executable, "-c", script, *map(str, arguments)],
            capture_output=True,
            text=True,
            check=False,
            env={**os.environ, "ASAN_OPTIONS": sanitizer},
        )
        assert done.returncode == 0, done.stdout + done.stderr
        return done.stdout

    return run
