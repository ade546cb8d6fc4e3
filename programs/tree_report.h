// SPDX-License-Identifier: MIT
#pragma once

#include "programs/io/engine_calls.h"
#include "programs/io/matrix.h"
#include "programs/run_params.h"

namespace mardle {

// What becomes of the tree over the clusters.
struct TreeOutput {
  bool written = false;  // to its file
  bool printed = false;
};

// Builds the tree over the clusters, writes it to its file and prints it as asked for: beside the
// drawing stand the class counts of the clusters, or, with params.labeltree, the sizes,
// similarities and descriptive columns of the nodes.
void ShowHACTree(const RunParams& params, const Matrix& mat, const Clusters& clusters,
                 const TreeOutput& output);

}  // namespace mardle
