// SPDX-License-Identifier: MIT
#pragma once

#include "programs/io/matrix.h"
#include "programs/run_params.h"

namespace mardle {

// Builds the tree over the clusters, writes it to its file with params.writetree, and prints it
// with params.showtree: beside the drawing stand the class counts of the clusters, or, with
// params.labeltree, the sizes, similarities and descriptive columns of the nodes.
void ShowHACTree(const RunParams& params, const Matrix& mat, const int* part);

}  // namespace mardle
