# SPDX-License-Identifier: MIT
"""Clusters the rows of large sparse or dense matrices, after scikit-learn's rules.

Two estimators, `RepeatedBisection` and `DirectKWay`, over libmolva's engine: the labels are those
of the program mardle for the same matrix and options. Around them functions that measure and
explain any clustering, trees for scipy's dendrogram, and the program's files.
"""

from . import _engine
from ._engine import MolvaError
from ._estimators import DirectKWay, RepeatedBisection
from .analysis import (
    ClusterFeatures,
    ClusterStatistics,
    cluster_features,
    cluster_statistics,
    criterion_value,
)
from .choosing import Sweep, sweep
from .files import (
    read_clustering,
    read_labels,
    read_matrix,
    read_tree,
    write_clustering,
    write_labels,
    write_matrix,
    write_tree,
)
from .page import to_html
from .quality import ExternalQuality, external_quality
from .summary import ClusterSummary
from .trees import Tree, cluster_tree, full_tree
from .typical import TypicalRows, typical_rows

__version__ = _engine.version
MolvaError.__module__ = __name__

__all__ = [
    "ClusterFeatures",
    "ClusterStatistics",
    "ClusterSummary",
    "DirectKWay",
    "ExternalQuality",
    "MolvaError",
    "RepeatedBisection",
    "Sweep",
    "Tree",
    "TypicalRows",
    "cluster_features",
    "cluster_statistics",
    "cluster_tree",
    "criterion_value",
    "external_quality",
    "full_tree",
    "read_clustering",
    "read_labels",
    "read_matrix",
    "read_tree",
    "sweep",
    "to_html",
    "typical_rows",
    "write_clustering",
    "write_labels",
    "write_matrix",
    "write_tree",
]
