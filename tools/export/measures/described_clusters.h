// SPDX-License-Identifier: MIT
//
// Clusters with their words, and how high these stand in them.
#pragma once

#include <vector>

#include "programs/io/matrix.h"
#include "programs/run_params.h"
#include "tools/export/measures/cluster_rows.h"
#include "tools/export/measures/cluster_words.h"
#include "tools/export/measures/column_levels.h"

namespace mardle::exporting {

struct DescribedClusters {
  // `part` is the cluster of each row, -1 for none.
  DescribedClusters(const RunParams& params, const Matrix& mat, const std::vector<int>& part,
                    int nclusters);

  ClusterRows rows;
  std::vector<ClusterWords> words;  // of each cluster
  ColumnLevels levels;
};

}  // namespace mardle::exporting
