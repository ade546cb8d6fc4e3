// SPDX-License-Identifier: MIT
#pragma once

#include "lib/matrix/prepared_matrix.h"
#include "lib/support/span.h"

namespace molva {

// The rows of cluster c, in increasing order, as a matrix of their own. Only columns that occur in
// them are kept, renumbered in increasing order; entries keep their order and their values.
Owned<PreparedMatrix> Cluster2Matrix(const PreparedMatrix& mat, int c, Span<const int> part);

// Whether all rows as a matrix of their own would keep every column, and so be the matrix itself.
bool EveryColumnOccurs(const PreparedMatrix& mat);

}  // namespace molva
