// SPDX-License-Identifier: MIT
//
// Repeated bisection, the workers under MOLVA_VP_ClusterRB.
#pragma once

#include <span>

#include "lib/matrix/control.h"
#include "lib/matrix/prepared_matrix.h"

namespace molva {

// Writes a clustering of the rows into nparts clusters: all rows in cluster 0 at first, then
// nparts-1 times the largest cluster is split in two.
void PartitionMatRecursive(const Control& control, const PreparedMatrix& mat, int nparts,
                           std::span<int> part);

// The cluster among the first ncl with the most rows; the lowest number on ties.
int SelectACluster(int ncl, std::span<const int> part);

// Writes the best two-way clustering of the matrix.
void BisectKMeans(const Control& control, const PreparedMatrix& mat, std::span<int> part);

}  // namespace molva
