# SPDX-License-Identifier: MIT
"""What a long life of fits leaves behind."""

from __future__ import annotations

FITS = """
import os
import sys
import numpy as np
from scipy import sparse
import molva

SPARSE = sparse.random(40, 60, 0.2, format="csr", dtype=np.float32, random_state=1)
DENSE = np.random.RandomState(1).rand(40, 6).astype(np.float32)


def fits(first, last):
    for run in range(first, last):
        estimator = (molva.RepeatedBisection, molva.DirectKWay)[run % 2]
        X = (SPARSE, DENSE)[run // 2 % 2]
        model = estimator(4, n_trials=2, random_state=run).fit(X)
        model.predict(X)
        if run % 50 == 0:
            model.features(X)
            model.full_tree(X)
            model.cluster_tree(X)


def resident():
    with open("/proc/self/statm") as counts:
        return int(counts.read().split()[1]) * os.sysconf("SC_PAGESIZE")


fits(0, 400)
before = resident()
fits(400, 2400)
print(resident() - before)
"""


def test_two_thousand_fits_leave_memory_flat(python):
    # In bytes. Were each fit to leave a copy of its matrix behind, there would be some 5 megabytes.
    assert int(python(FITS)) < 2 * 2**20
