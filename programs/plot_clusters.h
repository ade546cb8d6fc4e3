// SPDX-License-Identifier: MIT
#pragma once

#include "programs/io/engine_calls.h"
#include "programs/io/matrix.h"
#include "programs/run_params.h"

namespace mardle {

// Draws the clusters into params.plotclustersfile: one band per cluster with the cells of its
// centroid, the higher the more rows it has, the tree over the clusters to the left with each
// cluster's number and size, the columns' labels above. A plot without rows or columns is not made,
// which is reported on standard error.
void PlotTreeClusterMatrix(const RunParams& params, const Matrix& mat, const Clusters& clusters);

}  // namespace mardle
