// SPDX-License-Identifier: MIT
//
// The columns that describe the nodes of a tree over clusters; the worker under
// MOLVA_V_GetTreeFeatures.
#pragma once

#include "lib/matrix/prepared_matrix.h"
#include "lib/measure/feature_ranking.h"
#include "lib/support/span.h"

namespace molva {

// Lists over 2 * nparts nodes. Every node gets its descriptive columns. What tells two siblings
// apart is written for the second child only, on purpose; the lists of first children and of the
// root are left as they are.
void GetTreeFeatures(const PreparedMatrix& mat, int nparts, Span<const int> part,
                     Span<const int> ptree, const FeatureLists& internal,
                     const FeatureLists& external);

}  // namespace molva
