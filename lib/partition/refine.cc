// SPDX-License-Identifier: MIT
//
// The refinement frame, once for every row of the table of criteria.
#include "lib/partition/refine.h"

#include "lib/criteria/table.h"
#include "lib/partition/refine_frame.h"
#include "lib/support/span.h"

namespace molva {

float RefineClusteringKWay(const Control& control, RowRecords& rows, int nparts, Span<int> part) {
  return WithCriterion(control.crfun, [&](const auto& criterion) {
    return RefineKWay(criterion, control, rows, nparts, part);
  });
}

float RefineClusteringKWay(const Control& control, const PreparedMatrix& mat, int nparts,
                           Span<int> part) {
  return WithCriterion(control.crfun, [&](const auto& criterion) {
    RowRecords rows(mat, {criterion.names.per_row, ": perm"});
    return RefineKWay(criterion, control, rows, nparts, part);
  });
}

}  // namespace molva
