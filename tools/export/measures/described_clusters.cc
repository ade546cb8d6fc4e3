// SPDX-License-Identifier: MIT
#include "tools/export/measures/described_clusters.h"

namespace mardle::exporting {

// The library comes first, as it refuses matrices that cannot be counted.
DescribedClusters::DescribedClusters(const RunParams& params, const Matrix& mat,
                                     const std::vector<int>& part, int nclusters)
    : rows(part, nclusters) {
  const EngineInput in = RunInput(params, mat, {nclusters, part.data()});
  words = FindClusterWords(in, params.nfeatures, ClusterSums(in, rows));
  levels = ColumnLevels(mat, rows);
}

}  // namespace mardle::exporting
