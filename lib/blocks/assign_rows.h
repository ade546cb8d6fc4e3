// SPDX-License-Identifier: MIT
//
// A batch pass over the rows of a block: where each would move if all others stayed.
#pragma once

#include "lib/matrix/prepared_matrix.h"
#include "lib/molva_blocks.h"
#include "lib/support/span.h"

namespace molva {

// best[i] is the cluster that the criterion gains most by when row i joins it, and its own cluster
// part[i] when no move gains. The row is left out of its own cluster first. Rows leave only
// clusters of three or more. A row without a cluster, part[i] < 0, joins the best one in any case.
void AssignRows(int crfun, const MOLVA_View& view, const PreparedMatrix& mat, Span<const int> part,
                Span<int> best);

// The average similarity of each row to its own cluster, itself included, and to the rows outside;
// 0 for rows without a cluster.
struct RowAverages {
  Span<float> internal, external;
};
void AverageRows(const MOLVA_View& view, const PreparedMatrix& mat, Span<const int> part,
                 const RowAverages& averages);

}  // namespace molva
