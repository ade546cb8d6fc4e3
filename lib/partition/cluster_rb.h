// SPDX-License-Identifier: MIT
//
// Repeated bisection, the worker under MOLVA_VP_ClusterRB and its parts.
#pragma once

#include "lib/matrix/control.h"
#include "lib/matrix/prepared_matrix.h"
#include "lib/support/span.h"

namespace molva {

// Seeds the random numbers, and writes a clustering of the rows into nparts clusters by repeated
// bisection, with `refine` refined once more as a whole, its clusters in order.
void ClusterRB(const Control& control, const PreparedMatrix& mat, int nparts, bool refine,
               Span<int> part);

// Writes a clustering of the rows into nparts clusters: all rows in cluster 0 at first, then
// nparts-1 times the largest cluster is split in two.
void PartitionMatRecursive(const Control& control, const PreparedMatrix& mat, int nparts,
                           Span<int> part);

// The cluster among the first ncl with the most rows; the lowest number on ties.
int SelectACluster(int ncl, Span<const int> part);

// Writes the best two-way clustering of the matrix.
void BisectKMeans(const Control& control, const PreparedMatrix& mat, Span<int> part);

}  // namespace molva
