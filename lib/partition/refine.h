// SPDX-License-Identifier: MIT
//
// Greedy k-way refinement under each of the nine criteria.
#pragma once

#include "lib/matrix/control.h"
#include "lib/matrix/prepared_matrix.h"
#include "lib/rough/row_records.h"
#include "lib/support/span.h"

namespace molva {

// Improves `part` (a cluster 0 to nparts-1 for every row) in place by moving single rows, for at
// most control.niter passes, and returns the criterion per row in the form that is better when
// larger: T/nrows for codes 1, 2 and 8, nrows/T for 3, 4, 5 and 9, the ratio for 6 and 7. Picks the
// routine by control.crfun; any other code is fatal:
// "Unknown clustering criterion function (CRFun) of %d\n".
float RefineClusteringKWay(const Control& control, const PreparedMatrix& mat, int nparts,
                           Span<int> part);

// The same over rows that were measured before.
float RefineClusteringKWay(const Control& control, RowRecords& rows, int nparts, Span<int> part);

}  // namespace molva
