// SPDX-License-Identifier: MIT
//
// The clustered matrix as a grid of coloured cells.
#pragma once

#include <span>

#include "programs/io/engine_calls.h"
#include "programs/io/matrix.h"
#include "programs/run_params.h"

namespace mardle {

// Draws the prepared matrix into params.plotmatrixfile: one line of cells per row, a frame with
// "cluster %d" around each cluster, the columns' labels above, and, where they exist, the complete
// tree of the run (ptree, 2 nrows parents; empty for none) to the left and the tree over the
// columns (params.clustercolumns) above. A plot without rows or columns is not made, which is
// reported on standard error.
void PlotMatrix(const RunParams& params, const Matrix& mat, std::span<const int> ptree,
                const Clusters& clusters);

// The two forms of input; they differ in the columns that are kept and in the names of blocks.
void PlotSparseTreeMatrix(const RunParams& params, const Matrix& mat, std::span<const int> ptree,
                          const Clusters& clusters);
void PlotDenseTreeMatrix(const RunParams& params, const Matrix& mat, std::span<const int> ptree,
                         const Clusters& clusters);

}  // namespace mardle
