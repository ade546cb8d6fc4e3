// SPDX-License-Identifier: MIT
//
// The columns that describe each cluster and those that tell it from the rest; the worker under
// MOLVA_V_GetClusterFeatures.
#pragma once

#include "lib/matrix/prepared_matrix.h"
#include "lib/measure/feature_ranking.h"
#include "lib/support/span.h"

namespace molva {

void GetClusterFeatures(const PreparedMatrix& mat, int nparts, Span<const int> part,
                        const FeatureLists& internal, const FeatureLists& external);

}  // namespace molva
