// SPDX-License-Identifier: MIT
//
// Dot-product matrices of clusters and of rows. A matrix of n items is row-major with a stride of
// at least n.
#pragma once

#include <cstddef>

#include "lib/matrix/control.h"
#include "lib/matrix/prepared_matrix.h"
#include "lib/support/span.h"

namespace molva {

// smat[k][l] = D_k.D_l for the composites of all clusters; pwgts (zeroed here) receives their
// sizes.
void ComputeCluster2ClusterSimilarities(const PreparedMatrix& mat, int nparts, Span<const int> part,
                                        float* smat, std::size_t stride, Span<int> pwgts);

// smat[i][r] = the dot product of rows i and r, added up column by column in the order of row i's
// entries, single precision after each. Builds the matrix's column copy. With debug bit 1 it prints
// a dot for every hundred rows and the share of entries above 0.
void ComputeRowSimilarities(const Control& control, PreparedMatrix& mat, float* smat,
                            std::size_t stride);

}  // namespace molva
