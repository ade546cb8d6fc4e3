# SPDX-License-Identifier: MIT
"""What a fitted estimator tells of its clusters: the package's functions, its labels filled in."""

from __future__ import annotations

from typing import Callable

from sklearn.utils.validation import check_is_fitted

from . import analysis, page, trees, typical
from ._matrix import check_count
from .summary import ClusterSummary, summarize

# Clusters that a notebook shows of an estimator unasked.
_SHOWN = 20


class Explaining:
    """The part of the estimators that explains what `fit` found."""

    def _explained(self, X):
        """Return X as the functions take it, and the keywords that they all have."""
        check_is_fitted(self)
        return self._checked(X), dict(n_jobs=self.n_jobs, **self.models_)

    def _tree_criterion(self, criterion: str | None) -> str:
        return self.criterion if criterion is None else criterion

    def _names(self, feature_names):
        """Return the names given, or else those of the data frame that was fitted."""
        known = getattr(self, "feature_names_in_", None)
        return known if feature_names is None else feature_names

    def features(self, X, n_features: int = 5, feature_names=None) -> analysis.ClusterFeatures:
        """Name the columns of the clusters of the fitted rows; see `molva.cluster_features`.

        Without names those of the data frame that was fitted are taken, where there was one.
        """
        X, keywords = self._explained(X)
        names = self._names(feature_names)
        return analysis.cluster_features(X, self.labels_, n_features, names, **keywords)

    def typical_rows(self, X, n_rows: int = 3, texts=None) -> typical.TypicalRows:
        """Return the most typical of the fitted rows; see `molva.typical_rows`."""
        X, keywords = self._explained(X)
        return typical.typical_rows(X, self.labels_, n_rows, texts, **keywords)

    def cluster_tree(self, X, criterion: str | None = None, ordered: bool = True) -> trees.Tree:
        """Build the tree over the clusters of the fitted rows; see `molva.cluster_tree`."""
        X, keywords = self._explained(X)
        criterion = self._tree_criterion(criterion)
        return trees.cluster_tree(X, self.labels_, criterion, ordered=ordered, **keywords)

    def full_tree(self, X, criterion: str | None = None, ordered: bool = False) -> trees.Tree:
        """Build the tree over all fitted rows; see `molva.full_tree`."""
        X, keywords = self._explained(X)
        criterion = self._tree_criterion(criterion)
        return trees.full_tree(X, self.labels_, criterion, ordered=ordered, **keywords)

    def to_html(self, X, path=None, **options) -> str | None:
        """Write the page of the fitted rows, or return it without a path; see `molva.to_html`.

        Takes feature_names, texts, classes, tree, n_features and title as that function does.
        """
        X, keywords = self._explained(X)
        names = self._names(options.pop("feature_names", None))
        return page.to_html(
            X, self.labels_, path, criterion=self.criterion, feature_names=names,
            **options, **keywords,
        )  # fmt: skip

    def summary(self, n_features: int = 5, feature_names=None) -> ClusterSummary:
        """Return a table with a line for every cluster: size, similarities, describing columns.

        Parameters
        ----------
        n_features : int, default=5
            Columns to name for each cluster, those with the largest shares of its similarity.
        feature_names : sequence of str, or object with get_feature_names_out, optional
            Without names those of the data frame that was fitted are taken, where there was one.
        """
        check_is_fitted(self)
        names = analysis.column_names(self._names(feature_names), self.n_features_in_)
        count = check_count("n_features", n_features, 1)
        return summarize(
            self.statistics_, self.cluster_centers_, self._space.columns, names, count
        )

    def _summary_html(self) -> str:
        return self.summary().to_html(_SHOWN) if hasattr(self, "labels_") else ""

    def _repr_mimebundle_(self, **kwargs) -> dict[str, str]:
        """Have notebooks show the summary below scikit-learn's diagram once there is one."""
        bundle = super()._repr_mimebundle_(**kwargs)
        if "text/html" in bundle:
            bundle["text/html"] += self._summary_html()
        return bundle

    @property
    def _repr_html_(self) -> Callable[[], str]:
        """The same for those who ask for HTML alone; scikit-learn may be told to have none."""
        diagram = super()._repr_html_
        return lambda: diagram() + self._summary_html()
