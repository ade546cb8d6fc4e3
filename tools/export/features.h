// SPDX-License-Identifier: MIT
//
// The columns that describe clusters and tell them apart as a table: one record per cluster, kind
// and column, with the column's share and its level inside and elsewhere. Levels are the shares of
// rows that hold the column, in a dense matrix its averages.
#pragma once

#include <ostream>

#include "tools/export/measures/described_clusters.h"

namespace mardle::exporting {

// Tab-separated, with a line of column names.
void WriteFeaturesTsv(const Matrix& mat, const DescribedClusters& clusters, std::ostream& out);

// One object with nclusters, what levels are, and the list of clusters, one a line.
void WriteFeaturesJson(const Matrix& mat, const DescribedClusters& clusters, std::ostream& out);

}  // namespace mardle::exporting
